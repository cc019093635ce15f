// SPDX-License-Identifier: MIT
#include "Level.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "ig/physics/Body.h"
#include "ig/physics/Physics.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace ig {
namespace {

const EllipsoidModel EARTH;
const dmat4 PLACE = EARTH.getWGSTransform(EARTH.toWorld({-155.06, 19.71, 50}));

struct Listener : BodyContactCallbackBase {
    void onContact(Body* body, int contact) override {
        bodies.push_back(body);
        contacts.push_back(contact);
        if (physics) physics->removeBody(body);
    }
    std::vector<Body*> bodies;
    std::vector<int> contacts;
    Physics* physics = nullptr; ///< to remove the body from
};

/// A capsule of 2.7 m that the test moves along its Y axis.
struct Missile : BodyRigid {
    explicit Missile(Listener& listener) : BodyRigid(0, {}) {
        addShape(Shape::createCapsule(0.15f, 2.4f, mat4(dmat4(dquat(90.0, 0.0, 0.0), dvec3()))));
        setSensor(true);
        setContactCallback(&listener);
    }
};

TEST(Contacts, NothingFliesThroughABoxAtAnyStep) {
    Physics physics;
    BodyRigid plate(0, {}), floating(3e5f, {});
    const vec3 sizes[] = {{30, 30, 0.1f}, {16, 130, 4}};
    const dmat4 poses[] = {PLACE, PLACE * translate(dvec3(-400, 0, 0))};
    BodyRigid* targets[] = {&plate, &floating};
    for (int i = 0; i < 2; i++) {
        targets[i]->addShape(Shape::createBox(sizes[i]));
        targets[i]->setTransform(poses[i]);
        physics.addBody(targets[i]);
    }
    std::mt19937 random(3);
    std::uniform_real_distribution<double> u(-1, 1);
    int shots = 0, hits = 0;
    for (double dt : {1 / 144.0, 1 / 60.0, 0.1}) {
        for (int shot = 0; shot < 150; shot++, shots++) {
            const dvec3 size(sizes[shot % 2]);
            const dvec3 aim =
                poses[shot % 2] *
                (dvec3(u(random) * size.x, u(random) * size.y, u(random) * size.z) * 0.45);
            const dvec3 y = normalize(dvec3(u(random), u(random), u(random)));
            const dvec3 x = normalize(cross(y, dvec3(y.y, -y.z, y.x + 2)));
            const dmat3 attitude(x, y, cross(x, y));
            Listener listener;
            Missile missile(listener);
            dvec3 p = aim - y * (220 + 30 * u(random));
            missile.setTransform({attitude, p});
            physics.addBody(&missile);
            for (double t = 0; t < 1.2 && listener.bodies.empty(); t += dt) {
                p += y * (300 * dt);
                missile.setTransform({attitude, p});
                floating.setTransform(poses[1]);
                physics.update(static_cast<float>(dt));
            }
            hits += !listener.bodies.empty() && listener.bodies[0] == &missile;
            physics.removeBody(&missile);
            // A sensor pushes nothing: what floats only fell.
            EXPECT_LT(length(floating.getAngularVelocity()), 1e-3f);
        }
    }
    EXPECT_EQ(hits, shots);
}

TEST(Contacts, ComeOncePerThingMetAndNotFromADisabledBody) {
    Physics physics;
    Level surfaces;
    physics.setSurfaces(&surfaces);
    BodyRigid near(0, {}), far(0, {});
    for (BodyRigid* box : {&near, &far})
        box->addShape(Shape::createBox({10, 1, 10}));
    near.setTransform(PLACE * translate(dvec3(0, 20, 0)));
    far.setTransform(PLACE * translate(dvec3(0, 40, 0)));
    physics.addBody(&near);
    physics.addBody(&far);
    Listener listener;
    Missile missile(listener);
    missile.setTransform(PLACE);
    physics.addBody(&missile);
    physics.update(0.01f);
    EXPECT_TRUE(listener.bodies.empty()); // at rest
    missile.setTransform(PLACE * translate(dvec3(0, 60, 0)));
    physics.update(0.01f);
    EXPECT_EQ(listener.contacts, (std::vector<int>{0, 1}));
    physics.update(0.01f);
    EXPECT_EQ(listener.contacts.size(), 2u);
    missile.setTransform(PLACE * translate(dvec3(0, 60, -60))); // into the sea
    physics.update(0.01f);
    EXPECT_EQ(listener.contacts.size(), 3u);
    missile.setEnabled(false);
    missile.setTransform(PLACE);
    physics.update(0.01f);
    missile.setEnabled(true); // begins where it is
    physics.update(0.01f);
    EXPECT_EQ(listener.contacts.size(), 3u);
    listener.physics = &physics; // a callback that removes the body ends its contacts
    missile.setTransform(PLACE * translate(dvec3(0, 60, 0)));
    physics.update(0.01f);
    EXPECT_EQ(listener.contacts.size(), 4u);
}

TEST(Impulse, ActsAtOnceOrWhenTheBodyEntersTheWorld) {
    Physics physics;
    BodyRigid body(2, {});
    body.addShape(Shape::createSphere(0.06f));
    body.setTransform(PLACE);
    const vec3 east(PLACE.getX());
    body.addImpulse({}, east * 50.0f);
    physics.addBody(&body);
    EXPECT_NEAR(dot(body.getLinearVelocity(), east), 25, 1e-3);
    body.addImpulse({}, east * -50.0f);
    EXPECT_NEAR(length(body.getLinearVelocity()), 0, 1e-3);
    body.addImpulse({0, 0, 0.06f}, east);
    EXPECT_GT(dot(body.getAngularVelocity(), vec3(PLACE.getY())), 1);
    physics.removeBody(&body);
    body.addImpulse({}, east * 50.0f);
    body.setTransform(PLACE); // takes it back
    physics.addBody(&body);
    EXPECT_EQ(length(body.getLinearVelocity()), 0);
}

} // namespace
} // namespace ig
