// SPDX-License-Identifier: MIT
// The select box: how its signs are measured, and what it paints where.

#include "tests/widgets/select_box_test.h"

#include <climits>
#include <random>

namespace {

class SelectBoxPaintTest : public SelectBoxTest {
  protected:
    // '<' and '>' are one dot, and so is 'a'; all 2 pixels wide.
    void SetUp() override {
        SelectBoxTest::SetUp();
        for (char16_t letter : {u'<', u'>', u'a'})
            fake_chip::get().glyphs[letter] = {0, 4, 2, {"X"}};
    }

    void TearDown() override {
        for (ux_select_box *box : boxes)
            ux_select_box_free_items(box);
        SelectBoxTest::TearDown();
    }

    std::string letters_of_screen() const {
        return buf_letters({{k_text, 't'},
                            {k_normal, 'n'},
                            {k_focus, 'f'},
                            {k_screen, 's'},
                            {k_black, 'b'},
                            {0xFFFFFFFF, 'W'},
                            {0xFFFFEE00, 'Y'},
                            {0xFF000001, '1'},
                            {0xFF000002, '2'},
                            {0xFF000003, '3'}});
    }

    // A row of the screen.
    std::string row(int y) const {
        return letters_of_screen().substr(static_cast<size_t>(y * 41), 40);
    }

    // Whether a glyph of this advance is painted in place of `letter`'s dot.
    bool has_room(ux_select_box *box, char16_t letter, int advance, int x, int y) {
        fake_chip::get().glyphs[letter].advance = advance;
        box->obj.show(&box->obj);
        fake_chip::get().glyphs[letter].advance = 2;
        return buf_pixel(x, y) == k_text;
    }
};

} // namespace

// L = 3, R = 4, H = 6. Signs at x = 1 and 1 + 30 - 4 - 4 = 23, the text at 1 + 4 + 3 = 8.
TEST_F(SelectBoxPaintTest, box_paints_background_signs_and_the_current_text) {
    ux_select_box *box = make_at({1, 1, 30, 6}, {u"a"});
    EXPECT_EQ(ux_select_box_show(&box->obj), 0);
    const std::string blank = "........................................\n";
    const std::string plain = ".nnnnnnnnnnnnnnnnnnnnnnnnnnnnnn.........\n";
    EXPECT_EQ(letters_of_screen(), blank + ".tnnnnnntnnnnnnnnnnnnnntnnnnnnn.........\n" + plain +
                                       plain + plain + plain + plain + blank + blank + blank);
    EXPECT_EQ(box->obj.status, 4u);
}

// From column 1 + 3 to 1 + 30 - 1 - 4.
TEST_F(SelectBoxPaintTest, border_runs_between_the_signs) {
    ux_select_box *box = make_at({1, 1, 30, 8}, {u"a"});
    box->obj.border = 1;
    ux_select_box_show(&box->obj);
    EXPECT_EQ(row(1), ".tnnWWWWWWWWWWWWWWWWWWWtWWWnnnn.........") << "the sign lies over it";
    EXPECT_EQ(row(2), ".nnnWnnnntnnnnnnnnnnnnnnnnWnnnn.........") << "text at 1 + 1 + 4 + 3";
    for (int y = 3; y < 8; y++)
        EXPECT_EQ(row(y), ".nnnWnnnnnnnnnnnnnnnnnnnnnWnnnn.........");
    EXPECT_EQ(row(8), ".nnnWWWWWWWWWWWWWWWWWWWWWWWnnnn.........");
}

TEST_F(SelectBoxPaintTest, wider_border_grows_inwards) {
    ux_select_box *box = make_at({1, 1, 30, 6});
    box->obj.border = 2;
    ux_select_box_show(&box->obj);
    EXPECT_EQ(row(2), ".nnnWWWWWWWWWWWWWWWWWWWWWWWnnnn.........");
    EXPECT_EQ(row(3), ".nnnWWnnnnnnnnnnnnnnnnnnnWWnnnn.........");
    EXPECT_EQ(row(5), ".nnnWWWWWWWWWWWWWWWWWWWWWWWnnnn.........");
}

