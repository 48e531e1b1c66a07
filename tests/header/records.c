/* SPDX-License-Identifier: MIT */
/*
 * The order, the types and the places of the records' fields, written down a second time by hand:
 * hosts are compiled against them. One text for both languages; it prints the layout it found, and
 * a test compares what the C and the C++ build print.
 */
#include <assert.h>
#include <stdalign.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <ux.h>

typedef char path_field[256];
typedef char16_t text_field[128];
typedef ux_handler key_table[256];
typedef ux_page *page_table[32];
typedef int (*add_slot)(ux_container *, ux_obj *);
typedef int (*enter_callback)(ux_page *);
typedef int (*leave_callback)(ux_page *, intptr_t, intptr_t, intptr_t);
typedef ux_select_item *item_link;
typedef int (*select_handler)(ux_select_box *, int);
typedef ux_timeout *timeout_link;
typedef ux_atimer *atimer_link;
typedef ux_obj *obj_link;
typedef void *pointer;
typedef uint8_t *bytes;
typedef ux_text_button **button_array;
typedef uint32_t *word_array;
typedef int (*slider_handler)(ux_slider_bar *, int);
typedef int (*list_handler)(ux_button_list *, int);
typedef char16_t *unit_text;
typedef int (*clock_sync)(ux_clock *, intptr_t, intptr_t, intptr_t);
typedef int (*clock_tick)(ux_clock *, int, int, int);
typedef ux_clock_state *clock_state;

#define EVENT_FIELDS(F)                                                                            \
    F(ux_event, int32_t, type)                                                                     \
    F(ux_event, int32_t, value)                                                                    \
    F(ux_event, int32_t, x)                                                                        \
    F(ux_event, int32_t, y)                                                                        \
    F(ux_event, obj_link, obj)                                                                     \
    F(ux_event, pointer, data)

#define OBJ_FIELDS(F)                                                                              \
    F(ux_obj, int32_t, x)                                                                          \
    F(ux_obj, int32_t, y)                                                                          \
    F(ux_obj, int32_t, width)                                                                      \
    F(ux_obj, int32_t, height)                                                                     \
    F(ux_obj, uint32_t, flags)                                                                     \
    F(ux_obj, uint32_t, status)                                                                    \
    F(ux_obj, uint32_t, type)                                                                      \
    F(ux_obj, int32_t, page_id)                                                                    \
    F(ux_obj, int32_t, border)                                                                     \
    F(ux_obj, uint32_t, top_color)                                                                 \
    F(ux_obj, uint32_t, top_focus_color)                                                           \
    F(ux_obj, uint32_t, bottom_color)                                                              \
    F(ux_obj, uint32_t, bottom_focus_color)                                                        \
    F(ux_obj, uint32_t, left_color)                                                                \
    F(ux_obj, uint32_t, left_focus_color)                                                          \
    F(ux_obj, uint32_t, right_color)                                                               \
    F(ux_obj, uint32_t, right_focus_color)                                                         \
    F(ux_obj, uint32_t, alpha)                                                                     \
    F(ux_obj, ux_handler, handler)                                                                 \
    F(ux_obj, pointer, handler_data)                                                               \
    F(ux_obj, ux_slot, set_focus)                                                                  \
    F(ux_obj, ux_slot, unset_focus)                                                                \
    F(ux_obj, ux_slot, set_select)                                                                 \
    F(ux_obj, ux_slot, unset_select)                                                               \
    F(ux_obj, ux_slot, hide)                                                                       \
    F(ux_obj, ux_slot, show)                                                                       \
    F(ux_obj, ux_slot, repaint)                                                                    \
    F(ux_obj, ux_slot, get_status)                                                                 \
    F(ux_obj, ux_slot, free)                                                                       \
    F(ux_obj, pointer, bg_backup)                                                                  \
    F(ux_obj, pointer, fg_backup)                                                                  \
    F(ux_obj, obj_link, next)                                                                      \
    F(ux_obj, obj_link, parent)

#define CONTAINER_FIELDS(F)                                                                        \
    F(ux_container, ux_obj, obj)                                                                   \
    F(ux_container, uint32_t, bg_color)                                                            \
    F(ux_container, path_field, bg_image)                                                          \
    F(ux_container, uint32_t, count)                                                               \
    F(ux_container, obj_link, children)                                                            \
    F(ux_container, add_slot, add_obj)

