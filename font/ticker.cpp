// SPDX-License-Identifier: MIT
// Runs the ticker: passes over the file, frames of a line, the host's request to stop. What a frame
// shows is ticker_band's, where it goes is ticker_box's.

#include "font/ticker.h"

#include "font/line_reader.h"
#include "font/ticker_scroll.h"
#include "graphics/host_flags.h"
#include "ux.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <unistd.h>

namespace ux {
namespace {

constexpr unsigned k_pause_up_us = 5000;
constexpr unsigned k_pause_left_us = 50000;
constexpr unsigned k_pause_after_line_us = 500000; // scrolling up only
constexpr long k_retry_ns = 10'000'000;            // while the file is missing or empty
constexpr int64_t k_left_factor = 4;               // pixels to the left for a pixel up
constexpr int k_no_memory = -2;

// A line as it was read and as it was decoded. A byte that starts no character leaves its pair as
// the line before it did, or 0 in the first line of a pass.
struct text_line {
    char bytes[k_line_bytes];
    uint32_t pairs[4096];
};

// Owns a text_line on the heap: a ticker's thread may have a small stack.
class line_memory {
  public:
    line_memory() : m_line(static_cast<text_line *>(calloc(1, sizeof(text_line)))) {}
    ~line_memory() { free(m_line); }
    line_memory(const line_memory &) = delete;
    line_memory &operator=(const line_memory &) = delete;

    text_line *get() const { return m_line; }

  private:
    text_line *m_line;
};

void tell_ended() {
    setenv("TICKER_PLAYING", "NO", 1);
}

// Shows lines in a box, one after the other, until one of them is stopped.
class ticker {
  public:
    ticker(const ticker_job &job, scrolling direction)
        : m_job(job), m_direction(direction), m_box(job.x, job.y, job.w, job.h),
          m_band(direction, m_box, job.w, job.h, job.fg != job.bg) {}

    bool allocate() { return m_box.allocate() && m_band.allocate(); }

    // Lets a line pass; false when stops() said so, which is asked once per frame.
    bool show(const uint32_t *pairs, int count, bool (*stops)()) {
        m_band.lay_out(pairs, count);
        save_screen();
        ticker_scroll scroll = start();
        bool moves = true;
        while (moves) {
            m_box.show(m_band.frame(scroll.position()), m_job.fg);
            if (stops()) {
                end();
                return false;
            }
            moves = scroll.move();
            usleep(m_direction == scrolling::up ? k_pause_up_us : k_pause_left_us);
        }
        return true;
    }

  private:
    // Once: the box of a later line still shows the one before it.
    void save_screen() {
        if (!m_is_saved)
            m_box.save();
        m_is_saved = true;
    }

    ticker_scroll start() const {
        if (m_direction == scrolling::up)
            return {m_band.last_position(), m_job.step, true};
        return {m_band.last_position(), k_left_factor * m_job.step, false};
    }

    void end() {
        puts("start clear screen");
        if (m_direction == scrolling::left)
            m_box.clear();
        m_box.restore();
        tell_ended();
    }

    ticker_job m_job;
    scrolling m_direction;
    ticker_box m_box;
    ticker_band m_band;
    bool m_is_saved = false;
};

// The first two flags are read on every frame, the third when neither of them stops the ticker.
bool host_stops() {
    const bool goes_to_menu = host_goes_to_menu();
    const bool shows_message = host_shows_message();
    return goes_to_menu || shows_message || variable_is("TICKER_STATE", "STOP_TICKER");
}

enum class pass { showed_nothing, complete, stopped };

// Shows the file's lines once. An empty line is shown, too; after the last line feed there is none.
pass show_file(const char *path, ticker &shown, scrolling direction, text_line &line) {
    line_reader file(path);
    if (!file.is_open())
        return pass::showed_nothing;
    memset(line.pairs, 0, sizeof line.pairs);
    pass result = pass::showed_nothing;
    while (file.next(line.bytes)) {
        const int count = UTF8to16(line.bytes, line.pairs) / 2;
        if (!shown.show(line.pairs, count, host_stops))
            return pass::stopped;
        result = pass::complete;
        if (direction == scrolling::up)
            usleep(k_pause_after_line_us);
    }
    return result;
}

// Prints a variable as one line.
const char *print_variable(const char *name) {
    const char *value = getenv(name);
    flockfile(stdout);
    printf("uxWidget %s = ", name);
    const char *text = value ? value : "(null)";
    for (char c = load_byte(text); c != '\0'; c = load_byte(++text))
        putchar(c);
    putchar('\n');
    funlockfile(stdout);
    return value;
}

// One pass is told about and is stopped on the way back to the menu only.
bool told_host_stops() {
    const char *status = print_variable("STATUS");
    print_variable("ShowMSG");
    return value_is(status, "gotoMenu");
}

} // namespace

int run_ticker(const char *path, const ticker_job &job, scrolling direction) {
    if (!path)
        return -1;
    ticker shown(job, direction);
    const line_memory memory;
    if (!memory.get() || !shown.allocate()) {
        tell_ended();
        return k_no_memory;
    }
    const timespec retry = {0, k_retry_ns};
    for (;;) {
        const pass result = show_file(path, shown, direction, *memory.get());
        if (result == pass::stopped)
            return 0;
        if (result == pass::showed_nothing)
            nanosleep(&retry, nullptr);
    }
}

} // namespace ux

int DrawFontToBitmapMoveLeftFileTEST(const char *text, uint32_t fg, uint32_t bg, int x, int y,
                                     int w, int h, int step, ...) noexcept {
    ux::ticker shown({fg, bg, x, y, w, h, step}, ux::scrolling::left);
    const ux::line_memory memory;
    if (!memory.get() || !shown.allocate())
        return ux::k_no_memory;
    uint32_t *pairs = memory.get()->pairs;
    const int words = UTF8to16(text, pairs);
    printf("str_len = %d\n", words);
    if (shown.show(pairs, words / 2, ux::told_host_stops))
        puts("TICKER FINISH");
    return 0;
}
