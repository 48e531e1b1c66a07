// SPDX-License-Identifier: MIT
// Peers made ready; see peers.h.

#include "bench/peers.h"

#include "bench/bench_screen.h"

#include <cairo/cairo-ft.h>
#include <cstdio>
#include <cstdlib>

const char *font_path() {
    return "/usr/share/fonts/truetype/ttf-bitstream-vera/Vera.ttf";
}

pixman_image_t *pixman_screen(uint32_t *pixels) {
    return pixman_image_create_bits(PIXMAN_a8r8g8b8, k_width, k_height, pixels, k_width * 4);
}

pixman_image_t *pixman_turned_screen(uint32_t *pixels) {
    return pixman_image_create_bits(PIXMAN_a8r8g8b8, k_height, k_width, pixels, k_height * 4);
}

cairo_t *cairo_screen(uint32_t *pixels) {
    cairo_surface_t *surface =
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char *>(pixels),
                                            CAIRO_FORMAT_ARGB32, k_width, k_height, k_width * 4);
    return cairo_create(surface);
}

void set_cairo_font(cairo_t *context, int size) {
    static FT_Library library = nullptr;
    static FT_Face face = nullptr;
    if (!library && (FT_Init_FreeType(&library) || FT_New_Face(library, font_path(), 0, &face))) {
        fprintf(stderr, "ux-bench: can not open %s\n", font_path());
        exit(1);
    }
    cairo_font_face_t *font = cairo_ft_font_face_create_for_ft_face(face, 0);
    cairo_set_font_face(context, font);
    cairo_set_font_size(context, size);
    cairo_font_options_t *options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_NONE);
    cairo_set_font_options(context, options);
    cairo_font_options_destroy(options);
    cairo_font_face_destroy(font);
}

SDL_Surface *sdl_screen(uint32_t *pixels) {
    return SDL_CreateRGBSurfaceWithFormatFrom(pixels, k_width, k_height, 32, k_width * 4,
                                              SDL_PIXELFORMAT_ARGB8888);
}

TTF_Font *sdl_font(int size) {
    TTF_Init();
    TTF_Font *font = TTF_OpenFont(font_path(), size);
    if (!font) {
        fprintf(stderr, "ux-bench: can not open %s\n", font_path());
        exit(1);
    }
    TTF_SetFontHinting(font, TTF_HINTING_MONO);
    return font;
}
