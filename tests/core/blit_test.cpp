// SPDX-License-Identifier: MIT
// Copying `buf` to `fb`: what is refused, what is cut, rotation, memories that overlap; against the
// literal loops for every rectangle of small screens.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>

namespace {

// Two places in one block of bytes, which may overlap, and the literal copy between them.
struct two_memories {
    std::vector<uint8_t> bytes;
    size_t buf;
    size_t fb;

    // Pixel by pixel, row by row, left to right.
    void copy_literally(int64_t x, int64_t y, int64_t w, int64_t h) {
        const int64_t width = main_screen.width;
        const int64_t height = main_screen.height;
        const int64_t bpp = main_screen.bytes_per_pixel;
        for (int64_t r = y; r < y + h; r++)
            for (int64_t c = x; c < x + w; c++) {
                if (r >= height || c >= width)
                    continue;
                int64_t to = r * width + c;
                if (main_screen.rotation == 1)
                    to = (width - 1 - c) * height + r;
                if (main_screen.rotation == 3)
                    to = c * height + (height - 1 - r);
                uint8_t pixel[8];
                memcpy(pixel, &bytes[buf + static_cast<size_t>((r * width + c) * bpp)],
                       static_cast<size_t>(bpp));
                memcpy(&bytes[fb + static_cast<size_t>(to * bpp)], pixel, static_cast<size_t>(bpp));
            }
    }
};

class BlitTest : public ScreenTest {
  protected:
    // A screen of numbered pixels, with an empty device of its own.
    void make_numbered(int width, int height, int rotation = UX_ROTATION_NONE,
                       int color_mode = UX_COLOR_MODE_ARGB8888) {
        make_screen(width, height, color_mode);
        set_apart();
        main_screen.rotation = rotation;
        for (int i = 0; i < width * height; i++)
            set_buf_pixel(i % width, i / width, static_cast<uint32_t>(i + 1));
    }

    std::vector<uint32_t> device() const { return plain::numbers(main_screen.fb); }

    // Puts random bytes into both memories, `gap` bytes apart (negative: fb first), and compares
    // library and loops on one rectangle.
    void compare(plain::dice &dice, int64_t gap, int x, int y, int w, int h) {
        const size_t screen_bytes = static_cast<size_t>(main_screen.width * main_screen.height *
                                                        main_screen.bytes_per_pixel);
        const size_t distance = static_cast<size_t>(gap < 0 ? -gap : gap);
        two_memories memories;
        memories.buf = gap < 0 ? distance + 16 : 16;
        memories.fb = gap < 0 ? 16 : distance + 16;
        memories.bytes.resize(screen_bytes + distance + 32);
        for (uint8_t &byte : memories.bytes)
            byte = static_cast<uint8_t>(dice.word());
        std::vector<uint8_t> copied = memories.bytes;
        memories.copy_literally(x, y, w, h);
        main_screen.buf = copied.data() + memories.buf;
        main_screen.fb = copied.data() + memories.fb;
        EXPECT_EQ(ux_screen_blit_rect(x, y, w, h), 0);
        ASSERT_EQ(copied, memories.bytes)
            << main_screen.width << " x " << main_screen.height << " rotation "
            << main_screen.rotation << " bpp " << main_screen.bytes_per_pixel << " gap " << gap
            << " rect " << x << ", " << y << ", " << w << ", " << h;
    }
};

} // namespace

TEST_F(BlitTest, rectangle_beginning_at_the_far_edges_is_empty_and_no_error) {
    make_numbered(16, 8);
    EXPECT_EQ(ux_screen_blit_rect(16, 0, 10, 10), 0);
    EXPECT_EQ(ux_screen_blit_rect(0, 8, 10, 10), 0);
    EXPECT_EQ(ux_screen_blit_rect(16, 8, 1, 1), 0);
    EXPECT_EQ(device(), std::vector<uint32_t>(16 * 8));
}

