// SPDX-License-Identifier: MIT

// The channel's window: whether there is one, and what happens in it.

#include "Channel.h"
#include "channel/interface/Texts.h"
#include "ig/base/jLog.h"
#include "render/factory/RendererKind.h"

using namespace ig;

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

void Channel::resize(int width, int height, float density) {
    m_options.width = width;
    m_options.height = height;
    m_renderer->resize(width, height);
    m_interface.resize(width, height, density * m_options.interface_size);
    setProjection();
    m_camera_control.setCamera(&m_camera);
}

void Channel::takePicture() {
    const std::string path = m_screenshots.takeNew(*m_renderer);
    if (path.empty()) return;
    jLog::message("visual_channel: picture written: %s", path.c_str());
    m_interface.getRoot()->tell(Texts::fill("notice.picture", {path}));
}
