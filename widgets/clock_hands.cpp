// SPDX-License-Identifier: MIT
// The end points of a clock's hands; see clock_hands.h.

#include "widgets/clock_hands.h"

#include "core/object_kit.h"

#include <cfloat>

namespace ux {
namespace {

// Each product is rounded to double: wider intermediates move end points by a pixel.
static_assert(FLT_EVAL_METHOD == 0, "build for SSE arithmetic");

// Not the nearest double to pi: cos 60 degrees comes out below a half, and 49 of 100 pixels.
constexpr double k_pi = 3.1415926535898;
constexpr int k_half_turn = 180; // degrees
constexpr int k_full_turn = 360;
constexpr int k_hour_angle = 30;       // of an hour, for the hour hand
constexpr int k_minute_angle = 6;      // of a minute or a second, for the other two
constexpr double k_second_share = 0.1; // degrees of a second, for the minute hand

constexpr double k_hour_length = 0.6; // of the radius
constexpr double k_minute_length = 0.8;
constexpr double k_second_length = 1.0;
constexpr double k_tail_length = 0.1;

constexpr uint32_t k_hour_color = 0xFFFF0000;
constexpr uint32_t k_minute_color = 0xFF00FF00;
constexpr uint32_t k_second_color = 0xFF0000FF;

struct direction {
    double sine, cosine;
};

struct end_point {
    int x, y;
};

// The sum of the series of the sine (from n = 1) or the cosine (from n = 0) behind its first term:
//   first * (1 - z / ((n+1)(n+2)) * (1 - z / ((n+3)(n+4)) * ...)),  z = y * y
// without the leading 1. For |y| <= pi / 4 the last term taken is below 1e-19.
double series_tail(double z, int n) {
    constexpr int k_terms = 9;
    double sum = 0;
    for (int i = k_terms; i >= 1; i--)
        sum = -z / ((n + 2 * i - 1) * (n + 2 * i)) * (1 + sum);
    return sum;
}

// Sine and cosine to the last bit or nearly so, for angles of some turns. The library does without
// the mathematical one. The angle x is taken to y, at most pi / 4 from a multiple q of pi / 2; the
// upper part of pi / 2 has so few bits that its multiples are exact.
direction direction_of(double x) {
    constexpr double k_quarters_per_radian = 0.63661977236758134;
    constexpr double k_quarter_upper = 1.5707963267341256;    // pi / 2, 33 bits
    constexpr double k_quarter_lower = 6.077100506506192e-11; // the rest
    const int q = static_cast<int>(x * k_quarters_per_radian + (x < 0 ? -0.5 : 0.5));
    const double y = (x - q * k_quarter_upper) - q * k_quarter_lower;
    const double z = y * y;
    const double sine = y + y * series_tail(z, 1);
    const double cosine = 1 + series_tail(z, 0);
    switch (q & 3) {
    case 0:
        return {sine, cosine};
    case 1:
        return {cosine, -sine};
    case 2:
        return {-sine, -cosine};
    default:
        return {-cosine, sine};
    }
}

// Cut toward zero; what no screen reaches is cut at the largest number.
int offset(double length) {
    return static_cast<int>(std::clamp<double>(length, INT_MIN, INT_MAX));
}

// A point at `fraction` of the radius along `angle` degrees, 0 up and clockwise. Angles of times
// that no dial shows are taken back to one turn.
end_point point_at(const ux_clock *clock, int64_t angle, double fraction) {
    constexpr int k_turns = 4;
    const bool is_far = angle > k_turns * k_full_turn || angle < -k_turns * k_full_turn;
    const auto degrees = static_cast<double>(is_far ? angle % k_full_turn : angle);
    const direction towards = direction_of(degrees * k_pi / k_half_turn);
    const int x = offset(towards.sine * clock->radius * fraction);
    const int y = offset(-towards.cosine * clock->radius * fraction);
    return {coordinate(int64_t{clock->obj.x} + clock->center_x + x),
            coordinate(int64_t{clock->obj.y} + clock->center_y + y)};
}

clock_hand line(const end_point &from, const end_point &to, uint32_t color) {
    return {from.x, from.y, to.x, to.y, color};
}

} // namespace

// The hour hand moves every second minute, the minute hand every tenth second.
std::array<clock_hand, 3> clock_hands(const ux_clock *clock) {
    const int64_t hour_angle = clock->minutes / 2 + int64_t{clock->hours} * k_hour_angle;
    const int64_t minute_angle = static_cast<int64_t>(clock->seconds * k_second_share) +
                                 int64_t{clock->minutes} * k_minute_angle;
    const int64_t second_angle = int64_t{clock->seconds} * k_minute_angle;
    const end_point center = point_at(clock, 0, 0);
    return {
        line(point_at(clock, hour_angle, k_hour_length), center, k_hour_color),
        line(point_at(clock, minute_angle, k_minute_length), center, k_minute_color),
        line(point_at(clock, second_angle, k_second_length),
             point_at(clock, second_angle + k_half_turn, k_tail_length), k_second_color),
    };
}

} // namespace ux
