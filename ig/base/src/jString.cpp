// SPDX-License-Identifier: MIT
#include "ig/base/jString.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace ig {

namespace {
/// In place, for callers that bring memory of their own.
class Shortest {
public:
    template <class T>
    explicit Shortest(T value)
        : m_size(std::to_chars(m_text, m_text + sizeof m_text, value).ptr - m_text) {}
    operator std::string_view() const { return {m_text, m_size}; }

private:
    char m_text[32];
    std::size_t m_size;
};

template <class T>
T parse(std::string_view text) {
    const auto begin = text.find_first_not_of(" \t");
    if (begin == text.npos) return 0;
    text.remove_prefix(begin);
    if (text.front() == '+') text.remove_prefix(1);
    T value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && std::isfinite(value) ? value : 0;
}
} // namespace

float jString::toFloat() const { return parse<float>(m_text); }
double jString::toDouble() const { return parse<double>(m_text); }

void jString::assign(double value) { m_text.assign(std::string_view(Shortest(value))); }

jString ToString(float value) { return std::string_view(Shortest(value)); }
jString ToString(double value) { return std::string_view(Shortest(value)); }
jString ToString(int value) { return std::string_view(Shortest(value)); }

} // namespace ig
