// SPDX-License-Identifier: MIT
#include "LiveInputs.h"

#include "EventQueue.h"
#include "FrameClock.h"
#include "ScriptPlayer.h"
#include "Window.h"
#include "ig/net/SocketUDP.h"
#include "ig/ui/KeyCode.h"
#include "ig/ui/UIElement.h"
#include "ig/ui/UIRoot.h"
#include "program/Clock.h"

namespace {
constexpr std::size_t MAX_PASTE = 1024; ///< bytes: as many as a field takes

/// Its first whole characters, as many as go into so many bytes.
std::string cut(std::string text, std::size_t size) {
    if (text.size() <= size) return text;
    while (size > 0 && (text[size] & 0xC0) == 0x80) // amid a character of UTF-8
        size--;
    text.resize(size);
    return text;
}
} // namespace

bool LiveInputs::next(const Moment& moment, frames::FrameInput& input) {
    input = {};
    m_clock.setRefreshRate(m_window.getRefreshRate());
    input.length = m_clock.beginFrame();
    input.begin = program::steadyNow() - m_run_start;
    if (m_window.isOpen()) m_window.poll();
    if (m_number > 0) m_script.play(moment.time, moment.records); // before, no button is laid out
    input.number = m_number++;
    input.events = m_queue.take();
    if (m_window.isOpen() && hasPaste(input))
        input.clipboard = cut(m_window.readClipboard(), MAX_PASTE);
    ig::SocketUDP::collect(input, m_run_start);
    return true;
}

/// The clipboard is the desktop's, is logged, and may take another program's time: only a frame
/// that may paste asks for it. A press of the mouse may give the focus to a field before the key
/// comes.
bool LiveInputs::hasPaste(const frames::FrameInput& input) {
    using Kind = frames::OperatorEvent::Kind;
    bool paste = false;
    bool field = m_ui.getFocus() && m_ui.getFocus()->isField();
    for (const frames::OperatorEvent& event : input.events) {
        if (event.kind == Kind::modifiers) m_ctrl = event.ctrl;
        if (event.kind == Kind::focus_lost) m_ctrl = false;
        if (event.kind == Kind::button && event.down) field = true;
        if (event.kind != Kind::key) continue;
        if (event.code == ig::KEY_CTRL) m_ctrl = event.down;
        if (event.code == 'v' && event.down && !event.repeat && m_ctrl && field) paste = true;
    }
    return paste;
}
