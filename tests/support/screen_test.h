// SPDX-License-Identifier: MIT
// A screen in ordinary memory for unit tests, with guards around it: a write outside the screen
// fails the test.
#ifndef UX_TESTS_SUPPORT_SCREEN_TEST_H
#define UX_TESTS_SUPPORT_SCREEN_TEST_H

#include "tests/support/fake_chip.h"
#include "tests/support/hooks.h"
#include "ux.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

// Memory for one screen, between two guards.
class guarded_memory {
  public:
    explicit guarded_memory(size_t bytes);

    uint8_t *data() { return m_bytes.data() + k_guard; }
    bool guards_are_whole() const;

  private:
    static constexpr size_t k_guard = 4096;
    std::vector<uint8_t> m_bytes;
};

// Each test begins with a 32-bit screen of 16 x 8 pixels, all 0, `buf` and `fb` one memory, no
// pages, no timers, the fake clock on, real libc otherwise, and a chip without glyphs.
class ScreenTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // A new, cleared screen. `color_mode` 1 has 4 bytes per pixel, 3 has 2.
    void make_screen(int width, int height, int color_mode = UX_COLOR_MODE_ARGB8888);

    // Gives `fb` a cleared memory of its own.
    void set_apart();

    // Pixels of a memory, as stored.
    uint32_t buf_pixel(int x, int y) const { return pixel(main_screen.buf, x, y); }
    uint32_t fb_pixel(int x, int y) const { return pixel(main_screen.fb, x, y); }
    void set_buf_pixel(int x, int y, uint32_t value) { set_pixel(main_screen.buf, x, y, value); }
    void set_fb_pixel(int x, int y, uint32_t value) { set_pixel(main_screen.fb, x, y, value); }
    void fill_buf(uint32_t value);

    // A memory as text, one line per row: '.' for 0, 'X' for `color`, '?' for anything else.
    std::string picture_of(const uint8_t *memory, uint32_t color) const;
    std::string buf_picture(uint32_t color) const { return picture_of(main_screen.buf, color); }
    std::string fb_picture(uint32_t color) const { return picture_of(main_screen.fb, color); }

    // Makes a page (the first one is current) and returns it.
    ux_page *new_page();

  private:
    uint32_t pixel(const uint8_t *memory, int x, int y) const;
    void set_pixel(uint8_t *memory, int x, int y, uint32_t value);
    void free_pages();

    std::vector<guarded_memory> m_memories;
};

#endif
