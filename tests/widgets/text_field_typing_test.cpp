// SPDX-License-Identifier: MIT
// The text field: what keys, pauses, capitals and the delete key make of the text.

#include "tests/widgets/text_field_test.h"

namespace {

using TextFieldTypingTest = TextFieldTest;

constexpr int k_no_handler = -77; // of press()

} // namespace

TEST_F(TextFieldTypingTest, key_pressed_again_within_a_second_goes_through_its_letters_in_place) {
    ux_text_field *field = focused();
    const char16_t *steps[] = {u"2", u"a", u"b", u"c", u"A", u"B", u"C", u"2"};
    for (const char16_t *step : steps) {
        EXPECT_EQ(press(3), 0);
        EXPECT_EQ(text_of(field), step);
        pass(k_second_us - 1);
    }
}

TEST_F(TextFieldTypingTest, key_pressed_after_a_second_types_a_new_character) {
    ux_text_field *field = focused();
    press(3);
    pass(k_second_us);
    press(3);
    EXPECT_EQ(text_of(field), u"22");
}

TEST_F(TextFieldTypingTest, each_press_starts_the_second_anew) {
    ux_text_field *field = focused();
    press(3);
    pass(900000);
    press(3);
    pass(900000);
    press(3);
    EXPECT_EQ(text_of(field), u"b");
    EXPECT_EQ(pending_timeouts(), 1);
    pass(k_second_us);
    EXPECT_EQ(pending_timeouts(), 0);
}

TEST_F(TextFieldTypingTest, another_key_types_a_new_character_at_once) {
    ux_text_field *field = focused();
    press_all({3, 4});
    EXPECT_EQ(text_of(field), u"23");
    press_all({4, 4, 3});
    EXPECT_EQ(text_of(field), u"2e2");
}

TEST_F(TextFieldTypingTest, text_is_typed_behind_the_one_that_was_set) {
    ux_text_field *field = focused(u"ab");
    press_all({3, 3});
    EXPECT_EQ(text_of(field), u"aba");
}

TEST_F(TextFieldTypingTest, numeric_field_takes_every_press_for_a_character) {
    ux_text_field *field = make();
    ux_text_field_set_type(field, 1);
    field->obj.set_focus(&field->obj);
    press_all({3, 3, 3, 35, 35});
    EXPECT_EQ(text_of(field), u"222..");
    EXPECT_EQ(pending_timeouts(), 0);
}

TEST_F(TextFieldTypingTest, any_other_input_type_is_alphanumeric) {
    for (int type : {0, 2, -1}) {
        ux_text_field *field = make();
        ux_text_field_set_type(field, type);
        field->obj.set_focus(&field->obj);
        press_all({3, 3});
        EXPECT_EQ(text_of(field), u"a") << type;
    }
}

TEST_F(TextFieldTypingTest, new_type_changes_the_sequence_at_once_and_the_letters_with_the_focus) {
    ux_text_field *field = focused();
    press(3);
    ux_text_field_set_type(field, 1);
    press(3);
    EXPECT_EQ(text_of(field), u"a") << "the table is the old one";
    press(3);
    EXPECT_EQ(text_of(field), u"a2") << "every press is a character of its own";
    field->obj.set_focus(&field->obj);
    ux_text_field_set_type(field, 0);
    press_all({3, 3});
    EXPECT_EQ(text_of(field), u"a22")
        << "the table has digits only: the second press gives 2 again";
}

TEST_F(TextFieldTypingTest, key_types_once_per_press_and_paints_each_time) {
    focused();
    press_all({3, 3, 4, 1});
    EXPECT_EQ(take_paints(), 4);
}

TEST_F(TextFieldTypingTest, typing_makes_a_hidden_field_visible) {
    ux_text_field *field = make();
    field->obj.set_focus(&field->obj);
    EXPECT_EQ(field->obj.status, 1u);
    press(2);
    EXPECT_EQ(field->obj.status, 5u);
    EXPECT_EQ(take_paints(), 1);
}

TEST_F(TextFieldTypingTest, unknown_keys_type_nothing) {
    ux_text_field *field = focused(u"a");
    for (int key : {0, 11, 19, 31, 33, 36, 255, 256, -1, -255, 1 << 30}) {
        ux_event event = {};
        event.value = key;
        event.obj = &field->obj;
        EXPECT_EQ(ux_text_field_add_char(&event), 0);
    }
    EXPECT_EQ(text_of(field), u"a");
    EXPECT_EQ(take_paints(), 0);
    EXPECT_EQ(pending_timeouts(), 0);
}

TEST_F(TextFieldTypingTest, keys_for_other_objects_or_none_are_ignored) {
    focused();
    ux_text_button *button = ux_text_button_new(root(), 0, 0, 4, 4, u"a");
    for (ux_obj *obj : {&button->obj, static_cast<ux_obj *>(nullptr)}) {
        page->focus = obj;
        for (int key : {3, 32, 34})
            EXPECT_EQ(press(key), 0);
    }
    EXPECT_EQ(std::u16string(button->text), u"a");
    EXPECT_EQ(take_paints(), 0);
    EXPECT_EQ(pending_timeouts(), 0);
}

