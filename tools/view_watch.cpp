// SPDX-License-Identifier: MIT
// Comparison of rows.
#include "tools/view_watch.h"

#include <cstring>

namespace ux::view {

bool view_watch::look(const std::byte *rows) {
    if (!m_moving && !sample_differs(rows)) {
        m_first_sample = (m_first_sample + 1) % k_sample_step;
        return false;
    }
    m_moving = look_whole(rows);
    return m_moving;
}

bool view_watch::look_whole(const std::byte *rows) {
    const frame_layout &layout = m_picture.layout();
    bool changed = false;
    for (int row = 0; row < layout.height; ++row) {
        if (row_differs(rows, row)) {
            m_picture.put_row(row, rows + row * layout.pitch_bytes);
            changed = true;
        }
    }
    return changed;
}

bool view_watch::row_differs(const std::byte *rows, int row) const {
    const frame_layout &layout = m_picture.layout();
    return std::memcmp(m_picture.row(row), rows + row * layout.pitch_bytes, layout.row_bytes()) !=
           0;
}

bool view_watch::sample_differs(const std::byte *rows) const {
    for (int row = m_first_sample; row < m_picture.layout().height; row += k_sample_step) {
        if (row_differs(rows, row)) {
            return true;
        }
    }
    return false;
}

} // namespace ux::view
