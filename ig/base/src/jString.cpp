// SPDX-License-Identifier: MIT
#include "ig/base/jString.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace ig {

namespace {
template <class T>
jString shortest(T value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return jString(std::string_view(text, static_cast<std::size_t>(end - text)));
}

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

jString ToString(float value) { return shortest(value); }
jString ToString(double value) { return shortest(value); }
jString ToString(int value) { return shortest(value); }

} // namespace ig
