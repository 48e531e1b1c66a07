/* SPDX-License-Identifier: MIT */
/*
 * The SDK's form of a path string on a PC: the same bytes, owned.
 */
#ifndef UX_PLATFORM_HOST_RM_NON_ASCII_H
#define UX_PLATFORM_HOST_RM_NON_ASCII_H

#include <string>

#include "platform/host/export.h"

struct rm_non_ascii {
    std::string text;
};

#endif
