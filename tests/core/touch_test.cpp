// SPDX-License-Identifier: MIT
// The hit test of one object, and touches given to a whole page.

#include "tests/support/screen_test.h"

#include <climits>

namespace {

const std::string k_ones = std::string(48, '1') + "\n";
const std::string k_twos = std::string(48, '2') + "\n";
const std::string k_threes = std::string(49, '3') + "\n";

// The events that handlers got.
struct touch_log {
    std::vector<ux_event> events;
    std::string order; // x of the touched objects
    int result;
};

touch_log s_touch;

int take_touch(ux_event *event) {
    s_touch.events.push_back(*event);
    s_touch.order += std::to_string(event->obj->x) + " ";
    return s_touch.result;
}

class TouchTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        s_touch = {};
        page = new_page();
    }

    // Offers a touch to one object; `out` gets the trace.
    int touch(ux_obj *obj, int x, int y) {
        ux_event event = {};
        event.type = UX_EVENT_TOUCH;
        event.value = 44;
        event.x = x;
        event.y = y;
        ux_event record = {};
        record.obj = obj;
        record.data = &event;
        testing::internal::CaptureStdout();
        const int result = touch_position_handler(&record);
        out = testing::internal::GetCapturedStdout();
        return result;
    }

    // Offers a touch to all objects of the page.
    int touch_page(int x, int y) {
        ux_event event = {};
        event.type = UX_EVENT_TOUCH;
        event.x = x;
        event.y = y;
        testing::internal::CaptureStdout();
        const int result = ux_container_scan(&page->container, touch_position_handler, &event);
        out = testing::internal::GetCapturedStdout();
        return result;
    }

    ux_obj *new_leaf(int x, int y, int w, int h, ux_container *parent = nullptr) {
        ux_obj *leaf = &ux_container_new(parent ? parent : &page->container, x, y, w, h)->obj;
        leaf->type = 99;
        leaf->handler = take_touch;
        return leaf;
    }

    ux_page *page = nullptr;
    std::string out;
};

} // namespace

TEST_F(TouchTest, miss_prints_ones_and_gives_0) {
    ux_obj *leaf = new_leaf(3, 2, 4, 3);
    EXPECT_EQ(touch(leaf, 2, 3), 0);
    EXPECT_EQ(out, k_ones);
    EXPECT_TRUE(s_touch.events.empty());
}

TEST_F(TouchTest, hit_without_handler_prints_ones_and_twos_and_gives_0) {
    ux_obj *leaf = new_leaf(3, 2, 4, 3);
    leaf->handler = nullptr;
    EXPECT_EQ(touch(leaf, 4, 3), 0);
    EXPECT_EQ(out, k_ones + k_twos);
}

TEST_F(TouchTest, handled_hit_prints_all_three_lines_and_gives_1_whatever_the_handler_says) {
    ux_obj *leaf = new_leaf(3, 2, 4, 3);
    for (int result : {0, 1, -1, 77}) {
        s_touch.result = result;
        EXPECT_EQ(touch(leaf, 4, 3), 1);
        EXPECT_EQ(out, k_ones + k_twos + k_threes);
    }
}

TEST_F(TouchTest, both_edges_count_on_each_axis) {
    ux_obj *leaf = new_leaf(3, 2, 4, 3);
    for (int y = -1; y < 9; y++)
        for (int x = -1; x < 17; x++)
            EXPECT_EQ(touch(leaf, x, y), x >= 3 && x <= 7 && y >= 2 && y <= 5 ? 1 : 0)
                << x << ", " << y;
}

TEST_F(TouchTest, object_of_no_size_has_one_point_and_of_negative_size_none) {
    EXPECT_EQ(touch(new_leaf(3, 2, 0, 0), 3, 2), 1);
    EXPECT_EQ(touch(new_leaf(3, 2, 0, 0), 4, 2), 0);
    EXPECT_EQ(touch(new_leaf(3, 2, -1, 0), 3, 2), 0);
    EXPECT_EQ(touch(new_leaf(3, 2, 0, INT_MIN), 3, 2), 0);
}

TEST_F(TouchTest, sums_beyond_32_bits_do_not_wrap) {
    EXPECT_EQ(touch(new_leaf(1, 1, INT_MAX, INT_MAX), INT_MAX, INT_MAX), 1);
    EXPECT_EQ(touch(new_leaf(INT_MAX, INT_MAX, INT_MAX, INT_MAX), 0, 0), 0);
    EXPECT_EQ(touch(new_leaf(INT_MIN, INT_MIN, INT_MAX, INT_MAX), -1, -1), 1);
    EXPECT_EQ(touch(new_leaf(INT_MIN, INT_MIN, INT_MAX, INT_MAX), 0, 0), 0);
}

