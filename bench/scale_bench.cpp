// SPDX-License-Identifier: MIT
// Scaling pictures to a full screen, nearest neighbour: each used row once, repeated rows copied.

#include "bench/bench_screen.h"
#include "bench/peers.h"

#include <libyuv.h>

#include <cstring>
#include <string>

namespace {

struct size {
    int width;
    int height;
};

constexpr size k_largest = {2560, 1440};

// One memory for sources of all sizes, rows packed.
uint32_t *source() {
    static uint32_t *const pixels = [] {
        const size_t count = size_t{k_largest.width} * k_largest.height;
        auto *made = new uint32_t[count];
        for (size_t i = 0; i < count; i++)
            made[i] = static_cast<uint32_t>(i * 2654435761u);
        return made;
    }();
    return pixels;
}

void plain_line(const uint32_t *from, uint32_t *to, int from_width, int to_width) {
    const int step = from_width / to_width;
    const int remainder = from_width % to_width;
    int sum = remainder;
    for (int k = 0; k < to_width; k++) {
        to[k] = *from;
        from += step;
        if (sum >= to_width) {
            sum -= to_width;
            from++;
        }
        sum += remainder;
    }
}

// Scales to the screen with line(source row, screen row).
template <class Line>
inline void scale(const size &from, Line line) {
    int64_t row_before = -1;
    for (int64_t k = 0; k < k_height; k++) {
        const int64_t row = k * from.height / k_height;
        uint32_t *to = screen_pixels() + k * k_width;
        if (row == row_before)
            memcpy(to, to - k_width, k_width * 4);
        else
            line(source() + row * from.width, to);
        row_before = row;
    }
}

void scale_ux(const size &from) {
    scale(from, [&from](const uint32_t *row, uint32_t *to) {
        ux_scale_line(row, to, from.width, k_width);
    });
}

[[gnu::noinline]] void scale_plain(const size &from) {
    scale(from,
          [&from](const uint32_t *row, uint32_t *to) { plain_line(row, to, from.width, k_width); });
}

pixman_image_t *pixman_source(const size &from) {
    pixman_image_t *image = pixman_image_create_bits(PIXMAN_a8r8g8b8, from.width, from.height,
                                                     source(), from.width * 4);
    pixman_transform_t transform;
    pixman_transform_init_scale(&transform, pixman_double_to_fixed(from.width * 1.0 / k_width),
                                pixman_double_to_fixed(from.height * 1.0 / k_height));
    pixman_image_set_transform(image, &transform);
    pixman_image_set_filter(image, PIXMAN_FILTER_NEAREST, nullptr, 0);
    return image;
}

void scale_pixman(pixman_image_t *from) {
    static pixman_image_t *const to = pixman_screen(screen_pixels());
    pixman_image_composite32(PIXMAN_OP_SRC, from, nullptr, to, 0, 0, 0, 0, 0, 0, k_width, k_height);
}

void scale_libyuv(const size &from) {
    libyuv::ARGBScale(reinterpret_cast<const uint8_t *>(source()), from.width * 4, from.width,
                      from.height, main_screen.buf, k_width * 4, k_width, k_height,
                      libyuv::kFilterNone);
}

void copy(size_t bytes) {
    memcpy(main_screen.buf, other_pixels(), bytes);
}

void register_size(const std::string &task, const size &from) {
    contender((task + "/ux").c_str(), [from] { scale_ux(from); });
    contender((task + "/plain").c_str(), [from] { scale_plain(from); });
    contender((task + "/pixman").c_str(), [from] {
        static pixman_image_t *image = nullptr;
        static size made = {};
        if (made.width != from.width) {
            image = pixman_source(from);
            made = from;
        }
        scale_pixman(image);
    });
    contender((task + "/libyuv").c_str(), [from] { scale_libyuv(from); });
    contender((task + "/memcpy").c_str(), [] { copy(k_screen_bytes); });
}

} // namespace

void register_scale() {
    register_size("scale 1920x1080", {1920, 1080});
    register_size("scale 640x360", {640, 360});
    register_size("scale 2560x1440", k_largest);
    register_size("scale 720x480", {720, 480});
    register_size("scale 1900x1000", {1900, 1000});
    contender("scale rgb565 1920x1080/ux", [] {
        ux_scale_image(reinterpret_cast<const uint16_t *>(source()), 1920, 1080, 1920 * 2,
                       reinterpret_cast<uint16_t *>(main_screen.buf), k_width, k_height,
                       k_width * 2);
    });
    contender("scale rgb565 1920x1080/memcpy", [] { copy(k_screen_bytes / 2); });
}
