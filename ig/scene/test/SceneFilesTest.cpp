// SPDX-License-Identifier: MIT
#include "ig/math/EllipsoidModel.h"
#include "ig/package/PackageManager.h"
#include "ig/physics/Body.h"
#include "ig/physics/Joint.h"
#include "ig/scene/Camera.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/Track.h"
#include "ig/scene/World.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>

namespace ig {
namespace {

const EllipsoidModel EARTH;

struct SceneFiles : testing::Test {
    ~SceneFiles() override {
        world.clear();
        MaterialManager::release();
        Mesh::release();
        PackageManager::release();
    }
    bool load(const std::string& text) {
        folder.write("a.world", text);
        PackageManager::release();
        return world.load("a.world");
    }
    Object* object(const char* name) { return static_cast<Object*>(world.getNodeByName(name)); }
    bool logged(const std::string& part) {
        return std::any_of(log.lines.begin(), log.lines.end(), [&](const std::string& line) {
            return line.find(part) != std::string::npos;
        });
    }
    void fall(int frames) {
        for (int i = 0; i < frames; i++)
            world.updatePhysics(1 / 60.0f);
    }
    static double altitude(const Node* node) { return EARTH.getAltitude(node->getWorldPosition()); }
    WorkingFolder folder;
    LogCapture log;
    World world;
};

// Two groups, the second of two materials; a tetrahedron and a square cut into two triangles.
const char* const TWO_PARTS = R"(mtllib parts.mtl
o tetra
v 0 0 0
v 1 0 0
v 0 1 0
v 0 0 1
usemtl red
f 1 3 2
f 1 2 4
f 1 4 3
f 2 3 4
o square
v 0 0 5
v 2 0 5
v 2 2 5
v 0 2 5
usemtl red
f 5 6 7
usemtl blue
f 5 7 8
)";

TEST_F(SceneFiles, MeshPartsSurfacesAndTheirSwitches) {
    folder.write("parts.obj", TWO_PARTS);
    folder.write("parts.mtl", "newmtl red\nKd 1 0 0\nnewmtl blue\nKd 0 0 1\n");
    folder.write("red.mat", "parameters: {diffuse_color: [1, 0, 0, 0.5], density: 0.25}\n");
    ASSERT_TRUE(load("nodes:\n"
                     "- {name: all, type: mesh, mesh: parts.obj}\n"
                     "- name: square\n  type: mesh\n  mesh: parts.obj#square\n"
                     "  surfaces: [{material: red.mat}, {intersect: false}]\n"));
    EXPECT_TRUE(log.lines.empty()) << log.lines.front();
    EXPECT_EQ(object("all")->getNumSurfaces(), 3);
    Object* square = object("square");
    ASSERT_EQ(square->getNumSurfaces(), 2);
    dvec3 hit;
    // Over the first triangle (x > y) and the second, which takes no part.
    EXPECT_TRUE(square->getIntersection(0, {1.5, 0.5, 9}, {1.5, 0.5, -9}, &hit));
    EXPECT_LT(length(hit - dvec3(1.5, 0.5, 5)), 1e-9);
    EXPECT_FALSE(square->getIntersection(1, {0.5, 1.5, 9}, {0.5, 1.5, -9}, &hit));
    EXPECT_FALSE(square->getIntersection(0, {0.5, 1.5, 9}, {0.5, 1.5, -9}, nullptr));
    Material* red = square->getSurfaceMaterial(0);
    ASSERT_NE(red, nullptr);
    EXPECT_EQ(red->getParameterValue(red->findParameterIDByTag("diffuse_color")),
              vec4(1, 0, 0, 0.5f));
    square->setSurfaceMaterialInherit(0, true); // a copy that changes alone
    Material* own = square->getSurfaceMaterial(0);
    own->setParameterSlider(own->findParameterIDByTag("density"), 1);
    EXPECT_EQ(red->getParameterSlider(red->findParameterIDByTag("density")), 0.25f);
    square->setSurfaceMaterialInherit(0, false);
    EXPECT_EQ(square->getSurfaceMaterial(0), red);
}

TEST_F(SceneFiles, GltfIsTurnedFromYUp) {
    // One triangle (0,0,0) (1,0,0) (0,0,-1) in a base64 buffer; glTF: Y up, −Z ahead.
    folder.write("t.gltf", R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
"nodes":[{"name":"t","mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
"buffers":[{"byteLength":36,"uri":"data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAAAAAAIC/"}],
"bufferViews":[{"buffer":0,"byteLength":36}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,-1],"max":[1,0,0]}]})");
    const auto mesh = Mesh::get("t.gltf");
    ASSERT_NE(mesh, nullptr);
    const auto& positions = mesh->getSurface(0).positions;
    ASSERT_EQ(positions.size(), 3u);
    EXPECT_EQ(positions[1], vec3(1, 0, 0));
    EXPECT_EQ(positions[2], vec3(0, 1, 0)); // ahead is Y
    EXPECT_NEAR(mesh->getSurface(0).normals[0].z, 1, 1e-6);
}

