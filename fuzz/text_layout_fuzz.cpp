// SPDX-License-Identifier: MIT
// Text drawing and text decoding with glyphs, boxes, screens and texts of all kinds, compared with
// the plain drawing of canvas_text.h. Memory is of exact size, so that the address sanitizer sees
// every step outside.

#include "fuzz/canvas_text.h"
#include "platform/em862x.h"
#include "ux.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <iconv.h>
#include <memory>

namespace {

using canvas_text::glyph;
using canvas_text::job;
using canvas_text::world;

constexpr size_t k_units = 128;
constexpr int k_plain_limit = 300; // boxes that are small enough for a canvas

// What the library's rasteriser calls answer, and what they were.
struct rasteriser {
    const std::map<uint32_t, glyph> *glyphs = nullptr;
    std::vector<std::string> calls;
    int outstanding = 0;
};

rasteriser s_rasteriser;

[[noreturn]] void fail(const char *what) {
    fprintf(stderr, "text layout: %s\n", what);
    abort();
}

void demand(bool holds, const char *what) {
    if (!holds)
        fail(what);
}

// Standard error as a text while this lives.
class captured_errors {
  public:
    captured_errors() : m_before(stderr) { stderr = open_memstream(&m_text, &m_length); }
    ~captured_errors() {
        end();
        free(m_text);
    }
    captured_errors(const captured_errors &) = delete;
    captured_errors &operator=(const captured_errors &) = delete;

    const std::string end() {
        if (stderr != m_before) {
            fclose(stderr);
            stderr = m_before;
        }
        return std::string(m_text, m_length);
    }

