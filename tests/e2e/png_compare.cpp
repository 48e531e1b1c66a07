// SPDX-License-Identifier: MIT
// png_compare REFERENCE SHOT DIFF: compares two pictures pixel by pixel. Status 0: the same; 1:
// they differ, and DIFF shows where; 2: one of them cannot be read.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include <png.h>

namespace {

constexpr int k_same = 0;
constexpr int k_different = 1;
constexpr int k_unreadable = 2;
constexpr int k_channels = 3;
constexpr png_uint_32 k_largest_side = 16384; // pixels: a picture beyond is none of ours

struct picture {
    png_uint_32 width = 0;
    png_uint_32 height = 0;
    std::vector<uint8_t> pixels; // red, green, blue; rows packed

    const uint8_t *at(png_uint_32 x, png_uint_32 y) const {
        return pixels.data() + (static_cast<size_t>(y) * width + x) * k_channels;
    }
};

std::optional<picture> read_picture(const char *path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path)) {
        std::fprintf(stderr, "%s: %s\n", path, image.message);
        return std::nullopt;
    }
    if (image.width > k_largest_side || image.height > k_largest_side) {
        std::fprintf(stderr, "%s: too large\n", path);
        png_image_free(&image);
        return std::nullopt;
    }
    image.format = PNG_FORMAT_RGB;
    picture result{image.width, image.height, std::vector<uint8_t>(PNG_IMAGE_SIZE(image))};
    if (!png_image_finish_read(&image, nullptr, result.pixels.data(), 0, nullptr)) {
        std::fprintf(stderr, "%s: %s\n", path, image.message);
        return std::nullopt;
    }
    return result;
}

bool write_picture(const char *path, const picture &p) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = p.width;
    image.height = p.height;
    image.format = PNG_FORMAT_RGB;
    if (!png_image_write_to_file(&image, path, 0, p.pixels.data(), 0, nullptr)) {
        std::fprintf(stderr, "%s: %s\n", path, image.message);
        return false;
    }
    return true;
}

struct difference {
    size_t pixels = 0;
    png_uint_32 left = UINT32_MAX, top = UINT32_MAX, right = 0, bottom = 0; // inclusive
    picture diff; // the shot, darkened; differing pixels red
};

difference compare(const picture &reference, const picture &shot) {
    difference found;
    found.diff = shot;
    for (png_uint_32 y = 0; y < shot.height; y++) {
        for (png_uint_32 x = 0; x < shot.width; x++) {
            uint8_t *out = found.diff.pixels.data() + (shot.at(x, y) - shot.pixels.data());
            if (std::equal(out, out + k_channels, reference.at(x, y))) {
                std::transform(out, out + k_channels, out, [](uint8_t v) { return v / 4; });
                continue;
            }
            found.pixels++;
            found.left = std::min(found.left, x);
            found.right = std::max(found.right, x);
            found.top = std::min(found.top, y);
            found.bottom = std::max(found.bottom, y);
            out[0] = UINT8_MAX;
            out[1] = out[2] = 0;
        }
    }
    return found;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: png_compare REFERENCE SHOT DIFF\n");
        return k_unreadable;
    }
    auto reference = read_picture(argv[1]);
    auto shot = read_picture(argv[2]);
    if (!reference || !shot)
        return k_unreadable;
    if (reference->width != shot->width || reference->height != shot->height) {
        std::fprintf(stderr, "%s is %ux%u, %s is %ux%u\n", argv[1], reference->width,
                     reference->height, argv[2], shot->width, shot->height);
        return k_different;
    }
    difference found = compare(*reference, *shot);
    if (found.pixels == 0)
        return k_same;
    std::fprintf(stderr, "%s: %zu pixels differ, inside (%u, %u)-(%u, %u)\n", argv[2], found.pixels,
                 found.left, found.top, found.right, found.bottom);
    if (write_picture(argv[3], found.diff))
        std::fprintf(stderr, "difference: %s\n", argv[3]);
    return k_different;
}
