// SPDX-License-Identifier: MIT
// The use of the chip's rasteriser, which has one scale and serves one thread at a time. A ticker
// fetches glyphs on a thread of its own while the main loop's thread paints texts.
#ifndef UX_FONT_GLYPH_SESSION_H
#define UX_FONT_GLYPH_SESSION_H

namespace ux {

// Has the rasteriser to itself, glyphs `size_x` wide and `size_y` high in pixels, while it lives.
// Sessions do not nest.
class glyph_session {
  public:
    glyph_session(int size_x, int size_y);
    ~glyph_session();
    glyph_session(const glyph_session &) = delete;
    glyph_session &operator=(const glyph_session &) = delete;
};

} // namespace ux

#endif
