// SPDX-License-Identifier: MIT
// The settings: what is in the form counts when "Save" is pressed.
#include <string>

#include "form.h"
#include "shell.h"

namespace player {

namespace {

constexpr int k_name_limit = 16;
constexpr int k_time_digits = 4;
constexpr int k_most_seconds = 10;

struct settings_page {
    ux_text_field *name = nullptr;
    ux_select_box *effect = nullptr;
    ux_select_box *news = nullptr;
    ux_text_field *remind_at = nullptr;
    ux_check_box *reminds = nullptr;
    ux_check_box *captions = nullptr;
    ux_slider_bar *seconds = nullptr;
    ux_text_label *seconds_text = nullptr;
};

settings_page s_settings;

int set_seconds_text(ux_slider_bar *, int seconds) {
    show_text(s_settings.seconds_text, widened(std::to_string(seconds) + " s"));
    return 0;
}

void put_in(const settings &set) {
    ux_text_field_set_text(s_settings.name, set.name.c_str());
    ux_select_box_set_pos(s_settings.effect, set.effect);
    ux_select_box_set_pos(s_settings.news, set.news);
    ux_text_field_set_text(s_settings.remind_at, set.remind_at.c_str());
    s_settings.reminds->checked = set.reminds;
    s_settings.captions->checked = set.shows_captions;
    ux_slider_bar_set_pos(s_settings.seconds, set.seconds);
    set_seconds_text(s_settings.seconds, set.seconds);
}

settings taken_out() {
    settings set;
    set.name = s_settings.name->text;
    set.effect = ux_select_box_get_pos(s_settings.effect);
    set.news = ux_select_box_get_pos(s_settings.news);
    set.remind_at = s_settings.remind_at->text;
    set.reminds = s_settings.reminds->checked != 0;
    set.shows_captions = s_settings.captions->checked != 0;
    set.seconds = s_settings.seconds->position;
    return set;
}

// Four digits: a numeric field takes no others.
bool is_time(const std::u16string &digits) {
    return digits.size() == k_time_digits && digits.substr(0, 2) < u"24" &&
           digits.substr(2) < u"60";
}

int save(ux_event *ev) {
    const settings set = taken_out();
    if (!is_time(set.remind_at)) {
        show_help(u"Remind at:\n0000 to 2359");
        return 0;
    }
    s_shell.set = set;
    set_reminder();
    return go_home(ev);
}

} // namespace

void open_form() {
    put_in(s_shell.set);
    go_to(0);
    ux_switch_page(s_shell.form, 0, 0, 0);
}

void build_form() {
    ux_page *page = new_page();
    s_shell.form = page->container.obj.page_id;
    add_title(page->container, u"Settings");
    add_hint(page->container, u"Up, down: move        OK: choose or go on");
    ux_page_set_key_handler(page, UX_KEY_0, go_home);
    begin_form(*page);
    s_settings.name = add_field(u"Name", k_name_limit);
    s_settings.effect = add_choice(
        u"Effect", {u"All in turn", u"From the top", u"From the bottom", u"From the left",
                    u"From the right", u"From the corner", u"To the middle", u"Blinds", u"Spiral"});
    s_settings.news = add_choice(u"News line", {u"On", u"Off"});
    s_settings.remind_at = add_field(u"Remind at", k_time_digits);
    ux_text_field_set_type(s_settings.remind_at, UX_INPUT_NUMERIC);
    s_settings.reminds = add_check(u"Reminder", u"Show a message");
    s_settings.captions = add_check(u"Captions", u"Name the photos");
    s_settings.seconds = add_slider(u"Photo time", &s_settings.seconds_text);
    ux_slider_bar_set_minmax(s_settings.seconds, 1, k_most_seconds);
    ux_slider_bar_set_step(s_settings.seconds, 1);
    s_settings.seconds->change_handler = set_seconds_text;
    constexpr int pitch = k_button_height + k_gap;
    add_action(k_top, u"Save", save);
    add_action(k_top + pitch, u"Cancel", go_home);
    add_help(k_top + 2 * pitch, k_form_panel_height - 2 * pitch);
    mark_visible(*page);
}

} // namespace player
