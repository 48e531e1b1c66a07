// SPDX-License-Identifier: MIT
// The select box: one of a ring of texts between two signs, which the left and right keys step
// through.

#include "widgets/key_capture.h"
#include "widgets/sign.h"
#include "widgets/widget_kit.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace ux {
namespace {

constexpr int k_sign_space = 4; // columns that the box of a sign is wider than the sign

struct select_box_state {
    key_capture backup_keys; // the page's handlers of left and right while a box has the focus
};

select_box_state s_select_boxes;

// What a select box is made of, in screen pixels.
struct select_box_parts {
    rect less, more; // the signs
    rect frame;      // of the border
    rect text;
};

select_box_parts parts_of(const ux_obj *obj, int64_t less, int64_t more, int64_t sign_height) {
    const int64_t border = obj->border;
    const int64_t right = int64_t{obj->x} + obj->width;
    const int height = coordinate(sign_height);
    return {.less = {obj->x, obj->y, coordinate(less + k_sign_space), height},
            .more = {coordinate(right - k_sign_space - more), obj->y,
                     coordinate(more + k_sign_space), height},
            .frame = {coordinate(obj->x + less), obj->y, coordinate(obj->width - less - more),
                      obj->height},
            .text = {coordinate(obj->x + border + k_sign_space + less), coordinate(obj->y + border),
                     coordinate(obj->width - less - more - 2 * border - 2 * k_sign_space),
                     coordinate(obj->height - 2 * border)}};
}

// The ">" is measured in the size of the "<"; when that fits in none, in the size of the height.
select_box_parts measured_parts(const ux_obj *obj) {
    const sign_cell less = fit_sign(obj->height);
    const bool fits = less.size > 0 && less.height <= static_cast<uint32_t>(obj->height);
    const sign_cell more = measure_sign(u'>', fits ? less.size : obj->height);
    return parts_of(obj, less.width, more.width, more.height);
}

void paint_texts(const ux_select_box *box, const select_box_parts &parts,
                 const color_pair &colors) {
    const int size = font_size(box->font_size);
    paint_text(u"<", colors.fg, colors.bg, parts.less, size);
    paint_text(u">", colors.fg, colors.bg, parts.more, size);
    if (box->count > 0)
        paint_text(box->current->text, colors.fg, colors.bg, parts.text, size);
}

bool is_select_box(const ux_select_box *box) {
    return box->obj.type == UX_TYPE_SELECT_BOX;
}

// With one item there is nothing to choose.
bool has_choice(const ux_select_box *box) {
    return box->count >= 2;
}

void make_current(ux_select_box *box, ux_select_item *item) {
    box->current = item;
    std::copy_n(item->text, UX_TEXT_UNITS, box->text);
}

void link_last(ux_select_box *box, ux_select_item *item) {
    ux_select_item *first = box->first ? box->first : item;
    ux_select_item *last = box->last ? box->last : item;
    item->previous = last;
    item->next = first;
    last->next = item;
    first->previous = item;
    box->first = first;
    box->last = item;
}

// Nothing is read behind the zero unit of either text.
bool same_text(const char16_t *a, const char16_t *b) {
    for (int k = 0; k < UX_TEXT_UNITS; k++) {
        if (a[k] != b[k])
            return false;
        if (a[k] == u'\0')
            return true;
    }
    return true;
}

// A hidden box is changed as well. The handler comes last: it may delete the box.
int step(ux_event *ev, ux_select_item *ux_select_item::*direction) {
    auto *box = target_of<ux_select_box>(ev, UX_TYPE_SELECT_BOX);
    if (!box || !has_choice(box))
        return 0;
    make_current(box, box->current->*direction);
    ux_select_box_repaint(&box->obj);
    if (box->change_handler)
        box->change_handler(box, box->current->index);
    return 0;
}

constexpr object_prototype k_select_box = {
    .type = UX_TYPE_SELECT_BOX,
    .flags = UX_FLAG_SAVE_BG,
    .show = ux_select_box_show,
    .hide = ux_select_box_hide,
    .repaint = ux_select_box_repaint,
    .set_focus = ux_select_box_set_focus,
    .unset_focus = ux_select_box_unset_focus,
    .set_select = nullptr,
    .unset_select = nullptr,
};

} // namespace
} // namespace ux

// The message speaks of another widget; logs are searched for it so.
ux_select_box *ux_select_box_new(ux_container *parent, int x, int y, int w, int h) noexcept {
    auto *box = ux::allocate<ux_select_box>("Not enough memory space for text field!\n");
    if (!box)
        return nullptr;
    ux::init_object(&box->obj, ux::k_select_box, parent, {x, y, w, h});
    box->font_size = ux::k_default_font_size;
    box->fg_color = box->focus_fg_color = UX_COLOR_TEXT;
    box->bg_color = box->focus_bg_color = UX_COLOR_BACKGROUND;
    return box;
}

