// SPDX-License-Identifier: MIT
#pragma once

#include "FrameInputs.h"

class EventQueue;
class FrameClock;
class ScriptPlayer;
class Window;
namespace ig {
class UIRoot;
}

/// Frames as they happen: paced by the clock, with what has happened at the window, what the script
/// does, and the datagrams that wait at the sockets.
class LiveInputs final : public FrameInputs {
public:
    /// All of these are the application's. Window and script tell the queue. `ui`: whose fields
    /// text is pasted into. `run_start`: what the inputs' times count from, s on the steady clock.
    LiveInputs(FrameClock& clock, Window& window, ScriptPlayer& script, EventQueue& queue,
               const ig::UIRoot& ui, double run_start)
        : m_clock(clock), m_window(window), m_script(script), m_queue(queue), m_ui(ui),
          m_run_start(run_start) {}
    bool next(const Moment& moment, frames::FrameInput& input) override;

private:
    bool hasPaste(const frames::FrameInput& input);

    FrameClock& m_clock;
    Window& m_window;
    ScriptPlayer& m_script;
    EventQueue& m_queue;
    const ig::UIRoot& m_ui;
    double m_run_start;
    std::uint64_t m_number = 0; ///< of the next frame
    bool m_ctrl = false;        ///< the key is down, as the events say
};
