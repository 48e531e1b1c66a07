// SPDX-License-Identifier: MIT
// Typing on the keypad.
#include "sim/failure.h"
#include "sim/multitap.h"

#include <gtest/gtest.h>

namespace {

using namespace ux::sim;
using std::chrono::milliseconds;

// "key/pause key/pause ...", with a pace of 40 ms.
std::string rhythm(std::string_view text) {
    std::string result;
    for (const tap &press : taps_for(text, milliseconds(40))) {
        result += result.empty() ? "" : " ";
        result += std::to_string(press.key);
        result += "/";
        result += std::to_string(press.pause.count());
    }
    return result;
}

TEST(multitap, digits_take_one_tap) {
    EXPECT_EQ(rhythm("0129"), "1/40 2/1200 3/40 10/40");
}

TEST(multitap, letters_follow_the_digit_on_their_key) {
    EXPECT_EQ(rhythm("c"), "3/40 3/40 3/40 3/40");
    EXPECT_EQ(rhythm("A"), "3/40 3/40 3/40 3/40 3/40");
    EXPECT_EQ(rhythm("s"), "8/40 8/40 8/40 8/40 8/40");
}

TEST(multitap, the_same_key_for_the_next_letter_waits_longer_than_a_second) {
    EXPECT_EQ(rhythm("22"), "3/40 3/1200");
    EXPECT_EQ(rhythm("ab"), "3/40 3/40 3/1200 3/40 3/40");
    EXPECT_EQ(rhythm("11"), "2/40 2/1200");
}

TEST(multitap, another_key_needs_no_long_pause) {
    EXPECT_EQ(rhythm("ada"), "3/40 3/40 4/1200 4/40 3/40 3/40");
    EXPECT_EQ(rhythm("adg"), "3/40 3/40 4/1200 4/40 5/40 5/40");
}

TEST(multitap, first_letter_is_left_alone_for_more_than_a_second) {
    EXPECT_EQ(rhythm("1 2"), "2/40 35/1200 35/40 35/40 35/40 35/40 3/40");
}

TEST(multitap, capitals_digits_and_a_blank_mix) {
    EXPECT_EQ(rhythm("Abc 12"), "3/40 3/40 3/40 3/40 3/40 "      // A
                                "3/1200 3/40 3/40 "              // b
                                "3/1200 3/40 3/40 3/40 "         // c
                                "35/40 35/40 35/40 35/40 35/40 " // blank
                                "2/40 3/40");                    // 1 2
}

TEST(multitap, slower_pace_than_the_pause_stays) {
    EXPECT_EQ(taps_for("11", milliseconds(1500)).at(1).pause, milliseconds(1500));
}

TEST(multitap, punctuation_and_space_share_a_key) {
    EXPECT_EQ(rhythm(". "), "35/40 35/1200 35/40 35/40 35/40 35/40");
    EXPECT_EQ(rhythm("_"), "35/40 35/40 35/40 35/40");
}

TEST(multitap, nothing_takes_no_tap) {
    EXPECT_EQ(rhythm(""), "");
}

TEST(multitap, every_letter_and_digit_has_a_key) {
    const std::string all = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ.:/_ ";
    for (char letter : all) {
        EXPECT_FALSE(rhythm(std::string(1, letter)).empty()) << letter;
    }
}

TEST(multitap, a_character_without_a_key_is_named_before_anything_is_sent) {
    auto complaint = [](std::string_view text) -> std::string {
        try {
            taps_for(text, milliseconds(40));
            return "";
        } catch (const failure &error) {
            return error.what();
        }
    };
    EXPECT_EQ(complaint("ab!"), "no key types '!' (position 3)");
    EXPECT_EQ(complaint("\xc3\xa9"), "no key types the character (position 1)");
    EXPECT_EQ(complaint("a\n"), "no key types the character (position 2)");
}

} // namespace
