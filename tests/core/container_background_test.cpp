// SPDX-License-Identifier: MIT
// The container's setters: colour and picture exclude each other and drop the saved background.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <cstdlib>

namespace {

constexpr uint32_t k_saved_bits = UX_ST_BG_SAVED | UX_ST_BG_EXTERNAL;

class ContainerBackgroundTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        box = ux_container_new(&new_page()->container, 2, 1, 6, 4);
    }

    ux_container *box = nullptr;
};

} // namespace

TEST_F(ContainerBackgroundTest, color_empties_the_picture_path) {
    ux_container_set_bg_image(box, "/a.png");
    EXPECT_EQ(ux_container_set_bg_color(box, 0xFF123456), 0);
    EXPECT_EQ(box->bg_color, 0xFF123456u);
    EXPECT_STREQ(box->bg_image, "");
}

TEST_F(ContainerBackgroundTest, picture_sets_the_color_to_0) {
    EXPECT_EQ(ux_container_set_bg_image(box, "/a.png"), 0);
    EXPECT_EQ(box->bg_color, 0u);
    EXPECT_STREQ(box->bg_image, "/a.png");
}

TEST_F(ContainerBackgroundTest, null_picture_empties_the_path_and_nothing_else) {
    ux_container_set_bg_image(box, "/a.png");
    ux_obj_backup_bg(&box->obj);
    void *copy = box->obj.bg_backup;
    box->bg_color = 0x00000007;
    EXPECT_EQ(ux_container_set_bg_image(box, nullptr), 0);
    EXPECT_STREQ(box->bg_image, "");
    EXPECT_EQ(box->bg_color, 7u);
    EXPECT_EQ(box->obj.bg_backup, copy);
    EXPECT_EQ(box->obj.status, static_cast<uint32_t>(UX_ST_BG_SAVED));
}

TEST_F(ContainerBackgroundTest, path_is_copied) {
    char path[] = "/a.png";
    ux_container_set_bg_image(box, path);
    path[1] = 'b';
    EXPECT_STREQ(box->bg_image, "/a.png");
}

TEST_F(ContainerBackgroundTest, path_is_cut_after_255_bytes) {
    const std::string path(300, 'p');
    ux_container_set_bg_image(box, path.c_str());
    EXPECT_EQ(std::string(box->bg_image), std::string(255, 'p'));
    ux_container_set_bg_image(box, path.substr(0, 255).c_str());
    EXPECT_EQ(std::string(box->bg_image), std::string(255, 'p'));
}

// The sanitized build sees a read beyond the terminator.
TEST_F(ContainerBackgroundTest, short_path_is_not_read_beyond_its_end) {
    auto *path = static_cast<char *>(malloc(2));
    memcpy(path, "x", 2);
    ux_container_set_bg_image(box, path);
    free(path);
    EXPECT_STREQ(box->bg_image, "x");
}

TEST_F(ContainerBackgroundTest, own_path_may_be_given_again) {
    ux_container_set_bg_image(box, "/pictures/a.png");
    ux_container_set_bg_image(box, box->bg_image);
    EXPECT_STREQ(box->bg_image, "/pictures/a.png");
    ux_container_set_bg_image(box, box->bg_image + 9);
    EXPECT_STREQ(box->bg_image, "/a.png");
}

TEST_F(ContainerBackgroundTest, color_and_picture_free_the_own_copy) {
    ux_obj_backup_bg(&box->obj);
    ux_container_set_bg_color(box, 1);
    EXPECT_EQ(box->obj.bg_backup, nullptr);
    EXPECT_EQ(box->obj.status, 0u);
    ux_obj_backup_bg(&box->obj);
    ux_container_set_bg_image(box, "/a.png");
    EXPECT_EQ(box->obj.bg_backup, nullptr);
    EXPECT_EQ(box->obj.status, 0u);
}

TEST_F(ContainerBackgroundTest, color_and_picture_drop_the_hosts_buffer_without_freeing_it) {
    void *buffer = calloc(24, 4);
    ux_obj_set_bg_buffer(&box->obj, buffer);
    ux_container_set_bg_color(box, 1);
    EXPECT_EQ(box->obj.bg_backup, nullptr);
    EXPECT_EQ(box->obj.status & k_saved_bits, 0u);
    ux_obj_set_bg_buffer(&box->obj, buffer);
    ux_container_set_bg_image(box, "/a.png");
    EXPECT_EQ(box->obj.bg_backup, nullptr);
    EXPECT_EQ(box->obj.status & k_saved_bits, 0u);
    memset(buffer, 1, 96);
    free(buffer);
}

// Unlike a new size, which leaves the bits of a buffer that is not there.
TEST_F(ContainerBackgroundTest, color_and_picture_clear_the_bits_of_a_null_buffer) {
    ux_obj_set_bg_buffer(&box->obj, nullptr);
    ux_container_set_bg_color(box, 1);
    EXPECT_EQ(box->obj.status & k_saved_bits, 0u);
    ux_obj_set_bg_buffer(&box->obj, nullptr);
    ux_container_set_bg_image(box, "/a.png");
    EXPECT_EQ(box->obj.status & k_saved_bits, 0u);
}

TEST_F(ContainerBackgroundTest, setters_paint_nothing) {
    set_apart();
    box->obj.status = UX_ST_VISIBLE;
    EXPECT_EQ(ux_container_set_border(box, 3), 0);
    EXPECT_EQ(box->obj.border, 3);
    ux_container_set_bg_color(box, 0xFFFFFFFF);
    ux_container_set_bg_image(box, "/a.png");
    ux_container_set_bg_image(box, nullptr);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
    EXPECT_EQ(plain::numbers(main_screen.fb), std::vector<uint32_t>(16 * 8));
}
