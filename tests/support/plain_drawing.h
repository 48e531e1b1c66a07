// SPDX-License-Identifier: MIT
// The drawing rules as literal loops over a canvas of numbers: what fast drawing is compared with.
// Nothing here calls the library.
#ifndef UX_TESTS_SUPPORT_PLAIN_DRAWING_H
#define UX_TESTS_SUPPORT_PLAIN_DRAWING_H

#include "ux.h"

#include <cstdint>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

namespace plain {

// A screen of numbers. Stores are bounded by element index, not by column.
struct canvas {
    int64_t width;
    int64_t height;
    uint32_t mask = 0xFFFFFFFF; // bits of a color that a pixel keeps
    std::vector<uint32_t> pixels = std::vector<uint32_t>(static_cast<size_t>(width * height));

    int64_t count() const { return width * height; }

    void put(int64_t x, int64_t y, uint32_t color) {
        const int64_t element = y * width + x;
        if (element >= 0 && element < count())
            pixels[static_cast<size_t>(element)] = color & mask;
    }
};

inline int64_t absolute(int64_t n) {
    return n < 0 ? -n : n;
}

inline void line(canvas &target, int64_t x0, int64_t y0, int64_t x1, int64_t y1, uint32_t color) {
    const bool steep = absolute(x1 - x0) < absolute(y1 - y0);
    if (steep) {
        std::swap(x0, y0);
        std::swap(x1, y1);
    }
    if (x1 < x0) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    const int64_t deltax = x1 - x0;
    const int64_t deltay = absolute(y1 - y0);
    const int64_t ystep = y0 < y1 ? 1 : -1;
    int64_t error = deltax >> 1;
    int64_t y = y0;
    for (int64_t x = x0; x <= x1; x++) {
        if (steep)
            target.put(y, x, color);
        else
            target.put(x, y, color);
        error -= deltay;
        if (error < 0) {
            y += ystep;
            error += deltax;
        }
    }
}

inline void box(canvas &target, int64_t x0, int64_t y0, int64_t x1, int64_t y1, uint32_t color) {
    for (int64_t y = y0; y <= y1; y++)
        for (int64_t x = x0; x <= x1; x++)
            target.put(x, y, color);
}

// One channel of a blended pixel.
inline uint32_t blend_channel(uint32_t screen, uint32_t source, uint32_t a) {
    return (screen * (256 - a) + source * a) >> 8;
}

inline uint32_t blend(uint32_t screen, uint32_t source) {
    const uint32_t a = source >> 24;
    if (a == 0)
        return screen;
    uint32_t result = (screen >> 24 > a ? screen >> 24 : a) << 24;
    for (int shift = 0; shift < 24; shift += 8)
        result |= blend_channel(screen >> shift & 0xFF, source >> shift & 0xFF, a) << shift;
    return result;
}

// The pixels of one of the screen's memories, row by row.
inline std::vector<uint32_t> numbers(const uint8_t *memory) {
    const size_t bpp = static_cast<size_t>(main_screen.bytes_per_pixel);
    const size_t count =
        static_cast<size_t>(main_screen.width) * static_cast<size_t>(main_screen.height);
    std::vector<uint32_t> result(count);
    for (size_t i = 0; i < count; i++)
        memcpy(&result[i], memory + i * bpp, bpp);
    return result;
}

// Reproducible random numbers.
class dice {
  public:
    explicit dice(unsigned seed) : m_engine(seed) {}

    // A number from first to last, both included.
    int between(int first, int last) {
        return std::uniform_int_distribution<int>(first, last)(m_engine);
    }

    uint32_t word() { return static_cast<uint32_t>(m_engine()); }

  private:
    std::mt19937 m_engine;
};

} // namespace plain

#endif