TEST_F(SelectBoxPaintTest, focused_box_has_its_own_colours_and_one_border_colour) {
    ux_select_box *box = make_at({1, 1, 30, 8}, {u"a"});
    box->obj.border = 1;
    ux_obj_set_border_color(&box->obj, 2 | 4 | 8, 0xFF000001, 0xFF000002);
    ux_select_box_set_fg_color(box, 7, k_text);
    box->obj.set_focus(&box->obj);
    ux_select_box_show(&box->obj);
    EXPECT_EQ(row(1), ".tffYYYYYYYYYYYYYYYYYYYtYYYffff.........");
    EXPECT_EQ(row(2), ".fffYfffftffffffffffffffffYffff.........");
    EXPECT_EQ(row(8), ".fffYYYYYYYYYYYYYYYYYYYYYYYffff.........");
}

TEST_F(SelectBoxPaintTest, sides_have_their_colours_and_none_is_not_painted) {
    ux_select_box *box = make_at({1, 1, 30, 4});
    box->obj.border = 1;
    ux_obj_set_border_color(&box->obj, 1, 0, 0);
    ux_obj_set_border_color(&box->obj, 2, 0xFF000001, 0);
    ux_obj_set_border_color(&box->obj, 4, 0xFF000002, 0);
    ux_obj_set_border_color(&box->obj, 8, 0xFF000003, 0);
    ux_select_box_show(&box->obj);
    EXPECT_EQ(row(1), ".nnn2nnnnnnnnnnnnnnnnnnnnn3nnnn.........");
    EXPECT_EQ(row(4), ".nnn2111111111111111111111"
                      "3nnnn.........");
}

// Measuring.

TEST_F(SelectBoxPaintTest, signs_are_measured_once_in_the_height_when_they_fit) {
    ux_select_box *box = make_at({1, 1, 30, 6});
    ux_select_box_show(&box->obj);
    EXPECT_EQ(take_measured(), (pairs{{'<', 6}, {'>', 6}}));
}

TEST_F(SelectBoxPaintTest, signs_are_measured_in_smaller_sizes_until_one_fits) {
    measure_as([](char sign, uint32_t size) {
        return fake_chip::cell{size, sign == '<' ? size + 3 : size + 9};
    });
    ux_select_box *box = make_at({1, 0, 38, 8});
    box->obj.border = 1;
    ux_select_box_show(&box->obj);
    EXPECT_EQ(take_measured(), (pairs{{'<', 8}, {'<', 7}, {'<', 6}, {'<', 5}, {'>', 5}}));
    EXPECT_EQ(row(4), ".nnnnnWnnnnnnnnnnnnnnnnnnnnnnnnnnWnnnnn.") << "L = R = 5";
}

TEST_F(SelectBoxPaintTest, signs_that_fit_in_no_size_take_the_last_width_and_the_height) {
    measure_as([](char, uint32_t size) { return fake_chip::cell{size + 2, 7}; });
    ux_select_box *box = make_at({1, 1, 30, 6});
    box->obj.border = 1;
    ux_select_box_show(&box->obj);
    EXPECT_EQ(take_measured(),
              (pairs{{'<', 6}, {'<', 5}, {'<', 4}, {'<', 3}, {'<', 2}, {'<', 1}, {'>', 6}}));
    EXPECT_EQ(row(3), ".nnnWnnnnnnnnnnnnnnnnnWnnnnnnnn.........") << "L = 3, R = 8";
}

TEST_F(SelectBoxPaintTest, box_without_a_height_measures_the_right_sign_only) {
    for (int height : {0, -3, INT_MIN}) {
        ux_select_box *box = make_at({1, 1, 30, height}, {u"a"});
        take_measured();
        ux_select_box_show(&box->obj);
        const pairs all = take_measured();
        ASSERT_EQ(all.size(), 1u) << height;
        EXPECT_EQ(all[0].first, '>');
    }
}

