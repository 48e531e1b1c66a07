// SPDX-License-Identifier: MIT
// The calendar: its record, its setters, showing and hiding, pictures and memory that fail.

#include "tests/widgets/calendar_test.h"

TEST_F(CalendarTest, constructor_fills_the_record_with_january_2009_and_paints_nothing) {
    const ux_calendar *calendar = make();
    EXPECT_STREQ(calendar->image_dir, directory.c_str());
    EXPECT_EQ(calendar->year, 2009);
    EXPECT_EQ(calendar->month, 1);
    EXPECT_EQ(calendar->day, 1);
    EXPECT_EQ(calendar->weekday, 4);
    EXPECT_EQ(calendar->shown_year, 2009);
    EXPECT_EQ(calendar->shown_month, 1);
    EXPECT_EQ(calendar->shown_day, 1);
    EXPECT_EQ(calendar->shown_weekday, 4);
    EXPECT_EQ(calendar->reserved, 0);
    EXPECT_EQ(take_calls(), calls{});
    EXPECT_EQ(memory_of(main_screen.buf), std::vector<uint8_t>(320 * 232 * 4));
}

// Two records that held different bytes before hold the same ones afterwards.
TEST_F(CalendarTest, every_field_of_a_record_of_the_hosts_is_set) {
    ux_calendar records[2];
    memset(&records[0], 0x00, sizeof records[0]);
    memset(&records[1], 0xA5, sizeof records[1]);
    for (ux_calendar &record : records)
        EXPECT_EQ(ux_calendar_init(nullptr, &record, 1, 2, 3, 4, directory.c_str()), 0);
    EXPECT_EQ(memcmp(&records[0].obj, &records[1].obj, sizeof(ux_obj)), 0);
    EXPECT_STREQ(records[0].image_dir, records[1].image_dir);
    EXPECT_EQ(memcmp(&records[0].year, &records[1].year, 9 * sizeof(int16_t)), 0);
    EXPECT_EQ(records[1].obj.page_id, -1);
    EXPECT_EQ(records[1].obj.bg_backup, nullptr);
    EXPECT_EQ(records[1].obj.fg_backup, nullptr);
    EXPECT_EQ(records[1].obj.status, 0u);
}

TEST_F(CalendarTest, setters_store_and_do_nothing_else) {
    ux_calendar *calendar = make();
    shown(calendar);
    calendar->reserved = 9;
    expect_only(
        calendar, [&] { return ux_calendar_set_date(calendar, 2024, 2, 29); },
        [](ux_calendar &expected) {
            expected.year = expected.shown_year = 2024;
            expected.month = expected.shown_month = 2;
            expected.day = expected.shown_day = 29;
            expected.weekday = expected.shown_weekday = 4; // a Thursday
            expected.reserved = 0;
        });
    expect_only(
        calendar, [&] { return ux_calendar_set_images(calendar, "/x"); },
        [](ux_calendar &expected) { memcpy(expected.image_dir, "/x", 3); });
    expect_only(
        calendar, [&] { return ux_calendar_set_focus(&calendar->obj); },
        [](ux_calendar &expected) { expected.obj.status |= UX_ST_FOCUSED; });
    EXPECT_EQ(page->focus, &calendar->obj);
    expect_only(
        calendar, [&] { return ux_calendar_unset_focus(&calendar->obj); },
        [](ux_calendar &expected) { expected.obj.status = UX_ST_VISIBLE; });
}

TEST_F(CalendarTest, date_is_stored_in_16_bits_and_its_weekday_is_that_of_what_is_stored) {
    ux_calendar *calendar = make();
    ux_calendar_set_date(calendar, 65536 + 2009, 65536 + 1, 65536 + 1);
    EXPECT_EQ(calendar->year, 2009);
    EXPECT_EQ(calendar->month, 1);
    EXPECT_EQ(calendar->day, 1);
    EXPECT_EQ(calendar->weekday, 4);
}

TEST_F(CalendarTest, directory_is_cut_after_255_bytes_and_null_empties_it) {
    ux_calendar *calendar = make();
    ux_calendar_set_images(calendar, std::string(300, 'd').c_str());
    EXPECT_EQ(std::string(calendar->image_dir), std::string(255, 'd'));
    EXPECT_EQ(calendar->image_dir[255], '\0');
    EXPECT_EQ(shown(calendar).substr(0, 15 + 255 + 11),
              "ADV Play PHOTO " + std::string(255, 'd') + "/black.png\n");
    ux_calendar_set_images(calendar, nullptr);
    EXPECT_STREQ(calendar->image_dir, "");
}

