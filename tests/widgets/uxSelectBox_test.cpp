// SPDX-License-Identifier: MIT
// The select box: its record, its ring of items, its keys and its focus.

#include "tests/support/page_end.h"
#include "tests/widgets/select_box_test.h"

#include <climits>

namespace {

constexpr int k_left = 21;
constexpr int k_right = 22;

int first_of_host(ux_event *) {
    return 0;
}

int second_of_host(ux_event *) {
    return 0;
}

class SelectBoxItemsTest : public SelectBoxTest {
  protected:
    void TearDown() override {
        for (ux_select_box *box : boxes)
            ux_select_box_free_items(box);
        SelectBoxTest::TearDown();
    }

    ux_select_box *focused(std::initializer_list<const char16_t *> texts) {
        ux_select_box *box = make(texts);
        box->change_handler = note_change;
        box->obj.show(&box->obj);
        box->obj.set_focus(&box->obj);
        take_calls();
        return box;
    }

    // Both directions of the ring, from the first item on, as texts.
    static std::u16string ring(const ux_select_box *box) {
        std::u16string texts;
        const ux_select_item *item = box->first;
        for (int i = 0; i < box->count; i++, item = item->next) {
            EXPECT_EQ(item->index, i);
            EXPECT_EQ(item->next->previous, item);
            texts += text_of(item->text) + u' ';
        }
        EXPECT_EQ(item, box->first) << "the last item's next is the first";
        EXPECT_EQ(box->first->previous, box->last);
        return texts;
    }

    static std::u16string numbered(int units) {
        std::u16string text;
        for (int k = 0; k < units; k++)
            text += static_cast<char16_t>(0x4101 + k);
        return text;
    }
};

} // namespace

TEST_F(SelectBoxItemsTest, constructor_fills_the_boxs_own_record) {
    ux_select_box *box = ux_select_box_new(root(), 1, -2, 30, 40);
    EXPECT_EQ(shown(box), u"");
    EXPECT_EQ(box->font_size, 16);
    EXPECT_EQ(box->first, nullptr);
    EXPECT_EQ(box->last, nullptr);
    EXPECT_EQ(box->current, nullptr);
    EXPECT_EQ(box->count, 0);
    EXPECT_EQ(box->fg_color, 0xFFAAAAAA);
    EXPECT_EQ(box->bg_color, 0xFF000000);
    EXPECT_EQ(box->focus_fg_color, 0xFFAAAAAA);
    EXPECT_EQ(box->focus_bg_color, 0xFF000000);
    EXPECT_EQ(box->change_handler, nullptr);
}

TEST_F(SelectBoxItemsTest, setters_store_and_do_nothing_else) {
    ux_select_box *b = focused({u"A", u"B"});
    const auto set = [&](auto call, auto change) { expect_only(b, call, change); };
    using record = ux_select_box;
    set([&] { return ux_select_box_set_fg_color(b, 1, 2); },
        [](record &r) { r.fg_color = 1, r.focus_fg_color = 2; });
    set([&] { return ux_select_box_set_bg_color(b, 3, 4); },
        [](record &r) { r.bg_color = 3, r.focus_bg_color = 4; });
    set([&] { return ux_select_box_set_font_size(b, -5); }, [](record &r) { r.font_size = -5; });
    set([&] { return ux_select_box_set_font(b, "Vera", 6); }, [](record &) {});
    set([&] { return ux_select_box_set_pos(b, 1); },
        [](record &r) { r.current = r.last, r.text[0] = u'B'; });
    set([&] { return ux_select_box_set_text(b, u"A"); },
        [](record &r) { r.current = r.first, r.text[0] = u'A'; });
    EXPECT_EQ(take_changes(), std::vector<int>{}) << "the handler hears of keys only";
}

// Items.

TEST_F(SelectBoxItemsTest, items_form_a_ring_in_the_order_of_insertion) {
    ux_select_box *box = make();
    EXPECT_EQ(ux_select_box_add_item(box, u"A"), 0);
    EXPECT_EQ(ring(box), u"A ");
    EXPECT_EQ(ux_select_box_add_item(box, u"B"), 0);
    EXPECT_EQ(ring(box), u"A B ");
    EXPECT_EQ(ux_select_box_add_item(box, u"C"), 0);
    EXPECT_EQ(ring(box), u"A B C ");
}

