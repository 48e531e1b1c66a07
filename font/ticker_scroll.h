// SPDX-License-Identifier: MIT
// How a window travels along a band.
#ifndef UX_FONT_TICKER_SCROLL_H
#define UX_FONT_TICKER_SCROLL_H

#include <algorithm>
#include <cstdint>

namespace ux {

// The window's positions: 0, step, 2 step and so on as long as they are not above `last`. Scrolling
// up, one frame at last - step, but not below 0, follows. A step of 0 or less never moves.
class ticker_scroll {
  public:
    ticker_scroll(int64_t last, int64_t step, bool turns_back)
        : m_last(last), m_step(step), m_turns_back(turns_back) {}

    int64_t position() const { return m_position; }

    // Moves on; false when the way is over.
    bool move() {
        if (m_step <= 0)
            return true;
        if (m_turned)
            return false;
        m_position += m_step;
        if (m_position <= m_last)
            return true;
        m_position = std::max<int64_t>(m_last - m_step, 0);
        m_turned = true;
        return m_turns_back;
    }

  private:
    int64_t m_last;
    int64_t m_step;
    bool m_turns_back;
    bool m_turned = false; // the step beyond `last` was made
    int64_t m_position = 0;
};

} // namespace ux

#endif
