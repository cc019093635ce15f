// SPDX-License-Identifier: MIT
#pragma once

#include "channel/interface/WindowListener.h"
#include "frames/FrameInput.h"

#include <utility>
#include <vector>

/// Notes what happens in the window, and what a script does in its place, as values, in order.
/// Nothing comes of it until the frame that takes it in tells it to the operator's interface.
class EventQueue final : public WindowListener {
public:
    /// Whether the window was asked to close since then.
    bool hasClose() const;
    /// What was noted since the last call.
    std::vector<frames::OperatorEvent> take() { return std::exchange(m_events, {}); }
    /// Tells an event to who acts on it, as the window did.
    static void tell(const frames::OperatorEvent& event, WindowListener& listener);

    void onKey(int key, bool down, bool repeat) override;
    void onModifiers(bool shift, bool ctrl, bool alt) override;
    void onText(const char* utf8) override;
    void onButton(int button, bool down, float x, float y) override;
    void onMove(float x, float y) override;
    void onWheel(float notches) override;
    void onFocusLost() override { add(Kind::focus_lost); }
    void onLeft() override { add(Kind::left); }
    void onClose() override { add(Kind::close); }
    void onResized(int width, int height, float density) override;

private:
    using Kind = frames::OperatorEvent::Kind;
    frames::OperatorEvent& add(Kind kind);

    std::vector<frames::OperatorEvent> m_events;
};
