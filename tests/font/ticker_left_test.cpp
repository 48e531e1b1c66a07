// SPDX-License-Identifier: MIT
// Scrolling to the left: which frames there are, what they show, how long they stay.

#include "tests/font/ticker_test.h"

using TickerLeftTest = TickerTest;

// The band is 6 + 3 + 6 wide: positions 0, 4 and 8, but not 12, since 12 + 6 > 15.
TEST_F(TickerLeftTest, line_comes_in_from_the_right_and_leaves_at_the_left) {
    make_box_screen(6);
    give('a', {0, 2, 3, {"X..", "XX.", "XXX"}});
    write_file("a\n");
    EXPECT_EQ(run(k_left, 1, 4), 0);
    EXPECT_EQ(frames, (pictures{rows({"......", "......", "......"}), //
                                rows({"..X...", "..XX..", "..XXX."}), //
                                rows({"......", "......", "X....."}), //
                                rows({"......", "......", "......"})}));
}

TEST_F(TickerLeftTest, step_moves_four_times_as_many_columns) {
    make_box_screen(9);
    write_file("a"); // a band of 21, positions 0 and 8; 16 + 9 is beyond
    EXPECT_EQ(run(k_left, 2, 3), 0);
    EXPECT_EQ(frames, (pictures{rows({".........", ".........", "........."}),
                                rows({".X.......", ".XX......", ".X......."}),
                                rows({".........", ".........", "........."})}));
}

// Advance 8 and box 4: the band is 16 wide, and at 12 the window ends where the band does.
TEST_F(TickerLeftTest, last_frame_is_the_last_whose_window_lies_in_the_band) {
    make_screen(4, 3);
    give('a', {7, 2, 8, {"X"}});
    write_file("a");
    run(k_left, 1, 5);
    EXPECT_EQ(frames, (pictures{rows({"....", "....", "...."}), // 0
                                rows({"....", "....", "...."}), // 4
                                rows({"...X", "....", "...."}), // 8
                                rows({"....", "....", "...."}), // 12
                                rows({"....", "....", "...."})}));
    frames.clear();
    frame_count = 0;
    give('a', {6, 2, 7, {"X"}}); // 15 wide: the window at 12 does not
    setenv("STATUS", "", 1);
    run(k_left, 1, 4);
    EXPECT_EQ(frames, (pictures{rows({"....", "....", "...."}),    // 0
                                rows({"....", "....", "...."}),    // 4
                                rows({"..X.", "....", "...."}),    // 8
                                rows({"....", "....", "...."})})); // 0 again
}

TEST_F(TickerLeftTest, frames_are_50_ms_apart_and_lines_follow_at_once) {
    make_box_screen(6);
    write_file("a\nbb\n"); // 3 frames for the first line; 16 wide, so 3 for the second
    run(k_left, 1, 7);
    EXPECT_EQ(hooks::get().usleeps, std::vector<unsigned>(6, k_left_us));
    EXPECT_EQ(naps.size(), 0u);
}

TEST_F(TickerLeftTest, step_of_0_never_moves) {
    make_screen(4, 3);
    give('a', {-2, 2, 3, {"X"}}); // ink left of the cell shows at position 0
    write_file("a\n");
    run(k_left, 0, 20);
    EXPECT_EQ(frames, pictures(20, rows({"..X.", "....", "...."})));
    EXPECT_EQ(hooks::get().usleeps, std::vector<unsigned>(19, k_left_us));
}

TEST_F(TickerLeftTest, negative_step_never_moves) {
    make_screen(4, 3);
    give('a', {-2, 2, 3, {"X"}});
    write_file("a\n");
    run(k_left, -1, 3);
    EXPECT_EQ(frames, pictures(3, rows({"..X.", "....", "...."})));
    events[5] = [] { setenv("TICKER_STATE", "STOP_TICKER", 1); };
    setenv("STATUS", "", 1);
    run(k_left, INT32_MIN, 0);
    EXPECT_EQ(frame_count, 5u);
}

TEST_F(TickerLeftTest, largest_step_shows_one_frame_a_line) {
    make_box_screen(6);
    write_file("a\nb\n");
    run(k_left, INT32_MAX, 4);
    EXPECT_EQ(frame_count, 4u);
    EXPECT_EQ(hooks::get().usleeps, std::vector<unsigned>(3, k_left_us));
}

// The text is 18 wide, the band 26: positions 0 to 20 show four columns of the text each.
TEST_F(TickerLeftTest, nothing_wraps) {
    make_box_screen(4);
    write_file("aaaaaa");
    run(k_left, 1, 7);
    EXPECT_EQ(frames, (pictures{rows({"....", "....", "...."}), //
                                rows({"X..X", "XX.X", "X..X"}), //
                                rows({"..X.", "X.XX", "..X."}), //
                                rows({".X..", ".XX.", ".X.."}), //
                                rows({"X..X", "XX.X", "X..X"}), //
                                rows({"....", "X...", "...."}), //
                                rows({"....", "....", "...."})}));
}

TEST_F(TickerLeftTest, size_is_the_height_of_the_box) {
    make_box_screen(6);
    write_file("a");
    run(k_left, 1, 1);
    const calls made = take_calls();
    EXPECT_EQ(made.front(), "FSS_set_scale 196608 0 0 196608");
    for (const std::string &call : made)
        EXPECT_TRUE(call.find("FSS_set_scale") != 0 || call == made.front()) << call;
}

