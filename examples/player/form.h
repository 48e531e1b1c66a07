// SPDX-License-Identifier: MIT
// Rows of a form: a caption at the left, a widget at the right; up and down walk between them.
#ifndef UX_EXAMPLES_PLAYER_FORM_H
#define UX_EXAMPLES_PLAYER_FORM_H

#include <initializer_list>

#include "look.h"

namespace player {

constexpr int k_form_panel_width = 760;
constexpr int k_form_panel_height = 480;
constexpr int k_side_left = k_margin + k_form_panel_width + 2 * k_gap;
constexpr int k_side_width = k_screen_width - k_margin - k_side_left;

// Takes the page, makes the panel that the rows stand on, and the keys of the walk.
void begin_form(ux_page &page);

// Each adds the next row, the next place of the walk.
ux_text_field *add_field(const char16_t *caption, int limit);
ux_select_box *add_choice(const char16_t *caption, std::initializer_list<const char16_t *> texts);
ux_check_box *add_check(const char16_t *caption, const char16_t *text);
ux_slider_bar *add_slider(const char16_t *caption, ux_text_label **value);

// A button beside the rows; OK and a touch call the handler.
ux_text_button *add_action(int y, const char16_t *text, ux_handler handler);

// Where the help for each place is shown.
void add_help(int y, int height);
void show_help(const char16_t *text);

// Moves the focus to a place; without painting while the page is not current.
void go_to(size_t index);

} // namespace player

#endif
