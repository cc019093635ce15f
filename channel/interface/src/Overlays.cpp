// SPDX-License-Identifier: MIT
#include "channel/interface/Overlays.h"

#include "channel/interface/LinkMonitor.h"
#include "channel/interface/PaceMonitor.h"
#include "channel/interface/Texts.h"
#include "ig/ui/KeyCode.h"
#include "ig/ui/UILabel.h"
#include "ig/ui/UIRoot.h"

#include <algorithm>

using namespace ig;

namespace {

constexpr double REFRESH = 0.5; ///< s between two texts of the statistics
constexpr int MARGIN = 8;       ///< of the statistics from the corner
constexpr int LINK_FONT = 14;   ///< of what is wrong with the link, where there is room
constexpr int SMALLEST_FONT = 5;

const vec4 FACE(0.05f, 0.07f, 0.10f, 0.86f);
const vec4 WARNING_COLOR(1.00f, 0.80f, 0.45f, 1);

} // namespace

void Overlays::open(UIRoot* root, const Package& interface) {
    m_root = root;
    for (UILabel** label : {&m_link_label, &m_label}) {
        *label = new UILabel(root, "");
        (*label)->setAlignFree(true);
        (*label)->setBackgroundColor(FACE);
        (*label)->setHidden(true);
        root->addChild(*label);
    }
    m_link_label->setColor(WARNING_COLOR);
    m_notices.open(root);
    m_key_map.open(root, interface);
}

void Overlays::onKey(int key) {
    if (key == KEY_F12 || key == KEY_HELP) showHelp(!m_key_map.isShown());
    if (key == KEY_F11)
        showStatistics(m_statistics == Statistics::off    ? Statistics::rate
                       : m_statistics == Statistics::rate ? Statistics::full
                                                          : Statistics::off);
}

void Overlays::showHelp(bool show) {
    m_key_map.show(show);
    m_notices.hideHint();
}

void Overlays::showStatistics(Statistics statistics) {
    m_statistics = statistics;
    m_label->setHidden(statistics == Statistics::off);
    if (m_sums.frames > 0) write();
}

void Overlays::addFrame(float dt, const FrameCosts& costs, int records) {
    m_notices.advance(dt);
    m_sums.time += dt;
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

void Overlays::place() {
    m_key_map.place();
    m_notices.place();
    m_label->setPosition(m_root->pixels(MARGIN), m_root->pixels(MARGIN));
    placeLink();
}

/// In the middle of the upper edge, below the statistics where these are in the way, in a font in
/// which the picture is wide enough.
void Overlays::placeLink() {
    const std::string link = m_link ? m_link->getPictureText() : "";
    const std::string text =
        m_scene_state + (m_scene_state.empty() || link.empty() ? "" : "\n") + link;
    m_link_label->setHidden(text.empty());
    if (text.empty()) return;
    m_link_label->setText(text);
    const int margin = m_root->pixels(MARGIN), width = m_root->getWidth();
    for (int font = LINK_FONT; font >= SMALLEST_FONT; font--) {
        m_link_label->setFontSize(font);
        if (m_link_label->getWidth() + 2 * margin <= width) break;
    }
    const int x = std::max((width - m_link_label->getWidth()) / 2, 0);
    const bool beside = m_label->isHidden() || x >= 2 * margin + m_label->getWidth();
    m_link_label->setPosition(x, beside ? margin : 2 * margin + m_label->getHeight());
}

void Overlays::write() {
    const Sums& s = m_sums;
    const double rate = s.time > 0 ? s.frames / s.time : 0;
    if (m_statistics == Statistics::rate) {
        m_label->setText(jString(Texts::fill("statistics.rate", {Texts::decimal(rate, 1)})));
        return;
    }
    const auto milliseconds = [&](double sum) { return Texts::decimal(sum / s.frames * 1e3, 2); };
    const auto share = [&](int bucket) {
        return Texts::decimal(100.0 * s.frames_with[bucket] / s.frames, 0);
    };
    const double seconds = m_pace ? m_pace->getAge() : -1;
    const std::string age = seconds < 0
                                ? Texts::get("statistics.no_record")
                                : Texts::fill("statistics.age", {Texts::decimal(seconds * 1e3, 0)});
    const std::string lines[] = {
        Texts::fill("statistics.frames", {Texts::decimal(rate, 1), milliseconds(s.time)}),
        Texts::fill("statistics.costs",
                    {milliseconds(s.costs.update), milliseconds(s.costs.physics),
                     milliseconds(s.costs.interface), milliseconds(s.costs.draw)}),
        Texts::fill("statistics.records",
                    {Texts::decimal(s.time > 0 ? s.records / s.time : 0, 1), age}),
        Texts::fill("statistics.per_frame", {share(0), share(1), share(2), share(3)}),
    };
    std::string text;
    for (const std::string& line : lines)
        text += (text.empty() ? "" : "\n") + line;
    if (m_pace) text += '\n' + m_pace->getStatistics();
    if (m_link) {
        const std::uint64_t sent = m_link->getSent().datagrams_sent;
        text += '\n' + Texts::fill("statistics.feedback", {std::to_string(sent)});
        text += '\n' + m_link->getStatistics();
    }
    m_label->setText(jString(text));
}
