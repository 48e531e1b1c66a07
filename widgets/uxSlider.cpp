// SPDX-License-Identifier: MIT
// The slider bar: a thumb on a track between two signs, which the left and right keys move in steps
// from a minimum to a maximum; the numbers below it if wanted.

#include "widgets/key_capture.h"
#include "widgets/sign.h"
#include "widgets/widget_kit.h"

#include <algorithm>

namespace ux {
namespace {

constexpr uint32_t k_bar_color = 0xFFFF8000;
constexpr uint32_t k_thumb_color = 0xFF0000FF;
constexpr int k_maximum = 100;
constexpr int k_step = 10;
constexpr uint32_t k_least_thumb = 8; // pixels

struct slider_state {
    key_capture backup_keys; // the page's handlers of left and right while a slider has the focus
};

slider_state s_sliders;

// Columns first to last, both included.
struct span {
    int64_t first, last;
};

// What a slider is made of, in screen pixels.
struct slider_parts {
    int bar_height; // of track and signs
    rect track;
    rect less, more; // the signs
    rect numbers;
};

int bar_height(const ux_slider_bar *slider) {
    return slider->show_numbers ? slider->obj.height / 2 : slider->obj.height;
}

// Both signs take the room of the "<".
slider_parts parts_of(const ux_slider_bar *slider, const sign_cell &sign) {
    const ux_obj &obj = slider->obj;
    const int bar = bar_height(slider);
    const int64_t sign_width = sign.width;
    const int left = coordinate(obj.x + sign_width);
    const int length = coordinate(obj.width - 2 * sign_width);
    const int width = coordinate(sign_width);
    const int height = coordinate(sign.height);
    return {bar,
            {left, obj.y, length, bar},
            {obj.x, obj.y, width, height},
            {coordinate(int64_t{obj.x} + obj.width - sign_width), obj.y, width, height},
            {left, coordinate(int64_t{obj.y} + bar), length, height}};
}

// The thumb's columns, counted from the track's left end. With the track's length L, the thumb's
// width T = max(L / (maximum - minimum), 8) and L - T all 32 bits wide without a sign, the offset
// is (L - T) * (position - minimum) / (maximum - minimum); the last column is T further. A range of
// 0, which only a host that writes the fields can make, has one place: all of the track.
span thumb_of(const ux_slider_bar *slider, uint32_t sign_width) {
    const uint32_t length = static_cast<uint32_t>(slider->obj.width) - 2 * sign_width;
    const int64_t range = std::max<int64_t>(int64_t{slider->maximum} - slider->minimum, 1);
    const uint32_t width = std::max(length / static_cast<uint32_t>(range), k_least_thumb);
    const double travelled = double(length - width) *
                             double(int64_t{slider->position} - slider->minimum) / double(range);
    constexpr double k_far = 1LL << 40; // beyond any screen, and below what int64_t holds
    const auto offset = static_cast<int64_t>(std::clamp(travelled, -k_far, k_far));
    return {offset, offset + width};
}

// A thumb with an end that no coordinate reaches is cut at the screen's edges.
void paint_thumb(const ux_slider_bar *slider, uint32_t sign_width) {
    const ux_obj &obj = slider->obj;
    const span thumb = thumb_of(slider, sign_width);
    const int64_t track = obj.x + int64_t{sign_width};
    int64_t first = track + thumb.first;
    int64_t last = track + thumb.last;
    if (first != coordinate(first) || last != coordinate(last)) {
        first = std::max<int64_t>(first, 0);
        last = std::min<int64_t>(last, main_screen.width - 1);
    }
    if (first <= last)
        uxDrawBox(coordinate(first), obj.y, coordinate(last),
                  coordinate(int64_t{obj.y} + bar_height(slider) - 1), slider->thumb_color);
}

void paint_texts(const ux_slider_bar *slider, const slider_parts &parts, const color_pair &colors) {
    const int size = font_size(slider->font_size);
    paint_text(u"<", colors.fg, colors.bg, parts.less, size);
    paint_text(u">", colors.fg, colors.bg, parts.more, size);
    if (!slider->show_numbers)
        return;
    // One over the other, in this order: hosts see the position on top.
    for (int number : {slider->minimum, slider->maximum, slider->position})
        paint_number(number, colors.fg, colors.bg, parts.numbers, size);
}

// The key's work after its guard: `wanted` is the new position.
int move_to(ux_slider_bar *slider, int64_t wanted) {
    slider->position = coordinate(wanted);
    ux_slider_bar_repaint(&slider->obj);
    if (slider->change_handler)
        slider->change_handler(slider, slider->position);
    return 0;
}

constexpr object_prototype k_slider_bar = {
    .type = UX_TYPE_SLIDER_BAR,
    .flags = UX_FLAG_SAVE_BG,
    .show = ux_slider_bar_show,
    .hide = ux_slider_bar_hide,
    .repaint = ux_slider_bar_repaint,
    .set_focus = ux_slider_bar_set_focus,
    .unset_focus = ux_slider_bar_unset_focus,
    .set_select = nullptr,
    .unset_select = nullptr,
};

} // namespace
} // namespace ux

