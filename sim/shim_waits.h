/* SPDX-License-Identifier: MIT
 * What the calls that wait share under the simulated clock. */
#ifndef UX_SIM_SHIM_WAITS_H
#define UX_SIM_SHIM_WAITS_H

#include "sim/shim_clock.h"

#include <signal.h>

enum { SHIM_NO_PIPE = -2 };

/* Opens a named pipe, waiting for its other end, where the C library would wait for it: the
 * descriptor, or -1 with errno. SHIM_NO_PIPE: there is nothing to wait for, or the time is real.
 * `folder` as for openat. */
int shim_open_pipe(int folder, const char *path, int flags);

/* Null, which is for ever, or a duration. Others are the C library's to refuse. */
bool shim_is_timeout(const struct timespec *timeout);

/* The end of a timeout that begins now. */
int64_t shim_deadline_of(const struct timespec *timeout);

/* shim_clock_wait as a cancellation point. True when it became ready; otherwise the time was up, or
 * errno is EINTR and *interrupted set. */
bool shim_wait_for(struct shim_wait wait, bool *interrupted);

/* Puts a mask on for the time of a wait; null does nothing. False, with EINTR: the handler of a
 * signal that was held back has run, and there is nothing more to wait for. */
bool shim_mask_put(const sigset_t *mask, sigset_t *before);
void shim_mask_restore(const sigset_t *mask, const sigset_t *before);

#endif
