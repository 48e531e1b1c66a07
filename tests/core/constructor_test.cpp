// SPDX-License-Identifier: MIT
// What all constructors do alike: the steps and their order, the header, the slots, the report. The
// clock, which needs a picture, has tests of its own.

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

// The slots that differ from kind to kind.
struct kind_slots {
    ux_slot show, hide, repaint;
    ux_slot set_focus = nullptr, unset_focus = nullptr;
    ux_slot set_select = nullptr, unset_select = nullptr;
    ux_slot free = ux_obj_free;
};

struct kind {
    const char *name;
    make_object make;
    uint32_t type;
    uint32_t flags;
    const char *out_of_memory;
    kind_slots slots;
    long allocations = 1;
};

template <class Widget>
ux_obj *header_of(Widget *made) {
    return made ? &made->obj : nullptr;
}

const kind k_kinds[] = {
    {"container",
     [](ux_container *parent, int x, int y, int w, int h) {
         return header_of(ux_container_new(parent, x, y, w, h));
     },
     0x80000002,
     0,
     "Error: [0] Not enough memory space for container!\n\n",
     {ux_container_show, ux_container_hide, ux_container_repaint, ux_container_set_focus,
      ux_container_unset_focus}},
    {"text_label",
     [](ux_container *parent, int x, int y, int w, int h) {
         return header_of(ux_text_label_new(parent, x, y, w, h, u"a"));
     },
     3,
     0,
     "Error: [0] Not enough memory space for text label!\n\n",
     {ux_text_label_show, ux_text_label_hide, ux_text_label_repaint}},
    {"text_button",
     [](ux_container *parent, int x, int y, int w, int h) {
         return header_of(ux_text_button_new(parent, x, y, w, h, u"a"));
     },
     5,
     0x10,
     "Error: [0] Not enough memory space for text button!\n\n",
     {ux_text_button_show, ux_text_button_hide, ux_text_button_repaint, ux_text_button_set_focus,
      ux_text_button_unset_focus, ux_text_button_set_select, ux_text_button_unset_select}},
    {"image_label",
     [](ux_container *parent, int x, int y, int w, int h) {
         return header_of(ux_image_label_new(parent, x, y, w, h, "/a.png"));
     },
     4,
     0,
     "Error: [0] Not enough memory space for image label!\n\n",
     {ux_image_label_show, ux_image_label_hide, ux_image_label_repaint}},
    {"image_button",
     [](ux_container *parent, int x, int y, int w, int h) {
         return header_of(ux_image_button_new(parent, x, y, w, h, "/a.png", "/b.png"));
     },
     6,
     0x10,
     "Error: [0] Not enough memory space for image button!\n\n",
     {ux_image_button_show, ux_image_button_hide, ux_image_button_repaint,
      ux_image_button_set_focus, ux_image_button_unset_focus, ux_image_button_set_select,
      ux_image_button_unset_select}},
    {"text_field",
     [](ux_container *parent, int x, int y, int w, int h) {
         return header_of(ux_text_field_new(parent, x, y, w, h, u"a"));
     },
     14,
     0x10,
     "Error: [0] Not enough memory space for text field!\n\n",
     {ux_text_field_show, ux_text_field_hide, ux_text_field_repaint, ux_text_field_set_focus,
      ux_text_field_unset_focus, ux_text_field_set_select, ux_text_field_unset_select}},
    {"select_box",
     [](ux_container *parent, int x, int y, int w, int h) {
         return header_of(ux_select_box_new(parent, x, y, w, h));
     },
     39,
     0x10,
     "Error: [0] Not enough memory space for text field!\n\n",
     {ux_select_box_show, ux_select_box_hide, ux_select_box_repaint, ux_select_box_set_focus,
      ux_select_box_unset_focus}},
    {"check_box",
     [](ux_container *parent, int x, int y, int w, int h) {
         return header_of(ux_check_box_new(parent, x, y, w, h, u"a"));
     },
     40,
     0x10,
     "Error: [0] Not enough memory space for text field!\n\n",
     {ux_check_box_show, ux_check_box_hide, ux_check_box_repaint, ux_check_box_set_focus,
      ux_check_box_unset_focus}},
    {"slider_bar",
     [](ux_container *parent, int x, int y, int w, int h) {
         return header_of(ux_slider_bar_new(parent, x, y, w, h));
     },
     22,
     0x10,
     "Error: [0] Not enough memory space for text field!\n\n",
     {ux_slider_bar_show, ux_slider_bar_hide, ux_slider_bar_repaint, ux_slider_bar_set_focus,
      ux_slider_bar_unset_focus}},
    {"button_list",
     [](ux_container *parent, int x, int y, int w, int h) {
         ux_button_list *made = ux_button_list_new(parent, x, y, w, h, 0, 0);
         return made ? &made->container.obj : nullptr;
     },
     0x80000014,
     0,
     "Error: [0] Not enough memory space for button list!\n\n",
     {.show = ux_button_list_show,
      .hide = ux_button_list_hide,
      .repaint = ux_button_list_repaint,
      .set_focus = ux_button_list_set_focus,
      .free = ux_button_list_free}},
    {"memo",
     [](ux_container *parent, int x, int y, int w, int h) {
         return header_of(ux_memo_new(parent, x, y, w, h, u"a"));
     },
     5,
     0x10,
     "Error: [0] Not enough memory space for memo!\n\n",
     {.show = ux_memo_show,
      .hide = ux_memo_hide,
      .repaint = ux_memo_repaint,
      .set_focus = ux_memo_set_focus,
      .unset_focus = ux_memo_unset_focus,
      .free = ux_memo_free},
     2},
    {"calendar",
     [](ux_container *parent, int x, int y, int w, int h) {
         return header_of(ux_calendar_new(parent, x, y, w, h, "/a"));
     },
     11,
     0x10,
     "Error: [0] Not enough memory space for calendar!\n\n",
     {ux_calendar_show, ux_calendar_hide, ux_calendar_repaint, ux_calendar_set_focus,
      ux_calendar_unset_focus}},
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
    for (uint32_t color : {obj->top_color, obj->bottom_color, obj->left_color, obj->right_color})
        EXPECT_EQ(color, 0xFFFFFFFFu);
    for (uint32_t color : {obj->top_focus_color, obj->bottom_focus_color, obj->left_focus_color,
                           obj->right_focus_color})
        EXPECT_EQ(color, 0xFFFFEE00u);
    EXPECT_EQ(obj->bg_backup, nullptr);
    EXPECT_EQ(obj->fg_backup, nullptr);
    obj->free(obj);
}

