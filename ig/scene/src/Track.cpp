// SPDX-License-Identifier: MIT
#include "ig/scene/Track.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/Material.h"
#include "ig/scene/World.h"

#include <cmath>

namespace ig {

bool Track::load(const jString& path, World* world) {
    release();
    m_path = path;
    const Package* file = PackageManager::get(path, nullptr);
    if (!file) return false;
    const jVector<const Package*> channels = file->getPackages("channels", "Track::load");
    if (channels.empty()) {
        const Item* item = file->getItem("channels");
        jLog::error("Track::load: %s:%d: a track needs a list of \"channels\"", path.c_str(),
                    item ? item->getLine() : 1);
        return false;
    }
    file->warnUnknownKeys("Track::load", {"channels"});
    for (const Package* channel : channels)
        if (!readChannel(*channel, world)) {
            m_channels.clear();
            return false;
        }
    return true;
}

/// Adds the channel unless its target is missing. False for a malformed one.
bool Track::readChannel(const Package& p, World* world) {
    Channel channel;
    if (!readKeys(p, channel)) return false;
    const jString &material = p.getString("material"), &node = p.getString("node");
    if (!material.empty()) {
        channel.material = MaterialManager::get(material);
        if (channel.material)
            channel.parameter = channel.material->findParameterIDByTag(p.getString("parameter"));
    } else if (!node.empty() && world) {
        channel.node = world->getNodeByName(node);
    }
    if (channel.node || channel.parameter >= 0)
        m_channels.append(channel);
    else
        jLog::warning("Track::load: %s:%d: nothing to drive: \"%s\"", m_path.c_str(), p.getLine(),
                      material.empty() ? node.c_str() : material.c_str());
    return true;
}

bool Track::readKeys(const Package& p, Channel& channel) const {
    const Item* keys = p.getItem("keys");
    for (int i = 0; keys && i < keys->getCount(); i++) {
        float row[2];
        const bool good = keys->getElement(i).getFloats(row, 2) == 2 && std::isfinite(row[0]) &&
                          std::isfinite(row[1]);
        if (!good || (i > 0 && row[0] <= channel.keys.back().time)) {
            jLog::error("Track::load: %s:%d: keys are pairs [time, value] in rising order of time",
                        m_path.c_str(), keys->getElement(i).getLine());
            return false;
        }
        channel.keys.append({row[0], row[1]});
    }
    if (channel.keys.empty())
        jLog::error("Track::load: %s:%d: a channel needs keys", m_path.c_str(), p.getLine());
    return !channel.keys.empty();
}

float Track::Channel::at(float time) const {
    int after = 0;
    while (after < keys.size() && keys[after].time <= time)
        after++;
    if (after == 0) return keys[0].value;
    if (after == keys.size()) return keys.back().value;
    const Key &a = keys[after - 1], &b = keys[after];
    return a.value + (b.value - a.value) * (time - a.time) / (b.time - a.time);
}

void Track::set(float value) {
    if (!std::isfinite(value)) return;
    for (const Channel& channel : m_channels) {
        const float x = channel.at(value);
        if (channel.material) channel.material->setParameterSlider(channel.parameter, x);
        if (channel.node) channel.node->setEnabled(x > 0.5f);
    }
}

void Track::release() { m_channels.destroy(); }

} // namespace ig
