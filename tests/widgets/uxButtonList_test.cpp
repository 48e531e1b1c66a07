// SPDX-License-Identifier: MIT
// The button list: its record, its layout, its setters, what it paints, its release.

#include "tests/widgets/button_list_test.h"

namespace {

constexpr int k_smallest = -2147483647 - 1;
constexpr int k_largest = 2147483647;

struct place {
    int x, y, w, h;
    bool operator==(const place &) const = default;
};

void PrintTo(const place &p, std::ostream *out) {
    *out << "(" << p.x << ", " << p.y << ") " << p.w << " x " << p.h;
}

place place_of(const ux_button_list *list, int i) {
    const ux_obj &obj = list->items[i]->obj;
    return {obj.x, obj.y, obj.width, obj.height};
}

} // namespace

TEST_F(ButtonListTest, constructor_fills_the_container_and_the_lists_own_fields) {
    ux_button_list *list = ux_button_list_new(root(), 0, 0, 30, 40, 3, -5);
    EXPECT_EQ(list->container.bg_color, 0u);
    EXPECT_EQ(list->container.bg_image[0], '\0');
    EXPECT_EQ(list->container.count, 3u);
    EXPECT_EQ(list->container.add_obj, ux_container_add_obj);
    EXPECT_EQ(list->gap, -5);
    EXPECT_EQ(list->item_count, 3);
    EXPECT_EQ(list->current, 0);
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(list->values[i], 0u);
    EXPECT_EQ(list->focus_handler, nullptr);
    EXPECT_EQ(list->select_handler, nullptr);
    EXPECT_EQ(list->up_handler, nullptr);
    EXPECT_EQ(list->down_handler, nullptr);
}

TEST_F(ButtonListTest, buttons_are_children_hidden_white_and_orange_when_focused) {
    ux_page *second = new_page();
    ux_button_list *list = ux_button_list_new(&second->container, 0, 0, 30, 40, 3, 0);
    // The newest child is the first: the last button.
    const ux_obj *child = list->container.children;
    for (int i = 2; i >= 0; i--, child = child->next)
        EXPECT_EQ(child, button_of(list, i));
    EXPECT_EQ(child, nullptr);
    for (int i = 0; i < 3; i++) {
        const ux_text_button *button = list->items[i];
        EXPECT_EQ(button->obj.parent, obj_of(list));
        EXPECT_EQ(button->obj.page_id, 1);
        EXPECT_EQ(button->obj.type, 5u);
        EXPECT_EQ(button->obj.status, 0u);
        EXPECT_EQ(button->obj.border, 0);
        EXPECT_EQ(button->text[0], u'\0');
        EXPECT_EQ(button->fg_color, 0xFFFFFFFF);
        EXPECT_EQ(button->focus_fg_color, 0xFFFFFFFF);
        EXPECT_EQ(button->bg_color, 0u);
        EXPECT_EQ(button->focus_bg_color, 0xFFFF8800);
        EXPECT_EQ(button->select_fg_color, 0xFFFF0000) << "the text button's own default";
    }
}

TEST_F(ButtonListTest, list_without_a_parent_has_no_page) {
    ux_button_list *list = ux_button_list_new(nullptr, 0, 0, 30, 40, 2, 0);
    EXPECT_EQ(list->container.obj.page_id, -1);
    EXPECT_EQ(list->container.obj.parent, nullptr);
    EXPECT_EQ(list->container.obj.next, nullptr);
    EXPECT_EQ(list->items[1]->obj.page_id, -1);
    EXPECT_EQ(list->items[1]->obj.parent, obj_of(list));
    ux_button_list_free(obj_of(list));
}

TEST_F(ButtonListTest, three_buttons_in_a_height_of_100_with_a_gap_of_4_are_24_high) {
    const ux_button_list *list = ux_button_list_new(root(), 10, 1000, 61, 100, 3, 4);
    EXPECT_EQ(place_of(list, 0), (place{13, 1003, 54, 24}));
    EXPECT_EQ(place_of(list, 1), (place{13, 1037, 54, 24}));
    EXPECT_EQ(place_of(list, 2), (place{13, 1071, 54, 24}));
}

