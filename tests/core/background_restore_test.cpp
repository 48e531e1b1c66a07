// SPDX-License-Identifier: MIT
// What a saved background paints: a blend, bounded by the copy. Seen on a container without a
// colour that saves the screen under it.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <cstdlib>

namespace {

class BackgroundRestoreTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        make_box();
    }

    void make_box() {
        ux_page *page = new_page();
        box = ux_container_new(&page->container, 2, 1, 4, 3);
        box->bg_color = UX_COLOR_NONE;
        box->obj.page_id = main_screen.current_page;
        ux_obj_set_flag(&box->obj, UX_FLAG_SAVE_BG);
    }

    ux_container *box = nullptr;
};

} // namespace

// (200 * 1 + 80 * 255) >> 8 = 80, (255 * 1 + 255 * 255) >> 8 = 255, 0 * 1 + 255 * 255 >> 8 = 254.
TEST_F(BackgroundRestoreTest, restore_blends_with_weight_256_minus_alpha) {
    fill_buf(0xFF50FFFF);
    ux_container_show_self(box);
    fill_buf(0x00C8FF00);
    ux_container_show_self(box);
    EXPECT_EQ(buf_pixel(2, 1), 0xFF50FFFEu);
    EXPECT_EQ(buf_pixel(5, 3), 0xFF50FFFEu);
    EXPECT_EQ(buf_pixel(6, 3), 0x00C8FF00u);
    EXPECT_EQ(buf_pixel(2, 4), 0x00C8FF00u);
}

TEST_F(BackgroundRestoreTest, pixels_saved_with_alpha_0_restore_nothing) {
    fill_buf(0x00FFFFFF);
    ux_container_show_self(box);
    fill_buf(0xFF123456);
    ux_container_show_self(box);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8, 0xFF123456));
}

TEST_F(BackgroundRestoreTest, restore_right_after_the_copy_changes_no_pixel) {
    plain::dice dice(1);
    for (int y = 0; y < 8; y++)
        for (int x = 0; x < 16; x++)
            set_buf_pixel(x, y, dice.word());
    const auto before = plain::numbers(main_screen.buf);
    ux_container_show_self(box);
    ux_container_show_self(box);
    EXPECT_EQ(plain::numbers(main_screen.buf), before);
}

TEST_F(BackgroundRestoreTest, restore_on_a_16_bit_screen_is_a_copy) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    fill_buf(0xABCD);
    ux_container_show_self(box);
    fill_buf(0x1111);
    ux_container_show_self(box);
    EXPECT_EQ(buf_picture(0xABCD).substr(0, 5 * 17), "????????????????\n"
                                                     "??XXXX??????????\n"
                                                     "??XXXX??????????\n"
                                                     "??XXXX??????????\n"
                                                     "????????????????\n");
}

TEST_F(BackgroundRestoreTest, buffer_of_the_host_is_painted) {
    auto *pixels = static_cast<uint32_t *>(calloc(12, 4));
    pixels[0] = pixels[5] = pixels[11] = 0xFFFFFFFF;
    ux_obj_set_bg_buffer(&box->obj, pixels);
    ux_container_show_self(box);
    EXPECT_EQ(buf_picture(0xFFFEFEFE).substr(0, 5 * 17), "................\n"
                                                         "..X.............\n"
                                                         "...X............\n"
                                                         ".....X..........\n"
                                                         "................\n");
}

TEST_F(BackgroundRestoreTest, null_buffer_of_the_host_paints_nothing) {
    ux_obj_set_bg_buffer(&box->obj, nullptr);
    ux_container_show_self(box);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
    EXPECT_EQ(box->obj.bg_backup, nullptr);
}

// The copy has 3 rows of 4: of an object enlarged by hand to rows of 6 it covers the first two. The
// sanitized build sees a read beyond it.
TEST_F(BackgroundRestoreTest, copy_is_not_read_beyond_its_end_when_the_object_grew) {
    fill_buf(0xFFFFFFFF);
    ux_container_show_self(box);
    fill_buf(0);
    box->obj.width = 6;
    box->obj.height = 1000;
    ux_container_show_self(box);
    EXPECT_EQ(buf_pixel(7, 1), 0xFFFEFEFEu);
    EXPECT_EQ(buf_pixel(7, 2), 0xFFFEFEFEu);
    EXPECT_EQ(buf_pixel(8, 2), 0u);
    EXPECT_EQ(buf_pixel(2, 7), 0u);
}

// Three bytes are saved for each pixel where the blend reads four: only as much as is there.
TEST_F(BackgroundRestoreTest, copy_of_small_pixels_is_not_read_beyond_its_end) {
    main_screen.bytes_per_pixel = 3;
    box->obj.width = 16;
    box->obj.height = 4;
    memset(main_screen.buf, 0xFF, 16 * 8 * 3);
    ux_container_show_self(box);
    ux_container_show_self(box);
    main_screen.bytes_per_pixel = 1;
    ux_container_show_self(box);
    EXPECT_NE(box->obj.status & UX_ST_BG_SAVED, 0u);
}

TEST_F(BackgroundRestoreTest, object_partly_outside_gets_its_visible_part_back) {
    ux_obj_set_size(&box->obj, 13, 6, 5, 4);
    fill_buf(0xFFFFFFFF);
    ux_container_show_self(box);
    fill_buf(0x00FFFFFF);
    ux_container_show_self(box);
    EXPECT_EQ(buf_picture(0xFFFFFFFF).substr(5 * 17), "????????????????\n"
                                                      "?????????????XXX\n"
                                                      "?????????????XXX\n");
}
