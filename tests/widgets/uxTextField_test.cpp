// SPDX-License-Identifier: MIT
// The text field: its record, its setters, its text, and what it paints.

#include "tests/support/page_end.h"
#include "tests/widgets/text_field_test.h"

#include <climits>
#include <random>

namespace {

constexpr uint32_t k_text = 0xFF0000F0;
constexpr uint32_t k_normal = 0xFF00B000;
constexpr uint32_t k_focus = 0xFF00B100;
constexpr uint32_t k_screen = 0xFF204060;
constexpr uint32_t k_black = 0xFF000000;

class TextFieldPaintTest : public TextFieldTest {
  protected:
    // A field of the colours above with one letter.
    ux_text_field *colored(int x, int y, int w, int h, const char16_t *text = u"a") {
        ux_text_field *field = ux_text_field_new(root(), x, y, w, h, text);
        ux_text_field_set_fg_color(field, k_text, k_text);
        ux_text_field_set_bg_color(field, k_normal, k_focus);
        return field;
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
                            {0xFF000003, '3'},
                            {0xFF000004, '4'}});
    }

    static std::u16string numbered(int units) {
        std::u16string text;
        for (int k = 0; k < units; k++)
            text += static_cast<char16_t>(0x4101 + k);
        return text;
    }
};

} // namespace

TEST_F(TextFieldTest, constructor_fills_the_fields_own_record) {
    ux_text_field *field = ux_text_field_new(root(), 1, -2, 30, 40, u"ab");
    EXPECT_EQ(text_of(field), u"ab");
    EXPECT_EQ(field->mask_char, '*');
    EXPECT_EQ(field->password, 0);
    EXPECT_EQ(field->limit, 256);
    EXPECT_EQ(field->font_size, 16);
    EXPECT_EQ(field->style, 3);
    EXPECT_EQ(field->input_type, 0);
    for (uint32_t color : {field->fg_color, field->focus_fg_color, field->select_fg_color,
                           field->select_focus_fg_color})
        EXPECT_EQ(color, 0xFFAAAAAA);
    for (uint32_t color : {field->bg_color, field->focus_bg_color, field->select_bg_color,
                           field->select_focus_bg_color})
        EXPECT_EQ(color, 0xFF000000);
}

TEST_F(TextFieldTest, null_text_makes_an_empty_field) {
    EXPECT_EQ(units_of(make(nullptr), 128), std::u16string(128, u'\0'));
}

TEST_F(TextFieldTest, setters_store_and_do_nothing_else) {
    ux_text_field *f = focused(u"abcd");
    const auto set = [&](auto call, auto change) { expect_only(f, call, change); };
    using record = ux_text_field;
    set([&] { return ux_text_field_set_fg_color(f, 1, 2); },
        [](record &r) { r.fg_color = 1, r.focus_fg_color = 2; });
    set([&] { return ux_text_field_set_bg_color(f, 3, 4); },
        [](record &r) { r.bg_color = 3, r.focus_bg_color = 4; });
    set([&] { return ux_text_field_set_fg_scolor(f, 5, 6); },
        [](record &r) { r.select_fg_color = 5, r.select_focus_fg_color = 6; });
    set([&] { return ux_text_field_set_bg_scolor(f, 7, 8); },
        [](record &r) { r.select_bg_color = 7, r.select_focus_bg_color = 8; });
    set([&] { return ux_text_field_set_limit(f, 9); }, [](record &r) { r.limit = 9; });
    set([&] { return ux_text_field_set_type(f, 10); }, [](record &r) { r.input_type = 10; });
    set([&] { return ux_text_field_set_pw_type(f, 0x7841, -1); },
        [](record &r) { r.mask_char = 0x7841, r.password = -1; });
    set([&] { return ux_text_field_set_style(f, 11); }, [](record &r) { r.style = 11; });
    set([&] { return ux_text_field_set_font(f, "Vera", 12); }, [](record &) {});
    set([&] { return ux_text_field_set_font_size(f, 13); }, [](record &r) { r.font_size = 13; });
    set([&] { return ux_text_field_set_border(f, -14); }, [](record &r) { r.obj.border = -14; });
    set([&] { return ux_text_field_set_text(f, nullptr); },
        [](record &r) { r.text[0] = r.text[1] = 0; });
    set([&] { return ux_text_field_set_text(f, u"xyz"); },
        [](record &r) { memcpy(r.text, u"xyz\0", 10); });
    set([&] { return ux_text_field_set_size(f, 5, 6, 7, 8); },
        [](record &r) { r.obj.x = 5, r.obj.y = 6, r.obj.width = 7, r.obj.height = 8; });
}

