// SPDX-License-Identifier: MIT
// The text button: its record, its setters, its four states, its border and its text.

#include "tests/widgets/text_button_test.h"

TEST_F(TextButtonTest, constructor_fills_the_buttons_own_fields) {
    ux_text_button *button = ux_text_button_new(root(), 0, 0, 4, 4, u"ab");
    EXPECT_EQ(std::u16string(button->text), u"ab");
    EXPECT_EQ(button->fg_color, 0xFFAAAAAA);
    EXPECT_EQ(button->bg_color, 0xFF000000);
    EXPECT_EQ(button->focus_fg_color, 0xFFAAAAAA);
    EXPECT_EQ(button->focus_bg_color, 0xFF000000);
    EXPECT_EQ(button->select_fg_color, 0xFFFF0000);
    EXPECT_EQ(button->select_bg_color, 0xFF000000);
    EXPECT_EQ(button->select_focus_fg_color, 0xFFFF0000);
    EXPECT_EQ(button->select_focus_bg_color, 0xFF000000);
    EXPECT_EQ(button->font_size, 16);
    EXPECT_EQ(button->style, 4);
}

TEST_F(TextButtonTest, record_of_the_hosts_own_is_filled_without_an_allocation) {
    ux_text_button button = {};
    hooks::take_allocation_count();
    EXPECT_EQ(ux_text_button_init(nullptr, &button, 1, 2, 3, 4, u"a"), 0);
    EXPECT_EQ(hooks::take_allocation_count(), 0);
    EXPECT_EQ(button.obj.page_id, -1);
    EXPECT_EQ(button.obj.next, nullptr);
    EXPECT_EQ(button.obj.parent, nullptr);
    EXPECT_EQ(button.obj.height, 4);
    EXPECT_EQ(button.obj.show, ux_text_button_show);
    EXPECT_EQ(button.select_fg_color, 0xFFFF0000);
}

TEST_F(TextButtonTest, setters_store_and_do_nothing_else) {
    ux_text_button *b = make(2, 2, 4, 5);
    ux_text_button_show(&b->obj);
    const auto set = [&](auto call, auto change) { expect_only(b, call, change); };
    using record = ux_text_button;
    set([&] { return ux_text_button_set_fg_color(b, 1, 2); },
        [](record &r) { r.fg_color = 1, r.focus_fg_color = 2; });
    set([&] { return ux_text_button_set_bg_color(b, 3, 4); },
        [](record &r) { r.bg_color = 3, r.focus_bg_color = 4; });
    set([&] { return ux_text_button_set_bg_scolor(b, 5, 6); },
        [](record &r) { r.select_bg_color = 5, r.select_focus_bg_color = 6; });
    set([&] { return ux_text_button_set_font_size(b, 7); }, [](record &r) { r.font_size = 7; });
    set([&] { return ux_text_button_set_style(b, 8); }, [](record &r) { r.style = 8; });
    set([&] { return ux_text_button_set_font(b, "Vera", 9); }, [](record &) {});
    set([&] { return ux_text_button_set_sfont(b, "Vera", 9); }, [](record &) {});
    set([&] { return ux_text_button_set_border(b, 10); }, [](record &r) { r.obj.border = 10; });
    set([&] { return ux_text_button_set_text(b, u"xyz"); },
        [](record &r) { memcpy(r.text, u"xyz", 8); });
    set([&] { return ux_text_button_set_size(b, 5, 6, 7, 8); },
        [](record &r) { r.obj.x = 5, r.obj.y = 6, r.obj.width = 7, r.obj.height = 8; });
    set([&] { return ux_text_button_set_border_color(b, 11, 12); },
        [](record &r) {
            r.obj.top_color = r.obj.bottom_color = r.obj.left_color = r.obj.right_color = 11;
            r.obj.top_focus_color = r.obj.bottom_focus_color = 12;
            r.obj.left_focus_color = r.obj.right_focus_color = 12;
        });
}

TEST_F(TextButtonTest, font_size_of_a_null_button_is_ignored) {
    EXPECT_EQ(ux_text_button_set_font_size(nullptr, 20), 0);
    EXPECT_EQ(ux_text_button_set_font(nullptr), 0);
    EXPECT_EQ(ux_text_button_set_sfont(nullptr), 0);
}

TEST_F(TextButtonTest, focus_and_selection_choose_the_colours) {
    ux_text_button *button = make(0, 0, 4, 5);
    button->fg_color = 1, button->bg_color = 2;
    button->focus_fg_color = 3, button->focus_bg_color = 4;
    button->select_fg_color = 5, button->select_bg_color = 6;
    button->select_focus_fg_color = 7, button->select_focus_bg_color = 8;
    const uint32_t others = UX_ST_FG_SAVED | UX_ST_VISIBLE | 0x80;
    for (uint32_t state = 0; state < 4; state++)
        for (uint32_t rest : {0u, others}) {
            button->obj.status = state | rest;
            EXPECT_EQ(ux_text_button_show(&button->obj), 0);
            EXPECT_EQ(buf_pixel(0, 0), 2 * state + 1) << state;
            EXPECT_EQ(buf_pixel(1, 1), 2 * state + 2) << state;
        }
}

