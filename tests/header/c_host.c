/* SPDX-License-Identifier: MIT */
/*
 * A host in C11 against the shared library: a page with a label and a button in memory of its own
 * in place of a device. What it expects is worked out by hand.
 */
#include <stdint.h>
#include <stdio.h>

#include <ux.h>

enum { WIDTH = 64, HEIGHT = 48 };

static uint32_t screen[WIDTH * HEIGHT];

static int failures;

static void expect(int ok, const char *claim) {
    if (!ok) {
        fprintf(stderr, "not true: %s\n", claim);
        failures++;
    }
}

static void make_screen(void) {
    main_screen.width = main_screen.xres = WIDTH;
    main_screen.height = main_screen.yres = HEIGHT;
    main_screen.bytes_per_pixel = 4;
    main_screen.color_mode = UX_COLOR_MODE_ARGB8888;
    main_screen.fb = main_screen.buf = (uint8_t *)screen;
}

static int press(ux_event *ev) {
    *(int *)ev->data += 1;
    return 0;
}

static void check_texts(void) {
    char16_t text[4];
    expect(ux_text_from_utf8(text, 4, "a\xC3\xA9\xE2\x82\xAC") == 3, "three characters");
    expect(text[0] == u'a' && text[1] == 0xE9 && text[2] == 0x20AC && text[3] == 0, "as units");
}

static void check_painting(void) {
    expect(ux_page_new() == 0, "the first page has index 0");
    ux_container *page = &ux_current_page()->container;
    ux_text_label *label = ux_text_label_new(page, 2, 2, 20, 10, u"");
    ux_text_button *button = ux_text_button_new(page, 2, 20, 20, 10, u"");
    expect(label != NULL && button != NULL, "widgets are made");
    ux_text_label_set_bg_color(label, 0xFF112233u);
    ux_text_button_set_border(button, 1);
    ux_text_button_set_border_color(button, 0xFF445566u, 0xFF778899u);
    ux_screen_show_all();
    expect(screen[0] == UX_COLOR_BACKGROUND, "the page paints its background");
    expect(screen[2 * WIDTH + 2] == 0xFF112233u, "the label paints its first pixel");
    expect(screen[11 * WIDTH + 21] == 0xFF112233u, "the label paints its last pixel");
    expect(screen[12 * WIDTH + 21] == UX_COLOR_BACKGROUND, "the label ends there");
    expect(screen[20 * WIDTH + 2] == 0xFF445566u, "the button has a border");
    ux_obj_set_focus(&button->obj);
    expect(screen[20 * WIDTH + 2] == 0xFF778899u, "the focus changes the border");
    expect(ux_current_page()->focus == &button->obj, "the page knows the focus");
}

static void check_touch(void) {
    int presses = 0;
    ux_obj *newest = ux_current_page()->container.children;
    ux_obj_set_handler(newest, press, &presses);
    ux_event touch = {UX_EVENT_TOUCH, 44, 5, 25, NULL, NULL};
    ux_container_scan(&ux_current_page()->container, touch_position_handler, &touch);
    expect(presses == 1, "a touch reaches the handler");
}

int main(void) {
    make_screen();
    check_texts();
    check_painting();
    check_touch();
    return failures == 0 ? 0 : 1;
}
