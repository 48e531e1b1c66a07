// SPDX-License-Identifier: MIT
// Drawing of pixel blocks: what is refused, where blocks are cut, how rows are read, the copy on a
// 16-bit screen.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>

namespace {

class ImageTest : public ScreenTest {
  protected:
    // A block whose pixels tell their place; blended over black with this alpha they come out as
    // (place * 255) >> 8 in the low channel.
    static std::vector<uint32_t> numbered(int width, int height) {
        std::vector<uint32_t> block(static_cast<size_t>(width * height));
        for (uint32_t i = 0; i < block.size(); i++)
            block[i] = 0xFF000000 | (i + 1);
        return block;
    }

    // The block drawn literally: cut at the right and bottom, stores bounded by element index.
    static void draw_literally(plain::canvas &canvas, const std::vector<uint32_t> &block, int x,
                               int y, int width, int height) {
        const int64_t drawn_width = int64_t{x} + width >= canvas.width ? canvas.width - x : width;
        const int64_t drawn_height =
            int64_t{y} + height >= canvas.height ? canvas.height - y : height;
        for (int64_t row = 0; row < drawn_height; row++)
            for (int64_t column = 0; column < drawn_width; column++) {
                const int64_t element = (y + row) * canvas.width + x + column;
                if (element < 0 || element >= canvas.count())
                    continue;
                uint32_t &pixel = canvas.pixels[static_cast<size_t>(element)];
                const uint32_t source = block[static_cast<size_t>(row * width + column)];
                const bool copies = main_screen.color_mode == UX_COLOR_MODE_RGB565;
                pixel = copies ? source : plain::blend(pixel, source);
            }
    }
};

} // namespace

TEST_F(ImageTest, null_block_is_refused) {
    EXPECT_EQ(ux_draw_image_buff(nullptr, 0, 0, 4, 4, 0), -1);
    main_screen.color_mode = UX_COLOR_MODE_RGB565;
    EXPECT_EQ(ux_draw_image_buff(nullptr, 0, 0, 4, 4, 0), -1);
    main_screen.color_mode = 2;
    EXPECT_EQ(ux_draw_image_buff(nullptr, 0, 0, 4, 4, 9), -1);
}

// The source 255 comes out as 254 in an opaque blend over black.
TEST_F(ImageTest, block_is_blended_where_it_is_put) {
    const uint32_t block[6] = {0xFFFFFFFF, 0, 0xFFFFFFFF, 0, 0xFFFFFFFF, 0};
    EXPECT_EQ(ux_draw_image_buff(block, 2, 1, 3, 2, 0), 0);
    EXPECT_EQ(buf_picture(0xFFFEFEFE).substr(0, 4 * 17), "................\n"
                                                         "..X.X...........\n"
                                                         "...X............\n"
                                                         "................\n");
}

TEST_F(ImageTest, block_is_drawn_to_buf_and_not_to_fb) {
    set_apart();
    const uint32_t block = 0xFFFFFFFF;
    ux_draw_image_buff(&block, 0, 0, 1, 1, 0);
    EXPECT_EQ(buf_pixel(0, 0), 0xFFFEFEFEu);
    EXPECT_EQ(fb_pixel(0, 0), 0u);
}

// Block of 20 columns at column 12: 4 columns are drawn, row r begins at pixel 20 * r. Source n
// over black: (n * 255) >> 8 = n - 1 for n in 1..255.
TEST_F(ImageTest, block_cut_at_the_right_keeps_its_own_pitch) {
    const auto block = numbered(20, 3);
    EXPECT_EQ(ux_draw_image_buff(block.data(), 12, 2, 20, 3, 0), 0);
    plain::canvas expected = {16, 8};
    for (int row = 0; row < 3; row++)
        for (int column = 0; column < 4; column++)
            expected.put(12 + column, 2 + row,
                         0xFF000000 | static_cast<uint32_t>(20 * row + column));
    EXPECT_EQ(plain::numbers(main_screen.buf), expected.pixels);
}

TEST_F(ImageTest, ten_columns_of_a_block_of_100_are_drawn_at_the_right_edge) {
    make_screen(120, 4);
    const std::vector<uint32_t> block(100 * 2, 0xFFFFFFFF);
    EXPECT_EQ(ux_draw_image_buff(block.data(), 110, 1, 100, 2, 0), 0);
    plain::canvas expected = {120, 4};
    plain::box(expected, 110, 1, 119, 2, 0xFFFEFEFE);
    EXPECT_EQ(plain::numbers(main_screen.buf), expected.pixels);
}

