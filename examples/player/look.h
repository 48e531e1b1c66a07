// SPDX-License-Identifier: MIT
// The palette, the measures and the parts that all pages are made of; for 1280 x 720 pixels.
#ifndef UX_EXAMPLES_PLAYER_LOOK_H
#define UX_EXAMPLES_PLAYER_LOOK_H

#include <cstdlib>
#include <string>

#include <ux.h>

namespace player {

constexpr int k_screen_width = 1280;
constexpr int k_screen_height = 720;
constexpr int k_margin = 80;
constexpr int k_width = k_screen_width - 2 * k_margin;
constexpr int k_title_top = 48;
constexpr int k_top = 136;      // of what a page holds
constexpr int k_hint_top = 640; // of the line at the bottom
constexpr int k_gap = 16;       // between neighbours
constexpr int k_border = 4;

constexpr int k_text_size = 32;
constexpr int k_title_size = 48;
// Texts start at the top left of their box; a blank line above and below puts them in the middle.
constexpr int k_button_height = 3 * k_text_size + 2 * k_border;
constexpr char16_t k_padded[] = u"\n    ";

constexpr uint32_t k_page_color = 0xFF0E1726;
constexpr uint32_t k_panel_color = 0xFF16233A;
constexpr uint32_t k_line_color = 0xFF34507A;
constexpr uint32_t k_title_color = 0xFFFFFFFF;
constexpr uint32_t k_text_color = 0xFFE6EDF7;
constexpr uint32_t k_quiet_color = 0xFFB4C5DB;
constexpr uint32_t k_control_color = 0xFF0A111D;
constexpr uint32_t k_button_color = 0xFF1E2F4A;
constexpr uint32_t k_focus_color = 0xFF2459B8;
constexpr uint32_t k_focus_line_color = 0xFFFFD54A;
constexpr uint32_t k_thumb_color = 0xFF7FB0FF;

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

// The size of all texts is one variable, read at every paint: some set it for themselves. It is
// set up before any thread starts; from then on only its two digits change, and only the thread
// that paints reads them.
void set_up_text_size();
void set_text_size(int pixels); // 10..99

template <int size, ux_slot show>
int show_in_size(ux_obj *obj) {
    set_text_size(size);
    const int result = show(obj);
    set_text_size(k_text_size);
    return result;
}

void show(ux_obj &obj);
void show_text(ux_text_label *label, const std::u16string &text);
std::u16string widened(const std::string &utf8);

ux_page *new_page();
ux_text_label *add_label(ux_container &parent, const box &place, const char16_t *text,
                         uint32_t color, uint32_t background);
ux_text_label *add_title(ux_container &page, const char16_t *text);
// The line at the bottom; a touch of it leads home.
void add_hint(ux_container &page, const char16_t *text, int left = k_margin);
ux_container *add_panel(ux_container &parent, const box &place, uint32_t color, int border);

// A page switch paints visible objects only: to be called when a page is built.
void mark_visible(ux_page &page);

} // namespace player

#endif
