// SPDX-License-Identifier: MIT
// Shared parts of the widgets; see widget_kit.h.

#include "widgets/widget_kit.h"

#include "core/save_area.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace ux {
namespace {

constexpr int k_decimal = 10;

} // namespace

void copy_text(char16_t (&field)[UX_TEXT_UNITS], const char16_t *text) {
    int k = 0;
    for (; text && k < UX_TEXT_UNITS && text[k] != u'\0'; k++)
        field[k] = text[k];
    if (k < UX_TEXT_UNITS)
        field[k] = u'\0';
    else
        field[UX_TEXT_UNITS - 1] &= 0xFF;
}

void copy_text_and_clear(char16_t (&field)[UX_TEXT_UNITS], const char16_t *text) {
    int k = 0;
    for (; text && k < UX_TEXT_UNITS && text[k] != u'\0'; k++)
        field[k] = text[k];
    for (; k < UX_TEXT_UNITS; k++)
        field[k] = u'\0';
}

int text_length(const char16_t (&field)[UX_TEXT_UNITS]) {
    return static_cast<int>(std::find(field, field + UX_TEXT_UNITS, u'\0') - field);
}

// A number that no int holds stays too large to show anything.
int font_size(int font_size) {
    const char *text = getenv("FontSize");
    if (!text)
        return font_size;
    return static_cast<int>(std::clamp<long>(strtol(text, nullptr, k_decimal), INT_MIN, INT_MAX));
}

void paint_text(const char16_t *text, uint32_t fg, uint32_t bg, const rect &box, int size) {
    constexpr int k_no_step = 0;
    constexpr int k_draw_once = 1;
    uxFontDrawing(text, fg, bg, box.x, box.y, box.width, box.height, size, size, k_no_step,
                  k_draw_once);
}

void paint_number(int number, uint32_t fg, uint32_t bg, const rect &box, int size) {
    char digits[sizeof "-2147483648"] = {};
    char16_t text[sizeof digits];
    snprintf(digits, sizeof digits, "%d", number);
    std::copy_n(digits, sizeof digits, text);
    paint_text(text, fg, bg, box, size);
}

void paint_background(const ux_obj *obj, uint32_t bg) {
    if (bg != UX_COLOR_NONE)
        paint_fill(obj, bg);
    else
        paint_saved_background(obj);
}

void save_background_once(ux_obj *obj, std::initializer_list<uint32_t> backgrounds,
                          underlay beneath) {
    if (!(obj->flags & UX_FLAG_SAVE_BG) || (obj->status & UX_ST_BG_SAVED))
        return;
    if (std::find(backgrounds.begin(), backgrounds.end(), UX_COLOR_NONE) == backgrounds.end())
        return;
    if (beneath == underlay::black)
        paint_fill(obj, UX_COLOR_BACKGROUND);
    ux_obj_backup_bg(obj);
}

// The sums wrap: no border is too large.
rect inside_border(const ux_obj *obj) {
    const auto border = static_cast<uint32_t>(obj->border);
    const auto moved = [border](int at) { return static_cast<int>(uint32_t(at) + border); };
    const auto inset = [border](int size) { return static_cast<int>(uint32_t(size) - 2 * border); };
    return {moved(obj->x), moved(obj->y), inset(obj->width), inset(obj->height)};
}

void copy_path(char (&field)[UX_PATH_BYTES], const char *path) {
    const size_t length = path ? strnlen(path, UX_PATH_BYTES - 1) : 0;
    if (length > 0)
        memmove(field, path, length);
    field[length] = '\0';
}

// A face saved before the widget grew covers fewer rows.
void paint_saved_face(const ux_obj *obj) {
    const int rows = save_area_rows(obj->fg_backup, obj->width, obj->height);
    ux_draw_image_buff(obj->fg_backup, obj->x, obj->y, obj->width, rows, 0);
}

} // namespace ux