TEST_F(SelectBoxPaintTest, signs_that_cannot_be_measured_take_no_room) {
    fake_chip::get().unknown_codes = {'<', '>'};
    ux_select_box *box = make_at({1, 1, 30, 6}, {u"a"});
    box->obj.border = 1;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    ux_select_box_show(&box->obj);
    const std::string told =
        testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(told.begin(), told.end(), '('), 2) << told;
    EXPECT_EQ(row(1), ".WWWWWWWWWWWWWWWWWWWWWWWWWWWWWW.........") << "signs of height 0";
    EXPECT_EQ(row(3), ".WnnnnnnnnnnnnnnnnnnnnnnnnnnnnW.........");
}

// The boxes of signs and text.

TEST_F(SelectBoxPaintTest, sign_boxes_are_4_wider_than_the_signs) {
    ux_select_box *box = make_at({1, 1, 30, 6});
    EXPECT_TRUE(has_room(box, u'<', 7, 1, 1));
    EXPECT_FALSE(has_room(box, u'<', 8, 1, 1));
    EXPECT_TRUE(has_room(box, u'>', 8, 23, 1));
    EXPECT_FALSE(has_room(box, u'>', 9, 23, 1));
}

TEST_F(SelectBoxPaintTest, sign_boxes_are_as_high_as_the_right_sign) {
    uint32_t height = 5;
    measure_as([&height](char sign, uint32_t) {
        return fake_chip::cell{sign == '<' ? 3u : 4u, sign == '<' ? 1u : height};
    });
    ux_select_box *box = make_at({1, 1, 30, 6});
    EXPECT_TRUE(has_room(box, u'<', 2, 1, 1));
    EXPECT_TRUE(has_room(box, u'>', 2, 23, 1));
    height = 4; // below a line of FontSize 5
    EXPECT_FALSE(has_room(box, u'<', 2, 1, 1));
    EXPECT_FALSE(has_room(box, u'>', 2, 23, 1));
}

// 30 - 8 - 2 - 3 - 4 = 13.
TEST_F(SelectBoxPaintTest, text_box_is_what_signs_space_and_border_leave) {
    ux_select_box *box = make_at({1, 1, 30, 7}, {u"a"});
    box->obj.border = 1;
    EXPECT_TRUE(has_room(box, u'a', 13, 9, 2));
    EXPECT_FALSE(has_room(box, u'a', 14, 9, 2));
    box->obj.height = 6;
    EXPECT_FALSE(has_room(box, u'a', 2, 9, 2)) << "6 - 2 is below a line";
}

TEST_F(SelectBoxPaintTest, texts_of_the_backgrounds_colour_leave_what_they_stand_over) {
    ux_select_box *box = make_at({1, 1, 30, 6}, {u"a"});
    ux_select_box_set_fg_color(box, k_normal, k_text);
    box->obj.border = 1;
    fake_chip::get().glyphs[u'<'] = {0, 4, 2, {"...X"}};
    ux_select_box_show(&box->obj);
    EXPECT_EQ(buf_pixel(4, 1), 0xFFFFFFFF) << "the border under the left sign";
    EXPECT_EQ(buf_pixel(23, 1), 0xFFFFFFFF) << "the border under the right sign";
    box->obj.border = -1; // the text begins above the box
    ux_select_box_show(&box->obj);
    EXPECT_EQ(buf_pixel(7, 0), 0u);
    ux_select_box_set_fg_color(box, k_text, k_text);
    ux_select_box_show(&box->obj);
    EXPECT_EQ(buf_pixel(7, 0), k_text);
}

