// SPDX-License-Identifier: MIT
#pragma once

#include "channel/interface/KeyMap.h"
#include "channel/interface/Notices.h"

#include <string>

class LinkMonitor;
class PaceMonitor;

namespace ig {
class Package;
class UILabel;
} // namespace ig

/// Work of one frame, seconds.
struct FrameCosts {
    double update = 0; ///< the logic's
    double physics = 0;
    double interface = 0;
    double draw = 0;
};

/// What the operator can lay over the picture besides the panels: the key map, and how the channel
/// is doing.
class Overlays {
public:
    enum class Statistics { off, rate, full };
    static constexpr int KEY_HELP = 'h';

    /// Adds the overlays, hidden, to the user interface, which owns them. `interface`: see
    /// `KeyMap`.
    void open(ig::UIRoot* root, const ig::Package& interface);
    /// Shows how that link is doing: a line over the picture while something is wrong with it, and
    /// more in the statistics, where the pace is told too. They must outlive the overlays.
    void watch(const LinkMonitor* link, const PaceMonitor* pace) {
        m_link = link;
        m_pace = pace;
    }
    /// Shows a line over the picture, above those of the link, until an empty one takes it away.
    void setSceneState(const std::string& text) { m_scene_state = text; }
    /// F12 or h shows and hides the key map, F11 steps through the statistics. Others are left
    /// alone.
    void onKey(int key);
    void showHelp(bool show); ///< either way the hint at it goes
    Notices& getNotices() { return m_notices; }
    void showStatistics(Statistics statistics);
    /// After every frame: its duration, what it cost, and the records that were applied in it.
    /// Twice a second the statistics are written anew.
    void addFrame(float dt, const FrameCosts& costs, int records);
    /// Keeps everything in its place, the link's line at the upper edge; before the layout.
    void place();

private:
    static constexpr int BUCKETS = 4; ///< frames with 0, 1, 2 and more records

    /// Sums since the statistics were written.
    struct Sums {
        double time = 0;
        int frames = 0, records = 0;
        int frames_with[BUCKETS] = {};
        FrameCosts costs;
    };
    void write();
    void placeLink();

    ig::UIRoot* m_root = nullptr;
    ig::UILabel* m_label = nullptr; ///< the root's, as the link's
    ig::UILabel* m_link_label = nullptr;
    const LinkMonitor* m_link = nullptr;
    const PaceMonitor* m_pace = nullptr;
    std::string m_scene_state;
    KeyMap m_key_map;
    Notices m_notices;
    Statistics m_statistics = Statistics::off;
    Sums m_sums;
};
