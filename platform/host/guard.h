/* SPDX-License-Identifier: MIT */
/*
 * The border between C++ inside and C outside: no exception leaves this library.
 */
#ifndef UX_PLATFORM_HOST_GUARD_H
#define UX_PLATFORM_HOST_GUARD_H

#include <exception>

namespace em862x {

/* Runs `body`; when memory runs out in it (nothing else throws here), the result is `refusal`. */
template <class Body, class Result>
Result guarded(Result refusal, Body &&body) noexcept {
    try {
        return body();
    } catch (const std::exception &) {
        return refusal;
    }
}

} // namespace em862x

#endif
