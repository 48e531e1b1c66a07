// SPDX-License-Identifier: MIT
// Flags that the host raises in environment variables to end what is under way.
#ifndef UX_GRAPHICS_HOST_FLAGS_H
#define UX_GRAPHICS_HOST_FLAGS_H

#include <cstdlib>

namespace ux {

// A byte of what getenv() gave, loaded as a whole: a host may overwrite it in place from another
// thread.
inline char load_byte(const char *present) {
    return __atomic_load_n(present, __ATOMIC_RELAXED);
}

// Whether `present`, which getenv() gave, is exactly `value`.
inline bool value_is(const char *present, const char *value) {
    if (!present)
        return false;
    for (;; present++, value++) {
        const char byte = load_byte(present);
        if (byte != *value)
            return false;
        if (byte == '\0')
            return true;
    }
}

inline bool variable_is(const char *name, const char *value) {
    return value_is(getenv(name), value);
}

// The host goes back to its menu.
inline bool host_goes_to_menu() {
    return variable_is("STATUS", "gotoMenu");
}

// The host has a message to show.
inline bool host_shows_message() {
    return variable_is("ShowMSG", "YES");
}

} // namespace ux

#endif
