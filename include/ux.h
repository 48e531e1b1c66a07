/* SPDX-License-Identifier: MIT */
/*
 * ux: pages, containers and widgets, painted in software straight into the Linux framebuffer.
 *
 * Purpose. A host (a media player, a set-top box) builds pages out of containers and widgets, shows
 * one page at a time and hands control to the main loop. Keys and touches arrive from another
 * process as System V messages; the loop gives keys to the current page's key handlers and touches
 * to the touched objects, and polls timers.
 *
 * Life cycle. ux_system_init(), optionally ux_screen_rorate_init(), build pages and widgets,
 * ux_screen_show_all(), ux_screen_main_loop() (returns after ux_screen_quit_main_loop()),
 * ux_system_close().
 *
 * Records. Every widget record begins with the common header ux_obj: `&label->obj` is the label as
 * an object, and its address is the label's own. Records are plain: a host may read every field;
 * what it may write is told at the field. Setters store and never paint: call the `show` slot
 * afterwards.
 *
 * Threads. Painting, timers and handlers run on the one thread that calls ux_screen_main_loop(). No
 * function may be called from another thread, but ux_screen_quit_main_loop(), send_pipe_event()
 * and, as told there, ux_event_get() and the tickers, which need a thread of their own.
 *
 * Texts. Widget texts are 16-bit code units ended by a zero unit, at most 127 units: u"Play".
 * Paths are ordinary byte strings.
 *
 * Results. 0 success, -1 bad argument, not found or out of range, -2 out of memory; constructors
 * return the new record or null. Errors are reported on standard error. Object pointers are not
 * tested for null, except where a function says so.
 */
#ifndef UX_H
#define UX_H

#include <stddef.h>
#include <stdint.h>
#include <time.h>
#ifndef __cplusplus
#include <uchar.h>
#endif

