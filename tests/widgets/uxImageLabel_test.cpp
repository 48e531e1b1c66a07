// SPDX-License-Identifier: MIT
// The image label: its record, when its file is read, the kept face.

#include "tests/widgets/picture_widget_test.h"

namespace {

class ImageLabelTest : public PictureWidgetTest {
  protected:
    // Kept faces are the host's to release.
    void TearDown() override {
        for (ux_image_label *label : keeping)
            free(label->obj.fg_backup);
        PictureWidgetTest::TearDown();
    }

    ux_image_label *make(const std::string &path, int x = 2, int y = 1, int w = 3, int h = 2) {
        return ux_image_label_new(root(), x, y, w, h, path.c_str());
    }

    ux_image_label *make_keeping(const std::string &path) {
        ux_image_label *label = make(path);
        ux_obj_set_flag(&label->obj, UX_FLAG_SAVE_FG);
        keeping.push_back(label);
        return label;
    }

    std::vector<ux_image_label *> keeping;
};

} // namespace

TEST_F(ImageLabelTest, constructor_copies_the_path_and_paints_nothing) {
    ux_image_label *label = make("/a.png");
    EXPECT_STREQ(label->image, "/a.png");
    EXPECT_EQ(take_calls(), calls{});
    EXPECT_EQ(memory_of(main_screen.buf), std::vector<uint8_t>(16 * 8 * 4));
}

TEST_F(ImageLabelTest, null_path_makes_an_empty_label) {
    ux_image_label *label = ux_image_label_new(root(), 0, 0, 2, 2, nullptr);
    ASSERT_NE(label, nullptr);
    EXPECT_STREQ(label->image, "");
}

TEST_F(ImageLabelTest, null_path_empties_the_label_and_drops_the_face) {
    ux_image_label *label = make_keeping(red);
    ux_image_label_show(&label->obj);
    EXPECT_EQ(ux_image_label_set_image(label, nullptr), 0);
    EXPECT_STREQ(label->image, "");
    EXPECT_FALSE(label->obj.status & UX_ST_FG_SAVED);
}

TEST_F(ImageLabelTest, path_is_cut_after_255_bytes) {
    ux_image_label *label = make("");
    ux_image_label_set_image(label, std::string(300, 'p').c_str());
    EXPECT_EQ(std::string(label->image), std::string(255, 'p'));
    EXPECT_EQ(label->image[255], '\0');
}

TEST_F(ImageLabelTest, path_inside_the_record_may_be_given) {
    ux_image_label *label = make("/pictures/a.png");
    ux_image_label_set_image(label, label->image + 9);
    EXPECT_STREQ(label->image, "/a.png");
}

TEST_F(ImageLabelTest, setter_paints_nothing) {
    ux_image_label *label = make(red);
    label->obj.status = UX_ST_VISIBLE | UX_ST_FG_SAVED;
    expect_only(
        label, [&] { return ux_image_label_set_image(label, "/b.png"); },
        [](ux_image_label &expected) {
            memcpy(expected.image, "/b.png", 7); // with its end
            expected.obj.status = UX_ST_VISIBLE;
        });
}

TEST_F(ImageLabelTest, show_draws_the_picture_into_the_rectangle_and_updates_it) {
    set_apart();
    ux_image_label *label = make(red);
    EXPECT_EQ(ux_image_label_show(&label->obj), 0);
    EXPECT_TRUE(label->obj.status & UX_ST_VISIBLE);
    const std::string wanted = "................\n..XXX...........\n..XXX...........\n"
                               "................\n................\n................\n"
                               "................\n................\n";
    EXPECT_EQ(buf_picture(k_red_seen), wanted);
    EXPECT_EQ(fb_picture(k_red_seen), wanted);
}

