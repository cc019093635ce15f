// SPDX-License-Identifier: MIT
#include "ig/ui/UiDrawList.h"

namespace ig {

void UiDrawList::clear() {
    m_commands.clear();
    m_text.clear();
}

void UiDrawList::addRect(float x, float y, float w, float h, const vec4& rgba) {
    add(Kind::rect, x, y, w, h).rgba = rgba;
}

void UiDrawList::addText(float x, float y, float size, const vec4& rgba, std::string_view utf8) {
    if (utf8.empty()) return;
    Command& command = add(Kind::text, x, y, 0, size);
    command.rgba = rgba;
    store(command, utf8);
}

void UiDrawList::addImage(float x, float y, float w, float h, std::string_view path) {
    store(add(Kind::image, x, y, w, h), path);
}

void UiDrawList::addImage(float x, float y, float w, float h, int viewport) {
    add(Kind::viewport, x, y, w, h).viewport = viewport;
}

UiDrawList::Command& UiDrawList::add(Kind kind, float x, float y, float w, float h) {
    m_commands.push_back({kind, x, y, w, h, vec4(1, 1, 1, 1), 0, 0, 0});
    return m_commands.back();
}

void UiDrawList::store(Command& command, std::string_view text) {
    command.begin = m_text.size();
    command.length = text.size();
    m_text += text;
}

} // namespace ig
