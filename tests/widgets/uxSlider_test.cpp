// SPDX-License-Identifier: MIT
// The slider bar: its record, its setters, its keys, its focus.

#include "tests/widgets/slider_test.h"

TEST_F(SliderTest, init_fills_every_field_of_a_record_of_the_hosts_without_an_allocation) {
    ux_slider_bar slider;
    memset(&slider, 0xA5, sizeof slider);
    hooks::take_allocation_count();
    EXPECT_EQ(ux_slider_bar_init(nullptr, &slider, 1, 2, 3, 4), 0);
    EXPECT_EQ(hooks::take_allocation_count(), 0);
    EXPECT_EQ(slider.obj.page_id, -1);
    EXPECT_EQ(slider.obj.parent, nullptr);
    EXPECT_EQ(slider.obj.next, nullptr);
    EXPECT_EQ(slider.obj.status, 0u);
    EXPECT_EQ(slider.obj.bg_backup, nullptr);
    EXPECT_EQ(slider.font_size, 16);
    EXPECT_EQ(slider.position, 0);
    EXPECT_EQ(slider.minimum, 0);
    EXPECT_EQ(slider.maximum, 100);
    EXPECT_EQ(slider.step, 10);
    EXPECT_EQ(slider.show_numbers, 0);
    EXPECT_EQ(slider.bar_color, 0xFFFF8000);
    EXPECT_EQ(slider.thumb_color, 0xFF0000FF);
    EXPECT_EQ(slider.fg_color, 0xFFAAAAAA);
    EXPECT_EQ(slider.bg_color, 0xFF000000);
    EXPECT_EQ(slider.focus_fg_color, 0xFFAAAAAA);
    EXPECT_EQ(slider.focus_bg_color, 0xFF000000);
    EXPECT_EQ(slider.change_handler, nullptr);
}

TEST_F(SliderTest, record_of_the_hosts_can_save_its_face_whatever_was_in_it) {
    fill_buf(0xFF204060);
    ux_slider_bar slider;
    memset(&slider, 0xA5, sizeof slider);
    ux_slider_bar_init(nullptr, &slider, 0, 0, 2, 1);
    ASSERT_EQ(slider.obj.fg_backup, nullptr);
    EXPECT_EQ(ux_obj_backup_fg(&slider.obj), 0);
    uint32_t face[2];
    memcpy(face, slider.obj.fg_backup, sizeof face);
    EXPECT_EQ(face[0], 0xFF204060);
    EXPECT_EQ(face[1], 0xFF204060);
    free(slider.obj.fg_backup);
}

TEST_F(SliderTest, parent_that_refuses_leaves_no_link_in_a_record_of_the_hosts) {
    root()->add_obj = [](ux_container *, ux_obj *) { return -1; };
    ux_slider_bar slider;
    memset(&slider, 0xA5, sizeof slider);
    EXPECT_EQ(ux_slider_bar_init(root(), &slider, 1, 2, 3, 4), 0);
    EXPECT_EQ(slider.obj.next, nullptr);
    EXPECT_EQ(slider.obj.parent, nullptr);
    EXPECT_EQ(slider.obj.page_id, 0);
}

TEST_F(SliderTest, setters_store_and_do_nothing_else) {
    ux_slider_bar *s = make_with_handler();
    ux_slider_bar_show(&s->obj);
    const auto set = [&](auto call, auto change) { expect_only(s, call, change); };
    using record = ux_slider_bar;
    set([&] { return ux_slider_bar_set_minmax(s, -5, 7); },
        [](record &r) { r.minimum = -5, r.maximum = 7; });
    set([&] { return ux_slider_bar_set_pos(s, 3); }, [](record &r) { r.position = 3; });
    set([&] { return ux_slider_bar_set_step(s, -4); }, [](record &r) { r.step = -4; });
    set([&] { return ux_slider_bar_set_fg_color(s, 1, 2); },
        [](record &r) { r.fg_color = 1, r.focus_fg_color = 2; });
    set([&] { return ux_slider_bar_set_bg_color(s, 3, 4); },
        [](record &r) { r.bg_color = 3, r.focus_bg_color = 4; });
    set([&] { return ux_slider_bar_set_border(s, 5); }, [](record &r) { r.obj.border = 5; });
    set([&] { return ux_slider_bar_set_size(s, 6, 7, 8, 9); },
        [](record &r) { r.obj.x = 6, r.obj.y = 7, r.obj.width = 8, r.obj.height = 9; });
    EXPECT_EQ(take_told(), std::vector<int>());
}

