// SPDX-License-Identifier: MIT
#include "LiveInputs.h"

#include "EventQueue.h"
#include "FrameClock.h"
#include "ScriptPlayer.h"
#include "Window.h"
#include "ig/net/SocketUDP.h"
#include "ig/ui/KeyCode.h"
#include "program/Clock.h"

bool LiveInputs::next(const Moment& moment, frames::FrameInput& input) {
    input = {};
    m_clock.setRefreshRate(m_window.getRefreshRate());
    input.length = m_clock.beginFrame();
    input.begin = program::steadyNow() - m_run_start;
    if (m_window.isOpen()) m_window.poll();
    if (m_number > 0) m_script.play(moment.time, moment.records); // before, no button is laid out
    input.number = m_number++;
    input.events = m_queue.take();
    if (m_window.isOpen() && hasPaste(input)) input.clipboard = m_window.readClipboard();
    ig::SocketUDP::collect(input, m_run_start);
    return true;
}

/// Asking for the clipboard may take another program's time: only a frame that may paste does.
bool LiveInputs::hasPaste(const frames::FrameInput& input) {
    using Kind = frames::OperatorEvent::Kind;
    bool paste = false;
    for (const frames::OperatorEvent& event : input.events) {
        if (event.kind == Kind::modifiers) m_ctrl = event.ctrl;
        if (event.kind == Kind::focus_lost) m_ctrl = false;
        if (event.kind != Kind::key) continue;
        if (event.code == ig::KEY_CTRL) m_ctrl = event.down;
        if (event.code == 'v' && event.down && m_ctrl) paste = true;
    }
    return paste;
}
