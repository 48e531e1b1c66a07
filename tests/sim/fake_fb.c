/* SPDX-License-Identifier: MIT
 * Preloaded into a program, makes /dev/fake-fb a framebuffer device of any kind: its memory is the
 * file that FAKE_FB_MEMORY names, what it tells of itself lies in those of FAKE_FB_FIXED and
 * FAKE_FB_MODE, and is read again each time. Without a whole mode the device is gone. */
#include <errno.h>
#include <fcntl.h>
#include <linux/fb.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

#define EXPORT __attribute__((visibility("default")))

static int s_device = -1;

static int open_file(const char *path, int flags, mode_t mode) {
    return (int)syscall(SYS_openat, AT_FDCWD, path, flags, mode);
}

static int tell(const char *variable, void *record, size_t bytes) {
    const int file = open_file(getenv(variable), O_RDONLY | O_CLOEXEC, 0);
    const ssize_t got = read(file, record, bytes);
    close(file);
    if (got == (ssize_t)bytes) {
        return 0;
    }
    errno = ENODEV;
    return -1;
}

EXPORT int open(const char *path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    if (strcmp(path, "/dev/fake-fb") != 0) {
        return open_file(path, flags, mode);
    }
    s_device = open_file(getenv("FAKE_FB_MEMORY"), O_RDONLY | O_CLOEXEC, 0);
    return s_device;
}

EXPORT int ioctl(int fd, unsigned long request, ...) {
    va_list more;
    va_start(more, request);
    void *record = va_arg(more, void *);
    va_end(more);
    if (fd == s_device && request == FBIOGET_FSCREENINFO) {
        return tell("FAKE_FB_FIXED", record, sizeof(struct fb_fix_screeninfo));
    }
    if (fd == s_device && request == FBIOGET_VSCREENINFO) {
        return tell("FAKE_FB_MODE", record, sizeof(struct fb_var_screeninfo));
    }
    return (int)syscall(SYS_ioctl, fd, request, record);
}
