/* SPDX-License-Identifier: MIT
 * Runs inside the simulator and looks at it through ordinary calls. `shim-probe NAME` carries out
 * one check; a check that does not hold is told on standard error and ends with status 1. */
#include "tests/sim/probe.h"

#include <fcntl.h>
#include <linux/fb.h>
#include <sys/ioctl.h>
#include <sys/ipc.h>
#include <sys/stat.h>
#include <unistd.h>

static const char k_screen[] = "/dev/fb0";
static const char k_pipe[] = "/tmp/event";

static int answers(int fd) {
    struct fb_var_screeninfo variable;
    return ioctl(fd, FBIOGET_VSCREENINFO, &variable) == 0;
}

static void information(int bits) {
    struct fb_fix_screeninfo fixed;
    struct fb_var_screeninfo variable;
    int fd = open(k_screen, O_RDWR);
    CHECK(fd != -1);
    memset(&fixed, 0xff, sizeof fixed);
    memset(&variable, 0xff, sizeof variable);
    CHECK(ioctl(fd, FBIOGET_FSCREENINFO, &fixed) == 0);
    CHECK(ioctl(fd, FBIOGET_VSCREENINFO, &variable) == 0);
    CHECK(fixed.smem_start != 0);
    CHECK(fixed.smem_start % (unsigned long)sysconf(_SC_PAGESIZE) == 0);
    CHECK(fixed.line_length == 100u * (unsigned)bits / 8);
    CHECK(fixed.smem_len == fixed.line_length * 50u);
    CHECK(fixed.type == FB_TYPE_PACKED_PIXELS);
    CHECK(fixed.visual == FB_VISUAL_TRUECOLOR);
    CHECK(variable.xres == 100 && variable.yres == 50);
    CHECK(variable.xres_virtual == 100 && variable.yres_virtual == 50);
    CHECK(variable.bits_per_pixel == (unsigned)bits);
    CHECK(variable.xoffset == 0 && variable.yoffset == 0 && variable.grayscale == 0);
    if (bits == 32) {
        CHECK(variable.red.offset == 16 && variable.red.length == 8);
        CHECK(variable.green.offset == 8 && variable.green.length == 8);
        CHECK(variable.blue.offset == 0 && variable.blue.length == 8);
        CHECK(variable.transp.offset == 24 && variable.transp.length == 8);
    } else {
        CHECK(variable.red.offset == 11 && variable.red.length == 5);
        CHECK(variable.green.offset == 5 && variable.green.length == 6);
        CHECK(variable.blue.offset == 0 && variable.blue.length == 5);
        CHECK(variable.transp.length == 0);
    }
}

static void information_32(void) {
    information(32);
}
static void information_16(void) {
    information(16);
}

static void every_way_to_open(void) {
    CHECK(answers(open(k_screen, O_RDWR)));
    CHECK(answers(open64(k_screen, O_RDWR)));
    CHECK(answers(openat(AT_FDCWD, k_screen, O_RDWR)));
    CHECK(answers(openat64(AT_FDCWD, k_screen, O_RDWR)));
    CHECK(answers(open(k_screen, O_RDWR | O_CREAT | O_TRUNC | O_NOFOLLOW, 0600)));
    FILE *stream = fopen(k_screen, "r+");
    CHECK(stream != NULL && answers(fileno(stream)));
}

static void descriptors(void) {
    int fd = open(k_screen, O_RDWR | O_CLOEXEC);
    CHECK((fcntl(fd, F_GETFD) & FD_CLOEXEC) != 0);
    int copy = dup(fd);
    CHECK(answers(copy));
    close(fd);
    CHECK(answers(copy));
    int other = open("/dev/null", O_RDWR);
    CHECK(other == fd); /* the number was free again */
    CHECK(!answers(other) && errno == ENOTTY);
    close(copy);
    CHECK(!answers(copy) && errno == EBADF);
    CHECK(!answers(-1) && errno == EBADF);
    dup2(other, 30);
    CHECK(!answers(30));
}

static void screens_share_pixels(void) {
    int one = open(k_screen, O_RDWR);
    int other = open(k_screen, O_RDONLY);
    char byte = 0;
    CHECK(pwrite(one, "x", 1, 123) == 1);
    CHECK(pread(other, &byte, 1, 123) == 1 && byte == 'x');
    CHECK(write(other, "y", 1) == -1);
}

