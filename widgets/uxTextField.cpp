// SPDX-License-Identifier: MIT
// The text field: a line typed on a telephone keypad, in the clear or masked. All fields share one
// keypad and one table of the page's replaced handlers.

#include "widgets/key_capture.h"
#include "widgets/multi_tap.h"
#include "widgets/widget_kit.h"

#include <algorithm>

namespace ux {
namespace {

constexpr int k_field_style = 3;
constexpr int k_field_limit = 256; // what the setter no longer takes
constexpr int k_largest_limit = 255;
constexpr int k_next_letter_us = 1000000;
constexpr int k_no_timeout = -1;
constexpr unsigned k_low_byte = 0xFF;
constexpr int k_byte_bits = 8;

struct text_field_state {
    multi_tap keypad;        // letters, key in progress, capitals
    key_capture backup_keys; // the page's handlers while a field has the focus
    int current_timeoutid;   // of the key in progress, or k_no_timeout
};

text_field_state s_fields = {.keypad = {}, .backup_keys = {}, .current_timeoutid = k_no_timeout};

// The units are little-endian: byte 2k is the low byte of unit k.
unsigned byte_at(const char16_t *text, int index) {
    return static_cast<unsigned>(text[index / 2]) >> (index % 2 * k_byte_bits) & k_low_byte;
}

void clear_byte(char16_t *text, int index) {
    const unsigned other_byte = index % 2 == 0 ? ~k_low_byte : k_low_byte;
    text[index / 2] = static_cast<char16_t>(text[index / 2] & other_byte);
}

// One mask byte for each byte in front of the first zero byte: two of them make one unit.
void mask_text(char16_t (&masked)[UX_TEXT_UNITS], const ux_text_field *field) {
    const unsigned mask = static_cast<unsigned>(field->mask_char) & k_low_byte;
    for (int k = 0; k < 2 * UX_TEXT_UNITS && byte_at(field->text, k) != 0; k++)
        masked[k / 2] = static_cast<char16_t>(masked[k / 2] | mask << (k % 2 * k_byte_bits));
}

void paint_content(const ux_text_field *field, const color_pair &colors) {
    char16_t masked[UX_TEXT_UNITS] = {};
    if (field->password)
        mask_text(masked, field);
    paint_text(field->password ? masked : field->text, colors.fg, colors.bg,
               inside_border(&field->obj), font_size(field->font_size));
}

// A timeout of id 0 is taken for none: it fires.
void delete_timeout() {
    if (s_fields.current_timeoutid != 0)
        ux_delete_timeout(s_fields.current_timeoutid);
}

// A numeric field takes every press for a character of its own.
void wait_for_next_letter(const ux_text_field *field) {
    delete_timeout();
    if (field->input_type == UX_INPUT_NUMERIC)
        ux_text_field_waitkeytimeout(nullptr);
    else
        s_fields.current_timeoutid =
            ux_set_timeout(k_next_letter_us, ux_text_field_waitkeytimeout, nullptr);
}

constexpr object_prototype k_text_field = {
    .type = UX_TYPE_TEXT_FIELD,
    .flags = UX_FLAG_SAVE_BG,
    .show = ux_text_field_show,
    .hide = ux_text_field_hide,
    .repaint = ux_text_field_repaint,
    .set_focus = ux_text_field_set_focus,
    .unset_focus = ux_text_field_unset_focus,
    .set_select = ux_text_field_set_select,
    .unset_select = ux_text_field_unset_select,
};

} // namespace
} // namespace ux

ux_text_field *ux_text_field_new(ux_container *parent, int x, int y, int w, int h,
                                 const char16_t *text) noexcept {
    auto *field = ux::allocate<ux_text_field>("Not enough memory space for text field!\n");
    if (!field)
        return nullptr;
    ux::init_object(&field->obj, ux::k_text_field, parent, {x, y, w, h});
    ux_text_field_set_text(field, text);
    field->mask_char = '*';
    field->limit = ux::k_field_limit;
    field->font_size = ux::k_default_font_size;
    field->style = ux::k_field_style;
    field->fg_color = field->focus_fg_color = UX_COLOR_TEXT;
    field->select_fg_color = field->select_focus_fg_color = UX_COLOR_TEXT;
    field->bg_color = field->focus_bg_color = UX_COLOR_BACKGROUND;
    field->select_bg_color = field->select_focus_bg_color = UX_COLOR_BACKGROUND;
    return field;
}

// What lies behind the zero unit would come to light when the text grows over it: a new text leaves
// nothing there, taking the text away leaves all but two units.
int ux_text_field_set_text(ux_text_field *field, const char16_t *text) noexcept {
    if (text) {
        ux::copy_text_and_clear(field->text, text);
        ux::clear_byte(field->text, 2 * UX_TEXT_UNITS - 1);
    } else {
        field->text[0] = field->text[1] = u'\0';
    }
    return 0;
}

int ux_text_field_set_limit(ux_text_field *field, int n) noexcept {
    field->limit = std::min(n, ux::k_largest_limit);
    return 0;
}

int ux_text_field_set_type(ux_text_field *field, int type) noexcept {
    field->input_type = type;
    return 0;
}

int ux_text_field_set_pw_type(ux_text_field *field, int mask_char, int enabled) noexcept {
    if (field->obj.type != UX_TYPE_TEXT_FIELD)
        return -1;
    field->mask_char = mask_char;
    field->password = enabled;
    return 0;
}

