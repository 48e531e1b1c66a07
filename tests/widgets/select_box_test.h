// SPDX-License-Identifier: MIT
// The fixture of the select box's tests: an open font whose measuring is noted, boxes with items,
// and keys pressed as the main loop presses them.
#ifndef UX_TESTS_WIDGETS_SELECT_BOX_TEST_H
#define UX_TESTS_WIDGETS_SELECT_BOX_TEST_H

#include "tests/widgets/widget_test.h"

#include <algorithm>
#include <initializer_list>

class SelectBoxTest : public WidgetTest {
  protected:
    static constexpr uint32_t k_text = 0xFF0000F0;
    static constexpr uint32_t k_normal = 0xFF00B000;
    static constexpr uint32_t k_focus = 0xFF00B100;
    static constexpr uint32_t k_screen = 0xFF204060;
    static constexpr uint32_t k_black = 0xFF000000;

    // A change that a box told of.
    struct heard_change {
        ux_select_box *box;
        int index;
    };
    using pairs = std::vector<std::pair<char, int>>;

    // The common table of kept handlers starts empty. The engine's "<" is 3 pixels wide and its ">"
    // 4, both as high as their size.
    void SetUp() override {
        WidgetTest::SetUp();
        make_screen(40, 10);
        ux_select_box *any = make();
        any->obj.unset_focus(&any->obj);
        std::fill(std::begin(page->key_handlers), std::end(page->key_handlers), nullptr);
        ux_container_del_obj(root(), &any->obj, 0, 0);
        boxes.clear();
        testing::internal::CaptureStdout();
        ux_open_font();
        testing::internal::GetCapturedStdout();
        measure_as([](char sign, uint32_t size) {
            return fake_chip::cell{sign == '<' ? 3u : 4u, size};
        });
        s_changes.clear();
        take_calls();
    }

    void TearDown() override {
        ux_close_font();
        WidgetTest::TearDown();
    }

    // How the engine measures a sign in a size from now on.
    template <class Measure>
    void measure_as(Measure measure) {
        fake_chip::get().cell_of = [this, measure](uint32_t code, uint32_t scale) {
            measured.emplace_back(static_cast<char>(code), static_cast<int>(scale));
            return measure(static_cast<char>(code), scale);
        };
    }
    pairs take_measured() { return std::exchange(measured, {}); }

    ux_select_box *make(std::initializer_list<const char16_t *> texts = {}) {
        return make_at({1, 1, 30, 6}, texts);
    }
    struct place {
        int x, y, width, height;
    };
    ux_select_box *make_at(const place &at, std::initializer_list<const char16_t *> texts = {}) {
        ux_select_box *box = ux_select_box_new(root(), at.x, at.y, at.width, at.height);
        ux_select_box_set_fg_color(box, k_text, k_text);
        ux_select_box_set_bg_color(box, k_normal, k_focus);
        for (const char16_t *text : texts)
            ux_select_box_add_item(box, text);
        boxes.push_back(box);
        return box;
    }

    // What the main loop does with a key.
    void press(int key) {
        ux_event event = {};
        event.type = UX_EVENT_KEY;
        event.value = key;
        event.obj = page->focus;
        const ux_handler handler = page->key_handlers[key];
        EXPECT_EQ(handler ? handler(&event) : 0, 0);
    }

    static std::u16string text_of(const char16_t *text) {
        return std::u16string(text, std::find(text, text + 128, u'\0'));
    }
    static std::u16string shown(const ux_select_box *box) { return text_of(box->text); }

    static int note_change(ux_select_box *box, int index) {
        s_changes.push_back({box, index});
        return 77;
    }

    static std::vector<int> take_changes() {
        std::vector<int> indexes;
        for (const heard_change &each : s_changes)
            indexes.push_back(each.index);
        s_changes.clear();
        return indexes;
    }

    // The glyphs asked for since the last call.
    static std::string take_glyphs() {
        const std::string name = "FSS_get_bitmap ";
        std::string glyphs;
        for (const std::string &call : take_calls())
            if (call.rfind(name, 0) == 0)
                glyphs += static_cast<char>(std::stoi(call.substr(name.size())));
        return glyphs;
    }

    static inline std::vector<heard_change> s_changes;
    std::vector<ux_select_box *> boxes; // made by the test
    pairs measured;                     // sign and size, in order
};

#endif