// Turned by 90 degrees, the drawing of 8 x 16 pixels shows its point (3, 2) at the device's (2, 4).
TEST_F(TouchTest, touch_of_a_turned_screen_is_taken_as_it_comes) {
    testing::internal::CaptureStdout();
    ux_screen_rorate_init("RORATE_90");
    testing::internal::GetCapturedStdout();
    ux_obj *leaf = new_leaf(3, 2, 0, 0);
    EXPECT_EQ(touch(leaf, 3, 2), 1);
    EXPECT_EQ(touch(leaf, 2, 4), 0);
}

TEST_F(TouchTest, handler_gets_a_touch_event_of_its_own) {
    ux_obj *leaf = new_leaf(3, 2, 4, 3);
    int data = 0;
    leaf->handler_data = &data;
    page->focus = &page->container.obj;
    touch(leaf, 5, 4);
    ASSERT_EQ(s_touch.events.size(), 1u);
    const ux_event &event = s_touch.events[0];
    EXPECT_EQ(event.type, 2);
    EXPECT_EQ(event.value, 44);
    EXPECT_EQ(event.x, 5);
    EXPECT_EQ(event.y, 4);
    EXPECT_EQ(event.obj, leaf);
    EXPECT_EQ(event.data, &data);
}

TEST_F(TouchTest, hidden_objects_and_objects_of_any_page_are_hit) {
    ux_obj *leaf = new_leaf(3, 2, 4, 3);
    leaf->status = 0;
    leaf->page_id = 9;
    EXPECT_EQ(touch_page(4, 3), 1);
}

TEST_F(TouchTest, overlapping_objects_all_get_the_touch_and_the_page_does_not) {
    new_leaf(1, 0, 10, 8);
    new_leaf(2, 0, 10, 8);
    page->container.obj.handler = take_touch;
    EXPECT_EQ(touch_page(5, 5), 2);
    EXPECT_EQ(s_touch.order, "2 1 ");
}

TEST_F(TouchTest, touch_outside_every_child_goes_up_to_the_page) {
    ux_container *box = ux_container_new(&page->container, 1, 1, 14, 6);
    new_leaf(2, 2, 1, 1, box);
    box->obj.handler = take_touch;
    page->container.obj.handler = take_touch;
    EXPECT_EQ(touch_page(9, 5), 1);
    EXPECT_EQ(s_touch.order, "1 ");
    EXPECT_EQ(touch_page(0, 0), 1);
    EXPECT_EQ(s_touch.order, "1 0 ");
}

// A child without handler gives 0, so that its container is asked for the same point.
TEST_F(TouchTest, container_gets_the_touch_on_a_child_without_handler) {
    ux_container *box = ux_container_new(&page->container, 1, 1, 14, 6);
    new_leaf(2, 2, 3, 3, box)->handler = nullptr;
    box->obj.handler = take_touch;
    EXPECT_EQ(touch_page(3, 3), 1);
    EXPECT_EQ(s_touch.order, "1 ");
}

// Visited: leaf 5, leaf 2, the box after its silent leaf, and the page only when all are silent.
TEST_F(TouchTest, trace_tells_visits_hits_and_handlings) {
    ux_container *box = ux_container_new(&page->container, 1, 1, 14, 6);
    new_leaf(2, 2, 1, 1, box);
    new_leaf(5, 2, 3, 3);
    EXPECT_EQ(touch_page(6, 3), 1);
    EXPECT_EQ(out, k_ones + k_twos + k_threes + k_ones + k_ones + k_twos);
    EXPECT_EQ(touch_page(15, 0), 0);
    EXPECT_EQ(out, k_ones + k_ones + k_ones + k_ones + k_twos);
}

TEST_F(TouchTest, handler_may_delete_its_object_and_others) {
    new_leaf(1, 0, 10, 8);
    new_leaf(2, 0, 10, 8);
    ux_obj *leaf = new_leaf(3, 0, 10, 8);
    leaf->handler = [](ux_event *event) {
        auto *parent = reinterpret_cast<ux_container *>(event->obj->parent);
        ux_container_del_obj(parent, event->obj->next, 0, 0);
        return ux_container_del_obj(parent, event->obj, 0, 0);
    };
    EXPECT_EQ(touch_page(5, 5), 2);
    EXPECT_EQ(s_touch.order, "1 ");
    EXPECT_EQ(page->container.count, 1u);
}
