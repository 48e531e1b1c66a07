// SPDX-License-Identifier: MIT
// The image button: its record, the picture of each state, the screen saved under it, changes of
// state that paint nothing.

#include "tests/widgets/picture_widget_test.h"

namespace {

class ImageButtonTest : public PictureWidgetTest {
  protected:
    ux_image_button *make(const std::string &path, const std::string &focus_path) {
        return ux_image_button_new(root(), 2, 1, 3, 2, path.c_str(), focus_path.c_str());
    }

    // A button with four pictures.
    ux_image_button *make_four() {
        ux_image_button *button = make(red, green);
        strcpy(button->select_image, blue.c_str());
        strcpy(button->select_focus_image, white.c_str());
        return button;
    }
};

constexpr uint32_t k_both = UX_ST_FOCUSED | UX_ST_SELECTED;

} // namespace

TEST_F(ImageButtonTest, constructor_copies_the_paths_twice_and_paints_nothing) {
    ux_image_button *button = make("/a.png", "/b.png");
    EXPECT_STREQ(button->image, "/a.png");
    EXPECT_STREQ(button->focus_image, "/b.png");
    EXPECT_STREQ(button->select_image, "/a.png");
    EXPECT_STREQ(button->select_focus_image, "/b.png");
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(ImageButtonTest, null_paths_make_empty_pictures) {
    ux_image_button *button = ux_image_button_new(root(), 0, 0, 2, 2, nullptr, nullptr);
    ASSERT_NE(button, nullptr);
    for (const char *path :
         {button->image, button->focus_image, button->select_image, button->select_focus_image})
        EXPECT_STREQ(path, "");
}

TEST_F(ImageButtonTest, setter_changes_two_pictures_and_paints_nothing) {
    ux_image_button *button = make("/a.png", "/b.png");
    button->obj.status = UX_ST_VISIBLE;
    expect_only(
        button, [&] { return ux_image_button_set_image(button, "/c.png", "/d.png"); },
        [](ux_image_button &expected) {
            memcpy(expected.image, "/c.png", 7);
            memcpy(expected.focus_image, "/d.png", 7);
        });
    expect_only(
        button, [&] { return ux_image_button_set_image(button, nullptr, nullptr); },
        [](ux_image_button &expected) { expected.image[0] = expected.focus_image[0] = '\0'; });
}

TEST_F(ImageButtonTest, paths_are_cut_after_255_bytes) {
    const std::string path(300, 'p');
    ux_image_button *button = make(path, path);
    for (const char *copy :
         {button->image, button->focus_image, button->select_image, button->select_focus_image})
        EXPECT_EQ(std::string(copy), std::string(255, 'p'));
}

TEST_F(ImageButtonTest, each_state_shows_its_picture) {
    ux_image_button *button = make_four();
    const std::pair<uint32_t, std::string> states[] = {
        {0, red}, {UX_ST_FOCUSED, green}, {UX_ST_SELECTED, blue}, {k_both, white}};
    for (const auto &[state, path] : states) {
        button->obj.status = (button->obj.status & ~k_both) | state;
        EXPECT_EQ(ux_image_button_show(&button->obj), 0);
        EXPECT_EQ(files_read(), files{path});
    }
    EXPECT_EQ(buf_picture(k_white_seen).substr(0, 3 * 17), "................\n"
                                                           "..XXX...........\n"
                                                           "..XXX...........\n");
}

TEST_F(ImageButtonTest, first_show_saves_the_screen_and_does_not_restore) {
    set_apart();
    fill_buf(0xFF204060);
    ux_image_button *button = make(clear, green);
    ux_image_button_show(&button->obj);
    EXPECT_TRUE(button->obj.status & UX_ST_BG_SAVED);
    EXPECT_EQ(saved_under(&button->obj), std::vector<uint32_t>(6, 0xFF204060));
    EXPECT_EQ(buf_pixel(2, 1), 0xFF204060u);
    EXPECT_EQ(fb_pixel(2, 1), 0xFF204060u) << "updated";
    EXPECT_EQ(fb_pixel(1, 1), 0u);
}

// (0 * 1 + 0x20 * 255) >> 8 = 0x1F: the restored background is blended, the picture is clear.
TEST_F(ImageButtonTest, later_shows_restore_before_they_draw) {
    fill_buf(0xFF202020);
    ux_image_button *button = make(red, clear);
    ux_image_button_show(&button->obj);
    fill_buf(0);
    ux_image_button_set_focus(&button->obj);
    ux_image_button_show(&button->obj);
    EXPECT_EQ(buf_pixel(2, 1), 0xFF1F1F1Fu);
    EXPECT_EQ(buf_pixel(1, 1), 0u);
    EXPECT_EQ(saved_under(&button->obj), std::vector<uint32_t>(6, 0xFF202020)) << "saved once";
}

TEST_F(ImageButtonTest, empty_picture_restores_and_does_not_update) {
    fill_buf(0xFF202020);
    ux_image_button *button = ux_image_button_new(root(), 2, 1, 3, 2, red.c_str(), nullptr);
    ux_image_button_show(&button->obj);
    set_apart();
    fill_buf(0);
    ux_image_button_set_focus(&button->obj);
    take_calls();
    EXPECT_EQ(ux_image_button_show(&button->obj), 0);
    EXPECT_EQ(buf_pixel(2, 1), 0xFF1F1F1Fu);
    EXPECT_EQ(fb_pixel(2, 1), 0u);
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(ImageButtonTest, empty_picture_saves_at_the_first_show) {
    ux_image_button *button = ux_image_button_new(root(), 2, 1, 3, 2, nullptr, nullptr);
    ux_image_button_show(&button->obj);
    EXPECT_TRUE(button->obj.status & UX_ST_BG_SAVED);
}

TEST_F(ImageButtonTest, button_without_the_flag_saves_nothing) {
    ux_image_button *button = make(half, green);
    ux_obj_unset_flag(&button->obj, UX_FLAG_SAVE_BG);
    ux_image_button_show(&button->obj);
    ux_image_button_show(&button->obj);
    EXPECT_EQ(button->obj.bg_backup, nullptr);
    EXPECT_EQ(buf_pixel(2, 1), 0x80BFBFBFu) << "one over the other";
}

TEST_F(ImageButtonTest, no_memory_for_the_background_draws_and_saves_at_the_next_show) {
    ux_image_button *button = make(red, green);
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_image_button_show(&button->obj), 0);
    EXPECT_FALSE(button->obj.status & UX_ST_BG_SAVED);
    EXPECT_EQ(buf_pixel(2, 1), k_red_seen);
    ux_image_button_show(&button->obj);
    EXPECT_TRUE(button->obj.status & UX_ST_BG_SAVED);
}

TEST_F(ImageButtonTest, button_of_another_page_becomes_visible_and_is_not_painted) {
    ux_page *other = new_page();
    ux_image_button *button =
        ux_image_button_new(&other->container, 0, 0, 2, 2, red.c_str(), green.c_str());
    EXPECT_EQ(ux_image_button_show(&button->obj), 0);
    EXPECT_EQ(button->obj.status, static_cast<uint32_t>(UX_ST_VISIBLE));
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(ImageButtonTest, unreadable_picture_still_updates_the_rectangle) {
    set_apart();
    fill_buf(0xFF202020);
    ux_image_button *button = make(folder.path("missing.png"), green);
    EXPECT_EQ(ux_image_button_show(&button->obj), 0);
    EXPECT_EQ(fb_pixel(4, 2), 0xFF202020u);
}

TEST_F(ImageButtonTest, focus_marks_the_button_and_the_page_and_paints_nothing) {
    ux_image_button *button = make_four();
    ux_image_button_show(&button->obj);
    expect_only(
        button, [&] { return ux_image_button_set_focus(&button->obj); },
        [](ux_image_button &expected) { expected.obj.status |= UX_ST_FOCUSED; });
    EXPECT_EQ(page->focus, &button->obj);
    expect_only(
        button, [&] { return ux_image_button_unset_focus(&button->obj); },
        [](ux_image_button &expected) {
            expected.obj.status &= ~static_cast<uint32_t>(UX_ST_FOCUSED);
        });
    EXPECT_EQ(page->focus, &button->obj) << "the page remembers";
}

TEST_F(ImageButtonTest, selection_marks_the_button_and_paints_nothing) {
    ux_image_button *button = make_four();
    ux_image_button_show(&button->obj);
    expect_only(
        button, [&] { return ux_image_button_set_select(&button->obj); },
        [](ux_image_button &expected) { expected.obj.status |= UX_ST_SELECTED; });
    EXPECT_EQ(page->focus, nullptr);
    expect_only(
        button, [&] { return ux_image_button_unset_select(&button->obj); },
        [](ux_image_button &expected) {
            expected.obj.status &= ~static_cast<uint32_t>(UX_ST_SELECTED);
        });
}

TEST_F(ImageButtonTest, hide_clears_the_visible_bit_and_paints_nothing) {
    ux_image_button *button = make_four();
    ux_image_button_show(&button->obj);
    expect_only(
        button, [&] { return ux_image_button_hide(&button->obj); },
        [](ux_image_button &expected) {
            expected.obj.status &= ~static_cast<uint32_t>(UX_ST_VISIBLE);
        });
}

TEST_F(ImageButtonTest, repaint_shows_a_visible_button_only) {
    ux_image_button *button = make_four();
    EXPECT_EQ(ux_image_button_repaint(&button->obj), 0);
    EXPECT_EQ(files_read(), files{});
    button->obj.status |= UX_ST_VISIBLE;
    EXPECT_EQ(ux_image_button_repaint(&button->obj), 0);
    EXPECT_EQ(files_read(), files{red});
}

TEST_F(ImageButtonTest, new_size_forgets_the_background) {
    ux_image_button *button = make_four();
    ux_image_button_show(&button->obj);
    EXPECT_EQ(ux_image_button_set_size(button, 1, 2, 9, 5), 0);
    EXPECT_EQ(button->obj.x, 1);
    EXPECT_EQ(button->obj.y, 2);
    EXPECT_EQ(button->obj.width, 9);
    EXPECT_EQ(button->obj.height, 5);
    EXPECT_EQ(button->obj.bg_backup, nullptr);
    EXPECT_FALSE(button->obj.status & UX_ST_BG_SAVED);
}
