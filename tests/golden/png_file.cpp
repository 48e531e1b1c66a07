// SPDX-License-Identifier: MIT
// PNG files through libpng's simple interface; see png_file.h.

#include "tests/golden/png_file.h"

#include <bit>

#include <png.h>

namespace golden {
namespace {

// On a little-endian machine 0xAARRGGBB is stored as blue, green, red, alpha.
static_assert(std::endian::native == std::endian::little);
constexpr png_uint_32 k_format = PNG_FORMAT_BGRA;
constexpr png_uint_32 k_largest_side = 4096; // pixels; a damaged file may claim anything

} // namespace

std::optional<picture> read_png(const std::string &path) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return std::nullopt;
    if (image.width > k_largest_side || image.height > k_largest_side) {
        png_image_free(&image);
        return std::nullopt;
    }
    image.format = k_format;
    picture result{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    result.pixels.resize(size_t{image.width} * image.height);
    if (!png_image_finish_read(&image, nullptr, result.pixels.data(), 0, nullptr))
        return std::nullopt;
    return result;
}

bool write_png(const std::string &path, const picture &picture) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = k_format;
    return png_image_write_to_file(&image, path.c_str(), 0, picture.pixels.data(), 0, nullptr) != 0;
}

} // namespace golden
