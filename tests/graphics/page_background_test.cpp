// SPDX-License-Identifier: MIT
// Page backgrounds against a walk over every pixel of the screen: colour, part of a picture,
// picture with a hole.

#include "tests/graphics/picture_files.h"
#include "tests/support/plain_drawing.h"

#include <algorithm>
#include <climits>
#include <functional>

namespace {

using pixels = std::vector<uint32_t>;

struct rectangle {
    int x, y, width, height;

    bool contains(int64_t column, int64_t row) const {
        return x <= column && column < int64_t{x} + width && y <= row && row < int64_t{y} + height;
    }
};

class PageBackgroundTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        path = write_picture(16, 8);
    }

    void TearDown() override {
        EXPECT_EQ(fake_chip::get().open_files, 0) << "a file was not closed";
        ScreenTest::TearDown();
    }

    // A picture of many colours and alphas; `picture` holds its pixels.
    std::string write_picture(int width, int height) {
        plain::dice dice(3);
        png_content content;
        content.width = static_cast<uint32_t>(width);
        content.height = static_cast<uint32_t>(height);
        content.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
        picture.clear();
        for (int i = 0; i < width * height; i++) {
            const uint32_t pixel = i % 5 == 0 ? dice.word() & 0x00FFFFFF : dice.word();
            picture.push_back(pixel);
            for (int shift : {16, 8, 0, 24})
                content.bytes.push_back(static_cast<uint8_t>(pixel >> shift));
        }
        return folder.write_png(std::to_string(width) + ".png", content);
    }

    // The screen with the picture's pixel, counted in screen rows, blended where `wanted` says.
    pixels blended(pixels screen, const std::function<bool(int, int)> &wanted) const {
        for (int row = 0; row < main_screen.height; row++)
            for (int column = 0; column < main_screen.width; column++) {
                const auto i = static_cast<size_t>(row * main_screen.width + column);
                if (wanted(column, row) && i < picture.size())
                    screen[i] = plain::blend(screen[i], picture[i]);
            }
        return screen;
    }

    static rectangle random_rectangle(plain::dice &dice) {
        return {dice.between(-20, 20), dice.between(-12, 12), dice.between(-3, 40),
                dice.between(-3, 24)};
    }

    int update(const rectangle &part, int x = 0, int y = 0) const {
        return ux_update_BGimage(path.c_str(), x, y, 16, 8, part.x, part.y, part.width,
                                 part.height);
    }

    int draw(const rectangle &hole, int x = 0, int y = 0) const {
        return ux_draw_BGimage(path.c_str(), x, y, 16, 8, hole.x, hole.y, hole.width, hole.height);
    }

    static pixels screen() { return plain::numbers(main_screen.buf); }
    static bool opened() { return !fake_chip::get().calls.empty(); }

    picture_folder folder;
    std::string path;
    pixels picture;
};

constexpr rectangle k_nothing = {0, 0, 0, 0};
constexpr rectangle k_edge_cases[] = {
    {0, 0, 16, 8},      {3, 2, 5, 4},         {0, 0, 1, 1},       {15, 7, 1, 1},
    {15, 7, 9, 9},      {-4, -4, 5, 5},       {-4, 2, 40, 1},     {2, -4, 1, 40},
    {3, 3, 0, 3},       {3, 3, 3, 0},         {3, 3, -2, 3},      {16, 0, 4, 4},
    {0, 8, 4, 4},       {-4, 0, 4, 4},        {0, -4, 4, 4},      {8, 4, INT_MAX, INT_MAX},
    {INT_MIN, 0, 9, 9}, {0, INT_MIN, 9, 9},   {0, 0, INT_MIN, 9}, {INT_MAX, 0, INT_MAX, 1},
    {0, 0, 9, INT_MIN}, {-1, -1, INT_MAX, 3}, {0, INT_MAX, 9, 9}, {0, 0, 16, 1},
};

} // namespace

