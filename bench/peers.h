// SPDX-License-Identifier: MIT
// What peers need to stand ready: images over the benchmark's memory, fonts of the same file.
#ifndef UX_BENCH_PEERS_H
#define UX_BENCH_PEERS_H

#include <SDL2/SDL.h>
#include <SDL2/SDL_ttf.h>
#include <cairo/cairo.h>
#include <pixman.h>

#include <cstdint>

// Wrappers around memory of the screen's size; made once, never released.
pixman_image_t *pixman_screen(uint32_t *pixels);
pixman_image_t *pixman_turned_screen(uint32_t *pixels);
cairo_t *cairo_screen(uint32_t *pixels);
SDL_Surface *sdl_screen(uint32_t *pixels);

// The font of the benchmarks in monochrome, `size` pixels.
void set_cairo_font(cairo_t *context, int size);
TTF_Font *sdl_font(int size);

// The font file all contenders read.
const char *font_path();

#endif
