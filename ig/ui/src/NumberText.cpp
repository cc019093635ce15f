// SPDX-License-Identifier: MIT
#include "ig/ui/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace ig::number_text {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
bool isCompass(char c) { return c == 'N' || c == 'S' || c == 'E' || c == 'W'; }

/// Skips characters of a kind from `i` on.
template <class Kind>
std::size_t skip(std::string_view text, std::size_t i, Kind kind) {
    while (i < text.size() && kind(text[i]))
        i++;
    return i;
}

std::size_t skipSign(std::string_view text, std::size_t i) {
    return i < text.size() && (text[i] == '-' || text[i] == '+') ? i + 1 : i;
}

/// Skips digits and what stands behind a point.
std::size_t skipFraction(std::string_view text, std::size_t i) {
    i = skip(text, i, isDigit);
    return i < text.size() && text[i] == '.' ? skip(text, i + 1, isDigit) : i;
}

bool isNumberBegun(std::string_view text) {
    std::size_t i = skipFraction(text, skipSign(text, 0));
    const bool digits = i > 0 && (isDigit(text[i - 1]) || (i > 1 && isDigit(text[i - 2])));
    if (digits && i < text.size() && (text[i] == 'e' || text[i] == 'E'))
        i = skip(text, skipSign(text, i + 1), isDigit);
    return i == text.size();
}

bool isWholeBegun(std::string_view text) {
    std::size_t i = skipSign(text, 0);
    if (i + 1 < text.size() && text[i] == '0' && (text[i + 1] == 'x' || text[i + 1] == 'X')) i += 2;
    return skip(text, i, isHexDigit) == text.size();
}

/// Whether it reads, to its end, as a finite value.
bool isFinite(std::string_view text) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() &&
           std::isfinite(value);
}

void replaceAll(std::string& text, std::string_view what, char with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != text.npos; at++) {
        text.erase(at, what.size() - 1);
        text[at] = with;
    }
}

void trim(std::string& text) {
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    text.erase(text.find_last_not_of(' ') + 1);
}

/// Takes the compass letter off either end; 0: there is none.
char takeCompass(std::string& text) {
    if (text.size() < 2) return 0;
    char letter = 0;
    if (isCompass(text.back())) {
        letter = text.back();
        text.pop_back();
    } else if (isCompass(text.front())) {
        letter = text.front();
        text.erase(0, 1);
    }
    trim(text);
    return letter;
}

/// Three digits behind a comma may be a fraction, or thousands.
bool isDecimalComma(std::string_view text) {
    if (std::count(text.begin(), text.end(), ',') != 1 || text.find('.') != text.npos) return false;
    const std::size_t comma = text.find(','), first = skipSign(text, 0);
    const bool grouped = text.size() - comma == 4 && comma > first && comma - first <= 3;
    return !grouped || text[first] == '0';
}

} // namespace

bool isBegun(std::string_view text, int validator) {
    switch (validator) {
    case UI_VALIDATE_WHOLE:
        return isWholeBegun(text);
    case UI_VALIDATE_DECIMAL_WHOLE:
        return skipFraction(text, skipSign(text, 0)) == text.size();
    case UI_VALIDATE_NUMBER:
        return isNumberBegun(text);
    default:
        return true;
    }
}

bool isComplete(std::string_view text, int validator) {
    if (validator == UI_VALIDATE_NONE) return true;
    if (validator == UI_VALIDATE_WHOLE)
        return isWholeBegun(text) && !text.empty() && isHexDigit(text.back());
    return isBegun(text, validator) && isFinite(text);
}

std::string tidy(std::string_view text) {
    std::string number(text);
    replaceAll(number, "\xC2\xA0", ' '); // no-break space
    replaceAll(number, "\xE2\x88\x92", '-');
    trim(number);
    std::string found = number;
    replaceAll(number, "\xC2\xB0", ' ');
    trim(number);
    const char compass = takeCompass(number);
    if (isDecimalComma(number)) std::replace(number.begin(), number.end(), ',', '.');
    if (!compass) return isNumberBegun(number) ? number : found;
    if (!isFinite(number) || !isDigit(number.front())) return found;
    if (compass == 'S' || compass == 'W') number.insert(number.begin(), '-');
    return number;
}

} // namespace ig::number_text
