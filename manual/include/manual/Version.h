// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace manual {

/// For a report of a fault: "1.0", and where the program was built in a checkout its commit, as in
/// "1.0 (commit 83aed5a1b2, changed)".
std::string getVersion();

} // namespace manual
