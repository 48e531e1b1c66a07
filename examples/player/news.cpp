// SPDX-License-Identifier: MIT
// The news line: a ticker on a thread of its own at the bottom of the main menu. How variables are
// shared with it without a race is told in ux.h, section Ticker.
#include <thread>

#include "bulletin.h"
#include "look.h"
#include "shell.h"

namespace player {

namespace {

constexpr int k_height = 48; // and the size of the text
constexpr int k_top_row = k_hint_top - 4;

constexpr char k_lines[] = "Good evening. Rain until midnight.\n"
                           "Trains run on time again.\n"
                           "Tomorrow: sun, up to 24 degrees.\n";

struct news_line {
    bulletin lines;
    std::thread ticker;
};

news_line s_news;

} // namespace

bool set_up_news() {
    setenv("TICKER_PLAYING", "NO", 1);
    s_shell.ticker_state.set_up("TICKER_STATE", "STOP_TICKER");
    return s_news.lines.make(k_lines);
}

void start_news() {
    if (s_shell.set.news == k_news_off || s_news.ticker.joinable())
        return;
    for (const flag *lowered : {&s_shell.status, &s_shell.message, &s_shell.ticker_state})
        lowered->lower();
    s_news.ticker = std::thread([] {
        constexpr int step = 2;
        constexpr int to_the_left = 4; // upwards, a line would pass in half a second
        uxFontDrawing(s_news.lines.path(), k_focus_line_color, k_page_color, k_margin, k_top_row,
                      k_width, k_height, k_height, k_height, step, to_the_left);
    });
}

// The ticker sets a variable before it returns: it is waited for before anything paints.
void stop_news(const flag &reason) {
    if (!s_news.ticker.joinable())
        return;
    reason.raise();
    s_news.ticker.join();
}

void remove_news() {
    s_news.lines.remove();
}

} // namespace player
