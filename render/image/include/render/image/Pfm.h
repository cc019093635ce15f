// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace ig {

/// Numbers of a portable float map, rows from the top.
struct FloatMap {
    int width = 0, height = 0;
    int channels = 0; ///< 1 or 3
    std::vector<float> values;
};

/// Reads a PFM file: "PF" or "Pf", sizes, a number whose sign says the order of bytes, rows from
/// the bottom (P. Debevec, "PFM Portable FloatMap Image Format"). False, with the path and the
/// reason in `message`, when it is none, or not as long as it says.
bool readPfm(const std::string& path, FloatMap& map, std::string& message);

} // namespace ig
