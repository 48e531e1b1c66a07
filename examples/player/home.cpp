// SPDX-License-Identifier: MIT
// The main menu: a button list and a preview over a background picture, an image button that ends
// the program, and the news line.
#include <array>
#include <cstdlib>

#include "look.h"
#include "shell.h"

namespace player {

namespace {

enum choice { k_photos, k_calendar, k_settings, k_messages };
constexpr std::array k_choices = {u"Photos", u"Calendar", u"Settings", u"Messages"};

constexpr char k_backdrop[] = "/orbo/images/backdrop.jpg";
constexpr char k_leave_image[] = "/orbo/images/leave.png";
constexpr char k_leave_focus_image[] = "/orbo/images/leave-focus.png";
constexpr int k_leave_side = 72;

constexpr int k_list_width = 440;
constexpr int k_preview_width = 640;
constexpr int k_preview_height = 360;
constexpr int k_preview_left = k_screen_width - k_margin - k_border - k_preview_width;
constexpr int k_preview_top = k_top + k_border; // in a frame

constexpr const char16_t *k_message = u"\n      Messages\n\n      Ada: the boat leaves at 9:15.\n"
                                      u"      Tea is in the blue tin.\n\n\n\n      OK leads back";
constexpr const char16_t *k_is_locked = u"\n      The power button is locked\n\n      This player "
                                        u"stays on.\n\n\n\n\n      OK leads back";

struct home_page {
    ux_page *page = nullptr;
    ux_text_label *title = nullptr;
    ux_text_label *state = nullptr;
    ux_button_list *list = nullptr;
    ux_image_button *leave = nullptr;
    int news_timer = -1; // -1 = none
};

home_page s_home;

// Life of the page.

// A page switch calls on_enter before it paints: the news line waits for the first pass of the main
// loop behind it.
int begin_news(ux_event *) {
    s_home.news_timer = -1;
    start_news();
    return 0;
}

std::u16string state_text() {
    const size_t count = s_shell.pictures.size();
    if (count == 0)
        return u"No pictures: name a folder";
    return widened(std::to_string(count) + (count == 1 ? " picture, " : " pictures, ") +
                   std::to_string(s_shell.set.seconds) + " s each");
}

int enter(ux_page *) {
    ux_text_label_set_text(s_home.title, s_shell.set.name.c_str());
    ux_text_label_set_text(s_home.state, state_text().c_str());
    s_home.news_timer = ux_set_timeout(0, begin_news, nullptr);
    return 0;
}

int leave_page(ux_page *, intptr_t, intptr_t, intptr_t) {
    if (s_home.news_timer >= 0)
        ux_delete_timeout(s_home.news_timer);
    s_home.news_timer = -1;
    stop_news(s_shell.status);
    return 0;
}

// Doing.

int leave_program(ux_event *) {
    if (s_shell.locked)
        open_note(k_is_locked);
    else
        ux_screen_quit_main_loop();
    return 0;
}

int choose(ux_button_list *, int index) {
    switch (index) {
    case k_photos:
        return ux_switch_page(s_shell.show, 0, 0, 0);
    case k_calendar:
        return ux_switch_page(s_shell.desk, 0, 0, 0);
    case k_settings:
        open_form();
        return 0;
    default:
        open_note(k_message);
        return 0;
    }
}

// The focus goes between the list and the image button, which only remembers it: the host paints.
void focus_leave(bool focused) {
    ux_obj *leave = &s_home.leave->obj;
    if (focused == ((leave->status & UX_ST_FOCUSED) != 0))
        return;
    if (focused) {
        ux_button_list_unset_focus(&s_home.list->container.obj); // not in its slot
        ux_obj_set_focus(leave);
    } else {
        ux_obj_unset_focus(leave);
        ux_button_list_move_to_target(s_home.list, s_home.list->current);
    }
    ux_button_list_show(&s_home.list->container.obj);
    show(*leave);
}

int go_right(ux_event *) {
    focus_leave(true);
    return 0;
}

int go_left(ux_event *) {
    focus_leave(false);
    return 0;
}

int press_ok(ux_event *ev) {
    return ev->obj == &s_home.leave->obj ? leave_program(ev) : ux_button_list_event_press_ok(ev);
}

int touch_item(ux_event *ev) {
    focus_leave(false);
    for (int i = 0; i < s_home.list->item_count; i++) {
        if (ev->obj != &s_home.list->items[i]->obj)
            continue;
        ux_button_list_move_to_target(s_home.list, i);
        return choose(s_home.list, i);
    }
    return 0;
}

int touch_preview(ux_event *) {
    return choose(s_home.list, k_photos);
}

// Building. The newest child is painted first: what lies behind is made last.

// The buttons stand 3 pixels inside the list, and 6 more than the gap apart.
void add_list(ux_container &page) {
    constexpr int inset = 3;
    constexpr int count = k_choices.size();
    constexpr int height =
        count * (k_button_height + 2 * inset) + (count - 1) * (k_gap - 2 * inset);
    ux_button_list *list =
        made(ux_button_list_new(&page, k_margin - inset, k_top - inset, k_list_width + 2 * inset,
                                height, count, k_gap - 2 * inset));
    ux_button_list_set_item_fg_color(list, k_text_color, k_title_color);
    ux_button_list_set_item_bg_color(list, k_button_color, k_focus_color);
    ux_button_list_set_item_border(list, k_border);
    ux_button_list_set_item_border_color(list, k_line_color, k_focus_line_color);
    ux_button_list_set_select_handler(list, choose);
    for (int i = 0; i < count; i++) {
        const std::u16string text = std::u16string(k_padded) + k_choices[static_cast<size_t>(i)];
        ux_button_list_set_text(list, i, text.c_str());
        ux_obj_set_handler(&list->items[i]->obj, touch_item, nullptr);
    }
    s_home.list = list;
}

void add_preview(ux_container &page) {
    if (!s_shell.pictures.empty()) {
        ux_image_label *photo =
            made(ux_image_label_new(&page, k_preview_left, k_preview_top, k_preview_width,
                                    k_preview_height, s_shell.pictures.front().c_str()));
        ux_obj_set_flag(&photo->obj, UX_FLAG_SAVE_FG); // read once
        ux_obj_set_handler(&photo->obj, touch_preview, nullptr);
    }
    add_panel(page,
              {k_preview_left - k_border, k_top, k_preview_width + 2 * k_border,
               k_preview_height + 2 * k_border},
              k_panel_color, k_border);
}

void add_leave(ux_container &page) {
    s_home.leave =
        made(ux_image_button_new(&page, k_screen_width - k_margin - k_leave_side,
                                 k_title_top + (k_title_size - k_leave_side) / 2, k_leave_side,
                                 k_leave_side, k_leave_image, k_leave_focus_image));
    ux_obj_set_handler(&s_home.leave->obj, leave_program, nullptr);
}

} // namespace

int go_home(ux_event *) {
    return ux_switch_page(s_shell.home, 0, 0, 0);
}

void build_home() {
    constexpr int below = k_preview_top + k_preview_height + k_border + k_gap;
    s_home.page = ux_current_page();
    ux_container &page = s_home.page->container;
    ux_container_set_bg_image(&page, k_backdrop);
    s_home.title = add_title(page, u"");
    s_home.state = add_label(page, {k_preview_left, below, k_preview_width, k_text_size}, u"",
                             k_text_color, UX_COLOR_NONE);
    add_label(page, {k_preview_left, below + k_text_size + k_gap, k_preview_width, k_text_size},
              u"Arrows move, OK chooses", k_quiet_color, UX_COLOR_NONE);
    add_list(page);
    add_preview(page);
    add_leave(page);
    s_home.page->on_enter = enter;
    s_home.page->on_leave = leave_page;
    ux_button_list_set_focus(&s_home.list->container.obj);
    ux_page_set_key_handler(s_home.page, UX_KEY_OK, press_ok);
    ux_page_set_key_handler(s_home.page, UX_KEY_RIGHT, go_right);
    ux_page_set_key_handler(s_home.page, UX_KEY_LEFT, go_left);
    enter(s_home.page);
}

} // namespace player
