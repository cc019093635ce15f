// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace ig {

/// A block of bytes with a read/write position.
class jBuffer {
public:
    /// Sets the size; new bytes are zero. The position moves back inside when it falls outside.
    void resize(std::size_t size) {
        m_bytes.resize(size);
        if (m_position > size) m_position = size;
    }
    /// Sets the position, counted from the start; false and unchanged beyond the end.
    bool seekSet(std::size_t position) {
        if (position > m_bytes.size()) return false;
        m_position = position;
        return true;
    }
    /// The bytes from the position on.
    unsigned char* getData() { return m_bytes.data() + m_position; }
    const unsigned char* getData() const { return m_bytes.data() + m_position; }
    /// Number of bytes in the whole buffer, wherever the position stands.
    std::size_t getSize() const { return m_bytes.size(); }

private:
    std::vector<unsigned char> m_bytes;
    std::size_t m_position = 0;
};

} // namespace ig
