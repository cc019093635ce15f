// SPDX-License-Identifier: MIT
#include "assets.h"
#include "cable.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "heli/logic/records.h"
#include "heli/ui/editors.h"
#include "ig/scene/CameraControl.h"
#include "ig/ui/UILabel.h"
#include "ig/ui/UIRoot.h"
#include "ig/ui/UISprite.h"
#include "panel.h"

#include <cstdio>

using namespace ig;

namespace {

const char* const INIT_UI_CAM = "Logic_Nerith_Heli_Final::init_ui_cam";

constexpr int SPEED_MESSAGE = 123456;    ///< the operator set the camera's speed
constexpr int POSITION_MESSAGE = 654321; ///< … its place: it is levelled there
constexpr int NO_MESSAGE = -1;

constexpr int ROW = 16; ///< height of icons and fields
constexpr int READOUT_FONT = 14, READOUT_GAP = 4;
constexpr int SPEED_WIDTH = 64, POSITION_WIDTH = 156, COLLECTIVE_WIDTH = 64;

struct PositionField {
    const char* label;
    int decimals; ///< that are shown; a tenth of a metre
    double step;  ///< of the wheel: about 100 m in both directions; 10 m
};
const PositionField POSITION_FIELDS[] = {
    {"经度 Lon", 6, 0.001}, {"纬度 Lat", 6, 0.001}, {"高度 Alt", 1, 10}};

void addIcon(UIVLayout* panel, const char* path) {
    auto* icon = create<UISprite>(INIT_UI_CAM, panel->getRoot(), path, 0);
    if (!icon) return;
    icon->setFixSize(ROW, ROW);
    panel->addChild(icon);
}

/// How far the cables are paid out that are out: above the row.
class CableReadout final : public UILabel {
public:
    CableReadout(UIRoot* root, const Logic_Nerith_Heli_Final& logic, const UIElement& row)
        : UILabel(root, ""), m_logic(logic), m_row(row) {
        setAlignFree(true);
        setFontSize(READOUT_FONT);
    }
    void refresh() override {
        char text[96];
        int size = 0;
        const auto add = [&](const char* name, const BodyRope* rope) {
            if (!rope) return;
            const float length = rope->getLength() * SHOWN_PER_LENGTH;
            size += std::snprintf(text + size, sizeof text - size, "%s%s %.1f m", size ? "   " : "",
                                  name, length);
        };
        text[0] = 0;
        const SonarInfo* sonar = m_logic.m_sonar_info;
        const WinchInfo* winch = m_logic.m_winch_info;
        add("声呐缆 Sonar", sonar ? ropeOf(sonar->rope) : nullptr);
        add("吊索 Winch", winch ? ropeOf(winch->rope) : nullptr);
        setText(text);
        setPosition(m_row.getX(), m_row.getY() - getHeight() - pixels(READOUT_GAP));
    }
    void draw(UiDrawList& list) const override {
        if (!getText().empty()) UILabel::draw(list);
    }

private:
    const Logic_Nerith_Heli_Final& m_logic; ///< outlives the user interface
    const UIElement& m_row;
};

void styleField(UIEditLine* field, int width) {
    field->setBackgroundColor(PANEL_BACKGROUND);
    field->setFixSize(width, ROW);
}

} // namespace

/// The row in the lower left corner: the free camera's speed, its geodetic position, the
/// helicopter's collective.
void Logic_Nerith_Heli_Final::init_ui_cam() {
    m_cam_panel = createPanel<UIHLayout>(INIT_UI_CAM);
    if (!m_cam_panel) return;
    using Logic = Logic_Nerith_Heli_Final;
    addIcon(m_cam_panel, SPEED_ICON);
    auto* speed = create<UIInt>(INIT_UI_CAM, this, &Logic::setCamSpeed, &Logic::getCamSpeed,
                                m_cam_panel, SPEED_MESSAGE, "");
    if (!speed) return;
    m_cam_panel->addWrap(speed, UI_EXPAND_NONE, -1);
    styleField(speed->getEdit(), SPEED_WIDTH);
    speed->getEdit()->setValidator(UI_VALIDATE_DECIMAL_WHOLE);

    addIcon(m_cam_panel, POSITION_ICON);
    auto* position = create<UIDVec3>(INIT_UI_CAM, this, &Logic::set_cam_pos_geo,
                                     &Logic::get_cam_pos_geo, m_cam_panel, POSITION_MESSAGE, "");
    if (!position) return;
    m_cam_panel->addWrap(position, UI_EXPAND_NONE, -1);
    position->addSetter({this, &Logic::show_free_view});
    for (int i = 0; i < 3; i++) {
        const PositionField& look = POSITION_FIELDS[i];
        UIEditLineWheel* field = position->getEdit(i);
        styleField(field, POSITION_WIDTH);
        field->setLabel(look.label);
        field->setDecimals(look.decimals);
        field->setStep(look.step);
    }

    addIcon(m_cam_panel, COLLECTIVE_ICON);
    auto* collective = create<UIFloat>(INIT_UI_CAM, this, &Logic::set_flt, &Logic::get_heli_thr,
                                       m_cam_panel, NO_MESSAGE, "");
    if (!collective) return;
    m_cam_panel->addWrap(collective, UI_EXPAND_NONE, -1);
    styleField(collective->getEdit(), COLLECTIVE_WIDTH);
    collective->getEdit()->setEditable(false);
    collective->getEdit()->setValidator(UI_VALIDATE_NUMBER);

    if (auto* readout =
            create<CableReadout>(INIT_UI_CAM, m_cam_panel->getRoot(), *this, *m_cam_panel))
        m_cam_panel->getRoot()->addChild(readout);
}

/// The other views would put the camera back at once, turned as it is levelled at the place. One
/// that was refused changes no view.
void Logic_Nerith_Heli_Final::show_free_view(const dvec3& geo) {
    const dvec3 place = Engine::get()->getEllipsoidModel()->toWorld(geo, true);
    if (m_player_mode != PLAYER_MODE_FREE && m_camera_control->m_position == place)
        set_player_mode(PLAYER_MODE_FREE);
}
