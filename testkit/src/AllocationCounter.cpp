// SPDX-License-Identifier: MIT
#include "testkit/AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> g_allocations = 0;

void* allocate(std::size_t size) {
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}

} // namespace

std::uint64_t AllocationCounter::total() { return g_allocations; }

// The other forms call these two. Aligned ones are left to the library: they pair among themselves.
void* operator new(std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
