// SPDX-License-Identifier: MIT
// The image label: one picture file, whose painted face can be kept and reused.

#include "widgets/widget_kit.h"

#include <cstring>

namespace ux {
namespace {

constexpr object_prototype k_image_label = {
    .type = UX_TYPE_IMAGE_LABEL,
    .flags = 0,
    .show = ux_image_label_show,
    .hide = ux_image_label_hide,
    .repaint = ux_image_label_repaint,
    .set_focus = nullptr,
    .unset_focus = nullptr,
    .set_select = nullptr,
    .unset_select = nullptr,
};

void draw_file(const ux_image_label *label) {
    const ux_obj &obj = label->obj;
    ux_draw_image(label->image, obj.x, obj.y, obj.width, obj.height, 0);
}

} // namespace
} // namespace ux

ux_image_label *ux_image_label_new(ux_container *parent, int x, int y, int w, int h,
                                   const char *path) noexcept {
    auto *label = ux::allocate<ux_image_label>("Not enough memory space for image label!\n");
    if (!label)
        return nullptr;
    ux::init_object(&label->obj, ux::k_image_label, parent, {x, y, w, h});
    ux_image_label_set_image(label, path);
    return label;
}

// The same path again keeps the face.
int ux_image_label_set_image(ux_image_label *label, const char *path) noexcept {
    if (path && strncmp(path, label->image, UX_PATH_BYTES - 1) == 0)
        return 0;
    ux::clear_state(&label->obj, UX_ST_FG_SAVED);
    ux::copy_path(label->image, path);
    return 0;
}

int ux_image_label_show(ux_obj *obj) noexcept {
    auto *label = ux::as<ux_image_label>(obj);
    if (!ux::begin_show(obj) || label->image[0] == '\0')
        return 0;
    const bool saved = obj->status & UX_ST_FG_SAVED;
    if ((obj->flags & UX_FLAG_SAVE_FG) && !saved) {
        ux::draw_file(label);
        ux_obj_backup_fg(obj);
    } else if (obj->fg_backup && saved) {
        ux::paint_saved_face(obj);
    } else {
        ux::draw_file(label);
    }
    ux_object_update(obj);
    return 0;
}

int ux_image_label_hide(ux_obj *obj) noexcept {
    return ux_obj_hide(obj);
}

int ux_image_label_repaint(ux_obj *obj) noexcept {
    return ux::show_or_hide(obj, ux_image_label_show, ux_image_label_hide);
}
