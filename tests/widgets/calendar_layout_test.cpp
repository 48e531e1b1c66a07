// SPDX-License-Identifier: MIT
// Where the calendar paints what: cells and header beside a plain computation, texts by the places
// of their ink.

#include "tests/support/plain_drawing.h"
#include "tests/widgets/calendar_test.h"

namespace {

constexpr uint32_t k_header = 0xFF303080;
constexpr uint32_t k_dark = 0xFF202020;
constexpr uint32_t k_red = 0xFFFF0000;

// Header boxes and cells of a month whose first day is in column `first`, placed one after the
// other. Cells are the red picture over 0.
plain::canvas plain_month(int width, int height, int first, int days) {
    plain::canvas canvas = {main_screen.width, main_screen.height};
    int w = (width - 178) / 7 - 3;
    w = w / 2 * 2;
    const int p = (height - 80) / 6;
    const int q = p - 5;
    for (int i = 0; i < 7; i++)
        plain::box(canvas, 178 + i * (w + 3), 50, 178 + i * (w + 3) + w - 1, 74, k_header);
    int x = 178 + first * (w + 3);
    int y = 80;
    for (int day = 1; day <= days; day++) {
        for (int row = y; row < y + q && row < main_screen.height; row++)
            for (int column = x; column < x + w && column < main_screen.width; column++)
                canvas.put(column, row, k_red_seen);
        if ((first + day) % 7 == 0) {
            x = 178;
            y += p;
        } else {
            x += w + 3;
        }
    }
    return canvas;
}

} // namespace

using CalendarLayoutTest = CalendarTest;

TEST_F(CalendarLayoutTest, grid_of_4_5_and_6_rows_stands_where_the_plain_computation_puts_it) {
    const struct {
        int year, month, first, days;
    } months[] = {{2009, 2, 0, 28}, {2009, 1, 4, 31}, {2009, 8, 6, 31},
                  {2010, 5, 6, 31}, {2024, 2, 4, 29}, {2023, 10, 0, 31}};
    for (const auto &m : months) {
        ux_page_clean();
        ux_calendar *calendar = make();
        shown(calendar, m.year, m.month);
        EXPECT_EQ(plain::numbers(main_screen.buf),
                  plain_month(k_width, k_height, m.first, m.days).pixels)
            << m.year << "-" << m.month;
    }
}

TEST_F(CalendarLayoutTest, layout_is_the_screens_wherever_the_calendar_is) {
    ux_calendar *calendar = make();
    calendar->obj.x = 40;
    calendar->obj.y = -50;
    shown(calendar);
    EXPECT_EQ(plain::numbers(main_screen.buf), plain_month(k_width, k_height, 4, 31).pixels);
}

TEST_F(CalendarLayoutTest, calendar_of_920_pixels_has_cells_of_102) {
    make_screen(930, 500);
    ux_calendar *calendar = make();
    calendar->obj.width = 920;
    calendar->obj.height = 480;
    shown(calendar, 2009, 1);
    EXPECT_EQ(plain::numbers(main_screen.buf), plain_month(920, 480, 4, 31).pixels);
    const int left = 178 + 4 * 105; // 102 + 3
    EXPECT_EQ(buf_pixel(left, 80), k_red_seen);
    EXPECT_EQ(buf_pixel(left + 101, 80), k_red_seen);
    EXPECT_EQ(buf_pixel(left + 102, 80), 0u);
    EXPECT_EQ(buf_pixel(left, 80 + 60), k_red_seen) << "(480 - 80) / 6 - 5 = 61 rows";
    EXPECT_EQ(buf_pixel(left, 80 + 61), 0u);
}

TEST_F(CalendarLayoutTest, cells_are_cut_at_the_edges_of_the_screen) {
    make_screen(200, 140);
    ux_calendar *calendar = make();
    shown(calendar, 2009, 3); // begins on a Sunday
    EXPECT_EQ(buf_pixel(199, 80), k_red_seen) << "the second column begins at 197";
    EXPECT_EQ(buf_pixel(196, 80), 0u);
    EXPECT_EQ(buf_pixel(178, 139), k_red_seen) << "the third row begins at 130";
}

TEST_F(CalendarLayoutTest, picture_is_blended_over_what_is_there) {
    write("black.png", {255, 255, 255, 128});
    fill_buf(0xFF000000);
    shown(make());
    EXPECT_EQ(buf_pixel(178 + 4 * 19, 80), 0xFF7F7F7Fu);
}

// August 2009 begins on a Saturday: its last day is the second cell of the sixth row, which
// February does not reach.
TEST_F(CalendarLayoutTest, month_is_painted_over_the_one_before) {
    ux_calendar *calendar = make();
    const int left = 178 + 1 * 19;
    const int top = 80 + 5 * 25;
    shown(calendar, 2009, 2);
    EXPECT_EQ(buf_pixel(left, top), 0u);
    shown(calendar, 2009, 8);
    EXPECT_EQ(buf_pixel(left, top), k_red_seen);
    shown(calendar, 2009, 2);
    EXPECT_EQ(buf_pixel(left, top), k_red_seen);
}

TEST_F(CalendarLayoutTest, texts_are_painted_in_order_the_column_first_then_the_days) {
    ux_calendar *calendar = make();
    take_calls();
    shown(calendar, 1752, 9);
    EXPECT_EQ(glyphs_fetched(),
              "9SEPTEMBER1752123456789101112131415161718192021222324252627282930");
}

