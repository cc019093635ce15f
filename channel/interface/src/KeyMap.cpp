// SPDX-License-Identifier: MIT
#include "channel/interface/KeyMap.h"

#include "channel/interface/Texts.h"
#include "ig/ui/UILabel.h"
#include "ig/ui/UILayout.h"
#include "ig/ui/UIRoot.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

using namespace ig;

namespace {

constexpr int FONT = 15;         ///< where the picture is large enough
constexpr int READABLE_FONT = 9; ///< pixels; below, one language is better than two
constexpr int SMALLEST_FONT = 5;

const vec4 FACE(0.05f, 0.07f, 0.10f, 0.90f);
const vec4 KEY_COLOR(1.00f, 0.80f, 0.45f, 1);
const vec4 ENGLISH_COLOR(0.72f, 0.84f, 0.95f, 1);

enum Column { KEYS, CHINESE, ENGLISH, BUTTONS, MEANINGS };

/// Words with a dot are keys of `Texts`; those of the keyboard stand on it in every language.
struct Line {
    const char *keys, *action;
};
const Line KEY_LINES[] = {
    {"F1", "help.next_view"},
    {"F2", "help.sonar_deploy"},
    {"F3", "help.sonar_cut"},
    {"Down / Up", "help.sonar_move"},
    {"F5", "help.destroy"},
    {"F6", "help.torpedo"},
    {"Space", "help.missile"},
    {"g", "help.projector"},
    {"Return", "help.level"},
    {"1 2 3 4 5", "help.speed"},
    {"", ""},
    {"mouse.drag_left", "help.orbit"},
    {"mouse.wheel", "help.distance"},
    {"mouse.drag_any", "help.look"},
    {"mouse.left_keys", "help.fly"},
    {"", ""},
    {"mouse.field", "help.field_set"},
    {"", "help.field_step"},
    {"", "help.field_clipboard"},
    {"F7 F8 b t", "help.weather"},
    {"F10", "help.panels"},
    {"F11", "help.statistics"},
    {"F12, h", "help.help"},
    {"Alt + Return", "help.full_screen"},
    {"Alt + p", "help.picture"},
    {"Alt + F4", "help.end"},
};

/// From the top of the column of buttons to its end, by what `Texts` calls them.
const char* const BUTTON_LINES[] = {
    "button.view",       "button.radar",      "button.destroy",     "button.wiper",
    "button.torpedo",    "button.sonar_open", "button.sonar_close", "button.sonar_cut",
    "button.sonar_down", "button.sonar_up",   "button.winch_open",  "button.winch_close",
    "button.winch_down", "button.winch_up",   "button.missile",     "button.decoy",
    "button.reset",
};

void addLine(std::string& text, const char* line) {
    if (!text.empty()) text += '\n';
    text += line;
}

UILabel* addColumn(UIHLayout* layout, std::string text, const vec4& color) {
    auto* label = new UILabel(layout->getRoot(), jString(std::move(text)));
    label->setShowBackground(false);
    label->setColor(color);
    layout->addChild(label);
    return label;
}

bool isChinese() { return !std::strcmp(Texts::get("box.ok"), Texts::get("box.ok", "zh")); }

} // namespace

void KeyMap::open(UIRoot* root) {
    m_root = root;
    m_layout = new UIHLayout(root, 18, 18);
    m_layout->setAlignFree(true);
    m_layout->setBackgroundColor(FACE);
    std::string texts[COLUMNS];
    for (const Line& line : KEY_LINES) {
        const bool blank = !*line.action;
        addLine(texts[KEYS], std::strchr(line.keys, '.') ? Texts::get(line.keys) : line.keys);
        addLine(texts[CHINESE], blank ? "" : Texts::get(line.action, "zh"));
        addLine(texts[ENGLISH], blank ? "" : Texts::get(line.action, "en"));
    }
    for (const char* button : BUTTON_LINES) {
        addLine(texts[BUTTONS], Texts::get(button, "zh"));
        addLine(texts[MEANINGS], Texts::get(button, "en"));
    }
    const vec4 chinese(0.95f, 0.96f, 0.97f, 1);
    const vec4 colors[] = {KEY_COLOR, chinese, ENGLISH_COLOR, KEY_COLOR, ENGLISH_COLOR};
    for (std::size_t i = 0; i < COLUMNS; i++)
        m_columns[i] = addColumn(m_layout, texts[i], colors[i]);
    m_layout->setHidden(true);
    root->addChild(m_layout);
}

void KeyMap::show(bool show) { m_layout->setHidden(!show); }

bool KeyMap::isShown() const { return !m_layout->isHidden(); }

/// In the largest font, down to `smallest`, in which the picture shows all of it.
bool KeyMap::fitsAt(int smallest) {
    for (int font = FONT; font >= SMALLEST_FONT && m_root->pixels(font) >= smallest; font--) {
        for (UILabel* column : m_columns)
            column->setFontSize(font);
        if (m_layout->getWidth() <= m_root->getWidth() &&
            m_layout->getHeight() <= m_root->getHeight())
            return true;
    }
    return false;
}

void KeyMap::fit() {
    const int size[] = {m_root->getWidth(), m_root->getHeight(), m_root->getTextRevision()};
    if (std::equal(std::begin(size), std::end(size), m_fitted)) return;
    std::copy(std::begin(size), std::end(size), m_fitted);
    for (UILabel* column : m_columns)
        column->setHidden(false);
    if (fitsAt(READABLE_FONT)) return;
    m_columns[isChinese() ? ENGLISH : CHINESE]->setHidden(true);
    if (!isChinese() && fitsAt(READABLE_FONT)) return;
    for (const Column column : {BUTTONS, MEANINGS}) // who reads the buttons needs no list of them
        m_columns[column]->setHidden(true);
    fitsAt(0);
}

void KeyMap::place() {
    fit();
    const int x = (m_root->getWidth() - m_layout->getWidth()) / 2;
    const int y = (m_root->getHeight() - m_layout->getHeight()) / 2;
    m_layout->setPosition(std::max(x, 0), std::max(y, 0));
}