TEST_F(TextFieldTest, password_is_refused_by_other_kinds_and_changes_nothing) {
    ux_text_field *field = make();
    field->obj.type = 5;
    EXPECT_EQ(ux_text_field_set_pw_type(field, 'x', 1), -1);
    EXPECT_EQ(field->mask_char, '*');
    EXPECT_EQ(field->password, 0);
}

// The text that is given.

TEST_F(TextFieldPaintTest, text_of_127_units_is_kept_and_painted_whole) {
    ux_text_field *field = make(numbered(127).c_str());
    EXPECT_EQ(units_of(field, 128), numbered(127) + u'\0');
    field->obj.show(&field->obj);
    EXPECT_EQ(take_glyphs().size(), 127u);
}

TEST_F(TextFieldPaintTest, last_byte_of_the_text_is_cleared) {
    ux_text_field *field = make();
    ux_text_field_set_text(field, numbered(128).c_str());
    EXPECT_EQ(units_of(field, 127), numbered(127));
    EXPECT_EQ(field->text[127], 0x80) << "of 0x4180";
    field->obj.show(&field->obj);
    EXPECT_EQ(take_glyphs(), std::vector<int>{}) << "a text without an end";
}

TEST_F(TextFieldPaintTest, text_at_the_end_of_memory_is_not_read_beyond) {
    for (int units : {0, 1, 127}) {
        const page_end copy(numbered(units).c_str(), 2 * static_cast<size_t>(units) + 2);
        ux_text_field *field = make(copy.units());
        EXPECT_EQ(text_of(field), numbered(units));
    }
    const page_end endless(numbered(128).data(), 256);
    EXPECT_EQ(units_of(make(endless.units()), 127), numbered(127));
}

TEST_F(TextFieldPaintTest, fields_own_text_may_be_set_again) {
    ux_text_field *field = make(u"abcd");
    ux_text_field_set_text(field, field->text);
    EXPECT_EQ(units_of(field, 6), std::u16string(u"abcd\0\0", 6));
    ux_text_field_set_text(field, field->text + 2);
    EXPECT_EQ(units_of(field, 6), std::u16string(u"cd\0\0\0\0", 6));
}

// Colours, border, place of the text.

TEST_F(TextFieldPaintTest, field_paints_background_border_and_text_inside_it) {
    ux_text_field *field = colored(1, 0, 8, 8);
    ux_text_field_set_border(field, 1);
    EXPECT_EQ(ux_text_field_show(&field->obj), 0);
    EXPECT_EQ(letters_of_screen(), ".WWWWWWWW.......\n"
                                   ".WtnnnnnW.......\n"
                                   ".WnnnnnnW.......\n"
                                   ".WnnnnnnW.......\n"
                                   ".WnnnnnnW.......\n"
                                   ".WnnnnnnW.......\n"
                                   ".WnnnnnnW.......\n"
                                   ".WWWWWWWW.......\n");
    EXPECT_EQ(field->obj.status, 4u);
}

