// SPDX-License-Identifier: MIT
// The button list under its keys: which button becomes current, which handlers hear of it and in
// which order, what is painted, what the focus does.

#include "tests/widgets/button_list_test.h"

namespace {

class ButtonListKeysTest : public ButtonListTest {
  protected:
    static inline calls s_slots;

    // Slots of the host's own, which write down their order and do the button's work.
    static int note_focus(ux_obj *obj) { return note("focus", obj, ux_text_button_set_focus); }
    static int note_unfocus(ux_obj *obj) {
        return note("unfocus", obj, ux_text_button_unset_focus);
    }
    static int note(const char *what, ux_obj *obj, ux_slot work) {
        s_slots.push_back(std::string(what) + " at row " + std::to_string(obj->y));
        return work(obj);
    }

    static ux_obj *s_victim; // deleted by the slots and handlers below
    static void delete_victim() {
        ux_container_del_obj(reinterpret_cast<ux_container *>(s_victim->parent), s_victim, 0, 0);
    }
    static int delete_in_slot(ux_obj *) {
        delete_victim();
        return 0;
    }
};

ux_obj *ButtonListKeysTest::s_victim;

int host_handler(ux_event *) {
    return 0;
}

} // namespace

TEST_F(ButtonListKeysTest, down_skips_a_hidden_button_and_calls_focus_then_down) {
    ux_button_list *list = make_with_handlers(4);
    ux_button_list_set_text(list, 2, nullptr);
    ux_button_list_set_item_focus(list, 1);
    EXPECT_EQ(take_told(), calls{}) << "a move by call is not told";
    EXPECT_EQ(down(list), 0);
    EXPECT_EQ(list->current, 3);
    EXPECT_EQ(take_told(), (calls{"focus 3", "down 3"}));
}

TEST_F(ButtonListKeysTest, up_skips_hidden_buttons_and_calls_focus_then_up) {
    ux_button_list *list = make_with_handlers(4);
    ux_button_list_set_text(list, 1, u"");
    ux_button_list_set_text(list, 2, u"");
    ux_button_list_set_item_focus(list, 3);
    EXPECT_EQ(up(list), 0);
    EXPECT_EQ(list->current, 0);
    EXPECT_EQ(take_told(), (calls{"focus 0", "up 0"}));
}

TEST_F(ButtonListKeysTest, down_at_the_last_button_calls_only_down_with_the_count) {
    ux_button_list *list = make_with_handlers(3);
    ux_button_list_set_item_focus(list, 2);
    EXPECT_EQ(down(list), 0);
    EXPECT_EQ(list->current, 2);
    EXPECT_EQ(take_told(), calls{"down 3"});
}

TEST_F(ButtonListKeysTest, up_at_the_first_button_calls_only_up_with_minus_1) {
    ux_button_list *list = make_with_handlers(3);
    EXPECT_EQ(up(list), 0);
    EXPECT_EQ(list->current, 0);
    EXPECT_EQ(take_told(), calls{"up -1"});
}

TEST_F(ButtonListKeysTest, ends_are_also_where_only_hidden_buttons_follow) {
    ux_button_list *list = make_with_handlers(3);
    ux_button_list_set_item_focus(list, 1);
    ux_button_list_set_text(list, 0, nullptr);
    ux_button_list_set_text(list, 2, nullptr);
    EXPECT_EQ(up(list), 0);
    EXPECT_EQ(down(list), 0);
    EXPECT_EQ(list->current, 1);
    EXPECT_EQ(take_told(), (calls{"up -1", "down 3"}));
}

TEST_F(ButtonListKeysTest, move_without_handlers_moves_and_returns_0) {
    ux_button_list *list = make(2);
    EXPECT_EQ(down(list), 0);
    EXPECT_EQ(list->current, 1);
    EXPECT_EQ(down(list), 0);
    EXPECT_EQ(up(list), 0);
    EXPECT_EQ(list->current, 0);
    EXPECT_EQ(up(list), 0);
}