TEST_F(SelectBoxItemsTest, first_item_becomes_current_and_its_text_the_boxs) {
    ux_select_box *box = make();
    ux_select_box_add_item(box, u"one");
    EXPECT_EQ(box->current, box->first);
    EXPECT_EQ(shown(box), u"one");
    ux_select_box_add_item(box, u"two");
    EXPECT_EQ(box->current, box->first);
    EXPECT_EQ(shown(box), u"one");
}

TEST_F(SelectBoxItemsTest, adding_paints_nothing) {
    ux_select_box *box = focused({u"A"});
    ux_select_box_add_item(box, u"B");
    ux_select_box_add_items(box, u"C", 0);
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(SelectBoxItemsTest, failed_allocation_of_an_item_is_told_and_changes_nothing) {
    ux_select_box *box = make({u"A"});
    ux_select_box before;
    memcpy(&before, box, sizeof before);
    testing::internal::CaptureStderr();
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_select_box_add_item(box, u"B"), -1);
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_select_box_add_items(box, u"B", 7), 0) << "which tells nothing";
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Fail to allocate new item!\nFail to allocate new item!\n");
    EXPECT_EQ(memcmp(&before, box, sizeof before), 0);
    EXPECT_EQ(ring(box), u"A ");
}

TEST_F(SelectBoxItemsTest, item_is_one_allocation) {
    ux_select_box *box = make();
    hooks::take_allocation_count();
    ux_select_box_add_item(box, u"A");
    EXPECT_EQ(hooks::take_allocation_count(), 1);
}

TEST_F(SelectBoxItemsTest, texts_keep_128_units_and_are_not_read_beyond_their_end) {
    ux_select_box *box = make();
    for (int units : {0, 1, 127}) {
        const page_end copy(numbered(units).c_str(), 2 * static_cast<size_t>(units) + 2);
        ux_select_box_add_item(box, copy.units());
        EXPECT_EQ(text_of(box->last->text), numbered(units));
        ux_select_box_add_items(box, copy.units(), 0);
    }
    const page_end endless(numbered(128).data(), 256);
    ux_select_box_add_item(box, endless.units());
    EXPECT_EQ(std::u16string(box->last->text, 128), numbered(128)) << "no unit is cut";
    EXPECT_EQ(ux_select_box_set_text(box, endless.units()), 0);
    EXPECT_EQ(box->current, box->last);
}

TEST_F(SelectBoxItemsTest, null_text_makes_an_empty_item) {
    ux_select_box *box = make({nullptr, u"B"});
    EXPECT_EQ(text_of(box->first->text), u"");
    EXPECT_EQ(ux_select_box_add_items(box, nullptr, 1), 0);
    EXPECT_EQ(text_of(box->last->text), u"");
}

TEST_F(SelectBoxItemsTest, index_of_an_item_overwrites_its_text_and_leaves_the_boxs) {
    ux_select_box *box = make({u"A", u"B", u"C"});
    EXPECT_EQ(ux_select_box_add_items(box, u"x", 0), 0);
    EXPECT_EQ(ux_select_box_add_items(box, u"z", 2), 0);
    EXPECT_EQ(ring(box), u"x B z ");
    EXPECT_EQ(shown(box), u"A");
    ux_select_box_set_pos(box, 2);
    EXPECT_EQ(shown(box), u"z");
}

TEST_F(SelectBoxItemsTest, index_past_the_end_appends) {
    ux_select_box *box = make({u"A"});
    EXPECT_EQ(ux_select_box_add_items(box, u"B", 1), 0);
    EXPECT_EQ(ux_select_box_add_items(box, u"C", INT_MAX), 0);
    EXPECT_EQ(ring(box), u"A B C ");
    ux_select_box *empty = make();
    EXPECT_EQ(ux_select_box_add_items(empty, u"A", 0), 0);
    EXPECT_EQ(ring(empty), u"A ");
}

TEST_F(SelectBoxItemsTest, negative_index_overwrites_the_first_item_if_there_is_one) {
    ux_select_box *box = make({u"A", u"B"});
    EXPECT_EQ(ux_select_box_add_items(box, u"x", -1), 0);
    EXPECT_EQ(ux_select_box_add_items(box, u"y", INT_MIN), 0);
    EXPECT_EQ(ring(box), u"y B ");
    ux_select_box *empty = make();
    EXPECT_EQ(ux_select_box_add_items(empty, u"x", -1), 0);
    EXPECT_EQ(empty->count, 0);
}

