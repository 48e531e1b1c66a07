// SPDX-License-Identifier: MIT
// Containers: construction, show, hide, repaint, focus.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>

namespace {

constexpr uint32_t k_red = 0xFFFF0000;

// The slots called on children, in order, as the x of the child and the slot's name.
struct call_log {
    std::string calls;
};

call_log s_log;

void log_call(const ux_obj *obj, const char *name) {
    s_log.calls += std::to_string(obj->x) + name + " ";
}

int log_show(ux_obj *obj) {
    log_call(obj, "show");
    return 0;
}

int log_hide(ux_obj *obj) {
    log_call(obj, "hide");
    return 0;
}

int log_repaint(ux_obj *obj) {
    log_call(obj, "repaint");
    return 0;
}

int log_set_focus(ux_obj *obj) {
    log_call(obj, "set_focus");
    main_screen.pages[0]->focus = obj;
    return 0;
}

int log_unset_focus(ux_obj *obj) {
    log_call(obj, "unset_focus");
    return 0;
}

class ContainerTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        s_log = {};
        page = new_page();
        box = ux_container_new(&page->container, 2, 1, 6, 4);
    }

    // A leaf that only logs; `x` tells it apart.
    ux_obj *new_leaf(ux_container *parent, int x) {
        ux_obj *leaf = &ux_container_new(parent, x, 0, 1, 1)->obj;
        leaf->type = 99;
        leaf->show = log_show;
        leaf->hide = log_hide;
        leaf->repaint = log_repaint;
        leaf->set_focus = log_set_focus;
        leaf->unset_focus = log_unset_focus;
        return leaf;
    }

    void new_leaves(int count) {
        for (int i = 0; i < count; i++)
            new_leaf(box, 100 + i);
    }

    ux_page *page = nullptr;
    ux_container *box = nullptr;
};

} // namespace

TEST_F(ContainerTest, new_container_has_its_slots_and_a_black_background) {
    const ux_obj &obj = box->obj;
    EXPECT_EQ(obj.show, &ux_container_show);
    EXPECT_EQ(obj.hide, &ux_container_hide);
    EXPECT_EQ(obj.repaint, &ux_container_repaint);
    EXPECT_EQ(obj.set_focus, &ux_container_set_focus);
    EXPECT_EQ(obj.unset_focus, &ux_container_unset_focus);
    EXPECT_EQ(obj.set_select, nullptr);
    EXPECT_EQ(obj.unset_select, nullptr);
    EXPECT_EQ(obj.get_status, &ux_obj_get_status);
    EXPECT_EQ(obj.free, &ux_obj_free);
    EXPECT_EQ(box->bg_color, 0xFF000000u);
    EXPECT_EQ(box->bg_image[0], '\0');
    EXPECT_EQ(box->count, 0u);
    EXPECT_EQ(box->children, nullptr);
    EXPECT_EQ(box->add_obj, &ux_container_add_obj);
}

TEST_F(ContainerTest, show_paints_the_container_and_then_the_newest_child_first) {
    box->bg_color = k_red;
    new_leaves(3);
    EXPECT_EQ(ux_container_show(&box->obj), 0);
    EXPECT_EQ(s_log.calls, "102show 101show 100show ");
    EXPECT_EQ(buf_picture(k_red), "................\n"
                                  "..XXXXXX........\n"
                                  "..XXXXXX........\n"
                                  "..XXXXXX........\n"
                                  "..XXXXXX........\n"
                                  "................\n"
                                  "................\n"
                                  "................\n");
}

TEST_F(ContainerTest, older_children_paint_over_newer_ones) {
    ux_container *older = ux_container_new(box, 2, 1, 2, 1);
    ux_container *newer = ux_container_new(box, 3, 1, 2, 1);
    older->bg_color = 1;
    newer->bg_color = 2;
    ux_container_show(&box->obj);
    EXPECT_EQ(buf_pixel(2, 1), 1u);
    EXPECT_EQ(buf_pixel(3, 1), 1u);
    EXPECT_EQ(buf_pixel(4, 1), 2u);
}

