// SPDX-License-Identifier: MIT
// A string rendered in two colours, seen as text.
#ifndef UX_TESTS_FONT_STRING_BUFFER_TEST_H
#define UX_TESTS_FONT_STRING_BUFFER_TEST_H

#include "tests/font/engine_text_test.h"

#include <cstdlib>
#include <cstring>

inline constexpr uint32_t k_fg = 0xFF112233;
inline constexpr uint32_t k_bg = 0xFF445566;
inline constexpr uint32_t k_scratch = 0x30000; // two areas of the engine come before it

class StringBufferTest : public EngineTextTest {
  protected:
    ~StringBufferTest() override { free(block); }

    // Renders and returns what that printed. The block is freed with the test.
    std::string render(const char *text, int size = 16, uint32_t bpp = 4) {
        free(std::exchange(block, nullptr));
        return output_of([&] {
            block = ux_get_string_buffer(text, size, k_fg, k_bg, bpp, &width, &height);
            pixel_bytes = bpp;
        });
    }

    uint32_t pixel(uint32_t x, uint32_t y) const {
        uint32_t value = 0;
        memcpy(&value, static_cast<uint8_t *>(block) + (y * width + x) * pixel_bytes, pixel_bytes);
        return value;
    }

    // The block, one string per row: 'X' foreground, '.' background, ' ' zero, '?' anything else.
    std::vector<std::string> picture() const {
        const uint32_t mask = pixel_bytes == 4 ? 0xFFFFFFFF : (1u << 8 * pixel_bytes) - 1;
        std::vector<std::string> rows(height);
        for (uint32_t y = 0; y < height; y++)
            for (uint32_t x = 0; x < width; x++) {
                const uint32_t value = pixel(x, y);
                rows[y] += value == (k_fg & mask)   ? 'X'
                           : value == (k_bg & mask) ? '.'
                           : value == 0             ? ' '
                                                    : '?';
            }
        return rows;
    }

    // A failure that gives everything back: leak detection watches the block.
    void expect_failure(const std::string &message) {
        width = 1234;
        height = 5678;
        EXPECT_EQ(render("ab"), message);
        EXPECT_EQ(block, nullptr);
        EXPECT_EQ(width, 1234u);
        EXPECT_EQ(height, 5678u);
    }

    // A failure that keeps block and scratch area. The block is still there: it can be freed.
    void expect_abandoned(const std::string &message) {
        expect_failure(message);
        EXPECT_EQ(only(take_calls(), "RUAFree"), calls{});
        free(hooks::last_block());
    }

    void *block = nullptr;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t pixel_bytes = 4;
};

#endif
