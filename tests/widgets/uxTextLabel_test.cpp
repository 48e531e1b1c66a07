// SPDX-License-Identifier: MIT
// The text label: its record, its setters, and what showing and hiding paint.

#include "tests/widgets/widget_test.h"

namespace {

constexpr uint32_t k_fg = 0xFF0000F0;
constexpr uint32_t k_bg = 0xFF00B000;
constexpr uint32_t k_screen = 0xFF770000;

class TextLabelTest : public WidgetTest {
  protected:
    ux_text_label *make(int x, int y, int w, int h, const char16_t *text = u"a") {
        ux_text_label *label = ux_text_label_new(root(), x, y, w, h, text);
        ux_text_label_set_fg_color(label, k_fg);
        ux_text_label_set_bg_color(label, k_bg);
        return label;
    }
};

} // namespace

static_assert(offsetof(ux_text_label, obj) == 0 && offsetof(ux_text_button, obj) == 0,
              "a widget's address is its object's");
static_assert(sizeof(ux_text_label::text) == 256 && sizeof(ux_text_button::text) == 256);

TEST_F(TextLabelTest, constructor_fills_the_labels_own_fields) {
    ux_text_label *label = ux_text_label_new(root(), 0, 0, 4, 4, u"ab");
    EXPECT_EQ(std::u16string(label->text), u"ab");
    EXPECT_EQ(label->fg_color, 0xFFAAAAAA);
    EXPECT_EQ(label->bg_color, 0xFF000000);
    EXPECT_EQ(label->font_size, 16);
    EXPECT_EQ(label->style, 4);
}

TEST_F(TextLabelTest, setters_store_and_do_nothing_else) {
    ux_text_label *label = make(2, 2, 4, 5);
    ux_text_label_show(&label->obj);
    expect_only(
        label, [&] { return ux_text_label_set_fg_color(label, 1); },
        [](ux_text_label &l) { l.fg_color = 1; });
    expect_only(
        label, [&] { return ux_text_label_set_bg_color(label, 2); },
        [](ux_text_label &l) { l.bg_color = 2; });
    expect_only(
        label, [&] { return ux_text_label_set_font_size(label, -3); },
        [](ux_text_label &l) { l.font_size = -3; });
    expect_only(
        label, [&] { return ux_text_label_set_style(label, 9); },
        [](ux_text_label &l) { l.style = 9; });
    expect_only(
        label, [&] { return ux_text_label_set_font(label, "Vera", 12); }, [](ux_text_label &) {});
    expect_only(
        label, [&] { return ux_text_label_set_text(label, u"xyz"); },
        [](ux_text_label &l) { memcpy(l.text, u"xyz", 8); });
    expect_only(
        label, [&] { return ux_text_label_set_size(label, 5, 6, 7, 8); },
        [](ux_text_label &l) {
            l.obj.x = 5;
            l.obj.y = 6;
            l.obj.width = 7;
            l.obj.height = 8;
        });
}

TEST_F(TextLabelTest, background_colour_is_given_back) {
    ux_text_label *label = make(0, 0, 4, 5);
    ux_text_label_set_bg_color(label, 0x12345678);
    EXPECT_EQ(ux_text_label_get_bg_color(label), 0x12345678u);
}

TEST_F(TextLabelTest, font_size_of_a_null_label_is_ignored) {
    EXPECT_EQ(ux_text_label_set_font_size(nullptr, 20), 0);
    EXPECT_EQ(ux_text_label_set_font(nullptr), 0);
}

TEST_F(TextLabelTest, new_size_drops_the_saved_background) {
    ux_text_label *label = make(1, 1, 4, 5);
    ux_obj_backup_bg(&label->obj);
    ux_text_label_set_size(label, 0, 0, 2, 2);
    EXPECT_EQ(label->obj.bg_backup, nullptr);
    EXPECT_EQ(label->obj.status & UX_ST_BG_SAVED, 0u);
}