TEST_F(TextFieldPaintTest, focused_field_has_its_own_colours_and_one_border_colour) {
    ux_text_field *field = colored(1, 1, 6, 7);
    ux_text_field_set_border(field, 1);
    ux_text_field_set_fg_color(field, 7, k_text);
    ux_obj_set_border_color(&field->obj, 2 | 4 | 8, 0xFF000001, 0xFF000002);
    field->obj.set_focus(&field->obj);
    ux_text_field_show(&field->obj);
    EXPECT_EQ(letters_of_screen(), "................\n"
                                   ".YYYYYY.........\n"
                                   ".YtfffY.........\n"
                                   ".YffffY.........\n"
                                   ".YffffY.........\n"
                                   ".YffffY.........\n"
                                   ".YffffY.........\n"
                                   ".YYYYYY.........\n");
}

TEST_F(TextFieldPaintTest, sides_have_their_colours_and_none_is_not_painted) {
    ux_text_field *field = colored(0, 0, 5, 4, nullptr);
    ux_text_field_set_border(field, 1);
    ux_obj_set_border_color(&field->obj, 1, 0, 0);
    ux_obj_set_border_color(&field->obj, 2, 0xFF000002, 0);
    ux_obj_set_border_color(&field->obj, 4, 0xFF000003, 0);
    ux_obj_set_border_color(&field->obj, 8, 0xFF000004, 0);
    ux_text_field_show(&field->obj);
    const std::string normal = "3nnn4...........\n3nnn4...........\n"
                               "3nnn4...........\n32224...........\n";
    EXPECT_EQ(letters_of_screen().substr(0, normal.size()), normal);
    field->obj.set_focus(&field->obj);
    ux_text_field_show(&field->obj);
    const std::string focused = "fffff...........\nfffff...........\n"
                                "fffff...........\nfffff...........\n";
    EXPECT_EQ(letters_of_screen().substr(0, focused.size()), focused);
}

TEST_F(TextFieldPaintTest, selected_colours_are_never_painted) {
    ux_text_field *field = colored(0, 0, 4, 4, nullptr);
    ux_text_field_set_bg_scolor(field, 0, 0);
    field->obj.set_select(&field->obj);
    ux_text_field_show(&field->obj);
    EXPECT_EQ(buf_pixel(1, 1), k_normal);
    EXPECT_EQ(field->obj.bg_backup, nullptr);
}

TEST_F(TextFieldPaintTest, text_is_painted_in_the_size_of_the_variable) {
    ux_text_field *field = colored(0, 0, 16, 8);
    ux_text_field_set_font_size(field, 30);
    setenv("FontSize", "7", 1);
    ux_text_field_show(&field->obj);
    unsetenv("FontSize");
    ux_text_field_show(&field->obj);
    const calls all = take_calls();
    ASSERT_FALSE(all.empty());
    EXPECT_EQ(all.front(), "FSS_set_scale 458752 0 0 458752");
    EXPECT_EQ(std::count(all.begin(), all.end(), "FSS_set_scale 1966080 0 0 1966080"), 1);
}

TEST_F(TextFieldPaintTest, text_has_the_room_that_the_border_leaves_on_all_sides) {
    struct {
        int height, advance;
        uint32_t found;
    } const cases[] = {{7, 7, k_text}, {7, 8, k_normal}, {6, 2, k_normal}};
    for (const auto &c : cases) {
        fake_chip::get().glyphs[u'a'].advance = c.advance;
        ux_text_field *field = colored(0, 0, 9, c.height); // 7 x 5 or 7 x 4 inside
        ux_text_field_set_border(field, 1);
        ux_text_field_show(&field->obj);
        EXPECT_EQ(buf_pixel(1, 1), c.found) << c.height << ", " << c.advance;
    }
}

