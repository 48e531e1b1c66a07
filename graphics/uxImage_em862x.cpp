// SPDX-License-Identifier: MIT
// The bitmap reader's front: which decoder by the name, which file by the address, open, decode and
// close.

#include "graphics/bitmap_reader.h"

#include <cstring>
#include <strings.h>

namespace ux {
namespace {

constexpr size_t k_suffix = 4; // characters that tell the kind
constexpr char k_http[] = "http://";
constexpr uint32_t k_max_palette = 256;
constexpr RMBitmapOptions k_default_options = {0xFF, 0, 0};

// 0 = no kind that can be read; a null path has none.
uint32_t kind_of(const char *path) {
    const size_t length = path ? strlen(path) : 0;
    if (length < k_suffix)
        return 0;
    const char *suffix = path + length - k_suffix;
    if (strcasecmp(suffix, ".jpg") == 0 || strcasecmp(suffix, "jpeg") == 0)
        return UX_BITMAP_JPEG;
    return strcasecmp(suffix, ".png") == 0 ? UX_BITMAP_PNG : 0;
}

rm_file *open_address(const char *path) {
    void *cookie = fetchOpen(path, 0);
    if (!cookie)
        return nullptr;
    rm_file *file = RMOpenFileCookie(cookie, 0, &httpFileOps);
    if (!file)
        fetchClose(cookie);
    return file;
}

rm_file *open_path(const char *path) {
    rm_non_ascii *converted = RMnonAsciiFromAscii(path);
    rm_file *file = RMOpenFile(converted, 0);
    RMFreeNonAscii(converted);
    return file;
}

rm_file *open_file(const char *path) {
    return strncasecmp(path, k_http, sizeof k_http - 1) == 0 ? open_address(path) : open_path(path);
}

int open_png(RMPngFile *png, const RMBitmapOptions &options) {
    png->alpha = options.alpha;
    png->dst_width = options.width;
    png->dst_height = options.height;
    return open_png_file(png);
}

int open_jpeg(RMJpegFile *jpeg, const RMBitmapOptions &options) {
    jpeg->alpha = options.alpha;
    jpeg->dst_width = options.width;
    jpeg->dst_height = options.height;
    return open_jpeg_file(jpeg);
}

void write_gray_palette(uint32_t *palette, const RMPngFile &png) {
    const uint32_t levels = png.gray_levels < k_max_palette ? png.gray_levels : k_max_palette;
    const uint32_t step = levels > 1 ? 255 / (levels - 1) : 0;
    for (uint32_t i = 0; i < levels; i++)
        palette[i] = png.alpha << 24 | i * step << 16 | i * step << 8 | i * step;
}

} // namespace
} // namespace ux

int RMOpenBitmapFile(const char *path, RMBitmapFile *handle,
                     const RMBitmapOptions *options) noexcept {
    handle->kind = ux::kind_of(path);
    if (handle->kind == 0)
        return UX_BITMAP_FAILURE;
    handle->file = ux::open_file(path);
    if (!handle->file)
        return UX_BITMAP_FAILURE;
    const RMBitmapOptions &wanted = options ? *options : ux::k_default_options;
    const int result = handle->kind == UX_BITMAP_PNG ? ux::open_png(&handle->png, wanted)
                                                     : ux::open_jpeg(&handle->jpeg, wanted);
    if (result != UX_BITMAP_SUCCESS)
        RMCloseFile(handle->file);
    return result;
}

int RMBitmapToRaw(uint8_t *dest, RMBitmapFile *handle) noexcept {
    if (handle->kind == UX_BITMAP_JPEG)
        return ux::jpeg_to_raw(dest, &handle->jpeg);
    return handle->kind == UX_BITMAP_PNG ? png_to_raw(dest, &handle->png) : UX_BITMAP_FAILURE;
}

int RMCloseBitmapFile(RMBitmapFile *handle) noexcept {
    if (handle->kind == UX_BITMAP_JPEG)
        ux::close_jpeg(&handle->jpeg);
    else if (handle->kind == UX_BITMAP_PNG)
        png_destroy_read_struct(&handle->png.png_ptr, &handle->png.info_ptr, nullptr);
    else
        return UX_BITMAP_UNKNOWN;
    return RMCloseFile(handle->file);
}

int RMBitmapGetPalette(uint32_t *palette, RMBitmapFile *handle) noexcept {
    if (handle->kind != UX_BITMAP_PNG)
        return UX_BITMAP_FAILURE;
    const RMPngFile &png = handle->png;
    if (png.gray_levels != 0) {
        ux::write_gray_palette(palette, png);
        return UX_BITMAP_SUCCESS;
    }
    png_colorp colors = nullptr;
    int count = 0;
    if (!png_get_PLTE(png.png_ptr, png.info_ptr, &colors, &count))
        return UX_BITMAP_FAILURE;
    for (int i = 0; i < count; i++)
        palette[i] = png.alpha << 24 | uint32_t{colors[i].red} << 16 |
                     uint32_t{colors[i].green} << 8 | colors[i].blue;
    return UX_BITMAP_SUCCESS;
}
