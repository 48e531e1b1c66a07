// SPDX-License-Identifier: MIT
// The software text drawers: the widgets' one over 16-bit texts, and the reference one over UTF-8.
// The scrolling modes of the first are in ticker.h.

#include "font/glyph_bits.h"
#include "font/glyph_session.h"
#include "font/text_layout.h"
#include "font/ticker.h"
#include "font/unit_text.h"

#include <cstring>

namespace ux {
namespace {

enum drawing_mode { k_mode_once = 1, k_mode_ticker_up = 2, k_mode_ticker_left = 4 };

constexpr int k_max_words = 4096; // of decoded text, two a character

// A text without an end is not drawn at all.
void draw_once(const text_box &box, const unit_text &text) {
    const int length = text.length();
    if (length == UX_TEXT_UNITS)
        return;
    draw_glyphs(
        box, length, [&](int k) { return text[k]; },
        [&](int k) { return text[k] == u'\n' || text[k] == u'\r'; });
}

} // namespace
} // namespace ux

void set_pixel_bmp(uint8_t *canvas, int width, int x, int y, uint32_t color) noexcept {
    if (main_screen.bytes_per_pixel != sizeof(ux::argb8888::word)) {
        ux::report_unknown_pixel();
        return;
    }
    const int64_t element = int64_t{y} * width + x;
    const uint8_t bytes[] = {static_cast<uint8_t>(color), static_cast<uint8_t>(color >> 8),
                             static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 24)};
    memcpy(canvas + element * static_cast<int64_t>(sizeof bytes), bytes, sizeof bytes);
}

int DrawFontToBitmapTEST(const char *text, uint32_t fg, uint32_t bg, int x, int y, int w, int h,
                         int size_x, int size_y) noexcept {
    const ux::glyph_session session(size_x, size_y);
    uint32_t pairs[ux::k_max_words] = {};
    const int count = UTF8to16(text, pairs) / 2;
    const int bytes = text ? static_cast<int>(strnlen(text, ux::k_max_words)) : 0;
    // Byte 2k + 1 of the text decides, not character k; what lies behind the text breaks nothing.
    ux::draw_glyphs(
        {x, y, w, h, size_y, fg, fg != bg}, count, [&](int k) { return pairs[2 * k + 1]; },
        [&](int k) { return 2 * k + 1 < bytes && text[2 * k + 1] == '\n'; });
    return 0;
}

int uxFontDrawing(const void *text, uint32_t fg, uint32_t bg, int x, int y, int w, int h,
                  int size_x, int size_y, int step, int mode) noexcept {
    switch (mode) {
    case ux::k_mode_once: {
        const ux::glyph_session session(size_x, size_y);
        if (text)
            ux::draw_once({x, y, w, h, size_y, fg, fg != bg}, ux::unit_text(text));
        return 0;
    }
    case ux::k_mode_ticker_up:
    case ux::k_mode_ticker_left:
        return ux::run_ticker(static_cast<const char *>(text), {fg, bg, x, y, w, h, step},
                              mode == ux::k_mode_ticker_up ? ux::scrolling::up
                                                           : ux::scrolling::left);
    default:
        return 0;
    }
}
