// SPDX-License-Identifier: MIT
// Text drawing spelled out: a canvas filled with the key colour, a copy of the screen under it, all
// glyphs into the canvas, the canvas over the screen. What the library's drawing without a canvas
// must come to, pixel for pixel and call for call.
#ifndef UX_TESTS_FONT_LITERAL_TEXT_H
#define UX_TESTS_FONT_LITERAL_TEXT_H

#include "tests/support/fake_chip.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace literal {

struct screen {
    int width, height;
    std::vector<uint32_t> pixels;

    // The pixel of an element, or null when it lies outside the memory.
    uint32_t *at(int64_t x, int64_t y) {
        const int64_t element = y * width + x;
        const bool inside = element >= 0 && element < int64_t{width} * height;
        return inside ? &pixels[static_cast<size_t>(element)] : nullptr;
    }
};

struct request {
    uint32_t fg, bg;
    int x, y, w, h, size_x, size_y;
};

// One character as the drawer sees it.
struct character {
    uint32_t code;
    bool breaks_line;
};

class drawing {
  public:
    drawing(screen &target, const request &asked) : m_target(target), m_asked(asked) {
        const size_t count = m_asked.w > 0 && m_asked.h > 0
                                 ? static_cast<size_t>(m_asked.w) * static_cast<size_t>(m_asked.h)
                                 : 0;
        m_count = static_cast<int64_t>(count);
        m_canvas = static_cast<uint32_t *>(calloc(count + 1, sizeof(uint32_t)));
        m_saved = static_cast<uint32_t *>(calloc(count + 1, sizeof(uint32_t)));
        for (size_t i = 0; i < count; i++)
            m_canvas[i] = m_asked.bg;
    }
    ~drawing() {
        free(m_canvas);
        free(m_saved);
    }
    drawing(const drawing &) = delete;
    drawing &operator=(const drawing &) = delete;

    // Draws the characters and returns the calls that the chip gets.
    std::vector<std::string> run(const std::vector<character> &text) {
        call("FSS_set_scale " + std::to_string(m_asked.size_x * 65536) + " 0 0 " +
             std::to_string(m_asked.size_y * 65536));
        lay_out(text);
        save();
        composite();
        return m_calls;
    }

  private:
    void call(const std::string &name) { m_calls.push_back(name); }

    void lay_out(const std::vector<character> &text) {
        int pen = 0;
        int line = 0;
        int64_t line_start = 0;
        int64_t position = 0;
        for (const character &c : text) {
            call("FSS_get_bitmap " + std::to_string(c.code));
            const auto found = fake_chip::get().glyphs.find(c.code);
            if (found == fake_chip::get().glyphs.end())
                continue;
            const int advance = c.breaks_line ? 0 : found->second.advance;
            pen += advance;
            if (pen > m_asked.w || c.breaks_line) {
                line += 1;
                line_start = int64_t{line} * m_asked.size_y * m_asked.w;
                position = line_start;
                pen = advance;
            }
            if (m_asked.size_y == 0 || line >= m_asked.h / m_asked.size_y) {
                call("FSS_free_char");
                return;
            }
            draw(found->second, position);
            position += advance;
            call("FSS_free_char");
        }
    }

    void draw(const fake_chip::glyph &glyph, int64_t position) {
        const int baseline = m_asked.size_y * 4 / 5;
        const int top = baseline - glyph.top;
        const int end = top + static_cast<int>(glyph.rows.size());
        size_t bitmap_row = 0;
        for (int r = 0; r < m_asked.h; r++) {
            if (r < top || r >= end)
                continue;
            const std::string &bits = glyph.rows[bitmap_row++];
            for (size_t b = 0; b < bits.size(); b++)
                if (bits[b] == 'X')
                    set(position, glyph.left + static_cast<int64_t>(b), r);
        }
    }

    void set(int64_t start, int64_t x, int64_t y) {
        const int64_t pixel = start + y * m_asked.w + x;
        if (pixel >= 0 && pixel < m_count)
            m_canvas[pixel] = m_asked.fg;
    }

    void save() {
        for (int64_t i = 0; i < m_count; i++)
            if (const uint32_t *pixel = m_target.at(m_asked.x + i % m_asked.w, row_of(i)))
                m_saved[i] = *pixel;
    }

    // In a box wider than the screen neighbouring rows share elements: there ink wins.
    void composite() {
        for (int64_t i = 0; i < m_count; i++) {
            uint32_t *pixel = m_target.at(m_asked.x + i % m_asked.w, row_of(i));
            if (!pixel)
                continue;
            if (m_canvas[i] != m_asked.bg)
                *pixel = m_canvas[i];
            else if (m_asked.w <= m_target.width)
                *pixel = m_saved[i];
        }
    }

    int64_t row_of(int64_t i) const { return m_asked.y + i / m_asked.w; }

    screen &m_target;
    request m_asked;
    int64_t m_count = 0;          // pixels of the canvas
    uint32_t *m_canvas = nullptr; // w * h pixels
    uint32_t *m_saved = nullptr;  // the screen under them
    std::vector<std::string> m_calls;
};

} // namespace literal

#endif
