// SPDX-License-Identifier: MIT
// The ticker: frames as fast as they go beside copies of their box, and the time that one running
// ticker takes of a core at its own pace. Its pauses are this program's own.

#include "bench/bench_screen.h"
#include "bench/peers.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <regex>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int k_box_x = 0;
constexpr int k_box_y = 640;
constexpr int k_box_height = 40;
constexpr long k_frames = 2000;    // in one iteration
constexpr long k_share_ms = 10000; // that a ticker is watched
constexpr char k_line[] = "The quick brown fox jumps over the lazy dog 0123456789 and back again, "
                          "sphinx of black quartz, judge my vow\n";

// What a pause of the ticker does.
struct pause_plan {
    bool sleeps = false;
    long frames_left = 0; // until the ticker is stopped
    timespec end = {};    // instead, when it sleeps
};

pause_plan s_plan;

bool is_before(const timespec &a, const timespec &b) {
    return a.tv_sec < b.tv_sec || (a.tv_sec == b.tv_sec && a.tv_nsec < b.tv_nsec);
}

void stop() {
    setenv("TICKER_STATE", "STOP_TICKER", 1);
}

const char *line_file() {
    static char path[] = "/tmp/ux-bench-ticker-XXXXXX";
    static bool made = false;
    if (made)
        return path;
    made = true;
    const int file = mkstemp(path);
    if (file < 0 || write(file, k_line, sizeof k_line - 1) < 0)
        abort();
    close(file);
    atexit([] { unlink(path); });
    return path;
}

// The message at every stop is nobody's concern here.
class quiet_output {
  public:
    quiet_output() : m_before(stdout) { stdout = fopen("/dev/null", "w"); }
    ~quiet_output() {
        fclose(stdout);
        stdout = m_before;
    }
    quiet_output(const quiet_output &) = delete;
    quiet_output &operator=(const quiet_output &) = delete;

  private:
    FILE *m_before;
};

void run_ticker(int mode, int step) {
    const quiet_output quiet;
    setenv("TICKER_STATE", "RUN_TICKER", 1);
    uxFontDrawing(line_file(), 0xFFFFD54A, 0xFF000000, k_box_x, k_box_y, k_width, k_box_height,
                  k_box_height, k_box_height, step, mode);
}

void run_frames(int mode) {
    s_plan = {false, k_frames, {}};
    run_ticker(mode, 1);
}

void copy_box() {
    const uint32_t *source = other_pixels() + k_box_y * k_width;
    for (long frame = 0; frame < k_frames; frame++) {
        memcpy(screen_pixels() + k_box_y * k_width, source, size_t{k_box_height} * k_width * 4);
        benchmark::ClobberMemory();
    }
}

double seconds(const timeval &time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

double used_seconds() {
    rusage usage = {};
    getrusage(RUSAGE_THREAD, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// These run outside the benchmark library, which is asked for nothing but its filter.
bool is_wanted(const char *name) {
    const std::string filter = benchmark::GetBenchmarkFilter();
    return filter.empty() || filter == "all" || std::regex_search(name, std::regex(filter));
}

void report_share(const char *name, int mode) {
    if (!is_wanted(name))
        return;
    use_screen();
    timespec end = {};
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += k_share_ms / 1000;
    s_plan = {true, 0, end};
    const double before = used_seconds();
    run_ticker(mode, 1);
    printf("%-28s %.2f %% of a core\n", name, (used_seconds() - before) * 1e5 / k_share_ms);
}

} // namespace

// In place of the C library's for the whole program.
extern "C" __attribute__((visibility("default"))) int usleep(useconds_t microseconds) {
    if (!s_plan.sleeps) {
        if (--s_plan.frames_left <= 0)
            stop();
        return 0;
    }
    const timespec pause = {0, static_cast<long>(microseconds) * 1000};
    nanosleep(&pause, nullptr);
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    if (!is_before(now, s_plan.end))
        stop();
    return 0;
}

void register_ticker() {
    setenv("EM862X_FONT", font_path(), 0);
    setenv("STATUS", "playing", 1);
    setenv("ShowMSG", "NO", 1);
    setenv("TICKER_PLAYING", "YES", 1);
    contender("ticker up 1280x40/ux", [] { run_frames(2); });
    contender("ticker up 1280x40/memcpy", [] { copy_box(); });
    contender("ticker left 1280x40/ux", [] { run_frames(4); });
    contender("ticker left 1280x40/memcpy", [] { copy_box(); });
}

void report_ticker_share() {
    report_share("ticker up at its pace", 2);
    report_share("ticker left at its pace", 4);
}
