// SPDX-License-Identifier: MIT
// Parts of pages; see look.h.
#include "look.h"

#include <cstring>

#include "shell.h"

namespace player {

namespace {

char *s_font_size = nullptr;

} // namespace

void set_up_text_size() {
    setenv("FontSize", std::to_string(k_text_size).c_str(), 1);
    s_font_size = getenv("FontSize");
}

void set_text_size(int pixels) {
    std::memcpy(s_font_size, std::to_string(pixels).c_str(), 2);
}

void show(ux_obj &obj) {
    obj.show(&obj);
}

void show_text(ux_text_label *label, const std::u16string &text) {
    ux_text_label_set_text(label, text.c_str());
    show(label->obj);
}

std::u16string widened(const std::string &utf8) {
    std::u16string result(UX_TEXT_UNITS, u'\0');
    ux_text_from_utf8(result.data(), result.size(), utf8.c_str());
    return result.c_str();
}

ux_page *new_page() {
    const int index = ux_page_new();
    if (index < 0)
        std::exit(EXIT_FAILURE);
    ux_page *page = main_screen.pages[index];
    ux_container_set_bg_color(&page->container, k_page_color);
    return page;
}

ux_text_label *add_label(ux_container &parent, const box &place, const char16_t *text,
                         uint32_t color, uint32_t background) {
    ux_text_label *label =
        made(ux_text_label_new(&parent, place.x, place.y, place.w, place.h, text));
    ux_text_label_set_fg_color(label, color);
    ux_text_label_set_bg_color(label, background);
    return label;
}

ux_text_label *add_title(ux_container &page, const char16_t *text) {
    constexpr int width = k_width - 120; // what stands at the right keeps its room
    ux_text_label *title = add_label(page, {k_margin, k_title_top, width, k_title_size}, text,
                                     k_title_color, UX_COLOR_NONE);
    title->obj.show = title->obj.repaint = show_in_size<k_title_size, ux_text_label_show>;
    return title;
}

void add_hint(ux_container &page, const char16_t *text, int left) {
    ux_text_label *hint = add_label(page, {left, k_hint_top, k_width, k_text_size}, text,
                                    k_quiet_color, UX_COLOR_NONE);
    ux_obj_set_handler(&hint->obj, go_home, nullptr);
}

ux_container *add_panel(ux_container &parent, const box &place, uint32_t color, int border) {
    ux_container *panel = made(ux_container_new(&parent, place.x, place.y, place.w, place.h));
    ux_container_set_bg_color(panel, color);
    ux_container_set_border(panel, border);
    ux_obj_set_border_colors(&panel->obj, k_line_color, k_line_color);
    return panel;
}

void mark_visible(ux_page &page) {
    show(page.container.obj);
}

} // namespace player