TEST_F(CalendarTest, calendar_of_another_page_becomes_visible_and_is_not_painted) {
    ux_calendar *calendar = make(&other_page.container);
    calendar->reserved = 9;
    EXPECT_EQ(shown(calendar), "");
    EXPECT_TRUE(calendar->obj.status & UX_ST_VISIBLE);
    EXPECT_EQ(take_calls(), calls{});
    EXPECT_EQ(memory_of(main_screen.buf), std::vector<uint8_t>(320 * 232 * 4));
    EXPECT_EQ(ux_calendar_hide(&calendar->obj), 0);
    EXPECT_EQ(calendar->obj.status, 0u);
    free(calendar);
}

TEST_F(CalendarTest, show_clears_the_reserved_word) {
    ux_calendar *calendar = make();
    calendar->reserved = 9;
    shown(calendar);
    EXPECT_EQ(calendar->reserved, 0);
}

TEST_F(CalendarTest, hide_fills_the_rectangle_with_0_and_does_not_update) {
    set_apart();
    ux_calendar *calendar = make();
    fill_buf(7);
    memset(main_screen.fb, 0x11, 320 * 232 * 4);
    calendar->obj.status = UX_ST_VISIBLE;
    EXPECT_EQ(ux_calendar_hide(&calendar->obj), 0);
    EXPECT_EQ(calendar->obj.status, 0u);
    for (int y = 0; y < 232; y++)
        for (int x = 0; x < 320; x++) {
            const bool inside = x >= 1 && x < 1 + k_width && y >= 2 && y < 2 + k_height;
            EXPECT_EQ(buf_pixel(x, y), inside ? 0u : 7u);
            EXPECT_EQ(fb_pixel(x, y), 0x11111111u);
        }
}

TEST_F(CalendarTest, hide_on_another_page_paints_nothing) {
    ux_calendar *calendar = make();
    fill_buf(7);
    main_screen.current_page = 1;
    EXPECT_EQ(ux_calendar_hide(&calendar->obj), 0);
    EXPECT_EQ(buf_pixel(1, 2), 7u);
}

TEST_F(CalendarTest, repaint_shows_a_visible_calendar_and_hides_a_hidden_one) {
    ux_calendar *calendar = make();
    fill_buf(7);
    EXPECT_EQ(ux_calendar_repaint(&calendar->obj), 0);
    EXPECT_EQ(buf_pixel(1, 2), 0u);
    EXPECT_EQ(files_read(), files{});
    calendar->obj.status = UX_ST_VISIBLE;
    EXPECT_EQ(ux_calendar_repaint(&calendar->obj), 0);
    EXPECT_EQ(files_read().size(), 1u);
}

TEST_F(CalendarTest, show_updates_the_rectangle_alone) {
    set_apart();
    ux_calendar *calendar = make();
    calendar->obj.height = 100;
    fill_buf(7);
    shown(calendar);
    EXPECT_EQ(fb_pixel(1, 2), 7u);
    EXPECT_EQ(fb_pixel(1, 101), 7u);
    EXPECT_EQ(fb_pixel(0, 2), 0u);
    EXPECT_EQ(fb_pixel(1, 1), 0u);
    EXPECT_EQ(fb_pixel(1, 102), 0u);
}

// The trace is that of a decoding for each day; the file is read once.
TEST_F(CalendarTest, picture_is_read_once_and_traced_for_every_day) {
    ux_calendar *calendar = make();
    take_calls();
    EXPECT_EQ(shown(calendar), trace(31));
    EXPECT_EQ(files_read(), files{directory + "/black.png"});
    EXPECT_EQ(shown(calendar), trace(31));
    EXPECT_EQ(files_read(), files{directory + "/black.png"}) << "and anew at the next show";
}

TEST_F(CalendarTest, months_have_their_days_and_february_follows_the_leap_years) {
    ux_calendar *calendar = make();
    const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int month = 1; month <= 12; month++)
        EXPECT_EQ(shown(calendar, 2009, month), trace(days[month - 1])) << month;
    EXPECT_EQ(shown(calendar, 2000, 2), trace(29));
    EXPECT_EQ(shown(calendar, 2024, 2), trace(29));
    EXPECT_EQ(shown(calendar, 1900, 2), trace(28));
    EXPECT_EQ(shown(calendar, 2100, 2), trace(28));
}

TEST_F(CalendarTest, missing_picture_is_reported_for_every_day_and_the_numbers_stay) {
    std::filesystem::remove(directory + "/black.png");
    ux_calendar *calendar = make();
    std::string wanted;
    for (int day = 1; day <= 31; day++)
        wanted += "ADV Play PHOTO " + directory + "/black.png\nRMOpenBitmapFile " + directory +
                  "/black.png FAIL on ux_load_image\n";
    take_calls();
    EXPECT_EQ(shown(calendar), wanted);
    EXPECT_EQ(glyphs_fetched(),
              "1JANUARY200912345678910111213141516171819202122232425262728293031");
}

