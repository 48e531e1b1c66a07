// SPDX-License-Identifier: MIT
// The screen's module state: the open device and the main loop's run flag.
#ifndef UX_CORE_UXWIDGET_H
#define UX_CORE_UXWIDGET_H

#include <atomic>
#include <cstdint>

namespace ux {

extern int fb_handle;            // descriptor of /dev/fb0, -1 = closed
extern uint32_t display_size;    // xres * yres * bytes per pixel, in bytes
extern std::atomic<int> running; // the main loop goes on while not 0

} // namespace ux

#endif
