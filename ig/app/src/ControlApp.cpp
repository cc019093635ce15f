// SPDX-License-Identifier: MIT
#include "ig/app/ControlApp.h"

namespace ig {

void ControlApp::keyDown(int key) {
    if (!isKey(key) || (m_pressed[index(key)] && !m_released[index(key)])) return;
    m_released.reset(index(key));
    m_pressed.set(index(key));
    m_clicked.set(index(key));
    m_struck.set(index(key));
}

void ControlApp::keyUp(int key) {
    if (!isKey(key) || !m_pressed[index(key)]) return;
    if (m_struck.any())
        m_released.set(index(key));
    else
        m_pressed.reset(index(key));
}

void ControlApp::moveMouse(float dx, float dy) {
    m_dx += dx;
    m_dy += dy;
}

void ControlApp::endFrame() {
    m_pressed &= ~m_released;
    m_released.reset();
    m_struck.reset();
    m_clicked.reset();
    m_wheel = m_dx = m_dy = 0;
}

void ControlApp::releaseAll() {
    m_pressed.reset();
    m_left = m_right = false;
    endFrame();
}

} // namespace ig
