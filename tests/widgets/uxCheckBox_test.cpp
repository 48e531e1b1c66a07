// SPDX-License-Identifier: MIT
// The check box: its record, its mark and caption, its focus, the screen under it.

#include "tests/support/page_end.h"
#include "tests/widgets/widget_test.h"

namespace {

constexpr int k_smallest = -2147483647 - 1;
constexpr int k_largest = 2147483647;

constexpr uint32_t k_ink = 0xFF0000F0;
constexpr uint32_t k_focus_ink = 0xFF0000F1;
constexpr uint32_t k_screen = 0xFF204060;

class CheckBoxTest : public WidgetTest {
  protected:
    // A box over a saved background, so that mark and caption show.
    ux_check_box *make(int x, int y, int w, int h, const char16_t *text = u"a") {
        ux_check_box *box = ux_check_box_new(root(), x, y, w, h, text);
        box->fg_color = k_ink;
        box->focus_fg_color = k_focus_ink;
        box->bg_color = box->focus_bg_color = UX_COLOR_NONE;
        return box;
    }

    std::string letters_of(uint32_t ink = k_ink) const {
        return buf_letters({{ink, '#'}, {k_screen, 's'}});
    }
};

} // namespace

TEST_F(CheckBoxTest, constructor_fills_the_boxes_own_fields) {
    const ux_check_box *box = ux_check_box_new(root(), 0, 0, 4, 4, u"ab");
    EXPECT_EQ(std::u16string(box->text), u"ab");
    EXPECT_EQ(box->font_size, 16);
    EXPECT_EQ(box->checked, 0);
    EXPECT_EQ(box->fg_color, 0xFFAAAAAA);
    EXPECT_EQ(box->bg_color, 0xFF000000);
    EXPECT_EQ(box->focus_fg_color, 0xFFAAAAAA);
    EXPECT_EQ(box->focus_bg_color, 0xFF000000);
}

TEST_F(CheckBoxTest, null_caption_is_empty_and_a_long_one_is_cut_at_the_last_byte) {
    EXPECT_EQ(ux_check_box_new(root(), 0, 0, 4, 4, nullptr)->text[0], u'\0');
    const std::u16string text(200, u'\u4142');
    const ux_check_box *box = ux_check_box_new(root(), 0, 0, 4, 4, text.c_str());
    for (int k = 0; k < 127; k++)
        ASSERT_EQ(box->text[k], 0x4142) << k;
    EXPECT_EQ(box->text[127], 0x0042);
    EXPECT_EQ(box->font_size, 16) << "nothing behind the text is written";
}

TEST_F(CheckBoxTest, caption_is_not_read_behind_its_end) {
    const page_end text(u"abc", 4 * sizeof(char16_t));
    EXPECT_EQ(std::u16string(ux_check_box_new(root(), 0, 0, 4, 4, text.units())->text), u"abc");
}

TEST_F(CheckBoxTest, box_without_a_parent_has_no_page) {
    ux_check_box *box = ux_check_box_new(nullptr, 0, 0, 4, 4, u"a");
    EXPECT_EQ(box->obj.page_id, -1);
    EXPECT_EQ(box->obj.parent, nullptr);
    EXPECT_EQ(box->obj.next, nullptr);
    EXPECT_EQ(ux_check_box_set_focus(&box->obj), 0);
    EXPECT_EQ(ux_check_box_show(&box->obj), 0);
    EXPECT_EQ(page->focus, nullptr);
    EXPECT_EQ(take_calls(), calls{});
    ux_obj_free(&box->obj);
}

TEST_F(CheckBoxTest, unchecked_box_paints_outline_and_caption_over_what_lay_beneath) {
    fill_buf(k_screen);
    ux_check_box *box = make(0, 0, 16, 8, u"a"); // outline (2, 2)-(3, 3), caption at 12
    ux_check_box_show(&box->obj);
    EXPECT_EQ(letters_of(), "ssssssssssss#sss\n"
                            "ssssssssssssssss\n"
                            "ss##ssssssssssss\n"
                            "ss##ssssssssssss\n"
                            "ssssssssssssssss\n"
                            "ssssssssssssssss\n"
                            "ssssssssssssssss\n"
                            "ssssssssssssssss\n");
}

