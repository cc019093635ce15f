// SPDX-License-Identifier: MIT
#include "ig/app/InputRouter.h"

#include "ig/app/ControlApp.h"
#include "ig/ui/UIRoot.h"

namespace ig {

namespace {
template <std::size_t N>
bool inRange(const std::bitset<N>&, int i) {
    return i >= 0 && i < static_cast<int>(N);
}
} // namespace

bool InputRouter::keyDown(int key, bool repeat) {
    if (!inRange(m_held, key)) return false;
    // The same press again, when the window system repeats without saying so.
    const bool modifier = key >= KEY_SHIFT && key <= KEY_ALT;
    repeat = m_held[key] || (repeat && !modifier);
    m_held.set(key);
    const UIEventKey event{key, m_held[KEY_SHIFT], m_held[KEY_CTRL]};
    // A key that the scene holds does not turn to the field that has got the focus meanwhile.
    if (!m_scene_keys[key] && m_ui->keyDown(event)) return false;
    if (repeat) return false;
    m_scene_keys.set(key);
    m_scene->keyDown(key);
    return true;
}

bool InputRouter::keyUp(int key) {
    if (!inRange(m_held, key)) return false;
    m_held.reset(key);
    if (!m_scene_keys[key]) return false;
    m_scene_keys.reset(key);
    m_scene->keyUp(key);
    return true;
}

bool InputRouter::isHeld(int key) const { return inRange(m_held, key) && m_held[key]; }

void InputRouter::text(const char* utf8) { m_ui->text(utf8); }

bool InputRouter::mouseDown(int button, float x, float y) {
    if (!inRange(m_scene_buttons, button)) return false;
    mouseMove(x, y);
    if (m_ui->mouseDown({button, x, y})) return false;
    if (m_scene_buttons.none()) m_scene->dropMotion(); // on the way here nothing was dragged
    m_scene_buttons.set(button);
    if (button == 0) m_scene->setLeftButton(true);
    if (button == 1) m_scene->setRightButton(true);
    return true;
}

bool InputRouter::mouseUp(int button, float x, float y) {
    if (!inRange(m_scene_buttons, button)) return false;
    mouseMove(x, y);
    m_ui->mouseUp({button, x, y});
    if (!m_scene_buttons[button]) return false;
    m_scene_buttons.reset(button);
    if (button == 0) m_scene->setLeftButton(false);
    if (button == 1) m_scene->setRightButton(false);
    return true;
}

bool InputRouter::mouseMove(float x, float y) {
    if (m_moved) m_scene->moveMouse(x - m_x, y - m_y);
    m_moved = true;
    m_x = x;
    m_y = y;
    // While the scene holds a button the mouse is the scene's wherever it is.
    return !m_ui->mouseMove(x, y) || m_scene_buttons.any();
}

bool InputRouter::wheel(float notches) {
    const UIEventKey modifiers{0, m_held[KEY_SHIFT], m_held[KEY_CTRL]};
    if (m_ui->wheel(notches, modifiers)) return false;
    m_scene->rollWheel(notches);
    return true;
}

void InputRouter::focusLost() {
    m_ui->cancelPress();
    m_scene->releaseAll();
    m_scene_keys.reset();
    m_scene_buttons.reset();
    m_held.reset();
    m_moved = false;
}

} // namespace ig
