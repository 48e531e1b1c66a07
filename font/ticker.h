// SPDX-License-Identifier: MIT
// The scrolling ticker: lines of a file, shown again and again until the host stops it.
#ifndef UX_FONT_TICKER_H
#define UX_FONT_TICKER_H

#include "font/ticker_band.h"

namespace ux {

struct ticker_job {
    uint32_t fg, bg;
    int x, y, w, h; // the box on the screen; h is the size of the text, too
    int step;       // pixels per frame; four times as many when scrolling left
};

// Shows the file at `path` until the host stops it: 0. -1 for a null path, -2 when there is no
// memory.
int run_ticker(const char *path, const ticker_job &job, scrolling direction);

} // namespace ux

#endif
