// SPDX-License-Identifier: MIT
// The ticker where things are not as they should be: boxes beside the screen, sizes out of reason,
// other pixel formats, no memory. It stays stoppable and in its place.

#include "tests/font/ticker_test.h"

#include <climits>
#include <sys/resource.h>

namespace {

// The address sanitizer keeps a quarter of a gigabyte of freed memory to itself.
#ifdef __SANITIZE_ADDRESS__
constexpr long k_allowed_kilobytes = 512 << 10;
#else
constexpr long k_allowed_kilobytes = 64 << 10;
#endif

class TickerBoundsTest : public TickerTest {
  protected:
    void SetUp() override {
        TickerTest::SetUp();
        make_screen(8, 4);
        give('a', {0, 2, 3, {"XX", "XX", "XX"}});
        give('\r', {0, 2, 1, {"X"}});
        write_file("aaaa\ra\n");
    }

    static long peak_kilobytes() {
        rusage usage = {};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    }
};

} // namespace

TEST_F(TickerBoundsTest, box_over_the_right_edge_shows_the_rest_in_the_next_row) {
    write_file("a");
    run_at(5, 1, 6, 3, k_left, 1, 2); // two blank columns, then two of ink: 7 and 0
    EXPECT_EQ(frames[1],
              rows({"........", "........", "X......X", "X......X"}).replace(9, 8, ".......X"));
}

TEST_F(TickerBoundsTest, boxes_beside_the_screen_are_safe_and_can_be_stopped) {
    const int ends[] = {INT_MIN, -70000, -5, 5, 70000, INT_MAX};
    keep_pictures = false;
    for (int mode : {k_up, k_left})
        for (int x : ends)
            for (int y : ends) {
                frame_count = 0;
                setenv("STATUS", "", 1);
                EXPECT_EQ(run_at(x, y, 6, 3, mode, 1, 9), 0);
                EXPECT_EQ(frame_count, 9u);
            }
    EXPECT_EQ(ink().find('X'), std::string::npos);
}

TEST_F(TickerBoundsTest, sizes_out_of_reason_take_no_memory_to_speak_of) {
    keep_pictures = false;
    const long before = peak_kilobytes();
    for (int mode : {k_up, k_left})
        for (int w : {INT_MIN, -1, 0, 1, 70000, INT_MAX})
            for (int h : {INT_MIN, -1, 0, 1, 70000, INT_MAX})
                for (int step : {1, INT_MAX}) {
                    frame_count = 0;
                    setenv("STATUS", "", 1);
                    EXPECT_EQ(run_at(1, 1, w, h, mode, step, 9), 0);
                    EXPECT_EQ(frame_count, 9u);
                }
    EXPECT_LT(peak_kilobytes() - before, k_allowed_kilobytes);
    EXPECT_EQ(ink().find('X'), std::string::npos);
}

TEST_F(TickerBoundsTest, rows_of_2048_characters_in_a_box_of_the_largest_height_are_safe) {
    write_file(std::string(2048, 'a'));
    keep_pictures = false;
    fake_chip::get().record_calls = false;
    EXPECT_EQ(run_at(0, -1000, 2, INT_MAX, k_up, INT_MAX, 300), 0);
    EXPECT_EQ(frame_count, 300u);
}

TEST_F(TickerBoundsTest, glyphs_of_the_largest_values_are_safe) {
    keep_pictures = false;
    for (int value : {INT16_MIN, -3, INT16_MAX}) {
        give('a', {value, value, value, {"XXXX", "XXXX"}});
        for (int mode : {k_up, k_left})
            for (int size : {1, 5, 70000, INT_MAX}) {
                frame_count = 0;
                setenv("STATUS", "", 1);
                run_at(0, 0, size, size, mode, 100, 50);
                EXPECT_EQ(frame_count, 50u);
            }
    }
}

TEST_F(TickerBoundsTest, column_of_one_pixel_shows_ink_beyond_it_in_the_rows_below) {
    make_screen(1, 3);
    give('a', {1, 2, 3, {"X.X"}}); // wraps to the second row of the band
    write_file("a");
    run_at(0, 0, 1, 3, k_up, 3, 4); // positions 0, 3, 6, 9
    EXPECT_EQ(frames, (pictures{rows({".", ".", "."}), rows({".", ".", "."}), rows({".", "X", "."}),
                                rows({"X", ".", "."})}));
}