TEST_F(CheckBoxTest, box_of_20_pixels_outlines_2_to_15_and_fills_4_to_13_when_checked) {
    for (bool checked : {false, true}) {
        make_screen(40, 30);
        ux_check_box *box = make(5, 3, 35, 20, u"a");
        box->checked = checked;
        ux_check_box_show(&box->obj);
        for (int y = 0; y < 30; y++)
            for (int x = 0; x < 40; x++) {
                const int column = x - 5, row = y - 3;
                const bool in_outline = column >= 2 && column <= 15 && row >= 2 && row <= 15;
                const bool in_hole = column >= 3 && column <= 14 && row >= 3 && row <= 14;
                const bool in_check = column >= 4 && column <= 13 && row >= 4 && row <= 13;
                const bool in_caption = column == 24 && row == 0;
                const bool ink = (in_outline && !in_hole) || (in_check && checked) || in_caption;
                EXPECT_EQ(buf_pixel(x, y), ink ? k_ink : 0u) << x << " " << y << " " << checked;
            }
    }
}

TEST_F(CheckBoxTest, any_number_but_0_is_checked) {
    for (int checked : {1, -1, 256, k_smallest}) {
        make_screen(30, 20);
        ux_check_box *box = make(0, 0, 30, 20, u"");
        box->checked = checked;
        ux_check_box_show(&box->obj);
        EXPECT_EQ(buf_pixel(8, 8), k_ink) << checked;
    }
}

TEST_F(CheckBoxTest, change_of_the_checked_field_shows_at_the_next_show) {
    make_screen(30, 20);
    fill_buf(k_screen);
    ux_check_box *box = make(0, 0, 30, 20, u"");
    ux_check_box_show(&box->obj);
    box->checked = 1;
    EXPECT_EQ(buf_pixel(8, 8), k_screen);
    ux_check_box_repaint(&box->obj);
    EXPECT_EQ(buf_pixel(8, 8), k_ink);
    box->checked = 0;
    ux_check_box_repaint(&box->obj);
    EXPECT_EQ(buf_pixel(8, 8), 0xFF1F3F60); // (ink * 1 + screen * 255) >> 8
}

TEST_F(CheckBoxTest, low_box_draws_lines_with_corners_exchanged_and_no_check) {
    // Height 5: the outline runs from (2, 2) to (0, 0), the check would from (4, 4) to (-2, -2).
    ux_check_box *box = make(4, 1, 12, 5, u"");
    box->checked = 1;
    ux_check_box_show(&box->obj);
    EXPECT_EQ(buf_letters({{k_ink, '#'}}), "................\n"
                                           "....###.........\n"
                                           "....#.#.........\n"
                                           "....###.........\n"
                                           "................\n"
                                           "................\n"
                                           "................\n"
                                           "................\n");
}

TEST_F(CheckBoxTest, normal_background_of_a_colour_fills_the_whole_box_with_the_text_colour) {
    for (bool focused : {false, true}) {
        ux_page_clean();
        ux_check_box *box = make(2, 1, 12, 6);
        box->bg_color = 0xFF00B000;
        box->checked = 1;
        if (focused)
            ux_check_box_set_focus(&box->obj);
        ux_check_box_show(&box->obj);
        const uint32_t ink = focused ? k_focus_ink : k_ink;
        EXPECT_EQ(buf_letters({{ink, '#'}}), "................\n"
                                             "..############..\n"
                                             "..############..\n"
                                             "..############..\n"
                                             "..############..\n"
                                             "..############..\n"
                                             "..############..\n"
                                             "................\n");
    }
}