TEST_F(SelectBoxItemsTest, freed_items_are_gone_and_the_boxs_text_stays) {
    ux_select_box *box = focused({u"A", u"B", u"C"});
    ux_select_box_set_pos(box, 1);
    EXPECT_EQ(ux_select_box_free_items(box), 0);
    EXPECT_EQ(box->first, nullptr);
    EXPECT_EQ(box->last, nullptr);
    EXPECT_EQ(box->current, nullptr);
    EXPECT_EQ(box->count, 0);
    EXPECT_EQ(shown(box), u"B");
    EXPECT_EQ(ux_select_box_free_items(box), 0);
    press(k_left);
    press(k_right);
    EXPECT_EQ(ux_select_box_get_pos(box), -1);
    EXPECT_EQ(ux_select_box_add_item(box, u"D"), 0);
    EXPECT_EQ(ring(box), u"D ");
    EXPECT_EQ(shown(box), u"D");
}

// Position and text.

TEST_F(SelectBoxItemsTest, position_is_the_current_items_index) {
    ux_select_box *box = make();
    EXPECT_EQ(ux_select_box_get_pos(box), -1);
    ux_select_box_add_item(box, u"A");
    EXPECT_EQ(ux_select_box_get_pos(box), 0);
    ux_select_box_add_item(box, u"B");
    ux_select_box_set_pos(box, 1);
    EXPECT_EQ(ux_select_box_get_pos(box), 1);
}

TEST_F(SelectBoxItemsTest, every_position_is_reached_from_every_other) {
    ux_select_box *box = make({u"A", u"B", u"C", u"D"});
    for (int from = 0; from < 4; from++)
        for (int to = 0; to < 4; to++) {
            EXPECT_EQ(ux_select_box_set_pos(box, from), 0);
            EXPECT_EQ(ux_select_box_set_pos(box, to), 0);
            EXPECT_EQ(ux_select_box_get_pos(box), to);
            EXPECT_EQ(shown(box), std::u16string(1, static_cast<char16_t>(u'A' + to)));
        }
}

TEST_F(SelectBoxItemsTest, position_outside_is_refused) {
    ux_select_box *box = make({u"A", u"B"});
    for (int index : {-1, 2, 3, INT_MAX, INT_MIN})
        EXPECT_EQ(ux_select_box_set_pos(box, index), -1) << index;
    EXPECT_EQ(ux_select_box_get_pos(box), 0);
}

TEST_F(SelectBoxItemsTest, box_of_one_item_refuses_even_its_own_position_and_text) {
    ux_select_box *box = make({u"A"});
    EXPECT_EQ(ux_select_box_set_pos(box, 0), -1);
    EXPECT_EQ(ux_select_box_set_text(box, u"A"), -1);
    EXPECT_EQ(ux_select_box_set_pos(make(), 0), -1);
}

TEST_F(SelectBoxItemsTest, first_item_of_the_text_becomes_current) {
    ux_select_box *box = make({u"A", u"B", u"B", u"Bc"});
    EXPECT_EQ(ux_select_box_set_text(box, u"B"), 0);
    EXPECT_EQ(ux_select_box_get_pos(box), 1);
    EXPECT_EQ(shown(box), u"B");
    EXPECT_EQ(ux_select_box_set_text(box, u"Bc"), 0);
    EXPECT_EQ(ux_select_box_get_pos(box), 3);
}

TEST_F(SelectBoxItemsTest, text_that_no_item_has_is_refused) {
    ux_select_box *box = make({u"Abc", u"Bcd"});
    ux_select_box_set_pos(box, 1);
    for (const char16_t *text : {u"", u"A", u"Ab", u"Abcd", u"bcd", u"ABC"})
        EXPECT_EQ(ux_select_box_set_text(box, text), -1);
    EXPECT_EQ(ux_select_box_set_text(box, nullptr), -1);
    EXPECT_EQ(ux_select_box_get_pos(box), 1);
    EXPECT_EQ(shown(box), u"Bcd");
}

