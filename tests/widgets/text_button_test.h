// SPDX-License-Identifier: MIT
// The fixture of the text button's tests.
#ifndef UX_TESTS_WIDGETS_TEXT_BUTTON_TEST_H
#define UX_TESTS_WIDGETS_TEXT_BUTTON_TEST_H

#include "tests/widgets/widget_test.h"

class TextButtonTest : public WidgetTest {
  protected:
    static constexpr uint32_t k_text = 0xFF0000F0;
    static constexpr uint32_t k_normal = 0xFF00B000;
    static constexpr uint32_t k_focus = 0xFF00B100;
    static constexpr uint32_t k_select = 0xFF00B200;
    static constexpr uint32_t k_both = 0xFF00B300;
    static constexpr uint32_t k_screen = 0xFF204060;
    static constexpr uint32_t k_blended = 0xFF1F3F5F; // k_screen * 255 >> 8, over black

    ux_text_button *make(int x, int y, int w, int h, const char16_t *text = u"a") {
        return ux_text_button_new(root(), x, y, w, h, text);
    }
};

#endif
