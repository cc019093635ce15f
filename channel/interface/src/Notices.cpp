// SPDX-License-Identifier: MIT
#include "channel/interface/Notices.h"

#include "channel/interface/Texts.h"
#include "ig/ui/UILabel.h"
#include "ig/ui/UIRoot.h"

#include <string>

using namespace ig;

namespace {

constexpr float NOTICE_TIME = 5, HINT_TIME = 15; ///< s
constexpr int HINT_TOP = 44;              ///< from the upper edge, below what is said of the link
constexpr float NOTICE_PLACE = 0.7f;      ///< of the height, from the upper edge
constexpr std::size_t LONGEST_QUOTE = 48; ///< bytes

const vec4 FACE(0.05f, 0.07f, 0.10f, 0.80f);
const vec4 NOTICE_COLOR(1.00f, 0.80f, 0.45f, 1);

UILabel* makeLabel(UIRoot* root) {
    auto* label = new UILabel(root, "");
    label->setAlignFree(true);
    label->setBackgroundColor(FACE);
    label->setHidden(true);
    root->addChild(label);
    return label;
}

void center(UILabel* label, int y) {
    label->setPosition((label->getRoot()->getWidth() - label->getWidth()) / 2, y);
}

} // namespace

void Notices::open(UIRoot* root) {
    m_root = root;
    m_notice = makeLabel(root);
    m_notice->setColor(NOTICE_COLOR);
    m_hint = makeLabel(root);
    m_hint->setText(Texts::get("hint.keys"));
    root->setNotices([this](std::string_view text) { tell(text); },
                     [this](std::string_view text) {
                         const bool quoted = text.size() <= LONGEST_QUOTE;
                         tell(Texts::fill("notice.refused", {quoted ? std::string(text) : "…"}));
                     });
}

void Notices::tell(std::string_view text) {
    m_notice->setText(text);
    m_notice->setHidden(false);
    m_notice_left = NOTICE_TIME;
}

void Notices::showHint() {
    m_hint->setHidden(false);
    m_hint_left = HINT_TIME;
}

void Notices::hideHint() { m_hint->setHidden(true); }

void Notices::advance(float dt) {
    m_notice_left -= dt;
    m_hint_left -= dt;
    if (m_notice_left <= 0) m_notice->setHidden(true);
    if (m_hint_left <= 0) m_hint->setHidden(true);
}

void Notices::place() {
    center(m_hint, m_root->pixels(HINT_TOP));
    center(m_notice, static_cast<int>(static_cast<float>(m_root->getHeight()) * NOTICE_PLACE));
}