int ux_select_box_add_item(ux_select_box *box, const char16_t *text) noexcept {
    auto *item = static_cast<ux_select_item *>(calloc(1, sizeof(ux_select_item)));
    if (!item) {
        fputs("Fail to allocate new item!\n", stderr);
        return -1;
    }
    item->index = box->count++;
    ux::copy_text_and_clear(item->text, text);
    ux::link_last(box, item);
    if (!box->current)
        ux::make_current(box, item);
    return 0;
}

int ux_select_box_add_items(ux_select_box *box, const char16_t *text, int index) noexcept {
    if (index >= box->count) {
        ux_select_box_add_item(box, text);
        return 0;
    }
    ux_select_item *item = box->first;
    for (int i = 0; i < index; i++)
        item = item->next;
    if (item)
        ux::copy_text_and_clear(item->text, text);
    return 0;
}

int ux_select_box_free_items(ux_select_box *box) noexcept {
    if (box->count < 1)
        return 0;
    box->last->next = nullptr;
    for (ux_select_item *item = box->first; item;) {
        ux_select_item *next = item->next;
        free(item);
        item = next;
    }
    box->first = box->last = box->current = nullptr;
    box->count = 0;
    return 0;
}

int ux_select_box_get_pos(const ux_select_box *box) noexcept {
    return ux::is_select_box(box) && box->count != 0 ? box->current->index : -1;
}

int ux_select_box_set_pos(ux_select_box *box, int index) noexcept {
    if (!ux::is_select_box(box) || !ux::has_choice(box) || index < 0 || index >= box->count)
        return -1;
    ux_select_item *item = box->current;
    while (item->index < index)
        item = item->next;
    while (item->index > index)
        item = item->previous;
    ux::make_current(box, item);
    return 0;
}

int ux_select_box_set_text(ux_select_box *box, const char16_t *text) noexcept {
    if (!ux::is_select_box(box) || !ux::has_choice(box) || !text)
        return -1;
    ux_select_item *item = box->first;
    for (int i = 0; i < box->count; i++, item = item->next) {
        if (!ux::same_text(item->text, text))
            continue;
        ux::make_current(box, item);
        return 0;
    }
    return -1;
}

int ux_select_box_set_fg_color(ux_select_box *box, uint32_t normal, uint32_t focus) noexcept {
    box->fg_color = normal;
    box->focus_fg_color = focus;
    return 0;
}

int ux_select_box_set_bg_color(ux_select_box *box, uint32_t normal, uint32_t focus) noexcept {
    box->bg_color = normal;
    box->focus_bg_color = focus;
    return 0;
}

int ux_select_box_set_font_size(ux_select_box *box, int n) noexcept {
    box->font_size = n;
    return 0;
}

int ux_select_box_set_font(ux_select_box *, ...) noexcept {
    return 0;
}

int ux_select_box_show(ux_obj *obj) noexcept {
    if (!ux::begin_show(obj))
        return 0;
    const auto *box = ux::as<ux_select_box>(obj);
    const ux::color_pair colors = ux::colors_by_focus(box);
    ux::save_background_once(obj, {box->bg_color, box->focus_bg_color}, ux::underlay::black);
    ux::paint_background(obj, colors.bg);
    const ux::select_box_parts parts = ux::measured_parts(obj);
    ux::paint_border(obj, parts.frame);
    ux::paint_texts(box, parts, colors);
    ux_object_update(obj);
    return 0;
}

int ux_select_box_hide(ux_obj *obj) noexcept {
    return ux_obj_hide(obj);
}

int ux_select_box_repaint(ux_obj *obj) noexcept {
    return ux::show_or_hide(obj, ux_select_box_show, ux_select_box_hide);
}

int ux_select_box_set_focus(ux_obj *obj) noexcept {
    ux_page *page = ux::page_of(obj);
    ux::s_select_boxes.backup_keys.capture(page, UX_KEY_LEFT, ux_select_box_key_left);
    ux::s_select_boxes.backup_keys.capture(page, UX_KEY_RIGHT, ux_select_box_key_right);
    return ux::take_focus(obj);
}

int ux_select_box_unset_focus(ux_obj *obj) noexcept {
    ux::s_select_boxes.backup_keys.restore(ux::page_of(obj));
    return ux::clear_state(obj, UX_ST_FOCUSED);
}

int ux_select_box_key_left(ux_event *ev) noexcept {
    return ux::step(ev, &ux_select_item::previous);
}

int ux_select_box_key_right(ux_event *ev) noexcept {
    return ux::step(ev, &ux_select_item::next);
}