TEST_F(ButtonListKeysTest, each_handler_is_called_without_the_others) {
    ux_button_list *list = make_with_handlers(3);
    ux_button_list_set_focus_handler(list, nullptr);
    down(list);
    EXPECT_EQ(take_told(), calls{"down 1"});
    ux_button_list_set_focus_handler(list, on_focus);
    ux_button_list_set_down_handler(list, nullptr);
    ux_button_list_set_up_handler(list, nullptr);
    down(list);
    up(list);
    EXPECT_EQ(take_told(), (calls{"focus 2", "focus 1"}));
}

TEST_F(ButtonListKeysTest, ok_tells_the_current_button) {
    ux_button_list *list = make_with_handlers(3);
    ux_button_list_set_item_focus(list, 2);
    EXPECT_EQ(ok(list), 0);
    EXPECT_EQ(take_told(), calls{"select 2"});
}

TEST_F(ButtonListKeysTest, ok_without_a_select_handler_does_nothing_and_returns_0) {
    ux_button_list *list = make(3);
    expect_only(
        list, [&] { return ok(list); }, [](ux_button_list &) {});
}

TEST_F(ButtonListKeysTest, keys_for_another_kind_or_for_nothing_return_minus_1) {
    ux_button_list *list = make_with_handlers(2);
    ux_text_button *button = ux_text_button_new(root(), 0, 0, 4, 4, u"");
    for (ux_handler key : {ux_button_list_event_move_up, ux_button_list_event_move_down,
                           ux_button_list_event_press_ok}) {
        EXPECT_EQ(press(key, nullptr), -1);
        EXPECT_EQ(press(key, &button->obj), -1);
        EXPECT_EQ(press(key, &page->container.obj), -1);
    }
    EXPECT_EQ(take_told(), calls{});
    EXPECT_EQ(list->current, 0);
}

TEST_F(ButtonListKeysTest, move_calls_the_slots_of_both_buttons_old_one_first) {
    ux_button_list *list = make(3, 0, 0, 16, 36); // rows 3, 15, 27
    for (int i = 0; i < 3; i++) {
        button_of(list, i)->set_focus = note_focus;
        button_of(list, i)->unset_focus = note_unfocus;
    }
    s_slots.clear();
    EXPECT_EQ(ux_button_list_move_to_target(list, 2), 0);
    EXPECT_EQ(s_slots, (calls{"unfocus at row 3", "focus at row 27"}));
    s_slots.clear();
    EXPECT_EQ(ux_button_list_move_to_target(list, 2), 0) << "also onto itself";
    EXPECT_EQ(s_slots, (calls{"unfocus at row 27", "focus at row 27"}));
}

TEST_F(ButtonListKeysTest, slots_that_the_host_emptied_are_passed_over) {
    ux_button_list *list = make(2);
    button_of(list, 0)->unset_focus = nullptr;
    button_of(list, 1)->set_focus = nullptr;
    EXPECT_EQ(ux_button_list_move_to_target(list, 1), 0);
    EXPECT_EQ(list->current, 1);
}

TEST_F(ButtonListKeysTest, visible_list_paints_both_buttons_twice_a_hidden_one_once) {
    make_screen(16, 64);
    ux_button_list *list = make(2, 0, 0, 16, 40); // height 14: room for a line
    const auto glyphs_of_a_move = [&](int target) {
        take_calls();
        ux_button_list_move_to_target(list, target);
        int glyphs = 0;
        for (const std::string &call : take_calls())
            glyphs += call == "FSS_get_bitmap 97";
        return glyphs;
    };
    EXPECT_EQ(glyphs_of_a_move(1), 2);
    ux_button_list_show(obj_of(list));
    EXPECT_EQ(glyphs_of_a_move(0), 4);
}