#define PAGE_FIELDS(F)                                                                             \
    F(ux_page, ux_container, container)                                                            \
    F(ux_page, key_table, key_handlers)                                                            \
    F(ux_page, ux_handler, default_key_handler)                                                    \
    F(ux_page, obj_link, focus)                                                                    \
    F(ux_page, enter_callback, on_enter)                                                           \
    F(ux_page, leave_callback, on_leave)

#define SCREEN_FIELDS(F)                                                                           \
    F(ux_screen, int32_t, width)                                                                   \
    F(ux_screen, int32_t, height)                                                                  \
    F(ux_screen, int32_t, xres)                                                                    \
    F(ux_screen, int32_t, yres)                                                                    \
    F(ux_screen, int32_t, bytes_per_pixel)                                                         \
    F(ux_screen, int32_t, rotation)                                                                \
    F(ux_screen, int32_t, color_mode)                                                              \
    F(ux_screen, bytes, fb)                                                                        \
    F(ux_screen, bytes, buf)                                                                       \
    F(ux_screen, bytes, alpha_plane)                                                               \
    F(ux_screen, int32_t, current_page)                                                            \
    F(ux_screen, int32_t, page_count)                                                              \
    F(ux_screen, page_table, pages)

#define TIMEOUT_FIELDS(F)                                                                          \
    F(ux_timeout, int32_t, id)                                                                     \
    F(ux_timeout, int32_t, delay)                                                                  \
    F(ux_timeout, ux_handler, callback)                                                            \
    F(ux_timeout, pointer, data)                                                                   \
    F(ux_timeout, int32_t, start_sec)                                                              \
    F(ux_timeout, int32_t, start_usec)                                                             \
    F(ux_timeout, int32_t, due_sec)                                                                \
    F(ux_timeout, int32_t, due_usec)                                                               \
    F(ux_timeout, timeout_link, next)

#define ATIMER_FIELDS(F)                                                                           \
    F(ux_atimer, int32_t, id)                                                                      \
    F(ux_atimer, ux_handler, callback)                                                             \
    F(ux_atimer, pointer, data)                                                                    \
    F(ux_atimer, time_t, created)                                                                  \
    F(ux_atimer, time_t, due)                                                                      \
    F(ux_atimer, atimer_link, next)

#define LABEL_FIELDS(F)                                                                            \
    F(ux_text_label, ux_obj, obj)                                                                  \
    F(ux_text_label, text_field, text)                                                             \
    F(ux_text_label, uint32_t, fg_color)                                                           \
    F(ux_text_label, uint32_t, bg_color)                                                           \
    F(ux_text_label, int32_t, font_size)                                                           \
    F(ux_text_label, int32_t, style)

#define BUTTON_FIELDS(F)                                                                           \
    F(ux_text_button, ux_obj, obj)                                                                 \
    F(ux_text_button, text_field, text)                                                            \
    F(ux_text_button, uint32_t, fg_color)                                                          \
    F(ux_text_button, uint32_t, bg_color)                                                          \
    F(ux_text_button, uint32_t, focus_fg_color)                                                    \
    F(ux_text_button, uint32_t, focus_bg_color)                                                    \
    F(ux_text_button, uint32_t, select_fg_color)                                                   \
    F(ux_text_button, uint32_t, select_bg_color)                                                   \
    F(ux_text_button, uint32_t, select_focus_fg_color)                                             \
    F(ux_text_button, uint32_t, select_focus_bg_color)                                             \
    F(ux_text_button, int32_t, font_size)                                                          \
    F(ux_text_button, int32_t, style)

#define FIELD_FIELDS(F)                                                                            \
    F(ux_text_field, ux_obj, obj)                                                                  \
    F(ux_text_field, text_field, text)                                                             \
    F(ux_text_field, int32_t, mask_char)                                                           \
    F(ux_text_field, int32_t, password)                                                            \
    F(ux_text_field, int32_t, limit)                                                               \
    F(ux_text_field, int32_t, font_size)                                                           \
    F(ux_text_field, int32_t, style)                                                               \
    F(ux_text_field, int32_t, input_type)                                                          \
    F(ux_text_field, uint32_t, fg_color)                                                           \
    F(ux_text_field, uint32_t, bg_color)                                                           \
    F(ux_text_field, uint32_t, focus_fg_color)                                                     \
    F(ux_text_field, uint32_t, focus_bg_color)                                                     \
    F(ux_text_field, uint32_t, select_fg_color)                                                    \
    F(ux_text_field, uint32_t, select_bg_color)                                                    \
    F(ux_text_field, uint32_t, select_focus_fg_color)                                              \
    F(ux_text_field, uint32_t, select_focus_bg_color)
