// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "heli/kit/HeliEffectsKitCorax.h"
#include "ig/scene/SceneObjects.h"

namespace {

using namespace ig;

/// The helicopter of the demo world, held where a record puts it.
struct EffectsFrame : LogicTest {
    EffectsFrame() : LogicTest(true) {}
    /// At a height above what lies below; `rotor` as the host tells it, 270 is full collective.
    void hover(double longitude, double latitude, float height, float rotor) {
        UdpRecvData record{};
        record.longitude = longitude;
        record.latitude = latitude;
        record.rotor_speed = rotor;
        record.altitude = 500;
        scene.tell(record); // to measure the surface
        record.altitude = heli().get_ground_height() + height;
        scene.tell(record);
    }
    ObjectParticles* emitter(const char* name) {
        return static_cast<ObjectParticles*>(scene.helicopterNode(name));
    }
    /// Which of the emitters run, and how dense one of them is.
    void expect(std::initializer_list<const char*> names, bool running, const char* dense) {
        for (const char* name : names)
            EXPECT_EQ(emitter(name)->isVisible() && emitter(name)->getSpawnTime(1) > 0, running)
                << name;
        const Material* material = emitter(dense)->getSurfaceMaterial(0);
        const vec4 color =
            material->getParameterValue(material->findParameterIDByTag("diffuse_color"));
        EXPECT_NEAR(color.w, (10 - heli().get_ground_height() / 25) * 0.05f, 1e-4) << dense;
    }
};

TEST_F(EffectsFrame, OverTheSeaSprayAndOverLandLeaves) {
    scene.logic->m_ocean->setBeaufort(5);
    hover(-155.05, 19.74, 4, 13.5f); // collective 0.05
    expect({"water", "downwash_spe"}, true, "water");
    expect({"out_snow", "leaf_1", "leaf_2"}, false, "water");
    EXPECT_TRUE(heli().is_over_water());
    const dvec3 below = scene.logic->m_ocean->getWorldPoint(heli().get_world_position());
    EXPECT_NEAR(heli().get_ground_height(), SeaScene::altitude(below), 1e-5);
    EXPECT_LT(length(scene.helicopterNode("downwash")->getWorldPosition() - below), 0.01);

    hover(-155.0648, 19.7107, 4, 13.5f); // over the turf beside the apron
    expect({"water"}, false, "leaf_1");
    expect({"out_snow", "leaf_1", "leaf_2"}, true, "leaf_1");
    EXPECT_FALSE(heli().is_over_water());
    EXPECT_GT(heli().get_ground_height(), 10);
    scene.logic->m_ocean = nullptr;
    scene.logic->m_terrain = nullptr;
    scene.frame();
    EXPECT_EQ(heli().get_ground_height(), -1e9f);
}

TEST(Deflector, TakesItsHeightFromTheWeatherAndKeepsItsPlace) {
    LogicScene scene;
    scene.addToWorld("name: rain, type: particles, deflectors: 1");
    scene.addToWorld("name: hail, type: particles"); // without a deflector of its own
    scene.addToWorld("name: snow");                  // no particle system
    ASSERT_TRUE(scene.start());
    EXPECT_TRUE(scene.logic->m_raining);
    auto& rain = static_cast<ObjectParticles&>(*scene.logic->m_rain);
    scene.logic->m_heli->m_prefab->setWgsHPR({100, 6, 0});
    const dmat4 heli = scene.logic->m_heli->get_world_transform();
    // Somewhere else above: only the height counts.
    rain.setWorldTransform(heli * dmat4(dquat(10, 20, 30), dvec3(14, -9, 25)));
    scene.frame();
    const dmat4 deflector = rain.getDeflectorTransform(0);
    EXPECT_LT(length(inverse(heli) * deflector.getTranslate() - dvec3(0, 3, 25)), 1e-6);
    // Turns with the helicopter, not with the rain.
    EXPECT_NEAR(dot(deflector.getZ(), heli.getZ()), 1, 1e-9);
}

TEST(Commander, HandsSwingBetweenTheirLimitsTogether) {
    LogicScene scene;
    scene.folder.write("cmder.prefab", "node: {name: r, children: [{name: left_hand}, "
                                       "{name: arm, children: [{name: right_hand}]}]}\n");
    scene.addToWorld("name: cmder, type: prefab, path: cmder.prefab");
    ASSERT_TRUE(scene.start());
    auto* commander = static_cast<ObjectPrefab*>(scene.world->getNodeByName("cmder"));
    for (const auto& [dt, angle] : {std::pair(0.25f, 30), {1, 45}, {1, -45}, {0.5f, 15}}) {
        scene.frame(dt); // turns round in the frame that reaches the end
        for (const char* name : {"left_hand", "right_hand"})
            EXPECT_NEAR(commander->getNodeByName(name)->getRotation().toEulerZXY().x, angle, 1e-4);
    }
}

} // namespace
