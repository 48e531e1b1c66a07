// SPDX-License-Identifier: MIT
// Sheets of slider bars: states across, kinds of sliders down; and extremes of their geometry.

#include "tests/golden/golden_test.h"

#include <cstdlib>

namespace {

constexpr int k_cell_width = 136;
constexpr int k_cell_height = 48;
constexpr int k_margin = 4;
constexpr int k_sign_height = 24; // of a bar that has room for signs of 16 pixels

enum state { k_at_minimum, k_inside, k_at_maximum, k_focused, k_moved_back, k_states };

class SliderBarGolden : public GoldenTest {
  protected:
    void SetUp() override {
        GoldenTest::SetUp();
        setenv("FontSize", "16", 1);
        testing::internal::CaptureStdout();
        ASSERT_EQ(ux_open_font(), 0);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "open font *****************\n");
    }

    void TearDown() override {
        EXPECT_EQ(ux_close_font(), 0);
        unsetenv("FontSize");
        GoldenTest::TearDown();
    }

    ux_slider_bar *make(int column, int row, int height) {
        return ux_slider_bar_new(root(), column * k_cell_width + k_margin,
                                 row * k_cell_height + k_margin, k_cell_width - 2 * k_margin,
                                 height);
    }

    static void press(ux_handler key, ux_obj *target) {
        ux_event event = {};
        event.type = UX_EVENT_KEY;
        event.obj = target;
        key(&event);
    }

    // Every slider was shown before, so that later states paint over earlier ones.
    static void bring_into(ux_slider_bar *slider, int wanted) {
        ux_obj *obj = &slider->obj;
        obj->show(obj);
        if (wanted == k_inside || wanted == k_focused)
            ux_slider_bar_set_pos(slider, (slider->minimum + slider->maximum) / 2);
        if (wanted == k_at_maximum || wanted == k_moved_back)
            ux_slider_bar_set_pos(slider, slider->maximum);
        if (wanted == k_focused)
            obj->set_focus(obj);
        obj->repaint(obj);
        if (wanted == k_focused)
            obj->unset_focus(obj); // gives the keys back; shown focused
        if (wanted == k_moved_back)
            for (int i = 0; i < 3; i++)
                press(ux_slider_bar_key_left, obj);
    }

    static void color(ux_slider_bar *slider) {
        slider->bar_color = 0xFF203A60;
        slider->thumb_color = 0xFFFFD54A;
        ux_slider_bar_set_fg_color(slider, 0xFFFFFFFF, 0xFFFFD54A);
        ux_slider_bar_set_bg_color(slider, 0xFF0E1726, 0xFF2459B8);
        ux_obj_set_border_colors(&slider->obj, 0xFF80A0FF, 0xFFFF6000);
    }

    void paint_rows() {
        for (int column = 0; column < k_states; column++) {
            bring_into(make(column, 0, k_sign_height), column);

            ux_slider_bar *coloured = make(column, 1, k_sign_height);
            color(coloured);
            ux_slider_bar_set_border(coloured, 2);
            bring_into(coloured, column);

            ux_slider_bar *clear = make(column, 2, k_sign_height);
            ux_slider_bar_set_fg_color(clear, 0xFFFFFFFF, 0xFFFFD54A);
            ux_slider_bar_set_bg_color(clear, UX_COLOR_NONE, UX_COLOR_NONE);
            ux_slider_bar_set_border(clear, 1);
            bring_into(clear, column);

            ux_slider_bar *numbered = make(column, 3, 2 * k_sign_height - 8);
            color(numbered);
            numbered->show_numbers = 1;
            ux_slider_bar_set_minmax(numbered, 0, 8);
            ux_slider_bar_set_step(numbered, 1);
            bring_into(numbered, column);
        }
    }
};

} // namespace

TEST_F(SliderBarGolden, sliders_look_right_in_every_state) {
    make_screen(k_states * k_cell_width, 4 * k_cell_height);
    paint_rows();
    expect_golden("slider_bar_states");
}

TEST_F(SliderBarGolden, sliders_of_a_16_bit_screen_have_everything_but_their_texts) {
    make_screen(k_states * k_cell_width, 4 * k_cell_height, UX_COLOR_MODE_RGB565);
    testing::internal::CaptureStderr();
    paint_rows();
    EXPECT_EQ(testing::internal::GetCapturedStderr().find("Unknown bpp : 2\n"), 0u);
    expect_golden("slider_bar_states_565");
}

TEST_F(SliderBarGolden, thumbs_borders_and_bars_of_any_size_look_right) {
    constexpr int columns = 4;
    make_screen(columns * k_cell_width, 4 * k_cell_height);
    for (int column = 0; column < columns; column++) {
        const int ranges[] = {1, 2, 5, 1000000};
        ux_slider_bar *ranged = make(column, 0, k_sign_height);
        ux_slider_bar_set_minmax(ranged, 0, ranges[column]);
        ux_slider_bar_set_pos(ranged, ranges[column] / 2);
        ranged->obj.show(&ranged->obj);

        const int heights[] = {1, 2, 12, 38};
        ux_slider_bar *high = make(column, 1, heights[column]);
        ux_slider_bar_set_pos(high, 40);
        high->obj.show(&high->obj);

        const int borders[] = {1, 4, 11, 16};
        ux_slider_bar *bordered = make(column, 2, k_sign_height);
        ux_slider_bar_set_border(bordered, borders[column]);
        ux_slider_bar_set_pos(bordered, 40);
        bordered->obj.show(&bordered->obj);

        const int widths[] = {60, 40, 33, 32}; // the last two: a track shorter than the thumb
        ux_slider_bar *narrow = make(column, 3, 32);
        color(narrow);
        ux_slider_bar_set_size(narrow, narrow->obj.x, narrow->obj.y, widths[column], 16);
        narrow->obj.show(&narrow->obj);
    }
    expect_golden("slider_bar_sizes");
}
