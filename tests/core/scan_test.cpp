// SPDX-License-Identifier: MIT
// The depth-first scan: who is asked, in which order, what the results add up to.

#include "tests/support/screen_test.h"

#include <climits>
#include <map>

namespace {

// Visits by the x of the object, and what the callback answers to each.
struct scan_log {
    std::string visits;
    std::map<int, int> answers;
    void *data;
};

scan_log s_scan;

int ask(ux_event *event) {
    s_scan.visits += std::to_string(event->obj->x) + " ";
    s_scan.data = event->data;
    EXPECT_EQ(event->type, 0);
    EXPECT_EQ(event->value, 0);
    EXPECT_EQ(event->x, 0);
    EXPECT_EQ(event->y, 0);
    const auto answer = s_scan.answers.find(event->obj->x);
    return answer == s_scan.answers.end() ? 0 : answer->second;
}

class ScanTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        s_scan = {};
        page = new_page();
        page->container.obj.x = 1000;
    }

    // An object that has nothing but its kind; `x` tells it apart.
    static ux_obj *new_leaf(ux_container *parent, int x, uint32_t type = 99) {
        ux_obj *leaf = &ux_container_new(parent, x, 0, 1, 1)->obj;
        leaf->type = type;
        return leaf;
    }

    int scan() { return ux_container_scan(&page->container, ask, &s_scan); }

    ux_page *page = nullptr;
};

} // namespace

TEST_F(ScanTest, scan_without_callback_is_0) {
    new_leaf(&page->container, 1);
    EXPECT_EQ(ux_container_scan(&page->container, nullptr, nullptr), 0);
}

TEST_F(ScanTest, empty_container_is_asked_directly) {
    s_scan.answers = {{1000, 7}};
    EXPECT_EQ(scan(), 7);
    EXPECT_EQ(s_scan.visits, "1000 ");
    EXPECT_EQ(s_scan.data, &s_scan);
}

TEST_F(ScanTest, every_child_is_visited_newest_first_even_after_a_hit) {
    for (int x = 1; x <= 3; x++)
        new_leaf(&page->container, x);
    s_scan.answers = {{3, 1}, {1, 5}};
    EXPECT_EQ(scan(), 6);
    EXPECT_EQ(s_scan.visits, "3 2 1 ");
}

TEST_F(ScanTest, container_is_asked_last_when_no_child_answered) {
    for (int x = 1; x <= 2; x++)
        new_leaf(&page->container, x);
    s_scan.answers = {{1000, -9}};
    EXPECT_EQ(scan(), -9);
    EXPECT_EQ(s_scan.visits, "2 1 1000 ");
}

TEST_F(ScanTest, scan_asks_the_container_when_the_results_cancel_out) {
    for (int x = 1; x <= 2; x++)
        new_leaf(&page->container, x);
    s_scan.answers = {{1, 1}, {2, -1}, {1000, 4}};
    EXPECT_EQ(scan(), 4);
    EXPECT_EQ(s_scan.visits, "2 1 1000 ");
}

TEST_F(ScanTest, results_beyond_an_integer_wrap) {
    for (int x = 1; x <= 2; x++)
        new_leaf(&page->container, x);
    s_scan.answers = {{1, INT_MAX}, {2, 1}};
    EXPECT_EQ(scan(), INT_MIN);
    s_scan.visits.clear();
    s_scan.answers = {{1, INT_MIN}, {2, INT_MIN}};
    EXPECT_EQ(scan(), 0);
    EXPECT_EQ(s_scan.visits, "2 1 1000 ");
}

TEST_F(ScanTest, inner_containers_are_asked_when_their_own_children_are_silent) {
    new_leaf(&page->container, 1);
    ux_container *silent = ux_container_new(&page->container, 20, 0, 1, 1);
    new_leaf(silent, 21);
    ux_container *answering = ux_container_new(&page->container, 30, 0, 1, 1);
    new_leaf(answering, 31);
    new_leaf(answering, 32);
    ux_container_new(&page->container, 40, 0, 1, 1);
    s_scan.answers = {{31, 1}};
    EXPECT_EQ(scan(), 1);
    EXPECT_EQ(s_scan.visits, "40 32 31 21 20 1 ");
}

TEST_F(ScanTest, silence_everywhere_goes_up_to_the_page) {
    ux_container *outer = ux_container_new(&page->container, 10, 0, 1, 1);
    ux_container *inner = ux_container_new(outer, 20, 0, 1, 1);
    new_leaf(inner, 30);
    EXPECT_EQ(scan(), 0);
    EXPECT_EQ(s_scan.visits, "30 20 10 1000 ");
}

TEST_F(ScanTest, bit_31_alone_tells_containers) {
    ux_container *box = ux_container_new(&page->container, 10, 0, 1, 1);
    new_leaf(box, 11);
    box->obj.type = 0x7FFFFFFF;
    EXPECT_EQ(scan(), 0);
    EXPECT_EQ(s_scan.visits, "10 1000 ");
    s_scan.visits.clear();
    box->obj.type = 0x80000000;
    scan();
    EXPECT_EQ(s_scan.visits, "11 10 1000 ");
    s_scan.visits.clear();
    box->obj.type = 0xFFFFFFFF;
    scan();
    EXPECT_EQ(s_scan.visits, "11 10 1000 ");
}

TEST_F(ScanTest, hidden_objects_and_objects_of_other_pages_are_visited) {
    ux_obj *leaf = new_leaf(&page->container, 1);
    leaf->status = 0;
    leaf->page_id = 5;
    page->container.obj.status = 0;
    main_screen.current_page = 3;
    scan();
    EXPECT_EQ(s_scan.visits, "1 1000 ");
}
