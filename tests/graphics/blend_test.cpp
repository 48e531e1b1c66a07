// SPDX-License-Identifier: MIT
// The arithmetic of blending: every triple of screen, source and alpha, in every channel, and rows
// of every length at every alignment against the literal formula.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <algorithm>

namespace {

class BlendTest : public ScreenTest {
  protected:
    // Blends one pixel over another with the library.
    uint32_t blended(uint32_t screen, uint32_t source) {
        set_buf_pixel(0, 0, screen);
        EXPECT_EQ(ux_draw_image_buff(&source, 0, 0, 1, 1, 0), 0);
        return buf_pixel(0, 0);
    }
};

} // namespace

TEST_F(BlendTest, opaque_white_over_black_is_254_with_alpha_255) {
    EXPECT_EQ(blended(0x00000000, 0xFFFFFFFF), 0xFFFEFEFEu);
    EXPECT_EQ(blended(0xFF000000, 0xFFFFFFFF), 0xFFFEFEFEu);
}

TEST_F(BlendTest, alpha_0_leaves_the_pixel_and_its_alpha) {
    EXPECT_EQ(blended(0x12345678, 0x00FFFFFF), 0x12345678u);
    EXPECT_EQ(blended(0x00345678, 0x00FFFFFF), 0x00345678u);
    EXPECT_EQ(blended(0xFFFFFFFF, 0x00000000), 0xFFFFFFFFu);
}

// (100 * 128 + 200 * 128) >> 8 = 150; (0 * 128 + 255 * 128) >> 8 = 127.
TEST_F(BlendTest, half_alpha_gives_the_mean) {
    EXPECT_EQ(blended(0xFF646400, 0x80C8C8FF), 0xFF96967Fu);
}

// 255 * 255 >> 8 = 254, 255 >> 8 = 0, (255 * 255 + 255) >> 8 = 255.
TEST_F(BlendTest, alpha_1_darkens_by_rounding_down) {
    EXPECT_EQ(blended(0xFFFFFFFF, 0x01000000), 0xFFFEFEFEu);
    EXPECT_EQ(blended(0x00000000, 0x01FFFFFF), 0x01000000u);
    EXPECT_EQ(blended(0xFFFFFFFF, 0x01FFFFFF), 0xFFFFFFFFu);
}

TEST_F(BlendTest, larger_alpha_stays) {
    EXPECT_EQ(blended(0x10000000, 0x80000000) >> 24, 0x80u);
    EXPECT_EQ(blended(0x80000000, 0x10000000) >> 24, 0x80u);
    EXPECT_EQ(blended(0x7F000000, 0x80000000) >> 24, 0x80u);
    EXPECT_EQ(blended(0x80000000, 0x7F000000) >> 24, 0x80u);
    EXPECT_EQ(blended(0xFF000000, 0xFE000000) >> 24, 0xFFu);
}

// One draw per alpha: columns are the source, rows the screen. Blue, green and red take turns, so
// that each channel sees all triples.
TEST_F(BlendTest, all_triples_of_screen_source_and_alpha_follow_the_formula) {
    make_screen(256, 256);
    std::vector<uint32_t> block(256 * 256);
    auto *screen = reinterpret_cast<uint32_t *>(main_screen.buf);
    for (uint32_t a = 0; a < 256; a++) {
        for (uint32_t s = 0; s < 256; s++)
            for (uint32_t v = 0; v < 256; v++) {
                block[s * 256 + v] = a << 24 | v << 16 | (255 - v) << 8 | v;
                screen[s * 256 + v] = v << 24 | s << 16 | s << 8 | (255 - s);
            }
        ASSERT_EQ(ux_draw_image_buff(block.data(), 0, 0, 256, 256, 0), 0);
        for (uint32_t s = 0; s < 256; s++)
            for (uint32_t v = 0; v < 256; v++) {
                const uint32_t red = a == 0 ? s : (s * (256 - a) + v * a) >> 8;
                const uint32_t green = a == 0 ? s : (s * (256 - a) + (255 - v) * a) >> 8;
                const uint32_t blue = a == 0 ? 255 - s : ((255 - s) * (256 - a) + v * a) >> 8;
                const uint32_t alpha = std::max(v, a);
                ASSERT_EQ(screen[s * 256 + v], alpha << 24 | red << 16 | green << 8 | blue)
                    << "screen " << s << " source " << v << " alpha " << a;
            }
    }
}

