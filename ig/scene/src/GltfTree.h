// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ig {

/// Why the importer must not see a glTF file: it follows nodes and brackets by recursion, and
/// copies a node for each that names it as a child, so that a small file can exhaust stack or
/// memory. "" for a good file, and for a damaged one, about which the importer has more to say.
std::string whyUnfit(const std::string& path);

} // namespace ig
