// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ig {

/// Why the importer must not see an OBJ file, with what to do about it: it takes several hundred
/// bytes for each face, and a time that grows with the square of a face's corners. "" for a good
/// file.
std::string whyUnfitObj(const std::string& path);

} // namespace ig
