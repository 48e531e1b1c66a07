// SPDX-License-Identifier: MIT
// The fixture of the text field's tests: keys pressed as the main loop presses them, a clock, and
// what became of the text.
#ifndef UX_TESTS_WIDGETS_TEXT_FIELD_TEST_H
#define UX_TESTS_WIDGETS_TEXT_FIELD_TEST_H

#include "tests/widgets/widget_test.h"

#include <algorithm>
#include <initializer_list>

class TextFieldTest : public WidgetTest {
  protected:
    static constexpr int k_second_us = 1000000;

    // The fields' common state starts as in a new program, but for the letters on the keys. The
    // first timeout has id 1: id 0 has tests of its own.
    void SetUp() override {
        WidgetTest::SetUp();
        ux_text_field *any = make();
        any->obj.set_focus(&any->obj);
        any->obj.unset_focus(&any->obj);
        ux_text_field_waitkeytimeout(nullptr);
        std::fill(std::begin(page->key_handlers), std::end(page->key_handlers), nullptr);
        page->focus = nullptr;
        ux_container_del_obj(root(), &any->obj, 0, 0);
        ux_timeout_count = 1;
        take_calls();
    }

    ux_text_field *make(const char16_t *text = nullptr) {
        return ux_text_field_new(root(), 0, 0, 16, 8, text);
    }

    // A visible field that has the focus.
    ux_text_field *focused(const char16_t *text = nullptr) {
        ux_text_field *field = make(text);
        field->obj.show(&field->obj);
        field->obj.set_focus(&field->obj);
        take_calls();
        return field;
    }

    // What the main loop does with a key.
    int press(int key) {
        ux_event event = {};
        event.type = UX_EVENT_KEY;
        event.value = key;
        event.obj = page->focus;
        const ux_handler handler = page->key_handlers[key];
        return handler ? handler(&event) : -77;
    }
    void press_all(std::initializer_list<int> keys) {
        for (int key : keys)
            press(key);
    }

    // Each key a character of its own.
    void press_slowly(std::initializer_list<int> keys) {
        for (int key : keys) {
            press(key);
            pass(k_second_us);
        }
    }

    // Time goes by and the main loop looks at its timeouts.
    static void pass(int us) {
        timeval &now = hooks::get().now;
        now.tv_usec += us;
        now.tv_sec += now.tv_usec / k_second_us;
        now.tv_usec %= k_second_us;
        ux_check_timeout();
    }

    // How often a field was painted since the last call.
    static int take_paints() {
        const calls all = take_calls();
        return static_cast<int>(std::count_if(all.begin(), all.end(), [](const std::string &call) {
            return call.rfind("FSS_set_scale", 0) == 0;
        }));
    }

    // The glyphs asked for since the last call, as character codes.
    static std::vector<int> take_glyphs() {
        const std::string name = "FSS_get_bitmap ";
        std::vector<int> codes;
        for (const std::string &call : take_calls())
            if (call.rfind(name, 0) == 0)
                codes.push_back(std::stoi(call.substr(name.size())));
        return codes;
    }

    static std::u16string text_of(const ux_text_field *field) {
        return std::u16string(field->text, std::find(field->text, field->text + 128, u'\0'));
    }

    // The first units of the record's text, whatever they are.
    static std::u16string units_of(const ux_text_field *field, size_t count) {
        return std::u16string(field->text, count);
    }

    static int pending_timeouts() {
        int count = 0;
        for (const ux_timeout *timer = ux_timeout_list; timer; timer = timer->next)
            count++;
        return count;
    }
};

#endif