#define SELECT_ITEM_FIELDS(F)                                                                      \
    F(ux_select_item, int32_t, index)                                                              \
    F(ux_select_item, text_field, text)                                                            \
    F(ux_select_item, item_link, previous)                                                         \
    F(ux_select_item, item_link, next)

#define SELECT_BOX_FIELDS(F)                                                                       \
    F(ux_select_box, ux_obj, obj)                                                                  \
    F(ux_select_box, text_field, text)                                                             \
    F(ux_select_box, int32_t, font_size)                                                           \
    F(ux_select_box, item_link, first)                                                             \
    F(ux_select_box, item_link, last)                                                              \
    F(ux_select_box, item_link, current)                                                           \
    F(ux_select_box, int32_t, count)                                                               \
    F(ux_select_box, uint32_t, fg_color)                                                           \
    F(ux_select_box, uint32_t, bg_color)                                                           \
    F(ux_select_box, uint32_t, focus_fg_color)                                                     \
    F(ux_select_box, uint32_t, focus_bg_color)                                                     \
    F(ux_select_box, select_handler, change_handler)

#define CHECK_BOX_FIELDS(F)                                                                        \
    F(ux_check_box, ux_obj, obj)                                                                   \
    F(ux_check_box, text_field, text)                                                              \
    F(ux_check_box, int32_t, font_size)                                                            \
    F(ux_check_box, int32_t, checked)                                                              \
    F(ux_check_box, uint32_t, fg_color)                                                            \
    F(ux_check_box, uint32_t, bg_color)                                                            \
    F(ux_check_box, uint32_t, focus_fg_color)                                                      \
    F(ux_check_box, uint32_t, focus_bg_color)

#define SLIDER_FIELDS(F)                                                                           \
    F(ux_slider_bar, ux_obj, obj)                                                                  \
    F(ux_slider_bar, int32_t, font_size)                                                           \
    F(ux_slider_bar, int32_t, position)                                                            \
    F(ux_slider_bar, int32_t, minimum)                                                             \
    F(ux_slider_bar, int32_t, maximum)                                                             \
    F(ux_slider_bar, int32_t, step)                                                                \
    F(ux_slider_bar, int32_t, show_numbers)                                                        \
    F(ux_slider_bar, uint32_t, bar_color)                                                          \
    F(ux_slider_bar, uint32_t, thumb_color)                                                        \
    F(ux_slider_bar, uint32_t, fg_color)                                                           \
    F(ux_slider_bar, uint32_t, bg_color)                                                           \
    F(ux_slider_bar, uint32_t, focus_fg_color)                                                     \
    F(ux_slider_bar, uint32_t, focus_bg_color)                                                     \
    F(ux_slider_bar, slider_handler, change_handler)

#define LIST_FIELDS(F)                                                                             \
    F(ux_button_list, ux_container, container)                                                     \
    F(ux_button_list, int32_t, gap)                                                                \
    F(ux_button_list, int32_t, item_count)                                                         \
    F(ux_button_list, button_array, items)                                                         \
    F(ux_button_list, word_array, values)                                                          \
    F(ux_button_list, int32_t, current)                                                            \
    F(ux_button_list, list_handler, focus_handler)                                                 \
    F(ux_button_list, list_handler, select_handler)                                                \
    F(ux_button_list, list_handler, up_handler)                                                    \
    F(ux_button_list, list_handler, down_handler)

#define MEMO_FIELDS(F)                                                                             \
    F(ux_memo, ux_obj, obj)                                                                        \
    F(ux_memo, unit_text, text)                                                                    \
    F(ux_memo, uint32_t, fg_color)                                                                 \
    F(ux_memo, uint32_t, bg_color)                                                                 \
    F(ux_memo, int32_t, font_size)

