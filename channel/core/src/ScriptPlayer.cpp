// SPDX-License-Identifier: MIT
#include "ScriptPlayer.h"

#include "channel/interface/WindowListener.h"
#include "ig/base/jLog.h"
#include "ig/ui/KeyCode.h"
#include "ig/ui/UIElement.h"
#include "ig/ui/UIRoot.h"

#include <algorithm>

using namespace ig;

namespace {

using Kind = ScriptCommand::Kind;

/// Whether a press there acts: it meets a button or a field.
bool isPushed(const UIElement* element) {
    return element && (element->isFocusedByPress() || element->isField());
}

/// The key that types a character, or -1.
int keyOfCharacter(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A' + 'a';
    return c >= ' ' && c <= '~' ? c : -1;
}

} // namespace

bool ScriptPlayer::keepsPictures() const {
    return std::ranges::any_of(m_script.commands,
                               [](const auto& c) { return c.kind == Kind::screenshot; });
}

void ScriptPlayer::play(double time, bool records) {
    if (!m_start && (m_script.from_start || records)) m_start = m_script.from_start ? 0 : time;
    if (!m_start) return;
    m_time = time - *m_start;
    advanceHeld();
    if (m_notches != 0) return rollWheel();
    while (m_next < m_script.commands.size() && m_picture.empty() && m_notches == 0) {
        const ScriptCommand& command = m_script.commands[m_next];
        if (command.at > m_time || (command.usesMouse() && mouseIsHeld())) return;
        if (command.kind == Kind::key && isHeld(command.keys.back())) return;
        m_next++;
        if (!begin(command)) m_failures++;
    }
}

/// False when the command can't be done.
bool ScriptPlayer::begin(const ScriptCommand& command) {
    switch (command.kind) {
    case Kind::click:
        return click(command);
    case Kind::key:
        pressKeys(command.keys);
        m_held.push_back({&command, m_time, 0, 0, true});
        break;
    case Kind::type:
        typeText(command.text);
        break;
    case Kind::drag:
        moveToMiddle();
        m_held.push_back({&command, m_time, m_x, m_y, false});
        break;
    case Kind::wheel:
        moveToMiddle();
        m_notches = command.notches;
        rollWheel();
        break;
    case Kind::screenshot:
        m_picture = command.text;
        break;
    case Kind::quit:
        m_quit = true;
        break;
    }
    return true;
}

/// What is held goes on before anything is let go.
void ScriptPlayer::advanceHeld() {
    const auto ended = std::stable_partition(m_held.begin(), m_held.end(),
                                             [this](Held& held) { return !advance(held); });
    std::for_each(ended, m_held.end(), [this](const Held& held) {
        if (held.command->usesMouse())
            m_listener.onButton(held.command->button, false, m_x, m_y);
        else
            releaseKeys(held.command->keys);
    });
    m_held.erase(ended, m_held.end());
}

bool ScriptPlayer::advance(Held& held) {
    const ScriptCommand& command = *held.command;
    const bool over = m_time - held.since >= command.duration;
    if (!held.pressed) { // the way to its place was no part of the drag
        m_listener.onButton(command.button, true, held.x, held.y);
        held.pressed = true;
        held.since = m_time;
        return false;
    }
    if (command.kind == Kind::drag) {
        const double share = over ? 1 : (m_time - held.since) / command.duration;
        moveTo(held.x + command.x * static_cast<float>(share),
               held.y + command.y * static_cast<float>(share));
    }
    return over;
}

bool ScriptPlayer::click(const ScriptCommand& command) {
    if (!findText(command.text)) {
        jLog::error("%s:%d: there is no button \"%s\" to click; there are %s",
                    m_script.path.c_str(), command.line, command.text.c_str(),
                    listButtons().c_str());
        return false;
    }
    m_held.push_back({&command, m_time, m_x, m_y, true});
    m_listener.onButton(command.button, true, m_x, m_y);
    return true;
}

/// Moves the mouse to where the text is drawn. False when it isn't, or is no button there.
bool ScriptPlayer::findText(const std::string& text) {
    m_ui.draw(m_list);
    for (const UiDrawList::Command& command : m_list.getCommands()) {
        if (command.kind != UiDrawList::Kind::text || m_list.text(command) != text) continue;
        const float width = m_ui.getTextWidth(command.h, text);
        const float x = command.x + width / 2, y = command.y + command.h / 2;
        if (!isPushed(m_ui.getElementAt(x, y))) continue;
        moveTo(x, y);
        return true;
    }
    return false;
}

std::string ScriptPlayer::listButtons() {
    std::string names;
    m_ui.draw(m_list);
    for (const UiDrawList::Command& command : m_list.getCommands()) {
        if (command.kind != UiDrawList::Kind::text) continue;
        const UIElement* element =
            m_ui.getElementAt(command.x + command.h / 2, command.y + command.h / 2);
        if (!element || !element->isFocusedByPress()) continue;
        names += (names.empty() ? "\"" : ", \"") + std::string(m_list.text(command)) + "\"";
    }
    return names.empty() ? "none" : names;
}

void ScriptPlayer::moveTo(float x, float y) {
    m_x = x;
    m_y = y;
    m_listener.onMove(x, y);
}

void ScriptPlayer::moveToMiddle() {
    moveTo(static_cast<float>(m_ui.getWidth()) / 2, static_cast<float>(m_ui.getHeight()) / 2);
}

void ScriptPlayer::rollWheel() {
    const int notch = m_notches > 0 ? 1 : -1;
    m_notches -= notch;
    m_listener.onWheel(static_cast<float>(notch));
}

/// A key that types goes to a field as its character, too.
void ScriptPlayer::pressKeys(const std::vector<int>& keys) {
    for (const int key : keys) {
        m_listener.onKey(key, true, false);
        const char character[] = {static_cast<char>(key), 0};
        if (keys.size() == 1 && key < KEY_ESCAPE) m_listener.onText(character);
    }
}

void ScriptPlayer::releaseKeys(const std::vector<int>& keys) {
    std::for_each(keys.rbegin(), keys.rend(),
                  [this](int key) { m_listener.onKey(key, false, false); });
}

void ScriptPlayer::typeText(const std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t begin = i++;
        while (i < text.size() && (text[i] & 0xC0) == 0x80)
            i++; // the rest of a character
        const int key = keyOfCharacter(text[begin]);
        if (key >= 0) m_listener.onKey(key, true, false);
        m_listener.onText(text.substr(begin, i - begin).c_str());
        if (key >= 0) m_listener.onKey(key, false, false);
    }
}

bool ScriptPlayer::isHeld(int key) const {
    return std::ranges::any_of(m_held, [key](const Held& h) {
        return h.command->kind == Kind::key && h.command->keys.back() == key;
    });
}

bool ScriptPlayer::mouseIsHeld() const {
    return std::ranges::any_of(m_held, [](const Held& h) { return h.command->usesMouse(); });
}
