/* SPDX-License-Identifier: MIT */
/* A host in C as a stranger builds it: against an installed library only. It paints a label with a
 * text into memory of its own and looks for the ink. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include <ux.h>

enum { WIDTH = 160, HEIGHT = 40 };

static uint32_t screen[WIDTH * HEIGHT];

static int count(uint32_t color) {
    int found = 0;
    for (int i = 0; i < WIDTH * HEIGHT; i++)
        found += screen[i] == color;
    return found;
}

int main(void) {
    main_screen.width = main_screen.xres = WIDTH;
    main_screen.height = main_screen.yres = HEIGHT;
    main_screen.bytes_per_pixel = 4;
    main_screen.color_mode = UX_COLOR_MODE_ARGB8888;
    main_screen.fb = main_screen.buf = (uint8_t *)screen;
    setenv("FontSize", "24", 1);

    ux_container *page = ux_page_new() == 0 ? &ux_current_page()->container : NULL;
    ux_text_label *label = page ? ux_text_label_new(page, 0, 0, WIDTH, HEIGHT, u"Hello") : NULL;
    if (label == NULL)
        return 1;
    ux_text_label_set_fg_color(label, 0xFFFFFFFFu);
    ux_text_label_set_bg_color(label, 0xFF000080u);
    ux_screen_show_all();

    int ink = count(0xFFFFFFFFu);
    int paper = count(0xFF000080u);
    printf("ink %d, paper %d\n", ink, paper);
    return ink >= 100 && ink + paper == WIDTH * HEIGHT ? 0 : 1;
}
