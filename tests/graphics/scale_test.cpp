// SPDX-License-Identifier: MIT
// Nearest-neighbour scaling: small rows by hand, all pairs of widths and images of all shapes
// against literal loops that add up remainders.

#include "graphics/scale.h"

#include "graphics/simd.h"
#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>

namespace {

using row = std::vector<uint32_t>;
using image = std::vector<uint16_t>;

constexpr uint32_t k_untouched = 0xEEEEEEEE;

row counted(int width) {
    row pixels(static_cast<size_t>(width));
    for (uint32_t i = 0; i < pixels.size(); i++)
        pixels[i] = i;
    return pixels;
}

// Pixels as bytes, so that they may stand anywhere.
void plain_line(uint8_t *to, const uint8_t *from, int from_width, int to_width) {
    const int step = from_width / to_width;
    const int remainder = from_width % to_width;
    int64_t sum = remainder;
    for (int k = 0; k < to_width; k++) {
        uint32_t pixel;
        memcpy(&pixel, from, sizeof pixel);
        memcpy(to + 4 * int64_t{k}, &pixel, sizeof pixel);
        from += 4 * int64_t{step};
        if (sum >= to_width) {
            sum -= to_width;
            from += 4;
        }
        sum += remainder;
    }
}

row plain_scaled(const row &from, int width) {
    row to(static_cast<size_t>(width));
    plain_line(reinterpret_cast<uint8_t *>(to.data()),
               reinterpret_cast<const uint8_t *>(from.data()), static_cast<int>(from.size()),
               width);
    return to;
}

// Both rows exactly as long as told: a read beyond fails under the sanitizer.
row scaled(const row &from, int width) {
    row to(static_cast<size_t>(width), k_untouched);
    ux_scale_line(from.data(), to.data(), static_cast<int>(from.size()), width);
    return to;
}

// Where an image is read and written in a memory, in bytes, and its sizes in pixels.
struct job {
    int source;
    int source_width;
    int source_height;
    int source_pitch;
    int target;
    int width;
    int height;
    int pitch;
};

void plain_image(uint8_t *memory, const job &what) {
    const int step = what.source_height / what.height;
    const int remainder = what.source_height % what.height;
    int sum = 0;
    int source_row = 0;
    int row_before = -1;
    for (int k = 0; k < what.height; k++) {
        uint8_t *to = memory + what.target + k * what.pitch;
        if (source_row == row_before)
            memmove(to, to - what.pitch, static_cast<size_t>(what.width) * 2);
        else
            plain_line(to, memory + what.source + source_row * what.source_pitch,
                       what.source_width / 2, what.width / 2);
        row_before = source_row;
        sum += remainder;
        source_row += step;
        if (sum >= what.height) {
            source_row++;
            sum -= what.height;
        }
    }
}

void scale_image(uint8_t *memory, const job &what) {
    ux_scale_image(reinterpret_cast<const uint16_t *>(memory + what.source), what.source_width,
                   what.source_height, what.source_pitch,
                   reinterpret_cast<uint16_t *>(memory + what.target), what.width, what.height,
                   what.pitch);
}

void expect_as_plain(plain::dice &dice, int bytes, const job &what) {
    std::vector<uint8_t> memory(static_cast<size_t>(bytes));
    for (uint8_t &byte : memory)
        byte = static_cast<uint8_t>(dice.word());
    std::vector<uint8_t> expected = memory;
    plain_image(expected.data(), what);
    scale_image(memory.data(), what);
    ASSERT_EQ(memory, expected) << what.source_width << " x " << what.source_height << " at "
                                << what.source << " to " << what.width << " x " << what.height
                                << " at " << what.target << ", pitches " << what.source_pitch
                                << ", " << what.pitch;
}

// An image of packed rows scaled into packed rows that held 0xEEEE.
image scaled_image(const image &from, int from_width, int from_height, int width, int height) {
    image to(static_cast<size_t>(width * height), 0xEEEE);
    ux_scale_image(from.data(), from_width, from_height, from_width * 2, to.data(), width, height,
                   width * 2);
    return to;
}

} // namespace

TEST(ScaleTest, doubling_repeats_each_pixel_twice) {
    EXPECT_EQ(scaled(counted(4), 8), (row{0, 0, 1, 1, 2, 2, 3, 3}));
}

TEST(ScaleTest, eight_to_three_takes_0_2_and_5) {
    EXPECT_EQ(scaled(counted(8), 3), (row{0, 2, 5}));
}

