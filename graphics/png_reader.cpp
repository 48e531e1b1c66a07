// SPDX-License-Identifier: MIT
// PNG pictures by libpng, over the platform's files. libpng reports errors by a jump: every
// function here that can meet one sets its own place to land, and holds what it must release in
// variables that are not changed after that.

#include "graphics/bitmap_reader.h"
#include "graphics/scale.h"

#include <cstdlib>
#include <cstring>

namespace ux {
namespace {

constexpr int k_byte_bits = 8;

// The texts in a picture are left out: a thousand of 8 MB each would fit into a small file. To
// libpng 0 stands for any number, and 1 for none.
constexpr png_uint_32 k_no_texts = 1;

// The order counts: expansions first, so that what follows sees 8-bit grey or RGB.
void normalise(RMPngFile *png) {
    png_structp reader = png->png_ptr;
    png_infop info = png->info_ptr;
    const int depth = png_get_bit_depth(reader, info);
    const int color = png_get_color_type(reader, info);
    if (color == PNG_COLOR_TYPE_PALETTE)
        png_set_expand(reader);
    if (color == PNG_COLOR_TYPE_GRAY && depth < k_byte_bits)
        png_set_expand(reader);
    if (png_get_valid(reader, info, PNG_INFO_tRNS))
        png_set_expand(reader);
    if (depth == 2 * k_byte_bits)
        png_set_strip_16(reader);
    if (color == PNG_COLOR_TYPE_GRAY || color == PNG_COLOR_TYPE_GRAY_ALPHA)
        png_set_gray_to_rgb(reader);
    png_set_bgr(reader);
    png_set_filler(reader, png->alpha, PNG_FILLER_AFTER);
    png_set_interlace_handling(reader);
    png_read_update_info(reader, info);
}

void read_header(RMPngFile *png) {
    png_set_read_fn(png->png_ptr, png->file, png_read_data_rm_file);
    png_set_chunk_cache_max(png->png_ptr, k_no_texts);
    png_read_info(png->png_ptr, png->info_ptr);
    png->width = png_get_image_width(png->png_ptr, png->info_ptr);
    png->height = png_get_image_height(png->png_ptr, png->info_ptr);
    normalise(png);
}

int read_unscaled(uint8_t *dest, RMPngFile *png) {
    auto **rows = static_cast<png_bytepp>(calloc(png->height, sizeof(png_bytep)));
    if (!rows)
        return UX_BITMAP_FAILURE;
    const size_t row_bytes = png_get_rowbytes(png->png_ptr, png->info_ptr);
    for (uint32_t i = 0; i < png->height; i++)
        rows[i] = dest + i * row_bytes;
    if (setjmp(png_jmpbuf(png->png_ptr))) {
        free(rows);
        return UX_BITMAP_FAILURE;
    }
    png_read_image(png->png_ptr, rows);
    png_read_end(png->png_ptr, nullptr);
    free(rows);
    return UX_BITMAP_SUCCESS;
}

// The source row that output row k shows.
uint32_t source_row(const RMPngFile *png, uint32_t k) {
    return static_cast<uint32_t>(uint64_t{k} * png->height / png->dst_height);
}

uint8_t *output_row(uint8_t *dest, const RMPngFile *png, uint32_t k) {
    return dest + size_t{k} * png->dst_width * k_pixel_bytes;
}

void scale_rows(uint8_t *dest, RMPngFile *png, uint8_t *row, const nearest_columns &columns) {
    uint32_t next = 0; // source row that libpng gives next
    for (uint32_t k = 0; k < png->dst_height; k++) {
        uint8_t *out = output_row(dest, png, k);
        const uint32_t wanted = source_row(png, k);
        if (k > 0 && wanted < next) {
            memcpy(out, out - size_t{png->dst_width} * k_pixel_bytes,
                   size_t{png->dst_width} * k_pixel_bytes);
            continue;
        }
        for (; next <= wanted; next++)
            png_read_row(png->png_ptr, row, nullptr);
        scale_row(pixels(out), pixels(row), columns);
    }
    // libpng is not quiet about an end that comes before the last row.
    for (; next < png->height; next++)
        png_read_row(png->png_ptr, row, nullptr);
}

// Which columns of each eight `pass` brings, a bit each.
unsigned columns_of_pass(int pass) {
    unsigned bits = 0;
    for (unsigned column = 0; column < 8; column++)
        bits |= static_cast<unsigned>(PNG_COL_IN_INTERLACE_PASS(column, pass)) << column;
    return bits;
}

// Of a row's pixels the ones that `pass` brought, if they are shown. Remainders are added up.
void take_pass(word32 *out, const word32 *row, const RMPngFile *png, int pass) {
    const unsigned bits = columns_of_pass(pass);
    const uint32_t step = png->width / png->dst_width;
    const uint32_t remainder = png->width % png->dst_width;
    uint32_t column = 0;
    uint64_t sum = 0;
    for (uint32_t x = 0; x < png->dst_width; x++) {
        out[x] = bits >> (column & 7) & 1 ? row[column] : out[x];
        sum += remainder;
        const bool carry = sum >= png->dst_width;
        sum -= carry ? png->dst_width : 0;
        column += step + (carry ? 1 : 0);
    }
}

// An interlaced picture comes in passes over all rows; of a row each brings some pixels, at their
// places. Nothing but the output is kept from pass to pass: the source may be of any size.
void scale_passes(uint8_t *dest, RMPngFile *png, uint8_t *row) {
    const size_t out_bytes = size_t{png->dst_width} * k_pixel_bytes;
    for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; pass++) {
        uint32_t k = 0; // output row to come next
        for (uint32_t y = 0; y < png->height; y++) {
            png_read_row(png->png_ptr, row, nullptr);
            const bool is_new = PNG_ROW_IN_INTERLACE_PASS(y, pass);
            for (const uint32_t first = k; k < png->dst_height && source_row(png, k) == y; k++) {
                uint8_t *out = output_row(dest, png, k);
                if (is_new && k == first)
                    take_pass(pixels(out), pixels(row), png, pass);
                else if (is_new)
                    memcpy(out, out - out_bytes, out_bytes);
            }
        }
    }
}

int read_scaled(uint8_t *dest, RMPngFile *png) {
    auto *row = static_cast<uint8_t *>(calloc(1, png_get_rowbytes(png->png_ptr, png->info_ptr)));
    if (!row)
        return UX_BITMAP_FAILURE;
    const nearest_columns columns(static_cast<int32_t>(png->width),
                                  static_cast<int32_t>(png->dst_width));
    if (setjmp(png_jmpbuf(png->png_ptr))) {
        free(row);
        return UX_BITMAP_FAILURE;
    }
    if (png_get_interlace_type(png->png_ptr, png->info_ptr) == PNG_INTERLACE_NONE)
        scale_rows(dest, png, row, columns);
    else
        scale_passes(dest, png, row);
    png_read_end(png->png_ptr, nullptr);
    free(row);
    return UX_BITMAP_SUCCESS;
}

} // namespace
} // namespace ux

