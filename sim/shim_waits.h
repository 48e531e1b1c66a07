/* SPDX-License-Identifier: MIT
 * Waiting for files under the simulated clock, as far as other files of the preload library need
 * it. */
#ifndef UX_SIM_SHIM_WAITS_H
#define UX_SIM_SHIM_WAITS_H

enum { SHIM_NO_PIPE = -2 };

/* Opens a named pipe, waiting for its other end, where the C library would wait for it: the
 * descriptor, or -1 with errno. SHIM_NO_PIPE: there is nothing to wait for, or the time is real. */
int shim_open_pipe(const char *path, int flags);

#endif
