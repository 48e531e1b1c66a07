/* SPDX-License-Identifier: MIT */
/* The smallest host, in C: one label on page 0. OK ends it. */
#include <stdlib.h>

#include <ux.h>

static int leave(ux_event *ev) {
    (void)ev;
    return ux_screen_quit_main_loop();
}

int main(void) {
    setenv("FontSize", "64", 1); /* pixels; the library reads it at every paint */
    ux_system_init();

    ux_page *page = ux_current_page();
    ux_container_set_bg_color(&page->container, 0xFF10243Eu);
    ux_text_label *label = ux_text_label_new(&page->container, 96, 320, 1088, 80, u"Hello, world");
    if (label == NULL)
        return EXIT_FAILURE;
    ux_text_label_set_fg_color(label, 0xFFFFFFFFu);
    ux_text_label_set_bg_color(label, UX_COLOR_NONE); /* the page shows through */

    ux_page_set_key_handler(page, UX_KEY_OK, leave);
    ux_screen_show_all();
    ux_screen_main_loop();
    return ux_system_close();
}
