// SPDX-License-Identifier: MIT
#pragma once

#include "HeightField.h"
#include "plugins/terrain/TerrainSources.h"

#include <memory>
#include <string>
#include <vector>

namespace ig {

/// The grids of a built world, coarse to fine, mapped. Empty with the reason in `failure` when the
/// folder is none, is not finished, or has damaged files. Says once when the folder is not what the
/// sources would be built into now; it is taken as it is.
std::vector<std::unique_ptr<const HeightField>> openBuiltGround(const TerrainSources& sources,
                                                                std::string& failure);

} // namespace ig
