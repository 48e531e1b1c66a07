/* SPDX-License-Identifier: MIT */
/* A translation unit that holds the public header and nothing else: it must need no other. */
#include <ux.h>