TEST_F(CheckBoxTest, background_tests_look_at_the_normal_background_also_when_focused) {
    fill_buf(k_screen);
    ux_check_box *box = make(2, 1, 12, 6, u"");
    box->focus_bg_color = 0xFF00B000; // would be filled if it were asked
    ux_check_box_set_focus(&box->obj);
    ux_check_box_show(&box->obj);
    EXPECT_EQ(buf_pixel(10, 4), k_screen);
    EXPECT_EQ(buf_pixel(4, 3), k_focus_ink);
}

TEST_F(CheckBoxTest, caption_of_a_focused_box_has_its_background_as_transparent_key) {
    ux_check_box *box = make(0, 0, 16, 8, u"a");
    box->focus_bg_color = k_focus_ink;
    ux_check_box_set_focus(&box->obj);
    ux_check_box_show(&box->obj);
    EXPECT_EQ(buf_pixel(12, 0), 0u) << "ink of the key's colour does not show";
    ux_check_box_unset_focus(&box->obj);
    ux_check_box_show(&box->obj);
    EXPECT_EQ(buf_pixel(12, 0), k_ink);
}

TEST_F(CheckBoxTest, either_background_of_0_saves_the_screen_once_and_none_never) {
    struct {
        uint32_t bg, focus_bg;
        bool saves;
    } const cases[] = {{0, 0, true}, {0, 1, true}, {1, 0, true}, {1, 1, false}};
    for (const auto &c : cases) {
        fill_buf(k_screen);
        ux_check_box *box = make(1, 1, 3, 2, u"");
        box->bg_color = c.bg;
        box->focus_bg_color = c.focus_bg;
        ux_check_box_show(&box->obj);
        EXPECT_EQ((box->obj.status & UX_ST_BG_SAVED) != 0, c.saves);
        fill_buf(1);
        ux_check_box_show(&box->obj);
        EXPECT_EQ(saved_under(&box->obj),
                  c.saves ? std::vector<uint32_t>(6, k_screen) : std::vector<uint32_t>());
    }
}

TEST_F(CheckBoxTest, box_without_the_save_flag_paints_over_the_screen_as_it_is) {
    fill_buf(k_screen);
    ux_check_box *box = make(0, 0, 16, 8, u"");
    ux_obj_unset_flag(&box->obj, UX_FLAG_SAVE_BG);
    ux_check_box_show(&box->obj);
    EXPECT_EQ(box->obj.bg_backup, nullptr);
    EXPECT_EQ(buf_pixel(2, 2), k_ink);
    EXPECT_EQ(buf_pixel(8, 5), k_screen);
}

