// SPDX-License-Identifier: MIT
// A form on a 1280 x 720 screen: two select boxes, two text fields, two check boxes, a slider and a
// button list. Up and down walk between them, a touch goes to one, the number keys type. What was
// entered is printed at the end.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "parts.h"

#include <ux.h>

namespace {

constexpr int k_margin = 80;
constexpr int k_top = 160;
constexpr int k_bottom = 624;
constexpr int k_padding = 32;

constexpr int k_row_height = 64;
constexpr int k_first_row = k_top + 8;
constexpr int k_frame_height = 50;
constexpr int k_frame_border = 3;
constexpr int k_frame_padding = 14;  // at the sides
constexpr int k_text_inset = 9;      // from the frame's top to all texts of a row
constexpr int k_control_height = 38; // enough for the engine's signs as high as the text
constexpr int k_check_height = 34;
constexpr int k_border = 4;
constexpr int k_panel_width = 760;
constexpr int k_caption_width = 240;
constexpr int k_control_left = k_margin + k_padding + k_caption_width + 20;
constexpr int k_control_width = k_margin + k_panel_width - k_padding - k_control_left;
constexpr int k_value_width = 96;
constexpr int k_side_left = 872;
constexpr int k_side_width = 328;
constexpr int k_side_gap = 16;

constexpr int k_text_size = 32;
constexpr int k_title_size = 44;
// Texts start at the top left of their box; a blank line above and below puts them in the middle.
constexpr int k_button_height = 3 * k_text_size + 2 * k_border;
constexpr const char16_t *k_padded = u"\n    ";

constexpr std::array k_points = {u"Living room", u"Kitchen", u"Garden"};
constexpr std::array k_securities = {u"WPA2", u"WPA3", u"Open"};
constexpr std::array k_actions = {u"Connect", u"Start again", u"Leave"};
enum action { k_connect, k_start_again, k_leave };

constexpr const char16_t *k_change_help = u"Left and right\nchange it.";
constexpr const char16_t *k_type_help = u"Digits type,\ndelete erases.";
constexpr const char16_t *k_check_help = u"OK turns it\non and off.";
constexpr const char16_t *k_list_help = u"OK does it,\nup leads back.";

constexpr int k_default_power = 50;

// Where the focus can be: a widget, what shows that it has it, and what is told about its keys.
struct stop {
    ux_obj *widget = nullptr;
    ux_container *frame = nullptr; // around the widget, or null
    ux_text_label *caption = nullptr;
    const char16_t *help = nullptr;
};

enum place { k_point, k_security, k_password, k_channel, k_at_start, k_guests, k_power, k_list };

struct form {
    ux_page *page = nullptr;
    ux_container *panel = nullptr;
    ux_select_box *point = nullptr;
    ux_select_box *security = nullptr;
    ux_text_field *password = nullptr;
    ux_text_field *channel = nullptr;
    ux_check_box *at_start = nullptr;
    ux_check_box *guests = nullptr;
    ux_slider_bar *power = nullptr;
    ux_text_label *power_value = nullptr;
    ux_button_list *list = nullptr;
    ux_text_label *help = nullptr;
    std::array<stop, k_list + 1> stops; // in the order of the walk
    size_t focused = k_point;
    bool connected = false;
};

form s_form;

// Painting.

void show_power() {
    std::string digits = std::to_string(s_form.power->position) + " %";
    show_text(s_form.power_value, std::u16string(digits.begin(), digits.end()));
}

// Walking.

int walk(ux_event *ev);
int press_ok(ux_event *ev);

// The list takes these keys and does not give them back.
void take_keys() {
    ux_page_set_key_handler(s_form.page, UX_KEY_UP, walk);
    ux_page_set_key_handler(s_form.page, UX_KEY_DOWN, walk);
    ux_page_set_key_handler(s_form.page, UX_KEY_OK, press_ok);
}

// A frame shows the widget in it.
void show_stop(const stop &where, uint32_t line_color, uint32_t caption_color) {
    if (where.frame)
        ux_obj_set_border_colors(&where.frame->obj, line_color, line_color);
    show(where.frame ? where.frame->obj : *where.widget);
    if (!where.caption)
        return;
    ux_text_label_set_fg_color(where.caption, caption_color);
    show(where.caption->obj);
}

void leave_stop(const stop &where) {
    if (where.widget == &s_form.list->container.obj) {
        ux_button_list_unset_focus(where.widget); // not in its slot
        take_keys();
    } else {
        ux_obj_unset_focus(where.widget);
    }
    show_stop(where, k_line_color, k_quiet_color);
}

void enter_stop(const stop &where) {
    ux_obj_set_focus(where.widget);
    show_stop(where, k_highlight_color, k_highlight_color);
    show_text(s_form.help, where.help);
}

void go_to(size_t index) {
    leave_stop(s_form.stops[s_form.focused]);
    s_form.focused = index;
    enter_stop(s_form.stops[index]);
}

void go_on() {
    go_to((s_form.focused + 1) % s_form.stops.size());
}

void go_back() {
    go_to((s_form.focused + s_form.stops.size() - 1) % s_form.stops.size());
}

int walk(ux_event *ev) {
    if (ev->value == UX_KEY_DOWN)
        go_on();
    else
        go_back();
    return 0;
}

// Past either end of the list the walk goes on.
int leave_list_upwards(ux_button_list *, int index) {
    if (index < 0)
        go_back();
    return 0;
}

int leave_list_downwards(ux_button_list *list, int index) {
    if (index == list->item_count)
        go_on();
    return 0;
}

// Doing.

void toggle(ux_check_box *box) {
    box->checked = !box->checked;
    show(box->obj);
}

int press_ok(ux_event *ev) {
    if (ev->obj == &s_form.at_start->obj)
        toggle(s_form.at_start);
    else if (ev->obj == &s_form.guests->obj)
        toggle(s_form.guests);
    else
        go_on();
    return 0;
}

void start_again() {
    ux_select_box_set_pos(s_form.point, 0);
    ux_select_box_set_pos(s_form.security, 0);
    ux_text_field_set_text(s_form.password, u"");
    ux_text_field_set_text(s_form.channel, u"");
    s_form.at_start->checked = s_form.guests->checked = 0;
    ux_slider_bar_set_pos(s_form.power, k_default_power);
    show(s_form.panel->obj);
    show_power();
    go_to(k_point);
}

int choose_action(ux_button_list *, int index) {
    if (index == k_start_again) {
        start_again();
        return 0;
    }
    s_form.connected = index == k_connect;
    return ux_screen_quit_main_loop();
}

int change_power(ux_slider_bar *, int) {
    show_power();
    return 0;
}

// A touch goes to a widget and changes a check box.
int touch(ux_event *ev) {
    const auto *where = static_cast<const stop *>(ev->data);
    go_to(static_cast<size_t>(where - s_form.stops.data()));
    if (ev->obj->type == UX_TYPE_CHECK_BOX)
        press_ok(ev);
    return 0;
}

int touch_action(ux_event *ev) {
    for (int i = 0; i < s_form.list->item_count; i++) {
        if (ev->obj != &s_form.list->items[i]->obj)
            continue;
        ux_button_list_set_item_focus(s_form.list, i);
        go_to(k_list);
        return choose_action(s_form.list, i);
    }
    return 0;
}

// Building.

int row_top(int row) {
    return k_first_row + row * k_row_height + (k_row_height - k_frame_height) / 2;
}

int text_top(int row) {
    return row_top(row) + k_text_inset;
}

// A caption at the left of a row; the widget at its right is the stop.
void add_row(int row, const char16_t *caption, ux_obj &widget, ux_container *frame,
             const char16_t *help) {
    stop &where = s_form.stops[static_cast<size_t>(row)];
    where.widget = &widget;
    where.frame = frame;
    where.help = help;
    where.caption = add_label(
        *s_form.panel, {k_margin + k_padding, text_top(row), k_caption_width, k_control_height},
        caption, k_quiet_color, k_panel_color);
    ux_obj_set_handler(&widget, touch, &where);
}

ux_container *add_frame(int row) {
    return add_panel(*s_form.panel, {k_control_left, row_top(row), k_control_width, k_frame_height},
                     k_control_color, k_frame_border);
}

template <size_t Count>
ux_select_box *add_choice(int row, const char16_t *caption,
                          const std::array<const char16_t *, Count> &texts) {
    ux_container *frame = add_frame(row);
    ux_select_box *box =
        made(ux_select_box_new(frame, k_control_left + k_frame_padding, text_top(row),
                               k_control_width - 2 * k_frame_padding, k_control_height));
    for (const char16_t *text : texts)
        if (ux_select_box_add_item(box, text) != 0)
            std::exit(EXIT_FAILURE);
    ux_select_box_set_fg_color(box, k_text_color, k_title_color);
    ux_select_box_set_bg_color(box, k_control_color, k_control_color);
    add_row(row, caption, box->obj, frame, k_change_help);
    return box;
}

ux_text_field *add_field(int row, const char16_t *caption, int limit) {
    ux_container *frame = add_frame(row);
    ux_text_field *field =
        made(ux_text_field_new(frame, k_control_left + k_frame_padding, text_top(row),
                               k_control_width - 2 * k_frame_padding, k_control_height, u""));
    ux_text_field_set_fg_color(field, k_text_color, k_title_color);
    ux_text_field_set_bg_color(field, k_control_color, k_control_color);
    ux_text_field_set_limit(field, limit);
    add_row(row, caption, field->obj, frame, k_type_help);
    return field;
}

// Without a background of its own: mark and caption stand on the panel.
ux_check_box *add_check(int row, const char16_t *caption, const char16_t *text) {
    ux_check_box *box = made(ux_check_box_new(s_form.panel, k_control_left, text_top(row),
                                              k_control_width, k_check_height, text));
    box->fg_color = k_text_color;
    box->focus_fg_color = k_highlight_color;
    box->bg_color = box->focus_bg_color = UX_COLOR_NONE;
    add_row(row, caption, box->obj, nullptr, k_check_help);
    return box;
}

void add_power(int row) {
    ux_slider_bar *power =
        made(ux_slider_bar_new(s_form.panel, k_control_left, text_top(row),
                               k_control_width - k_value_width - k_padding / 2, k_control_height));
    power->bar_color = k_control_color;
    power->thumb_color = k_thumb_color;
    power->change_handler = change_power;
    ux_slider_bar_set_pos(power, k_default_power);
    ux_slider_bar_set_fg_color(power, k_text_color, k_title_color);
    ux_slider_bar_set_bg_color(power, k_panel_color, k_panel_color);
    ux_slider_bar_set_border(power, k_frame_border);
    ux_obj_set_border_colors(&power->obj, k_line_color, k_highlight_color);
    add_row(row, u"Power", power->obj, nullptr, k_change_help);
    s_form.power = power;
    s_form.power_value = add_label(*s_form.panel,
                                   {k_control_left + k_control_width - k_value_width, text_top(row),
                                    k_value_width, k_control_height},
                                   u"", k_text_color, k_panel_color);
}

// The buttons stand 3 pixels inside the list, and 6 more than the gap apart.
void add_list() {
    constexpr int inset = 3;
    constexpr int gap = k_side_gap - 2 * inset;
    constexpr int count = k_actions.size();
    constexpr int height = count * (k_button_height + 2 * inset) + (count - 1) * gap;
    ux_button_list *list =
        made(ux_button_list_new(&s_form.page->container, k_side_left - inset, k_top - inset,
                                k_side_width + 2 * inset, height, count, gap));
    ux_button_list_set_item_fg_color(list, k_text_color, k_title_color);
    ux_button_list_set_item_bg_color(list, k_button_color, k_focus_color);
    ux_button_list_set_item_border(list, k_border);
    ux_button_list_set_item_border_color(list, k_line_color, k_highlight_color);
    ux_button_list_set_select_handler(list, choose_action);
    ux_button_list_set_up_handler(list, leave_list_upwards);
    ux_button_list_set_down_handler(list, leave_list_downwards);
    for (int i = 0; i < count; i++) {
        const std::u16string text = std::u16string(k_padded) + k_actions[static_cast<size_t>(i)];
        ux_button_list_set_text(list, i, text.c_str());
        ux_obj_set_handler(&list->items[i]->obj, touch_action, nullptr);
    }
    s_form.list = list;
    s_form.stops[k_list] = {&list->container.obj, nullptr, nullptr, k_list_help};
}

void add_help() {
    constexpr int top = k_top + static_cast<int>(k_actions.size()) * (k_button_height + k_side_gap);
    constexpr int height = k_bottom - top;
    ux_container *panel =
        add_panel(s_form.page->container, {k_side_left, top, k_side_width, height}, k_panel_color);
    s_form.help = add_label(*panel,
                            {k_side_left + 20, top + (height - 2 * k_text_size) / 2,
                             k_side_width - 24, 2 * k_text_size},
                            u"", k_text_color, k_panel_color);
}

void build() {
    s_form.page = ux_current_page();
    ux_container &page = s_form.page->container;
    ux_container_set_bg_color(&page, k_page_color);
    add_title<k_title_size>(page, k_margin, 72, 1120, u"Wireless network");
    add_label(page, {k_margin, 652, 1120, k_text_size},
              u"Up, down: move        OK: choose or go on", k_quiet_color, UX_COLOR_NONE);
    s_form.panel =
        add_panel(page, {k_margin, k_top, k_panel_width, k_bottom - k_top}, k_panel_color);
    s_form.point = add_choice(k_point, u"Access point", k_points);
    s_form.security = add_choice(k_security, u"Security", k_securities);
    s_form.password = add_field(k_password, u"Password", 32);
    ux_text_field_set_pw_type(s_form.password, '*', 1);
    s_form.channel = add_field(k_channel, u"Channel", 4);
    ux_text_field_set_type(s_form.channel, UX_INPUT_NUMERIC);
    s_form.at_start = add_check(k_at_start, u"At start", u"Connect by itself");
    s_form.guests = add_check(k_guests, u"Guests", u"Let them in");
    add_power(k_power);
    add_list();
    add_help();
    take_keys();
}

// What was entered.

// The fields hold ASCII characters only: the keypad has no others.
std::string plain(const char16_t *text) {
    std::string result;
    for (; *text != u'\0'; text++)
        result += static_cast<char>(*text);
    return result;
}

void print_line(const char *name, const std::string &value) {
    printf("%s: %s\n", name, value.c_str());
}

void print_values() {
    if (!s_form.connected) {
        puts("left without connecting");
        return;
    }
    print_line("access point", plain(s_form.point->current->text));
    print_line("security", plain(s_form.security->current->text));
    print_line("password", plain(s_form.password->text));
    print_line("channel", plain(s_form.channel->text));
    print_line("at start", s_form.at_start->checked ? "yes" : "no");
    print_line("guests", s_form.guests->checked ? "yes" : "no");
    print_line("power", std::to_string(s_form.power->position));
}

} // namespace

int main() {
    set_up_text_size(k_text_size);
    ux_system_init();
    build();
    ux_screen_show_all();
    show_power();
    enter_stop(s_form.stops[k_point]);
    ux_screen_main_loop();
    print_values();
    ux_select_box_free_items(s_form.point);
    ux_select_box_free_items(s_form.security);
    return ux_system_close();
}
