// SPDX-License-Identifier: MIT
// Walks over children during which handlers delete objects: nothing freed is touched, everything
// left is visited in the old order. The sanitized build sees what is touched after its release.

#include "tests/support/screen_test.h"

#include <functional>
#include <map>

namespace {

// Visits by the x of the object, and what happens at each.
struct walk_log {
    std::string visits;
    std::map<int, std::function<int()>> actions;
};

walk_log s_walk;

int visit(const ux_obj *obj) {
    const int x = obj->x;
    s_walk.visits += std::to_string(x) + " ";
    const auto found = s_walk.actions.find(x);
    if (found == s_walk.actions.end())
        return 0;
    const auto action = found->second; // which may take itself out
    return action();
}

int visit_event(ux_event *event) {
    return visit(event->obj);
}

int visit_slot(ux_obj *obj) {
    return visit(obj);
}

class ScanDeleteTest : public ScreenTest {
  public:
    void remove(int victim) {
        ux_obj *obj = objects.at(victim);
        EXPECT_EQ(ux_container_del_obj(reinterpret_cast<ux_container *>(obj->parent), obj, 0, 0),
                  0);
        objects.erase(victim);
    }

  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        s_walk = {};
        page = new_page();
        page->container.obj.x = 1000;
    }

    void TearDown() override {
        s_walk = {};
        ScreenTest::TearDown();
    }

    ux_obj *new_leaf(ux_container *parent, int x) {
        ux_obj *leaf = &ux_container_new(parent, x, 0, 1, 1)->obj;
        leaf->type = 99;
        leaf->show = leaf->repaint = leaf->set_focus = leaf->unset_focus = visit_slot;
        objects[x] = leaf;
        return leaf;
    }

    void new_leaves(int count) {
        for (int x = 1; x <= count; x++)
            new_leaf(&page->container, x);
    }

    // At the visit of `at`, deletes the object named by `victim`.
    void delete_at(int at, int victim, int answer = 0) {
        s_walk.actions[at] = [this, victim, answer] {
            remove(victim);
            return answer;
        };
    }

    int scan() { return ux_container_scan(&page->container, visit_event, nullptr); }

    ux_page *page = nullptr;
    std::map<int, ux_obj *> objects;
};

} // namespace

TEST_F(ScanDeleteTest, object_may_delete_itself) {
    new_leaves(4);
    delete_at(3, 3, 1);
    EXPECT_EQ(scan(), 1);
    EXPECT_EQ(s_walk.visits, "4 3 2 1 ");
    EXPECT_EQ(page->container.count, 3u);
}

TEST_F(ScanDeleteTest, next_object_may_be_deleted) {
    new_leaves(4);
    delete_at(3, 2);
    scan();
    EXPECT_EQ(s_walk.visits, "4 3 1 1000 ");
}

TEST_F(ScanDeleteTest, last_object_may_be_deleted) {
    new_leaves(3);
    delete_at(2, 1);
    scan();
    EXPECT_EQ(s_walk.visits, "3 2 1000 ");
}

TEST_F(ScanDeleteTest, earlier_object_may_be_deleted) {
    new_leaves(4);
    delete_at(2, 4);
    scan();
    EXPECT_EQ(s_walk.visits, "4 3 2 1 1000 ");
}

TEST_F(ScanDeleteTest, all_objects_may_be_deleted_at_the_first) {
    new_leaves(5);
    s_walk.actions[5] = [this] {
        for (int x = 1; x <= 5; x++)
            remove(x);
        return 0;
    };
    EXPECT_EQ(scan(), 0);
    EXPECT_EQ(s_walk.visits, "5 1000 ");
    EXPECT_EQ(page->container.count, 0u);
}

TEST_F(ScanDeleteTest, every_object_may_delete_itself) {
    new_leaves(5);
    for (int x = 1; x <= 5; x++)
        delete_at(x, x, 1);
    EXPECT_EQ(scan(), 5);
    EXPECT_EQ(s_walk.visits, "5 4 3 2 1 ");
    EXPECT_EQ(page->container.children, nullptr);
}

TEST_F(ScanDeleteTest, container_being_scanned_may_be_deleted_by_its_child) {
    new_leaf(&page->container, 1);
    ux_container *box = ux_container_new(&page->container, 10, 0, 1, 1);
    objects[10] = &box->obj;
    ux_obj *orphans[2] = {new_leaf(box, 11), new_leaf(box, 12)};
    new_leaf(&page->container, 2);
    delete_at(12, 10);
    EXPECT_EQ(scan(), 0);
    EXPECT_EQ(s_walk.visits, "2 12 1 1000 ");
    for (ux_obj *orphan : orphans)
        ux_obj_free(orphan);
}

TEST_F(ScanDeleteTest, result_of_a_child_that_deleted_its_container_counts) {
    ux_container *box = ux_container_new(&page->container, 10, 0, 1, 1);
    objects[10] = &box->obj;
    ux_obj *orphan = new_leaf(box, 11);
    delete_at(11, 10, 1);
    EXPECT_EQ(scan(), 1);
    EXPECT_EQ(s_walk.visits, "11 ");
    ux_obj_free(orphan);
}

