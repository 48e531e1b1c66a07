// SPDX-License-Identifier: MIT
// The visible part of a box; see ticker_box.h.

#include "font/ticker_box.h"

#include "graphics/simd.h"
#include "graphics/surface.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace ux {
namespace {

// The least n >= 0 for which n * divisor >= value.
int64_t steps_to(int64_t value, int64_t divisor) {
    return value <= 0 ? 0 : (value + divisor - 1) / divisor;
}

// Each pixel is written once, so that nobody sees the screen between text and background.
UX_MULTIVERSION void lay_over(word32 *__restrict screen, const word32 *__restrict saved,
                              const uint8_t *__restrict ink, int64_t count, uint32_t fg) {
    for (int64_t i = 0; i < count; i++) {
        const uint32_t mask = 0u - (ink[i] & 1u); // all bits or none
        screen[i] = (saved[i] & ~mask) | (fg & mask);
    }
}

} // namespace

ticker_box::ticker_box(int x, int y, int w, int h)
    : m_screen(main_screen.fb), m_pixel_bytes(main_screen.bytes_per_pixel),
      m_stride(main_screen.width), m_count(m_screen ? element_count(main_screen) : 0),
      m_width(std::clamp<int64_t>(w, 0, std::max<int64_t>(m_stride, 0))) {
    if (m_count == 0 || m_width == 0 || h <= 0 || m_pixel_bytes <= 0)
        return;
    const int64_t top_left = int64_t{y} * m_stride + x;
    m_first_row = std::min<int64_t>(h, steps_to(1 - top_left - m_width, m_stride));
    const int64_t end = std::min<int64_t>(h, steps_to(m_count - top_left, m_stride));
    m_rows = std::max<int64_t>(0, end - m_first_row);
    m_origin = top_left + m_first_row * m_stride;
}

ticker_box::~ticker_box() {
    free(m_saved);
}

bool ticker_box::takes_ink() const {
    return m_pixel_bytes == sizeof(argb8888::word);
}

bool ticker_box::allocate() {
    const auto bytes = static_cast<size_t>(m_rows * m_width * m_pixel_bytes);
    m_saved = static_cast<uint8_t *>(malloc(std::max<size_t>(bytes, 1)));
    return m_saved != nullptr;
}

// Calls visit(row, column, pixels, count, saved): `count` pixels of a row from `column` on, where
// they lie on the screen and in the copy. `row` counts from the first visible one.
template <class Visit>
void ticker_box::for_each_row(Visit visit) const {
    for (int64_t row = 0; row < m_rows; row++) {
        const int64_t start = m_origin + row * m_stride;
        const int64_t first = std::max<int64_t>(0, -start);
        const int64_t end = std::min(m_width, m_count - start);
        visit(row, first, m_screen + (start + first) * m_pixel_bytes, end - first,
              m_saved + (row * m_width + first) * m_pixel_bytes);
    }
}

void ticker_box::save() {
    for_each_row([this](int64_t, int64_t, const uint8_t *pixels, int64_t count, uint8_t *saved) {
        memcpy(saved, pixels, static_cast<size_t>(count * m_pixel_bytes));
    });
}

void ticker_box::show(const ticker_frame &frame, uint32_t fg) {
    if (!frame.ink) {
        restore();
        return;
    }
    for_each_row([&](int64_t row, int64_t column, uint8_t *pixels, int64_t count, uint8_t *saved) {
        lay_over(reinterpret_cast<word32 *>(pixels), reinterpret_cast<const word32 *>(saved),
                 frame.ink + row * frame.pitch + column, count, fg);
    });
}

void ticker_box::clear() {
    for_each_row([this](int64_t, int64_t, uint8_t *pixels, int64_t count, uint8_t *) {
        memset(pixels, 0, static_cast<size_t>(count * m_pixel_bytes));
    });
}

void ticker_box::restore() {
    for_each_row([this](int64_t, int64_t, uint8_t *pixels, int64_t count, const uint8_t *saved) {
        memcpy(pixels, saved, static_cast<size_t>(count * m_pixel_bytes));
    });
}

} // namespace ux
