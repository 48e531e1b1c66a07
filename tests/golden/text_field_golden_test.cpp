// SPDX-License-Identifier: MIT
// Sheets of text fields: states across, kinds of fields down; and fields of odd geometry.

#include "tests/golden/golden_test.h"

#include <cstdlib>

namespace {

constexpr int k_cell_width = 96;
constexpr int k_cell_height = 32;
constexpr int k_margin = 4;

enum state { k_normal, k_focused, k_selected, k_both, k_states };

class TextFieldGolden : public GoldenTest {
  protected:
    void SetUp() override {
        GoldenTest::SetUp();
        setenv("FontSize", "16", 1);
    }

    ux_text_field *make(int column, int row, const char16_t *text) {
        return ux_text_field_new(root(), column * k_cell_width + k_margin,
                                 row * k_cell_height + k_margin, k_cell_width - 2 * k_margin,
                                 k_cell_height - 2 * k_margin, text);
    }

    static void bring_into(ux_text_field *field, int wanted) {
        ux_obj *obj = &field->obj;
        obj->show(obj);
        if (wanted == k_focused || wanted == k_both)
            obj->set_focus(obj);
        if (wanted == k_selected || wanted == k_both)
            obj->set_select(obj);
        obj->repaint(obj);
        obj->unset_focus(obj);
    }

    static void color(ux_text_field *field) {
        ux_text_field_set_fg_color(field, 0xFFFFFFFF, 0xFF000000);
        ux_text_field_set_bg_color(field, 0xFF1840A0, 0xFFFFC020);
        ux_text_field_set_bg_scolor(field, 0xFF303030, 0xFFE0E0E0);
        ux_obj_set_border_colors(&field->obj, 0xFF80A0FF, 0xFFFF6000);
    }

    // Kinds of fields down: plain, coloured, without background, password, background in one state.
    void paint_rows() {
        for (int column = 0; column < k_states; column++) {
            ux_text_field *plain = make(column, 0, u"Ada 1815");
            ux_text_field_set_border(plain, 1);
            bring_into(plain, column);

            ux_text_field *coloured = make(column, 1, u"192.168.0.1");
            color(coloured);
            ux_text_field_set_border(coloured, 3);
            bring_into(coloured, column);

            ux_text_field *clear = make(column, 2, u"clear");
            ux_text_field_set_bg_color(clear, UX_COLOR_NONE, UX_COLOR_NONE);
            ux_text_field_set_border(clear, 2);
            bring_into(clear, column);

            ux_text_field *secret = make(column, 3, u"secret");
            ux_text_field_set_pw_type(secret, '*', 1);
            ux_text_field_set_border(secret, 1);
            bring_into(secret, column);

            ux_text_field *changing = make(column, 4, u"half");
            color(changing);
            ux_text_field_set_fg_color(changing, 0xFFFFFFFF, 0xFF80FF80);
            ux_text_field_set_bg_color(changing, 0xFF203040, UX_COLOR_NONE);
            bring_into(changing, column);
        }
    }
};

} // namespace

TEST_F(TextFieldGolden, fields_look_right_in_every_state) {
    make_screen(k_states * k_cell_width, 5 * k_cell_height);
    paint_rows();
    expect_golden("text_field_states");
}

TEST_F(TextFieldGolden, fields_of_a_16_bit_screen_have_everything_but_their_text) {
    make_screen(k_states * k_cell_width, 5 * k_cell_height, UX_COLOR_MODE_RGB565);
    testing::internal::CaptureStderr();
    paint_rows();
    EXPECT_EQ(testing::internal::GetCapturedStderr().find("Unknown bpp : 2\n"), 0u);
    expect_golden("text_field_states_565");
}

// Borders of any width; then a text too long, a field too low for a line, one of a single pixel,
// one over the screen's edge.
TEST_F(TextFieldGolden, fields_of_odd_geometry_look_right) {
    make_screen(4 * k_cell_width, 3 * k_cell_height);
    const int widths[] = {0, 2, 4, 6, 11, 12, 40, -3};
    for (int i = 0; i < 8; i++) {
        ux_text_field *field = make(i % 4, i / 4, u"Ok");
        ux_text_field_set_border(field, widths[i]);
        field->obj.show(&field->obj);
    }
    ux_text_field *fields[] = {make(0, 2, u"wider than the field"), make(1, 2, u"low"),
                               make(2, 2, u"dot"), make(3, 2, u"edge of the screen")};
    ux_text_field_set_size(fields[1], k_cell_width + k_margin, 2 * k_cell_height + k_margin, 60,
                           15);
    ux_text_field_set_size(fields[2], 2 * k_cell_width + 40, 2 * k_cell_height + 16, 1, 1);
    ux_text_field_set_size(fields[3], 4 * k_cell_width - 40, 3 * k_cell_height - 20, 80, 24);
    for (ux_text_field *field : fields) {
        ux_text_field_set_border(field, 1);
        field->obj.show(&field->obj);
    }
    expect_golden("text_field_geometry");
}
