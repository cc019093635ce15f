// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace ig {

/// The engine's text, UTF-8.
class jString {
public:
    jString() = default;
    jString(const char* text) : m_text(text ? text : "") {}
    jString(std::string_view text) : m_text(text) {}
    jString(std::string text) : m_text(std::move(text)) {}

    const char* c_str() const { return m_text.c_str(); }
    int size() const { return static_cast<int>(m_text.size()); } ///< bytes
    bool empty() const { return m_text.empty(); }
    void clear() { m_text.clear(); }
    std::string_view view() const { return m_text; }
    operator std::string_view() const { return m_text; }
    /// Becomes this text, in the memory it has when that suffices.
    void assign(std::string_view text) { m_text.assign(text); }
    void assign(double value); ///< `ToString` of it, likewise
    /// The decimal number at the beginning, after blanks and one plus sign; 0 when there is none or
    /// it is not a finite one. Never depends on the locale.
    float toFloat() const;
    double toDouble() const;

    jString& operator+=(const jString& other) {
        m_text += other.m_text;
        return *this;
    }
    friend jString operator+(jString a, const jString& b) { return a += b; }
    friend bool operator==(const jString& a, const jString& b) { return a.m_text == b.m_text; }
    friend bool operator==(const jString& a, const char* b) { return a.m_text == b; }
    friend auto operator<=>(const jString& a, const jString& b) { return a.m_text <=> b.m_text; }

private:
    std::string m_text;
};

/// The shortest decimal text that reads back as exactly this value.
jString ToString(float value);
jString ToString(double value);
jString ToString(int value);

} // namespace ig

template <>
struct std::hash<ig::jString> {
    std::size_t operator()(const ig::jString& s) const noexcept {
        return std::hash<std::string_view>()(s.view());
    }
};
