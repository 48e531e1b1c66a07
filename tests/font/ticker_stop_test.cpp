// SPDX-License-Identifier: MIT
// How the ticker is stopped: which variables, in which order, what it does then, what it prints.
// The one-pass ticker, which is told about, is here as well.

#include "tests/font/ticker_test.h"

namespace {

class TickerStopTest : public TickerTest {
  protected:
    // A box inside a screen of pixel value 7, and a line in the file.
    void SetUp() override {
        TickerTest::SetUp();
        make_screen(8, 5);
        fill_buf(7);
        give('a', {0, 2, 3, {"XXX", "XXX", "XXX"}});
        write_file("a\n");
    }

    int run_box(int mode, size_t stop = 0) { return run_at(1, 1, 6, 3, mode, 1, stop); }

    // Whether a value of a variable stops the ticker at its first frame; the second always does.
    bool stops(const char *name, const char *value) {
        const std::string before = variable(name);
        setenv("STATUS", "playing", 1);
        setenv(name, value, 1);
        frame_count = 0;
        EXPECT_EQ(run_box(k_left, 2), 0);
        setenv(name, before.c_str(), 1);
        return frame_count == 1;
    }

    void expect_untouched_screen() const {
        for (int y = 0; y < 5; y++)
            for (int x = 0; x < 8; x++)
                EXPECT_EQ(fb_pixel(x, y), 7u) << x << "," << y;
    }
};

} // namespace

TEST_F(TickerStopTest, menu_before_the_start_shows_one_frame_restores_and_tells) {
    setenv("STATUS", "gotoMenu", 1);
    testing::internal::CaptureStdout();
    EXPECT_EQ(run_box(k_left), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "start clear screen\n");
    EXPECT_EQ(frame_count, 1u);
    EXPECT_EQ(hooks::get().usleeps.size(), 0u);
    EXPECT_EQ(variable("TICKER_PLAYING"), "NO");
    expect_untouched_screen();
}

TEST_F(TickerStopTest, box_shows_again_what_it_showed_in_both_modes) {
    for (int mode : {k_up, k_left}) {
        setenv("STATUS", "", 1);
        frame_count = 0;
        bool seen = false;
        events[2] = [&] { seen = ink().find('X') != std::string::npos; };
        EXPECT_EQ(run_box(mode, 3), 0);
        EXPECT_TRUE(seen);
        expect_untouched_screen();
    }
}

TEST_F(TickerStopTest, screen_is_saved_once_before_the_first_frame) {
    write_file("a\na\n");
    // What others paint into the box later is lost; what they painted before the first frame stays.
    unlink(path.c_str());
    on_nap = [this] {
        set_fb_pixel(2, 2, 8);
        write_file("a\na\n");
    };
    events[4] = [this] { set_fb_pixel(3, 3, 9); }; // the second line's first frame
    EXPECT_EQ(run_box(k_left, 5), 0);
    EXPECT_EQ(fb_pixel(2, 2), 8u);
    EXPECT_EQ(fb_pixel(3, 3), 7u);
}

TEST_F(TickerStopTest, only_gotoMenu_in_STATUS_stops) {
    for (const char *value : {"gotomenu", "gotoMenu ", " gotoMenu", "gotoMen", "", "YES"})
        EXPECT_FALSE(stops("STATUS", value)) << value;
    EXPECT_TRUE(stops("STATUS", "gotoMenu"));
}

TEST_F(TickerStopTest, only_YES_in_ShowMSG_stops) {
    for (const char *value : {"yes", "YES ", " YES", "YE", "Yes", "YESS", "", "gotoMenu"})
        EXPECT_FALSE(stops("ShowMSG", value)) << value;
    EXPECT_TRUE(stops("ShowMSG", "YES"));
}

TEST_F(TickerStopTest, only_STOP_TICKER_in_TICKER_STATE_stops) {
    for (const char *value : {"stop_ticker", "STOP_TICKER ", "STOP", "", "YES"})
        EXPECT_FALSE(stops("TICKER_STATE", value)) << value;
    EXPECT_TRUE(stops("TICKER_STATE", "STOP_TICKER"));
}

TEST_F(TickerStopTest, unset_variables_stop_nothing) {
    for (const char *name : {"STATUS", "ShowMSG", "TICKER_STATE", "TICKER_PLAYING"})
        unsetenv(name);
    EXPECT_EQ(run_box(k_left, 6), 0);
    EXPECT_EQ(frame_count, 6u);
    EXPECT_EQ(variable("TICKER_PLAYING"), "NO");
}

TEST_F(TickerStopTest, variables_are_read_after_every_frame_and_TICKER_STATE_last) {
    std::vector<std::string> names;
    const auto note = hooks::get().on_getenv;
    hooks::get().on_getenv = [&](const char *name) {
        note(name);
        names.push_back(name);
    };
    run_box(k_left, 2);
    EXPECT_EQ(names, (std::vector<std::string>{"STATUS", "ShowMSG", "TICKER_STATE", //
                                               "STATUS", "ShowMSG"}));
    names.clear();
    frame_count = 0;
    setenv("STATUS", "", 1);
    setenv("ShowMSG", "YES", 1);
    run_box(k_left, 9);
    EXPECT_EQ(names, (std::vector<std::string>{"STATUS", "ShowMSG"}));
}

TEST_F(TickerStopTest, end_is_told_with_overwrite_after_the_box_is_restored) {
    std::vector<std::string> told;
    hooks::get().on_setenv = [&](const char *name, const char *value, int overwrite) {
        if (strcmp(name, "TICKER_PLAYING") != 0)
            return;
        told.push_back(value + std::to_string(overwrite));
        expect_untouched_screen();
    };
    run_box(k_left, 2);
    run_box(k_up, 2);
    EXPECT_EQ(told, (std::vector<std::string>{"NO1", "NO1"}));
}