int ux_text_field_set_style(ux_text_field *field, int s) noexcept {
    field->style = s;
    return 0;
}

int ux_text_field_set_font(ux_text_field *, ...) noexcept {
    return 0;
}

int ux_text_field_set_font_size(ux_text_field *field, int n) noexcept {
    field->font_size = n;
    return 0;
}

int ux_text_field_set_fg_color(ux_text_field *field, uint32_t normal, uint32_t focus) noexcept {
    field->fg_color = normal;
    field->focus_fg_color = focus;
    return 0;
}

int ux_text_field_set_bg_color(ux_text_field *field, uint32_t normal, uint32_t focus) noexcept {
    field->bg_color = normal;
    field->focus_bg_color = focus;
    return 0;
}

int ux_text_field_set_fg_scolor(ux_text_field *field, uint32_t select,
                                uint32_t select_focus) noexcept {
    field->select_fg_color = select;
    field->select_focus_fg_color = select_focus;
    return 0;
}

int ux_text_field_set_bg_scolor(ux_text_field *field, uint32_t select,
                                uint32_t select_focus) noexcept {
    field->select_bg_color = select;
    field->select_focus_bg_color = select_focus;
    return 0;
}

int ux_text_field_set_border(ux_text_field *field, int n) noexcept {
    field->obj.border = n;
    return 0;
}

int ux_text_field_set_size(ux_text_field *field, int x, int y, int w, int h) noexcept {
    return ux_obj_set_size(&field->obj, x, y, w, h);
}

int ux_text_field_show(ux_obj *obj) noexcept {
    if (!ux::begin_show(obj))
        return 0;
    const auto *field = ux::as<ux_text_field>(obj);
    const ux::color_pair colors = ux::colors_by_focus(field);
    ux::save_background_once(obj, {field->bg_color, field->focus_bg_color}, ux::underlay::black);
    ux::paint_background(obj, colors.bg);
    ux::paint_border(obj);
    ux::paint_content(field, colors);
    ux_object_update(obj);
    return 0;
}

int ux_text_field_hide(ux_obj *obj) noexcept {
    return ux_obj_hide(obj);
}

int ux_text_field_repaint(ux_obj *obj) noexcept {
    return ux::show_or_hide(obj, ux_text_field_show, ux_text_field_hide);
}

int ux_text_field_set_focus(ux_obj *obj) noexcept {
    ux::multi_tap &keypad = ux::s_fields.keypad;
    ux::key_capture &backup_keys = ux::s_fields.backup_keys;
    ux_page *page = ux::page_of(obj);
    keypad.begin(ux::as<ux_text_field>(obj)->input_type == UX_INPUT_NUMERIC);
    for (int key = 0; key < UX_MAX_KEYS; key++)
        if (keypad.types(key))
            backup_keys.capture(page, key, ux_text_field_add_char);
    backup_keys.capture(page, UX_KEY_DELETE, ux_text_field_del_char);
    backup_keys.capture(page, UX_KEY_SHIFT, ux_text_field_shift_char);
    return ux::take_focus(obj);
}

int ux_text_field_unset_focus(ux_obj *obj) noexcept {
    ux::s_fields.backup_keys.restore(ux::page_of(obj));
    return ux::clear_state(obj, UX_ST_FOCUSED);
}

int ux_text_field_set_select(ux_obj *obj) noexcept {
    return ux::set_state(obj, UX_ST_SELECTED);
}

int ux_text_field_unset_select(ux_obj *obj) noexcept {
    return ux::clear_state(obj, UX_ST_SELECTED);
}

// The character that fills the field, and one beyond, are not painted, and the byte behind `limit`,
// counted in bytes, is cleared: with an even limit it is zero already, with an odd one the text
// ends there. Units behind the text's end that stand from a longer one count again when it grows.
int ux_text_field_add_char(ux_event *ev) noexcept {
    auto *field = ux::target_of<ux_text_field>(ev, UX_TYPE_TEXT_FIELD);
    if (!field)
        return 0;
    const int length = ux::text_length(field->text);
    if (length == UX_TEXT_UNITS || field->limit < length || !ux::s_fields.keypad.types(ev->value))
        return 0;
    const ux::tap tap = ux::s_fields.keypad.press(ev->value);
    const int place = tap.replaces ? std::max(length - 1, 0) : length;
    field->text[place] = tap.character;
    ux::wait_for_next_letter(field);
    const int new_length = ux::text_length(field->text);
    if ((new_length == UX_TEXT_UNITS ? place : new_length) < field->limit)
        return ux_text_field_show(&field->obj);
    ux::clear_byte(field->text, field->limit + 1);
    return 0;
}

int ux_text_field_del_char(ux_event *ev) noexcept {
    auto *field = ux::target_of<ux_text_field>(ev, UX_TYPE_TEXT_FIELD);
    if (!field)
        return 0;
    const int length = ux::text_length(field->text);
    if (length == 0 || length == UX_TEXT_UNITS)
        return 0;
    field->text[length - 1] = u'\0';
    ux_text_field_show(&field->obj);
    ux::s_fields.keypad.end_key();
    ux::delete_timeout();
    return 0;
}

int ux_text_field_shift_char(ux_event *) noexcept {
    bool &shift = ux::s_fields.keypad.current_key_shift;
    shift = !shift;
    return 0;
}

int ux_text_field_waitkeytimeout(ux_event *) noexcept {
    ux::s_fields.keypad.end_key();
    ux::s_fields.current_timeoutid = ux::k_no_timeout;
    return 0;
}
