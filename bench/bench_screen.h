// SPDX-License-Identifier: MIT
// The screen that benchmarks paint on: 1280 x 720, 32-bit, in ordinary memory.
#ifndef UX_BENCH_BENCH_SCREEN_H
#define UX_BENCH_BENCH_SCREEN_H

#include <benchmark/benchmark.h>
#include <ux.h>

#include <cstddef>
#include <cstdint>

constexpr int k_width = 1280;
constexpr int k_height = 720;
constexpr size_t k_pixels = size_t{k_width} * k_height;
constexpr size_t k_screen_bytes = k_pixels * 4;

// Sets main_screen up with `buf` and `fb` one memory, or apart.
void use_screen(bool apart = false);

inline uint32_t *screen_pixels() {
    return reinterpret_cast<uint32_t *>(main_screen.buf);
}

// A second screen's worth of memory, for peers and sources.
uint32_t *other_pixels();

// Opens the font on the graphics engine, which can be done only once in a program.
void open_font_once();

// Registers "task/contender"; `work` is what one iteration does.
template <class Work>
void contender(const char *name, Work work) {
    benchmark::RegisterBenchmark(name, [work](benchmark::State &state) {
        use_screen();
        for (auto _ : state) {
            work();
            benchmark::ClobberMemory();
        }
    });
}

// One function per file, called by main().
void register_box();
void register_line();
void register_blit();
void register_blend();
void register_convert();
void register_decode();
void register_scale();
void register_text();
void register_string();
void register_ticker();
void register_page();
void register_desk();
void register_input_widgets();

// Prints what share of a core a running ticker takes; for some seconds.
void report_ticker_share();

#endif
