// SPDX-License-Identifier: MIT
// The screen under a text button: when it is saved, how it is painted back, what hiding does.

#include "tests/widgets/text_button_test.h"

namespace {

using background_field = uint32_t ux_text_button::*;

constexpr background_field k_backgrounds[] = {
    &ux_text_button::bg_color, &ux_text_button::focus_bg_color, &ux_text_button::select_bg_color,
    &ux_text_button::select_focus_bg_color};

} // namespace

using TextButtonBackgroundTest = TextButtonTest;

TEST_F(TextButtonBackgroundTest, any_background_of_0_saves_the_screen_once_before_the_first_paint) {
    for (background_field field : k_backgrounds) {
        ux_page_clean();
        fill_buf(k_screen);
        ux_text_button *button = make(1, 1, 3, 5);
        ux_text_button_set_border(button, 1);
        button->*field = UX_COLOR_NONE;
        ux_text_button_show(&button->obj);
        EXPECT_TRUE(button->obj.status & UX_ST_BG_SAVED);
        EXPECT_EQ(saved_under(&button->obj), std::vector<uint32_t>(15, k_screen));
        const void *backup = button->obj.bg_backup;
        fill_buf(1);
        ux_text_button_show(&button->obj);
        ux_text_button_set_focus(&button->obj);
        EXPECT_EQ(button->obj.bg_backup, backup);
        EXPECT_EQ(saved_under(&button->obj), std::vector<uint32_t>(15, k_screen)) << "saved again";
    }
}

TEST_F(TextButtonBackgroundTest, four_backgrounds_of_a_colour_never_save) {
    ux_text_button *button = make(1, 1, 3, 5);
    for (ux_slot slot : {ux_text_button_show, ux_text_button_set_focus, ux_text_button_set_select,
                         ux_text_button_unset_focus, ux_text_button_hide, ux_text_button_repaint})
        slot(&button->obj);
    EXPECT_EQ(button->obj.bg_backup, nullptr);
    EXPECT_FALSE(button->obj.status & UX_ST_BG_SAVED);
}

TEST_F(TextButtonBackgroundTest, button_without_the_save_flag_saves_and_paints_no_background) {
    fill_buf(k_screen);
    ux_text_button *button = make(1, 1, 3, 5);
    ux_obj_unset_flag(&button->obj, UX_FLAG_SAVE_BG);
    button->fg_color = k_text;
    button->bg_color = UX_COLOR_NONE;
    ux_text_button_show(&button->obj);
    EXPECT_EQ(button->obj.bg_backup, nullptr);
    EXPECT_EQ(buf_pixel(1, 1), k_text);
    EXPECT_EQ(buf_pixel(2, 2), k_screen);
}

TEST_F(TextButtonBackgroundTest, fresh_copy_changes_no_pixel_whatever_its_alpha) {
    const uint32_t under[] = {0x00204060, 0x80204060, 0xFF204060, 0x01FFFFFF};
    for (int x = 0; x < 4; x++)
        set_buf_pixel(x, 0, under[x]);
    ux_text_button *button = make(0, 0, 4, 1, u"");
    button->bg_color = UX_COLOR_NONE;
    ux_text_button_show(&button->obj);
    for (int x = 0; x < 4; x++)
        EXPECT_EQ(buf_pixel(x, 0), under[x]) << x;
}

TEST_F(TextButtonBackgroundTest, text_button_restores_the_saved_background_on_hide) {
    fill_buf(k_screen);
    ux_text_button *button = make(1, 1, 3, 5);
    button->select_bg_color = UX_COLOR_NONE; // one 0 is enough, the normal state paints black
    button->fg_color = 0xFFFFFFFF;
    ux_text_button_show(&button->obj);
    EXPECT_EQ(buf_pixel(2, 2), 0xFF000000);
    EXPECT_EQ(ux_text_button_hide(&button->obj), 0);
    // Weight 256 - 255 = 1: black gives (0 + c * 255) >> 8, white (255 + c * 255) >> 8.
    const letters names = {{k_blended, 'b'}, {k_screen, 's'}};
    EXPECT_EQ(buf_letters(names), "ssssssssssssssss\n"
                                  "ssbbssssssssssss\n"
                                  "sbbbssssssssssss\n"
                                  "sbbbssssssssssss\n"
                                  "sbbbssssssssssss\n"
                                  "sbbbssssssssssss\n"
                                  "ssssssssssssssss\n"
                                  "ssssssssssssssss\n");
    EXPECT_EQ(button->obj.status, uint32_t{UX_ST_BG_SAVED});
}

