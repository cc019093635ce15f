// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/TerrainSources.h"

#include <string>
#include <vector>

namespace ig {

class Package;

/// What a built world was made of, as lines of text: what the world file asks for, and the size and
/// the time of each file that was read.
struct Fingerprint {
    std::vector<std::string> settings, files;

    Fingerprint() = default;
    Fingerprint(const TerrainSources& sources, const std::vector<std::string>& paths);
    /// As `toYaml` has written it.
    explicit Fingerprint(const Package& description);

    std::string toYaml() const;
    /// What has changed since, as part of a sentence; "" when nothing has. Without sources it is
    /// not known what the world should be made of. A file that is gone is none that has changed:
    /// a built world may be given away without its sources.
    std::string findChange(const TerrainSources& sources) const;
    friend bool operator==(const Fingerprint&, const Fingerprint&) = default;
};

} // namespace ig
