// SPDX-License-Identifier: MIT
// How a focused widget takes over keys of its page and gives them back.
#ifndef UX_WIDGETS_KEY_CAPTURE_H
#define UX_WIDGETS_KEY_CAPTURE_H

#include "ux.h"

namespace ux {

// The page handlers that a kind of widget has replaced, by key code. Each kind has one table for
// all its widgets, so a second one that takes the focus before the first has lost it replaces what
// the first saved.
struct key_capture {
    ux_handler saved[UX_MAX_KEYS]; // null = nothing to put back

    // Puts `handler` in the place of the page's handler of `key` (0 to 255), which is kept. A null
    // page, which a widget without a parent has, is left alone.
    void capture(ux_page *page, int key, ux_handler handler);

    // Puts all kept handlers back into `page` and forgets them. Where there was none, the widget's
    // handler stays: it ignores targets of other kinds. With a null page everything is kept.
    void restore(ux_page *page);
};

} // namespace ux

#endif
