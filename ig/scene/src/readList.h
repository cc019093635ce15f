// SPDX-License-Identifier: MIT
#pragma once

#include "ig/package/Package.h"

namespace ig {

/// The maps in the list under `key`; whatever else stands there is reported with its line under the
/// name of the reading operation and left out.
jVector<const Package*> readList(const Package& package, const char* key, const char* reader);

} // namespace ig
