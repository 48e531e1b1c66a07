/* SPDX-License-Identifier: MIT
 * What programs share that run inside the simulator and look at it: `NAME-probe CHECK` carries out
 * one check; one that does not hold is told on standard error and ends with status 1. */
#ifndef UX_TESTS_SIM_PROBE_H
#define UX_TESTS_SIM_PROBE_H

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define CHECK(condition)                                                                           \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            fprintf(stderr, "%s:%d: %s (errno %d)\n", __func__, __LINE__, #condition, errno);      \
            exit(1);                                                                               \
        }                                                                                          \
    } while (0)

struct probe_check {
    const char *name;
    void (*run)(void);
};

/* main() of a probe: the status to return. */
static inline int run_probe(const struct probe_check *checks, size_t count, int argc, char **argv) {
    for (size_t at = 0; at < count; ++at) {
        if (argc == 2 && strcmp(argv[1], checks[at].name) == 0) {
            checks[at].run();
            return 0;
        }
    }
    fprintf(stderr, "no such check\n");
    return 2;
}

#endif
