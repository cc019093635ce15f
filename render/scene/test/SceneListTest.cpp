// SPDX-License-Identifier: MIT
#include "render/scene/SceneList.h"

#include "ig/math/quat.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/Camera.h"
#include "ig/scene/Material.h"
#include "ig/scene/Mesh.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "testkit/TempFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

using namespace ig;

namespace {

/// An eye 100 m above the sea that looks north, light from the zenith; the first shadow map lies
/// 200 m behind the eye.
class SceneListOf : public testing::Test {
public:
    SceneListOf() {
        camera.setPerspective(50, 1, 0.1, 1e6);
        camera.setWgsPosition({-155, 20, 100});
        camera.setWgsHPR({0, 0, 0});
    }
    ~SceneListOf() override {
        world.clear();
        MaterialManager::release();
        PackageManager::release();
    }
    void gather() {
        view = FrameView(camera, 720, true);
        const dvec3 up = view.frame.getZ();
        shadows.follow(view.eye, view.eye - view.frame.getY() * 200, up);
        list.gather(world, view, &shadows);
        list.sort();
    }
    /// Puts it so many metres ahead of the eye and to its right; the world owns it.
    template <class T>
    T* place(T* node, double ahead, double right = 0) {
        node->setTransform(camera.getWorldTransform() * translate(dvec3(right, 0, -ahead)));
        world.addNode(node);
        return node;
    }
    ObjectMesh* addCard(double ahead, double right = 0, float opacity = 1) {
        ObjectMesh* card = place(new ObjectMesh(mesh), ahead, right);
        card->setSurfaceMaterial(0, material(opacity));
        return card;
    }
    Material* material(float opacity) {
        materials.push_back(std::make_unique<Material>());
        materials.back()->addValue("diffuse_color", {0.5f, 0.5f, 0.5f, opacity});
        return materials.back().get();
    }
    static std::shared_ptr<const Mesh> square() {
        Mesh::Surface s;
        s.positions = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
        s.normals.assign(4, {0, 0, 1});
        s.indices = {0, 1, 2, 0, 2, 3};
        return std::make_shared<Mesh>(std::vector<Mesh::Surface>{s});
    }

    std::vector<std::unique_ptr<Material>> materials; // outlive the world
    const std::shared_ptr<const Mesh> mesh = square();
    World world;
    Camera camera;
    FrameView view;
    ShadowPlace shadows{1024};
    SceneList list;
};

} // namespace

TEST_F(SceneListOf, HoldsWhatIsSeenAndWhatCastsAShadow) {
    addCard(50);
    ObjectMesh* const hidden = addCard(60);
    ObjectMesh* const below_hidden = new ObjectMesh(mesh);
    hidden->addChild(below_hidden);
    hidden->setEnabled(false);
    ObjectMesh* const own = addCard(70);
    list.left_out = own;
    addCard(50, 40);        // beside the picture
    addCard(20000);         // less than a third of a pixel
    addCard(600);           // too small for the wide maps
    addCard(-200);          // behind the eye, among what casts shadows
    addCard(-1000);         // seen nowhere
    addCard(-200, 0, 0.5f); // glass casts none
    gather();
    EXPECT_EQ(list.opaque.size(), 2U);
    EXPECT_TRUE(list.transparent.empty());
    ASSERT_EQ(list.casters.size(), 3U); // in the scene's order
    EXPECT_EQ(list.casters.at(0).maps, 2U);
    EXPECT_EQ(list.casters.at(2).maps, 3U);

    hidden->setEnabled(true);
    list.left_out = nullptr;
    own->setTransform(own->getTransform() * dmat4(dmat3{{5, 0, 0}, {0, 5, 0}, {0, 0, 5}}, dvec3()));
    gather();
    EXPECT_EQ(list.opaque.size(), 5U);
    ASSERT_EQ(list.casters.size(), 6U);
    EXPECT_NEAR(list.casters.at(3).radius, 5 * std::sqrt(2), 1e-4);
    EXPECT_EQ(list.casters.at(3).maps, 6U); // large enough for a wider one

    own->setTransform(camera.getWorldTransform() * translate(dvec3(0, 0, 200)));
    list.focus = own; // what goes with it changes no other map than the one that does
    gather();
    EXPECT_EQ(list.casters.at(3).maps, 1U);
}

