/* SPDX-License-Identifier: MIT
 * One list for all objects, the oldest wait first: hosts have few threads. */
#include "sim/shim_waiters.h"

#include <stddef.h>

static struct shim_waiter *s_first;

void shim_waiter_enter(struct shim_waiter *waiter) {
    struct shim_waiter **link = &s_first;
    while (*link != NULL) {
        link = &(*link)->next;
    }
    waiter->next = NULL;
    *link = waiter;
}

void shim_waiter_leave(struct shim_waiter *waiter) {
    struct shim_waiter **link = &s_first;
    while (*link != waiter) {
        link = &(*link)->next;
    }
    *link = waiter->next;
}

long shim_waiters_wake(const void *object, long most, uint32_t bits) {
    long count = 0;
    for (struct shim_waiter *one = s_first; one != NULL && count < most; one = one->next) {
        if (one->object == object && !one->woken && (one->bits & bits) != 0) {
            one->woken = true;
            ++count;
        }
    }
    return count;
}

bool shim_waiters_any(const void *object) {
    const struct shim_waiter *one = s_first;
    while (one != NULL && one->object != object) {
        one = one->next;
    }
    return one != NULL;
}
