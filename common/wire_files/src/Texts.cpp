// SPDX-License-Identifier: MIT
#include "Texts.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>

std::string numberText(double value) {
    char text[32];
    return {text,
            std::to_chars(std::begin(text), std::end(text), value, std::chars_format::fixed).ptr};
}

std::string rangeText(const WireRange& range) {
    if (!range.isBounded()) return "";
    const std::string low = numberText(range.low);
    if (std::isinf(range.high)) return low + " and more";
    return range.low == range.high ? low : low + " to " + numberText(range.high);
}

std::string measureText(const WireField& field) {
    std::string text;
    for (const std::string& part : {std::string(field.unit), std::string(field.sense),
                                    field.codes.empty() ? rangeText(field.range) : ""})
        if (!part.empty()) text += (text.empty() ? "" : ", ") + part;
    return text;
}

std::string upperCase(std::string_view text) {
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return upper;
}

std::string wrapped(const std::string& text, const std::string& indent, std::size_t width) {
    std::string lines;
    std::size_t begin = 0;
    while (text.size() - begin + indent.size() > width) {
        std::size_t end = text.rfind(' ', begin + width - indent.size());
        if (end == text.npos || end <= begin) end = std::min(text.find(' ', begin), text.size());
        if (end == text.size()) break;
        lines += indent + text.substr(begin, end - begin) + '\n';
        begin = end + 1;
    }
    return lines + indent + text.substr(begin);
}