TEST_F(ScanDeleteTest, next_container_of_an_outer_walk_may_be_deleted_from_inside) {
    new_leaf(&page->container, 1);
    ux_container *next = ux_container_new(&page->container, 20, 0, 1, 1);
    objects[20] = &next->obj;
    ux_container *box = ux_container_new(&page->container, 10, 0, 1, 1);
    new_leaf(box, 11);
    delete_at(11, 20);
    EXPECT_EQ(scan(), 0);
    EXPECT_EQ(s_walk.visits, "11 10 1 1000 ");
}

TEST_F(ScanDeleteTest, whole_subtree_may_be_released_by_container_free) {
    new_leaf(&page->container, 1);
    ux_container *box = ux_container_new(&page->container, 10, 0, 1, 1);
    box->obj.free = ux_container_free;
    objects[10] = &box->obj;
    new_leaf(box, 11);
    new_leaf(box, 12);
    delete_at(12, 10);
    EXPECT_EQ(scan(), 0);
    EXPECT_EQ(s_walk.visits, "12 1 1000 ");
}

TEST_F(ScanDeleteTest, release_that_deletes_the_next_sibling_is_walked_over) {
    new_leaves(4);
    static ScanDeleteTest *s_test;
    s_test = this;
    objects.at(3)->free = [](ux_obj *obj) {
        s_test->remove(2);
        return ux_obj_free(obj);
    };
    delete_at(3, 3);
    scan();
    EXPECT_EQ(s_walk.visits, "4 3 1 1000 ");
    EXPECT_EQ(page->container.count, 2u);
}

TEST_F(ScanDeleteTest, objects_added_during_a_scan_are_not_visited) {
    new_leaves(2);
    s_walk.actions[2] = [this] {
        new_leaf(&page->container, 3);
        return 0;
    };
    scan();
    EXPECT_EQ(s_walk.visits, "2 1 1000 ");
}

// The new object may get the memory of the old one, and is still none of this walk's.
TEST_F(ScanDeleteTest, object_replaced_during_a_scan_is_not_visited) {
    new_leaves(3);
    s_walk.actions[3] = [this] {
        remove(2);
        new_leaf(&page->container, 50);
        return 0;
    };
    scan();
    EXPECT_EQ(s_walk.visits, "3 1 1000 ");
}

TEST_F(ScanDeleteTest, scan_inside_a_scan_deletes_for_both) {
    new_leaves(4);
    s_walk.actions[4] = [this] {
        s_walk.actions.erase(4);
        delete_at(3, 2);
        s_walk.visits += "( ";
        scan();
        s_walk.visits += ") ";
        s_walk.actions.erase(3);
        return 0;
    };
    scan();
    EXPECT_EQ(s_walk.visits, "4 ( 4 3 1 1000 ) 3 1 1000 ");
}

TEST_F(ScanDeleteTest, children_may_be_deleted_while_shown_repainted_and_focused) {
    const ux_slot slots[] = {ux_container_show, ux_container_repaint, ux_container_set_focus,
                             ux_container_unset_focus};
    for (ux_slot slot : slots) {
        new_leaves(4);
        s_walk.visits.clear();
        page->container.obj.status = UX_ST_VISIBLE;
        delete_at(4, 3);
        delete_at(2, 2);
        EXPECT_EQ(slot(&page->container.obj), 0);
        EXPECT_EQ(s_walk.visits, "4 2 1 ");
        s_walk.actions.clear();
        remove(4);
        remove(1);
    }
}

TEST_F(ScanDeleteTest, container_may_be_deleted_while_shown_repainted_and_focused) {
    const ux_slot slots[] = {ux_container_show, ux_container_repaint, ux_container_set_focus,
                             ux_container_unset_focus};
    for (ux_slot slot : slots) {
        ux_container *box = ux_container_new(&page->container, 10, 0, 1, 1);
        objects[10] = &box->obj;
        ux_obj *orphans[2] = {new_leaf(box, 11), new_leaf(box, 12)};
        box->obj.status = UX_ST_VISIBLE;
        s_walk.visits.clear();
        delete_at(12, 10);
        EXPECT_EQ(slot(&box->obj), 0);
        EXPECT_EQ(s_walk.visits, "12 ");
        EXPECT_EQ(page->container.count, 0u);
        EXPECT_EQ(page->focus, nullptr);
        for (ux_obj *orphan : orphans)
            ux_obj_free(orphan);
    }
}

TEST_F(ScanDeleteTest, sibling_may_be_deleted_while_a_container_is_freed) {
    ux_container *box = ux_container_new(nullptr, 10, 0, 1, 1);
    for (int x = 1; x <= 3; x++)
        new_leaf(box, x);
    static ScanDeleteTest *s_test;
    s_test = this;
    objects.at(3)->free = [](ux_obj *obj) {
        s_test->remove(2);
        return ux_obj_free(obj);
    };
    objects.at(1)->free = [](ux_obj *obj) {
        s_walk.visits += "free ";
        return ux_obj_free(obj);
    };
    EXPECT_EQ(ux_container_free(&box->obj), 0);
    EXPECT_EQ(s_walk.visits, "free ");
}
