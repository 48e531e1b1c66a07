// SPDX-License-Identifier: MIT
// A form of text fields and select boxes under random keys, time and calls, beside plain models of
// both: after every step all texts, states, handlers, timeouts and painted glyphs are the models'.

#include "tests/widgets/keypad_model.h"
#include "tests/widgets/widget_test.h"

#include <algorithm>
#include <climits>
#include <random>

namespace {

using keypad_model::handler;

constexpr int k_steps = 100000;
constexpr int k_fields = 4; // the last one on page 1
constexpr int k_boxes = 2;

int host_a(ux_event *) {
    return 0;
}
int host_b(ux_event *) {
    return 0;
}
int host_timeout(ux_event *) {
    return 0;
}

std::vector<int> s_changes;

int note_change(ux_select_box *, int index) {
    s_changes.push_back(index);
    return 0;
}

struct box_model {
    std::vector<std::u16string> items;
    std::u16string text;
    size_t current = 0;
};

class InputReplayTest : public WidgetTest {
  protected:
    void SetUp() override {
        WidgetTest::SetUp();
        second = new_page();
        for (int i = 0; i < k_fields; i++) {
            model.fields.emplace_back();
            model.fields.back().page = i == k_fields - 1;
            fields[i] = make_field(i);
        }
        for (int i = 0; i < k_boxes; i++) {
            boxes[i] = ux_select_box_new(root(), 0, 0, 16, 8);
            boxes[i]->change_handler = note_change;
        }
        clear_common_state();
        testing::internal::CaptureStderr(); // allocations fail and are told
        testing::internal::CaptureStdout();
    }

    void TearDown() override {
        testing::internal::GetCapturedStdout();
        testing::internal::GetCapturedStderr();
        for (ux_select_box *box : boxes)
            ux_select_box_free_items(box);
        WidgetTest::TearDown();
    }

    ux_text_field *make_field(int index) {
        ux_page *owner = model.fields[static_cast<size_t>(index)].page ? second : page;
        return ux_text_field_new(&owner->container, 0, 0, 16, 8, nullptr);
    }

    // As in a new program.
    void clear_common_state() {
        fields[0]->obj.set_focus(&fields[0]->obj);
        fields[0]->obj.unset_focus(&fields[0]->obj);
        ux_text_field_waitkeytimeout(nullptr);
        std::fill(std::begin(page->key_handlers), std::end(page->key_handlers), nullptr);
        page->focus = nullptr;
        model.fill_letters(false);
        model.now_us = now_us();
    }

    static long now_us() { return hooks::get().now.tv_sec * 1000000L + hooks::get().now.tv_usec; }

