// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"

#include <cmath>

namespace {

using namespace ig;

using Mode = Logic_Nerith_Heli_Final;
const EllipsoidModel EARTH;

struct NavigationTest : LogicTest {
    dvec3 position() { return scene.camera.getPosition(); }
    dvec3 axis(double x, double y, double z) {
        return scene.camera.getTransform().getMat3() * dvec3(x, y, z);
    }
    /// Moves the mouse by that many degrees to the right and down, as its sensitivity counts them.
    void move(float dx, float dy) {
        const float sensitivity = scene.control.getMouseSensitivity();
        scene.control.moveMouse(dx / sensitivity, dy / sensitivity);
        scene.frame();
    }
};

TEST_F(NavigationTest, OrbitTurnsAboutTheHelicopterAndTheLocalVertical) {
    const dvec3 pivot = heli().get_world_position(), arm = position() - pivot;
    const dvec3 up = EARTH.getUp(position());
    scene.control.setLeftButton(true);
    move(-90, 0);
    const dvec3 turned = position() - pivot;
    EXPECT_NEAR(length(turned), 25, 1e-7);
    EXPECT_LT(length(turned - cross(up, arm)), 1e-3);           // a quarter turn, counter-clockwise
    EXPECT_LT(length(axis(0, 0, 1) - normalize(turned)), 1e-9); // still looks at it
    move(0, 30);
    EXPECT_NEAR(dot(position() - pivot, up), 25 * std::sin(30 * DEG_TO_RAD<double>), 0.01);
    for (int i = 0; i < 40; i++) // as near as a metre
        logic().onMouseWheel({120, 1}, nullptr);
    EXPECT_NEAR(length(position() - pivot), 1, 1e-7);
}

TEST_F(NavigationTest, FreeFlightMovesAlongTheCamerasAxesAtItsSpeed) {
    logic().set_player_mode(Mode::PLAYER_MODE_FREE);
    logic().setCamSpeed(200);
    const auto moved = [&](std::initializer_list<int> keys) {
        const dvec3 before = position();
        scene.control.releaseAll();
        scene.control.setLeftButton(true);
        for (int key : keys)
            scene.control.keyDown(key);
        scene.frame(0.5f);
        return position() - before;
    };
    EXPECT_LT(length(moved({'w'}) - axis(0, 0, -100)), 1e-6);
    EXPECT_LT(length(moved({'a', KEY_SHIFT}) - axis(-400, 0, 0)), 1e-6);
    EXPECT_LT(length(moved({'s', 'd'}) - axis(100, 0, 100)), 1e-6);
    EXPECT_EQ(moved({'w', KEY_CTRL}), dvec3());
}

TEST_F(NavigationTest, MouseLookTurnsAboutTheVerticalAndTheCamerasOwnXAxis) {
    logic().set_player_mode(Mode::PLAYER_MODE_FREE);
    const dvec3 up = normalize(position()), ahead = axis(0, 0, -1);
    move(10, 10);
    EXPECT_EQ(axis(0, 0, -1), ahead); // no button
    scene.control.setRightButton(true);
    move(10, 0); // to the right
    EXPECT_LT(length(axis(0, 0, -1) - dquat(up, -10) * ahead), 1e-6);
    const dvec3 level = axis(0, 0, -1), right = axis(1, 0, 0);
    move(0, 20); // downwards
    EXPECT_LT(length(axis(0, 0, -1) - dquat(right, -20) * level), 1e-6);
}

// ------------------------------------------------------------------ views

TEST_F(NavigationTest, ViewsCycleAndEachPlacesTheCamera) {
    const dmat4 third = scene.camera.getTransform();
    logic().change_view();
    scene.frame();
    UdpRecvData record = LogicScene::record();
    record.altitude = 200;
    record.heading = 130;
    scene.tell(record);
    EXPECT_EQ(scene.camera.getTransform(), third); // free: nobody moves it
    logic().change_view();
    scene.frame();
    const dmat4 eye = scene.helicopterNode("cam_first_player")->getWorldTransform();
    EXPECT_LT(length(position() - eye.getTranslate()), 1e-8);
    EXPECT_LT(length(axis(0, 0, 1) - eye.getZ()), 1e-9);
    logic().change_view();
    // First exactly where the third view left it, then after the helicopter again.
    EXPECT_LT(length(position() - third.getTranslate()), 1e-8);
    EXPECT_LT(length(axis(0, 0, 1) - third.getZ()), 1e-9);
    // Whatever moved the helicopter since the update: the picture shows it in its place.
    heli().m_prefab->setWorldPosition(heli().get_world_position() + dvec3(3, 4, 5));
    logic().swap();
    EXPECT_NEAR(length(position() - heli().get_world_position()), 25, 1e-8);
    logic().set_player_mode(Mode::PLAYER_MODE_FIRST);
    logic().swap();
    EXPECT_LT(length(position() - eye.getTranslate() - dvec3(3, 4, 5)), 1e-4);
}

// ------------------------------------------------------------------ picking

TEST(Picking, NearestVisibleSurfaceWins) {
    LogicScene scene;
    const std::string at = "wgs: [-155.06, 19.71, ";
    // The upper of the slab's two surfaces comes second in its file.
    scene.folder.write("slab.mtl", "newmtl a\nnewmtl b\n");
    scene.folder.write("slab.obj", "mtllib slab.mtl\no slab\nv -9 -9 0\nv 9 -9 0\nv 9 9 0\n"
                                   "v -9 -9 3\nv 9 -9 3\nv 9 9 3\nusemtl a\nf 1 2 3\n"
                                   "usemtl b\nf 4 5 6\n");
    scene.folder.write("roof.prefab", "node: {name: r, children: [{name: roof, type: mesh, mesh: "
                                      "square.obj, position: [0, 0, 20]}]}\n");
    scene.addToWorld(at +
                     "30], name: group, children: [{name: attic, type: mesh, mesh: square.obj}]");
    scene.addToWorld(at + "0], name: house, type: prefab, path: roof.prefab");
    scene.addToWorld(at + "15], name: slab, type: mesh, mesh: slab.obj");
    ASSERT_TRUE(scene.start());
    const dvec3 top = scene.logic->m_heli->get_world_position();
    const dvec3 bottom = top - EARTH.getUp(top) * 100.0;
    Node* group = scene.world->getNodeByName("group"); // once hidden nothing in it is visible
    Node* roof = asPrefab(scene.world->getNodeByName("house"))->getNodeByName("roof");
    Node* slab = scene.world->getNodeByName("slab");
    for (const auto& [nearest, altitude, hidden] : {std::tuple("attic", 30, group),
                                                    {"roof", 20, roof},
                                                    {"slab", 18, slab},
                                                    {"deck", 10, slab}}) {
        dvec3 hit;
        const Object* object = scene.logic->select_object(top, bottom, &hit);
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(object->getName(), nearest);
        EXPECT_NEAR(EARTH.toWGS(hit).z, altitude, 1e-6);
        hidden->setEnabled(false);
    }
}

} // namespace
