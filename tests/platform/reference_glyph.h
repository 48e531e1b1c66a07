/* SPDX-License-Identifier: MIT */
/*
 * Glyphs as plain text, from the code under test and from FreeType used in the plainest way.
 */
#ifndef UX_TESTS_PLATFORM_REFERENCE_GLYPH_H
#define UX_TESTS_PLATFORM_REFERENCE_GLYPH_H

#include <cstdint>
#include <string>
#include <vector>

#include "platform/em862x.h"

constexpr const char *k_vera = "/usr/share/fonts/truetype/ttf-bitstream-vera/Vera.ttf";
constexpr const char *k_dejavu = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

/* Metrics in pixels; each row has one '#' or '.' per pixel, without dots at its end. */
struct glyph_picture {
    int left = 0;
    int top = 0;
    int advance = 0;
    std::vector<std::string> rows;

    bool operator==(const glyph_picture &) const = default;
};
std::ostream &operator<<(std::ostream &stream, const glyph_picture &picture);

/* What FSS_get_bitmap gives for the code at the present scale; given back. Fails on null. */
glyph_picture fss_picture(std::uint32_t code);

/* A 16.16 matrix like that of FSS_set_scale, of whole sizes: width and height in pixels. */
struct reference_scale {
    unsigned width;
    unsigned height;
    double x_per_y = 0; /* shear, as a share of the height */
    double y_per_x = 0; /* shear, as a share of the width */
};

/* The code's glyph in the font at the path, rendered afresh; no rows when there is no ink. */
glyph_picture reference_picture(const char *path, std::uint32_t code, reference_scale scale);

#endif
