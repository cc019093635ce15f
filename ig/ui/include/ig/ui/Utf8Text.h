// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

/// Characters of UTF-8 texts, as edit lines step through them and renderers draw them.
namespace ig::utf8_text {

inline constexpr char32_t INVALID = 0xFFFD;

/// The code point at byte `i`, which moves past it; `INVALID` for a byte that begins none.
char32_t decode(std::string_view text, std::size_t& i);
/// Appends a code point.
void encode(std::string& text, char32_t code);
/// Byte position of the character after / before the one at `i`; the ends stay.
std::size_t next(std::string_view text, std::size_t i);
std::size_t previous(std::string_view text, std::size_t i);

} // namespace ig::utf8_text
