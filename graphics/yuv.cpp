// SPDX-License-Identifier: MIT
// Conversions of YUV pixels: one pixel by the formula of yuv.h, rows in groups of sixteen.

#include "graphics/yuv.h"

#include "graphics/overlap.h"
#include "graphics/pixel.h"
#include "graphics/simd.h"

#include <cstring>

namespace ux {
namespace {

// UYVY comes in pairs of pixels, and an odd last pixel is converted as a whole pair.
constexpr int64_t k_uyvy_bytes = 4;
constexpr int64_t k_rgb565_bytes = 4; // of a pair, as the next two
constexpr int64_t k_rgb888_bytes = 6;
constexpr int64_t k_yuv444_bytes = 6;
constexpr int64_t k_group = 8; // pairs in a group

using words [[gnu::vector_size(32)]] = uint16_t;
using integers [[gnu::vector_size(32)]] = int16_t;
using pairs [[gnu::vector_size(32)]] = uint32_t;
using quads [[gnu::vector_size(32)]] = uint64_t;
using bytes [[gnu::vector_size(32)]] = uint8_t;

inline __attribute__((always_inline)) void clamp_to_bytes(words &clamped, const integers &values) {
    const integers positive = values < 0 ? integers{} : values;
    clamped = reinterpret_cast<words>(positive > 255 ? integers{} + 255 : positive);
}

// Sixteen pixels in 16-bit lanes. The formula's sums need 18 bits, but 298 = 256 + 42, 409 = 256 +
// 153, 208 = 256 - 48 and 516 = 512 + 4: with the multiples of 256 added behind the shift, which
// changes nothing, what is left to shift lies between -20,128 and 29,597.
inline __attribute__((always_inline)) void convert_group(const uint8_t *uyvy, words &red,
                                                         words &green, words &blue) {
    pairs packed; // from bit 0 on U, Y0, V, Y1
    memcpy(&packed, uyvy, sizeof packed);
    const pairs u = packed & 0xFF;
    const pairs v = packed >> 16 & 0xFF;
    const integers c = reinterpret_cast<integers>(reinterpret_cast<words>(packed) >> 8) - 16;
    const integers d = reinterpret_cast<integers>(u | u << 16) - 128;
    const integers e = reinterpret_cast<integers>(v | v << 16) - 128;
    const integers rest = c * 42 + 128;
    clamp_to_bytes(red, c + e + ((rest + e * 153) >> 8));
    clamp_to_bytes(green, c - e + ((rest - d * 100 + e * 48) >> 8));
    clamp_to_bytes(blue, c + d * 2 + ((rest + d * 4) >> 8));
}

} // namespace

UX_MULTIVERSION int64_t groups_to_rgb565(uint8_t *to, const uint8_t *uyvy, int64_t count) {
    int64_t i = 0;
    for (; i + k_group <= count; i += k_group) {
        words red;
        words green;
        words blue;
        convert_group(uyvy + i * k_uyvy_bytes, red, green, blue);
        const words pixels = (red & 0xF8) << 8 | (green & 0xFC) << 3 | blue >> 3;
        memcpy(to + i * k_rgb565_bytes, &pixels, sizeof pixels);
    }
    return i;
}

// The stores below write up to 4 bytes too many, which the next store makes good: at least one pair
// has to follow a group.
UX_AVX2 int64_t groups_to_rgb888_avx2(uint8_t *to, const uint8_t *uyvy, int64_t count) {
    int64_t i = 0;
    for (; i + k_group < count; i += k_group) {
        words red;
        words green;
        words blue;
        convert_group(uyvy + i * k_uyvy_bytes, red, green, blue);
        const bytes red_green = reinterpret_cast<bytes>(red | green << 8);
        const bytes blues = reinterpret_cast<bytes>(blue);
        // Of each half's eight pixels the first four, and the last four: 12 bytes and 4 to spare.
        const bytes front = __builtin_shufflevector(
            red_green, blues, 0, 1, 32, 2, 3, 34, 4, 5, 36, 6, 7, 38, 38, 38, 38, 38, //
            16, 17, 48, 18, 19, 50, 20, 21, 52, 22, 23, 54, 54, 54, 54, 54);
        const bytes back = __builtin_shufflevector(
            red_green, blues, 8, 9, 40, 10, 11, 42, 12, 13, 44, 14, 15, 46, 46, 46, 46, 46, //
            24, 25, 56, 26, 27, 58, 28, 29, 60, 30, 31, 62, 62, 62, 62, 62);
        uint8_t *out = to + i * k_rgb888_bytes;
        memcpy(out, &front, 16);
        memcpy(out + 12, &back, 16);
        memcpy(out + 24, reinterpret_cast<const uint8_t *>(&front) + 16, 16);
        memcpy(out + 36, reinterpret_cast<const uint8_t *>(&back) + 16, 16);
    }
    return i;
}

int64_t groups_to_rgb888(uint8_t *to, const uint8_t *uyvy, int64_t count) {
    int64_t i = 0;
    for (; i + k_group < count; i += k_group) {
        words red;
        words green;
        words blue;
        convert_group(uyvy + i * k_uyvy_bytes, red, green, blue);
        const pairs reds = reinterpret_cast<pairs>(red);
        const pairs greens = reinterpret_cast<pairs>(green);
        const pairs blues = reinterpret_cast<pairs>(blue);
        const quads left =
            reinterpret_cast<quads>((reds & 0xFFFF) | (greens & 0xFFFF) << 8 | blues << 16);
        const quads right =
            reinterpret_cast<quads>(reds >> 16 | greens >> 16 << 8 | blues >> 16 << 16);
        // A lane holds two pairs, of which each becomes 48 bits.
        const quads first = (left & 0xFFFFFF) | (right & 0xFFFFFF) << 24;
        const quads second = left >> 32 | right >> 32 << 24;
        for (int lane = 0; lane < 4; lane++) {
            const uint64_t pair_bits[2] = {first[lane], second[lane]};
            uint8_t *out = to + (i + 2 * lane) * k_rgb888_bytes;
            memcpy(out, &pair_bits[0], sizeof pair_bits[0]);
            memcpy(out + k_rgb888_bytes, &pair_bits[1], sizeof pair_bits[1]);
        }
    }
    return i;
}

namespace {

// What a row is turned into: as many groups as may be, or one pair by the formula.
struct to_rgb565 {
    static constexpr int64_t pair_bytes = k_rgb565_bytes;

