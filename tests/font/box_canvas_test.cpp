// SPDX-License-Identifier: MIT
// Random texts, boxes, pictures and glyphs over a picture: the screen and the chip's calls are
// those of a canvas spelled out.

#include "tests/graphics/picture_files.h"
#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

namespace {

constexpr int k_trials = 500;
constexpr int k_width = 40;
constexpr int k_height = 24;
constexpr int k_codes = 12; // 1..12 have glyphs or not; 10 among them breaks lines

struct box {
    int x, y, w, h, size;
};

// The drawing as defined: a zeroed canvas, the picture over it, the text, then the canvas onto the
// screen.
class canvas {
  public:
    canvas(const box &asked, const std::vector<uint32_t> &picture)
        : m_box(asked), m_pixels(picture.size()) {
        for (size_t i = 0; i < picture.size(); i++) {
            const uint32_t a = picture[i] >> 24;
            if (a == 0)
                continue;
            const auto scaled = [&](int shift) {
                return (a * (picture[i] >> shift & 0xFF)) >> 8 << shift;
            };
            m_pixels[i] = a << 24 | scaled(16) | scaled(8) | scaled(0);
        }
    }

    // Draws the text; the glyph calls of the chip are appended to `calls`, glyphs that are not
    // given back counted in `kept`.
    void write(const std::u16string &text, uint32_t ink, std::vector<std::string> &calls,
               int &kept) {
        int pen = 0;
        int line = 0;
        int position = 0;
        for (const char16_t unit : text) {
            calls.push_back("FSS_get_bitmap " + std::to_string(unit));
            const auto found = fake_chip::get().glyphs.find(unit);
            if (found == fake_chip::get().glyphs.end())
                continue;
            const bool feed = unit == 10;
            const int advance = feed ? 0 : found->second.advance;
            bool drawn = true;
            pen += advance;
            if (pen > m_box.w) {
                line++;
                position = 0;
                pen = advance;
            } else if (feed) {
                line++;
                position = 0;
                pen = 0;
                drawn = false;
            }
            const bool ends = line >= m_box.h / m_box.size;
            if (drawn && !ends)
                draw(found->second, line * m_box.size, position, ink);
            if (drawn)
                calls.emplace_back("FSS_free_char");
            else
                kept++;
            if (ends)
                return;
            position += advance;
        }
    }

    void copy_to(std::vector<uint32_t> &screen, int width, int height) const {
        for (int r = 0; r < m_box.h; r++)
            for (int c = 0; c < m_box.w; c++) {
                const int element = (m_box.y + r) * width + m_box.x + c;
                if (element >= 0 && element < width * height)
                    screen[static_cast<size_t>(element)] =
                        m_pixels[static_cast<size_t>(r * m_box.w + c)];
            }
    }

  private:
    void draw(const fake_chip::glyph &glyph, int top, int position, uint32_t ink) {
        const int start = m_box.size * 4 / 5 - glyph.top;
        int bitmap_row = 0;
        for (int r = 0; r < m_box.h; r++) {
            if (r < start || r >= start + static_cast<int>(glyph.rows.size()))
                continue;
            const std::string &bits = glyph.rows[static_cast<size_t>(bitmap_row++)];
            for (int b = 0; b < static_cast<int>(bits.size()); b++) {
                const int pixel = (top + r) * m_box.w + position + glyph.left + b;
                if (bits[static_cast<size_t>(b)] == 'X' && pixel >= 0 &&
                    pixel < static_cast<int>(m_pixels.size()))
                    m_pixels[static_cast<size_t>(pixel)] = ink;
            }
        }
    }

    box m_box;
    std::vector<uint32_t> m_pixels;
};

class BoxCanvasTest : public ScreenTest {
  protected:
    void make_glyphs() {
        fake_chip::get().glyphs.clear();
        for (uint32_t code = 1; code <= k_codes; code++) {
            if (m_dice.between(1, 6) == 1)
                continue;
            fake_chip::glyph glyph{
                m_dice.between(-3, 3), m_dice.between(-2, 9), m_dice.between(0, 9), {}};
            if (m_dice.between(1, 6) == 1)
                glyph.advance = m_dice.between(-4, 40);
            const auto columns = static_cast<size_t>(8 * m_dice.between(1, 2));
            for (int r = m_dice.between(0, 9); r > 0; r--) {
                std::string bits(columns, '.');
                for (char &bit : bits)
                    bit = m_dice.between(0, 2) == 0 ? 'X' : '.';
                glyph.rows.push_back(bits);
            }
            fake_chip::get().glyphs[code] = glyph;
        }
    }