    int any(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
    bool one_in(int count) { return any(count) == 0; }

    // Short texts mostly; sometimes as long as the record or longer.
    std::u16string any_text() {
        const int units = one_in(30) ? 120 + any(10) : any(9);
        std::u16string text;
        for (int k = 0; k < units; k++)
            text += one_in(20) ? static_cast<char16_t>(1 + any(0xFFFF))
                               : static_cast<char16_t>('A' + any(50));
        return text;
    }

    // Keys.

    void any_press() {
        static const int codes[] = {1, 2, 3, 3, 3, 3, 3, 4, 4, 8, 10, 35, 32, 34, 19, 255, 0, 9, 5};
        const int key = codes[any(19)];
        ux_event event = {};
        event.type = UX_EVENT_KEY;
        event.value = key;
        const ux_page *shown = main_screen.pages[main_screen.current_page];
        event.obj = shown->focus;
        if (shown->key_handlers[key])
            shown->key_handlers[key](&event);
        model.press(key);
    }

    // A handler called by the host, for any object and any number.
    void any_direct_key() {
        const int index = any(k_fields + 2);
        static const int odd[] = {INT_MIN, -1, 256, 300, INT_MAX};
        ux_event event = {};
        event.value = one_in(4) ? odd[any(5)] : any(40);
        event.obj = index < k_fields    ? &fields[index]->obj
                    : index == k_fields ? &boxes[0]->obj
                                        : nullptr;
        const int target = index < k_fields ? index : -1;
        if (one_in(5)) {
            ux_text_field_del_char(&event);
            model.del_char(target);
        } else {
            ux_text_field_add_char(&event);
            model.add_char(event.value, target);
        }
    }

    // Time and timeouts.

    void any_time() {
        static const int pauses[] = {0, 10000, 50000, 300000, 999999, 1000000, 1200000};
        const int us = pauses[any(7)];
        timeval &now = hooks::get().now;
        now.tv_usec += us;
        now.tv_sec += now.tv_usec / 1000000;
        now.tv_usec %= 1000000;
        model.now_us = now_us();
        ux_check_timeout();
        model.check_timeouts();
    }

    void any_host_timeout() {
        if (one_in(8)) { // identifiers begin again, near those that are special
            ux_timeout_count = model.next_timeout = any(4) - 2;
        } else if (one_in(2)) {
            const int delay = any(2000000);
            ux_set_timeout(delay, host_timeout, nullptr);
            model.set_timeout(delay, false);
        } else {
            const int id = any(10) - 2;
            ux_delete_timeout(id);
            model.delete_timeout(id);
        }
    }

    // Calls on a field.

    void any_text_change(ux_text_field *field, keypad_model::field &plain) {
        const std::u16string text = any_text();
        switch (any(4)) {
        case 0:
            ux_text_field_set_text(field, nullptr);
            memset(plain.text, 0, 4);
            break;
        case 1: { // the host writes into the record
            const int unit = any(128);
            const auto value = static_cast<char16_t>(one_in(2) ? 0 : any(0x10000));
            field->text[unit] = value;
            plain.text[2 * unit] = static_cast<uint8_t>(value & 0xFF);
            plain.text[2 * unit + 1] = static_cast<uint8_t>(value >> 8);
            break;
        }
        default:
            ux_text_field_set_text(field, text.c_str());
            memset(plain.text, 0, sizeof plain.text);
            memcpy(plain.text, text.data(), std::min<size_t>(2 * text.size(), 255));
        }
    }

    void any_setting(ux_text_field *field, keypad_model::field &plain) {
        static const int limits[] = {INT_MIN, -1,  0,   1,   2,   3,   4,   5,   7,
                                     8,       126, 127, 128, 254, 255, 256, 300, INT_MAX};
        switch (any(4)) {
        case 0: {
            const int limit = limits[any(18)];
            ux_text_field_set_limit(field, limit);
            plain.limit = limit < 255 ? limit : 255;
            break;
        }
        case 1:
            plain.limit = field->limit = limits[any(18)];
            break;
        case 2:
            plain.type = any(3);
            ux_text_field_set_type(field, plain.type);
            break;
        default:
            plain.password = one_in(2);
            plain.mask = static_cast<uint8_t>(any(256));
            ux_text_field_set_pw_type(field, plain.mask + 256 * any(9), plain.password ? -1 : 0);
        }
    }

    void any_state(int index) {
        ux_obj *obj = &fields[index]->obj;
        keypad_model::field &plain = model.fields[static_cast<size_t>(index)];
        switch (any(6)) {
        case 0:
            obj->show(obj);
            return model.show(index);
        case 1:
            obj->hide(obj);
            plain.visible = false;
            return;
        case 2:
            obj->repaint(obj);
            if (plain.visible)
                model.show(index);
            return;
        case 3:
            plain.selected = !plain.selected;
            plain.selected ? obj->set_select(obj) : obj->unset_select(obj);
            return;
        case 4:
            obj->set_focus(obj);
            return model.focus(index);
        default:
            obj->unset_focus(obj);
            return model.unfocus(index);
        }
    }

    void replace_field(int index) {
        ux_page *owner = model.fields[static_cast<size_t>(index)].page ? second : page;
        const int page_index = owner == second;
        ux_container_del_obj(&owner->container, &fields[index]->obj, 0, 0);
        if (model.pages[page_index].focus == index)
            model.pages[page_index].focus = -1;
        model.fields[static_cast<size_t>(index)] = {};
        model.fields[static_cast<size_t>(index)].page = page_index;
        fields[index] = make_field(index);
    }

    void any_host_handler() {
        const int index = any(2);
        static const int keys[] = {1, 3, 4, 32, 34, 35, 19};
        const int key = keys[any(7)];
        const handler which[] = {handler::none, handler::host_a, handler::host_b};
        const ux_handler real[] = {nullptr, host_a, host_b};
        const int choice = any(3);
        ux_page_set_key_handler(index ? second : page, key, real[choice]);
        model.pages[index].keys[key] = which[choice];
    }

    // Select boxes. Those paint nothing here: they are hidden.

    void any_box_call() {
        const int which = any(k_boxes);
        ux_select_box *box = boxes[which];
        box_model &plain = box_models[which];
        const int count = static_cast<int>(plain.items.size());
        switch (any(6)) {
        case 0:
            if (count < 12) {
                const std::u16string text = any_text().substr(0, 128);
                ux_select_box_add_item(box, text.c_str());
                add_item(plain, text);
            }
            return;
        case 1: {
            const int index = any(16) - 2;
            const std::u16string text = any_text().substr(0, 127);
            ux_select_box_add_items(box, text.c_str(), index);
            if (index >= count)
                add_item(plain, text);
            else if (count > 0)
                plain.items[static_cast<size_t>(std::max(index, 0))] = text;
            return;
        }
        case 2:
            if (!one_in(20))
                return;
            ux_select_box_free_items(box);
            plain.items.clear();
            plain.current = 0;
            return;
        case 3: {
            const int index = any(16) - 2;
            const bool possible = count > 1 && index >= 0 && index < count;
            EXPECT_EQ(ux_select_box_set_pos(box, index), possible ? 0 : -1);
            if (possible)
                make_current(plain, static_cast<size_t>(index));
            return;
        }
        case 4: {
            const std::u16string text = count > 0 && one_in(2)
                                            ? plain.items[static_cast<size_t>(any(count))]
                                            : any_text().substr(0, 128);
            const auto found = std::find(plain.items.begin(), plain.items.end(), text);
            const bool possible = count > 1 && found != plain.items.end();
            EXPECT_EQ(ux_select_box_set_text(box, text.c_str()), possible ? 0 : -1);
            if (possible)
                make_current(plain, static_cast<size_t>(found - plain.items.begin()));
            return;
        }
        default:
            return any_box_key(box, plain);
        }
    }

    void any_box_key(ux_select_box *box, box_model &plain) {
        const bool right = one_in(2);
        ux_event event = {};
        event.obj = one_in(10) ? nullptr : &box->obj;
        s_changes.clear();
        right ? ux_select_box_key_right(&event) : ux_select_box_key_left(&event);
        const size_t count = plain.items.size();
        if (!event.obj || count < 2) {
            EXPECT_TRUE(s_changes.empty());
            return;
        }
        make_current(plain, (plain.current + (right ? 1 : count - 1)) % count);
        EXPECT_EQ(s_changes, std::vector<int>{static_cast<int>(plain.current)});
    }

    static void add_item(box_model &plain, const std::u16string &text) {
        plain.items.push_back(text);
        if (plain.items.size() == 1)
            make_current(plain, 0);
    }

    static void make_current(box_model &plain, size_t index) {
        plain.current = index;
        plain.text = plain.items[index];
    }

    void any_step() {
        const int index = any(k_fields);
        keypad_model::field &plain = model.fields[static_cast<size_t>(index)];
        const int dice = any(100);
        if (dice < 50)
            any_press();
        else if (dice < 56)
            any_direct_key();
        else if (dice < 67)
            any_time();
        else if (dice < 70)
            any_host_timeout();
        else if (dice < 75)
            any_text_change(fields[index], plain);
        else if (dice < 80)
            any_setting(fields[index], plain);
        else if (dice < 87)
            any_state(index);
        else if (dice < 88)
            replace_field(index);
        else if (dice < 90)
            any_host_handler();
        else if (dice < 91)
            main_screen.current_page = model.current_page = one_in(4);
        else
            any_box_call();
    }

    // Comparison.

    static handler kind_of(ux_handler real) {
        if (real == host_a || real == host_b)
            return real == host_a ? handler::host_a : handler::host_b;
        if (real == ux_text_field_add_char)
            return handler::add;
        if (real == ux_text_field_del_char)
            return handler::del;
        return real == ux_text_field_shift_char ? handler::shift : handler::none;
    }

    bool fields_agree() {
        for (int i = 0; i < k_fields; i++) {
            const keypad_model::field &plain = model.fields[static_cast<size_t>(i)];
            const unsigned status =
                (plain.focused ? 1u : 0) | (plain.selected ? 2u : 0) | (plain.visible ? 4u : 0);
            if (memcmp(fields[i]->text, plain.text, 256) != 0 || fields[i]->obj.status != status ||
                fields[i]->limit != plain.limit || fields[i]->input_type != plain.type)
                return false;
        }
        return true;
    }

    bool pages_agree() {
        for (int i = 0; i < 2; i++) {
            const ux_page *real = i ? second : page;
            const keypad_model::page &plain = model.pages[i];
            if (real->focus != (plain.focus < 0 ? nullptr : &fields[plain.focus]->obj))
                return false;
            for (int key = 0; key < 256; key++)
                if (kind_of(real->key_handlers[key]) != plain.keys[key])
                    return false;
        }
        return true;
    }

    bool timeouts_agree() {
        const ux_timeout *real = ux_timeout_list;
        for (const keypad_model::timeout &plain : model.timeouts) {
            if (!real || real->id != plain.id ||
                real->due_sec * 1000000L + real->due_usec != plain.due_us ||
                (real->callback == ux_text_field_waitkeytimeout) != plain.of_fields)
                return false;
            real = real->next;
        }
        return real == nullptr;
    }

    // One scale and the glyphs behind it for each time a field was painted.
    bool paints_agree() {
        std::vector<keypad_model::glyphs> painted;
        const std::string name = "FSS_get_bitmap ";
        for (const std::string &call : take_calls())
            if (call.rfind("FSS_set_scale", 0) == 0)
                painted.emplace_back();
            else if (call.rfind(name, 0) == 0)
                painted.back().push_back(std::stoi(call.substr(name.size())));
        return painted == std::exchange(model.painted, {});
    }

    bool boxes_agree() {
        for (int i = 0; i < k_boxes; i++) {
            const box_model &plain = box_models[i];
            const int count = static_cast<int>(plain.items.size());
            if (std::u16string(boxes[i]->text, std::find(boxes[i]->text, boxes[i]->text + 128,
                                                         u'\0')) != plain.text ||
                boxes[i]->count != count ||
                ux_select_box_get_pos(boxes[i]) != (count ? static_cast<int>(plain.current) : -1))
                return false;
        }
        return true;
    }

    ux_page *second = nullptr;
    ux_text_field *fields[k_fields] = {};
    ux_select_box *boxes[k_boxes] = {};
    box_model box_models[k_boxes];
    keypad_model::world model;
    std::mt19937 random{20};
};

} // namespace

TEST_F(InputReplayTest, random_keys_time_and_calls_leave_what_the_plain_models_have) {
    for (int step = 0; step < k_steps; step++) {
        model.out_of_memory = one_in(50);
        if (model.out_of_memory)
            hooks::fail_allocation(1);
        const int before = static_cast<int>(model.timeouts.size());
        if (model.out_of_memory)
            any_press(); // the only call whose failure the models know
        else
            any_step();
        hooks::fail_allocation(0);
        ASSERT_TRUE(fields_agree()) << "step " << step;
        ASSERT_TRUE(pages_agree()) << "step " << step;
        ASSERT_TRUE(timeouts_agree()) << "step " << step << " with " << before << " timeouts";
        ASSERT_TRUE(paints_agree()) << "step " << step;
        ASSERT_TRUE(boxes_agree()) << "step " << step;
    }
}
