// SPDX-License-Identifier: MIT
#include "ig/base/jString.h"

#include <charconv>

namespace ig {

namespace {
template <class T>
jString shortest(T value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return jString(std::string_view(text, static_cast<std::size_t>(end - text)));
}
} // namespace

jString ToString(float value) { return shortest(value); }
jString ToString(double value) { return shortest(value); }
jString ToString(int value) { return shortest(value); }

} // namespace ig
