// SPDX-License-Identifier: MIT
// The shared parts of construction and painting; see object_kit.h.

#include "core/object_kit.h"

#include "core/save_area.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace ux {
namespace {

// The colours of the four sides.
struct border_colors {
    uint32_t top, bottom, left, right;
};

// A focused border has one colour: the other three focus colours are stored and never painted.
border_colors colors_of(const ux_obj *obj) {
    if (obj->status & UX_ST_FOCUSED) {
        const uint32_t color = obj->top_focus_color;
        return {color, color, color, color};
    }
    return {obj->top_color, obj->bottom_color, obj->left_color, obj->right_color};
}

void paint_side(int x0, int y0, int x1, int y1, uint32_t color) {
    if (color != UX_COLOR_NONE)
        uxDrawLine(x0, y0, x1, y1, color);
}

// In each ring the sides in this order: later ones win the corners.
void paint_ring(const rect &place, int64_t i, const border_colors &colors) {
    const int left = coordinate(place.x + i);
    const int top = coordinate(place.y + i);
    const int right = coordinate(int64_t{place.x} + place.width - 1 - i);
    const int bottom = coordinate(int64_t{place.y} + place.height - 1 - i);
    paint_side(left, top, right, top, colors.top);
    paint_side(left, bottom, right, bottom, colors.bottom);
    paint_side(left, top, left, bottom, colors.left);
    paint_side(right, top, right, bottom, colors.right);
}

} // namespace

int report_error(const char *message) {
    return fprintf(stderr, "Error: [%d] %s\n", ux_error, message);
}

void init_defaults(ux_obj *obj) {
    obj->alpha = 255;
    obj->get_status = ux_obj_get_status;
    obj->free = ux_obj_free;
    obj->border = 0;
    obj->handler = nullptr;
    obj->handler_data = nullptr;
    ux_obj_set_default_border_color(obj);
    obj->bg_backup = nullptr;
    obj->fg_backup = nullptr;
}

// The parent's add_obj comes before the defaults: a host's own may look at an unfinished object,
// and the links it makes must stay. One that makes none leaves none: the record may be the host's
// own, with anything in it.
void init_object(ux_obj *obj, const object_prototype &prototype, ux_container *parent,
                 const rect &place) {
    obj->x = place.x;
    obj->y = place.y;
    obj->width = place.width;
    obj->height = place.height;
    obj->type = prototype.type;
    obj->flags = prototype.flags;
    obj->status = 0;
    obj->next = nullptr;
    obj->parent = nullptr;
    obj->page_id = parent ? parent->obj.page_id : -1;
    if (parent)
        parent->add_obj(parent, obj);
    init_defaults(obj);
    obj->show = prototype.show;
    obj->hide = prototype.hide;
    obj->repaint = prototype.repaint;
    obj->set_focus = prototype.set_focus;
    obj->unset_focus = prototype.unset_focus;
    obj->set_select = prototype.set_select;
    obj->unset_select = prototype.unset_select;
}

ux_page *page_at(int index) {
    return index >= 0 && index < UX_MAX_PAGES ? main_screen.pages[index] : nullptr;
}

ux_page *page_of(const ux_obj *obj) {
    return page_at(obj->page_id);
}

int take_focus(ux_obj *obj) {
    set_state(obj, UX_ST_FOCUSED);
    if (ux_page *page = page_of(obj))
        page->focus = obj;
    return 0;
}

// Rings from the outside in. An object on the screen has none that is further in than the screen is
// wide and high; of others no more are painted either.
void paint_border(const ux_obj *obj, const rect &place) {
    const border_colors colors = colors_of(obj);
    const int64_t rings =
        std::min<int64_t>(obj->border, int64_t{main_screen.width} + main_screen.height);
    for (int64_t i = 0; i < rings; i++)
        paint_ring(place, i, colors);
}

void paint_border(const ux_obj *obj) {
    paint_border(obj, rect_of(obj));
}

void paint_fill(const rect &place, uint32_t color) {
    if (place.width <= 0 || place.height <= 0)
        return;
    uxDrawBox(place.x, place.y, coordinate(int64_t{place.x} + place.width - 1),
              coordinate(int64_t{place.y} + place.height - 1), color);
}

void paint_fill(const ux_obj *obj, uint32_t color) {
    paint_fill(rect_of(obj), color);
}

// A copy made before the object grew covers fewer rows: the rest of the screen stays.
void paint_saved_background(const ux_obj *obj) {
    if (!obj->bg_backup || !(obj->status & UX_ST_BG_SAVED))
        return;
    const int rows = obj->status & UX_ST_BG_EXTERNAL
                         ? obj->height
                         : save_area_rows(obj->bg_backup, obj->width, obj->height);
    ux_draw_image_buff(obj->bg_backup, obj->x, obj->y, obj->width, rows, 0);
}

void drop_saved_background(ux_obj *obj) {
    if (!(obj->status & UX_ST_BG_EXTERNAL))
        free(obj->bg_backup);
    obj->status &= ~static_cast<uint32_t>(UX_ST_BG_SAVED | UX_ST_BG_EXTERNAL);
    obj->bg_backup = nullptr;
}

} // namespace ux