TEST_F(TextLabelTest, show_fills_the_rectangle_and_draws_the_text_on_it) {
    ux_text_label *label = make(2, 1, 5, 6, u"aa");
    EXPECT_EQ(ux_text_label_show(&label->obj), 0);
    EXPECT_EQ(buf_letters({{k_fg, 'X'}, {k_bg, 'b'}}), "................\n"
                                                       "..XbXbb.........\n"
                                                       "..bbbbb.........\n"
                                                       "..bbbbb.........\n"
                                                       "..bbbbb.........\n"
                                                       "..bbbbb.........\n"
                                                       "..bbbbb.........\n"
                                                       "................\n");
    EXPECT_EQ(label->obj.status, uint32_t{UX_ST_VISIBLE});
}

TEST_F(TextLabelTest, background_goes_to_buf_and_text_to_fb) {
    set_apart();
    // A rectangle that begins left of the screen is not copied to `fb`, so what was painted where
    // stays to be seen.
    ux_text_label *label = make(-2, 1, 6, 5, u"aaa");
    ux_text_label_show(&label->obj);
    EXPECT_EQ(buf_letters({{k_fg, 'X'}, {k_bg, 'b'}}).substr(17 * 2, 17), "bbbb..........bb\n");
    EXPECT_EQ(fb_letters({{k_fg, 'X'}, {k_bg, 'b'}}), "..............X.\n"
                                                      "X.X.............\n"
                                                      "................\n"
                                                      "................\n"
                                                      "................\n"
                                                      "................\n"
                                                      "................\n"
                                                      "................\n");
}

// Turned by 90 degrees the drawing is 8 x 16 pixels. The background comes from `buf` and stands
// turned: its columns 2 to 5 are rows 5 to 2 of the device, its rows 3 to 7 the device's columns.
// The ink is stored in rows of 8 as if nothing were turned: element 3 * 8 + 2 is the device's (10,
// 1).
TEST_F(TextLabelTest, text_of_a_turned_screen_is_not_turned) {
    set_apart();
    testing::internal::CaptureStdout();
    ux_screen_rorate_init("RORATE_90");
    testing::internal::GetCapturedStdout();
    ux_text_label *label = make(2, 3, 4, 5);
    ux_text_label_show(&label->obj);
    std::swap(main_screen.width, main_screen.height);
    EXPECT_EQ(fb_letters({{k_fg, 'X'}, {k_bg, 'b'}}), "................\n"
                                                      "..........X.....\n"
                                                      "...bbbbb........\n"
                                                      "...bbbbb........\n"
                                                      "...bbbbb........\n"
                                                      "...bbbbb........\n"
                                                      "................\n"
                                                      "................\n");
}

TEST_F(TextLabelTest, show_ends_with_a_copy_of_the_rectangle_to_the_device) {
    set_apart();
    ux_text_label *label = make(1, 1, 2, 5);
    ux_text_label_show(&label->obj);
    EXPECT_EQ(fb_letters({{k_fg, 'X'}, {k_bg, 'b'}}).substr(17, 34), ".bb.............\n"
                                                                     ".bb.............\n");
}