TEST_F(ContainerTest, child_without_show_slot_is_skipped) {
    new_leaves(3);
    box->children->next->show = nullptr;
    EXPECT_EQ(ux_container_show(&box->obj), 0);
    EXPECT_EQ(s_log.calls, "102show 100show ");
}

TEST_F(ContainerTest, show_self_leaves_the_children) {
    new_leaves(2);
    EXPECT_EQ(ux_container_show_self(box), 0);
    EXPECT_EQ(s_log.calls, "");
}

TEST_F(ContainerTest, show_off_the_current_page_marks_visible_and_paints_and_blits_nothing) {
    set_apart();
    fill_buf(5);
    box->bg_color = k_red;
    box->obj.border = 1;
    ux_obj_set_flag(&box->obj, UX_FLAG_SAVE_BG);
    main_screen.current_page = 1;
    EXPECT_EQ(ux_container_show_self(box), 0);
    EXPECT_EQ(box->obj.status, static_cast<uint32_t>(UX_ST_VISIBLE));
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8, 5));
    EXPECT_EQ(plain::numbers(main_screen.fb), std::vector<uint32_t>(16 * 8));
}

TEST_F(ContainerTest, show_paints_to_buf_and_blits_the_own_rectangle_to_fb) {
    set_apart();
    fill_buf(k_red);
    box->bg_color = 7;
    ux_container_show_self(box);
    EXPECT_EQ(fb_pixel(2, 1), 7u);
    EXPECT_EQ(fb_pixel(7, 4), 7u);
    EXPECT_EQ(fb_pixel(8, 4), 0u);
    EXPECT_EQ(fb_pixel(1, 1), 0u);
}

TEST_F(ContainerTest, background_0_paints_nothing) {
    fill_buf(5);
    box->bg_color = 0;
    ux_container_show_self(box);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8, 5));
}

TEST_F(ContainerTest, background_of_an_empty_rectangle_paints_nothing) {
    box->bg_color = k_red;
    for (const auto &[width, height] :
         {std::pair{0, 4}, {4, 0}, {-1, 4}, {4, -1}, {INT_MIN, 4}, {4, INT_MIN}}) {
        ux_obj_set_size(&box->obj, 2, 1, width, height);
        ux_container_show_self(box);
        ux_obj_set_size(&box->obj, INT_MIN, 1, width, height);
        ux_container_show_self(box);
    }
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
}

// The copy holds the background and no border.
TEST_F(ContainerTest, background_copy_is_taken_before_the_border) {
    fill_buf(0xFF000009);
    box->bg_color = 0;
    box->obj.border = 1;
    ux_obj_set_flag(&box->obj, UX_FLAG_SAVE_BG);
    ux_container_show_self(box);
    EXPECT_EQ(buf_pixel(2, 1), 0xFFFFFFFFu);
    ASSERT_NE(box->obj.bg_backup, nullptr);
    std::vector<uint32_t> copy(24);
    memcpy(copy.data(), box->obj.bg_backup, 24 * 4);
    EXPECT_EQ(copy, std::vector<uint32_t>(24, 0xFF000009));
    EXPECT_EQ(box->obj.status, static_cast<uint32_t>(UX_ST_VISIBLE | UX_ST_BG_SAVED));
}

TEST_F(ContainerTest, background_copy_is_taken_once) {
    fill_buf(0xFF000009);
    box->bg_color = 0;
    ux_obj_set_flag(&box->obj, UX_FLAG_SAVE_BG);
    ux_container_show_self(box);
    fill_buf(0xFF000001);
    ux_container_show_self(box);
    uint32_t first = 0;
    memcpy(&first, box->obj.bg_backup, 4);
    EXPECT_EQ(first, 0xFF000009u);
}

TEST_F(ContainerTest, container_with_a_color_takes_no_copy) {
    ux_obj_set_flag(&box->obj, UX_FLAG_SAVE_BG);
    ux_container_show_self(box);
    EXPECT_EQ(box->obj.bg_backup, nullptr);
    EXPECT_EQ(box->obj.status, static_cast<uint32_t>(UX_ST_VISIBLE));
}

