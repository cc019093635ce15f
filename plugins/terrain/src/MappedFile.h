// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace ig {

/// A file of a built world, mapped: nothing of it is read before somebody looks. It must not be
/// shortened meanwhile; one that is put in its place does no harm. Any thread may read.
class MappedFile {
public:
    /// Null with the reason in `failure`.
    static std::unique_ptr<const MappedFile> open(const std::string& path, std::string& failure);
    MappedFile(const MappedFile&) = delete;
    ~MappedFile();

    const unsigned char* getBytes() const { return m_bytes; } ///< begin at a page of memory
    std::uint64_t getSize() const { return m_size; }

private:
    MappedFile(const unsigned char* bytes, std::uint64_t size) : m_bytes(bytes), m_size(size) {}

    const unsigned char* m_bytes;
    std::uint64_t m_size;
};

} // namespace ig
