// SPDX-License-Identifier: MIT
// Copies of screen rectangles on the heap: allocation, growth, and the copy out of the drawing
// buffer.
#ifndef UX_CORE_SAVE_AREA_H
#define UX_CORE_SAVE_AREA_H

#include "ux.h"

namespace ux {

// Makes `*area` hold the pixels now under `obj`, rows packed, those outside the screen 0. Allocates
// a null area and enlarges one that is too small. Returns whether there was memory for it; `*area`
// is unchanged if not.
bool save_screen(void **area, const ux_obj *obj);

// How many of `height` rows of `width` pixels, as ux_draw_image_buff() reads them, lie inside an
// allocated area.
int save_area_rows(void *area, int width, int height);

} // namespace ux

#endif
