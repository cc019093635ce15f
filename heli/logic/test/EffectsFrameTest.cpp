// SPDX-License-Identifier: MIT
#include "heli/kit/HeliEffectsKitCorax.h"
#include "ig/scene/SceneObjects.h"
#include "plugins/ocean/ObjectOcean.h"
#include "testkit/LogicScene.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using namespace ig;

/// The helicopter of the demo world, held where a record puts it.
struct EffectsFrame : testing::Test {
    void SetUp() override {
        scene.useProjectData();
        ASSERT_TRUE(scene.start());
    }
    /// At a height above what lies below; `rotor` as the host tells it, 270 is full collective.
    void hover(double longitude, double latitude, float height, float rotor) {
        UdpRecvData record{};
        record.longitude = longitude;
        record.latitude = latitude;
        record.rotor_speed = rotor;
        record.altitude = 500;
        scene.tell(record); // to measure the surface
        record.altitude = scene.logic->m_heli->get_ground_height() + height;
        scene.tell(record);
    }
    ObjectParticles* emitter(const char* name) {
        return static_cast<ObjectParticles*>(scene.helicopterNode(name));
    }
    float alpha(const char* name) {
        const Material* material = emitter(name)->getSurfaceMaterial(0);
        return material->getParameterValue(material->findParameterIDByTag("diffuse_color")).w;
    }
    LogicScene scene;
};

TEST_F(EffectsFrame, OverTheSeaSprayAndOverLandLeaves) {
    const auto expect = [&](std::initializer_list<const char*> names, bool running) {
        for (const char* name : names)
            EXPECT_EQ(emitter(name)->isVisible() && !emitter(name)->isSilent(), running) << name;
    };
    scene.logic->m_ocean->setBeaufort(0);
    hover(-155.05, 19.74, 4, 13.5f); // collective 0.05
    expect({"water", "downwash_spe"}, true);
    expect({"out_snow", "leaf_1", "leaf_2"}, false);
    EXPECT_NEAR(alpha("water"), 0.5, 1e-3); // 10 − 0 / 25, by 0.05
    const dvec3 carrier = scene.helicopterNode("downwash")->getWorldPosition();
    EXPECT_NEAR(EllipsoidModel().toWGS(carrier).z, 0, 1e-4);

    hover(-155.0648, 19.7107, 4, 13.5f); // over the turf beside the apron
    expect({"water"}, false);
    expect({"out_snow", "leaf_1", "leaf_2"}, true);
    const float ground = scene.logic->m_heli->get_ground_height();
    EXPECT_GT(ground, 10);
    EXPECT_NEAR(alpha("leaf_1"), (10 - ground / 25) * 0.05f, 1e-5);
}

TEST_F(EffectsFrame, TheDustIsThatOfTheGroundBelow) {
    const auto ground = [this](double longitude, double latitude) {
        hover(longitude, latitude, 4, 13.5f);
        scene.frames(40, 0.1f);
        return emitter("downwash_spe")->getGround();
    };
    const vec4 sea = ground(-155.05, 19.74), pad = ground(-155.0625125, 19.7124631);
    const vec4 turf = ground(-155.0648, 19.7107), beach = ground(-155.05856, 19.71498);
    EXPECT_EQ(sea.w, 1);
    EXPECT_LT(pad.w, beach.w);        // concrete gives little
    EXPECT_GT(turf.y, 1.5f * turf.z); // brown and green
    EXPECT_GT(beach.x, 1.5f * beach.z);
    scene.logic->setSnow(1);
    const vec4 snow = ground(-155.0648, 19.7107);
    EXPECT_GT(std::min({snow.x, snow.y, snow.z}), 0.75f);
}

TEST(Deflector, TakesItsHeightFromTheWeatherAndKeepsItsPlace) {
    LogicScene scene;
    scene.addToWorld("name: rain, type: particles, deflectors: 1");
    scene.addToWorld("name: hail, type: particles"); // without a deflector of its own
    scene.addToWorld("name: snow");                  // no particle system
    ASSERT_TRUE(scene.start());
    auto& rain = static_cast<ObjectParticles&>(*scene.logic->m_rain);
    UdpRecvData record = LogicScene::record();
    record.heading = 100;
    record.pitch = 6;
    scene.tell(record);
    const dmat4 heli = scene.logic->m_heli->get_world_transform();
    // Somewhere else above: only the height counts.
    rain.setWorldTransform(heli * dmat4(dquat(10, 20, 30), dvec3(14, -9, 25)));
    scene.frame();
    const dmat4 deflector = rain.getDeflectorTransform(0);
    EXPECT_LT(length(inverse(heli) * deflector.getTranslate() - dvec3(0, 3, 25)), 1e-6);
    // Turns with the helicopter, not with the rain.
    EXPECT_NEAR(dot(deflector.getZ(), heli.getZ()), 1, 1e-9);
}

} // namespace
