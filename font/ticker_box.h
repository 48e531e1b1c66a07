// SPDX-License-Identifier: MIT
// The ticker's box on the screen: what of it can be seen, what lay there before, and how a frame of
// ink gets into it.
//
// Pixel (row, column) of the box is element (y + row) * width + x + column of the screen. Elements
// that the screen does not have are left out; of a row that is wider than the screen, the columns
// beyond one screen's width are, since the next row covers them.
#ifndef UX_FONT_TICKER_BOX_H
#define UX_FONT_TICKER_BOX_H

#include <cstddef>
#include <cstdint>

namespace ux {

// A frame: bytes, each 0 or 255 = ink. Null ink is a frame without any.
struct ticker_frame {
    const uint8_t *ink; // of the box's first visible row, column 0
    int64_t pitch;      // bytes from row to row
};

class ticker_box {
  public:
    // On main_screen's `fb`. Negative sizes count as 0.
    ticker_box(int x, int y, int w, int h);
    ~ticker_box();
    ticker_box(const ticker_box &) = delete;
    ticker_box &operator=(const ticker_box &) = delete;

    int64_t first_row() const { return m_first_row; }
    int64_t rows() const { return m_rows; }   // that have a pixel on the screen
    int64_t width() const { return m_width; } // columns shown
    bool takes_ink() const;                   // pixels are 32-bit

    // Makes room for the screen's pixels; false when there is no memory.
    bool allocate();

    void save();
    void show(const ticker_frame &frame, uint32_t fg); // `fg` where ink is, else what was saved
    void clear();                                      // all pixels 0
    void restore();

  private:
    template <class Visit>
    void for_each_row(Visit visit) const;

    uint8_t *m_screen;     // the screen's element 0
    int64_t m_pixel_bytes; // of an element
    int64_t m_stride;      // elements in a row of the screen
    int64_t m_count;       // elements of the screen
    int64_t m_first_row = 0;
    int64_t m_rows = 0;
    int64_t m_width;
    int64_t m_origin = 0;       // element of (first_row, 0); negative when it is not on the screen
    uint8_t *m_saved = nullptr; // rows x width pixels
};

} // namespace ux

#endif
