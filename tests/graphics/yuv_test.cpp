// SPDX-License-Identifier: MIT
// YUV to RGB: every triple against the formula in whole numbers, rows and rectangles of all shapes
// against literal loops.

#include "graphics/simd.h"
#include "graphics/yuv.h"
#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>
#include <memory>

namespace {

struct colors {
    int red;
    int green;
    int blue;

    bool operator==(const colors &) const = default;
};

int floor_256th(int n) {
    return n >= 0 ? n / 256 : -((-n + 255) / 256);
}

int cut(int n) {
    return n < 0 ? 0 : n > 255 ? 255 : n;
}

colors plain_colors(int y, int u, int v) {
    const int base = 298 * (y - 16) + 128;
    return {cut(floor_256th(base + 409 * (v - 128))),
            cut(floor_256th(base - 100 * (u - 128) - 208 * (v - 128))),
            cut(floor_256th(base + 516 * (u - 128)))};
}

int plain_rgb565(const colors &from) {
    return from.red / 8 * 2048 + from.green / 4 * 32 + from.blue / 8;
}

colors converted(uint8_t y, uint8_t u, uint8_t v) {
    uint8_t r = 0;
    uint8_t g = 0;
    uint8_t b = 0;
    yuv444_rgb888(y, u, v, &r, &g, &b);
    return {r, g, b};
}

// A rectangle inside one memory: where it is read and written, in bytes.
struct job {
    int source;
    int target;
    int width;
    int height;
    int source_pitch;
    int target_pitch;
};

void plain_store_rgb565(uint8_t *to, const colors &from) {
    const int pixel = plain_rgb565(from);
    to[0] = static_cast<uint8_t>(pixel % 256);
    to[1] = static_cast<uint8_t>(pixel / 256);
}

void plain_store_rgb888(uint8_t *to, const colors &from) {
    to[0] = static_cast<uint8_t>(from.red);
    to[1] = static_cast<uint8_t>(from.green);
    to[2] = static_cast<uint8_t>(from.blue);
}

void plain_rectangle(uint8_t *memory, const job &what, int pixel_bytes) {
    const auto store = pixel_bytes == 2 ? plain_store_rgb565 : plain_store_rgb888;
    for (int row = 0; row < what.height; row++) {
        const uint8_t *from = memory + what.source + row * what.source_pitch;
        uint8_t *to = memory + what.target + row * what.target_pitch;
        for (int i = 0; i < what.width; i += 2, from += 4) {
            const uint8_t u = from[0];
            const uint8_t y0 = from[1];
            const uint8_t v = from[2];
            const uint8_t y1 = from[3];
            store(to + i * pixel_bytes, plain_colors(y0, u, v));
            store(to + (i + 1) * pixel_bytes, plain_colors(y1, u, v));
        }
    }
}

void convert_rectangle(uint8_t *memory, const job &what, int pixel_bytes) {
    const uint8_t *from = memory + what.source;
    uint8_t *to = memory + what.target;
    if (pixel_bytes == 2)
        yuv422_rgb565(from, reinterpret_cast<uint16_t *>(to), what.width, what.height,
                      what.source_pitch, what.target_pitch, 0x5A);
    else
        yuv422_rgb888(from, to, what.width, what.height, what.source_pitch, what.target_pitch);
}

// Both over equal memories of random bytes: the whole memories must agree afterwards, so that a
// write outside the rectangle shows.
void expect_as_plain(plain::dice &dice, int bytes, const job &what) {
    for (const int pixel_bytes : {2, 3}) {
        std::vector<uint8_t> memory(static_cast<size_t>(bytes));
        for (uint8_t &byte : memory)
            byte = static_cast<uint8_t>(dice.word());
        std::vector<uint8_t> expected = memory;
        plain_rectangle(expected.data(), what, pixel_bytes);
        convert_rectangle(memory.data(), what, pixel_bytes);
        ASSERT_EQ(memory, expected)
            << pixel_bytes << " bytes, from " << what.source << " to " << what.target << ", "
            << what.width << " x " << what.height << ", pitches " << what.source_pitch << ", "
            << what.target_pitch;
    }
}

std::vector<uint8_t> spread(const std::vector<uint8_t> &uyvy, int width, size_t target_bytes) {
    std::vector<uint8_t> target(target_bytes, 0xEE);
    yuv422_yuv444(uyvy.data(), target.data(), width);
    return target;
}

using byte_list = std::vector<uint8_t>;

} // namespace

