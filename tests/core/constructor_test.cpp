// SPDX-License-Identifier: MIT
// The steps that every constructor takes in the same order, seen on containers, labels, buttons and
// input widgets.

#include "tests/support/screen_test.h"

#include <climits>

namespace {

// What a parent's add_obj saw of the object.
struct seen_object {
    int calls;
    ux_container *container;
    ux_obj *obj;
    ux_obj header; // as it was then
};

seen_object s_seen;

int look_at(ux_container *container, ux_obj *obj) {
    s_seen = {s_seen.calls + 1, container, obj, *obj};
    return -1;
}

int link_by_hand(ux_container *, ux_obj *obj) {
    obj->next = obj;
    obj->parent = obj;
    obj->page_id = 17;
    obj->alpha = 3;
    obj->border = 9;
    return 0;
}

using make_object = ux_obj *(*)(ux_container *, int, int, int, int);

struct kind {
    const char *name;
    make_object make;
    uint32_t type;
    uint32_t flags;
    const char *out_of_memory;
    ux_slot free = ux_obj_free;
};

const kind k_kinds[] = {
    {"container",
     [](ux_container *parent, int x, int y, int w, int h) -> ux_obj * {
         ux_container *made = ux_container_new(parent, x, y, w, h);
         return made ? &made->obj : nullptr;
     },
     0x80000002, 0, "Error: [0] Not enough memory space for container!\n\n"},
    {"label",
     [](ux_container *parent, int x, int y, int w, int h) -> ux_obj * {
         ux_text_label *made = ux_text_label_new(parent, x, y, w, h, u"a");
         return made ? &made->obj : nullptr;
     },
     3, 0, "Error: [0] Not enough memory space for text label!\n\n"},
    {"button",
     [](ux_container *parent, int x, int y, int w, int h) -> ux_obj * {
         ux_text_button *made = ux_text_button_new(parent, x, y, w, h, u"a");
         return made ? &made->obj : nullptr;
     },
     5, 0x10, "Error: [0] Not enough memory space for text button!\n\n"},
    {"field",
     [](ux_container *parent, int x, int y, int w, int h) -> ux_obj * {
         ux_text_field *made = ux_text_field_new(parent, x, y, w, h, u"a");
         return made ? &made->obj : nullptr;
     },
     14, 0x10, "Error: [0] Not enough memory space for text field!\n\n"},
    {"select_box",
     [](ux_container *parent, int x, int y, int w, int h) -> ux_obj * {
         ux_select_box *made = ux_select_box_new(parent, x, y, w, h);
         return made ? &made->obj : nullptr;
     },
     39, 0x10, "Error: [0] Not enough memory space for text field!\n\n"},
    {"check_box",
     [](ux_container *parent, int x, int y, int w, int h) -> ux_obj * {
         ux_check_box *made = ux_check_box_new(parent, x, y, w, h, u"a");
         return made ? &made->obj : nullptr;
     },
     40, 0x10, "Error: [0] Not enough memory space for text field!\n\n"},
    {"slider_bar",
     [](ux_container *parent, int x, int y, int w, int h) -> ux_obj * {
         ux_slider_bar *made = ux_slider_bar_new(parent, x, y, w, h);
         return made ? &made->obj : nullptr;
     },
     22, 0x10, "Error: [0] Not enough memory space for text field!\n\n"},
    {"button_list",
     [](ux_container *parent, int x, int y, int w, int h) -> ux_obj * {
         ux_button_list *made = ux_button_list_new(parent, x, y, w, h, 0, 0);
         return made ? &made->container.obj : nullptr;
     },
     0x80000014, 0, "Error: [0] Not enough memory space for button list!\n\n", ux_button_list_free},
};

class ConstructorTest : public ScreenTest, public ::testing::WithParamInterface<kind> {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        s_seen = {};
    }
};

std::string name_of(const ::testing::TestParamInfo<kind> &info) {
    return info.param.name;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Kinds, ConstructorTest, ::testing::ValuesIn(k_kinds), name_of);

TEST_P(ConstructorTest, header_has_the_common_defaults) {
    ux_obj *obj = GetParam().make(nullptr, 1, -2, 3, INT_MIN);
    ASSERT_NE(obj, nullptr);
    EXPECT_EQ(obj->x, 1);
    EXPECT_EQ(obj->y, -2);
    EXPECT_EQ(obj->width, 3);
    EXPECT_EQ(obj->height, INT_MIN);
    EXPECT_EQ(obj->type, GetParam().type);
    EXPECT_EQ(obj->flags, GetParam().flags);
    EXPECT_EQ(obj->status, 0u);
    EXPECT_EQ(obj->alpha, 255u);
    EXPECT_EQ(obj->border, 0);
    EXPECT_EQ(obj->handler, nullptr);
    EXPECT_EQ(obj->handler_data, nullptr);
    EXPECT_EQ(obj->top_color, 0xFFFFFFFFu);
    EXPECT_EQ(obj->top_focus_color, 0xFFFFEE00u);
    EXPECT_EQ(obj->right_color, 0xFFFFFFFFu);
    EXPECT_EQ(obj->right_focus_color, 0xFFFFEE00u);
    EXPECT_EQ(obj->bg_backup, nullptr);
    EXPECT_EQ(obj->fg_backup, nullptr);
    EXPECT_EQ(obj->get_status, &ux_obj_get_status);
    EXPECT_EQ(obj->free, GetParam().free);
    ux_obj_free(obj);
}