TEST_F(SceneListOf, ShowsTheLevelOfDetailThatItsSizeAsksForWithoutFlicker) {
    Mesh::Surface coarse = square()->getSurface(0), fine = coarse;
    coarse.stands_for = 0;
    const auto far = std::make_shared<const Mesh>(std::vector{coarse});
    const auto model =
        std::make_shared<const Mesh>(std::vector{fine}, std::vector<Mesh::Coarser>{{2, far}});
    auto* card = place(new ObjectMesh(model), 10);
    card->setSurfaceMaterial(0, material(1));
    const float radius = static_cast<float>(model->getBounds().radius);
    const auto shown = [&](float pixels) { // across
        const double away = 2 * radius / (pixels * view.pixel_angle);
        card->setTransform(camera.getWorldTransform() * translate(dvec3(0, 0, -away)));
        gather();
        EXPECT_TRUE(list.casters.empty() ||
                    list.casters[0].mesh->get() == list.opaque[0].mesh->get());
        EXPECT_EQ(list.opaque[0].look.color.x, 0.5f) << "the object's material";
        return list.opaque[0].mesh->get();
    };
    gather();
    EXPECT_EQ(shown(400), model.get());
    EXPECT_EQ(shown(160), model.get()) << "there is no level 1";
    EXPECT_EQ(shown(149), far.get());
    EXPECT_EQ(shown(160), far.get()) << "within the margin";
    EXPECT_EQ(shown(176), model.get());
    EXPECT_EQ(shown(160), model.get());
    EXPECT_EQ(shown(20), far.get()) << "there is no coarser one";
}

TEST_F(SceneListOf, LampWithAnIntensityLightsAlsoFromOutsideThePicture) {
    Material* const dim = material(1);
    dim->addSlider("density", 0.5f);
    auto* behind = place(new ObjectLight(), -30);
    behind->setSurfaceMaterial(0, dim);
    behind->setIntensity(200, 40);
    behind->setCone({10, 60});
    place(new ObjectLight(), -30)->setIntensity(200, 5); // too far behind to reach
    auto* fire = place(new ObjectParticles(), 20);
    auto* glow = new ObjectLight();
    glow->setIntensity(1e6f);
    fire->addChild(glow);
    gather();
    for (const LampItem& lamp : list.lamps)
        EXPECT_EQ(lamp.glow, 0) << "behind the eye, where only the sea mirrors it";
    EXPECT_EQ(list.lamps.size(), 2U) << "the fire is seen as flames";
    ASSERT_EQ(list.lights.size(), 2U);
    const LightItem& lamp = list.lights[0];
    EXPECT_NEAR(lamp.position.y, -30, 1e-3);
    EXPECT_NEAR(lamp.color.x, 200 * 0.5 * 0.5, 1e-3);
    EXPECT_NEAR(lamp.axis.z, 1, 1e-6) << "the camera's Y, which is up";
    EXPECT_NEAR(lamp.cone.y, 0.5, 1e-6);
    EXPECT_EQ(lamp.emitter, nullptr);
    EXPECT_EQ(list.lights[1].emitter, fire);
    EXPECT_NEAR(list.lights[1].reach, std::sqrt(1e6 / 0.05), 1);
    EXPECT_NE(list.lights[1].number, lamp.number);
}

TEST_F(SceneListOf, LampIsSeenDimlyFromBeyondItsCone) {
    for (const double off : {0.0, 40.0, 90.0}) { // the way to the eye
        auto* lamp = place(new ObjectLight(), 10);
        lamp->setCone({30, 50});
        lamp->setTransform(lamp->getTransform() * dmat4(dquat(90 + off, 0, 0), dvec3()));
    }
    gather();
    ASSERT_EQ(list.lamps.size(), 3U);
    EXPECT_NEAR(list.lamps[0].power, 1, 1e-3);
    EXPECT_GT(list.lamps[1].power, 0.4f);
    EXPECT_LT(list.lamps[1].power, 0.8f);
    EXPECT_LT(list.lamps[2].power, 0.2f);
}