TEST_F(SelectBoxItemsTest, units_behind_the_end_of_a_text_do_not_count) {
    ux_select_box *box = make({u"A", u"longer", u"C"});
    ux_select_box_add_items(box, u"lo", 1);
    box->first->next->text[4] = u'x';
    const char16_t text[] = u"lo\0zzz";
    EXPECT_EQ(ux_select_box_set_text(box, text), 0);
    EXPECT_EQ(ux_select_box_get_pos(box), 1);
}

TEST_F(SelectBoxItemsTest, other_kinds_are_refused) {
    ux_select_box *box = make({u"A", u"B"});
    box->obj.type = 14;
    EXPECT_EQ(ux_select_box_get_pos(box), -1);
    EXPECT_EQ(ux_select_box_set_pos(box, 1), -1);
    EXPECT_EQ(ux_select_box_set_text(box, u"B"), -1);
    EXPECT_EQ(box->current, box->first);
    box->obj.type = 39;
}

// Keys.

TEST_F(SelectBoxItemsTest, keys_step_around_both_ends) {
    ux_select_box *box = focused({u"A", u"B", u"C"});
    const std::pair<int, const char16_t *> steps[] = {
        {k_right, u"B"}, {k_right, u"C"}, {k_right, u"A"},
        {k_left, u"C"},  {k_left, u"B"},  {k_left, u"A"},
    };
    for (const auto &[key, text] : steps) {
        press(key);
        EXPECT_EQ(shown(box), text);
        EXPECT_EQ(text_of(box->current->text), text);
    }
    for (const heard_change &each : s_changes)
        EXPECT_EQ(each.box, box);
    EXPECT_EQ(take_changes(), (std::vector<int>{1, 2, 0, 2, 1, 0}));
}

TEST_F(SelectBoxItemsTest, key_paints_before_the_handler_hears_of_it) {
    ux_select_box *box = focused({u"A", u"B"});
    static std::string s_painted;
    box->change_handler = [](ux_select_box *, int) {
        s_painted = take_glyphs();
        return 0;
    };
    press(k_right);
    EXPECT_EQ(s_painted, "<>B");
    EXPECT_EQ(take_glyphs(), "");
}

TEST_F(SelectBoxItemsTest, hidden_box_steps_and_calls_the_handler_and_paints_nothing) {
    ux_select_box *box = focused({u"A", u"B"});
    box->obj.hide(&box->obj);
    press(k_right);
    EXPECT_EQ(shown(box), u"B");
    EXPECT_EQ(take_changes(), std::vector<int>{1});
    EXPECT_EQ(take_calls(), calls{});
    EXPECT_EQ(box->obj.status, 1u);
}