TEST_F(ButtonListTest, width_is_rounded_down_to_an_even_number_also_below_0) {
    const int widths[][2] = {{6, 0}, {7, 0}, {8, 2}, {9, 2}, {5, -2}, {4, -2}, {3, -4}, {0, -6}};
    for (const auto &[width, expected] : widths)
        EXPECT_EQ(ux_button_list_new(root(), 0, 0, width, 20, 1, 0)->items[0]->obj.width, expected)
            << width;
}

TEST_F(ButtonListTest, height_is_rounded_toward_0_and_may_be_0_or_negative) {
    struct {
        int height, count, gap, expected;
    } const cases[] = {
        {20, 2, 3, 2},   // (20 - 12 - 3) / 2 = 5 / 2
        {12, 2, 0, 0},   //
        {11, 2, 0, 0},   // -1 / 2
        {9, 2, 0, -1},   // -3 / 2
        {0, 3, 5, -9},   // (0 - 18 - 10) / 3 = -28 / 3
        {20, 2, -5, 6},  // (20 - 12 + 5) / 2 = 13 / 2
        {-10, 1, 9, -16} // one button has no gap
    };
    for (const auto &c : cases)
        EXPECT_EQ(
            ux_button_list_new(root(), 0, 0, 20, c.height, c.count, c.gap)->items[0]->obj.height,
            c.expected)
            << c.height << " " << c.count << " " << c.gap;
}

TEST_F(ButtonListTest, extreme_geometry_is_cut_and_never_wraps) {
    ux_button_list *list =
        ux_button_list_new(root(), k_largest, k_largest, k_smallest, k_smallest, 3, k_largest);
    // H = (-2^31 - 18 - 2 * (2^31 - 1)) / 3 = -6442450960 / 3 = -2147483653, below the smallest.
    EXPECT_EQ(place_of(list, 0), (place{k_largest, k_largest, k_smallest, k_smallest}));
    // The step is 2147483647 + 6 - 2147483653 = 0.
    EXPECT_EQ(place_of(list, 2), (place{k_largest, k_largest, k_smallest, k_smallest}));
    ux_button_list_set_size(list, k_smallest, k_smallest, k_largest, k_largest);
    // H = (2147483647 - 18 - 4294967294) / 3 = -2147483665 / 3 = -715827888; the step is
    // 1431655765.
    EXPECT_EQ(place_of(list, 0), (place{k_smallest + 3, k_smallest + 3, 2147483640, -715827888}));
    EXPECT_EQ(place_of(list, 2), (place{k_smallest + 3, 715827885, 2147483640, -715827888}));
    for (int i = 0; i < 3; i++)
        ux_button_list_set_text(list, i, u"a");
    ux_button_list_show(obj_of(list));
    ux_button_list_set_focus(obj_of(list));
    EXPECT_EQ(down(list), 0);
    EXPECT_EQ(list->current, 1);
}

TEST_F(ButtonListTest, size_lays_the_buttons_out_again_and_drops_saved_backgrounds) {
    fill_buf(0xFF102030);
    ux_button_list *list = make(2, 0, 0, 16, 8);
    EXPECT_NE(list->items[0]->obj.bg_backup, nullptr);
    EXPECT_EQ(ux_button_list_set_size(list, 2, 5, 20, 33), 0);
    const ux_obj &obj = list->container.obj;
    EXPECT_EQ((place{obj.x, obj.y, obj.width, obj.height}), (place{2, 5, 20, 33}));
    EXPECT_EQ(place_of(list, 0), (place{5, 8, 14, 10}));
    EXPECT_EQ(place_of(list, 1), (place{5, 24, 14, 10}));
    EXPECT_EQ(list->items[0]->obj.bg_backup, nullptr);
    EXPECT_FALSE(list->items[0]->obj.status & UX_ST_BG_SAVED);
}

