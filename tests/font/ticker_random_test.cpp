// SPDX-License-Identifier: MIT
// Random lines, glyphs, boxes and screens: every frame is that of one plain band canvas of pixels
// in full, glyphs drawn into it bit by bit, the window copied out of it pixel by pixel.

#include "tests/font/ticker_test.h"

#include <random>

namespace {

constexpr int k_trials = 400;
constexpr int k_largest_width = 24;
constexpr int k_largest_height = 16;
constexpr size_t k_memory_pixels = k_largest_width * k_largest_height;
constexpr uint32_t k_codes = 14; // 1..14 have glyphs or not; 10 ends lines, 13 breaks them

struct box {
    int x, y, w, h;
};

// The band of pixels.
class plain_band {
  public:
    plain_band(int mode, const box &at, uint32_t fg, uint32_t bg, const std::vector<uint32_t> &line)
        : m_up(mode == 2), m_at(at), m_fg(fg) {
        int64_t pen = 0, column = 0, row = 0;
        std::vector<std::pair<int64_t, int64_t>> places; // row and column of each glyph
        std::vector<const fake_chip::glyph *> glyphs;
        for (uint32_t code : line) {
            const auto found = fake_chip::get().glyphs.find(code);
            if (found == fake_chip::get().glyphs.end())
                continue;
            const bool breaks = m_up && (code == 13 || code == 10);
            const int advance = breaks ? 0 : found->second.advance;
            pen += advance;
            if (breaks || (m_up && pen > at.w)) {
                row++;
                column = 0;
                pen = advance;
            }
            places.emplace_back(row, column);
            glyphs.push_back(&found->second);
            column += advance;
        }
        rows = row + 1;
        width = m_up ? at.w : std::max<int64_t>(pen, 0) + 2 * at.w;
        height = m_up ? (rows + 2) * at.h : at.h;
        m_pixels.assign(static_cast<size_t>(width * height), bg);
        for (size_t i = 0; i < glyphs.size(); i++)
            draw(*glyphs[i], m_up ? (places[i].first + 1) * at.h : 0,
                 places[i].second + (m_up ? 0 : at.w));
    }

    uint32_t pixel(int64_t row, int64_t column) const {
        return m_pixels.at(static_cast<size_t>(row * width + column));
    }

    int64_t rows, width, height;

  private:
    void draw(const fake_chip::glyph &glyph, int64_t cell_row, int64_t cell_column) {
        const int top = m_at.h * 4 / 5 - glyph.top;
        size_t next = 0;
        for (int r = 0; r < height; r++) {
            if (r < top || r >= top + static_cast<int>(glyph.rows.size()))
                continue;
            const std::string &bits = glyph.rows[next++];
            for (size_t b = 0; b < bits.size(); b++) {
                const int64_t pixel =
                    (cell_row + r) * width + cell_column + glyph.left + static_cast<int64_t>(b);
                if (bits[b] == 'X' && pixel >= 0 && pixel < static_cast<int64_t>(m_pixels.size()))
                    m_pixels[static_cast<size_t>(pixel)] = m_fg;
            }
        }
    }

    bool m_up;
    box m_at;
    uint32_t m_fg;
    std::vector<uint32_t> m_pixels;
};

// All positions of a window.
std::vector<int64_t> positions(int mode, int step, const plain_band &band, const box &at) {
    std::vector<int64_t> all;
    if (mode == 4) {
        for (int64_t p = 0; p + at.w <= band.width; p += 4 * step)
            all.push_back(p);
        return all;
    }
    const int64_t travel = (band.rows + 1) * at.h;
    for (int64_t p = 0; p <= travel; p += step)
        all.push_back(p);
    all.push_back(travel > step ? travel - step : 0);
    return all;
}

class RandomTickerTest : public TickerTest {
  protected:
    int between(int low, int high) {
        return low + static_cast<int>(m_random() % static_cast<unsigned>(high - low + 1));
    }
    bool one_in(unsigned n) { return m_random() % n == 0; }

    void make_glyphs() {
        fake_chip::get().glyphs.clear();
        for (uint32_t code = 0; code <= k_codes; code++) {
            if (one_in(6))
                continue;
            fake_chip::glyph glyph;
            glyph.left = one_in(3) ? between(-12, 14) : between(-1, 2);
            glyph.top = one_in(3) ? between(-6, 12) : between(2, 8);
            glyph.advance = one_in(8) ? between(-4, 30) : between(0, 9);
            const size_t bits = 8 * static_cast<size_t>(between(0, 3));
            for (int r = one_in(8) ? 0 : between(1, 12); r > 0; r--) {
                glyph.rows.emplace_back(bits, '.');
                for (char &bit : glyph.rows.back())
                    if (one_in(3))
                        bit = 'X';
            }
            fake_chip::get().glyphs[code] = glyph;
        }
    }

