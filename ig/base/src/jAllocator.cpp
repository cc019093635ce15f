// SPDX-License-Identifier: MIT
#include "ig/base/jAllocator.h"

#include <cstdlib>
#include <malloc.h>
#include <unordered_map>

namespace ig {

namespace {
std::size_t g_used = 0;

// Constructed on first use and never destroyed: objects with static storage may outlive any order
// of destruction that we could choose.
std::unordered_map<const void*, MemInfo>& registry() {
    static auto* map = new std::unordered_map<const void*, MemInfo>;
    return *map;
}
} // namespace

jAllocator* jAllocator::get() {
    static jAllocator allocator;
    return &allocator;
}

void* jAllocator::localAlloc(std::size_t size) {
    if (m_limit && g_used + size > m_limit) return nullptr;
    void* memory = std::malloc(size ? size : 1);
    if (memory) g_used += malloc_usable_size(memory);
    return memory;
}

void jAllocator::localFree(void* memory) {
    if (memory) g_used -= malloc_usable_size(memory);
    std::free(memory);
}

std::size_t jAllocator::getUsed() const { return g_used; }

void memAddInfo(const void* pointer, bool array, const char* file, int line, const char* function,
                std::size_t size) {
    registry()[pointer] = {pointer, array, file, line, function, size};
}

void memRemoveInfo(const void* pointer, bool, const char*, int, const char*) {
    registry().erase(pointer);
}

std::size_t memCount() { return registry().size(); }

void memForEach(const std::function<void(const MemInfo&)>& visit) {
    for (const auto& [pointer, info] : registry())
        visit(info);
}

void* jObject::operator new(std::size_t size) {
    void* memory = jAllocator::get()->localAlloc(size);
    if (!memory) throw std::bad_alloc();
    return memory;
}

void jObject::operator delete(void* memory) noexcept {
    memRemoveInfo(memory, false, "ig", 0, "jObject::operator delete");
    jAllocator::localFree(memory);
}

} // namespace ig
