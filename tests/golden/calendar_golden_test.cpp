// SPDX-License-Identifier: MIT
// Months of 4, 5 and 6 rows, and one before the calendar's reform.

#include "tests/golden/golden_test.h"

#include <cstdlib>

namespace {

class CalendarGolden : public GoldenTest {
  protected:
    static constexpr int k_width = 520;
    static constexpr int k_height = 300;

    void show(int year, int month, int color_mode = UX_COLOR_MODE_ARGB8888) {
        make_screen(k_width, k_height, color_mode);
        ASSERT_EQ(ux_open_font(), 0);
        uxDrawBox(0, 0, k_width - 1, k_height - 1, 0xFFC9D6EA);
        setenv("FontSize", "10", 1);
        ux_calendar *calendar = ux_calendar_new(root(), 0, 0, k_width, k_height, "/orbo/images");
        ux_calendar_set_date(calendar, year, month, 1);
        calendar->obj.show(&calendar->obj);
        unsetenv("FontSize");
        ux_close_font();
    }
};

} // namespace

TEST_F(CalendarGolden, february_2009_has_4_rows) {
    show(2009, 2);
    expect_golden("calendar_4_rows");
}

TEST_F(CalendarGolden, september_1752_has_5_rows_and_all_its_numbers) {
    show(1752, 9);
    expect_golden("calendar_5_rows");
}

TEST_F(CalendarGolden, august_2009_has_6_rows) {
    show(2009, 8);
    expect_golden("calendar_6_rows");
}

// Pictures are copied there as they are decoded, software text is refused, and the low half of red
// is 0, which is transparent: the names at the weekend do not show.
TEST_F(CalendarGolden, sixteen_bit_screen_has_the_same_grid) {
    show(2009, 8, UX_COLOR_MODE_RGB565);
    expect_golden("calendar_565");
}
