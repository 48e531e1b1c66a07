// SPDX-License-Identifier: MIT
// The text label: a passive text on a colour or on the saved screen.

#include "widgets/widget_kit.h"

namespace ux {
namespace {

constexpr object_prototype k_text_label = {
    .type = UX_TYPE_TEXT_LABEL,
    .flags = 0,
    .show = ux_text_label_show,
    .hide = ux_text_label_hide,
    .repaint = ux_text_label_repaint,
    .set_focus = nullptr,
    .unset_focus = nullptr,
    .set_select = nullptr,
    .unset_select = nullptr,
};

} // namespace
} // namespace ux

ux_text_label *ux_text_label_new(ux_container *parent, int x, int y, int w, int h,
                                 const char16_t *text) noexcept {
    auto *label = ux::allocate<ux_text_label>("Not enough memory space for text label!\n");
    if (!label)
        return nullptr;
    ux::init_object(&label->obj, ux::k_text_label, parent, {x, y, w, h});
    ux::copy_text(label->text, text);
    label->fg_color = UX_COLOR_TEXT;
    label->bg_color = UX_COLOR_BACKGROUND;
    label->font_size = ux::k_default_font_size;
    label->style = ux::k_default_style;
    return label;
}

int ux_text_label_set_text(ux_text_label *label, const char16_t *text) noexcept {
    ux::copy_text(label->text, text);
    return 0;
}

int ux_text_label_set_fg_color(ux_text_label *label, uint32_t color) noexcept {
    label->fg_color = color;
    return 0;
}

int ux_text_label_set_bg_color(ux_text_label *label, uint32_t color) noexcept {
    label->bg_color = color;
    return 0;
}

uint32_t ux_text_label_get_bg_color(const ux_text_label *label) noexcept {
    return label->bg_color;
}

int ux_text_label_set_font_size(ux_text_label *label, int n) noexcept {
    if (label)
        label->font_size = n;
    return 0;
}

int ux_text_label_set_font(ux_text_label *, ...) noexcept {
    return 0;
}

int ux_text_label_set_style(ux_text_label *label, int s) noexcept {
    label->style = s;
    return 0;
}

int ux_text_label_set_size(ux_text_label *label, int x, int y, int w, int h) noexcept {
    return ux_obj_set_size(&label->obj, x, y, w, h);
}

// The label paints no border.
int ux_text_label_show(ux_obj *obj) noexcept {
    if (!ux::begin_show(obj))
        return 0;
    const auto *label = ux::as<ux_text_label>(obj);
    ux::save_background_once(obj, {label->bg_color});
    ux::paint_background(obj, label->bg_color);
    ux::paint_text(label->text, label->fg_color, label->bg_color, ux::rect_of(obj),
                   ux::font_size(label->font_size));
    ux_object_update(obj);
    return 0;
}

int ux_text_label_hide(ux_obj *obj) noexcept {
    return ux_obj_hide(obj);
}

int ux_text_label_repaint(ux_obj *obj) noexcept {
    return ux::show_or_hide(obj, ux_text_label_show, ux_text_label_hide);
}
