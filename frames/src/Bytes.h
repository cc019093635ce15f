// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace frames {

static_assert(std::endian::native == std::endian::little, "numbers are copied as they lie");

/// Appends numbers and texts to bytes.
class ByteWriter {
public:
    explicit ByteWriter(std::vector<std::uint8_t>& to) : m_to(to) {}

    template <class T>
    requires std::is_arithmetic_v<T> || std::is_enum_v<T>
    void put(T value) { put(&value, sizeof value); }
    void put(const void* data, std::size_t size) {
        const auto* from = static_cast<const std::uint8_t*>(data);
        m_to.insert(m_to.end(), from, from + size);
    }
    void putCount(std::size_t count) { put(static_cast<std::uint32_t>(count)); }
    /// The count of its bytes, then these.
    void putText(std::string_view text) {
        putCount(text.size());
        put(text.data(), text.size());
    }

private:
    std::vector<std::uint8_t>& m_to;
};

/// Takes numbers and texts from bytes, and never more than there are: from the first fault on
/// everything taken is 0 or empty.
class ByteReader {
public:
    explicit ByteReader(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    template <class T>
    requires std::is_arithmetic_v<T> T take() {
        T value{};
        take(&value, sizeof value);
        return value;
    }
    bool takeBool() {
        const auto value = take<std::uint8_t>();
        if (value > 1) fail("neither 0 nor 1");
        return value == 1;
    }
    /// One of the values up to `last`.
    template <class T>
    requires std::is_enum_v<T> T takeEnum(T last, const char* what) {
        const auto value = take<std::underlying_type_t<T>>();
        if (value > static_cast<std::underlying_type_t<T>>(last)) fail(what);
        return isGood() ? static_cast<T>(value) : T{};
    }
    /// A floating-point number that is one.
    template <std::floating_point T>
    T takeFinite() {
        const T value = take<T>();
        if (value - value == 0) return value; // neither infinite nor no number
        fail("not a finite number");
        return 0;
    }
    /// The count of a list, for each of whose elements at least `element_size` bytes follow.
    std::uint32_t takeCount(std::size_t element_size) {
        const auto count = take<std::uint32_t>();
        if (count <= (m_bytes.size() - m_at) / element_size) return count;
        fail("ends within what is counted here");
        return 0;
    }
    std::string takeText() {
        const std::uint32_t size = takeCount(1);
        std::string text(size, '\0');
        take(text.data(), size);
        return text;
    }
    void take(void* to, std::size_t size) {
        if (size > m_bytes.size() - m_at) fail("ends here");
        if (!isGood() || size == 0) return;
        std::memcpy(to, m_bytes.data() + m_at, size);
        m_at += size;
    }

    void fail(const char* what) {
        if (isGood()) m_message = "byte " + std::to_string(m_at) + ": " + what;
    }
    bool isGood() const { return m_message.empty(); }
    bool isAtEnd() const { return m_at == m_bytes.size(); }
    const std::string& getMessage() const { return m_message; }

private:
    std::span<const std::uint8_t> m_bytes;
    std::size_t m_at = 0;
    std::string m_message;
};

} // namespace frames
