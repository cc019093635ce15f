// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/UdpSendData.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace flightsim {

/// Measures how long steps of the helicopter's altitude take to come back as steps of the height
/// that the channel reports. It only reckons: `Probe` sends the records, and tells it when; all
/// times are on the steady clock.
class StepMeter {
public:
    /// The record with a step has left. One that was still awaited counts as missed. `step`: metres
    /// by which the altitude changes, below 0 down, never 0. Half of it, the same way, counts as
    /// seen, so that neither a swell below nor a slope disturbs.
    void sent(std::int64_t steady_ns, double step);
    /// Feedback came in.
    void take(const UdpSendData& feedback, std::int64_t steady_ns);
    bool isAwaiting() const { return m_sent_ns.has_value(); }
    /// The step has been waited for long enough.
    void giveUp();

    const std::vector<std::int64_t>& getDelays_ns() const { return m_delays_ns; }
    std::int64_t getMissed() const { return m_missed; }
    /// Mean time between two frames of the channel, ns; 0 before there are two.
    double getFrame_ns() const;

private:
    double m_step = 0;                     ///< of the step sent last
    double m_height = 0;                   ///< reported last while nothing was awaited
    std::optional<std::int64_t> m_sent_ns; ///< of the step that is awaited
    std::vector<std::int64_t> m_delays_ns; ///< of the steps that were seen
    std::int64_t m_missed = 0;
    std::optional<std::int32_t> m_first_frame;
    std::int32_t m_last_frame = 0;
    std::int64_t m_first_frame_ns = 0; ///< when its feedback came in
    std::int64_t m_last_frame_ns = 0;
};

/// The delays of a probe, in ascending order, and what rules for training allow.
struct DelayReport {
    std::vector<std::int64_t> delays_ns;
    std::int64_t missed = 0;
    double frame_ns = 0; ///< mean time between two frames; 0: not known
    double limit_ms = 0; ///< that p99 is held against

    /// The smallest delay that the given part of all steps doesn't exceed, ms. Missed steps are the
    /// longest: infinity when they are reached, also when there is no step at all.
    double percentile_ms(double part) const;
    bool isKept() const { return percentile_ms(0.99) <= limit_ms; }
    /// The lines that tell the user.
    std::string text() const;
    /// A drawing of the share of steps that are over after a time, as SVG.
    std::string plot() const;
};

} // namespace flightsim