TEST_F(TickerLeftTest, rows_below_the_box_are_cut) {
    make_screen(6, 3);
    give('a', {0, 2, 3, {"X", "X", "X", "X", "X"}});
    write_file("a");
    run(k_left, 1, 2);
    EXPECT_EQ(frames[1], rows({"..X...", "..X...", "..X..."}));
}

TEST_F(TickerLeftTest, glyph_above_the_box_moves_down_as_in_a_text_drawn_once) {
    make_screen(6, 3);
    give('a', {0, 4, 3, {"X..", ".X.", "..X"}}); // rows -2 to 0: one shows, with the first bits
    write_file("a");
    run(k_left, 1, 2);
    EXPECT_EQ(frames[1], rows({"..X...", "......", "......"}));
}

TEST_F(TickerLeftTest, carriage_return_is_a_glyph) {
    make_box_screen(6);
    give('\r', {0, 1, 2, {"XX"}});
    write_file("a\r\n"); // 5 + 12 wide: positions 0, 4, 8
    run(k_left, 1, 3);
    EXPECT_EQ(frames[1], rows({"..X...", "..XX.X", "..X..."}));
    EXPECT_EQ(frames[2], rows({"......", ".XX...", "......"}));
}

TEST_F(TickerLeftTest, characters_without_glyph_take_no_room) {
    make_box_screen(6);
    write_file("?a?");
    run(k_left, 1, 4);
    EXPECT_EQ(frames[1], rows({"..X...", "..XX..", "..X..."}));
    EXPECT_EQ(frames[3], rows({"......", "......", "......"})); // the fourth begins anew
}

// Glyphs may go back. A line of negative advance has the band of an empty one: positions 0 and 4.
TEST_F(TickerLeftTest, negative_advance_still_shows_frames_and_can_be_stopped) {
    make_screen(4, 3);
    give('a', {0, 2, -30000, {"X"}});
    write_file("aaaa");
    EXPECT_EQ(run(k_left, 1, 3), 0);
    EXPECT_EQ(frames, (pictures{rows({"....", "....", "...."}), //
                                rows({"X...", "....", "...."}), //
                                rows({"....", "....", "...."})}));
    EXPECT_EQ(hooks::get().usleeps, std::vector<unsigned>(2, k_left_us));
}

TEST_F(TickerLeftTest, ink_and_screen_shine_through_where_the_band_has_the_key) {
    make_screen(6, 3);
    fill_buf(7);
    give('a', {0, 2, 3, {"X.X"}});
    write_file("a");
    events[2] = [this] {
        for (int x = 0; x < 6; x++)
            EXPECT_EQ(fb_pixel(x, 0), x == 2 || x == 4 ? k_ink : 7u) << x;
        EXPECT_EQ(fb_pixel(2, 1), 7u);
    };
    run(k_left, 1, 3);
    EXPECT_EQ(frame_count, 3u);
    for (int x = 0; x < 6; x++)
        EXPECT_EQ(fb_pixel(x, 0), 7u);
}

TEST_F(TickerLeftTest, ink_equal_to_the_key_shows_nothing) {
    make_box_screen(6);
    write_file("a");
    stop_after = 3;
    EXPECT_EQ(uxFontDrawing(path.c_str(), k_ink, k_ink, 0, 0, 6, 3, 3, 3, 1, k_left), 0);
    EXPECT_EQ(frames, pictures(3, rows({"......", "......", "......"})));
}

TEST_F(TickerLeftTest, band_of_many_tiles_is_what_one_canvas_gives) {
    make_screen(8, 3);
    // 2,048 glyphs of 20,000 columns: 41 million columns, far more than a tile holds.
    give('a', {19990, 2, 20000, {"X"}});
    give('b', {19991, 2, 20000, {".X"}});
    std::string line(2048, 'a');
    line[2047] = 'b';
    write_file(line);
    // A step of 5,000 moves 20,000. Position p shows columns p - 8 to p - 1 of the text.
    keep_pictures = false;
    const auto expect = [this](size_t frame, const char *row) {
        events[frame] = [this, row] {
            EXPECT_EQ(ink(), rows({row, "........", "........"})) << frame_count;
        };
    };
    expect(1, "........");
    for (size_t frame : {2u, 3u, 700u, 1400u, 2047u, 2048u})
        expect(frame, "........"); // 19,992 to 19,999
    run_at(0, 0, 8, 3, k_left, 5000, 2049);
    EXPECT_EQ(frame_count, 2049u);
    // In a box that begins two columns later nothing else changes; ink at 19,994 shows at 2.
    for (auto &[code, glyph] : fake_chip::get().glyphs)
        glyph.left = code == 'a' ? 19994 : 19993;
    events.clear();
    frame_count = 0;
    setenv("STATUS", "", 1);
    expect(1, "........");
    for (size_t frame : {2u, 3u, 700u, 1400u, 2047u, 2048u})
        expect(frame, "..X.....");
    expect(2049, "..X.....");
    run_at(0, 0, 8, 3, k_left, 5000, 2050);
    EXPECT_EQ(frame_count, 2050u);
}
