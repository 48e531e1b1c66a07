// SPDX-License-Identifier: MIT
// A calendar whose months the arrow keys turn, and a clock that asks for the time.
#include <cstdio>
#include <ctime>

#include "look.h"
#include "shell.h"

namespace player {

namespace {

constexpr int k_sheet_left = 8;
constexpr int k_text_left = 20; // of the calendar
constexpr int k_sheet_top = 36;
constexpr int k_sheet_height = 588;
constexpr int k_side_width = 400; // of the panel with the clock
constexpr int k_clock_size = 360;
constexpr int k_calendar_size = 24; // the longest month's name in its column
constexpr int k_time_size = 72;
constexpr int k_thin_border = 2;

constexpr uint32_t k_sheet_color = 0xFFC9D6EA;

constexpr char k_pictures[] = "/orbo/images";
constexpr char k_face[] = "/orbo/images/clock-face.png";

struct desk_page {
    ux_container *sheet = nullptr;
    ux_calendar *calendar = nullptr;
    ux_clock *clock = nullptr;
    ux_text_label *time = nullptr;
    int year = 0, month = 1; // shown
};

desk_page s_desk;

// Time.

time_of_day present_time() {
    if (s_shell.fixed_time)
        return *s_shell.fixed_time;
    const time_t now = time(nullptr);
    struct tm local = {};
    localtime_r(&now, &local);
    return {local.tm_hour, local.tm_min, local.tm_sec};
}

// A clock that runs counts a second after it has asked, so it is told the one before; one that is
// just being shown is not visible yet and counts none.
int tell_time(ux_clock *clock, intptr_t, intptr_t, intptr_t) {
    constexpr int day = 24 * 60 * 60;
    const time_of_day now = present_time();
    const bool is_running = (clock->obj.status & UX_ST_VISIBLE) != 0;
    const int seconds = (now.hours * 60 + now.minutes) * 60 + now.seconds;
    const int told = (seconds + (is_running ? day - 1 : 0)) % day;
    return ux_clock_settime(clock, told / 3600, told / 60 % 60, told % 60);
}

void set_digits(int hours, int minutes) {
    char digits[16];
    snprintf(digits, sizeof digits, "%02d:%02d", hours % 100, minutes % 100);
    ux_text_label_set_text(s_desk.time, widened(digits).c_str());
}

int show_time(ux_clock *, int hours, int minutes, int) {
    set_digits(hours, minutes);
    if (main_screen.current_page == s_shell.desk)
        show(s_desk.time->obj);
    return 0;
}

// Months.

int turn(int months_on) {
    constexpr int first_year = 1;
    constexpr int last_year = 9999;
    const int months = s_desk.year * 12 + s_desk.month - 1 + months_on;
    if (months < first_year * 12 || months >= (last_year + 1) * 12)
        return 0;
    s_desk.year = months / 12;
    s_desk.month = months % 12 + 1;
    ux_calendar_set_date(s_desk.calendar, s_desk.year, s_desk.month, 1);
    show(s_desk.sheet->obj); // the sheet first: a month may have fewer rows than the last one
    return 0;
}

int turn_by_key(ux_event *ev) {
    return turn(ev->value == UX_KEY_LEFT ? -1 : 1);
}

int turn_by_touch(ux_event *ev) {
    return turn(ev->x < ev->obj->x + ev->obj->width / 2 ? -1 : 1);
}

// Life of the page. A clock that nobody sees stands still; shown again it asks for the time.

int enter(ux_page *) {
    const time_of_day now = present_time();
    set_digits(now.hours, now.minutes);
    show(s_desk.clock->obj);
    return 0;
}

int leave(ux_page *, intptr_t, intptr_t, intptr_t) {
    return ux_clock_hide(&s_desk.clock->obj);
}

// Building.

// The calendar's layout is the screen's: its texts begin at column 20, its grid at row 50.
void add_calendar(ux_container &page) {
    constexpr int width = k_screen_width - k_side_width - k_gap - 2 * k_sheet_left;
    s_desk.sheet = add_panel(page, {k_sheet_left, k_sheet_top, width, k_sheet_height},
                             k_sheet_color, k_thin_border);
    ux_obj_set_handler(&s_desk.sheet->obj, turn_by_touch, nullptr);
    s_desk.calendar = made(ux_calendar_new(s_desk.sheet, k_sheet_left, k_sheet_top, width,
                                           k_sheet_top + k_sheet_height, k_pictures));
    s_desk.calendar->obj.show = show_in_size<k_calendar_size, ux_calendar_show>;
    s_desk.calendar->obj.repaint = s_desk.calendar->obj.show;
    ux_calendar_set_date(s_desk.calendar, s_desk.year, s_desk.month, 1);
}

void add_clock(ux_container &page) {
    constexpr int inset = (k_side_width - k_clock_size) / 2;
    constexpr int middle = k_clock_size / 2;
    constexpr int radius = 150;
    constexpr int digits_width = 212; // of five
    constexpr int left = k_screen_width - k_sheet_left - k_side_width;
    constexpr int top = k_sheet_top + (k_sheet_height - k_clock_size - k_gap - k_time_size) / 2;
    ux_container *side = add_panel(page, {left, k_sheet_top, k_side_width, k_sheet_height},
                                   k_panel_color, k_thin_border);
    ux_obj_set_handler(&side->obj, go_home, nullptr);
    s_desk.clock = made(ux_clock_new(side, left + inset, top, k_clock_size, k_clock_size, radius,
                                     middle, middle, k_face, nullptr, nullptr));
    s_desk.clock->sync_period = 1; // at every advance: on its own it counts one second in two
    ux_clock_set_sync_cb(s_desk.clock, tell_time);
    ux_clock_set_tick_cb(s_desk.clock, show_time);
    s_desk.time = add_label(*side,
                            {left + (k_side_width - digits_width) / 2, top + k_clock_size + k_gap,
                             digits_width, k_time_size},
                            u"", k_title_color, k_panel_color);
    s_desk.time->obj.show = s_desk.time->obj.repaint =
        show_in_size<k_time_size, ux_text_label_show>;
}

} // namespace

void build_desk() {
    ux_page *page = new_page();
    s_shell.desk = page->container.obj.page_id;
    s_desk.year = s_shell.first_month.year;
    s_desk.month = s_shell.first_month.month;
    add_calendar(page->container);
    add_clock(page->container);
    add_hint(page->container, u"Left, right: turn the month        0: menu", k_text_left);
    page->on_enter = enter;
    page->on_leave = leave;
    ux_page_set_key_handler(page, UX_KEY_LEFT, turn_by_key);
    ux_page_set_key_handler(page, UX_KEY_RIGHT, turn_by_key);
    ux_page_set_key_handler(page, UX_KEY_0, go_home);
    mark_visible(*page);
    ux_clock_hide(&s_desk.clock->obj);
}

} // namespace player
