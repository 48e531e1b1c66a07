// SPDX-License-Identifier: MIT
// What widgets share beyond the object kit: texts in the record, their size, the copy of the screen
// under a widget.
#ifndef UX_WIDGETS_WIDGET_KIT_H
#define UX_WIDGETS_WIDGET_KIT_H

#include "core/object_kit.h"

namespace ux {

constexpr int32_t k_default_font_size = 16;
constexpr int32_t k_default_style = 4;

// Copies a text into a record's field: all units up to the zero unit, nothing behind it is read.
// Null empties the field. Of a 128th unit only the low byte is kept: such a text has no end.
void copy_text(char16_t (&field)[UX_TEXT_UNITS], const char16_t *text);

// The size texts are painted in, pixels: the environment variable "FontSize", read anew each time,
// or `font_size` when it is unset.
int font_size(int font_size);

// Draws a record's text once inside `box`; `bg` is the transparent key.
void paint_text(const char16_t *text, uint32_t fg, uint32_t bg, const rect &box, int size);

// Fills the widget with `bg`, or paints the saved background when `bg` is 0.
void paint_background(const ux_obj *obj, uint32_t bg);

// Saves the screen under a widget that wants it saved and has not yet.
void save_background_once(ux_obj *obj);

// Copies a path of at most 255 bytes into a record's field; null empties it.
void copy_path(char (&field)[UX_PATH_BYTES], const char *path);

// Blends the saved face over the widget.
void paint_saved_face(const ux_obj *obj);

} // namespace ux

#endif
