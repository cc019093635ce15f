// SPDX-License-Identifier: MIT

// The channel's window: whether there is one, and what happens in it.

#include "Channel.h"
#include "common/logic/LogicBase.h"
#include "ig/base/jLog.h"
#include "ig/ui/KeyCode.h"

using namespace ig;

namespace {
constexpr int KEY_FULL_SCREEN = KEY_F1 + 8; ///< F9
constexpr int KEY_PICTURE = KEY_F1 + 9;     ///< F10
} // namespace

/// With a display there is a window unless none is wanted. False when one was asked for and can't
/// be had.
bool Channel::openWindow() {
    if (m_options.headless || m_options.renderer == "null") return true;
    if (!m_options.window && !Window::hasDisplay()) return true;
    if (!m_window.open(m_options.width, m_options.height)) return !m_options.window;
    m_options.width = m_window.getWidth();
    m_options.height = m_window.getHeight();
    return true;
}

void Channel::onResized(int width, int height) {
    m_options.width = width;
    m_options.height = height;
    m_renderer->resize(width, height);
    setProjection();
    m_camera_control.setCamera(&m_camera);
}

void Channel::onKey(int key, bool down, bool repeat) {
    if (down && !repeat && key == KEY_FULL_SCREEN) return m_window.toggleFullScreen();
    if (down && !repeat && key == KEY_PICTURE) return m_screenshots.take(*m_renderer);
    if (repeat) return;
    const GUIEventKey event{key};
    if (down) {
        m_control.keyDown(key);
        m_logic->onKeyPress(event, this);
    } else {
        m_control.keyUp(key);
        m_logic->onKeyRelease(event, this);
    }
}

void Channel::onText(const char*) {}

void Channel::onButton(int button, bool down, float x, float y) {
    if (button == 0) m_control.setLeftButton(down);
    if (button == 1) m_control.setRightButton(down);
    const GUIEventMouse event{button, x, y};
    if (down)
        m_logic->onMouseDown(event, this);
    else
        m_logic->onMouseUp(event, this);
}

void Channel::onMove(float x, float y) {
    if (m_mouse_known) m_control.moveMouse(x - m_mouse_x, y - m_mouse_y);
    m_mouse_known = true;
    m_mouse_x = x;
    m_mouse_y = y;
    m_logic->onMouseMove({0, x, y}, this);
}

void Channel::onWheel(float notches) {
    if (notches == 0) return; // sideways
    m_control.rollWheel(notches);
    GUIEventWheel event;
    event.delta = 120 * notches;
    event.flag = notches > 0;
    m_logic->onMouseWheel(event, this);
}

void Channel::onFocusLost() {
    m_control.releaseAll();
    m_mouse_known = false;
}
