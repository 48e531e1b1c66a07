// SPDX-License-Identifier: MIT
// Scrolling up: wrapped rows, the travel and its last frames, how long they stay.

#include "tests/font/ticker_test.h"

using TickerUpTest = TickerTest;

// Two wrapped rows: a band of 12 rows, a travel of 9. Positions 0, 3, 6, 9; 12 is beyond, so 6.
TEST_F(TickerUpTest, line_wraps_comes_in_from_below_and_turns_back_once_at_the_end) {
    make_box_screen(4);
    write_file("ab");
    give('b', {0, 2, 2, {"XX", "..", "XX"}});
    EXPECT_EQ(run(k_up, 3, 6), 0);
    const std::string blank = rows({"....", "....", "...."});
    const std::string first = rows({"X...", "XX..", "X..."});
    const std::string second = rows({"XX..", "....", "XX.."});
    EXPECT_EQ(frames, (pictures{blank, first, second, blank, second, blank}));
}

TEST_F(TickerUpTest, window_moves_by_rows) {
    make_box_screen(4);
    write_file("a"); // travel 6: 0, 2, 4, 6, then 4
    run(k_up, 2, 5);
    EXPECT_EQ(frames, (pictures{rows({"....", "....", "...."}), //
                                rows({"....", "X...", "XX.."}), //
                                rows({"XX..", "X...", "...."}), //
                                rows({"....", "....", "...."}), //
                                rows({"XX..", "X...", "...."})}));
}

// Travel 6 and step 4: 0, 4, then 8 is beyond: 2, then the end.
TEST_F(TickerUpTest, step_beyond_the_travel_shows_travel_minus_step) {
    make_box_screen(4);
    write_file("a");
    run(k_up, 4, 4);
    EXPECT_EQ(frames, (pictures{rows({"....", "....", "...."}), //
                                rows({"XX..", "X...", "...."}), //
                                rows({"....", "X...", "XX.."}), //
                                rows({"....", "....", "...."})}));
    EXPECT_EQ(hooks::get().usleeps, (std::vector<unsigned>{k_up_us, k_up_us, k_up_us, k_line_us}));
}

TEST_F(TickerUpTest, step_larger_than_the_travel_shows_the_beginning_twice) {
    make_screen(4, 3);
    give('a', {0, 2, 3, {"X"}});
    write_file("a");
    run(k_up, 100, 3);
    EXPECT_EQ(frames, pictures(3, rows({"....", "....", "...."})));
    EXPECT_EQ(hooks::get().usleeps, (std::vector<unsigned>{k_up_us, k_up_us, k_line_us}));
}

TEST_F(TickerUpTest, frames_are_5_ms_apart_and_lines_half_a_second) {
    make_box_screen(4);
    write_file("a\nb\n"); // travel 6, step 6: 0, 6, 0
    run(k_up, 6, 7);
    EXPECT_EQ(hooks::get().usleeps, (std::vector<unsigned>{k_up_us, k_up_us, k_up_us, k_line_us, //
                                                           k_up_us, k_up_us, k_up_us, k_line_us}));
    EXPECT_EQ(naps.size(), 0u);
}

TEST_F(TickerUpTest, step_of_0_or_less_never_moves) {
    make_screen(4, 3);
    give('a', {0, 2, 3, {"X"}});
    write_file("a");
    for (int step : {0, -1, INT32_MIN}) {
        frame_count = 0;
        setenv("STATUS", "", 1);
        hooks::get().usleeps.clear();
        EXPECT_EQ(run(k_up, step, 30), 0);
        EXPECT_EQ(hooks::get().usleeps, std::vector<unsigned>(29, k_up_us));
    }
    EXPECT_EQ(frames, pictures(90, rows({"....", "....", "...."})));
}

// Without a glyph that fits the first row stays empty: rows 2, travel 9.
TEST_F(TickerUpTest, glyph_wider_than_the_box_begins_in_the_second_row) {
    make_screen(2, 3);
    give('a', {0, 2, 3, {"X"}});
    write_file("a");
    run(k_up, 3, 4);
    EXPECT_EQ(frames, (pictures{rows({"..", "..", ".."}), rows({"..", "..", ".."}),
                                rows({"X.", "..", ".."}), rows({"..", "..", ".."})}));
}

TEST_F(TickerUpTest, glyph_that_ends_at_the_right_edge_does_not_wrap) {
    make_screen(4, 3);
    give('b', {0, 2, 2, {"X"}});
    write_file("bbb");
    run(k_up, 3, 3);
    EXPECT_EQ(frames[1], rows({"X.X.", "....", "...."}));
    EXPECT_EQ(frames[2], rows({"X...", "....", "...."}));
}

TEST_F(TickerUpTest, carriage_return_breaks_the_line_and_is_drawn_at_its_start) {
    make_screen(4, 3);
    give('b', {0, 2, 2, {"X"}});
    give('\r', {3, 1, 2, {"X"}});
    write_file("b\rb"); // two rows
    run(k_up, 3, 5);
    EXPECT_EQ(frames, (pictures{rows({"....", "....", "...."}), //
                                rows({"X...", "....", "...."}), //
                                rows({"X...", "...X", "...."}), //
                                rows({"....", "....", "...."}), //
                                rows({"X...", "...X", "...."})}));
}