TEST_F(TextButtonBackgroundTest, saved_pixels_of_alpha_0_restore_nothing) {
    fill_buf(0x00204060);
    ux_text_button *button = make(1, 1, 3, 5, u"");
    button->bg_color = k_normal;
    button->focus_bg_color = UX_COLOR_NONE;
    ux_text_button_show(&button->obj);
    ux_text_button_hide(&button->obj);
    EXPECT_EQ(buf_pixel(2, 2), k_normal);
    ux_text_button_set_focus(&button->obj); // background 0: the copy, which shows nothing either
    EXPECT_EQ(buf_pixel(2, 2), k_normal);
}

TEST_F(TextButtonBackgroundTest, saved_pixels_of_half_alpha_are_mixed) {
    fill_buf(0x80FF0010);
    ux_text_button *button = make(1, 1, 3, 5, u"");
    button->bg_color = 0x40000080;
    button->focus_bg_color = UX_COLOR_NONE;
    ux_text_button_show(&button->obj);
    ux_text_button_hide(&button->obj);
    // red (0 * 128 + 255 * 128) >> 8, blue (128 * 128 + 16 * 128) >> 8, the larger alpha
    EXPECT_EQ(buf_pixel(2, 2), 0x807F0048u);
}

TEST_F(TextButtonBackgroundTest, state_without_background_shows_the_saved_one_blended) {
    fill_buf(k_screen);
    ux_text_button *button = make(1, 1, 3, 5, u"");
    ux_text_button_set_bg_color(button, 0xFF000000, UX_COLOR_NONE);
    ux_text_button_show(&button->obj);
    ux_text_button_set_focus(&button->obj);
    EXPECT_EQ(buf_pixel(2, 2), k_blended);
    ux_text_button_unset_focus(&button->obj);
    EXPECT_EQ(buf_pixel(2, 2), 0xFF000000);
}

