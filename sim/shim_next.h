/* SPDX-License-Identifier: MIT
 * The way from a call that the preload library stands in for to the C library's own. */
#ifndef UX_SIM_SHIM_NEXT_H
#define UX_SIM_SHIM_NEXT_H

#include <dlfcn.h>
#include <errno.h>
#include <stdatomic.h>
#include <string.h>

#define EXPORT __attribute__((visibility("default")))

typedef void (*any_function)(void);
typedef _Atomic(any_function) function_slot;

/* Looked up at the first call, never at load time: no order of constructors matters. Two threads
 * that look at once store the same value. `version` picks one of several symbols of that name; null
 * or unknown = the usual one. */
static inline any_function next_function(function_slot *slot, const char *name,
                                         const char *version) {
    any_function found = atomic_load_explicit(slot, memory_order_acquire);
    if (found == NULL) {
        void *symbol = version == NULL ? NULL : dlvsym(RTLD_NEXT, name, version);
        if (symbol == NULL) {
            symbol = dlsym(RTLD_NEXT, name);
        }
        memcpy(&found, &symbol, sizeof found);
        atomic_store_explicit(slot, found, memory_order_release);
    }
    return found;
}

#define FIND_NEXT_VERSION(name, version, failure)                                                  \
    static function_slot slot;                                                                     \
    __typeof__(&name) next = (__typeof__(&name))next_function(&slot, #name, version);              \
    if (next == NULL) {                                                                            \
        errno = ENOSYS;                                                                            \
        return failure;                                                                            \
    }

/* Declares `next`, the C library's `name`; gives up with `failure` where there is none. */
#define FIND_NEXT(name, failure) FIND_NEXT_VERSION(name, NULL, failure)

#endif