TEST_P(ConstructorTest, slots_are_the_kinds_own_and_those_it_has_not_are_null) {
    const kind_slots &slots = GetParam().slots;
    ux_obj *obj = GetParam().make(nullptr, 0, 0, 1, 1);
    EXPECT_EQ(obj->show, slots.show);
    EXPECT_EQ(obj->hide, slots.hide);
    EXPECT_EQ(obj->repaint, slots.repaint);
    EXPECT_EQ(obj->set_focus, slots.set_focus);
    EXPECT_EQ(obj->unset_focus, slots.unset_focus);
    EXPECT_EQ(obj->set_select, slots.set_select);
    EXPECT_EQ(obj->unset_select, slots.unset_select);
    EXPECT_EQ(obj->get_status, &ux_obj_get_status);
    EXPECT_EQ(obj->free, slots.free);
    obj->free(obj);
}

TEST_P(ConstructorTest, object_without_parent_belongs_to_no_page) {
    new_page();
    ux_obj *obj = GetParam().make(nullptr, 0, 0, 1, 1);
    EXPECT_EQ(obj->page_id, -1);
    EXPECT_EQ(obj->next, nullptr);
    EXPECT_EQ(obj->parent, nullptr);
    obj->free(obj);
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
    obj->free(obj);
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
    obj->free(obj);
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

// The memo keeps its text beside the record.
TEST_P(ConstructorTest, record_is_the_only_allocation_but_for_a_memos_text) {
    hooks::take_allocation_count();
    ux_obj *obj = GetParam().make(nullptr, 0, 0, 1, 1);
    EXPECT_EQ(hooks::take_allocation_count(), GetParam().allocations);
    obj->free(obj);
}

TEST_F(ScreenTest, a_child_container_takes_its_parents_page) {
    new_page();
    ux_page *page = new_page();
    ux_container *outer = ux_container_new(&page->container, 0, 0, 9, 9);
    ux_container *inner = ux_container_new(outer, 0, 0, 5, 5);
    EXPECT_EQ(inner->obj.page_id, 1);
    EXPECT_EQ(inner->obj.parent, &outer->obj);
}