#define CLOCK_STATE_FIELDS(F)                                                                      \
    F(ux_clock_state, pointer, face)                                                               \
    F(ux_clock_state, pointer, second_image)                                                       \
    F(ux_clock_state, pointer, third_image)                                                        \
    F(ux_clock_state, time_t, last_advance)                                                        \
    F(ux_clock_state, clock_sync, sync_handler)                                                    \
    F(ux_clock_state, clock_tick, tick_handler)                                                    \
    F(ux_clock_state, int32_t, sync_countdown)                                                     \
    F(ux_clock_state, int32_t, timeout_id)

#define CLOCK_FIELDS(F)                                                                            \
    F(ux_clock, ux_obj, obj)                                                                       \
    F(ux_clock, int32_t, radius)                                                                   \
    F(ux_clock, int32_t, center_x)                                                                 \
    F(ux_clock, int32_t, center_y)                                                                 \
    F(ux_clock, int32_t, hours)                                                                    \
    F(ux_clock, int32_t, minutes)                                                                  \
    F(ux_clock, int32_t, seconds)                                                                  \
    F(ux_clock, int32_t, sync_period)                                                              \
    F(ux_clock, clock_state, state)

#define CALENDAR_FIELDS(F)                                                                         \
    F(ux_calendar, ux_obj, obj)                                                                    \
    F(ux_calendar, path_field, image_dir)                                                          \
    F(ux_calendar, int16_t, year)                                                                  \
    F(ux_calendar, int16_t, month)                                                                 \
    F(ux_calendar, int16_t, day)                                                                   \
    F(ux_calendar, int16_t, weekday)                                                               \
    F(ux_calendar, int16_t, shown_year)                                                            \
    F(ux_calendar, int16_t, shown_month)                                                           \
    F(ux_calendar, int16_t, shown_day)                                                             \
    F(ux_calendar, int16_t, shown_weekday)                                                         \
    F(ux_calendar, int16_t, reserved)

#define ALL_FIELDS(F)                                                                              \
    EVENT_FIELDS(F)                                                                                \
    OBJ_FIELDS(F)                                                                                  \
    CONTAINER_FIELDS(F)                                                                            \
    PAGE_FIELDS(F)                                                                                 \
    SCREEN_FIELDS(F)                                                                               \
    TIMEOUT_FIELDS(F)                                                                              \
    ATIMER_FIELDS(F)                                                                               \
    LABEL_FIELDS(F)                                                                                \
    BUTTON_FIELDS(F)                                                                               \
    FIELD_FIELDS(F)                                                                                \
    SELECT_ITEM_FIELDS(F)                                                                          \
    SELECT_BOX_FIELDS(F)                                                                           \
    CHECK_BOX_FIELDS(F)                                                                            \
    SLIDER_FIELDS(F)                                                                               \
    LIST_FIELDS(F)                                                                                 \
    MEMO_FIELDS(F)                                                                                 \
    CLOCK_STATE_FIELDS(F)                                                                          \
    CLOCK_FIELDS(F)                                                                                \
    CALENDAR_FIELDS(F)

/* The compiler refuses the initialisation when a field has another type than the table says. */
#define HAS_TYPE(record, type, field)                                                              \
    {                                                                                              \
        record *r = 0;                                                                             \
        type *typed = r ? &r->field : 0;                                                           \
        types_seen += typed == 0;                                                                  \
    }