  private:
    FILE *m_before;
    char *m_text = nullptr;
    size_t m_length = 0;
};

int small_or_extreme(FuzzedDataProvider &input) {
    const int small = input.ConsumeIntegralInRange(-20, 100);
    if (input.ConsumeIntegral<uint8_t>() < 250)
        return small;
    return input.ConsumeIntegral<int32_t>();
}

glyph make_glyph(FuzzedDataProvider &input) {
    glyph made = {};
    made.left = input.ConsumeIntegralInRange(-20, 20);
    made.top = input.ConsumeIntegralInRange(-20, 40);
    made.advance = input.ConsumeIntegralInRange(-5, 40);
    made.rows = input.ConsumeIntegralInRange(-1, 40);
    made.pitch = input.ConsumeIntegralInRange(-1, 4);
    if (input.ConsumeIntegral<uint8_t>() == 255) {
        made.left = input.ConsumeIntegral<int16_t>();
        made.top = input.ConsumeIntegral<int16_t>();
        made.advance = input.ConsumeIntegral<int16_t>();
    }
    if (made.rows > 0 && made.pitch > 0) {
        const auto size = static_cast<size_t>(made.rows * made.pitch);
        const uint8_t fill = input.ConsumeIntegral<uint8_t>();
        made.bits = input.ConsumeBytes<uint8_t>(fill & 1 ? size : 0);
        made.bits.resize(size, fill);
    }
    return made;
}

world make_world(FuzzedDataProvider &input) {
    world made = {};
    made.width = input.ConsumeIntegralInRange(0, 64);
    made.height = input.ConsumeIntegralInRange(0, 48);
    const uint8_t kind = input.ConsumeIntegral<uint8_t>();
    made.bytes_per_pixel = kind < 240 ? 4 : kind % 5;
    const int count = input.ConsumeIntegralInRange(0, 6);
    for (int i = 0; i < count; i++) {
        const uint32_t code = input.ConsumeBool()
                                  ? static_cast<uint32_t>(input.ConsumeIntegralInRange(0, 127))
                                  : input.ConsumeIntegral<uint16_t>();
        made.glyphs[code] = make_glyph(input);
    }
    return made;
}

job make_job(FuzzedDataProvider &input) {
    job made = {};
    made.fg = input.ConsumeIntegral<uint32_t>();
    made.bg = input.ConsumeBool() ? made.fg ^ 0x01000000u : made.fg;
    made.x = small_or_extreme(input);
    made.y = small_or_extreme(input);
    made.w = small_or_extreme(input);
    made.h = small_or_extreme(input);
    made.size_x = small_or_extreme(input);
    made.size_y = input.ConsumeBool() ? made.size_x : small_or_extreme(input);
    return made;
}

bool is_small(const job &job) {
    return job.w <= k_plain_limit && job.h <= k_plain_limit;
}

// The screen as the library sees it: exactly as many bytes as it has.
std::unique_ptr<uint8_t[]> give_screen(world &on) {
    const auto count = static_cast<size_t>(on.width * on.height);
    const size_t bytes = count * static_cast<size_t>(on.bytes_per_pixel);
    std::unique_ptr<uint8_t[]> memory(new uint8_t[bytes]);
    on.pixels.clear();
    for (size_t i = 0; i < bytes; i++)
        memory[i] = static_cast<uint8_t>(i * 7 + 3);
    if (on.bytes_per_pixel == 4) {
        on.pixels.resize(count);
        if (bytes > 0)
            memcpy(on.pixels.data(), memory.get(), bytes);
    }
    main_screen = {};
    main_screen.width = on.width;
    main_screen.height = on.height;
    main_screen.bytes_per_pixel = on.bytes_per_pixel;
    main_screen.color_mode =
        on.bytes_per_pixel == 2 ? UX_COLOR_MODE_RGB565 : UX_COLOR_MODE_ARGB8888;
    main_screen.fb = memory.get();
    s_rasteriser = {&on.glyphs, {}, 0};
    return memory;
}

void compare(const world &on, const uint8_t *memory, const std::string &errors) {
    demand(s_rasteriser.outstanding == 0, "a glyph was not given back");
    demand(s_rasteriser.calls == on.calls, "the calls of the rasteriser differ");
    const std::string line = "Unknown bpp : " + std::to_string(on.bytes_per_pixel) + "\n";
    demand(errors.size() == line.size() * static_cast<size_t>(on.unknown_pixels),
           "the number of reports differs");
    for (size_t at = 0; at < errors.size(); at += line.size())
        demand(errors.compare(at, line.size(), line) == 0, "the reports differ");
    const size_t bytes = on.pixels.size() * 4;
    demand(bytes == 0 || memcmp(memory, on.pixels.data(), bytes) == 0, "the pictures differ");
    if (on.bytes_per_pixel != 4)
        for (int i = 0; i < on.width * on.height * on.bytes_per_pixel; i++)
            demand(memory[i] == static_cast<uint8_t>(i * 7 + 3), "a pixel was written");
}

// 128 units are the most that may be read; shorter texts end where their memory does.
void fuzz_units(FuzzedDataProvider &input) {
    world on = make_world(input);
    const job job = make_job(input);
    std::vector<uint8_t> text = input.ConsumeBytes<uint8_t>(2 * k_units);
    text.resize(text.size() / 2 * 2);
    if (text.size() < 2 * k_units)
        text.resize(text.size() + 2);
    std::unique_ptr<uint8_t[]> exact(new uint8_t[text.size()]);
    memcpy(exact.get(), text.data(), text.size());
    const auto memory = give_screen(on);
    captured_errors errors;
    demand(uxFontDrawing(exact.get(), job.fg, job.bg, job.x, job.y, job.w, job.h, job.size_x,
                         job.size_y, 0, 1) == 0,
           "the result differs");
    const std::string told = errors.end();
    if (!is_small(job))
        return;
    canvas_text::draw_units(on, job, text.data(), text.size() / 2);
    compare(on, memory.get(), told);
}

void fuzz_utf8_drawing(FuzzedDataProvider &input) {
    world on = make_world(input);
    const job job = make_job(input);
    const std::string text = input.ConsumeRemainingBytesAsString().c_str();
    const std::unique_ptr<char, decltype(&free)> exact(strdup(text.c_str()), free);
    const auto memory = give_screen(on);
    captured_errors errors;
    demand(DrawFontToBitmapTEST(exact.get(), job.fg, job.bg, job.x, job.y, job.w, job.h, job.size_x,
                                job.size_y) == 0,
           "the result differs");
    const std::string told = errors.end();
    if (!is_small(job))
        return;
    canvas_text::draw_utf8(on, job, text);
    compare(on, memory.get(), told);
}

void fuzz_decoder(FuzzedDataProvider &input) {
    std::string text = input.ConsumeRemainingBytesAsString().c_str();
    while (!text.empty() && text.size() < 3000 && (text[0] & 1))
        text += text;
    const std::unique_ptr<char, decltype(&free)> exact(strdup(text.c_str()), free);
    std::vector<uint32_t> pairs(4096, 0xDEADBEEF);
    std::vector<uint32_t> expected = pairs;
    demand(UTF8to16(exact.get(), pairs.data()) == canvas_text::decode(text, expected),
           "the words counted differ");
    demand(pairs == expected, "the words differ");
}

// The C library's conversion; false when the text is not well-formed.
bool convert(const std::string &text, std::u16string &units) {
    static const iconv_t s_converter = iconv_open("UTF-16LE", "UTF-8");
    units.assign(text.size(), u'\0');
    char *from = const_cast<char *>(text.data());
    char *to = reinterpret_cast<char *>(units.data());
    size_t from_left = text.size();
    size_t to_left = units.size() * 2;
    iconv(s_converter, nullptr, nullptr, nullptr, nullptr);
    if (iconv(s_converter, &from, &from_left, &to, &to_left) == static_cast<size_t>(-1))
        return false;
    units.resize(units.size() - to_left / 2);
    return true;
}

// What fits is a beginning of the whole, without half a character, and no unit more would fit.
void check_cut(const std::u16string &whole, const std::vector<char16_t> &out) {
    size_t length = 0;
    while (length < out.size() && out[length] != 0)
        length++;
    demand(length < out.size(), "the end is missing");
    demand(whole.compare(0, length, out.data(), length) == 0, "the beginning differs");
    if (length == whole.size())
        return;
    const bool is_pair = (whole[length] & 0xFC00) == 0xD800;
    demand((whole[length] & 0xFC00) != 0xDC00, "a character is cut");
    demand(length + (is_pair ? 2 : 1) >= out.size(), "less than fits");
}

void fuzz_widget_text(FuzzedDataProvider &input) {
    const size_t capacity = input.ConsumeIntegralInRange<size_t>(0, 300);
    const std::string text = input.ConsumeRemainingBytesAsString().c_str();
    const std::unique_ptr<char, decltype(&free)> exact(strdup(text.c_str()), free);
    std::vector<char16_t> all(text.size() + 1);
    const size_t needed = ux_text_from_utf8(all.data(), all.size(), exact.get());
    demand(needed <= text.size(), "more units than bytes");
    const std::u16string whole(all.data(), needed);
    std::u16string expected;
    if (convert(text, expected))
        demand(whole == expected, "a well-formed text differs");
    else
        demand(whole.find(u'\xFFFD') != whole.npos, "a malformed text is not marked");
    std::vector<char16_t> out(capacity, u'~');
    demand(ux_text_from_utf8(out.data(), capacity, exact.get()) == needed,
           "the units needed differ");
    if (capacity > 0)
        check_cut(whole, out);
}

} // namespace

void FSS_set_scale(int32_t xx, int32_t xy, int32_t yx, int32_t yy) {
    s_rasteriser.calls.push_back("FSS_set_scale " + std::to_string(xx) + " " + std::to_string(xy) +
                                 " " + std::to_string(yx) + " " + std::to_string(yy));
}

fss_glyph *FSS_get_bitmap(uint32_t code) {
    s_rasteriser.calls.push_back("FSS_get_bitmap " + std::to_string(code));
    const auto found = s_rasteriser.glyphs->find(code);
    if (found == s_rasteriser.glyphs->end())
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
    s_rasteriser.outstanding++;
    return made;
}

void FSS_free_char(fss_glyph *given) {
    s_rasteriser.calls.emplace_back("FSS_free_char");
    s_rasteriser.outstanding--;
    free(given);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzedDataProvider input(data, size);
    switch (input.ConsumeIntegralInRange(0, 5)) {
    case 0:
        fuzz_decoder(input);
        break;
    case 1:
        fuzz_widget_text(input);
        break;
    case 2:
        fuzz_utf8_drawing(input);
        break;
    default:
        fuzz_units(input);
    }
    return 0;
}
