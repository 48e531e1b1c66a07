// SPDX-License-Identifier: MIT
// A memo on a page of its own without a background, so that what was shown stays around it. The
// page before is left and entered again by its own handlers, which stop and start what moves.
#include <ctime>
#include <string>

#include "look.h"
#include "shell.h"

namespace player {

namespace {

constexpr int k_memo_width = 646; // the picture behind it and the border
constexpr int k_memo_height = 326;
constexpr int k_memo_border = 3;
constexpr const char16_t *k_reminder =
    u"\n      It is time\n\n      You wanted to be reminded\n      now.\n\n\n\n      OK leads back";

struct note_page {
    ux_memo *memo = nullptr;
    int back = 0;      // page that is shown behind
    int reminder = -1; // alarm; -1 = none
};

note_page s_note;

int close(ux_event *) {
    return ux_switch_page(s_note.back, 0, 0, 0);
}

int remind(ux_event *) {
    s_note.reminder = -1;
    open_note(k_reminder);
    return 0;
}

} // namespace

void open_note(const char16_t *text) {
    if (main_screen.current_page == s_shell.note)
        return;
    s_note.back = main_screen.current_page;
    ux_memo_set_text(s_note.memo, text);
    ux_switch_page(s_shell.note, 0, 0, 0);
}

void set_reminder() {
    if (s_note.reminder >= 0)
        ux_delete_atimer(s_note.reminder);
    s_note.reminder = -1;
    if (!s_shell.set.reminds)
        return;
    const time_t now = time(nullptr);
    struct tm when = {};
    localtime_r(&now, &when);
    const std::u16string &digits = s_shell.set.remind_at;
    when.tm_hour = (digits[0] - u'0') * 10 + digits[1] - u'0';
    when.tm_min = (digits[2] - u'0') * 10 + digits[3] - u'0';
    when.tm_sec = 0;
    when.tm_isdst = -1;
    struct tm today = when;
    if (mktime(&today) <= now)
        when.tm_mday++; // an alarm normalises its date
    s_note.reminder = ux_set_atimer(&when, remind, nullptr);
}

void build_note() {
    ux_page *page = new_page();
    s_shell.note = page->container.obj.page_id;
    ux_container_set_bg_color(&page->container, UX_COLOR_NONE);
    ux_container &parent = page->container;
    s_note.memo = made(ux_memo_new(&parent, (k_screen_width - k_memo_width) / 2,
                                   (k_screen_height - k_memo_height) / 2, k_memo_width,
                                   k_memo_height, nullptr));
    ux_memo_set_fg_color(s_note.memo, k_title_color);
    ux_memo_set_border(s_note.memo, k_memo_border);
    ux_memo_set_border_color(s_note.memo, k_focus_line_color, k_focus_line_color);
    ux_page_set_default_key_handler(page, close);
    ux_obj_set_handler(&page->container.obj, close, nullptr);
    mark_visible(*page);
}

} // namespace player
