// SPDX-License-Identifier: MIT
// Strings of any glyphs in any box on any screen, beside a loop over every pixel.

#include "tests/font/engine_text_test.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace {

struct plain_string {
    int64_t width, height;
    std::vector<uint32_t> pixels;
};

struct plain_axis {
    int64_t source = 0, target = 0, count;

    plain_axis(int64_t box, int64_t string, int place)
        : count(box < 0 ? string : std::min(box, string)) {
        if (place == 1 && box < string)
            source = (string - box) / 2;
        else if (place == 1)
            target = (box - string) / 2;
        else if (place == 2 && box < string)
            source = string - box;
        else if (place == 2)
            target = box - string;
    }
};

// The rules as loops over every pixel.
void plain_draw(std::vector<uint32_t> &screen, int64_t width, int64_t height,
                const plain_string &string, int x, int y, int w, int h, int align) {
    if (align < 0 || align > 8)
        align = 0;
    if ((w < 0 && align % 3 != 0) || (h < 0 && align / 3 != 0))
        return;
    const plain_axis across(w, string.width, align % 3);
    const plain_axis down(h, string.height, align / 3);
    for (int64_t r = 0; r < down.count; r++) {
        const int64_t dy = y + down.target + r;
        if (dy < 0 || dy >= height)
            return;
        for (int64_t c = 0; c < across.count; c++) {
            const int64_t dx = x + across.target + c;
            if (dx < 0 || dx >= width)
                break;
            const uint32_t pixel = string.pixels[static_cast<size_t>(
                (down.source + r) * string.width + across.source + c)];
            if (pixel != 0)
                screen[static_cast<size_t>(dy * width + dx)] = pixel;
        }
    }
}

class RandomStringTest : public EngineTextTest {
  protected:
    int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }

    uint32_t color(int one_in_how_many_is_0) {
        return number(1, one_in_how_many_is_0) == 1 ? 0 : static_cast<uint32_t>(random());
    }

    // Scripts the engine's glyphs 'a', 'b', 'c' anew.
    void make_glyphs() {
        for (const char character : {'a', 'b', 'c'}) {
            const auto cell_width = static_cast<uint32_t>(number(0, 40));
            const auto cell_height = static_cast<uint32_t>(number(0, 20));
            std::vector<std::string> rows(cell_height, std::string(cell_width, '.'));
            for (std::string &row : rows)
                for (char &bit : row)
                    bit = number(0, 2) == 0 ? 'X' : '.';
            set_ink(character, rows);
            cells[character - 'a'] = {cell_width, cell_height};
        }
        fake_chip::get().cell_of = [this](uint32_t code, uint32_t) { return cells[code - 'a']; };
    }

    // What the glyphs of a text make side by side.
    plain_string pixels_of(const std::string &text, uint32_t fg, uint32_t bg) const {
        plain_string string = {0, 0, {}};
        for (const char character : text) {
            string.width += cells[character - 'a'].width;
            string.height = std::max<int64_t>(string.height, cells[character - 'a'].height);
        }
        string.pixels.assign(static_cast<size_t>(string.width * string.height), 0);
        int64_t pen = 0;
        for (const char character : text) {
            const auto &rows = fake_chip::get().engine_glyphs[character].outlines[0].rows;
            const fake_chip::cell &cell = cells[character - 'a'];
            for (uint32_t y = 0; y < cell.height; y++)
                for (uint32_t x = 0; x < cell.width; x++)
                    string.pixels[static_cast<size_t>(y * string.width + pen + x)] =
                        rows[y][x] == 'X' ? fg : bg;
            pen += cell.width;
        }
        return string;
    }

    // Makes a screen of noise.
    void make_noise(int bytes) {
        make_screen(number(1, 70), number(1, 30));
        main_screen.bytes_per_pixel = bytes;
        const int count = main_screen.width * main_screen.height * bytes;
        for (int i = 0; i < count; i++)
            main_screen.buf[i] = static_cast<uint8_t>(random());
    }

    static std::vector<uint32_t> stored() {
        const auto bytes = static_cast<size_t>(main_screen.bytes_per_pixel);
        std::vector<uint32_t> pixels(static_cast<size_t>(main_screen.width * main_screen.height));
        for (size_t i = 0; i < pixels.size(); i++)
            memcpy(&pixels[i], main_screen.buf + i * bytes, bytes);
        return pixels;
    }

    std::mt19937 random{4711};
    fake_chip::cell cells[3] = {};
};

} // namespace

TEST_F(RandomStringTest, drawing_equals_a_loop_over_every_pixel) {
    fake_chip::get().record_calls = false;
    for (int round = 0; round < 3000; round++) {
        const int bytes = 1 << round % 3;
        const uint32_t mask = 0xFFFFFFFF >> (32 - 8 * bytes);
        const uint32_t fg = color(10);
        const uint32_t bg = color(2);
        make_noise(bytes);
        make_glyphs();
        const std::string text = std::string("abcacb").substr(static_cast<size_t>(number(0, 6)));
        const int x = number(-10, main_screen.width + 5);
        const int y = number(-3, main_screen.height + 2);
        const int w = number(-5, 100);
        const int h = number(-3, 30);
        const int align = number(-1, 9);
        std::vector<uint32_t> expected = stored();
        plain_draw(expected, main_screen.width, main_screen.height,
                   pixels_of(text, fg & mask, bg & mask), x, y, w, h, align);
        ASSERT_EQ(ux_draw_string(text.c_str(), 16, fg, bg, x, y, w, h, align), 0);
        ASSERT_EQ(stored(), expected) << "round " << round;
    }
}