TEST_F(SelectBoxItemsTest, box_of_one_item_or_none_ignores_the_keys) {
    ux_select_box *one = focused({u"A"});
    press(k_left);
    press(k_right);
    EXPECT_EQ(shown(one), u"A");
    focused({});
    press(k_left);
    press(k_right);
    EXPECT_EQ(take_changes(), std::vector<int>{});
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(SelectBoxItemsTest, keys_for_other_objects_or_none_are_ignored) {
    ux_select_box *box = focused({u"A", u"B"});
    ux_text_button *button = ux_text_button_new(root(), 0, 0, 4, 4, u"a");
    for (ux_obj *obj : {&button->obj, static_cast<ux_obj *>(nullptr)}) {
        page->focus = obj;
        press(k_left);
        press(k_right);
    }
    EXPECT_EQ(shown(box), u"A");
    EXPECT_EQ(take_changes(), std::vector<int>{});
}

TEST_F(SelectBoxItemsTest, keys_without_a_handler_of_changes_step_as_well) {
    ux_select_box *box = focused({u"A", u"B"});
    box->change_handler = nullptr;
    press(k_right);
    EXPECT_EQ(shown(box), u"B");
}

TEST_F(SelectBoxItemsTest, handler_may_delete_the_box) {
    ux_select_box *box = focused({u"A", u"B"});
    box->change_handler = [](ux_select_box *gone, int) {
        ux_select_box_free_items(gone);
        return ux_container_del_obj(reinterpret_cast<ux_container *>(gone->obj.parent), &gone->obj,
                                    0, 0);
    };
    boxes.pop_back();
    press(k_right);
    EXPECT_EQ(page->focus, nullptr);
    press(k_right);
}

TEST_F(SelectBoxItemsTest, handler_may_move_the_focus) {
    ux_select_box *other = make({u"X", u"Y"});
    ux_select_box *box = focused({u"A", u"B"});
    box->obj.handler_data = other;
    box->change_handler = [](ux_select_box *from, int) {
        from->obj.unset_focus(&from->obj);
        auto *to = static_cast<ux_select_box *>(from->obj.handler_data);
        return to->obj.set_focus(&to->obj);
    };
    press(k_right);
    press(k_right);
    EXPECT_EQ(shown(box), u"B");
    EXPECT_EQ(shown(other), u"Y");
}

// Focus.

TEST_F(SelectBoxItemsTest, focus_takes_over_left_and_right_and_paints_nothing) {
    ux_select_box *box = make({u"A"});
    box->obj.show(&box->obj);
    for (int key = 0; key < 256; key++)
        ux_page_set_key_handler(page, key, first_of_host);
    take_calls();
    EXPECT_EQ(ux_select_box_set_focus(&box->obj), 0);
    EXPECT_EQ(page->focus, &box->obj);
    EXPECT_EQ(box->obj.status, 5u);
    for (int key = 0; key < 256; key++)
        EXPECT_EQ(page->key_handlers[key], key == 21   ? ux_select_box_key_left
                                           : key == 22 ? ux_select_box_key_right
                                                       : first_of_host)
            << key;
    EXPECT_EQ(ux_select_box_unset_focus(&box->obj), 0);
    for (int key = 0; key < 256; key++)
        EXPECT_EQ(page->key_handlers[key], first_of_host) << key;
    EXPECT_EQ(page->focus, &box->obj) << "it stays the page's focus";
    EXPECT_EQ(box->obj.status, 4u);
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(SelectBoxItemsTest, keys_that_had_no_handler_keep_the_boxs) {
    ux_select_box *box = make();
    ux_page_set_key_handler(page, k_left, second_of_host);
    box->obj.set_focus(&box->obj);
    box->obj.unset_focus(&box->obj);
    EXPECT_EQ(page->key_handlers[k_left], second_of_host);
    EXPECT_EQ(page->key_handlers[k_right], ux_select_box_key_right);
}

// There is one table: the second box keeps what the first one installed.
TEST_F(SelectBoxItemsTest, two_boxes_focused_one_after_the_other_lose_the_hosts_handlers) {
    ux_select_box *a = make();
    ux_select_box *b = make();
    ux_page_set_key_handler(page, k_left, first_of_host);
    a->obj.set_focus(&a->obj);
    b->obj.set_focus(&b->obj);
    b->obj.unset_focus(&b->obj);
    a->obj.unset_focus(&a->obj);
    EXPECT_EQ(page->key_handlers[k_left], ux_select_box_key_left);
}

TEST_F(SelectBoxItemsTest, text_fields_keep_their_keys_in_a_table_of_their_own) {
    ux_select_box *box = make();
    ux_text_field *field = ux_text_field_new(root(), 0, 0, 4, 4, nullptr);
    ux_page_set_key_handler(page, k_left, first_of_host);
    ux_page_set_key_handler(page, 3, second_of_host);
    box->obj.set_focus(&box->obj);
    field->obj.set_focus(&field->obj);
    box->obj.unset_focus(&box->obj);
    EXPECT_EQ(page->key_handlers[k_left], first_of_host);
    EXPECT_EQ(page->key_handlers[3], ux_text_field_add_char);
    field->obj.unset_focus(&field->obj);
    EXPECT_EQ(page->key_handlers[3], second_of_host);
}

TEST_F(SelectBoxItemsTest, box_without_a_page_changes_its_bits_only) {
    ux_select_box *box = ux_select_box_new(nullptr, 0, 0, 4, 4);
    for (int page_id : {-1, 1, 32, INT_MIN}) {
        box->obj.page_id = page_id;
        EXPECT_EQ(box->obj.set_focus(&box->obj), 0);
        EXPECT_EQ(box->obj.status, 1u);
        EXPECT_EQ(box->obj.unset_focus(&box->obj), 0);
        EXPECT_EQ(box->obj.status, 0u);
    }
    EXPECT_EQ(page->focus, nullptr);
    EXPECT_EQ(page->key_handlers[k_left], nullptr);
    ux_obj_free(&box->obj);
}
