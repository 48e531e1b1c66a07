/* SPDX-License-Identifier: MIT
 * The two framebuffer queries, answered for descriptors of the run's shared memory. */
#ifndef UX_SIM_SHIM_SCREEN_H
#define UX_SIM_SHIM_SCREEN_H

#include <stdbool.h>

/* Answers `request` into `argument` when it is a framebuffer query and `fd` is the shared memory.
 * False: not ours, ask the system. */
bool shim_screen_answer(int fd, unsigned long request, void *argument);

#endif
