// SPDX-License-Identifier: MIT
// Pages: the table of 32, their records, their key handlers, clearing the screen.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>
#include <cstdlib>

namespace {

int first_handler(ux_event *) {
    return 1;
}

int second_handler(ux_event *) {
    return 2;
}

int shown = 0;

int count_show(ux_obj *) {
    shown++;
    return 0;
}

using PageTest = ScreenTest;

} // namespace

TEST_F(PageTest, pages_get_the_next_index) {
    EXPECT_EQ(ux_page_new(), 0);
    EXPECT_EQ(ux_page_new(), 1);
    EXPECT_EQ(main_screen.page_count, 2);
    EXPECT_EQ(main_screen.pages[1]->container.obj.page_id, 1);
    EXPECT_EQ(main_screen.current_page, 0);
}

TEST_F(PageTest, new_page_is_a_visible_container_of_the_screens_size) {
    const ux_page *page = new_page();
    const ux_container &container = page->container;
    const ux_obj &obj = container.obj;
    EXPECT_EQ(obj.x, 0);
    EXPECT_EQ(obj.y, 0);
    EXPECT_EQ(obj.width, 16);
    EXPECT_EQ(obj.height, 8);
    EXPECT_EQ(obj.flags, 0u);
    EXPECT_EQ(obj.status, static_cast<uint32_t>(UX_ST_VISIBLE));
    EXPECT_EQ(obj.type, 0x80000001u);
    EXPECT_EQ(obj.page_id, 0);
    EXPECT_EQ(obj.border, 0);
    EXPECT_EQ(obj.alpha, 255u);
    EXPECT_EQ(obj.top_color, 0xFFFFFFFFu);
    EXPECT_EQ(obj.left_focus_color, 0xFFFFEE00u);
    EXPECT_EQ(obj.handler, nullptr);
    EXPECT_EQ(obj.handler_data, nullptr);
    EXPECT_EQ(obj.bg_backup, nullptr);
    EXPECT_EQ(obj.next, nullptr);
    EXPECT_EQ(obj.parent, nullptr);
    EXPECT_EQ(container.bg_color, 0xFF000000u);
    EXPECT_EQ(container.bg_image[0], '\0');
    EXPECT_EQ(container.count, 0u);
    EXPECT_EQ(container.children, nullptr);
    EXPECT_EQ(container.add_obj, &ux_container_add_obj);
    for (ux_handler handler : page->key_handlers)
        EXPECT_EQ(handler, nullptr);
    EXPECT_EQ(page->default_key_handler, nullptr);
    EXPECT_EQ(page->focus, nullptr);
    EXPECT_EQ(page->on_enter, nullptr);
    EXPECT_EQ(page->on_leave, nullptr);
}

TEST_F(PageTest, slots_of_a_page_hide_and_unfocus_nothing) {
    const ux_obj &obj = new_page()->container.obj;
    EXPECT_EQ(obj.show, &ux_container_show);
    EXPECT_EQ(obj.repaint, &ux_container_repaint);
    EXPECT_EQ(obj.set_focus, &ux_container_set_focus);
    EXPECT_EQ(obj.hide, &ux_obj_noop);
    EXPECT_EQ(obj.unset_focus, &ux_obj_noop);
    EXPECT_EQ(obj.set_select, nullptr);
    EXPECT_EQ(obj.unset_select, nullptr);
    EXPECT_EQ(obj.get_status, &ux_obj_get_status);
    EXPECT_EQ(obj.free, &ux_obj_free);
}

TEST_F(PageTest, record_of_the_host_keeps_its_flags) {
    auto *page = static_cast<ux_page *>(calloc(1, sizeof(ux_page)));
    page->container.obj.flags = 0x50;
    EXPECT_EQ(ux_page_init(page), 0);
    EXPECT_EQ(main_screen.pages[0], page);
    EXPECT_EQ(page->container.obj.flags, 0x50u);
    EXPECT_EQ(page->container.obj.type, 0x80000001u);
}

// As after a quarter turn: pages made before keep their size.
TEST_F(PageTest, size_of_a_page_is_taken_at_its_creation) {
    const ux_page *before = new_page();
    testing::internal::CaptureStdout();
    ux_screen_rorate_init("RORATE_90");
    testing::internal::GetCapturedStdout();
    const ux_page *after = new_page();
    EXPECT_EQ(before->container.obj.width, 16);
    EXPECT_EQ(before->container.obj.height, 8);
    EXPECT_EQ(after->container.obj.width, 8);
    EXPECT_EQ(after->container.obj.height, 16);
}

