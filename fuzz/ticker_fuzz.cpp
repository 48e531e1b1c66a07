// SPDX-License-Identifier: MIT
// Lines of any bytes as ticker frames, with glyphs, boxes and screens of all kinds: decoding is
// compared with canvas_text.h, and every frame with a window of a plain band of pixels.

#include "fuzz/canvas_text.h"

#include "font/ticker_band.h"
#include "font/ticker_scroll.h"
#include "ux.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <memory>

namespace {

using canvas_text::glyph;

constexpr int k_codes = 8;
constexpr int64_t k_plain_limit = 1
                                  << 16; // pixels of a band that is small enough to be spelled out
constexpr int k_frames = 40;
constexpr uint32_t k_fg = 0xFFFFD54A;

std::map<uint32_t, glyph> s_glyphs;
int s_outstanding;

void demand(bool holds, const char *what) {
    if (holds)
        return;
    fprintf(stderr, "ticker: %s\n", what);
    abort();
}

struct job {
    bool up;
    int x, y, w, h, step;
};

int any_size(FuzzedDataProvider &input) {
    return input.ConsumeIntegralInRange(0, 15) == 0 ? input.ConsumeIntegral<int>()
                                                    : input.ConsumeIntegralInRange(-2, 24);
}

void make_glyphs(FuzzedDataProvider &input) {
    s_glyphs.clear();
    for (int i = input.ConsumeIntegralInRange(0, k_codes); i > 0; i--) {
        glyph made;
        const bool wild = input.ConsumeIntegralInRange(0, 7) == 0;
        made.left = wild ? input.ConsumeIntegral<int16_t>() : input.ConsumeIntegralInRange(-3, 12);
        made.top = wild ? input.ConsumeIntegral<int16_t>() : input.ConsumeIntegralInRange(-4, 12);
        made.advance =
            wild ? input.ConsumeIntegral<int16_t>() : input.ConsumeIntegralInRange(0, 12);
        made.rows = input.ConsumeIntegralInRange(0, 12);
        made.pitch = input.ConsumeIntegralInRange(0, 3);
        made.bits = input.ConsumeBytes<uint8_t>(static_cast<size_t>(made.rows * made.pitch));
        made.bits.resize(static_cast<size_t>(made.rows * made.pitch), 0xA6);
        s_glyphs[input.ConsumeBool() ? input.ConsumeIntegral<uint8_t>()
                                     : input.ConsumeIntegral<uint16_t>()] = made;
    }
}

// The band, pixel by pixel; empty when it is too large for that.
class plain_band {
  public:
    plain_band(const job &on, const std::vector<uint32_t> &codes) : m_up(on.up), m_h(on.h) {
        int64_t pen = 0, column = 0;
        std::vector<const glyph *> drawn;
        std::vector<std::pair<int64_t, int64_t>> places;
        for (uint32_t code : codes) {
            const auto found = s_glyphs.find(code);
            if (found == s_glyphs.end())
                continue;
            const bool breaks = m_up && (code == 10 || code == 13);
            const int advance = breaks ? 0 : found->second.advance;
            pen += advance;
            if (breaks || (m_up && pen > on.w)) {
                rows++;
                pen = advance;
                column = 0;
            }
            drawn.push_back(&found->second);
            places.emplace_back(m_up ? rows * on.h : 0, column + (m_up ? 0 : on.w));
            column += advance;
        }
        width = m_up ? on.w : std::max<int64_t>(pen, 0) + 2 * int64_t{on.w};
        height = m_up ? (rows + 2) * on.h : on.h;
        if (width <= 0 || height <= 0 || width > k_plain_limit || height > k_plain_limit ||
            width * height > k_plain_limit)
            return;
        ink.resize(static_cast<size_t>(width * height));
        for (size_t i = 0; i < drawn.size(); i++)
            draw(*drawn[i], places[i].first, places[i].second);
    }

    int64_t rows = 1, width = 0, height = 0;
    std::vector<bool> ink;

  private:
    void draw(const glyph &from, int64_t cell_row, int64_t cell_column) {
        const int64_t top = int64_t{m_h} * 4 / 5 - from.top;
        size_t next = 0;
        for (int64_t r = 0; r < height && r < top + from.rows; r++) {
            if (r < top)
                continue;
            const uint8_t *bits = from.bits.data() + next++ * static_cast<size_t>(from.pitch);
            for (int b = 0; b < from.pitch * 8; b++) {
                const int64_t pixel = (cell_row + r) * width + cell_column + from.left + b;
                if ((bits[b / 8] >> (7 - b % 8) & 1) && pixel >= 0 &&
                    pixel < static_cast<int64_t>(ink.size()))
                    ink[static_cast<size_t>(pixel)] = true;
            }
        }
    }