TEST(YuvTest, luma_16_without_colour_is_black) {
    EXPECT_EQ(converted(16, 128, 128), (colors{0, 0, 0}));
    EXPECT_EQ(yuv444_rgb565(16, 128, 128, 0), 0x0000);
}

TEST(YuvTest, luma_235_without_colour_is_white) {
    EXPECT_EQ(converted(235, 128, 128), (colors{255, 255, 255}));
    EXPECT_EQ(yuv444_rgb565(235, 128, 128, 0), 0xFFFF);
}

// base = 298 * 239 + 128 = 71350; red (71350 + 51943) >> 8 = 481, green (71350 - 26416) >> 8 = 175,
// blue 71350 >> 8 = 278.
TEST(YuvTest, colours_above_255_are_clamped) {
    EXPECT_EQ(converted(255, 128, 255), (colors{255, 175, 255}));
    EXPECT_EQ(yuv444_rgb565(255, 128, 255, 0), 0xFD7F);
}

TEST(YuvTest, luma_0_is_clamped_to_black) {
    EXPECT_EQ(converted(0, 128, 128), (colors{0, 0, 0}));
    EXPECT_EQ(yuv444_rgb565(0, 128, 128, 0), 0x0000);
}

// base = 298 * 129 + 128 = 38570; red 124 >> 8 = 0, green 65522 >> 8 = 255, blue 386 >> 8 = 1: a
// more precise matrix would give blue 0.
TEST(YuvTest, video_green_keeps_the_rounding_of_the_formula) {
    EXPECT_EQ(converted(145, 54, 34), (colors{0, 255, 1}));
}

// Grey 7: (298 * 6 + 128) >> 8. Red and blue lose all three bits, green keeps 4.
TEST(YuvTest, rgb565_cuts_the_low_bits) {
    EXPECT_EQ(converted(22, 128, 128), (colors{7, 7, 7}));
    EXPECT_EQ(yuv444_rgb565(22, 128, 128, 0), 0x0020);
}

TEST(YuvTest, rgb565_does_not_depend_on_its_last_argument) {
    for (int unused = 0; unused < 256; unused++)
        ASSERT_EQ(yuv444_rgb565(145, 54, 34, static_cast<uint8_t>(unused)), 0x07E0);
}

TEST(YuvTest, all_triples_follow_the_formula_pixel_by_pixel) {
    for (int y = 0; y < 256; y++)
        for (int u = 0; u < 256; u++)
            for (int v = 0; v < 256; v++) {
                const colors expected = plain_colors(y, u, v);
                const auto luma = static_cast<uint8_t>(y);
                const auto blue = static_cast<uint8_t>(u);
                const auto red = static_cast<uint8_t>(v);
                ASSERT_EQ(converted(luma, blue, red), expected) << y << " " << u << " " << v;
                ASSERT_EQ(yuv444_rgb565(luma, blue, red, 0), plain_rgb565(expected));
            }
}

// One row of all lumas for each pair of colours, twice, so that each luma is a first and a second
// pixel.
TEST(YuvTest, all_triples_follow_the_formula_in_rows) {
    constexpr int width = 512;
    byte_list uyvy(width * 2);
    std::vector<uint16_t> words(width);
    byte_list bytes(width * 3);
    for (int u = 0; u < 256; u++)
        for (int v = 0; v < 256; v++) {
            for (size_t i = 0; i < width; i++) {
                uyvy[2 * i + 1] = static_cast<uint8_t>(i < 256 ? i : i ^ 1);
                uyvy[2 * i] = static_cast<uint8_t>(i % 2 == 0 ? u : v);
            }
            yuv422_rgb565(uyvy.data(), words.data(), width, 1, 0, 0, 0);
            yuv422_rgb888(uyvy.data(), bytes.data(), width, 1, 0, 0);
            for (size_t i = 0; i < width; i++) {
                const colors expected = plain_colors(uyvy[2 * i + 1], u, v);
                const colors got = {bytes[3 * i], bytes[3 * i + 1], bytes[3 * i + 2]};
                ASSERT_EQ(got, expected) << "u " << u << " v " << v << " column " << i;
                ASSERT_EQ(words[i], plain_rgb565(expected));
            }
        }
}

