// SPDX-License-Identifier: MIT
// The letters on the keys, press by press.

#include "widgets/multi_tap.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

// What `presses` presses of one key give, in the order; '-' for the character 0.
std::string presses_of(ux::multi_tap &keypad, int key, int presses) {
    std::string given;
    for (int i = 0; i < presses; i++) {
        const ux::tap tap = keypad.press(key);
        EXPECT_EQ(tap.replaces, i > 0) << "press " << i;
        given += tap.character == 0 ? '-' : static_cast<char>(tap.character);
    }
    return given;
}

std::string cycle_of(int key, bool numeric, bool capitals, int presses) {
    ux::multi_tap keypad = {};
    keypad.begin(numeric);
    keypad.current_key_shift = capitals;
    return presses_of(keypad, key, presses);
}

} // namespace

TEST(MultiTap, every_key_goes_through_its_letters_and_begins_again) {
    EXPECT_EQ(cycle_of(1, false, false, 3), "000");
    EXPECT_EQ(cycle_of(2, false, false, 3), "111");
    EXPECT_EQ(cycle_of(3, false, false, 9), "2abcABC2a");
    EXPECT_EQ(cycle_of(4, false, false, 9), "3defDEF3d");
    EXPECT_EQ(cycle_of(5, false, false, 9), "4ghiGHI4g");
    EXPECT_EQ(cycle_of(6, false, false, 9), "5jklJKL5j");
    EXPECT_EQ(cycle_of(7, false, false, 9), "6mnoMNO6m");
    EXPECT_EQ(cycle_of(8, false, false, 11), "7pqrsPQRS7p");
    EXPECT_EQ(cycle_of(9, false, false, 9), "8tuvTUV8t");
    EXPECT_EQ(cycle_of(10, false, false, 11), "9wxyzWXYZ9w");
    EXPECT_EQ(cycle_of(35, false, false, 7), ".:/_ .:");
}

TEST(MultiTap, capitals_run_out_before_the_cycle_does) {
    EXPECT_EQ(cycle_of(1, false, true, 3), "000");
    EXPECT_EQ(cycle_of(2, false, true, 3), "111");
    EXPECT_EQ(cycle_of(3, false, true, 9), "2ABC---2A");
    EXPECT_EQ(cycle_of(4, false, true, 9), "3DEF---3D");
    EXPECT_EQ(cycle_of(5, false, true, 9), "4GHI---4G");
    EXPECT_EQ(cycle_of(6, false, true, 9), "5JKL---5J");
    EXPECT_EQ(cycle_of(7, false, true, 9), "6MNO---6M");
    EXPECT_EQ(cycle_of(8, false, true, 11), "7PQRS----7P");
    EXPECT_EQ(cycle_of(9, false, true, 9), "8TUV---8T");
    EXPECT_EQ(cycle_of(10, false, true, 11), "9WXYZ----9W");
    EXPECT_EQ(cycle_of(35, false, true, 7), ".:/_ .:");
}

TEST(MultiTap, numeric_keys_have_one_character_with_and_without_capitals) {
    const int keys[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 35};
    const char characters[] = "0123456789.";
    for (int i = 0; i < 11; i++)
        for (bool capitals : {false, true})
            EXPECT_EQ(cycle_of(keys[i], true, capitals, 3), std::string(3, characters[i]));
}

TEST(MultiTap, only_digits_and_punctuation_type) {
    for (bool numeric : {false, true}) {
        ux::multi_tap keypad = {};
        keypad.begin(numeric);
        for (int key = -2; key < 260; key++)
            EXPECT_EQ(keypad.types(key), (key >= 1 && key <= 10) || key == 35) << key;
        for (int key : {INT_MIN, INT_MAX, 256, 257, -255})
            EXPECT_FALSE(keypad.types(key)) << key;
    }
}

TEST(MultiTap, nothing_types_before_the_first_begin) {
    const ux::multi_tap keypad = {};
    for (int key = 0; key < 256; key++)
        EXPECT_FALSE(keypad.types(key)) << key;
}

TEST(MultiTap, another_key_starts_at_its_first_letter) {
    ux::multi_tap keypad = {};
    keypad.begin(false);
    EXPECT_EQ(presses_of(keypad, 3, 3), "2ab");
    EXPECT_EQ(presses_of(keypad, 4, 2), "3d");
    EXPECT_EQ(presses_of(keypad, 3, 1), "2");
}

TEST(MultiTap, ended_key_starts_at_its_first_letter_again) {
    ux::multi_tap keypad = {};
    keypad.begin(false);
    EXPECT_EQ(presses_of(keypad, 3, 3), "2ab");
    keypad.end_key();
    EXPECT_EQ(presses_of(keypad, 3, 2), "2a");
}

TEST(MultiTap, capitals_switched_on_in_the_middle_go_on_at_the_same_place) {
    ux::multi_tap keypad = {};
    keypad.begin(false);
    EXPECT_EQ(presses_of(keypad, 3, 2), "2a");
    keypad.current_key_shift = true;
    EXPECT_EQ(keypad.press(3).character, u'B');
    keypad.current_key_shift = false;
    EXPECT_EQ(keypad.press(3).character, u'c');
    keypad.current_key_shift = true;
    EXPECT_EQ(keypad.press(3).character, u'\0');
}

TEST(MultiTap, begin_forgets_key_place_and_capitals) {
    ux::multi_tap keypad = {};
    keypad.begin(false);
    presses_of(keypad, 3, 3);
    keypad.current_key_shift = true;
    keypad.begin(true);
    EXPECT_EQ(keypad.current_key, 0);
    EXPECT_EQ(keypad.current_pos, 0);
    EXPECT_FALSE(keypad.current_key_shift);
    EXPECT_FALSE(keypad.press(3).replaces);
}
