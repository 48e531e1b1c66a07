// SPDX-License-Identifier: MIT
// Decoding UTF-8 for widget texts: well-formed sequences only, U+FFFD for everything else.
#ifndef UX_FONT_UTF8_H
#define UX_FONT_UTF8_H

#include <cstdint>

namespace ux {

// Reads one character at `text`, which is ended by a zero byte, and moves `text` behind it.
uint32_t next_character(const uint8_t *&text);

} // namespace ux

#endif
