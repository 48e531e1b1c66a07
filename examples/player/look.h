// SPDX-License-Identifier: MIT
// The measures and the parts that all pages are made of; for 1280 x 720 pixels.
#ifndef UX_EXAMPLES_PLAYER_LOOK_H
#define UX_EXAMPLES_PLAYER_LOOK_H

#include "parts.h"

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

constexpr uint32_t k_focus_line_color = k_highlight_color;

ux_text_label *add_title(ux_container &page, const char16_t *text);
// The line at the bottom; a touch of it leads home.
void add_hint(ux_container &page, const char16_t *text, int left = k_margin);

} // namespace player

#endif
