// SPDX-License-Identifier: MIT
#pragma once

#include "LoggedInputs.h"
#include "WallReceiver.h"

/// The first channel's frames, as they come to a display of its wall. A display that is behind runs
/// frames without showing them; one that hears nothing keeps its picture.
class WallInputs final : public LoggedInputs {
public:
    /// The `receiver` has begun a run. `show` draws the last picture again, with what there is to
    /// be said in it.
    WallInputs(WallReceiver& receiver, Window& window, EventQueue& queue,
               std::function<bool()> is_stopped, std::function<void()> show)
        : LoggedInputs(window, queue, std::move(is_stopped)), m_receiver(receiver),
          m_show(std::move(show)) {}
    bool open() override;
    const frames::LogHead& getHead() const override { return m_receiver.getHead(); }

    bool next(const Moment& moment, frames::FrameInput& input) override;
    void compare(const std::function<Digests()>& digest_scene) override;
    /// The picture stays until there is another run.
    void endByForce() override { stay(); }
    bool isBehind() const override { return !m_shows; }
    /// The scene has ended, the display has not: the picture stays until there is another run.
    void stay();
    /// The run is to be begun again, or another one to be begun.
    bool wantsRestart() const { return m_restart; }
    std::uint64_t getNumber() const { return m_number; } ///< of the frame taken last

    /// What is to be said in the picture; empty: nothing.
    std::string getNote() const;
    std::string getSummary() const override;

private:
    struct FrameDigests {
        bool is_there = false;
        std::uint64_t number = 0;
        Digests digests = {};
    };

    bool readOn();
    void settle();
    void idle();
    void tellProgress();
    void beginAgain(const char* why);

    WallReceiver& m_receiver;
    std::function<void()> m_show;
    bool m_has_next = false; ///< behind the frame taken last
    frames::FrameInput m_next;
    FrameDigests m_theirs, m_ours;
    double m_heard = 0;  ///< when something came last, on the steady clock, s
    double m_drawn = 0;  ///< when the picture was drawn last, or its note
    bool m_lost = false; ///< it was told that nothing comes
    bool m_ended = false;
    bool m_restart = false;
    bool m_shows = false;                ///< the frame taken last is shown
    bool m_was_in_step = false;          ///< in this run
    double m_behind_since = 0;           ///< 0: in step
    double m_told = 0;                   ///< when it was told how far it is
    std::uint64_t m_passed_over = 0;     ///< frames that were not shown
    std::uint64_t m_behind_at_begin = 0; ///< of those, when it was in step last
};
