// SPDX-License-Identifier: MIT
// The clock: its record, its geometry's limits, what it paints, memory that fails.

#include "tests/widgets/clock_test.h"

#include <climits>

namespace {

// Whether a clock of that size and geometry is made; nothing may be printed either way.
bool is_made(ux_container *parent, const std::string &face, int w, int h, int r, int cx, int cy) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    ux_clock *clock = ux_clock_new(parent, 0, 0, w, h, r, cx, cy, face.c_str(), nullptr, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    return clock != nullptr;
}

constexpr char k_memory_report[] = "Error: [0] Not enough memory space for clock!\n\n";
constexpr char k_init_report[] = "Error: [0] init error for clock!\n\n";

} // namespace

TEST_F(ClockTest, constructor_fills_the_record_and_neither_paints_nor_starts) {
    const ux_clock *clock = make();
    ASSERT_NE(clock, nullptr);
    EXPECT_EQ(clock->obj.type, 12u);
    EXPECT_EQ(clock->obj.flags, 0u);
    EXPECT_EQ(clock->obj.status, 0u);
    EXPECT_EQ(clock->obj.x, 1);
    EXPECT_EQ(clock->obj.y, 1);
    EXPECT_EQ(clock->obj.width, 7);
    EXPECT_EQ(clock->obj.height, 7);
    EXPECT_EQ(clock->obj.border, 0);
    EXPECT_EQ(clock->obj.alpha, 255u);
    EXPECT_EQ(clock->obj.bg_backup, nullptr);
    EXPECT_EQ(clock->obj.parent, &root()->obj);
    EXPECT_EQ(clock->obj.page_id, 0);
    EXPECT_EQ(clock->radius, 3);
    EXPECT_EQ(clock->center_x, 3);
    EXPECT_EQ(clock->center_y, 3);
    EXPECT_EQ(time_of(clock), "0:0:0");
    EXPECT_EQ(clock->sync_period, 15);
    EXPECT_EQ(clock->state->sync_handler, nullptr);
    EXPECT_EQ(clock->state->tick_handler, nullptr);
    EXPECT_EQ(clock->state->sync_countdown, 0);
    EXPECT_EQ(clock->state->timeout_id, -1);
    EXPECT_EQ(pending(), 0);
    EXPECT_EQ(memory_of(main_screen.buf), std::vector<uint8_t>(16 * 8 * 4));
}

TEST_F(ClockTest, slots_are_the_clocks_own_and_those_of_focus_and_selection_are_null) {
    const ux_obj &obj = make()->obj;
    EXPECT_EQ(obj.hide, ux_clock_hide);
    EXPECT_EQ(obj.free, ux_clock_free);
    EXPECT_EQ(obj.get_status, ux_obj_get_status);
    EXPECT_NE(obj.show, nullptr);
    EXPECT_NE(obj.repaint, nullptr);
    for (ux_slot slot : {obj.set_focus, obj.unset_focus, obj.set_select, obj.unset_select})
        EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(obj.handler, nullptr);
    EXPECT_EQ(obj.handler_data, nullptr);
}

TEST_F(ClockTest, clock_without_parent_belongs_to_no_page) {
    ux_clock *clock = ux_clock_new(nullptr, 0, 0, 7, 7, 3, 3, 3, blue.c_str(), nullptr, nullptr);
    EXPECT_EQ(clock->obj.page_id, -1);
    EXPECT_EQ(clock->obj.next, nullptr);
    EXPECT_EQ(clock->obj.parent, nullptr);
    EXPECT_EQ(ux_clock_free(&clock->obj), 0);
}

TEST_F(ClockTest, geometry_is_accepted_up_to_the_edges_and_refused_beyond_without_a_word) {
    EXPECT_TRUE(is_made(root(), blue, 120, 120, 50, 60, 60));
    EXPECT_FALSE(is_made(root(), blue, 100, 120, 50, 60, 60)) << "60 + 50 > 100";
    EXPECT_TRUE(is_made(root(), blue, 110, 110, 50, 60, 60));
    EXPECT_FALSE(is_made(root(), blue, 109, 110, 50, 60, 60));
    EXPECT_FALSE(is_made(root(), blue, 110, 109, 50, 60, 60));
    EXPECT_TRUE(is_made(root(), blue, 110, 110, 50, 50, 50));
    EXPECT_FALSE(is_made(root(), blue, 110, 110, 50, 49, 50));
    EXPECT_FALSE(is_made(root(), blue, 110, 110, 50, 50, 49));
    EXPECT_TRUE(is_made(root(), blue, 0, 0, 0, 0, 0));
    EXPECT_EQ(root()->count, 4u) << "refused clocks are linked nowhere";
}

TEST_F(ClockTest, geometry_beyond_all_integers_is_refused) {
    EXPECT_FALSE(is_made(root(), blue, 100, 100, INT_MAX, INT_MAX, INT_MAX));
    EXPECT_FALSE(is_made(root(), blue, 100, 100, INT_MAX, 0, 0));
    EXPECT_FALSE(is_made(root(), blue, INT_MIN, INT_MIN, 0, 0, 0));
}