/* Whatever stands at the real path, the host meets only its own. */
static void pipe_is_private(void) {
    struct stat before;
    struct stat after;
    unlink(k_pipe);
    CHECK(access(k_pipe, F_OK) == -1 && errno == ENOENT);
    CHECK(stat(k_pipe, &before) == -1 && lstat(k_pipe, &before) == -1);
    CHECK(mknod(k_pipe, S_IFIFO | 0666, 0) == 0);
    CHECK(mkfifo(k_pipe, 0666) == -1 && errno == EEXIST);
    CHECK(stat(k_pipe, &before) == 0 && S_ISFIFO(before.st_mode));
    CHECK(lstat(k_pipe, &after) == 0 && S_ISFIFO(after.st_mode));
    CHECK(access(k_pipe, R_OK | W_OK) == 0);
    int fd = open(k_pipe, O_PATH);
    CHECK(fd != -1 && fstat(fd, &after) == 0 && after.st_ino == before.st_ino);
    int reader = open(k_pipe, O_RDONLY | O_NONBLOCK);
    FILE *writer = fopen(k_pipe, "w");
    CHECK(reader != -1 && writer != NULL && fputs("hello", writer) >= 0 && fclose(writer) == 0);
    char text[6] = {0};
    CHECK(read(reader, text, 5) == 5 && strcmp(text, "hello") == 0);
    CHECK(unlink(k_pipe) == 0 && access(k_pipe, F_OK) == -1);
    CHECK(mknodat(AT_FDCWD, k_pipe, S_IFIFO | 0600, 0) == 0 && remove(k_pipe) == 0);
    CHECK(mkfifo(k_pipe, 0600) == 0 && unlinkat(AT_FDCWD, k_pipe, 0) == 0);
}

/* The key as ftok is defined. */
static key_t plain_key(const char *path, unsigned project) {
    struct stat file;
    CHECK(stat(path, &file) == 0);
    return (key_t)((file.st_ino & 0xffff) | (file.st_dev & 0xff) << 16 | project << 24);
}

static void plain_queue_key(void) {
    CHECK(ftok("/tmp", 40) == plain_key("/tmp", 40));
}

static void queue_key(void) {
    CHECK(ftok("/tmp", 40) == plain_key(getenv("UX_SIM_QUEUE"), 40));
    CHECK(ftok("/tmp", 40) != plain_key("/tmp", 40));
    CHECK(ftok("/tmp", 41) == plain_key("/tmp", 41));
    CHECK(ftok("/tmp/", 40) == plain_key("/tmp", 40));
    CHECK(ftok("/", 40) == plain_key("/", 40));
    CHECK(ftok("/nowhere", 40) == -1 && errno == ENOENT);
}

static void read_text(FILE *stream, char text[16]) {
    memset(text, 0, 16);
    CHECK(stream != NULL && fread(text, 1, 15, stream) > 0);
    fclose(stream);
}

/* Started with --root: the root holds /orbo/a.txt ("root") and not /orbo/b.txt. */
static void root_first(void) {
    char text[16];
    struct stat file;
    read_text(fopen("/orbo/a.txt", "r"), text);
    CHECK(strcmp(text, "root") == 0);
    CHECK(access("/orbo/a.txt", R_OK) == 0);
    CHECK(stat("/orbo/a.txt", &file) == 0 && file.st_size == 4);
    int fd = open("/orbo/a.txt", O_RDONLY);
    CHECK(fd != -1 && read(fd, text, 15) == 4);
    CHECK(access("/mnt/firmware/c.txt", F_OK) == 0);
    CHECK(open("/orbo/b.txt", O_RDONLY) == -1 && errno == ENOENT);
    CHECK(open("/orbooo/a.txt", O_RDONLY) == -1 && errno == ENOENT);
    fd = open("/proc/self/status", O_RDONLY);
    CHECK(fd != -1);
}

static void other_calls_pass(void) {
    char name[] = "/tmp/shim-probe.XXXXXX";
    int fd = mkstemp(name);
    CHECK(fd != -1);
    close(fd);
    fd = open(name, O_WRONLY | O_CREAT | O_TRUNC, 0640);
    CHECK(fd != -1 && write(fd, "abc", 3) == 3 && close(fd) == 0);
    struct stat file;
    CHECK(stat(name, &file) == 0 && file.st_size == 3);
    CHECK(unlink(name) == 0 && access(name, F_OK) == -1);
    umask(0);
    fd = open(name, O_WRONLY | O_CREAT | O_EXCL, 0604);
    CHECK(fd != -1 && fstat(fd, &file) == 0 && (file.st_mode & 0777) == 0604);
    CHECK(unlink(name) == 0);
    fd = open("/tmp", O_RDWR | O_TMPFILE, 0600);
    CHECK(fd != -1 && fstat(fd, &file) == 0 && (file.st_mode & 0777) == 0600);
    int pipes[2];
    int waiting = 0;
    CHECK(pipe(pipes) == 0 && write(pipes[1], "12345", 5) == 5);
    CHECK(ioctl(pipes[0], FIONREAD, &waiting) == 0 && waiting == 5);
    CHECK(open("/nowhere/x", O_RDONLY) == -1 && errno == ENOENT);
    CHECK(fopen("/nowhere/x", "r") == NULL && errno == ENOENT);
}

static const struct probe_check k_checks[] = {
    {"information_32", information_32},
    {"information_16", information_16},
    {"every_way_to_open", every_way_to_open},
    {"descriptors", descriptors},
    {"screens_share_pixels", screens_share_pixels},
    {"pipe_is_private", pipe_is_private},
    {"plain_queue_key", plain_queue_key},
    {"queue_key", queue_key},
    {"root_first", root_first},
    {"other_calls_pass", other_calls_pass},
};

int main(int argc, char **argv) {
    return run_probe(k_checks, sizeof k_checks / sizeof *k_checks, argc, argv);
}