    bool m_up;
    int m_h;
};

// The screen with the window at `position` laid over `before`.
std::vector<uint32_t> picture(const std::vector<uint32_t> &before, const job &on,
                              const plain_band &band, int64_t position) {
    std::vector<uint32_t> pixels = before;
    for (int64_t r = 0; r < on.h; r++)
        for (int64_t c = 0; c < on.w && c < main_screen.width; c++) {
            const int64_t element = (on.y + r) * main_screen.width + on.x + c;
            if (element < 0 || element >= static_cast<int64_t>(pixels.size()))
                continue;
            const int64_t row = on.up ? position + r : r;
            const int64_t column = on.up ? c : position + c;
            if (band.ink[static_cast<size_t>(row * band.width + column)])
                pixels[static_cast<size_t>(element)] = k_fg;
        }
    return pixels;
}

std::vector<uint32_t> decode(const std::string &text) {
    const std::unique_ptr<char, decltype(&free)> exact(strdup(text.c_str()), free);
    std::vector<uint32_t> pairs(4096, 0);
    std::vector<uint32_t> expected = pairs;
    const int words = UTF8to16(exact.get(), pairs.data());
    demand(words == canvas_text::decode(text, expected), "the words counted differ");
    demand(pairs == expected, "the words differ");
    pairs.resize(static_cast<size_t>(words));
    return pairs;
}

void check_frames(const job &on, const std::vector<uint32_t> &pairs, uint8_t *memory,
                  const std::vector<uint32_t> &before) {
    const size_t bytes = before.size() * sizeof(uint32_t);
    std::vector<uint32_t> codes;
    for (size_t i = 1; i < pairs.size(); i += 2)
        codes.push_back(pairs[i]);
    const plain_band plain(on, codes);
    ux::ticker_box box(on.x, on.y, on.w, on.h);
    ux::ticker_band band(on.up ? ux::scrolling::up : ux::scrolling::left, box, on.w, on.h, true);
    demand(box.allocate() && band.allocate(), "no memory");
    band.lay_out(pairs.data(), static_cast<int>(codes.size()));
    box.save();
    const bool sound = on.w > 0 && on.h > 0;
    if (sound)
        demand(band.last_position() == (on.up ? (plain.rows + 1) * on.h : plain.width - on.w),
               "the travel differs");
    ux::ticker_scroll scroll(band.last_position(), on.step, on.up);
    bool moves = true;
    for (int frame = 0; moves && frame < k_frames; frame++) {
        demand(scroll.position() >= 0 && scroll.position() <= band.last_position(),
               "the window leaves the band");
        box.show(band.frame(scroll.position()), k_fg);
        if (!plain.ink.empty()) {
            const auto expected = picture(before, on, plain, scroll.position());
            demand(memcmp(memory, expected.data(), bytes) == 0, "the pictures differ");
        } else if (!sound) {
            demand(memcmp(memory, before.data(), bytes) == 0, "a box without size shows");
        }
        moves = scroll.move();
    }
    box.restore();
    demand(memcmp(memory, before.data(), bytes) == 0, "the screen is not restored");
    demand(s_outstanding == 0, "a glyph was not given back");
}

} // namespace

void FSS_set_scale(int32_t, int32_t, int32_t, int32_t) {}

fss_glyph *FSS_get_bitmap(uint32_t code) {
    const auto found = s_glyphs.find(code);
    if (found == s_glyphs.end())
        return nullptr;
    const glyph &drawn = found->second;
    auto *made = static_cast<fss_glyph *>(malloc(sizeof(fss_glyph) + drawn.bits.size()));
    made->left = static_cast<int16_t>(drawn.left);
    made->top = static_cast<int16_t>(drawn.top);
    made->advance = static_cast<int16_t>(drawn.advance);
    made->rows = static_cast<int16_t>(drawn.rows);
    made->pitch = static_cast<int16_t>(drawn.pitch);
    if (!drawn.bits.empty())
        memcpy(made + 1, drawn.bits.data(), drawn.bits.size());
    s_outstanding++;
    return made;
}

void FSS_free_char(fss_glyph *given) {
    s_outstanding--;
    free(given);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzedDataProvider input(data, size);
    main_screen = {};
    main_screen.width = input.ConsumeIntegralInRange(1, 20);
    main_screen.height = input.ConsumeIntegralInRange(1, 12);
    main_screen.bytes_per_pixel = 4;
    main_screen.color_mode = UX_COLOR_MODE_ARGB8888;
    std::vector<uint32_t> before(static_cast<size_t>(main_screen.width * main_screen.height));
    for (size_t i = 0; i < before.size(); i++)
        before[i] = static_cast<uint32_t>(i * 2654435761u);
    const std::unique_ptr<uint8_t[]> memory(new uint8_t[before.size() * sizeof(uint32_t)]);
    memcpy(memory.get(), before.data(), before.size() * sizeof(uint32_t));
    main_screen.fb = memory.get();
    job on = {};
    on.up = input.ConsumeBool();
    on.x = any_size(input);
    on.y = any_size(input);
    on.w = any_size(input);
    on.h = any_size(input);
    on.step = any_size(input);
    make_glyphs(input);
    const std::string text = input.ConsumeRemainingBytesAsString().c_str();
    check_frames(on, decode(text), memory.get(), before);
    return 0;
}