TEST_F(ButtonListKeysTest, move_paints_the_old_button_plain_and_the_new_one_orange) {
    make_screen(16, 20);
    fill_buf(0xFF000000);
    ux_button_list *list = make(2, 0, 0, 10, 20); // (3, 3) and (3, 13), 4 x 4: no room for a line
    ux_button_list_show(obj_of(list));
    ux_button_list_set_focus(obj_of(list));
    EXPECT_EQ(buf_pixel(3, 3), 0xFFFF8800);
    EXPECT_EQ(buf_pixel(3, 13), 0xFF000000);
    down(list);
    EXPECT_EQ(buf_pixel(3, 3), 0xFF000000);
    EXPECT_EQ(buf_pixel(3, 13), 0xFFFF8800);
    EXPECT_EQ(buf_pixel(6, 16), 0xFFFF8800);
    EXPECT_EQ(buf_pixel(7, 16), 0xFF000000);
}

TEST_F(ButtonListKeysTest, new_button_is_painted_last_where_both_overlap) {
    make_screen(16, 24);
    fill_buf(0xFF000000);
    ux_button_list *list = make(2, 0, 0, 10, 20);
    list->gap = -10; // H = (20 - 12 + 10) / 2 = 9: rows 3 to 11 and 8 to 16
    ux_button_list_set_size(list, 0, 0, 10, 20);
    ux_button_list_set_item_bg_color(list, 0xFF000044, 0xFFFF8800);
    ux_button_list_show(obj_of(list));
    for (int target : {1, 0}) {
        ux_button_list_move_to_target(list, target);
        EXPECT_EQ(buf_pixel(6, 8), 0xFFFF8800) << target;
        EXPECT_EQ(buf_pixel(6, 11), 0xFFFF8800) << target;
    }
}

TEST_F(ButtonListKeysTest, move_to_a_hidden_button_by_call_makes_it_visible) {
    ux_button_list *list = make(2);
    ux_button_list_set_text(list, 1, nullptr);
    EXPECT_EQ(ux_button_list_set_item_focus(list, 1), 0);
    EXPECT_TRUE(button_of(list, 1)->status & UX_ST_VISIBLE);
    EXPECT_TRUE(button_of(list, 1)->status & UX_ST_FOCUSED);
    EXPECT_FALSE(button_of(list, 0)->status & UX_ST_FOCUSED);
}

TEST_F(ButtonListKeysTest, moved_list_is_its_pages_focus_and_not_the_button) {
    ux_button_list *list = make(2);
    EXPECT_EQ(ux_button_list_move_to_target(list, 1), 0);
    EXPECT_EQ(page->focus, obj_of(list));
    EXPECT_FALSE(obj_of(list)->status & UX_ST_FOCUSED) << "the list's own mark is not set";
}

TEST_F(ButtonListKeysTest, focus_installs_three_keys_and_marks_list_and_current_button) {
    ux_button_list *list = make(2);
    for (int key = 0; key < 256; key++)
        ux_page_set_key_handler(page, key, host_handler);
    EXPECT_EQ(ux_obj_set_focus(obj_of(list)), 0);
    for (int key = 0; key < 256; key++) {
        const ux_handler expected = key == 19   ? ux_button_list_event_move_up
                                    : key == 20 ? ux_button_list_event_move_down
                                    : key == 23 ? ux_button_list_event_press_ok
                                                : host_handler;
        EXPECT_EQ(page->key_handlers[key], expected) << key;
    }
    EXPECT_TRUE(obj_of(list)->status & UX_ST_FOCUSED);
    EXPECT_TRUE(button_of(list, 0)->status & UX_ST_FOCUSED);
    EXPECT_FALSE(button_of(list, 1)->status & UX_ST_FOCUSED);
    EXPECT_EQ(page->focus, obj_of(list));
}

