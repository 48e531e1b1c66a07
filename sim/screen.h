// SPDX-License-Identifier: MIT
// The simulated screen: memory shared with the host, its shape, and a watch that notices painting.
#pragma once

#include "sim/shared_memory.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ux::sim {

using steady = std::chrono::steady_clock;

constexpr int k_largest_side = 8192; // pixels

enum class pixel_format { argb8888, rgb565 };

struct screen_shape {
    int width = 1280; // pixels
    int height = 720; // pixels
    pixel_format format = pixel_format::argb8888;

    int bytes_per_pixel() const { return format == pixel_format::rgb565 ? 2 : 4; }
    size_t row_bytes() const { return static_cast<size_t>(width) * bytes_per_pixel(); }
    size_t bytes() const { return row_bytes() * height; }
};

// The picture as three bytes a pixel (red, green, blue), rows packed; alpha is ignored. RGB565 is
// widened by repeating the top bits: 5 bits v -> v << 3 | v >> 2, 6 bits v -> v << 2 | v >> 4.
std::vector<uint8_t> picture_as_rgb(const screen_shape &shape, std::span<const std::byte> pixels);

// The memory itself.
class shared_screen {
  public:
    explicit shared_screen(const screen_shape &shape); // throws failure

    const screen_shape &shape() const { return m_shape; }
    std::span<const std::byte> pixels() const {
        return {static_cast<const std::byte *>(m_memory.data()), m_shape.bytes()};
    }

    // Under which the host can open the memory as long as this process lives.
    std::string path() const { return m_memory.path(); }

  private:
    screen_shape m_shape;
    shared_memory m_memory;
};

struct row_range {
    int first = 0;
    int count = 0; // 0 = nothing changed
};

// Compares the screen with what it showed at the last look.
class screen_watch {
  public:
    screen_watch(const shared_screen &screen, steady::time_point now);

    // The rows from the first to the last that changed since the last look.
    row_range look(steady::time_point now);

    bool ever_changed() const { return m_ever_changed; }
    steady::time_point last_change() const { return m_last_change; }

  private:
    const shared_screen &m_screen;
    std::vector<std::byte> m_seen;
    steady::time_point m_last_change;
    bool m_ever_changed = false;
};

} // namespace ux::sim
