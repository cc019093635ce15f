// SPDX-License-Identifier: MIT
#include "heli/ui/editors.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

using namespace ig;

int parseInt(const jString& text, int base) {
    if (base == BASE_HEXADECIMAL) {
        const unsigned long value = std::strtoul(text.c_str(), nullptr, 16);
        return static_cast<int>(static_cast<unsigned>(value)); // as formatInt writes negative ones
    }
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long long>(value, std::numeric_limits<int>::min(),
                                                  std::numeric_limits<int>::max()));
}

jString formatInt(int value, int base) {
    if (base != BASE_HEXADECIMAL) return ToString(value);
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(value));
    return text;
}
