// SPDX-License-Identifier: MIT
// A desk: a clock that asks for the time, a calendar whose months the arrow keys turn, and a memo
// that OK lays over both. For screens from 1280 x 720; 0 ends the program.
//
//     06-desk [hours:minutes:seconds year-month]
//
// Without arguments time and month are the present ones; with them the clock stands at that time.
// The pictures lie where a device has them, under /orbo/images.
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "moment.h"
#include "parts.h"

#include <ux.h>

namespace {

constexpr int k_gap = 16;
constexpr int k_top = 36;
constexpr int k_hint_height = 72; // below the sheet
constexpr int k_side_width = 392; // of the panel with the clock
constexpr int k_clock_size = 360;
constexpr int k_memo_width = 646;
constexpr int k_memo_height = 326;
constexpr int k_memo_border = 3;

constexpr int k_text_size = 28;
constexpr int k_calendar_size = 22; // the longest month's name in its column
constexpr int k_time_size = 72;
constexpr int k_memo_size = 34;

constexpr uint32_t k_sheet_color = 0xFFC9D6EA;

constexpr char k_pictures[] = "/orbo/images";
constexpr char k_face[] = "/orbo/images/clock-face.png";
constexpr const char16_t *k_message =
    u"\n      Do not forget\n\n      10:30  the plumber comes\n      16:00  tea with Ada\n\n\n"
    u"      OK lays this aside";

struct desk {
    bool is_fixed = false; // the time is the arguments'
    time_of_day fixed = {0, 0, 0};
    month_of_year shown = {1, 1};
    ux_container *sheet = nullptr;
    ux_calendar *calendar = nullptr;
    ux_container *side = nullptr;
    ux_clock *clock = nullptr;
    ux_text_label *time = nullptr;
    ux_memo *memo = nullptr;
};

desk s_desk;

// Painting.

bool memo_is_open() {
    return (s_desk.memo->obj.status & UX_ST_VISIBLE) != 0;
}

// Time.

time_of_day present_time() {
    if (s_desk.is_fixed)
        return s_desk.fixed;
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

int show_time(ux_clock *, int hours, int minutes, int) {
    char digits[16];
    snprintf(digits, sizeof digits, "%02d:%02d", hours % 100, minutes % 100);
    show_text(s_desk.time, widened(digits));
    return 0;
}

// Months.

void show_month() {
    ux_calendar_set_date(s_desk.calendar, s_desk.shown.year, s_desk.shown.month, 1);
    show(s_desk.sheet->obj); // the sheet first: a month may have fewer rows than the last one
}

int turn(ux_event *ev) {
    constexpr int first_year = 1;
    constexpr int last_year = 9999;
    if (memo_is_open())
        return 0;
    const int step = ev->value == UX_KEY_LEFT ? -1 : 1;
    const int months = s_desk.shown.year * 12 + s_desk.shown.month - 1 + step;
    if (months < first_year * 12 || months >= (last_year + 1) * 12)
        return 0;
    s_desk.shown = {months / 12, months % 12 + 1};
    show_month();
    return 0;
}

// The memo. It lies over the clock, which would paint over it: the clock is hidden meanwhile, and
// asks for the time when it is shown again.

int toggle_memo(ux_event *) {
    if (memo_is_open()) {
        ux_memo_hide(&s_desk.memo->obj);
        show(ux_current_page()->container.obj);
        return 0;
    }
    ux_clock_hide(&s_desk.clock->obj);
    ux_memo_set_focus(&s_desk.memo->obj);
    return show_in_size<k_memo_size, ux_memo_show>(&s_desk.memo->obj);
}

int leave(ux_event *) {
    return ux_screen_quit_main_loop();
}

// Building.

int panel_height() {
    return main_screen.height - k_top - k_hint_height;
}

// The calendar's layout is the screen's: its texts begin at column 20, its grid at row 50.
void build_calendar(ux_container &page) {
    const int left = k_gap / 2;
    const int width = main_screen.width - k_side_width - 2 * k_gap - left;
    s_desk.sheet = add_panel(page, {left, k_top, width, panel_height()}, k_sheet_color);
    s_desk.calendar =
        made(ux_calendar_new(s_desk.sheet, left, k_top, width, k_top + panel_height(), k_pictures));
    s_desk.calendar->obj.show = show_in_size<k_calendar_size, ux_calendar_show>;
    ux_calendar_set_date(s_desk.calendar, s_desk.shown.year, s_desk.shown.month, 1);
}

void build_clock(ux_container &page) {
    constexpr int inset = (k_side_width - k_clock_size) / 2;
    constexpr int middle = k_clock_size / 2;
    constexpr int radius = 150;
    constexpr int digits_width = 212; // of five
    const int left = main_screen.width - k_gap - k_side_width;
    const int top = k_top + (panel_height() - k_clock_size - k_gap - k_time_size) / 2;
    s_desk.side = add_panel(page, {left, k_top, k_side_width, panel_height()}, k_panel_color);
    s_desk.clock = made(ux_clock_new(s_desk.side, left + inset, top, k_clock_size, k_clock_size,
                                     radius, middle, middle, k_face, nullptr, nullptr));
    s_desk.clock->sync_period = 1; // at every advance: on its own it counts one second in two
    ux_clock_set_sync_cb(s_desk.clock, tell_time);
    ux_clock_set_tick_cb(s_desk.clock, show_time);
    s_desk.time = add_label(*s_desk.side,
                            {left + (k_side_width - digits_width) / 2, top + k_clock_size + k_gap,
                             digits_width, k_time_size},
                            u"", k_title_color, k_panel_color);
    s_desk.time->obj.show = show_in_size<k_time_size, ux_text_label_show>;
}

void build_memo() {
    s_desk.memo = made(ux_memo_new(nullptr, (main_screen.width - k_memo_width) / 2 + 160,
                                   (main_screen.height - k_memo_height) / 2 - 40, k_memo_width,
                                   k_memo_height, k_message));
    ux_memo_set_fg_color(s_desk.memo, k_title_color);
    ux_memo_set_border(s_desk.memo, k_memo_border);
    ux_memo_set_border_color(s_desk.memo, k_line_color, k_highlight_color);
}

void build() {
    ux_page *page = ux_current_page();
    ux_container_set_bg_color(&page->container, k_page_color);
    build_calendar(page->container);
    build_clock(page->container);
    build_memo();
    add_label(page->container,
              {k_gap, main_screen.height - k_hint_height + k_text_size,
               main_screen.width - 2 * k_gap, k_text_size},
              u"Left, right: turn the month        OK: message        0: leave", k_quiet_color,
              UX_COLOR_NONE);
    ux_page_set_key_handler(page, UX_KEY_LEFT, turn);
    ux_page_set_key_handler(page, UX_KEY_RIGHT, turn);
    ux_page_set_key_handler(page, UX_KEY_OK, toggle_memo);
    ux_page_set_key_handler(page, UX_KEY_0, leave);
}

bool read_arguments(int argc, char **argv) {
    const time_t now = time(nullptr);
    struct tm local = {};
    localtime_r(&now, &local);
    s_desk.shown = {local.tm_year + 1900, local.tm_mon + 1};
    if (argc == 1)
        return true;
    s_desk.is_fixed = true;
    return argc == 3 && read_time(argv[1], s_desk.fixed) && read_month(argv[2], s_desk.shown);
}

} // namespace

int main(int argc, char **argv) {
    if (!read_arguments(argc, argv)) {
        fprintf(stderr, "usage: %s [hours:minutes:seconds year-month]\n", argv[0]);
        return EXIT_FAILURE;
    }
    set_up_text_size(k_text_size);
    ux_system_init();
    build();
    const time_of_day now = present_time();
    show_time(s_desk.clock, now.hours, now.minutes, now.seconds);
    ux_screen_show_all();
    ux_screen_main_loop();
    return ux_system_close();
}