TEST(ScaleTest, three_to_two_takes_the_first_two_of_three) {
    EXPECT_EQ(scaled(counted(24), 16),
              (row{0, 1, 3, 4, 6, 7, 9, 10, 12, 13, 15, 16, 18, 19, 21, 22}));
}

TEST(ScaleTest, equal_widths_copy) {
    EXPECT_EQ(scaled(counted(19), 19), counted(19));
}

TEST(ScaleTest, one_source_pixel_fills_the_row) {
    EXPECT_EQ(scaled({7}, 21), row(21, 7));
}

TEST(ScaleTest, one_output_pixel_is_the_first) {
    EXPECT_EQ(scaled(counted(21), 1), row{0});
}

TEST(ScaleTest, widths_below_1_write_nothing) {
    const row from = counted(4);
    row to(4, k_untouched);
    for (const int width : {0, -1, -2, INT_MIN}) {
        ux_scale_line(from.data(), to.data(), 4, width);
        ux_scale_line(from.data(), to.data(), width, 4);
        ux_scale_line(from.data(), to.data(), width, width);
        ux_scale_line(from.data(), to.data(), INT_MAX, width);
    }
    EXPECT_EQ(to, row(4, k_untouched));
}

TEST(ScaleTest, all_pairs_of_small_widths_follow_the_plain_loop) {
    for (int from_width = 1; from_width <= 100; from_width++) {
        const row from = counted(from_width);
        for (int width = 1; width <= 100; width++)
            ASSERT_EQ(scaled(from, width), plain_scaled(from, width))
                << from_width << " to " << width;
    }
}

TEST(ScaleTest, screen_widths_follow_the_plain_loop) {
    const int widths[] = {160, 176, 320, 352, 480, 640, 720, 800, 960, 1024, 1280, 1920, 3840};
    for (const int from_width : widths) {
        const row from = counted(from_width);
        for (const int width : widths)
            ASSERT_EQ(scaled(from, width), plain_scaled(from, width))
                << from_width << " to " << width;
    }
}

TEST(ScaleTest, random_widths_follow_the_plain_loop) {
    plain::dice dice(21);
    for (int round = 0; round < 500; round++) {
        const row from = counted(dice.between(1, 5000));
        const int width = dice.between(1, 5000);
        ASSERT_EQ(scaled(from, width), plain_scaled(from, width)) << from.size() << " to " << width;
    }
}

// Around the width from which on the step's fraction is too short.
TEST(ScaleTest, widths_beyond_65536_follow_the_plain_loop) {
    for (const int from_width : {1, 3, 8, 65521, 65535, 65536, 65537, 131071, 200003}) {
        const row from = counted(from_width);
        for (const int width : {65521, 65535, 65536, 65537, 70001, 131072, 300007})
            ASSERT_EQ(scaled(from, width), plain_scaled(from, width))
                << from_width << " to " << width;
    }
}

// Sources too large for a test's memory: the positions alone.
TEST(ScaleTest, steps_of_the_widest_sources_hit_every_position) {
    for (const int from_width : {INT_MAX, INT_MAX - 1, 0x40000001, 1999999973})
        for (const int width : {65536, 65535, 65521, 40009, 3, 1}) {
            const ux::nearest_columns columns(from_width, width);
            for (int64_t k = 0; k < width; k++)
                ASSERT_EQ(static_cast<int64_t>(static_cast<uint64_t>(k) * columns.step >> 32),
                          k * from_width / width)
                    << from_width << " to " << width << ", " << k;
        }
}

// Which way a row goes depends on the processor; each slower one must agree. Ratios that have no
// groups take none of the faster ones.
TEST(ScaleTest, every_way_to_scale_follows_the_plain_loop) {
    for (int from_width = 1; from_width <= 100; from_width++)
        for (int width = 1; width <= 100; width++) {
            const row from = counted(from_width);
            const row expected = plain_scaled(from, width);
            ux::nearest_columns columns(from_width, width);
            const bool has_groups = columns.way >= ux::scaling::loaded_group;
            for (const auto way :
                 {ux::scaling::plain, ux::scaling::fixed_point, ux::scaling::loaded_group}) {
                if (way == ux::scaling::loaded_group && !has_groups)
                    continue;
                columns.way = way;
                row to(static_cast<size_t>(width), k_untouched);
                ux::scale_row(to.data(), from.data(), columns);
                ASSERT_EQ(to, expected)
                    << from_width << " to " << width << ", way " << static_cast<int>(way);
            }
        }
}

