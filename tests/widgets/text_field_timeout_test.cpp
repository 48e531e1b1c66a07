// SPDX-License-Identifier: MIT
// The text field: the one timeout that ends a key in progress, and its identifiers.

#include "tests/widgets/text_field_test.h"

namespace {

int s_fired;

int count(ux_event *) {
    s_fired++;
    return 0;
}

class TextFieldTimeoutTest : public TextFieldTest {
  protected:
    void SetUp() override {
        TextFieldTest::SetUp();
        s_fired = 0;
    }

    // A timeout of the host's, far away, with any identifier.
    static void set_timeout_with_id(int id) {
        ux_set_timeout(100 * k_second_us, count, nullptr);
        ux_timeout_list->id = id;
    }

    static bool is_pending(int id) {
        for (const ux_timeout *timer = ux_timeout_list; timer; timer = timer->next)
            if (timer->id == id)
                return true;
        return false;
    }
};

} // namespace

TEST_F(TextFieldTimeoutTest, key_sets_one_timeout_of_a_second) {
    focused();
    hooks::get().now = {500, 250000};
    press(3);
    ASSERT_EQ(pending_timeouts(), 1);
    EXPECT_EQ(ux_timeout_list->delay, 1000000);
    EXPECT_EQ(ux_timeout_list->callback, ux_text_field_waitkeytimeout);
    EXPECT_EQ(ux_timeout_list->data, nullptr);
    EXPECT_EQ(ux_timeout_list->due_sec, 501);
    EXPECT_EQ(ux_timeout_list->due_usec, 250000);
    EXPECT_EQ(ux_timeout_list->id, 1);
}

TEST_F(TextFieldTimeoutTest, next_key_replaces_the_timeout) {
    focused();
    press(3);
    press(4);
    ASSERT_EQ(pending_timeouts(), 1);
    EXPECT_EQ(ux_timeout_list->id, 2);
}

TEST_F(TextFieldTimeoutTest, no_timeout_is_deleted_as_identifier_minus_1) {
    focused();
    set_timeout_with_id(-1);
    press(3);
    EXPECT_FALSE(is_pending(-1));
    set_timeout_with_id(-1);
    press(4);
    EXPECT_TRUE(is_pending(-1)) << "now there was one to delete";
}

TEST_F(TextFieldTimeoutTest, numeric_key_deletes_identifier_minus_1_every_time) {
    ux_text_field *field = make();
    ux_text_field_set_type(field, 1);
    field->obj.set_focus(&field->obj);
    for (int i = 0; i < 2; i++) {
        set_timeout_with_id(-1);
        press(3);
        EXPECT_FALSE(is_pending(-1));
    }
}

TEST_F(TextFieldTimeoutTest, identifier_0_is_never_deleted_and_fires_in_the_middle_of_a_key) {
    ux_timeout_count = 0;
    ux_text_field *field = focused();
    press(3); // identifier 0, due after 1 s
    pass(600000);
    press(3);
    EXPECT_TRUE(is_pending(0));
    EXPECT_EQ(pending_timeouts(), 2);
    pass(400000);
    EXPECT_FALSE(is_pending(0));
    press(3);
    EXPECT_EQ(text_of(field), u"a2") << "it ended the key that was in progress";
}

TEST_F(TextFieldTimeoutTest, timeout_left_behind_by_identifier_0_makes_the_identifier_unknown) {
    ux_timeout_count = 0;
    ux_text_field *field = focused();
    press(3); // 0, due at 1.0 s
    pass(600000);
    press(3); // 1, due at 1.6 s
    pass(400000);
    press(4); // 2, due at 2.0 s; -1 was deleted instead of 1
    EXPECT_TRUE(is_pending(1));
    pass(600000);
    press(4);
    EXPECT_EQ(text_of(field), u"a33") << "timeout 1 ended the key";
}

TEST_F(TextFieldTimeoutTest, timeout_finishes_the_character_and_forgets_the_identifier) {
    focused();
    press(3);
    EXPECT_EQ(ux_text_field_waitkeytimeout(nullptr), 0);
    set_timeout_with_id(-1);
    press(3);
    EXPECT_FALSE(is_pending(-1));
    EXPECT_TRUE(is_pending(1)) << "the one that was running is not known any more";
}

TEST_F(TextFieldTimeoutTest, delete_removes_the_timeout_and_keeps_its_identifier) {
    focused();
    press_all({3, 4}); // identifier 2
    press(32);
    EXPECT_EQ(pending_timeouts(), 0);
    set_timeout_with_id(2);
    press(32);
    EXPECT_FALSE(is_pending(2)) << "deleted a second time";
}

TEST_F(TextFieldTimeoutTest, delete_without_a_timeout_deletes_identifier_minus_1) {
    focused(u"a");
    set_timeout_with_id(-1);
    press(32);
    EXPECT_FALSE(is_pending(-1));
}

TEST_F(TextFieldTimeoutTest, delete_leaves_identifier_0) {
    ux_timeout_count = 0;
    focused();
    press(3);
    press(32);
    EXPECT_TRUE(is_pending(0));
}

TEST_F(TextFieldTimeoutTest, delete_of_an_empty_field_leaves_the_timeout) {
    ux_text_field *field = focused();
    press(3);
    ux_text_field_set_text(field, nullptr);
    press(32);
    EXPECT_EQ(pending_timeouts(), 1);
}

TEST_F(TextFieldTimeoutTest, focus_leaves_the_timeout_which_then_ends_another_fields_key) {
    ux_text_field *first = focused();
    press(3);
    pass(600000);
    ux_text_field *second = make();
    first->obj.unset_focus(&first->obj);
    second->obj.set_focus(&second->obj);
    EXPECT_EQ(pending_timeouts(), 1);
    pass(300000);
    press(3);
    EXPECT_EQ(pending_timeouts(), 1) << "its first key deletes the timeout";
    pass(100000);
    press(3);
    EXPECT_EQ(text_of(second), u"a");
}

TEST_F(TextFieldTimeoutTest, without_memory_for_a_timeout_the_character_stays_in_progress) {
    ux_text_field *field = focused();
    testing::internal::CaptureStderr();
    hooks::fail_allocation(1);
    press(3);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Error: [0] Not enough memory space for timeout!\n\n");
    EXPECT_EQ(text_of(field), u"2");
    EXPECT_EQ(take_paints(), 1);
    pass(5 * k_second_us);
    set_timeout_with_id(-2);
    press(3);
    EXPECT_EQ(text_of(field), u"a");
    EXPECT_FALSE(is_pending(-2)) << "the result of the attempt is the identifier";
}

TEST_F(TextFieldTimeoutTest, key_of_the_host_between_two_presses_does_not_end_the_key) {
    ux_text_field *field = focused();
    press(3);
    press(19);
    press(3);
    EXPECT_EQ(text_of(field), u"a");
}
