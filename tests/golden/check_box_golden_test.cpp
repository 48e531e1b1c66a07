// SPDX-License-Identifier: MIT
// Sheets of check boxes: states across, kinds of boxes down; and heights.

#include "tests/golden/golden_test.h"

#include <cstdlib>

namespace {

constexpr int k_cell_width = 104;
constexpr int k_cell_height = 32;
constexpr int k_margin = 4;

enum state { k_normal, k_focused, k_checked, k_checked_focused, k_unchecked_again, k_states };

class CheckBoxGolden : public GoldenTest {
  protected:
    void SetUp() override {
        GoldenTest::SetUp();
        setenv("FontSize", "16", 1);
    }

    void TearDown() override {
        unsetenv("FontSize");
        GoldenTest::TearDown();
    }

    ux_check_box *make(int column, int row, const char16_t *text) {
        return ux_check_box_new(root(), column * k_cell_width + k_margin,
                                row * k_cell_height + k_margin, k_cell_width - 2 * k_margin,
                                k_cell_height - 2 * k_margin, text);
    }

    // Every box was shown before, so that later states paint over earlier ones.
    static void bring_into(ux_check_box *box, int wanted) {
        ux_obj *obj = &box->obj;
        obj->show(obj);
        if (wanted == k_focused || wanted == k_checked_focused)
            obj->set_focus(obj);
        if (wanted >= k_checked)
            box->checked = 1;
        obj->repaint(obj);
        if (wanted != k_unchecked_again)
            return;
        box->checked = 0;
        obj->repaint(obj);
    }

    void paint_rows() {
        for (int column = 0; column < k_states; column++) {
            ux_check_box *clear = make(column, 0, u"Shuffle");
            clear->fg_color = 0xFFFFFFFF;
            clear->focus_fg_color = 0xFFFFD54A;
            clear->bg_color = clear->focus_bg_color = UX_COLOR_NONE;
            bring_into(clear, column);

            ux_check_box *half_clear = make(column, 1, u"Repeat");
            half_clear->bg_color = UX_COLOR_NONE;
            half_clear->focus_fg_color = 0xFF000000;
            half_clear->focus_bg_color = 0xFFFFC020;
            bring_into(half_clear, column);

            ux_check_box *filled = make(column, 2, u"Mute");
            filled->focus_fg_color = 0xFFFFC020;
            bring_into(filled, column);

            ux_check_box *bordered = make(column, 3, u"");
            bordered->fg_color = 0xFF80FF80;
            bordered->bg_color = UX_COLOR_NONE;
            bordered->obj.border = 3; // not painted
            bring_into(bordered, column);
        }
    }
};

} // namespace

TEST_F(CheckBoxGolden, boxes_look_right_in_every_state) {
    make_screen(k_states * k_cell_width, 4 * k_cell_height);
    paint_rows();
    expect_golden("check_box_states");
}

TEST_F(CheckBoxGolden, boxes_of_a_16_bit_screen_have_everything_but_their_caption) {
    make_screen(k_states * k_cell_width, 4 * k_cell_height, UX_COLOR_MODE_RGB565);
    testing::internal::CaptureStderr();
    paint_rows();
    EXPECT_EQ(testing::internal::GetCapturedStderr().find("Unknown bpp : 2\n"), 0u);
    expect_golden("check_box_states_565");
}

TEST_F(CheckBoxGolden, boxes_of_any_height_look_right) {
    constexpr int columns = 7;
    constexpr int width = 68;
    constexpr int height = 56;
    make_screen(columns * width, 2 * height);
    const int heights[] = {-6, 1, 5, 7, 8, 9, 10, 11, 12, 16, 20, 24, 32, 48};
    for (int i = 0; i < 2 * columns; i++) {
        ux_check_box *box = ux_check_box_new(root(), i % columns * width + k_margin,
                                             i / columns * height + k_margin + (i == 0 ? 20 : 0),
                                             width - k_margin, heights[i], u"Hi");
        box->fg_color = 0xFFFFFFFF;
        box->bg_color = UX_COLOR_NONE;
        box->checked = 1;
        box->obj.show(&box->obj);
    }
    expect_golden("check_box_heights");
}
