/* SPDX-License-Identifier: MIT
 * The framebuffer that a simulated host sees: fixed and variable information computed from the size
 * and format that ux-sim put into UX_SIM_SCREEN ("<width>x<height>x<bits>"). */
#include "sim/shim_screen.h"

#include "sim/shim_paths.h"

#include <errno.h>
#include <linux/fb.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

/* Where the screen claims to lie in physical memory: any page-aligned address but 0. */
static const unsigned long k_memory_start = 0x10000000ul;

static struct {
    uint32_t width;  /* pixels */
    uint32_t height; /* pixels */
    uint32_t bits;   /* per pixel, 16 or 32; 0 = no screen known */
} s_screen;

static pthread_once_t s_once = PTHREAD_ONCE_INIT;

static void read_environment(void) {
    const char *text = getenv("UX_SIM_SCREEN");
    unsigned width = 0;
    unsigned height = 0;
    unsigned bits = 0;
    if (text != NULL && sscanf(text, "%5ux%5ux%2u", &width, &height, &bits) == 3 &&
        (bits == 16 || bits == 32)) {
        s_screen.width = width;
        s_screen.height = height;
        s_screen.bits = bits;
    }
}

__attribute__((constructor)) static void prepare(void) {
    pthread_once(&s_once, read_environment);
}

/* A descriptor is the screen's when it shows the same file: duplicates and inherited ones count, a
 * number that was closed and given to another file does not. Nothing needs to follow close(). */
static bool is_screen(int fd) {
    const char *path = shim_memory_path();
    struct stat memory;
    struct stat file;
    int saved_errno = errno;
    bool same = path != NULL && fstat(fd, &file) == 0 && fstatat(-1, path, &memory, 0) == 0 &&
                file.st_dev == memory.st_dev && file.st_ino == memory.st_ino;
    errno = saved_errno;
    return same;
}

static void answer_fixed(struct fb_fix_screeninfo *info) {
    memset(info, 0, sizeof *info);
    memcpy(info->id, "ux-sim", sizeof "ux-sim");
    info->smem_start = k_memory_start;
    info->line_length = s_screen.width * (s_screen.bits / 8);
    info->smem_len = info->line_length * s_screen.height;
    info->type = FB_TYPE_PACKED_PIXELS;
    info->visual = FB_VISUAL_TRUECOLOR;
}

static struct fb_bitfield field(uint32_t offset, uint32_t length) {
    return (struct fb_bitfield){.offset = offset, .length = length, .msb_right = 0};
}

static void answer_variable(struct fb_var_screeninfo *info) {
    memset(info, 0, sizeof *info);
    info->xres = info->xres_virtual = s_screen.width;
    info->yres = info->yres_virtual = s_screen.height;
    info->bits_per_pixel = s_screen.bits;
    if (s_screen.bits == 16) {
        info->red = field(11, 5);
        info->green = field(5, 6);
        info->blue = field(0, 5);
    } else {
        info->red = field(16, 8);
        info->green = field(8, 8);
        info->blue = field(0, 8);
        info->transp = field(24, 8);
    }
    info->activate = FB_ACTIVATE_NOW;
    info->width = info->height = UINT32_MAX; /* size in millimetres: unknown */
    info->vmode = FB_VMODE_NONINTERLACED;
}

bool shim_screen_answer(int fd, unsigned long request, void *argument) {
    prepare();
    bool query = request == FBIOGET_FSCREENINFO || request == FBIOGET_VSCREENINFO;
    if (!query || argument == NULL || s_screen.bits == 0 || !is_screen(fd)) {
        return false;
    }
    if (request == FBIOGET_FSCREENINFO) {
        answer_fixed(argument);
    } else {
        answer_variable(argument);
    }
    return true;
}
