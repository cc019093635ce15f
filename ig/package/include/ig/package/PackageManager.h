// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"

namespace ig {

class Package;

/// The packages of worlds, prefabs, tracks and materials: each file is read at its first use and
/// kept, because weapons and effects load the same files during the scene. Main thread only.
class PackageManager {
public:
    /// The package of that file, owned by the manager and valid until `release`; null when it can't
    /// be read. A file that failed is remembered too, so that its one message is not repeated: a
    /// file that appears later is found after `release`. `user` names the asking operation in the
    /// message of a missing file; null: the caller reports that itself.
    static const Package* get(const jString& path, const char* user = "PackageManager::get");
    /// Files that it has read so far, or tried to.
    static int getNumRead();
    /// Drops every package and remembered failure.
    static void release();
};

} // namespace ig
