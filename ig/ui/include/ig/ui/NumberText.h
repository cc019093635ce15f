// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace ig {

/// What a field lets the operator type. Texts that the program sets are not checked.
enum UI_VALIDATOR {
    UI_VALIDATE_NONE = 0,
    UI_VALIDATE_WHOLE = 1,         ///< a whole number, decimal or hexadecimal
    UI_VALIDATE_DECIMAL_WHOLE = 2, ///< a decimal number, of which the whole part counts
    UI_VALIDATE_NUMBER = 3,        ///< a decimal number
};

/// How people write numbers in fields.
namespace number_text {

/// Whether the text is what the validator asks for, or can become it by typing on.
bool isBegun(std::string_view text, int validator);
/// Whether the text is what the validator asks for, as it stands, and not too large to be read.
bool isComplete(std::string_view text, int validator);
/// The number as fields write it, from as it was copied: with blanks around it, a decimal comma, a
/// typographic minus, a degree sign, or N, S, E or W, of which S and W turn its sign. What is no
/// such number, or could be two (1,234), only loses the blanks.
std::string tidy(std::string_view text);

} // namespace number_text

} // namespace ig