TEST_F(TickerUpTest, lines_that_end_with_both_have_one_empty_row_more) {
    make_screen(4, 3);
    give('b', {0, 2, 2, {"X"}});
    give('\r', {0, 0, 0, {}});
    write_file("b\r\n"); // rows 2, travel 9: 0, 3, 6, 9, 6
    run(k_up, 3, 6);
    EXPECT_EQ(hooks::get().usleeps,
              (std::vector<unsigned>{k_up_us, k_up_us, k_up_us, k_up_us, k_up_us, k_line_us}));
}

// C0 8A is a line feed in two bytes; C4 8A and C4 8D end in the same bits but are letters.
TEST_F(TickerUpTest, only_the_whole_code_breaks_a_line) {
    make_screen(8, 3);
    for (uint32_t code : {0xAu, 0x10Au, 0x10Du, uint32_t{'b'}})
        give(code, {0, 2, 2, {"X"}});
    write_file("b\xC4\x8A\xC4\x8D"
               "b\xC0\x8A"
               "b");
    run(k_up, 3, 3);
    EXPECT_EQ(frames[1], rows({"X.X.X.X.", "........", "........"}));
    EXPECT_EQ(frames[2], rows({"X.......", "........", "........"}));
}

TEST_F(TickerUpTest, baseline_is_four_fifths_of_the_height_in_every_row) {
    make_screen(3, 10);
    give('b', {0, 1, 3, {"X"}});
    write_file("bb");
    run(k_up, 10, 3);
    std::string expected;
    for (int row = 0; row < 10; row++)
        expected += row == 7 ? "X..\n" : "...\n"; // 10 * 4 / 5 - 1
    EXPECT_EQ(frames[1], expected);
    EXPECT_EQ(frames[2], expected);
}

// As in a text drawn once: nothing is cut off below a row but at the end of the band.
TEST_F(TickerUpTest, descender_reaches_into_the_row_below) {
    make_screen(3, 3);
    give('a', {0, 2, 3, {"X", "X", "X", "X", "X"}});
    give('.', {0, 0, 3, {}});
    write_file("a.");
    run(k_up, 3, 3);
    EXPECT_EQ(frames[1], rows({"X..", "X..", "X.."}));
    EXPECT_EQ(frames[2], rows({"X..", "X..", "..."}));
}

TEST_F(TickerUpTest, glyph_is_cut_at_the_end_of_the_band) {
    make_screen(3, 3);
    give('a', {0, 2, 3, std::vector<std::string>(7, "X")});
    write_file("a"); // a band of 9 rows, the glyph in rows 3 to 9; travel 6: 0, 6, 0
    run(k_up, 6, 3);
    EXPECT_EQ(frames, (pictures{rows({"...", "...", "..."}), //
                                rows({"X..", "X..", "X.."}), //
                                rows({"...", "...", "..."})}));
}

// The oracle is the text drawn once: two rows of it in one box of two rows.
TEST_F(TickerUpTest, wrapped_rows_look_as_in_a_text_drawn_once) {
    make_screen(6, 6);
    give('a', {0, 2, 6, {"X", ".X", "..X", "...X", "....X", "X"}});
    give('b', {1, 1, 6, {"X.X"}});
    uxFontDrawing(u"ab", k_ink, k_key, 0, 0, 6, 6, 3, 3, 0, 1);
    const std::string once = ink();
    memset(main_screen.fb, 0, sizeof(uint32_t) * 6 * 6);
    write_file("ab");
    run_at(0, 0, 6, 3, k_up, 3, 3);
    const size_t box = rows({"......", "......", "......"}).size();
    EXPECT_EQ(frames[1].substr(0, box) + frames[2].substr(0, box), once);
}

TEST_F(TickerUpTest, ink_beyond_the_end_of_a_row_goes_on_in_the_next) {
    make_screen(4, 3);
    give('a', {2, 2, 3, {"XXXX"}});
    write_file("a");
    run(k_up, 3, 2);
    EXPECT_EQ(frames[1], rows({"..XX", "XX..", "...."}));
}

TEST_F(TickerUpTest, band_of_many_tiles_is_what_one_canvas_gives) {
    make_screen(64, 40);
    // One glyph a row, 2,048 rows of 40 x 64 pixels: 5 MB. Its dot is at (9, 32) of the row.
    give('a', {9, 0, 64, {"X"}});
    give('b', {10, 0, 64, {"X"}});
    std::string line(2048, 'a');
    line[2047] = 'b';
    write_file(line);
    keep_pictures = false;
    const auto expect = [this](size_t frame, int column) {
        events[frame] = [this, column] {
            for (int y = 0; y < 40; y++)
                for (int x = 0; x < 64; x++)
                    ASSERT_EQ(fb_pixel(x, y) == k_ink, x == column && y == 32)
                        << frame_count << ": " << x << "," << y;
        };
    };
    expect(1, -1);
    for (size_t frame : {2u, 500u, 1636u, 1637u, 1638u, 1639u, 1640u, 2048u})
        expect(frame, 9);
    expect(2049, 10);
    expect(2050, -1);
    expect(2051, 10); // back by one step
    run(k_up, 40, 2052);
    EXPECT_EQ(frame_count, 2052u);
}
