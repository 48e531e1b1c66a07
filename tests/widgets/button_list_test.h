// SPDX-License-Identifier: MIT
// The fixture of the button list's tests: handlers that write down what they were told.
#ifndef UX_TESTS_WIDGETS_BUTTON_LIST_TEST_H
#define UX_TESTS_WIDGETS_BUTTON_LIST_TEST_H

#include "tests/widgets/widget_test.h"

#include <functional>

class ButtonListTest : public WidgetTest {
  protected:
    static inline calls s_told;                         // "focus 3", "down 3" ...
    static inline std::function<void()> s_during_focus; // runs inside the focus handler
    static inline std::function<void()> s_during_down;
    static inline std::function<void()> s_during_up;
    static inline std::function<void()> s_during_select;
    static inline ux_button_list *s_expected; // the list that handlers must be given

    void SetUp() override {
        WidgetTest::SetUp();
        s_told.clear();
        s_during_focus = s_during_down = s_during_up = s_during_select = nullptr;
        s_expected = nullptr;
    }

    static int tell(const char *what, ux_button_list *list, int index,
                    const std::function<void()> &during) {
        EXPECT_EQ(list, s_expected);
        s_told.push_back(std::string(what) + " " + std::to_string(index));
        if (during)
            during();
        return 7; // ignored
    }
    static int on_focus(ux_button_list *list, int index) {
        return tell("focus", list, index, s_during_focus);
    }
    static int on_select(ux_button_list *list, int index) {
        return tell("select", list, index, s_during_select);
    }
    static int on_up(ux_button_list *list, int index) {
        return tell("up", list, index, s_during_up);
    }
    static int on_down(ux_button_list *list, int index) {
        return tell("down", list, index, s_during_down);
    }

    static calls take_told() { return std::exchange(s_told, {}); }

    // A list of `count` shown buttons, without handlers.
    ux_button_list *make(int count, int x = 0, int y = 0, int w = 16, int h = 8, int gap = 0) {
        ux_button_list *list = ux_button_list_new(root(), x, y, w, h, count, gap);
        for (int i = 0; i < count; i++)
            ux_button_list_set_text(list, i, u"a");
        return list;
    }

    ux_button_list *make_with_handlers(int count) {
        s_expected = make(count);
        ux_button_list_set_focus_handler(s_expected, on_focus);
        ux_button_list_set_select_handler(s_expected, on_select);
        ux_button_list_set_up_handler(s_expected, on_up);
        ux_button_list_set_down_handler(s_expected, on_down);
        return s_expected;
    }

    static ux_obj *obj_of(ux_button_list *list) { return &list->container.obj; }
    static ux_obj *button_of(ux_button_list *list, int i) { return &list->items[i]->obj; }

    static int press(ux_handler key, ux_obj *target) {
        ux_event event = {};
        event.type = UX_EVENT_KEY;
        event.obj = target;
        return key(&event);
    }
    static int down(ux_button_list *list) {
        return press(ux_button_list_event_move_down, obj_of(list));
    }
    static int up(ux_button_list *list) {
        return press(ux_button_list_event_move_up, obj_of(list));
    }
    static int ok(ux_button_list *list) {
        return press(ux_button_list_event_press_ok, obj_of(list));
    }
};

#endif
