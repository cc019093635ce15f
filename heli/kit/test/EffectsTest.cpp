// SPDX-License-Identifier: MIT
#include "heli/kit/HeliEffectsKitCorax.h"
#include "heli/kit/HelicopterCorax.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/SceneObjects.h"
#include "testkit/LogicScene.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <optional>

namespace {

using namespace ig;

const EllipsoidModel EARTH;
constexpr double LONGITUDE = -155.05, LATITUDE = 19.72;
constexpr float NO_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr float INF = std::numeric_limits<float>::infinity();

const std::string ALL = R"(node:
  name: helicopter
  children:
  - name: downwash
    children:
    - name: downwash_spe
      type: particles
      material: spray.mat
      children:
      - {name: out_blade, type: particles, enabled: false, material: blade.mat}
      - {name: out_snow, type: particles, enabled: false, material: plain.mat}
      - {name: h_blade, enabled: false}
      - {name: leaf_1, type: particles, material: leaf_1.mat}
      - {name: leaf_2, type: particles, material: leaf_2.mat}
      - {name: water, type: particles, material: water.mat}
  - {name: field_anim, type: field, parameters: [2, 0.6, 0.4]}
)";

/// A helicopter with the nodes of a prefab of the test's own, and the kit on it.
struct EffectsTest : testing::Test {
    bool make(const std::string& prefab = ALL) {
        scene.world.emplace();
        for (const char* name : {"spray", "blade", "leaf_1", "leaf_2", "water"})
            scene.folder.write(std::string(name) + ".mat",
                               "parameters: {size: 1, diffuse_color: [0.1, 0.2, 0.3, 0.9]}\n");
        scene.folder.write("plain.mat", "parameters: {size: 1}\n");
        scene.folder.write("heli.prefab", prefab);
        heli.emplace(&*scene.world, "heli.prefab", false);
        return kit.init(&*heli);
    }
    /// One step at a height above the surface.
    void fly(double height, float ground = 12.25f, bool over_water = false) {
        const dvec3 place(LONGITUDE, LATITUDE, static_cast<double>(ground) + height);
        heli->set_transform(EARTH.getWGSTransform(EARTH.toWorld(place)));
        heli->m_prefab->setWgsHPR({77, 8, -12});
        heli->set_ground_height(ground);
        heli->set_over_water(over_water);
        kit.update();
    }
    Node* node(const char* name) { return heli->m_prefab->getNodeByName(name); }
    /// One letter for each effect that is seen.
    std::string seen() {
        std::string letters;
        const std::pair<const char*, char> NODES[] = {
            {"downwash_spe", 'D'}, {"out_blade", 'b'}, {"out_snow", 's'}, {"h_blade", 'h'},
            {"leaf_1", '1'},       {"leaf_2", '2'},    {"water", 'w'}};
        for (const auto& [name, letter] : NODES)
            if (node(name)->isVisible()) letters += letter;
        return letters;
    }
    vec4 color(const char* name) {
        const Material* material = static_cast<Object*>(node(name))->getSurfaceMaterial(0);
        return material->getParameterValue(material->findParameterIDByTag("diffuse_color"));
    }
    float field(int i) { return static_cast<NodeField*>(node("field_anim"))->getParameter(i); }

    LogicScene scene; // without its logic
    std::optional<HelicopterCorax> heli;
    HeliEffectsKitCorax kit;
};

TEST_F(EffectsTest, BandsSwitchAndFadeOnTheWayDownAndOnTheWayUp) {
    ASSERT_TRUE(make());
    struct Step {
        double height;
        const char* seen;
        double fade;
    };
    const Step STEPS[] = {{25, "", 0},    {24.9, "D", 0.01}, {19, "D", 0.6}, {18.9, "Db", 0.61},
                          {15, "Db", 1},  {14.9, "Dbs", 1},  {10, "Dbs", 1}, {9.9, "Dbsh", 1},
                          {5, "Dbsh", 1}, {4.9, "Dbsh12", 1}};
    for (const bool over_water : {false, true}) {
        const float ground = over_water ? -0.75f : 12.25f; // in a trough
        const auto check = [&](const Step& step) {
            fly(step.height, ground, over_water);
            const bool spray = over_water && *step.seen;
            EXPECT_EQ(seen(), std::string(step.seen) + (spray ? "w" : "")) << step.height;
            for (const auto& [level, clamped] :
                 {std::pair(7.0f, 1.0), {-INF, 0}, {NO_NUMBER, 0}, {0.5f, 0.5}}) {
                kit.update_fade(level);
                EXPECT_NEAR(color("leaf_2").w, clamped * step.fade, 1e-5) << level;
            }
            for (const char* name : {"downwash_spe", "out_blade", "leaf_1", "leaf_2", "water"}) {
                EXPECT_NEAR(color(name).w, 0.5 * step.fade, 1e-5) << name << ' ' << step.height;
                EXPECT_EQ(color(name).xyz(), vec3(0.1f, 0.2f, 0.3f)) << name;
            }
        };
        for (const Step& step : STEPS)
            check(step);
        for (auto step = std::rbegin(STEPS); step != std::rend(STEPS); ++step)
            check(*step);
    }
    fly(4);
    fly(12); // a jump: the leaves are switched by the bands between, which were never flown
    EXPECT_TRUE(node("leaf_2")->isEnabled());
    EXPECT_FALSE(node("leaf_1")->isEnabled());
}

TEST_F(EffectsTest, TheCarrierLiesLevelOnTheSurfaceBelow) {
    ASSERT_TRUE(make());
    fly(18, -1.5f, true);
    const dmat4 carrier = node("downwash")->getWorldTransform();
    const dvec3 below = EARTH.toWorld({LONGITUDE, LATITUDE, -1.5});
    EXPECT_LT(length(carrier.getTranslate() - below), 1e-6);
    const dmat4 level = EARTH.getWGSTransform(below);
    EXPECT_LT(length(carrier.getY() - level.getY()), 1e-8); // north, whatever the attitude
    EXPECT_LT(length(carrier.getZ() - level.getZ()), 1e-8);
}

TEST_F(EffectsTest, TheFieldFluttersWithTheCollective) {
    ASSERT_TRUE(make());
    double time = 0;
    const float dt = 0.1f;
    for (float collective : {1.0f, 0.5f}) {
        Engine::get()->beginFrame(dt);
        time += static_cast<double>(dt);
        heli->m_collective = collective;
        fly(10);
        const double c = static_cast<double>(collective);
        EXPECT_NEAR(field(0), c * 2 * (0.7 + 0.3 * std::sin(25 * time)), 1e-6);
        EXPECT_NEAR(field(1), c * 0.6, 1e-6);
        EXPECT_NEAR(field(2), c * 0.4, 1e-6);
    }
    heli->m_collective = NO_NUMBER;
    fly(10);
    EXPECT_EQ(field(0), 0);
    EXPECT_EQ(field(2), 0);
}

TEST_F(EffectsTest, WithoutItsNodesItSaysSoAndDoesNothing) {
    EXPECT_FALSE(make("node: {name: h, children: [{name: downwash}]}\n"));
    EXPECT_EQ(scene.log.lines, (std::vector<std::string>{"HeliEffectsKitCorax::init:can not find "
                                                         "\"downwash_spe\" node"}));
    fly(3);
    kit.update_fade(1);
}

} // namespace
