// SPDX-License-Identifier: MIT
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/Camera.h"
#include "ig/scene/CameraControl.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "testkit/LogCapture.h"

#include <cmath>
#include <gtest/gtest.h>

namespace ig {
namespace {

const EllipsoidModel EARTH;
const dvec3 PLACE = EARTH.toWorld({-155, 20, 100});

void expectNear(const dmat4& a, const dmat4& b, double tolerance) {
    for (int i = 0; i < 4; i++)
        EXPECT_LT(length(a.columns[i].xyz() - b.columns[i].xyz()), tolerance) << "column " << i;
}

dmat4 pose(double angle, dvec3 position) { return {dquat({1, 2, 3}, angle), position}; }

TEST(Node, WorldPoseIsTheProductOfTheChainAfterEveryChange) {
    Node root;
    auto* arm = new Node();
    auto* hand = new Node();
    root.addChild(arm);
    arm->addChild(hand);
    root.setTransform(pose(10, PLACE));
    arm->setTransform(pose(20, {1, 2, 3}));
    hand->setTransform(pose(30, {4, 5, 6}));
    const auto chain = [&] {
        return root.getTransform() * arm->getTransform() * hand->getTransform();
    };
    expectNear(hand->getWorldTransform(), chain(), 1e-8);
    root.setWorldPosition(PLACE + dvec3(7, 7, 7)); // moves what hangs on it
    expectNear(hand->getWorldTransform(), chain(), 1e-8);
    arm->setRotation(dquat({0, 0, 1}, 45));
    expectNear(hand->getWorldTransform(), chain(), 1e-8);
    hand->setWorldTransform(pose(70, PLACE));
    expectNear(hand->getWorldTransform(), pose(70, PLACE), 1e-8);
    expectNear(chain(), pose(70, PLACE), 1e-8);
    hand->setWorldRotation(dquat({0, 1, 0}, 33));
    EXPECT_LT(length(hand->getWorldPosition() - PLACE), 1e-8); // rotation alone
    const dvec3 local(0.1, -0.2, 0.3);
    EXPECT_LT(length(hand->toLocal(hand->toWorld(local)) - local), 1e-8);
    expectNear(hand->getWorldTransform() * hand->getIWorldTransform(), dmat4(), 1e-8);
}

TEST(Node, GeodeticAttitudeIsKeptAcrossTheEarthByAFreeNodeOnly) {
    Node node;
    node.setWorldPosition(PLACE);
    node.setWgsHPR({350, 5, -3});
    const dvec3 there(30, 60, 10);
    node.setWgsPosition(there);
    EXPECT_LT(length(node.getWgsHPR() - dvec3(350, 5, -3)), 1e-9);
    EXPECT_LT(length(EARTH.toWGS(node.getWorldPosition()) - there), 1e-9);
    // An attitude that was not given geodetically stays as it is in the world.
    node.setWorldRotation(dquat({1, 1, 0}, 50));
    node.setWorldPosition(PLACE);
    EXPECT_LT(length(node.getWorldTransform().getX() - dquat({1, 1, 0}, 50) * dvec3(1, 0, 0)),
              1e-12);
    // A child keeps its world rotation too.
    Node parent;
    parent.setTransform(pose(40, PLACE));
    auto* child = new Node();
    parent.addChild(child);
    child->setWgsHPR({20, 0, 0});
    EXPECT_NEAR(child->getWgsHPR().x, 20, 1e-9);
    const dmat4 before = child->getWorldTransform();
    child->setWorldPosition(EARTH.toWorld(there));
    EXPECT_LT(length(child->getWorldTransform().getX() - before.getX()), 1e-8);
}

TEST(Node, PosesThatAreNotFiniteAreRefusedAndCounted) {
    LogLimiter::setClock([] { return 0.0; });
    LogCapture log;
    Node node;
    node.setTransform(pose(10, PLACE));
    const dmat4 before = node.getTransform();
    const double nan = std::nan("");
    node.setPosition({nan, 0, 0});
    node.setWorldPosition({0, INFINITY, 0});
    node.setRotation({0, 0, nan, 1});
    node.setWorldRotation({0, 0, nan, 1});
    node.setWgsHPR({0, nan, 0});
    node.setWgsPosition({nan, 0, 0});
    node.setTransform({dmat3({nan, 0, 0}, {0, 1, 0}, {0, 0, 1}), {}});
    node.setWorldTransform({dmat3(), {0, 0, nan}});
    EXPECT_EQ(node.getTransform(), before);
    // Finite itself, but not what follows from it.
    node.setTransform(dmat4(dmat3({0, 0, 0}, {0, 1, 0}, {0, 0, 1}), PLACE));
    auto* child = new Node();
    node.addChild(child);
    child->setWorldPosition(PLACE);
    EXPECT_TRUE(isFinite(child->getTransform()));
    EXPECT_EQ(log.lines.size(), 1u); // the clock stands still
    LogLimiter::setClock({});
}

TEST(Node, VisibilityNamesAndLookUps) {
    World world;
    auto* root = new Node();
    auto* child = new Node();
    auto* grandchild = new Node();
    root->setName("root");
    child->setName("child");
    grandchild->setName("grandchild");
    root->addChild(child);
    world.addNode(root);
    child->addChild(grandchild); // into a tree that is in the world already
    EXPECT_EQ(grandchild->getWorld(), &world);
    EXPECT_EQ(root->getChildByName("grandchild", false), nullptr);
    EXPECT_EQ(root->getChildByName("grandchild", true), grandchild);
    EXPECT_EQ(world.getNodeByName("grandchild"), grandchild);
    EXPECT_TRUE(grandchild->isVisible());
    root->setEnabled(false);
    EXPECT_TRUE(grandchild->isEnabled());
    EXPECT_FALSE(grandchild->isVisible());
    world.removeNode(child); // not one of the world's own: nothing
    EXPECT_EQ(world.getNodeByName("child"), child);
    world.removeNode(root);
    EXPECT_EQ(world.getNodeByName("child"), nullptr);
}

/// A node of a given size.
struct Ball : Node {
    explicit Ball(double r) : radius(r) {}
    BoundSphere getOwnBounds() const override { return {{}, radius}; }
    double radius;
};

TEST(World, CandidatesAreThoseWhoseBoundsTheSegmentTouchesAlsoAfterAChildMoved) {
    World world;
    auto* carrier = new Node();
    auto* ball = new Ball(2);
    carrier->addChild(ball);
    carrier->setWorldPosition(PLACE);
    world.addNode(carrier);
    auto* far_ball = new Ball(5);
    far_ball->setWorldPosition(PLACE + dvec3(0, 0, 500));
    world.addNode(far_ball);
    world.addNode(new Node()); // has no bounds at all
    jVector<Node*> found;
    const auto query = [&](dvec3 offset) {
        return world.getIntersection(PLACE + offset + dvec3(-100, 0, 0),
                                     PLACE + offset + dvec3(100, 0, 0), found);
    };
    EXPECT_TRUE(query({0, 0, 1.9}));
    EXPECT_EQ(found.size(), 2); // parents before children
    EXPECT_EQ(found[0], carrier);
    EXPECT_EQ(found[1], ball);
    EXPECT_FALSE(query({0, 0, 2.1}));
    ball->setPosition({0, 0, 10});
    EXPECT_TRUE(query({0, 0, 11.5}));
    EXPECT_FALSE(query({0, 0, 20}));
    EXPECT_TRUE(query({0, 0, 500}));
    EXPECT_EQ(found[0], far_ball);
    EXPECT_FALSE(query({300, 0, 0})); // a segment that ends before
}

// ------------------------------------------------------------------ cameras

TEST(Camera, GeodeticAttitudeCountsPitchDownFromTheHorizon) {
    Camera camera;
    camera.setWorldPosition(PLACE);
    const dmat3 local = EARTH.getWGSTransform(PLACE).getMat3();
    const auto axis = [&](dvec3 a) {
        return transpose(local) * (camera.getWorldTransform().getMat3() * a);
    };
    const double s = std::sin(40 * DEG_TO_RAD<double>), c = std::cos(40 * DEG_TO_RAD<double>);
    camera.setWgsHPR({40, 0, 0});
    EXPECT_LT(length(axis({0, 0, -1}) - dvec3(s, c, 0)), 1e-12); // looks towards the heading
    EXPECT_LT(length(axis({0, 1, 0}) - dvec3(0, 0, 1)), 1e-12);
    camera.setWgsHPR({40, 90, 0});
    EXPECT_LT(length(axis({0, 0, -1}) - dvec3(0, 0, -1)), 1e-12); // straight down
    EXPECT_LT(length(axis({0, 1, 0}) - dvec3(s, c, 0)), 1e-12);   // picture's top to the heading
    camera.setWgsHPR({40, 30, 10});
    // Independently: Rz(−h) · Rx(90 − p) · Rz(−r).
    const dmat3 expected =
        (dquat({0, 0, 1}, -40) * dquat({1, 0, 0}, 60) * dquat({0, 0, 1}, -10)).getMat3();
    for (const dvec3& a : {dvec3(1, 0, 0), dvec3(0, 1, 0), dvec3(0, 0, 1)})
        EXPECT_LT(length(axis(a) - expected * a), 1e-12);
}

TEST(CameraControl, PushesPoseExtraAnglesAndProjection) {
    Camera camera;
    CameraControl control(&camera);
    control.m_position = PLACE;
    control.m_rotation = dquat({1, 1, 1}, 30);
    control.updateView();
    expectNear(camera.getTransform(), {dquat({1, 1, 1}, 30), PLACE}, 1e-9);
    control.setAngles({90, 0, 0}, true); // about its own Y axis
    expectNear(camera.getTransform(), {dquat({1, 1, 1}, 30) * dquat({0, 1, 0}, 90), PLACE}, 1e-9);
    control.setAngles({10, 20, 30}, true);
    expectNear(
        camera.getTransform(),
        {dquat({1, 1, 1}, 30) * dquat({0, 0, 1}, 30) * dquat({1, 0, 0}, 20) * dquat({0, 1, 0}, 10),
         PLACE},
        1e-9);
    control.updateProjection(); // 60 by 50 degrees, near 1, far 1e7
    const auto& p = camera.getProjection().columns;
    EXPECT_NEAR(1 / p[0].x, std::tan(30 * DEG_TO_RAD<double>), 1e-7);
    EXPECT_NEAR(1 / p[1].y, std::tan(25 * DEG_TO_RAD<double>), 1e-7);
    EXPECT_EQ(p[2].x, 0);
    EXPECT_EQ(p[2].y, 0);
    control.setNear(2, true);
    control.setFar(100, true);
    EXPECT_NEAR(camera.getProjection().columns[2].z, -102.0 / 98, 1e-12);
    camera.setPerspective(40, 2, 0.5, 5000);
    const dmat4 pose = camera.getTransform(), projection = camera.getProjection();
    CameraControl next(nullptr);
    next.updateView();       // without a camera nothing happens
    next.setCamera(&camera); // takes it over as it is
    EXPECT_EQ(next.getNear(), 0.5f);
    expectNear(camera.getTransform(), pose, 1e-9);
    expectNear(camera.getProjection(), projection, 1e-6);
}

TEST(CameraControl, GeodeticAndWorldAngles) {
    Camera camera;
    camera.setWorldPosition(PLACE);
    CameraControl control(&camera);
    control.m_position = PLACE;
    control.setRotationWgs({0, 0, 0}, true); // level, towards north
    const dmat3 local = EARTH.getWGSTransform(PLACE).getMat3();
    EXPECT_LT(length(-camera.getTransform().getZ() - local.getY()), 1e-9);
    EXPECT_LT(length(camera.getTransform().getY() - local.getZ()), 1e-9);
    control.setRotationWgs({90, 0, 0}, true); // counter-clockwise: west
    EXPECT_LT(length(camera.getTransform().getZ() - local.getX()), 1e-9);
    control.setRotationHPR({0, 25, 0}, true);
    EXPECT_LT(length(camera.getTransform().getY() - dquat({1, 0, 0}, 25) * dvec3(0, 1, 0)), 1e-6);
    EXPECT_EQ(convertFromZUpCoordinateSystem(control.getFinalRotationZUp()),
              control.getFinalRotation());
}

} // namespace
} // namespace ig
