// SPDX-License-Identifier: MIT
// Copies of the screen under an object: what is copied, who frees it, what a restore paints.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>
#include <cstdlib>

namespace {

constexpr uint32_t k_saved_bits = UX_ST_BG_SAVED | UX_ST_BG_EXTERNAL;

class SaveAreaTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        obj.x = 3;
        obj.y = 2;
        obj.width = 4;
        obj.height = 2;
        number_pixels();
    }

    void TearDown() override {
        if (!(obj.status & UX_ST_BG_EXTERNAL))
            free(obj.bg_backup);
        free(obj.fg_backup);
        ScreenTest::TearDown();
    }

    // Pixel (x, y) of `buf` becomes 0xFF000000 + 16 * y + x + 1.
    void number_pixels() {
        for (int y = 0; y < main_screen.height; y++)
            for (int x = 0; x < main_screen.width; x++)
                set_buf_pixel(x, y, 0xFF000001 + static_cast<uint32_t>(16 * y + x));
    }

    void place(int x, int y, int width, int height) {
        obj.x = x;
        obj.y = y;
        obj.width = width;
        obj.height = height;
    }

    static std::vector<uint32_t> words(const void *area, size_t count) {
        std::vector<uint32_t> result(count);
        memcpy(result.data(), area, count * 4);
        return result;
    }

    // Takes the host's buffer away from the object and frees it.
    void take_back(void *buffer) {
        if (obj.bg_backup == buffer)
            obj.bg_backup = nullptr;
        free(buffer);
    }

    ux_obj obj = {};
};

std::vector<uint32_t> place_numbers(std::initializer_list<uint32_t> places) {
    std::vector<uint32_t> result;
    for (uint32_t place : places)
        result.push_back(place == 0 ? 0 : 0xFF000000 + place);
    return result;
}

} // namespace

// Row 2 begins with 33: columns 3..6 are 36..39.
TEST_F(SaveAreaTest, background_copy_holds_the_rows_packed) {
    EXPECT_EQ(ux_obj_backup_bg(&obj), 0);
    EXPECT_EQ(words(obj.bg_backup, 8), place_numbers({36, 37, 38, 39, 52, 53, 54, 55}));
    EXPECT_EQ(obj.status, static_cast<uint32_t>(UX_ST_BG_SAVED));
    EXPECT_EQ(obj.fg_backup, nullptr);
}

TEST_F(SaveAreaTest, foreground_copy_holds_the_rows_packed) {
    EXPECT_EQ(ux_obj_backup_fg(&obj), 0);
    EXPECT_EQ(words(obj.fg_backup, 8), place_numbers({36, 37, 38, 39, 52, 53, 54, 55}));
    EXPECT_EQ(obj.status, static_cast<uint32_t>(UX_ST_FG_SAVED));
    EXPECT_EQ(obj.bg_backup, nullptr);
}

TEST_F(SaveAreaTest, copies_come_from_buf_and_not_from_fb) {
    set_apart();
    ux_obj_backup_bg(&obj);
    ux_obj_backup_fg(&obj);
    EXPECT_EQ(words(obj.bg_backup, 1), place_numbers({36}));
    EXPECT_EQ(words(obj.fg_backup, 1), place_numbers({36}));
}

TEST_F(SaveAreaTest, rows_are_as_long_as_the_drawing_width_when_rotated) {
    main_screen.rotation = UX_ROTATION_90;
    main_screen.width = 8;
    main_screen.height = 16;
    place(1, 1, 2, 2);
    ux_obj_backup_bg(&obj);
    EXPECT_EQ(words(obj.bg_backup, 4), place_numbers({10, 11, 18, 19}));
}

TEST_F(SaveAreaTest, sixteen_bit_pixels_are_copied_as_halves) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    number_pixels();
    ux_obj_backup_bg(&obj);
    const uint16_t expected[8] = {36, 37, 38, 39, 52, 53, 54, 55};
    EXPECT_EQ(memcmp(obj.bg_backup, expected, sizeof expected), 0);
}

