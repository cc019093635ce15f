// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace ig {

/// Offset of the first byte that is not part of well-formed UTF-8 (shortest forms only, no
/// surrogates, up to U+10FFFF), or the length of the text when there is none.
std::size_t findInvalidUtf8(std::string_view text);

} // namespace ig
