// SPDX-License-Identifier: MIT
#include "channel/interface/KeyMap.h"

#include "channel/interface/Texts.h"
#include "ig/package/Package.h"
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

/// The application's own. Words with a dot are keys of `Texts`; those of the keyboard stand on it
/// in every language.
struct Line {
    const char *keys, *action;
};
const Line OWN_LINES[] = {
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

void addLine(std::string& text, const char* line) { text.append(line) += '\n'; }

UILabel* addColumn(UIHLayout* layout, std::string text, const vec4& color) {
    auto* label = new UILabel(layout->getRoot(), jString(std::move(text)));
    label->setShowBackground(false);
    label->setColor(color);
    layout->addChild(label);
    return label;
}

bool isChinese() { return Texts::getLanguage() == "zh"; }

} // namespace

void KeyMap::open(UIRoot* root, const Package& interface) {
    m_root = root;
    m_layout = new UIHLayout(root, 18, 18);
    m_layout->setAlignFree(true);
    m_layout->setBackgroundColor(FACE);
    std::string texts[COLUMNS];
    for (const Package* line : interface.getPackages("keys")) {
        line->warnUnknownKeys("KeyMap::open", {"keys", "does"});
        addLine(texts[KEYS], Texts::choose(*line, "keys", Texts::getLanguage()));
        addLine(texts[CHINESE], Texts::choose(*line, "does", "zh"));
        addLine(texts[ENGLISH], Texts::choose(*line, "does", "en"));
    }
    for (std::string& text : texts)
        if (!text.empty()) text += '\n'; // apart from the application's own
    for (const Line& line : OWN_LINES) {
        addLine(texts[KEYS], std::strchr(line.keys, '.') ? Texts::get(line.keys) : line.keys);
        addLine(texts[CHINESE], Texts::get(line.action, "zh"));
        addLine(texts[ENGLISH], Texts::get(line.action, "en"));
    }
    for (const Package* line : interface.getPackages("buttons")) {
        line->warnUnknownKeys("KeyMap::open", {"button", "does"});
        addLine(texts[BUTTONS], Texts::choose(*line, "button", Texts::getLanguage()));
        addLine(texts[MEANINGS], Texts::choose(*line, "does", "en"));
    }
    const vec4 chinese(0.95f, 0.96f, 0.97f, 1);
    const vec4 colors[] = {KEY_COLOR, chinese, ENGLISH_COLOR, KEY_COLOR, ENGLISH_COLOR};
    for (std::size_t i = 0; i < COLUMNS; i++) {
        if (!texts[i].empty()) texts[i].pop_back(); // its last line ends with the text
        m_columns[i] = addColumn(m_layout, texts[i], colors[i]);
    }
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
    // Whoever reads the buttons needs no list of them.
    for (const Column column : {BUTTONS, MEANINGS})
        m_columns[column]->setHidden(true);
    fitsAt(0);
}

void KeyMap::place() {
    fit();
    const int x = (m_root->getWidth() - m_layout->getWidth()) / 2;
    const int y = (m_root->getHeight() - m_layout->getHeight()) / 2;
    m_layout->setPosition(std::max(x, 0), std::max(y, 0));
}
