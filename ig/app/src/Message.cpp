// SPDX-License-Identifier: MIT
#include "ig/app/Message.h"

namespace ig {

void MsgNode::attach() {
    if (m_attached) return;
    MsgMngr::get()->m_nodes.append(this);
    m_attached = true;
}

void MsgNode::detach() {
    if (!m_attached) return;
    MsgMngr* manager = MsgMngr::get();
    const int i = manager->m_nodes.find(this);
    if (manager->m_depth > 0)
        manager->m_nodes[i] = nullptr; // the send under way counts on the order
    else
        manager->m_nodes.remove(i);
    m_attached = false;
}

MsgMngr* MsgMngr::get() {
    static MsgMngr manager;
    return &manager;
}

void MsgMngr::send(UiMsg* message) {
    const int count = m_nodes.size();
    m_depth++;
    for (int i = 0; i < count; i++)
        if (m_nodes[i]) m_nodes[i]->processMsg(message);
    m_depth--;
    if (m_depth > 0) return;
    for (int i = m_nodes.size() - 1; i >= 0; i--)
        if (!m_nodes[i]) m_nodes.remove(i);
}

} // namespace ig