// Hands of less than no length fit anywhere. The sanitizer sees a size that no integer holds.
TEST_F(ClockTest, radius_below_0_is_accepted_down_to_the_smallest_integer) {
    for (int radius : {-1, -1073741825, INT_MIN}) {
        ux_clock *clock = ux_clock_new(root(), 1, 1, 7, 7, radius, 3, 3, blue.c_str(), red.c_str(),
                                       green.c_str());
        ASSERT_NE(clock, nullptr) << radius;
        EXPECT_EQ(clock->radius, radius);
        EXPECT_EQ(files_read(), (files{blue, red, green}));
        EXPECT_EQ(ux_clock_show(&clock->obj, 0, 0, 0), 0);
        ux_clock_hide(&clock->obj);
    }
}

TEST_F(ClockTest, three_pictures_are_read_the_first_in_the_clocks_size_the_others_in_two_radii) {
    ux_clock *clock =
        ux_clock_new(root(), 0, 0, 9, 8, 3, 3, 3, blue.c_str(), red.c_str(), green.c_str());
    EXPECT_EQ(files_read(), (files{blue, red, green}));
    const auto pixel = [](const void *block, int index) {
        uint32_t value = 0;
        memcpy(&value, static_cast<const uint8_t *>(block) + 4 * index, sizeof value);
        return value;
    };
    EXPECT_EQ(pixel(clock->state->face, 9 * 8 - 1), 0xFF0000FFu);
    EXPECT_EQ(pixel(clock->state->second_image, 6 * 6 - 1), 0xFFFF0000u);
    EXPECT_EQ(pixel(clock->state->third_image, 6 * 6 - 1), 0xFF00FF00u);
}

TEST_F(ClockTest, missing_face_is_reported_twice_and_makes_no_clock) {
    const std::string paths[] = {folder.path("missing.png"), folder.path("broken.png")};
    folder.write_bytes("broken.png", {1, 2, 3});
    for (const std::string &path : paths) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(ux_clock_new(root(), 0, 0, 7, 7, 3, 3, 3, path.c_str(), red.c_str(), red.c_str()),
                  nullptr);
        const std::string reports = testing::internal::GetCapturedStderr();
        const std::string wanted = std::string(k_memory_report) + k_init_report;
        ASSERT_GE(reports.size(), wanted.size());
        EXPECT_EQ(reports.substr(reports.size() - wanted.size()), wanted);
    }
    EXPECT_EQ(root()->count, 0u);
    for (const std::string &path : files_read())
        EXPECT_NE(path, red) << "the others are not read any more";
}

TEST_F(ClockTest, null_face_is_a_missing_one) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(ux_clock_new(root(), 0, 0, 7, 7, 3, 3, 3, nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), std::string(k_memory_report) + k_init_report);
}

TEST_F(ClockTest, second_and_third_picture_may_be_missing) {
    const std::string missing = folder.path("missing.png");
    ux_clock *clock =
        ux_clock_new(root(), 0, 0, 7, 7, 3, 3, 3, blue.c_str(), missing.c_str(), nullptr);
    ASSERT_NE(clock, nullptr);
    EXPECT_EQ(clock->state->second_image, nullptr);
    EXPECT_EQ(clock->state->third_image, nullptr);
    EXPECT_EQ(ux_clock_show(&clock->obj, 0, 0, 0), 0);
}

TEST_F(ClockTest, constructor_reports_that_there_is_no_memory_for_the_record) {
    hooks::fail_allocation(1);
    testing::internal::CaptureStderr();
    EXPECT_EQ(make(), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), k_memory_report);
    EXPECT_EQ(root()->count, 0u);
}

TEST_F(ClockTest, constructor_reports_that_there_is_no_memory_for_the_state) {
    hooks::fail_allocation(2);
    testing::internal::CaptureStderr();
    EXPECT_EQ(make(), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), std::string(k_memory_report) + k_init_report);
    EXPECT_EQ(root()->count, 0u);
}

// From the face on libpng allocates too. Whatever fails, there is a whole clock or none.
TEST_F(ClockTest, each_allocation_that_fails_leaves_a_whole_clock_or_none) {
    fake_chip::get().record_calls = false;
    hooks::take_allocation_count();
    ASSERT_NE(make(), nullptr);
    const long allocations = hooks::take_allocation_count();
    uint32_t made = 1;
    for (long n = 1; n <= allocations; n++) {
        hooks::fail_allocation(n);
        testing::internal::CaptureStderr();
        ux_clock *clock = make();
        const std::string reports = testing::internal::GetCapturedStderr();
        if (clock) {
            made++;
            EXPECT_NE(clock->state->face, nullptr);
            EXPECT_EQ(ux_clock_show(&clock->obj, 0, 0, 0), 0);
        } else {
            EXPECT_NE(reports.find(k_memory_report), std::string::npos) << n;
        }
        EXPECT_EQ(root()->count, made) << n;
    }
    EXPECT_GT(made, 1u) << "the second and third picture may fail";
}

