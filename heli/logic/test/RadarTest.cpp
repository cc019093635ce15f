// SPDX-License-Identifier: MIT
#include "ig/scene/RPost.h"
#include "ig/ui/UISpriteViewport.h"
#include "testkit/LogicScene.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace ig;

const MemSite HERE = {"test", "test"};

/// What a renderer finds while it draws the picture: fan, and the sector's two angles.
std::vector<float> sector() {
    Material* material = RPost::GetMaterial("post_radar", &HERE, HERE);
    if (!material) return {};
    const int fan = material->getStateValue(material->findStateID("fan"));
    const std::vector<float> sector = {
        static_cast<float>(fan),
        material->getParameterSlider(material->findParameterIDByTag("min_angle")),
        material->getParameterSlider(material->findParameterIDByTag("max_angle"))};
    RPost::FreeMaterial(material, &HERE);
    return sector;
}

float gain() { return Engine::get()->getEnvironment(ENVIRONMENT_SENSOR_GAIN); }

struct RadarTest : testing::Test {
    void start() {
        ASSERT_TRUE(scene.start());
        scene.frame();
    }
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
    LogicScene scene;
};

TEST_F(RadarTest, SeesTheWorldFromAboveTheHelicopterWithItsHeadingUp) {
    start();
    const Camera& camera = *scene.logic->m_radar_object;
    EXPECT_EQ(viewport().getCamera(), &camera);
    EXPECT_EQ(viewport().getVisionMode(), VISION_RADAR);
    EXPECT_EQ(viewport().getPostMaterials(), "post_radar");
    tell(0, 60, 0);
    // Half way up the picture's middle, 50 m deep: 10 km ahead.
    const dmat4 local = scene.logic->m_heli->m_prefab->getWGSTransform();
    const dvec3 ahead = transpose(local.getMat3()) * (camera.getRayTo(0.5, 0.25, 50) -
                                                      scene.logic->m_heli->get_world_position());
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

TEST_F(RadarTest, SectorAndGainHoldWhileThePictureIsDrawn) {
    scene.useProjectData();
    start();
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
