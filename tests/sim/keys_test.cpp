// SPDX-License-Identifier: MIT
// Names and codes of keys, and reading numbers.
#include "sim/keys.h"
#include "sim/number.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using namespace ux::sim;

TEST(keys, every_named_key_has_the_code_of_the_remote_control) {
    EXPECT_EQ(key_from_text("up"), 19);
    EXPECT_EQ(key_from_text("down"), 20);
    EXPECT_EQ(key_from_text("left"), 21);
    EXPECT_EQ(key_from_text("right"), 22);
    EXPECT_EQ(key_from_text("ok"), 23);
    EXPECT_EQ(key_from_text("delete"), 32);
    EXPECT_EQ(key_from_text("shift"), 34);
    EXPECT_EQ(key_from_text("punctuation"), 35);
    EXPECT_EQ(key_from_text("digit0"), 1);
    EXPECT_EQ(key_from_text("digit5"), 6);
    EXPECT_EQ(key_from_text("digit9"), 10);
}

TEST(keys, names_are_read_in_either_case) {
    EXPECT_EQ(key_from_text("OK"), 23);
    EXPECT_EQ(key_from_text("Digit7"), 8);
}

TEST(keys, a_plain_number_is_a_code_not_a_digit_key) {
    EXPECT_EQ(key_from_text("5"), 5);
    EXPECT_EQ(key_from_text("0"), 0);
    EXPECT_EQ(key_from_text("255"), 255);
}

TEST(keys, codes_beyond_255_and_junk_are_no_keys) {
    for (const char *text : {"256", "-1", "", "okk", "o", "23x", " 23", "+23", "99999999999999"}) {
        EXPECT_EQ(key_from_text(text), std::nullopt) << text;
    }
}

TEST(keys, no_name_stands_twice) {
    auto names = key_names();
    for (size_t one = 0; one < names.size(); ++one) {
        for (size_t other = one + 1; other < names.size(); ++other) {
            EXPECT_NE(names[one].name, names[other].name);
        }
    }
}

TEST(numbers, only_a_whole_decimal_number_within_the_bounds_counts) {
    EXPECT_EQ(number_in("7", 1, 9), 7);
    EXPECT_EQ(number_in("-7", -9, 9), -7);
    EXPECT_EQ(number_in("10", 1, 9), std::nullopt);
    EXPECT_EQ(number_in("7 ", 1, 9), std::nullopt);
    EXPECT_EQ(number_in("0x7", 0, 9), std::nullopt);
    EXPECT_EQ(number_in("2147483648", INT_MIN, INT_MAX), std::nullopt);
    EXPECT_EQ(number_in("-2147483648", INT_MIN, INT_MAX), INT_MIN);
}

} // namespace
