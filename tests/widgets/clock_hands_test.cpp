// SPDX-License-Identifier: MIT
// Where the hands of a clock are, beside a plain computation by the mathematical library.

#include "widgets/clock_hands.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <sstream>

namespace {

constexpr double k_pi = 3.1415926535898;

ux_clock clock_of(int radius, int hours, int minutes, int seconds) {
    ux_clock clock = {};
    clock.obj.x = 100;
    clock.obj.y = 200;
    clock.center_x = 60;
    clock.center_y = 70;
    clock.radius = radius;
    clock.hours = hours;
    clock.minutes = minutes;
    clock.seconds = seconds;
    return clock;
}

std::string text(int x0, int y0, int x1, int y1) {
    std::ostringstream out;
    out << x0 << "," << y0 << " - " << x1 << "," << y1;
    return out.str();
}

std::string text(const ux::clock_hand &hand) {
    return text(hand.x0, hand.y0, hand.x1, hand.y1);
}

// Each product in a variable of its own, so that it is rounded.
int plain_offset(double factor, int radius, double fraction) {
    const volatile double scaled = factor * radius;
    const volatile double length = scaled * fraction;
    return static_cast<int>(length);
}

int plain_x(int angle, int radius, double fraction) {
    return plain_offset(std::sin(angle * k_pi / 180), radius, fraction);
}

int plain_y(int angle, int radius, double fraction) {
    return plain_offset(-std::cos(angle * k_pi / 180), radius, fraction);
}

// The three hands as text, for a centre at (160, 270).
std::array<std::string, 3> plain_hands(int radius, int hours, int minutes, int seconds) {
    const int hour = minutes / 2 + hours * 30;
    const int minute = static_cast<int>(seconds * 0.1) + minutes * 6;
    const int second = seconds * 6;
    constexpr int x = 160;
    constexpr int y = 270;
    return {text(x + plain_x(hour, radius, 0.6), y + plain_y(hour, radius, 0.6), x, y),
            text(x + plain_x(minute, radius, 0.8), y + plain_y(minute, radius, 0.8), x, y),
            text(x + plain_x(second, radius, 1), y + plain_y(second, radius, 1),
                 x + plain_x(second + 180, radius, 0.1), y + plain_y(second + 180, radius, 0.1))};
}

} // namespace

TEST(ClockHandsTest, at_3_00_00_the_hour_hand_points_right_and_the_others_up) {
    const ux_clock clock = clock_of(50, 3, 0, 0);
    const auto hands = ux::clock_hands(&clock);
    EXPECT_EQ(text(hands[0]), "190,270 - 160,270");
    EXPECT_EQ(text(hands[1]), "160,230 - 160,270");
    EXPECT_EQ(text(hands[2]), "160,220 - 160,275");
    EXPECT_EQ(hands[0].color, 0xFFFF0000u);
    EXPECT_EQ(hands[1].color, 0xFF00FF00u);
    EXPECT_EQ(hands[2].color, 0xFF0000FFu);
}

// pi / 3 comes out a little too large, and the cosine below a half.
TEST(ClockHandsTest, at_10_seconds_the_second_hand_is_49_of_100_pixels_high) {
    const ux_clock clock = clock_of(100, 0, 0, 10);
    EXPECT_EQ(text(ux::clock_hands(&clock)[2]), "246,221 - 152,274");
}

TEST(ClockHandsTest, hour_hand_moves_with_every_second_minute_only) {
    const auto hour_hand = [](int minutes, int seconds) {
        const ux_clock clock = clock_of(1000, 1, minutes, seconds);
        return text(ux::clock_hands(&clock)[0]);
    };
    EXPECT_EQ(hour_hand(0, 0), hour_hand(1, 59));
    EXPECT_NE(hour_hand(1, 59), hour_hand(2, 0));
}

TEST(ClockHandsTest, minute_hand_moves_with_every_tenth_second_only) {
    const auto minute_hand = [](int seconds) {
        const ux_clock clock = clock_of(1000, 1, 1, seconds);
        return text(ux::clock_hands(&clock)[1]);
    };
    EXPECT_EQ(minute_hand(0), minute_hand(9));
    EXPECT_NE(minute_hand(9), minute_hand(10));
}

TEST(ClockHandsTest, all_43200_positions_of_a_dial_are_those_of_the_plain_computation) {
    for (int radius : {50, 100, 237}) {
        int wrong = 0;
        for (int i = 0; i < 43200; i++) {
            const int hours = i / 3600;
            const int minutes = i / 60 % 60;
            const int seconds = i % 60;
            const ux_clock clock = clock_of(radius, hours, minutes, seconds);
            const auto hands = ux::clock_hands(&clock);
            const auto plain = plain_hands(radius, hours, minutes, seconds);
            for (size_t k = 0; k < 3; k++)
                wrong += text(hands[k]) != plain[k];
        }
        EXPECT_EQ(wrong, 0) << radius;
    }
}

// The second half of the day has angles beyond a turn, and the library's sine is its own: every
// angle of each hand with every radius that a screen has room for.
TEST(ClockHandsTest, every_angle_with_every_radius_is_that_of_the_plain_computation) {
    int wrong = 0;
    for (int angle = 0; angle < 720; angle++) {
        const volatile double radians = angle * k_pi / 180;
        const double sine = std::sin(radians);
        const double cosine = std::cos(radians);
        const double beyond = (angle + 180) * k_pi / 180;
        const double tail_sine = std::sin(beyond);
        const double tail_cosine = std::cos(beyond);
        for (int radius = 0; radius <= 1100; radius++) {
            const ux_clock clock = clock_of(radius, angle / 30, angle % 30 * 2, 0);
            const ux::clock_hand hour = ux::clock_hands(&clock)[0];
            wrong += hour.x0 != 160 + plain_offset(sine, radius, 0.6) ||
                     hour.y0 != 270 + plain_offset(-cosine, radius, 0.6);
            if (angle >= 360)
                continue;
            const ux_clock other = clock_of(radius, 0, angle / 6, angle % 6 * 10);
            const ux::clock_hand minute = ux::clock_hands(&other)[1];
            wrong += minute.x0 != 160 + plain_offset(sine, radius, 0.8) ||
                     minute.y0 != 270 + plain_offset(-cosine, radius, 0.8);
            if (angle % 6 != 0)
                continue;
            const ux_clock third = clock_of(radius, 0, 0, angle / 6);
            const ux::clock_hand second = ux::clock_hands(&third)[2];
            wrong += second.x0 != 160 + plain_offset(sine, radius, 1) ||
                     second.y0 != 270 + plain_offset(-cosine, radius, 1) ||
                     second.x1 != 160 + plain_offset(tail_sine, radius, 0.1) ||
                     second.y1 != 270 + plain_offset(-tail_cosine, radius, 0.1);
        }
    }
    EXPECT_EQ(wrong, 0);
}

TEST(ClockHandsTest, absurd_times_and_radii_give_numbers) {
    for (int value : {INT_MIN, INT_MIN + 1, -721, 1000000007, INT_MAX}) {
        const ux_clock clock = clock_of(value, value, value, value);
        for (const ux::clock_hand &hand : ux::clock_hands(&clock))
            EXPECT_LE(std::abs(static_cast<double>(hand.x0)), 2147483648.0);
    }
}
