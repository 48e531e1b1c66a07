/* SPDX-License-Identifier: MIT
 * Telling the simulator about messages that the host received, for a recording. */
#ifndef UX_SIM_SHIM_RECORD_H
#define UX_SIM_SHIM_RECORD_H

#include <stddef.h>

/* `message` as msgrcv left it, with `bytes` of payload behind its type. Nothing happens unless
 * `queue` is the input queue of a run that is recorded, or for messages too short to be an input,
 * such as a host may send to itself. Keeps errno. */
void shim_record(int queue, const void *message, size_t bytes);

#endif