TEST_F(ContainerTest, failed_copy_does_not_stop_the_show) {
    box->bg_color = 0;
    box->obj.border = 1;
    ux_obj_set_flag(&box->obj, UX_FLAG_SAVE_BG);
    testing::internal::CaptureStderr();
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_container_show_self(box), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Can not allocate background backup image memory!\n");
    EXPECT_EQ(buf_pixel(2, 1), 0xFFFFFFFFu);
}

TEST_F(ContainerTest, hide_leaves_children_and_pixels) {
    box->bg_color = k_red;
    new_leaves(2);
    ux_container_show_self(box);
    box->children->status = UX_ST_VISIBLE;
    EXPECT_EQ(ux_container_hide(&box->obj), 0);
    EXPECT_EQ(box->obj.status, 0u);
    EXPECT_EQ(box->children->status, static_cast<uint32_t>(UX_ST_VISIBLE));
    EXPECT_EQ(s_log.calls, "");
    EXPECT_EQ(buf_pixel(2, 1), k_red);
    box->obj.status = UX_ST_VISIBLE | UX_ST_FOCUSED;
    EXPECT_EQ(ux_container_hide_self(box), 0);
    EXPECT_EQ(box->obj.status, static_cast<uint32_t>(UX_ST_FOCUSED));
}

TEST_F(ContainerTest, repaint_of_a_visible_container_repaints_the_children) {
    box->bg_color = k_red;
    new_leaves(3);
    box->obj.status = UX_ST_VISIBLE;
    EXPECT_EQ(ux_container_repaint(&box->obj), 0);
    EXPECT_EQ(s_log.calls, "102repaint 101repaint 100repaint ");
    EXPECT_EQ(buf_pixel(7, 4), k_red);
}

TEST_F(ContainerTest, repaint_of_a_hidden_container_does_not_reach_the_children) {
    box->bg_color = k_red;
    new_leaves(3);
    EXPECT_EQ(ux_container_repaint(&box->obj), 0);
    EXPECT_EQ(s_log.calls, "");
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
}

TEST_F(ContainerTest, set_focus_focuses_the_children_first_and_itself_last) {
    new_leaves(3);
    box->children->next->set_focus = nullptr;
    EXPECT_EQ(ux_container_set_focus(&box->obj), 0);
    EXPECT_EQ(s_log.calls, "102set_focus 100set_focus ");
    EXPECT_EQ(page->focus, &box->obj);
    EXPECT_EQ(box->obj.status, static_cast<uint32_t>(UX_ST_FOCUSED));
}

TEST_F(ContainerTest, set_focus_paints_nothing_itself) {
    box->bg_color = k_red;
    ux_container_set_focus(&box->obj);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
}

TEST_F(ContainerTest, unset_focus_leaves_the_pages_focus) {
    new_leaves(3);
    box->children->next->unset_focus = nullptr;
    ux_container_set_focus(&box->obj);
    s_log = {};
    EXPECT_EQ(ux_container_unset_focus(&box->obj), 0);
    EXPECT_EQ(s_log.calls, "102unset_focus 100unset_focus ");
    EXPECT_EQ(box->obj.status, 0u);
    EXPECT_EQ(page->focus, &box->obj);
}

TEST_F(ContainerTest, focus_without_a_page_sets_the_bit_only) {
    for (int page_id : {-1, 1, 31, 32, INT_MAX, INT_MIN}) {
        box->obj.status = 0;
        box->obj.page_id = page_id;
        EXPECT_EQ(ux_container_set_focus(&box->obj), 0);
        EXPECT_EQ(box->obj.status, static_cast<uint32_t>(UX_ST_FOCUSED));
        EXPECT_EQ(page->focus, nullptr);
        EXPECT_EQ(ux_container_unset_focus(&box->obj), 0);
        EXPECT_EQ(box->obj.status, 0u);
    }
}
