// SPDX-License-Identifier: MIT
// A copy of the screen that notices what has changed, and costs little while nothing does.
//
// A still screen is sampled: each look compares every eighth row, the next look the rows below, so
// that a change of eight rows is seen at once and a single row within eight looks. The first
// difference makes the look a whole one, and looks stay whole as long as something moves.
#pragma once

#include "sim/screen.h"
#include "tools/view_source.h"

#include <cstddef>
#include <vector>

namespace ux::view {

constexpr int k_sample_step = 8; // rows

class view_watch {
  public:
    explicit view_watch(const frame_layout &layout);

    // The runs of rows that differ from the last look; they are copied. `rows` has the layout's
    // pitch.
    std::vector<sim::row_range> look(const std::byte *rows);

    // The same without sampling.
    std::vector<sim::row_range> look_whole(const std::byte *rows);

    // Rows packed.
    std::byte *copy() { return m_copy.data(); }

  private:
    bool row_differs(const std::byte *rows, int row) const;
    bool sample_differs(const std::byte *rows) const;

    frame_layout m_layout;
    std::vector<std::byte> m_copy;
    int m_first_sample = 0;
    bool m_moving = false;
};

} // namespace ux::view
