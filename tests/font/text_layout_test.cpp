// SPDX-License-Identifier: MIT
// Random texts, boxes, glyphs and colours: the screen and the chip's calls are those of the drawing
// spelled out with two canvases.

#include "tests/font/literal_text.h"
#include "tests/support/screen_test.h"

#include <random>

namespace {

constexpr int k_trials = 8000;
constexpr int k_largest_width = 40;
constexpr int k_largest_height = 24;
constexpr size_t k_memory_pixels = k_largest_width * k_largest_height;
constexpr uint32_t k_codes = 12; // 1..12 have glyphs or not; 10 among them breaks lines
constexpr uint32_t k_carriage_return = 13;

class RandomTextTest : public ScreenTest {
  protected:
    int between(int low, int high) {
        return low + static_cast<int>(m_random() % static_cast<unsigned>(high - low + 1));
    }
    bool one_in(unsigned n) { return m_random() % n == 0; }
    uint32_t word() { return static_cast<uint32_t>(m_random()); }

    fake_chip::glyph random_glyph() {
        fake_chip::glyph glyph;
        glyph.left = one_in(3) ? between(-12, 14) : between(-1, 2);
        glyph.top = one_in(3) ? between(-12, 20) : between(2, 8);
        glyph.advance = one_in(6) ? between(-4, 40) : between(0, 9);
        const int rows = one_in(8) ? 0 : between(1, 14);
        const size_t pitch_bits = 8 * static_cast<size_t>(one_in(8) ? 0 : between(1, 4));
        for (int r = 0; r < rows; r++) {
            std::string bits(pitch_bits, '.');
            for (char &bit : bits)
                if (one_in(3))
                    bit = 'X';
            glyph.rows.push_back(bits);
        }
        return glyph;
    }

    void make_glyphs() {
        fake_chip::get().glyphs.clear();
        for (uint32_t code = 1; code <= k_codes; code++)
            if (!one_in(6))
                fake_chip::get().glyphs[code] = random_glyph();
        if (!one_in(4))
            fake_chip::get().glyphs[k_carriage_return] = random_glyph();
        if (one_in(2)) // what untouched pairs ask for
            fake_chip::get().glyphs[0] = random_glyph();
    }

    // A new screen of random pixels, `fb` and `buf` apart or not, and its picture.
    literal::screen make_random_screen() {
        // All trials share two memories: where the screen is smaller, the rest must stay 0.
        memset(main_screen.fb, 0, k_memory_pixels * sizeof(uint32_t));
        main_screen.width = main_screen.xres = between(1, k_largest_width);
        main_screen.height = main_screen.yres = between(1, k_largest_height);
        literal::screen screen{main_screen.width, main_screen.height, {}};
        for (int i = 0; i < main_screen.width * main_screen.height; i++)
            screen.pixels.push_back(word());
        memcpy(main_screen.fb, screen.pixels.data(), screen.pixels.size() * sizeof(uint32_t));
        return screen;
    }

    literal::request random_request() {
        literal::request asked{};
        asked.fg = word();
        asked.bg = one_in(8) ? asked.fg : one_in(4) ? asked.fg ^ 0x80000000 : word();
        asked.x = one_in(3) ? between(-30, 50) : between(0, 8);
        asked.y = one_in(3) ? between(-30, 40) : between(0, 5);
        asked.w = one_in(10) ? between(-6, 2) : between(1, 60);
        asked.h = one_in(10) ? between(-6, 2) : between(1, 40);
        asked.size_x = between(0, 20);
        asked.size_y = one_in(12) ? between(-3, 1) : between(2, 14);
        return asked;
    }

    static std::vector<uint32_t> memory_now() {
        std::vector<uint32_t> pixels(k_memory_pixels);
        memcpy(pixels.data(), main_screen.fb, pixels.size() * sizeof(uint32_t));
        return pixels;
    }

    // Compares screen and calls with those of the plain drawing of `text`.
    void expect_as_drawn_plainly(literal::screen &screen, const literal::request &asked,
                                 const std::vector<literal::character> &text) {
        literal::drawing plain(screen, asked);
        ASSERT_EQ(fake_chip::get().calls, plain.run(text));
        screen.pixels.resize(k_memory_pixels);
        ASSERT_EQ(memory_now(), screen.pixels);
        ASSERT_EQ(fake_chip::get().outstanding, 0);
        fake_chip::get().calls.clear();
    }

    std::mt19937 m_random{20};
};

} // namespace

TEST_F(RandomTextTest, sixteen_bit_text_is_what_two_canvases_give) {
    make_screen(k_largest_width, k_largest_height);
    set_apart();
    for (int trial = 0; trial < k_trials; trial++) {
        SCOPED_TRACE(trial);
        make_glyphs();
        literal::screen screen = make_random_screen();
        const literal::request asked = random_request();
        std::u16string text;
        std::vector<literal::character> characters;
        for (int k = between(0, one_in(20) ? 127 : 20); k > 0; k--) {
            const uint32_t code = one_in(10) ? k_carriage_return : word() % k_codes + 1;
            const bool breaks = code == u'\n' || code == k_carriage_return;
            text += static_cast<char16_t>(code);
            characters.push_back({code, breaks});
        }
        uxFontDrawing(text.c_str(), asked.fg, asked.bg, asked.x, asked.y, asked.w, asked.h,
                      asked.size_x, asked.size_y, 0, 1);
        expect_as_drawn_plainly(screen, asked, characters);
        if (HasFatalFailure())
            return;
    }
}

TEST_F(RandomTextTest, utf8_text_is_what_two_canvases_give) {
    make_screen(k_largest_width, k_largest_height);
    set_apart();
    for (int trial = 0; trial < k_trials; trial++) {
        SCOPED_TRACE(trial);
        make_glyphs();
        literal::screen screen = make_random_screen();
        const literal::request asked = random_request();
        // Characters of one byte, and of two or three: C4 8x has the code 256 + x, E0 80 8x has x.
        std::string text;
        std::vector<uint32_t> codes;
        for (int k = between(0, 20); k > 0; k--) {
            const uint32_t code = word() % k_codes + 1;
            const char low = static_cast<char>(0x80 + code);
            const int length = one_in(4) ? between(2, 3) : 1;
            text += length == 1   ? std::string(1, static_cast<char>(code))
                    : length == 2 ? std::string{'\xC4', low}
                                  : std::string{'\xE0', '\x80', low};
            codes.push_back(length == 2 ? code + 256 : code);
            if (one_in(10)) {
                text += '\xFF';
                codes.push_back(0);
            }
        }
        std::vector<literal::character> characters;
        for (size_t k = 0; k < codes.size(); k++)
            characters.push_back({codes[k], 2 * k + 1 < text.size() && text[2 * k + 1] == '\n'});
        DrawFontToBitmapTEST(text.c_str(), asked.fg, asked.bg, asked.x, asked.y, asked.w, asked.h,
                             asked.size_x, asked.size_y);
        expect_as_drawn_plainly(screen, asked, characters);
        if (HasFatalFailure())
            return;
    }
}
