/* SPDX-License-Identifier: MIT */
/* A translation unit that holds the bitmap reader's header and nothing else: it must need no other.
 */
#include <ux_bitmap.h>
