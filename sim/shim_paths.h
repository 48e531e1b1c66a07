/* SPDX-License-Identifier: MIT
 * Which files a simulated host really meets: the run's own framebuffer memory, event pipe and
 * queue path, and the device's fixed folders below a root. Knows nothing about the calls. */
#ifndef UX_SIM_SHIM_PATHS_H
#define UX_SIM_SHIM_PATHS_H

#include <limits.h>
#include <stdbool.h>

/* The path to use instead of `path`: `path` itself when it is nobody's business here. `room` holds
 * a composed path and must live as long as the result is used. `path` may be null. */
const char *shim_path(const char *path, char room[PATH_MAX]);

/* As shim_path, for calls that open a file: "/dev/fb0" is answered as well. */
const char *shim_open_path(const char *path, char room[PATH_MAX]);

/* True when `path` is the framebuffer device and this run has a memory for it. */
bool shim_is_framebuffer(const char *path);

/* The path that names the run's message queue, or `path` when it is not the input queue's. */
const char *shim_queue_path(const char *path, int project);

/* The shared memory behind "/dev/fb0", or null outside a simulation. */
const char *shim_memory_path(void);

#endif
