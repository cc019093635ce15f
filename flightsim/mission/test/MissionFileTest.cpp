// SPDX-License-Identifier: MIT
#include "flightsim/mission/MissionFile.h"

#include <gtest/gtest.h>

namespace flightsim {
namespace {

const std::string HEAD = "start: {longitude: -155, latitude: 19.7, surface: 12}\n";

/// The message about a mission that can't be used, behind the path.
std::string faultOf(const std::string& text) {
    std::string message;
    auto mission = parseMission(text, "m.yaml", message);
    if (mission) selectLegs(*mission, std::nullopt, message);
    return message.starts_with("m.yaml:") ? message.substr(7) : message;
}

std::string faultOfLeg(const std::string& leg) {
    return faultOf(HEAD + "legs:\n  - " + leg + "\n");
}

TEST(MissionFile, SaysWhereAndWhatIsWrong) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "1:1: a mission must be a map"},
        {"start: {longitude: 1", "1:1: end of map flow not found"},
        {HEAD, "1:1: a mission needs a list of \"legs\""},
        {"start: {longitude: 1}\nlegs: [wait: 1]", "1:8: start needs \"longitude\" and \"lat"},
        {"start: {longitude: 1, latitude: 90}\n", "1:33: latitude must be a number from -89 to 89"},
        {HEAD + "legs: [wait: 1]\nlegs: [wait: 1]", "3:1: a mission: \"legs\" is given twice"},
        {HEAD + "reste: true", "2:1: a mission has no key \"reste\"; nearest is \"reset\""},
        {HEAD + "points: {a: {east: 1, bearing: 3, distance: 9}}\nlegs: [wait: 1]",
         "2:13: a point is either"},
        {HEAD + "set: {see_code: 1}", "2:7: set has no key \"see_code\"; nearest is \"sea_code\""},
        {HEAD + "set: {pitch: 1}", "2:14: pitch is flown"},
        {HEAD + "set:\n  - {rain_level: 70000}",
         "3:18: rain_level must be a number from 0 to 65535"},
    };
    for (const auto& [text, fault] : cases)
        EXPECT_EQ(faultOf(text).substr(0, fault.size()), fault) << text;
}

TEST(MissionFile, SaysWhatIsWrongWithALeg) {
    const std::pair<std::string, std::string> cases[] = {
        {"hoover: 3", "3:5: a leg has no key \"hoover\"; nearest is \"hover\""},
        {"{hover: 3, wait: 2}", "3:22: a leg has one kind only"},
        {"hover: .nan", "3:12: seconds must be a number from 0 to 86400"},
        {"fly_to: {speed: 20}", "3:5: fly_to needs \"to\""},
        {"fly_to: {to: {east: 9}, speed: 500}", "3:36: speed must be a number from 2 to 80"},
        {"fly_to: strat", "3:13: there is no point \"strat\"; nearest is \"start\""},
        {"fly_to: {to: start, height: 9, altitude: 9}", "3:5: fly_to: height excludes altitude"},
        {"climb:", "3:5: climb needs \"height\" or"},
        {"follow: {to: {east: 1, velocity: [0, 20]}, speed: 21}", "3:5: the leg's speed must"},
        {"{spin_up: 3, stretch: 1}", "3:5: only hover, follow and wait can stretch"},
        {"take_off: {height: 9}", "3:5: take_off: the rotor stands still"},
        {"hover: 9", "3:5: the helicopter is on the ground"},
    };
    for (const auto& [leg, fault] : cases)
        EXPECT_EQ(faultOfLeg(leg).substr(0, fault.size()), fault) << leg;
}

TEST(MissionFile, ReadsPlacesDefaultsAndShorthand) {
    std::string message;
    const auto mission = parseMission(HEAD + R"(
points:
  ship: {bearing: 90, distance: 500, velocity: [1, 2]}
  deck: {from: ship, north: -60, surface: 6}
legs:
  - spin_up:
  - take_off: 10
  - approach: deck
    name: there
    optional_from: 90
    set: {after: 2, over: 3, sea_code: 4}
  - land: {to: {longitude: -155, latitude: 19.7, surface: 12}}
)",
                                      "m.yaml", message);
    ASSERT_TRUE(mission) << message;
    ASSERT_EQ(mission->legs.size(), 4u);
    EXPECT_TRUE(mission->reset);
    EXPECT_EQ(mission->start.altitude, 13.22);
    EXPECT_EQ(mission->legs[0].seconds, 12);
    EXPECT_EQ(mission->legs[1].height, 10);
    const Leg& there = mission->legs[2];
    EXPECT_EQ(there.name, "there");
    EXPECT_EQ(there.line, 9);
    EXPECT_EQ(there.point->getSurface(), 6);
    const Enu way = offset(mission->start, there.point->position);
    EXPECT_NEAR(way.east, 500, 0.01);
    EXPECT_NEAR(way.north, -60, 0.01);
    ASSERT_EQ(there.changes.size(), 1u);
    EXPECT_EQ(there.changes[0].over, 3);
    EXPECT_EQ(selectLegs(*mission, 89, message)->size(), 3u);
    EXPECT_EQ(selectLegs(*mission, 90, message)->size(), 4u);
}

} // namespace
} // namespace flightsim
