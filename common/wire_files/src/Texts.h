// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/WireField.h"

#include <string>

/// The shortest text that reads back as the same number.
std::string numberText(double value);
/// "-90 to 90", "0 and more"; empty when there is no limit.
std::string rangeText(const WireRange& range);
/// "deg, north positive, -90 to 90": what there is of unit, sense and range; no range of codes.
std::string measureText(const WireField& field);
std::string upperCase(std::string_view text);
/// The text in lines of at most `width` characters, each behind `indent`; the last without an end.
std::string wrapped(const std::string& text, const std::string& indent, std::size_t width);

/// Of the datagram that the fields account for, bytes.
inline std::size_t sizeOf(std::span<const WireField> fields) {
    return fields.back().offset + fields.back().size;
}
