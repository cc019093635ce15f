// SPDX-License-Identifier: MIT
#include "PoseSmoother.h"
#include "PictureTime.h"

#include "ig/math/EllipsoidModel.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using namespace ig;
using Motion = std::function<Pose(double)>; ///< by the seconds since the start

constexpr double SPEED = 31; ///< m/s

dmat4 placeAt(double longitude, double latitude) {
    const EllipsoidModel earth;
    return earth.getWGSTransform(earth.toWorld({longitude, latitude, 100}));
}
/// A circle flown at SPEED, its heading through all directions, degrees per second.
Motion circle(double longitude, double latitude, double turn) {
    return [=, place = placeAt(longitude, latitude)](double t) {
        const double angle = turn * t * DEG_TO_RAD<double>;
        const double radius = SPEED / (turn * DEG_TO_RAD<double>);
        return Pose{place * dvec3(-radius * std::cos(angle), radius * std::sin(angle), 0),
                    (place.getMat3() * dquat(dvec3(0, 0, 1), -turn * t).getMat3()).getQuat()};
    };
}
/// Northwards and up by so many metres.
Motion straight(std::function<double(double)> north, std::function<double(double)> up = nullptr) {
    return [=, place = placeAt(-155, 19.7)](double t) {
        return Pose{place * dvec3(0, north(t), up ? up(t) : 0), place.getMat3().getQuat()};
    };
}

/// A host that tells a motion over a link, and a channel that shows it.
struct Flight {
    Motion motion;
    double rate = 48, frames = 60; ///< records and frames a second
    double jitter = 0.002;         ///< of the arrival, standard deviation, s
    double frame_jitter = 0;       ///< of the frame, s
    double loss = 0;               ///< share of the records
    double haste = 0;              ///< s by which frames begin earlier every other 0.4 s
    double step = 0;               ///< s that frames count as; 0: what they last
    bool stamped = true;           ///< the arrival is known, not just the frame that read it
    std::function<bool(double)> is_silent = [](double) { return false; };
    std::function<bool(double)> is_cut = is_silent, is_reset = is_silent;

    static constexpr double LATENCY = 0.004; ///< of the link, s
    struct Shown {
        double time;
        int records;
        Pose told, shown;
    };
    std::vector<Shown> fly(double seconds) const {
        std::mt19937 dice(14);
        std::normal_distribution<double> normal;
        std::uniform_real_distribution<double> share;
        PoseSmoother smoother;
        PictureTime picture;
        PoseSmoother::Frame frame;
        std::vector<Shown> all;
        int sent = 0;
        double arrival = 0, stamp = 0;
        for (double due = 0.1; due < seconds; due += 1 / frames) {
            const double before = stamp;
            stamp = std::max(due + frame_jitter * std::abs(normal(dice)), stamp + 0.001);
            const double begin = stamp - (std::fmod(due, 0.8) > 0.4 ? haste : 0);
            frame.time = picture.next(begin, step > 0 ? step : stamp - before);
            frame.records = 0;
            while (arrival <= begin) {
                if (!is_silent(sent / rate) && share(dice) >= loss) {
                    frame.records++;
                    frame.pose = motion(sent / rate);
                    frame.arrival = stamped ? arrival : begin;
                }
                sent++;
                arrival = std::max(arrival, sent / rate + LATENCY + jitter * normal(dice));
            }
            frame.cut = is_cut(stamp);
            // By the operator: no record tells the new pose.
            if (frame.records == 0 && is_reset(stamp)) frame.pose = motion(0);
            all.push_back({stamp, frame.records, frame.pose, smoother.update(frame)});
        }
        return all;
    }
    /// How far the picture is from where the helicopter is, m.
    double getError(const Shown& frame) const {
        return length(frame.shown.position - motion(frame.time - LATENCY).position);
    }
};

/// What the steps of a point ahead of the nose differ by from those that it makes, m.
struct Steps {
    double rms = 0, most = 0;
    int repeats = 0;

    Steps(const Flight& flight, const std::vector<Flight::Shown>& frames,
          Pose Flight::Shown::*which) {
        const auto nose = [](const Pose& pose) {
            return pose.position + pose.attitude * dvec3(0, 10, 0);
        };
        const auto first = static_cast<std::size_t>(flight.frames); // the host is known then
        for (std::size_t i = first; i < frames.size(); i++) {
            const dvec3 step = nose(frames[i].*which) - nose(frames[i - 1].*which);
            const double error = length(step - (nose(flight.motion(frames[i].time)) -
                                                nose(flight.motion(frames[i - 1].time))));
            rms += error * error / static_cast<double>(frames.size() - first);
            most = std::max(most, error);
            repeats += length(step) == 0;
        }
        rms = std::sqrt(rms);
    }
};

