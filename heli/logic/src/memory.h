// SPDX-License-Identifier: MIT
#pragma once

// The one helper pair of the logic's files: they all record their allocations under one source
// name.

#include "ig/base/jAllocator.h"

namespace logic_memory {

inline constexpr const char* SOURCE = "src/logic/Logic_Nerith_Heli_Final";

/// `function` is the qualified name of the allocating operation.
template <class T, class... Args>
T* create(const char* function, Args&&... args) {
    return ig::memNew<T>({SOURCE, function}, std::forward<Args>(args)...);
}

/// Frees and nulls what `create` made.
template <class T>
void destroy(T*& object, const char* function) {
    ig::memDelete(object, {SOURCE, function});
}

} // namespace logic_memory
