// SPDX-License-Identifier: MIT
// A ticker over a running page, for a 1280 x 720 screen. It shows the lines of a file on a thread
// of its own; the host starts and stops it through environment variables and changes the file while
// it runs. How variables are shared between threads without a race is told in ux.h, section Ticker.
#include <array>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "bulletin.h"
#include "flag.h"
#include "parts.h"

#include <ux.h>

namespace {

constexpr int k_margin = 80;
constexpr int k_width = 1120;
constexpr int k_text_size = 28;
constexpr int k_title_size = 44;
constexpr int k_button_border = 3;
// Texts start at the top left of their box; a blank line above and below puts them in the middle.
constexpr int k_button_height = 3 * k_text_size + 2 * k_button_border;
constexpr int k_button_top = 208;
constexpr int k_button_gap = 24;

// The ticker's box lies inside a panel. Its height is also the size of its text.
constexpr int k_panel_top = 362;
constexpr int k_panel_height = 3 * k_text_size;
constexpr int k_ticker_height = 56;
constexpr int k_ticker_left = k_margin + 32;
constexpr int k_ticker_top = k_panel_top + (k_panel_height - k_ticker_height) / 2;
constexpr int k_ticker_width = k_width - 64;
constexpr int k_status_top = 502;
constexpr int k_hint_top = 648;

enum ticker_mode { k_no_mode = 0, k_scroll_up = 2, k_scroll_left = 4 };

// Rows per 5 ms upwards; a quarter of the columns per 50 ms to the left.
int step_of(int mode) {
    return mode == k_scroll_up ? 1 : 2;
}

constexpr std::array k_editions = {
    "Good evening. Rain in the north until midnight, dry and mild in the south.\n"
    "Trains run on time again.\n"
    "Tomorrow: sun from early morning on, 24 degrees.\n",
    "Second edition: the late film begins at 23:15.\n"
    "The lines of this file changed while you were reading.\n"};

struct player {
    flag status;       // on the way to the menu
    flag message;      // a message is to be shown
    flag ticker_state; // the ticker alone is to stop
    bulletin news;
    size_t edition = 0;
    std::thread ticker;
    int mode = k_no_mode; // of the ticker that runs, or that waits for the message to go
    bool shows_message = false;
    ux_container *panel = nullptr;
    ux_text_label *state = nullptr;
    ux_text_label *note = nullptr;
    std::array<ux_text_button *, 4> buttons = {};
    size_t focused = 0;
};

player s_player;

// The environment.

void set_up_environment() {
    s_player.status.set_up("STATUS", "gotoMenu");
    s_player.message.set_up("ShowMSG", "YES");
    s_player.ticker_state.set_up("TICKER_STATE", "STOP_TICKER");
    setenv("TICKER_PLAYING", "NO", 1);
    set_up_text_size(k_text_size);
}

// The ticker.

bool ticker_plays() {
    const char *value = getenv("TICKER_PLAYING");
    return value != nullptr && std::strcmp(value, "NO") != 0;
}

// Nothing may paint the box from here to stop_ticker().
void start_ticker() {
    const int mode = s_player.mode;
    for (const flag *lowered : {&s_player.status, &s_player.message, &s_player.ticker_state})
        lowered->lower();
    if (char *value = getenv("TICKER_PLAYING")) { // "NO", which no thread reads now
        value[0] = 'O';
        value[1] = 'N';
    }
    s_player.ticker = std::thread([mode] {
        uxFontDrawing(s_player.news.path(), k_highlight_color, k_panel_color, k_ticker_left,
                      k_ticker_top, k_ticker_width, k_ticker_height, k_ticker_height,
                      k_ticker_height, step_of(mode), mode);
    });
}

// Waits for the end, which is a frame or half a second away: the ticker sets "TICKER_PLAYING"
// before it returns, and nobody may read the environment meanwhile.
void stop_ticker(const flag &reason) {
    reason.raise();
    if (s_player.ticker.joinable())
        s_player.ticker.join();
}

// Painting.

void show_state() {
    std::u16string text = u"Ticker: ";
    if (!ticker_plays())
        text += u"stopped";
    else
        text += s_player.mode == k_scroll_up ? u"scrolls up" : u"scrolls to the left";
    text +=
        s_player.edition == 0 ? u"        Lines: first edition" : u"        Lines: second edition";
    show_text(s_player.state, text);
}

// Keys.

void play(int mode) {
    stop_ticker(s_player.ticker_state);
    s_player.mode = mode;
    if (mode != k_no_mode)
        start_ticker();
    show_state();
}

void publish_next() {
    s_player.edition = (s_player.edition + 1) % k_editions.size();
    s_player.news.publish(k_editions[s_player.edition]);
    show_state();
}

// A message needs the screen: the ticker goes, and comes back after it.
int toggle_message(ux_event *) {
    s_player.shows_message = !s_player.shows_message;
    if (s_player.shows_message) {
        stop_ticker(s_player.message);
        show(s_player.note->obj);
    } else {
        ux_obj_hide(&s_player.note->obj);
        show(s_player.panel->obj);
        if (s_player.mode != k_no_mode)
            start_ticker();
    }
    show_state();
    return 0;
}

int choose(ux_event *event) {
    if (s_player.shows_message)
        return toggle_message(event);
    switch (s_player.focused) {
    case 0:
        play(k_scroll_up);
        break;
    case 1:
        play(k_scroll_left);
        break;
    case 2:
        play(k_no_mode);
        break;
    default:
        publish_next();
    }
    return 0;
}

void move_focus(size_t index) {
    if (index >= s_player.buttons.size())
        return;
    ux_obj_unset_focus(&s_player.buttons[s_player.focused]->obj);
    s_player.focused = index;
    ux_obj_set_focus(&s_player.buttons[index]->obj);
}

int move(ux_event *event) {
    move_focus(event->value == UX_KEY_LEFT ? s_player.focused - 1 : s_player.focused + 1);
    return 0;
}

int leave(ux_event *) {
    stop_ticker(s_player.status);
    return ux_screen_quit_main_loop();
}

// Building.

// Over the whole width.
ux_text_label *add_line(int y, int height, const char16_t *text, uint32_t color,
                        uint32_t background) {
    return add_label(ux_current_page()->container, {k_margin, y, k_width, height}, text, color,
                     background);
}

void add_buttons() {
    constexpr int count = 4;
    constexpr int width = (k_width - (count - 1) * k_button_gap) / count;
    constexpr std::array names = {u"\n    Scroll up", u"\n    Scroll left", u"\n    Stop",
                                  u"\n    New lines"};
    for (int i = 0; i < count; i++) {
        ux_text_button *button = made(ux_text_button_new(
            &ux_current_page()->container, k_margin + i * (width + k_button_gap), k_button_top,
            width, k_button_height, names[static_cast<size_t>(i)]));
        ux_text_button_set_border(button, k_button_border);
        ux_text_button_set_border_color(button, k_line_color, k_highlight_color);
        ux_text_button_set_fg_color(button, k_text_color, k_title_color);
        ux_text_button_set_bg_color(button, k_button_color, k_focus_color);
        s_player.buttons[static_cast<size_t>(i)] = button;
    }
}

void build_page() {
    ux_page *page = ux_current_page();
    ux_container_set_bg_color(&page->container, k_page_color);
    add_title<k_title_size>(page->container, k_margin, 64, k_width, u"Ticker");
    add_line(128, k_text_size, u"Lines of a file, on a thread of their own", k_quiet_color,
             UX_COLOR_NONE);
    add_buttons();
    s_player.panel =
        add_panel(page->container, {k_margin, k_panel_top, k_width, k_panel_height}, k_panel_color);
    s_player.state = add_line(k_status_top, k_text_size, u"", k_text_color, k_page_color);
    add_line(k_hint_top, k_text_size,
             u"Arrows: move        OK: select        1: message on, off        0: leave",
             k_quiet_color, UX_COLOR_NONE);
    for (int key : {UX_KEY_LEFT, UX_KEY_RIGHT})
        ux_page_set_key_handler(page, key, move);
    ux_page_set_key_handler(page, UX_KEY_OK, choose);
    ux_page_set_key_handler(page, UX_KEY_1, toggle_message);
    ux_page_set_key_handler(page, UX_KEY_0, leave);
    ux_obj_set_focus(&s_player.buttons.front()->obj);
    show_state();
}

// Made last and not shown with the page.
void build_note() {
    s_player.note = add_line(k_panel_top, k_panel_height,
                             u"\n    The recording begins in five minutes.        OK: go on",
                             k_dark_text_color, k_highlight_color);
}

} // namespace

int main() {
    set_up_environment();
    if (!s_player.news.make(k_editions.front()))
        return EXIT_FAILURE;
    ux_system_init(); // threads come next: the environment stays as it is from here on
    build_page();
    ux_screen_show_all();
    build_note();
    ux_screen_main_loop();
    s_player.news.remove();
    return ux_system_close();
}
