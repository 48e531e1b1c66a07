// SPDX-License-Identifier: MIT
// Operations on the header that every object begins with: state bits, colours, save areas, release.

#include "core/child_walk.h"
#include "core/object_kit.h"
#include "core/save_area.h"

#include <cstdio>
#include <cstdlib>

int ux_error;

int ux_obj_noop(ux_obj *) noexcept {
    return 0;
}

int ux_obj_hide(ux_obj *obj) noexcept {
    obj->status &= ~static_cast<uint32_t>(UX_ST_VISIBLE);
    return 0;
}

int ux_obj_set_focus(ux_obj *obj) noexcept {
    return obj->set_focus(obj);
}

int ux_obj_unset_focus(ux_obj *obj) noexcept {
    return obj->unset_focus(obj);
}

int ux_obj_set_flag(ux_obj *obj, uint32_t bits) noexcept {
    obj->flags |= bits;
    return 0;
}

int ux_obj_unset_flag(ux_obj *obj, uint32_t bits) noexcept {
    obj->flags &= ~bits;
    return 0;
}

int ux_obj_get_status(ux_obj *obj) noexcept {
    return static_cast<int>(obj->status);
}

int ux_obj_set_status(ux_obj *obj, uint32_t value) noexcept {
    obj->status = value;
    return static_cast<int>(value);
}

int ux_obj_set_alpha(ux_obj *obj, uint32_t a) noexcept {
    obj->alpha = a & 0xFF;
    return 0;
}

int ux_obj_set_handler(ux_obj *obj, ux_handler handler, void *data) noexcept {
    obj->handler = handler;
    obj->handler_data = data;
    return 0;
}

int ux_obj_set_border_colors(ux_obj *obj, uint32_t normal, uint32_t focus) noexcept {
    return ux_obj_set_border_color(obj, UX_SIDE_TOP | UX_SIDE_BOTTOM | UX_SIDE_LEFT | UX_SIDE_RIGHT,
                                   normal, focus);
}

int ux_obj_set_default_border_color(ux_obj *obj) noexcept {
    return ux_obj_set_border_colors(obj, UX_COLOR_BORDER, UX_COLOR_BORDER_FOCUS);
}

int ux_obj_set_border_color(ux_obj *obj, uint32_t sides, uint32_t normal, uint32_t focus) noexcept {
    if (sides & UX_SIDE_TOP) {
        obj->top_color = normal;
        obj->top_focus_color = focus;
    }
    if (sides & UX_SIDE_BOTTOM) {
        obj->bottom_color = normal;
        obj->bottom_focus_color = focus;
    }
    if (sides & UX_SIDE_LEFT) {
        obj->left_color = normal;
        obj->left_focus_color = focus;
    }
    if (sides & UX_SIDE_RIGHT) {
        obj->right_color = normal;
        obj->right_focus_color = focus;
    }
    return 0;
}

int ux_obj_backup_fg(ux_obj *obj) noexcept {
    if (!ux::save_screen(&obj->fg_backup, obj)) {
        fputs("Can not allocate foreground backup image memory!\n", stderr);
        return -2;
    }
    obj->status |= UX_ST_FG_SAVED;
    return 0;
}

// Whether a copy exists is not asked: called again, it copies again.
int ux_obj_backup_bg(ux_obj *obj) noexcept {
    if (obj->status & UX_ST_BG_EXTERNAL)
        return 0;
    if (!ux::save_screen(&obj->bg_backup, obj)) {
        fputs("Can not allocate background backup image memory!\n", stderr);
        return -2;
    }
    obj->status |= UX_ST_BG_SAVED;
    return 0;
}

int ux_obj_set_bg_buffer(ux_obj *obj, void *pixels) noexcept {
    if (!(obj->status & UX_ST_BG_EXTERNAL) && obj->bg_backup != pixels)
        free(obj->bg_backup);
    obj->bg_backup = pixels;
    obj->status |= UX_ST_BG_SAVED | UX_ST_BG_EXTERNAL;
    return 0;
}

int ux_obj_set_size(ux_obj *obj, int x, int y, int w, int h) noexcept {
    obj->x = x;
    obj->y = y;
    obj->width = w;
    obj->height = h;
    if (obj->bg_backup)
        ux::drop_saved_background(obj);
    return 0;
}

int ux_obj_free(ux_obj *obj) noexcept {
    ux::child_walk::forget(obj);
    free(obj->bg_backup);
    free(obj);
    return 0;
}

int ux_object_update(ux_obj *obj) noexcept {
    return ux_screen_blit_rect(obj->x, obj->y, obj->width, obj->height);
}

int ux_obj_repaint(ux_obj *obj) noexcept {
    puts("ux_obj_repaint");
    return obj->status & UX_ST_VISIBLE ? obj->show(obj) : obj->hide(obj);
}
