// SPDX-License-Identifier: MIT
// The memo: lines of text over the player's message picture, inside a border.

#include "core/child_walk.h"
#include "widgets/widget_kit.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace ux {
namespace {

constexpr object_prototype k_memo = {
    .type = UX_TYPE_MEMO,
    .flags = UX_FLAG_SAVE_BG, // told to hosts; nothing is ever saved
    .show = ux_memo_show,
    .hide = ux_memo_hide,
    .repaint = ux_memo_repaint,
    .set_focus = ux_memo_set_focus,
    .unset_focus = ux_memo_unset_focus,
    .set_select = nullptr,
    .unset_select = nullptr,
};

// Units of a text's copy: up to its zero unit, and one more than a text field holds when there is
// none before. Nothing behind these is read.
size_t copied_units(const char16_t *text) {
    size_t count = 0;
    while (count < UX_TEXT_UNITS && text[count] != u'\0')
        count++;
    return count + 1;
}

// The picture that can be read, or null. Asked anew each time: players exchange it.
const char *message_image() {
    for (const char *path : {"/orbo/images/MSGbgimage.png", "/mnt/firmware/images/MSGbgimage.png"})
        if (access(path, R_OK) == 0)
            return path;
    return nullptr;
}

// Players look for the message as it is spelled, the blank at its end included.
void paint_message(const ux_memo *memo) {
    const char *image = message_image();
    if (!image) {
        puts("uxMemo:laod MSGbgimage error ");
        return;
    }
    const rect box = inside_border(&memo->obj);
    const int size = font_size(k_default_font_size);
    uxFontBoxDrawing(memo->text, memo->fg_color, image, box.x, box.y, box.width, box.height, size,
                     size);
}

} // namespace
} // namespace ux

ux_memo *ux_memo_new(ux_container *parent, int x, int y, int w, int h,
                     const char16_t *text) noexcept {
    auto *memo = ux::allocate<ux_memo>("Not enough memory space for memo!\n");
    if (memo)
        ux_memo_init(parent, memo, x, y, w, h, text);
    return memo;
}

int ux_memo_init(ux_container *parent, ux_memo *memo, int x, int y, int w, int h,
                 const char16_t *text) noexcept {
    ux::init_object(&memo->obj, ux::k_memo, parent, {x, y, w, h});
    memo->obj.free = ux_memo_free;
    memo->text = nullptr;
    ux_memo_set_text(memo, text);
    memo->fg_color = UX_COLOR_TEXT;
    memo->bg_color = UX_COLOR_BACKGROUND;
    memo->font_size = ux::k_default_font_size;
    return 0;
}

// The text may be the memo's own: it is released last.
int ux_memo_set_text(ux_memo *memo, const char16_t *text) noexcept {
    const char16_t *source = text ? text : u"";
    const size_t bytes = ux::copied_units(source) * sizeof *source;
    auto *copy = static_cast<char16_t *>(malloc(bytes));
    if (copy)
        memcpy(copy, source, bytes);
    free(memo->text);
    memo->text = copy;
    return copy ? 0 : -2;
}

int ux_memo_set_fg_color(ux_memo *memo, uint32_t color) noexcept {
    memo->fg_color = color;
    return 0;
}

int ux_memo_set_bg_color(ux_memo *memo, uint32_t color) noexcept {
    memo->bg_color = color;
    return 0;
}

int ux_memo_set_font_size(ux_memo *memo, int n) noexcept {
    if (memo)
        memo->font_size = n;
    return 0;
}

int ux_memo_set_font(ux_memo *, ...) noexcept {
    return 0;
}

int ux_memo_set_border(ux_memo *memo, int n) noexcept {
    memo->obj.border = n;
    return 0;
}

int ux_memo_set_border_color(ux_memo *memo, uint32_t normal, uint32_t focus) noexcept {
    return ux_obj_set_border_colors(&memo->obj, normal, focus);
}

int ux_memo_set_size(ux_memo *memo, int x, int y, int w, int h) noexcept {
    return ux_obj_set_size(&memo->obj, x, y, w, h);
}

// Whatever page is current: messages of a hidden page are seen as well. The border comes before the
// picture, which may lie over a part of it.
int ux_memo_show(ux_obj *obj) noexcept {
    const auto *memo = ux::as<ux_memo>(obj);
    ux::set_state(obj, UX_ST_VISIBLE);
    ux::paint_border(obj);
    if (memo->text)
        ux::paint_message(memo);
    ux_object_update(obj);
    return 0;
}

int ux_memo_hide(ux_obj *obj) noexcept {
    return ux_obj_hide(obj);
}

int ux_memo_repaint(ux_obj *obj) noexcept {
    return ux::show_or_hide(obj, ux_memo_show, ux_memo_hide);
}

int ux_memo_set_focus(ux_obj *obj) noexcept {
    return ux::take_focus(obj);
}

int ux_memo_unset_focus(ux_obj *obj) noexcept {
    return ux::clear_state(obj, UX_ST_FOCUSED);
}

int ux_memo_free(ux_obj *obj) noexcept {
    ux::child_walk::forget(obj);
    free(ux::as<ux_memo>(obj)->text);
    free(obj);
    return 0;
}