TEST_F(TextFieldTypingTest, keys_without_a_field_in_focus_have_no_handler) {
    make();
    for (int key : {1, 3, 32, 34, 35})
        EXPECT_EQ(press(key), k_no_handler);
}

// Capitals.

TEST_F(TextFieldTypingTest, shift_switches_capitals_on_and_off) {
    ux_text_field *field = focused();
    press(34);
    press_all({3, 3});
    EXPECT_EQ(text_of(field), u"A");
    press(34);
    press_all({4, 4});
    EXPECT_EQ(text_of(field), u"Ad");
}

TEST_F(TextFieldTypingTest, shift_paints_nothing) {
    focused(u"a");
    EXPECT_EQ(press(34), 0);
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(TextFieldTypingTest, capitals_of_key_8_end_in_presses_that_type_nothing) {
    ux_text_field *field = focused();
    press(34);
    const char16_t *steps[] = {u"7", u"P", u"Q", u"R", u"S", u"", u"", u"", u"", u"7", u"P"};
    for (const char16_t *step : steps) {
        press(8);
        EXPECT_EQ(text_of(field), step);
    }
}

TEST_F(TextFieldTypingTest, presses_without_a_capital_eat_the_characters_before) {
    ux_text_field *field = focused(u"xyz");
    press(34);
    press_all({3, 3, 3, 3});
    EXPECT_EQ(text_of(field), u"xyzC");
    press(3);
    EXPECT_EQ(text_of(field), u"xyz") << "the character itself";
    press(3);
    EXPECT_EQ(text_of(field), u"xy");
    press(3);
    EXPECT_EQ(text_of(field), u"x");
    press(3);
    EXPECT_EQ(text_of(field), u"2") << "the cycle begins again, in the place of the last one left";
}

TEST_F(TextFieldTypingTest, character_0_at_the_start_of_the_text_stays_there) {
    ux_text_field *field = focused();
    press(34);
    press_all({3, 3, 3, 3, 3, 3, 3});
    EXPECT_EQ(text_of(field), u"");
    press(3);
    EXPECT_EQ(text_of(field), u"2");
}

TEST_F(TextFieldTypingTest, key_in_progress_survives_shift) {
    ux_text_field *field = focused();
    press_all({3, 3, 34, 3});
    EXPECT_EQ(text_of(field), u"B");
}

// Delete.

TEST_F(TextFieldTypingTest, delete_takes_the_last_character_and_paints) {
    ux_text_field *field = focused(u"abc");
    EXPECT_EQ(press(32), 0);
    EXPECT_EQ(text_of(field), u"ab");
    EXPECT_EQ(take_paints(), 1);
    press_all({32, 32});
    EXPECT_EQ(text_of(field), u"");
    EXPECT_EQ(take_paints(), 2);
}

TEST_F(TextFieldTypingTest, delete_of_an_empty_field_does_nothing) {
    ux_text_field *field = focused();
    EXPECT_EQ(press(32), 0);
    press_all({3, 32});
    take_calls();
    EXPECT_EQ(press(32), 0);
    EXPECT_EQ(text_of(field), u"");
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(TextFieldTypingTest, delete_of_an_empty_field_leaves_the_key_in_progress) {
    ux_text_field *field = focused();
    press(3);
    ux_text_field_set_text(field, u"");
    press(32);
    press(3);
    EXPECT_EQ(text_of(field), u"a");
}

TEST_F(TextFieldTypingTest, delete_takes_a_wide_character_whole) {
    ux_text_field *field = focused(u"a\u4100");
    press(32);
    EXPECT_EQ(text_of(field), u"a");
}

TEST_F(TextFieldTypingTest, key_after_delete_types_a_new_character) {
    ux_text_field *field = focused(u"ab");
    press(3);
    press(32);
    press(3);
    EXPECT_EQ(text_of(field), u"ab2");
    press(3);
    EXPECT_EQ(text_of(field), u"aba");
}

TEST_F(TextFieldTypingTest, delete_makes_a_hidden_field_visible) {
    ux_text_field *field = make(u"a");
    field->obj.set_focus(&field->obj);
    press(32);
    EXPECT_EQ(field->obj.status, 5u);
}

TEST_F(TextFieldTypingTest, delete_on_another_page_changes_the_text_and_paints_nothing) {
    ux_text_field *field = make(u"ab");
    field->obj.set_focus(&field->obj);
    main_screen.current_page = 1;
    press(32);
    press(3);
    EXPECT_EQ(text_of(field), u"a2");
    EXPECT_EQ(take_calls(), calls{});
}
