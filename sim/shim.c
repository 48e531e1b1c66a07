/* SPDX-License-Identifier: MIT
 * The preload library of the simulator: stands in for the calls through which a host reaches its
 * screen, its event pipe, its input queue and its device folders. Everything else, and every path
 * that is not one of those, goes on to the C library unchanged. Never writes to a stream. */
#include "sim/shim_next.h"
#include "sim/shim_paths.h"
#include "sim/shim_screen.h"
#include "sim/shim_waits.h"

#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <sys/ioctl.h>
#include <sys/ipc.h>
#include <sys/stat.h>
#include <unistd.h>

/* A call with a parameter called `path` that may be one of the run's own. */
#define PATH_CALL(name, parameters, arguments)                                                     \
    EXPORT int name parameters {                                                                   \
        FIND_NEXT(name, -1)                                                                        \
        char room[PATH_MAX];                                                                       \
        path = shim_path(path, room);                                                              \
        return next arguments;                                                                     \
    }

/* The screen's memory is never made, emptied or refused as a link, whatever the host asks for. */
static int open_flags(const char *path, int flags) {
    const int not_for_memory = O_CREAT | O_EXCL | O_TRUNC | O_NOFOLLOW;
    return shim_is_framebuffer(path) ? flags & ~not_for_memory : flags;
}

static mode_t creation_mode(int flags, va_list rest) {
    bool creates = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return creates ? va_arg(rest, mode_t) : 0;
}

#define OPEN_CALL(name)                                                                            \
    EXPORT int name(const char *path, int flags, ...) {                                            \
        FIND_NEXT(name, -1)                                                                        \
        va_list rest;                                                                              \
        va_start(rest, flags);                                                                     \
        mode_t mode = creation_mode(flags, rest);                                                  \
        va_end(rest);                                                                              \
        char room[PATH_MAX];                                                                       \
        flags = open_flags(path, flags);                                                           \
        path = shim_open_path(path, room);                                                         \
        int pipe = shim_open_pipe(AT_FDCWD, path, flags);                                          \
        return pipe != SHIM_NO_PIPE ? pipe : next(path, flags, mode);                              \
    }

#define OPENAT_CALL(name)                                                                          \
    EXPORT int name(int folder, const char *path, int flags, ...) {                                \
        FIND_NEXT(name, -1)                                                                        \
        va_list rest;                                                                              \
        va_start(rest, flags);                                                                     \
        mode_t mode = creation_mode(flags, rest);                                                  \
        va_end(rest);                                                                              \
        char room[PATH_MAX];                                                                       \
        flags = open_flags(path, flags);                                                           \
        path = shim_open_path(path, room);                                                         \
        int pipe = shim_open_pipe(folder, path, flags);                                            \
        return pipe != SHIM_NO_PIPE ? pipe : next(folder, path, flags, mode);                      \
    }

OPEN_CALL(open)
OPEN_CALL(open64)
OPENAT_CALL(openat)
OPENAT_CALL(openat64)

/* What open becomes in a host built with fortified headers. */
int __open_2(const char *path, int flags);
int __open64_2(const char *path, int flags);
int __openat_2(int folder, const char *path, int flags);
int __openat64_2(int folder, const char *path, int flags);

#define OPEN_2_CALL(name, folder, parameters, arguments)                                           \
    EXPORT int name parameters {                                                                   \
        FIND_NEXT(name, -1)                                                                        \
        char room[PATH_MAX];                                                                       \
        flags = open_flags(path, flags);                                                           \
        path = shim_open_path(path, room);                                                         \
        int pipe = shim_open_pipe(folder, path, flags);                                            \
        return pipe != SHIM_NO_PIPE ? pipe : next arguments;                                       \
    }

OPEN_2_CALL(__open_2, AT_FDCWD, (const char *path, int flags), (path, flags))
OPEN_2_CALL(__open64_2, AT_FDCWD, (const char *path, int flags), (path, flags))
OPEN_2_CALL(__openat_2, folder, (int folder, const char *path, int flags), (folder, path, flags))
OPEN_2_CALL(__openat64_2, folder, (int folder, const char *path, int flags), (folder, path, flags))

