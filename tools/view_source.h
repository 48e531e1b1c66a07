// SPDX-License-Identifier: MIT
// Where ux-view's pictures come from: a framebuffer device or a running simulator's screen.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace ux::view {

struct channel {
    int shift = 0; // of its lowest bit in a pixel's word
    int bits = 0;  // 1 to 8
};

struct frame_layout {
    int width = 0;          // pixels
    int height = 0;         // pixels
    int bits_per_pixel = 0; // 16 or 32
    size_t pitch_bytes = 0; // from row to row
    channel red, green, blue;

    size_t row_bytes() const { return static_cast<size_t>(width) * bits_per_pixel / 8; }
};

class frame_source {
  public:
    frame_source() = default;
    frame_source(const frame_source &) = delete;
    frame_source &operator=(const frame_source &) = delete;
    virtual ~frame_source() = default;

    virtual const frame_layout &layout() const = 0;

    // The first row as it is shown now. Throws failure when the source has gone or has changed its
    // shape.
    virtual const std::byte *rows() = 0;

    // Throws failure as rows() does, but reads no picture.
    virtual void check() = 0;

    // Names the queue of whoever paints there.
    virtual std::string queue_path() const = 0;
};

// A folder is a simulator's, anything else a device. Throws failure.
std::unique_ptr<frame_source> open_source(const std::string &path);

} // namespace ux::view
