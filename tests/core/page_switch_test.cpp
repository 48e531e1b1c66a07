// SPDX-License-Identifier: MIT
// Showing, repainting and switching pages: which callbacks in which order, and the pause.

#include "tests/support/screen_test.h"

#include <climits>
#include <utility>

namespace {

struct call_log {
    std::string calls;
    intptr_t values[3];
    int switch_to; // what the repaint, enter or leave callback does; -1 = nothing
};

call_log s_log;

void log_call(const char *name, const ux_obj *obj) {
    s_log.calls += std::string(name) + std::to_string(obj->page_id) + "@" +
                   std::to_string(main_screen.current_page) + " ";
}

int log_show(ux_obj *obj) {
    log_call("show", obj);
    return 5;
}

int log_repaint(ux_obj *obj) {
    log_call("repaint", obj);
    s_log.calls += "slept";
    s_log.calls += std::to_string(hooks::get().sleeps.size()) + " ";
    return 5;
}

int log_enter(ux_page *page) {
    log_call("enter", &page->container.obj);
    if (s_log.switch_to >= 0)
        main_screen.current_page = s_log.switch_to;
    return 5;
}

int log_leave(ux_page *page, intptr_t a, intptr_t b, intptr_t c) {
    log_call("leave", &page->container.obj);
    s_log.values[0] = a;
    s_log.values[1] = b;
    s_log.values[2] = c;
    return -5;
}

class PageSwitchTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        s_log = {};
        s_log.switch_to = -1;
        for (int i = 0; i < 3; i++) {
            ux_page *page = new_page();
            page->on_enter = log_enter;
            page->on_leave = log_leave;
            page->container.obj.show = log_show;
            page->container.obj.repaint = log_repaint;
        }
    }

    void expect_one_second() { EXPECT_EQ(hooks::get().sleeps, std::vector<unsigned>{1}); }
};

const int k_bad_indexes[] = {-1, 3, 31, 32, 33, INT_MAX, INT_MIN};

} // namespace

TEST_F(PageSwitchTest, current_page_is_the_one_of_the_index) {
    EXPECT_EQ(ux_current_page(), main_screen.pages[0]);
    main_screen.current_page = 2;
    EXPECT_EQ(ux_current_page(), main_screen.pages[2]);
    for (int index : k_bad_indexes) {
        main_screen.current_page = index;
        EXPECT_EQ(ux_current_page(), nullptr) << index;
    }
}

TEST_F(PageSwitchTest, show_all_calls_the_current_pages_show_slot) {
    main_screen.current_page = 1;
    EXPECT_EQ(ux_screen_show_all(), 0);
    EXPECT_EQ(s_log.calls, "show1@1 ");
    EXPECT_TRUE(hooks::get().sleeps.empty());
}

TEST_F(PageSwitchTest, repaint_calls_the_slot_and_then_sleeps_for_a_second) {
    EXPECT_EQ(ux_screen_repaint(), 0);
    EXPECT_EQ(s_log.calls, "repaint0@0 slept0 ");
    expect_one_second();
}

TEST_F(PageSwitchTest, switch_leaves_enters_and_repaints) {
    EXPECT_EQ(ux_switch_page(2, 11, -22, 33), 0);
    EXPECT_EQ(s_log.calls, "leave0@0 enter2@2 repaint2@2 slept0 ");
    EXPECT_EQ(s_log.values[0], 11);
    EXPECT_EQ(s_log.values[1], -22);
    EXPECT_EQ(s_log.values[2], 33);
    EXPECT_EQ(main_screen.current_page, 2);
    expect_one_second();
}

TEST_F(PageSwitchTest, switch_to_the_current_page_leaves_and_enters_it) {
    EXPECT_EQ(ux_switch_page(0, 0, 0, 0), 0);
    EXPECT_EQ(s_log.calls, "leave0@0 enter0@0 repaint0@0 slept0 ");
}

TEST_F(PageSwitchTest, pages_without_callbacks_are_switched) {
    for (int i = 0; i < 3; i++) {
        main_screen.pages[i]->on_enter = nullptr;
        main_screen.pages[i]->on_leave = nullptr;
    }
    EXPECT_EQ(ux_switch_page(1, 0, 0, 0), 0);
    EXPECT_EQ(s_log.calls, "repaint1@1 slept0 ");
}

TEST_F(PageSwitchTest, page_current_after_the_callback_is_repainted) {
    s_log.switch_to = 2;
    EXPECT_EQ(ux_switch_page(1, 0, 0, 0), 0);
    EXPECT_EQ(s_log.calls, "leave0@0 enter1@1 repaint2@2 slept0 ");
    EXPECT_EQ(main_screen.current_page, 2);
}

TEST_F(PageSwitchTest, index_without_a_page_is_stored_and_the_second_is_slept) {
    for (int index : k_bad_indexes) {
        main_screen.current_page = 0;
        s_log.calls.clear();
        hooks::get().sleeps.clear();
        EXPECT_EQ(ux_switch_page(index, 0, 0, 0), 0);
        EXPECT_EQ(main_screen.current_page, index);
        EXPECT_EQ(ux_current_page(), nullptr);
        EXPECT_EQ(s_log.calls, "");
        expect_one_second();
    }
}

TEST_F(PageSwitchTest, page_that_takes_the_place_of_one_when_the_old_is_left_is_entered) {
    main_screen.pages[0]->on_leave = [](ux_page *, intptr_t, intptr_t, intptr_t) {
        const int made = ux_page_new();
        main_screen.pages[made]->on_enter = log_enter;
        main_screen.pages[made]->container.obj.repaint = log_repaint;
        std::swap(main_screen.pages[1], main_screen.pages[made]);
        return 0;
    };
    EXPECT_EQ(ux_switch_page(1, 0, 0, 0), 0);
    EXPECT_EQ(s_log.calls, "enter3@1 repaint3@1 slept0 ");
}

TEST_F(PageSwitchTest, switch_from_an_index_without_a_page_enters_the_new_one) {
    for (int index : k_bad_indexes) {
        main_screen.current_page = index;
        s_log.calls.clear();
        hooks::get().sleeps.clear();
        EXPECT_EQ(ux_switch_page(1, 0, 0, 0), 0);
        EXPECT_EQ(s_log.calls, "enter1@1 repaint1@1 slept0 ");
    }
}

TEST_F(PageSwitchTest, show_all_and_repaint_without_a_page_call_nothing) {
    main_screen.current_page = 32;
    EXPECT_EQ(ux_screen_show_all(), 0);
    EXPECT_EQ(ux_screen_repaint(), 0);
    EXPECT_EQ(s_log.calls, "");
    expect_one_second();
}

TEST_F(PageSwitchTest, repaint_of_a_hidden_page_paints_nothing) {
    ux_page *page = main_screen.pages[0];
    page->container.obj.repaint = ux_container_repaint;
    page->container.bg_color = 0xFFFFFFFF;
    page->container.obj.status = 0;
    ux_screen_repaint();
    EXPECT_EQ(buf_pixel(0, 0), 0u);
    page->container.obj.status = UX_ST_VISIBLE;
    ux_screen_repaint();
    EXPECT_EQ(buf_pixel(0, 0), 0xFFFFFFFFu);
}
