// SPDX-License-Identifier: MIT
#include "ig/scene/PackedPictures.h"

#include <map>
#include <vector>

namespace ig {

namespace {
std::map<jString, std::vector<std::byte>>& pictures() {
    static std::map<jString, std::vector<std::byte>> map;
    return map;
}
} // namespace

void PackedPictures::add(const jString& name, std::span<const std::byte> bytes) {
    const auto [entry, is_new] = pictures().try_emplace(name);
    if (is_new) entry->second.assign(bytes.begin(), bytes.end());
}

std::span<const std::byte> PackedPictures::find(const jString& name) {
    const auto found = pictures().find(name);
    if (found == pictures().end()) return {};
    return found->second;
}

void PackedPictures::release() { pictures().clear(); }

} // namespace ig