TEST_F(TextFieldPaintTest, text_of_the_backgrounds_colour_leaves_what_it_stands_over) {
    ux_text_field *field = colored(2, 2, 8, 5);
    ux_text_field_set_border(field, -1); // the text begins outside of the field
    ux_text_field_set_fg_color(field, k_normal, k_text);
    ux_text_field_show(&field->obj);
    EXPECT_EQ(buf_pixel(1, 1), 0u);
    ux_text_field_set_fg_color(field, k_text, k_text);
    ux_text_field_show(&field->obj);
    EXPECT_EQ(buf_pixel(1, 1), k_text);
}

// Background.

TEST_F(TextFieldPaintTest, any_background_of_0_blackens_the_field_before_it_is_saved) {
    const std::pair<uint32_t, uint32_t> backgrounds[] = {{0, k_focus}, {k_normal, 0}, {0, 0}};
    for (const auto &[normal, focus] : backgrounds) {
        fill_buf(k_screen);
        ux_text_field *field = colored(2, 1, 4, 3, nullptr);
        ux_text_field_set_bg_color(field, normal, focus);
        ux_text_field_show(&field->obj);
        EXPECT_EQ(saved_under(&field->obj), std::vector<uint32_t>(12, k_black));
        EXPECT_EQ(field->obj.status, 0x14u);
        EXPECT_EQ(buf_pixel(2, 1), normal ? normal : k_black);
        EXPECT_EQ(buf_pixel(5, 3), normal ? normal : k_black);
        EXPECT_EQ(buf_pixel(1, 1), k_screen);
        EXPECT_EQ(buf_pixel(6, 3), k_screen);
        field->obj.set_focus(&field->obj);
        ux_text_field_show(&field->obj);
        EXPECT_EQ(buf_pixel(3, 2), focus ? focus : k_black);
        field->obj.unset_focus(&field->obj);
    }
}

TEST_F(TextFieldPaintTest, background_is_saved_once) {
    fill_buf(k_screen);
    ux_text_field *field = colored(2, 1, 4, 3, nullptr);
    ux_text_field_set_bg_color(field, 0, 0);
    ux_text_field_show(&field->obj);
    fill_buf(k_screen);
    set_buf_pixel(3, 2, 0xFF112233);
    ux_text_field_show(&field->obj);
    EXPECT_EQ(buf_pixel(3, 2), k_black);
    EXPECT_EQ(saved_under(&field->obj), std::vector<uint32_t>(12, k_black));
}

TEST_F(TextFieldPaintTest, backgrounds_of_a_colour_save_nothing) {
    ux_text_field *field = colored(2, 1, 4, 3);
    ux_text_field_show(&field->obj);
    field->obj.set_focus(&field->obj);
    ux_text_field_show(&field->obj);
    EXPECT_EQ(field->obj.bg_backup, nullptr);
}

TEST_F(TextFieldPaintTest, field_without_the_save_flag_is_transparent) {
    fill_buf(k_screen);
    ux_text_field *field = colored(2, 1, 4, 3, nullptr);
    ux_text_field_set_bg_color(field, 0, 0);
    ux_obj_unset_flag(&field->obj, 0x10);
    ux_text_field_show(&field->obj);
    EXPECT_EQ(field->obj.bg_backup, nullptr);
    EXPECT_EQ(buf_pixel(3, 2), k_screen);
}

TEST_F(TextFieldPaintTest, hosts_own_background_is_painted_and_never_replaced) {
    fill_buf(k_screen);
    ux_text_field *field = colored(2, 1, 2, 1, nullptr);
    ux_text_field_set_bg_color(field, 0, 0);
    auto *pixels = static_cast<uint32_t *>(malloc(8));
    pixels[0] = pixels[1] = k_black;
    ux_obj_set_bg_buffer(&field->obj, pixels);
    ux_text_field_show(&field->obj);
    EXPECT_EQ(field->obj.bg_backup, pixels);
    EXPECT_EQ(buf_pixel(2, 1), k_black);
    EXPECT_EQ(buf_pixel(4, 1), k_screen);
}

