// SPDX-License-Identifier: MIT
// What tests of text drawing share: glyphs of a few dots, and a check that each was given back.
#ifndef UX_TESTS_FONT_TEXT_TEST_H
#define UX_TESTS_FONT_TEXT_TEST_H

#include "tests/support/screen_test.h"

#include <utility>

// Text of size 5 has lines of 5 pixels and its baseline 4 rows below a line's top, so a glyph with
// top 4 begins in the line's first row.
class TextTest : public ScreenTest {
  protected:
    using calls = std::vector<std::string>;

    static constexpr uint32_t k_ink = 0xFF112233;
    static constexpr uint32_t k_key = 0xFF445566;

    void TearDown() override {
        EXPECT_EQ(fake_chip::get().outstanding, 0) << "a glyph was not given back, or twice";
        ScreenTest::TearDown();
    }

    static void give(uint32_t code, const fake_chip::glyph &glyph) {
        fake_chip::get().glyphs[code] = glyph;
    }

    // One dot in the line's first row.
    static void give_dot(uint32_t code, int advance = 2) { give(code, {0, 4, advance, {"X"}}); }

    static calls take_calls() { return std::exchange(fake_chip::get().calls, {}); }

    static int draw(const void *text, int x, int y, int w, int h, int size = 5) {
        return uxFontDrawing(text, k_ink, k_key, x, y, w, h, size, size, 0, 1);
    }

    // The ink in `fb`.
    std::string ink() const { return fb_picture(k_ink); }

    // All glyph codes that were asked for since the last take_calls().
    static std::vector<int> take_codes() {
        const std::string call = "FSS_get_bitmap ";
        std::vector<int> codes;
        for (const std::string &made : take_calls())
            if (made.compare(0, call.size(), call) == 0)
                codes.push_back(std::stoi(made.substr(call.size())));
        return codes;
    }
};

#endif
