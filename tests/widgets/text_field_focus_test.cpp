// SPDX-License-Identifier: MIT
// The text field: taking over the page's keys, and the one table that all fields keep them in.

#include "tests/widgets/text_field_test.h"

namespace {

int first_of_host(ux_event *) {
    return 1;
}

int second_of_host(ux_event *) {
    return 2;
}

// The keys that a focused field handles.
const std::vector<int> k_letter_keys = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 35};

class TextFieldFocusTest : public TextFieldTest {
  protected:
    static void set_all_handlers(ux_page *of, ux_handler handler) {
        for (int key = 0; key < 256; key++)
            ux_page_set_key_handler(of, key, handler);
    }

    // The handler that a focused field has for a key.
    static ux_handler fields_handler(int key) {
        if (key == 32)
            return ux_text_field_del_char;
        if (key == 34)
            return ux_text_field_shift_char;
        const bool types = std::count(k_letter_keys.begin(), k_letter_keys.end(), key) > 0;
        return types ? ux_text_field_add_char : nullptr;
    }

    // The page has the field's handlers, and `others` for all other keys.
    static void expect_captured(const ux_page *of, ux_handler others) {
        for (int key = 0; key < 256; key++) {
            const ux_handler own = fields_handler(key);
            EXPECT_EQ(of->key_handlers[key], own ? own : others) << "key " << key;
        }
    }
    static void expect_all(const ux_page *of, ux_handler handler) {
        for (int key = 0; key < 256; key++)
            EXPECT_EQ(of->key_handlers[key], handler) << "key " << key;
    }
};

} // namespace

