// SPDX-License-Identifier: MIT
#include "testkit/AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> g_allocations = 0, g_freed = 0;

void* allocate(std::size_t size) {
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}

void release(void* memory) {
    if (memory) g_freed.fetch_add(1, std::memory_order_relaxed);
    std::free(memory);
}

} // namespace

std::uint64_t AllocationCounter::total() { return g_allocations; }
std::uint64_t AllocationCounter::live() { return g_allocations - g_freed; }

// The other forms call these two. Aligned ones are left to the library: they pair among themselves.
void* operator new(std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
