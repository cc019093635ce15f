// SPDX-License-Identifier: MIT
#include "heli/kit/LogicActions.h"

#include "heli/kit/TorpedoInfo.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/Node.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

const EllipsoidModel EARTH;

struct Torpedo {
    Torpedo() {
        node.addChild(parachute);
        info.torpedo = &node;
        info.parachute = parachute;
        info.time_left = 40;
        info.action = ActionEmitTorpedo::Create(&info, 1.5f);
        info.action->start();
    }
    ~Torpedo() { delete info.action; }
    void step(float dt, double altitude) {
        node.setWorldTransform(EARTH.getWGSTransform(EARTH.toWorld({-155, 20, altitude})));
        info.action->step(dt);
    }
    Node node;
    Node* parachute = new Node();
    TorpedoInfo info;
};

TEST(Torpedo, ParachuteOpensStrictlyAfterTheDelayAndIsHiddenInTheWaterOrAtTheLimit) {
    struct Step {
        float dt;
        double altitude;
        bool shown, done;
    };
    const std::vector<Step> falls[] = {
        {{1.5f, 90, false, false}, {0.25f, 60, true, false}, {0.5f, -1e-6, false, true}},
        {{2, 90, true, false}, {37.75f, 50, true, false}, {0.25f, 50, false, true}},
        {{2, -1, true, true}}, // water in the step of the delay: hidden first, shown then
    };
    for (const auto& fall : falls) {
        Torpedo torpedo;
        EXPECT_FALSE(torpedo.parachute->isEnabled());
        torpedo.parachute->setPosition({5, 5, 5});
        for (const Step& step : fall) {
            torpedo.step(step.dt, step.altitude);
            EXPECT_EQ(torpedo.parachute->isEnabled(), step.shown) << step.dt;
            EXPECT_EQ(torpedo.info.action->isDone(), step.done) << step.dt;
        }
        EXPECT_LT(length(torpedo.parachute->getPosition()), 1e-6); // opened at the torpedo
    }
}

} // namespace