TEST_F(TextButtonBackgroundTest, hide_without_a_copy_only_copies_to_the_device) {
    ux_text_button *button = make(1, 1, 3, 5);
    ux_text_button_show(&button->obj);
    set_apart();
    fill_buf(k_screen);
    take_calls();
    EXPECT_EQ(ux_text_button_hide(&button->obj), 0);
    EXPECT_EQ(button->obj.status, 0u);
    EXPECT_EQ(buf_letters({{k_screen, 's'}}).find_first_not_of("s\n"), std::string::npos);
    EXPECT_EQ(fb_letters({{k_screen, 's'}}), "................\n"
                                             ".sss............\n"
                                             ".sss............\n"
                                             ".sss............\n"
                                             ".sss............\n"
                                             ".sss............\n"
                                             "................\n"
                                             "................\n");
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(TextButtonBackgroundTest, hide_of_a_copy_that_is_not_marked_saved_restores_nothing) {
    fill_buf(k_screen);
    ux_text_button *button = make(1, 1, 3, 5);
    button->bg_color = UX_COLOR_NONE;
    ux_text_button_show(&button->obj);
    ux_obj_set_status(&button->obj, UX_ST_VISIBLE);
    fill_buf(1);
    ux_text_button_hide(&button->obj);
    EXPECT_EQ(buf_letters({{1, '1'}}).find_first_not_of("1\n"), std::string::npos);
}

TEST_F(TextButtonBackgroundTest, hide_on_another_page_clears_the_bit_only) {
    fill_buf(k_screen);
    ux_text_button *button = make(1, 1, 3, 5);
    button->bg_color = UX_COLOR_NONE;
    ux_text_button_show(&button->obj);
    main_screen.current_page = 1;
    set_apart();
    fill_buf(1);
    EXPECT_EQ(ux_text_button_hide(&button->obj), 0);
    EXPECT_EQ(button->obj.status, uint32_t{UX_ST_BG_SAVED});
    EXPECT_EQ(buf_pixel(2, 2), 1u);
    EXPECT_EQ(fb_pixel(2, 2), 0u);
}

TEST_F(TextButtonBackgroundTest, repaint_of_a_hidden_button_hides_it_again) {
    fill_buf(k_screen);
    ux_text_button *button = make(1, 1, 3, 5);
    button->select_bg_color = UX_COLOR_NONE;
    ux_text_button_show(&button->obj);
    button->obj.status &= ~uint32_t{UX_ST_VISIBLE};
    fill_buf(0xFF000000);
    EXPECT_EQ(ux_text_button_repaint(&button->obj), 0);
    EXPECT_EQ(buf_pixel(2, 2), k_blended);
}

TEST_F(TextButtonBackgroundTest, new_size_makes_the_next_show_save_anew) {
    fill_buf(k_screen);
    ux_text_button *button = make(1, 1, 3, 5);
    button->bg_color = UX_COLOR_NONE;
    ux_text_button_show(&button->obj);
    fill_buf(7);
    ux_text_button_set_size(button, 0, 0, 2, 2);
    EXPECT_FALSE(button->obj.status & UX_ST_BG_SAVED);
    ux_text_button_show(&button->obj);
    EXPECT_EQ(saved_under(&button->obj), std::vector<uint32_t>(4, 7));
}

TEST_F(TextButtonBackgroundTest, hosts_own_background_is_painted_and_never_replaced) {
    ux_text_button *button = make(1, 1, 2, 1, u"");
    auto *pixels = static_cast<uint32_t *>(malloc(2 * sizeof(uint32_t)));
    pixels[0] = k_screen;
    pixels[1] = 0x00FFFFFF;
    ux_obj_set_bg_buffer(&button->obj, pixels);
    button->bg_color = UX_COLOR_NONE;
    fill_buf(0xFF000000);
    ux_text_button_show(&button->obj);
    EXPECT_EQ(buf_pixel(1, 1), k_blended);
    EXPECT_EQ(buf_pixel(2, 1), 0xFF000000);
    EXPECT_EQ(button->obj.bg_backup, pixels);
    EXPECT_EQ(pixels[0], k_screen);
}

TEST_F(TextButtonBackgroundTest, failed_save_is_told_and_border_and_text_are_painted) {
    fill_buf(k_screen);
    ux_text_button *button = make(1, 1, 4, 7);
    button->fg_color = k_text;
    button->bg_color = UX_COLOR_NONE;
    ux_text_button_set_border(button, 1);
    fake_chip::get().record_calls = false;
    hooks::fail_allocation(1);
    testing::internal::CaptureStderr();
    EXPECT_EQ(ux_text_button_show(&button->obj), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Can not allocate background backup image memory!\n");
    EXPECT_EQ(buf_pixel(1, 1), 0xFFFFFFFF);
    EXPECT_EQ(buf_pixel(2, 2), k_text);
    EXPECT_EQ(buf_pixel(3, 3), k_screen);
    EXPECT_EQ(button->obj.status, uint32_t{UX_ST_VISIBLE});
}

TEST_F(TextButtonBackgroundTest, button_partly_outside_saves_zeros_there_and_restores_the_rest) {
    fill_buf(k_screen);
    ux_text_button *button = make(13, 6, 3, 5, u"");
    button->select_bg_color = UX_COLOR_NONE;
    ux_text_button_show(&button->obj);
    std::vector<uint32_t> expected(15, 0);
    std::fill_n(expected.begin(), 6, k_screen);
    EXPECT_EQ(saved_under(&button->obj), expected);
    ux_text_button_hide(&button->obj);
    EXPECT_EQ(buf_letters({{k_blended, 'b'}, {k_screen, 's'}}).substr(17 * 5),
              "ssssssssssssssss\n"
              "sssssssssssssbbb\n"
              "sssssssssssssbbb\n");
}

TEST_F(TextButtonBackgroundTest, saved_background_of_a_16_bit_screen_comes_back_as_it_was) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    fill_buf(0x1234);
    ux_text_button *button = make(1, 1, 3, 5, u"");
    button->select_bg_color = UX_COLOR_NONE;
    button->bg_color = 0xFFFF5678;
    ux_text_button_show(&button->obj);
    EXPECT_EQ(buf_pixel(2, 2), 0x5678u);
    ux_text_button_hide(&button->obj);
    for (int y = 0; y < 8; y++)
        for (int x = 0; x < 16; x++)
            EXPECT_EQ(buf_pixel(x, y), 0x1234u);
}