TEST_F(SelectBoxPaintTest, signs_and_text_are_painted_in_the_size_of_the_variable) {
    ux_select_box *box = make_at({1, 1, 30, 6}, {u"a"});
    setenv("FontSize", "7", 1);
    ux_select_box_show(&box->obj);
    const calls all = take_calls();
    EXPECT_EQ(std::count(all.begin(), all.end(), "FSS_set_scale 458752 0 0 458752"), 3);
    EXPECT_EQ(take_measured(), (pairs{{'<', 6}, {'>', 6}})) << "measuring is by height";
    unsetenv("FontSize");
    ux_select_box_set_font_size(box, 30);
    ux_select_box_show(&box->obj);
    const calls own = take_calls();
    EXPECT_EQ(std::count(own.begin(), own.end(), "FSS_set_scale 1966080 0 0 1966080"), 3);
}

TEST_F(SelectBoxPaintTest, signs_come_before_the_text) {
    ux_select_box *box = make_at({1, 1, 30, 6}, {u"xy"});
    ux_select_box_show(&box->obj);
    EXPECT_EQ(take_glyphs(), "<>xy");
}

TEST_F(SelectBoxPaintTest, box_without_items_paints_signs_and_border_only) {
    ux_select_box *box = make_at({1, 1, 30, 6}, {u"a"});
    ux_select_box_free_items(box);
    ux_select_box_show(&box->obj);
    EXPECT_EQ(take_glyphs(), "<>");
    EXPECT_EQ(row(1), ".tnnnnnnnnnnnnnnnnnnnnntnnnnnnn.........");
}

TEST_F(SelectBoxPaintTest, overwritten_text_of_the_current_item_is_painted_by_the_next_show) {
    ux_select_box *box = make_at({1, 1, 30, 6}, {u"x", u"y"});
    ux_select_box_add_items(box, u"z", 0);
    ux_select_box_show(&box->obj);
    EXPECT_EQ(take_glyphs(), "<>z");
}

// Background, visibility, memory.

TEST_F(SelectBoxPaintTest, any_background_of_0_blackens_the_box_before_it_is_saved) {
    const std::pair<uint32_t, uint32_t> backgrounds[] = {{0, k_focus}, {k_normal, 0}, {0, 0}};
    for (const auto &[normal, focus] : backgrounds) {
        fill_buf(k_screen);
        ux_select_box *box = make_at({1, 1, 30, 4});
        ux_select_box_set_bg_color(box, normal, focus);
        ux_select_box_show(&box->obj);
        EXPECT_EQ(saved_under(&box->obj), std::vector<uint32_t>(120, k_black));
        EXPECT_EQ(box->obj.status, 0x14u);
        EXPECT_EQ(buf_pixel(30, 4), normal ? normal : k_black);
        EXPECT_EQ(buf_pixel(31, 4), k_screen);
        box->obj.set_focus(&box->obj);
        fill_buf(k_screen);
        ux_select_box_show(&box->obj);
        EXPECT_EQ(buf_pixel(30, 4), focus ? focus : k_black);
        box->obj.unset_focus(&box->obj);
    }
}

TEST_F(SelectBoxPaintTest, backgrounds_of_a_colour_and_boxes_without_the_flag_save_nothing) {
    ux_select_box *box = make_at({1, 1, 30, 4});
    ux_select_box_show(&box->obj);
    EXPECT_EQ(box->obj.bg_backup, nullptr);
    fill_buf(k_screen);
    ux_obj_unset_flag(&box->obj, 0x10);
    ux_select_box_set_bg_color(box, 0, 0);
    ux_select_box_show(&box->obj);
    EXPECT_EQ(box->obj.bg_backup, nullptr);
    EXPECT_EQ(buf_pixel(30, 4), k_screen);
}

TEST_F(SelectBoxPaintTest, failed_save_is_told_and_the_rest_is_painted_on_black) {
    fill_buf(k_screen);
    ux_select_box *box = make_at({1, 1, 30, 6}, {u"a"});
    ux_select_box_set_bg_color(box, 0, 0);
    testing::internal::CaptureStderr();
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_select_box_show(&box->obj), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Can not allocate background backup image memory!\n");
    EXPECT_EQ(row(1), "stbbbbbbtbbbbbbbbbbbbbbtbbbbbbbsssssssss");
}