TEST_F(CalendarLayoutTest, every_month_has_its_name) {
    const char *names[] = {"JANUARY", "FEBRUARY", "MARCH",     "APRIL",   "MAY",      "JUNE",
                           "JULY",    "AUGUST",   "SEPTEMBER", "OCTOBER", "NOVEMBER", "DECEMBER"};
    ux_calendar *calendar = make();
    for (int month = 1; month <= 12; month++) {
        take_calls();
        shown(calendar, 2009, month);
        const std::string wanted = std::to_string(month) + names[month - 1] + "2009";
        EXPECT_EQ(glyphs_fetched().substr(0, wanted.size()), wanted);
    }
}

// A dot at the top left of a glyph's cell tells where its text begins.
TEST_F(CalendarLayoutTest, texts_begin_at_the_corners_of_their_boxes_in_their_colours) {
    setenv("FontSize", "5", 1);
    for (char c : std::string("12J"))
        fake_chip::get().glyphs[static_cast<uint32_t>(c)] = {0, 4, 2, {"X"}};
    shown(make(), 2009, 1);
    EXPECT_EQ(buf_pixel(20, 50), k_dark) << "the month, 1";
    EXPECT_EQ(buf_pixel(20, 170), k_dark) << "J";
    EXPECT_EQ(buf_pixel(20, 200), k_dark) << "2 of the year";
    EXPECT_EQ(buf_pixel(178 + 4 * 19 + 6, 86), k_dark) << "Thursday the 1st";
    EXPECT_EQ(buf_pixel(178 + 6, 86 + 2 * 25), k_red) << "Sunday the 11th";
    EXPECT_EQ(buf_pixel(178 + 6 * 19 + 6, 86 + 25), k_red) << "Saturday the 10th";
    EXPECT_EQ(buf_pixel(178 + 5 * 19 + 6, 86), k_dark) << "Friday the 2nd";
}

TEST_F(CalendarLayoutTest, size_of_the_texts_is_16_when_the_variable_is_unset) {
    ux_calendar *calendar = make();
    take_calls();
    shown(calendar);
    EXPECT_EQ(take_calls().front(), "FSS_set_scale 1048576 0 0 1048576");
    setenv("FontSize", "5", 1);
    shown(calendar);
    EXPECT_EQ(take_calls().front(), "FSS_set_scale 327680 0 0 327680");
}

// Numbers lie in the upper third of a cell, 20 / 3 = 6 rows: text of 7 does not fit.
TEST_F(CalendarLayoutTest, number_that_is_higher_than_a_third_of_its_cell_is_not_painted) {
    fake_chip::get().glyphs[u'1'] = {0, 4, 2, {"X"}};
    setenv("FontSize", "7", 1);
    shown(make());
    EXPECT_EQ(buf_pixel(20, 51), k_dark) << "the month fits: 7 * 4 / 5 - 4 = 1 row down";
    const std::vector<uint32_t> pixels = plain::numbers(main_screen.buf);
    for (int y = 80; y < 232; y++)
        for (int x = 178; x < 320; x++)
            EXPECT_NE(pixels[static_cast<size_t>(y * 320 + x)], k_dark);
}

// A font whose letters are 2 x 2 dots whatever the size: names are 6 pixels wide and in the middle
// of boxes of 16 x 25.
TEST_F(CalendarLayoutTest, weekday_names_are_centred_in_the_header_red_at_the_weekend) {
    for (char c : std::string("SUNMOTEWDHFRIA"))
        fake_chip::get().engine_glyphs[static_cast<uint32_t>(c)].outlines = {{{"XX", "XX"}}};
    fake_chip::get().cell_of = [](uint32_t, uint32_t) { return fake_chip::cell{2, 2}; };
    shown(make());
    for (int i = 0; i < 7; i++) {
        const int x = 178 + i * 19 + 5;
        const uint32_t ink = i == 0 || i == 6 ? k_red : 0xFFFFFFFF;
        EXPECT_EQ(buf_pixel(x, 61), ink) << "(25 - 2) / 2 = 11 rows down";
        EXPECT_EQ(buf_pixel(x + 5, 62), ink);
        EXPECT_EQ(buf_pixel(x - 1, 61), k_header);
        EXPECT_EQ(buf_pixel(x + 6, 62), k_header);
        EXPECT_EQ(buf_pixel(x, 60), k_header);
        EXPECT_EQ(buf_pixel(x, 63), k_header);
    }
}

TEST_F(CalendarLayoutTest, years_below_1_have_their_days_in_columns_0_to_6) {
    ux_calendar *calendar = make();
    for (int year : {0, -1, -4, -399, -400, -32768})
        for (int month = 1; month <= 12; month++) {
            ux_page_clean();
            shown(calendar, year, month);
            const int first = (ux_calendar_get_week(year, month, 1) + 7) % 7;
            const int days = month == 2
                                 ? (year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 29 : 28)
                             : month == 4 || month == 6 || month == 9 || month == 11 ? 30
                                                                                     : 31;
            EXPECT_EQ(plain::numbers(main_screen.buf),
                      plain_month(k_width, k_height, first, days).pixels)
                << year << "-" << month;
        }
}
