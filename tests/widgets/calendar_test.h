// SPDX-License-Identifier: MIT
// What tests of the calendar share: a calendar with cells of 16 x 20 pixels on a screen that just
// holds it, and what a show prints.
#ifndef UX_TESTS_WIDGETS_CALENDAR_TEST_H
#define UX_TESTS_WIDGETS_CALENDAR_TEST_H

#include "tests/widgets/picture_widget_test.h"

#include <climits>

class CalendarTest : public PictureWidgetTest {
  protected:
    static constexpr int k_width = 318; // (318 - 178) / 7 - 3 = 17, even: 16
    static constexpr int k_height =
        230; // (230 - 80) / 6 = 25 rows from cell to cell, 20 of them seen

    void SetUp() override {
        PictureWidgetTest::SetUp();
        ux_page_init(&other_page);
        make_screen(320, 232);
        directory = folder.path("");
        directory.pop_back();
        write("black.png", {255, 0, 0, 255});
        unsetenv("FontSize");
        ASSERT_EQ(ux_open_font(), 0);
        take_calls();
    }
    void TearDown() override {
        ux_close_font();
        main_screen.pages[1] = nullptr; // this record is no block of the heap
        PictureWidgetTest::TearDown();
    }

    ux_calendar *make() { return make(root()); }
    ux_calendar *make(ux_container *parent) {
        return ux_calendar_new(parent, 1, 2, k_width, k_height, directory.c_str());
    }

    static std::string shown(ux_calendar *calendar) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(ux_calendar_show(&calendar->obj), 0);
        return testing::internal::GetCapturedStdout();
    }

    // What a show of a month prints.
    static std::string shown(ux_calendar *calendar, int year, int month) {
        ux_calendar_set_date(calendar, year, month, 1);
        return shown(calendar);
    }

    // The trace of `count` drawn pictures.
    std::string trace(int count) const {
        std::string lines;
        for (int i = 0; i < count; i++)
            lines += "ADV Play PHOTO " + directory + "/black.png\n";
        return lines;
    }

    // The codes of the glyphs fetched since the last call.
    static std::string glyphs_fetched() {
        constexpr char prefix[] = "FSS_get_bitmap ";
        std::string text;
        for (const std::string &call : take_calls())
            if (call.rfind(prefix, 0) == 0)
                text += static_cast<char>(std::stoi(call.substr(sizeof prefix - 1)));
        return text;
    }

    ux_page other_page = {}; // page 1
    std::string directory;   // holds "black.png", which is red
};

#endif