TEST_F(SliderTest, range_of_10_to_20_moves_the_position_to_10) {
    ux_slider_bar *slider = make_with_handler();
    EXPECT_EQ(ux_slider_bar_set_minmax(slider, 10, 20), 0);
    EXPECT_EQ(slider->position, 10);
    ux_slider_bar_set_pos(slider, 20);
    EXPECT_EQ(ux_slider_bar_set_minmax(slider, -20, -10), 0);
    EXPECT_EQ(slider->position, -10);
    EXPECT_EQ(ux_slider_bar_set_minmax(slider, k_smallest, k_largest), 0);
    EXPECT_EQ(slider->position, -10);
    EXPECT_EQ(take_told(), std::vector<int>()) << "the handler hears of keys only";
}

TEST_F(SliderTest, range_whose_end_is_not_above_its_start_is_refused_and_stores_nothing) {
    ux_slider_bar *slider = make(0, 0, 16, 8);
    ux_slider_bar_set_pos(slider, 50);
    const int pairs[][2] = {{5, 5}, {6, 5}, {k_largest, k_smallest}, {k_smallest, k_smallest}};
    for (const auto &[min, max] : pairs) {
        EXPECT_EQ(ux_slider_bar_set_minmax(slider, min, max), -1);
        EXPECT_EQ(slider->minimum, 0);
        EXPECT_EQ(slider->maximum, 100);
        EXPECT_EQ(slider->position, 50);
    }
}

TEST_F(SliderTest, position_outside_the_range_is_refused_and_both_ends_are_inside) {
    ux_slider_bar *slider = make(0, 0, 16, 8);
    ux_slider_bar_set_minmax(slider, -3, 4);
    for (int position : {-4, 5, k_smallest, k_largest}) {
        EXPECT_EQ(ux_slider_bar_set_pos(slider, position), -1);
        EXPECT_EQ(slider->position, 0);
    }
    for (int position : {-3, 4}) {
        EXPECT_EQ(ux_slider_bar_set_pos(slider, position), 0);
        EXPECT_EQ(slider->position, position);
    }
}

TEST_F(SliderTest, right_from_95_with_step_10_gives_100_and_a_further_right_nothing) {
    ux_slider_bar *slider = make_with_handler();
    ux_slider_bar_set_pos(slider, 95);
    EXPECT_EQ(right(slider), 0);
    EXPECT_EQ(slider->position, 100);
    EXPECT_EQ(take_told(), std::vector<int>{100});
    slider->obj.status = UX_ST_VISIBLE;
    expect_only(
        slider, [&] { return right(slider); }, [](ux_slider_bar &) {});
    EXPECT_EQ(take_told(), std::vector<int>());
}

TEST_F(SliderTest, left_mirrors_right) {
    ux_slider_bar *slider = make_with_handler();
    ux_slider_bar_set_pos(slider, 15);
    EXPECT_EQ(left(slider), 0);
    EXPECT_EQ(left(slider), 0);
    EXPECT_EQ(slider->position, 0);
    EXPECT_EQ(take_told(), (std::vector<int>{5, 0}));
    slider->obj.status = UX_ST_VISIBLE;
    expect_only(
        slider, [&] { return left(slider); }, [](ux_slider_bar &) {});
    EXPECT_EQ(take_told(), std::vector<int>());
}

TEST_F(SliderTest, step_of_0_moves_nothing_and_the_handler_hears_of_it) {
    ux_slider_bar *slider = make_with_handler();
    ux_slider_bar_set_pos(slider, 50);
    ux_slider_bar_set_step(slider, 0);
    right(slider);
    left(slider);
    EXPECT_EQ(take_told(), (std::vector<int>{50, 50}));
}

TEST_F(SliderTest, negative_step_passes_the_end_that_its_key_does_not_guard) {
    ux_slider_bar *slider = make_with_handler();
    ux_slider_bar_set_pos(slider, 5);
    ux_slider_bar_set_step(slider, -10);
    right(slider);
    right(slider);
    EXPECT_EQ(take_told(), (std::vector<int>{-5, -15}));
    left(slider);
    EXPECT_EQ(take_told(), std::vector<int>()) << "already below the minimum";
    ux_slider_bar_set_pos(slider, 95);
    left(slider);
    left(slider);
    EXPECT_EQ(take_told(), (std::vector<int>{105, 115}));
    right(slider);
    EXPECT_EQ(take_told(), std::vector<int>()) << "already above the maximum";
}