TEST_F(SceneListOf, LampIsSeenFromItsSectorsAndAStabilizedOneStaysLevelOnARollingShip) {
    LightSector port, stern;
    port.azimuth = {-112.5f, 0};
    port.color = vec3(1, 0, 0);
    stern.azimuth = {112.5f, 247.5f};
    stern.elevation = {-1, 1};
    auto* ship = place(new Node(), 500); // as high as the eye, which sees it from 180 - heading
    auto* lamp = new ObjectLight();
    lamp->setSectors({port, stern});
    lamp->setStabilized(true);
    ship->addChild(lamp);
    const auto color = [&](double heading, double roll) {
        ship->setWgsHPR({heading, 0, roll});
        gather();
        return list.lamps.empty() ? vec3() : list.lamps[0].color;
    };
    EXPECT_EQ(color(-67.45, 0), vec3(1, 1, 1)) << "at 247.45, which is -112.55";
    EXPECT_EQ(color(-67.55, 0), vec3(1, 0, 0)) << "at -112.45";
    EXPECT_EQ(color(179.9, 0), vec3()) << "at 0.1";
    EXPECT_EQ(color(40, 20), vec3(1, 1, 1));
    lamp->setStabilized(false);
    EXPECT_EQ(color(40, 20), vec3()) << "its sector leans with the deck";

    lamp->setSectors({});
    lamp->setStabilized(true);
    lamp->setPosition({10, 0, 0});
    EXPECT_EQ(color(90, 30), vec3(1, 1, 1));
    EXPECT_LT(length(list.lamps.at(0).position - vec3(0, 490, 0)), 0.02f) << "10 m to starboard";
}

TEST_F(SceneListOf, LampFadesByTheSquareOfTheDistanceAndShowsWhatItsSwitchSays) {
    Material* const lit = material(1);
    lit->addSlider("density", 0.5f);
    lit->addSlider("override", 0);
    for (const double ahead : {100, 2000, 4000}) {
        auto* lamp = place(new ObjectLight(), ahead);
        lamp->setSurfaceMaterial(0, lit);
        lamp->setNominalRange(4000);
    }
    gather();
    ASSERT_EQ(list.lamps.size(), 3U);
    EXPECT_EQ(list.lamps[0].glow, 0.5f) << "as bright as a picture can show";
    EXPECT_GT(list.lamps[0].size, 1.2f * list.lamps[2].size * 100 / 4000) << "it dazzles";
    EXPECT_NEAR(list.lamps[1].glow, 4 * list.lamps[2].glow, 1e-5);
    EXPECT_EQ(list.lamps[2].power, 0.5f) << "what the sea mirrors fades by itself";
    for (const auto& [override, lamps] : {std::pair(1.0f, 3U), {-1.0f, 0U}}) {
        lit->setParameterSliderByName("override", override);
        gather();
        EXPECT_EQ(list.lamps.size(), lamps);
        EXPECT_TRUE(list.lamps.empty() || list.lamps[0].power == override);
    }
}

TEST_F(SceneListOf, TellsThingsByTheirType) {
    Material* const dark = material(1);
    dark->addSlider("density", 0);
    Material* const picture = material(1);
    picture->setTexture("base_color", "soot.png");
    place(new ObjectLight(), 10);
    place(new ObjectLight(), 10)->setSurfaceMaterial(0, dark);
    place(new ObjectLight(), -10);
    const auto* wake = place(new DecalOrtho(), -10);
    auto* soot = place(new DecalOrtho(), -10);
    soot->setSurfaceMaterial(0, picture);
    const auto* field = place(new NodeField(), -10);
    const auto* sea = place(new ObjectOcean(), 0);
    const auto* land = place(new ObjectTerrain(), 0);
    gather();
    EXPECT_EQ(list.lamps.size(), 2U);
    EXPECT_EQ(list.decals, std::vector<const DecalOrtho*>{wake});
    EXPECT_EQ(list.pictures, std::vector<const DecalOrtho*>{soot});
    EXPECT_EQ(list.fields, std::vector<const NodeField*>{field});
    EXPECT_EQ(list.ocean, sea);
    EXPECT_EQ(list.terrain, land);
    EXPECT_TRUE(list.opaque.empty());

    world.clear();
    gather();
    EXPECT_TRUE(list.lamps.empty() && list.decals.empty() && list.fields.empty());
    EXPECT_TRUE(!list.ocean && !list.terrain);
}

