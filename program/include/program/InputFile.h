// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace program {

/// Why a file can't be read: it is absent, a folder, no regular file, or without rights; "" when it
/// can. To be asked before a path that a user gave is opened: opening a pipe would wait for its
/// writer for good.
std::string whyUnreadable(const std::string& path);

} // namespace program
