// SPDX-License-Identifier: MIT
// PNG files with libpng's simplified interface, and the pixel-by-pixel comparison.
#include "sim/picture.h"

#include "sim/failure.h"
#include "sim/screen.h"

#include <png.h>

#include <algorithm>
#include <cstdio>

namespace ux::sim {

namespace {

constexpr size_t k_channels = 3;

png_image new_image() {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    return image;
}

} // namespace

void write_png(const picture &shown, const std::string &path) {
    png_image image = new_image();
    image.width = static_cast<png_uint_32>(shown.width);
    image.height = static_cast<png_uint_32>(shown.height);
    image.format = PNG_FORMAT_RGB;
    const std::string unfinished = path + ".part";
    if (png_image_write_to_file(&image, unfinished.c_str(), 0, shown.rgb.data(), 0, nullptr) == 0) {
        std::remove(unfinished.c_str());
        throw failure("cannot write " + path + ": " + image.message);
    }
    if (std::rename(unfinished.c_str(), path.c_str()) != 0) {
        std::string reason = system_reason("cannot write " + path);
        std::remove(unfinished.c_str());
        throw failure(reason);
    }
}

picture read_png(const std::string &path) {
    png_image image = new_image();
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) {
        throw failure("cannot read " + path + ": " + image.message);
    }
    if (image.width > k_largest_side || image.height > k_largest_side ||
        (image.format & PNG_FORMAT_FLAG_ALPHA) != 0) {
        png_image_free(&image);
        throw failure("cannot use " + path + ": it is too large or transparent");
    }
    image.format = PNG_FORMAT_RGB;
    picture result = {static_cast<int>(image.width), static_cast<int>(image.height),
                      std::vector<uint8_t>(PNG_IMAGE_SIZE(image))};
    if (png_image_finish_read(&image, nullptr, result.rgb.data(), 0, nullptr) == 0) {
        throw failure("cannot read " + path + ": " + image.message);
    }
    return result;
}

difference compare(const picture &wanted, const picture &seen) {
    difference found;
    found.same_size = wanted.width == seen.width && wanted.height == seen.height;
    if (!found.same_size || wanted.rgb == seen.rgb) {
        return found;
    }
    found.left = seen.width;
    found.top = seen.height;
    found.diff = seen;
    for (size_t at = 0; at < seen.rgb.size(); at += k_channels) {
        uint8_t *out = found.diff.rgb.data() + at;
        if (std::equal(out, out + k_channels, wanted.rgb.data() + at)) {
            std::transform(out, out + k_channels, out, [](uint8_t value) { return value / 4; });
            continue;
        }
        const int pixel = static_cast<int>(at / k_channels);
        ++found.pixels;
        found.left = std::min(found.left, pixel % seen.width);
        found.right = std::max(found.right, pixel % seen.width);
        found.top = std::min(found.top, pixel / seen.width);
        found.bottom = std::max(found.bottom, pixel / seen.width);
        out[0] = UINT8_MAX;
        out[1] = out[2] = 0;
    }
    return found;
}

} // namespace ux::sim
