// SPDX-License-Identifier: MIT
#include "channel/interface/SceneSwitches.h"

#include "channel/interface/Overlays.h"
#include "channel/interface/Texts.h"
#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/ui/UIRoot.h"

#include <algorithm>

using namespace ig;

void SceneSwitches::open(const Package& interface, World* world, UIRoot* root) {
    m_root = root;
    for (const Package* line : interface.getPackages("switches", "SceneSwitches::open"))
        add(*line, world);
}

void SceneSwitches::add(const Package& line, World* world) {
    const auto refuse = [&line](const char* what) {
        jLog::error("SceneSwitches::open: %s:%d: %s", line.getPath().c_str(), line.getLine(), what);
    };
    line.warnUnknownKeys("SceneSwitches::open", {"key", "track", "steps"});
    const std::string_view key = line.getString("key").view();
    if (key.size() != 1 || !((key[0] >= 'a' && key[0] <= 'z') || (key[0] >= '0' && key[0] <= '9')))
        return refuse("a switch needs one small letter or digit as its \"key\"");
    if (key[0] == Overlays::KEY_HELP ||
        std::any_of(m_switches.begin(), m_switches.end(),
                    [&key](const Switch& other) { return other.key == key[0]; }))
        return refuse("the key map, or a switch before, has this \"key\" already");
    Switch added{key[0], std::make_unique<Track>(), {}};
    for (const Package* step : line.getPackages("steps", "SceneSwitches::open")) {
        step->warnUnknownKeys("SceneSwitches::open", {"tells"});
        added.tells.push_back(Texts::choose(*step, "tells", Texts::getLanguage()));
        if (added.tells.back().empty())
            return refuse("each of a switch's steps needs a text in \"tells\"");
    }
    if (added.tells.size() < 2) return refuse("a switch needs two \"steps\" or more");
    if (!added.track->load(line.getString("track"), world))
        return refuse("no track can be read where \"track\" says");
    added.track->set(0);
    m_switches.push_back(std::move(added));
}

void SceneSwitches::close() {
    m_switches.clear();
    m_root = nullptr;
}

void SceneSwitches::onKey(int key) {
    for (Switch& s : m_switches) {
        if (s.key != key) continue;
        s.step = (s.step + 1) % s.tells.size();
        s.track->set(static_cast<float>(s.step));
        m_root->tell(s.tells[s.step]);
    }
}