TEST_F(TextFieldFocusTest, focus_takes_over_13_keys_and_paints_nothing) {
    ux_text_field *field = make(u"a");
    field->obj.show(&field->obj);
    set_all_handlers(page, first_of_host);
    take_calls();
    EXPECT_EQ(ux_text_field_set_focus(&field->obj), 0);
    expect_captured(page, first_of_host);
    EXPECT_EQ(page->focus, &field->obj);
    EXPECT_EQ(field->obj.status, 5u);
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(TextFieldFocusTest, numeric_field_takes_over_the_same_keys) {
    ux_text_field *field = make();
    ux_text_field_set_type(field, 1);
    set_all_handlers(page, first_of_host);
    field->obj.set_focus(&field->obj);
    expect_captured(page, first_of_host);
}

TEST_F(TextFieldFocusTest, lost_focus_gives_the_handlers_back_and_paints_nothing) {
    ux_text_field *field = make(u"a");
    field->obj.show(&field->obj);
    set_all_handlers(page, first_of_host);
    field->obj.set_focus(&field->obj);
    take_calls();
    EXPECT_EQ(ux_text_field_unset_focus(&field->obj), 0);
    expect_all(page, first_of_host);
    EXPECT_EQ(page->focus, &field->obj) << "it stays the page's focus";
    EXPECT_EQ(field->obj.status, 4u);
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(TextFieldFocusTest, keys_that_had_no_handler_keep_the_fields) {
    ux_text_field *field = make();
    ux_page_set_key_handler(page, 5, first_of_host);
    field->obj.set_focus(&field->obj);
    field->obj.unset_focus(&field->obj);
    for (int key = 0; key < 256; key++)
        EXPECT_EQ(page->key_handlers[key], key == 5 ? first_of_host : fields_handler(key)) << key;
}

TEST_F(TextFieldFocusTest, field_that_lost_the_focus_still_takes_keys_that_reach_it) {
    ux_text_field *field = focused();
    field->obj.unset_focus(&field->obj);
    press(3);
    EXPECT_EQ(text_of(field), u"2");
    press(32);
    EXPECT_EQ(text_of(field), u"");
}

TEST_F(TextFieldFocusTest, second_unset_gives_nothing_back) {
    ux_text_field *field = make();
    set_all_handlers(page, first_of_host);
    field->obj.set_focus(&field->obj);
    field->obj.unset_focus(&field->obj);
    set_all_handlers(page, second_of_host);
    field->obj.unset_focus(&field->obj);
    expect_all(page, second_of_host);
}

TEST_F(TextFieldFocusTest, fields_that_hand_over_in_order_leave_the_hosts_handlers) {
    ux_text_field *a = make();
    ux_text_field *b = make();
    set_all_handlers(page, first_of_host);
    a->obj.set_focus(&a->obj);
    a->obj.unset_focus(&a->obj);
    b->obj.set_focus(&b->obj);
    EXPECT_EQ(page->focus, &b->obj);
    b->obj.unset_focus(&b->obj);
    expect_all(page, first_of_host);
}

// There is one table: the second field keeps what the first one installed.
TEST_F(TextFieldFocusTest, two_fields_focused_one_after_the_other_lose_the_hosts_handlers) {
    ux_text_field *a = make();
    ux_text_field *b = make();
    set_all_handlers(page, first_of_host);
    a->obj.set_focus(&a->obj);
    b->obj.set_focus(&b->obj);
    b->obj.unset_focus(&b->obj);
    expect_captured(page, first_of_host);
    a->obj.unset_focus(&a->obj);
    expect_captured(page, first_of_host);
}

TEST_F(TextFieldFocusTest, handlers_are_given_back_to_the_page_of_the_field_that_is_unset) {
    ux_page *second = new_page();
    ux_text_field *a = make();
    ux_text_field *b = ux_text_field_new(&second->container, 0, 0, 4, 4, nullptr);
    set_all_handlers(page, first_of_host);
    a->obj.set_focus(&a->obj);
    b->obj.unset_focus(&b->obj);
    for (int key = 0; key < 256; key++)
        EXPECT_EQ(second->key_handlers[key], fields_handler(key) ? first_of_host : nullptr) << key;
    expect_captured(page, first_of_host);
}

TEST_F(TextFieldFocusTest, fields_of_two_pages_share_the_keypad) {
    ux_page *second = new_page();
    ux_text_field *a = focused();
    ux_text_field *b = ux_text_field_new(&second->container, 0, 0, 4, 4, nullptr);
    ux_text_field_set_type(b, 1);
    b->obj.set_focus(&b->obj);
    EXPECT_EQ(second->focus, &b->obj);
    press_all({3, 3});
    EXPECT_EQ(text_of(a), u"2") << "the letters of the numeric field are on the keys";
}

TEST_F(TextFieldFocusTest, focus_finishes_the_key_in_progress_and_ends_capitals) {
    ux_text_field *field = focused();
    press_all({34, 3, 3});
    EXPECT_EQ(text_of(field), u"A");
    field->obj.set_focus(&field->obj);
    press_all({3, 3});
    EXPECT_EQ(text_of(field), u"Aa");
}

TEST_F(TextFieldFocusTest, lost_focus_leaves_the_key_in_progress_and_capitals) {
    ux_text_field *field = focused();
    press_all({34, 3});
    field->obj.unset_focus(&field->obj);
    press(3);
    EXPECT_EQ(text_of(field), u"A");
}

TEST_F(TextFieldFocusTest, field_without_a_page_changes_its_bits_and_the_keypad_only) {
    ux_text_field *shown = focused();
    ux_text_field *loose = ux_text_field_new(nullptr, 0, 0, 4, 4, nullptr);
    set_all_handlers(page, second_of_host);
    for (int page_id : {-1, 1, 32, -32, 1 << 30}) {
        loose->obj.page_id = page_id;
        ux_text_field_set_type(loose, 1);
        EXPECT_EQ(loose->obj.set_focus(&loose->obj), 0);
        EXPECT_EQ(loose->obj.status, 1u);
        EXPECT_EQ(loose->obj.unset_focus(&loose->obj), 0);
        EXPECT_EQ(loose->obj.status, 0u);
        expect_all(page, second_of_host);
    }
    ux_event event = {};
    event.value = 3;
    event.obj = &shown->obj;
    ux_text_field_add_char(&event);
    ux_text_field_add_char(&event);
    EXPECT_EQ(text_of(shown), u"2") << "digits only";
    ux_obj_free(&loose->obj);
}

TEST_F(TextFieldFocusTest, selection_sets_its_bit_only) {
    ux_text_field *field = make(u"a");
    field->obj.show(&field->obj);
    expect_only(
        field, [&] { return ux_text_field_set_select(&field->obj); },
        [](ux_text_field &r) { r.obj.status = 6; });
    expect_only(
        field, [&] { return ux_text_field_unset_select(&field->obj); },
        [](ux_text_field &r) { r.obj.status = 4; });
}

TEST_F(TextFieldFocusTest, deleted_field_leaves_handlers_that_do_nothing) {
    ux_text_field *field = focused();
    press(3);
    ux_container_del_obj(root(), &field->obj, 0, 0);
    EXPECT_EQ(page->focus, nullptr);
    for (int key : {3, 32, 34})
        EXPECT_EQ(press(key), 0);
    pass(k_second_us);
    EXPECT_EQ(pending_timeouts(), 0);
}
