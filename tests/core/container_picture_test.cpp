// SPDX-License-Identifier: MIT
// The container's background picture: where it is painted, what comes before it, when it is read.

#include "tests/widgets/picture_widget_test.h"

#include <climits>

namespace {

class ContainerPictureTest : public PictureWidgetTest {
  protected:
    void SetUp() override {
        PictureWidgetTest::SetUp();
        box = ux_container_new(root(), 2, 1, 6, 4);
        ux_container_set_bg_image(box, red.c_str());
    }

    ux_container *box = nullptr;
};

} // namespace

TEST_F(ContainerPictureTest, picture_fills_the_container_and_is_updated) {
    set_apart();
    EXPECT_EQ(ux_container_show_self(box), 0);
    const std::string wanted = "................\n..XXXXXX........\n..XXXXXX........\n"
                               "..XXXXXX........\n..XXXXXX........\n................\n"
                               "................\n................\n";
    EXPECT_EQ(buf_picture(k_red_seen), wanted);
    EXPECT_EQ(fb_picture(k_red_seen), wanted);
}

TEST_F(ContainerPictureTest, picture_fills_the_inside_of_the_border) {
    ux_container_set_border(box, 1);
    ux_container_show_self(box);
    EXPECT_EQ(buf_pixel(3, 2), k_red_seen);
    EXPECT_EQ(buf_pixel(6, 3), k_red_seen);
    EXPECT_NE(buf_pixel(2, 1), k_red_seen);
    EXPECT_NE(buf_pixel(7, 4), k_red_seen);
    int inside = 0;
    for (int i = 0; i < 16 * 8; i++)
        inside += buf_pixel(i % 16, i / 16) == k_red_seen;
    EXPECT_EQ(inside, 4 * 2);
}

TEST_F(ContainerPictureTest, border_without_an_inside_leaves_no_room_for_the_picture) {
    for (int border : {2, 3, 100, INT_MAX, INT_MIN}) {
        fill_buf(0);
        box->obj.border = border;
        box->obj.top_color = box->obj.bottom_color = 0;
        EXPECT_EQ(ux_container_show_self(box), 0);
        for (int i = 0; i < 16 * 8; i++)
            ASSERT_NE(buf_pixel(i % 16, i / 16), k_red_seen) << border;
    }
}

TEST_F(ContainerPictureTest, color_comes_before_the_picture) {
    box->bg_color = 0xFF123456;
    ux_container_show_self(box);
    EXPECT_EQ(files_read(), files{});
    EXPECT_EQ(buf_pixel(2, 1), 0xFF123456u);
}

TEST_F(ContainerPictureTest, saved_background_comes_before_the_picture) {
    fill_buf(0xFF202020);
    ux_obj_backup_bg(&box->obj);
    fill_buf(0);
    ux_container_show_self(box);
    EXPECT_EQ(files_read(), files{});
    EXPECT_EQ(buf_pixel(2, 1), 0xFF1F1F1Fu);
}

TEST_F(ContainerPictureTest, saved_bit_without_a_copy_reads_the_picture) {
    box->obj.status |= UX_ST_BG_SAVED;
    ux_container_show_self(box);
    EXPECT_EQ(files_read(), files{red});
}

TEST_F(ContainerPictureTest, container_without_the_flag_reads_the_picture_at_every_show) {
    ux_container_show_self(box);
    ux_container_show_self(box);
    EXPECT_EQ(files_read(), (files{red, red}));
    EXPECT_EQ(box->obj.bg_backup, nullptr);
}

TEST_F(ContainerPictureTest, container_with_the_flag_reads_the_picture_once) {
    ux_obj_set_flag(&box->obj, UX_FLAG_SAVE_BG);
    ux_container_show_self(box);
    EXPECT_EQ(saved_under(&box->obj), std::vector<uint32_t>(24, k_red_seen));
    EXPECT_EQ(files_read(), files{red});
    fill_buf(0);
    ux_container_show_self(box);
    EXPECT_EQ(files_read(), files{});
    EXPECT_EQ(buf_pixel(2, 1), 0xFFFD0000u) << "254 blended over black";
}

TEST_F(ContainerPictureTest, copy_is_taken_before_the_border) {
    ux_obj_set_flag(&box->obj, UX_FLAG_SAVE_BG);
    ux_container_set_border(box, 1);
    box->obj.top_color = box->obj.bottom_color = 0xFFFFFFFF;
    ux_container_show_self(box);
    const std::vector<uint32_t> saved = saved_under(&box->obj);
    EXPECT_EQ(saved[0], 0u) << "the picture leaves the border out";
    EXPECT_EQ(saved[7], k_red_seen);
}

TEST_F(ContainerPictureTest, new_picture_drops_the_copy_of_the_old) {
    ux_obj_set_flag(&box->obj, UX_FLAG_SAVE_BG);
    ux_container_show_self(box);
    ux_container_set_bg_image(box, green.c_str());
    take_calls();
    fill_buf(0);
    ux_container_show_self(box);
    EXPECT_EQ(files_read(), files{green});
    EXPECT_EQ(buf_pixel(2, 1), k_green_seen);
}

TEST_F(ContainerPictureTest, no_memory_for_the_copy_reads_the_picture_again) {
    ux_container_show_self(box);
    hooks::take_allocation_count();
    ux_container_show_self(box);
    const long drawing = hooks::take_allocation_count();
    ux_obj_set_flag(&box->obj, UX_FLAG_SAVE_BG);
    take_calls();
    hooks::fail_allocation(drawing + 1);
    ux_container_show_self(box);
    EXPECT_FALSE(box->obj.status & UX_ST_BG_SAVED);
    ux_container_show_self(box);
    EXPECT_TRUE(box->obj.status & UX_ST_BG_SAVED);
    EXPECT_EQ(files_read(), (files{red, red}));
}

TEST_F(ContainerPictureTest, unreadable_picture_paints_nothing_and_updates) {
    set_apart();
    fill_buf(0xFF202020);
    ux_container_set_bg_image(box, folder.path("missing.png").c_str());
    EXPECT_EQ(ux_container_show_self(box), 0);
    EXPECT_EQ(buf_pixel(2, 1), 0xFF202020u);
    EXPECT_EQ(fb_pixel(2, 1), 0xFF202020u);
}

TEST_F(ContainerPictureTest, container_of_another_page_reads_nothing) {
    ux_container *other = ux_container_new(&new_page()->container, 0, 0, 4, 4);
    ux_container_set_bg_image(other, red.c_str());
    EXPECT_EQ(ux_container_show_self(other), 0);
    EXPECT_EQ(files_read(), files{});
}

TEST_F(ContainerPictureTest, children_are_painted_over_the_picture) {
    ux_image_label_new(box, 3, 2, 1, 1, green.c_str());
    ux_container_show(&box->obj);
    EXPECT_EQ(files_read(), (files{red, green}));
    EXPECT_EQ(buf_pixel(3, 2) & 0xFF00, 0xFE00u);
}
