// SPDX-License-Identifier: MIT
// A string of 20 characters by way of the graphics engine: the whole, the share of its steps, and
// laying it over the screen beside stores of the very pixels that it writes.

#include "bench/bench_screen.h"

#include "font/string_overlay.h"
#include "platform/em862x.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr char k_text[] = "Sphinx of quartz 123";
static_assert(sizeof k_text == 20 + 1);

constexpr uint32_t k_fg = 0xFFFFFFFF;
constexpr uint32_t k_bg = 0xFF103050;

void draw(int size, uint32_t bg) {
    ux_draw_string(k_text, size, k_fg, bg, 10, 10, 600, 100, 0);
}

void measure(int size) {
    uint32_t width = 0;
    uint32_t height = 0;
    ux_get_string_size(k_text, size, &width, &height);
}

void render(int size) {
    uint32_t width = 0;
    uint32_t height = 0;
    free(ux_get_string_buffer(k_text, size, k_fg, k_bg, 4, &width, &height));
}

// A rendered string, and its pixels that are not 0 as runs.
template <class Word>
struct prepared_string {
    struct run {
        uint32_t target; // element of the screen
        uint32_t source; // element of the string
        uint32_t length;
    };

    prepared_string(int size, uint32_t bg) : is_opaque(bg != 0) {
        open_font_once();
        void *block = ux_get_string_buffer(k_text, size, k_fg, bg, sizeof(Word), &width, &height);
        pixels.resize(size_t{width} * height);
        memcpy(pixels.data(), block, pixels.size() * sizeof(Word));
        free(block);
        for (uint32_t y = 0; y < height; y++)
            find_runs(y);
    }

    void find_runs(uint32_t y) {
        const Word *row = pixels.data() + size_t{y} * width;
        for (uint32_t x = 0; x < width; x++) {
            if (row[x] == 0)
                continue;
            const uint32_t start = x;
            while (x < width && row[x] != 0)
                x++;
            runs.push_back({(10 + y) * k_width + 10 + start, y * width + start, x - start});
        }
    }

    // As the library does: looks at the last row whether all can be copied.
    void lay_over() const {
        auto *screen = reinterpret_cast<uint8_t *>(screen_pixels());
        const auto *string = reinterpret_cast<const uint8_t *>(pixels.data());
        const auto pitch_bytes = static_cast<int64_t>(width * sizeof(Word));
        const bool opaque = is_opaque && !ux::has_transparent(string + (height - 1) * pitch_bytes,
                                                              width, sizeof(Word));
        const auto lay = opaque ? ux::copy_over : ux::lay_over;
        lay({screen + (10 * k_width + 10) * sizeof(Word), k_width * sizeof(Word)},
            {string, pitch_bytes}, width, height, sizeof(Word));
    }

    // Knows beforehand where every pixel is.
    void store() const {
        auto *screen = reinterpret_cast<Word *>(screen_pixels());
        for (const run &part : runs)
            for (uint32_t i = 0; i < part.length; i++)
                screen[part.target + i] = pixels[part.source + i];
    }

    // Reads every pixel of the block and of the screen's box, and writes it.
    void copy() const {
        auto *screen = reinterpret_cast<Word *>(screen_pixels()) + 10 * k_width + 10;
        for (uint32_t y = 0; y < height; y++)
            memcpy(screen + size_t{y} * k_width, pixels.data() + size_t{y} * width,
                   width * sizeof(Word));
    }

    bool is_opaque; // both colours show
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<Word> pixels;
    std::vector<run> runs;
};

template <class Word>
void register_overlay(const std::string &task, int size, uint32_t bg) {
    auto *string = new prepared_string<Word>(size, bg); // as long as the program runs
    contender((task + "/ux").c_str(), [string] { string->lay_over(); });
    contender((task + "/copy").c_str(), [string] { string->copy(); });
    contender((task + "/stores").c_str(), [string] { string->store(); });
}

} // namespace

void register_string() {
    open_font_once();
    contender("string 20 characters 16 px/ux", [] { draw(16, k_bg); });
    contender("string 20 characters 16 px/measure", [] { measure(16); });
    contender("string 20 characters 16 px/render", [] { render(16); });
    contender("string 20 characters 32 px/ux", [] { draw(32, k_bg); });
    contender("string 20 characters 32 px/measure", [] { measure(32); });
    contender("string 20 characters 32 px/render", [] { render(32); });
    for (const int size : {16, 32}) {
        const std::string pixels = " " + std::to_string(size) + " px ";
        register_overlay<uint32_t>("cells" + pixels + "32-bit", size, k_bg);
        register_overlay<uint32_t>("ink" + pixels + "32-bit", size, 0);
        register_overlay<uint16_t>("cells" + pixels + "16-bit", size, k_bg);
        register_overlay<uint16_t>("ink" + pixels + "16-bit", size, 0);
    }
}