TEST(PoseSmoother, ATurnIsSmoothWhateverTheRatesTheJitterAndTheLosses) {
    struct Case {
        double rate, frames, jitter, frame_jitter, loss;
        double rms, most; ///< m, with stamps; without, three times that
        double longitude = -155, latitude = 19.7, haste = 0, step = 0;
    };
    const Case cases[] = {
        {48, 60, 0.002, 0, 0, 0.002, 0.006, 30, 90},
        {48, 60, 0.008, 0, 0, 0.006, 0.02},
        {48, 60, 0.002, 0, 0.1, 0.004, 0.1},
        {48, 20, 0.002, 0.01, 0, 0.01, 0.03},
        {59.9, 60, 0.002, 0, 0, 0.002, 0.006},
        {100, 60, 0.002, 0, 0.1, 0.002, 0.02},
        {1000, 60, 0.002, 0, 0, 0.002, 0.006},
        {20, 240, 0.002, 0, 0.1, 0.005, 0.15},
        {100, 60, 0.002, 0, 0, 0.002, 0.006, -155, 19.7, 0.007},
        {100, 60, 0.002, 0, 0, 0.002, 0.006, -155, 19.7, 0, 0.05},
    };
    for (const Case& c : cases)
        for (bool stamped : {true, false}) {
            SCOPED_TRACE(testing::Message() << c.rate << "/" << c.frames << " jitter " << c.jitter
                                            << " loss " << c.loss << " stamped " << stamped);
            Flight flight{circle(c.longitude, c.latitude, 12), c.rate, c.frames, c.jitter};
            flight.frame_jitter = c.frame_jitter;
            flight.loss = c.loss;
            flight.haste = c.haste;
            flight.step = c.step;
            flight.stamped = stamped;
            const auto frames = flight.fly(40);
            EXPECT_GT(Steps(flight, frames, &Flight::Shown::told).rms, 0.04);
            const Steps shown(flight, frames, &Flight::Shown::shown);
            EXPECT_LT(shown.rms, stamped ? c.rms : 3 * c.rms);
            EXPECT_LT(shown.most, stamped ? c.most : 3 * c.most);
            EXPECT_EQ(shown.repeats, 0);
            // Not by showing the past.
            EXPECT_LT(flight.getError(frames.back()), stamped ? 0.05 : SPEED / c.frames);
        }
}

TEST(PoseSmoother, WhatHappensSuddenlyIsNeitherOvershotNorSmeared) {
    static constexpr double EVENT = 5.001; // just after a record
    static constexpr double TOLD = 0.035;  // later: the next one has come, and a frame
    const auto until = [](double t) { return std::min(t, EVENT); };
    const auto since = [](double t) { return std::max(t - EVENT, 0.0); };
    const auto jump = [](double t) { return t > EVENT ? 1000.0 : 0.0; };
    struct Case {
        const char* name;
        Motion motion;
        double most;     ///< that the picture may be off by, m
        double told = 0; ///< s after the event from which on that counts
    };
    const Case cases[] = {
        {"jump in the hover", straight(jump), 0, TOLD},
        {"small jump", straight([=](double t) { return t + jump(t) / 400; }), 0.03, TOLD},
        {"jump to a stop", straight([=](double t) { return SPEED * until(t) + jump(t); }), 0, TOLD},
        {"jump on the way", straight([=](double t) { return SPEED * t + jump(t); }), 0.3, TOLD},
        {"stop", straight([=](double t) { return 10 * until(t); }), 0.3},
        {"stop from full speed", straight([=](double t) { return SPEED * until(t); }), 0, TOLD},
        {"touch-down", straight([](double) { return 0; }, [=](double t) { return -until(t); }),
         0.03},
        {"touch-down on a ship under way",
         straight([](double t) { return 8 * t; },
                  [=](double t) { return 0.3 * std::sin(since(t)) - 2 * until(t); }),
         0.07},
        {"brake to the hover", straight([=](double t) {
             const double speed = std::max(10 - 5 * since(t), 0.0);
             return 10 * until(t) + (100 - speed * speed) / 10;
         }),
         0.02},
        {"pushed", straight([=](double t) { return 2 * t + 15 * since(t); }), 0.4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Flight flight{c.motion};
        double most = 0, late = 0;
        for (const Flight::Shown& frame : flight.fly(8)) {
            if (frame.time > EVENT + c.told) most = std::max(most, flight.getError(frame));
            if (frame.time > EVENT + 0.3) late = std::max(late, flight.getError(frame));
        }
        EXPECT_LE(most, c.most + 1e-6);
        EXPECT_LE(late, 0.06);
    }
}

TEST(PoseSmoother, WhereRecordsStayAwayTheMotionRunsOutAndIsTakenUpAgain) {
    static constexpr double PAUSE = 5, END = 6.5;
    Flight flight{straight([](double t) { return SPEED * t; })};
    flight.is_silent = [](double time) { return time > PAUSE && time < END; };
    const auto frames = flight.fly(END + 0.4);
    for (const Flight::Shown& frame : frames) {
        const double ahead = length(frame.shown.position - frame.told.position);
        SCOPED_TRACE(frame.time);
        if (frame.time > PAUSE + 0.16 && frame.time < PAUSE + 0.65) {
            EXPECT_NEAR(ahead, SPEED * 0.125, 0.2) << "it rests where it ran out";
        } else if (frame.time > PAUSE + 1) {
            EXPECT_LT(ahead, frame.time < END ? 0.05 : SPEED * 0.05) << "nobody told this place";
        }
    }
    EXPECT_LT(flight.getError(frames.back()), 0.05);
}

TEST(PoseSmoother, WhatStandsOrIsPutSomewhereIsShownAsItIsToldAtOnce) {
    Flight flight{straight([](double t) { return 10 * std::min(t, 5.0); })};
    flight.is_cut = [](double time) { return time > 2 && time < 3; };
    flight.is_reset = [](double time) { return time > 3.5 && time < 4; };
    Pose before;
    int stood = 0, cut = 0, reset = 0, moved = 0;
    for (const Flight::Shown& frame : flight.fly(6)) {
        const bool stands = frame.records > 0 && frame.told == before;
        const bool cuts = flight.is_cut(frame.time), moves = frame.shown != frame.told;
        const bool resets = frame.records == 0 && flight.is_reset(frame.time);
        before = frame.told;
        stood += stands, cut += cuts, reset += resets, moved += moves;
        EXPECT_FALSE(moves && (stands || cuts || resets)) << frame.time;
    }
    EXPECT_TRUE(stood > 30 && cut > 30 && reset > 3 && moved > 150);
}

} // namespace
