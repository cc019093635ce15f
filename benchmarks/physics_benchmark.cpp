// SPDX-License-Identifier: MIT

// Our cable against the one that the solver offers.

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "ig/physics/Body.h"
#include "ig/physics/BodyRope.h"
#include "ratio.h"

#include <BulletSoftBody/btSoftBodyHelpers.h>
#include <BulletSoftBody/btSoftBodyRigidBodyCollisionConfiguration.h>
#include <BulletSoftBody/btSoftRigidDynamicsWorld.h>
#include <btBulletDynamicsCommon.h>

namespace {

using namespace ig;

const EllipsoidModel EARTH;
const dmat4 PLACE = EARTH.getWGSTransform(EARTH.toWorld({-155, 20, 100}));

/// The solver's own cable of 12 nodes with a load of 80 kg, as a prefab would have it without ours.
struct SoftRope {
    SoftRope() {
        world.setGravity({0, 0, -9.81});
        world.getWorldInfo().m_gravity = {0, 0, -9.81};
        world.getWorldInfo().m_sparsesdf.Initialize();
        rope = btSoftBodyHelpers::CreateRope(world.getWorldInfo(), {0, 0, 0}, {0, 0, -9}, 10, 1);
        rope->m_cfg.piterations = 6; // as many passes as our chain makes
        rope->setActivationState(DISABLE_DEACTIVATION);
        world.addSoftBody(rope);
        load.setActivationState(DISABLE_DEACTIVATION);
        load.setWorldTransform(btTransform(btQuaternion::getIdentity(), {0, 0, -9.3}));
        world.addRigidBody(&load);
        rope->appendAnchor(rope->m_nodes.size() - 1, &load, {0, 0, 0.3}, true);
    }
    ~SoftRope() {
        rope->m_anchors.clear();
        world.removeRigidBody(&load);
        world.removeSoftBody(rope);
        delete rope;
    }
    /// One step with the upper end at that place.
    void step(double x) {
        btSoftBody::Node& end = rope->m_nodes[0];
        end.m_x = end.m_q = {x, 0, 0};
        world.stepSimulation(1 / 60.0, 0);
    }
    btSoftBodyRigidBodyCollisionConfiguration configuration;
    btCollisionDispatcher dispatcher{&configuration};
    btDbvtBroadphase broadphase;
    btSequentialImpulseConstraintSolver solver;
    btSoftRigidDynamicsWorld world{&dispatcher, &broadphase, &solver, &configuration};
    btSphereShape shape{0.3};
    btRigidBody load{btRigidBody::btRigidBodyConstructionInfo(80, nullptr, &shape, {3, 3, 3})};
    btSoftBody* rope = nullptr;
};

/// A frame of a moving cable against a step of that cable. Goal: a ratio of at most 1.
void ropeFrame(benchmark::State& state) {
    BodyRigid anchor(0, {});
    BodyRope rope(6, 1.5f);
    rope.setAnchor(&anchor);
    SoftRope floor;
    double t = 0;
    PairedTimes times;
    for (auto _ : state)
        times.measure(
            [&] {
                t += 1 / 60.0;
                anchor.setTransform(PLACE * translate(dvec3(0, 10 * t, 0)));
                rope.step(1 / 60.0);
            },
            [&] { floor.step(10 * t); });
    times.report(state);
}
BENCHMARK(ropeFrame)->Iterations(5000)->Unit(benchmark::kMicrosecond);

} // namespace
