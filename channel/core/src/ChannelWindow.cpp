// SPDX-License-Identifier: MIT

// The channel's window: whether there is one, and what happens in it.

#include "Channel.h"
#include "channel/interface/Texts.h"
#include "ig/base/jLog.h"
#include "ig/ui/KeyCode.h"
#include "render/factory/RendererKind.h"

using namespace ig;

namespace {
constexpr int KEY_PICTURE = 'p';
} // namespace

/// With a display there is a window unless none is wanted. False when one was asked for and can't
/// be had.
bool Channel::openWindow() {
    const RendererKind* kind = findRendererKind(m_options.renderer);
    if (m_options.headless || (kind && !kind->draws)) return true;
    if (!m_options.window && !Window::hasDisplay()) return true;
    if (!m_window.open(m_options.width, m_options.height, m_options.monitor)) {
        if (!m_options.window) jLog::warning("visual_channel: going on without a window");
        return !m_options.window;
    }
    m_window.setVerticalSync(!m_options.no_vertical_sync);
    if (m_options.full_screen) m_window.toggleFullScreen();
    m_options.width = m_window.getWidth();
    m_options.height = m_window.getHeight();
    return true;
}

void Channel::onResized(int width, int height, float density) {
    m_options.width = width;
    m_options.height = height;
    m_renderer->resize(width, height);
    m_interface.resize(width, height, density * m_options.interface_size);
    setProjection();
    m_camera_control.setCamera(&m_camera);
}

// Keys of the window itself are taken with Alt, so that none of the scene's or a text's is.
void Channel::onKey(int key, bool down, bool repeat) {
    const bool alone = down && !repeat && m_interface.isHeld(KEY_ALT);
    if (alone && key == KEY_RETURN) return m_window.toggleFullScreen();
    if (alone && key == KEY_PICTURE) return takePicture();
    if (alone && key == KEY_F4) return endAtOnce();
    if (down)
        m_interface.keyDown(key, repeat);
    else
        m_interface.keyUp(key);
}

void Channel::takePicture() {
    const std::string path = m_screenshots.takeNew(*m_renderer);
    if (path.empty()) return;
    jLog::message("visual_channel: picture written: %s", path.c_str());
    m_interface.getRoot()->tell(Texts::fill("notice.picture", {path}));
}

/// The logic ends the process in its next update, also while a message box has all other keys.
void Channel::endAtOnce() {
    m_control.keyDown(KEY_F4);
    m_control.keyUp(KEY_F4);
}

void Channel::onModifiers(bool shift, bool ctrl, bool alt) {
    m_interface.setModifiers(shift, ctrl, alt);
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

/// Alt is also held to work with windows. Outside its release may be kept from us, and the close
/// button there shall ask.
void Channel::onLeft() { m_interface.keyUp(KEY_ALT); }

/// Where the window manager takes Alt + F4 for itself all that comes is the request to close.
void Channel::onClose() {
    if (m_control.isKeyPress(KEY_ALT)) return endAtOnce();
    m_close_requested = true;
}