TEST_F(PageTest, page_33_is_refused_in_silence) {
    for (int index = 0; index < 32; index++)
        EXPECT_EQ(ux_page_new(), index);
    const ux_screen before = main_screen;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(ux_page_new(), -1);
    ux_page page = {};
    EXPECT_EQ(ux_page_init(&page), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(memcmp(&before, &main_screen, sizeof before), 0);
}

TEST_F(PageTest, failed_allocation_is_reported_with_two_line_ends) {
    testing::internal::CaptureStderr();
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_page_new(), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Error: [0] Not enough memory space for page!\n\n");
    EXPECT_EQ(main_screen.page_count, 0);
    EXPECT_EQ(ux_page_new(), 0);
}

TEST_F(PageTest, objects_of_page_1_do_not_paint_until_the_switch) {
    new_page();
    ux_page *page = new_page();
    ux_container *box = ux_container_new(&page->container, 2, 2, 3, 3);
    box->bg_color = 0xFF00FF00;
    box->obj.show(&box->obj);
    EXPECT_EQ(buf_pixel(2, 2), 0u);
    ux_switch_page(1, 0, 0, 0);
    EXPECT_EQ(buf_pixel(2, 2), 0xFF00FF00u);
}

TEST_F(PageTest, key_handlers_are_stored_by_key) {
    ux_page *page = new_page();
    EXPECT_EQ(ux_page_set_key_handler(page, 0, first_handler), 0);
    EXPECT_EQ(ux_page_set_key_handler(page, 255, second_handler), 0);
    EXPECT_EQ(ux_page_set_default_key_handler(page, first_handler), 0);
    EXPECT_EQ(page->key_handlers[0], &first_handler);
    EXPECT_EQ(page->key_handlers[255], &second_handler);
    EXPECT_EQ(page->default_key_handler, &first_handler);
    ux_page_set_key_handler(page, 0, nullptr);
    ux_page_set_default_key_handler(page, nullptr);
    EXPECT_EQ(page->key_handlers[0], nullptr);
    EXPECT_EQ(page->default_key_handler, nullptr);
}

TEST_F(PageTest, keys_outside_the_table_are_ignored) {
    ux_page *page = new_page();
    const ux_page before = *page;
    for (int key : {-1, 256, INT_MIN, INT_MAX})
        EXPECT_EQ(ux_page_set_key_handler(page, key, first_handler), 0);
    EXPECT_EQ(memcmp(&before, page, sizeof before), 0);
}

TEST_F(PageTest, clean_clears_both_memories_and_nothing_else) {
    set_apart();
    ux_page *page = new_page();
    ux_container *box = ux_container_new(&page->container, 0, 0, 4, 4);
    box->obj.status = UX_ST_VISIBLE;
    box->obj.show = box->obj.repaint = count_show;
    shown = 0;
    fill_buf(0xFFFFFFFF);
    for (int y = 0; y < 8; y++)
        for (int x = 0; x < 16; x++)
            set_fb_pixel(x, y, 0xEEEEEEEE);
    EXPECT_EQ(ux_page_clean(), 0);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
    EXPECT_EQ(plain::numbers(main_screen.fb), std::vector<uint32_t>(16 * 8));
    EXPECT_EQ(shown, 0);
    EXPECT_EQ(box->obj.status, static_cast<uint32_t>(UX_ST_VISIBLE));
    EXPECT_EQ(page->container.obj.status, static_cast<uint32_t>(UX_ST_VISIBLE));
}

TEST_F(PageTest, clean_skips_memories_that_are_not_there) {
    uint8_t *fb = main_screen.fb;
    fill_buf(1);
    main_screen.buf = nullptr;
    EXPECT_EQ(ux_page_clean(), 0);
    EXPECT_EQ(fb_pixel(15, 7), 0u);
    main_screen.buf = main_screen.fb;
    main_screen.fb = nullptr;
    fill_buf(1);
    EXPECT_EQ(ux_page_clean(), 0);
    EXPECT_EQ(buf_pixel(15, 7), 0u);
    main_screen.fb = fb;
}

TEST_F(PageTest, page_paints_its_background_over_the_whole_screen) {
    ux_page *page = new_page();
    page->container.bg_color = 0xFF0000FF;
    EXPECT_EQ(ux_screen_show_all(), 0);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8, 0xFF0000FF));
}