TEST(ScaleTest, common_ratios_take_groups) {
    using ux::scaling;
    const auto way = [](int from, int to) { return ux::nearest_columns(from, to).way; };
    const bool shuffles = ux::has_avx2();
    EXPECT_EQ(way(640, 1280), shuffles ? scaling::one_vector : scaling::loaded_group);
    EXPECT_EQ(way(1280, 1280), shuffles ? scaling::one_vector : scaling::loaded_group);
    EXPECT_EQ(way(1920, 1280), shuffles ? scaling::two_vectors : scaling::loaded_group);
    EXPECT_EQ(way(2560, 1280), shuffles ? scaling::two_vectors : scaling::loaded_group);
    EXPECT_EQ(way(3840, 1280), scaling::loaded_group);
    EXPECT_EQ(way(720, 1279), scaling::fixed_point);
    EXPECT_EQ(way(65537, 65537), scaling::plain);
}

TEST(ScaleTest, rows_at_odd_addresses_follow_the_plain_loop) {
    const row from = counted(96);
    for (const int width : {64, 96, 192, 50}) {
        const row expected = plain_scaled(from, width);
        for (size_t offset = 0; offset < 9; offset++) {
            std::vector<uint8_t> source(from.size() * 4 + offset);
            memcpy(source.data() + offset, from.data(), from.size() * 4);
            guarded_memory target(expected.size() * 4 + 8);
            ux_scale_line(reinterpret_cast<const uint32_t *>(source.data() + offset),
                          reinterpret_cast<uint32_t *>(target.data() + (8 - offset)), 96, width);
            ASSERT_EQ(memcmp(target.data() + (8 - offset), expected.data(), expected.size() * 4),
                      0);
            ASSERT_TRUE(target.guards_are_whole());
        }
    }
}

TEST(ScaleTest, rows_write_no_pixel_beyond_the_last) {
    const row from = counted(300);
    for (int from_width = 1; from_width <= 300; from_width += 7)
        for (int width = 1; width <= 80; width++) {
            guarded_memory to(static_cast<size_t>(width) * 4);
            ux_scale_line(from.data(), reinterpret_cast<uint32_t *>(to.data()), from_width, width);
            ASSERT_TRUE(to.guards_are_whole()) << from_width << " to " << width;
        }
}

TEST(ScaleTest, overlapping_rows_are_read_and_written_in_order) {
    constexpr int at = 120;
    for (const int width : {20, 32, 40, 64, 80, 120})
        for (int target = 0; target < 400; target++) {
            std::vector<uint8_t> memory(1024);
            for (size_t i = 0; i < memory.size(); i++)
                memory[i] = static_cast<uint8_t>(i * 7 + i / 256);
            std::vector<uint8_t> expected = memory;
            plain_line(expected.data() + target, expected.data() + at, 40, width);
            ux_scale_line(reinterpret_cast<const uint32_t *>(memory.data() + at),
                          reinterpret_cast<uint32_t *>(memory.data() + target), 40, width);
            ASSERT_EQ(memory, expected) << width << " at " << target;
        }
}

TEST(ScaleTest, lanes_are_picked_by_number) {
    using quad [[gnu::vector_size(16)]] = uint32_t;
    const quad a = {10, 11, 12, 13};
    const quad b = {20, 21, 22, 23};
    quad picked;
    ux::pick_lanes(picked, a, quad{3, 0, 2, 2});
    for (int i = 0; i < 4; i++)
        EXPECT_EQ(picked[i], (row{13, 10, 12, 12})[static_cast<size_t>(i)]);
    ux::pick_lanes(picked, a, b, quad{7, 0, 4, 3});
    for (int i = 0; i < 4; i++)
        EXPECT_EQ(picked[i], (row{23, 10, 20, 13})[static_cast<size_t>(i)]);
}

TEST(ScaleImageTest, pairs_stay_together) {
    EXPECT_EQ(scaled_image({1, 2, 3, 4}, 4, 1, 8, 1), (image{1, 2, 1, 2, 3, 4, 3, 4}));
    EXPECT_EQ(scaled_image({1, 2, 3, 4, 5, 6, 7, 8}, 8, 1, 4, 1), (image{1, 2, 5, 6}));
}

