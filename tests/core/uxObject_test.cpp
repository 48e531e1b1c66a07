// SPDX-License-Identifier: MIT
// The header's operations that paint nothing: bits, colours, handler, size, release, repaint.

#include "tests/support/screen_test.h"

#include <cstddef>

namespace {

// Which slots were called, in order.
struct call_log {
    std::string calls;
    int result = 0;
};

call_log s_log;

int log_show(ux_obj *) {
    s_log.calls += "show ";
    return s_log.result;
}

int log_hide(ux_obj *) {
    s_log.calls += "hide ";
    return s_log.result;
}

int log_set_focus(ux_obj *) {
    s_log.calls += "set_focus ";
    return s_log.result;
}

int log_unset_focus(ux_obj *) {
    s_log.calls += "unset_focus ";
    return s_log.result;
}

int ignore_event(ux_event *) {
    return 0;
}

class ObjectTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        s_log = {};
    }

    // Expects the eight border colours in the order of the record.
    void expect_colors(uint32_t top, uint32_t top_focus, uint32_t bottom, uint32_t bottom_focus,
                       uint32_t left, uint32_t left_focus, uint32_t right, uint32_t right_focus) {
        EXPECT_EQ(obj.top_color, top);
        EXPECT_EQ(obj.top_focus_color, top_focus);
        EXPECT_EQ(obj.bottom_color, bottom);
        EXPECT_EQ(obj.bottom_focus_color, bottom_focus);
        EXPECT_EQ(obj.left_color, left);
        EXPECT_EQ(obj.left_focus_color, left_focus);
        EXPECT_EQ(obj.right_color, right);
        EXPECT_EQ(obj.right_focus_color, right_focus);
    }

    ux_obj obj = {};
};

} // namespace

TEST_F(ObjectTest, every_record_begins_with_the_header) {
    EXPECT_EQ(offsetof(ux_container, obj), 0u);
    EXPECT_EQ(offsetof(ux_page, container), 0u);
    EXPECT_EQ(offsetof(ux_text_label, obj), 0u);
    EXPECT_EQ(offsetof(ux_text_button, obj), 0u);
    ux_page page = {};
    EXPECT_EQ(static_cast<void *>(&page.container.obj), static_cast<void *>(&page));
}

TEST_F(ObjectTest, noop_changes_nothing) {
    obj.status = UX_ST_VISIBLE | UX_ST_FOCUSED;
    obj.flags = 0x50;
    const ux_obj before = obj;
    EXPECT_EQ(ux_obj_noop(&obj), 0);
    EXPECT_EQ(memcmp(&obj, &before, sizeof obj), 0);
    EXPECT_EQ(ux_obj_noop(nullptr), 0);
}

TEST_F(ObjectTest, hide_clears_the_visible_bit_only_and_paints_nothing) {
    obj.width = obj.height = 4;
    obj.status = 0xFFFFFFFF;
    fill_buf(0x55555555);
    EXPECT_EQ(ux_obj_hide(&obj), 0);
    EXPECT_EQ(obj.status, 0xFFFFFFFBu);
    EXPECT_EQ(buf_pixel(0, 0), 0x55555555u);
}

TEST_F(ObjectTest, set_and_unset_focus_return_what_the_slot_returns) {
    obj.set_focus = log_set_focus;
    obj.unset_focus = log_unset_focus;
    s_log.result = -77;
    EXPECT_EQ(ux_obj_set_focus(&obj), -77);
    EXPECT_EQ(ux_obj_unset_focus(&obj), -77);
    EXPECT_EQ(s_log.calls, "set_focus unset_focus ");
    EXPECT_EQ(obj.status, 0u);
}

TEST_F(ObjectTest, flags_are_set_and_cleared_bit_by_bit) {
    obj.flags = 0x01;
    EXPECT_EQ(ux_obj_set_flag(&obj, UX_FLAG_SAVE_BG | 0x80000000), 0);
    EXPECT_EQ(obj.flags, 0x80000011u);
    EXPECT_EQ(ux_obj_unset_flag(&obj, 0x80000001 | UX_FLAG_SAVE_FG), 0);
    EXPECT_EQ(obj.flags, 0x10u);
}

TEST_F(ObjectTest, set_status_returns_the_value) {
    EXPECT_EQ(ux_obj_set_status(&obj, 0x57), 0x57);
    EXPECT_EQ(obj.status, 0x57u);
    EXPECT_EQ(ux_obj_get_status(&obj), 0x57);
    EXPECT_EQ(ux_obj_set_status(&obj, 0xFFFFFFFF), -1);
    EXPECT_EQ(obj.status, 0xFFFFFFFFu);
    EXPECT_EQ(ux_obj_get_status(&obj), -1);
}

TEST_F(ObjectTest, alpha_300_is_44) {
    EXPECT_EQ(ux_obj_set_alpha(&obj, 300), 0);
    EXPECT_EQ(obj.alpha, 44u);
    ux_obj_set_alpha(&obj, 255);
    EXPECT_EQ(obj.alpha, 255u);
    ux_obj_set_alpha(&obj, 256);
    EXPECT_EQ(obj.alpha, 0u);
    ux_obj_set_alpha(&obj, 0xFFFFFF80);
    EXPECT_EQ(obj.alpha, 128u);
}