TEST_F(PageBackgroundTest, half_red_over_black_gives_127) {
    EXPECT_EQ(ux_update_BGcolor(2, 1, 3, 2, 0x80FF0000), 0);
    EXPECT_EQ(buf_picture(0x807F0000), "................\n"
                                       "..XXX...........\n"
                                       "..XXX...........\n"
                                       "................\n"
                                       "................\n"
                                       "................\n"
                                       "................\n"
                                       "................\n");
}

TEST_F(PageBackgroundTest, color_keeps_the_larger_alpha) {
    fill_buf(0xC0000000);
    ux_update_BGcolor(0, 0, 16, 8, 0x80FF0000);
    EXPECT_EQ(screen(), pixels(16 * 8, 0xC07F0000));
}

TEST_F(PageBackgroundTest, color_without_alpha_changes_nothing) {
    fill_buf(0x12345678);
    EXPECT_EQ(ux_update_BGcolor(0, 0, 16, 8, 0x00FFFFFF), 0);
    EXPECT_EQ(screen(), pixels(16 * 8, 0x12345678));
}

// The columns are the screen's values, in all four channels.
TEST_F(PageBackgroundTest, color_of_all_triples_follows_the_formula) {
    make_screen(256, 1);
    pixels expected(256);
    for (uint32_t a = 0; a < 256; a++)
        for (uint32_t c = 0; c < 256; c++) {
            for (uint32_t s = 0; s < 256; s++)
                expected[s] = s << 24 | s << 16 | (255 - s) << 8 | s;
            memcpy(main_screen.buf, expected.data(), expected.size() * 4);
            const uint32_t color = a << 24 | c << 16 | c << 8 | (255 - c);
            for (uint32_t &pixel : expected)
                pixel = plain::blend(pixel, color);
            ASSERT_EQ(ux_update_BGcolor(0, 0, 256, 1, color), 0);
            ASSERT_EQ(plain::numbers(main_screen.buf), expected) << a << ", " << c;
        }
}

TEST_F(PageBackgroundTest, color_in_any_rectangle_is_the_walk_over_the_screen) {
    plain::dice dice(1);
    std::vector<rectangle> parts(std::begin(k_edge_cases), std::end(k_edge_cases));
    for (int i = 0; i < 500; i++)
        parts.push_back(random_rectangle(dice));
    pixels expected = screen();
    for (const rectangle &part : parts) {
        const uint32_t color = dice.word();
        for (int i = 0; i < 16 * 8; i++)
            if (part.contains(i % 16, i / 16))
                expected[static_cast<size_t>(i)] =
                    plain::blend(expected[static_cast<size_t>(i)], color);
        ASSERT_EQ(ux_update_BGcolor(part.x, part.y, part.width, part.height, color), 0);
        ASSERT_EQ(screen(), expected)
            << part.x << ", " << part.y << ": " << part.width << " x " << part.height;
    }
}

TEST_F(PageBackgroundTest, picture_inside_any_rectangle_is_the_walk_over_the_screen) {
    plain::dice dice(2);
    std::vector<rectangle> parts(std::begin(k_edge_cases), std::end(k_edge_cases));
    for (int i = 0; i < 100; i++)
        parts.push_back(random_rectangle(dice));
    for (const rectangle &part : parts) {
        fill_buf(dice.word());
        const pixels expected =
            blended(screen(), [&](int column, int row) { return part.contains(column, row); });
        ASSERT_EQ(update(part), 0);
        ASSERT_EQ(screen(), expected)
            << part.x << ", " << part.y << ": " << part.width << " x " << part.height;
    }
}