TEST_F(SceneListOf, CablesAreMeshesNearbyAndLinesFarAway) {
    const auto hang = [this](double ahead) {
        auto* cable = new ObjectRope(0.05f, material(1));
        cable->setBody(new BodyRope(10, 1));
        place(cable, ahead);
        world.updatePhysics(0.1f);
        gather();
    };
    hang(20);
    EXPECT_EQ(list.opaque.size(), std::size_t{BodyRope::SEGMENTS});
    EXPECT_TRUE(list.cables.empty());
    world.clear();
    hang(400);
    EXPECT_EQ(list.cables.size(), std::size_t{BodyRope::SEGMENTS});
    EXPECT_TRUE(list.opaque.empty());
}

TEST_F(SceneListOf, PrefabsInPrefabsAreLookedInto) {
    WorkingFolder folder;
    folder.write("inner.prefab", "node: {type: field, children: [{type: light}]}\n");
    folder.write("outer.prefab", "node: {name: top, children: [{name: slot, type: prefab, "
                                 "path: inner.prefab}, {type: light}]}\n");
    auto* outer = place(new ObjectPrefab("outer.prefab"), 10);
    gather();
    EXPECT_EQ(list.lamps.size(), 2U);
    EXPECT_EQ(list.fields.size(), 1U);
    outer->getNodeByName("slot")->setEnabled(false);
    gather();
    EXPECT_EQ(list.lamps.size(), 1U);
    EXPECT_TRUE(list.fields.empty());
}

TEST_F(SceneListOf, EqualThingsAdjoinAndGlassGoesFarToNear) {
    const std::shared_ptr<const Mesh> other = square();
    for (int i = 0; i < 6; i++)
        place(new ObjectMesh(i % 2 ? mesh : other), 30 + i);
    for (const double ahead : {40, 20, 60})
        addCard(ahead, 0, 0.5f);
    gather();
    ASSERT_EQ(list.opaque.size(), 6U);
    int changes = 0;
    for (std::size_t i = 1; i < 6; i++)
        changes += *list.opaque[i].mesh != *list.opaque[i - 1].mesh;
    EXPECT_EQ(changes, 1);
    ASSERT_EQ(list.transparent.size(), 3U);
    EXPECT_NEAR(list.transparent[0].distance, 60, 1e-3);
    EXPECT_NEAR(list.transparent[2].distance, 20, 1e-3);

    for (int i = 0; i < 40; i++) { // more than a sort leaves in order by itself
        place(new ObjectMesh(mesh), 30);
        addCard(20, 0, 0.5f);
    }
    gather();
    const auto earlier = [](const MeshItem& a, const MeshItem& b) { return a.order < b.order; };
    EXPECT_TRUE(std::is_sorted(list.opaque.end() - 40, list.opaque.end(), earlier) ||
                std::is_sorted(list.opaque.begin(), list.opaque.end() - 6, earlier));
    EXPECT_TRUE(std::is_sorted(list.transparent.end() - 41, list.transparent.end(), earlier));

    const MeshItem* memory = list.opaque.data();
    gather(); // neither twice the things nor new memory
    EXPECT_EQ(list.opaque.size(), 46U);
    EXPECT_EQ(list.opaque.data(), memory);
}

TEST_F(SceneListOf, PanesAroundTheEyeAreToldFromOtherGlass) {
    const auto add = [this](double ahead, const char* tag, float rain) {
        addCard(ahead, 0, 0.3f);
        materials.back()->addSlider(tag, rain);
    };
    add(1, "rain_power", 0);
    add(2, "rain_power", 0.5f);
    add(5, "rain_power", 0.5f); // drops are too small to be told
    add(1, "rain", 1);          // none that rain falls on
    gather();
    ASSERT_EQ(list.panes.size(), 2U);
    EXPECT_EQ(list.panes[0].cover, PaneCover::rain);
    EXPECT_EQ(list.panes[1].cover, PaneCover::nothing);
    EXPECT_EQ(list.transparent.size(), 2U);
    list.snow_on_glass = true;
    gather();
    EXPECT_EQ(list.panes.at(0).cover, PaneCover::snow);
    EXPECT_EQ(list.panes.at(1).cover, PaneCover::snow);
}

