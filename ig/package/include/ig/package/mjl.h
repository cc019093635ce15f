// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"

namespace ig {

class Package;

/// Reads and writes the text form of packages: one YAML document in UTF-8 whose top level is a map.
/// Anchors and aliases are resolved by copying; tags and merge keys have no special meaning.
/// Nothing throws out of these operations, whatever the file holds.
class mjl {
public:
    /// Files beyond these bounds are malformed: they guard against files made to exhaust memory.
    static constexpr int MAX_DEPTH = 100;       ///< of nested lists and packages
    static constexpr int MAX_ITEMS = 1'000'000; ///< in all, aliases expanded
    static constexpr long MAX_BYTES = 256L << 20;

    /// Replaces the content of `package` by the file's. An empty file is an empty package.
    ///
    /// False leaves the package empty. A missing file is left to the caller to report; an
    /// unreadable or malformed one (this includes a folder, a pipe, a binary file, a key given
    /// twice and a top level that isn't a map) logs one error with path, and line and column or the
    /// reason. `encrypted` must be false: there is no encrypted form.
    static bool open(const jString& path, Package* package, bool encrypted = false);

    /// Writes the package so that `open` reads an equal one back. The file is written beside its
    /// place and moved there when complete, so that no reader meets half a file and a failure
    /// leaves the former file as it was. False after logging one error.
    static bool save(const jString& path, const Package* package, bool encrypted = false);
};

} // namespace ig
