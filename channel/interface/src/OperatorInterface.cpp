// SPDX-License-Identifier: MIT
#include "channel/interface/OperatorInterface.h"

#include "channel/interface/Texts.h"
#include "common/logic/LogicBase.h"
#include "ig/app/ControlApp.h"
#include "ig/app/Engine.h"
#include "ig/app/IApp.h"
#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/mjl.h"
#include "ig/ui/UISpriteViewport.h"

#include <algorithm>
#include <filesystem>

using namespace ig;

namespace {
/// Pixels per unit where texts can just be read.
constexpr float READABLE = 0.7f;
constexpr int KEY_PICTURE = 'p';

/// Of the units that something needs, those that there are: at most 1.
float share(float there, float needed) { return needed > there ? there / needed : 1; }
} // namespace

OperatorInterface::OperatorInterface(IApp* app, WindowOwner& owner, ControlApp* control)
    : m_app(app), m_owner(owner), m_control(control), m_root(std::make_unique<UIRoot>()),
      m_input(m_root.get(), control) {}

void OperatorInterface::open(LogicBase* logic, const std::string& interface_path) {
    m_logic = logic;
    m_panels.assign(m_root->getChildren().begin(), m_root->getChildren().end());
    Package interface;
    std::error_code error;
    if (!mjl::open(interface_path, &interface) && !std::filesystem::exists(interface_path, error))
        jLog::message("visual_channel: there is no \"%s\": the key map tells nothing of the logic, "
                      "and its panels keep their size",
                      interface_path.c_str());
    interface.warnUnknownKeys("OperatorInterface::open", {"panels", "keys", "switches", "buttons"});
    if (const Package* panels = interface.getPackage("panels")) {
        panels->warnUnknownKeys("OperatorInterface::open", {"width", "height", "viewports"});
        m_panels_width = std::max(panels->getFloat("width"), 0.0f);
        m_panels_height = std::max(panels->getFloat("height"), 0.0f);
        m_viewports_height = std::max(panels->getFloat("viewports"), 0.0f);
    }
    m_overlays.open(m_root.get(), interface);
    m_switches.open(interface, Engine::get()->getWorld(), m_root.get());
    fit();
}

void OperatorInterface::close() {
    m_panels.clear();
    m_switches.close();
    m_root.reset();
    m_logic = nullptr;
}

void OperatorInterface::showPanels(bool show) {
    m_panels_shown = show;
    for (UIElement* panel : m_panels)
        panel->setHidden(!show);
    m_root->tell(Texts::get(show ? "notice.panels_shown" : "notice.panels_hidden"));
}

void OperatorInterface::resize(int width, int height, float density) {
    m_width = width;
    m_height = height;
    m_density = density;
    fit();
}

/// In windows that are too small for everything the panels shrink, down to where texts can just be
/// read; in still lower ones so far that no button is cut off, or covered by a viewport.
void OperatorInterface::fit() {
    const auto& viewports = m_root->getViewports();
    const bool viewport_shown =
        std::any_of(viewports.begin(), viewports.end(),
                    [](const UISpriteViewport* v) { return !v->isHidden(); });
    const float width = static_cast<float>(m_width) / m_density;
    const float height = static_cast<float>(m_height) / m_density;
    const float full_height = m_panels_height + m_viewports_height;
    const float all = std::min(share(width, m_panels_width), share(height, full_height));
    const float shown = share(height, viewport_shown ? full_height : m_panels_height);
    m_root->resize(m_width, m_height, m_density * std::max(all, std::min(READABLE, shown)));
}

void OperatorInterface::onKey(int key, bool down, bool repeat) {
    if (!down) {
        if (m_input.keyUp(key)) m_logic->onKeyRelease({key}, m_app);
        return;
    }
    if (!repeat && m_input.isHeld(KEY_ALT) && doWindowsOwn(key)) return;
    if (!m_input.keyDown(key, repeat)) return;
    m_overlays.onKey(key);
    m_switches.onKey(key);
    if (key == KEY_F10) showPanels(!m_panels_shown);
    m_logic->onKeyPress({key}, m_app);
}

/// With Alt. False for a key that is none of the window's.
bool OperatorInterface::doWindowsOwn(int key) {
    if (key == KEY_RETURN) m_owner.toggleFullScreen();
    if (key == KEY_PICTURE) m_owner.takePicture();
    if (key == KEY_F4) endAtOnce();
    return key == KEY_RETURN || key == KEY_PICTURE || key == KEY_F4;
}

/// The logic may end the process in its next update, also while a message box has all other keys.
void OperatorInterface::endAtOnce() {
    m_end_requested = true;
    m_control->keyDown(KEY_F4);
    m_control->keyUp(KEY_F4);
}

void OperatorInterface::onModifiers(bool shift, bool ctrl, bool alt) {
    for (const auto& [key, down] : {std::pair(KEY_SHIFT, shift), {KEY_CTRL, ctrl}, {KEY_ALT, alt}})
        if (m_input.isHeld(key) != down) onKey(key, down, false);
}

void OperatorInterface::onButton(int button, bool down, float x, float y) {
    if (down && m_input.mouseDown(button, x, y)) m_logic->onMouseDown({button, x, y}, m_app);
    if (!down && m_input.mouseUp(button, x, y)) m_logic->onMouseUp({button, x, y}, m_app);
}

void OperatorInterface::onMove(float x, float y) {
    if (m_input.mouseMove(x, y)) m_logic->onMouseMove({0, x, y}, m_app);
}

void OperatorInterface::onWheel(float notches) {
    if (notches == 0) return; // sideways
    const auto up = static_cast<unsigned char>(notches > 0 ? 1 : 0);
    if (m_input.wheel(notches)) m_logic->onMouseWheel({notches * 120, up}, m_app);
}

/// Alt is also held to work with windows. Outside its release may be kept from us, and the close
/// button there shall ask.
void OperatorInterface::onLeft() { onKey(KEY_ALT, false, false); }

/// Where the window manager takes Alt + F4 for itself all that comes is the request to close.
void OperatorInterface::onClose() {
    if (m_control->isKeyPress(KEY_ALT)) return endAtOnce();
    m_close_requested = true;
}

void OperatorInterface::update(float dt) {
    fit();
    m_overlays.place();
    m_root->update(dt);
}

const UiDrawList* OperatorInterface::drawAll() {
    std::vector<UIElement*> hidden;
    const auto show = [&hidden](UIElement* element) {
        if (!element->isHidden()) return;
        hidden.push_back(element);
        element->setHidden(false);
    };
    std::ranges::for_each(m_root->getChildren(), show);
    std::ranges::for_each(m_root->getViewports(), show);
    update(0);
    draw();
    for (UIElement* element : hidden)
        element->setHidden(true);
    update(0);
    return &m_list;
}

const UiDrawList* OperatorInterface::draw() {
    m_root->draw(m_list);
    return &m_list;
}

void OperatorInterface::drawPanels(UiDrawList& list) const {
    list.clear();
    for (const UIElement* panel : m_panels)
        if (!panel->isHidden()) panel->draw(list);
}