TEST(YuvTest, yuv444_row_repeats_the_shared_colours) {
    EXPECT_EQ(spread({1, 2, 3, 4, 5, 6, 7, 8}, 4, 13),
              (byte_list{2, 1, 3, 4, 1, 3, 6, 5, 7, 8, 5, 7, 0xEE}));
}

TEST(YuvTest, yuv444_row_of_width_1_writes_nothing) {
    EXPECT_EQ(spread({1, 2, 3, 4}, 1, 6), byte_list(6, 0xEE));
}

TEST(YuvTest, yuv444_row_drops_an_odd_pixel) {
    EXPECT_EQ(spread({1, 2, 3, 4, 5, 6, 7, 8}, 3, 9),
              (byte_list{2, 1, 3, 4, 1, 3, 0xEE, 0xEE, 0xEE}));
}

TEST(YuvTest, yuv444_row_below_width_1_writes_nothing) {
    for (const int width : {0, -1, -2, -3, INT_MIN})
        EXPECT_EQ(spread({1, 2, 3, 4}, width, 6), byte_list(6, 0xEE)) << width;
}

TEST(YuvTest, yuv444_rows_of_all_widths_follow_the_plain_loop) {
    plain::dice dice(11);
    for (int width = 0; width < 100; width++) {
        // No byte more than the whole pairs: a read or write beyond fails under the sanitizer.
        const auto count = static_cast<size_t>(width / 2);
        byte_list uyvy(count * 4);
        byte_list expected;
        for (size_t i = 0; i < count; i++) {
            for (size_t byte = 0; byte < 4; byte++)
                uyvy[4 * i + byte] = static_cast<uint8_t>(dice.word());
            for (const size_t byte : {1, 0, 2, 3, 0, 2})
                expected.push_back(uyvy[4 * i + byte]);
        }
        ASSERT_EQ(spread(uyvy, width, expected.size()), expected) << width;
    }
}

TEST(YuvTest, rgb888_bytes_are_red_green_blue) {
    const byte_list uyvy = {90, 81, 240, 81}; // red: U 90, V 240, Y 81
    byte_list bytes(6);
    yuv422_rgb888(uyvy.data(), bytes.data(), 2, 1, 4, 6);
    EXPECT_EQ(bytes, (byte_list{255, 0, 0, 255, 0, 0}));
}

TEST(YuvTest, first_luma_byte_is_the_left_pixel) {
    const byte_list uyvy = {128, 16, 128, 235};
    uint16_t words[2] = {};
    yuv422_rgb565(uyvy.data(), words, 2, 1, 4, 4, 0);
    EXPECT_EQ(words[0], 0x0000);
    EXPECT_EQ(words[1], 0xFFFF);
}

TEST(YuvTest, odd_widths_convert_the_whole_last_pair) {
    const byte_list uyvy = {128, 16, 128, 235, 128, 235, 128, 22};
    uint16_t words[5] = {1, 1, 1, 1, 1};
    yuv422_rgb565(uyvy.data(), words, 3, 1, 8, 8, 0);
    EXPECT_EQ(std::vector<uint16_t>(words, words + 5),
              (std::vector<uint16_t>{0x0000, 0xFFFF, 0xFFFF, 0x0020, 1}));
    byte_list bytes(7, 0xEE);
    yuv422_rgb888(uyvy.data(), bytes.data(), 1, 1, 8, 6);
    EXPECT_EQ(bytes, (byte_list{0, 0, 0, 255, 255, 255, 0xEE}));
}

TEST(YuvTest, widths_and_heights_below_1_do_nothing) {
    const byte_list uyvy(16, 200);
    uint16_t words[4] = {1, 2, 3, 4};
    byte_list bytes(12, 0xEE);
    for (const int size : {0, -1, -2, INT_MIN}) {
        yuv422_rgb565(uyvy.data(), words, size, 2, 8, 4, 0);
        yuv422_rgb565(uyvy.data(), words, 2, size, 8, 4, 0);
        yuv422_rgb565(uyvy.data(), words, INT_MAX, size, 8, 4, 0);
        yuv422_rgb888(uyvy.data(), bytes.data(), size, 2, 8, 6);
        yuv422_rgb888(uyvy.data(), bytes.data(), 2, size, 8, 6);
        yuv422_rgb888(uyvy.data(), bytes.data(), size, INT_MAX, INT_MAX, INT_MAX);
    }
    for (uint16_t i = 0; i < 4; i++)
        EXPECT_EQ(words[i], i + 1);
    EXPECT_EQ(bytes, byte_list(12, 0xEE));
}

