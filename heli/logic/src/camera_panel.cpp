// SPDX-License-Identifier: MIT
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "heli/ui/editors.h"
#include "ig/ui/UISprite.h"
#include "panel.h"

using namespace ig;
using logic_memory::create;

namespace {

const char* const INIT_UI_CAM = "Logic_Nerith_Heli_Final::init_ui_cam";

const char* const SPEED_ICON = "data/core/editor/gui/run.dds";
const char* const POSITION_ICON = "data/core/editor/gui/position.dds";
const char* const COLLECTIVE_ICON = "data/PELMAR_PROJECT/gui/thr.png";

constexpr int SPEED_MESSAGE = 123456;    ///< the operator set the camera's speed
constexpr int POSITION_MESSAGE = 654321; ///< … its place: it is levelled there
constexpr int NO_MESSAGE = -1;

constexpr int ROW = 16; ///< height of icons and fields
constexpr int SPEED_WIDTH = 64, POSITION_WIDTH = 156, COLLECTIVE_WIDTH = 64;

void addIcon(UIVLayout* panel, const char* path) {
    auto* icon = create<UISprite>(INIT_UI_CAM, panel->getRoot(), path, 0);
    if (!icon) return;
    icon->setFixSize(ROW, ROW);
    panel->addChild(icon);
}

void styleField(UIEditLine* field, int width) {
    field->setBackgroundColor(logic_panels::HALF);
    field->setFixSize(width, ROW);
}

} // namespace

/// The row in the lower left corner: the free camera's speed, its geodetic position, the
/// helicopter's collective.
void Logic_Nerith_Heli_Final::init_ui_cam() {
    m_cam_panel = logic_panels::create<UIHLayout>(INIT_UI_CAM);
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
    for (int i = 0; i < 3; i++)
        styleField(position->getEdit(i), POSITION_WIDTH);

    addIcon(m_cam_panel, COLLECTIVE_ICON);
    auto* collective = create<UIFloat>(INIT_UI_CAM, this, &Logic::set_flt, &Logic::get_heli_thr,
                                       m_cam_panel, NO_MESSAGE, "");
    if (!collective) return;
    m_cam_panel->addWrap(collective, UI_EXPAND_NONE, -1);
    styleField(collective->getEdit(), COLLECTIVE_WIDTH);
    collective->getEdit()->setEditable(false);
    collective->getEdit()->setValidator(UI_VALIDATE_NUMBER);
}