TEST_F(TextButtonTest, each_change_of_state_sets_its_bit_and_paints_at_once) {
    ux_text_button *button = make(0, 0, 4, 5);
    ux_text_button_set_bg_color(button, k_normal, k_focus);
    ux_text_button_set_bg_scolor(button, k_select, k_both);
    ux_obj *obj = &button->obj;
    struct step {
        ux_slot slot;
        uint32_t status;
        uint32_t bg;
    };
    const step steps[] = {
        {obj->set_focus, UX_ST_VISIBLE | UX_ST_FOCUSED, k_focus},
        {obj->set_select, UX_ST_VISIBLE | UX_ST_FOCUSED | UX_ST_SELECTED, k_both},
        {obj->unset_focus, UX_ST_VISIBLE | UX_ST_SELECTED, k_select},
        {obj->unset_select, UX_ST_VISIBLE, k_normal},
        {obj->set_select, UX_ST_VISIBLE | UX_ST_SELECTED, k_select},
        {obj->unset_select, UX_ST_VISIBLE, k_normal},
        {obj->unset_focus, UX_ST_VISIBLE, k_normal},
    };
    for (const step &s : steps) {
        EXPECT_EQ(s.slot(obj), 0);
        EXPECT_EQ(obj->status, s.status);
        EXPECT_EQ(buf_pixel(1, 1), s.bg);
    }
}

TEST_F(TextButtonTest, focusing_a_hidden_button_makes_it_visible) {
    ux_text_button *button = make(0, 0, 4, 5);
    ux_text_button_hide(&button->obj);
    ux_text_button_set_focus(&button->obj);
    EXPECT_TRUE(button->obj.status & UX_ST_VISIBLE);
}

TEST_F(TextButtonTest, focus_makes_the_button_its_pages_focus) {
    ux_text_button *first = make(0, 0, 4, 5);
    ux_text_button *second = make(4, 0, 4, 5);
    ux_text_button_set_focus(&first->obj);
    EXPECT_EQ(page->focus, &first->obj);
    ux_text_button_set_focus(&second->obj);
    EXPECT_EQ(page->focus, &second->obj);
    EXPECT_TRUE(first->obj.status & UX_ST_FOCUSED) << "the other one is not told";
}

TEST_F(TextButtonTest, button_that_loses_the_focus_stays_its_pages_focus) {
    ux_text_button *button = make(0, 0, 4, 5);
    ux_text_button_set_focus(&button->obj);
    ux_text_button_unset_focus(&button->obj);
    EXPECT_EQ(page->focus, &button->obj);
    EXPECT_FALSE(button->obj.status & UX_ST_FOCUSED);
}

