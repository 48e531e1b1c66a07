// SPDX-License-Identifier: MIT
// A key press to painted pixels allocates nothing, whatever widget has the focus. The first paint
// may: it saves the screen.

#include "tests/widgets/slider_test.h"

namespace {

class InputAllocationTest : public SliderTest {
  protected:
    void SetUp() override {
        SliderTest::SetUp();
        make_screen(64, 48);
        fake_chip::get().record_calls = false;
        for (char16_t unit : std::u16string(u"<>0123456789-a"))
            fake_chip::get().glyphs[unit] = {0, 4, 2, {"X"}};
    }

    // Allocations of keys on a shown, focused widget, after one of each.
    long allocations_of(ux_obj *obj, std::initializer_list<int> keys) {
        obj->show(obj);
        obj->set_focus(obj);
        press_all(keys);
        fill_buf(1);
        hooks::take_allocation_count();
        press_all(keys);
        const long allocations = hooks::take_allocation_count();
        EXPECT_NE(buf_picture(1).find('?'), std::string::npos) << "nothing was painted";
        if (obj->unset_focus)
            obj->unset_focus(obj);
        return allocations;
    }

  private:
    void press_all(std::initializer_list<int> keys) {
        for (const int key : keys) {
            ux_event event = {};
            event.type = UX_EVENT_KEY;
            event.value = key;
            event.obj = page->focus;
            page->key_handlers[key](&event);
        }
    }
};

} // namespace

TEST_F(InputAllocationTest, keys_of_a_slider_allocate_nothing) {
    ux_slider_bar *slider = make(0, 0, 60, 20);
    ux_slider_bar_set_bg_color(slider, UX_COLOR_NONE, UX_COLOR_NONE);
    ux_slider_bar_set_border(slider, 1);
    slider->show_numbers = 1;
    EXPECT_EQ(allocations_of(&slider->obj, {UX_KEY_RIGHT, UX_KEY_RIGHT, UX_KEY_LEFT}), 0);
}

TEST_F(InputAllocationTest, keys_of_a_button_list_allocate_nothing) {
    ux_button_list *list = ux_button_list_new(root(), 0, 0, 60, 48, 3, 0);
    for (int i = 0; i < 3; i++)
        ux_button_list_set_text(list, i, u"a");
    EXPECT_EQ(
        allocations_of(&list->container.obj, {UX_KEY_DOWN, UX_KEY_DOWN, UX_KEY_UP, UX_KEY_OK}), 0);
}

TEST_F(InputAllocationTest, shows_of_a_check_box_allocate_nothing_after_the_first) {
    ux_check_box *box = ux_check_box_new(root(), 0, 0, 60, 20, u"a");
    box->bg_color = UX_COLOR_NONE;
    ux_check_box_show(&box->obj);
    hooks::take_allocation_count();
    box->checked = 1;
    ux_check_box_repaint(&box->obj);
    ux_check_box_set_focus(&box->obj);
    ux_check_box_repaint(&box->obj);
    EXPECT_EQ(hooks::take_allocation_count(), 0);
}

TEST_F(InputAllocationTest, keys_of_a_select_box_allocate_nothing) {
    ux_select_box *box = ux_select_box_new(root(), 0, 0, 60, 20);
    for (const char16_t *text : {u"0", u"1", u"2"})
        ux_select_box_add_item(box, text);
    EXPECT_EQ(allocations_of(&box->obj, {UX_KEY_RIGHT, UX_KEY_LEFT, UX_KEY_LEFT}), 0);
    ux_select_box_free_items(box);
}

TEST_F(InputAllocationTest, keys_of_a_numeric_text_field_allocate_nothing) {
    ux_text_field *field = ux_text_field_new(root(), 0, 0, 60, 20, u"");
    ux_text_field_set_type(field, UX_INPUT_NUMERIC);
    EXPECT_EQ(allocations_of(&field->obj, {UX_KEY_1, UX_KEY_2, UX_KEY_DELETE}), 0);
}

TEST_F(InputAllocationTest, key_of_another_text_field_allocates_its_timeout_and_no_more) {
    ux_text_field *field = ux_text_field_new(root(), 0, 0, 60, 20, u"");
    EXPECT_EQ(allocations_of(&field->obj, {UX_KEY_2, UX_KEY_3, UX_KEY_DELETE}), 2);
}
