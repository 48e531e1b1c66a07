// SPDX-License-Identifier: MIT
// The reveal effects: which step paints which pixel and how often, where the steps pause, what
// stops them, and how far they reach when a block is cut.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>
#include <cstdlib>

namespace {

constexpr uint32_t k_half_white = 0x80FFFFFF;
constexpr uint32_t k_once = 0x807F7F7F;  // over black: 255 * 128 >> 8 = 127
constexpr uint32_t k_twice = 0x80BFBFBF; // again: (127 * 128 + 255 * 128) >> 8 = 191
constexpr useconds_t k_pause_us = 3000;

class EffectTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        forget_environment();
    }

    void TearDown() override {
        forget_environment();
        ScreenTest::TearDown();
    }

    static void forget_environment() {
        for (const char *name : {"STATUS", "ShowMSG", "PHOTO_PLAYING"})
            unsetenv(name);
    }

    static int draw(int x, int y, int width, int height, int effect) {
        const std::vector<uint32_t> block(static_cast<size_t>(width * height), k_half_white);
        return ux_draw_image_buff(block.data(), x, y, width, height, effect);
    }

    // Draws and tells for each pixel of the screen the pause, from 0, that first found it painted:
    // '.' for never, '!' for after the last pause.
    std::string pauses_of(int x, int y, int width, int height, int effect) {
        std::string seen(static_cast<size_t>(main_screen.width * main_screen.height), '.');
        char pause = '0';
        hooks::get().on_usleep = [&] {
            mark(seen, pause);
            pause = pause == '9' ? 'a' : static_cast<char>(pause + 1);
        };
        EXPECT_EQ(draw(x, y, width, height, effect), 0);
        hooks::get().on_usleep = nullptr;
        mark(seen, '!');
        return lines(seen);
    }

    // Draws on a screen of the block's size: every step pauses.
    std::string steps_of(int width, int height, int effect) {
        make_screen(width, height);
        return pauses_of(0, 0, width, height, effect);
    }

    // How often each pixel of the screen was blended.
    std::string times() const {
        std::string text;
        for (uint32_t pixel : plain::numbers(main_screen.buf))
            text += pixel == 0 ? '.' : pixel == k_once ? '1' : pixel == k_twice ? '2' : '?';
        return lines(text);
    }

    static size_t pauses() { return hooks::get().usleeps.size(); }

    static std::string photo_playing() {
        const char *value = getenv("PHOTO_PLAYING");
        return value ? value : "(unset)";
    }

  private:
    static void mark(std::string &seen, char letter) {
        const std::vector<uint32_t> now = plain::numbers(main_screen.buf);
        for (size_t i = 0; i < now.size(); i++)
            if (now[i] != 0 && seen[i] == '.')
                seen[i] = letter;
    }

    static std::string lines(const std::string &text) {
        std::string result;
        const auto width = static_cast<size_t>(main_screen.width);
        for (size_t i = 0; i < text.size(); i += width)
            result += text.substr(i, width) + '\n';
        return result;
    }
};

} // namespace

TEST_F(EffectTest, effect_1_goes_down_row_by_row) {
    EXPECT_EQ(steps_of(4, 3, 1), "0000\n1111\n2222\n");
    EXPECT_EQ(times(), "1111\n1111\n1111\n");
    EXPECT_EQ(hooks::get().usleeps, std::vector<unsigned>(3, k_pause_us));
}

TEST_F(EffectTest, effect_2_goes_up_row_by_row) {
    EXPECT_EQ(steps_of(4, 3, 2), "2222\n1111\n0000\n");
    EXPECT_EQ(times(), "1111\n1111\n1111\n");
}

TEST_F(EffectTest, effect_3_goes_right_column_by_column) {
    EXPECT_EQ(steps_of(4, 3, 3), "0123\n0123\n0123\n");
    EXPECT_EQ(times(), "1111\n1111\n1111\n");
}

TEST_F(EffectTest, effect_4_goes_left_column_by_column) {
    EXPECT_EQ(steps_of(4, 3, 4), "3210\n3210\n3210\n");
    EXPECT_EQ(times(), "1111\n1111\n1111\n");
}

TEST_F(EffectTest, effect_5_sweeps_diagonals_and_leaves_the_last) {
    EXPECT_EQ(steps_of(4, 3, 5), "0123\n1234\n234.\n");
    EXPECT_EQ(times(), "1111\n1111\n111.\n");
    EXPECT_EQ(pauses(), 5u);
}

TEST_F(EffectTest, effect_5_sweeps_blocks_higher_than_wide) {
    EXPECT_EQ(steps_of(2, 4, 5), "01\n12\n23\n3.\n");
}

