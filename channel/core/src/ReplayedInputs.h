// SPDX-License-Identifier: MIT
#pragma once

#include "LoggedInputs.h"

/// Frames of a log, played again: as fast as they can, or in the time that they took.
class ReplayedInputs final : public LoggedInputs {
public:
    /// Of the log of that path.
    ReplayedInputs(std::string path, bool real_time, Window& window, EventQueue& queue,
                   std::function<bool()> is_stopped)
        : LoggedInputs(window, queue, std::move(is_stopped)), m_path(std::move(path)),
          m_real_time(real_time) {}
    bool open() override;
    const frames::LogHead& getHead() const override { return m_reader.getHead(); }

    bool next(const Moment& moment, frames::FrameInput& input) override;
    void compare(const std::function<Digests()>& digest_scene) override;
    /// A log that goes on behind the last frame is of another logic, which is an error.
    void endByForce() override;

    std::string getSummary() const override;
    bool hasFailed() const override {
        return LoggedInputs::hasFailed() || m_ends_early || m_item == frames::LogItem::damaged;
    }

private:
    void readOn();
    bool waitFor(double begin);

    const std::string m_path;
    const bool m_real_time;
    frames::LogReader m_reader;
    // One frame ahead: a socket that is set up within a frame has its answers in the next one.
    frames::LogItem m_item = frames::LogItem::end; ///< what follows the frame taken last
    frames::FrameInput m_input;                    ///< of `frame`
    bool m_has_digests = false;                    ///< of the frame taken last
    Digests m_digests;
    double m_start = 0;        ///< on the steady clock, of the log's first frame as replayed, s
    bool m_ends_early = false; ///< the log goes on behind the end by force
};