TEST_F(ButtonListKeysTest, focus_makes_a_hidden_current_button_visible) {
    ux_button_list *list = make(2);
    ux_button_list_set_text(list, 0, nullptr);
    ux_button_list_set_focus(obj_of(list));
    EXPECT_TRUE(button_of(list, 0)->status & UX_ST_VISIBLE);
}

TEST_F(ButtonListKeysTest, unset_focus_clears_the_marks_and_the_pages_focus_and_keeps_the_keys) {
    ux_button_list *list = make(2);
    for (int key : {19, 20, 23})
        ux_page_set_key_handler(page, key, host_handler);
    ux_button_list_set_focus(obj_of(list));
    down(list);
    EXPECT_EQ(ux_button_list_unset_focus(obj_of(list)), 0);
    EXPECT_FALSE(obj_of(list)->status & UX_ST_FOCUSED);
    EXPECT_FALSE(button_of(list, 1)->status & UX_ST_FOCUSED);
    EXPECT_EQ(page->focus, nullptr);
    EXPECT_EQ(page->key_handlers[19], ux_button_list_event_move_up);
    EXPECT_EQ(page->key_handlers[20], ux_button_list_event_move_down);
    EXPECT_EQ(page->key_handlers[23], ux_button_list_event_press_ok);
    EXPECT_EQ(press(page->key_handlers[20], page->focus), -1) << "without a target they do nothing";
}

TEST_F(ButtonListKeysTest, unset_focus_leaves_no_focus_also_when_another_widget_has_it) {
    ux_button_list *list = make(2);
    ux_button_list_set_focus(obj_of(list));
    ux_text_button *other = ux_text_button_new(root(), 0, 0, 4, 4, u"");
    ux_text_button_set_focus(&other->obj);
    ux_button_list_unset_focus(obj_of(list));
    EXPECT_EQ(page->focus, nullptr);
}

TEST_F(ButtonListKeysTest, container_that_loses_the_focus_leaves_its_list_focused) {
    ux_container *box = ux_container_new(root(), 0, 0, 16, 8);
    ux_button_list *list = ux_button_list_new(box, 0, 0, 16, 8, 2, 0);
    ux_container_set_focus(&box->obj);
    EXPECT_TRUE(obj_of(list)->status & UX_ST_FOCUSED);
    EXPECT_EQ(page->focus, &box->obj);
    ux_container_unset_focus(&box->obj);
    EXPECT_TRUE(obj_of(list)->status & UX_ST_FOCUSED);
    ux_container_del_obj(box, obj_of(list), 0, 0);
}