TEST_F(TextFieldPaintTest, failed_save_is_told_and_the_rest_is_painted_on_black) {
    fill_buf(k_screen);
    ux_text_field *field = colored(2, 1, 4, 6);
    ux_text_field_set_bg_color(field, 0, 0);
    testing::internal::CaptureStderr();
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_text_field_show(&field->obj), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Can not allocate background backup image memory!\n");
    EXPECT_EQ(field->obj.status, 4u);
    EXPECT_EQ(buf_pixel(2, 1), k_text);
    EXPECT_EQ(buf_pixel(3, 1), k_black);
}

// Show, hide, repaint, pages.

TEST_F(TextFieldPaintTest, field_of_another_page_is_marked_visible_only) {
    ux_text_field *field = colored(0, 0, 4, 4);
    ux_text_field_set_bg_color(field, 0, 0);
    main_screen.current_page = 1;
    expect_only(
        field, [&] { return ux_text_field_show(&field->obj); },
        [](ux_text_field &r) { r.obj.status = 4; });
}

TEST_F(TextFieldPaintTest, hide_clears_the_bit_and_leaves_the_pixels) {
    ux_text_field *field = colored(0, 0, 4, 4);
    ux_text_field_set_bg_color(field, 0, 0);
    ux_text_field_show(&field->obj);
    expect_only(
        field, [&] { return ux_text_field_hide(&field->obj); },
        [](ux_text_field &r) { r.obj.status = 0x10; });
}

TEST_F(TextFieldPaintTest, repaint_shows_a_visible_field_and_hides_a_hidden_one) {
    ux_text_field *field = colored(0, 0, 4, 4);
    expect_only(
        field, [&] { return ux_text_field_repaint(&field->obj); }, [](ux_text_field &) {});
    field->obj.status = 4;
    EXPECT_EQ(ux_text_field_repaint(&field->obj), 0);
    EXPECT_EQ(take_paints(), 1);
    EXPECT_EQ(buf_pixel(1, 1), k_normal);
}

TEST_F(TextFieldPaintTest, painted_rectangle_is_brought_to_the_device) {
    set_apart();
    ux_text_field *field = colored(2, 1, 4, 3, nullptr);
    ux_text_field_show(&field->obj);
    EXPECT_EQ(fb_letters({{k_normal, 'n'}}), "................\n"
                                             "..nnnn..........\n"
                                             "..nnnn..........\n"
                                             "..nnnn..........\n"
                                             "................\n................\n"
                                             "................\n................\n");
}

TEST_F(TextFieldPaintTest, painting_allocates_nothing) {
    ux_text_field *field = colored(0, 0, 16, 8, u"aaa");
    ux_text_field_set_border(field, 1);
    ux_text_field_set_bg_color(field, 0, k_focus);
    ux_text_field_show(&field->obj); // saves the background
    fake_chip::get().record_calls = false;
    hooks::take_allocation_count();
    for (int password : {0, 1}) {
        ux_text_field_set_pw_type(field, '*', password);
        field->obj.set_focus(&field->obj);
        ux_text_field_show(&field->obj);
        press(32);
        field->obj.unset_focus(&field->obj);
        ux_text_field_repaint(&field->obj);
    }
    EXPECT_EQ(hooks::take_allocation_count(), 0);
}

TEST_F(TextFieldPaintTest, fields_of_any_place_and_size_stay_inside_the_screen) {
    std::mt19937 random(5);
    const int numbers[] = {INT_MIN, INT_MIN + 1, -100, -9, -3, -1, 0,       1,
                           2,       3,           7,    8,  15, 16, INT_MAX, INT_MAX - 1};
    const auto any = [&] { return numbers[random() % 16]; };
    for (int i = 0; i < 3000; i++) {
        ux_text_field *field = colored(any(), any(), any(), any());
        ux_text_field_set_border(field, any());
        if (field->obj.width < 100 && field->obj.height < 100)
            ux_text_field_set_bg_color(field, random() % 2 ? 0 : k_normal, k_focus);
        ux_text_field_show(&field->obj);
        field->obj.set_focus(&field->obj);
        ux_text_field_repaint(&field->obj);
        ux_container_del_obj(root(), &field->obj, 0, 0);
    }
    take_calls();
}

