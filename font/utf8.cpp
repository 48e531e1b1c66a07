// SPDX-License-Identifier: MIT
// UTF-8 in both of the library's senses: strict for widget texts, and as the glyph engine wants it.

#include "font/utf8.h"

#include "ux.h"

#include <cstddef>

namespace ux {
namespace {

constexpr uint32_t k_replacement = 0xFFFD;
constexpr uint32_t k_first_beyond_bmp = 0x10000;
constexpr int k_words = 4096; // of the engine's array, two a character

bool is_continuation(uint8_t byte) {
    return (byte & 0xC0) == 0x80;
}

// What a lead byte promises.
struct lead {
    int continuations;
    uint32_t bits;     // of the character
    uint32_t smallest; // character that needs this length
};

lead classify(uint8_t byte) {
    if (byte < 0x80)
        return {0, byte, 0};
    if ((byte & 0xE0) == 0xC0)
        return {1, byte & 0x1Fu, 0x80};
    if ((byte & 0xF0) == 0xE0)
        return {2, byte & 0x0Fu, 0x800};
    if ((byte & 0xF8) == 0xF0)
        return {3, byte & 0x07u, k_first_beyond_bmp};
    return {-1, 0, 0};
}

bool is_character(uint32_t code, uint32_t smallest) {
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code >= smallest && code <= 0x10FFFF && !surrogate;
}

size_t units_of(uint32_t code) {
    return code < k_first_beyond_bmp ? 1 : 2;
}

void store_units(char16_t *out, uint32_t code) {
    if (code < k_first_beyond_bmp) {
        out[0] = static_cast<char16_t>(code);
        return;
    }
    code -= k_first_beyond_bmp;
    out[0] = static_cast<char16_t>(0xD800 + (code >> 10));
    out[1] = static_cast<char16_t>(0xDC00 + (code & 0x3FF));
}

} // namespace

uint32_t next_character(const uint8_t *&text) {
    const lead first = classify(*text++);
    if (first.continuations < 0)
        return k_replacement;
    uint32_t code = first.bits;
    for (int i = 0; i < first.continuations; i++) {
        if (!is_continuation(*text))
            return k_replacement;
        code = code << 6 | (*text++ & 0x3Fu);
    }
    return is_character(code, first.smallest) ? code : k_replacement;
}

} // namespace ux

// A character is never cut in two: what does not fit whole is left out with all that follows.
size_t ux_text_from_utf8(char16_t *out, size_t capacity, const char *utf8) noexcept {
    const auto *text = reinterpret_cast<const uint8_t *>(utf8);
    size_t needed = 0;
    size_t written = 0;
    while (text && *text) {
        const uint32_t code = ux::next_character(text);
        const size_t units = ux::units_of(code);
        if (written == needed && needed + units < capacity) {
            ux::store_units(out + written, code);
            written += units;
        }
        needed += units;
    }
    if (capacity > 0)
        out[written] = u'\0';
    return needed;
}

// Continuation bytes are not looked at, a sequence cut short reads zeros, and a byte that can not
// lead (a continuation, or the lead of four bytes) counts its pair without writing it.
int UTF8to16(const char *str, uint32_t *out) noexcept {
    if (!str)
        return 0;
    const auto *text = reinterpret_cast<const uint8_t *>(str);
    int words = 0;
    const auto rest = [&text] { return *text ? uint32_t{*text++} & 0x3Fu : 0u; };
    while (*text && words < ux::k_words) {
        const uint32_t b0 = *text++;
        uint32_t *pair = out + words;
        words += 2;
        uint32_t code = b0;
        if (b0 >= 0xF0 || (b0 >= 0x80 && b0 < 0xC0))
            continue;
        if (b0 >= 0xE0) {
            code = (b0 << 12 & 0xFFFF) | rest() << 6;
            code |= rest();
        } else if (b0 >= 0xC0) {
            code = (b0 & 0x1F) << 6 | rest();
        }
        pair[0] = code >> 8;
        pair[1] = code;
    }
    return words;
}