TEST_F(SliderTest, steps_of_any_size_never_wrap) {
    struct {
        int min, max, position, step;
        ux_handler key;
        int expected;
    } const cases[] = {
        {0, k_largest, 5, k_largest, ux_slider_bar_key_right, k_largest},
        {0, 10, 5, k_largest, ux_slider_bar_key_right, 10},
        {k_smallest, 0, -5, k_largest, ux_slider_bar_key_left, k_smallest},
        {k_smallest, k_largest, -5, k_smallest, ux_slider_bar_key_right, k_smallest},
        {k_smallest, k_largest, 5, k_smallest, ux_slider_bar_key_left, k_largest},
        {k_smallest, k_largest, 0, k_smallest, ux_slider_bar_key_left, k_largest},
        {k_smallest, k_largest, -1, k_smallest, ux_slider_bar_key_left, k_largest},
    };
    for (const auto &c : cases) {
        ux_slider_bar *slider = make_with_handler();
        EXPECT_EQ(ux_slider_bar_set_minmax(slider, c.min, c.max), 0);
        EXPECT_EQ(ux_slider_bar_set_pos(slider, c.position), 0);
        ux_slider_bar_set_step(slider, c.step);
        EXPECT_EQ(press(c.key, &slider->obj), 0);
        EXPECT_EQ(take_told(), std::vector<int>{c.expected});
    }
}

TEST_F(SliderTest, keys_for_another_kind_or_for_nothing_do_nothing_and_return_0) {
    ux_slider_bar *slider = make_with_handler();
    ux_slider_bar_set_pos(slider, 50);
    ux_text_button *button = ux_text_button_new(root(), 0, 0, 4, 4, u"");
    for (ux_handler key : {ux_slider_bar_key_left, ux_slider_bar_key_right}) {
        EXPECT_EQ(press(key, nullptr), 0);
        EXPECT_EQ(press(key, &button->obj), 0);
        EXPECT_EQ(press(key, &page->container.obj), 0);
    }
    EXPECT_EQ(slider->position, 50);
    EXPECT_EQ(take_told(), std::vector<int>());
}

TEST_F(SliderTest, key_of_a_visible_slider_paints_before_the_handler_hears_of_it) {
    ux_slider_bar *slider = make_with_handler();
    ux_slider_bar_show(&slider->obj);
    fill_buf(0);
    s_during_change = [&] { EXPECT_EQ(buf_pixel(0, 7), k_ground); };
    right(slider);
    EXPECT_EQ(take_told(), std::vector<int>{10});
}

