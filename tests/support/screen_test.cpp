// SPDX-License-Identifier: MIT
// The screen of unit tests; see screen_test.h.

#include "tests/support/screen_test.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr uint8_t k_guard_byte = 0xA5;

void drop_timers() {
    while (ux_timeout_list)
        ux_delete_timeout(ux_timeout_list->id);
    while (ux_atimer_list)
        ux_delete_atimer(ux_atimer_list->id);
    ux_timeout_count = 0;
    ux_atimer_count = 0;
}

// Lowest first: children free themselves through their slots, whatever they are. Containers whose
// slot leaves their own children are walked.
void free_tree(ux_container *container) {
    ux_obj *child = container->children;
    while (child) {
        ux_obj *next = child->next;
        if ((child->type & UX_TYPE_CONTAINER) && child->free == ux_obj_free)
            free_tree(reinterpret_cast<ux_container *>(child));
        else
            child->free(child);
        child = next;
    }
    ux_obj_free(&container->obj);
}

} // namespace

guarded_memory::guarded_memory(size_t bytes) : m_bytes(bytes + 2 * k_guard, 0) {
    memset(m_bytes.data(), k_guard_byte, k_guard);
    memset(m_bytes.data() + k_guard + bytes, k_guard_byte, k_guard);
}

bool guarded_memory::guards_are_whole() const {
    for (size_t i = 0; i < k_guard; i++)
        if (m_bytes[i] != k_guard_byte || m_bytes[m_bytes.size() - 1 - i] != k_guard_byte)
            return false;
    return true;
}

void ScreenTest::SetUp() {
    hooks::reset();
    hooks::get().fake_clock = true;
    fake_chip::reset();
    unsetenv("FontSize");
    main_screen = {};
    ux_error = 0;
    make_screen(16, 8);
}

void ScreenTest::TearDown() {
    hooks::reset();
    drop_timers();
    free_pages();
    for (const guarded_memory &memory : m_memories)
        EXPECT_TRUE(memory.guards_are_whole()) << "a write outside the screen";
    main_screen = {};
    fake_chip::reset(); // frees the glyphs that are kept on purpose
}

void ScreenTest::make_screen(int width, int height, int color_mode) {
    main_screen.width = main_screen.xres = width;
    main_screen.height = main_screen.yres = height;
    main_screen.color_mode = color_mode;
    main_screen.bytes_per_pixel = color_mode == UX_COLOR_MODE_RGB565 ? 2 : 4;
    m_memories.emplace_back(static_cast<size_t>(width) * static_cast<size_t>(height) *
                            static_cast<size_t>(main_screen.bytes_per_pixel));
    main_screen.buf = main_screen.fb = m_memories.back().data();
}

void ScreenTest::set_apart() {
    m_memories.emplace_back(static_cast<size_t>(main_screen.width) *
                            static_cast<size_t>(main_screen.height) *
                            static_cast<size_t>(main_screen.bytes_per_pixel));
    main_screen.fb = m_memories.back().data();
}

uint32_t ScreenTest::pixel(const uint8_t *memory, int x, int y) const {
    uint32_t value = 0;
    const size_t bpp = static_cast<size_t>(main_screen.bytes_per_pixel);
    memcpy(&value, memory + static_cast<size_t>(y * main_screen.width + x) * bpp, bpp);
    return value;
}

void ScreenTest::set_pixel(uint8_t *memory, int x, int y, uint32_t value) {
    const size_t bpp = static_cast<size_t>(main_screen.bytes_per_pixel);
    memcpy(memory + static_cast<size_t>(y * main_screen.width + x) * bpp, &value, bpp);
}

void ScreenTest::fill_buf(uint32_t value) {
    for (int y = 0; y < main_screen.height; y++)
        for (int x = 0; x < main_screen.width; x++)
            set_buf_pixel(x, y, value);
}

std::string ScreenTest::picture_of(const uint8_t *memory, uint32_t color) const {
    std::string picture;
    for (int y = 0; y < main_screen.height; y++) {
        for (int x = 0; x < main_screen.width; x++) {
            const uint32_t value = pixel(memory, x, y);
            picture += value == 0 ? '.' : value == color ? 'X' : '?';
        }
        picture += '\n';
    }
    return picture;
}

ux_page *ScreenTest::new_page() {
    const int index = ux_page_new();
    return index < 0 ? nullptr : main_screen.pages[index];
}

void ScreenTest::free_pages() {
    for (int i = 0; i < main_screen.page_count && i < UX_MAX_PAGES; i++)
        if (main_screen.pages[i])
            free_tree(&main_screen.pages[i]->container);
}