TEST_F(SelectBoxPaintTest, box_of_another_page_is_marked_visible_only) {
    ux_select_box *box = make_at({1, 1, 30, 4});
    ux_select_box_set_bg_color(box, 0, 0);
    main_screen.current_page = 1;
    expect_only(
        box, [&] { return ux_select_box_show(&box->obj); },
        [](ux_select_box &r) { r.obj.status = 4; });
    EXPECT_EQ(take_measured(), pairs{});
}

TEST_F(SelectBoxPaintTest, hide_clears_the_bit_and_leaves_the_pixels) {
    ux_select_box *box = make_at({1, 1, 30, 4});
    ux_select_box_show(&box->obj);
    expect_only(
        box, [&] { return ux_select_box_hide(&box->obj); },
        [](ux_select_box &r) { r.obj.status = 0; });
}

TEST_F(SelectBoxPaintTest, repaint_shows_a_visible_box_and_hides_a_hidden_one) {
    ux_select_box *box = make_at({1, 1, 30, 4});
    expect_only(
        box, [&] { return ux_select_box_repaint(&box->obj); }, [](ux_select_box &) {});
    box->obj.status = 4;
    EXPECT_EQ(ux_select_box_repaint(&box->obj), 0);
    EXPECT_EQ(take_glyphs(), "<>");
}

TEST_F(SelectBoxPaintTest, painted_rectangle_is_brought_to_the_device) {
    set_apart();
    ux_select_box *box = make_at({1, 1, 30, 2});
    ux_select_box_show(&box->obj);
    for (int y = 0; y < 10; y++)
        for (int x = 0; x < 40; x++)
            EXPECT_EQ(fb_pixel(x, y), buf_pixel(x, y)) << x << "," << y;
    EXPECT_EQ(fb_pixel(30, 2), k_normal);
}

TEST_F(SelectBoxPaintTest, painting_allocates_nothing) {
    ux_select_box *box = make_at({1, 1, 30, 6}, {u"aaa", u"a"});
    box->obj.border = 1;
    ux_select_box_set_bg_color(box, 0, k_focus);
    ux_select_box_show(&box->obj); // saves the background
    fake_chip::get().record_calls = false;
    measured.reserve(100);
    hooks::take_allocation_count();
    box->obj.set_focus(&box->obj);
    press(22);
    press(21);
    ux_select_box_show(&box->obj);
    box->obj.unset_focus(&box->obj);
    ux_select_box_repaint(&box->obj);
    EXPECT_EQ(hooks::take_allocation_count(), 0);
}

TEST_F(SelectBoxPaintTest, boxes_of_any_place_and_size_stay_inside_the_screen) {
    std::mt19937 random(6);
    const int numbers[] = {INT_MIN, INT_MIN + 1, -100, -9, -3, -1, 0,       1,
                           2,       3,           7,    8,  39, 40, INT_MAX, INT_MAX - 1};
    const uint32_t cells[] = {0, 1, 5, 9, 100, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    const auto any = [&] { return numbers[random() % 16]; };
    measure_as([&](char, uint32_t) {
        const uint32_t width = cells[random() % 8];
        return fake_chip::cell{width, cells[random() % 8]};
    });
    for (int i = 0; i < 2000; i++) {
        ux_select_box *box = make_at({any(), any(), any(), any()}, {u"a<>"});
        box->obj.border = any();
        if (box->obj.width < 100 && box->obj.height < 100)
            ux_select_box_set_bg_color(box, random() % 2 ? 0 : k_normal, k_focus);
        ux_select_box_show(&box->obj);
        box->obj.set_focus(&box->obj);
        ux_select_box_repaint(&box->obj);
        ux_select_box_free_items(box);
        boxes.clear();
        ux_container_del_obj(root(), &box->obj, 0, 0);
        take_measured();
    }
    take_calls();
}
