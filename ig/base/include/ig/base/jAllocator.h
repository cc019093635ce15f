// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <new>
#include <utility>

namespace ig {

/// The engine's heap. Every object that a plug-in creates comes from here and is registered with
/// the memory tracker (`memAddInfo`), so that the engine can tell at the end what was not given
/// back. Objects that a plug-in creates and the engine destroys (a prefab handed to the world) are
/// freed through their class-level `operator delete`, see `jObject`.
class jAllocator {
public:
    static jAllocator* get();

    /// Memory for `size` bytes, aligned for any type, or null when there is none. Not registered.
    void* localAlloc(std::size_t size);
    /// Gives back what `localAlloc` returned; null is allowed.
    static void localFree(void* memory);

    /// Answers null from now on to every request that would raise the bytes held above `bytes`;
    /// 0 lifts the limit. For tests of what happens when memory runs out.
    void setLimit(std::size_t bytes) { m_limit = bytes; }
    /// Bytes handed out and not given back.
    std::size_t getUsed() const;

private:
    jAllocator() = default;
    std::size_t m_limit = 0;
};

/// One entry of the memory tracker: who allocated what, as given to `memAddInfo`.
struct MemInfo {
    const void* pointer;
    bool array;
    const char* file;     ///< source path without extension; must be a string literal
    int line;             ///< 0 when not known
    const char* function; ///< qualified name of the allocating operation; a string literal
    std::size_t size;
};

/// Registers an allocation. The texts are kept as pointers.
void memAddInfo(const void* pointer, bool array, const char* file, int line, const char* function,
                std::size_t size);
/// Takes an allocation out of the register; must come before the memory is freed. `file` and
/// `function` name the freeing operation, for the engine's memory trace only. An unknown pointer is
/// ignored, so that an object of either origin can be freed the same way.
void memRemoveInfo(const void* pointer, bool array, const char* file, int line,
                   const char* function);
/// Number of registered allocations.
std::size_t memCount();
/// Calls `visit` for every registered allocation, in no particular order. `visit` must not allocate
/// or free tracked memory.
void memForEach(const std::function<void(const MemInfo&)>& visit);

/// Where an allocation is made: the fixed source name of the class and the operation's qualified
/// name, string literals; and the line, unless another is given that of the source text where the
/// site is named.
struct MemSite {
    MemSite(const char* file_name, const char* operation, int in_line = __builtin_LINE())
        : file(file_name), function(operation), line(in_line) {}

    const char* file;
    const char* function;
    int line;
};

/// Allocates a `T` with the engine allocator, registers it and constructs it. Null when memory ran
/// out. Free it with `memDelete`, or hand it to the engine when `T` is a `jObject`.
template <class T, class... Args>
T* memNew(MemSite site, Args&&... args) {
    void* memory = jAllocator::get()->localAlloc(sizeof(T));
    if (!memory) return nullptr;
    memAddInfo(memory, false, site.file, site.line, site.function, sizeof(T));
    return ::new (memory) T(std::forward<Args>(args)...);
}

/// Unregisters, destroys and frees what `memNew` made, and sets the owner's pointer to null. Null
/// is skipped. `T` must be the very type given to `memNew`.
template <class T>
void memDelete(T*& object, MemSite site) {
    if (!object) return;
    memRemoveInfo(object, false, site.file, site.line, site.function);
    object->~T();
    jAllocator::localFree(object);
    object = nullptr;
}

/// Base of the classes whose objects may change hands between a plug-in and the engine: `new` and
/// `delete` on them go through the engine allocator, and `delete` also takes the object out of the
/// memory tracker, whoever registered it.
class jObject {
public:
    virtual ~jObject() = default;

    static void* operator new(std::size_t size);
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* memory) noexcept;

protected:
    jObject() = default;
    jObject(const jObject&) = default;
    jObject& operator=(const jObject&) = default;
};

} // namespace ig
