// SPDX-License-Identifier: MIT
// Two pages of labels and buttons for a 1280 x 720 screen: the arrow keys move the focus, OK or a
// touch selects, 0 ends the program. Home chooses a source, the second page sets a sleep timer.
#include <array>
#include <string>
#include <vector>

#include "parts.h"

#include <ux.h>

namespace {

constexpr int k_margin = 80;
constexpr int k_content_top = 208;
constexpr int k_hint_top = 648;

constexpr int k_text_size = 28;
constexpr int k_title_size = 44;
constexpr int k_button_border = 3;
// Texts start at the top left of their box; a blank line above and below puts them in the middle.
constexpr int k_button_height = 3 * k_text_size + 2 * k_button_border;
constexpr const char16_t *k_padding = u"\n    ";
constexpr int k_gap = 24;

constexpr uint32_t k_select_color = 0xFFC9D8EE;

constexpr int k_home_page = 0;

struct menu;

// What a button's handler is told: which button of which menu.
struct item {
    menu *owner;
    size_t index;
};

// The buttons of one page, row by row. At most one is selected.
struct menu {
    ux_page *page = nullptr;
    size_t columns = 1;
    std::vector<ux_text_button *> buttons;
    std::vector<item> items; // reserved once: the buttons point to them
    void (*on_select)(menu &, size_t index) = nullptr;
    size_t focused = 0;
};

struct player {
    menu home;
    menu sleep;
    int sleep_page = -1;
    ux_text_label *status = nullptr;
    std::u16string source = u"nothing";
    std::u16string timer = u"Off";
};

player s_player;

constexpr std::array k_sources = {u"Music", u"Films", u"Photos", u"Radio", u"Network"};
constexpr std::array k_timers = {u"Off", u"30 minutes", u"60 minutes"};
constexpr std::array k_explanation = {u"What is chosen here shows on", u"the home page.", u"",
                                      u"Nothing turns off: this is an", u"example."};

// Painting.

void show_status() {
    std::u16string text = u"Source: " + s_player.source + u"        Sleep timer: " + s_player.timer;
    show_text(s_player.status, text);
}

// Selecting and moving.

void move_focus(menu &m, size_t index) {
    if (index >= m.buttons.size())
        return;
    ux_obj_unset_focus(&m.buttons[m.focused]->obj);
    m.focused = index;
    ux_obj_set_focus(&m.buttons[index]->obj);
}

void select_only(menu &m, size_t index) {
    for (size_t i = 0; i < m.buttons.size(); i++) {
        ux_obj &button = m.buttons[i]->obj;
        bool selected = (button.status & UX_ST_SELECTED) != 0;
        if (selected && i != index)
            button.unset_select(&button);
        if (!selected && i == index)
            button.set_select(&button);
    }
}

// For keys and touches alike: the event's data is the item of the focused or the touched button.
int choose(ux_event *ev) {
    item &chosen = *static_cast<item *>(ev->data);
    move_focus(*chosen.owner, chosen.index);
    chosen.owner->on_select(*chosen.owner, chosen.index);
    return 0;
}

int move(ux_event *ev) {
    menu &m = *static_cast<item *>(ev->data)->owner;
    size_t column = m.focused % m.columns;
    switch (ev->value) {
    case UX_KEY_UP:
        if (m.focused >= m.columns)
            move_focus(m, m.focused - m.columns);
        break;
    case UX_KEY_DOWN:
        move_focus(m, m.focused + m.columns);
        break;
    case UX_KEY_LEFT:
        if (column > 0)
            move_focus(m, m.focused - 1);
        break;
    case UX_KEY_RIGHT:
        if (column + 1 < m.columns)
            move_focus(m, m.focused + 1);
        break;
    default:
        break;
    }
    return 0;
}

int leave(ux_event *) {
    return ux_screen_quit_main_loop();
}

void select_source(menu &home, size_t index) {
    if (index == k_sources.size()) { // the last button leads on
        ux_switch_page(s_player.sleep_page, 0, 0, 0);
        return;
    }
    select_only(home, index);
    s_player.source = k_sources[index];
    show_status();
}

void select_timer(menu &sleep, size_t index) {
    if (index == k_timers.size()) { // the last button leads back
        ux_switch_page(k_home_page, 0, 0, 0);
        return;
    }
    select_only(sleep, index);
    s_player.timer = k_timers[index];
    show_status(); // on the other page: stored now, painted there
}

// Building.

void add_frame(ux_page &page, const char16_t *title, const char16_t *subtitle) {
    constexpr int width = 1120;
    add_title<k_title_size>(page.container, k_margin, 64, width, title);
    add_label(page.container, {k_margin, 128, width, k_text_size}, subtitle, k_quiet_color,
              UX_COLOR_NONE);
    add_label(page.container, {k_margin, k_hint_top, width, k_text_size},
              u"Arrows: move        OK: select        0: leave", k_quiet_color, UX_COLOR_NONE);
}

void add_button(menu &m, int x, int y, int w, const char16_t *name) {
    std::u16string text = k_padding + std::u16string(name);
    ux_text_button *button =
        made(ux_text_button_new(&m.page->container, x, y, w, k_button_height, text.c_str()));
    ux_text_button_set_border(button, k_button_border);
    ux_text_button_set_border_color(button, k_line_color, k_highlight_color);
    ux_text_button_set_fg_color(button, k_text_color, k_title_color);
    ux_text_button_set_bg_color(button, k_button_color, k_focus_color);
    ux_text_button_set_bg_scolor(button, k_select_color, k_highlight_color);
    button->select_fg_color = k_dark_text_color;
    button->select_focus_fg_color = k_dark_text_color;
    m.items.push_back({&m, m.items.size()});
    ux_obj_set_handler(&button->obj, choose, &m.items.back());
    m.buttons.push_back(button);
}

void start_menu(menu &m, ux_page *page, size_t columns, size_t count,
                void (*on_select)(menu &, size_t)) {
    m.page = page;
    m.columns = columns;
    m.on_select = on_select;
    m.items.reserve(count);
    for (int key : {UX_KEY_UP, UX_KEY_DOWN, UX_KEY_LEFT, UX_KEY_RIGHT})
        ux_page_set_key_handler(page, key, move);
    ux_page_set_key_handler(page, UX_KEY_OK, choose);
    ux_page_set_key_handler(page, UX_KEY_0, leave);
}

void build_home() {
    constexpr int columns = 3;
    constexpr int width = 357;
    constexpr int step = width + k_gap;
    menu &home = s_player.home;
    ux_container_set_bg_color(&ux_current_page()->container, k_page_color);
    start_menu(home, ux_current_page(), columns, k_sources.size() + 1, select_source);
    add_frame(*home.page, u"Good evening", u"What would you like to play?");
    for (size_t i = 0; i <= k_sources.size(); i++) {
        int row = static_cast<int>(i) / columns;
        int column = static_cast<int>(i) % columns;
        add_button(home, k_margin + column * step, k_content_top + row * (k_button_height + k_gap),
                   width, i < k_sources.size() ? k_sources[i] : u"Sleep timer ...");
    }
    constexpr int panel_top = 480;
    ux_container *panel = add_panel(home.page->container,
                                    {k_margin, panel_top, 1119, k_button_height}, k_panel_color);
    s_player.status = add_label(*panel, {k_margin + 32, panel_top + 32, 1055, k_text_size}, u"",
                                k_text_color, k_panel_color);
    select_only(home, home.buttons.size()); // none
    ux_obj_set_focus(&home.buttons.front()->obj);
    show_status();
}

void build_sleep() {
    constexpr int width = 480;
    constexpr int gap = 16;
    constexpr int step = k_button_height + gap;
    menu &sleep = s_player.sleep;
    start_menu(sleep, new_page(), 1, k_timers.size() + 1, select_timer);
    s_player.sleep_page = sleep.page->container.obj.page_id;
    add_frame(*sleep.page, u"Sleep timer", u"When shall the player turn itself off?");
    for (size_t i = 0; i <= k_timers.size(); i++)
        add_button(sleep, k_margin, k_content_top + static_cast<int>(i) * step, width,
                   i < k_timers.size() ? k_timers[i] : u"Back");
    ux_container *panel =
        add_panel(sleep.page->container, {592, k_content_top, 607, 4 * step - gap}, k_panel_color);
    constexpr int line_height = 40;
    int y = k_content_top + 32;
    for (const char16_t *line : k_explanation) {
        add_label(*panel, {624, y, 543, k_text_size}, line, k_text_color, k_panel_color);
        y += line_height;
    }
    select_only(sleep, 0);
    ux_obj_set_focus(&sleep.buttons.front()->obj);
}

} // namespace

int main() {
    set_up_text_size(k_text_size);
    ux_system_init();
    build_home();
    build_sleep();
    mark_visible(*s_player.sleep.page);
    ux_screen_show_all();
    ux_screen_main_loop();
    return ux_system_close();
}
