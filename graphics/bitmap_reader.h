// SPDX-License-Identifier: MIT
// What the bitmap reader's two decoders share with its front.
#ifndef UX_GRAPHICS_BITMAP_READER_H
#define UX_GRAPHICS_BITMAP_READER_H

#include "graphics/pixel.h"
#include "platform/em862x.h"
#include "ux_bitmap.h"

namespace ux {

constexpr size_t k_pixel_bytes = 4; // of every decoded pixel

// A decoded row as pixels.
inline word32 *pixels(uint8_t *row) {
    return reinterpret_cast<word32 *>(row);
}

// Whether a picture of width x height is to be scaled to the requested size.
inline bool is_scaled(uint32_t width, uint32_t height, uint32_t dst_width, uint32_t dst_height) {
    return dst_width != 0 && dst_height != 0 && (dst_width != width || dst_height != height);
}

// Opens the JPEG whose file, alpha and requested size are set; 6, or 9 with libjpeg's object
// released.
int open_jpeg_file(RMJpegFile *jpeg);

// Decodes a JPEG; 6 or 9.
int jpeg_to_raw(uint8_t *dest, RMJpegFile *jpeg);

// Releases libjpeg's object.
void close_jpeg(RMJpegFile *jpeg);

} // namespace ux

#endif
