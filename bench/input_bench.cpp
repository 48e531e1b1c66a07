// SPDX-License-Identifier: MIT
// A key press to painted pixels for each input widget, without the main loop's sleep, beside memset
// over the same rectangle. The name of a task tells which share of the screen's pixels one press
// writes.

#include "bench/bench_screen.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr int k_left = 400;
constexpr int k_top = 100;
constexpr int k_row = 60;
constexpr int k_input_width = 436;
constexpr int k_input_height = 40;
constexpr int k_list_height = 340;
constexpr uint32_t k_untouched = 0x12345678;

// The widgets, on a page of their own.
struct inputs {
    int page_id = -1;
    ux_text_field *field = nullptr;
    ux_select_box *choice = nullptr;
    ux_check_box *check = nullptr;
    ux_slider_bar *slider = nullptr;
    ux_button_list *list = nullptr;
};

inputs make_inputs() {
    inputs made;
    use_screen();
    open_font_once();
    made.page_id = ux_page_new();
    ux_page *page = main_screen.pages[made.page_id];
    ux_container *root = &page->container;
    const auto y = [](int row) { return k_top + row * k_row; };
    made.field = ux_text_field_new(root, k_left, y(0), k_input_width, k_input_height, u"4711");
    ux_text_field_set_type(made.field, UX_INPUT_NUMERIC);
    ux_text_field_set_border(made.field, 4);
    made.choice = ux_select_box_new(root, k_left, y(1), k_input_width, k_input_height);
    for (const char16_t *text : {u"Living room", u"Kitchen", u"Garden"})
        ux_select_box_add_item(made.choice, text);
    made.check = ux_check_box_new(root, k_left, y(2), k_input_width, k_input_height, u"By itself");
    made.check->bg_color = UX_COLOR_NONE;
    made.slider = ux_slider_bar_new(root, k_left, y(3), k_input_width, k_input_height);
    ux_slider_bar_set_border(made.slider, 4);
    made.list = ux_button_list_new(root, k_left, y(4), k_input_width, k_list_height, 3, 10);
    for (int i = 0; i < made.list->item_count; i++)
        ux_button_list_set_text(made.list, i, u"Start again");
    main_screen.current_page = made.page_id;
    ux_page_clean();
    root->obj.show(&root->obj);
    return made;
}

inputs &the_inputs() {
    static inputs made = make_inputs();
    return made;
}

// As the main loop does it.
void press(int key, ux_obj *target) {
    ux_page *page = main_screen.pages[the_inputs().page_id];
    main_screen.current_page = the_inputs().page_id;
    if (page->focus != target)
        target->set_focus(target);
    ux_event event = {};
    event.type = UX_EVENT_KEY;
    event.value = key;
    event.obj = target;
    page->key_handlers[key](&event);
}

// Two keys in turn, so that every press changes something.
void press_in_turn(int first, int second, ux_obj *target) {
    static bool turn = false;
    turn = !turn;
    press(turn ? first : second, target);
}

// A check box takes no keys: this is what a host's handler does.
void toggle(ux_check_box *box) {
    main_screen.current_page = the_inputs().page_id;
    box->checked = !box->checked;
    box->obj.show(&box->obj);
}

template <class Work>
double written_percent(Work work) {
    use_screen();
    work();
    for (size_t i = 0; i < k_pixels; i++)
        screen_pixels()[i] = k_untouched;
    work();
    size_t written = 0;
    for (size_t i = 0; i < k_pixels; i++)
        written += screen_pixels()[i] != k_untouched;
    return 100.0 * static_cast<double>(written) / k_pixels;
}

void clear(const ux_obj *obj) {
    for (int row = 0; row < obj->height; row++)
        memset(screen_pixels() + (obj->y + row) * k_width + obj->x, 0,
               static_cast<size_t>(obj->width) * sizeof(uint32_t));
}

template <class Work>
void register_input(const char *widget, const ux_obj *obj, Work work) {
    char percent[32];
    snprintf(percent, sizeof percent, "%.2f", written_percent(work));
    const std::string task = std::string("key to ") + widget + ", " + percent + " %";
    contender((task + "/ux").c_str(), work);
    contender((task + "/memset").c_str(), [obj] { clear(obj); });
}

} // namespace

void register_input_widgets() {
    inputs &in = the_inputs();
    register_input("text field", &in.field->obj,
                   [&in] { press_in_turn(UX_KEY_5, UX_KEY_DELETE, &in.field->obj); });
    register_input("select box", &in.choice->obj, [&in] { press(UX_KEY_RIGHT, &in.choice->obj); });
    register_input("check box", &in.check->obj, [&in] { toggle(in.check); });
    register_input("slider bar", &in.slider->obj,
                   [&in] { press_in_turn(UX_KEY_RIGHT, UX_KEY_LEFT, &in.slider->obj); });
    register_input("button list", &in.list->container.obj,
                   [&in] { press_in_turn(UX_KEY_DOWN, UX_KEY_UP, &in.list->container.obj); });
}