TEST_F(TextButtonTest, focus_of_a_button_without_a_page_sets_the_bits_only) {
    for (int page_id : {-1, 1, 31, 32, 33, 1000000, -2147483647 - 1}) {
        ux_text_button *button = ux_text_button_new(nullptr, 0, 0, 4, 5, u"a");
        button->obj.page_id = page_id;
        EXPECT_EQ(button->obj.set_focus(&button->obj), 0);
        EXPECT_EQ(button->obj.status, uint32_t{UX_ST_FOCUSED | UX_ST_VISIBLE});
        EXPECT_EQ(button->obj.unset_focus(&button->obj), 0);
        EXPECT_EQ(button->obj.status, uint32_t{UX_ST_VISIBLE});
        EXPECT_EQ(page->focus, nullptr);
        EXPECT_EQ(main_screen.pages[1], nullptr);
        button->obj.free(&button->obj);
    }
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(TextButtonTest, button_of_another_page_only_changes_its_bits) {
    ux_page *second = new_page();
    ux_text_button *button = ux_text_button_new(&second->container, 0, 0, 4, 5, u"a");
    ux_text_button_set_bg_color(button, UX_COLOR_NONE, UX_COLOR_NONE);
    set_apart();
    fill_buf(k_screen);
    ux_obj *obj = &button->obj;
    ux_text_button_set_select(obj);
    EXPECT_EQ(obj->status, uint32_t{UX_ST_SELECTED | UX_ST_VISIBLE});
    ux_text_button_set_focus(obj);
    EXPECT_EQ(obj->status, uint32_t{UX_ST_FOCUSED | UX_ST_SELECTED | UX_ST_VISIBLE});
    EXPECT_EQ(second->focus, obj);
    ux_text_button_repaint(obj);
    ux_text_button_hide(obj);
    EXPECT_EQ(obj->status, uint32_t{UX_ST_FOCUSED | UX_ST_SELECTED});
    EXPECT_EQ(obj->bg_backup, nullptr);
    EXPECT_EQ(take_calls(), calls{});
    EXPECT_EQ(buf_letters({{k_screen, 's'}}).find_first_not_of("s\n"), std::string::npos);
    EXPECT_EQ(fb_letters({}).find_first_not_of(".\n"), std::string::npos);
}

TEST_F(TextButtonTest, text_is_inset_by_the_border_and_the_fill_is_not) {
    ux_text_button *button = make(2, 1, 7, 7, u"a");
    button->fg_color = k_text, button->bg_color = k_normal;
    ux_text_button_set_border(button, 1);
    ux_text_button_set_border_color(button, UX_COLOR_NONE, UX_COLOR_NONE);
    ux_text_button_show(&button->obj);
    EXPECT_EQ(buf_letters({{k_text, 'X'}, {k_normal, 'n'}}), "................\n"
                                                             "..nnnnnnn.......\n"
                                                             "..nXnnnnn.......\n"
                                                             "..nnnnnnn.......\n"
                                                             "..nnnnnnn.......\n"
                                                             "..nnnnnnn.......\n"
                                                             "..nnnnnnn.......\n"
                                                             "..nnnnnnn.......\n");
}

TEST_F(TextButtonTest, text_box_is_smaller_by_the_border_on_each_side) {
    ux_text_button *button = make(0, 0, 9, 7, u"aaa"); // 5 x 3 inside a border of 2
    button->fg_color = k_text;
    ux_text_button_set_border(button, 2);
    setenv("FontSize", "3", 1);
    fake_chip::get().glyphs[u'a'] = {0, 2, 2, {"X"}};
    take_calls();
    ux_text_button_show(&button->obj);
    EXPECT_EQ(buf_pixel(2, 2), k_text);
    EXPECT_EQ(buf_pixel(4, 2), k_text);
    EXPECT_NE(buf_pixel(6, 2), k_text); // the third one crosses the edge and finds no line
    EXPECT_EQ(take_calls().size(), 7u);
}

TEST_F(TextButtonTest, border_wider_than_the_button_leaves_no_room_for_text) {
    for (int border : {3, 4, 100, 2147483647, -2147483647 - 1}) {
        ux_text_button *button = make(4, 1, 6, 6, u"a");
        button->fg_color = k_text;
        ux_text_button_set_border(button, border);
        EXPECT_EQ(ux_text_button_show(&button->obj), 0);
        EXPECT_EQ(buf_letters({{k_text, 'X'}}).find('X'), std::string::npos) << border;
        EXPECT_EQ(take_calls().size(), 3u);
    }
}

TEST_F(TextButtonTest, later_sides_of_the_border_win_the_corners) {
    ux_text_button *button = make(1, 1, 5, 4, u"");
    ux_text_button_set_border(button, 1);
    button->obj.top_color = 1, button->obj.bottom_color = 2;
    button->obj.left_color = 3, button->obj.right_color = 4;
    button->bg_color = k_normal;
    ux_text_button_show(&button->obj);
    const letters names = {{1, 't'}, {2, 'b'}, {3, 'l'}, {4, 'r'}, {k_normal, 'n'}};
    EXPECT_EQ(buf_letters(names).substr(17, 4 * 17), ".ltttr..........\n"
                                                     ".lnnnr..........\n"
                                                     ".lnnnr..........\n"
                                                     ".lbbbr..........\n");
}

TEST_F(TextButtonTest, side_of_no_colour_is_not_painted) {
    ux_text_button *button = make(1, 1, 4, 3, u"");
    ux_text_button_set_border(button, 1);
    button->bg_color = k_normal;
    button->obj.top_color = 1, button->obj.bottom_color = 0;
    button->obj.left_color = 0, button->obj.right_color = 4;
    ux_text_button_show(&button->obj);
    const letters names = {{1, 't'}, {4, 'r'}, {k_normal, 'n'}};
    EXPECT_EQ(buf_letters(names).substr(17, 3 * 17), ".tttr...........\n"
                                                     ".nnnr...........\n"
                                                     ".nnnr...........\n");
}

TEST_F(TextButtonTest, focused_border_has_the_top_focus_colour_on_all_sides) {
    ux_text_button *button = make(1, 1, 4, 4, u"");
    ux_text_button_set_border(button, 1);
    button->obj.top_focus_color = 5, button->obj.bottom_focus_color = 6;
    button->obj.left_focus_color = 7, button->obj.right_focus_color = 8;
    button->select_focus_bg_color = k_both;
    ux_text_button_set_select(&button->obj);
    ux_text_button_set_focus(&button->obj);
    EXPECT_EQ(buf_letters({{5, 'f'}, {k_both, 'b'}}).substr(17, 4 * 17), ".ffff...........\n"
                                                                         ".fbbf...........\n"
                                                                         ".fbbf...........\n"
                                                                         ".ffff...........\n");
}

TEST_F(TextButtonTest, focused_border_without_top_focus_colour_is_not_painted) {
    ux_text_button *button = make(1, 1, 4, 4, u"");
    ux_text_button_set_border(button, 1);
    button->obj.top_focus_color = 0;
    button->focus_bg_color = k_focus;
    ux_text_button_set_focus(&button->obj);
    EXPECT_EQ(buf_letters({{k_focus, 'f'}}).substr(17, 17), ".ffff...........\n");
}

TEST_F(TextButtonTest, border_of_no_colours_is_gone_in_both_states) {
    ux_text_button *button = make(0, 0, 4, 4, u"");
    ux_text_button_set_border(button, 1);
    ux_text_button_set_border_color(button, 0, 0);
    ux_text_button_set_bg_color(button, k_normal, k_focus);
    ux_text_button_show(&button->obj);
    EXPECT_EQ(buf_letters({{k_normal, 'n'}}).substr(0, 17), "nnnn............\n");
    ux_text_button_set_focus(&button->obj);
    EXPECT_EQ(buf_letters({{k_focus, 'f'}}).substr(0, 17), "ffff............\n");
}

TEST_F(TextButtonTest, rings_beyond_half_the_size_paint_with_their_ends_exchanged) {
    ux_text_button *button = make(4, 2, 3, 1, u"");
    ux_text_button_set_border(button, 2);
    ux_text_button_set_border_color(button, 9, 9);
    button->bg_color = k_normal;
    ux_text_button_show(&button->obj);
    // Ring 1: top and bottom are the single pixels (5, 3) and (5, 1), both sides join them.
    EXPECT_EQ(buf_letters({{9, '#'}, {k_normal, 'n'}}).substr(17, 3 * 17), ".....#..........\n"
                                                                           "....###.........\n"
                                                                           ".....#..........\n");
}

TEST_F(TextButtonTest, border_is_painted_before_the_text) {
    // Wider than the screen: column 15 of the text box is the left border of the row below.
    ux_text_button *button = make(0, 0, 20, 8, u"a");
    fake_chip::get().glyphs[u'a'] = {15, 4, 2, {"X"}};
    button->fg_color = k_text;
    ux_text_button_set_border(button, 1);
    ux_text_button_show(&button->obj);
    EXPECT_EQ(buf_pixel(0, 2), k_text);
    EXPECT_EQ(buf_pixel(0, 3), 0xFFFFFFFF);
}

TEST_F(TextButtonTest, transparent_key_of_the_text_is_the_states_background) {
    ux_text_button *button = make(0, 0, 4, 5);
    ux_text_button_set_bg_color(button, k_normal, k_focus);
    ux_text_button_set_fg_color(button, 0, k_focus);
    ux_text_button_show(&button->obj);
    EXPECT_EQ(buf_pixel(0, 0), 0u) << "ink 0 is ink on a background that is not 0";
    ux_text_button_set_focus(&button->obj);
    EXPECT_EQ(buf_pixel(0, 0), k_focus);
}

TEST_F(TextButtonTest, repaint_shows_a_visible_button) {
    ux_text_button *button = make(0, 0, 4, 5);
    button->obj.status = UX_ST_VISIBLE;
    button->bg_color = k_normal;
    EXPECT_EQ(ux_text_button_repaint(&button->obj), 0);
    EXPECT_EQ(buf_pixel(1, 1), k_normal);
}

TEST_F(TextButtonTest, buttons_of_any_place_and_size_stay_inside_the_screen) {
    const int places[] = {-2147483647 - 1, -100, -3, 0, 15, 100, 2147483647};
    const int sizes[] = {-2147483647 - 1, -3, 0, 1, 40};
    ux_text_button *button = make(0, 0, 4, 4, u"aaaa");
    ux_text_button_set_bg_color(button, UX_COLOR_NONE, k_focus);
    for (int border : {1, 3, 200})
        for (int x : places)
            for (int y : places)
                for (int w : sizes)
                    for (int h : sizes) {
                        ux_text_button_set_size(button, x, y, w, h);
                        ux_text_button_set_border(button, border);
                        EXPECT_EQ(ux_text_button_show(&button->obj), 0);
                        EXPECT_EQ(ux_text_button_hide(&button->obj), 0);
                    }
}
