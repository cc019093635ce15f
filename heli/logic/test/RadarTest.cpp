// SPDX-License-Identifier: MIT
#include "ig/scene/RPost.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"
#include "testkit/LogicScene.h"

#include <algorithm>
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

const std::vector<float> ELSEWHERE = {0, 0, 180};

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
    scene.logic->release();
    EXPECT_EQ(viewport().getCamera(), nullptr); // the interface outlives the camera
}

TEST_F(RadarTest, ItsRingsAreNumberedWhereThePictureHasThem) {
    scene.useProjectData();
    start();
    const Material* material = RPost::GetMaterial("post_radar", &HERE, HERE);
    const int rings =
        static_cast<int>(material->getParameterSlider(material->findParameterIDByTag("rings")));
    UiDrawList list;
    const auto count = [&](const std::string& text) {
        scene.ui->update(0);
        scene.ui->draw(list);
        return std::ranges::count_if(list.commands(), [&](const auto& command) {
            return list.text(command) == text && command.y < 256 && command.x > 640 - 256;
        });
    };
    EXPECT_EQ(rings, 4);
    EXPECT_EQ(count("5"), 0);
    viewport().setHidden(false);
    scene.frame();
    for (const char* text : {"5", "10", "15", "20 km"})
        EXPECT_EQ(count(text), 2) << text; // and its shadow
    RPost::FreeMaterial(const_cast<Material*>(material), &HERE);
}

TEST_F(RadarTest, SectorAndGainHoldWhileThePictureIsDrawn) {
    scene.useProjectData();
    start();
    Engine::get()->setEnvironment(ENVIRONMENT_SENSOR_GAIN, 0.375f);
    struct Case {
        float value, width, offset;
        std::vector<float> sector;
        float gain;
    };
    const float nan = std::nanf("");
    for (const Case& c :
         {Case{2.5f, 60, 25, {1, 85, 145}, 2.5f}, Case{nan, 20, 0, {1, 80, 100}, 0.375f}}) {
        tell(c.value, c.width, c.offset);
        viewport().beginUpdate();
        EXPECT_EQ(sector(), c.sector);
        EXPECT_EQ(gain(), c.gain);
        viewport().endUpdate();
        EXPECT_EQ(sector(), ELSEWHERE);
        EXPECT_EQ(gain(), 0.375f);
    }
    EXPECT_EQ(RPost::getNumUses(), 0);
}

TEST(Radar, WithoutFanTheAnglesAndWithoutMaterialTheGainAreStillSet) {
    for (const bool material : {true, false}) {
        LogicScene own;
        if (material)
            own.folder.write("data/core/post/post_radar.mat",
                             "parameters: {min_angle: 0, max_angle: 180}\n");
        ASSERT_TRUE(own.start());
        own.logic->m_radar_value = 3;
        own.logic->m_radar_sector_width = 40;
        own.log.lines.clear();
        for (int i = 0; i < 3; i++) {
            own.logic->m_radar_viewport->beginUpdate();
            EXPECT_EQ(gain(), 3);
            EXPECT_EQ(sector(), (material ? std::vector<float>{0, 70, 110} : std::vector<float>()));
            own.logic->m_radar_viewport->endUpdate();
        }
        EXPECT_EQ(own.log.lines.size(), material ? 0u : 1u); // said once
    }
}

} // namespace
