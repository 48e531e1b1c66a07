// SPDX-License-Identifier: MIT
// The text button: a text inside a border, in four states that each have their colours. Every
// change of state shows it.

#include "widgets/widget_kit.h"

namespace ux {
namespace {

color_pair colors_of(const ux_text_button *button) {
    switch (button->obj.status & (UX_ST_FOCUSED | UX_ST_SELECTED)) {
    case UX_ST_FOCUSED:
        return {button->focus_fg_color, button->focus_bg_color};
    case UX_ST_SELECTED:
        return {button->select_fg_color, button->select_bg_color};
    case UX_ST_FOCUSED | UX_ST_SELECTED:
        return {button->select_focus_fg_color, button->select_focus_bg_color};
    default:
        return {button->fg_color, button->bg_color};
    }
}

constexpr object_prototype k_text_button = {
    .type = UX_TYPE_TEXT_BUTTON,
    .flags = UX_FLAG_SAVE_BG,
    .show = ux_text_button_show,
    .hide = ux_text_button_hide,
    .repaint = ux_text_button_repaint,
    .set_focus = ux_text_button_set_focus,
    .unset_focus = ux_text_button_unset_focus,
    .set_select = ux_text_button_set_select,
    .unset_select = ux_text_button_unset_select,
};

} // namespace
} // namespace ux

ux_text_button *ux_text_button_new(ux_container *parent, int x, int y, int w, int h,
                                   const char16_t *text) noexcept {
    auto *button = ux::allocate<ux_text_button>("Not enough memory space for text button!\n");
    if (button)
        ux_text_button_init(parent, button, x, y, w, h, text);
    return button;
}

int ux_text_button_init(ux_container *parent, ux_text_button *button, int x, int y, int w, int h,
                        const char16_t *text) noexcept {
    ux::init_object(&button->obj, ux::k_text_button, parent, {x, y, w, h});
    ux::copy_text(button->text, text);
    button->fg_color = button->focus_fg_color = UX_COLOR_TEXT;
    button->select_fg_color = button->select_focus_fg_color = UX_COLOR_TEXT_SELECT;
    button->bg_color = button->focus_bg_color = UX_COLOR_BACKGROUND;
    button->select_bg_color = button->select_focus_bg_color = UX_COLOR_BACKGROUND;
    button->font_size = ux::k_default_font_size;
    button->style = ux::k_default_style;
    return 0;
}

int ux_text_button_set_text(ux_text_button *button, const char16_t *text) noexcept {
    ux::copy_text(button->text, text);
    return 0;
}

int ux_text_button_set_fg_color(ux_text_button *button, uint32_t normal, uint32_t focus) noexcept {
    button->fg_color = normal;
    button->focus_fg_color = focus;
    return 0;
}

int ux_text_button_set_bg_color(ux_text_button *button, uint32_t normal, uint32_t focus) noexcept {
    button->bg_color = normal;
    button->focus_bg_color = focus;
    return 0;
}

int ux_text_button_set_bg_scolor(ux_text_button *button, uint32_t select,
                                 uint32_t select_focus) noexcept {
    button->select_bg_color = select;
    button->select_focus_bg_color = select_focus;
    return 0;
}

int ux_text_button_set_font_size(ux_text_button *button, int n) noexcept {
    if (button)
        button->font_size = n;
    return 0;
}

int ux_text_button_set_style(ux_text_button *button, int s) noexcept {
    button->style = s;
    return 0;
}

int ux_text_button_set_font(ux_text_button *, ...) noexcept {
    return 0;
}

int ux_text_button_set_sfont(ux_text_button *, ...) noexcept {
    return 0;
}

int ux_text_button_set_border(ux_text_button *button, int n) noexcept {
    button->obj.border = n;
    return 0;
}

int ux_text_button_set_border_color(ux_text_button *button, uint32_t normal,
                                    uint32_t focus) noexcept {
    return ux_obj_set_border_colors(&button->obj, normal, focus);
}

int ux_text_button_set_size(ux_text_button *button, int x, int y, int w, int h) noexcept {
    return ux_obj_set_size(&button->obj, x, y, w, h);
}

int ux_text_button_show(ux_obj *obj) noexcept {
    if (!ux::begin_show(obj))
        return 0;
    const auto *button = ux::as<ux_text_button>(obj);
    const ux::color_pair colors = ux::colors_of(button);
    ux::save_background_once(obj, {button->bg_color, button->focus_bg_color,
                                   button->select_bg_color, button->select_focus_bg_color});
    ux::paint_background(obj, colors.bg);
    ux::paint_border(obj);
    ux::paint_text(button->text, colors.fg, colors.bg, ux::inside_border(obj),
                   ux::font_size(button->font_size));
    ux_object_update(obj);
    return 0;
}

// The rectangle is updated also when there was nothing to restore.
int ux_text_button_hide(ux_obj *obj) noexcept {
    ux::clear_state(obj, UX_ST_VISIBLE);
    if (!ux::on_current_page(obj))
        return 0;
    ux::paint_saved_background(obj);
    ux_object_update(obj);
    return 0;
}

int ux_text_button_repaint(ux_obj *obj) noexcept {
    return ux::show_or_hide(obj, ux_text_button_show, ux_text_button_hide);
}

int ux_text_button_set_focus(ux_obj *obj) noexcept {
    ux::take_focus(obj);
    return ux_text_button_show(obj);
}

// It stays the page's focus: keys still go to it.
int ux_text_button_unset_focus(ux_obj *obj) noexcept {
    ux::clear_state(obj, UX_ST_FOCUSED);
    return ux_text_button_show(obj);
}

int ux_text_button_set_select(ux_obj *obj) noexcept {
    ux::set_state(obj, UX_ST_SELECTED);
    return ux_text_button_show(obj);
}

int ux_text_button_unset_select(ux_obj *obj) noexcept {
    ux::clear_state(obj, UX_ST_SELECTED);
    return ux_text_button_show(obj);
}