TEST_F(SaveAreaTest, second_backup_copies_again) {
    ux_obj_backup_bg(&obj);
    void *area = obj.bg_backup;
    fill_buf(0x12345678);
    EXPECT_EQ(ux_obj_backup_bg(&obj), 0);
    EXPECT_EQ(obj.bg_backup, area);
    EXPECT_EQ(words(obj.bg_backup, 8), std::vector<uint32_t>(8, 0x12345678));
}

TEST_F(SaveAreaTest, second_foreground_backup_copies_again) {
    ux_obj_backup_fg(&obj);
    fill_buf(0x12345678);
    EXPECT_EQ(ux_obj_backup_fg(&obj), 0);
    EXPECT_EQ(words(obj.fg_backup, 8), std::vector<uint32_t>(8, 0x12345678));
}

TEST_F(SaveAreaTest, buffer_of_the_host_is_never_overwritten) {
    void *buffer = calloc(8, 4);
    EXPECT_EQ(ux_obj_set_bg_buffer(&obj, buffer), 0);
    EXPECT_EQ(ux_obj_backup_bg(&obj), 0);
    EXPECT_EQ(obj.bg_backup, buffer);
    EXPECT_EQ(words(buffer, 8), std::vector<uint32_t>(8));
    EXPECT_EQ(obj.status, k_saved_bits);
    take_back(buffer);
}

TEST_F(SaveAreaTest, set_size_drops_the_hosts_buffer_without_freeing_it) {
    void *buffer = calloc(8, 4);
    ux_obj_set_bg_buffer(&obj, buffer);
    EXPECT_EQ(ux_obj_set_size(&obj, 0, 0, 4, 2), 0);
    EXPECT_EQ(obj.bg_backup, nullptr);
    EXPECT_EQ(obj.status, 0u);
    memset(buffer, 1, 32);
    free(buffer);
}

TEST_F(SaveAreaTest, set_size_drops_the_own_background_copy_and_keeps_the_foreground) {
    ux_obj_backup_bg(&obj);
    ux_obj_backup_fg(&obj);
    void *foreground = obj.fg_backup;
    ux_obj_set_size(&obj, 0, 0, 40, 20);
    EXPECT_EQ(obj.bg_backup, nullptr);
    EXPECT_EQ(obj.fg_backup, foreground);
    EXPECT_EQ(obj.status, static_cast<uint32_t>(UX_ST_FG_SAVED));
}

TEST_F(SaveAreaTest, set_size_without_a_copy_leaves_the_two_bits) {
    ux_obj_set_bg_buffer(&obj, nullptr);
    EXPECT_EQ(obj.status, k_saved_bits);
    ux_obj_set_size(&obj, 0, 0, 1, 1);
    EXPECT_EQ(obj.status, k_saved_bits);
}

// The sanitized build sees a copy that is freed twice or not at all.
TEST_F(SaveAreaTest, new_buffer_frees_the_librarys_copy_only) {
    ux_obj_backup_bg(&obj);
    void *first = calloc(8, 4);
    void *second = calloc(8, 4);
    ux_obj_set_bg_buffer(&obj, first);
    EXPECT_EQ(obj.bg_backup, first);
    ux_obj_set_bg_buffer(&obj, second);
    EXPECT_EQ(obj.bg_backup, second);
    memset(first, 1, 32);
    free(first);
    take_back(second);
}

TEST_F(SaveAreaTest, same_buffer_may_be_given_again) {
    ux_obj_backup_bg(&obj);
    void *copy = obj.bg_backup;
    ux_obj_set_bg_buffer(&obj, copy);
    ux_obj_set_bg_buffer(&obj, copy);
    memset(copy, 1, 32);
    EXPECT_EQ(obj.bg_backup, copy);
    take_back(copy);
}

TEST_F(SaveAreaTest, free_releases_the_background_even_of_the_host_but_no_foreground) {
    ux_container *box = ux_container_new(nullptr, 0, 0, 4, 2);
    ux_obj_backup_fg(&box->obj);
    void *foreground = box->obj.fg_backup;
    ux_obj_set_bg_buffer(&box->obj, calloc(8, 4));
    EXPECT_EQ(ux_obj_free(&box->obj), 0);
    memset(foreground, 1, 32);
    free(foreground);
}