#define PLACE(record, type, field)                                                                 \
    {#record, #field, offsetof(record, field), sizeof(type), alignof(type), sizeof(record)},

struct place {
    const char *record;
    const char *field;
    size_t offset;
    size_t size;
    size_t alignment;
    size_t record_size;
};

static const struct place places[] = {ALL_FIELDS(PLACE)};
static const size_t place_count = sizeof(places) / sizeof(places[0]);

/* A few places worked out by hand, for machines with 8-byte pointers. */
#define AT_64(record, field, place) (sizeof(void *) != 8 || offsetof(record, field) == (place))
static_assert(AT_64(ux_event, obj, 16), "the event's numbers come first");
static_assert(AT_64(ux_obj, alpha, 68), "eighteen 32-bit fields come first");
static_assert(AT_64(ux_obj, handler, 72), "then the handler");
static_assert(AT_64(ux_obj, free, 152), "the last of nine slots");
static_assert(AT_64(ux_obj, parent, 184), "the last field");
static_assert(AT_64(ux_container, children, 456), "192 + 4 + 256 + 4");
static_assert(AT_64(ux_page, key_handlers, 472), "behind the container");
static_assert(AT_64(ux_text_label, text, 192), "text follows the header");
static_assert(AT_64(ux_text_label, fg_color, 448), "text takes 256 bytes");
static_assert(AT_64(ux_text_button, style, 484), "nine words behind the text");
static_assert(AT_64(ux_text_field, mask_char, 448), "right behind the 256 bytes of text");
static_assert(AT_64(ux_select_item, previous, 264), "4 + 256, and the pointers' alignment");
static_assert(AT_64(ux_select_box, first, 456), "192 + 256 + 4, and the pointers' alignment");
static_assert(AT_64(ux_select_box, change_handler, 504), "three pointers and five words on");
static_assert(AT_64(ux_text_field, fg_color, 472), "six words behind the text");
static_assert(AT_64(ux_check_box, checked, 452), "text and one word behind the header");
static_assert(AT_64(ux_slider_bar, change_handler, 240), "twelve words behind the header");
static_assert(AT_64(ux_button_list, gap, 472), "behind the container");
static_assert(AT_64(ux_button_list, down_handler, 528), "2 words, 2 pointers, 1 word, 3 pointers");
static_assert(AT_64(ux_memo, fg_color, 200), "a pointer behind the header");
static_assert(AT_64(ux_clock_state, timeout_id, 52), "6 words of 64 bits, 1 of 32");
static_assert(AT_64(ux_clock, state, 224), "7 words behind the header, and a gap");
static_assert(AT_64(ux_calendar, year, 448), "header and path");
static_assert(AT_64(ux_calendar, reserved, 464), "8 half-words further");
static_assert(offsetof(ux_container, obj) == 0, "base first");
static_assert(offsetof(ux_page, container) == 0, "base first");
static_assert(offsetof(ux_text_label, obj) == 0, "base first");
static_assert(offsetof(ux_text_button, obj) == 0, "base first");
static_assert(offsetof(ux_text_field, obj) == 0, "base first");
static_assert(offsetof(ux_select_box, obj) == 0, "base first");
static_assert(offsetof(ux_check_box, obj) == 0, "base first");
static_assert(offsetof(ux_slider_bar, obj) == 0, "base first");
static_assert(offsetof(ux_button_list, container) == 0, "base first");
static_assert(offsetof(ux_memo, obj) == 0, "base first");
static_assert(offsetof(ux_clock, obj) == 0, "base first");
static_assert(offsetof(ux_calendar, obj) == 0, "base first");

static size_t round_up(size_t value, size_t alignment) {
    return (value + alignment - 1) / alignment * alignment;
}

static int same_record(const struct place *a, const struct place *b) {
    return strcmp(a->record, b->record) == 0;
}

/* Every field must lie right behind the one before it, at its natural alignment, and the record
 * must end right behind its last field: nothing moved, nothing added, nothing left out. */
static int check_places(void) {
    int wrong = 0;
    size_t end = 0;
    size_t widest = 1;
    for (size_t i = 0; i < place_count; i++) {
        const struct place *p = &places[i];
        int first = i == 0 || !same_record(p, p - 1);
        size_t expected = first ? 0 : round_up(end, p->alignment);
        printf("%s.%s %zu %zu\n", p->record, p->field, p->offset, p->size);
        if (p->offset != expected) {
            fprintf(stderr, "%s.%s is at %zu, expected %zu\n", p->record, p->field, p->offset,
                    expected);
            wrong++;
        }
        end = p->offset + p->size;
        widest = first || p->alignment > widest ? p->alignment : widest;
        int last = i + 1 == place_count || !same_record(p, p + 1);
        if (last && round_up(end, widest) != p->record_size) {
            fprintf(stderr, "%s holds %zu bytes, expected %zu\n", p->record, p->record_size,
                    round_up(end, widest));
            wrong++;
        }
    }
    return wrong;
}

int main(void) {
    size_t types_seen = 0;
    ALL_FIELDS(HAS_TYPE)
    if (types_seen != place_count)
        return 1;
    return check_places() == 0 ? 0 : 1;
}
