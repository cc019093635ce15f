// SPDX-License-Identifier: MIT
#pragma once

// The one helper pair of the logic's files: they all record their allocations under one source
// name.

#include "ig/base/jAllocator.h"

inline constexpr const char* LOGIC_SOURCE = "src/logic/Logic_Nerith_Heli_Final";

/// The qualified name of the allocating or freeing operation, with the line that names it.
struct Operation {
    Operation(const char* name, int line = __builtin_LINE()) : site(LOGIC_SOURCE, name, line) {}
    ig::MemSite site;
};

template <class T, class... Args>
T* create(Operation operation, Args&&... args) {
    return ig::memNew<T>(operation.site, std::forward<Args>(args)...);
}

/// Frees and nulls what `create` made.
template <class T>
void destroy(T*& object, Operation operation) {
    ig::memDelete(object, operation.site);
}
