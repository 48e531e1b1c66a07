// SPDX-License-Identifier: MIT
// The image button: four picture files, one per state, over the saved screen. Changes of state only
// change the bits: the host repaints.

#include "widgets/widget_kit.h"

namespace ux {
namespace {

constexpr object_prototype k_image_button = {
    .type = UX_TYPE_IMAGE_BUTTON,
    .flags = UX_FLAG_SAVE_BG,
    .show = ux_image_button_show,
    .hide = ux_image_button_hide,
    .repaint = ux_image_button_repaint,
    .set_focus = ux_image_button_set_focus,
    .unset_focus = ux_image_button_unset_focus,
    .set_select = ux_image_button_set_select,
    .unset_select = ux_image_button_unset_select,
};

const char *image_of(const ux_image_button *button) {
    switch (button->obj.status & (UX_ST_FOCUSED | UX_ST_SELECTED)) {
    case UX_ST_FOCUSED:
        return button->focus_image;
    case UX_ST_SELECTED:
        return button->select_image;
    case UX_ST_FOCUSED | UX_ST_SELECTED:
        return button->select_focus_image;
    default:
        return button->image;
    }
}

} // namespace
} // namespace ux

ux_image_button *ux_image_button_new(ux_container *parent, int x, int y, int w, int h,
                                     const char *path, const char *focus_path) noexcept {
    auto *button = ux::allocate<ux_image_button>("Not enough memory space for image button!\n");
    if (!button)
        return nullptr;
    ux::init_object(&button->obj, ux::k_image_button, parent, {x, y, w, h});
    ux_image_button_set_image(button, path, focus_path);
    ux::copy_path(button->select_image, path);
    ux::copy_path(button->select_focus_image, focus_path);
    return button;
}

int ux_image_button_set_image(ux_image_button *button, const char *path,
                              const char *focus_path) noexcept {
    ux::copy_path(button->image, path);
    ux::copy_path(button->focus_image, focus_path);
    return 0;
}

// Transparent parts of a picture show what lay beneath, not the previous state's picture.
int ux_image_button_show(ux_obj *obj) noexcept {
    if (!ux::begin_show(obj))
        return 0;
    if ((obj->flags & UX_FLAG_SAVE_BG) && !(obj->status & UX_ST_BG_SAVED))
        ux_obj_backup_bg(obj);
    else
        ux::paint_saved_background(obj);
    const char *image = ux::image_of(ux::as<ux_image_button>(obj));
    if (image[0] == '\0')
        return 0;
    ux_draw_image(image, obj->x, obj->y, obj->width, obj->height, 0);
    ux_object_update(obj);
    return 0;
}

int ux_image_button_hide(ux_obj *obj) noexcept {
    return ux_obj_hide(obj);
}

int ux_image_button_repaint(ux_obj *obj) noexcept {
    return ux::show_or_hide(obj, ux_image_button_show, ux_image_button_hide);
}

int ux_image_button_set_focus(ux_obj *obj) noexcept {
    return ux::take_focus(obj);
}

int ux_image_button_unset_focus(ux_obj *obj) noexcept {
    return ux::clear_state(obj, UX_ST_FOCUSED);
}

int ux_image_button_set_select(ux_obj *obj) noexcept {
    return ux::set_state(obj, UX_ST_SELECTED);
}

int ux_image_button_unset_select(ux_obj *obj) noexcept {
    return ux::clear_state(obj, UX_ST_SELECTED);
}

int ux_image_button_set_size(ux_image_button *button, int x, int y, int w, int h) noexcept {
    return ux_obj_set_size(&button->obj, x, y, w, h);
}