    static int64_t groups(uint8_t *to, const uint8_t *uyvy, int64_t count) {
        return groups_to_rgb565(to, uyvy, count);
    }
    static void pair(uint8_t *to, const rgb &first, const rgb &second) {
        const uint16_t pixels[2] = {rgb565_from_rgb(first), rgb565_from_rgb(second)};
        memcpy(to, pixels, sizeof pixels);
    }
};

struct to_rgb888 {
    static constexpr int64_t pair_bytes = k_rgb888_bytes;

    static int64_t groups(uint8_t *to, const uint8_t *uyvy, int64_t count) {
        return has_avx2() ? groups_to_rgb888_avx2(to, uyvy, count)
                          : groups_to_rgb888(to, uyvy, count);
    }
    static void pair(uint8_t *to, const rgb &first, const rgb &second) {
        const uint8_t pixels[6] = {first.red,  first.green,  first.blue,
                                   second.red, second.green, second.blue};
        memcpy(to, pixels, sizeof pixels);
    }
};

template <class Format>
void convert_row(uint8_t *to, const uint8_t *uyvy, int64_t count) {
    int64_t i = 0;
    if (!overlap(to, count * Format::pair_bytes, uyvy, count * k_uyvy_bytes))
        i = Format::groups(to, uyvy, count);
    for (; i < count; i++) {
        const uint8_t *from = uyvy + i * k_uyvy_bytes;
        const uint8_t u = from[0];
        const uint8_t v = from[2];
        const rgb first = rgb_from_yuv(from[1], u, v);
        const rgb second = rgb_from_yuv(from[3], u, v);
        Format::pair(to + i * Format::pair_bytes, first, second);
    }
}

template <class Format>
void convert_rectangle(uint8_t *to, const uint8_t *uyvy, int64_t width, int64_t height,
                       int64_t to_pitch, int64_t uyvy_pitch) {
    for (int64_t row = 0; row < height; row++)
        convert_row<Format>(to + row * to_pitch, uyvy + row * uyvy_pitch, (width + 1) / 2);
}

} // namespace
} // namespace ux

uint16_t yuv444_rgb565(uint8_t y, uint8_t u, uint8_t v, uint8_t) noexcept {
    return ux::rgb565_from_rgb(ux::rgb_from_yuv(y, u, v));
}

void yuv444_rgb888(uint8_t y, uint8_t u, uint8_t v, uint8_t *r, uint8_t *g, uint8_t *b) noexcept {
    const ux::rgb color = ux::rgb_from_yuv(y, u, v);
    *r = color.red;
    *g = color.green;
    *b = color.blue;
}

void yuv422_yuv444(const uint8_t *src, uint8_t *dst, int width) noexcept {
    for (int64_t i = 0; i < width / 2; i++) {
        const uint8_t *from = src + i * ux::k_uyvy_bytes;
        const uint8_t u = from[0];
        const uint8_t y0 = from[1];
        const uint8_t v = from[2];
        const uint8_t y1 = from[3];
        const uint8_t pixels[ux::k_yuv444_bytes] = {y0, u, v, y1, u, v};
        memcpy(dst + i * ux::k_yuv444_bytes, pixels, sizeof pixels);
    }
}

void yuv422_rgb565(const uint8_t *src, uint16_t *dst, int width, int height, int src_pitch,
                   int dst_pitch, uint8_t) noexcept {
    if (width > 0)
        ux::convert_rectangle<ux::to_rgb565>(reinterpret_cast<uint8_t *>(dst), src, width, height,
                                             dst_pitch, src_pitch);
}

void yuv422_rgb888(const uint8_t *src, uint8_t *dst, int width, int height, int src_pitch,
                   int dst_pitch) noexcept {
    if (width > 0)
        ux::convert_rectangle<ux::to_rgb888>(dst, src, width, height, dst_pitch, src_pitch);
}
