// SPDX-License-Identifier: MIT
// The child list of a container: linking in, deleting, release of the whole.

#include "tests/support/screen_test.h"

#include <climits>

namespace {

constexpr uint32_t k_red = 0xFFFF0000;

// The objects released, in order, by their x.
struct release_log {
    std::string calls;
};

release_log s_log;

int log_free(ux_obj *obj) {
    s_log.calls += std::to_string(obj->x) + "free ";
    return ux_obj_free(obj);
}

class ContainerChildrenTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        s_log = {};
        page = new_page();
        box = ux_container_new(&page->container, 2, 1, 6, 4);
    }

    // A leaf that tells its release; `x` tells it apart.
    static ux_obj *new_leaf(ux_container *parent, int x) {
        ux_obj *leaf = &ux_container_new(parent, x, 0, 1, 1)->obj;
        leaf->type = 99;
        leaf->free = log_free;
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

TEST_F(ContainerChildrenTest, add_obj_puts_the_newest_child_first) {
    ux_obj a = {};
    ux_obj b = {};
    ux_container parent = {};
    parent.obj.page_id = 7;
    EXPECT_EQ(ux_container_add_obj(&parent, &a), 0);
    EXPECT_EQ(ux_container_add_obj(&parent, &b), 0);
    EXPECT_EQ(parent.children, &b);
    EXPECT_EQ(b.next, &a);
    EXPECT_EQ(a.next, nullptr);
    EXPECT_EQ(a.parent, &parent.obj);
    EXPECT_EQ(b.page_id, 7);
    EXPECT_EQ(parent.count, 2u);
}

TEST_F(ContainerChildrenTest, add_obj_of_null_is_refused) {
    EXPECT_EQ(ux_container_add_obj(box, nullptr), -1);
    EXPECT_EQ(box->count, 0u);
}

TEST_F(ContainerChildrenTest, del_obj_unlinks_first_middle_and_last_child) {
    new_leaves(4);
    ux_obj *last = box->children->next->next->next;
    ux_obj *middle = box->children->next;
    ux_obj *first = box->children;
    EXPECT_EQ(ux_container_del_obj(box, middle, 1, 2), 0);
    EXPECT_EQ(box->children, first);
    EXPECT_EQ(first->next->x, 101);
    EXPECT_EQ(ux_container_del_obj(box, last, 1, 2), 0);
    EXPECT_EQ(first->next->next, nullptr);
    EXPECT_EQ(ux_container_del_obj(box, first, 1, 2), 0);
    EXPECT_EQ(box->children->x, 101);
    EXPECT_EQ(box->count, 1u);
    EXPECT_EQ(s_log.calls, "102free 100free 103free ");
}

TEST_F(ContainerChildrenTest, del_obj_refuses_null_strangers_and_grandchildren) {
    EXPECT_EQ(ux_container_del_obj(box, nullptr, 0, 0), -1);
    ux_obj stranger = {};
    EXPECT_EQ(ux_container_del_obj(box, &stranger, 0, 0), -1);
    ux_container *inner = ux_container_new(box, 0, 0, 1, 1);
    ux_obj *grandchild = new_leaf(inner, 5);
    EXPECT_EQ(ux_container_del_obj(box, grandchild, 0, 0), -1);
    EXPECT_EQ(ux_container_del_obj(box, &box->obj, 0, 0), -1);
    EXPECT_EQ(box->count, 1u);
    EXPECT_EQ(inner->count, 1u);
    EXPECT_EQ(s_log.calls, "");
}

TEST_F(ContainerChildrenTest, del_obj_of_the_focus_object_clears_the_pages_focus) {
    ux_obj *leaf = new_leaf(box, 1);
    ux_obj *other = new_leaf(box, 2);
    page->focus = leaf;
    ux_container_del_obj(box, other, 0, 0);
    EXPECT_EQ(page->focus, leaf);
    ux_container_del_obj(box, leaf, 0, 0);
    EXPECT_EQ(page->focus, nullptr);
}

// The page is the one that the object names, whichever page is shown or holds the container.
TEST_F(ContainerChildrenTest, del_obj_clears_the_focus_of_the_objects_own_page) {
    ux_page *other = new_page();
    ux_obj *leaf = new_leaf(box, 1);
    leaf->page_id = 1;
    page->focus = leaf;
    other->focus = leaf;
    ux_container_del_obj(box, leaf, 0, 0);
    EXPECT_EQ(other->focus, nullptr);
    EXPECT_NE(page->focus, nullptr);
    page->focus = nullptr;
}

TEST_F(ContainerChildrenTest, del_obj_without_a_page_skips_the_focus) {
    for (int page_id : {-1, 1, 31, 32, INT_MAX, INT_MIN}) {
        ux_obj *leaf = new_leaf(box, 1);
        leaf->page_id = page_id;
        EXPECT_EQ(ux_container_del_obj(box, leaf, 0, 0), 0);
    }
}

TEST_F(ContainerChildrenTest, del_obj_frees_an_object_without_free_slot) {
    ux_obj *leaf = new_leaf(box, 1);
    leaf->free = nullptr;
    EXPECT_EQ(ux_container_del_obj(box, leaf, 0, 0), 0);
    EXPECT_EQ(box->count, 0u);
}

TEST_F(ContainerChildrenTest, del_obj_counts_down_after_the_free) {
    new_leaves(2);
    static uint32_t s_count_seen;
    static ux_container *s_box;
    s_box = box;
    box->children->free = [](ux_obj *obj) {
        s_count_seen = s_box->count;
        return ux_obj_free(obj);
    };
    ux_container_del_obj(box, box->children, 0, 0);
    EXPECT_EQ(s_count_seen, 2u);
    EXPECT_EQ(box->count, 1u);
}

TEST_F(ContainerChildrenTest, deleted_objects_pixels_stay) {
    ux_container *inner = ux_container_new(box, 3, 2, 2, 2);
    inner->bg_color = k_red;
    ux_container_show_self(inner);
    ux_container_del_obj(box, &inner->obj, 0, 0);
    EXPECT_EQ(buf_pixel(3, 2), k_red);
}

TEST_F(ContainerChildrenTest, free_releases_the_children_newest_first) {
    ux_container *alone = ux_container_new(nullptr, 0, 0, 1, 1);
    for (int i = 0; i < 3; i++)
        new_leaf(alone, i);
    EXPECT_EQ(ux_container_free(&alone->obj), 0);
    EXPECT_EQ(s_log.calls, "2free 1free 0free ");
}

TEST_F(ContainerChildrenTest, free_takes_the_pages_focus_from_the_container_and_its_children) {
    ux_container *inner = ux_container_new(&page->container, 0, 0, 1, 1);
    inner->obj.free = ux_container_free;
    new_leaf(inner, 1);
    page->focus = new_leaf(inner, 2);
    ux_obj *leaf = new_leaf(box, 3);
    ux_container_del_obj(&page->container, &inner->obj, 0, 0);
    EXPECT_EQ(page->focus, nullptr);

    page->focus = leaf;
    ux_container *alone = ux_container_new(nullptr, 0, 0, 1, 1);
    alone->obj.page_id = 0;
    ux_container_free(&alone->obj);
    EXPECT_EQ(page->focus, leaf);

    alone = ux_container_new(nullptr, 0, 0, 1, 1);
    alone->obj.page_id = 0;
    page->focus = &alone->obj;
    ux_container_free(&alone->obj);
    EXPECT_EQ(page->focus, nullptr);
}

TEST_F(ContainerChildrenTest, free_releases_a_child_without_free_slot) {
    ux_container *alone = ux_container_new(nullptr, 0, 0, 1, 1);
    new_leaf(alone, 1);
    new_leaf(alone, 2)->free = nullptr;
    EXPECT_EQ(ux_container_free(&alone->obj), 0);
    EXPECT_EQ(s_log.calls, "1free ");
}

TEST_F(ContainerChildrenTest, free_is_not_recursive) {
    ux_container *outer = ux_container_new(nullptr, 0, 0, 1, 1);
    ux_container *inner = ux_container_new(outer, 0, 0, 1, 1);
    ux_obj *leaf = new_leaf(inner, 4);
    ux_container_free(&outer->obj);
    EXPECT_EQ(s_log.calls, "");
    EXPECT_EQ(leaf->x, 4);
    ux_obj_free(leaf);
}

TEST_F(ContainerChildrenTest, free_slot_of_a_container_leaves_its_children) {
    ux_container *inner = ux_container_new(box, 0, 0, 1, 1);
    ux_obj *leaf = new_leaf(inner, 4);
    ux_container_del_obj(box, &inner->obj, 0, 0);
    EXPECT_EQ(s_log.calls, "");
    EXPECT_EQ(leaf->x, 4);
    ux_obj_free(leaf);
}
