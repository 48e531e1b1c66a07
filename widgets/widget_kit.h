// SPDX-License-Identifier: MIT
// What widgets share beyond the object kit: texts in the record, their size, the background and the
// copy of it, the widget that a key is meant for.
#ifndef UX_WIDGETS_WIDGET_KIT_H
#define UX_WIDGETS_WIDGET_KIT_H

#include "core/object_kit.h"

#include <initializer_list>

namespace ux {

constexpr int32_t k_default_font_size = 16;
constexpr int32_t k_default_style = 4;

struct color_pair {
    uint32_t fg, bg;
};

// The colours of a widget that has a normal and a focused pair.
template <class Widget>
color_pair colors_by_focus(const Widget *widget) {
    if (widget->obj.status & UX_ST_FOCUSED)
        return {widget->focus_fg_color, widget->focus_bg_color};
    return {widget->fg_color, widget->bg_color};
}

// Copies a text into a record's field: all units up to the zero unit, nothing behind it is read.
// Null empties the field. Of a 128th unit only the low byte is kept: such a text has no end.
void copy_text(char16_t (&field)[UX_TEXT_UNITS], const char16_t *text);

// Copies a text into a record's field, up to the zero unit but at most all units of the field, and
// zeroes the rest of it. Null zeroes all of it.
void copy_text_and_clear(char16_t (&field)[UX_TEXT_UNITS], const char16_t *text);

// Units in front of the zero unit; UX_TEXT_UNITS when there is none.
int text_length(const char16_t (&field)[UX_TEXT_UNITS]);

// The size texts are painted in, pixels: the environment variable "FontSize", read anew each time,
// or `font_size` when it is unset.
int font_size(int font_size);

// Draws a record's text once inside `box`; `bg` is the transparent key.
void paint_text(const char16_t *text, uint32_t fg, uint32_t bg, const rect &box, int size);

// The same with a number's decimal digits.
void paint_number(int number, uint32_t fg, uint32_t bg, const rect &box, int size);

// Fills the widget with `bg`, or paints the saved background when `bg` is 0.
void paint_background(const ux_obj *obj, uint32_t bg);

// What a widget that saves its background finds under it: the screen, or black that it paints
// first.
enum class underlay { screen, black };

// Saves what lies under a widget that wants it saved and has not yet, if any of its `backgrounds`
// is none and so may have to be painted from the copy.
void save_background_once(ux_obj *obj, std::initializer_list<uint32_t> backgrounds,
                          underlay beneath = underlay::screen);

// The object's rectangle without its border.
rect inside_border(const ux_obj *obj);

// The widget of kind `type` that a key event is meant for, or null when it is for something else.
template <class Widget>
Widget *target_of(const ux_event *event, uint32_t type) {
    return event->obj && event->obj->type == type ? as<Widget>(event->obj) : nullptr;
}

// Copies a path of at most 255 bytes into a record's field; null empties it.
void copy_path(char (&field)[UX_PATH_BYTES], const char *path);

// Blends the saved face over the widget.
void paint_saved_face(const ux_obj *obj);

} // namespace ux

#endif
