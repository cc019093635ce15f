// SPDX-License-Identifier: MIT

// The channel's window: whether there is one, and what happens in it.

#include "Channel.h"
#include "ig/base/jLog.h"
#include "ig/ui/KeyCode.h"

using namespace ig;

namespace {
constexpr int KEY_PICTURE = 'p';
} // namespace

/// With a display there is a window unless none is wanted. False when one was asked for and can't
/// be had.
bool Channel::openWindow() {
    if (m_options.headless || m_options.renderer == "null") return true;
    if (!m_options.window && !Window::hasDisplay()) return true;
    if (!m_window.open(m_options.width, m_options.height)) {
        if (!m_options.window) jLog::warning("visual_channel: going on without a window");
        return !m_options.window;
    }
    m_window.setVerticalSync(!m_options.no_vertical_sync);
    m_options.width = m_window.getWidth();
    m_options.height = m_window.getHeight();
    return true;
}

void Channel::onResized(int width, int height, float density) {
    m_options.width = width;
    m_options.height = height;
    m_renderer->resize(width, height);
    m_interface.resize(width, height, density);
    setProjection();
    m_camera_control.setCamera(&m_camera);
}

// Keys of the window itself are taken with Alt, so that none of the scene's or a text's is.
void Channel::onKey(int key, bool down, bool repeat) {
    const bool alone = down && !repeat && m_control.isKeyPress(KEY_ALT);
    if (alone && key == KEY_RETURN) return m_window.toggleFullScreen();
    if (alone && key == KEY_PICTURE) return m_screenshots.take(*m_renderer);
    // The logic ends the process, also while a message box has all other keys.
    if (alone && key == KEY_F4) return m_control.keyDown(key);
    if (down)
        m_interface.keyDown(key, repeat);
    else
        m_interface.keyUp(key);
}

void Channel::onText(const char* utf8) { m_interface.text(utf8); }

void Channel::onButton(int button, bool down, float x, float y) {
    if (down)
        m_interface.mouseDown(button, x, y);
    else
        m_interface.mouseUp(button, x, y);
}

void Channel::onMove(float x, float y) { m_interface.mouseMove(x, y); }

void Channel::onWheel(float notches) {
    if (notches != 0) m_interface.wheel(notches); // 0: sideways
}

void Channel::onFocusLost() { m_interface.focusLost(); }