TEST_P(ConstructorTest, object_without_parent_belongs_to_no_page) {
    new_page();
    ux_obj *obj = GetParam().make(nullptr, 0, 0, 1, 1);
    EXPECT_EQ(obj->page_id, -1);
    EXPECT_EQ(obj->next, nullptr);
    EXPECT_EQ(obj->parent, nullptr);
    ux_obj_free(obj);
}

TEST_P(ConstructorTest, object_is_linked_into_its_parent) {
    new_page();
    ux_page *page = new_page();
    ux_obj *first = GetParam().make(&page->container, 0, 0, 1, 1);
    ux_obj *second = GetParam().make(&page->container, 0, 0, 1, 1);
    EXPECT_EQ(second->page_id, 1);
    EXPECT_EQ(second->parent, &page->container.obj);
    EXPECT_EQ(page->container.children, second);
    EXPECT_EQ(second->next, first);
    EXPECT_EQ(first->next, nullptr);
    EXPECT_EQ(page->container.count, 2u);
}

TEST_P(ConstructorTest, add_obj_slot_of_the_parent_is_called_before_the_defaults) {
    ux_page *page = new_page();
    page->container.obj.page_id = 5;
    page->container.add_obj = look_at;
    ux_obj *obj = GetParam().make(&page->container, 7, 8, 9, 10);
    page->container.obj.page_id = 0;
    EXPECT_EQ(s_seen.calls, 1);
    EXPECT_EQ(s_seen.container, &page->container);
    EXPECT_EQ(s_seen.obj, obj);
    EXPECT_EQ(s_seen.header.x, 7);
    EXPECT_EQ(s_seen.header.y, 8);
    EXPECT_EQ(s_seen.header.width, 9);
    EXPECT_EQ(s_seen.header.height, 10);
    EXPECT_EQ(s_seen.header.type, GetParam().type);
    EXPECT_EQ(s_seen.header.flags, GetParam().flags);
    EXPECT_EQ(s_seen.header.page_id, 5);
    EXPECT_EQ(s_seen.header.alpha, 0u);
    EXPECT_EQ(s_seen.header.top_color, 0u);
    EXPECT_EQ(s_seen.header.free, nullptr);
    EXPECT_EQ(page->container.count, 0u);
    ux_obj_free(obj);
}

TEST_P(ConstructorTest, links_and_page_made_by_add_obj_stay_and_defaults_do_not) {
    ux_page *page = new_page();
    page->container.add_obj = link_by_hand;
    ux_obj *obj = GetParam().make(&page->container, 0, 0, 1, 1);
    EXPECT_EQ(obj->next, obj);
    EXPECT_EQ(obj->parent, obj);
    EXPECT_EQ(obj->page_id, 17);
    EXPECT_EQ(obj->alpha, 255u);
    EXPECT_EQ(obj->border, 0);
    ux_obj_free(obj);
}

TEST_P(ConstructorTest, constructor_paints_nothing) {
    ux_page *page = new_page();
    GetParam().make(&page->container, 0, 0, 16, 8);
    EXPECT_EQ(buf_picture(1), buf_picture(2));
    EXPECT_EQ(buf_pixel(0, 0), 0u);
}

TEST_P(ConstructorTest, failed_allocation_is_reported_with_two_line_ends) {
    ux_page *page = new_page();
    testing::internal::CaptureStderr();
    hooks::fail_allocation(1);
    EXPECT_EQ(GetParam().make(&page->container, 0, 0, 1, 1), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), GetParam().out_of_memory);
    EXPECT_EQ(page->container.count, 0u);
    EXPECT_EQ(page->container.children, nullptr);
}

TEST_P(ConstructorTest, report_shows_the_hosts_ux_error) {
    ux_error = -42;
    testing::internal::CaptureStderr();
    hooks::fail_allocation(1);
    EXPECT_EQ(GetParam().make(nullptr, 0, 0, 1, 1), nullptr);
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_EQ(text.substr(0, 12), "Error: [-42]");
    EXPECT_EQ(ux_error, -42);
}

// One record, one allocation: the second allocation of the process is somebody else's.
TEST_P(ConstructorTest, record_is_the_only_allocation) {
    hooks::take_allocation_count();
    ux_obj *obj = GetParam().make(nullptr, 0, 0, 1, 1);
    EXPECT_EQ(hooks::take_allocation_count(), 1);
    ux_obj_free(obj);
}

TEST_F(ScreenTest, a_child_container_takes_its_parents_page) {
    new_page();
    ux_page *page = new_page();
    ux_container *outer = ux_container_new(&page->container, 0, 0, 9, 9);
    ux_container *inner = ux_container_new(outer, 0, 0, 5, 5);
    EXPECT_EQ(inner->obj.page_id, 1);
    EXPECT_EQ(inner->obj.parent, &outer->obj);
}