#define UX_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define UX_NOEXCEPT noexcept
extern "C" {
#else
#define UX_NOEXCEPT
#endif

/* ============================================================================================== */
/* Constants                                                                                      */
/* ============================================================================================== */

#define UX_MAX_PAGES 32   /* pages that main_screen can hold */
#define UX_MAX_KEYS 256   /* key codes 0..255 have an entry of their own in a page */
#define UX_TEXT_UNITS 128 /* 16-bit units in a widget text, the zero unit included */
#define UX_PATH_BYTES 256 /* bytes in a path field, the zero byte included */

/* Colours are 32-bit ARGB: bits 31-24 alpha, 23-16 red, 15-8 green, 7-0 blue. 0 means no colour:
 * that background or border side is not painted. On an RGB565 screen boxes and lines store the low
 * 16 bits as they are. */
#define UX_COLOR_NONE 0x00000000u         /* paint nothing */
#define UX_COLOR_BACKGROUND 0xFF000000u   /* default background: opaque black */
#define UX_COLOR_TEXT 0xFFAAAAAAu         /* default text: grey */
#define UX_COLOR_BORDER 0xFFFFFFFFu       /* default border: white */
#define UX_COLOR_BORDER_FOCUS 0xFFFFEE00u /* default border of the focused object: yellow */
#define UX_COLOR_TEXT_SELECT 0xFFFF0000u  /* default text of a selected button: red */

/* Kinds of objects (ux_obj.type). Bit 31 marks the kinds that hold children. */
#define UX_TYPE_CONTAINER 0x80000000u    /* the bit */
#define UX_TYPE_PAGE 0x80000001u         /* ux_page */
#define UX_TYPE_BOX 0x80000002u          /* ux_container */
#define UX_TYPE_TEXT_LABEL 0x00000003u   /* ux_text_label */
#define UX_TYPE_IMAGE_LABEL 0x00000004u  /* ux_image_label */
#define UX_TYPE_TEXT_BUTTON 0x00000005u  /* ux_text_button */
#define UX_TYPE_MEMO 0x00000005u         /* ux_memo: the same number */
#define UX_TYPE_IMAGE_BUTTON 0x00000006u /* ux_image_button */
#define UX_TYPE_CALENDAR 0x0000000Bu     /* ux_calendar */
#define UX_TYPE_CLOCK 0x0000000Cu        /* ux_clock */
#define UX_TYPE_TEXT_FIELD 0x0000000Eu   /* ux_text_field */
#define UX_TYPE_SLIDER_BAR 0x00000016u   /* ux_slider_bar */
#define UX_TYPE_SELECT_BOX 0x00000027u   /* ux_select_box */
#define UX_TYPE_CHECK_BOX 0x00000028u    /* ux_check_box */
#define UX_TYPE_BUTTON_LIST 0x80000014u  /* ux_button_list */

/* Behaviour bits (ux_obj.flags), chosen by the widget or the host. */
enum {
    UX_FLAG_SAVE_BG = 0x10, /* keep a copy of the screen under the object before its first paint */
    UX_FLAG_SAVE_FG = 0x40  /* keep a copy of the painted face and reuse it */
};

/* State bits (ux_obj.status), kept by the library. */
enum {
    UX_ST_FOCUSED = 0x01,     /* has the focus: painted with the focus colours */
    UX_ST_SELECTED = 0x02,    /* selected (pressed) */
    UX_ST_VISIBLE = 0x04,     /* shown; painted when its page is the current one */
    UX_ST_BG_SAVED = 0x10,    /* bg_backup holds a copy */
    UX_ST_BG_EXTERNAL = 0x20, /* bg_backup was given by the host: never overwritten */
    UX_ST_FG_SAVED = 0x40     /* fg_backup holds a copy */
};

/* Sides of a border, for ux_obj_set_border_color(). */
enum { UX_SIDE_TOP = 1, UX_SIDE_BOTTOM = 2, UX_SIDE_LEFT = 4, UX_SIDE_RIGHT = 8 };

/* Kinds of events (ux_event.type). */
enum {
    UX_EVENT_STOP = 0,    /* wakes the reader at the end of the main loop */
    UX_EVENT_KEY = 1,     /* a key of the remote control */
    UX_EVENT_TOUCH = 2,   /* a touch of the panel */
    UX_EVENT_TIMEOUT = 3, /* a timeout of ux_set_timeout() is due */
    UX_EVENT_ATIMER = 4   /* an alarm of ux_set_atimer() is due */
};

/* Key codes that widgets know; others pass through unchanged. Digit d has the code d + 1. */
enum {
    UX_KEY_0 = 1,
    UX_KEY_1 = 2,
    UX_KEY_2 = 3,
    UX_KEY_3 = 4,
    UX_KEY_4 = 5,
    UX_KEY_5 = 6,
    UX_KEY_6 = 7,
    UX_KEY_7 = 8,
    UX_KEY_8 = 9,
    UX_KEY_9 = 10,
    UX_KEY_UP = 19,
    UX_KEY_DOWN = 20,
    UX_KEY_LEFT = 21,
    UX_KEY_RIGHT = 22,
    UX_KEY_OK = 23,
    UX_KEY_DELETE = 32,
    UX_KEY_SHIFT = 34,
    UX_KEY_PUNCTUATION = 35
};

/* What a text field takes (ux_text_field.input_type); any other value is as the first. */
enum { UX_INPUT_ALPHANUMERIC = 0, UX_INPUT_NUMERIC = 1 };

/* Pixel formats of the screen (ux_screen.color_mode). */
enum { UX_COLOR_MODE_ARGB8888 = 1, UX_COLOR_MODE_RGB565 = 3 };

/* Display rotations (ux_screen.rotation). */
enum { UX_ROTATION_NONE = 0, UX_ROTATION_90 = 1, UX_ROTATION_270 = 3 };

/* ============================================================================================== */
/* Records                                                                                        */
/* ============================================================================================== */

typedef struct ux_event ux_event;
typedef struct ux_obj ux_obj;
typedef struct ux_container ux_container;
typedef struct ux_page ux_page;
typedef struct ux_screen ux_screen;

/* Handler of events, keys and timers. The event is valid during the call only. The result is
 * ignored by the main loop and the timers. */
typedef int (*ux_handler)(ux_event *ev);

/* One operation of an object, called by generic code. 0 is success. */
typedef int (*ux_slot)(ux_obj *obj);

/* What a handler is told. */
struct ux_event {
    int32_t type;  /* UX_EVENT_* */
    int32_t value; /* key: the key code, 0..255 from a sane sender; touch: 44; timers: 0 */
    int32_t x;     /* touch: column in screen pixels; else unspecified */
    int32_t y;     /* touch: row in screen pixels; else unspecified */
    ux_obj *obj;   /* key: the page's focus object; touch: the touched object; timers: null */
    void *data;    /* that object's handler_data, or the timer's data */
};

/* The header that every page, container and widget begins with. */
struct ux_obj {
    int32_t x;                   /* left edge, screen pixels */
    int32_t y;                   /* top edge, screen pixels */
    int32_t width;               /* width in pixels */
    int32_t height;              /* height in pixels */
    uint32_t flags;              /* UX_FLAG_* bits */
    uint32_t status;             /* UX_ST_* bits */
    uint32_t type;               /* UX_TYPE_*; bit 31 = holds children */
    int32_t page_id;             /* index of the owning page; -1 = made without a parent */
    int32_t border;              /* border width in pixels; 0 = no border */
    uint32_t top_color;          /* top side, normal */
    uint32_t top_focus_color;    /* the colour of all four sides while focused */
    uint32_t bottom_color;       /* bottom side, normal */
    uint32_t bottom_focus_color; /* stored, never painted */
    uint32_t left_color;         /* left side, normal */
    uint32_t left_focus_color;   /* stored, never painted */
    uint32_t right_color;        /* right side, normal */
    uint32_t right_focus_color;  /* stored, never painted */
    uint32_t alpha;              /* 0..255; stored only: nothing is painted by it */
    ux_handler handler;          /* touch handler; may be null */
    void *handler_data;          /* the host's pointer, handed over as the event's data */
    ux_slot set_focus;           /* gives the object the focus; may be null */
    ux_slot unset_focus;         /* takes the focus away; may be null */
    ux_slot set_select;          /* marks it selected; may be null */
    ux_slot unset_select;        /* clears selected; may be null */
    ux_slot hide;                /* hides it; not null */
    ux_slot show;                /* shows and paints it; null only for a container's child */
    ux_slot repaint;             /* paints it again if visible, else hides it; not null */
    ux_slot get_status;          /* returns status */
    ux_slot free;                /* releases it; null = ux_obj_free() */
    void *bg_backup;             /* screen pixels under the object, width * height, rows packed */
    void *fg_backup;             /* pixels of the painted face, same layout; the host's to free() */
    ux_obj *next;                /* next sibling; written by containers only */
    ux_obj *parent;              /* the container it is in, or null; written by containers only */
};

/* An object that holds objects. Its children are newest first. bg_color and bg_image exclude each
 * other: setting one clears the other. */
struct ux_container {
    ux_obj obj;                                           /* the header */
    uint32_t bg_color;                                    /* background; 0 = none; default black */
    char bg_image[UX_PATH_BYTES];                         /* picture path; empty = none */
    uint32_t count;                                       /* number of children */
    ux_obj *children;                                     /* newest child, or null */
    int (*add_obj)(ux_container *container, ux_obj *obj); /* links a new child in */
};

/* A full-screen container: the root of one screen's worth of widgets, with its key handlers. */
struct ux_page {
    ux_container container;               /* the container it extends */
    ux_handler key_handlers[UX_MAX_KEYS]; /* handler of each key code; null = none */
    ux_handler default_key_handler;       /* for keys without a handler; null = drop them */
    ux_obj *focus;                        /* the object that has the focus, or null */
    int (*on_enter)(ux_page *page); /* set by the host: the page becomes current; may be null */
    int (*on_leave)(ux_page *page, intptr_t a, intptr_t b,
                    intptr_t c); /* set by the host: the page is left; may be null */
};

/* The one screen. */
struct ux_screen {
    int32_t width;           /* drawing width in pixels, also the row length of buf and fb */
    int32_t height;          /* drawing height in pixels */
    int32_t xres;            /* device width in pixels: never exchanged by a rotation */
    int32_t yres;            /* device height in pixels */
    int32_t bytes_per_pixel; /* 4 or 2 */
    int32_t rotation;        /* UX_ROTATION_* */
    int32_t color_mode;      /* UX_COLOR_MODE_* */
    uint8_t *fb;             /* the mapped device memory */
    uint8_t *buf;            /* where painting goes; the same memory unless the host changes it */
    uint8_t *alpha_plane;    /* given by the host: width / 2 * height bytes, or null */
    int32_t current_page;    /* index of the page being shown */
    int32_t page_count;      /* pages made so far; the next page gets this index */
    ux_page *pages[UX_MAX_PAGES]; /* pages by index */
};

/* The screen, filled by ux_system_init(). */
extern UX_API ux_screen main_screen;

/* Printed in every "Error: [%d] ..." message. The library never sets it. */
extern UX_API int ux_error;

/* ============================================================================================== */
/* System and screen                                                                              */
/* ============================================================================================== */

/* Opens and maps /dev/fb0, clears it, opens the font and makes page 0. Always returns 0: device
 * failures are reported on standard error and leave a screen of 0 x 0 on which nothing may be
 * painted. A failed mapping ends the process with exit status 1. */
UX_API int ux_system_init(void) UX_NOEXCEPT;

/* Closes the font, unmaps the screen, closes the device. A `buf` that the host put in is freed with
 * free(). A second call does nothing. Returns 0. */
UX_API int ux_system_close(void) UX_NOEXCEPT;

/* Sets the display rotation: "RORATE_90" or "RORATE_270", spelled so, exchange the drawing width
 * and height; any other string changes nothing. Call it once, after ux_system_init() and before
 * anything is painted; pages made before keep their size. What lies in `buf` is turned on its way
 * to `fb`, which takes a `buf` of the host's own; texts of widgets are painted into `fb` itself and
 * are not turned, nor are touches. Returns 0. */
UX_API int ux_screen_rorate_init(const char *mode) UX_NOEXCEPT;

/* The current page, or null when `current_page` names none. */
UX_API ux_page *ux_current_page(void) UX_NOEXCEPT;

/* Calls the current page's `show` slot. Returns 0. */
UX_API int ux_screen_show_all(void) UX_NOEXCEPT;

/* Calls the current page's `repaint` slot, then sleeps for 1 second. Returns 0. */
UX_API int ux_screen_repaint(void) UX_NOEXCEPT;

/* Calls the current page's on_leave with `a`, `b`, `c`, makes page `index` current, calls its
 * on_enter and then repaints it, which takes 1 second. The current page is left and entered too.
 * Nothing is marked hidden, each page keeps its focus, and clocks and timers of the page that is
 * left go on. An index without a page is stored and nothing is called or painted. Returns 0. */
UX_API int ux_switch_page(int index, intptr_t a, intptr_t b, intptr_t c) UX_NOEXCEPT;

/* Copies a rectangle (pixels) of `buf` to `fb`, turned when the display is rotated; what lies
 * beyond the right and bottom edge is left out. Returns 0, or -1 when x < 0, y < 0, x > width or y
 * > height. */
UX_API int ux_screen_blit_rect(int x, int y, int w, int h) UX_NOEXCEPT;

/* Runs timers and dispatches events until ux_screen_quit_main_loop() is called: one event per pass,
 * one pass every 10 ms or slower. Returns 0. */
UX_API int ux_screen_main_loop(void) UX_NOEXCEPT;

/* Asks the main loop to end; it does at its next test. May be called from any thread. Returns 0. */
UX_API int ux_screen_quit_main_loop(void) UX_NOEXCEPT;

/* Callback of ux_container_scan() for touches: `rec->obj` is the object visited, `rec->data` the
 * touch event. Calls the object's handler when the point lies inside it; both edges count. Returns
 * 1 when a handler was called, else 0. */
UX_API int touch_position_handler(ux_event *rec) UX_NOEXCEPT;

/* ============================================================================================== */
/* Objects                                                                                        */
/* ============================================================================================== */

/* Does nothing and returns 0: fills slots that must not be null. */
UX_API int ux_obj_noop(ux_obj *obj) UX_NOEXCEPT;

/* Marks the object hidden and paints nothing. Returns 0. */
UX_API int ux_obj_hide(ux_obj *obj) UX_NOEXCEPT;

/* Calls the object's `set_focus` slot, which must not be null, and returns its result. */
UX_API int ux_obj_set_focus(ux_obj *obj) UX_NOEXCEPT;

/* Calls the object's `unset_focus` slot, which must not be null, and returns its result. */
UX_API int ux_obj_unset_focus(ux_obj *obj) UX_NOEXCEPT;

/* Sets UX_FLAG_* bits. Returns 0. */
UX_API int ux_obj_set_flag(ux_obj *obj, uint32_t bits) UX_NOEXCEPT;

/* Clears UX_FLAG_* bits. Returns 0. */
UX_API int ux_obj_unset_flag(ux_obj *obj, uint32_t bits) UX_NOEXCEPT;

/* Returns `status`. */
UX_API int ux_obj_get_status(ux_obj *obj) UX_NOEXCEPT;

/* Stores the whole `status` word and returns `value`. */
UX_API int ux_obj_set_status(ux_obj *obj, uint32_t value) UX_NOEXCEPT;

/* Stores the low 8 bits of `a` in the field `alpha`: 300 becomes 44. No widget looks at it. Returns
 * 0. */
UX_API int ux_obj_set_alpha(ux_obj *obj, uint32_t a) UX_NOEXCEPT;

/* Stores the touch handler and the pointer it is given; both may be null. Returns 0. */
UX_API int ux_obj_set_handler(ux_obj *obj, ux_handler handler, void *data) UX_NOEXCEPT;

/* Stores one normal and one focus colour for all four sides. Returns 0. */
UX_API int ux_obj_set_border_colors(ux_obj *obj, uint32_t normal, uint32_t focus) UX_NOEXCEPT;

/* Stores the default border colours: white, yellow while focused. Returns 0. */
UX_API int ux_obj_set_default_border_color(ux_obj *obj) UX_NOEXCEPT;

/* Stores the colours of the sides named by UX_SIDE_* bits; the others stay. Returns 0. */
UX_API int ux_obj_set_border_color(ux_obj *obj, uint32_t sides, uint32_t normal,
                                   uint32_t focus) UX_NOEXCEPT;

/* Copies the pixels under the object from `buf` into `fg_backup`, allocated here by malloc() when
 * it is null or too small. Pixels outside the screen become 0. Returns 0, or -2 when out of memory.
 */
UX_API int ux_obj_backup_fg(ux_obj *obj) UX_NOEXCEPT;

/* The same into `bg_backup`. A buffer given by the host is left untouched, and 0 returned. */
UX_API int ux_obj_backup_bg(ux_obj *obj) UX_NOEXCEPT;

/* Installs the host's own background copy: width * height pixels of the screen's format, rows
 * packed, from malloc(). A copy of the library's own is freed first. ux_obj_free() frees the
 * buffer. Returns 0. */
UX_API int ux_obj_set_bg_buffer(ux_obj *obj, void *pixels) UX_NOEXCEPT;

/* Moves and resizes the object and drops its background copy (a buffer of the host's is not freed).
 * `fg_backup` stays, though it has the old size. Paints nothing. Returns 0. */
UX_API int ux_obj_set_size(ux_obj *obj, int x, int y, int w, int h) UX_NOEXCEPT;

/* Frees `bg_backup`, whoever gave it, and the record, but no `fg_backup`. Does not unlink it.
 * Returns 0. */
UX_API int ux_obj_free(ux_obj *obj) UX_NOEXCEPT;

/* Makes the object's rectangle visible: ux_screen_blit_rect(). Returns its result. */
UX_API int ux_object_update(ux_obj *obj) UX_NOEXCEPT;

/* Writes the line "ux_obj_repaint" to standard output, then calls the `show` slot of a visible
 * object, the `hide` slot of a hidden one. Returns the slot's result. */
UX_API int ux_obj_repaint(ux_obj *obj) UX_NOEXCEPT;

/* ============================================================================================== */
/* Pages                                                                                          */
/* ============================================================================================== */

/* Makes a page of the screen's present size, visible but not current. Returns its index, or -1 when
 * out of memory or when there are UX_MAX_PAGES already. Pages live until the process ends. */
UX_API int ux_page_new(void) UX_NOEXCEPT;

/* Registers and fills a zeroed page record of the host's, which must stay. Returns its index or -1.
 */
UX_API int ux_page_init(ux_page *page) UX_NOEXCEPT;

/* Sets the handler of one key code, null for none. A key outside 0..255 is ignored. Returns 0. */
UX_API int ux_page_set_key_handler(ux_page *page, int key, ux_handler handler) UX_NOEXCEPT;

/* Sets the handler of keys that have none of their own, null for none. Returns 0. */
UX_API int ux_page_set_default_key_handler(ux_page *page, ux_handler handler) UX_NOEXCEPT;

/* Clears `buf` and `fb` to 0. Paints no object and marks nothing hidden. Returns 0. */
UX_API int ux_page_clean(void) UX_NOEXCEPT;

/* ============================================================================================== */
/* Containers                                                                                     */
/* ============================================================================================== */

/* Makes a container and links it into `parent`, which may be null. Coordinates are screen pixels.
 * Returns null when out of memory. */
UX_API ux_container *ux_container_new(ux_container *parent, int x, int y, int w, int h) UX_NOEXCEPT;

/* Links `obj` in as the first child and gives it the container's page. Returns 0, or -1 for null.
 */
UX_API int ux_container_add_obj(ux_container *container, ux_obj *obj) UX_NOEXCEPT;

/* Unlinks a direct child and releases it through its `free` slot; its pixels stay on the screen. If
 * it had its page's focus, the page has none afterwards. `a` and `b` are not used. Returns 0, or -1
 * when `obj` is null or not a direct child. */
UX_API int ux_container_del_obj(ux_container *container, ux_obj *obj, intptr_t a,
                                intptr_t b) UX_NOEXCEPT;

/* Visits the tree depth first, newest child first: every leaf, and a container itself only when the
 * results of all its descendants add up to 0. The callback's event holds the object in `obj` and
 * `arg` in `data`; it may delete objects. Returns the sum of the results, 0 for a null callback. */
UX_API int ux_container_scan(ux_container *container, ux_handler callback, void *arg) UX_NOEXCEPT;

/* Releases every child as ux_container_del_obj() does, then the container. Children of child
 * containers are not released. Their page has no focus afterwards if it was one of them. Does not
 * unlink it; the `free` slot of a container is ux_obj_free() and releases no child. Returns 0. */
UX_API int ux_container_free(ux_obj *container) UX_NOEXCEPT;

/* Paints background (colour, saved copy or picture) and border only. The picture fills the inside
 * of the border and is loaded at every show, but once only with UX_FLAG_SAVE_BG. Returns 0. */
UX_API int ux_container_show_self(ux_container *container) UX_NOEXCEPT;

/* Paints the container, then calls every child's `show` slot, newest first. Returns 0. */
UX_API int ux_container_show(ux_obj *container) UX_NOEXCEPT;

/* Marks the container hidden. Nothing is painted and children keep their state. Returns 0. */
UX_API int ux_container_hide_self(ux_container *container) UX_NOEXCEPT;

/* The same as a slot. */
UX_API int ux_container_hide(ux_obj *container) UX_NOEXCEPT;

/* Paints a visible container and calls every child's `repaint` slot; does nothing more for a hidden
 * one. Returns 0. */
UX_API int ux_container_repaint(ux_obj *container) UX_NOEXCEPT;

/* Gives the focus to every child in turn, also those that take over keys, then to the container,
 * which stays the page's focus. Returns 0. */
UX_API int ux_container_set_focus(ux_obj *container) UX_NOEXCEPT;

/* Takes the focus from every child, then from the container; the page's `focus` is left. Returns 0.
 */
UX_API int ux_container_unset_focus(ux_obj *container) UX_NOEXCEPT;

/* Stores the border width in pixels. Returns 0. */
UX_API int ux_container_set_border(ux_container *container, int n) UX_NOEXCEPT;

/* Stores a background colour, empties the picture path, drops the background copy. Returns 0. */
UX_API int ux_container_set_bg_color(ux_container *container, uint32_t color) UX_NOEXCEPT;

/* Copies a picture path (at most 255 bytes), sets the colour to 0, drops the background copy. Null
 * only empties the path. Returns 0. */
UX_API int ux_container_set_bg_image(ux_container *container, const char *path) UX_NOEXCEPT;

/* ============================================================================================== */
/* Events                                                                                         */
/* ============================================================================================== */

/* Makes the pipe /tmp/event, starts the event thread and the bridge from the message queue, and
 * leaves the process's file creation mask at 0. Called by the main loop. Returns 0. */
UX_API int ux_event_init(void) UX_NOEXCEPT;

/* Stops the bridge and the event thread. Events left in the ring stay. Returns 0. */
UX_API int ux_event_close(void) UX_NOEXCEPT;

/* Appends a copy of all six fields to the ring of 1023 events. Only one thread may do so. Returns
 * 0, or -1 when the ring is full. */
UX_API int ux_event_put(const ux_event *ev) UX_NOEXCEPT;

/* Takes the oldest event out into `ev`. Only one thread at a time may do so: the main loop, or,
 * while a handler runs and the loop stands still, a thread that the handler starts and waits for.
 * Returns 0, or -2 when there is none. */
UX_API int ux_event_get(ux_event *ev) UX_NOEXCEPT;

/* The event thread: reads messages from the pipe into the ring until ux_event_close(). */
UX_API void *event_task(void *unused) UX_NOEXCEPT;

/* Opens the message queue of ftok("/tmp", 40), made with mode 0660 if there is none, and starts the
 * bridge thread. Returns 0, or -1 on any failure. */
UX_API int uxEvent_Init_em862x(void) UX_NOEXCEPT;

/* Stops the bridge thread and waits for its end. Returns 0. */
UX_API int uxEvent_Close_em862x(void) UX_NOEXCEPT;

/* The bridge thread: turns each message of the queue into a text for the pipe. */
UX_API void *uxEvent_task_em862x(void *unused) UX_NOEXCEPT;

/* Writes one message to the pipe /tmp/event, waiting until a reader has it open. Nothing happens
 * when there is no pipe, or once the event thread has ended. Returns 0. */
UX_API int send_pipe_event(const char *text) UX_NOEXCEPT;

/* ============================================================================================== */
/* Timers                                                                                         */
/* ============================================================================================== */

/* A one-shot timer due some microseconds after it was set. */
typedef struct ux_timeout {
    int32_t id;              /* what ux_set_timeout() returned */
    int32_t delay;           /* microseconds, as passed */
    ux_handler callback;     /* called when due */
    void *data;              /* the host's pointer */
    int32_t start_sec;       /* time of setting, seconds */
    int32_t start_usec;      /* time of setting, microseconds */
    int32_t due_sec;         /* due time, seconds */
    int32_t due_usec;        /* due time, microseconds 0..999,999 */
    struct ux_timeout *next; /* next older one */
} ux_timeout;

/* A one-shot timer due at a calendar date and time. */
typedef struct ux_atimer {
    int32_t id;             /* what ux_set_atimer() returned */
    ux_handler callback;    /* called when due */
    void *data;             /* the host's pointer */
    time_t created;         /* time of setting */
    time_t due;             /* due time */
    struct ux_atimer *next; /* next older one */
} ux_atimer;

extern UX_API ux_timeout *ux_timeout_list; /* pending timeouts, newest first */
extern UX_API int ux_timeout_count;        /* timeouts ever set: the next id */
extern UX_API ux_atimer *ux_atimer_list;   /* pending alarms, newest first */
extern UX_API int ux_atimer_count;         /* alarms ever set: the next id */

/* Timers fire on the main loop's thread and while it runs; no other thread may set or delete one. A
 * callback may set and delete timers. */

/* Calls `callback` once, `delay_us` microseconds from now or a little later (the main loop looks
 * about every 10 ms), with an event of type UX_EVENT_TIMEOUT and `data`. A delay below 0 is due at
 * once, and one above 2,146,483,648 may be. Returns the id, from 0 up, or -2 when out of memory. */
UX_API int ux_set_timeout(int delay_us, ux_handler callback, void *data) UX_NOEXCEPT;

/* Removes a timeout; an unknown id does nothing. */
UX_API void ux_delete_timeout(int id) UX_NOEXCEPT;

/* Fires all due timeouts, newest first. Called by the main loop. */
UX_API void ux_check_timeout(void) UX_NOEXCEPT;

/* Calls `callback` once at the local time `when`, to the second, with an event of type
 * UX_EVENT_ATIMER and `data`. mktime() reads and normalises `when`, tm_isdst included; what it can
 * not tell is due at once. Returns the id, counted apart from the timeouts', or -2 when out of
 * memory. */
UX_API int ux_set_atimer(struct tm *when, ux_handler callback, void *data) UX_NOEXCEPT;

/* Removes an alarm; an unknown id does nothing. */
UX_API void ux_delete_atimer(int id) UX_NOEXCEPT;

/* Fires all due alarms, newest first. Called by the main loop. */
UX_API void ux_check_atimer(void) UX_NOEXCEPT;

/* ============================================================================================== */
/* Drawing                                                                                        */
/* ============================================================================================== */

/* All three draw into `buf` in screen pixels, both end points included, store the colour as it is
 * (0 too), keep inside the screen's memory and return 0. A run beyond the right edge goes on in the
 * next row, as the memory does. */

/* A line of single pixels. */
UX_API int uxDrawLine(int x0, int y0, int x1, int y1, uint32_t color) UX_NOEXCEPT;

/* A filled box; empty when x1 < x0 or y1 < y0. */
UX_API int uxDrawBox(int x0, int y0, int x1, int y1, uint32_t color) UX_NOEXCEPT;

/* The outline of a box: top, bottom, left, right line. */
UX_API int uxDrawRect(int x0, int y0, int x1, int y1, uint32_t color) UX_NOEXCEPT;

/* ============================================================================================== */
/* Pixel formats and conversion                                                                   */
/* ============================================================================================== */

/* Conversions between memories of the caller's; the screen is not touched and nothing is allocated.
 * Layouts of pixels:
 *   ARGB8888   a word: alpha 31-24, red 23-16, green 15-8, blue 7-0; bytes B, G, R, A
 *   RGB565     a half-word: red 15-11, green 10-5, blue 4-0
 *   RGB888     bytes R, G, B
 *   YUV 4:4:4  bytes Y, U, V
 *   UYVY       bytes U, Y0, V, Y1 for two pixels, which share U and V (YUV 4:2:2)
 * YUV is video range: Y 16 is black, Y 235 white; U and V of 128 are colourless. With c = Y - 16,
 * d = U - 128, e = V - 128 and base = 298 * c + 128
 *   red   = (base + 409 * e) >> 8
 *   green = (base - 100 * d - 208 * e) >> 8
 *   blue  = (base + 516 * d) >> 8
 * each clamped to 0..255. Pointers must not be null. Rows may start at any byte. Where source and
 * destination overlap, pixels are read and written in order, from the top left. */

/* Converts one pixel, y, u and v 0..255, into RGB565: the low bits of the colours are cut. `unused`
 * changes nothing. Returns the pixel. */
UX_API uint16_t yuv444_rgb565(uint8_t y, uint8_t u, uint8_t v, uint8_t unused) UX_NOEXCEPT;

/* Converts one pixel, y, u and v 0..255, into `*r`, `*g` and `*b`, one byte each. */
UX_API void yuv444_rgb888(uint8_t y, uint8_t u, uint8_t v, uint8_t *r, uint8_t *g,
                          uint8_t *b) UX_NOEXCEPT;

/* Spreads one row of UYVY to YUV 4:4:4. Only whole pairs are converted: of an odd `width`, in
 * pixels, the last one is left out, and a width below 2 writes nothing. `src` has 2 bytes per
 * pixel, `dst` takes 3. */
UX_API void yuv422_yuv444(const uint8_t *src, uint8_t *dst, int width) UX_NOEXCEPT;

/* Converts a rectangle of width x height pixels of UYVY into RGB565. The pitches are the bytes from
 * one row's start to the next one's, and may be negative. An odd width converts one pixel more, the
 * other one of the last pair: every row of `src` must hold, and of `dst` have room for, an even
 * number of pixels. A width or height below 1 does nothing. `unused` changes nothing. */
UX_API void yuv422_rgb565(const uint8_t *src, uint16_t *dst, int width, int height, int src_pitch,
                          int dst_pitch, uint8_t unused) UX_NOEXCEPT;

/* The same into RGB888. */
UX_API void yuv422_rgb888(const uint8_t *src, uint8_t *dst, int width, int height, int src_pitch,
                          int dst_pitch) UX_NOEXCEPT;

/* Resamples a row of `src_width` 32-bit pixels to `dst_width` ones, nearest neighbour: output pixel
 * k is source pixel k * src_width / dst_width, rounded down. A width below 1 does nothing. */
UX_API void ux_scale_line(const uint32_t *src, uint32_t *dst, int src_width,
                          int dst_width) UX_NOEXCEPT;

/* Resamples an RGB565 image; sizes in pixels, pitches in bytes as above. Output row k is source row
 * k * src_height / dst_height, rounded down. Across, pixels move in pairs: output pair k is source
 * pair k * (src_width / 2) / (dst_width / 2), so an odd last source column is never used. An odd
 * last output column is written only in rows that repeat the source row of the row above: they are
 * copied from that row, all `dst_width` pixels. Nothing is done when a height is below 1 or a width
 * below 2. */
UX_API void ux_scale_image(const uint16_t *src, int src_width, int src_height, int src_pitch,
                           uint16_t *dst, int dst_width, int dst_height, int dst_pitch) UX_NOEXCEPT;

/* ============================================================================================== */
/* Pixel blocks                                                                                   */
/* ============================================================================================== */

/* Decodes the picture `path`, a file or an http:// address, into a new block of width x height
 * 32-bit pixels, whatever the screen has, scaled to that size by nearest neighbour; pixels without
 * alpha of their own get 255. The last four characters of the name alone tell the kind, in any
 * case: ".jpg" and "jpeg" are JPEG, ".png" is PNG, all others are refused. The caller releases the
 * block with free(). Null when it can not be read or there is no memory, with a message on standard
 * output; a picture that breaks off is there as far as it came. A width or height of 0 or less
 * gives a block without pixels. */
UX_API void *ux_load_image(const char *path, int width, int height) UX_NOEXCEPT;

/* The same with `alpha` for pixels without alpha of their own. */
UX_API void *ux_load_image_transparent(const char *path, int width, int height,
                                       uint8_t alpha) UX_NOEXCEPT;

/* Draws a block of width x height pixels in the screen's format, rows packed, into `buf` at (x, y),
 * cut at the right and bottom edge; it stays the caller's. On a 32-bit screen each pixel is blended
 * by its alpha a: screen = (screen * (256 - a) + source * a) >> 8 for blue, green and red, the
 * larger alpha stays; a = 0 leaves the pixel alone. On an RGB565 screen rows are copied, which
 * shows no picture that ux_load_image() gave, and without an effect. `effect` 0 draws at once; 1 to
 * 8 reveal the block step by step with pauses of 3 ms, until it is whole or the host sets the
 * environment variable "STATUS" to "gotoMenu" or "ShowMSG" to "YES", upon which "PHOTO_PLAYING" is
 * set to "NO"; any other draws nothing. docs/effects.md shows each half way, and the order of
 * effect 8: a clockwise spiral of tiles. A block that does not fit on the screen must not be drawn
 * with effects 3 to 6. Returns 0, or -1 for a null block, a block outside the screen or an unknown
 * pixel format. */
UX_API int ux_draw_image_buff(const void *block, int x, int y, int width, int height,
                              int effect) UX_NOEXCEPT;

/* Loads a picture, draws it at (x, y) and releases it, as ux_load_image() and ux_draw_image_buff()
 * do. `mode` 0 to 8 is the effect; 255 draws it at once with alpha 128 for pixels without alpha of
 * their own; 256 and above is the effect mode - 255; any other draws nothing. Nothing happens when
 * (x, y) is outside the screen. Returns 0, also when the picture can not be read. */
UX_API int ux_draw_image(const char *path, int x, int y, int width, int height,
                         int mode) UX_NOEXCEPT;

/* The same with `alpha` for pixels without alpha of their own, 0 meaning 128. Returns 0. */
UX_API int ux_draw_image_transparent(const char *path, int x, int y, int width, int height,
                                     int effect, uint8_t alpha) UX_NOEXCEPT;

/* Fills a rectangle of the host's alpha plane, which has one byte for two pixels of a row; x and
 * width are taken as even. Nothing happens without a plane. */
UX_API void ux_set_alpha(int x, int y, int width, int height, uint8_t value) UX_NOEXCEPT;

/* ============================================================================================== */
/* Page backgrounds                                                                               */
/* ============================================================================================== */

/* All three paint into `buf`, blending as ux_draw_image_buff() does, and update nothing. The
 * picture is loaded anew at every call; it is addressed with the screen's row length, so
 * image_width must be the screen's. (x, y) only has to lie on the screen. */

/* Blends `color`, by its alpha, over a rectangle of a 32-bit screen. Returns 0, or -1 when the
 * screen has no size. */
UX_API int ux_update_BGcolor(int x, int y, int width, int height, uint32_t color) UX_NOEXCEPT;

/* Paints the part of the picture that lies inside the rectangle, on a 32-bit screen. Returns 0. */
UX_API int ux_update_BGimage(const char *path, int x, int y, int image_width, int image_height,
                             int rect_x, int rect_y, int rect_width, int rect_height) UX_NOEXCEPT;

/* Paints the whole picture but for the rectangle; an RGB565 screen gets all of it. Returns 0. */
UX_API int ux_draw_BGimage(const char *path, int x, int y, int image_width, int image_height,
                           int rect_x, int rect_y, int rect_width, int rect_height) UX_NOEXCEPT;

/* ============================================================================================== */
/* Fonts and text                                                                                 */
/* ============================================================================================== */

/* Opens the one font on the graphics engine. Called by ux_system_init(). Returns the renderer's
 * result; failures of the engine end the process with exit status 1. */
UX_API int ux_open_font(void) UX_NOEXCEPT;

/* Closes the font. Called by ux_system_close(). Returns 0. */
UX_API int ux_close_font(void) UX_NOEXCEPT;

/* Measures the cell of character code `ch` at `size` pixels: *w and *h receive its width and height
 * in pixels. The width is the advance. Codes outside 32..126 are measured as '?'. Returns 0, or -1
 * with a message on standard output when the font or the engine cannot tell; then *w and *h are
 * untouched. */
UX_API int ux_get_char_size(uint32_t ch, int size, uint32_t *w, uint32_t *h) UX_NOEXCEPT;

/* Measures zero-terminated 8-bit text, each byte a character: *w receives the sum of the cell
 * widths, *h the largest cell height, both 0 for an empty or null text. Returns as
 * ux_get_char_size(). */
UX_API int ux_get_string_size(const char *str, int size, uint32_t *w, uint32_t *h) UX_NOEXCEPT;

/* Renders zero-terminated 8-bit text at `size` pixels into a new block of *w x *h pixels, rows top
 * first and packed, each pixel `bpp` bytes (1, 2 or 4). A pixel is `fg` for ink and `bg` for the
 * rest of a cell, both cut to the pixel's width, and 0 below a cell that is less high than the
 * block. Returns the block, which the caller releases with free(); null on failure, with a message
 * on standard output unless `bpp` is none of the three. Then *w and *h are untouched. */
UX_API void *ux_get_string_buffer(const char *str, int size, uint32_t fg, uint32_t bg, uint32_t bpp,
                                  uint32_t *w, uint32_t *h) UX_NOEXCEPT;

/* Draws zero-terminated 8-bit text into `buf` in the box (x, y, w, h). `size` is in pixels; 0
 * stands for the largest size whose space is not higher than h. `fg` and `bg` are pixels of the
 * screen as they are; value 0 is transparent. `bg` fills the cells of the text, not the box.
 *
 * `align` is a column, 0 left, 1 centre, 2 right, plus 3 times a row, 0 top, 1 middle, 2 bottom;
 * anything else is left and top. A text that is larger than the box is cropped on the other side,
 * on both when centred. What lies beyond the right and the bottom edge of the screen is cut; a row
 * that would start left of the screen is not drawn, and nothing is when the text would start above
 * it. Returns 0, or -1 when the text cannot be measured or rendered. */
UX_API int ux_draw_string(const char *text, int size, uint32_t fg, uint32_t bg, int x, int y, int w,
                          int h, int align) UX_NOEXCEPT;

/* The renderer behind ux_open_font(). `path` is ignored: the font is /orbo/SDK/Vera.ttf. Returns 0.
 */
UX_API int ux_open_font_em862x(const char *path) UX_NOEXCEPT;

/* The renderer behind ux_close_font(). Returns 0. */
UX_API int ux_close_font_em862x(void) UX_NOEXCEPT;

/* The renderer behind ux_get_char_size(). */
UX_API int ux_get_char_size_em862x(uint32_t ch, int size, uint32_t *w, uint32_t *h) UX_NOEXCEPT;

/* The renderer behind ux_get_string_size(). */
UX_API int ux_get_string_size_em862x(const char *str, int size, uint32_t *w,
                                     uint32_t *h) UX_NOEXCEPT;

/* The renderer behind ux_get_string_buffer(). */
UX_API void *ux_get_string_buffer_em862x(const char *str, int size, uint32_t fg, uint32_t bg,
                                         uint32_t bpp, uint32_t *w, uint32_t *h) UX_NOEXCEPT;

/* Decodes UTF-8 into pairs of words, (code >> 8, code), for the engine's use. `out` is the caller's
 * zeroed array of 4,096 words; decoding stops when it is full. Bytes that cannot start a character
 * leave their pair untouched. Returns the number of words, 0 for null or empty. */
UX_API int UTF8to16(const char *str, uint32_t *out) UX_NOEXCEPT;

/* Stores `color` at (x, y) of a canvas of 32-bit pixels, `width` pixels wide; no bounds are known.
 * On a screen of another pixel width it prints "Unknown bpp : %d\n" on standard error instead. */
UX_API void set_pixel_bmp(uint8_t *canvas, int width, int x, int y, uint32_t color) UX_NOEXCEPT;

/* Draws UTF-8 text in the box (x, y, w, h) of `fb`, glyphs size_x wide and size_y high, in `fg`.
 * `bg` is the transparent key: nothing shows when fg == bg. A reference for hosts: its line feeds
 * follow byte positions, not characters. Returns 0. */
UX_API int DrawFontToBitmapTEST(const char *text, uint32_t fg, uint32_t bg, int x, int y, int w,
                                int h, int size_x, int size_y) UX_NOEXCEPT;

/* Draws text in the box (x, y, w, h) of `fb`. Mode 1: `text` is 16-bit units ended by a zero unit,
 * at most 127; units 13 and 10 break the line, lines wrap at the glyph that crosses the right edge,
 * and the text is cut at the last whole line of size_y pixels. `fg` is the ink; `bg` the
 * transparent key: nothing shows when fg == bg. `step` is for the ticker. Modes 2 and 4 are the
 * ticker, see below; any other mode does nothing. Returns 0. */
UX_API int uxFontDrawing(const void *text, uint32_t fg, uint32_t bg, int x, int y, int w, int h,
                         int size_x, int size_y, int step, int mode) UX_NOEXCEPT;

/* Replaces the box (x, y, w, h) of `fb` by the picture `image_path`, loaded as ux_load_image() does
 * and blended over 0, with `text` in `fg` upon it. `text` is as in mode 1 above, but only unit 10
 * breaks a line. Where the picture has alpha 0, or can not be loaded, pixels become 0; on a screen
 * without 32-bit pixels all do. An empty, null or endless text leaves the box alone. Returns 0. */
UX_API int uxFontBoxDrawing(const void *text, uint32_t fg, const char *image_path, int x, int y,
                            int w, int h, int size_x, int size_y) UX_NOEXCEPT;

/* Converts zero-terminated UTF-8 into at most `capacity` 16-bit units, the zero unit included
 * (nothing is written when capacity is 0). Characters above U+FFFF become surrogate pairs; invalid
 * bytes become U+FFFD. Returns the units that the whole text needs, without the zero unit. */
UX_API size_t ux_text_from_utf8(char16_t *out, size_t capacity, const char *utf8) UX_NOEXCEPT;

/* ============================================================================================== */
/* Ticker                                                                                         */
/* ============================================================================================== */

/* uxFontDrawing() with mode 2 or 4 shows the lines of the file named `text` (a path, bytes) in the
 * box (x, y, w, h) of `fb`, one after the other and again from the first, until the host stops it.
 * The size of the text is h; size_x and size_y are not looked at. `fg` is the ink; elsewhere the
 * screen shines through as it was before the first frame. `bg` equal to `fg` shows nothing.
 *
 * - Mode 2 scrolls up: the line, wrapped at w, each row h high with its baseline at h * 4 / 5,
 * comes in from below and leaves at the top, `step` rows per frame of 5 ms; half a second after its
 * end the next one follows. A carriage return breaks the line.
 * - Mode 4 scrolls left: the line comes in from the right and leaves at the left, 4 * `step`
 * columns per frame of 50 ms. A carriage return is a glyph as any other.
 *
 * A `step` of 0 or less never moves. The file is UTF-8, see UTF8to16(); of a line, the first 4,095
 * bytes and 2,048 characters are shown, up to a zero byte. The file is opened anew for every pass,
 * so that a host gives it new lines best by rename(2). As long as it is missing, empty or not a
 * regular file, it is tried again every 10 ms.
 *
 * After every frame the ticker reads the environment. It stops when "STATUS" is "gotoMenu",
 * "ShowMSG" is "YES" or "TICKER_STATE" is "STOP_TICKER": it prints "start clear screen" on standard
 * output, gives the box back what it showed before, sets "TICKER_PLAYING" to "NO" and returns 0.
 * Between lines, and while there is no line to show, nothing stops it. A null path is refused with
 * -1. Without memory it sets "TICKER_PLAYING" to "NO" and returns -2.
 *
 * Threads. A ticker returns only when it is stopped, so it runs on a thread of its own beside the
 * main loop; several may run. Meanwhile nothing else may paint its box, and neither main_screen nor
 * its memory may change. It is stopped as told here and never cancelled.
 *
 * Sharing the environment. C libraries do not promise that getenv(3) and setenv(3) may run at the
 * same time in two threads: setting a variable that does not exist yet moves the list that the
 * other thread is reading. These rules leave no race:
 *
 * 1. Before the first thread is started, and ux_screen_main_loop() starts two, set all four
 *    variables, and "FontSize", with setenv(3): to the longest value each will have. A flag is set
 *    to a value that is one byte away from the one that stops, "-ES" for "YES". Keep the pointer
 *    that getenv(3) gives for each.
 * 2. From then on nobody calls setenv(3), putenv(3) or unsetenv(3). The host raises or lowers a
 * flag by storing that one byte through the pointer, as an atomic store (C11: through a volatile
 *    _Atomic(char) pointer; C++20: std::atomic_ref<char>). The ticker loads every byte atomically
 *    and so sees the old value or the new one.
 * 3. The ticker's own setenv(3) of "TICKER_PLAYING" is left. Whoever raises the flag waits for the
 *    ticker's end (pthread_join(3)) before anything that reads the environment: painting texts
 * does. That is a frame away, or half a second between lines of mode 2, if the file holds a line at
 *    all times. The pointer to "TICKER_PLAYING" from before is stale afterwards: ask getenv(3)
 *    again, now that nobody sets.
 *    A ticker that ends without being waited for replaces the value in place of the old one; with
 *    the GNU C library the list stays where it is and old values stay readable. */

/* Scrolls the UTF-8 `text` once to the left through the box, like a line in mode 4, and returns 0;
 * further arguments are ignored. Prints on standard output: "str_len = %d" with the words decoded;
 * after every frame "uxWidget STATUS = %s" and "uxWidget ShowMSG = %s" with the present values;
 * "TICKER FINISH" when the text has passed. Only "STATUS" = "gotoMenu" stops it, as told above.
 * Without memory it returns -2. */
UX_API int DrawFontToBitmapMoveLeftFileTEST(const char *text, uint32_t fg, uint32_t bg, int x,
                                            int y, int w, int h, int step, ...) UX_NOEXCEPT;

/* ============================================================================================== */
/* Text label                                                                                     */
/* ============================================================================================== */

/* A passive text. It takes no focus, has no selected state and paints no border. The size of the
 * text is the environment variable "FontSize" in pixels, read at every paint; font_size when it is
 * unset. */
typedef struct ux_text_label {
    ux_obj obj;                   /* the header */
    char16_t text[UX_TEXT_UNITS]; /* the text, ended by a zero unit */
    uint32_t fg_color;            /* text; default grey */
    uint32_t bg_color;            /* background; 0 = the saved one, if any; default black */
    int32_t font_size;            /* pixels; default 16 */
    int32_t style;                /* stored only; default 4 */
} ux_text_label;

/* Makes a label with a copy of `text` (null = empty) and links it into `parent`, which may be null.
 * Returns null when out of memory. */
UX_API ux_text_label *ux_text_label_new(ux_container *parent, int x, int y, int w, int h,
                                        const char16_t *text) UX_NOEXCEPT;

/* Copies `text` up to its zero unit; null empties it. More than 127 units are cut in the middle of
 * the 128th, and such a text is not drawn. Returns 0. */
UX_API int ux_text_label_set_text(ux_text_label *label, const char16_t *text) UX_NOEXCEPT;

/* Stores the text colour. Returns 0. */
UX_API int ux_text_label_set_fg_color(ux_text_label *label, uint32_t color) UX_NOEXCEPT;

/* Stores the background colour. Returns 0. */
UX_API int ux_text_label_set_bg_color(ux_text_label *label, uint32_t color) UX_NOEXCEPT;

/* Returns the background colour. */
UX_API uint32_t ux_text_label_get_bg_color(const ux_text_label *label) UX_NOEXCEPT;

/* Stores the font size in pixels, used while "FontSize" is unset; a null label is ignored. Returns
 * 0. */
UX_API int ux_text_label_set_font_size(ux_text_label *label, int n) UX_NOEXCEPT;

/* Does nothing: the font is one for all. Returns 0. */
UX_API int ux_text_label_set_font(ux_text_label *label, ...) UX_NOEXCEPT;

/* Stores the style. Returns 0. */
UX_API int ux_text_label_set_style(ux_text_label *label, int s) UX_NOEXCEPT;

/* ux_obj_set_size() of the label. Returns 0. */
UX_API int ux_text_label_set_size(ux_text_label *label, int x, int y, int w, int h) UX_NOEXCEPT;

/* Marks the label visible and, on the current page, paints it. Returns 0. */
UX_API int ux_text_label_show(ux_obj *label) UX_NOEXCEPT;

/* Marks the label hidden; its pixels stay. Returns 0. */
UX_API int ux_text_label_hide(ux_obj *label) UX_NOEXCEPT;

/* Shows a visible label, hides a hidden one. Returns 0. */
UX_API int ux_text_label_repaint(ux_obj *label) UX_NOEXCEPT;

/* ============================================================================================== */
/* Text button                                                                                    */
/* ============================================================================================== */

/* A text inside a border that can have the focus and be selected; each of the four states has its
 * own colours, and every change of state shows it, a hidden one too. The screen under it is saved
 * once, before its first paint in which any of the four backgrounds is 0, and again only after
 * ux_text_button_set_size(). Size of the text as told for the label. */
typedef struct ux_text_button {
    ux_obj obj;                     /* the header */
    char16_t text[UX_TEXT_UNITS];   /* the text, ended by a zero unit */
    uint32_t fg_color;              /* text, normal; default grey */
    uint32_t bg_color;              /* background, normal; 0 = the saved one; default black */
    uint32_t focus_fg_color;        /* text, focused; default grey */
    uint32_t focus_bg_color;        /* background, focused; default black */
    uint32_t select_fg_color;       /* text, selected; default red */
    uint32_t select_bg_color;       /* background, selected; default black */
    uint32_t select_focus_fg_color; /* text, selected and focused; default red */
    uint32_t select_focus_bg_color; /* background, selected and focused; default black */
    int32_t font_size;              /* pixels; default 16 */
    int32_t style;                  /* stored only; default 4 */
} ux_text_button;

/* Makes a button with a copy of `text` (null = empty) and links it into `parent`, which may be
 * null. Returns null when out of memory. */
UX_API ux_text_button *ux_text_button_new(ux_container *parent, int x, int y, int w, int h,
                                          const char16_t *text) UX_NOEXCEPT;

/* Fills a zeroed record of the host's and links it into `parent`. A record that is not from
 * malloc() must not be freed through its `free` slot. Returns 0. */
UX_API int ux_text_button_init(ux_container *parent, ux_text_button *button, int x, int y, int w,
                               int h, const char16_t *text) UX_NOEXCEPT;

/* Copies `text` up to its zero unit; null empties it. More than 127 units are cut in the middle of
 * the 128th, and such a text is not drawn. Returns 0. */
UX_API int ux_text_button_set_text(ux_text_button *button, const char16_t *text) UX_NOEXCEPT;

/* Stores the text colours of the normal and the focused state. Returns 0. */
UX_API int ux_text_button_set_fg_color(ux_text_button *button, uint32_t normal,
                                       uint32_t focus) UX_NOEXCEPT;

/* Stores the backgrounds of the normal and the focused state. Returns 0. */
UX_API int ux_text_button_set_bg_color(ux_text_button *button, uint32_t normal,
                                       uint32_t focus) UX_NOEXCEPT;

/* Stores the backgrounds of the selected and the selected and focused state. Returns 0. */
UX_API int ux_text_button_set_bg_scolor(ux_text_button *button, uint32_t select,
                                        uint32_t select_focus) UX_NOEXCEPT;

/* Stores the font size in pixels, used while "FontSize" is unset; a null button is ignored. Returns
 * 0. */
UX_API int ux_text_button_set_font_size(ux_text_button *button, int n) UX_NOEXCEPT;

/* Stores the style. Returns 0. */
UX_API int ux_text_button_set_style(ux_text_button *button, int s) UX_NOEXCEPT;

/* Does nothing: the font is one for all. Returns 0. */
UX_API int ux_text_button_set_font(ux_text_button *button, ...) UX_NOEXCEPT;

/* Does nothing: the font is one for all. Returns 0. */
UX_API int ux_text_button_set_sfont(ux_text_button *button, ...) UX_NOEXCEPT;

/* Stores the border width in pixels. Returns 0. */
UX_API int ux_text_button_set_border(ux_text_button *button, int n) UX_NOEXCEPT;

/* Stores the border colours of all four sides, normal and focused. Returns 0. */
UX_API int ux_text_button_set_border_color(ux_text_button *button, uint32_t normal,
                                           uint32_t focus) UX_NOEXCEPT;

/* ux_obj_set_size() of the button. Returns 0. */
UX_API int ux_text_button_set_size(ux_text_button *button, int x, int y, int w, int h) UX_NOEXCEPT;

/* Marks the button visible and, on the current page, paints it. Returns 0. */
UX_API int ux_text_button_show(ux_obj *button) UX_NOEXCEPT;

/* Marks the button hidden and, on the current page, paints the saved background. Returns 0. */
UX_API int ux_text_button_hide(ux_obj *button) UX_NOEXCEPT;

/* Shows a visible button, hides a hidden one. Returns 0. */
UX_API int ux_text_button_repaint(ux_obj *button) UX_NOEXCEPT;

/* Marks the button focused, makes it the page's focus object and shows it. Returns 0. */
UX_API int ux_text_button_set_focus(ux_obj *button) UX_NOEXCEPT;

/* Takes the focused mark away and shows it; it stays the page's focus object. Returns 0. */
UX_API int ux_text_button_unset_focus(ux_obj *button) UX_NOEXCEPT;

/* Marks the button selected and shows it. Returns 0. */
UX_API int ux_text_button_set_select(ux_obj *button) UX_NOEXCEPT;

/* Takes the selected mark away and shows it. Returns 0. */
UX_API int ux_text_button_unset_select(ux_obj *button) UX_NOEXCEPT;

/* ============================================================================================== */
/* Image label                                                                                    */
/* ============================================================================================== */

/* One picture, without background and border: what was there shines through where the picture is
 * transparent, the label's own earlier paint too. The picture is loaded at every show. With
 * UX_FLAG_SAVE_FG, set by the host, it is loaded once, and the face as it then stood on the screen,
 * ground included, is kept and blended again. The label never frees the kept face. */
typedef struct ux_image_label {
    ux_obj obj;                /* the header */
    char image[UX_PATH_BYTES]; /* picture path; empty = nothing to draw */
} ux_image_label;

/* Makes a label with a copy of `path` (null = empty) and links it into `parent`, which may be null.
 * Returns null when out of memory. */
UX_API ux_image_label *ux_image_label_new(ux_container *parent, int x, int y, int w, int h,
                                          const char *path) UX_NOEXCEPT;

/* Copies `path`, at most 255 bytes; null empties it. Another path than before drops the kept face.
 * Returns 0. */
UX_API int ux_image_label_set_image(ux_image_label *label, const char *path) UX_NOEXCEPT;

/* Marks the label visible and, on the current page, paints it. Returns 0. */
UX_API int ux_image_label_show(ux_obj *label) UX_NOEXCEPT;

/* Marks the label hidden; its pixels stay. Returns 0. */
UX_API int ux_image_label_hide(ux_obj *label) UX_NOEXCEPT;

/* Shows a visible label, hides a hidden one. Returns 0. */
UX_API int ux_image_label_repaint(ux_obj *label) UX_NOEXCEPT;

/* ============================================================================================== */
/* Image button                                                                                   */
/* ============================================================================================== */

/* Four pictures, one per state, over the screen saved before the first paint; the picture is loaded
 * at every show. Changes of focus and selection only change the state: the host shows or repaints.
 * A host writes the two selected paths into the record; they start as copies of the others. A state
 * without a path shows the saved screen, in `buf` only. */
typedef struct ux_image_button {
    ux_obj obj;                             /* the header */
    char image[UX_PATH_BYTES];              /* picture, normal; empty = nothing to draw */
    char focus_image[UX_PATH_BYTES];        /* picture, focused */
    char select_image[UX_PATH_BYTES];       /* picture, selected */
    char select_focus_image[UX_PATH_BYTES]; /* picture, selected and focused */
} ux_image_button;

/* Makes a button with copies of the paths (null = empty) and links it into `parent`, which may be
 * null. Returns null when out of memory. */
UX_API ux_image_button *ux_image_button_new(ux_container *parent, int x, int y, int w, int h,
                                            const char *path, const char *focus_path) UX_NOEXCEPT;

/* Copies the paths of the normal and the focused state; null empties one. Returns 0. */
UX_API int ux_image_button_set_image(ux_image_button *button, const char *path,
                                     const char *focus_path) UX_NOEXCEPT;

/* Marks the button visible and, on the current page, paints it. Returns 0. */
UX_API int ux_image_button_show(ux_obj *button) UX_NOEXCEPT;

/* Marks the button hidden; its pixels stay. Returns 0. */
UX_API int ux_image_button_hide(ux_obj *button) UX_NOEXCEPT;

/* Shows a visible button, hides a hidden one. Returns 0. */
UX_API int ux_image_button_repaint(ux_obj *button) UX_NOEXCEPT;

/* Marks the button focused and makes it the page's focus object; paints nothing. Returns 0. */
UX_API int ux_image_button_set_focus(ux_obj *button) UX_NOEXCEPT;

/* Takes the focused mark away; paints nothing. Returns 0. */
UX_API int ux_image_button_unset_focus(ux_obj *button) UX_NOEXCEPT;

/* Marks the button selected; paints nothing. Returns 0. */
UX_API int ux_image_button_set_select(ux_obj *button) UX_NOEXCEPT;

/* Takes the selected mark away; paints nothing. Returns 0. */
UX_API int ux_image_button_unset_select(ux_obj *button) UX_NOEXCEPT;

/* ux_obj_set_size() of the button. Returns 0. */
UX_API int ux_image_button_set_size(ux_image_button *button, int x, int y, int w,
                                    int h) UX_NOEXCEPT;

/* ============================================================================================== */
/* Text field                                                                                     */
/* ============================================================================================== */

/* A line of text typed on a telephone keypad. While it has the focus it takes over its page's
 * handlers of the keys 0 to 9, punctuation, delete and shift. A key types its digit; pressed again
 * within a second it replaces the character by the next letter on the key: key 2 gives 2, a, b, c,
 * A, B, C, and 2 again; punctuation gives . : / _ and the blank. The shift key switches capitals on
 * and off: key 2 then gives 2, A, B, C, and three presses each of which takes a character away. A
 * numeric field takes digits and the point only, one for every press.
 *
 * The 128th character leaves no room for the end of the text: the field then shows nothing and
 * takes no key any more, delete neither. A limit of 126 keeps keys below that.
 *
 * There is one keypad for all fields: keys that are in progress, capitals, and the page's handlers
 * are kept once. Take the focus from one field before the next gets it; handlers that the page had
 * are lost otherwise. Where the page had none, the field's stays and ignores other objects.
 *
 * Where its background is 0 it shows black, not the screen: it is blackened before what lies under
 * it is saved. Size of the text as told for the label. */
typedef struct ux_text_field {
    ux_obj obj;                     /* the header */
    char16_t text[UX_TEXT_UNITS];   /* the content, ended by a zero unit */
    int32_t mask_char;              /* low byte: shown instead of the content; default '*' */
    int32_t password;               /* not 0: the mask is shown; default 0 */
    int32_t limit;                  /* characters that keys may type; default 256 */
    int32_t font_size;              /* pixels; default 16 */
    int32_t style;                  /* stored only; default 3 */
    int32_t input_type;             /* UX_INPUT_*; default UX_INPUT_ALPHANUMERIC */
    uint32_t fg_color;              /* text, normal; default grey */
    uint32_t bg_color;              /* background, normal; 0 = the saved one; default black */
    uint32_t focus_fg_color;        /* text, focused; default grey */
    uint32_t focus_bg_color;        /* background, focused; default black */
    uint32_t select_fg_color;       /* stored only; default grey */
    uint32_t select_bg_color;       /* stored only; default black */
    uint32_t select_focus_fg_color; /* stored only; default grey */
    uint32_t select_focus_bg_color; /* stored only; default black */
} ux_text_field;

/* Makes a field with a copy of `text` (null = empty) and links it into `parent`, which may be null.
 * Returns null when out of memory. */
UX_API ux_text_field *ux_text_field_new(ux_container *parent, int x, int y, int w, int h,
                                        const char16_t *text) UX_NOEXCEPT;

/* Copies `text` up to its zero unit and zeroes the rest of the record's text; of a 128th unit only
 * the low byte is kept. Null zeroes the first two units only. Returns 0. */
UX_API int ux_text_field_set_text(ux_text_field *field, const char16_t *text) UX_NOEXCEPT;

/* Stores `n`, or 255 when it is larger, as the number of characters that the field takes. It takes
 * no key while it holds more. Characters that fill it, and one beyond, are not painted before the
 * next show; keys never reach an odd number n above 1, since the character that fills the field
 * cuts it to (n + 1) / 2 characters. A negative limit refuses every key. Returns 0. */
UX_API int ux_text_field_set_limit(ux_text_field *field, int n) UX_NOEXCEPT;

/* Stores the input type, UX_INPUT_*. The keys change when the field next gets the focus. Returns 0.
 */
UX_API int ux_text_field_set_type(ux_text_field *field, int type) UX_NOEXCEPT;

/* Stores the mask character (a byte) and whether it hides the content. One mask byte is shown for
 * each byte in front of the first zero byte of the content, so plain text of any length shows one
 * mask character. Returns 0, or -1 when the object is no text field. */
UX_API int ux_text_field_set_pw_type(ux_text_field *field, int mask_char, int enabled) UX_NOEXCEPT;

/* Stores the style. Returns 0. */
UX_API int ux_text_field_set_style(ux_text_field *field, int s) UX_NOEXCEPT;

/* Does nothing: the font is one for all. Returns 0. */
UX_API int ux_text_field_set_font(ux_text_field *field, ...) UX_NOEXCEPT;

/* Stores the font size in pixels, used while "FontSize" is unset. Returns 0. */
UX_API int ux_text_field_set_font_size(ux_text_field *field, int n) UX_NOEXCEPT;

/* Stores the text colours of the normal and the focused state. Returns 0. */
UX_API int ux_text_field_set_fg_color(ux_text_field *field, uint32_t normal,
                                      uint32_t focus) UX_NOEXCEPT;

/* Stores the backgrounds of the normal and the focused state. Returns 0. */
UX_API int ux_text_field_set_bg_color(ux_text_field *field, uint32_t normal,
                                      uint32_t focus) UX_NOEXCEPT;

/* Stores the text colours of the selected and the selected and focused state. Returns 0. */
UX_API int ux_text_field_set_fg_scolor(ux_text_field *field, uint32_t select,
                                       uint32_t select_focus) UX_NOEXCEPT;

/* Stores the backgrounds of the selected and the selected and focused state. Returns 0. */
UX_API int ux_text_field_set_bg_scolor(ux_text_field *field, uint32_t select,
                                       uint32_t select_focus) UX_NOEXCEPT;

/* Stores the border width in pixels. Returns 0. */
UX_API int ux_text_field_set_border(ux_text_field *field, int n) UX_NOEXCEPT;

/* ux_obj_set_size() of the field. Returns 0. */
UX_API int ux_text_field_set_size(ux_text_field *field, int x, int y, int w, int h) UX_NOEXCEPT;

/* Marks the field visible and, on the current page, paints it. Returns 0. */
UX_API int ux_text_field_show(ux_obj *field) UX_NOEXCEPT;

/* Marks the field hidden; its pixels stay. Returns 0. */
UX_API int ux_text_field_hide(ux_obj *field) UX_NOEXCEPT;

/* Shows a visible field, hides a hidden one. Returns 0. */
UX_API int ux_text_field_repaint(ux_obj *field) UX_NOEXCEPT;

/* Marks the field focused, makes it its page's focus object and takes over the page's keys; paints
 * nothing. A character in progress is finished, capitals are off. Returns 0. */
UX_API int ux_text_field_set_focus(ux_obj *field) UX_NOEXCEPT;

/* Takes the focused mark away and gives the page its handlers back; paints nothing. It stays the
 * page's focus object. Returns 0. */
UX_API int ux_text_field_unset_focus(ux_obj *field) UX_NOEXCEPT;

/* Marks the field selected; paints nothing. Returns 0. */
UX_API int ux_text_field_set_select(ux_obj *field) UX_NOEXCEPT;

/* Takes the selected mark away; paints nothing. Returns 0. */
UX_API int ux_text_field_unset_select(ux_obj *field) UX_NOEXCEPT;

/* Key handlers that a focused field installs; an `ev->obj` that is no text field is left alone.
 * add_char types the key `ev->value` and shows the field, del_char removes the last character and
 * shows the field, shift_char switches capitals on or off, whatever `ev->obj` is. Return 0. */
UX_API int ux_text_field_add_char(ux_event *ev) UX_NOEXCEPT;
UX_API int ux_text_field_del_char(ux_event *ev) UX_NOEXCEPT;
UX_API int ux_text_field_shift_char(ux_event *ev) UX_NOEXCEPT;

/* Timeout callback that finishes the character in progress: the next key starts a new one. `ev` is
 * not used. Returns 0. */
UX_API int ux_text_field_waitkeytimeout(ux_event *ev) UX_NOEXCEPT;

/* ============================================================================================== */
/* Select box                                                                                     */
/* ============================================================================================== */

typedef struct ux_select_box ux_select_box;

/* What a select box tells a host after a key: the index of the new current item. The result is
 * ignored. The box may be deleted in it. */
typedef int (*ux_select_box_handler)(ux_select_box *box, int index);

/* One text of a select box, which owns it. The items form a ring. */
typedef struct ux_select_item {
    int32_t index;                   /* place in the order of insertion, from 0 */
    char16_t text[UX_TEXT_UNITS];    /* the text, ended by a zero unit */
    struct ux_select_item *previous; /* the item before; of the first one the last */
    struct ux_select_item *next;     /* the item behind; of the last one the first */
} ux_select_item;

/* Shows one text of several between the signs "<" and ">". While it has the focus, the keys left
 * and right of its page step through them, around both ends. The signs are measured by
 * ux_get_char_size() and painted in the size that "FontSize" tells, as the text is. A box shows
 * black where its background is 0, as a text field does. The border lies between the signs. */
struct ux_select_box {
    ux_obj obj;                           /* the header */
    char16_t text[UX_TEXT_UNITS];         /* copy of the current item's text; not painted */
    int32_t font_size;                    /* pixels; default 16 */
    ux_select_item *first;                /* the oldest item, or null */
    ux_select_item *last;                 /* the newest item, or null */
    ux_select_item *current;              /* the item shown, or null */
    int32_t count;                        /* number of items */
    uint32_t fg_color;                    /* text, normal; default grey */
    uint32_t bg_color;                    /* background, normal; 0 = the saved one; default black */
    uint32_t focus_fg_color;              /* text, focused; default grey */
    uint32_t focus_bg_color;              /* background, focused; default black */
    ux_select_box_handler change_handler; /* of steps by key; the host's to write; or null */
};

/* Makes a box without items and links it into `parent`, which may be null. Its `free` slot does not
 * free the items: call ux_select_box_free_items() before. Returns null when out of memory. */
UX_API ux_select_box *ux_select_box_new(ux_container *parent, int x, int y, int w,
                                        int h) UX_NOEXCEPT;

/* Appends an item with a copy of `text` up to its zero unit, at most 128 units (null = empty); the
 * first one becomes current. Returns 0, or -1 when out of memory. */
UX_API int ux_select_box_add_item(ux_select_box *box, const char16_t *text) UX_NOEXCEPT;

/* Overwrites the text of item `index`, of the first one when it is negative; appends an item when
 * there are not so many. Paints nothing and leaves the box's own copy as it is. Returns 0. */
UX_API int ux_select_box_add_items(ux_select_box *box, const char16_t *text, int index) UX_NOEXCEPT;

/* Frees all items. The copy in `text` stays, and is not painted. Returns 0. */
UX_API int ux_select_box_free_items(ux_select_box *box) UX_NOEXCEPT;

/* Returns the current item's index, or -1 when there is none or the object is no select box. */
UX_API int ux_select_box_get_pos(const ux_select_box *box) UX_NOEXCEPT;

/* Makes item `index` current; paints nothing and calls no handler. Returns 0, or -1 when there is
 * no such item, when there are fewer than two items, or when the object is no select box. */
UX_API int ux_select_box_set_pos(ux_select_box *box, int index) UX_NOEXCEPT;

/* Makes the first item with exactly this text current; paints nothing and calls no handler. Returns
 * 0, or -1 when there is none, when there are fewer than two items, when the text is null, or when
 * the object is no select box. */
UX_API int ux_select_box_set_text(ux_select_box *box, const char16_t *text) UX_NOEXCEPT;

/* Stores the text colours of the normal and the focused state. Returns 0. */
UX_API int ux_select_box_set_fg_color(ux_select_box *box, uint32_t normal,
                                      uint32_t focus) UX_NOEXCEPT;

/* Stores the backgrounds of the normal and the focused state. Returns 0. */
UX_API int ux_select_box_set_bg_color(ux_select_box *box, uint32_t normal,
                                      uint32_t focus) UX_NOEXCEPT;

/* Stores the font size in pixels, used while "FontSize" is unset. Returns 0. */
UX_API int ux_select_box_set_font_size(ux_select_box *box, int n) UX_NOEXCEPT;

/* Does nothing: the font is one for all. Returns 0. */
UX_API int ux_select_box_set_font(ux_select_box *box, ...) UX_NOEXCEPT;

/* Marks the box visible and, on the current page, paints it. Returns 0. */
UX_API int ux_select_box_show(ux_obj *box) UX_NOEXCEPT;

/* Marks the box hidden; its pixels stay. Returns 0. */
UX_API int ux_select_box_hide(ux_obj *box) UX_NOEXCEPT;

/* Shows a visible box, hides a hidden one. Returns 0. */
UX_API int ux_select_box_repaint(ux_obj *box) UX_NOEXCEPT;

/* Marks the box focused, makes it its page's focus object and takes over the page's keys left and
 * right; paints nothing. The page's handlers are kept once for all boxes, as told for the text
 * field. Returns 0. */
UX_API int ux_select_box_set_focus(ux_obj *box) UX_NOEXCEPT;

/* Takes the focused mark away and gives the page its handlers back; paints nothing. It stays the
 * page's focus object. Returns 0. */
UX_API int ux_select_box_unset_focus(ux_obj *box) UX_NOEXCEPT;

/* Key handlers that a focused box installs: make the item before or behind current, repaint the box
 * and call its change_handler. An `ev->obj` that is no select box or has fewer than two items is
 * left alone. Return 0. */
UX_API int ux_select_box_key_left(ux_event *ev) UX_NOEXCEPT;
UX_API int ux_select_box_key_right(ux_event *ev) UX_NOEXCEPT;

/* ============================================================================================== */
/* Check box                                                                                      */
/* ============================================================================================== */

/* A square mark, filled when checked, with a caption beside it. It takes the focus but no keys: the
 * host writes `checked` and shows the box. No border is painted. Over a normal background that is
 * not 0 the whole box is filled with the text colour, so that mark and caption do not show. Size of
 * the text as told for the label. */
typedef struct ux_check_box {
    ux_obj obj;                   /* the header */
    char16_t text[UX_TEXT_UNITS]; /* the caption, ended by a zero unit */
    int32_t font_size;            /* pixels; default 16 */
    int32_t checked;              /* the host's to write: not 0 = checked; default 0 */
    uint32_t fg_color;            /* mark and caption, normal; the host's to write; default grey */
    uint32_t bg_color;            /* background, normal; 0 = the saved one; default black */
    uint32_t focus_fg_color;      /* mark and caption, focused; default grey */
    uint32_t focus_bg_color;      /* background, focused; default black */
} ux_check_box;

/* Makes an unchecked box with a copy of `text` (null = empty; more than 127 units are cut in the
 * middle of the 128th and not drawn) and links it into `parent`, which may be null. The mark is as
 * wide as the box is high. Returns null when out of memory. */
UX_API ux_check_box *ux_check_box_new(ux_container *parent, int x, int y, int w, int h,
                                      const char16_t *text) UX_NOEXCEPT;

/* Marks the box visible and, on the current page, paints it. Returns 0. */
UX_API int ux_check_box_show(ux_obj *box) UX_NOEXCEPT;

/* Marks the box hidden; its pixels stay. Returns 0. */
UX_API int ux_check_box_hide(ux_obj *box) UX_NOEXCEPT;

/* Shows a visible box, hides a hidden one. Returns 0. */
UX_API int ux_check_box_repaint(ux_obj *box) UX_NOEXCEPT;

/* Marks the box focused and makes it the page's focus object; paints nothing. Returns 0. */
UX_API int ux_check_box_set_focus(ux_obj *box) UX_NOEXCEPT;

/* Takes the focused mark away; paints nothing. Returns 0. */
UX_API int ux_check_box_unset_focus(ux_obj *box) UX_NOEXCEPT;

/* ============================================================================================== */
/* Slider bar                                                                                     */
/* ============================================================================================== */

/* A thumb on a track between a "<" and a ">" sign: chooses a number. While it has the focus, the
 * left and right keys move the thumb by a step. The track takes what the signs leave; the border
 * runs around the track. Size of the text as told for the label; the room of the signs is that of
 * the largest "<" of the graphics engine's font that is not higher than the bar. */
typedef struct ux_slider_bar ux_slider_bar;

/* What a slider tells a host after a move by key: the new position. The result is ignored. The
 * slider may be deleted in it. */
typedef int (*ux_slider_bar_handler)(ux_slider_bar *slider, int position);

struct ux_slider_bar {
    ux_obj obj;              /* the header */
    int32_t font_size;       /* pixels; default 16 */
    int32_t position;        /* the number chosen; default 0 */
    int32_t minimum;         /* the smallest; default 0 */
    int32_t maximum;         /* the largest; default 100 */
    int32_t step;            /* change per key press; default 10 */
    int32_t show_numbers;    /* the host's to write: not 0 = the bar takes the upper half
                                of the height, minimum, maximum and position are painted
                                below, one over the other; default 0 */
    uint32_t bar_color;      /* track; the host's to write; default orange */
    uint32_t thumb_color;    /* thumb; the host's to write; default blue */
    uint32_t fg_color;       /* signs and numbers, normal; default grey */
    uint32_t bg_color;       /* background, normal; 0 = the saved one; default black */
    uint32_t focus_fg_color; /* signs and numbers, focused; default grey */
    uint32_t focus_bg_color; /* background, focused; default black */
    ux_slider_bar_handler change_handler; /* of moves by key; the host's to write; or null */
};

/* Makes a slider from 0 to 100 and links it into `parent`, which may be null. Returns null when out
 * of memory. */
UX_API ux_slider_bar *ux_slider_bar_new(ux_container *parent, int x, int y, int w,
                                        int h) UX_NOEXCEPT;

/* Fills a record of the host's and links it into `parent`. A record that is not from malloc() must
 * not be freed through its `free` slot. Returns 0. */
UX_API int ux_slider_bar_init(ux_container *parent, ux_slider_bar *slider, int x, int y, int w,
                              int h) UX_NOEXCEPT;

/* Stores the range and moves the position into it. The change handler is not called. Returns 0, or
 * -1 when `max` is not above `min`; then nothing is stored. */
UX_API int ux_slider_bar_set_minmax(ux_slider_bar *slider, int min, int max) UX_NOEXCEPT;

/* Stores the position. The change handler is not called. Returns 0, or -1 when it is out of range.
 */
UX_API int ux_slider_bar_set_pos(ux_slider_bar *slider, int position) UX_NOEXCEPT;

/* Stores the change per key press. The right key stops at the maximum only and the left key at the
 * minimum only, so that a negative step leaves the range at the other end. Returns 0. */
UX_API int ux_slider_bar_set_step(ux_slider_bar *slider, int step) UX_NOEXCEPT;

/* Stores the colours of signs and numbers, normal and focused. Returns 0. */
UX_API int ux_slider_bar_set_fg_color(ux_slider_bar *slider, uint32_t normal,
                                      uint32_t focus) UX_NOEXCEPT;

/* Stores the backgrounds, normal and focused. Returns 0. */
UX_API int ux_slider_bar_set_bg_color(ux_slider_bar *slider, uint32_t normal,
                                      uint32_t focus) UX_NOEXCEPT;

/* Stores the border width in pixels. Returns 0. */
UX_API int ux_slider_bar_set_border(ux_slider_bar *slider, int n) UX_NOEXCEPT;

/* ux_obj_set_size() of the slider. Returns 0. */
UX_API int ux_slider_bar_set_size(ux_slider_bar *slider, int x, int y, int w, int h) UX_NOEXCEPT;

/* Marks the slider visible and, on the current page, paints it. Returns 0. */
UX_API int ux_slider_bar_show(ux_obj *slider) UX_NOEXCEPT;

/* Marks the slider hidden; its pixels stay. Returns 0. */
UX_API int ux_slider_bar_hide(ux_obj *slider) UX_NOEXCEPT;

/* Shows a visible slider, hides a hidden one. Returns 0. */
UX_API int ux_slider_bar_repaint(ux_obj *slider) UX_NOEXCEPT;

/* Marks the slider focused, makes it the page's focus object and takes over the page's left and
 * right keys; paints nothing. All sliders share one copy of the handlers replaced: take the focus
 * from one before another gets it. Returns 0. */
UX_API int ux_slider_bar_set_focus(ux_obj *slider) UX_NOEXCEPT;

/* Takes the focused mark away and gives the keys back; paints nothing. A key that had no handler
 * keeps the slider's, which ignores other objects. Returns 0. */
UX_API int ux_slider_bar_unset_focus(ux_obj *slider) UX_NOEXCEPT;

/* Key handlers of a page: move the slider that is the event's object by a step, show it if visible
 * and call its change handler. At the end of the range, and for other objects, nothing happens.
 * Return 0. */
UX_API int ux_slider_bar_key_left(ux_event *ev) UX_NOEXCEPT;
UX_API int ux_slider_bar_key_right(ux_event *ev) UX_NOEXCEPT;

/* ============================================================================================== */
/* Button list                                                                                    */
/* ============================================================================================== */

/* A vertical menu: a container without background and border that holds a fixed number of text
 * buttons, one of them current. While the list has the focus the up and down keys move the current
 * button over the hidden ones and OK reports it. With n buttons and a gap of g pixels, each is
 * H = (height - 6 * n - (n - 1) * g) / n pixels high, rounded toward 0; button i stands at
 * (x + 3, y + 3 + i * (g + 6 + H)), width - 6 pixels wide, rounded down to an even number.
 *
 * The key handlers of a page that the list replaces are not put back. OK reports the current button
 * also while it is hidden. A touch does nothing but for what handlers of the host's on the buttons
 * do. The list owns its buttons: they must not be deleted one by one. */
typedef struct ux_button_list ux_button_list;

/* What a list tells a host: which button. The result is ignored. The list may be deleted in it. */
typedef int (*ux_button_list_handler)(ux_button_list *list, int index);

struct ux_button_list {
    ux_container container;                /* the container it extends */
    int32_t gap;                           /* pixels between two buttons */
    int32_t item_count;                    /* number of buttons; below 1 there are none */
    ux_text_button **items;                /* the buttons from the top; null when there are none */
    uint32_t *values;                      /* the host's word for each button; at first 0 */
    int32_t current;                       /* index of the current button; at first 0 */
    ux_button_list_handler focus_handler;  /* after a move by key: the new current button */
    ux_button_list_handler select_handler; /* on OK: the current button */
    ux_button_list_handler up_handler;     /* after a move up: the same; at the upper end: -1 */
    ux_button_list_handler down_handler;   /* after a move down: the same; at the end: item_count */
};

/* Makes a list of `count` hidden buttons without text, white, orange behind the focused one, and
 * links it into `parent`, which may be null. Returns null when out of memory. */
UX_API ux_button_list *ux_button_list_new(ux_container *parent, int x, int y, int w, int h,
                                          int count, int gap) UX_NOEXCEPT;

/* ux_obj_set_size() of the list and, in the new layout, of its buttons. Returns 0. */
UX_API int ux_button_list_set_size(ux_button_list *list, int x, int y, int w, int h) UX_NOEXCEPT;

/* Stores the text of a button and shows the button at once, or hides it when the text is null or
 * empty. An index that no button has is ignored, here and below. Returns 0. */
UX_API int ux_button_list_set_text(ux_button_list *list, int index,
                                   const char16_t *text) UX_NOEXCEPT;

/* Stores the host's word for a button. Returns 0. */
UX_API int ux_button_list_set_value(ux_button_list *list, int index, uint32_t value) UX_NOEXCEPT;

/* Stores the text colours of all buttons, normal and focused. Returns 0. */
UX_API int ux_button_list_set_item_fg_color(ux_button_list *list, uint32_t normal,
                                            uint32_t focus) UX_NOEXCEPT;

/* Stores the backgrounds of all buttons, normal and focused. Returns 0. */
UX_API int ux_button_list_set_item_bg_color(ux_button_list *list, uint32_t normal,
                                            uint32_t focus) UX_NOEXCEPT;

/* Stores the border colours of all buttons, normal and focused. Returns 0. */
UX_API int ux_button_list_set_item_border_color(ux_button_list *list, uint32_t normal,
                                                uint32_t focus) UX_NOEXCEPT;

/* Does nothing: the font is one for all. Returns 0. */
UX_API int ux_button_list_set_item_font(ux_button_list *list, ...) UX_NOEXCEPT;

/* Stores the border width of all buttons in pixels. Returns 0. */
UX_API int ux_button_list_set_item_border(ux_button_list *list, int n) UX_NOEXCEPT;

/* Stores the handler that hears of moves by key, null for none. Returns 0. */
UX_API int ux_button_list_set_focus_handler(ux_button_list *list,
                                            ux_button_list_handler handler) UX_NOEXCEPT;

/* Stores the handler that hears of OK, null for none. Returns 0. */
UX_API int ux_button_list_set_select_handler(ux_button_list *list,
                                             ux_button_list_handler handler) UX_NOEXCEPT;

/* Stores the handler that hears, after the focus handler, of moves up, and of the key at the upper
 * end; null for none. Returns 0. */
UX_API int ux_button_list_set_up_handler(ux_button_list *list,
                                         ux_button_list_handler handler) UX_NOEXCEPT;

/* The same for moves down and the lower end. Returns 0. */
UX_API int ux_button_list_set_down_handler(ux_button_list *list,
                                           ux_button_list_handler handler) UX_NOEXCEPT;

/* Makes a button the current one: takes the focus from the old one, gives it to the new one, paints
 * both when the list is visible, and makes the list its page's focus object. No handler is called.
 * Returns 0. */
UX_API int ux_button_list_move_to_target(ux_button_list *list, int index) UX_NOEXCEPT;

/* ux_button_list_move_to_target(). */
UX_API int ux_button_list_set_item_focus(ux_button_list *list, int index) UX_NOEXCEPT;

/* Key handlers of a page: move to the next visible button above or below the current one, or tell
 * the up or down handler that there is none; call the select handler. The list is the event's
 * object. Return 0, or -1 when that is null or no button list. */
UX_API int ux_button_list_event_move_up(ux_event *ev) UX_NOEXCEPT;
UX_API int ux_button_list_event_move_down(ux_event *ev) UX_NOEXCEPT;
UX_API int ux_button_list_event_press_ok(ux_event *ev) UX_NOEXCEPT;

/* Marks the list and its current button focused, installs the three key handlers and makes the list
 * its page's focus object. A list without a parent prints a warning on standard error and installs
 * nothing. Returns 0. */
UX_API int ux_button_list_set_focus(ux_obj *list) UX_NOEXCEPT;

/* Takes the focused mark from the list and its current button and leaves the page without a focus
 * object. The key handlers stay. Not a slot of the list: call it by name. Returns 0. */
UX_API int ux_button_list_unset_focus(ux_obj *list) UX_NOEXCEPT;

/* Marks the list visible and paints its visible buttons. Returns 0. */
UX_API int ux_button_list_show(ux_obj *list) UX_NOEXCEPT;

/* Marks the list hidden; its pixels stay. Returns 0. */
UX_API int ux_button_list_hide(ux_obj *list) UX_NOEXCEPT;

/* Shows a visible list, hides a hidden one. Returns 0. */
UX_API int ux_button_list_repaint(ux_obj *list) UX_NOEXCEPT;

/* Releases the list and its buttons. Does not unlink it. Returns 0. */
UX_API int ux_button_list_free(ux_obj *list) UX_NOEXCEPT;

/* ============================================================================================== */
/* Memo                                                                                           */
/* ============================================================================================== */

/* Lines of text over the player's message picture: "/orbo/images/MSGbgimage.png", or else
 * "/mnt/firmware/images/MSGbgimage.png", read at every show and fitted into the border. A text
 * without units, or of more than 127, shows neither text nor picture. The memo takes the focus,
 * which colours its border, but no keys. It paints no background, saves none, and is painted
 * whatever page is current. Size of the text: the environment variable "FontSize"; 16 when it is
 * unset. */
typedef struct ux_memo {
    ux_obj obj;        /* the header; `type` is the text button's */
    char16_t *text;    /* the memo's own copy of the text; null = none */
    uint32_t fg_color; /* text; default grey */
    uint32_t bg_color; /* stored only; default black */
    int32_t font_size; /* stored only; default 16 */
} ux_memo;

/* Makes a memo with a copy of `text` (null = empty) and links it into `parent`, which may be null.
 * Returns null when out of memory for the record. */
UX_API ux_memo *ux_memo_new(ux_container *parent, int x, int y, int w, int h,
                            const char16_t *text) UX_NOEXCEPT;

/* Fills a record of the host's and links it into `parent`. A record that is not from malloc() must
 * not be freed through its `free` slot. Returns 0. */
UX_API int ux_memo_init(ux_container *parent, ux_memo *memo, int x, int y, int w, int h,
                        const char16_t *text) UX_NOEXCEPT;

/* Copies `text` up to its zero unit, or its first 129 units when none of the first 128 is zero, in
 * place of the old copy; null empties it. Returns 0, or -2 when out of memory: the memo then has no
 * text. */
UX_API int ux_memo_set_text(ux_memo *memo, const char16_t *text) UX_NOEXCEPT;

/* Stores the text colour. Returns 0. */
UX_API int ux_memo_set_fg_color(ux_memo *memo, uint32_t color) UX_NOEXCEPT;

/* Stores the background colour, which is not painted. Returns 0. */
UX_API int ux_memo_set_bg_color(ux_memo *memo, uint32_t color) UX_NOEXCEPT;

/* Stores the font size, which is not used; a null memo is ignored. Returns 0. */
UX_API int ux_memo_set_font_size(ux_memo *memo, int n) UX_NOEXCEPT;

/* Does nothing: the font is one for all. Returns 0. */
UX_API int ux_memo_set_font(ux_memo *memo, ...) UX_NOEXCEPT;

/* Stores the border width in pixels. Returns 0. */
UX_API int ux_memo_set_border(ux_memo *memo, int n) UX_NOEXCEPT;

/* Stores the border colours of all four sides, normal and focused. Returns 0. */
UX_API int ux_memo_set_border_color(ux_memo *memo, uint32_t normal, uint32_t focus) UX_NOEXCEPT;

/* ux_obj_set_size() of the memo. Returns 0. */
UX_API int ux_memo_set_size(ux_memo *memo, int x, int y, int w, int h) UX_NOEXCEPT;

/* Marks the memo visible and paints it; a message on standard output when neither picture can be
 * read, and the border alone. Returns 0. */
UX_API int ux_memo_show(ux_obj *memo) UX_NOEXCEPT;

/* Marks the memo hidden; its pixels stay. Returns 0. */
UX_API int ux_memo_hide(ux_obj *memo) UX_NOEXCEPT;

/* Shows a visible memo, hides a hidden one. Returns 0. */
UX_API int ux_memo_repaint(ux_obj *memo) UX_NOEXCEPT;

/* Marks the memo focused and makes it the page's focus object; paints nothing. Returns 0. */
UX_API int ux_memo_set_focus(ux_obj *memo) UX_NOEXCEPT;

/* Takes the focused mark away; paints nothing. Returns 0. */
UX_API int ux_memo_unset_focus(ux_obj *memo) UX_NOEXCEPT;

/* Releases the text and the record, not a background copy. Does not unlink it. Returns 0. */
UX_API int ux_memo_free(ux_obj *memo) UX_NOEXCEPT;

/* ============================================================================================== */
/* Clock                                                                                          */
/* ============================================================================================== */

/* A face picture with three straight hands. The clock keeps a time of its own: while it is visible
 * it looks at the system's seconds every 10 ms, and whenever 2 or more have passed it advances by
 * ONE second, paints itself and calls the tick handler. The true time comes from the host: the sync
 * handler is called when a hidden clock is shown and then at every sync_period-th advance, and sets
 * the time with ux_clock_settime(). On a page that is not current the clock runs unpainted.
 *
 * With r the radius, the hour hand reaches from the centre to 0.6 r, the minute hand to 0.8 r, the
 * second hand from 0.1 r behind the centre to r. Painting brings the previous picture to the screen
 * first and the new one into `buf` only: where `buf` and `fb` are apart, the screen is one advance
 * behind.
 *
 * A clock may be hidden, shown and freed in its own handlers; shown in its sync handler it does not
 * call that one again. It takes no focus. */
typedef struct ux_clock ux_clock;

/* Asks a host for the true time. From ux_clock_show() a, b and c are the caller's values, else 0.
 * The result is ignored. */
typedef int (*ux_clock_sync_handler)(ux_clock *clock, intptr_t a, intptr_t b, intptr_t c);

/* Tells a host the time after an advance. The result is ignored. */
typedef int (*ux_clock_tick_handler)(ux_clock *clock, int hours, int minutes, int seconds);

/* The inner life of a clock, not for the host to write. */
typedef struct ux_clock_state {
    void *face;          /* pixel block of the clock's width x height */
    void *second_image;  /* pixel block of 2 r x 2 r, kept and not painted; or null */
    void *third_image;   /* the same */
    time_t last_advance; /* system time of the last advance or show, seconds */
    ux_clock_sync_handler sync_handler; /* or null */
    ux_clock_tick_handler tick_handler; /* or null */
    int32_t sync_countdown;             /* advances until the sync handler is called */
    int32_t timeout_id;                 /* the pending timeout; negative = none */
} ux_clock_state;

struct ux_clock {
    ux_obj obj;            /* the header */
    int32_t radius;        /* length of the second hand, pixels */
    int32_t center_x;      /* columns from the left edge to the hands' centre */
    int32_t center_y;      /* rows from the top edge to it */
    int32_t hours;         /* 0..23; at first 0 */
    int32_t minutes;       /* 0..59; at first 0 */
    int32_t seconds;       /* 0..59; at first 0 */
    int32_t sync_period;   /* advances between two calls of the sync handler; default 15 */
    ux_clock_state *state; /* its own */
};

/* Makes a clock that stands hidden at 0:00:00 and links it into `parent`, which may be null. `face`
 * is the picture that is painted; `second` and `third`, which may be null, are read and kept only.
 * Returns null when a hand would leave the clock (nothing is printed), when the face can not be
 * read, and when out of memory. */
UX_API ux_clock *ux_clock_new(ux_container *parent, int x, int y, int w, int h, int radius,
                              int center_x, int center_y, const char *face, const char *second,
                              const char *third) UX_NOEXCEPT;

/* Stores the time. Returns 0. */
UX_API int ux_clock_settime(ux_clock *clock, int hours, int minutes, int seconds) UX_NOEXCEPT;

/* Stores the handler that is asked for the true time, null for none. Returns 0. */
UX_API int ux_clock_set_sync_cb(ux_clock *clock, ux_clock_sync_handler handler) UX_NOEXCEPT;

/* Stores the handler that hears of advances, null for none. Returns 0. */
UX_API int ux_clock_set_tick_cb(ux_clock *clock, ux_clock_tick_handler handler) UX_NOEXCEPT;

/* Makes the clock visible and lets it run; a hidden one first calls the sync handler with a, b and
 * c, which are 0 when the `show` slot is called. Returns what ux_clock_paint() returns. */
UX_API int ux_clock_show(ux_obj *clock, intptr_t a, intptr_t b, intptr_t c) UX_NOEXCEPT;

/* Marks the clock hidden and stops it; its pixels stay. Returns 0. */
UX_API int ux_clock_hide(ux_obj *clock) UX_NOEXCEPT;

/* Shows a visible clock, hides a hidden one. Returns 0. */
UX_API int ux_clock_repaint(ux_obj *clock, intptr_t a, intptr_t b, intptr_t c) UX_NOEXCEPT;

/* Paints a visible clock on the current page. Returns 0. */
UX_API int ux_clock_paint(ux_obj *clock) UX_NOEXCEPT;

/* What the clock's timeout calls, with the clock as the event's data. Returns 0. */
UX_API int ux_clock_update(ux_event *ev) UX_NOEXCEPT;

/* Stops the clock and releases it, its pictures too, not a background copy. Does not unlink it.
 * Returns 0. */
UX_API int ux_clock_free(ux_obj *clock) UX_NOEXCEPT;

/* ============================================================================================== */
/* Calendar                                                                                       */
/* ============================================================================================== */

/* One month: its number, name and year on the left, a row of weekday names, and for each day the
 * picture "black.png" of a directory with the number upon it, weekend columns in red. The layout is
 * in screen pixels, wherever the calendar is: the grid begins at column 178, its header at row 50,
 * its first cells at row 80. With (width - 178) / 7 - 3 rounded down to an even number for a cell's
 * width and (height - 80) / 6 for the rows' pitch, only width and height of the calendar count; x
 * and y are for the update and for hiding. A calendar has no background: what lies beneath, another
 * month too, shows until the host paints over it. Size of the text: "FontSize"; 16 when it is
 * unset. */
typedef struct ux_calendar {
    ux_obj obj;                    /* the header */
    char image_dir[UX_PATH_BYTES]; /* directory of "black.png" */
    int16_t year;                  /* the date set; default 2009 */
    int16_t month;                 /* 1..12; default 1 */
    int16_t day;                   /* 1..31; default 1 */
    int16_t weekday;               /* of the date: 0 = Sunday to 6 = Saturday */
    int16_t shown_year;            /* the month painted: a copy of the date set */
    int16_t shown_month;           /* 1..12; of any other nothing is painted */
    int16_t shown_day;             /* not used */
    int16_t shown_weekday;         /* not used */
    int16_t reserved;              /* 0 */
} ux_calendar;

/* Makes a calendar of January 2009 with a copy of the directory (null = empty) and links it into
 * `parent`, which may be null. Returns null when out of memory. */
UX_API ux_calendar *ux_calendar_new(ux_container *parent, int x, int y, int w, int h,
                                    const char *image_dir) UX_NOEXCEPT;

/* Fills a record of the host's and links it into `parent`. A record that is not from malloc() must
 * not be freed through its `free` slot. Returns 0. */
UX_API int ux_calendar_init(ux_container *parent, ux_calendar *calendar, int x, int y, int w, int h,
                            const char *image_dir) UX_NOEXCEPT;

/* Copies a directory, at most 255 bytes; null empties it. Returns 0. */
UX_API int ux_calendar_set_images(ux_calendar *calendar, const char *image_dir) UX_NOEXCEPT;

/* Stores the low 16 bits of each number as the date, its weekday, and both as what is shown.
 * Returns 0. */
UX_API int ux_calendar_set_date(ux_calendar *calendar, int year, int month, int day) UX_NOEXCEPT;

/* The weekday of a date, 0 = Sunday to 6 = Saturday; the day after 2 September 1752 is the 14th. It
 * is right from that day on; before it, centuries count by the same rule as after. The remainder
 * may be negative for years below 1. */
UX_API int ux_calendar_get_week(int year, int month, int day) UX_NOEXCEPT;

/* Marks the calendar visible and, on the current page, paints it. Returns 0. */
UX_API int ux_calendar_show(ux_obj *calendar) UX_NOEXCEPT;

/* Marks the calendar hidden and, on the current page, fills its rectangle with 0 in `buf`. Returns
 * 0. */
UX_API int ux_calendar_hide(ux_obj *calendar) UX_NOEXCEPT;

/* Shows a visible calendar, hides a hidden one. Returns 0. */
UX_API int ux_calendar_repaint(ux_obj *calendar) UX_NOEXCEPT;

/* Marks the calendar focused and makes it the page's focus object; paints nothing. Returns 0. */
UX_API int ux_calendar_set_focus(ux_obj *calendar) UX_NOEXCEPT;

/* Takes the focused mark away; paints nothing. Returns 0. */
UX_API int ux_calendar_unset_focus(ux_obj *calendar) UX_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
