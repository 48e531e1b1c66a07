// SPDX-License-Identifier: MIT
// One picture drawn at many places, decoded once.
#ifndef UX_GRAPHICS_IMAGE_STAMP_H
#define UX_GRAPHICS_IMAGE_STAMP_H

namespace ux {

class image_stamp {
  public:
    // Of a picture file at width x height pixels; `path` stays the caller's.
    image_stamp(const char *path, int width, int height)
        : m_path(path), m_width(width), m_height(height) {}
    ~image_stamp();
    image_stamp(const image_stamp &) = delete;
    image_stamp &operator=(const image_stamp &) = delete;

    // Draws and prints what ux_draw_image(path, x, y, width, height, 0) does. The file is read at
    // the first place on the screen, and again at the next one unless it was decoded as a whole.
    void draw_at(int x, int y);

  private:
    const char *m_path;
    int m_width, m_height;   // pixels
    void *m_block = nullptr; // null until it is loaded
};

} // namespace ux

#endif
