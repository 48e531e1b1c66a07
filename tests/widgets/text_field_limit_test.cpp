// SPDX-License-Identifier: MIT
// The text field: how many characters it takes, what happens at the limit and at the end of the
// record, and what stands behind the end of the text.

#include "tests/widgets/text_field_test.h"

#include <climits>

namespace {

class TextFieldLimitTest : public TextFieldTest {
  protected:
    ux_text_field *limited(int limit, const char16_t *text = nullptr) {
        ux_text_field *field = focused(text);
        ux_text_field_set_limit(field, limit);
        return field;
    }

    // Fills the record's text with one unit, without an end.
    static void fill(ux_text_field *field, char16_t unit) {
        std::fill(std::begin(field->text), std::end(field->text), unit);
    }

    static std::u16string ones(size_t count) { return std::u16string(count, u'1'); }
};

constexpr int k_one = 2; // key codes
constexpr int k_two = 3;
constexpr int k_three = 4;
constexpr int k_delete = 32;
constexpr int k_shift = 34;

} // namespace

TEST_F(TextFieldLimitTest, limit_starts_at_256_which_cannot_be_set_again) {
    ux_text_field *field = make();
    EXPECT_EQ(field->limit, 256);
    const std::pair<int, int> limits[] = {{256, 255}, {300, 255}, {255, 255},        {INT_MAX, 255},
                                          {254, 254}, {0, 0},     {-1, -1},          {-300, -300},
                                          {4, 4},     {1, 1},     {INT_MIN, INT_MIN}};
    for (const auto &[given, stored] : limits) {
        EXPECT_EQ(ux_text_field_set_limit(field, given), 0);
        EXPECT_EQ(field->limit, stored);
    }
}

TEST_F(TextFieldLimitTest, even_limit_takes_one_character_more_and_does_not_paint_the_last_two) {
    ux_text_field *field = limited(4);
    press_slowly({k_one, k_one, k_one});
    EXPECT_EQ(take_paints(), 3);
    press_slowly({k_one});
    EXPECT_EQ(text_of(field), u"1111");
    press_slowly({k_one});
    EXPECT_EQ(text_of(field), u"11111");
    EXPECT_EQ(take_paints(), 0);
    press_slowly({k_one, k_two, k_three});
    EXPECT_EQ(text_of(field), u"11111");
    EXPECT_EQ(take_paints(), 0);
}

TEST_F(TextFieldLimitTest, characters_at_the_limit_are_painted_by_the_next_show) {
    ux_text_field *field = limited(2);
    press_slowly({k_one, k_one, k_one});
    take_glyphs();
    field->obj.show(&field->obj);
    EXPECT_EQ(take_glyphs(), (std::vector<int>{'1', '1', '1'}));
}

TEST_F(TextFieldLimitTest, odd_limit_cuts_the_text_when_it_is_reached) {
    ux_text_field *field = limited(3);
    press_slowly({k_one, k_two});
    EXPECT_EQ(take_paints(), 2);
    press_slowly({k_three});
    EXPECT_EQ(text_of(field), u"12") << "(3 + 1) / 2 characters are left";
    EXPECT_EQ(take_paints(), 0);
    press_slowly({k_three, k_three});
    EXPECT_EQ(text_of(field), u"12");
    EXPECT_EQ(take_paints(), 0);
}

TEST_F(TextFieldLimitTest, odd_limit_of_7_cuts_to_4_characters) {
    ux_text_field *field = limited(7, u"abcdef");
    press(k_one);
    EXPECT_EQ(units_of(field, 8), std::u16string(u"abcd\0f1\0", 8)) << "one unit is cleared only";
}

TEST_F(TextFieldLimitTest, limit_of_1_keeps_one_character_unpainted) {
    ux_text_field *field = limited(1);
    press_slowly({k_one});
    EXPECT_EQ(text_of(field), u"1") << "(1 + 1) / 2: byte 2 is the one behind it";
    EXPECT_EQ(take_paints(), 0);
    press_slowly({k_two});
    EXPECT_EQ(text_of(field), u"1") << "the second one is cut off again";
    press_slowly({k_two});
    EXPECT_EQ(text_of(field), u"1");
    EXPECT_EQ(take_paints(), 0);
}

