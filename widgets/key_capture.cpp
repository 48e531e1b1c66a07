// SPDX-License-Identifier: MIT
// The table of replaced key handlers; see key_capture.h.

#include "widgets/key_capture.h"

namespace ux {

void key_capture::capture(ux_page *page, int key, ux_handler handler) {
    if (!page)
        return;
    saved[key] = page->key_handlers[key];
    ux_page_set_key_handler(page, key, handler);
}

void key_capture::restore(ux_page *page) {
    if (!page)
        return;
    for (int key = 0; key < UX_MAX_KEYS; key++) {
        if (!saved[key])
            continue;
        ux_page_set_key_handler(page, key, saved[key]);
        saved[key] = nullptr;
    }
}

} // namespace ux
