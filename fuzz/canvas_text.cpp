// SPDX-License-Identifier: MIT
// The plain drawing of text; see canvas_text.h.

#include "fuzz/canvas_text.h"

#include <functional>

namespace canvas_text {
namespace {

constexpr size_t k_units = 128;
constexpr size_t k_words = 4096;

void set_scale(world &on, const job &job) {
    const auto fixed = [](int size) {
        return std::to_string(static_cast<int32_t>(static_cast<uint32_t>(size) << 16));
    };
    on.calls.push_back("FSS_set_scale " + fixed(job.size_x) + " 0 0 " + fixed(job.size_y));
}

struct canvas {
    int64_t w, h;
    std::vector<bool> ink; // w * h
};

// `start` is the canvas element where the glyph's cell begins.
void draw_glyph(world &on, canvas &onto, const glyph &glyph, int64_t start, int64_t baseline) {
    size_t next_row = 0;
    for (int64_t r = 0; r < onto.h; r++) {
        if (r < baseline - glyph.top || r >= baseline - glyph.top + glyph.rows)
            continue;
        const size_t row = next_row++;
        for (int b = 0; b < glyph.pitch * 8; b++) {
            const uint8_t byte =
                glyph.bits[row * static_cast<size_t>(glyph.pitch) + static_cast<size_t>(b / 8)];
            if (!(byte >> (7 - b % 8) & 1))
                continue;
            if (on.bytes_per_pixel != 4) {
                on.unknown_pixels++;
                continue;
            }
            const int64_t element = start + r * onto.w + glyph.left + b;
            if (element >= 0 && element < static_cast<int64_t>(onto.ink.size()))
                onto.ink[static_cast<size_t>(element)] = true;
        }
    }
}

// Ink of the background's colour does not show.
void lay_over(world &on, const canvas &from, const job &job) {
    if (job.fg == job.bg || on.bytes_per_pixel != 4)
        return;
    for (int64_t i = 0; i < static_cast<int64_t>(from.ink.size()); i++) {
        if (!from.ink[static_cast<size_t>(i)])
            continue;
        const int64_t element = (job.y + i / from.w) * on.width + job.x + i % from.w;
        if (element >= 0 && element < static_cast<int64_t>(on.pixels.size()))
            on.pixels[static_cast<size_t>(element)] = job.fg;
    }
}

void lay_out(world &on, const job &job, const std::vector<uint32_t> &codes,
             const std::function<bool(size_t)> &is_break) {
    canvas onto = {job.w, job.h, {}};
    if (job.w > 0 && job.h > 0)
        onto.ink.resize(static_cast<size_t>(job.w) * static_cast<size_t>(job.h));
    const int64_t baseline = int64_t{job.size_y} * 4 / 5;
    int64_t pen = 0;
    int64_t line = 0;
    int64_t column = 0;
    for (size_t k = 0; k < codes.size(); k++) {
        on.calls.push_back("FSS_get_bitmap " + std::to_string(codes[k]));
        const auto found = on.glyphs.find(codes[k]);
        if (found == on.glyphs.end())
            continue;
        const glyph &glyph = found->second;
        int64_t advance = glyph.advance;
        if (is_break(k)) {
            advance = 0;
            pen = 0;
            column = 0;
            line++;
        } else {
            pen += advance;
            if (pen > job.w) {
                line++;
                column = 0;
                pen = advance;
            }
        }
        const bool over = job.size_y == 0 || line >= int64_t{job.h} / job.size_y;
        if (!over)
            draw_glyph(on, onto, glyph, line * job.size_y * job.w + column, baseline);
        column += advance;
        on.calls.push_back("FSS_free_char");
        if (over)
            break;
    }
    lay_over(on, onto, job);
}

} // namespace

void draw_units(world &on, const job &job, const uint8_t *text, size_t units) {
    set_scale(on, job);
    std::vector<uint32_t> codes;
    for (size_t i = 0; i < units && (text[2 * i] || text[2 * i + 1]); i++)
        codes.push_back(text[2 * i] + 256u * text[2 * i + 1]);
    if (codes.size() == k_units)
        return;
    lay_out(on, job, codes, [&](size_t k) { return codes[k] == 13 || codes[k] == 10; });
}

void draw_utf8(world &on, const job &job, const std::string &text) {
    set_scale(on, job);
    std::vector<uint32_t> pairs(k_words, 0);
    const size_t count = static_cast<size_t>(decode(text, pairs)) / 2;
    std::vector<uint32_t> codes;
    for (size_t k = 0; k < count; k++)
        codes.push_back(pairs[2 * k + 1]);
    lay_out(on, job, codes,
            [&](size_t k) { return 2 * k + 1 < text.size() && text[2 * k + 1] == 10; });
}

int decode(const std::string &text, std::vector<uint32_t> &pairs) {
    const auto byte = [&](size_t i) {
        return i < text.size() ? static_cast<uint32_t>(static_cast<uint8_t>(text[i])) : 0u;
    };
    size_t words = 0;
    for (size_t i = 0; i < text.size() && words < k_words; words += 2) {
        const uint32_t b0 = byte(i);
        const uint32_t top = b0 >> 4;
        uint32_t code = b0;
        size_t consumed = 1;
        if (top == 0xC || top == 0xD) {
            code = (b0 & 0x1F) << 6 | (byte(i + 1) & 0x3F);
            consumed = 2;
        } else if (top == 0xE) {
            code = ((b0 << 12) & 0xFFFF) | (byte(i + 1) & 0x3F) << 6 | (byte(i + 2) & 0x3F);
            consumed = 3;
        }
        i += consumed;
        if ((top >= 0x8 && top <= 0xB) || top == 0xF)
            continue;
        pairs[words] = code >> 8;
        pairs[words + 1] = code;
    }
    return static_cast<int>(words);
}

} // namespace canvas_text
