// SPDX-License-Identifier: MIT
#include "ig/scene/RPost.h"
#include "ig/ui/UIButton.h"
#include "ig/ui/UILayout.h"
#include "ig/ui/UISpriteViewport.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

const MemSite HERE = {"test", "test"};

/// What a renderer finds while it draws the picture.
struct Sector {
    int fan = -1;
    float from = -1, to = -1;
    friend bool operator==(const Sector&, const Sector&) = default;
};

std::ostream& operator<<(std::ostream& out, const Sector& s) {
    return out << s.fan << ' ' << s.from << ' ' << s.to;
}

Sector sector() {
    Material* material = RPost::GetMaterial("post_radar", &HERE, HERE);
    if (!material) return {};
    const Sector sector = {
        material->getStateValue(material->findStateID("fan")),
        material->getParameterSlider(material->findParameterIDByTag("min_angle")),
        material->getParameterSlider(material->findParameterIDByTag("max_angle"))};
    RPost::FreeMaterial(material, &HERE);
    return sector;
}

float gain() { return Engine::get()->getEnvironment(ENVIRONMENT_SENSOR_GAIN); }

const Sector ELSEWHERE = {0, 0, 180};

struct RadarTest : testing::Test {
    void start(bool project_data = true) {
        if (project_data) scene.useProjectData();
        ASSERT_TRUE(scene.start());
        scene.frame();
    }
    UISpriteViewport& viewport() { return *scene.logic->m_radar_viewport; }
    void tell(float value, float width, float offset) {
        UdpRecvData record = LogicScene::record();
        record.radar_value = value;
        record.radar_sector_width = width;
        record.radar_sector_offset = offset;
        scene.send(record);
        scene.frame();
    }
    void clickRadarButton() {
        auto* button = static_cast<UIButton*>(scene.logic->m_btn_panel->getChild(1));
        ASSERT_EQ(button->getText(), "气象雷达");
        const auto x = static_cast<float>(button->getX() + button->getWidth() / 2);
        const auto y = static_cast<float>(button->getY() + button->getHeight() / 2);
        scene.input.mouseDown(0, x, y);
        scene.input.mouseUp(0, x, y);
        scene.frame();
    }
    LogicScene scene;
};

TEST_F(RadarTest, StartsHiddenAndTheButtonShowsAndHidesIt) {
    start();
    EXPECT_TRUE(viewport().isHidden());
    clickRadarButton();
    EXPECT_FALSE(viewport().isHidden());
    scene.frame(); // and now it has its place
    EXPECT_EQ(viewport().getX(), scene.width - 256);
    EXPECT_EQ(viewport().getY(), 0);
    EXPECT_EQ(viewport().getWidth(), 256);
    EXPECT_EQ(viewport().getHeight(), 256);
    clickRadarButton();
    EXPECT_TRUE(viewport().isHidden());
}

TEST_F(RadarTest, SeesTheWorldThroughTheCameraAboveTheHelicopter) {
    start();
    const Camera& camera = *scene.logic->m_radar_object;
    EXPECT_EQ(viewport().getWorld(), &*scene.world);
    EXPECT_EQ(viewport().getCamera(), &camera);
    EXPECT_EQ(viewport().getVisionMode(), VISION_RADAR);
    EXPECT_EQ(camera.getType(), NODE_CAMERA_RADAR);
    tell(0, 60, 0);
    const dvec3 geodetic = EllipsoidModel().toWGS(camera.getWorldPosition());
    EXPECT_NEAR(geodetic.z, LogicScene::ALTITUDE + 10, 1e-6);
    // Half way up the picture's middle: 10 km ahead, which is north.
    const dvec3 ahead = EllipsoidModel().toWGS(camera.getRayTo(0.5, 0.25, 50));
    EXPECT_NEAR((ahead.y - LogicScene::LATITUDE) * 110700, 10000, 30);
    EXPECT_NEAR(ahead.x, LogicScene::LONGITUDE, 1e-6);
    scene.logic->release();
    EXPECT_EQ(viewport().getCamera(), nullptr); // the interface outlives the camera
}

TEST_F(RadarTest, SectorAndGainHoldWhileThePictureIsDrawn) {
    start();
    Engine::get()->setEnvironment(ENVIRONMENT_SENSOR_GAIN, 0.375f);
    struct Case {
        float width, offset;
        Sector sector;
    };
    for (const Case& c : {Case{60, 0, {1, 60, 120}}, Case{60, 25, {1, 85, 145}},
                          Case{0, -30, {1, 60, 60}}, Case{180, 0, {1, 0, 180}}}) {
        tell(2.5f, c.width, c.offset);
        EXPECT_EQ(sector(), ELSEWHERE);
        EXPECT_EQ(gain(), 0.375f);
        viewport().beginUpdate();
        EXPECT_EQ(sector(), c.sector);
        EXPECT_EQ(gain(), 2.5f);
        viewport().endUpdate();
        EXPECT_EQ(sector(), ELSEWHERE);
        EXPECT_EQ(gain(), 0.375f);
    }
    EXPECT_EQ(RPost::getNumUses(), 0);
}

TEST_F(RadarTest, WithoutItsMaterialTheGainIsStillPutBack) {
    start(false);
    Engine::get()->setEnvironment(ENVIRONMENT_SENSOR_GAIN, 0.5f);
    tell(3, 60, 0);
    scene.log.lines.clear();
    for (int i = 0; i < 3; i++) {
        viewport().beginUpdate();
        EXPECT_EQ(gain(), 3);
        viewport().endUpdate();
        EXPECT_EQ(gain(), 0.5f);
    }
    EXPECT_EQ(scene.log.lines.size(), 1u); // said once
}

TEST_F(RadarTest, AMaterialWithoutFanStillGetsTheAngles) {
    scene.folder.write("data/core/post/post_radar.mat",
                       "parameters: {min_angle: 0, max_angle: 180}\n");
    start(false);
    tell(1, 40, 10);
    viewport().beginUpdate();
    EXPECT_EQ(sector(), (Sector{0, 80, 120}));
    viewport().endUpdate();
    EXPECT_EQ(sector(), ELSEWHERE);
}

} // namespace