TEST_F(ButtonListTest, count_below_1_makes_a_list_without_buttons) {
    for (int count : {0, -1, k_smallest}) {
        ux_button_list *list = ux_button_list_new(root(), 0, 0, 16, 8, count, 3);
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(list->container.count, 0u);
        EXPECT_EQ(list->container.children, nullptr);
        EXPECT_EQ(list->items, nullptr);
        EXPECT_EQ(list->values, nullptr);
        s_expected = list;
        ux_button_list_set_up_handler(list, on_up);
        ux_button_list_set_down_handler(list, on_down);
        ux_button_list_set_select_handler(list, on_select);
        EXPECT_EQ(ux_button_list_set_size(list, 1, 1, 5, 5), 0);
        EXPECT_EQ(ux_button_list_set_text(list, 0, u"a"), 0);
        EXPECT_EQ(ux_button_list_set_value(list, 0, 1), 0);
        EXPECT_EQ(ux_button_list_set_item_border(list, 1), 0);
        EXPECT_EQ(ux_button_list_set_item_focus(list, 0), 0);
        EXPECT_EQ(ux_button_list_show(obj_of(list)), 0);
        EXPECT_EQ(ux_button_list_set_focus(obj_of(list)), 0);
        EXPECT_EQ(page->focus, obj_of(list));
        EXPECT_EQ(up(list), 0);
        EXPECT_EQ(down(list), 0);
        EXPECT_EQ(ok(list), 0);
        EXPECT_EQ(take_told(), (calls{"up -1", "down " + std::to_string(count), "select 0"}));
        EXPECT_EQ(ux_button_list_unset_focus(obj_of(list)), 0);
    }
}

TEST_F(ButtonListTest, each_allocation_failing_in_turn_is_told_and_leaves_nothing_behind) {
    ux_error = 4;
    const char *const messages[] = {
        "Error: [4] Not enough memory space for button list!\n\n",
        "Error: [4] Not enough memory space for buttonlist!\n\n",
        "Error: [4] Not enough memory space for buttonlist!\n\n",
        "Error: [4] Not enough memory space for text button!\n\n",
        "Error: [4] Not enough memory space for text button!\n\n",
        "Error: [4] Not enough memory space for text button!\n\n",
    };
    int n = 1;
    for (const char *message : messages) {
        hooks::fail_allocation(n++);
        testing::internal::CaptureStderr();
        EXPECT_EQ(ux_button_list_new(root(), 0, 0, 16, 8, 3, 0), nullptr);
        hooks::fail_allocation(0);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), message) << n;
        EXPECT_EQ(page->container.count, 0u);
        EXPECT_EQ(page->container.children, nullptr);
    }
    hooks::take_allocation_count();
    EXPECT_NE(ux_button_list_new(root(), 0, 0, 16, 8, 3, 0), nullptr);
    EXPECT_EQ(hooks::take_allocation_count(), 6) << "an allocation has no case above";
}

TEST_F(ButtonListTest, handler_setters_store_and_do_nothing_else) {
    ux_button_list *list = make(2);
    const auto set = [&](auto call, auto change) { expect_only(list, call, change); };
    using record = ux_button_list;
    set([&] { return ux_button_list_set_focus_handler(list, on_focus); },
        [](record &r) { r.focus_handler = on_focus; });
    set([&] { return ux_button_list_set_select_handler(list, on_select); },
        [](record &r) { r.select_handler = on_select; });
    set([&] { return ux_button_list_set_up_handler(list, on_up); },
        [](record &r) { r.up_handler = on_up; });
    set([&] { return ux_button_list_set_down_handler(list, on_down); },
        [](record &r) { r.down_handler = on_down; });
}

TEST_F(ButtonListTest, item_setters_store_in_every_button_and_do_nothing_else) {
    ux_button_list *list = make(2);
    for (int i = 0; i < 2; i++) {
        ux_text_button *button = list->items[i];
        const auto set = [&](auto call, auto change) { expect_only(button, call, change); };
        using record = ux_text_button;
        const auto n = static_cast<uint32_t>(10 * i);
        set([&] { return ux_button_list_set_item_fg_color(list, n + 1, n + 2); },
            [&](record &r) { r.fg_color = n + 1, r.focus_fg_color = n + 2; });
        set([&] { return ux_button_list_set_item_bg_color(list, n + 3, n + 4); },
            [&](record &r) { r.bg_color = n + 3, r.focus_bg_color = n + 4; });
        set([&] { return ux_button_list_set_item_border_color(list, n + 5, n + 6); },
            [&](record &r) { ux_obj_set_border_colors(&r.obj, n + 5, n + 6); });
        set([&] { return ux_button_list_set_item_border(list, 7 + i); },
            [&](record &r) { r.obj.border = 7 + i; });
        set([&] { return ux_button_list_set_item_font(list, "Vera", 9); }, [](record &) {});
        EXPECT_EQ(list->items[1 - i]->obj.border, 7 + i) << "the other button has it too";
        EXPECT_EQ(list->items[1 - i]->focus_bg_color, n + 4);
    }
}