TEST_F(SliderTest, key_of_a_hidden_slider_moves_it_and_paints_nothing) {
    ux_slider_bar *slider = make_with_handler();
    right(slider);
    EXPECT_EQ(take_told(), std::vector<int>{10});
    EXPECT_EQ(buf_picture(1).find_first_not_of(".\n"), std::string::npos);
    EXPECT_EQ(slider->obj.status, 0u);
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(SliderTest, key_without_a_handler_moves) {
    ux_slider_bar *slider = make(0, 0, 16, 8);
    EXPECT_EQ(right(slider), 0);
    EXPECT_EQ(slider->position, 10);
}

TEST_F(SliderTest, handler_may_delete_the_slider) {
    ux_slider_bar *slider = make_with_handler();
    ux_slider_bar_show(&slider->obj);
    ux_slider_bar_set_focus(&slider->obj);
    s_during_change = [&] { ux_container_del_obj(root(), &slider->obj, 0, 0); };
    EXPECT_EQ(right(slider), 0);
    EXPECT_EQ(page->container.count, 0u);
    EXPECT_EQ(page->focus, nullptr);
    EXPECT_EQ(press(page->key_handlers[22], page->focus), 0);
}

TEST_F(SliderTest, handler_may_move_the_focus) {
    ux_slider_bar *slider = make_with_handler();
    ux_slider_bar *other = make(0, 0, 16, 8);
    ux_slider_bar_set_focus(&slider->obj);
    s_during_change = [&] {
        ux_slider_bar_unset_focus(&slider->obj);
        ux_slider_bar_set_focus(&other->obj);
    };
    EXPECT_EQ(right(slider), 0);
    EXPECT_EQ(page->focus, &other->obj);
    EXPECT_EQ(press(page->key_handlers[22], page->focus), 0);
    EXPECT_EQ(other->position, 10);
    ux_slider_bar_unset_focus(&other->obj);
}

namespace {

int host_key(ux_event *) {
    return 0;
}

int other_host_key(ux_event *) {
    return 0;
}

} // namespace

TEST_F(SliderTest, focus_takes_left_and_right_over_and_paints_nothing) {
    ux_slider_bar *slider = make(0, 0, 16, 8);
    for (int key = 0; key < 256; key++)
        ux_page_set_key_handler(page, key, host_key);
    ux_slider_bar_show(&slider->obj);
    expect_only(
        slider, [&] { return ux_slider_bar_set_focus(&slider->obj); },
        [](ux_slider_bar &r) { r.obj.status |= UX_ST_FOCUSED; });
    EXPECT_EQ(page->focus, &slider->obj);
    for (int key = 0; key < 256; key++)
        EXPECT_EQ(page->key_handlers[key], key == 21   ? ux_slider_bar_key_left
                                           : key == 22 ? ux_slider_bar_key_right
                                                       : host_key);
    expect_only(
        slider, [&] { return ux_slider_bar_unset_focus(&slider->obj); },
        [](ux_slider_bar &r) { r.obj.status &= ~1u; });
    for (int key = 0; key < 256; key++)
        EXPECT_EQ(page->key_handlers[key], host_key);
    EXPECT_EQ(page->focus, &slider->obj) << "it stays the page's focus";
}

TEST_F(SliderTest, key_that_had_no_handler_keeps_the_sliders) {
    ux_slider_bar *slider = make(0, 0, 16, 8);
    ux_page_set_key_handler(page, 21, host_key);
    ux_slider_bar_set_focus(&slider->obj);
    ux_slider_bar_unset_focus(&slider->obj);
    EXPECT_EQ(page->key_handlers[21], host_key);
    EXPECT_EQ(page->key_handlers[22], ux_slider_bar_key_right);
    ux_page_set_key_handler(page, 22, host_key);
    ux_slider_bar_set_focus(&slider->obj);
    ux_slider_bar_unset_focus(&slider->obj);
    EXPECT_EQ(page->key_handlers[22], host_key);
}

TEST_F(SliderTest, second_focus_before_the_first_is_lost_restores_the_sliders_own_keys) {
    ux_slider_bar *a = make(0, 0, 16, 8);
    ux_slider_bar *b = make(0, 0, 16, 8);
    ux_page_set_key_handler(page, 21, host_key);
    ux_page_set_key_handler(page, 22, other_host_key);
    ux_slider_bar_set_focus(&a->obj);
    ux_slider_bar_set_focus(&b->obj);
    ux_slider_bar_unset_focus(&b->obj);
    EXPECT_EQ(page->key_handlers[21], ux_slider_bar_key_left);
    EXPECT_EQ(page->key_handlers[22], ux_slider_bar_key_right);
    ux_slider_bar_unset_focus(&a->obj);
    EXPECT_EQ(page->key_handlers[21], ux_slider_bar_key_left) << "nothing is kept any more";
}

TEST_F(SliderTest, focus_without_a_page_touches_no_page_and_keeps_nothing) {
    ux_page_set_key_handler(page, 21, host_key);
    for (int page_id : {-1, 1, 32, k_smallest, k_largest}) {
        ux_slider_bar *slider = ux_slider_bar_new(nullptr, 0, 0, 16, 8);
        slider->obj.page_id = page_id;
        EXPECT_EQ(ux_slider_bar_set_focus(&slider->obj), 0);
        EXPECT_EQ(slider->obj.status, uint32_t{UX_ST_FOCUSED});
        EXPECT_EQ(page->key_handlers[21], host_key);
        EXPECT_EQ(page->focus, nullptr);
        EXPECT_EQ(right(slider), 0);
        EXPECT_EQ(slider->position, 10);
        EXPECT_EQ(ux_slider_bar_unset_focus(&slider->obj), 0);
        EXPECT_EQ(slider->obj.status, 0u);
        EXPECT_EQ(page->key_handlers[21], host_key);
        ux_obj_free(&slider->obj);
    }
}
