// SPDX-License-Identifier: MIT
// The fixture of the slider bar's tests: an open font whose signs are as large as a test says.
#ifndef UX_TESTS_WIDGETS_SLIDER_TEST_H
#define UX_TESTS_WIDGETS_SLIDER_TEST_H

#include "tests/widgets/widget_test.h"

#include <functional>

class SliderTest : public WidgetTest {
  protected:
    static constexpr int k_smallest = -2147483647 - 1;
    static constexpr int k_largest = 2147483647;

    static constexpr uint32_t k_track = 0xFF0000B0;
    static constexpr uint32_t k_thumb = 0xFF0000C0;
    static constexpr uint32_t k_ink = 0xFF0000D0;
    static constexpr uint32_t k_ground = 0xFF0000E0;

    static inline std::vector<int> s_told; // what the change handler heard
    static inline std::function<void()> s_during_change;
    static inline ux_slider_bar *s_expected;

    // The font is opened silently; every cell is 3 x 6.
    void SetUp() override {
        WidgetTest::SetUp();
        s_told.clear();
        s_during_change = nullptr;
        set_cell(3, 6);
        testing::internal::CaptureStdout();
        ux_open_font();
        testing::internal::GetCapturedStdout();
        take_calls();
    }

    void TearDown() override {
        ux_close_font();
        WidgetTest::TearDown();
    }

    static void set_cell(uint32_t width, uint32_t height) {
        fake_chip::get().cell_of = [=](uint32_t, uint32_t) {
            return fake_chip::cell{width, height};
        };
    }

    ux_slider_bar *make(int x, int y, int w, int h) {
        ux_slider_bar *slider = ux_slider_bar_new(root(), x, y, w, h);
        slider->bar_color = k_track;
        slider->thumb_color = k_thumb;
        ux_slider_bar_set_fg_color(slider, k_ink, k_ink);
        ux_slider_bar_set_bg_color(slider, k_ground, k_ground);
        return slider;
    }

    static int on_change(ux_slider_bar *slider, int position) {
        EXPECT_EQ(slider, s_expected);
        EXPECT_EQ(position, slider->position);
        s_told.push_back(position);
        if (s_during_change)
            s_during_change();
        return 7; // ignored
    }
    static std::vector<int> take_told() { return std::exchange(s_told, {}); }

    ux_slider_bar *make_with_handler() {
        s_expected = make(0, 0, 16, 8);
        s_expected->change_handler = on_change;
        return s_expected;
    }

    static int press(ux_handler key, ux_obj *target) {
        ux_event event = {};
        event.type = UX_EVENT_KEY;
        event.obj = target;
        return key(&event);
    }
    static int left(ux_slider_bar *slider) { return press(ux_slider_bar_key_left, &slider->obj); }
    static int right(ux_slider_bar *slider) { return press(ux_slider_bar_key_right, &slider->obj); }
};

#endif