// Passwords.

TEST_F(TextFieldPaintTest, password_of_any_length_shows_one_mask) {
    for (const char16_t *text : {u"a", u"ab", u"abcdefgh"}) {
        ux_text_field *field = make(text);
        ux_text_field_set_pw_type(field, '*', 1);
        take_calls();
        field->obj.show(&field->obj);
        EXPECT_EQ(take_glyphs(), std::vector<int>{'*'});
        EXPECT_EQ(text_of(field), text);
    }
}

TEST_F(TextFieldPaintTest, empty_password_shows_nothing) {
    ux_text_field *field = make(u"");
    ux_text_field_set_pw_type(field, '*', 1);
    field->obj.show(&field->obj);
    EXPECT_EQ(take_glyphs(), std::vector<int>{});
}

// Two bytes of mask make one unit: 0x2A2A.
TEST_F(TextFieldPaintTest, password_of_wide_units_shows_masks_of_two_bytes) {
    ux_text_field *field = make(u"\u4142\u4344a");
    ux_text_field_set_pw_type(field, '*', 1);
    field->obj.show(&field->obj);
    EXPECT_EQ(take_glyphs(), (std::vector<int>{0x2A2A, 0x2A2A, 0x2A})) << "five bytes";
}

TEST_F(TextFieldPaintTest, password_bytes_end_at_the_first_zero_byte) {
    ux_text_field *field = make(u"\u4100z");
    ux_text_field_set_pw_type(field, '*', 1);
    field->obj.show(&field->obj);
    EXPECT_EQ(take_glyphs(), std::vector<int>{});
}

TEST_F(TextFieldPaintTest, password_without_a_zero_byte_shows_nothing) {
    ux_text_field *field = make(numbered(127).c_str());
    ux_text_field_set_pw_type(field, '*', 1);
    field->obj.show(&field->obj);
    EXPECT_EQ(take_glyphs(), std::vector<int>(127, 0x2A2A)) << "the zero unit ends it";
    std::fill(std::begin(field->text), std::end(field->text), u'\u4142');
    field->obj.show(&field->obj);
    EXPECT_EQ(take_glyphs(), std::vector<int>{}) << "256 masks have no end";
    field->text[127] = u'\x41';
    field->obj.show(&field->obj);
    EXPECT_EQ(take_glyphs(), std::vector<int>{}) << "255 masks fill the last unit";
}

TEST_F(TextFieldPaintTest, low_byte_of_the_mask_counts) {
    ux_text_field *field = make(u"\u4142");
    const std::pair<int, std::vector<int>> masks[] = {
        {'#', {0x2323}}, {0x1FF23, {0x2323}}, {-1, {0xFFFF}}, {0, {}}, {0x100, {}}};
    for (const auto &[mask, glyphs] : masks) {
        ux_text_field_set_pw_type(field, mask, 1);
        take_calls();
        field->obj.show(&field->obj);
        EXPECT_EQ(take_glyphs(), glyphs) << mask;
    }
}

TEST_F(TextFieldPaintTest, any_number_but_0_hides_the_content) {
    ux_text_field *field = make(u"xy");
    for (int enabled : {1, -1, INT_MIN}) {
        ux_text_field_set_pw_type(field, '*', enabled);
        take_calls();
        field->obj.show(&field->obj);
        EXPECT_EQ(take_glyphs(), std::vector<int>{'*'});
    }
    ux_text_field_set_pw_type(field, '*', 0);
    field->obj.show(&field->obj);
    EXPECT_EQ(take_glyphs(), (std::vector<int>{'x', 'y'}));
}
