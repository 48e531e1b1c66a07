// SPDX-License-Identifier: MIT
// Taking over a page's key handlers and giving them back.

#include "widgets/key_capture.h"

#include "tests/support/screen_test.h"

namespace {

int first_of_host(ux_event *) {
    return 1;
}

int second_of_host(ux_event *) {
    return 2;
}

int of_widget(ux_event *) {
    return 3;
}

int of_other_widget(ux_event *) {
    return 4;
}

class KeyCaptureTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        page = new_page();
        ux_page_set_key_handler(page, 21, first_of_host);
        ux_page_set_key_handler(page, 22, second_of_host);
    }

    ux_page *page = nullptr;
    ux::key_capture keys = {};
};

} // namespace

TEST_F(KeyCaptureTest, captured_keys_go_to_the_widget_and_come_back) {
    keys.capture(page, 21, of_widget);
    keys.capture(page, 22, of_other_widget);
    EXPECT_EQ(page->key_handlers[21], of_widget);
    EXPECT_EQ(page->key_handlers[22], of_other_widget);
    keys.restore(page);
    EXPECT_EQ(page->key_handlers[21], first_of_host);
    EXPECT_EQ(page->key_handlers[22], second_of_host);
}

TEST_F(KeyCaptureTest, first_and_last_code_are_kept_too) {
    for (int key : {0, 255}) {
        ux_page_set_key_handler(page, key, first_of_host);
        keys.capture(page, key, of_widget);
    }
    keys.restore(page);
    EXPECT_EQ(page->key_handlers[0], first_of_host);
    EXPECT_EQ(page->key_handlers[255], first_of_host);
}

TEST_F(KeyCaptureTest, key_that_had_no_handler_keeps_the_widgets) {
    keys.capture(page, 32, of_widget);
    keys.restore(page);
    EXPECT_EQ(page->key_handlers[32], of_widget);
}

TEST_F(KeyCaptureTest, keys_not_captured_are_not_touched_by_restoring) {
    keys.capture(page, 21, of_widget);
    ux_page_set_key_handler(page, 22, first_of_host);
    keys.restore(page);
    EXPECT_EQ(page->key_handlers[22], first_of_host);
}

TEST_F(KeyCaptureTest, restoring_a_second_time_changes_nothing) {
    keys.capture(page, 21, of_widget);
    keys.restore(page);
    ux_page_set_key_handler(page, 21, second_of_host);
    keys.restore(page);
    EXPECT_EQ(page->key_handlers[21], second_of_host);
}

TEST_F(KeyCaptureTest, second_capture_replaces_what_the_first_kept) {
    keys.capture(page, 21, of_widget);
    keys.capture(page, 21, of_other_widget);
    keys.restore(page);
    EXPECT_EQ(page->key_handlers[21], of_widget);
    keys.restore(page);
    EXPECT_EQ(page->key_handlers[21], of_widget);
}

TEST_F(KeyCaptureTest, no_page_captures_nothing_and_keeps_what_is_captured) {
    keys.capture(nullptr, 21, of_widget);
    EXPECT_EQ(keys.saved[21], nullptr);
    keys.capture(page, 22, of_widget);
    keys.restore(nullptr);
    keys.restore(page);
    EXPECT_EQ(page->key_handlers[22], second_of_host);
}
