// SPDX-License-Identifier: MIT
// The check box: a square mark and a caption beside it. It takes the focus but no keys: the host
// writes `checked` and shows it.

#include "widgets/widget_kit.h"

namespace ux {
namespace {

// The mark's square is 2 pixels less than the box's height: an outline, inside of it the check.
constexpr int k_mark_reduction = 2;
constexpr int k_outline_inset = 2;
constexpr int k_check_inset = 4;
constexpr int k_caption_gap = 4; // pixels from a square of the box's height to the caption

struct corners {
    int x0, y0, x1, y1;
};

// A square `inset` pixels inside the mark's, both corners included. In a low box they have changed
// places.
corners mark_inside(const ux_obj *obj, int inset) {
    const int64_t last = int64_t{obj->height} - k_mark_reduction - 1 - inset;
    return {coordinate(int64_t{obj->x} + inset), coordinate(int64_t{obj->y} + inset),
            coordinate(obj->x + last), coordinate(obj->y + last)};
}

rect caption_of(const ux_obj *obj) {
    const int64_t left = int64_t{obj->height} + k_caption_gap;
    return {coordinate(obj->x + left), obj->y, coordinate(obj->width - left), obj->height};
}

// A box of a normal background is filled with the text colour, in which outline, check and caption
// do not show: hosts that want to see them set that background to 0.
void paint_ground(const ux_check_box *box, uint32_t fg) {
    if (box->bg_color != UX_COLOR_NONE)
        paint_fill(&box->obj, fg);
    else
        paint_saved_background(&box->obj);
}

void paint_mark(const ux_check_box *box, uint32_t fg) {
    const corners outline = mark_inside(&box->obj, k_outline_inset);
    uxDrawRect(outline.x0, outline.y0, outline.x1, outline.y1, fg);
    if (!box->checked)
        return;
    const corners check = mark_inside(&box->obj, k_check_inset);
    uxDrawBox(check.x0, check.y0, check.x1, check.y1, fg);
}

constexpr object_prototype k_check_box = {
    .type = UX_TYPE_CHECK_BOX,
    .flags = UX_FLAG_SAVE_BG,
    .show = ux_check_box_show,
    .hide = ux_check_box_hide,
    .repaint = ux_check_box_repaint,
    .set_focus = ux_check_box_set_focus,
    .unset_focus = ux_check_box_unset_focus,
    .set_select = nullptr,
    .unset_select = nullptr,
};

} // namespace
} // namespace ux

// The message speaks of another widget; logs are searched for it so.
ux_check_box *ux_check_box_new(ux_container *parent, int x, int y, int w, int h,
                               const char16_t *text) noexcept {
    auto *box = ux::allocate<ux_check_box>("Not enough memory space for text field!\n");
    if (!box)
        return nullptr;
    ux::init_object(&box->obj, ux::k_check_box, parent, {x, y, w, h});
    ux::copy_text(box->text, text);
    box->font_size = ux::k_default_font_size;
    box->fg_color = box->focus_fg_color = UX_COLOR_TEXT;
    box->bg_color = box->focus_bg_color = UX_COLOR_BACKGROUND;
    return box;
}

int ux_check_box_show(ux_obj *obj) noexcept {
    if (!ux::begin_show(obj))
        return 0;
    const auto *box = ux::as<ux_check_box>(obj);
    const ux::color_pair colors = ux::colors_by_focus(box);
    ux::save_background_once(obj, {box->bg_color, box->focus_bg_color});
    ux::paint_ground(box, colors.fg);
    ux::paint_mark(box, colors.fg);
    ux::paint_text(box->text, colors.fg, colors.bg, ux::caption_of(obj),
                   ux::font_size(box->font_size));
    ux_object_update(obj);
    return 0;
}

int ux_check_box_hide(ux_obj *obj) noexcept {
    return ux_obj_hide(obj);
}

int ux_check_box_repaint(ux_obj *obj) noexcept {
    return ux::show_or_hide(obj, ux_check_box_show, ux_check_box_hide);
}

int ux_check_box_set_focus(ux_obj *obj) noexcept {
    return ux::take_focus(obj);
}

int ux_check_box_unset_focus(ux_obj *obj) noexcept {
    return ux::clear_state(obj, UX_ST_FOCUSED);
}
