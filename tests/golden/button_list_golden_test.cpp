// SPDX-License-Identifier: MIT
// Sheets of button lists: where the current button is, hidden buttons, colours, extremes of
// geometry.

#include "tests/golden/golden_test.h"

#include <cstdlib>

namespace {

constexpr int k_list_width = 96;
constexpr int k_list_height = 128;
constexpr int k_margin = 4;

class ButtonListGolden : public GoldenTest {
  protected:
    void SetUp() override {
        GoldenTest::SetUp();
        setenv("FontSize", "16", 1);
    }

    void TearDown() override {
        unsetenv("FontSize");
        GoldenTest::TearDown();
    }

    // Four buttons in a frame, so that the list's own rectangle can be seen.
    ux_button_list *make(int column, int gap) {
        const int x = column * (k_list_width + k_margin) + k_margin;
        uxDrawRect(x - 1, k_margin - 1, x + k_list_width, k_margin + k_list_height, 0xFFFFFFFF);
        ux_button_list *list =
            ux_button_list_new(root(), x, k_margin, k_list_width, k_list_height, 4, gap);
        const char16_t *const texts[] = {u"Music", u"Films", u"Photos", u"Radio"};
        for (int i = 0; i < 4; i++)
            ux_button_list_set_text(list, i, texts[i]);
        return list;
    }

    static void color(ux_button_list *list) {
        ux_button_list_set_item_fg_color(list, 0xFFC0D0F0, 0xFF000000);
        ux_button_list_set_item_bg_color(list, 0xFF203A60, 0xFFFFD54A);
        ux_button_list_set_item_border(list, 2);
        ux_button_list_set_item_border_color(list, 0xFF80A0FF, 0xFFFF6000);
    }

    static void press(ux_handler key, ux_button_list *list) {
        ux_event event = {};
        event.type = UX_EVENT_KEY;
        event.obj = &list->container.obj;
        key(&event);
    }

    // The states of a list from left to right.
    void paint_states() {
        for (int column = 0; column < 6; column++) {
            ux_button_list *list = make(column, 4);
            ux_obj *obj = &list->container.obj;
            if (column > 2)
                color(list);
            obj->show(obj);
            if (column % 3 > 0)
                obj->set_focus(obj);
            if (column % 3 == 2) {
                ux_button_list_set_text(list, 1, nullptr);
                press(ux_button_list_event_move_down, list);
                obj->repaint(obj);
            }
        }
    }
};

} // namespace

TEST_F(ButtonListGolden, lists_look_right_without_focus_with_focus_and_moved_past_a_hidden_button) {
    make_screen(6 * (k_list_width + k_margin) + k_margin, k_list_height + 2 * k_margin);
    paint_states();
    expect_golden("button_list_states");
}

TEST_F(ButtonListGolden, lists_of_a_16_bit_screen_have_everything_but_their_texts) {
    make_screen(6 * (k_list_width + k_margin) + k_margin, k_list_height + 2 * k_margin,
                UX_COLOR_MODE_RGB565);
    testing::internal::CaptureStderr();
    paint_states();
    EXPECT_EQ(testing::internal::GetCapturedStderr().find("Unknown bpp : 2\n"), 0u);
    expect_golden("button_list_states_565");
}

TEST_F(ButtonListGolden, lists_of_any_gap_and_size_look_right) {
    const int gaps[] = {0, 12, -6, 24, 40, 4};
    make_screen(6 * (k_list_width + k_margin) + k_margin, k_list_height + 2 * k_margin);
    for (int column = 0; column < 6; column++) {
        ux_button_list *list = make(column, gaps[column]);
        ux_obj *obj = &list->container.obj;
        color(list);
        if (column == 5) // odd width, lower, over what it painted before
            ux_button_list_set_size(list, obj->x + 10, obj->y + 10, 61, 108);
        obj->show(obj);
        obj->set_focus(obj);
    }
    expect_golden("button_list_gaps");
}
