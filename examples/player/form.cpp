// SPDX-License-Identifier: MIT
// Rows of a form and the walk between them; see form.h.
#include "form.h"

#include <algorithm>
#include <vector>

namespace player {

namespace {

constexpr int k_padding = 32;
constexpr int k_row_height = 64;
constexpr int k_first_row = k_top + 16;
constexpr int k_frame_height = 50;
constexpr int k_frame_border = 3;
constexpr int k_frame_padding = 14;  // at the sides
constexpr int k_text_inset = 9;      // from the frame's top to all texts of a row
constexpr int k_control_height = 38; // enough for the engine's signs as high as the text
constexpr int k_check_height = 34;
constexpr int k_caption_width = 240;
constexpr int k_control_left = k_margin + k_padding + k_caption_width + 20;
constexpr int k_control_width = k_margin + k_form_panel_width - k_padding - k_control_left;
constexpr int k_value_width = 96;

constexpr const char16_t *k_change_help = u"Left and right\nchange it.";
constexpr const char16_t *k_type_help = u"Digits type,\ndelete erases.";
constexpr const char16_t *k_check_help = u"OK turns it\non and off.";
constexpr const char16_t *k_action_help = u"OK does it.";

// Where the focus can be: a widget, what shows that it has it, what is told about its keys, and for
// a button what it does.
struct stop {
    ux_obj *widget = nullptr;
    ux_container *frame = nullptr;
    ux_text_label *caption = nullptr;
    const char16_t *help = nullptr;
    ux_handler action = nullptr;
};

struct form {
    ux_page *page = nullptr;
    ux_container *panel = nullptr;
    ux_text_label *help = nullptr;
    std::vector<stop> stops; // in the order of the walk
    size_t focused = 0;
};

form s_form;

// Painting. A frame shows the widget in it.

void show_stop(const stop &where, uint32_t line_color, uint32_t caption_color) {
    if (where.frame)
        ux_obj_set_border_colors(&where.frame->obj, line_color, line_color);
    show(where.frame ? where.frame->obj : *where.widget);
    if (!where.caption)
        return;
    ux_text_label_set_fg_color(where.caption, caption_color);
    show(where.caption->obj);
}

// Walking.

int walk(ux_event *ev) {
    const size_t count = s_form.stops.size();
    go_to((s_form.focused + (ev->value == UX_KEY_DOWN ? 1 : count - 1)) % count);
    return 0;
}

int press_ok(ux_event *ev) {
    const stop &where = s_form.stops[s_form.focused];
    if (where.action)
        return where.action(ev);
    const size_t next = (s_form.focused + 1) % s_form.stops.size();
    if (where.widget->type != UX_TYPE_CHECK_BOX) {
        go_to(next);
        return 0;
    }
    auto *check = reinterpret_cast<ux_check_box *>(where.widget);
    check->checked = !check->checked;
    show(check->obj);
    return 0;
}

// A touch goes to a widget, changes a check box and presses a button.
int touch(ux_event *ev) {
    const auto touched = std::find_if(s_form.stops.begin(), s_form.stops.end(),
                                      [ev](const stop &at) { return at.widget == ev->obj; });
    if (touched == s_form.stops.end())
        return 0;
    const stop &where = *touched;
    go_to(static_cast<size_t>(touched - s_form.stops.begin()));
    if (where.action || where.widget->type == UX_TYPE_CHECK_BOX)
        return press_ok(ev);
    return 0;
}

// Building.

int row_top() {
    return k_first_row + static_cast<int>(s_form.stops.size()) * k_row_height +
           (k_row_height - k_frame_height) / 2;
}

int text_top() {
    return row_top() + k_text_inset;
}

void add_stop(const stop &where) {
    ux_obj_set_handler(where.widget, touch, nullptr);
    s_form.stops.push_back(where);
}

ux_text_label *add_caption(const char16_t *text) {
    return add_label(*s_form.panel,
                     {k_margin + k_padding, text_top(), k_caption_width, k_control_height}, text,
                     k_quiet_color, k_panel_color);
}

ux_container *add_frame() {
    return add_panel(*s_form.panel, {k_control_left, row_top(), k_control_width, k_frame_height},
                     k_control_color, k_frame_border);
}

} // namespace

void begin_form(ux_page &page) {
    s_form.page = &page;
    s_form.panel =
        add_panel(page.container, {k_margin, k_top, k_form_panel_width, k_form_panel_height},
                  k_panel_color, 2);
    ux_page_set_key_handler(&page, UX_KEY_UP, walk);
    ux_page_set_key_handler(&page, UX_KEY_DOWN, walk);
    ux_page_set_key_handler(&page, UX_KEY_OK, press_ok);
}

ux_text_field *add_field(const char16_t *caption, int limit) {
    ux_container *frame = add_frame();
    ux_text_field *field =
        made(ux_text_field_new(frame, k_control_left + k_frame_padding, text_top(),
                               k_control_width - 2 * k_frame_padding, k_control_height, u""));
    ux_text_field_set_fg_color(field, k_text_color, k_title_color);
    ux_text_field_set_bg_color(field, k_control_color, k_control_color);
    ux_text_field_set_limit(field, limit);
    add_stop({&field->obj, frame, add_caption(caption), k_type_help});
    return field;
}

ux_select_box *add_choice(const char16_t *caption, std::initializer_list<const char16_t *> texts) {
    ux_container *frame = add_frame();
    ux_select_box *choice =
        made(ux_select_box_new(frame, k_control_left + k_frame_padding, text_top(),
                               k_control_width - 2 * k_frame_padding, k_control_height));
    for (const char16_t *text : texts) {
        const std::u16string apart = std::u16string(u" ") + text; // from the sign before it
        if (ux_select_box_add_item(choice, apart.c_str()) != 0)
            std::exit(EXIT_FAILURE);
    }
    ux_select_box_set_fg_color(choice, k_text_color, k_title_color);
    ux_select_box_set_bg_color(choice, k_control_color, k_control_color);
    add_stop({&choice->obj, frame, add_caption(caption), k_change_help});
    return choice;
}

// Without a background of its own: mark and caption stand on the panel.
ux_check_box *add_check(const char16_t *caption, const char16_t *text) {
    ux_check_box *check = made(ux_check_box_new(s_form.panel, k_control_left, text_top(),
                                                k_control_width, k_check_height, text));
    check->fg_color = k_text_color;
    check->focus_fg_color = k_focus_line_color;
    check->bg_color = check->focus_bg_color = UX_COLOR_NONE;
    add_stop({&check->obj, nullptr, add_caption(caption), k_check_help});
    return check;
}

ux_slider_bar *add_slider(const char16_t *caption, ux_text_label **value) {
    ux_slider_bar *slider =
        made(ux_slider_bar_new(s_form.panel, k_control_left, text_top(),
                               k_control_width - k_value_width - k_gap, k_control_height));
    slider->bar_color = k_control_color;
    slider->thumb_color = k_thumb_color;
    ux_slider_bar_set_fg_color(slider, k_text_color, k_title_color);
    ux_slider_bar_set_bg_color(slider, k_panel_color, k_panel_color);
    ux_slider_bar_set_border(slider, k_frame_border);
    ux_obj_set_border_colors(&slider->obj, k_line_color, k_focus_line_color);
    *value = add_label(*s_form.panel,
                       {k_control_left + k_control_width - k_value_width, text_top(), k_value_width,
                        k_control_height},
                       u"", k_text_color, k_panel_color);
    add_stop({&slider->obj, nullptr, add_caption(caption), k_change_help});
    return slider;
}

ux_text_button *add_action(int y, const char16_t *text, ux_handler handler) {
    const std::u16string padded = std::u16string(k_padded) + text;
    ux_text_button *button = made(ux_text_button_new(
        &s_form.page->container, k_side_left, y, k_side_width, k_button_height, padded.c_str()));
    ux_text_button_set_border(button, k_border);
    ux_text_button_set_border_color(button, k_line_color, k_focus_line_color);
    ux_text_button_set_fg_color(button, k_text_color, k_title_color);
    ux_text_button_set_bg_color(button, k_button_color, k_focus_color);
    add_stop({&button->obj, nullptr, nullptr, k_action_help, handler});
    return button;
}

void add_help(int y, int height) {
    constexpr int inset = 24;
    ux_container *panel =
        add_panel(s_form.page->container, {k_side_left, y, k_side_width, height}, k_panel_color, 2);
    s_form.help = add_label(
        *panel, {k_side_left + inset, y + inset, k_side_width - 2 * inset, height - 2 * inset}, u"",
        k_quiet_color, k_panel_color);
}

void show_help(const char16_t *text) {
    show_text(s_form.help, text);
}

void go_to(size_t index) {
    const stop &old = s_form.stops[s_form.focused];
    ux_obj_unset_focus(old.widget);
    show_stop(old, k_line_color, k_quiet_color);
    s_form.focused = index;
    const stop &where = s_form.stops[index];
    ux_obj_set_focus(where.widget);
    show_stop(where, k_focus_line_color, k_focus_line_color);
    show_help(where.help);
}

} // namespace player
