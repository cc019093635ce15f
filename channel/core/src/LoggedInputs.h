// SPDX-License-Identifier: MIT
#pragma once

#include "FrameInputs.h"
#include "frames/FrameLog.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

class EventQueue;
class Window;

/// Frames that take in what another run's took in: sockets open nothing, and what happens at the
/// window reaches no frame. It can be closed, and shown on all of its monitor.
///
/// The other run's digests of its scene are compared. The first difference is told with the frame
/// and the parts that differ; what comes after one tells nothing more.
class LoggedInputs : public FrameInputs {
public:
    using Digests = std::vector<frames::PartDigest>;

    /// Window and queue are the application's; a wait ends when it `is_stopped`.
    LoggedInputs(Window& window, EventQueue& queue, std::function<bool()> is_stopped)
        : m_window(window), m_queue(queue), m_is_stopped(std::move(is_stopped)) {}
    /// Before the logic makes its sockets, which answer as the other run's did from then on. False,
    /// with one log line, when there are no frames to be had.
    virtual bool open() = 0;
    virtual const frames::LogHead& getHead() const = 0;
    /// Where the other run took digests of the scene: compares those of now with them.
    virtual void compare(const std::function<Digests()>& digest_scene) = 0;
    /// The frame that was taken last is not run, because it may end the process.
    virtual void endByForce() = 0;
    /// More frames have come than the one that was taken last: its picture would come too late.
    virtual bool isBehind() const { return false; }

    /// What came of it, a line for the console.
    virtual std::string getSummary() const = 0;
    /// The scene went another way than the other run's, or that can't be read on.
    virtual bool hasFailed() const { return !m_difference.empty(); }

protected:
    void watchWindow();
    bool isEnded() const { return m_closed || m_is_stopped(); }
    /// False, told with `what` differs from what, when the scene of the frame taken last does.
    bool hold(const Digests& theirs, const Digests& ours, const char* what);
    std::string tellCompared() const;

    bool m_closed = false;      ///< nobody wants to see more
    std::uint64_t m_number = 0; ///< of the frame that was taken last
    std::uint64_t m_frames = 0; ///< taken
    std::string m_difference;   ///< the first; empty: none

private:
    Window& m_window;
    EventQueue& m_queue;
    std::function<bool()> m_is_stopped;
    bool m_alt = false;
    std::uint64_t m_compared = 0; ///< frames
};
