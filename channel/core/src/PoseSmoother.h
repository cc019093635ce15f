// SPDX-License-Identifier: MIT
#pragma once

#include "HostClock.h"
#include "ig/math/quat.h"

/// Where something is and how it stands, in the world.
struct Pose {
    ig::dvec3 position; ///< m, earth-centred
    ig::dquat attitude;

    bool operator==(const Pose&) const = default;
};

/// Shows at each frame's time what is told at another rate, and not quite evenly. A frame that
/// shows the newest record as it is shows one that is 0 to a period old: at 31 m/s and 48 records a
/// second some frames repeat a pose, and others step by 0.65 m.
///
/// The pose told last is carried on in a straight line, by the time since it was due (`HostClock`)
/// and the velocity between it and the one before. What the prediction was wrong by when a record
/// comes is not jumped over but eased away.
///
/// What is no motion is shown at once as it is told: a place that no helicopter reaches in the
/// time, a pose that repeats exactly (it stands), and a cut of the scene. The velocity counts as 0
/// then until the records agree on one. Where records stay away the motion runs out, and in the end
/// the pose is shown that was told last.
class PoseSmoother {
public:
    struct Frame {
        double time = 0;    ///< that the picture shows, s
        double arrival = 0; ///< of the newest record, s on the same clock
        int records = 0;    ///< that came since the frame before
        bool cut = false;   ///< the scene was frozen: the pose is shown as it is
        Pose pose;          ///< that the newest record told
    };
    /// Once per frame. Returns the pose to show.
    Pose update(const Frame& frame);

private:
    /// What a step of the host turns and shifts by, or what a picture is off by.
    struct Shift {
        ig::dvec3 way;  ///< m
        ig::dvec3 turn; ///< about this axis by its length, degrees

        Shift operator*(double k) const { return {way * k, turn * k}; }
    };
    static Shift between(const Pose& from, const Pose& to);
    static Pose shifted(const Pose& pose, const Shift& shift);

    void take(const Frame& frame, const Pose& expected);
    double countSteps(const Shift& change, int records);
    bool isEven(const Shift& change, double steps) const;
    void stand(const Pose& pose);
    Pose predict() const;

    HostClock m_clock;
    Pose m_told;              ///< by the newest record
    double m_due = 0;         ///< when, s
    Shift m_step;             ///< between the last two records, of one of the host's steps
    bool m_moving = false;    ///< records agree on `m_step`
    int m_odd = 0;            ///< records in a row whose steps were not counted but seen
    Shift m_error;            ///< what is shown besides the prediction
    double m_time = 0;        ///< of the newest frame, s
    double m_brisk_until = 0; ///< s; errors are eased away sooner until then
};
