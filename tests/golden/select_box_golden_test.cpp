// SPDX-License-Identifier: MIT
// Sheets of select boxes: states across, kinds of boxes down; and boxes of odd geometry.

#include "tests/golden/golden_test.h"

#include <cstdlib>
#include <vector>

namespace {

constexpr int k_cell_width = 128;
constexpr int k_cell_height = 32;
constexpr int k_margin = 4;

enum state { k_normal, k_focused, k_stepped, k_states };

class SelectBoxGolden : public GoldenTest {
  protected:
    void SetUp() override {
        GoldenTest::SetUp();
        setenv("FontSize", "16", 1);
        testing::internal::CaptureStdout();
        ux_open_font();
        testing::internal::GetCapturedStdout();
    }

    void TearDown() override {
        ux_close_font();
        for (ux_select_box *box : m_boxes)
            ux_select_box_free_items(box);
        GoldenTest::TearDown();
    }

    ux_select_box *make_at(int x, int y, int width, int height) {
        ux_select_box *box = ux_select_box_new(root(), x, y, width, height);
        m_boxes.push_back(box);
        return box;
    }

    ux_select_box *make(int column, int row) {
        ux_select_box *box =
            make_at(column * k_cell_width + k_margin, row * k_cell_height + k_margin,
                    k_cell_width - 2 * k_margin, k_cell_height - 2 * k_margin);
        for (const char16_t *text : {u"DHCP", u"Static", u"Off"})
            ux_select_box_add_item(box, text);
        return box;
    }

    static void bring_into(ux_select_box *box, int wanted) {
        ux_obj *obj = &box->obj;
        obj->show(obj);
        if (wanted != k_normal)
            obj->set_focus(obj);
        obj->repaint(obj);
        ux_event event = {};
        event.obj = obj;
        if (wanted == k_stepped)
            ux_select_box_key_right(&event);
        obj->unset_focus(obj);
    }

    // Kinds of boxes down: plain, coloured, without background, without items.
    void paint_rows() {
        for (int column = 0; column < k_states; column++) {
            ux_select_box *plain = make(column, 0);
            plain->obj.border = 1;
            bring_into(plain, column);

            ux_select_box *coloured = make(column, 1);
            coloured->obj.border = 3;
            ux_select_box_set_fg_color(coloured, 0xFFFFFFFF, 0xFF000000);
            ux_select_box_set_bg_color(coloured, 0xFF1840A0, 0xFFFFC020);
            ux_obj_set_border_colors(&coloured->obj, 0xFF80A0FF, 0xFFFF6000);
            bring_into(coloured, column);

            ux_select_box *clear = make(column, 2);
            clear->obj.border = 2;
            ux_select_box_set_bg_color(clear, UX_COLOR_NONE, UX_COLOR_NONE);
            bring_into(clear, column);

            ux_select_box *empty = make(column, 3);
            empty->obj.border = 1;
            ux_select_box_free_items(empty);
            bring_into(empty, column);
        }
    }

  private:
    std::vector<ux_select_box *> m_boxes;
};

} // namespace

TEST_F(SelectBoxGolden, boxes_look_right_in_every_state) {
    make_screen(k_states * k_cell_width, 4 * k_cell_height);
    paint_rows();
    expect_golden("select_box_states");
}

TEST_F(SelectBoxGolden, boxes_of_a_16_bit_screen_have_everything_but_their_text) {
    make_screen(k_states * k_cell_width, 4 * k_cell_height, UX_COLOR_MODE_RGB565);
    testing::internal::CaptureStderr();
    paint_rows();
    EXPECT_EQ(testing::internal::GetCapturedStderr().find("Unknown bpp : 2\n"), 0u);
    expect_golden("select_box_states_565");
}

// Heights from low to high, each with its own room for the signs; then a box narrower than its
// signs, a thick border, a text too long, one over the screen's edge.
TEST_F(SelectBoxGolden, boxes_of_odd_geometry_look_right) {
    make_screen(3 * k_cell_width, 190);
    const int heights[] = {8, 17, 20, 30, 45};
    for (int i = 0, y = 4; i < 5; y += heights[i++] + 8) {
        ux_select_box *box = make_at(4, y, 150, heights[i]);
        ux_select_box_add_item(box, u"Item");
        box->obj.border = 1;
        box->obj.show(&box->obj);
    }
    const int places[][4] = {
        {200, 4, 14, 24}, {200, 40, 150, 40}, {200, 90, 80, 24}, {330, 160, 100, 40}};
    for (const auto &place : places) {
        ux_select_box *box = make_at(place[0], place[1], place[2], place[3]);
        ux_select_box_add_item(box, u"Automatic choice");
        box->obj.border = place[1] == 40 ? 8 : 1;
        box->obj.show(&box->obj);
    }
    expect_golden("select_box_geometry");
}
