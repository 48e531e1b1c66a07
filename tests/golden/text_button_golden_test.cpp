// SPDX-License-Identifier: MIT
// Sheets of text buttons: states across, kinds of buttons down.

#include "tests/golden/golden_test.h"

namespace {

constexpr int k_cell_width = 72;
constexpr int k_cell_height = 32;
constexpr int k_margin = 4;

enum state { k_normal, k_focused, k_selected, k_both, k_hidden, k_states };

class TextButtonGolden : public GoldenTest {
  protected:
    ux_text_button *make(int column, int row, const char16_t *text) {
        return ux_text_button_new(root(), column * k_cell_width + k_margin,
                                  row * k_cell_height + k_margin, k_cell_width - 2 * k_margin,
                                  k_cell_height - 2 * k_margin, text);
    }

    // Every button was shown before, so that later states paint over earlier ones.
    static void bring_into(ux_text_button *button, int wanted) {
        ux_obj *obj = &button->obj;
        obj->show(obj);
        if (wanted == k_focused || wanted == k_both)
            obj->set_focus(obj);
        if (wanted == k_selected || wanted == k_both)
            obj->set_select(obj);
        if (wanted == k_hidden)
            obj->hide(obj);
    }

    // Four kinds of buttons in each state.
    void paint_all_states() {
        make_screen(k_states * k_cell_width, 4 * k_cell_height);
        paint_rows();
    }

    void paint_rows() {
        for (int column = 0; column < k_states; column++) {
            ux_text_button *plain = make(column, 0, u"Play");
            ux_text_button_set_border(plain, 1);
            bring_into(plain, column);

            ux_text_button *coloured = make(column, 1, u"Stop");
            color(coloured);
            ux_text_button_set_border(coloured, 3);
            bring_into(coloured, column);

            ux_text_button *clear = make(column, 2, u"Pause");
            ux_text_button_set_bg_color(clear, UX_COLOR_NONE, UX_COLOR_NONE);
            ux_text_button_set_bg_scolor(clear, UX_COLOR_NONE, UX_COLOR_NONE);
            ux_text_button_set_border(clear, 2);
            bring_into(clear, column);

            ux_text_button *changing = make(column, 3, u"Eject");
            color(changing);
            ux_text_button_set_bg_color(changing, 0xFF203040, UX_COLOR_NONE);
            bring_into(changing, column);
        }
    }

    static void color(ux_text_button *button) {
        ux_text_button_set_fg_color(button, 0xFFFFFFFF, 0xFF000000);
        ux_text_button_set_bg_color(button, 0xFF1840A0, 0xFFFFC020);
        ux_text_button_set_bg_scolor(button, 0xFF303030, 0xFFE0E0E0);
        ux_text_button_set_border_color(button, 0xFF80A0FF, 0xFFFF6000);
    }
};

} // namespace

TEST_F(TextButtonGolden, buttons_look_right_in_every_state) {
    paint_all_states();
    expect_golden("text_button_states");
}

TEST_F(TextButtonGolden, buttons_of_a_16_bit_screen_have_everything_but_their_text) {
    make_screen(k_states * k_cell_width, 4 * k_cell_height, UX_COLOR_MODE_RGB565);
    testing::internal::CaptureStderr();
    paint_rows();
    EXPECT_EQ(testing::internal::GetCapturedStderr().find("Unknown bpp : 2\n"), 0u);
    expect_golden("text_button_states_565");
}

TEST_F(TextButtonGolden, borders_of_any_width_look_right) {
    make_screen(4 * k_cell_width, 3 * k_cell_height);
    const int widths[] = {0, 1, 2, 4, 6, 11, 14, 40};
    for (int i = 0; i < 8; i++) {
        ux_text_button *button = make(i % 4, i / 4, u"Ok");
        ux_text_button_set_border(button, widths[i]);
        button->obj.show(&button->obj);
    }
    for (int i = 0; i < 4; i++) {
        ux_text_button *button = make(i, 2, u"Side");
        ux_text_button_set_border(button, 4);
        ux_obj_set_border_color(&button->obj, UX_SIDE_TOP, 0xFFFF4040, 0xFFFF00FF);
        ux_obj_set_border_color(&button->obj, UX_SIDE_BOTTOM, 0xFF40FF40, 0);
        ux_obj_set_border_color(&button->obj, UX_SIDE_LEFT, 0xFF4040FF, 0);
        ux_obj_set_border_color(&button->obj, UX_SIDE_RIGHT, i == 1 ? 0 : 0xFFFFFF40, 0);
        if (i == 2)
            ux_obj_set_border_color(&button->obj, UX_SIDE_TOP, 0, 0);
        button->obj.show(&button->obj);
        if (i > 1)
            button->obj.set_focus(&button->obj);
    }
    expect_golden("text_button_borders");
}
