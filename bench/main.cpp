// SPDX-License-Identifier: MIT
// Runs all benchmarks with their contenders interleaved. Google Benchmark's options are understood,
// --benchmark_filter among them.

#include "bench/bench_screen.h"
#include "bench/ratio_report.h"

#include <cstdlib>
#include <vector>

int main(int argc, char **argv) {
    std::vector<char *> arguments(argv, argv + argc);
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    char repeat[] = "--benchmark_repetitions=9";
    char short_time[] = "--benchmark_min_time=0.05";
    // The program's own options come first, so that the user's win.
    arguments.insert(arguments.begin() + 1, {interleave, repeat, short_time});
    int count = static_cast<int>(arguments.size());
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    setenv("FontSize", "16", 1);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    register_box();
    register_line();
    register_blit();
    register_blend();
    register_convert();
    register_decode();
    register_scale();
    register_text();
    register_string();
    register_ticker();
    register_page();
    register_desk();
    register_input_widgets();
    ratio_report report;
    benchmark::RunSpecifiedBenchmarks(&report);
    report_ticker_share();
    return 0;
}
