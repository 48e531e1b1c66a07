// SPDX-License-Identifier: MIT
// What every page, container and widget does in the same way: construction, error report, state
// bits, border, saved background, membership of the current page, focus of the page.
#ifndef UX_CORE_OBJECT_KIT_H
#define UX_CORE_OBJECT_KIT_H

#include "ux.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace ux {

// What the records of one kind have in common. Slots not named are null.
struct object_prototype {
    uint32_t type;
    uint32_t flags;
    ux_slot show;
    ux_slot hide;
    ux_slot repaint;
    ux_slot set_focus;
    ux_slot unset_focus;
    ux_slot set_select;
    ux_slot unset_select;
};

struct rect {
    int x, y, width, height;
};

inline rect rect_of(const ux_obj *obj) {
    return {obj->x, obj->y, obj->width, obj->height};
}

// A sum of coordinates; what no screen reaches is cut at the largest number.
inline int coordinate(int64_t sum) {
    return static_cast<int>(std::clamp<int64_t>(sum, INT_MIN, INT_MAX));
}

// Prints "Error: [%d] %s\n" with ux_error on standard error and returns the characters printed.
int report_error(const char *message);

// A zeroed record, or null after the report of `message`.
template <class Record>
Record *allocate(const char *message) {
    auto *record = static_cast<Record *>(calloc(1, sizeof(Record)));
    if (!record)
        report_error(message);
    return record;
}

// The widget that an object is the header of.
template <class Widget>
Widget *as(ux_obj *obj) {
    return reinterpret_cast<Widget *>(obj);
}

// Fills a record's header, whatever was in it, and links it into `parent`, which may be null.
void init_object(ux_obj *obj, const object_prototype &prototype, ux_container *parent,
                 const rect &place);

// The header's fields that every kind starts with alike: opacity, border, handler, save areas.
void init_defaults(ux_obj *obj);

inline bool on_current_page(const ux_obj *obj) {
    return obj->page_id == main_screen.current_page;
}

// Sets UX_ST_* bits; nothing is painted. Returns 0.
inline int set_state(ux_obj *obj, uint32_t bits) {
    obj->status |= bits;
    return 0;
}

// Clears UX_ST_* bits; nothing is painted. Returns 0.
inline int clear_state(ux_obj *obj, uint32_t bits) {
    obj->status &= ~bits;
    return 0;
}

// The opening of every show: marks the object visible. Returns whether there is anything to paint.
inline bool begin_show(ux_obj *obj) {
    set_state(obj, UX_ST_VISIBLE);
    return on_current_page(obj);
}

// What every repaint does: shows what is visible and hides what is not.
inline int show_or_hide(ux_obj *obj, ux_slot show, ux_slot hide) {
    return obj->status & UX_ST_VISIBLE ? show(obj) : hide(obj);
}

// The page of that index, or null when there is none.
ux_page *page_at(int index);

// The page that owns `obj`, or null when its page_id names none.
ux_page *page_of(const ux_obj *obj);

// Sets UX_ST_FOCUSED and makes `obj` its page's focus; nothing is painted. Returns 0.
int take_focus(ux_obj *obj);

// Paints the border in the colours of the object's state: around the object, or around a part of
// it. A focused border has the one colour `top_focus_color`; sides of no colour are left out.
void paint_border(const ux_obj *obj);
void paint_border(const ux_obj *obj, const rect &place);

// Fills a rectangle, or the object's; one of no size is not painted.
void paint_fill(const rect &place, uint32_t color);
void paint_fill(const ux_obj *obj, uint32_t color);

// Blends the saved background over the object's rectangle, if there is one.
void paint_saved_background(const ux_obj *obj);

// Forgets the saved background; frees it unless the host gave it.
void drop_saved_background(ux_obj *obj);

} // namespace ux

#endif
