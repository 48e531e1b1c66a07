// SPDX-License-Identifier: MIT
// Nearest-neighbour scaling of rows of 32-bit pixels, and of RGB565 images as rows of pairs.

#include "graphics/scale.h"

#include "graphics/overlap.h"
#include "graphics/simd.h"

#include <cstring>

namespace ux {
namespace {

constexpr int k_fraction_bits = 32;
constexpr int64_t k_group = 8; // outputs in a group

// The step is too long by at most 1 / 2^32. Output k is off by less than k / 2^32, and the distance
// of a right position to the next pixel is at least 1 / width: up to this width nothing is missed.
constexpr int64_t k_exact_width = 0x10000;

// The source pixel of a position.
constexpr int64_t whole(uint64_t position) {
    return static_cast<int64_t>(position >> k_fraction_bits);
}

using quad [[gnu::vector_size(16)]] = uint32_t;
using pixels [[gnu::vector_size(32)]] = uint32_t;

inline __attribute__((always_inline)) void load(pixels &value, const word32 *from) {
    memcpy(&value, from, sizeof value);
}

// The two below make whole groups and return how many outputs that were. Here a group whose vectors
// would reach beyond the source row is left out as well.
template <int window>
UX_AVX2 int64_t shuffle_groups(word32 *to, const word32 *from, const nearest_columns &columns) {
    pixels lanes;
    for (int i = 0; i < k_group; i++)
        lanes[i] = static_cast<uint32_t>(whole(i * columns.step));
    const int64_t source_step = whole(k_group * columns.step);
    const int64_t last = columns.source_width - window * k_group;
    const int64_t width = columns.width;
    int64_t k = 0;
    for (int64_t at = 0; k + k_group <= width && at <= last; at += source_step) {
        pixels first;
        pixels picked;
        load(first, from + at);
        if constexpr (window == 1) {
            pick_lanes(picked, first, lanes);
        } else {
            pixels second;
            load(second, from + at + k_group);
            pick_lanes(picked, first, second, lanes);
        }
        memcpy(to + k, &picked, sizeof picked);
        k += k_group;
    }
    return k;
}

int64_t load_groups(word32 *to, const word32 *from, const nearest_columns &columns) {
    int64_t at[k_group];
    for (int i = 0; i < k_group; i++)
        at[i] = whole(i * columns.step);
    const int64_t source_step = whole(k_group * columns.step);
    const int64_t width = columns.width;
    int64_t k = 0;
    for (; k + k_group <= width; k += k_group, from += source_step) {
        const quad left = {from[0], from[at[1]], from[at[2]], from[at[3]]};
        const quad right = {from[at[4]], from[at[5]], from[at[6]], from[at[7]]};
        memcpy(to + k, &left, sizeof left);
        memcpy(to + k + k_group / 2, &right, sizeof right);
    }
    return k;
}

// Outputs from `k` on. Four at a time, so that the next position does not wait for the last one.
void scale_fixed_point(word32 *to, const word32 *from, const nearest_columns &columns, int64_t k) {
    const uint64_t step = columns.step;
    const int64_t width = columns.width;
    uint64_t at = static_cast<uint64_t>(k) * step;
    for (; k + 4 <= width; k += 4, at += 4 * step) {
        to[k] = from[whole(at)];
        to[k + 1] = from[whole(at + step)];
        to[k + 2] = from[whole(at + 2 * step)];
        to[k + 3] = from[whole(at + 3 * step)];
    }
    for (; k < width; k++, at += step)
        to[k] = from[whole(at)];
}

// The remainders are added up.
void scale_plain(word32 *to, const word32 *from, const nearest_columns &columns) {
    const int64_t step = columns.source_width / columns.width;
    const int64_t remainder = columns.source_width % columns.width;
    int64_t sum = 0;
    for (int64_t k = 0; k < columns.width; k++) {
        to[k] = *from;
        from += step;
        sum += remainder;
        if (sum >= columns.width) {
            sum -= columns.width;
            from++;
        }
    }
}

scaling fastest_way(int64_t source_width, int64_t width, uint64_t step) {
    if (width > k_exact_width)
        return scaling::plain;
    if (whole(k_group * step) * width != k_group * source_width)
        return scaling::fixed_point;
    const int64_t last_lane = whole((k_group - 1) * step);
    if (last_lane >= 2 * k_group || !has_avx2())
        return scaling::loaded_group;
    return last_lane < k_group ? scaling::one_vector : scaling::two_vectors;
}

// Returns how many outputs were made, from the left.
int64_t scale_whole_groups(word32 *to, const word32 *from, const nearest_columns &columns) {
    switch (columns.way) {
    case scaling::loaded_group:
        return load_groups(to, from, columns);
    case scaling::one_vector:
        return shuffle_groups<1>(to, from, columns);
    case scaling::two_vectors:
        return shuffle_groups<2>(to, from, columns);
    default:
        return 0;
    }
}

} // namespace

nearest_columns::nearest_columns(int32_t from_width, int32_t to_width)
    : source_width(from_width), width(to_width),
      step((static_cast<uint64_t>(from_width) << k_fraction_bits) /
               static_cast<uint64_t>(to_width) +
           1),
      way(fastest_way(from_width, to_width, step)) {}

void scale_row(word32 *to, const word32 *from, const nearest_columns &columns) {
    constexpr int64_t bytes = sizeof(word32);
    if (columns.way == scaling::plain ||
        overlap(to, columns.width * bytes, from, columns.source_width * bytes)) {
        scale_plain(to, from, columns);
        return;
    }
    const int64_t done = scale_whole_groups(to, from, columns);
    scale_fixed_point(to, from, columns, done);
}

} // namespace ux

void ux_scale_line(const uint32_t *src, uint32_t *dst, int src_width, int dst_width) noexcept {
    if (src_width > 0 && dst_width > 0)
        ux::scale_row(dst, src, ux::nearest_columns(src_width, dst_width));
}

void ux_scale_image(const uint16_t *src, int src_width, int src_height, int src_pitch,
                    uint16_t *dst, int dst_width, int dst_height, int dst_pitch) noexcept {
    const int src_pairs = src_width / 2;
    const int dst_pairs = dst_width / 2;
    if (src_pairs <= 0 || src_height <= 0 || dst_pairs <= 0 || dst_height <= 0)
        return;
    const ux::nearest_columns columns(src_pairs, dst_pairs);
    int64_t row_before = -1;
    for (int64_t k = 0; k < dst_height; k++) {
        const int64_t row = k * src_height / dst_height;
        uint8_t *to = reinterpret_cast<uint8_t *>(dst) + k * dst_pitch;
        const uint8_t *from = reinterpret_cast<const uint8_t *>(src) + row * src_pitch;
        // A repeated row is copied whole; a scaled one leaves an odd last column alone.
        if (row == row_before)
            memmove(to, to - dst_pitch, static_cast<size_t>(dst_width) * sizeof(uint16_t));
        else
            ux::scale_row(reinterpret_cast<ux::word32 *>(to),
                          reinterpret_cast<const ux::word32 *>(from), columns);
        row_before = row;
    }
}
