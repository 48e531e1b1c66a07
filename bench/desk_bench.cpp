// SPDX-License-Identifier: MIT
// The clock's advance, face and three hands, and the calendar's repaint, beside the same pixels
// made with a decoding for each picture drawn.

#include "bench/bench_screen.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

constexpr int k_face_size = 360;
constexpr int k_calendar_width = 860;
constexpr int k_calendar_height = 640;
constexpr char k_pictures[] = UX_BENCH_PICTURES;
constexpr char k_face[] = UX_BENCH_PICTURES "/clock-face.png";

// Standard output goes nowhere meanwhile: every picture drawn leaves a line there.
class quiet_output {
  public:
    quiet_output() : m_kept((fflush(stdout), dup(STDOUT_FILENO))) {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    ~quiet_output() {
        fflush(stdout);
        dup2(m_kept, STDOUT_FILENO);
        close(m_kept);
    }
    quiet_output(const quiet_output &) = delete;
    quiet_output &operator=(const quiet_output &) = delete;

  private:
    int m_kept;
};

template <class Work>
void quiet_contender(const char *name, Work work) {
    benchmark::RegisterBenchmark(name, [work](benchmark::State &state) {
        use_screen();
        const quiet_output quiet;
        for (auto _ : state) {
            work();
            benchmark::ClobberMemory();
        }
    });
}

void need_page() {
    static const int page = ux_page_new();
    main_screen.current_page = page;
}

ux_clock *clock_on_page() {
    need_page();
    static ux_clock *const clock = [] {
        ux_clock *made = ux_clock_new(&ux_current_page()->container, 10, 10, k_face_size,
                                      k_face_size, 150, 180, 180, k_face, nullptr, nullptr);
        if (!made)
            exit(EXIT_FAILURE);
        ux_clock_show(&made->obj, 0, 0, 0);
        return made;
    }();
    return clock;
}

// As if two seconds had passed since the last one.
void advance() {
    ux_clock *clock = clock_on_page();
    clock->state->last_advance = 0;
    ux_event event = {};
    event.data = clock;
    ux_clock_update(&event);
}

void draw_face() {
    const ux_clock *clock = clock_on_page();
    ux_draw_image_buff(clock->state->face, 10, 10, k_face_size, k_face_size, 0);
}

void decode_face() {
    ux_draw_image(k_face, 10, 10, k_face_size, k_face_size, 0);
}

ux_calendar *calendar_on_page() {
    need_page();
    static ux_calendar *const calendar = [] {
        open_font_once();
        return ux_calendar_new(&ux_current_page()->container, 0, 0, k_calendar_width,
                               k_calendar_height, k_pictures);
    }();
    ux_calendar_set_date(calendar, 2009, 1, 1);
    return calendar;
}

void repaint_calendar() {
    ux_calendar *calendar = calendar_on_page();
    ux_calendar_show(&calendar->obj);
}

void draw_text(const std::string &text, int x, int y, int w, int h) {
    constexpr int size = 16;
    const std::u16string units(text.begin(), text.end());
    uxFontDrawing(units.c_str(), 0xFF202020, 0, x, y, w, h, size, size, 0, 1);
}

// January 2009 with a decoding for every cell.
void decode_every_cell() {
    const ux_calendar *calendar = calendar_on_page();
    constexpr const char *names[] = {"SUN", "MON", "TUE", "WED", "THU", "FRI", "SAT"};
    constexpr int w = ((k_calendar_width - 178) / 7 - 3) / 2 * 2;
    constexpr int pitch = (k_calendar_height - 80) / 6;
    constexpr int h = pitch - 5;
    constexpr int first = 4;
    const std::string path = std::string(calendar->image_dir) + "/black.png";
    draw_text("1", 20, 50, 150, 120);
    draw_text("JANUARY", 20, 170, 150, 30);
    draw_text("2009", 20, 200, 150, 30);
    for (int i = 0; i < 7; i++) {
        const int x = 178 + i * (w + 3);
        uxDrawBox(x, 50, x + w - 1, 74, 0xFF303080);
        ux_draw_string(names[i], 0, 0xFFFFFFFF, 0, x, 50, w, 25, 4);
    }
    for (int day = 0; day < 31; day++) {
        const int x = 178 + (first + day) % 7 * (w + 3);
        const int y = 80 + (first + day) / 7 * pitch;
        ux_draw_image(path.c_str(), x, y, w, h, 0);
        draw_text(std::to_string(day + 1), x + 6, y + 6, w - 12, h / 3);
    }
    ux_screen_blit_rect(0, 0, k_calendar_width, k_calendar_height);
}

} // namespace

void register_desk() {
    quiet_contender("clock advance 360x360/ux", [] { advance(); });
    quiet_contender("clock advance 360x360/face alone", [] { draw_face(); });
    quiet_contender("clock advance 360x360/face decoded", [] { decode_face(); });
    quiet_contender("calendar 860x640/ux", [] { repaint_calendar(); });
    quiet_contender("calendar 860x640/decode per cell", [] { decode_every_cell(); });
}
