// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// Counts the allocations of the whole program from its construction on: linking `testkit_counting`
/// replaces the global operator new.
class AllocationCounter {
public:
    AllocationCounter() : m_begin(total()) {}
    std::uint64_t count() const { return total() - m_begin; }
    /// Blocks that the program holds at present.
    static std::uint64_t live();

private:
    static std::uint64_t total();
    std::uint64_t m_begin;
};
