// SPDX-License-Identifier: MIT
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/scene/Camera.h"
#include "ig/scene/Material.h"
#include "ig/scene/RPost.h"
#include "ig/ui/UISpriteViewport.h"
#include "panel.h"

using namespace ig;
using logic_memory::create;

namespace {

const char* const INIT_UI_RADAR = "Logic_Nerith_Heli_Final::init_ui_radar";
const char* const POST_RADAR = "post_radar";
constexpr int PICTURE_SIZE = 256;    ///< pixels
constexpr double AHEAD = 90.0;       ///< degrees in the picture, clockwise from its left
constexpr float WHOLE_PICTURE = 180; ///< degrees

/// Sets the sector of the radar's material: the state "fan" draws it, from and to are degrees.
/// Without the material the picture has no sector.
void setSector(const void* owner, const char* function, int fan, float from, float to) {
    Material* material = RPost::GetMaterial(POST_RADAR, owner, {logic_memory::SOURCE, function});
    if (!material) return;
    const int state = material->findStateID("fan");
    if (state != -1) material->setStateValue(state, fan);
    material->setParameterSliderByName("min_angle", from);
    material->setParameterSliderByName("max_angle", to);
    RPost::FreeMaterial(material, owner);
}

} // namespace

void Logic_Nerith_Heli_Final::init_ui_radar() {
    m_radar_panel = logic_panels::create<UIVLayout>(INIT_UI_RADAR);
    if (!m_radar_panel) return;
    m_radar_object = create<Camera>(INIT_UI_RADAR, NODE_CAMERA_RADAR);
    m_radar_viewport = create<UISpriteViewport>(INIT_UI_RADAR, m_radar_panel->getRoot(),
                                                PICTURE_SIZE, PICTURE_SIZE);
    if (!m_radar_viewport) return;
    m_radar_viewport->setVisionMode(VISION_RADAR);
    m_radar_viewport->setPostMaterials(POST_RADAR);
    m_radar_viewport->setWorld(m_world);
    m_radar_viewport->setCamera(m_radar_object);
    m_radar_viewport->m_sig_update_begin.append(
        {this, &Logic_Nerith_Heli_Final::on_viewport_radar_update_begin});
    m_radar_viewport->m_sig_update_end.append(
        {this, &Logic_Nerith_Heli_Final::on_viewport_radar_update_end});
    m_radar_panel->addChild(m_radar_viewport, UI_EXPAND_NONE, -1);
    m_radar_viewport->setHidden(true);
}

void Logic_Nerith_Heli_Final::on_viewport_radar_update_begin(UISpriteViewport*) {
    const auto begin = static_cast<float>(AHEAD - static_cast<double>(m_radar_sector_width) * 0.5);
    setSector(this, "Logic_Nerith_Heli_Final::on_viewport_radar_update_begin", 1,
              begin + m_radar_sector_offset, m_radar_sector_offset + m_radar_sector_width + begin);
    Engine* engine = Engine::get();
    m_radar_saved_value = static_cast<double>(engine->getEnvironment(ENVIRONMENT_SENSOR_GAIN));
    engine->setEnvironment(ENVIRONMENT_SENSOR_GAIN, static_cast<float>(m_radar_value));
}

void Logic_Nerith_Heli_Final::on_viewport_radar_update_end(UISpriteViewport*) {
    Engine::get()->setEnvironment(ENVIRONMENT_SENSOR_GAIN, static_cast<float>(m_radar_saved_value));
    setSector(this, "Logic_Nerith_Heli_Final::on_viewport_radar_update_end", 0, 0, WHOLE_PICTURE);
}