TEST_F(TickerBoundsTest, screen_without_memory_runs_and_stops) {
    uint8_t *fb = std::exchange(main_screen.fb, nullptr);
    keep_pictures = false;
    for (int mode : {k_up, k_left}) {
        frame_count = 0;
        setenv("STATUS", "", 1);
        EXPECT_EQ(run_at(0, 0, 8, 4, mode, 1, 5), 0);
        EXPECT_EQ(frame_count, 5u);
    }
    main_screen.fb = fb;
}

TEST_F(TickerBoundsTest, screen_of_two_bytes_reports_each_set_bit_once_a_line_and_shows_none) {
    make_screen(8, 4, UX_COLOR_MODE_RGB565);
    fill_buf(0x1234);
    write_file("a\n");
    keep_pictures = false;
    for (int mode : {k_up, k_left}) {
        frame_count = 0;
        setenv("STATUS", "", 1);
        events[2] = [this] { EXPECT_EQ(fb_pixel(3, 2), 0x1234u); };
        testing::internal::CaptureStderr();
        EXPECT_EQ(run_at(0, 0, 8, 3, mode, 1, 3), 0);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "Unknown bpp : 2\nUnknown bpp : 2\nUnknown bpp : 2\n"
                  "Unknown bpp : 2\nUnknown bpp : 2\nUnknown bpp : 2\n");
    }
    for (int y = 0; y < 4; y++)
        for (int x = 0; x < 8; x++)
            EXPECT_EQ(fb_pixel(x, y), 0x1234u);
}

TEST_F(TickerBoundsTest, screen_of_one_byte_reports_and_restores_its_box_only) {
    main_screen.bytes_per_pixel = 1; // 32 bytes of the screen's memory
    fill_buf(9);
    write_file("a\n");
    keep_pictures = false;
    events[1] = [this] { set_fb_pixel(2, 1, 77); }; // inside the box
    events[2] = [this] { EXPECT_EQ(fb_pixel(2, 1), 9u); };
    testing::internal::CaptureStderr();
    EXPECT_EQ(run_at(1, 1, 3, 2, k_left, 1, 2), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Unknown bpp : 1\nUnknown bpp : 1\nUnknown bpp : 1\nUnknown bpp : 1\n");
    for (int y = 0; y < 4; y++)
        for (int x = 0; x < 8; x++)
            EXPECT_EQ(fb_pixel(x, y), 9u);
    main_screen.bytes_per_pixel = 4;
}

TEST_F(TickerBoundsTest, every_allocation_may_fail) {
    keep_pictures = false;
    fake_chip::get().record_calls = false;
    for (int mode : {k_up, k_left}) {
        int failures = 0;
        for (long n = 1;; n++) {
            frame_count = 0;
            setenv("STATUS", "", 1);
            setenv("TICKER_PLAYING", "YES", 1);
            hooks::fail_allocation(n);
            const long before = hooks::blocks_in_use();
            const int result = run_at(0, 0, 8, 3, mode, 1, 3);
            EXPECT_EQ(hooks::blocks_in_use(), before) << n;
            EXPECT_EQ(variable("TICKER_PLAYING"), "NO");
            hooks::fail_allocation(0);
            if (result == 0)
                break;
            failures++;
            EXPECT_EQ(result, -2);
            EXPECT_EQ(frame_count, 0u);
        }
        EXPECT_EQ(failures, 3); // line, saved screen, band
        EXPECT_EQ(frame_count, 3u);
    }
}

TEST_F(TickerBoundsTest, every_allocation_of_one_pass_may_fail) {
    fake_chip::get().record_calls = false;
    int failures = 0;
    for (long n = 1;; n++) {
        testing::internal::CaptureStdout();
        hooks::fail_allocation(n);
        const long before = hooks::blocks_in_use();
        const int result = run_once("a", 100);
        EXPECT_EQ(hooks::blocks_in_use(), before) << n;
        hooks::fail_allocation(0);
        const std::string told = testing::internal::GetCapturedStdout();
        if (result == 0)
            break;
        failures++;
        EXPECT_EQ(result, -2);
        EXPECT_EQ(told, "");
    }
    EXPECT_EQ(failures, 3);
}

TEST_F(TickerBoundsTest, nothing_is_allocated_from_frame_to_frame_or_line_to_line) {
    keep_pictures = false;
    fake_chip::get().record_calls = false;
    for (int mode : {k_up, k_left}) {
        frame_count = 0;
        setenv("STATUS", "", 1);
        events[1] = [] { hooks::take_allocation_count(); };
        events[500] = [] { EXPECT_EQ(hooks::take_allocation_count(), 0); };
        run_at(0, 0, 8, 3, mode, 1, 500);
        EXPECT_EQ(frame_count, 500u);
    }
}
