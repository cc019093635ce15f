// SPDX-License-Identifier: MIT
#include "ig/ui/Utf8Text.h"

namespace ig::utf8_text {

namespace {
unsigned byteAt(std::string_view text, std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
}
bool isContinuation(unsigned byte) { return (byte & 0xC0u) == 0x80u; }
} // namespace

char32_t decode(std::string_view text, std::size_t& i) {
    const unsigned first = byteAt(text, i);
    const int more = first < 0x80                    ? 0
                     : first >= 0xC2 && first < 0xE0 ? 1
                     : (first & 0xF0u) == 0xE0u      ? 2
                     : first >= 0xF0 && first < 0xF5 ? 3
                                                     : -1;
    if (more <= 0) {
        i++;
        return more == 0 ? first : INVALID;
    }
    char32_t code = first & (0x3Fu >> more);
    for (int k = 1; k <= more; k++) {
        const unsigned byte = byteAt(text, i + k);
        if (!isContinuation(byte)) {
            i++;
            return INVALID;
        }
        code = code << 6 | (byte & 0x3Fu);
    }
    constexpr char32_t SMALLEST[] = {0, 0x80, 0x800, 0x10000}; // shorter forms are not valid
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    const bool valid = code >= SMALLEST[more] && code <= 0x10FFFF && !surrogate;
    i += valid ? more + 1 : 1;
    return valid ? code : INVALID;
}

void encode(std::string& text, char32_t code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
        return;
    }
    const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr unsigned LEAD[] = {0, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(LEAD[more] | code >> (6 * more));
    for (int k = more - 1; k >= 0; k--)
        text += static_cast<char>(0x80u | (code >> (6 * k) & 0x3Fu));
}

std::size_t next(std::string_view text, std::size_t i) {
    if (i >= text.size()) return text.size();
    decode(text, i);
    return i;
}

std::size_t previous(std::string_view text, std::size_t i) {
    if (i == 0) return 0;
    std::size_t begin = i - 1;
    while (begin > 0 && i - begin < 4 && isContinuation(byteAt(text, begin)))
        begin--;
    std::size_t end = begin;
    decode(text, end);
    return end == i ? begin : i - 1; // a byte that belongs to no character is one of its own
}

} // namespace ig::utf8_text
