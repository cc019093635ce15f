// SPDX-License-Identifier: MIT
#include "testkit/AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> g_allocations = 0, g_freed = 0;

void* allocate(std::size_t size) {
    void* memory = std::malloc(size ? size : 1);
    if (memory) g_allocations.fetch_add(1, std::memory_order_relaxed);
    return memory;
}

void release(void* memory) {
    if (memory) g_freed.fetch_add(1, std::memory_order_relaxed);
    std::free(memory);
}

} // namespace

std::uint64_t AllocationCounter::total() { return g_allocations; }
std::uint64_t AllocationCounter::live() { return g_allocations - g_freed; }

// The forms for arrays call these. Aligned ones are left to the library: they pair among
// themselves.
void* operator new(std::size_t size) {
    if (void* memory = allocate(size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