TEST_F(TextFieldLimitTest, limit_of_0_keeps_one_character_unpainted) {
    ux_text_field *field = limited(0);
    press_slowly({k_one});
    EXPECT_EQ(text_of(field), u"1");
    press_slowly({k_one, k_two});
    EXPECT_EQ(text_of(field), u"1");
    EXPECT_EQ(take_paints(), 0);
}

TEST_F(TextFieldLimitTest, negative_limit_refuses_every_key) {
    for (int limit : {-1, -4, INT_MIN}) {
        ux_text_field *field = limited(limit);
        press_slowly({k_one, k_two});
        EXPECT_EQ(text_of(field), u"") << limit;
    }
    EXPECT_EQ(take_paints(), 0);
    EXPECT_EQ(pending_timeouts(), 0);
}

TEST_F(TextFieldLimitTest, refused_key_changes_nothing_of_the_key_in_progress) {
    ux_text_field *field = limited(2);
    press_slowly({k_one, k_one, k_one});
    press(k_three);
    ux_text_field_set_limit(field, 10);
    press(k_three);
    EXPECT_EQ(text_of(field), u"1113") << "the refused press did not count";
}

// At the limit the last character can be replaced, beyond it no more.
TEST_F(TextFieldLimitTest, key_in_progress_goes_on_at_the_limit_unpainted) {
    ux_text_field *field = limited(2, u"1");
    press_all({k_two, k_two});
    EXPECT_EQ(text_of(field), u"1a");
    EXPECT_EQ(take_paints(), 0);
    press_all({k_three, k_three});
    EXPECT_EQ(text_of(field), u"1a3") << "the second press was refused";
}

TEST_F(TextFieldLimitTest, key_after_an_odd_cut_replaces_the_character_before) {
    ux_text_field *field = limited(3, u"12");
    press(k_two);
    EXPECT_EQ(text_of(field), u"12");
    press(k_two);
    EXPECT_EQ(text_of(field), u"1a") << "two characters are left, the second one is replaced";
    EXPECT_EQ(take_paints(), 1);
}

TEST_F(TextFieldLimitTest, capital_that_shortens_the_text_below_the_limit_paints) {
    ux_text_field *field = limited(2, u"1");
    press(k_shift);
    press_all({k_two, k_two, k_two, k_two}); // 2, A, B, C
    EXPECT_EQ(text_of(field), u"1C");
    EXPECT_EQ(take_paints(), 0);
    press(k_two);
    EXPECT_EQ(text_of(field), u"1");
    EXPECT_EQ(take_paints(), 1);
}

TEST_F(TextFieldLimitTest, limit_set_below_the_length_refuses_keys_and_not_delete) {
    ux_text_field *field = limited(2, u"12345");
    press_slowly({k_one});
    EXPECT_EQ(text_of(field), u"12345");
    press_all({k_delete, k_delete, k_delete, k_delete});
    EXPECT_EQ(text_of(field), u"1");
    EXPECT_EQ(take_paints(), 4);
}

TEST_F(TextFieldLimitTest, limits_that_a_host_writes_into_the_record_count_as_they_are) {
    ux_text_field *field = limited(0, u"12");
    for (int limit : {256, 257, 1000, INT_MAX}) {
        field->limit = limit;
        press_slowly({k_one});
        EXPECT_EQ(take_paints(), 1) << limit;
    }
    EXPECT_EQ(text_of(field), u"121111");
}

// Behind the end of the text.

TEST_F(TextFieldLimitTest, stale_units_count_again_when_the_text_grows_over_its_end) {
    ux_text_field *field = focused(u"abcdef");
    field->text[2] = u'\0';
    press(k_one);
    EXPECT_EQ(text_of(field), u"ab1def");
    press_slowly({k_two});
    EXPECT_EQ(text_of(field), u"ab1def2");
}

