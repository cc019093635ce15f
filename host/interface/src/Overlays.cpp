// SPDX-License-Identifier: MIT
#include "host/interface/Overlays.h"

#include "host/interface/LinkState.h"
#include "ig/ui/KeyCode.h"
#include "ig/ui/UILabel.h"
#include "ig/ui/UIRoot.h"

#include <algorithm>
#include <cstdio>

using namespace ig;

namespace {

constexpr double REFRESH = 0.5; ///< s between two texts of the statistics
constexpr int MARGIN = 8;       ///< of the statistics from the corner
constexpr int HELP_FONT = 15;   ///< of the key map, where the picture is large enough
constexpr int SMALLEST_FONT = 5;

const vec4 FACE(0.05f, 0.07f, 0.10f, 0.86f);
const vec4 KEY_COLOR(1.00f, 0.80f, 0.45f, 1);

struct HelpLine {
    const char *keys, *action;
};
const HelpLine HELP[] = {
    {"F1", "next view: first person, third person, free camera"},
    {"F2", "deploy the dipping sonar"},
    {"F3", "cut the sonar loose"},
    {"Down / Up", "lower / raise the sonar"},
    {"F5", "destroy the helicopter"},
    {"F6", "drop a torpedo"},
    {"Space", "fire a missile"},
    {"g", "front projector on / off"},
    {"Return", "level the camera"},
    {"1 2 3 4 5", "free camera's speed: 10, 200, 1000, 10000, 10000 m/s"},
    {"", ""},
    {"Left drag", "third person: orbit the helicopter"},
    {"Wheel", "third person: nearer, farther"},
    {"Left or right drag", "free camera: look around (not with Ctrl)"},
    {"Left + w s a d", "free camera: fly (4 times as fast with Shift, not with Ctrl)"},
    {"", ""},
    {"In a field", "Return sets, Escape leaves as it was, Tab goes to the next one;"},
    {"", "the wheel steps (10 times with Shift, a tenth with Ctrl);"},
    {"", "Ctrl + a, c, x, v selects all, copies, cuts, pastes"},
    {"F11", "statistics: off, frame rate, all"},
    {"F12 or h", "this help"},
    {"F7 F8 b t", "sky, precipitation, sea, hour (with Shift earlier)"},
    {"Alt + Return", "full screen"},
    {"Alt + p", "save a picture"},
    {"Alt + F4", "end at once"},
};

UILabel* makeColumn(UIRoot* root, const char* HelpLine::*column) {
    std::string text;
    for (const HelpLine& line : HELP)
        text += std::string(text.empty() ? "" : "\n") + line.*column;
    auto* label = new UILabel(root, jString(text));
    label->setShowBackground(false);
    return label;
}

} // namespace

void Overlays::open(UIRoot* root) {
    m_root = root;
    m_help = new UIHLayout(root, 24, 20);
    m_help->setAlignFree(true);
    m_help->setBackgroundColor(FACE);
    m_help_columns[0] = makeColumn(root, &HelpLine::keys);
    m_help_columns[0]->setColor(KEY_COLOR);
    m_help_columns[1] = makeColumn(root, &HelpLine::action);
    for (UILabel* column : m_help_columns)
        m_help->addChild(column);
    m_label = new UILabel(root, "");
    m_label->setAlignFree(true);
    m_label->setBackgroundColor(FACE);
    for (UIElement* element : {static_cast<UIElement*>(m_label), static_cast<UIElement*>(m_help)}) {
        element->setHidden(true);
        root->addChild(element);
    }
}

void Overlays::onKey(int key) {
    if (key == KEY_F12 || key == 'h') showHelp(m_help->isHidden());
    if (key == KEY_F11)
        showStatistics(m_statistics == Statistics::off    ? Statistics::rate
                       : m_statistics == Statistics::rate ? Statistics::full
                                                          : Statistics::off);
}

void Overlays::showHelp(bool show) { m_help->setHidden(!show); }

void Overlays::showStatistics(Statistics statistics) {
    m_statistics = statistics;
    m_label->setHidden(statistics == Statistics::off);
    if (m_sums.frames > 0) write();
}

void Overlays::addFrame(float dt, const FrameCosts& costs, int records) {
    m_sums.time += static_cast<double>(dt);
    m_sums.frames++;
    m_sums.records += records;
    m_sums.frames_with[std::clamp(records, 0, BUCKETS - 1)]++;
    m_sums.costs.update += costs.update;
    m_sums.costs.physics += costs.physics;
    m_sums.costs.interface += costs.interface;
    m_sums.costs.draw += costs.draw;
    if (m_sums.time < REFRESH) return;
    if (m_statistics != Statistics::off) write();
    m_sums = {};
}

/// In the largest font in which the picture shows all of it.
void Overlays::fitHelp() {
    const int size[] = {m_root->getWidth(), m_root->getHeight(), m_root->getTextRevision()};
    if (std::equal(std::begin(size), std::end(size), m_fitted)) return;
    std::copy(std::begin(size), std::end(size), m_fitted);
    for (int font = HELP_FONT; font >= SMALLEST_FONT; font--) {
        for (UILabel* column : m_help_columns)
            column->setFontSize(font);
        if (m_help->getWidth() <= size[0] && m_help->getHeight() <= size[1]) return;
    }
}

void Overlays::place() {
    fitHelp();
    const int x = (m_root->getWidth() - m_help->getWidth()) / 2;
    const int y = (m_root->getHeight() - m_help->getHeight()) / 2;
    m_help->setPosition(std::max(x, 0), std::max(y, 0));
    m_label->setPosition(m_root->pixels(MARGIN), m_root->pixels(MARGIN));
}

void Overlays::write() {
    const Sums& s = m_sums;
    const double rate = s.time > 0 ? s.frames / s.time : 0;
    char text[512];
    if (m_statistics == Statistics::rate) {
        std::snprintf(text, sizeof text, "%.1f frames/s", rate);
        m_label->setText(text);
        return;
    }
    const auto milliseconds = [&](double sum) { return sum / s.frames * 1e3; };
    const auto share = [&](int bucket) { return 100.0 * s.frames_with[bucket] / s.frames; };
    const LinkState link = LinkState::read();
    char age[32] = "none yet";
    if (link.age() >= 0) std::snprintf(age, sizeof age, "%.0f ms ago", link.age() * 1e3);
    std::snprintf(text, sizeof text,
                  "%.1f frames/s, %.2f ms each\n"
                  "update %.2f, physics %.2f, interface %.2f, draw %.2f ms\n"
                  "records %.1f/s, the last %s\n"
                  "records per frame: none %.0f %%, one %.0f %%, two %.0f %%, more %.0f %%\n"
                  "feedback %llu sent",
                  rate, milliseconds(s.time), milliseconds(s.costs.update),
                  milliseconds(s.costs.physics), milliseconds(s.costs.interface),
                  milliseconds(s.costs.draw), s.time > 0 ? s.records / s.time : 0, age, share(0),
                  share(1), share(2), share(3), static_cast<unsigned long long>(link.sent));
    m_label->setText(text);
}