TEST_F(BlitTest, rectangle_beginning_beyond_an_edge_is_refused) {
    for (int rotation : {UX_ROTATION_NONE, UX_ROTATION_90, UX_ROTATION_270}) {
        make_numbered(16, 8, rotation);
        EXPECT_EQ(ux_screen_blit_rect(17, 0, 1, 1), -1);
        EXPECT_EQ(ux_screen_blit_rect(0, 9, 1, 1), -1);
        EXPECT_EQ(ux_screen_blit_rect(-1, 0, 5, 5), -1);
        EXPECT_EQ(ux_screen_blit_rect(0, -1, 5, 5), -1);
        EXPECT_EQ(ux_screen_blit_rect(INT_MIN, 0, INT_MAX, 5), -1);
        EXPECT_EQ(ux_screen_blit_rect(INT_MAX, INT_MAX, INT_MAX, INT_MAX), -1);
        EXPECT_EQ(device(), std::vector<uint32_t>(16 * 8));
    }
}

TEST_F(BlitTest, sizes_of_0_and_below_copy_nothing_and_give_0) {
    for (int rotation : {UX_ROTATION_NONE, UX_ROTATION_90, UX_ROTATION_270}) {
        make_numbered(16, 8, rotation);
        for (const auto &[w, h] : {std::pair{0, 5}, {5, 0}, {-1, 5}, {5, -1}, {INT_MIN, INT_MIN}})
            EXPECT_EQ(ux_screen_blit_rect(3, 3, w, h), 0);
        EXPECT_EQ(device(), std::vector<uint32_t>(16 * 8));
    }
}

TEST_F(BlitTest, plain_copy_is_cut_at_the_right_and_the_bottom) {
    make_numbered(4, 3);
    EXPECT_EQ(ux_screen_blit_rect(2, 1, INT_MAX, INT_MAX), 0);
    EXPECT_EQ(device(), (std::vector<uint32_t>{0, 0, 0, 0, //
                                               0, 0, 7, 8, //
                                               0, 0, 11, 12}));
}

// The device has 2 columns and 3 rows: screen column 2 is its first row.
TEST_F(BlitTest, rotation_by_90_turns_columns_into_rows_from_the_last_one_on) {
    make_numbered(3, 2, UX_ROTATION_90);
    EXPECT_EQ(ux_screen_blit_rect(0, 0, 3, 2), 0);
    EXPECT_EQ(device(), (std::vector<uint32_t>{3, 6, 2, 5, 1, 4}));
}

TEST_F(BlitTest, rotation_by_270_turns_columns_into_rows_upside_down) {
    make_numbered(3, 2, UX_ROTATION_270);
    EXPECT_EQ(ux_screen_blit_rect(0, 0, 3, 2), 0);
    EXPECT_EQ(device(), (std::vector<uint32_t>{4, 1, 5, 2, 6, 3}));
}

TEST_F(BlitTest, rotation_2_is_a_plain_copy) {
    make_numbered(3, 2, 2);
    EXPECT_EQ(ux_screen_blit_rect(1, 0, 2, 2), 0);
    EXPECT_EQ(device(), (std::vector<uint32_t>{0, 2, 3, 0, 5, 6}));
}

TEST_F(BlitTest, rotated_copy_beyond_the_edges_writes_only_pixels_of_the_screen) {
    make_numbered(3, 2, UX_ROTATION_90);
    EXPECT_EQ(ux_screen_blit_rect(2, 1, INT_MAX, INT_MAX), 0);
    EXPECT_EQ(device(), (std::vector<uint32_t>{0, 6, 0, 0, 0, 0}));
    make_numbered(3, 2, UX_ROTATION_270);
    EXPECT_EQ(ux_screen_blit_rect(2, 1, INT_MAX, INT_MAX), 0);
    EXPECT_EQ(device(), (std::vector<uint32_t>{0, 0, 0, 0, 6, 0}));
}

// Screen 2 x 2 with pixels 1 2 / 3 4 in one memory: (0, 0) -> element 2: 1 2 1 4; (1, 0) -> element
// 0: 2 2 1 4; (0, 1) -> element 3: 2 2 1 1; (1, 1) -> element 1: 2 1 1 1.
TEST_F(BlitTest, rotation_in_place_feeds_on_its_own_output) {
    make_screen(2, 2);
    main_screen.rotation = UX_ROTATION_90;
    for (int i = 0; i < 4; i++)
        set_buf_pixel(i % 2, i / 2, static_cast<uint32_t>(i + 1));
    EXPECT_EQ(ux_screen_blit_rect(0, 0, 2, 2), 0);
    EXPECT_EQ(device(), (std::vector<uint32_t>{2, 1, 1, 1}));
}