    // A picture of w x h pixels, half of the alphas 0 or 255, and its pixels.
    std::vector<uint32_t> make_picture(int w, int h) {
        png_content content;
        content.width = static_cast<uint32_t>(w);
        content.height = static_cast<uint32_t>(h);
        content.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
        std::vector<uint32_t> pixels;
        for (int i = 0; i < w * h; i++) {
            const int kind = m_dice.between(0, 3);
            const uint32_t alpha = kind == 0 ? 0 : kind == 1 ? 255 : m_dice.word() >> 24;
            const uint32_t color = m_dice.word() & 0xFFFFFF;
            pixels.push_back(alpha << 24 | color);
            for (uint32_t byte : {color >> 16, color >> 8, color, alpha})
                content.bytes.push_back(static_cast<uint8_t>(byte));
        }
        m_picture = m_folder.write_png("picture.png", content);
        return pixels;
    }

    // A screen of random pixels.
    std::vector<uint32_t> make_random_screen() {
        memset(main_screen.fb, 0, k_width * k_height * sizeof(uint32_t));
        main_screen.width = main_screen.xres = m_dice.between(20, k_width);
        main_screen.height = main_screen.yres = m_dice.between(1, k_height);
        std::vector<uint32_t> pixels(static_cast<size_t>(main_screen.width * main_screen.height));
        for (uint32_t &pixel : pixels)
            pixel = m_dice.word();
        memcpy(main_screen.fb, pixels.data(), pixels.size() * sizeof(uint32_t));
        return pixels;
    }

    // Rows of a box do not share the screen's elements: it is not wider than the screen.
    box random_box() {
        return {m_dice.between(-25, 45), m_dice.between(-20, 30),
                m_dice.between(1, main_screen.width), m_dice.between(1, 30), m_dice.between(2, 9)};
    }

    std::u16string random_text() {
        std::u16string text(static_cast<size_t>(m_dice.between(1, 20)), u' ');
        for (char16_t &unit : text)
            unit = static_cast<char16_t>(m_dice.between(1, k_codes));
        return text;
    }

    plain::dice m_dice{43};
    picture_folder m_folder;
    std::string m_picture; // the file's path
};

} // namespace

TEST_F(BoxCanvasTest, text_over_a_picture_is_what_a_canvas_gives) {
    make_screen(k_width, k_height);
    set_apart();
    for (int trial = 0; trial < k_trials; trial++) {
        SCOPED_TRACE(trial);
        make_glyphs();
        std::vector<uint32_t> screen = make_random_screen();
        const box asked = random_box();
        const std::vector<uint32_t> picture = make_picture(asked.w, asked.h);
        const std::u16string text = random_text();
        const uint32_t ink = m_dice.word();
        const std::string scale = std::to_string(asked.size * 65536);
        std::vector<std::string> calls = {
            "FSS_set_scale " + scale + " 0 0 " + scale, "RMnonAsciiFromAscii " + m_picture,
            "RMOpenFile " + m_picture + " 0", "RMFreeNonAscii", "RMCloseFile"};
        int kept = 0;
        canvas plain(asked, picture);
        plain.write(text, ink, calls, kept);
        plain.copy_to(screen, main_screen.width, main_screen.height);

        fake_chip::get().calls.clear();
        fake_chip::get().outstanding = 0;
        uxFontBoxDrawing(text.c_str(), ink, m_picture.c_str(), asked.x, asked.y, asked.w, asked.h,
                         asked.size, asked.size);
        ASSERT_EQ(fake_chip::get().calls, calls);
        ASSERT_EQ(fake_chip::get().outstanding, kept);
        ASSERT_EQ(plain::numbers(main_screen.fb), screen);
    }
}
