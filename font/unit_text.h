// SPDX-License-Identifier: MIT
// Texts of 16-bit units, as the widgets hold them.
#ifndef UX_FONT_UNIT_TEXT_H
#define UX_FONT_UNIT_TEXT_H

#include "ux.h"

namespace ux {

// A text of 16-bit little-endian units at any address.
class unit_text {
  public:
    explicit unit_text(const void *text) : m_bytes(static_cast<const uint8_t *>(text)) {}

    uint32_t operator[](int k) const { return m_bytes[2 * k] + 256u * m_bytes[2 * k + 1]; }

    // Units before the zero unit; UX_TEXT_UNITS when there is none.
    int length() const {
        int count = 0;
        while (count < UX_TEXT_UNITS && (*this)[count] != 0)
            count++;
        return count;
    }

  private:
    const uint8_t *m_bytes;
};

} // namespace ux

#endif
