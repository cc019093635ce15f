// SPDX-License-Identifier: MIT
#include "assets.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/scene/Camera.h"
#include "ig/scene/Material.h"
#include "ig/scene/RPost.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"
#include "panel.h"

#include <cstdio>

using namespace ig;

namespace {

const char* const INIT_UI_RADAR = "Logic_Nerith_Heli_Final::init_ui_radar";
constexpr int PICTURE_SIZE = 256;    ///< pixels
constexpr double AHEAD = 90.0;       ///< degrees in the picture, clockwise from its left
constexpr float WHOLE_PICTURE = 180; ///< degrees

constexpr int RINGS = 4, RING_DISTANCE = 5; ///< km between them
constexpr float OUTER_RING = 0.94f;         ///< its height over the picture's
constexpr int SCALE_FONT = 11;
const vec4 SCALE_COLOR(0.55f, 1.0f, 0.65f, 0.9f), SHADOW(0, 0, 0, 0.8f);

/// Sets the sector of the radar's material: the state "fan" draws it, from and to are degrees.
/// Without the material the picture has no sector.
void setSector(const void* owner, const char* function, int fan, float from, float to) {
    Material* material = RPost::GetMaterial(POST_RADAR, owner, {LOGIC_SOURCE, function});
    if (!material) return;
    const int state = material->findStateID("fan");
    if (state != -1) material->setStateValue(state, fan);
    material->setParameterSliderByName("min_angle", from);
    material->setParameterSliderByName("max_angle", to);
    RPost::FreeMaterial(material, owner);
}

/// The rings' distances, where they cross the line straight ahead. The picture's material draws the
/// rings: their number and the outermost one's place are its own.
class RadarScale final : public UIElement {
public:
    RadarScale(UIRoot* root, const UISpriteViewport& picture)
        : UIElement(root), m_picture(picture) {}
    void draw(UiDrawList& list) const override {
        if (m_picture.isHidden()) return;
        const auto size = static_cast<float>(pixels(SCALE_FONT));
        const auto width = static_cast<float>(m_picture.getWidth());
        const auto height = static_cast<float>(m_picture.getHeight());
        const float x = static_cast<float>(m_picture.getX()) + width / 2 + size / 4;
        const float bottom = static_cast<float>(m_picture.getY()) + height;
        for (int ring = 1; ring <= RINGS; ring++) {
            char text[16];
            std::snprintf(text, sizeof text, ring < RINGS ? "%d" : "%d km", ring * RING_DISTANCE);
            const float up = OUTER_RING * height * static_cast<float>(ring) / RINGS;
            list.addText(x + 1, bottom - up + 2, size, SHADOW, text);
            list.addText(x, bottom - up + 1, size, SCALE_COLOR, text);
        }
    }

protected:
    void measure(int& width, int& height) const override { width = height = 0; }
    bool takesMouse() const override { return false; }

private:
    const UISpriteViewport& m_picture; ///< the root's too
};

} // namespace

void Logic_Nerith_Heli_Final::init_ui_radar() {
    m_radar_panel = createPanel<UIVLayout>(INIT_UI_RADAR);
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
    if (auto* scale =
            create<RadarScale>(INIT_UI_RADAR, m_radar_panel->getRoot(), *m_radar_viewport))
        m_radar_panel->getRoot()->addChild(scale);
}

void Logic_Nerith_Heli_Final::on_viewport_radar_update_begin(UISpriteViewport*) {
    const auto begin = static_cast<float>(AHEAD - m_radar_sector_width * 0.5);
    setSector(this, "Logic_Nerith_Heli_Final::on_viewport_radar_update_begin", 1,
              begin + m_radar_sector_offset, m_radar_sector_offset + m_radar_sector_width + begin);
    Engine* engine = Engine::get();
    m_radar_saved_value = engine->getEnvironment(ENVIRONMENT_SENSOR_GAIN);
    engine->setEnvironment(ENVIRONMENT_SENSOR_GAIN, static_cast<float>(m_radar_value));
}

void Logic_Nerith_Heli_Final::on_viewport_radar_update_end(UISpriteViewport*) {
    Engine::get()->setEnvironment(ENVIRONMENT_SENSOR_GAIN, static_cast<float>(m_radar_saved_value));
    setSector(this, "Logic_Nerith_Heli_Final::on_viewport_radar_update_end", 0, 0, WHOLE_PICTURE);
}
