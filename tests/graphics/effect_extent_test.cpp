// SPDX-License-Identifier: MIT
// How far the reveal effects reach: blocks that the screen cuts, blocks before it, sizes beyond any
// memory, screens without memory. Past the right edge a run goes on in the next row.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>
#include <cstdlib>

namespace {

constexpr uint32_t k_white = 0xFFFFFFFF;
constexpr uint32_t k_seen = 0xFFFEFEFE; // white over black

class EffectExtentTest : public ScreenTest {
  protected:
    void TearDown() override {
        unsetenv("ShowMSG");
        unsetenv("PHOTO_PLAYING");
        ScreenTest::TearDown();
    }

    // Draws a white block of 6 x 4 at column 14 of row 6: 2 x 2 pixels of it fit. Pace 8 / 4 = 2.
    std::string cut_block(int effect) {
        const std::vector<uint32_t> block(6 * 4, k_white);
        EXPECT_EQ(ux_draw_image_buff(block.data(), 14, 6, 6, 4, effect), 0);
        return buf_picture(k_seen).substr(5 * 17);
    }

    static size_t pauses() { return hooks::get().usleeps.size(); }
};

constexpr char k_cut_picture[] = "................\n"
                                 "..............XX\n"
                                 "..............XX\n";
constexpr char k_run_on_picture[] = "................\n"
                                    "..............XX\n"
                                    "XXXX..........XX\n";

} // namespace

TEST_F(EffectExtentTest, effects_1_and_2_draw_the_cut_rows_only) {
    for (int effect : {1, 2}) {
        make_screen(16, 8);
        hooks::get().usleeps.clear();
        EXPECT_EQ(cut_block(effect), k_cut_picture) << effect;
        EXPECT_EQ(pauses(), 1u) << effect;
    }
}

// The first step of going up is the last row shown, not the block's last.
TEST_F(EffectExtentTest, effect_2_begins_with_the_last_row_shown) {
    setenv("ShowMSG", "YES", 1);
    EXPECT_EQ(cut_block(2), "................\n"
                            "................\n"
                            "..............XX\n");
}

// 6 columns: steps 0, 2 and 4 pause.
TEST_F(EffectExtentTest, effects_3_and_4_walk_all_columns_of_a_cut_block) {
    for (int effect : {3, 4}) {
        make_screen(16, 8);
        hooks::get().usleeps.clear();
        EXPECT_EQ(cut_block(effect), k_run_on_picture) << effect;
        EXPECT_EQ(pauses(), 3u) << effect;
    }
}

TEST_F(EffectExtentTest, effect_4_begins_with_the_last_column_of_a_cut_block) {
    setenv("ShowMSG", "YES", 1);
    EXPECT_EQ(cut_block(4), "................\n"
                            "................\n"
                            "...X............\n");
}

// 6 + 4 - 2 = 8 diagonals: steps 0, 2, 4 and 6 pause.
TEST_F(EffectExtentTest, effect_5_walks_all_diagonals_of_a_cut_block) {
    EXPECT_EQ(cut_block(5), k_run_on_picture);
    EXPECT_EQ(pauses(), 4u);
}

// 4 / 2 + 1 = 3 steps: 0 and 2 pause. Rows are cut at the right.
TEST_F(EffectExtentTest, effect_6_walks_all_rows_of_a_cut_block_at_the_shown_width) {
    EXPECT_EQ(cut_block(6), k_cut_picture);
    EXPECT_EQ(pauses(), 2u);
}

// Its step 1 blends rows 1 and 2; step 0 rows 0 and 3, which is below the screen.
TEST_F(EffectExtentTest, effect_6_takes_the_middle_of_the_whole_block) {
    setenv("ShowMSG", "YES", 1);
    EXPECT_EQ(cut_block(6), "................\n"
                            "..............XX\n"
                            "................\n");
}

// 21 rows: bands of 3. Of rows 0 to 4, which are shown, step 0 blends 0 and 3.
TEST_F(EffectExtentTest, effect_7_takes_bands_of_the_whole_height_and_rows_that_are_shown) {
    setenv("ShowMSG", "YES", 1);
    const std::vector<uint32_t> block(2 * 21, k_white);
    EXPECT_EQ(ux_draw_image_buff(block.data(), 15, 3, 2, 21, 7), 0);
    EXPECT_EQ(buf_picture(k_seen).substr(3 * 17), "...............X\n"
                                                  "................\n"
                                                  "................\n"
                                                  "...............X\n"
                                                  "................\n");
}

// Bands of 10 over 2 shown rows: steps 2 to 9 blend nothing, but 2, 4, 6 and 8 pause.
TEST_F(EffectExtentTest, effect_7_keeps_its_steps_below_the_screen) {
    const std::vector<uint32_t> block(70, k_white);
    EXPECT_EQ(ux_draw_image_buff(block.data(), 0, 6, 1, 70, 7), 0);
    EXPECT_EQ(pauses(), 5u);
}