TEST_F(ObjectTest, handler_and_data_are_stored_and_taken_away) {
    int data = 0;
    EXPECT_EQ(ux_obj_set_handler(&obj, ignore_event, &data), 0);
    EXPECT_EQ(obj.handler, &ignore_event);
    EXPECT_EQ(obj.handler_data, &data);
    EXPECT_EQ(ux_obj_set_handler(&obj, nullptr, nullptr), 0);
    EXPECT_EQ(obj.handler, nullptr);
    EXPECT_EQ(obj.handler_data, nullptr);
}

TEST_F(ObjectTest, border_colors_of_no_side_change_nothing) {
    ux_obj_set_border_color(&obj, 15, 1, 2);
    EXPECT_EQ(ux_obj_set_border_color(&obj, 0, 8, 9), 0);
    expect_colors(1, 2, 1, 2, 1, 2, 1, 2);
    EXPECT_EQ(ux_obj_set_border_color(&obj, 0xFFFFFFF0, 8, 9), 0);
    expect_colors(1, 2, 1, 2, 1, 2, 1, 2);
}

TEST_F(ObjectTest, border_colors_of_all_sides_equal_the_four_side_setter) {
    EXPECT_EQ(ux_obj_set_border_color(&obj, 15, 3, 4), 0);
    expect_colors(3, 4, 3, 4, 3, 4, 3, 4);
    EXPECT_EQ(ux_obj_set_border_colors(&obj, 5, 6), 0);
    expect_colors(5, 6, 5, 6, 5, 6, 5, 6);
}

TEST_F(ObjectTest, border_colors_of_one_side_leave_the_others) {
    ux_obj_set_border_color(&obj, 1, 11, 12);
    expect_colors(11, 12, 0, 0, 0, 0, 0, 0);
    ux_obj_set_border_color(&obj, 2, 21, 22);
    expect_colors(11, 12, 21, 22, 0, 0, 0, 0);
    ux_obj_set_border_color(&obj, 4, 31, 32);
    expect_colors(11, 12, 21, 22, 31, 32, 0, 0);
    ux_obj_set_border_color(&obj, 8, 41, 42);
    expect_colors(11, 12, 21, 22, 31, 32, 41, 42);
    ux_obj_set_border_color(&obj, 1 | 8, 0, 1);
    expect_colors(0, 1, 21, 22, 31, 32, 0, 1);
}

TEST_F(ObjectTest, default_border_colors_are_white_and_yellow) {
    EXPECT_EQ(ux_obj_set_default_border_color(&obj), 0);
    expect_colors(0xFFFFFFFF, 0xFFFFEE00, 0xFFFFFFFF, 0xFFFFEE00, 0xFFFFFFFF, 0xFFFFEE00,
                  0xFFFFFFFF, 0xFFFFEE00);
}

TEST_F(ObjectTest, repaint_of_a_visible_object_shows_it) {
    obj.show = log_show;
    obj.hide = log_hide;
    obj.status = UX_ST_VISIBLE;
    s_log.result = 5;
    testing::internal::CaptureStdout();
    EXPECT_EQ(ux_obj_repaint(&obj), 5);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ux_obj_repaint\n");
    EXPECT_EQ(s_log.calls, "show ");
}

TEST_F(ObjectTest, repaint_of_a_hidden_object_hides_it) {
    obj.show = log_show;
    obj.hide = log_hide;
    obj.status = ~static_cast<uint32_t>(UX_ST_VISIBLE);
    testing::internal::CaptureStdout();
    ux_obj_repaint(&obj);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ux_obj_repaint\n");
    EXPECT_EQ(s_log.calls, "hide ");
}

TEST_F(ObjectTest, update_blits_the_objects_rectangle) {
    set_apart();
    fill_buf(6);
    obj.x = 3;
    obj.y = 2;
    obj.width = 4;
    obj.height = 3;
    EXPECT_EQ(ux_object_update(&obj), 0);
    EXPECT_EQ(fb_picture(6), "................\n"
                             "................\n"
                             "...XXXX.........\n"
                             "...XXXX.........\n"
                             "...XXXX.........\n"
                             "................\n"
                             "................\n"
                             "................\n");
    obj.x = -1;
    EXPECT_EQ(ux_object_update(&obj), -1);
}

TEST_F(ObjectTest, set_size_stores_and_paints_nothing) {
    set_apart();
    fill_buf(6);
    obj.show = log_show;
    obj.repaint = log_show;
    obj.status = UX_ST_VISIBLE;
    EXPECT_EQ(ux_obj_set_size(&obj, 1, -2, 3, -4), 0);
    EXPECT_EQ(obj.x, 1);
    EXPECT_EQ(obj.y, -2);
    EXPECT_EQ(obj.width, 3);
    EXPECT_EQ(obj.height, -4);
    EXPECT_EQ(s_log.calls, "");
    EXPECT_EQ(fb_pixel(1, 0), 0u);
    EXPECT_EQ(buf_pixel(1, 0), 6u);
}
