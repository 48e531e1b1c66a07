// SPDX-License-Identifier: MIT
// Image buttons in every state, and image labels beside them.

#include "tests/golden/golden_test.h"

namespace {

constexpr int k_cell = 96;
constexpr int k_margin = 4;
constexpr int k_side = k_cell - 2 * k_margin;

enum state { k_normal, k_focused, k_selected, k_both, k_focus_gone, k_states };

class ImageGolden : public GoldenTest {
  protected:
    static std::string picture(const char *name) {
        return UX_GOLDEN_BUTTONS "/" + std::string(name);
    }

    static void set_path(char (&field)[UX_PATH_BYTES], const char *name) {
        snprintf(field, sizeof field, "%s", picture(name).c_str());
    }

    // The selected states have another drawing: the host writes them.
    ux_image_button *make_button(int column) {
        ux_image_button *button =
            ux_image_button_new(root(), column * k_cell + k_margin, k_margin, k_side, k_side,
                                picture("show.png").c_str(), picture("show-focus.png").c_str());
        set_path(button->select_image, "tv.png");
        set_path(button->select_focus_image, "tv-focus.png");
        return button;
    }

    // Every button was shown before, so that later states paint over earlier ones.
    static void bring_into(ux_image_button *button, int wanted) {
        ux_obj *obj = &button->obj;
        obj->show(obj);
        if (wanted == k_focused || wanted == k_both || wanted == k_focus_gone)
            obj->set_focus(obj);
        if (wanted == k_selected || wanted == k_both)
            obj->set_select(obj);
        obj->repaint(obj);
        if (wanted != k_focus_gone)
            return;
        obj->unset_focus(obj);
        obj->repaint(obj);
    }

    void show_label(int column, int width, int height, const std::string &path) {
        ux_image_label *label = ux_image_label_new(root(), column * k_cell + k_margin,
                                                   k_cell + k_margin, width, height, path.c_str());
        label->obj.show(&label->obj);
    }
};

} // namespace

TEST_F(ImageGolden, buttons_show_the_picture_of_their_state_and_labels_fit_theirs) {
    make_screen(k_states * k_cell, 2 * k_cell);
    for (int column = 0; column < k_states; column++)
        bring_into(make_button(column), column);
    show_label(0, k_side, k_side, picture("leave.png"));
    show_label(1, k_side, k_side / 2, picture("leave.png"));
    show_label(2, k_cell + k_side, k_side, UX_GOLDEN_PHOTOS "/lake.jpg");
    show_label(4, k_side, k_side, ""); // nothing to draw
    expect_golden("image_states");
}