// A short read does not move `data`: files fill every request, so there is none.
void png_read_data_rm_file(png_structp png_ptr, png_bytep data, size_t length) {
    auto *file = static_cast<rm_file *>(png_get_io_ptr(png_ptr));
    while (length > 0) {
        uint32_t got = 0;
        if (RMReadFile(file, data, static_cast<uint32_t>(length), &got) != EM862X_SUCCESS)
            png_error(png_ptr, "Read Error!");
        length -= got;
    }
}

int open_png_file(RMPngFile *png) noexcept {
    png->gray_levels = 0;
    png->info_ptr = nullptr;
    png->png_ptr = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    if (!png->png_ptr)
        return UX_BITMAP_FAILURE;
    png->info_ptr = png_create_info_struct(png->png_ptr);
    if (!png->info_ptr || setjmp(png_jmpbuf(png->png_ptr))) {
        png_destroy_read_struct(&png->png_ptr, &png->info_ptr, nullptr);
        return UX_BITMAP_FAILURE;
    }
    ux::read_header(png);
    return UX_BITMAP_SUCCESS;
}

int png_to_raw(uint8_t *dest, RMPngFile *png) noexcept {
    return ux::is_scaled(png->width, png->height, png->dst_width, png->dst_height)
               ? ux::read_scaled(dest, png)
               : ux::read_unscaled(dest, png);
}
