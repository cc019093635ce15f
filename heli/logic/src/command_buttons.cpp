// SPDX-License-Identifier: MIT
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/ui/UIButton.h"
#include "ig/ui/UISpriteViewport.h"
#include "panel.h"

using namespace ig;

namespace {
const char* const INIT_UI_BTNS = "Logic_Nerith_Heli_Final::init_ui_btns";
} // namespace

void Logic_Nerith_Heli_Final::init_ui() {
    init_ui_cam();
    init_ui_btns();
    init_ui_radar();
}

/// The column in the lower right corner. Buttons with a handler act once per click; those without
/// are kept in a member and act, in `poll_hold_buttons`, as long as they are held.
void Logic_Nerith_Heli_Final::init_ui_btns() {
    using Logic = Logic_Nerith_Heli_Final;
    struct Row {
        const char* text;
        void (Logic::*on_click)(const UIEventMouse*, UIElement*);
        UIButton* Logic::*member;
    };
    static const Row ROWS[] = {
        {"第三视角", &Logic::on_click_change_view, &Logic::m_btn_view},
        {"气象雷达", &Logic::on_click_radar_weather, nullptr},
        {"飞机损毁", &Logic::on_click_heli_explosion, nullptr},
        {"开闭雨刷", &Logic::on_click_heli_wiper, nullptr},
        {"投放鱼雷", &Logic::on_click_emit_torpedo, nullptr},
        {"打开声呐", &Logic::on_click_emit_sonar, nullptr},
        {"关闭声呐", &Logic::on_click_close_sonar, nullptr},
        {"释放声呐", &Logic::on_click_break_sonar, nullptr},
        {"下放声呐", nullptr, &Logic::m_btn_sonar_down},
        {"上拉声呐", nullptr, &Logic::m_btn_sonar_up},
        {"打开吊索", &Logic::on_click_emit_winch, nullptr},
        {"关闭吊索", &Logic::on_click_close_winch, nullptr},
        {"下放吊索", nullptr, &Logic::m_btn_winch_down},
        {"上拉吊索", nullptr, &Logic::m_btn_winch_up},
        {"发射导弹", &Logic::on_click_emit_missile, nullptr},
        {"发射诱饵", &Logic::on_click_emit_decoy, nullptr},
        {"场景重置", &Logic::on_click_reset, nullptr},
    };

    m_btn_panel = createPanel<UIVLayout>(INIT_UI_BTNS);
    if (!m_btn_panel) return;
    for (const Row& row : ROWS) {
        auto* button = create<UIButton>(INIT_UI_BTNS, m_btn_panel->getRoot(), row.text);
        if (!button) continue;
        if (row.on_click) button->m_sig_click.append({this, row.on_click});
        if (row.member) this->*row.member = button;
        m_btn_panel->addChild(button, UI_EXPAND_NONE, -1);
    }
}

void Logic_Nerith_Heli_Final::on_click_radar_weather(const UIEventMouse*, UIElement*) {
    if (m_radar_viewport) m_radar_viewport->setHidden(!m_radar_viewport->isHidden());
}

void Logic_Nerith_Heli_Final::on_click_heli_wiper(const UIEventMouse*, UIElement*) {
    if (m_heli) m_heli->toggle_wiper();
}

void Logic_Nerith_Heli_Final::on_click_heli_explosion(const UIEventMouse*, UIElement*) {
    heli_explosion();
}

void Logic_Nerith_Heli_Final::on_click_emit_torpedo(const UIEventMouse*, UIElement*) {
    emit_torpedo();
}

void Logic_Nerith_Heli_Final::on_click_emit_sonar(const UIEventMouse*, UIElement*) { emit_sonar(); }

void Logic_Nerith_Heli_Final::on_click_close_sonar(const UIEventMouse*, UIElement*) {
    release_sonar();
}

void Logic_Nerith_Heli_Final::on_click_break_sonar(const UIEventMouse*, UIElement*) {
    break_sonar_joint();
}

void Logic_Nerith_Heli_Final::on_click_emit_winch(const UIEventMouse*, UIElement*) { emit_winch(); }

void Logic_Nerith_Heli_Final::on_click_close_winch(const UIEventMouse*, UIElement*) {
    release_winch();
}

void Logic_Nerith_Heli_Final::on_click_emit_missile(const UIEventMouse*, UIElement*) {
    emit_missile();
}

void Logic_Nerith_Heli_Final::on_click_emit_decoy(const UIEventMouse*, UIElement*) { emit_decoy(); }

void Logic_Nerith_Heli_Final::on_click_reset(const UIEventMouse*, UIElement*) { reset(); }

/// Every frame, in this order: a button acts as long as it has the focus.
void Logic_Nerith_Heli_Final::poll_hold_buttons(float dt) {
    if (m_btn_sonar_down && m_btn_sonar_down->isFocused()) sonar_down(dt);
    if (m_btn_sonar_up && m_btn_sonar_up->isFocused()) sonar_up(dt);
    if (m_btn_winch_down && m_btn_winch_down->isFocused()) winch_down(dt);
    if (m_btn_winch_up && m_btn_winch_up->isFocused()) winch_up(dt);
}