TEST_F(TextLabelTest, label_of_another_page_only_becomes_visible) {
    set_apart();
    fill_buf(k_screen);
    ux_text_label *label = make(1, 1, 4, 5);
    label->obj.page_id = 1;
    EXPECT_EQ(ux_text_label_show(&label->obj), 0);
    EXPECT_EQ(label->obj.status, uint32_t{UX_ST_VISIBLE});
    EXPECT_EQ(buf_letters({{k_screen, 's'}}).find_first_not_of("s\n"), std::string::npos);
    EXPECT_EQ(fb_letters({}).find_first_not_of(".\n"), std::string::npos)
        << "no copy to the device";
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(TextLabelTest, label_without_page_is_not_painted) {
    ux_text_label *label = ux_text_label_new(nullptr, 0, 0, 4, 5, u"a");
    EXPECT_EQ(label->obj.show(&label->obj), 0);
    EXPECT_EQ(label->obj.status, uint32_t{UX_ST_VISIBLE});
    EXPECT_EQ(buf_letters({}).find_first_not_of(".\n"), std::string::npos);
    label->obj.free(&label->obj);
}

TEST_F(TextLabelTest, label_without_background_draws_its_text_over_the_screen) {
    fill_buf(k_screen);
    ux_text_label *label = make(0, 0, 16, 8, u"aa");
    ux_text_label_set_bg_color(label, UX_COLOR_NONE);
    ux_text_label_show(&label->obj);
    const std::string picture = buf_letters({{k_fg, 'X'}, {k_screen, 's'}});
    EXPECT_EQ(picture.substr(0, 17), "XsXsssssssssssss\n");
    EXPECT_EQ(picture.substr(17).find_first_not_of("s\n"), std::string::npos);
    EXPECT_EQ(label->obj.bg_backup, nullptr);
}

TEST_F(TextLabelTest, label_told_to_save_keeps_the_screen_before_its_first_text) {
    fill_buf(k_screen);
    ux_text_label *label = make(1, 1, 2, 5);
    ux_text_label_set_bg_color(label, UX_COLOR_NONE);
    ux_obj_set_flag(&label->obj, UX_FLAG_SAVE_BG);
    ux_text_label_show(&label->obj);
    EXPECT_TRUE(label->obj.status & UX_ST_BG_SAVED);
    EXPECT_EQ(saved_under(&label->obj), std::vector<uint32_t>(10, k_screen));
    EXPECT_EQ(buf_pixel(1, 1), k_fg);
}

TEST_F(TextLabelTest, saved_background_is_blended_under_the_next_text) {
    fill_buf(k_screen);
    ux_text_label *label = make(1, 1, 2, 5);
    ux_text_label_set_bg_color(label, UX_COLOR_NONE);
    ux_obj_set_flag(&label->obj, UX_FLAG_SAVE_BG);
    ux_text_label_show(&label->obj);
    ux_text_label_set_text(label, u"");
    ux_text_label_show(&label->obj);
    // Under the old dot 0xF0 of blue remain with weight 1: (0xF0 + 0) >> 8 = 0, red (0x77 * 255)
    // >> 8.
    EXPECT_EQ(buf_pixel(1, 1), 0xFF760000);
    EXPECT_EQ(buf_pixel(2, 1), k_screen);
    EXPECT_EQ(saved_under(&label->obj), std::vector<uint32_t>(10, k_screen)) << "saved once";
}

TEST_F(TextLabelTest, label_with_a_background_colour_saves_nothing) {
    ux_text_label *label = make(1, 1, 2, 5);
    ux_obj_set_flag(&label->obj, UX_FLAG_SAVE_BG);
    ux_text_label_show(&label->obj);
    EXPECT_EQ(label->obj.bg_backup, nullptr);
    EXPECT_FALSE(label->obj.status & UX_ST_BG_SAVED);
}

TEST_F(TextLabelTest, hosts_own_background_is_painted_without_the_save_flag) {
    ux_text_label *label = make(1, 1, 2, 1, u"");
    ux_text_label_set_bg_color(label, UX_COLOR_NONE);
    auto *pixels = static_cast<uint32_t *>(malloc(2 * sizeof(uint32_t)));
    pixels[0] = 0x80FF0000;
    pixels[1] = 0x00FFFFFF;
    ux_obj_set_bg_buffer(&label->obj, pixels);
    fill_buf(0xFF000000);
    ux_text_label_show(&label->obj);
    EXPECT_EQ(buf_pixel(1, 1), 0xFF7F0000); // (0 * 128 + 255 * 128) >> 8
    EXPECT_EQ(buf_pixel(2, 1), 0xFF000000);
}

TEST_F(TextLabelTest, failed_save_is_told_and_the_text_drawn_all_the_same) {
    fill_buf(k_screen);
    ux_text_label *label = make(1, 1, 2, 5);
    ux_text_label_set_bg_color(label, UX_COLOR_NONE);
    ux_obj_set_flag(&label->obj, UX_FLAG_SAVE_BG);
    hooks::fail_allocation(1);
    testing::internal::CaptureStderr();
    fake_chip::get().record_calls = false;
    EXPECT_EQ(ux_text_label_show(&label->obj), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Can not allocate background backup image memory!\n");
    EXPECT_EQ(buf_pixel(1, 1), k_fg);
    EXPECT_EQ(buf_pixel(2, 1), k_screen);
    EXPECT_FALSE(label->obj.status & UX_ST_BG_SAVED);
}

TEST_F(TextLabelTest, no_border_is_painted) {
    ux_text_label *label = make(0, 0, 6, 6, u"");
    label->obj.border = 2;
    ux_obj_set_border_colors(&label->obj, 0xFF00FFFF, 0xFF00FFFF);
    ux_text_label_show(&label->obj);
    label->obj.status |= UX_ST_FOCUSED;
    ux_text_label_show(&label->obj);
    EXPECT_EQ(buf_letters({{k_bg, 'b'}}).find('?'), std::string::npos);
}

TEST_F(TextLabelTest, hide_clears_the_visible_bit_and_paints_nothing) {
    set_apart();
    ux_text_label *label = make(0, 0, 4, 5);
    ux_obj_backup_bg(&label->obj);
    ux_text_label_show(&label->obj);
    fill_buf(k_screen);
    expect_only(
        label, [&] { return ux_text_label_hide(&label->obj); },
        [](ux_text_label &l) { l.obj.status = UX_ST_BG_SAVED; });
    EXPECT_EQ(fb_pixel(1, 1), k_bg) << "no copy to the device";
}

TEST_F(TextLabelTest, repaint_shows_a_visible_label_and_leaves_a_hidden_one) {
    ux_text_label *label = make(0, 0, 4, 5);
    expect_only(
        label, [&] { return ux_text_label_repaint(&label->obj); }, [](ux_text_label &) {});
    label->obj.status = UX_ST_VISIBLE;
    EXPECT_EQ(ux_text_label_repaint(&label->obj), 0);
    EXPECT_EQ(buf_pixel(0, 0), k_fg);
    EXPECT_EQ(buf_pixel(1, 1), k_bg);
}

TEST_F(TextLabelTest, text_in_the_background_colour_vanishes) {
    ux_text_label *label = make(0, 0, 4, 5);
    ux_text_label_set_fg_color(label, k_bg);
    ux_text_label_show(&label->obj);
    EXPECT_EQ(buf_pixel(0, 0), k_bg);
    EXPECT_EQ(take_calls().size(), 3u);
}

TEST_F(TextLabelTest, text_of_colour_0_is_ink_on_a_background_that_is_not_0) {
    ux_text_label *label = make(0, 0, 4, 5);
    ux_text_label_set_fg_color(label, 0);
    ux_text_label_show(&label->obj);
    EXPECT_EQ(buf_pixel(0, 0), 0u);
    ux_text_label_set_bg_color(label, UX_COLOR_NONE);
    fill_buf(k_screen);
    ux_text_label_show(&label->obj);
    EXPECT_EQ(buf_pixel(0, 0), k_screen) << "and none on no background";
}

TEST_F(TextLabelTest, label_on_a_16_bit_screen_is_filled_and_its_text_reported) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    ux_text_label *label = make(1, 1, 2, 5);
    ux_text_label_set_bg_color(label, 0xFF00F81F);
    testing::internal::CaptureStderr();
    ux_text_label_show(&label->obj);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unknown bpp : 2\n");
    EXPECT_EQ(buf_pixel(0, 1), 0u);
    EXPECT_EQ(buf_pixel(1, 1), 0xF81Fu);
    EXPECT_EQ(buf_pixel(2, 5), 0xF81Fu);
    EXPECT_EQ(buf_pixel(3, 1), 0u);
}

TEST_F(TextLabelTest, labels_of_any_place_and_size_stay_inside_the_screen) {
    const int places[] = {-2147483647 - 1, -100, -3, 0, 5, 15, 16, 100, 2147483647};
    const int sizes[] = {-2147483647 - 1, -3, 0, 1, 40, 70000};
    ux_text_label *label = make(0, 0, 4, 4, u"aaaa");
    for (int x : places)
        for (int y : places)
            for (int w : sizes)
                for (int h : sizes) {
                    ux_text_label_set_size(label, x, y, w, h);
                    EXPECT_EQ(ux_text_label_show(&label->obj), 0);
                }
}