/* Enough of fopen's flags to tell reader from writer. */
static int stream_flags(const char *mode) {
    const char *plus = strchr(mode, '+');
    return plus != NULL ? O_RDWR : mode[0] == 'r' ? O_RDONLY : O_WRONLY;
}

#define FOPEN_CALL(name)                                                                           \
    EXPORT FILE *name(const char *path, const char *mode) {                                        \
        FIND_NEXT(name, NULL)                                                                      \
        char room[PATH_MAX];                                                                       \
        path = shim_open_path(path, room);                                                         \
        int pipe = shim_open_pipe(AT_FDCWD, path, stream_flags(mode));                             \
        return pipe == SHIM_NO_PIPE ? next(path, mode) : pipe == -1 ? NULL : fdopen(pipe, mode);   \
    }

#define FREOPEN_CALL(name)                                                                         \
    EXPORT FILE *name(const char *path, const char *mode, FILE *stream) {                          \
        FIND_NEXT(name, NULL)                                                                      \
        char room[PATH_MAX];                                                                       \
        return next(shim_open_path(path, room), mode, stream);                                     \
    }

FOPEN_CALL(fopen)
FOPEN_CALL(fopen64)
FREOPEN_CALL(freopen)
FREOPEN_CALL(freopen64)

PATH_CALL(mkfifo, (const char *path, mode_t mode), (path, mode))
PATH_CALL(mkfifoat, (int folder, const char *path, mode_t mode), (folder, path, mode))
PATH_CALL(mknod, (const char *path, mode_t mode, dev_t device), (path, mode, device))
PATH_CALL(mknodat, (int folder, const char *path, mode_t mode, dev_t device),
          (folder, path, mode, device))
PATH_CALL(unlink, (const char *path), (path))
PATH_CALL(unlinkat, (int folder, const char *path, int flags), (folder, path, flags))
PATH_CALL(remove, (const char *path), (path))
PATH_CALL(chmod, (const char *path, mode_t mode), (path, mode))
PATH_CALL(access, (const char *path, int mode), (path, mode))
PATH_CALL(stat, (const char *path, struct stat *result), (path, result))
PATH_CALL(stat64, (const char *path, struct stat64 *result), (path, result))
PATH_CALL(lstat, (const char *path, struct stat *result), (path, result))
PATH_CALL(lstat64, (const char *path, struct stat64 *result), (path, result))

/* What stat and mknod are called in hosts built against a C library older than 2.33. */
int __xstat(int version, const char *path, struct stat *result);
int __xstat64(int version, const char *path, struct stat64 *result);
int __lxstat(int version, const char *path, struct stat *result);
int __lxstat64(int version, const char *path, struct stat64 *result);
int __xmknod(int version, const char *path, mode_t mode, dev_t *device);

PATH_CALL(__xstat, (int version, const char *path, struct stat *result), (version, path, result))
PATH_CALL(__xstat64, (int version, const char *path, struct stat64 *result),
          (version, path, result))
PATH_CALL(__lxstat, (int version, const char *path, struct stat *result), (version, path, result))
PATH_CALL(__lxstat64, (int version, const char *path, struct stat64 *result),
          (version, path, result))
PATH_CALL(__xmknod, (int version, const char *path, mode_t mode, dev_t *device),
          (version, path, mode, device))

EXPORT key_t ftok(const char *path, int project) {
    FIND_NEXT(ftok, -1)
    return next(shim_queue_path(path, project), project);
}

EXPORT int ioctl(int fd, unsigned long request, ...) {
    FIND_NEXT(ioctl, -1)
    va_list rest;
    va_start(rest, request);
    void *argument = va_arg(rest, void *);
    va_end(rest);
    return shim_screen_answer(fd, request, argument) ? 0 : next(fd, request, argument);
}
