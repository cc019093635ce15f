// SPDX-License-Identifier: MIT
#include "EventQueue.h"

#include <algorithm>

using frames::OperatorEvent;

bool EventQueue::hasClose() const {
    return std::ranges::any_of(
        m_events, [](const OperatorEvent& event) { return event.kind == Kind::close; });
}

OperatorEvent& EventQueue::add(Kind kind) {
    m_events.emplace_back().kind = kind;
    return m_events.back();
}

void EventQueue::onKey(int key, bool down, bool repeat) {
    OperatorEvent& event = add(Kind::key);
    event.code = key;
    event.down = down;
    event.repeat = repeat;
}

void EventQueue::onModifiers(bool shift, bool ctrl, bool alt) {
    OperatorEvent& event = add(Kind::modifiers);
    event.shift = shift;
    event.ctrl = ctrl;
    event.alt = alt;
}

void EventQueue::onText(const char* utf8) { add(Kind::text).text = utf8; }

void EventQueue::onButton(int button, bool down, float x, float y) {
    OperatorEvent& event = add(Kind::button);
    event.code = button;
    event.down = down;
    event.x = x;
    event.y = y;
}

void EventQueue::onMove(float x, float y) {
    // Of moves in a row the first counts, which may be what tells where the mouse is, and the last:
    // those between add up to the same motion. A fast mouse can't fill a frame.
    const auto is_move = [](const OperatorEvent& event) { return event.kind == Kind::move; };
    const bool goes_on =
        m_events.size() > 1 && std::all_of(m_events.end() - 2, m_events.end(), is_move);
    OperatorEvent& event = goes_on ? m_events.back() : add(Kind::move);
    event.x = x;
    event.y = y;
}

void EventQueue::onWheel(float notches) { add(Kind::wheel).notches = notches; }

void EventQueue::onResized(int width, int height, float density) {
    OperatorEvent& event = add(Kind::resize);
    event.width = width;
    event.height = height;
    event.density = density;
}

void EventQueue::tell(const OperatorEvent& event, WindowListener& listener) {
    switch (event.kind) {
    case Kind::key:
        return listener.onKey(event.code, event.down, event.repeat);
    case Kind::modifiers:
        return listener.onModifiers(event.shift, event.ctrl, event.alt);
    case Kind::text:
        return listener.onText(event.text.c_str());
    case Kind::button:
        return listener.onButton(event.code, event.down, event.x, event.y);
    case Kind::move:
        return listener.onMove(event.x, event.y);
    case Kind::wheel:
        return listener.onWheel(event.notches);
    case Kind::focus_lost:
        return listener.onFocusLost();
    case Kind::left:
        return listener.onLeft();
    case Kind::close:
        return listener.onClose();
    case Kind::resize:
        return listener.onResized(event.width, event.height, event.density);
    }
}
