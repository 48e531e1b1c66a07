// SPDX-License-Identifier: MIT
// Compares the screen with its copy to notice what has changed; costs little while nothing does.
//
// A still screen is sampled: each look compares every eighth row, the next look the rows below, so
// that a change of eight rows is seen at once and a single row within eight looks. The first
// difference makes the look a whole one, and looks stay whole as long as something moves.
#pragma once

#include "tools/view_picture.h"

#include <cstddef>

namespace ux::view {

constexpr int k_sample_step = 8; // rows

class view_watch {
  public:
    explicit view_watch(view_picture &picture) : m_picture(picture) {}

    // Copies the rows that differ from the picture; whether there were any. `rows` has the layout's
    // pitch.
    bool look(const std::byte *rows);

    // The same without sampling.
    bool look_whole(const std::byte *rows);

  private:
    bool row_differs(const std::byte *rows, int row) const;
    bool sample_differs(const std::byte *rows) const;

    view_picture &m_picture;
    int m_first_sample = 0;
    bool m_moving = false;
};

} // namespace ux::view