TEST_F(CalendarTest, broken_picture_is_survived_and_traced_for_every_day) {
    ux_calendar *calendar = make();
    const auto traced = [this](const std::string &printed) {
        int count = 0;
        for (size_t at = 0; (at = printed.find(trace(1), at)) != std::string::npos; at++)
            count++;
        return count;
    };
    std::vector<uint8_t> bytes = folder.read_bytes("black.png");
    for (size_t length : {size_t{0}, size_t{20}, bytes.size() / 2, bytes.size() - 13}) {
        folder.write_bytes("black.png", {bytes.begin(), bytes.begin() + long(length)});
        EXPECT_EQ(traced(shown(calendar)), 31) << length;
    }
    bytes[bytes.size() / 2] ^= 0xFF;
    folder.write_bytes("black.png", bytes);
    EXPECT_EQ(traced(shown(calendar)), 31);
}

// With too little memory for the first cell the second one decodes the picture, as each day would.
TEST_F(CalendarTest, picture_that_found_no_memory_is_tried_again_for_the_next_day) {
    fake_chip::get().record_calls = false;
    ux_calendar *calendar = make();
    hooks::take_allocation_count();
    shown(calendar);
    const long allocations = hooks::take_allocation_count();
    ASSERT_GT(allocations, 0);
    long retried = 0;
    for (long n = 1; n <= allocations; n++) {
        ux_page_clean();
        hooks::fail_allocation(n);
        shown(calendar);
        EXPECT_NE(buf_pixel(178 + 5 * 19, 80), 0u) << "the second of January, " << n;
        retried += buf_pixel(178 + 4 * 19, 80) == 0;
    }
    EXPECT_GT(retried, 0);
}

TEST_F(CalendarTest, months_0_and_13_and_wilder_ones_paint_print_and_update_nothing) {
    set_apart();
    ux_calendar *calendar = make();
    fill_buf(7);
    take_calls();
    for (int month : {0, 13, -1, 255, -32768, 32767}) {
        EXPECT_EQ(shown(calendar, 2009, month), "") << month;
        EXPECT_EQ(take_calls(), calls{}) << month;
        EXPECT_EQ(fb_pixel(1, 2), 0u);
        EXPECT_EQ(buf_pixel(1, 2), 7u);
    }
    EXPECT_TRUE(calendar->obj.status & UX_ST_VISIBLE);
}

TEST_F(CalendarTest, sizes_too_small_for_the_layout_are_survived) {
    ux_calendar *calendar = make();
    for (int width : {INT_MIN, -1, 0, 177, 178, 200, 213, 214, 227})
        for (int height : {INT_MIN, -1, 0, 79, 80, 86, 110, 116, 122}) {
            calendar->obj.width = width;
            calendar->obj.height = height;
            shown(calendar);
            ux_calendar_hide(&calendar->obj);
        }
}

// The division is toward zero, the rounding to an even number downwards. At -31 pixels
// -209 / 7 - 3 = -32, and Saturdays are at 178 - 6 * 29 = 4; at -32, -210 / 7 - 3 = -33 becomes -34
// and puts them at 178 - 6 * 31, where the month's 5 are not traced.
TEST_F(CalendarTest, negative_cell_widths_are_rounded_down_to_even_ones) {
    ux_calendar *calendar = make();
    calendar->obj.width = -31;
    EXPECT_EQ(shown(calendar, 2009, 1), trace(31));
    calendar->obj.width = -32;
    EXPECT_EQ(shown(calendar, 2009, 1), trace(26));
}

TEST_F(CalendarTest, sizes_beyond_the_screen_are_survived_and_cells_outside_print_nothing) {
    ux_calendar *calendar = make();
    std::filesystem::remove(directory + "/black.png");
    calendar->obj.width = calendar->obj.height = INT_MAX;
    // Only the first column starts on the screen, and of it the first row, which in March 2009 is
    // day 1.
    EXPECT_EQ(shown(calendar, 2009, 3).substr(0, trace(1).size()), trace(1));
    calendar->obj.width = 178 + 7 * 60;
    calendar->obj.height = k_height;
    write("black.png", {255, 0, 0, 255});
    // Columns start at 178, 235, 292 and 349: 3 of them on the screen; January has Sundays to
    // Tuesdays 4, 4 and 4 times.
    EXPECT_EQ(shown(calendar, 2009, 1), trace(12));
}
