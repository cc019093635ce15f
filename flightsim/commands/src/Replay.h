// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/link/HostLink.h"
#include "flightsim/recording/Recording.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace flightsim {

struct ReplayOptions {
    std::string file;
    LinkOptions link;
    double speed = 1;    ///< 2: twice as fast; 0.01 to 1000
    double from = 0;     ///< second of the recording to begin with
    double seconds = -1; ///< of the recording to send; negative: up to its end
    bool loop = false;   ///< begin anew at the end, until stopped
    /// Send this one record over and over at the recording's mean rate, until stopped or for
    /// `seconds`: the scene stands still while the link stays busy. `from` and `loop` don't count.
    std::optional<std::int64_t> hold;
};

/// Says when which datagram of a recording leaves: flight times begin at 0 and never decrease.
class ReplaySource {
public:
    /// Opens and checks the recording. False with `message` when it can't be used.
    bool open(const ReplayOptions& options, std::string& message);
    struct Step {
        std::int64_t time_ns;                   ///< flight time
        std::span<const std::uint8_t> datagram; ///< valid until the next call
    };
    /// Nothing at the end, or, with `message`, when the file changed since it was checked.
    std::optional<Step> next(std::string& message);
    const Survey& getSurvey() const { return m_survey; }

private:
    bool openHeld(std::string& message);
    std::optional<Step> nextHeld();

    ReplayOptions m_options;
    RecordingReader m_reader;
    Selection m_selection;
    Survey m_survey;
    std::int64_t m_lap_ns = 0;        ///< recorded time that earlier rounds of the loop took
    std::vector<std::uint8_t> m_held; ///< the datagram to hold
    std::int64_t m_held_sent = 0;
};

/// Sends a recorded flight to the channel. Created by the command line or a test, which opens it,
/// runs it once and looks at the link's figures.
class Replay {
public:
    /// False with `message` when the recording, an address, a port or a file can't be used.
    bool open(const ReplayOptions& options, std::string& message);
    /// Not empty: what is doubtful about the recording, though it can be used.
    const std::string& getWarning() const { return m_source.getSurvey().warning; }
    /// Sends until the end or until `stop` is set. False with `message` when a file fails.
    bool run(const StopFlag& stop, std::string& message);
    const HostLink& getLink() const { return m_link; }

private:
    ReplayOptions m_options;
    ReplaySource m_source;
    HostLink m_link;
};

} // namespace flightsim