// Side 16 / 8 = 2, though 3 columns are shown: 2 x 2 tiles, of which only the left are whole.
TEST_F(EffectExtentTest, effect_8_winds_over_the_shown_part_in_tiles_of_the_whole_width) {
    const std::vector<uint32_t> block(16 * 8, k_white);
    std::string tiles;
    hooks::get().on_usleep = [&] { tiles += buf_picture(k_seen).substr(4 * 17 + 13, 3) + ' '; };
    EXPECT_EQ(ux_draw_image_buff(block.data(), 13, 4, 16, 8, 8), 0);
    EXPECT_EQ(tiles, "XX. XXX XXX XXX ");
    EXPECT_EQ(buf_picture(k_seen).substr(3 * 17), "................\n"
                                                  ".............XXX\n"
                                                  ".............XXX\n"
                                                  ".............XXX\n"
                                                  ".............XXX\n");
}

TEST_F(EffectExtentTest, rows_are_read_at_the_blocks_own_length) {
    std::vector<uint32_t> block(5 * 3);
    for (uint32_t i = 0; i < block.size(); i++)
        block[i] = 0xFF000000 | (i + 1);
    for (int effect = 1; effect <= 8; effect++) {
        make_screen(5, 3);
        ux_draw_image_buff(block.data(), 0, 0, 5, 3, effect);
        for (int i = 0; i < 14; i++) // n over black is n - 1, blended twice still n - 1 or n
            EXPECT_NEAR(buf_pixel(i % 5, i / 5) & 0xFF, i, effect == 6 ? 1 : 0) << effect;
    }
}

TEST_F(EffectExtentTest, pixels_without_alpha_leave_the_screen_alone) {
    const std::vector<uint32_t> block(6 * 4, 0x00FFFFFF);
    fill_buf(0x12345678);
    for (int effect = 0; effect <= 8; effect++)
        ux_draw_image_buff(block.data(), 1, 1, 6, 4, effect);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8, 0x12345678));
}

// The screen's guards and the sanitizer watch the edges of both memories.
TEST_F(EffectExtentTest, blocks_anywhere_stay_inside_both_memories) {
    plain::dice dice(5);
    for (int i = 0; i < 2000; i++) {
        const int width = dice.between(1, 30);
        const int height = dice.between(1, 20);
        const std::vector<uint32_t> block(static_cast<size_t>(width * height), k_white);
        ux_draw_image_buff(block.data(), dice.between(-40, 20), dice.between(-30, 10), width,
                           height, dice.between(1, 8));
        hooks::get().usleeps.clear();
    }
}

TEST_F(EffectExtentTest, places_at_the_ends_of_the_numbers_touch_nothing) {
    const std::vector<uint32_t> block(4 * 4, k_white);
    for (int effect = 1; effect <= 8; effect++) {
        EXPECT_EQ(ux_draw_image_buff(block.data(), INT_MIN, 0, 4, 4, effect), 0);
        EXPECT_EQ(ux_draw_image_buff(block.data(), 0, INT_MIN, 4, 4, effect), 0);
        EXPECT_EQ(ux_draw_image_buff(block.data(), INT_MAX, 0, 4, 4, effect), -1);
        EXPECT_EQ(ux_draw_image_buff(block.data(), 0, INT_MAX, 4, 4, effect), -1);
    }
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
}

// One row of such a block is on the screen; the rest must not be read.
TEST_F(EffectExtentTest, sizes_beyond_any_memory_show_their_first_row) {
    setenv("ShowMSG", "YES", 1);
    const std::vector<uint32_t> block(8, k_white);
    for (int effect : {1, 2, 6, 7, 8}) {
        make_screen(16, 8);
        EXPECT_EQ(ux_draw_image_buff(block.data(), 8, 7, INT_MAX, INT_MAX, effect), 0);
        EXPECT_EQ(buf_picture(k_seen).substr(7 * 17), "........XXXXXXXX\n") << effect;
    }
}

TEST_F(EffectExtentTest, screen_without_memory_is_left_alone) {
    const std::vector<uint32_t> block(4 * 4, k_white);
    main_screen.buf = nullptr;
    for (int effect = 1; effect <= 8; effect++)
        EXPECT_EQ(ux_draw_image_buff(block.data(), 0, 0, 4, 4, effect), 0);
}

// Half as many bytes as the format needs: the lower rows have no memory.
TEST_F(EffectExtentTest, pixels_smaller_than_the_format_stay_inside_the_memory) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    main_screen.color_mode = UX_COLOR_MODE_ARGB8888;
    const std::vector<uint32_t> block(16 * 8, k_white);
    for (int effect = 1; effect <= 8; effect++)
        EXPECT_EQ(ux_draw_image_buff(block.data(), 0, 0, 16, 8, effect), 0);
    EXPECT_EQ(plain::numbers(main_screen.buf)[16 * 8 - 1] >> 8, 0xFFu);
}