TEST_F(TextFieldLimitTest, null_text_leaves_units_that_come_back) {
    ux_text_field *field = focused(u"abcdef");
    ux_text_field_set_text(field, nullptr);
    EXPECT_EQ(units_of(field, 6), std::u16string(u"\0\0cdef", 6));
    press_slowly({k_one});
    EXPECT_EQ(text_of(field), u"1");
    press_slowly({k_one});
    EXPECT_EQ(text_of(field), u"11cdef");
}

TEST_F(TextFieldLimitTest, new_text_leaves_nothing_of_the_old_one) {
    ux_text_field *field = focused(u"abcdef");
    ux_text_field_set_text(field, u"x");
    press_slowly({k_one, k_two});
    EXPECT_EQ(text_of(field), u"x12");
}

TEST_F(TextFieldLimitTest, stale_units_bring_the_text_to_its_limit) {
    ux_text_field *field = limited(6, u"abcdef");
    field->text[2] = u'\0';
    press(k_one);
    EXPECT_EQ(text_of(field), u"ab1def");
    EXPECT_EQ(take_paints(), 0) << "six characters, as many as the limit";
}

// At the end of the record.

TEST_F(TextFieldLimitTest, record_takes_128_characters_and_then_nothing) {
    ux_text_field *field = focused();
    ux_text_field_set_text(field, ones(126).c_str());
    press_slowly({k_two});
    EXPECT_EQ(text_of(field), ones(126) + u'2');
    press_slowly({k_three});
    EXPECT_EQ(units_of(field, 128), ones(126) + u"23") << "the last unit is no zero unit any more";
    EXPECT_EQ(take_paints(), 2);
    EXPECT_EQ(field->mask_char, '*');
    press_slowly({k_one, k_two, k_three});
    EXPECT_EQ(units_of(field, 128), ones(126) + u"23");
    EXPECT_EQ(field->mask_char, '*');
    EXPECT_EQ(take_paints(), 0);
}

TEST_F(TextFieldLimitTest, text_without_an_end_takes_no_key_and_no_delete) {
    ux_text_field *field = focused();
    fill(field, u'x');
    press_all({k_one, k_two, k_two, k_delete});
    EXPECT_EQ(units_of(field, 128), std::u16string(128, u'x'));
    EXPECT_EQ(take_calls(), calls{});
    EXPECT_EQ(pending_timeouts(), 0);
}

TEST_F(TextFieldLimitTest, text_of_127_characters_loses_its_last_one) {
    ux_text_field *field = focused();
    ux_text_field_set_text(field, ones(127).c_str());
    press(k_delete);
    EXPECT_EQ(text_of(field), ones(126));
}

// No end is found behind the new character: its place counts, which is 127.
TEST_F(TextFieldLimitTest, character_in_the_last_unit_counts_as_the_place_it_was_written_to) {
    ux_text_field *field = limited(128, ones(127).c_str());
    press(k_two);
    EXPECT_EQ(units_of(field, 128), ones(127) + u'2');
    EXPECT_EQ(take_paints(), 1);
    ux_text_field *other = limited(127, ones(127).c_str());
    press(k_two);
    EXPECT_EQ(take_paints(), 0);
    EXPECT_EQ(text_of(other), ones(64)) << "byte 128 is the low byte of unit 64";
    EXPECT_EQ(other->text[127], u'2');
}

TEST_F(TextFieldLimitTest, every_limit_keeps_the_keys_inside_the_text) {
    for (int limit = -2; limit <= 256; limit++) {
        ux_text_field *field = focused();
        field->limit = limit;
        for (int i = 0; i < 140; i++)
            press(i % 2 ? k_one : k_three);
        EXPECT_EQ(field->mask_char, '*') << limit;
        EXPECT_EQ(field->limit, limit);
        int expected = limit % 2 == 0 ? limit + 1 : (limit + 1) / 2;
        if (limit < 0)
            expected = 0;
        else if (limit > 127)
            expected = 128;
        EXPECT_EQ(text_of(field).size(), static_cast<size_t>(expected)) << limit;
        ux_container_del_obj(root(), &field->obj, 0, 0);
    }
}