TEST_F(ButtonListTest, text_shows_its_button_at_once) {
    ux_button_list *list = ux_button_list_new(root(), 0, 0, 10, 8, 1, 0);
    EXPECT_EQ(ux_button_list_set_size(list, 0, 0, 10, 14), 0); // (3, 3) 4 x 8
    EXPECT_EQ(ux_button_list_set_text(list, 0, u"a"), 0);
    EXPECT_EQ(std::u16string(list->items[0]->text), u"a");
    EXPECT_TRUE(list->items[0]->obj.status & UX_ST_VISIBLE);
    EXPECT_EQ(buf_pixel(3, 3), 0xFFFFFFFF);
    EXPECT_FALSE(obj_of(list)->status & UX_ST_VISIBLE) << "the list itself stays hidden";
}

TEST_F(ButtonListTest, null_or_empty_text_hides_its_button_and_shows_what_lay_beneath) {
    const uint32_t screen = 0xFF204060;
    for (const char16_t *none : {static_cast<const char16_t *>(nullptr), u"", u"\0b"}) {
        fill_buf(screen);
        ux_button_list *list = ux_button_list_new(root(), 0, 0, 10, 14, 1, 0);
        ux_button_list_set_text(list, 0, u"a");
        EXPECT_EQ(buf_pixel(3, 3), 0xFFFFFFFF);
        EXPECT_EQ(ux_button_list_set_text(list, 0, none), 0);
        EXPECT_EQ(list->items[0]->text[0], u'\0');
        EXPECT_FALSE(list->items[0]->obj.status & UX_ST_VISIBLE);
        EXPECT_EQ(buf_pixel(3, 3), screen); // (255 * 1 + c * 255) >> 8 is c
    }
}

TEST_F(ButtonListTest, text_whose_first_unit_has_a_low_byte_of_0_is_not_empty) {
    ux_button_list *list = ux_button_list_new(root(), 0, 0, 10, 14, 1, 0);
    ux_button_list_set_text(list, 0, u"\u0100");
    EXPECT_TRUE(list->items[0]->obj.status & UX_ST_VISIBLE);
}

TEST_F(ButtonListTest, values_are_kept_for_the_host_and_not_read) {
    ux_button_list *list = make(2);
    expect_only(
        list->items[0], [&] { return ux_button_list_set_value(list, 0, 0xFFFFFFFF); },
        [](ux_text_button &) {});
    EXPECT_EQ(ux_button_list_set_value(list, 1, 5), 0);
    EXPECT_EQ(list->values[0], 0xFFFFFFFF);
    EXPECT_EQ(list->values[1], 5u);
}

TEST_F(ButtonListTest, index_that_no_button_has_is_ignored) {
    ux_button_list *list = make(2);
    ux_button_list_set_focus(obj_of(list));
    for (int index : {-1, 2, 3, k_smallest, k_largest}) {
        expect_only(
            list, [&] { return ux_button_list_set_text(list, index, u"b"); },
            [](ux_button_list &) {});
        expect_only(
            list, [&] { return ux_button_list_set_value(list, index, 5); },
            [](ux_button_list &) {});
        expect_only(
            list, [&] { return ux_button_list_move_to_target(list, index); },
            [](ux_button_list &) {});
        expect_only(
            list, [&] { return ux_button_list_set_item_focus(list, index); },
            [](ux_button_list &) {});
    }
    for (int i = 0; i < 2; i++) {
        EXPECT_EQ(list->values[i], 0u);
        EXPECT_EQ(std::u16string(list->items[i]->text), u"a");
    }
}