TEST_F(TickerStopTest, message_comes_before_the_end_is_told) {
    testing::internal::CaptureStdout();
    hooks::get().on_setenv = [](const char *name, const char *, int) {
        if (strcmp(name, "TICKER_PLAYING") == 0)
            puts("(told)");
    };
    run_box(k_up, 2);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "start clear screen\n(told)\n");
}

TEST_F(TickerStopTest, no_variable_is_read_between_lines_or_without_file) {
    unlink(path.c_str());
    on_nap = [this] {
        EXPECT_EQ(frame_count, 0u);
        if (naps.size() == 30)
            write_file("a\n");
    };
    setenv("STATUS", "gotoMenu", 1);
    EXPECT_EQ(run_box(k_left), 0);
    EXPECT_EQ(naps.size(), 30u);
    EXPECT_EQ(frame_count, 1u);
}

TEST_F(TickerStopTest, stop_raised_in_the_pause_between_lines_is_seen_at_the_next_frame) {
    write_file("a\nb\n");
    hooks::get().on_usleep = [this] {
        if (frame_count == 3) // the end of the first line, travel 6 by steps of 6
            setenv("ShowMSG", "YES", 1);
    };
    stop_after = 0;
    EXPECT_EQ(uxFontDrawing(path.c_str(), k_ink, k_key, 1, 1, 6, 3, 3, 3, 6, k_up), 0);
    EXPECT_EQ(frame_count, 4u);
}

// One pass.

TEST_F(TickerStopTest, one_pass_shows_the_frames_of_a_line_and_tells_each) {
    make_box_screen(6);
    testing::internal::CaptureStdout();
    EXPECT_EQ(run_once("a", 1), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "str_len = 2\n"
                                                      "uxWidget STATUS = playing\n"
                                                      "uxWidget ShowMSG = NO\n"
                                                      "uxWidget STATUS = playing\n"
                                                      "uxWidget ShowMSG = NO\n"
                                                      "uxWidget STATUS = playing\n"
                                                      "uxWidget ShowMSG = NO\n"
                                                      "TICKER FINISH\n");
    EXPECT_EQ(hooks::get().usleeps, std::vector<unsigned>(3, k_left_us));
    EXPECT_EQ(variable("TICKER_PLAYING"), "YES");
}

TEST_F(TickerStopTest, one_pass_scrolls_to_the_left) {
    make_box_screen(6);
    events[2] = [this] { EXPECT_EQ(ink(), rows({"..X...", "..XX..", "..X..."})); };
    run_once("a", 1);
    EXPECT_EQ(frame_count, 3u);
}

TEST_F(TickerStopTest, one_pass_counts_words_not_characters_or_bytes) {
    for (const auto &[text, told] : std::vector<std::pair<const char *, std::string>>{
             {"", "str_len = 0\n"},
             {nullptr, "str_len = 0\n"},
             {"\xC3\xA9\xE2\x82\xAC", "str_len = 4\n"},
             {"\xF0\x9F\x98\x80", "str_len = 8\n"}}) {
        testing::internal::CaptureStdout();
        run_once(text, 100);
        EXPECT_EQ(testing::internal::GetCapturedStdout().find(told), 0u) << told;
    }
}

TEST_F(TickerStopTest, one_pass_tells_unset_variables_as_null) {
    unsetenv("STATUS");
    unsetenv("ShowMSG");
    testing::internal::CaptureStdout();
    run_once("a", 100);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "str_len = 2\n"
                                                      "uxWidget STATUS = (null)\n"
                                                      "uxWidget ShowMSG = (null)\n"
                                                      "TICKER FINISH\n");
}

TEST_F(TickerStopTest, one_pass_stops_on_the_way_to_the_menu) {
    testing::internal::CaptureStdout();
    setenv("STATUS", "gotoMenu", 1);
    EXPECT_EQ(run_once("aaaa", 1), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "str_len = 8\n"
                                                      "uxWidget STATUS = gotoMenu\n"
                                                      "uxWidget ShowMSG = NO\n"
                                                      "start clear screen\n");
    EXPECT_EQ(variable("TICKER_PLAYING"), "NO");
    EXPECT_EQ(hooks::get().usleeps.size(), 0u);
    expect_untouched_screen();
}

TEST_F(TickerStopTest, one_pass_only_prints_the_other_flags) {
    setenv("ShowMSG", "YES", 1);
    setenv("TICKER_STATE", "STOP_TICKER", 1);
    testing::internal::CaptureStdout();
    run_once("", 1); // an empty band of 16: positions 0, 4 and 8
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "str_len = 0\n"
                                                      "uxWidget STATUS = playing\n"
                                                      "uxWidget ShowMSG = YES\n"
                                                      "uxWidget STATUS = playing\n"
                                                      "uxWidget ShowMSG = YES\n"
                                                      "uxWidget STATUS = playing\n"
                                                      "uxWidget ShowMSG = YES\n"
                                                      "TICKER FINISH\n");
    EXPECT_EQ(variable("TICKER_PLAYING"), "YES");
}

TEST_F(TickerStopTest, one_pass_of_step_0_goes_on_until_it_is_stopped) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(run_once("a", 0, 99), 0);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(hooks::get().usleeps, std::vector<unsigned>(98, k_left_us));
}

TEST_F(TickerStopTest, one_pass_ignores_what_follows_the_step) {
    EXPECT_EQ(DrawFontToBitmapMoveLeftFileTEST("a", k_ink, k_key, 0, 0, 6, 3, 100, 1, 2, "x"), 0);
    EXPECT_EQ(hooks::get().usleeps.size(), 1u);
}
