// SPDX-License-Identifier: MIT
// Containers with each kind of background, focused, and with children that overlap.

#include "tests/golden/golden_test.h"

namespace {

constexpr int k_cell = 96;
constexpr int k_margin = 6;
constexpr int k_side = k_cell - 2 * k_margin;
constexpr int k_columns = 5;

class ContainerGolden : public GoldenTest {
  protected:
    ux_container *make(int column) {
        ux_container *container =
            ux_container_new(root(), column * k_cell + k_margin, k_margin, k_side, k_side);
        ux_container_set_border(container, 3);
        return container;
    }

    static void add_button(ux_container *parent, int x, int y, const char16_t *text,
                           uint32_t color) {
        ux_text_button *button = ux_text_button_new(parent, parent->obj.x + x, parent->obj.y + y,
                                                    k_side * 2 / 3, 24, text);
        ux_text_button_set_fg_color(button, 0xFFFFFFFF, 0xFFFFFFFF);
        ux_text_button_set_bg_color(button, color, color);
        ux_text_button_set_border(button, 1);
    }

    static void show(ux_container *container) { container->obj.show(&container->obj); }

    // The children are deleted here: the fixture knows those of the page only.
    static void delete_children(ux_container *container) {
        while (container->children)
            ux_container_del_obj(container, container->children, 0, 0);
    }
};

} // namespace

TEST_F(ContainerGolden, backgrounds_and_borders_look_right_and_older_children_lie_on_top) {
    make_screen(k_columns * k_cell, k_cell);
    ux_container *coloured = make(0);
    ux_container_set_bg_color(coloured, 0xFF1840A0);
    show(coloured);
    ux_container *picture = make(1);
    ux_container_set_bg_image(picture, UX_GOLDEN_PHOTOS "/lake.jpg");
    show(picture);
    ux_container *clear = make(2);
    ux_container_set_bg_color(clear, UX_COLOR_NONE);
    show(clear);
    ux_container *focused = make(3);
    ux_container_set_focus(&focused->obj);
    show(focused);
    ux_container *parent = make(4);
    ux_container_set_bg_color(parent, 0xFF303030);
    add_button(parent, 8, 14, u"old", 0xFF1840A0);
    add_button(parent, 18, 30, u"next", 0xFF208040);
    add_button(parent, 24, 46, u"new", 0xFF803020);
    show(parent);
    expect_golden("container_states");
    delete_children(parent);
}