TEST_F(ImageLabelTest, label_without_a_path_shows_and_updates_nothing) {
    set_apart();
    fill_buf(k_red_seen);
    ux_image_label *label = make("");
    ux_obj_set_flag(&label->obj, UX_FLAG_SAVE_FG);
    EXPECT_EQ(ux_image_label_show(&label->obj), 0);
    EXPECT_EQ(label->obj.status, static_cast<uint32_t>(UX_ST_VISIBLE));
    EXPECT_EQ(label->obj.fg_backup, nullptr);
    EXPECT_EQ(fb_pixel(3, 1), 0u);
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(ImageLabelTest, label_of_another_page_becomes_visible_and_is_not_painted) {
    ux_page *other = new_page();
    ux_image_label *label = ux_image_label_new(&other->container, 0, 0, 2, 2, red.c_str());
    EXPECT_EQ(ux_image_label_show(&label->obj), 0);
    EXPECT_TRUE(label->obj.status & UX_ST_VISIBLE);
    EXPECT_EQ(files_read(), files{});
    EXPECT_EQ(buf_pixel(0, 0), 0u);
}

TEST_F(ImageLabelTest, unreadable_picture_still_updates_the_rectangle) {
    set_apart();
    fill_buf(k_red_seen);
    ux_image_label *label = make(folder.path("missing.png"));
    EXPECT_EQ(ux_image_label_show(&label->obj), 0);
    EXPECT_EQ(fb_pixel(2, 1), k_red_seen);
    EXPECT_EQ(fb_pixel(5, 1), 0u);
}

TEST_F(ImageLabelTest, label_without_the_flag_reads_its_file_at_every_show) {
    ux_image_label *label = make(red);
    ux_image_label_show(&label->obj);
    ux_image_label_show(&label->obj);
    EXPECT_EQ(files_read(), (files{red, red}));
    EXPECT_EQ(label->obj.fg_backup, nullptr);
}

TEST_F(ImageLabelTest, kept_face_is_drawn_without_reading_the_file_again) {
    ux_image_label *label = make_keeping(red);
    ux_image_label_show(&label->obj);
    EXPECT_EQ(files_read(), files{red});
    EXPECT_TRUE(label->obj.status & UX_ST_FG_SAVED);
    fill_buf(0);
    ux_image_label_show(&label->obj);
    EXPECT_EQ(files_read(), files{});
    EXPECT_EQ(buf_pixel(2, 1), 0xFFFD0000u) << "254 blended over black once more: 253";
}

// The face is what the screen shows, so a translucent picture has the old background in it, and its
// alpha is the screen's.
TEST_F(ImageLabelTest, kept_face_is_the_composited_screen_and_blended_again) {
    fill_buf(0x40000000);
    ux_image_label *label = make_keeping(half);
    ux_image_label_show(&label->obj);
    EXPECT_EQ(buf_pixel(2, 1), 0x807F7F7Fu);
    fill_buf(0);
    ux_image_label_show(&label->obj);
    EXPECT_EQ(buf_pixel(2, 1), 0x803F3F3Fu) << "127 * 128 >> 8 = 63";
}

TEST_F(ImageLabelTest, same_path_keeps_the_face_and_another_reads_and_keeps_anew) {
    ux_image_label *label = make_keeping(red);
    ux_image_label_show(&label->obj);
    EXPECT_EQ(ux_image_label_set_image(label, std::string(red).c_str()), 0);
    EXPECT_TRUE(label->obj.status & UX_ST_FG_SAVED);
    ux_image_label_set_image(label, green.c_str());
    EXPECT_FALSE(label->obj.status & UX_ST_FG_SAVED);
    take_calls();
    fill_buf(0);
    ux_image_label_show(&label->obj);
    EXPECT_EQ(files_read(), files{green});
    EXPECT_TRUE(label->obj.status & UX_ST_FG_SAVED);
    fill_buf(0);
    ux_image_label_show(&label->obj);
    EXPECT_EQ(files_read(), files{});
    EXPECT_EQ(buf_pixel(2, 1), 0xFF00FD00u);
}

TEST_F(ImageLabelTest, path_that_only_begins_alike_is_another) {
    ux_image_label *label = make(red);
    label->obj.status = UX_ST_FG_SAVED;
    ux_image_label_set_image(label, red.substr(0, red.size() - 1).c_str());
    EXPECT_EQ(label->obj.status, 0u);
    label->obj.status = UX_ST_FG_SAVED;
    ux_image_label_set_image(label, red.c_str());
    EXPECT_EQ(label->obj.status, 0u);
}

TEST_F(ImageLabelTest, all_255_bytes_of_a_path_are_compared_and_none_behind_them) {
    const std::string path(255, 'p');
    ux_image_label *label = make(path);
    label->obj.status = UX_ST_FG_SAVED;
    ux_image_label_set_image(label, (path + "more").c_str());
    EXPECT_EQ(label->obj.status, UX_ST_FG_SAVED) << "the same once it is cut";
    ux_image_label_set_image(label, (path.substr(1) + "q").c_str());
    EXPECT_EQ(label->obj.status, 0u);
    EXPECT_EQ(label->image[254], 'q');
}

TEST_F(ImageLabelTest, kept_face_is_used_after_the_flag_is_taken_away) {
    ux_image_label *label = make_keeping(red);
    ux_image_label_show(&label->obj);
    take_calls();
    ux_obj_unset_flag(&label->obj, UX_FLAG_SAVE_FG);
    ux_image_label_show(&label->obj);
    EXPECT_EQ(files_read(), files{});
}

TEST_F(ImageLabelTest, saved_bit_without_a_face_reads_the_file) {
    ux_image_label *label = make_keeping(red);
    label->obj.status = UX_ST_FG_SAVED;
    ux_image_label_show(&label->obj);
    EXPECT_EQ(files_read(), files{red});
    EXPECT_EQ(label->obj.fg_backup, nullptr);
}

TEST_F(ImageLabelTest, no_memory_for_the_face_draws_and_tries_again_at_the_next_show) {
    ux_image_label *label = make_keeping(red);
    hooks::take_allocation_count();
    ux_image_label_show(&make(red)->obj);
    const long drawing = hooks::take_allocation_count() - 1; // the record is one
    hooks::fail_allocation(drawing + 1);
    ux_image_label_show(&label->obj);
    EXPECT_FALSE(label->obj.status & UX_ST_FG_SAVED);
    EXPECT_NE(buf_pixel(2, 1), 0u);
    ux_image_label_show(&label->obj);
    EXPECT_TRUE(label->obj.status & UX_ST_FG_SAVED);
}

// The face keeps its old size; the sanitizer sees a read behind it.
TEST_F(ImageLabelTest, face_of_a_grown_label_is_not_read_beyond_its_end) {
    ux_image_label *label = make_keeping(red);
    ux_image_label_show(&label->obj);
    fill_buf(0);
    ux_obj_set_size(&label->obj, 2, 1, 3, 6);
    EXPECT_EQ(ux_image_label_show(&label->obj), 0);
    EXPECT_EQ(buf_pixel(2, 2), 0xFFFD0000u);
    EXPECT_EQ(buf_pixel(2, 6), 0u);
    ux_obj_set_size(&label->obj, 0, 0, 16, 8);
    EXPECT_EQ(ux_image_label_show(&label->obj), 0);
}

TEST_F(ImageLabelTest, hide_clears_the_visible_bit_and_paints_nothing) {
    ux_image_label *label = make(red);
    ux_image_label_show(&label->obj);
    expect_only(
        label, [&] { return ux_image_label_hide(&label->obj); },
        [](ux_image_label &expected) {
            expected.obj.status &= ~static_cast<uint32_t>(UX_ST_VISIBLE);
        });
}

TEST_F(ImageLabelTest, repaint_shows_a_visible_label_only) {
    ux_image_label *label = make(red);
    EXPECT_EQ(ux_image_label_repaint(&label->obj), 0);
    EXPECT_EQ(files_read(), files{});
    label->obj.status |= UX_ST_VISIBLE;
    EXPECT_EQ(ux_image_label_repaint(&label->obj), 0);
    EXPECT_EQ(files_read(), files{red});
}

TEST_F(ImageLabelTest, border_and_background_are_not_drawn) {
    ux_image_label *label = make(clear);
    label->obj.border = 1;
    ux_image_label_show(&label->obj);
    EXPECT_EQ(memory_of(main_screen.buf), std::vector<uint8_t>(16 * 8 * 4));
}
