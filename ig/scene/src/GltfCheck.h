// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ig {

/// Why the importer must not see a glTF file, with what to do about it: it follows nodes and
/// brackets by recursion, copies a node for each that names it as a child, takes memory for what
/// the file only claims to hold, trusts some of the file's ranges, and passes over compression and
/// kinds of numbers that it doesn't know. "" for a good file, and for a damaged one, about which
/// the importer has more to say.
std::string whyUnfitGltf(const std::string& path);

} // namespace ig