TEST_F(PageBackgroundTest, picture_around_any_rectangle_is_the_walk_over_the_screen) {
    plain::dice dice(4);
    std::vector<rectangle> holes(std::begin(k_edge_cases), std::end(k_edge_cases));
    for (int i = 0; i < 100; i++)
        holes.push_back(random_rectangle(dice));
    for (const rectangle &hole : holes) {
        fill_buf(dice.word());
        const pixels expected =
            blended(screen(), [&](int column, int row) { return !hole.contains(column, row); });
        ASSERT_EQ(draw(hole), 0);
        ASSERT_EQ(screen(), expected)
            << hole.x << ", " << hole.y << ": " << hole.width << " x " << hole.height;
    }
}

// Rows of the picture are taken to be as long as the screen's; what it has not stays as it was.
TEST_F(PageBackgroundTest, smaller_picture_is_read_in_screen_rows_up_to_its_last_pixel) {
    path = write_picture(10, 5); // 50 pixels: 3 screen rows and 2 pixels
    fill_buf(0x20406080);
    const pixels expected = blended(screen(), [](int, int) { return true; });
    ux_draw_BGimage(path.c_str(), 0, 0, 10, 5, 0, 0, 0, 0);
    EXPECT_EQ(screen(), expected);
    EXPECT_EQ(buf_pixel(2, 3), 0x20406080u);
    fill_buf(0x20406080);
    ux_update_BGimage(path.c_str(), 0, 0, 10, 5, 0, 0, 16, 8);
    EXPECT_EQ(screen(), expected);
}

TEST_F(PageBackgroundTest, larger_picture_is_read_in_screen_rows) {
    path = write_picture(20, 9);
    const pixels expected = blended(screen(), [](int, int) { return true; });
    ux_draw_BGimage(path.c_str(), 15, 7, 20, 9, 0, 0, 0, 0);
    EXPECT_EQ(screen(), expected);
}

TEST_F(PageBackgroundTest, rectangle_of_no_width_still_loads_the_picture) {
    EXPECT_EQ(update({3, 3, 0, 3}), 0);
    EXPECT_TRUE(opened());
    EXPECT_EQ(screen(), pixels(16 * 8));
}

TEST_F(PageBackgroundTest, place_outside_the_screen_is_silent_and_loads_nothing) {
    testing::internal::CaptureStdout();
    for (const auto &[x, y] : {std::pair{-1, 0}, {0, -1}, {16, 0}, {0, 8}, {INT_MIN, INT_MAX}}) {
        EXPECT_EQ(update({0, 0, 16, 8}, x, y), 0);
        EXPECT_EQ(draw(k_nothing, x, y), 0);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_FALSE(opened());
    EXPECT_EQ(screen(), pixels(16 * 8));
}

TEST_F(PageBackgroundTest, place_on_the_screen_moves_nothing) {
    draw(k_nothing, 15, 7);
    const pixels there = screen();
    fill_buf(0);
    draw(k_nothing, 0, 0);
    EXPECT_EQ(screen(), there);
}

TEST_F(PageBackgroundTest, readable_picture_is_not_announced_and_the_screen_not_updated) {
    set_apart();
    testing::internal::CaptureStdout();
    draw(k_nothing);
    update({0, 0, 16, 8});
    ux_update_BGcolor(0, 0, 16, 8, 0xFFFFFFFF);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(plain::numbers(main_screen.fb), pixels(16 * 8));
}

TEST_F(PageBackgroundTest, unreadable_picture_prints_the_load_message_and_gives_0) {
    path = folder.path("missing.png");
    testing::internal::CaptureStdout();
    EXPECT_EQ(update({0, 0, 16, 8}), 0);
    EXPECT_EQ(draw(k_nothing), 0);
    const std::string message = "RMOpenBitmapFile " + path + " FAIL on ux_load_image\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), message + message);
    EXPECT_EQ(screen(), pixels(16 * 8));
}

TEST_F(PageBackgroundTest, no_memory_for_the_picture_leaves_the_screen_and_gives_0) {
    hooks::fail_allocation(1);
    EXPECT_EQ(update({0, 0, 16, 8}), 0);
    hooks::fail_allocation(1);
    EXPECT_EQ(draw(k_nothing), 0);
    EXPECT_EQ(screen(), pixels(16 * 8));
}

TEST_F(PageBackgroundTest, picture_of_no_size_paints_nothing) {
    for (int side : {0, -1, INT_MIN}) {
        EXPECT_EQ(ux_draw_BGimage(path.c_str(), 0, 0, side, 8, 0, 0, 0, 0), 0);
        EXPECT_EQ(ux_update_BGimage(path.c_str(), 0, 0, 16, side, 0, 0, 16, 8), 0);
    }
    EXPECT_EQ(screen(), pixels(16 * 8));
}

TEST_F(PageBackgroundTest, screen_of_no_size_is_refused_before_its_mode) {
    for (int mode : {UX_COLOR_MODE_ARGB8888, UX_COLOR_MODE_RGB565}) {
        make_screen(16, 8, mode);
        main_screen.width = 0;
        EXPECT_EQ(ux_update_BGcolor(0, 0, 1, 1, 0xFFFFFFFF), -1);
        main_screen.width = 16;
        main_screen.height = -1;
        EXPECT_EQ(ux_update_BGcolor(0, 0, 1, 1, 0xFFFFFFFF), -1);
        EXPECT_EQ(update({0, 0, 16, 8}), 0);
        EXPECT_EQ(draw(k_nothing), 0);
    }
}

TEST_F(PageBackgroundTest, mode_3_gets_no_color_and_no_part) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    EXPECT_EQ(ux_update_BGcolor(0, 0, 16, 8, 0xFFFFFFFF), 0);
    EXPECT_EQ(update({0, 0, 16, 8}), 0);
    EXPECT_TRUE(opened());
    EXPECT_EQ(screen(), pixels(16 * 8));
}