TEST(ScaleImageTest, rows_are_taken_rounded_down) {
    const image from = {0, 0, 1, 1, 2, 2, 3, 3, 4, 4};
    EXPECT_EQ(scaled_image(from, 2, 5, 2, 3), (image{0, 0, 1, 1, 3, 3}));
    EXPECT_EQ(scaled_image(from, 2, 5, 2, 7), (image{0, 0, 0, 0, 1, 1, 2, 2, 2, 2, 3, 3, 4, 4}));
}

// Rows 0 and 2 are resampled and leave the last column alone; rows 1 and 3 are copies of them.
TEST(ScaleImageTest, odd_last_column_is_written_in_repeated_rows_only) {
    const image from = {1, 2, 3, 4};
    image to = {90, 91, 92, 93, 94, 95, 96, 97, 98, 99, 80, 81};
    ux_scale_image(from.data(), 2, 2, 4, to.data(), 3, 4, 6);
    EXPECT_EQ(to, (image{1, 2, 92, 1, 2, 92, 3, 4, 98, 3, 4, 98}));
}

TEST(ScaleImageTest, odd_last_source_column_is_never_used) {
    EXPECT_EQ(scaled_image({1, 2, 3, 4, 5, 6}, 3, 2, 4, 2), (image{1, 2, 1, 2, 4, 5, 4, 5}));
}

TEST(ScaleImageTest, sizes_without_a_pair_or_row_write_nothing) {
    const image from(16, 7);
    image to(16, 0xEEEE);
    for (const int size : {1, 0, -1, -2, -3, INT_MIN}) {
        ux_scale_image(from.data(), size, 2, 8, to.data(), 4, 2, 8);
        ux_scale_image(from.data(), 4, 2, 8, to.data(), size, 2, 8);
        ux_scale_image(from.data(), size, size, size, to.data(), size, size, size);
        if (size == 1)
            continue;
        ux_scale_image(from.data(), 4, size, 8, to.data(), 4, 2, 8);
        ux_scale_image(from.data(), 4, 2, 8, to.data(), 4, size, 8);
        ux_scale_image(from.data(), INT_MAX, INT_MAX, INT_MAX, to.data(), INT_MAX, size, INT_MAX);
    }
    EXPECT_EQ(to, image(16, 0xEEEE));
}

TEST(ScaleImageTest, images_of_all_shapes_and_pitches_follow_the_plain_loop) {
    plain::dice dice(22);
    for (int round = 0; round < 2000; round++) {
        const int source_width = dice.between(2, 60);
        const int width = dice.between(2, 60);
        expect_as_plain(dice, 8192,
                        {dice.between(0, 7), source_width, dice.between(1, 20),
                         source_width * 2 + dice.between(0, 9), 3000 + dice.between(0, 7), width,
                         dice.between(1, 20), width * 2 + dice.between(0, 9)});
    }
}

TEST(ScaleImageTest, negative_pitches_go_upwards) {
    plain::dice dice(23);
    expect_as_plain(dice, 8192, {2000, 41, 11, -90, 3000, 50, 20, 110});
    expect_as_plain(dice, 8192, {0, 41, 11, 90, 6000, 51, 20, -110});
}

TEST(ScaleImageTest, pitches_shorter_than_a_row_follow_the_plain_loop) {
    plain::dice dice(24);
    for (int pitch = -20; pitch <= 20; pitch++) {
        expect_as_plain(dice, 8192, {1000, 40, 5, pitch, 4000, 61, 20, 130});
        expect_as_plain(dice, 8192, {1000, 40, 5, 90, 4000, 61, 20, pitch});
    }
}

TEST(ScaleImageTest, overlapping_images_follow_the_plain_loop) {
    plain::dice dice(25);
    for (int target = 0; target < 900; target += dice.between(1, 5))
        expect_as_plain(dice, 4096, {400, 40, 5, 80, target, 61, 10, 122});
}

TEST(ScaleImageTest, sources_are_read_within_their_rows_only) {
    for (int source_width = 2; source_width < 50; source_width++)
        for (int width = 2; width < 50; width++) {
            // Even so many rows: the last one ends where the memory does.
            const image from(static_cast<size_t>(source_width * 3), 5);
            const image to = scaled_image(from, source_width, 3, width, 3);
            ASSERT_EQ(to[0], 5);
            ASSERT_EQ(to[static_cast<size_t>(width / 2 * 2 - 1)], 5);
        }
}
