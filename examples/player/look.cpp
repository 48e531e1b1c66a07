// SPDX-License-Identifier: MIT
// Parts of pages; see look.h.
#include "look.h"

#include "shell.h"

namespace player {

ux_text_label *add_title(ux_container &page, const char16_t *text) {
    constexpr int width = k_width - 120; // what stands at the right keeps its room
    return ::add_title<k_title_size>(page, k_margin, k_title_top, width, text);
}

void add_hint(ux_container &page, const char16_t *text, int left) {
    ux_text_label *hint = add_label(page, {left, k_hint_top, k_width, k_text_size}, text,
                                    k_quiet_color, UX_COLOR_NONE);
    ux_obj_set_handler(&hint->obj, go_home, nullptr);
}

} // namespace player