TEST_F(SceneListOf, ABladesAngleCountsFromItsCarrier) {
    WorkingFolder folder;
    folder.write("lip.mat", "parameters: {wipes: 1}\n");
    folder.write("lip.obj", "o lip\nv -0.1 0.2 0\nv 0.1 0.2 0\nv 0 0.7 0\nf 1 2 3\n");
    folder.write(
        "cab.prefab",
        "node: {children: [{position: [1, 2, 0], rotation: [0, 0, -90], children: [{name: "
        "arm, children: [{type: mesh, mesh: lip.obj, surfaces: [{material: lip.mat}]}]}]}]}\n");
    auto* cab = place(new ObjectPrefab("cab.prefab"), 10);
    Node* const arm = cab->getNodeByName("arm"); // along the cab's X
    for (const double turn : {0.0, 30.0, -50.0}) {
        cab->setTransform(cab->getTransform() *
                          dmat4(dquat(dvec3(1, 2, 3), turn), dvec3(0.3, 0, 0)));
        arm->setRotation(dquat(dvec3(0, 0, 1), turn));
        gather();
        ASSERT_EQ(list.blades.size(), 1U);
        const BladeItem& blade = list.blades[0];
        EXPECT_NEAR(blade.angle * RAD_TO_DEG<float>, turn, 1e-3);
        EXPECT_NEAR(blade.inner, 0.2, 1e-6);
        EXPECT_NEAR(blade.outer, 0.7, 1e-6);
        const dmat4& pose = cab->getWorldTransform();
        const auto at = [&](const dvec3& p) { return vec3(view.toFrame(pose * p)); };
        EXPECT_LT(length(blade.pivot - at({1, 2, 0})), 1e-3f);
        EXPECT_LT(length(blade.pivot + blade.ahead - at({2, 2, 0})), 1e-3f);
        EXPECT_LT(length(blade.pivot + blade.aside - at({1, 3, 0})), 1e-3f);
    }
    place(new ObjectPrefab("cab.prefab"), -1); // out of view, but what it wiped may be in view
    place(new ObjectPrefab("cab.prefab"), -10);
    gather();
    EXPECT_EQ(list.blades.size(), 2U);
}

TEST_F(SceneListOf, EveryPrefabBlowsOnTheSeaAsItsFileSays) {
    WorkingFolder folder;
    folder.write("large.prefab", "node: {type: downdraught, radius: 9.5}\n");
    folder.write("small.prefab", "node: {name: mast, children: [{name: wind, type: downdraught, "
                                 "position: [0, 0, -5], radius: 4, fades: [10, 20]}]}\n");
    const auto fly = [this](const char* path, double metres_north, double altitude) {
        auto* aircraft = new ObjectPrefab(path);
        aircraft->setWgsPosition({-155, 20 + metres_north / 110704, altitude});
        world.addNode(aircraft);
        return aircraft->getNodeByName("wind");
    };
    fly("small.prefab", 300, 15); // half way, the wind's node 5 m lower
    fly("small.prefab", 200, 5)->setEnabled(false);
    fly("large.prefab", 400, 31); // beyond the default
    fly("large.prefab", 100, 7);
    gather();
    gather(); // not twice the winds
    ASSERT_EQ(list.downdraughts.size(), 2U);
    const vec4 near = list.downdraughts[0], far = list.downdraughts[1];
    EXPECT_LT(std::hypot(near.x, near.y - 100), 0.1f);
    EXPECT_EQ(near.z, 9.5f);
    EXPECT_EQ(near.w, 1);
    EXPECT_LT(std::hypot(far.x, far.y - 300), 0.1f);
    EXPECT_EQ(far.z, 4);
    EXPECT_NEAR(far.w, 0.5, 1e-4);
}
