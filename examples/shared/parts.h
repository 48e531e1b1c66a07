// SPDX-License-Identifier: MIT
// What pages are built from.
#ifndef UX_EXAMPLES_PARTS_H
#define UX_EXAMPLES_PARTS_H

#include <cstdlib>
#include <string>

#include "palette.h"
#include "text_size.h"

#include <ux.h>

struct box {
    int x, y, w, h;
};

// Out of memory, or without a picture that the device must have, there is nothing to show.
template <class T>
T *made(T *object) {
    if (object == nullptr)
        std::exit(EXIT_FAILURE);
    return object;
}

inline void show(ux_obj &obj) {
    obj.show(&obj);
}

inline void show_text(ux_text_label *label, const std::u16string &text) {
    ux_text_label_set_text(label, text.c_str());
    show(label->obj);
}

inline std::u16string widened(const std::string &utf8) {
    std::u16string result(UX_TEXT_UNITS, u'\0');
    ux_text_from_utf8(result.data(), result.size(), utf8.c_str());
    return result.c_str();
}

inline ux_page *new_page() {
    const int index = ux_page_new();
    if (index < 0)
        std::exit(EXIT_FAILURE);
    ux_page *page = main_screen.pages[index];
    ux_container_set_bg_color(&page->container, k_page_color);
    return page;
}

inline ux_text_label *add_label(ux_container &parent, const box &place, const char16_t *text,
                                uint32_t color, uint32_t background) {
    ux_text_label *label =
        made(ux_text_label_new(&parent, place.x, place.y, place.w, place.h, text));
    ux_text_label_set_fg_color(label, color);
    ux_text_label_set_bg_color(label, background);
    return label;
}

// Its height is the size of its text.
template <int size>
ux_text_label *add_title(ux_container &page, int x, int y, int w, const char16_t *text) {
    ux_text_label *title = add_label(page, {x, y, w, size}, text, k_title_color, UX_COLOR_NONE);
    title->obj.show = title->obj.repaint = show_in_size<size, ux_text_label_show>;
    return title;
}

inline ux_container *add_panel(ux_container &parent, const box &place, uint32_t color,
                               int border = 2) {
    ux_container *panel = made(ux_container_new(&parent, place.x, place.y, place.w, place.h));
    ux_container_set_bg_color(panel, color);
    ux_container_set_border(panel, border);
    ux_obj_set_border_colors(&panel->obj, k_line_color, k_line_color);
    return panel;
}

// A page switch paints visible objects only: to be called when a page is built. Nothing is painted
// as long as another page is the current one.
inline void mark_visible(ux_page &page) {
    show(page.container.obj);
}

#endif