TEST_F(EffectTest, effect_5_draws_single_rows_and_columns_but_for_their_end) {
    EXPECT_EQ(steps_of(5, 1, 5), "0123.\n");
    EXPECT_EQ(steps_of(1, 4, 5), "0\n1\n2\n.\n");
}

TEST_F(EffectTest, effect_5_draws_nothing_of_one_pixel_and_reads_no_flag) {
    setenv("ShowMSG", "YES", 1);
    EXPECT_EQ(steps_of(1, 1, 5), ".\n");
    EXPECT_EQ(pauses(), 0u);
    EXPECT_EQ(photo_playing(), "(unset)");
}

TEST_F(EffectTest, effect_6_blends_the_middle_row_of_odd_heights_twice) {
    EXPECT_EQ(steps_of(2, 5, 6), "00\n11\n22\n11\n00\n");
    EXPECT_EQ(times(), "11\n11\n22\n11\n11\n");
    EXPECT_EQ(pauses(), 3u);
}

TEST_F(EffectTest, effect_6_blends_both_middle_rows_of_even_heights_twice) {
    EXPECT_EQ(steps_of(2, 4, 6), "00\n11\n11\n00\n");
    EXPECT_EQ(times(), "11\n22\n22\n11\n");
    EXPECT_EQ(pauses(), 3u);
}

TEST_F(EffectTest, effect_6_blends_heights_1_and_2_twice) {
    EXPECT_EQ(steps_of(3, 1, 6), "000\n");
    EXPECT_EQ(times(), "222\n");
    EXPECT_EQ(steps_of(3, 2, 6), "000\n000\n");
    EXPECT_EQ(times(), "222\n222\n");
}

// 15 rows: bands of 15 / 7 + 1 = 3. Steps 0 and 2 pause.
TEST_F(EffectTest, effect_7_draws_a_row_of_every_band_and_pauses_on_even_steps) {
    EXPECT_EQ(steps_of(1, 15, 7), "0\n1\n1\n0\n1\n1\n0\n1\n1\n0\n1\n1\n0\n1\n1\n");
    EXPECT_EQ(hooks::get().usleeps, std::vector<unsigned>(2, k_pause_us));
    EXPECT_EQ(times(), "1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n");
}

TEST_F(EffectTest, effect_7_has_bands_of_a_seventh_when_the_height_divides) {
    EXPECT_EQ(steps_of(1, 14, 7), "0\n!\n0\n!\n0\n!\n0\n!\n0\n!\n0\n!\n0\n!\n");
    EXPECT_EQ(steps_of(1, 7, 7), "0\n0\n0\n0\n0\n0\n0\n");
}

TEST_F(EffectTest, effect_7_draws_less_than_7_rows_at_once) {
    EXPECT_EQ(steps_of(2, 3, 7), "00\n00\n00\n");
    EXPECT_EQ(pauses(), 1u);
}

// Even steps pause whatever the pace would be: 28 / 14 = 2, 140 / 14 = 10.
TEST_F(EffectTest, effect_7_pauses_without_regard_to_the_pace) {
    for (int screen_height : {14, 28, 140}) {
        make_screen(1, screen_height);
        hooks::get().usleeps.clear();
        draw(0, 0, 1, 14, 7);
        EXPECT_EQ(pauses(), 1u) << screen_height;
    }
}

TEST_F(EffectTest, effect_8_winds_right_down_left_and_up_in_tiles_of_an_eighth) {
    EXPECT_EQ(steps_of(8, 4, 8), "01234567\n"
                                 "jklmnop8\n"
                                 "ivutsrq9\n"
                                 "hgfedcba\n");
    EXPECT_EQ(pauses(), 32u);
    EXPECT_EQ(times(), "11111111\n11111111\n11111111\n11111111\n");
}

TEST_F(EffectTest, effect_8_winds_over_a_square_and_ends_with_the_last_tile) {
    EXPECT_EQ(steps_of(3, 3, 8), "012\n783\n654\n");
    EXPECT_EQ(steps_of(1, 1, 8), "0\n");
    EXPECT_EQ(steps_of(5, 1, 8), "01234\n");
}

// 18 / 8 = 2: the ninth column of tiles and the second row are what is left over.
TEST_F(EffectTest, effect_8_draws_the_rest_beside_whole_tiles) {
    EXPECT_EQ(steps_of(18, 3, 8), "001122334455667788\n"
                                  "001122334455667788\n"
                                  "hhggffeeddccbbaa99\n");
}

