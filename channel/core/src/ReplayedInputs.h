// SPDX-License-Identifier: MIT
#pragma once

#include "FrameInputs.h"
#include "frames/FrameLog.h"

#include <functional>
#include <utility>

class EventQueue;
class Window;

/// Frames of a log, played again: as fast as they can, or in the time that they took. What happens
/// at the window of the replay reaches no frame: it can be closed, and shown on all of its monitor.
///
/// The log's digests of the scene are compared as the replay comes to them. The first difference is
/// told with the frame and the parts that differ; what comes after one tells nothing more.
class ReplayedInputs final : public FrameInputs {
public:
    using Digests = std::vector<frames::PartDigest>;

    /// Window and queue are the application's; a wait for the log's time ends when it `is_stopped`.
    ReplayedInputs(Window& window, EventQueue& queue, bool real_time,
                   std::function<bool()> is_stopped)
        : m_window(window), m_queue(queue), m_real_time(real_time),
          m_is_stopped(std::move(is_stopped)) {}
    /// Before the logic makes its sockets, which answer as the log says from then on. False, with
    /// one log line, when the log can't be read.
    bool open(const std::string& path);
    const frames::LogHead& getHead() const { return m_reader.getHead(); }

    bool next(const Moment& moment, frames::FrameInput& input) override;
    /// Where the log's run took digests of the scene: compares those that the log holds, if any,
    /// with those of now.
    void compare(const std::function<Digests()>& digest_scene);
    /// The frame that was taken last is not run, because it may end the process, and is the last
    /// one. A log that goes on behind it is of another logic, which is an error.
    void endByForce();

    /// What came of it, a line for the console.
    std::string getSummary() const;
    /// The replay went another way than the log, or the log was damaged.
    bool hasFailed() const {
        return !m_difference.empty() || m_ends_early || m_item == frames::LogItem::damaged;
    }

private:
    void readOn();
    bool waitFor(double begin);
    void watchWindow();

    Window& m_window;
    EventQueue& m_queue;
    bool m_real_time;
    std::function<bool()> m_is_stopped;
    frames::LogReader m_reader;
    // One frame ahead: a socket that is set up within a frame has its answers in the next one.
    frames::LogItem m_item = frames::LogItem::end; ///< what follows the frame taken last
    frames::FrameInput m_input;                    ///< of `frame`
    bool m_has_digests = false;                    ///< of the frame taken last
    Digests m_digests;
    double m_start = 0; ///< on the steady clock, of the log's first frame as replayed, s
    bool m_closed = false, m_alt = false;
    bool m_ends_early = false;                  ///< the log goes on behind the end by force
    std::uint64_t m_number = 0;                 ///< of the frame that was taken last
    std::uint64_t m_frames = 0, m_compared = 0; ///< taken; with digests
    std::string m_difference;                   ///< the first; empty: none
};