// Both have the bytes in the same order; the screen has half as many.
TEST_F(PageBackgroundTest, mode_3_gets_the_picture_as_it_lies_without_the_hole) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    EXPECT_EQ(draw({0, 0, 16, 8}), 0);
    EXPECT_EQ(memcmp(main_screen.buf, picture.data(), 16 * 8 * 2), 0);
}

TEST_F(PageBackgroundTest, mode_3_gets_whole_pixels_of_the_devices_size) {
    main_screen.color_mode = UX_COLOR_MODE_RGB565;
    EXPECT_EQ(draw(k_nothing), 0);
    EXPECT_EQ(screen(), picture);
}

TEST_F(PageBackgroundTest, mode_3_gets_no_more_than_a_small_picture_has) {
    path = write_picture(4, 4); // 64 bytes
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    fill_buf(0x7777);
    ux_draw_BGimage(path.c_str(), 0, 0, 4, 4, 0, 0, 0, 0);
    EXPECT_EQ(memcmp(main_screen.buf, picture.data(), 64), 0);
    EXPECT_EQ(buf_pixel(0, 2), 0x7777u);
}

TEST_F(PageBackgroundTest, other_modes_load_and_paint_nothing) {
    main_screen.color_mode = 2;
    EXPECT_EQ(ux_update_BGcolor(0, 0, 16, 8, 0xFFFFFFFF), 0);
    EXPECT_EQ(update({0, 0, 16, 8}), 0);
    EXPECT_EQ(draw(k_nothing), 0);
    EXPECT_TRUE(opened());
    EXPECT_EQ(screen(), pixels(16 * 8));
}

TEST_F(PageBackgroundTest, screen_without_memory_is_left_alone) {
    main_screen.buf = nullptr;
    for (int mode : {UX_COLOR_MODE_ARGB8888, UX_COLOR_MODE_RGB565}) {
        main_screen.color_mode = mode;
        EXPECT_EQ(ux_update_BGcolor(0, 0, 16, 8, 0xFFFFFFFF), 0);
        EXPECT_EQ(update({0, 0, 16, 8}), 0);
        EXPECT_EQ(draw(k_nothing), 0);
    }
}
