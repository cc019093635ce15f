// SPDX-License-Identifier: MIT

// The missions that we ship against the world that we ship: ships under way, real ground below.

#include "flightsim/mission/MissionFile.h"
#include "flightsim/mission/MissionFlight.h"
#include "plugins/ocean/ObjectOcean.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>
#include <set>

namespace {

using namespace ig;
using flightsim::MissionFlight;

/// A mission flown into the logic in this process, 10 records and frames a second.
class MissionRun {
public:
    MissionRun(const char* path, std::optional<double> duration) {
        scene.useProjectData(); // with its missions
        std::string message;
        const auto mission = flightsim::readMission(path, message);
        EXPECT_TRUE(mission) << message;
        const auto plan =
            mission ? flightsim::planFlight(*mission, duration, message) : std::nullopt;
        EXPECT_TRUE(plan) << message;
        if (plan) flight.emplace(*mission, plan->legs);
        EXPECT_TRUE(scene.start());
        ocean = static_cast<ObjectOcean*>(scene.world->getNodeByName("ocean"));
    }
    /// The frame of the present record, and on to the next one. False at the end.
    bool step() {
        constexpr double INTERVAL = 0.1;
        scene.send(flight->getRecord());
        ocean->setBeaufort(flight->getRecord().sea_code); // as the channel does
        scene.frame(INTERVAL);
        const auto answer = scene.feedback();
        if (answer) feedback = *answer;
        if (answer) flight->takeFeedback(*answer);
        flight->advance(INTERVAL);
        return !flight->isFinished() && flight->getFault().empty();
    }
    const std::string& leg() const { return flight->getGuidance().getLeg().name; }
    double legTime() const { return flight->getTime() - flight->getGuidance().getLegTime(); }
    /// Of the helicopter in the frame of the frigate: to starboard, ahead.
    dvec3 fromFrigate() const {
        const Node* frigate = scene.world->getNodeByName("SM_055_CN_2023");
        return inverse(frigate->getWorldTransform()) * scene.logic->m_heli->get_world_position();
    }

    LogicScene scene;
    ObjectOcean* ocean = nullptr;
    std::optional<MissionFlight> flight;
    UdpSendData feedback{};
};

/// Where a leg hovers.
struct Station {
    const char* leg;
    double after;            ///< s of the leg until it does
    double starboard, ahead; ///< m from the frigate
    double height;           ///< m above what lies below
};

void expectMeets(MissionRun&& run, const std::vector<Station>& stations) {
    ASSERT_TRUE(run.flight);
    std::set<std::string> met;
    while (run.step()) {
        if (met.contains(stations.back().leg) && run.leg() != stations.back().leg) break;
        const double height = run.feedback.height_above_ground, time = run.flight->getTime();
        if (time > 1) { // the wheels reach down 1.22 m and give a little
            ASSERT_GT(height, 1.1) << time;
        }
        for (const Station& station : stations) {
            if (run.leg() != station.leg || run.legTime() < station.after) continue;
            met.insert(station.leg);
            const dvec3 place = run.fromFrigate();
            ASSERT_NEAR(place.x, station.starboard, 4) << time;
            ASSERT_NEAR(place.y, station.ahead, 6) << time;
            ASSERT_NEAR(height, station.height, 2.5) << time;
        }
    }
    EXPECT_EQ(run.flight->getFault(), "");
    EXPECT_EQ(met.size(), stations.size());
}

TEST(ShippedMissions, MeetTheFrigateUnderWayAndTouchNothing) {
    expectMeets(MissionRun("data/missions/demo.yaml", 52), {{"over the deck", 2, 0, -66, 20}});
    expectMeets(MissionRun("data/missions/demo.yaml", 200),
                {{"over the deck", 3, 0, -66, 20}, {"dip", 1, 60, -75, 15}});
    expectMeets(MissionRun("data/missions/weapons.yaml", {}),
                {{"sonar", 18, 45, -90, 12}, {"winch", 11, 0, -63, 16}});
}

} // namespace