// The message speaks of another widget; logs are searched for it so.
ux_slider_bar *ux_slider_bar_new(ux_container *parent, int x, int y, int w, int h) noexcept {
    auto *slider = ux::allocate<ux_slider_bar>("Not enough memory space for text field!\n");
    if (slider)
        ux_slider_bar_init(parent, slider, x, y, w, h);
    return slider;
}

int ux_slider_bar_init(ux_container *parent, ux_slider_bar *slider, int x, int y, int w,
                       int h) noexcept {
    ux::init_object(&slider->obj, ux::k_slider_bar, parent, {x, y, w, h});
    slider->font_size = ux::k_default_font_size;
    slider->position = 0;
    slider->minimum = 0;
    slider->maximum = ux::k_maximum;
    slider->step = ux::k_step;
    slider->show_numbers = 0;
    slider->bar_color = ux::k_bar_color;
    slider->thumb_color = ux::k_thumb_color;
    slider->fg_color = slider->focus_fg_color = UX_COLOR_TEXT;
    slider->bg_color = slider->focus_bg_color = UX_COLOR_BACKGROUND;
    slider->change_handler = nullptr;
    return 0;
}

int ux_slider_bar_set_minmax(ux_slider_bar *slider, int min, int max) noexcept {
    if (max <= min)
        return -1;
    slider->minimum = min;
    slider->maximum = max;
    slider->position = std::clamp(slider->position, min, max);
    return 0;
}

int ux_slider_bar_set_pos(ux_slider_bar *slider, int position) noexcept {
    if (position < slider->minimum || position > slider->maximum)
        return -1;
    slider->position = position;
    return 0;
}

int ux_slider_bar_set_step(ux_slider_bar *slider, int step) noexcept {
    slider->step = step;
    return 0;
}

int ux_slider_bar_set_fg_color(ux_slider_bar *slider, uint32_t normal, uint32_t focus) noexcept {
    slider->fg_color = normal;
    slider->focus_fg_color = focus;
    return 0;
}

int ux_slider_bar_set_bg_color(ux_slider_bar *slider, uint32_t normal, uint32_t focus) noexcept {
    slider->bg_color = normal;
    slider->focus_bg_color = focus;
    return 0;
}

int ux_slider_bar_set_border(ux_slider_bar *slider, int n) noexcept {
    slider->obj.border = n;
    return 0;
}

int ux_slider_bar_set_size(ux_slider_bar *slider, int x, int y, int w, int h) noexcept {
    return ux_obj_set_size(&slider->obj, x, y, w, h);
}

int ux_slider_bar_show(ux_obj *obj) noexcept {
    if (!ux::begin_show(obj))
        return 0;
    const auto *slider = ux::as<ux_slider_bar>(obj);
    const ux::color_pair colors = ux::colors_by_focus(slider);
    ux::save_background_once(obj, {slider->bg_color, slider->focus_bg_color});
    ux::paint_background(obj, colors.bg);
    const ux::sign_cell sign = ux::fit_sign(ux::bar_height(slider));
    const ux::slider_parts parts = ux::parts_of(slider, sign);
    ux::paint_fill(parts.track, slider->bar_color);
    ux::paint_thumb(slider, sign.width);
    ux::paint_border(obj, parts.track);
    ux::paint_texts(slider, parts, colors);
    ux_object_update(obj);
    return 0;
}

int ux_slider_bar_hide(ux_obj *obj) noexcept {
    return ux_obj_hide(obj);
}

int ux_slider_bar_repaint(ux_obj *obj) noexcept {
    return ux::show_or_hide(obj, ux_slider_bar_show, ux_slider_bar_hide);
}

int ux_slider_bar_set_focus(ux_obj *obj) noexcept {
    ux_page *page = ux::page_of(obj);
    ux::s_sliders.backup_keys.capture(page, UX_KEY_LEFT, ux_slider_bar_key_left);
    ux::s_sliders.backup_keys.capture(page, UX_KEY_RIGHT, ux_slider_bar_key_right);
    return ux::take_focus(obj);
}

int ux_slider_bar_unset_focus(ux_obj *obj) noexcept {
    ux::s_sliders.backup_keys.restore(ux::page_of(obj));
    return ux::clear_state(obj, UX_ST_FOCUSED);
}

// A negative step runs away from the end that is guarded: only that one is.
int ux_slider_bar_key_left(ux_event *ev) noexcept {
    auto *slider = ux::target_of<ux_slider_bar>(ev, UX_TYPE_SLIDER_BAR);
    if (!slider || slider->position <= slider->minimum)
        return 0;
    const int64_t wanted = int64_t{slider->position} - slider->step;
    return ux::move_to(slider, std::max<int64_t>(wanted, slider->minimum));
}

int ux_slider_bar_key_right(ux_event *ev) noexcept {
    auto *slider = ux::target_of<ux_slider_bar>(ev, UX_TYPE_SLIDER_BAR);
    if (!slider || slider->position >= slider->maximum)
        return 0;
    const int64_t wanted = int64_t{slider->position} + slider->step;
    return ux::move_to(slider, std::min<int64_t>(wanted, slider->maximum));
}