TEST_F(ImageTest, block_cut_at_the_bottom_draws_its_first_rows) {
    const auto block = numbered(2, 5);
    EXPECT_EQ(ux_draw_image_buff(block.data(), 0, 6, 2, 5, 0), 0);
    EXPECT_EQ(buf_pixel(1, 6), 0xFF000001u);
    EXPECT_EQ(buf_pixel(1, 7), 0xFF000003u);
}

TEST_F(ImageTest, block_ending_exactly_at_the_edge_is_drawn_whole) {
    const std::vector<uint32_t> block(6, 0xFFFFFFFF);
    EXPECT_EQ(ux_draw_image_buff(block.data(), 13, 6, 3, 2, 0), 0);
    EXPECT_EQ(buf_picture(0xFFFEFEFE).substr(5 * 17), "................\n"
                                                      ".............XXX\n"
                                                      ".............XXX\n");
}

TEST_F(ImageTest, block_without_a_pixel_on_the_screen_is_refused) {
    const std::vector<uint32_t> block(16, 0xFFFFFFFF);
    for (int mode : std::initializer_list<int>{UX_COLOR_MODE_ARGB8888, UX_COLOR_MODE_RGB565, 2}) {
        main_screen.color_mode = mode;
        EXPECT_EQ(ux_draw_image_buff(block.data(), 16, 0, 4, 4, 0), -1);
        EXPECT_EQ(ux_draw_image_buff(block.data(), 17, 0, 4, 4, 0), -1);
        EXPECT_EQ(ux_draw_image_buff(block.data(), INT_MAX, 0, 4, 4, 0), -1);
        EXPECT_EQ(ux_draw_image_buff(block.data(), 0, 8, 4, 4, 0), -1);
        EXPECT_EQ(ux_draw_image_buff(block.data(), 0, INT_MAX, 4, 4, 0), -1);
        EXPECT_EQ(ux_draw_image_buff(block.data(), 0, 0, 0, 4, 0), -1);
        EXPECT_EQ(ux_draw_image_buff(block.data(), 0, 0, 4, 0, 0), -1);
        EXPECT_EQ(ux_draw_image_buff(block.data(), 0, 0, -4, 4, 0), -1);
        EXPECT_EQ(ux_draw_image_buff(block.data(), 0, 0, 4, INT_MIN, 0), -1);
    }
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
}

TEST_F(ImageTest, effect_9_and_above_draw_nothing_and_give_0) {
    const uint32_t block = 0xFFFFFFFF;
    for (int effect : {9, 10, 255, INT_MAX})
        EXPECT_EQ(ux_draw_image_buff(&block, 0, 0, 1, 1, effect), 0);
    EXPECT_EQ(buf_pixel(0, 0), 0u);
}

TEST_F(ImageTest, place_is_tested_before_the_effect) {
    const uint32_t block = 0xFFFFFFFF;
    EXPECT_EQ(ux_draw_image_buff(&block, 16, 0, 1, 1, 9), -1);
}

TEST_F(ImageTest, other_modes_are_refused_before_the_effect) {
    const uint32_t block = 0xFFFFFFFF;
    for (int mode : {0, 2, 4, -1}) {
        main_screen.color_mode = mode;
        EXPECT_EQ(ux_draw_image_buff(&block, 0, 0, 1, 1, 0), -1);
        EXPECT_EQ(ux_draw_image_buff(&block, 0, 0, 1, 1, 9), -1);
    }
    EXPECT_EQ(buf_pixel(0, 0), 0u);
}

TEST_F(ImageTest, mode_3_copies_rows_whatever_the_effect) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    fill_buf(0x7777);
    const uint16_t block[6] = {0x0000, 0xFFFF, 0x1234, 0x5678, 0x9ABC, 0xDEF0};
    for (int effect : {0, 1, 9}) {
        fill_buf(0x7777);
        EXPECT_EQ(ux_draw_image_buff(block, 14, 7, 3, 2, effect), 0);
        EXPECT_EQ(buf_pixel(13, 7), 0x7777u);
        EXPECT_EQ(buf_pixel(14, 7), 0x0000u);
        EXPECT_EQ(buf_pixel(15, 7), 0xFFFFu);
        EXPECT_EQ(ux_draw_image_buff(block, 0, 0, 3, 2, effect), 0);
        EXPECT_EQ(buf_pixel(0, 1), 0x5678u);
        EXPECT_EQ(buf_pixel(2, 1), 0xDEF0u);
        EXPECT_EQ(buf_pixel(3, 1), 0x7777u);
    }
}