TEST_F(ClockTest, setters_store_and_do_nothing_else) {
    ux_clock *clock = make();
    expect_only(
        clock, [&] { return ux_clock_settime(clock, 23, 59, 58); },
        [](ux_clock &expected) {
            expected.hours = 23;
            expected.minutes = 59;
            expected.seconds = 58;
        });
    expect_only(
        clock, [&] { return ux_clock_set_sync_cb(clock, clock_tests::note_sync); },
        [](ux_clock &) {});
    expect_only(
        clock, [&] { return ux_clock_set_tick_cb(clock, clock_tests::note_tick); },
        [](ux_clock &) {});
    EXPECT_EQ(clock->state->sync_handler, clock_tests::note_sync);
    EXPECT_EQ(clock->state->tick_handler, clock_tests::note_tick);
    EXPECT_EQ(take_log(), log{});
}

// 3:00:00 with r = 3: 0.6 r is 1 pixel to the right, 0.8 r 2 pixels up; the second hand is drawn
// last and goes 3 up and, 0.1 r being less than a pixel, not behind the centre.
TEST_F(ClockTest, paint_lays_face_and_hands_over_the_rectangle) {
    ux_clock *clock = make();
    ux_clock_settime(clock, 3, 0, 0);
    EXPECT_EQ(ux_clock_show(&clock->obj, 0, 0, 0), 0);
    const letters names = {
        {k_blue_seen, 'b'}, {0xFFFF0000, 'H'}, {0xFF00FF00, 'M'}, {0xFF0000FF, 'S'}};
    EXPECT_EQ(buf_letters(names), "................\n"
                                  ".bbbSbbb........\n"
                                  ".bbbSbbb........\n"
                                  ".bbbSbbb........\n"
                                  ".bbbSHbb........\n"
                                  ".bbbbbbb........\n"
                                  ".bbbbbbb........\n"
                                  ".bbbbbbb........\n");
}

TEST_F(ClockTest, previous_picture_is_brought_to_the_screen_before_the_new_one_is_painted) {
    set_apart();
    fill_buf(7);
    ux_clock *clock = make();
    ux_clock_show(&clock->obj, 0, 0, 0);
    EXPECT_EQ(fb_pixel(1, 1), 7u) << "what was there before";
    EXPECT_EQ(fb_pixel(0, 0), 0u);
    EXPECT_EQ(buf_pixel(1, 1), k_blue_seen);
    EXPECT_EQ(ux_clock_paint(&clock->obj), 0);
    EXPECT_EQ(fb_pixel(1, 1), k_blue_seen);
    EXPECT_EQ(fb_pixel(8, 1), 0u);
}

TEST_F(ClockTest, hidden_clock_and_clock_of_another_page_paint_and_update_nothing) {
    set_apart();
    fill_buf(7);
    ux_clock *clock = make();
    EXPECT_EQ(ux_clock_paint(&clock->obj), 0);
    EXPECT_EQ(fb_pixel(1, 1), 0u);
    EXPECT_EQ(buf_pixel(1, 1), 7u);
    main_screen.current_page = 1;
    EXPECT_EQ(ux_clock_show(&clock->obj, 0, 0, 0), 0);
    EXPECT_EQ(fb_pixel(1, 1), 0u);
    EXPECT_EQ(buf_pixel(1, 1), 7u);
    EXPECT_EQ(pending(), 1) << "it runs all the same";
}

TEST_F(ClockTest, second_and_third_picture_are_not_painted) {
    ux_clock *clock = make();
    ux_clock_show(&clock->obj, 0, 0, 0);
    for (int y = 0; y < 8; y++)
        for (int x = 0; x < 16; x++) {
            EXPECT_NE(buf_pixel(x, y), k_red_seen);
            EXPECT_NE(buf_pixel(x, y), k_green_seen);
        }
}

// The face keeps the size it was made with; the sanitizer sees a read behind it.
TEST_F(ClockTest, face_of_a_grown_clock_is_not_read_beyond_its_end) {
    ux_clock *clock = make();
    make_screen(600, 500);
    ux_obj_set_size(&clock->obj, 0, 0, 600, 500);
    EXPECT_EQ(ux_clock_show(&clock->obj, 0, 0, 0), 0);
}

TEST_F(ClockTest, clock_beyond_the_screen_and_absurd_fields_are_survived) {
    ux_clock *clock = make();
    for (int value : {INT_MIN, -100, 100, INT_MAX}) {
        clock->obj.x = clock->obj.y = clock->center_x = clock->radius = value;
        clock->hours = clock->minutes = clock->seconds = value;
        clock->sync_period = clock->state->sync_countdown = value;
        EXPECT_EQ(ux_clock_show(&clock->obj, 0, 0, 0), 0);
        pass(2);
    }
}

TEST_F(ClockTest, clock_paints_on_a_16_bit_screen) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    ux_clock *clock = make();
    EXPECT_EQ(ux_clock_show(&clock->obj, 0, 0, 0), 0);
    EXPECT_EQ(buf_pixel(4, 1), 0x00FFu) << "the second hand, low half of its colour";
}
