// SPDX-License-Identifier: MIT
// The framebuffer device: opening, mapping, rotation, release. What is done with the memory is told
// in uxWidget.cpp.

#include "core/uxWidget.h"

#include "graphics/surface.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/fb.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

ux_screen main_screen;

namespace ux {

int fb_handle = -1;
uint32_t display_size;

namespace {

constexpr const char *k_device = "/dev/fb0";

// What ux_system_close() gives back.
struct device_state {
    void *base;   // start of the mapping, before the alignment fix; null = not mapped
    size_t bytes; // size of the mapping
    bool open;    // between ux_system_init() and ux_system_close()
};

device_state s_device;

int color_mode_of(const fb_var_screeninfo &info) {
    if (info.red.offset == 11 && info.red.length == 5)
        return UX_COLOR_MODE_RGB565;
    if (info.red.offset != 16 || info.red.length != 8)
        fputs("Warning: Color mode is using the default value: ARGB8888\n", stderr);
    return UX_COLOR_MODE_ARGB8888;
}

void fill_screen(const fb_var_screeninfo &info) {
    main_screen.width = main_screen.xres = static_cast<int32_t>(info.xres);
    main_screen.height = main_screen.yres = static_cast<int32_t>(info.yres);
    main_screen.bytes_per_pixel = static_cast<int32_t>(info.bits_per_pixel >> 3);
    display_size = info.xres * info.yres * (info.bits_per_pixel >> 3);
    main_screen.color_mode = color_mode_of(info);
}

// display_size, without its limit of 32 bits.
size_t screen_bytes() {
    return static_cast<size_t>(element_count(main_screen)) *
           static_cast<size_t>(main_screen.bytes_per_pixel);
}

// The screen's memory begins inside the first page when the device's does: one page more is mapped.
void map_device(const fb_fix_screeninfo &info) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    s_device.bytes = page + screen_bytes();
    void *base = mmap(nullptr, s_device.bytes, PROT_READ | PROT_WRITE, MAP_SHARED, fb_handle, 0);
    if (base == MAP_FAILED) {
        fputs("error mapping fb", stdout);
        exit(1);
    }
    s_device.base = base;
    main_screen.fb = static_cast<uint8_t *>(base);
    if (info.smem_start % page != 0) {
        main_screen.fb += info.smem_start & (page - 1);
        fprintf(stderr, "Fix alignment 0x%08lx -> %p.\n", info.smem_start,
                static_cast<void *>(main_screen.fb));
    }
}

bool query_device(fb_fix_screeninfo &fixed, fb_var_screeninfo &variable) {
    fb_handle = open(k_device, O_RDWR);
    if (fb_handle < 0) {
        fprintf(stderr, "Can not open %s\n", k_device);
        return false;
    }
    if (ioctl(fb_handle, FBIOGET_FSCREENINFO, &fixed) < 0) {
        fputs("Error reading fb fixed information.\n", stderr);
        return false;
    }
    if (ioctl(fb_handle, FBIOGET_VSCREENINFO, &variable) < 0) {
        fputs("Error reading fb variable information.\n", stderr);
        return false;
    }
    return true;
}

void close_device() {
    if (fb_handle >= 0)
        close(fb_handle);
    fb_handle = -1;
}

void open_screen() {
    fb_fix_screeninfo fixed = {};
    fb_var_screeninfo variable = {};
    if (!query_device(fixed, variable)) {
        close_device();
        return;
    }
    fill_screen(variable);
    map_device(fixed);
    main_screen.buf = main_screen.fb;
    if (!main_screen.buf)
        fputs("Can not allocate main_screen.fb\n", stderr);
    else
        memset(main_screen.buf, 0, screen_bytes());
}

bool is_mapped(const uint8_t *memory) {
    const auto base = reinterpret_cast<uintptr_t>(s_device.base);
    const auto address = reinterpret_cast<uintptr_t>(memory);
    return s_device.base && address >= base && address - base < s_device.bytes;
}

// A drawing buffer of the host's own is freed; the device's memory is unmapped.
void release_screen() {
    if (!is_mapped(main_screen.buf))
        free(main_screen.buf);
    if (s_device.base)
        munmap(s_device.base, s_device.bytes);
    close_device();
    main_screen.buf = nullptr;
    main_screen.fb = nullptr;
    s_device = {};
}

} // namespace
} // namespace ux

// What an earlier call opened is closed first: the engine takes no second user.
// A device failure shows in the messages only: the font is opened and page 0 made all the same.
int ux_system_init() noexcept {
    ux_system_close();
    main_screen = {};
    ux::open_screen();
    ux::s_device.open = true;
    ux_open_font();
    main_screen.current_page = ux_page_new();
    return 0;
}

int ux_system_close() noexcept {
    if (!ux::s_device.open)
        return 0;
    ux_close_font();
    ux::release_screen();
    return 0;
}

// A second call exchanges the sizes again.
int ux_screen_rorate_init(const char *mode) noexcept {
    puts("\n\nEnter ux_screen_rorate_init.........\n");
    if (!mode)
        return 0;
    const bool turn_90 = strcmp(mode, "RORATE_90") == 0;
    const bool turn_270 = strcmp(mode, "RORATE_270") == 0;
    if (!turn_90 && !turn_270)
        return 0;
    main_screen.rotation = turn_90 ? UX_ROTATION_90 : UX_ROTATION_270;
    const int32_t width = main_screen.width;
    main_screen.width = main_screen.height;
    main_screen.height = width;
    return 0;
}
