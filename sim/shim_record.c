/* SPDX-License-Identifier: MIT
 * The writing end of the recording's ring. */
#include "sim/shim_record.h"

#include "sim/record_share.h"
#include "sim/shim_clock.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

static struct sim_record_share *s_share; /* null = no recording */
static pthread_once_t s_once = PTHREAD_ONCE_INIT;

static void map_share(void) {
    const char *path = getenv("UX_SIM_RECORD");
    int fd = path == NULL || *path == '\0' ? -1 : openat(AT_FDCWD, path, O_RDWR | O_CLOEXEC);
    if (fd == -1) {
        return;
    }
    void *memory = mmap(NULL, sizeof *s_share, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    s_share = memory == MAP_FAILED ? NULL : memory;
}

__attribute__((constructor)) static void prepare(void) {
    pthread_once(&s_once, map_share);
}

static int64_t now_ns(void) {
    if (shim_clock_runs()) {
        return shim_clock_now();
    }
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * SHIM_SECOND_NS + now.tv_nsec;
}

void shim_record(int queue, const void *message, size_t bytes) {
    if (s_share == NULL || queue != s_share->queue || bytes < 2 * sizeof(int32_t)) {
        return;
    }
    int saved_errno = errno;
    int32_t fields[4] = {0, 0, 0, 0}; /* key, kind, x, y */
    memcpy(fields, (const char *)message + sizeof(long),
           bytes < sizeof fields ? bytes : sizeof fields);
    uint32_t number = __atomic_add_fetch(&s_share->taken, 1, __ATOMIC_ACQ_REL);
    struct sim_record_entry *entry = &s_share->entries[(number - 1) % SIM_RECORD_SLOTS];
    entry->key = fields[0];
    entry->kind = fields[1];
    entry->x = fields[2];
    entry->y = fields[3];
    entry->time_ns = now_ns();
    __atomic_store_n(&entry->number, number, __ATOMIC_RELEASE);
    errno = saved_errno;
}
