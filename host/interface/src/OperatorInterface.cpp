// SPDX-License-Identifier: MIT
#include "host/interface/OperatorInterface.h"

#include "common/logic/LogicBase.h"
#include "ig/app/IApp.h"

#include <algorithm>

using namespace ig;

namespace {
/// Pixels of height that panels and radar picture need one above the other. In lower windows
/// everything shrinks, down to where texts can just be read.
constexpr float FULL_HEIGHT = 680;
constexpr float SMALLEST = 0.7f;
} // namespace

OperatorInterface::OperatorInterface(IApp* app, ControlApp* control)
    : m_app(app), m_root(std::make_unique<UIRoot>()), m_input(m_root.get(), control) {}

void OperatorInterface::open(LogicBase* logic) {
    m_logic = logic;
    m_overlays.open(m_root.get());
}

void OperatorInterface::close() {
    m_root.reset();
    m_logic = nullptr;
}

void OperatorInterface::resize(int width, int height, float density) {
    const float room = static_cast<float>(height) / (FULL_HEIGHT * density);
    m_root->resize(width, height, density * std::clamp(room, SMALLEST, 1.0f));
}

void OperatorInterface::keyDown(int key, bool repeat) {
    if (!m_input.keyDown(key, repeat)) return;
    m_overlays.onKey(key);
    m_logic->onKeyPress({key}, m_app);
}

void OperatorInterface::keyUp(int key) {
    if (m_input.keyUp(key)) m_logic->onKeyRelease({key}, m_app);
}

void OperatorInterface::mouseDown(int button, float x, float y) {
    if (m_input.mouseDown(button, x, y)) m_logic->onMouseDown({button, x, y}, m_app);
}

void OperatorInterface::mouseUp(int button, float x, float y) {
    if (m_input.mouseUp(button, x, y)) m_logic->onMouseUp({button, x, y}, m_app);
}

void OperatorInterface::mouseMove(float x, float y) {
    if (m_input.mouseMove(x, y)) m_logic->onMouseMove({0, x, y}, m_app);
}

void OperatorInterface::wheel(float notches) {
    const auto up = static_cast<unsigned char>(notches > 0 ? 1 : 0);
    if (notches != 0 && m_input.wheel(notches)) m_logic->onMouseWheel({notches * 120, up}, m_app);
}

void OperatorInterface::update(float dt) {
    m_overlays.place();
    m_root->update(dt);
}

const UiDrawList* OperatorInterface::draw() {
    m_root->draw(m_list);
    return &m_list;
}
