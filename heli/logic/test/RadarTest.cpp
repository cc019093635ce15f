// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "ig/scene/RPost.h"
#include "ig/ui/UISpriteViewport.h"

#include <cmath>

namespace {

using namespace ig;

const MemSite HERE = {"test", "test"};

/// What a renderer finds while it draws the picture: fan, and the sector's two angles.
std::vector<float> sector() {
    Material* material = RPost::GetMaterial("post_radar", &HERE, HERE);
    if (!material) return {};
    const auto slider = [&](const char* tag) {
        return material->getParameterSlider(material->findParameterIDByTag(tag));
    };
    const int fan = material->getStateValue(material->findStateID("fan"));
    const std::vector<float> sector = {float(fan), slider("min_angle"), slider("max_angle")};
    RPost::FreeMaterial(material, &HERE);
    return sector;
}

float gain() { return Engine::get()->getEnvironment(ENVIRONMENT_SENSOR_GAIN); }

struct RadarTest : LogicTest {
    using LogicTest::LogicTest;
    UISpriteViewport& viewport() { return *scene.logic->m_radar_viewport; }
    void tell(float value, float width, float offset) {
        UdpRecvData record = LogicScene::record();
        record.heading = 120;
        record.pitch = 8;
        record.radar_value = value;
        record.radar_sector_width = width;
        record.radar_sector_offset = offset;
        scene.tell(record);
    }
};
struct ProjectRadarTest : RadarTest {
    ProjectRadarTest() : RadarTest(true) {}
};

TEST_F(RadarTest, SeesTheWorldFromAboveTheHelicopterWithItsHeadingUp) {
    const Camera& camera = *scene.logic->m_radar_object;
    EXPECT_EQ(viewport().getCamera(), &camera);
    EXPECT_EQ(viewport().getVisionMode(), VISION_RADAR);
    EXPECT_EQ(viewport().getPostMaterials(), "post_radar");
    tell(0, 60, 0);
    // Half way up the picture's middle, 50 m deep: 10 km ahead.
    const dmat4 to_local = inverse(heli().m_prefab->getWGSTransform());
    const dvec3 ahead = to_local * camera.getRayTo(0.5, 0.25, 50);
    const double h = 120 * DEG_TO_RAD<double>;
    EXPECT_LT(length(ahead - dvec3(1e4 * std::sin(h), 1e4 * std::cos(h), 10 - 50)), 1e-3);
    scene.log.lines.clear();
    for (int i = 0; i < 3; i++) { // these files have no material for the picture
        viewport().beginUpdate();
        viewport().endUpdate();
    }
    EXPECT_EQ(scene.log.lines.size(), 1u); // said once
    scene.logic->release();
    EXPECT_EQ(viewport().getCamera(), nullptr); // the interface outlives the camera
}

TEST_F(ProjectRadarTest, SectorAndGainHoldWhileThePictureIsDrawn) {
    Engine::get()->setEnvironment(ENVIRONMENT_SENSOR_GAIN, 0.375f);
    for (const auto& [value, told] : {std::pair(2.5f, 2.5f), {std::nanf(""), 0.375f}}) {
        tell(value, 60, 25);
        viewport().beginUpdate();
        EXPECT_EQ(sector(), (std::vector<float>{1, 85, 145}));
        EXPECT_EQ(gain(), told);
        viewport().endUpdate();
        EXPECT_EQ(sector(), (std::vector<float>{0, 0, 180}));
        EXPECT_EQ(gain(), 0.375f);
    }
    EXPECT_EQ(RPost::getNumUses(), 0);
}

} // namespace