TEST_F(SaveAreaTest, elements_outside_the_screen_are_0) {
    place(14, 6, 4, 4);
    ux_obj_backup_bg(&obj);
    // Past the right edge the next row follows, as the memory does; row 8 does not exist.
    EXPECT_EQ(words(obj.bg_backup, 16), place_numbers({111, 112, 113, 114, 127, 128, 0, 0, //
                                                       0, 0, 0, 0, 0, 0, 0, 0}));
    place(-2, 0, 4, 2);
    ux_obj_backup_bg(&obj);
    EXPECT_EQ(words(obj.bg_backup, 8), place_numbers({0, 0, 1, 2, 15, 16, 17, 18}));
    place(0, -1, 2, 2);
    ux_obj_backup_bg(&obj);
    EXPECT_EQ(words(obj.bg_backup, 4), place_numbers({0, 0, 1, 2}));
    for (const auto &[x, y] : {std::pair{INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}, {INT_MAX, 0}}) {
        place(x, y, 4, 2);
        ux_obj_backup_bg(&obj);
        EXPECT_EQ(words(obj.bg_backup, 8), std::vector<uint32_t>(8));
    }
}

TEST_F(SaveAreaTest, sizes_of_0_and_below_are_empty_copies) {
    for (const auto &[width, height] :
         {std::pair{0, 2}, {4, 0}, {-4, 2}, {4, -2}, {INT_MIN, INT_MIN}, {INT_MAX, -1}}) {
        place(3, 2, width, height);
        EXPECT_EQ(ux_obj_backup_bg(&obj), 0);
        EXPECT_EQ(ux_obj_backup_fg(&obj), 0);
        EXPECT_EQ(obj.status, static_cast<uint32_t>(UX_ST_BG_SAVED | UX_ST_FG_SAVED));
    }
}

TEST_F(SaveAreaTest, screen_without_memory_gives_zeros) {
    main_screen.buf = nullptr;
    EXPECT_EQ(ux_obj_backup_bg(&obj), 0);
    EXPECT_EQ(words(obj.bg_backup, 8), std::vector<uint32_t>(8));
    main_screen.width = main_screen.height = 0;
    EXPECT_EQ(ux_obj_backup_fg(&obj), 0);
    EXPECT_EQ(words(obj.fg_backup, 8), std::vector<uint32_t>(8));
}

TEST_F(SaveAreaTest, copy_grows_with_the_object) {
    ux_obj_backup_bg(&obj);
    place(0, 0, 16, 8);
    EXPECT_EQ(ux_obj_backup_bg(&obj), 0);
    EXPECT_EQ(words(obj.bg_backup, 128), plain::numbers(main_screen.buf));
    ux_obj_backup_fg(&obj);
    EXPECT_EQ(words(obj.fg_backup, 128), plain::numbers(main_screen.buf));
}

TEST_F(SaveAreaTest, failed_background_allocation_is_reported) {
    testing::internal::CaptureStderr();
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_obj_backup_bg(&obj), -2);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Can not allocate background backup image memory!\n");
    EXPECT_EQ(obj.bg_backup, nullptr);
    EXPECT_EQ(obj.status, 0u);
}

TEST_F(SaveAreaTest, failed_foreground_allocation_is_reported) {
    testing::internal::CaptureStderr();
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_obj_backup_fg(&obj), -2);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Can not allocate foreground backup image memory!\n");
    EXPECT_EQ(obj.fg_backup, nullptr);
    EXPECT_EQ(obj.status, 0u);
}

TEST_F(SaveAreaTest, failed_growth_keeps_the_old_copy) {
    ux_obj_backup_bg(&obj);
    void *area = obj.bg_backup;
    place(0, 0, 16, 8);
    testing::internal::CaptureStderr();
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_obj_backup_bg(&obj), -2);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(obj.bg_backup, area);
    EXPECT_EQ(words(area, 8), place_numbers({36, 37, 38, 39, 52, 53, 54, 55}));
}

TEST_F(SaveAreaTest, one_allocation_makes_a_copy_and_none_renews_it) {
    hooks::take_allocation_count();
    ux_obj_backup_bg(&obj);
    EXPECT_EQ(hooks::take_allocation_count(), 1);
    ux_obj_backup_bg(&obj);
    place(0, 0, 2, 2);
    ux_obj_backup_bg(&obj);
    EXPECT_EQ(hooks::take_allocation_count(), 0);
}
