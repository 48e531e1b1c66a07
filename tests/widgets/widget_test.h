// SPDX-License-Identifier: MIT
// What tests of widgets share: a current page, one glyph, pictures in several colours, and the
// check that a setter stores and does nothing else.
#ifndef UX_TESTS_WIDGETS_WIDGET_TEST_H
#define UX_TESTS_WIDGETS_WIDGET_TEST_H

#include "tests/support/screen_test.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>

// "FontSize" is 5, the letter a one dot in the first row and column of its cell, 2 pixels wide.
class WidgetTest : public ScreenTest {
  protected:
    using calls = std::vector<std::string>;
    using letters = std::map<uint32_t, char>;

    void SetUp() override {
        ScreenTest::SetUp();
        page = new_page();
        setenv("FontSize", "5", 1);
        fake_chip::get().glyphs[u'a'] = {0, 4, 2, {"X"}};
    }

    void TearDown() override {
        unsetenv("FontSize");
        EXPECT_EQ(fake_chip::get().outstanding, 0) << "a glyph was not given back, or twice";
        ScreenTest::TearDown();
    }

    ux_container *root() { return &page->container; }

    static calls take_calls() { return std::exchange(fake_chip::get().calls, {}); }

    // A memory as text: '.' for 0, the letter of each colour, '?' for any other.
    std::string picture(const uint8_t *memory, const letters &names) const {
        std::string text;
        for (int i = 0; i < main_screen.width * main_screen.height; i++) {
            const uint32_t value = memory == main_screen.fb
                                       ? fb_pixel(i % main_screen.width, i / main_screen.width)
                                       : buf_pixel(i % main_screen.width, i / main_screen.width);
            const auto found = names.find(value);
            text += value == 0 ? '.' : found == names.end() ? '?' : found->second;
            if (i % main_screen.width == main_screen.width - 1)
                text += '\n';
        }
        return text;
    }
    std::string buf_letters(const letters &names) const { return picture(main_screen.buf, names); }
    std::string fb_letters(const letters &names) const { return picture(main_screen.fb, names); }

    static std::vector<uint8_t> memory_of(const uint8_t *memory) {
        const size_t bytes = static_cast<size_t>(main_screen.width * main_screen.height *
                                                 main_screen.bytes_per_pixel);
        return std::vector<uint8_t>(memory, memory + bytes);
    }

    // `call` gives 0, makes of the record what `change` makes of a copy, and touches nothing else.
    template <class Widget, class Call, class Change>
    void expect_only(Widget *widget, Call call, Change change) {
        Widget expected;
        memcpy(&expected, widget, sizeof expected);
        change(expected);
        const std::vector<uint8_t> buf = memory_of(main_screen.buf);
        take_calls();
        EXPECT_EQ(call(), 0);
        EXPECT_EQ(memcmp(&expected, widget, sizeof expected), 0) << "the record differs";
        EXPECT_EQ(memory_of(main_screen.buf), buf) << "something was painted";
        EXPECT_EQ(take_calls(), calls{});
    }

    // The screen pixels saved under `obj`; none when nothing was saved.
    static std::vector<uint32_t> saved_under(const ux_obj *obj) {
        if (!obj->bg_backup)
            return {};
        std::vector<uint32_t> pixels(static_cast<size_t>(obj->width * obj->height));
        memcpy(pixels.data(), obj->bg_backup, pixels.size() * sizeof(uint32_t));
        return pixels;
    }

    ux_page *page = nullptr; // page 0, the current one
};

#endif