TEST(YuvTest, rows_of_all_widths_at_all_addresses_follow_the_plain_loop) {
    plain::dice dice(12);
    for (int width = 1; width < 100; width++)
        for (int offset = 0; offset < 8; offset++)
            expect_as_plain(dice, 600,
                            {offset, 220 + dice.between(0, 31), width, 1, dice.between(-9, 9), 0});
}

TEST(YuvTest, rectangles_of_all_pitches_follow_the_plain_loop) {
    plain::dice dice(13);
    for (int round = 0; round < 400; round++) {
        const int width = dice.between(1, 90);
        const int height = dice.between(1, 6);
        // Bytes between the rows belong to somebody else, and pitches may be odd.
        const int source_pitch = (width + 1) * 2 + dice.between(0, 9);
        const int target_pitch = (width + 1) * 3 + dice.between(0, 9);
        expect_as_plain(dice, 4096, {7, 1500, width, height, source_pitch, target_pitch});
    }
}

TEST(YuvTest, negative_pitches_go_upwards) {
    plain::dice dice(14);
    expect_as_plain(dice, 4096, {800, 1500, 70, 5, -160, 220});
    expect_as_plain(dice, 4096, {0, 3000, 70, 5, 160, -220});
}

TEST(YuvTest, pitches_of_0_stay_in_the_row) {
    plain::dice dice(15);
    expect_as_plain(dice, 4096, {0, 1500, 70, 5, 0, 0});
    expect_as_plain(dice, 4096, {0, 1500, 70, 5, 0, 3});
    expect_as_plain(dice, 4096, {0, 1500, 70, 5, 3, 0});
}

TEST(YuvTest, overlapping_memories_follow_the_plain_loop) {
    plain::dice dice(16);
    for (int target = 0; target < 600; target += dice.between(1, 3))
        expect_as_plain(dice, 2048, {250, target, 120, 3, 240, 363});
}

TEST(YuvTest, rows_read_and_write_no_byte_beyond_the_last_pair) {
    for (int width = 1; width < 80; width++) {
        const size_t pixels = static_cast<size_t>(width + 1) / 2 * 2;
        const auto uyvy = std::make_unique<uint8_t[]>(pixels * 2);
        guarded_memory words(pixels * 2);
        guarded_memory bytes(pixels * 3);
        yuv422_rgb565(uyvy.get(), reinterpret_cast<uint16_t *>(words.data()), width, 1, 0, 0, 0);
        yuv422_rgb888(uyvy.get(), bytes.data(), width, 1, 0, 0);
        ASSERT_TRUE(words.guards_are_whole()) << width;
        ASSERT_TRUE(bytes.guards_are_whole()) << width;
    }
}

// Which group loop a row takes depends on the processor; all of them must agree with the formula.
TEST(YuvTest, every_group_loop_follows_the_formula) {
    plain::dice dice(17);
    std::vector<decltype(&ux::groups_to_rgb888)> loops = {ux::groups_to_rgb888};
    if (ux::has_avx2())
        loops.push_back(ux::groups_to_rgb888_avx2);
    for (const auto loop : loops)
        for (int count = 0; count < 60; count++) {
            byte_list memory(static_cast<size_t>(count) * 10);
            for (uint8_t &byte : memory)
                byte = static_cast<uint8_t>(dice.word());
            byte_list expected = memory;
            plain_rectangle(expected.data(), {0, count * 4, count * 2, 1, 0, 0}, 3);
            const int64_t done = loop(memory.data() + count * 4, memory.data(), count);
            ASSERT_GE(done, count - 8);
            ASSERT_LE(done, count);
            memory.resize(static_cast<size_t>(count) * 4 + static_cast<size_t>(done) * 6);
            expected.resize(memory.size()); // what follows a group is the next one's
            ASSERT_EQ(memory, expected) << count;
        }
}
