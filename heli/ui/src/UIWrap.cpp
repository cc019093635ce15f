// SPDX-License-Identifier: MIT
#include "heli/ui/UIWrap.h"

#include "ig/app/Message.h"

void UIWrap::detach() {
    if (m_layout) m_layout->removeWrap(this);
    m_layout = nullptr;
}

void UIWrap::notify() const {
    if (m_msg_id == -1) return;
    if (m_msg_ptr)
        ig::MsgMngr::get()->notifyHelperPtr(m_msg_id, m_msg_ptr);
    else
        ig::MsgMngr::get()->notifyHelper(m_msg_id);
}
