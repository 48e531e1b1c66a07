/* SPDX-License-Identifier: MIT */
/*
 * The platform interface as this library defines it: the same declarations, visible outside. Every
 * file that defines one of these functions includes this header; everything else stays hidden.
 */
#ifndef UX_PLATFORM_HOST_EXPORT_H
#define UX_PLATFORM_HOST_EXPORT_H

#pragma GCC visibility push(default)
#include "platform/em862x.h"
#pragma GCC visibility pop

#endif
