/* SPDX-License-Identifier: MIT
 * The run's paths, read once from the environment. A host may change its environment later and from
 * any thread, so everything is copied at the first use. */
#include "sim/shim_paths.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static const char k_framebuffer[] = "/dev/fb0";
static const char k_pipe[] = "/tmp/event";
static const char k_queue_path[] = "/tmp";
static const int k_queue_project = 40;

/* Empty strings mean "not given": the call then passes through. */
static struct {
    char memory[PATH_MAX]; /* shared memory of the screen */
    char pipe[PATH_MAX];   /* the run's event pipe */
    char queue[PATH_MAX];  /* path that names the run's message queue */
    char root[PATH_MAX];   /* folder that stands in for the device's file system */
} s_run;

static pthread_once_t s_once = PTHREAD_ONCE_INIT;

static void copy_variable(char room[PATH_MAX], const char *name) {
    const char *value = getenv(name);
    size_t length = value == NULL ? PATH_MAX : strlen(value);
    if (length < PATH_MAX) {
        memcpy(room, value, length + 1);
    }
}

static void read_environment(void) {
    copy_variable(s_run.memory, "UX_SIM_MEMORY");
    copy_variable(s_run.pipe, "UX_SIM_PIPE");
    copy_variable(s_run.queue, "UX_SIM_QUEUE");
    copy_variable(s_run.root, "UX_SIM_ROOT");
}

/* Reading before main() keeps clear of hosts that edit the environment; a call that comes even
 * earlier, from another library's constructor, reads it itself. */
__attribute__((constructor)) static void prepare(void) {
    pthread_once(&s_once, read_environment);
}

static bool starts_with(const char *text, const char *prefix) {
    return strncmp(text, prefix, strlen(prefix)) == 0;
}

static bool below_device_root(const char *path) {
    return starts_with(path, "/orbo/") || starts_with(path, "/mnt/firmware/");
}

const char *shim_path(const char *path, char room[PATH_MAX]) {
    prepare();
    if (path == NULL) {
        return path;
    }
    if (s_run.pipe[0] != '\0' && strcmp(path, k_pipe) == 0) {
        return s_run.pipe;
    }
    if (s_run.root[0] == '\0' || !below_device_root(path)) {
        return path;
    }
    int length = snprintf(room, PATH_MAX, "%s%s", s_run.root, path);
    if (length < 0 || length >= PATH_MAX) {
        return path;
    }
    int saved_errno = errno;
    /* faccessat and not access: the call must reach the C library, not this shim's answer. */
    bool there = faccessat(AT_FDCWD, room, F_OK, AT_EACCESS) == 0;
    errno = saved_errno;
    return there ? room : path;
}

bool shim_is_framebuffer(const char *path) {
    prepare();
    return path != NULL && s_run.memory[0] != '\0' && strcmp(path, k_framebuffer) == 0;
}

const char *shim_open_path(const char *path, char room[PATH_MAX]) {
    return shim_is_framebuffer(path) ? s_run.memory : shim_path(path, room);
}

const char *shim_queue_path(const char *path, int project) {
    prepare();
    bool own = path != NULL && s_run.queue[0] != '\0' && project == k_queue_project &&
               strcmp(path, k_queue_path) == 0;
    return own ? s_run.queue : path;
}

const char *shim_memory_path(void) {
    prepare();
    return s_run.memory[0] == '\0' ? NULL : s_run.memory;
}