TEST_F(BlitTest, plain_copy_onto_itself_touches_nothing) {
    make_screen(16, 8);
    fill_buf(0x12345678);
    EXPECT_EQ(ux_screen_blit_rect(0, 0, 16, 8), 0);
    EXPECT_EQ(device(), std::vector<uint32_t>(16 * 8, 0x12345678));
}

TEST_F(BlitTest, missing_memories_are_no_error) {
    make_numbered(16, 8);
    uint8_t *fb = main_screen.fb;
    main_screen.fb = nullptr;
    EXPECT_EQ(ux_screen_blit_rect(0, 0, 16, 8), 0);
    main_screen.fb = fb;
    main_screen.buf = nullptr;
    for (int rotation : {UX_ROTATION_NONE, UX_ROTATION_90, UX_ROTATION_270}) {
        main_screen.rotation = rotation;
        EXPECT_EQ(ux_screen_blit_rect(0, 0, 16, 8), 0);
    }
}

TEST_F(BlitTest, screen_of_no_size_copies_nothing) {
    main_screen.width = main_screen.height = 0;
    EXPECT_EQ(ux_screen_blit_rect(0, 0, 10, 10), 0);
    EXPECT_EQ(ux_screen_blit_rect(1, 0, 10, 10), -1);
}

// Only the size of a pixel counts for a copy.
TEST_F(BlitTest, unknown_color_mode_is_copied_too) {
    make_numbered(3, 2, UX_ROTATION_90);
    main_screen.color_mode = 7;
    ux_screen_blit_rect(0, 0, 3, 2);
    EXPECT_EQ(device(), (std::vector<uint32_t>{3, 6, 2, 5, 1, 4}));
}

TEST_F(BlitTest, all_rectangles_of_a_small_screen_are_the_literal_loops) {
    plain::dice dice(1);
    for (int bpp : {1, 2, 3, 4})
        for (int rotation = 0; rotation < 4; rotation++) {
            make_screen(9, 7);
            main_screen.rotation = rotation;
            main_screen.bytes_per_pixel = bpp;
            for (int i = 0; i < 9 * 7 * 9 * 7 && !HasFatalFailure(); i++)
                compare(dice, 9 * 7 * 4 + dice.between(0, 7), i % 9, i / 9 % 7, 1 + i / 63 % 9,
                        1 + i / 567);
        }
}

// Wide enough for several blocks of whatever side, at every alignment.
TEST_F(BlitTest, large_rectangles_at_all_alignments_are_the_literal_loops) {
    plain::dice dice(2);
    for (int bpp : {1, 2, 3, 4, 4, 2})
        for (int i = 0; i < 60 && !HasFatalFailure(); i++) {
            make_screen(dice.between(1, 200), dice.between(1, 160));
            main_screen.rotation = dice.between(0, 3);
            main_screen.bytes_per_pixel = bpp;
            const int x = dice.between(0, main_screen.width);
            const int y = dice.between(0, main_screen.height);
            const int64_t gap = main_screen.width * main_screen.height * bpp + dice.between(0, 70);
            compare(dice, i % 2 ? gap : -gap, x, y, dice.between(-2, 220), dice.between(-2, 180));
        }
}

TEST_F(BlitTest, rotation_of_overlapping_memories_is_the_literal_loops) {
    plain::dice dice(3);
    for (int i = 0; i < 600 && !HasFatalFailure(); i++) {
        make_screen(dice.between(1, 40), dice.between(1, 40));
        main_screen.rotation = i % 2 ? UX_ROTATION_90 : UX_ROTATION_270;
        const int bpp = main_screen.bytes_per_pixel = dice.between(1, 4);
        const int bytes = main_screen.width * main_screen.height * bpp;
        const int64_t gap = i % 5 == 0 ? 0 : dice.between(-bytes - 2, bytes + 2);
        compare(dice, gap, dice.between(0, main_screen.width), dice.between(0, main_screen.height),
                dice.between(0, 50), dice.between(0, 50));
    }
}

TEST_F(BlitTest, whole_screens_rotated_in_place_are_the_literal_loops) {
    plain::dice dice(4);
    for (int rotation : {UX_ROTATION_90, UX_ROTATION_270})
        for (int bpp : {2, 4}) {
            make_screen(128, 72);
            main_screen.rotation = rotation;
            main_screen.bytes_per_pixel = bpp;
            compare(dice, 0, 0, 0, 128, 72);
            compare(dice, 0, 5, 7, 100, 50);
        }
}