    void make_random_screen() {
        memset(main_screen.fb, 0, k_memory_pixels * sizeof(uint32_t));
        main_screen.width = main_screen.xres = between(1, k_largest_width);
        main_screen.height = main_screen.yres = between(1, k_largest_height);
        m_before.assign(k_memory_pixels, 0);
        for (int i = 0; i < main_screen.width * main_screen.height; i++)
            m_before[static_cast<size_t>(i)] = static_cast<uint32_t>(m_random());
        memcpy(main_screen.fb, m_before.data(), m_before.size() * sizeof(uint32_t));
    }

    // Lines of codes, and what stands for them in the file.
    std::vector<std::vector<uint32_t>> random_lines(std::string &bytes) {
        std::vector<std::vector<uint32_t>> lines(static_cast<size_t>(between(1, 3)));
        std::vector<uint32_t> kept(2048, 0); // what bytes that start no character leave
        for (auto &line : lines) {
            for (int k = between(0, 12); k > 0; k--) {
                uint32_t code = static_cast<uint32_t>(between(1, k_codes));
                if (one_in(12)) {
                    bytes += '\xFF';
                    code = kept[line.size()];
                } else if (code == 10 || one_in(6)) {
                    bytes += std::string{'\xC0', static_cast<char>(0x80 | code)};
                } else {
                    bytes += static_cast<char>(code);
                }
                kept[line.size()] = code;
                line.push_back(code);
            }
            bytes += '\n';
        }
        return lines;
    }

    std::vector<uint32_t> memory_now() const {
        std::vector<uint32_t> pixels(k_memory_pixels);
        memcpy(pixels.data(), main_screen.fb, pixels.size() * sizeof(uint32_t));
        return pixels;
    }

    // The screen with the window at `position` in the box, row by row.
    std::vector<uint32_t> picture(const plain_band &band, int mode, int64_t position, const box &at,
                                  uint32_t bg) const {
        std::vector<uint32_t> pixels = m_before;
        const int64_t count = int64_t{main_screen.width} * main_screen.height;
        for (int r = 0; r < at.h; r++)
            for (int c = 0; c < at.w && c < main_screen.width; c++) {
                const int64_t element = int64_t{at.y + r} * main_screen.width + at.x + c;
                const uint32_t pixel =
                    mode == 4 ? band.pixel(r, position + c) : band.pixel(position + r, c);
                if (element >= 0 && element < count && pixel != bg)
                    pixels[static_cast<size_t>(element)] = pixel;
            }
        return pixels;
    }

    std::mt19937 m_random{4};
    std::vector<uint32_t> m_before; // the screen
};

} // namespace

TEST_F(RandomTickerTest, every_frame_is_a_window_of_the_plain_band) {
    make_screen(k_largest_width, k_largest_height);
    set_apart();
    fake_chip::get().record_calls = false;
    keep_pictures = false;
    std::vector<std::vector<uint32_t>> shown;
    const auto note = hooks::get().on_getenv;
    hooks::get().on_getenv = [&](const char *name) {
        if (strcmp(name, "STATUS") == 0)
            shown.push_back(memory_now());
        note(name);
    };
    size_t inked = 0;
    for (int trial = 0; trial < k_trials; trial++) {
        SCOPED_TRACE(trial);
        make_glyphs();
        make_random_screen();
        std::string bytes;
        const auto lines = random_lines(bytes);
        write_file(bytes);
        const int mode = one_in(2) ? k_up : k_left;
        const box at = {one_in(3) ? between(-20, 30) : between(0, 8),
                        one_in(3) ? between(-20, 20) : between(0, 5), between(1, 30),
                        between(1, 14)};
        const int step = between(1, 7);
        const auto fg = static_cast<uint32_t>(m_random());
        const uint32_t bg = one_in(10) ? fg : fg ^ 1u << between(0, 31);
        std::vector<std::vector<uint32_t>> expected;
        for (const auto &line : lines) {
            const plain_band band(mode, at, fg, bg, line);
            for (int64_t position : positions(mode, step, band, at))
                expected.push_back(picture(band, mode, position, at, bg));
        }
        shown.clear();
        frame_count = 0;
        setenv("STATUS", "", 1);
        stop_after = expected.size();
        uxFontDrawing(path.c_str(), fg, bg, at.x, at.y, at.w, at.h, 0, 0, step, mode);
        ASSERT_EQ(shown.size(), expected.size());
        for (size_t i = 0; i < shown.size(); i++) {
            ASSERT_EQ(shown[i], expected[i]) << "frame " << i;
            inked += expected[i] != m_before;
        }
        ASSERT_EQ(memory_now(), m_before);
        ASSERT_EQ(fake_chip::get().outstanding, 0);
    }
    EXPECT_GT(inked, size_t{k_trials}); // the trials are worth something
}