TEST_F(BlendTest, all_pairs_of_alphas_keep_the_larger) {
    make_screen(256, 256);
    std::vector<uint32_t> block(256 * 256);
    auto *screen = reinterpret_cast<uint32_t *>(main_screen.buf);
    for (uint32_t i = 0; i < 256 * 256; i++) {
        block[i] = (i & 0xFF) << 24 | 0xABCDEF;
        screen[i] = (i >> 8) << 24 | 0x123456;
    }
    ux_draw_image_buff(block.data(), 0, 0, 256, 256, 0);
    for (uint32_t i = 0; i < 256 * 256; i++)
        ASSERT_EQ(screen[i] >> 24, std::max(i & 0xFF, i >> 8)) << i;
}

TEST_F(BlendTest, rows_of_all_lengths_at_all_columns_follow_the_formula) {
    plain::dice dice(1);
    make_screen(80, 2);
    std::vector<uint32_t> block(80);
    for (int x = 0; x < 17; x++)
        for (int width = 1; width <= 62; width++) {
            std::vector<uint32_t> expected(80 * 2);
            for (uint32_t &pixel : expected)
                pixel = dice.word();
            for (uint32_t &pixel : block)
                pixel = dice.between(0, 3) == 0 ? dice.word() & 0xFFFFFF : dice.word();
            memcpy(main_screen.buf, expected.data(), 80 * 2 * 4);
            ux_draw_image_buff(block.data(), x, 0, width, 1, 0);
            for (int i = 0; i < width; i++) {
                uint32_t &pixel = expected[static_cast<size_t>(x + i)];
                pixel = plain::blend(pixel, block[static_cast<size_t>(i)]);
            }
            ASSERT_EQ(plain::numbers(main_screen.buf), expected) << x << ", " << width;
        }
}

TEST_F(BlendTest, memories_at_odd_addresses_follow_the_formula) {
    plain::dice dice(2);
    for (int offset = 0; offset < 9; offset++) {
        make_screen(40, 3);
        main_screen.buf += offset;
        main_screen.height--; // the row left out holds the offset
        std::vector<uint32_t> expected(40 * 2);
        std::vector<uint32_t> source(40 * 2);
        for (size_t i = 0; i < expected.size(); i++) {
            expected[i] = dice.word();
            source[i] = dice.word();
        }
        std::vector<uint8_t> block(source.size() * 4 + 8);
        uint8_t *pixels = block.data() + (8 - offset);
        memcpy(pixels, source.data(), source.size() * 4);
        memcpy(main_screen.buf, expected.data(), expected.size() * 4);
        ux_draw_image_buff(pixels, 0, 0, 40, 2, 0);
        for (size_t i = 0; i < expected.size(); i++)
            expected[i] = plain::blend(expected[i], source[i]);
        ASSERT_EQ(plain::numbers(main_screen.buf), expected) << offset;
    }
}

// Transparent stretches are left out in blocks: none may hide an opaque pixel.
TEST_F(BlendTest, one_visible_pixel_anywhere_in_a_transparent_row_is_blended) {
    constexpr int k_columns = 100;
    make_screen(k_columns, 1);
    for (int start = 0; start < 3; start++)
        for (int at = start; at < k_columns; at++) {
            std::vector<uint32_t> expected(k_columns, 0x40302010);
            std::vector<uint32_t> block(k_columns, 0x00FFFFFF);
            memcpy(main_screen.buf, expected.data(), expected.size() * 4);
            block[static_cast<size_t>(at - start)] = 0x80F0F0F0;
            expected[static_cast<size_t>(at)] = 0x80908880; // the means, and the larger alpha
            ux_draw_image_buff(block.data(), start, 0, k_columns - start, 1, 0);
            ASSERT_EQ(plain::numbers(main_screen.buf), expected) << start << ", " << at;
        }
}

TEST_F(BlendTest, transparent_runs_of_all_lengths_follow_the_formula) {
    constexpr int k_columns = 160;
    plain::dice dice(3);
    make_screen(k_columns, 1);
    for (int round = 0; round < 2000; round++) {
        std::vector<uint32_t> expected(k_columns);
        std::vector<uint32_t> block(k_columns);
        for (size_t i = 0; i < block.size();) {
            const bool transparent = dice.between(0, 1) == 0;
            const size_t end = i + static_cast<size_t>(dice.between(1, 70));
            for (; i < end && i < block.size(); i++) {
                expected[i] = dice.word();
                block[i] = transparent ? dice.word() & 0xFFFFFF : dice.word();
            }
        }
        memcpy(main_screen.buf, expected.data(), expected.size() * 4);
        ux_draw_image_buff(block.data(), 0, 0, k_columns, 1, 0);
        for (size_t i = 0; i < expected.size(); i++)
            expected[i] = plain::blend(expected[i], block[i]);
        ASSERT_EQ(plain::numbers(main_screen.buf), expected) << round;
    }
}
