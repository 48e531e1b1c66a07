// SPDX-License-Identifier: MIT
// Comparison of rows.
#include "tools/view_watch.h"

#include <cstring>

namespace ux::view {

view_watch::view_watch(const frame_layout &layout)
    : m_layout(layout), m_copy(layout.row_bytes() * layout.height) {}

std::vector<sim::row_range> view_watch::look(const std::byte *rows) {
    if (!m_moving && !sample_differs(rows)) {
        m_first_sample = (m_first_sample + 1) % k_sample_step;
        return {};
    }
    auto changed = look_whole(rows);
    m_moving = !changed.empty();
    return changed;
}

std::vector<sim::row_range> view_watch::look_whole(const std::byte *rows) {
    std::vector<sim::row_range> changed;
    for (int row = 0; row < m_layout.height; ++row) {
        if (!row_differs(rows, row)) {
            continue;
        }
        std::memcpy(m_copy.data() + row * m_layout.row_bytes(), rows + row * m_layout.pitch_bytes,
                    m_layout.row_bytes());
        if (changed.empty() || changed.back().first + changed.back().count != row) {
            changed.push_back({.first = row, .count = 0});
        }
        ++changed.back().count;
    }
    return changed;
}

bool view_watch::row_differs(const std::byte *rows, int row) const {
    return std::memcmp(m_copy.data() + row * m_layout.row_bytes(),
                       rows + row * m_layout.pitch_bytes, m_layout.row_bytes()) != 0;
}

bool view_watch::sample_differs(const std::byte *rows) const {
    for (int row = m_first_sample; row < m_layout.height; row += k_sample_step) {
        if (row_differs(rows, row)) {
            return true;
        }
    }
    return false;
}

} // namespace ux::view
