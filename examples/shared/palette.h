// SPDX-License-Identifier: MIT
// The colours of the examples.
#ifndef UX_EXAMPLES_PALETTE_H
#define UX_EXAMPLES_PALETTE_H

#include <cstdint>

constexpr uint32_t k_page_color = 0xFF0E1726;
constexpr uint32_t k_panel_color = 0xFF16233A;
constexpr uint32_t k_line_color = 0xFF34507A;
constexpr uint32_t k_title_color = 0xFFFFFFFF;
constexpr uint32_t k_text_color = 0xFFE6EDF7;
constexpr uint32_t k_quiet_color = 0xFFB4C5DB; // hints and captions
constexpr uint32_t k_dark_text_color = k_page_color;
constexpr uint32_t k_control_color = 0xFF0A111D;
constexpr uint32_t k_button_color = 0xFF1E2F4A;
constexpr uint32_t k_focus_color = 0xFF2459B8;
constexpr uint32_t k_highlight_color = 0xFFFFD54A;
constexpr uint32_t k_thumb_color = 0xFF7FB0FF;

#endif