TEST_F(ButtonListTest, show_paints_the_visible_buttons_and_nothing_of_its_own) {
    make_screen(16, 20);
    fill_buf(1);
    ux_button_list *list = make(3, 0, 0, 10, 18); // H = 0
    ux_button_list_set_size(list, 0, 0, 10, 20);  // H = (20 - 18) / 3 = 0
    ux_button_list_set_size(list, 0, 0, 12, 22);  // H = 1: rows 3, 10, 17, columns 3 to 8
    ux_button_list_set_item_bg_color(list, 0xFF0000B0, 0xFF0000F0);
    ux_button_list_set_text(list, 1, nullptr);
    fill_buf(1);
    EXPECT_EQ(ux_button_list_show(obj_of(list)), 0);
    EXPECT_TRUE(obj_of(list)->status & UX_ST_VISIBLE);
    for (int y = 0; y < 20; y++)
        for (int x = 0; x < 16; x++) {
            const bool in_button = (y == 3 || y == 17) && x >= 3 && x <= 8;
            EXPECT_EQ(buf_pixel(x, y), in_button ? 0xFF0000B0 : 1u) << x << " " << y;
        }
}

TEST_F(ButtonListTest, hidden_list_paints_nothing_and_leaves_its_pixels) {
    ux_button_list *list = make(2);
    ux_button_list_show(obj_of(list));
    take_calls();
    const std::vector<uint8_t> before = memory_of(main_screen.buf);
    EXPECT_EQ(ux_button_list_hide(obj_of(list)), 0);
    EXPECT_FALSE(obj_of(list)->status & UX_ST_VISIBLE);
    EXPECT_EQ(ux_button_list_repaint(obj_of(list)), 0);
    EXPECT_FALSE(obj_of(list)->status & UX_ST_VISIBLE);
    EXPECT_TRUE(button_of(list, 0)->status & UX_ST_VISIBLE) << "the buttons keep their state";
    EXPECT_EQ(memory_of(main_screen.buf), before);
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(ButtonListTest, repaint_shows_a_visible_list) {
    ux_button_list *list = make(1, 0, 0, 10, 14);
    obj_of(list)->status |= UX_ST_VISIBLE;
    fill_buf(1);
    EXPECT_EQ(ux_button_list_repaint(obj_of(list)), 0);
    EXPECT_EQ(buf_pixel(3, 3), 0xFFFFFFFF);
}

TEST_F(ButtonListTest, list_of_another_page_only_changes_its_bits) {
    ux_page *second = new_page();
    ux_button_list *list = ux_button_list_new(&second->container, 0, 0, 10, 14, 2, 0);
    ux_button_list_set_text(list, 0, u"a");
    ux_button_list_set_text(list, 1, u"a");
    ux_button_list_show(obj_of(list));
    ux_button_list_set_focus(obj_of(list));
    down(list);
    EXPECT_EQ(list->current, 1);
    EXPECT_EQ(second->focus, obj_of(list));
    EXPECT_EQ(page->focus, nullptr);
    EXPECT_EQ(buf_picture(1).find_first_not_of(".\n"), std::string::npos);
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(ButtonListTest, touch_of_a_list_reaches_it_when_no_button_takes_it) {
    static ux_obj *touched;
    touched = nullptr;
    ux_button_list *list = make(2, 2, 1, 10, 6);
    ux_obj_set_handler(
        obj_of(list), [](ux_event *ev) { return touched = ev->obj, 1; }, nullptr);
    ux_event touch = {};
    touch.type = UX_EVENT_TOUCH;
    touch.x = 5;
    touch.y = 4;
    EXPECT_EQ(ux_container_scan(root(), touch_position_handler, &touch), 1);
    EXPECT_EQ(touched, obj_of(list));
}

TEST_F(ButtonListTest, free_releases_buttons_arrays_and_record) {
    // What is not released shows under the leak checker.
    ux_button_list *list = make(3);
    ux_button_list_show(obj_of(list));
    EXPECT_EQ(ux_container_del_obj(root(), obj_of(list), 0, 0), 0);
    EXPECT_EQ(page->container.count, 0u);
}

TEST_F(ButtonListTest, page_does_not_keep_the_focus_of_a_button_that_went_with_its_list) {
    ux_button_list *list = make(3);
    ux_text_button_set_focus(button_of(list, 1));
    EXPECT_EQ(page->focus, button_of(list, 1));
    ux_container_del_obj(root(), obj_of(list), 0, 0);
    EXPECT_EQ(page->focus, nullptr);
}
