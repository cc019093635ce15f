// SPDX-License-Identifier: MIT
#pragma once

#include "ig/net/SocketUDP.h"

#include <cstdint>
#include <string>
#include <vector>

/// What the sockets of the process, which are the logic's link, say at a moment.
struct LinkSample {
    static LinkSample read();

    bool listening = false;
    int port = 0;             ///< local one of the records; 0: there is no link
    std::string refusal;      ///< why it does not listen
    ig::SocketStatistics in;  ///< of the socket that receives
    ig::SocketStatistics out; ///< of the one that sends
};

/// How the link to the flight simulation is doing. The one place that tells: what goes wrong is
/// logged as a warning when it begins, not again while it lasts, and stands in four views with the
/// same words until it has been over for a while: the status line, the picture, the statistics, and
/// for good the summary.
///
/// States (nobody there, silence, no destination) last as long as they are so; single mishaps (a
/// datagram of the wrong size, a lost one) count as going on until none has come for HOLD seconds.
class LinkMonitor {
public:
    static constexpr double HOLD = 5; ///< s

    /// Once per frame, after the logic's update; `now` in seconds on the sockets' steady clock.
    void update(const LinkSample& sample, double now);

    /// As of the last update.
    const ig::SocketStatistics& getReceived() const { return m_sample.in; }
    const ig::SocketStatistics& getSent() const { return m_sample.out; }
    /// Seconds since the last record; negative before the first.
    double getAge() const;
    bool isSilent() const { return m_troubles[SILENT].on; } ///< records came, and come no more
    /// Everything that is wrong now, the weightiest first, in one line for the console; empty when
    /// nothing is.
    std::string getStatus() const;
    /// The same for the picture, in the operator's language, a line each.
    std::string getPictureText() const;
    /// What the statistics in the picture say besides, in the operator's language.
    std::string getStatistics() const;
    /// What the link has seen, with `applied` records and `resets`, line by line for the console.
    std::string getSummary(int applied, int resets) const;

private:
    /// In the order of their weight for whoever looks.
    enum Kind {
        NOT_LISTENING,
        NO_HOST,
        SILENT,
        RECEIVE_FAILING,
        SENDERS,
        WRONG_SIZE,
        IMPLAUSIBLE,
        LOST,
        TAKEN_OVER,
        NO_DESTINATION,
        SEND_FAILING,
        KINDS
    };
    using Values = std::vector<std::string>; ///< that fill in a text
    struct Trouble {
        bool on = false;
        double last_sign = 0;    ///< of a mishap, s
        std::uint64_t count = 0; ///< of mishaps, seen so far
        Values values;
        Values told; ///< what has been warned of since it is on
    };
    /// What the summary tells.
    struct Event {
        Kind kind;
        std::string about, text;
        int times;
    };

    void watchStates();
    void watchMishaps();
    template <class MakeValues>
    void state(Kind kind, bool on, MakeValues&& values);
    template <class MakeValues>
    void mishap(Kind kind, std::uint64_t count, MakeValues&& values);
    void tell(Kind kind, const std::string& about);
    void tellEnd(Kind kind);
    void tellRoom();
    double allowedPause() const;
    bool isShown(Kind kind) const;

    LinkSample m_sample;
    double m_now = 0;
    double m_silent_since = 0;    ///< s; the last record before the silence
    double m_longest_silence = 0; ///< s
    Trouble m_troubles[KINDS];
    std::vector<Event> m_events;
    bool m_room_told = false;
};
