// SPDX-License-Identifier: MIT
// What the pages of the player share: its settings, its pictures, the flags that stop an effect or
// the news line, and the ways from page to page.
#ifndef UX_EXAMPLES_PLAYER_SHELL_H
#define UX_EXAMPLES_PLAYER_SHELL_H

#include <optional>
#include <string>
#include <vector>

#include "flag.h"
#include "moment.h"

#include <ux.h>

namespace player {

// The order is that of the choices in the form.
enum news_mode { k_news_on, k_news_off };

struct settings {
    std::u16string name = u"My player";
    int effect = 0; // 0 = all in turn, else the number of one
    int news = k_news_on;
    std::u16string remind_at = u"1830"; // hours and minutes, four digits
    bool reminds = false;
    bool shows_captions = true;
    int seconds = 3; // rest after a picture
};

struct shell {
    settings set;
    std::vector<std::string> pictures;     // paths and addresses, in the order of the show
    std::optional<time_of_day> fixed_time; // the clock stands at it
    month_of_year first_month = {};        // of the calendar
    bool locked = false;                   // the power button does not end the program
    const char *rotation = nullptr;        // asked for; null = none
    flag status;                           // on the way to the menu
    flag message;                          // a message wants the screen
    flag ticker_state;                     // the news line alone is to stop
    int home = 0, show = -1, desk = -1, form = -1, note = -1; // pages
};

extern shell s_shell;

void build_home();
void build_show();
void build_desk();
void build_form();
void build_note();

// Switches to the home page; fits as a handler.
int go_home(ux_event *);

// Brings the values of the settings into the form and shows it.
void open_form();

// Lays a text over whatever is shown. A key or a touch leads back.
void open_note(const char16_t *text);

// The news line is a ticker on its own thread. Between the two calls nothing else may paint its
// box, and nobody may set a variable.
bool set_up_news(); // to be called before any thread starts
void start_news();
void stop_news(const flag &reason);
void remove_news();

// The alarm that opens a note at the time set; replaces the one before.
void set_reminder();

} // namespace player

#endif