TEST_F(EffectTest, effect_8_comes_in_bands_when_higher_than_wide) {
    EXPECT_EQ(steps_of(2, 3, 8), "00\n11\n22\n");
    EXPECT_EQ(steps_of(16, 17, 8).substr(0, 4 * 17), "0000000000000000\n0000000000000000\n"
                                                     "1111111111111111\n1111111111111111\n");
    EXPECT_EQ(pauses(), 3u + 9u);
}

TEST_F(EffectTest, every_shown_pixel_is_blended_once_by_effects_1_2_7_and_8) {
    plain::dice dice(8);
    for (int i = 0; i < 400; i++) {
        const int x = dice.between(0, 20);
        const int y = dice.between(0, 12);
        const int width = dice.between(1, 40);
        const int height = dice.between(1, 40);
        plain::canvas expected = {21, 13};
        for (int row = y; row < y + height && row < 13; row++)
            for (int column = x; column < x + width && column < 21; column++)
                expected.put(column, row, k_once);
        for (int effect : {1, 2, 7, 8}) {
            make_screen(21, 13);
            ASSERT_EQ(draw(x, y, width, height, effect), 0);
            ASSERT_EQ(plain::numbers(main_screen.buf), expected.pixels)
                << effect << ": " << width << " x " << height << " at " << x << ", " << y;
        }
    }
}

TEST_F(EffectTest, pace_is_the_screen_height_over_the_block_height) {
    make_screen(9, 8);
    EXPECT_EQ(pauses_of(0, 0, 9, 4, 3).substr(0, 10), "011223344\n");
    EXPECT_EQ(pauses(), 5u);
}

TEST_F(EffectTest, step_0_always_pauses) {
    make_screen(9, 100);
    EXPECT_EQ(pauses_of(0, 0, 9, 1, 3).substr(0, 10), "0!!!!!!!!\n");
    EXPECT_EQ(pauses(), 1u);
}

// 8 / 8 = 1, though only 4 rows are shown.
TEST_F(EffectTest, pace_takes_the_whole_height_of_a_cut_block) {
    draw(0, 4, 2, 8, 1);
    EXPECT_EQ(pauses(), 4u);
}

TEST_F(EffectTest, block_higher_than_the_screen_pauses_after_every_step) {
    draw(0, 0, 2, 20, 1);
    EXPECT_EQ(pauses(), 8u);
}

TEST_F(EffectTest, effect_0_neither_pauses_nor_reads_flags) {
    setenv("STATUS", "gotoMenu", 1);
    setenv("ShowMSG", "YES", 1);
    draw(0, 0, 16, 8, 0);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8, k_once));
    EXPECT_EQ(pauses(), 0u);
    EXPECT_EQ(photo_playing(), "(unset)");
}

TEST_F(EffectTest, effects_outside_1_to_8_neither_draw_nor_pause_nor_read_flags) {
    setenv("ShowMSG", "YES", 1);
    for (int effect : {INT_MIN, -1, 9, 255, INT_MAX})
        EXPECT_EQ(draw(0, 0, 4, 4, effect), 0);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
    EXPECT_EQ(pauses(), 0u);
    EXPECT_EQ(photo_playing(), "(unset)");
}

TEST_F(EffectTest, message_stops_effect_1_after_its_first_row) {
    make_screen(4, 3);
    setenv("STATUS", "playing", 1);
    setenv("ShowMSG", "YES", 1);
    setenv("PHOTO_PLAYING", "YES", 1);
    EXPECT_EQ(draw(0, 0, 4, 3, 1), 0);
    EXPECT_EQ(times(), "1111\n....\n....\n");
    EXPECT_EQ(pauses(), 1u);
    EXPECT_EQ(photo_playing(), "NO");
}

TEST_F(EffectTest, menu_stops_each_effect_after_its_first_step) {
    const std::string pictures[] = {
        "1111\n....\n....\n", "....\n....\n1111\n", "1...\n1...\n1...\n", "...1\n...1\n...1\n",
        "1...\n....\n....\n", "1111\n....\n1111\n", "1111\n1111\n1111\n", "1...\n....\n....\n"};
    setenv("STATUS", "gotoMenu", 1);
    for (int effect = 1; effect <= 8; effect++) {
        make_screen(4, 3);
        hooks::get().usleeps.clear();
        unsetenv("PHOTO_PLAYING");
        EXPECT_EQ(draw(0, 0, 4, 3, effect), 0);
        EXPECT_EQ(times(), pictures[effect - 1]) << effect;
        EXPECT_EQ(pauses(), 1u) << effect;
        EXPECT_EQ(photo_playing(), "NO") << effect;
    }
}

