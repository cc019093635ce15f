// SPDX-License-Identifier: MIT
#include "heli/ui/editors.h"

#include "ig/ui/NumberText.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

using namespace ig;

namespace {

std::vector<std::string_view> split(std::string_view text) {
    const char separator = text.find(';') != text.npos   ? ';'
                           : text.find(',') != text.npos ? ','
                                                         : ' ';
    std::vector<std::string_view> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        if (end > begin || separator != ' ') parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

bool hasAny(std::string_view text, const char* letters) {
    return text.find_first_of(letters) != text.npos;
}

} // namespace

int parseInt(const jString& text, int base) {
    if (base == BASE_HEXADECIMAL) {
        const unsigned long value = std::strtoul(text.c_str(), nullptr, 16);
        return static_cast<int>(value); // as formatInt writes negative ones
    }
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long long>(value, std::numeric_limits<int>::min(),
                                                  std::numeric_limits<int>::max()));
}

jString formatInt(int value, int base) {
    if (base != BASE_HEXADECIMAL) return ToString(value);
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", value);
    return text;
}

bool parseComponents(std::string_view text, double (&components)[3]) {
    std::vector<std::string_view> parts = split(text);
    if (parts.size() < 2 || parts.size() > 3) return false;
    const bool letters = hasAny(text, "NSEW");
    if (letters && hasAny(parts[0], "NS")) std::swap(parts[0], parts[1]);
    if (letters && !(hasAny(parts[0], "EW") && hasAny(parts[1], "NS"))) return false;
    if (!letters && parts.size() < 3) return false; // which of them comes first?
    double values[3];
    std::copy(std::begin(components), std::end(components), values);
    for (std::size_t i = 0; i < parts.size(); i++) {
        const jString number(number_text::tidy(parts[i]));
        if (!number_text::isComplete(number, UI_VALIDATE_NUMBER)) return false;
        values[i] = number.toDouble();
    }
    std::copy(std::begin(values), std::end(values), components);
    return true;
}
