// SPDX-License-Identifier: MIT
// Clocks at several times, with hands of several lengths, on and off the middle of the face.

#include "tests/golden/golden_test.h"

namespace {

class ClockGolden : public GoldenTest {
  protected:
    static constexpr int k_size = 120;

    ux_clock *show(int column, int row, int hours, int minutes, int seconds, int radius = 50,
                   int center_x = k_size / 2, int center_y = k_size / 2) {
        ux_clock *clock = ux_clock_new(root(), 4 + column * (k_size + 4), 4 + row * (k_size + 4),
                                       k_size, k_size, radius, center_x, center_y,
                                       "/orbo/images/clock-face.png", nullptr, nullptr);
        ux_clock_settime(clock, hours, minutes, seconds);
        clock->obj.show(&clock->obj);
        return clock;
    }

    void TearDown() override {
        GoldenTest::TearDown();
        EXPECT_EQ(ux_timeout_list, nullptr) << "clocks take their timeouts along";
    }
};

} // namespace

TEST_F(ClockGolden, hands_point_where_the_time_is) {
    make_screen(500, 252);
    show(0, 0, 0, 0, 0);
    show(1, 0, 3, 0, 0);
    show(2, 0, 10, 8, 36);
    show(3, 0, 23, 59, 59);
    show(0, 1, 6, 30, 15);
    show(1, 1, 13, 45, 50, 60);
    show(2, 1, 1, 52, 7, 30, 40, 70);
    ux_clock *again = show(3, 1, 9, 15, 0);
    ux_clock_settime(again, 4, 41, 22);
    ux_clock_paint(&again->obj);
    expect_golden("clock_times");
}
