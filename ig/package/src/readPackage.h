// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"

namespace ig {

class Package;

enum class ReadResult {
    ok,
    missing,  ///< no such file; nothing was logged
    malformed ///< one error was logged
};

/// `mjl::open` for those who need to know which of its failures it was.
ReadResult readPackage(const jString& path, Package& package);

} // namespace ig
