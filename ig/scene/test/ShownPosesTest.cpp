// SPDX-License-Identifier: MIT
#include "ig/scene/ShownPoses.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/physics/Body.h"
#include "ig/scene/Object.h"
#include "ig/scene/World.h"

#include <gtest/gtest.h>

namespace ig {
namespace {

/// A carrier with a load on it that slips off.
struct Carrier {
    World world;
    Node* carrier = new Node();
    Node* arm = new Node();
    ObjectMesh* load = new ObjectMesh(triangle());

    static std::shared_ptr<const Mesh> triangle() {
        Mesh::Surface surface;
        surface.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
        surface.indices = {0, 1, 2};
        return std::make_shared<const Mesh>(std::vector<Mesh::Surface>{surface});
    }

    Carrier() {
        carrier->addChild(arm);
        arm->addChild(load);
        arm->setPosition({0, 3, 0});
        auto* body = new BodyRigid(10, {});
        body->addShape(Shape::createSphere(0.5f, {}));
        load->setBody(body);
        world.addNode(carrier);
        carrier->setWgsHPR({30, 5, 0});
        carrier->setWgsPosition({-155, 20, 100});
    }
    void frame(int i) {
        if (i % 10 == 0) carrier->setWgsPosition({-155, 20, 100 + i * 0.1});
        if (i == 10) arm->setPosition({0, 4, 0});
        world.updatePhysics(1 / 60.0f);
    }
};

TEST(ShownPoses, ThePictureSeesThemAndTheSceneGoesOnAsIfTheyHadNotBeen) {
    Carrier seen, alone;
    for (int i = 0; i < 30; i++) {
        seen.frame(i);
        alone.frame(i);
        const dmat4 ahead = dmat4(dquat({0, 0, 1}, 2), {0, 0.5, 0});
        const dmat4 before = seen.arm->getWorldTransform();
        const dmat4 shown = seen.carrier->getWorldTransform() * ahead;
        ShownPoses poses;
        poses.move(*seen.carrier, shown);
        EXPECT_EQ(seen.arm->getWorldTransform(), shown * seen.arm->getTransform());
        poses.move(*seen.arm, before); // which does not come along
        EXPECT_LT(length(seen.arm->getWorldPosition() - before.getTranslate()), 1e-8);
        seen.carrier->getBounds(); // as the picture may
        poses.putBack();
        for (const auto& [a, b] : {std::pair<Node*, Node*>(seen.carrier, alone.carrier),
                                   {seen.arm, alone.arm},
                                   {seen.load, alone.load}}) {
            EXPECT_EQ(a->getWorldTransform(), b->getWorldTransform()) << i;
            EXPECT_EQ(a->getTransform(), b->getTransform()) << i;
        }
        const BoundSphere is = seen.carrier->getBounds(), was = alone.carrier->getBounds();
        EXPECT_TRUE(is.center == was.center && is.radius == was.radius) << i;
    }
    EXPECT_GT(length(alone.load->getPosition()), 0.3) << "nothing moved";
}

} // namespace
} // namespace ig