TEST_F(ButtonListKeysTest, focus_without_a_page_warns_marks_the_button_and_touches_no_page) {
    ux_error = 12;
    ux_button_list *list = ux_button_list_new(nullptr, 0, 0, 16, 8, 2, 0);
    ux_button_list_set_text(list, 1, u"a");
    testing::internal::CaptureStderr();
    EXPECT_EQ(ux_button_list_set_focus(obj_of(list)), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Error: [12] warning, ux_calendar doesn't have a parent object\n\n");
    EXPECT_TRUE(obj_of(list)->status & UX_ST_FOCUSED);
    EXPECT_TRUE(button_of(list, 0)->status & UX_ST_FOCUSED);
    EXPECT_EQ(page->focus, nullptr);
    for (int key = 0; key < 256; key++)
        EXPECT_EQ(page->key_handlers[key], nullptr);
    EXPECT_EQ(down(list), 0);
    EXPECT_EQ(list->current, 1);
    EXPECT_EQ(ux_button_list_unset_focus(obj_of(list)), 0);
    EXPECT_FALSE(button_of(list, 1)->status & UX_ST_FOCUSED);
    EXPECT_EQ(page->focus, nullptr);
    ux_button_list_free(obj_of(list));
}

TEST_F(ButtonListKeysTest, focus_with_a_page_that_does_not_exist_touches_none_and_warns_not) {
    for (int page_id : {1, 32, 1000000, -2}) {
        ux_button_list *list = ux_button_list_new(nullptr, 0, 0, 16, 8, 2, 0);
        list->container.obj.page_id = page_id;
        testing::internal::CaptureStderr();
        EXPECT_EQ(ux_button_list_set_focus(obj_of(list)), 0);
        EXPECT_EQ(down(list), 0);
        EXPECT_EQ(ux_button_list_unset_focus(obj_of(list)), 0);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(page->focus, nullptr);
        ux_button_list_free(obj_of(list));
    }
}

TEST_F(ButtonListKeysTest, current_index_spoilt_by_the_host_moves_nothing_and_reads_nothing) {
    ux_button_list *list = make_with_handlers(2);
    for (int current : {2, 2147483647, -3, -2147483647 - 1}) {
        list->current = current;
        EXPECT_EQ(ux_button_list_move_to_target(list, 0), 0);
        EXPECT_EQ(ux_button_list_set_focus(obj_of(list)), 0);
        EXPECT_EQ(up(list), 0);
        EXPECT_EQ(down(list), 0);
        EXPECT_EQ(ux_button_list_unset_focus(obj_of(list)), 0);
        EXPECT_EQ(list->current, current);
    }
    list->current = 0;
}

TEST_F(ButtonListKeysTest, handler_that_moves_the_list_itself_is_obeyed_and_down_still_hears_t) {
    ux_button_list *list = make_with_handlers(4);
    s_during_focus = [&] { ux_button_list_set_item_focus(list, 3); };
    EXPECT_EQ(down(list), 0);
    EXPECT_EQ(list->current, 3);
    EXPECT_EQ(take_told(), (calls{"focus 1", "down 1"}));
}

TEST_F(ButtonListKeysTest, handler_that_gives_the_focus_away_is_obeyed) {
    ux_button_list *list = make_with_handlers(2);
    ux_text_button *other = ux_text_button_new(root(), 0, 0, 4, 4, u"");
    ux_button_list_set_focus(obj_of(list));
    s_during_down = [&] {
        ux_button_list_unset_focus(obj_of(list));
        ux_text_button_set_focus(&other->obj);
    };
    EXPECT_EQ(down(list), 0);
    EXPECT_EQ(page->focus, &other->obj);
    EXPECT_EQ(press(page->key_handlers[19], page->focus), -1);
}

TEST_F(ButtonListKeysTest, handlers_may_delete_the_list_and_no_other_handler_is_called) {
    struct {
        std::function<void()> *during;
        int (*key)(ux_button_list *);
        calls told;
    } const cases[] = {
        {&s_during_focus, down, {"focus 1"}},
        {&s_during_down, down, {"focus 1", "down 1"}},
        {&s_during_up, up, {"up -1"}},
        {&s_during_select, ok, {"select 0"}},
    };
    for (const auto &c : cases) {
        ux_button_list *list = make_with_handlers(2);
        ux_button_list_show(obj_of(list));
        ux_button_list_set_focus(obj_of(list));
        s_victim = obj_of(list);
        s_during_focus = s_during_down = s_during_up = s_during_select = nullptr;
        *c.during = delete_victim;
        EXPECT_EQ(c.key(list), 0);
        EXPECT_EQ(take_told(), c.told);
        EXPECT_EQ(page->container.count, 0u);
        EXPECT_EQ(page->focus, nullptr);
    }
}

TEST_F(ButtonListKeysTest, slots_of_the_hosts_own_may_delete_the_list) {
    for (bool in_unset : {true, false}) {
        ux_button_list *list = make_with_handlers(2);
        ux_button_list_set_focus(obj_of(list));
        s_victim = obj_of(list);
        if (in_unset)
            button_of(list, 0)->unset_focus = delete_in_slot;
        else
            button_of(list, 1)->set_focus = delete_in_slot;
        EXPECT_EQ(down(list), 0);
        EXPECT_EQ(take_told(), calls{});
        EXPECT_EQ(page->container.count, 0u);
    }
}
