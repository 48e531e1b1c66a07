/* SPDX-License-Identifier: MIT */
/*
 * Making and releasing path strings.
 */
#include "platform/host/rm_non_ascii.h"

#include "platform/host/guard.h"

rm_non_ascii *RMnonAsciiFromAscii(const char *text) {
    if (!text)
        return nullptr;
    return em862x::guarded(static_cast<rm_non_ascii *>(nullptr),
                           [&] { return new rm_non_ascii{text}; });
}

void RMFreeNonAscii(rm_non_ascii *text) {
    delete text;
}