TEST_F(CheckBoxTest, background_that_can_not_be_saved_is_told_and_the_rest_is_painted) {
    fill_buf(k_screen);
    ux_check_box *box = make(0, 0, 16, 8);
    hooks::fail_allocation(1);
    testing::internal::CaptureStderr();
    EXPECT_EQ(ux_check_box_show(&box->obj), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Can not allocate background backup image memory!\n");
    EXPECT_EQ(buf_pixel(2, 2), k_ink);
    EXPECT_EQ(buf_pixel(8, 5), k_screen);
}

TEST_F(CheckBoxTest, no_border_is_painted_whatever_the_border_holds) {
    ux_check_box *box = make(0, 0, 16, 8, u"");
    box->obj.border = 3;
    ux_check_box_show(&box->obj);
    EXPECT_EQ(buf_pixel(0, 0), 0u);
    EXPECT_EQ(buf_pixel(15, 7), 0u);
    EXPECT_EQ(buf_pixel(2, 2), k_ink);
}

TEST_F(CheckBoxTest, caption_has_the_room_beside_the_mark_and_the_boxs_height) {
    struct {
        int height, advance;
        uint32_t found;
    } const cases[] = {{8, 4, k_ink}, {8, 5, k_screen}, {5, 2, k_ink}, {4, 2, k_screen}};
    for (const auto &c : cases) {
        fill_buf(k_screen);
        fake_chip::get().glyphs[u'a'].advance = c.advance;
        ux_check_box_show(&make(0, 0, 16, c.height)->obj); // 16 - 4 - 8 = 4
        EXPECT_EQ(buf_pixel(c.height + 4, 0), c.found) << c.height << ", " << c.advance;
    }
}

TEST_F(CheckBoxTest, text_size_is_the_environments_and_not_the_records) {
    ux_check_box *box = make(0, 0, 16, 8);
    box->font_size = 9;
    take_calls();
    ux_check_box_show(&box->obj);
    EXPECT_EQ(take_calls().at(0), "FSS_set_scale 327680 0 0 327680"); // 5 << 16
}

TEST_F(CheckBoxTest, focus_changes_bits_and_the_pages_focus_and_paints_nothing) {
    ux_check_box *box = make(0, 0, 16, 8);
    ux_check_box_show(&box->obj);
    expect_only(
        box, [&] { return ux_check_box_set_focus(&box->obj); },
        [](ux_check_box &r) { r.obj.status |= UX_ST_FOCUSED; });
    EXPECT_EQ(page->focus, &box->obj);
    expect_only(
        box, [&] { return ux_check_box_unset_focus(&box->obj); },
        [](ux_check_box &r) { r.obj.status &= ~1u; });
    EXPECT_EQ(page->focus, &box->obj) << "it stays the page's focus";
    for (int key = 0; key < 256; key++)
        EXPECT_EQ(page->key_handlers[key], nullptr);
}

TEST_F(CheckBoxTest, hide_clears_the_bit_and_leaves_the_pixels) {
    ux_check_box *box = make(0, 0, 16, 8);
    ux_check_box_show(&box->obj);
    expect_only(
        box, [&] { return ux_check_box_hide(&box->obj); },
        [](ux_check_box &r) { r.obj.status &= ~4u; });
    expect_only(
        box, [&] { return ux_check_box_repaint(&box->obj); }, [](ux_check_box &) {});
}

TEST_F(CheckBoxTest, box_of_another_page_only_changes_its_bits) {
    ux_page *second = new_page();
    ux_check_box *box = ux_check_box_new(&second->container, 0, 0, 16, 8, u"a");
    expect_only(
        box, [&] { return ux_check_box_show(&box->obj); },
        [](ux_check_box &r) { r.obj.status |= UX_ST_VISIBLE; });
    ux_check_box_set_focus(&box->obj);
    EXPECT_EQ(second->focus, &box->obj);
    EXPECT_EQ(page->focus, nullptr);
}

TEST_F(CheckBoxTest, show_makes_the_rectangle_visible_on_the_device) {
    ux_check_box *box = make(2, 1, 12, 6, u"");
    set_apart();
    ux_check_box_show(&box->obj);
    EXPECT_EQ(fb_letters({{k_ink, '#'}}), buf_letters({{k_ink, '#'}}));
    EXPECT_EQ(fb_pixel(4, 3), k_ink);
}

TEST_F(CheckBoxTest, boxes_of_any_place_and_size_stay_inside_the_screen) {
    const int places[] = {k_smallest, -100, -3, 0, 15, 100, k_largest};
    const int sizes[] = {k_smallest, -3, 0, 1, 4, 9, 40, k_largest};
    for (uint32_t bg : {0u, 1u}) {
        ux_check_box *box = make(0, 0, 4, 4, u"aaaa");
        box->bg_color = bg;
        box->checked = 1;
        for (int x : places)
            for (int y : places)
                for (int w : sizes)
                    for (int h : sizes) {
                        if (int64_t{w} * h > 10000) // a copy of gigabytes
                            ux_obj_unset_flag(&box->obj, UX_FLAG_SAVE_BG);
                        ux_obj_set_size(&box->obj, x, y, w, h);
                        EXPECT_EQ(ux_check_box_show(&box->obj), 0);
                        ux_obj_set_flag(&box->obj, UX_FLAG_SAVE_BG);
                        take_calls();
                    }
    }
}
