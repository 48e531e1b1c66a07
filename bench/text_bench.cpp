// SPDX-License-Identifier: MIT
// One line of 100 characters, glyphs cached, beside peers that render the same font in monochrome.

#include "bench/bench_screen.h"
#include "bench/peers.h"

#include "platform/em862x.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr char k_text[] = "The quick brown fox jumps over the lazy dog 0123456789 and back again, "
                          "sphinx of black quartz, judge my vow";
constexpr int k_length = 100;
static_assert(sizeof k_text > k_length);

const char16_t *units() {
    static char16_t text[k_length + 1];
    for (int i = 0; i < k_length; i++)
        text[i] = static_cast<char16_t>(k_text[i]);
    return text;
}

void draw(int size) {
    uxFontDrawing(units(), 0xFFFFFFFF, 0xFF000000, 10, 10, k_width - 20, 60, size, size, 0, 1);
}

void fetch(int size) {
    FSS_set_scale(size << 16, 0, 0, size << 16);
    for (int i = 0; i < k_length; i++)
        FSS_free_char(FSS_get_bitmap(static_cast<uint32_t>(k_text[i])));
}

// Text by way of two canvases: drawn into one, the screen saved into the other, laid over it.
void draw_with_canvases(int size) {
    constexpr int w = k_width - 20;
    constexpr int h = 60;
    constexpr uint32_t bg = 0xFF000000;
    auto *canvas = static_cast<uint32_t *>(calloc(w * h, 4));
    auto *saved = static_cast<uint32_t *>(calloc(w * h, 4));
    for (int i = 0; i < w * h; i++)
        canvas[i] = bg;
    FSS_set_scale(size << 16, 0, 0, size << 16);
    uint32_t *pen = canvas;
    for (int k = 0; k < k_length; k++) {
        fss_glyph *glyph = FSS_get_bitmap(static_cast<uint32_t>(k_text[k]));
        const auto *bits = reinterpret_cast<const uint8_t *>(glyph + 1);
        const int top = size * 4 / 5 - glyph->top;
        for (int r = 0; r < h; r++) {
            if (r < top || r >= top + glyph->rows)
                continue;
            for (int b = 0; b < glyph->pitch * 8; b++)
                if (bits[b / 8] & 0x80 >> b % 8)
                    set_pixel_bmp(reinterpret_cast<uint8_t *>(pen), w, glyph->left + b, r,
                                  0xFFFFFFFF);
            bits += glyph->pitch;
        }
        pen += glyph->advance;
        FSS_free_char(glyph);
    }
    uint32_t *screen = screen_pixels() + 10 * k_width + 10;
    for (int r = 0; r < h; r++)
        memcpy(saved + r * w, screen + r * k_width, w * 4);
    for (int r = 0; r < h; r++)
        for (int c = 0; c < w; c++)
            screen[r * k_width + c] =
                canvas[r * w + c] == bg ? saved[r * w + c] : canvas[r * w + c];
    free(canvas);
    free(saved);
}

void cairo_text(int size) {
    static cairo_t *const context = cairo_screen(other_pixels());
    static int present = 0;
    if (present != size) {
        set_cairo_font(context, size);
        cairo_set_source_rgb(context, 1, 1, 1);
        present = size;
    }
    char text[k_length + 1] = {};
    memcpy(text, k_text, k_length);
    cairo_move_to(context, 10, 40);
    cairo_show_text(context, text);
}

void sdl_text(int size) {
    static SDL_Surface *const screen = sdl_screen(other_pixels());
    static TTF_Font *fonts[64] = {};
    if (!fonts[size])
        fonts[size] = sdl_font(size);
    char text[k_length + 1] = {};
    memcpy(text, k_text, k_length);
    SDL_Surface *drawn = TTF_RenderText_Solid(fonts[size], text, {255, 255, 255, 255});
    SDL_Rect place = {10, 10, 0, 0};
    SDL_BlitSurface(drawn, nullptr, screen, &place);
    SDL_FreeSurface(drawn);
}

} // namespace

void register_text() {
    setenv("EM862X_FONT", font_path(), 0);
    contender("text 100 glyphs 16 px/ux", [] { draw(16); });
    contender("text 100 glyphs 16 px/fetch", [] { fetch(16); });
    contender("text 100 glyphs 16 px/canvases", [] { draw_with_canvases(16); });
    contender("text 100 glyphs 16 px/cairo", [] { cairo_text(16); });
    contender("text 100 glyphs 16 px/sdl_ttf", [] { sdl_text(16); });
    contender("text 100 glyphs 24 px/ux", [] { draw(24); });
    contender("text 100 glyphs 24 px/fetch", [] { fetch(24); });
    contender("text 100 glyphs 24 px/cairo", [] { cairo_text(24); });
    contender("text 100 glyphs 24 px/sdl_ttf", [] { sdl_text(24); });
}