TEST_F(SceneFiles, EverySlipIsReportedWithItsLineAndTheRestIsLoaded) {
    folder.write("bad.obj", "v 1 2 3\n");
    folder.write("lines.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nl 1 2\nf 1 2 3\n");
    folder.write("huge.obj", "v 3e38 0 0\nv -3e38 0 0\nv 0 1 0\nf 1 2 3\n");
    folder.write("bad.mat", "parameters:\n  a: 1\n  b: red\n");
    folder.write("bad_state.mat", "parameters: {a: 1}\nstates:\n  fan: [1, 2]\n");
    ASSERT_TRUE(load("nodes:\n"
                     "- {name: good, position: [1, 2, 3]}\n"
                     "- {name: typo, tpye: mesh}\n"
                     "- {name: short, position: [1, 2]}\n"
                     "- {name: text, rotation: [a, b, c]}\n"
                     "- {name: alien, type: spaceship}\n"
                     "- {name: lost, type: mesh, mesh: nowhere.obj}\n"
                     "- {name: points, type: mesh, mesh: bad.obj}\n"
                     "- {name: ghost, body: {mass: 1, shapes: [{type: box, size: [0, 1, 1]}]}}\n"
                     "- {name: fog, type: particles, material: bad.mat}\n"
                     "- {name: child, children: [{name: kid, type: mehs}]}\n"
                     "- 7\n"
                     "- {name: lines, type: mesh, mesh: lines.obj}\n"
                     "- {name: huge, type: mesh, mesh: huge.obj}\n"
                     "- {name: twice, type: mesh, mesh: nowhere.obj}\n"
                     "- {name: spray, type: particles, surface: air, material: bad_state.mat}\n"
                     "- {name: moor, children: [{name: buoy, wgs: [1, 2, 3]}]}\n"
                     "- {name: swapped, wgs: [19.7, -155, 3]}\n"
                     "- {name: beyond, wgs: [200, 99, 3]}\n"
                     "- {name: round, wgs: [358, 40, 0]}\n"));
    EXPECT_NE(world.getNodeByName("good"), nullptr);
    for (const char* name : {"short", "text", "alien", "kid", "buoy", "swapped", "beyond"})
        EXPECT_EQ(world.getNodeByName(name), nullptr) << name;
    for (const char* name : {"typo", "ghost", "fog", "child", "lines", "moor", "round"})
        EXPECT_NE(world.getNodeByName(name), nullptr) << name;
    for (const char* name : {"lost", "points", "huge"}) { // a cube that nothing meets
        auto* object = dynamic_cast<ObjectMesh*>(world.getNodeByName(name));
        ASSERT_TRUE(object && object->getNumSurfaces() == 1) << name;
        EXPECT_FALSE(object->isIntersection(0));
    }
    for (const char* part :
         {"a.world:3: unknown key \"tpye\"; nearest is \"type\"",
          "a.world:4:", "a.world:5:", "a.world:6: unknown type of node \"spaceship\"",
          "a.world:7: no mesh", "nowhere.obj", "a.world:9: unknown shape",
          "bad.mat:3:", "a.world:11: unknown type of node \"mehs\"; nearest is \"mesh\"",
          "a.world:12: a map is needed", "1e7 m", "a.world:16: unknown surface",
          "bad_state.mat:3: state \"fan\"", "a.world:17: \"wgs\"",
          "a.world:18: latitude and longitude are exchanged", "a.world:19: longitude within"})
        EXPECT_TRUE(logged(part)) << part;
    EXPECT_EQ(std::count_if(log.lines.begin(), log.lines.end(),
                            [](const std::string& line) {
                                return line.find("Mesh::get: \"nowhere.obj\"") == 0;
                            }),
              1);
}

