// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace frames {

static_assert(std::endian::native == std::endian::little, "words are taken as they lie");

/// A running 64-bit digest of bytes: tells whether two runs did the same, on whatever machine. Two
/// sequences that differ in one word differ in it for certain. No protection against intent.
class Digest {
public:
    /// Adds bytes and their number; the same bytes in other pieces give another digest.
    void add(const void* data, std::size_t size) {
        const auto* at = static_cast<const std::uint8_t*>(data);
        mix(size);
        for (; size >= sizeof(std::uint64_t); at += 8, size -= 8) {
            std::uint64_t word;
            std::memcpy(&word, at, sizeof word);
            mix(word);
        }
        if (size == 0) return;
        std::uint64_t rest = 0;
        std::memcpy(&rest, at, size);
        mix(rest);
    }
    /// Adds a number, an enumeration or a struct of them without padding, bit by bit.
    template <class T>
    requires std::is_arithmetic_v<T> || std::has_unique_object_representations_v<T>
    void add(const T& value) {
        if constexpr (sizeof value <= sizeof(std::uint64_t)) {
            std::uint64_t word = 0;
            std::memcpy(&word, &value, sizeof value);
            mix(word);
        } else {
            add(&value, sizeof value);
        }
    }
    std::uint64_t get() const { return m_state; }

private:
    /// One to one in the word and in the state. The factor is 2^64 divided by the golden ratio,
    /// made odd, which spreads a difference upwards; the shift brings it down again.
    void mix(std::uint64_t word) {
        m_state = (m_state ^ word) * 0x9E3779B97F4A7C15u;
        m_state ^= m_state >> 32;
    }

    std::uint64_t m_state = 0x243F6A8885A308D3u; ///< the first digits of pi: not 0, else free
};

} // namespace frames
