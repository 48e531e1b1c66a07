// SPDX-License-Identifier: MIT
// The picture as it was last seen, in memory that ux-view writes and its viewers' processes read.
// Each row has a counter of its changes, by which every reader finds what is new to it.
#pragma once

#include "sim/screen.h"
#include "tools/view_source.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ux::view {

class view_picture {
  public:
    explicit view_picture(const frame_layout &layout); // black; throws failure
    view_picture(const view_picture &) = delete;
    view_picture &operator=(const view_picture &) = delete;
    ~view_picture();

    const frame_layout &layout() const { return m_layout; }

    // Rows packed.
    std::byte *rows() const { return m_pixels; }
    const std::byte *row(int number) const { return m_pixels + number * m_layout.row_bytes(); }

    // Copies a row and counts the change.
    void put_row(int number, const std::byte *pixels);

    uint32_t changes_of(int row) const { return m_changes[row].load(std::memory_order_acquire); }

  private:
    frame_layout m_layout;
    size_t m_bytes; // of the mapping
    void *m_mapping;
    std::atomic<uint32_t> *m_changes; // one of each row
    std::byte *m_pixels;
};

// What one reader has seen of it.
class picture_reader {
  public:
    explicit picture_reader(const view_picture &picture);

    // The runs of rows that have changed since the last call, or since the beginning.
    std::vector<sim::row_range> news();

  private:
    const view_picture &m_picture;
    std::vector<uint32_t> m_seen; // counters
};

} // namespace ux::view
