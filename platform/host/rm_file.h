/* SPDX-License-Identifier: MIT */
/*
 * An open file as the file calls know it: a cookie and what reads and closes it.
 */
#ifndef UX_PLATFORM_HOST_RM_FILE_H
#define UX_PLATFORM_HOST_RM_FILE_H

#include "platform/host/export.h"

struct rm_file {
    void *cookie;    /* owned */
    rm_file_ops ops; /* both functions are there */
};

#endif
