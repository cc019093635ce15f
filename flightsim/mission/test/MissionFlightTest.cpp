// SPDX-License-Identifier: MIT
#include "flightsim/mission/MissionFlight.h"
#include "flightsim/mission/MissionFile.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

/// Missions are flown without a channel and judged by the records alone, as the channel sees them:
/// velocity and acceleration come from differences of the positions.
namespace flightsim {
namespace {

constexpr double STEP = 0.02;

struct Flown {
    double time;
    std::string leg;
    UdpRecvData record;
    Enu wind;

    Geodetic place() const { return {record.longitude, record.latitude, record.altitude}; }
};

/// The wind that a record tells of, as a velocity of the air over ground.
Enu blownBy(const UdpRecvData& record) {
    return Enu::ofCourse(record.weather_angle + 180.0, record.weather_value_a);
}

std::vector<Flown> flyToEnd(const Mission& mission, std::optional<double> duration) {
    std::string message;
    const auto plan = planFlight(mission, duration, message);
    EXPECT_TRUE(plan) << message;
    std::vector<Flown> flown;
    if (!plan) return flown;
    MissionFlight flight(mission, plan->legs);
    Enu wind = blownBy(flight.getRecord());
    for (;;) {
        flown.push_back(
            {flight.getTime(), flight.getGuidance().getLeg().name, flight.getRecord(), wind});
        if (flight.isFinished() || !flight.getFault().empty()) break;
        flight.advance(STEP);
        wind += (blownBy(flight.getRecord()) - wind) * STEP; // the air follows within a second
    }
    EXPECT_EQ(flight.getFault(), "");
    return flown;
}

Mission missionOf(const std::string& legs) {
    std::string message;
    const auto mission = parseMission(
        "start: {longitude: -155, latitude: 19.7, surface: 12, rotor: 270, heading: 40}\n" + legs,
        "m.yaml", message);
    EXPECT_TRUE(mission) << message;
    return mission.value_or(Mission{});
}

std::vector<Flown> flyShipped(const std::string& name, std::optional<double> duration) {
    std::string message;
    const auto mission = readMission("data/missions/" + name + ".yaml", message);
    EXPECT_TRUE(mission) << message;
    return flyToEnd(mission.value_or(Mission{}), duration);
}

/// Over a tenth of a second to both sides: altitudes are single precision.
constexpr int REACH = 5;

Enu velocityAt(const std::vector<Flown>& f, std::size_t i) {
    return offset(f[i - REACH].place(), f[i + REACH].place()) * (1 / (2 * REACH * STEP));
}

Enu accelerationAt(const std::vector<Flown>& f, std::size_t i) {
    const Enu sum =
        offset(f[i].place(), f[i + REACH].place()) + offset(f[i].place(), f[i - REACH].place());
    return sum * (1 / (REACH * STEP * REACH * STEP));
}

/// The fuselage's vertical axis: headed clockwise from north, nose up, right side down, in this
/// order, each a turn of the one before.
Enu rotorAxis(const UdpRecvData& r) {
    const double h = r.heading * RADIANS, p = r.pitch * RADIANS, b = r.roll * RADIANS;
    const Enu forward_of_up{-std::sin(h) * std::sin(p), -std::cos(h) * std::sin(p), std::cos(p)};
    const Enu right{std::cos(h), -std::sin(h), 0};
    return forward_of_up * std::cos(b) + right * std::sin(b);
}

double angleBetween(const Enu& a, const Enu& b) {
    const double dot = a.east * b.east + a.north * b.north + a.up * b.up;
    return std::acos(std::clamp(dot / a.length() / b.length(), -1.0, 1.0)) / RADIANS;
}

void expectSmoothAndConsistent(const std::vector<Flown>& f) {
    double worst_step = 0, worst_lean = 0;
    for (std::size_t i = REACH; i + REACH + 1 < f.size(); i++) {
        const Enu a = accelerationAt(f, i);
        worst_step = std::max(worst_step, (accelerationAt(f, i + 1) - a).length());
        const bool on_wheels = f[i].record.altitude < 14.2 || a.length() > 8;
        if (on_wheels) continue;
        // What the rotor must give: the acceleration, the weight and what the air takes away.
        const Enu thrust = a + Enu{0, 0, 9.80665} - dragAcceleration(velocityAt(f, i) - f[i].wind);
        worst_lean = std::max(worst_lean, angleBetween(thrust, rotorAxis(f[i].record)));
    }
    EXPECT_LT(worst_step, 1.5) << "m/s² in 20 ms; 5 would be felt as a jerk";
    EXPECT_LT(worst_lean, 0.5) << "degrees between attitude and acceleration";
}

TEST(ShippedMissions, AreFlownAsAPilotFlies) {
    const std::pair<const char*, double> missions[] = {
        {"demo", 52}, {"demo", 136}, {"demo", 200}, {"weapons", 71}};
    for (const auto& [name, duration] : missions) {
        SCOPED_TRACE(name + std::to_string(duration));
        const auto f = flyShipped(name, duration);
        ASSERT_GT(f.size(), 100u);
        EXPECT_NEAR(f.back().time, duration, 1);
        expectSmoothAndConsistent(f);
        float lean = 0;
        for (const Flown& now : f)
            lean = std::max({lean, std::abs(now.record.pitch), std::abs(now.record.roll)});
        EXPECT_LE(lean, 15);
        EXPECT_GT(lean, 14) << "and no slower than that";
    }
}

TEST(ShippedMissions, DemoReachesItsPointsComesHomeAndSetsTheScene) {
    const auto f = flyShipped("demo", std::nullopt);
    ASSERT_GT(f.size(), 1000u);
    const Geodetic pad{-155.0625125, 19.7124631, 13.67};
    for (const Enu& point : {Enu{330, 260, 60 - 13.67}, Enu{850, 500, 80 - 13.67}}) {
        const Geodetic place = moved(pad, point); // the coast, the open sea
        const auto missed = [&](const Flown& now) { return offset(now.place(), place).length(); };
        EXPECT_LT(missed(*std::ranges::min_element(f, {}, missed)), 31) << point.east;
    }
    const auto last_in_air = std::find_if(
        f.rbegin(), f.rend(), [](const Flown& now) { return now.record.altitude > 13.67F + 0.1F; });
    const auto touchdown = static_cast<std::size_t>(f.rend() - last_in_air) - 1;
    EXPECT_LT(velocityAt(f, touchdown).length(), 0.5);
    EXPECT_LT(offset(pad, f.back().place()).horizontal(), 0.5);
    EXPECT_NEAR(f.back().place().altitude, 13.67, 0.01);
    EXPECT_LT(+f.back().record.rotor_speed, 15);

    EXPECT_EQ(+f.front().record.command, 6u);
    EXPECT_EQ(std::ranges::count(f, 6u, [](const Flown& now) { return +now.record.command; }), 1);
    const auto at_sea = std::ranges::find(f, "out to sea", &Flown::leg);
    const auto rain =
        std::ranges::find_if(f, [](const Flown& now) { return now.record.weather_type == 2; });
    EXPECT_NEAR(rain->time - at_sea->time, 5, 0.03) << "as long after the leg began as it says";
}

TEST(MissionFlight, HoldsItsPlaceAndHeadingInWindAndLeansIntoIt) {
    const auto f = flyToEnd(missionOf(R"(
set: {weather_angle: 90, weather_value_a: 15}
legs:
  - take_off: 20
  - turn_to: 0
  - hover: 10
)"),
                            std::nullopt);
    const Flown& end = f.back();
    const Enu miss = offset({-155, 19.7, 32}, end.place());
    EXPECT_LT(miss.length(), 0.3);
    EXPECT_NEAR(wrap180(end.record.heading), 0, 1);
    // The wind comes from the right: the thrust must lean that way, tan = drag / g.
    const double lean = std::atan(dragAcceleration({-15, 0, 0}).length() / 9.80665) / RADIANS;
    EXPECT_NEAR(end.record.roll, lean, 0.1);
    EXPECT_NEAR(end.record.pitch, 0, 0.1);
}

TEST(MissionFlight, StaysWithAMovingShipAndLandsOnIt) {
    const auto f = flyToEnd(missionOf(R"(
points:
  ship: {east: 300, north: 150, velocity: [2, 7]}
  deck: {from: ship, north: -50, surface: 6}
legs:
  - take_off:
  - approach: {to: deck, height: 15, heading: 0}
  - hover: 10
  - land:
  - wait: 5
)"),
                            std::nullopt);
    const auto miss = [&](const Flown& now) {
        const Geodetic deck = moved({-155, 19.7, 6}, Enu{300, 100, 0} + Enu{2, 7, 0} * now.time);
        return offset(deck, now.place());
    };
    const auto landing =
        std::ranges::find_if(f, [](const Flown& now) { return now.leg == "land"; });
    ASSERT_NE(landing, f.end());
    EXPECT_LT(miss(*landing).horizontal(), 0.5);
    EXPECT_NEAR(miss(*landing).up, 15, 0.3);
    EXPECT_LT(miss(f.back()).horizontal(), 0.6);
    EXPECT_NEAR(miss(f.back()).up, 1.22, 0.02);
}

TEST(MissionFlight, StopsFromFastFlightAndPassesPointsBehind) {
    const auto f = flyToEnd(missionOf(R"(
legs:
  - take_off: 30
  - fly_to: {to: {east: 0, north: 800}, altitude: 60, speed: 60, acceleration: 4, bank: 30}
  - fly_to: {to: {east: 30, north: 500}, altitude: 5, speed: 60, bank: 15}
  - hover: 60
)"),
                            std::nullopt);
    expectSmoothAndConsistent(f);
    EXPECT_LT(velocityAt(f, f.size() - 10).length(), 0.3);
    EXPECT_NEAR(f.back().place().altitude, 5, 0.5);
}

TEST(MissionFlight, BanksAsItsTurnsDemandAndHeadsIntoTheAirstream) {
    const auto f = flyToEnd(missionOf(R"(
set: {weather_angle: 200, weather_value_a: 8}
legs:
  - take_off: 10
  - fly_to: {to: {east: 0, north: 1500}, altitude: 100, speed: 40}
  - fly_to: {to: {east: 400, north: -2000}, speed: 40, bank: 25}
)"),
                            std::nullopt);
    expectSmoothAndConsistent(f);
    double steepest = 0, sideslip = 0;
    for (std::size_t i = REACH; i + REACH < f.size(); i++) {
        const Enu air = velocityAt(f, i) - f[i].wind;
        if (velocityAt(f, i).horizontal() < 30) continue;
        steepest = std::max(steepest, std::abs(double(f[i].record.roll)));
        sideslip = std::max(sideslip, std::abs(wrap180(f[i].record.heading - air.course())));
    }
    EXPECT_NEAR(steepest, 25, 1);
    EXPECT_LT(sideslip, 2);
}

TEST(MissionFlight, BelievesTheChannelsGroundUnlessItIsFarFromTheMissions) {
    const Mission mission = missionOf(R"(
legs:
  - take_off: 10
  - hover: {seconds: 40, height: 10}
  - land:
)");
    struct Case {
        double ground; ///< as the channel reports it
        double latitude;
        double landed, tolerance;
    };
    constexpr double ITSELF = 1e9; // a ray that hits the helicopter must not make it climb for ever
    for (const Case& c : {Case{14.5, 19.7, 15.72, 0.1}, Case{9, 19.7, 10.22, 0.1},
                          Case{20, 19.7, 13.22, 0.05}, Case{NAN, 19.7, 13.22, 0.05},
                          Case{12 + 2, 0, 13.22, 0.05}, Case{ITSELF, 19.7, 13.22, 5}}) {
        MissionFlight flight(mission, mission.legs);
        while (!flight.isFinished() && flight.getTime() < 200) {
            UdpSendData feedback{};
            feedback.ground_latitude = c.latitude;
            const double height = c.ground == ITSELF ? 0.5 : flight.getRecord().altitude - c.ground;
            feedback.height_above_ground = static_cast<float>(height);
            flight.takeFeedback(feedback);
            flight.advance(STEP);
        }
        EXPECT_TRUE(flight.isFinished());
        EXPECT_NEAR(flight.getRecord().altitude, c.landed, c.tolerance) << c.ground;
    }
}

} // namespace
} // namespace flightsim