TEST_F(EffectTest, each_step_is_painted_then_paused_then_status_is_read_then_the_message) {
    make_screen(2, 3);
    std::vector<std::string> order;
    hooks::get().on_usleep = [&] { order.push_back(times()); };
    hooks::get().on_getenv = [&](const char *name) { order.emplace_back(name); };
    draw(0, 0, 2, 3, 2);
    EXPECT_EQ(order, (std::vector<std::string>{"..\n..\n11\n", "STATUS", "ShowMSG", //
                                               "..\n11\n11\n", "STATUS", "ShowMSG", //
                                               "11\n11\n11\n", "STATUS", "ShowMSG"}));
}

TEST_F(EffectTest, message_is_not_read_when_status_stops) {
    setenv("STATUS", "gotoMenu", 1);
    setenv("ShowMSG", "YES", 1);
    for (int effect = 1; effect <= 8; effect++) {
        std::vector<std::string> read;
        hooks::get().on_getenv = [&](const char *name) { read.emplace_back(name); };
        draw(0, 0, 8, 4, effect);
        EXPECT_EQ(read, std::vector<std::string>{"STATUS"}) << effect;
    }
}

TEST_F(EffectTest, both_flags_are_read_after_every_step_with_or_without_a_pause) {
    constexpr size_t steps[] = {4, 4, 8, 8, 10, 3, 1, 32}; // of 8 x 4 pixels
    constexpr size_t rests[] = {2, 2, 4, 4, 5, 2, 1, 16};  // 8 rows of screen: every second step
    for (int effect = 1; effect <= 8; effect++) {
        std::vector<std::string> read;
        hooks::get().usleeps.clear();
        hooks::get().on_getenv = [&](const char *name) { read.emplace_back(name); };
        draw(0, 0, 8, 4, effect);
        std::vector<std::string> expected;
        for (size_t step = 0; step < steps[effect - 1]; step++)
            expected.insert(expected.end(), {"STATUS", "ShowMSG"});
        EXPECT_EQ(read, expected) << effect;
        EXPECT_EQ(pauses(), rests[effect - 1]) << effect;
    }
}

TEST_F(EffectTest, flag_raised_during_a_pause_stops_after_that_step) {
    for (const auto &[name, value] : {std::pair{"STATUS", "gotoMenu"}, {"ShowMSG", "YES"}}) {
        forget_environment();
        make_screen(2, 5);
        hooks::get().usleeps.clear();
        hooks::get().on_usleep = [name = name, value = value, left = 3]() mutable {
            if (--left == 0)
                setenv(name, value, 1);
        };
        draw(0, 0, 2, 5, 1);
        EXPECT_EQ(times(), "11\n11\n11\n..\n..\n") << name;
        EXPECT_EQ(pauses(), 3u);
        EXPECT_EQ(photo_playing(), "NO");
    }
}

TEST_F(EffectTest, flag_of_the_last_step_is_read_too) {
    make_screen(2, 2);
    hooks::get().on_usleep = [left = 2]() mutable {
        if (--left == 0)
            setenv("ShowMSG", "YES", 1);
    };
    draw(0, 0, 2, 2, 1);
    EXPECT_EQ(times(), "11\n11\n");
    EXPECT_EQ(photo_playing(), "NO");
}

TEST_F(EffectTest, other_values_of_the_flags_do_not_stop) {
    for (const char *value : {"", "YES ", " YES", "yes", "Y", "YESYES", "gotoMenu"}) {
        make_screen(1, 3);
        setenv("ShowMSG", value, 1);
        setenv("STATUS", "YES", 1);
        draw(0, 0, 1, 3, 1);
        EXPECT_EQ(times(), "1\n1\n1\n") << value;
    }
    unsetenv("ShowMSG");
    for (const char *value : {"", "gotoMenu ", "gotomenu", "goto", "GOTOMENU"}) {
        make_screen(1, 3);
        setenv("STATUS", value, 1);
        draw(0, 0, 1, 3, 1);
        EXPECT_EQ(times(), "1\n1\n1\n") << value;
    }
    EXPECT_EQ(photo_playing(), "(unset)");
}

TEST_F(EffectTest, mode_3_ignores_effects_pauses_and_flags) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    setenv("ShowMSG", "YES", 1);
    const std::vector<uint16_t> block(16 * 8, 0x1234);
    for (int effect = 1; effect <= 8; effect++)
        EXPECT_EQ(ux_draw_image_buff(block.data(), 0, 0, 16, 8, effect), 0);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8, 0x1234));
    EXPECT_EQ(pauses(), 0u);
    EXPECT_EQ(photo_playing(), "(unset)");
}