// Only the red field chooses mode 3: a pixel may have more than two bytes.
TEST_F(ImageTest, mode_3_copies_whole_pixels_of_the_devices_size) {
    main_screen.color_mode = UX_COLOR_MODE_RGB565;
    const uint32_t block[4] = {0x11112222, 0x33334444, 0x55556666, 0x77778888};
    EXPECT_EQ(ux_draw_image_buff(block, 3, 1, 2, 2, 0), 0);
    EXPECT_EQ(buf_pixel(2, 1), 0u);
    EXPECT_EQ(buf_pixel(3, 1), 0x11112222u);
    EXPECT_EQ(buf_pixel(4, 1), 0x33334444u);
    EXPECT_EQ(buf_pixel(3, 2), 0x55556666u);
    EXPECT_EQ(buf_pixel(4, 2), 0x77778888u);
    EXPECT_EQ(buf_pixel(5, 2), 0u);
}

TEST_F(ImageTest, blocks_anywhere_are_the_literal_loops) {
    plain::dice dice(1);
    for (int mode : {UX_COLOR_MODE_ARGB8888, UX_COLOR_MODE_RGB565}) {
        make_screen(37, 23, mode);
        plain::canvas canvas = {37, 23};
        for (int i = 0; i < 3000; i++) {
            const int width = dice.between(1, 60);
            const int height = dice.between(1, 40);
            const int x = dice.between(-70, 36);
            const int y = dice.between(-50, 22);
            std::vector<uint32_t> block(static_cast<size_t>(width * height));
            for (uint32_t &pixel : block)
                pixel = mode == UX_COLOR_MODE_RGB565 ? dice.word() & 0xFFFF : dice.word();
            const std::vector<uint16_t> halves(block.begin(), block.end());
            const void *pixels = mode == UX_COLOR_MODE_RGB565
                                     ? static_cast<const void *>(halves.data())
                                     : static_cast<const void *>(block.data());
            draw_literally(canvas, block, x, y, width, height);
            ASSERT_EQ(ux_draw_image_buff(pixels, x, y, width, height, 0), 0);
            ASSERT_EQ(plain::numbers(main_screen.buf), canvas.pixels)
                << width << " x " << height << " at " << x << ", " << y;
        }
    }
}

// Width and x add up to more than 32 bits hold; only what is on the screen is read.
TEST_F(ImageTest, sums_beyond_32_bits_do_not_wrap) {
    const std::vector<uint32_t> block(16 * 8, 0xFFFFFFFF);
    EXPECT_EQ(ux_draw_image_buff(block.data(), 8, 7, INT_MAX, INT_MAX, 0), 0);
    EXPECT_EQ(buf_picture(0xFFFEFEFE).substr(6 * 17), "................\n"
                                                      "........XXXXXXXX\n");
}

TEST_F(ImageTest, block_far_above_and_left_touches_nothing) {
    const std::vector<uint32_t> block(16, 0xFFFFFFFF);
    EXPECT_EQ(ux_draw_image_buff(block.data(), INT_MIN, 0, 4, 4, 0), 0);
    EXPECT_EQ(ux_draw_image_buff(block.data(), 0, INT_MIN, 4, 4, 0), 0);
    EXPECT_EQ(ux_draw_image_buff(block.data(), INT_MIN, INT_MIN, 4, 4, 0), 0);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
}

TEST_F(ImageTest, screen_without_memory_is_left_alone) {
    const uint32_t block = 0xFFFFFFFF;
    main_screen.buf = nullptr;
    EXPECT_EQ(ux_draw_image_buff(&block, 0, 0, 1, 1, 0), 0);
    main_screen.color_mode = UX_COLOR_MODE_RGB565;
    EXPECT_EQ(ux_draw_image_buff(&block, 0, 0, 1, 1, 0), 0);
}