TEST_F(SceneFiles, WorldsWithoutAListOfNodesAreOneMessage) {
    for (const char* text : {"knots: []\n", "nodes: 5\n"}) {
        log.lines.clear();
        EXPECT_FALSE(load(text));
        EXPECT_EQ(log.lines.size(), 1u) << text;
    }
}

TEST_F(SceneFiles, AWorldNamesWhatComesLater) {
    EXPECT_TRUE(load("nodes: []\nlater: [a.prefab, {path: b.prefab}, c.prefab]\n"));
    ASSERT_EQ(world.getLaterPrefabs().size(), 2);
    EXPECT_EQ(world.getLaterPrefabs()[1], jString("c.prefab"));
    EXPECT_TRUE(logged("world:2: a list of paths of prefabs is needed in \"later\""));
    EXPECT_EQ(log.lines.size(), 1u);
}

TEST_F(SceneFiles, PrefabsNestAndOneThatHoldsItselfEnds) {
    folder.write("inner.prefab", "node: {name: inner_root, children: [{name: leaf}]}\n");
    folder.write("outer.prefab", "node: {name: outer_root, children: [{name: slot, type: prefab, "
                                 "path: inner.prefab}]}\n");
    std::string loop_text = "node: {name: loop, children: [";
    for (int i = 0; i < 10; i++)
        loop_text += "{type: prefab, path: loop.prefab},";
    folder.write("loop.prefab", loop_text + "]}\n"); // ten to the depth, if it were followed
    const ObjectPrefab outer("outer.prefab");
    ASSERT_TRUE(outer.isLoaded());
    Node* leaf = outer.getNodeByName("leaf");
    ASSERT_NE(leaf, nullptr);
    EXPECT_EQ(leaf->getPrefabRoot()->getName(), "slot");
    EXPECT_EQ(outer.getRoot()->getPrefabRoot(), &outer);
    const ObjectPrefab loop("loop.prefab");
    EXPECT_TRUE(logged("holds itself"));
    log.lines.clear();
    const ObjectPrefab none("none.prefab"), again("none.prefab");
    EXPECT_FALSE(none.isLoaded());
    EXPECT_EQ(log.lines.size(), 1u); // once per path
}

