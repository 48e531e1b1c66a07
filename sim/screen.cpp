// SPDX-License-Identifier: MIT
// Pixels to RGB, and the comparison of rows.
#include "sim/screen.h"

#include <cstring>

#include <unistd.h>

namespace ux::sim {

namespace {

// A host maps one page more than its picture needs.
size_t memory_bytes(const screen_shape &shape) {
    auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return (shape.bytes() + page - 1) / page * page + page;
}

struct rgb {
    uint8_t red, green, blue;
};

rgb widen_565(uint16_t pixel) {
    unsigned red = pixel >> 11 & 0x1f;
    unsigned green = pixel >> 5 & 0x3f;
    unsigned blue = pixel & 0x1f;
    return {static_cast<uint8_t>(red << 3 | red >> 2),
            static_cast<uint8_t>(green << 2 | green >> 4),
            static_cast<uint8_t>(blue << 3 | blue >> 2)};
}

rgb drop_alpha(uint32_t pixel) {
    return {static_cast<uint8_t>(pixel >> 16), static_cast<uint8_t>(pixel >> 8),
            static_cast<uint8_t>(pixel)};
}

template <class Word, class Convert>
std::vector<uint8_t> convert(std::span<const std::byte> pixels, Convert to_rgb) {
    std::vector<uint8_t> result;
    result.reserve(pixels.size() / sizeof(Word) * 3);
    for (size_t at = 0; at + sizeof(Word) <= pixels.size(); at += sizeof(Word)) {
        Word word;
        std::memcpy(&word, pixels.data() + at, sizeof word);
        rgb colour = to_rgb(word);
        result.insert(result.end(), {colour.red, colour.green, colour.blue});
    }
    return result;
}

} // namespace

std::vector<uint8_t> picture_as_rgb(const screen_shape &shape, std::span<const std::byte> pixels) {
    return shape.format == pixel_format::rgb565 ? convert<uint16_t>(pixels, widen_565)
                                                : convert<uint32_t>(pixels, drop_alpha);
}

shared_screen::shared_screen(const screen_shape &shape)
    : m_shape(shape), m_memory("the screen's memory", memory_bytes(shape)) {}

screen_watch::screen_watch(const shared_screen &screen, steady::time_point now)
    : m_screen(screen), m_seen(screen.pixels().begin(), screen.pixels().end()), m_last_change(now) {
}

row_range screen_watch::look(steady::time_point now) {
    const size_t row_bytes = m_screen.shape().row_bytes();
    const std::byte *shown = m_screen.pixels().data();
    row_range changed;
    for (int row = 0; row < m_screen.shape().height; ++row) {
        std::byte *seen = m_seen.data() + row * row_bytes;
        if (std::memcmp(seen, shown + row * row_bytes, row_bytes) == 0) {
            continue;
        }
        std::memcpy(seen, shown + row * row_bytes, row_bytes);
        if (changed.count == 0) {
            changed.first = row;
        }
        changed.count = row - changed.first + 1;
    }
    if (changed.count > 0) {
        m_last_change = now;
        m_ever_changed = true;
    }
    return changed;
}

} // namespace ux::sim