TEST_F(SceneFiles, SmallFilesThatAskForEndlessNodesAreRefusedEarly) {
    folder.write("0.prefab", "node: {name: leaf}\n");
    for (int i = 1; i <= 8; i++) { // each holds ten of the one before: 10^8 leaves
        std::string text = "node: {children: [";
        for (int k = 0; k < 10; k++)
            text += "{type: prefab, path: " + std::to_string(i - 1) + ".prefab},";
        folder.write(std::to_string(i) + ".prefab", text + "]}\n");
    }
    EXPECT_TRUE(load("nodes: [{type: prefab, path: 8.prefab}, {type: prefab, path: 8.prefab}]"));
    EXPECT_TRUE(logged("too many nodes"));
    EXPECT_EQ(log.lines.size(), 1u);
    ASSERT_TRUE(load("nodes: [{name: after}]")); // counts anew
    EXPECT_NE(world.getNodeByName("after"), nullptr);

    // Without triangles: what the importer itself would say.
    const auto gltf = [this](const char* name, const std::string& nodes) {
        folder.write(name,
                     R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[)" +
                         nodes + "]}");
        log.lines.clear();
        EXPECT_EQ(Mesh::get(name), nullptr);
        return log.lines.at(0);
    };
    std::string deep, shared,
        sound = R"({"children":[1,2]},{"name":"children"},{"children":[3]},{})";
    for (int i = 1; i <= 60'000; i++)
        deep += R"({"children":[)" + std::to_string(i) + "]},";
    for (int i = 1; i <= 30; i++)
        shared += R"({"children":[)" + std::to_string(i) + "," + std::to_string(i) + "]},";
    EXPECT_NE(gltf("deep.gltf", deep + "{}").find("nested more than"), std::string::npos);
    EXPECT_NE(gltf("shared.gltf", shared + "{}").find("shared counted each time"),
              std::string::npos);
    EXPECT_NE(gltf("loop.gltf", R"({"children":[0]})").find("below itself"), std::string::npos);
    EXPECT_NE(gltf("brackets.gltf", std::string(60'000, '[')).find("brackets"), std::string::npos);
    EXPECT_NE(gltf("sound.gltf", sound).find("no triangles"), std::string::npos);
    ASSERT_EQ(mkfifo("pipe.gltf", 0600), 0);
    EXPECT_EQ(Mesh::get("pipe.gltf"), nullptr);
    EXPECT_NE(log.lines.back().find("not a regular file"), std::string::npos);
}

TEST_F(SceneFiles, BodyOfTheRootMovesThePrefabOnceHandedOver) {
    folder.write("box.prefab", "node: {name: r, body: {mass: 10, center: [0, 0, 0.5], shapes: "
                               "[{type: box, size: [1, 1, 1]}]}, children: [{name: lid}]}\n");
    auto* prefab = new ObjectPrefab("box.prefab");
    prefab->setWorldTransform(EARTH.getWGSTransform(EARTH.toWorld({10, 20, 500})));
    prefab->moveBodyFromRoot();
    ASSERT_NE(prefab->getBodyRigid(), nullptr);
    EXPECT_EQ(static_cast<Object*>(prefab->getRoot())->getBody(), nullptr);
    world.addNode(prefab);
    fall(60);
    const double fallen = 500 - altitude(prefab);
    EXPECT_NEAR(fallen, 9.80665 / 3600 * 60 * 61 / 2, 1e-3);
    EXPECT_NEAR(altitude(prefab->getNodeByName("lid")), 500 - fallen, 1e-6);
    // Placing it stops it; disabling it lets it follow the node.
    prefab->setWorldPosition(EARTH.toWorld({10, 20, 300}));
    EXPECT_EQ(length(prefab->getBodyRigid()->getLinearVelocity()), 0);
    prefab->getBody()->setEnabled(false);
    fall(6);
    prefab->setWorldPosition(EARTH.toWorld({10, 20, 200}));
    EXPECT_NEAR(EARTH.getAltitude(prefab->getBody()->getTransform().getTranslate()), 200, 1e-8);
    world.removeNode(prefab);
    EXPECT_TRUE(world.getPhysics().getBodies().empty());
}

TEST_F(SceneFiles, BodyBelowAMovedNodeIsCarriedAlongAndFallsUndisturbedOtherwise) {
    ASSERT_TRUE(load("nodes:\n- name: rack\n  wgs: [10, 20, 100]\n  children:\n"
                     "  - {name: bomb, position: [0, 0, -2], body: {mass: 5, shapes: "
                     "[{type: sphere, radius: 0.2}]}}\n"));
    Node* bomb = world.getNodeByName("bomb");
    fall(30);
    const double speed = length(object("bomb")->getBodyRigid()->getLinearVelocity());
    EXPECT_NEAR(speed, 9.80665 / 2, 1e-3); // reading its own pose back doesn't stop it
    const dvec3 offset = bomb->getPosition();
    world.getNodeByName("rack")->setWgsPosition({10, 20, 400});
    world.updatePhysics(1 / 60.0f);
    EXPECT_LT(length(bomb->getPosition() - offset), 0.01);
    EXPECT_LT(length(object("bomb")->getBodyRigid()->getLinearVelocity()), 0.2);
}

TEST_F(SceneFiles, CableHangsFromItsAnchorAndWhatIsNamedWronglyIsReported) {
    folder.write("cable.prefab", R"(node:
  name: root
  children:
  - {name: anchor, body: {mass: 0}}
  - {name: rope, type: rope, radius: 0.01, body: {type: rope, length: 2, factor: 1.5, anchor: anchor}}
  - name: load
    body:
      mass: 50
      shapes: [{type: sphere, radius: 0.2}]
      drag: [{node: sail, area: 4}, {node: none, area: 4}]
      joints:
      - {name: hook, rope: rope}
      - {name: hook, rope: anchor}
  - {name: sail, enabled: false}
  - {name: bad, type: rope, radius: 0.01, body: {type: rope, length: -1}}
  - {name: thin, type: rope}
  - {name: load, type: rope, radius: 0.01, body: {type: rope, length: 1, anchor: anchor}}
)");
    ASSERT_TRUE(
        load("nodes:\n- {name: cable, type: prefab, path: cable.prefab, wgs: [-155, 20, 90]}\n"));
    EXPECT_TRUE(logged("cable.prefab:10: drag needs a node"));
    EXPECT_TRUE(logged("cable.prefab:13: no rope to hang the body from: \"anchor\""));
    EXPECT_TRUE(logged("cable.prefab:15: a rope needs a positive length"));
    EXPECT_TRUE(logged("cable.prefab:16: a rope needs a positive radius"));
    EXPECT_TRUE(logged("cable.prefab:17: another type of body already has the name \"load\""));
    EXPECT_EQ(log.lines.size(), 5u);

    auto* prefab = static_cast<ObjectPrefab*>(object("cable"));
    auto* cargo = static_cast<Object*>(prefab->getNodeByName("load"));
    fall(30);
    EXPECT_NEAR(altitude(cargo), 87, 1e-3);
    prefab->getNodeByName("sail")->setEnabled(true);
    prefab->getNodeByName("anchor")->setPosition({0, 0, 50}); // a jump: everything comes along
    fall(1);
    EXPECT_NEAR(altitude(cargo), 137, 1e-3);
    cargo->getBody()->getJoint(0)->setBroken(true);
    const auto speed = [cargo] { return length(cargo->getBodyRigid()->getLinearVelocity()); };
    fall(60);
    EXPECT_NEAR(speed(), 8.5, 0.1); // the sail brakes it
    prefab->getNodeByName("sail")->setEnabled(false);
    fall(60);
    EXPECT_NEAR(speed(), 18.3, 0.1);
    EXPECT_EQ(prefab->getNodeByName("rope")->getNumChildren(), BodyRope::SEGMENTS);
}

TEST_F(SceneFiles, LampTellsWhatItLightsAndOneThatMakesNoSenseIsLeftOut) {
    folder.write("lamps.prefab", R"(node:
  name: root
  children:
  - {name: spot, type: light, intensity: 2000, cone: [10, 16], beam: 0.5, flicker: 0.25, reach: 70}
  - {name: plain, type: light, intensity: 20}
  - {name: seen, type: light}
  - {name: dark, type: light, intensity: -1}
  - {name: thick, type: light, beam: 2}
  - {name: inside_out, type: light, cone: [40, 30]}
  - {name: wide, type: light, cone: [40, 200]}
)");
    ASSERT_TRUE(load("nodes:\n- {name: lamps, type: prefab, path: lamps.prefab}\n"));
    EXPECT_TRUE(logged("lamps.prefab:7: a number from 0 to 1e9 is needed in \"intensity\""));
    EXPECT_TRUE(logged("lamps.prefab:8: a number from 0 to 1 is needed in \"beam\""));
    EXPECT_TRUE(logged("lamps.prefab:9: a light's inner angle isn't larger than its outer one"));
    EXPECT_TRUE(logged("lamps.prefab:10: two numbers within limits are needed in \"cone\""));
    EXPECT_EQ(log.lines.size(), 4u);

    auto* prefab = static_cast<ObjectPrefab*>(object("lamps"));
    const auto find = [&](const char* name) {
        return static_cast<ObjectLight*>(prefab->getNodeByName(name));
    };
    EXPECT_EQ(find("spot")->getIntensity(), 2000);
    EXPECT_EQ(find("spot")->getReach(), 70);
    EXPECT_EQ(find("spot")->getCone(), vec2(10, 16));
    EXPECT_EQ(find("spot")->getBeam(), 0.5f);
    EXPECT_EQ(find("spot")->getFlicker(), 0.25f);
    EXPECT_NEAR(find("plain")->getReach(), 20, 1e-3) << "where it gives 0.05 lx";
    EXPECT_EQ(find("plain")->getCone(), vec2(180, 180));
    EXPECT_EQ(find("seen")->getIntensity(), 0);
    EXPECT_EQ(find("wide"), nullptr);
}

TEST_F(SceneFiles, LampWithASectorThatMakesNoSenseIsLeftOutWithTheReason) {
    folder.write("lamps.prefab", R"(node:
  children:
  - {name: stern, type: light, sector: [
      {azimuth: [112.5, 247.5]}, {elevation: [-1, 2.5], color: [1, 0, 0], brightness: 2}]}
  - {type: light, sector: [{azimuth: [10, -10]}]}
  - {type: light, sector: [{}, {azimuth: [-200, 200]}]}
  - {type: light, sector: [{elevation: [3, 2]}]}
  - {type: light, sector: [{color: [1, 0, -1]}]}
  - {type: light, sector: [{color: [1, 2, 0]}]}
  - {type: light, sector: [{brightness: 101}]}
  - {type: light, flash: [1, 1]}
)");
    ASSERT_TRUE(load("nodes:\n- {name: lamps, type: prefab, path: lamps.prefab}\n"));
    for (const char* reason :
         {"5: a sector goes clockwise", "6: a sector goes clockwise", "7: a sector goes up",
          "8: a sector's colour", "9: a sector's colour", "10: a number from 0 to 100 is",
          "11: a flash is"})
        EXPECT_TRUE(logged(std::string("lamps.prefab:") + reason)) << reason;
    auto* prefab = static_cast<ObjectPrefab*>(object("lamps"));
    EXPECT_EQ(prefab->getRoot()->getNumChildren(), 1);
    const auto& sectors = static_cast<ObjectLight*>(prefab->getNodeByName("stern"))->getSectors();
    ASSERT_EQ(sectors.size(), 2u);
    EXPECT_EQ(sectors[0].azimuth, vec2(112.5f, 247.5f));
    EXPECT_FALSE(sectors[0].color);
    EXPECT_EQ(sectors[1].elevation, vec2(-1, 2.5f));
    EXPECT_EQ(sectors[1].color, vec3(1, 0, 0));
    EXPECT_EQ(sectors[1].brightness, 2);
}

TEST_F(SceneFiles, TracksDriveSlidersAndSwitches) {
    folder.write("road.mat", "parameters: {wetness: 0.5}\n");
    folder.write("t.anim", "channels:\n"
                           "- {material: road.mat, parameter: wetness, keys: [[0, 0], [2, 1]]}\n"
                           "- {node: lamp, keys: [[0, 1], [6, 1], [7, 0]]}\n"
                           "- {node: nobody, keys: [[0, 1]]}\n");
    ASSERT_TRUE(load("nodes: [{name: lamp}]\n"));
    Track track;
    ASSERT_TRUE(track.load("t.anim", &world));
    EXPECT_TRUE(logged("t.anim:4: nothing to drive: \"nobody\""));
    const Material* road = MaterialManager::get("road.mat");
    const auto wetness = [&] {
        return road->getParameterSlider(road->findParameterIDByTag("wetness"));
    };
    track.set(0.5f);
    EXPECT_FLOAT_EQ(wetness(), 0.25f);
    EXPECT_TRUE(world.getNodeByName("lamp")->isEnabled());
    track.set(6.9f);
    EXPECT_FLOAT_EQ(wetness(), 1);
    EXPECT_FALSE(world.getNodeByName("lamp")->isEnabled());
    track.set(std::numeric_limits<float>::quiet_NaN());
    EXPECT_FLOAT_EQ(wetness(), 1);
    track.set(-5);
    EXPECT_FLOAT_EQ(wetness(), 0);
    folder.write("bad.anim", "channels:\n- {node: lamp, keys: [[0, 1], [0, 2]]}\n");
    EXPECT_FALSE(track.load("bad.anim", &world));
    EXPECT_TRUE(logged("bad.anim:2:"));
}

TEST_F(SceneFiles, MaterialsNameTheirTexturesAndTheirFaults) {
    folder.write("deck.mat", "parameters: {roughness: 1}\n"
                             "textures: {base_color: deck.png}\n");
    const Material* deck = MaterialManager::get("deck.mat");
    ASSERT_TRUE(deck);
    EXPECT_EQ(*deck->findTexture("base_color"), "deck.png");
    EXPECT_EQ(deck->findTexture("normal"), nullptr);
    folder.write("bad.mat", "parameters: {roughness: 1}\n"
                            "textures:\n  base_color: [a.png, b.png]\n");
    EXPECT_FALSE(MaterialManager::get("bad.mat"));
    EXPECT_TRUE(logged("bad.mat:3: texture \"base_color\" is no path"));
}

} // namespace
} // namespace ig
