// SPDX-License-Identifier: MIT
// Sheets of memos: borders, lines, texts that show nothing.

#include "tests/golden/golden_test.h"

namespace {

class MemoGolden : public GoldenTest {
  protected:
    ux_memo *make(int x, int y, int w, int h, const char16_t *text, int border) {
        ux_memo *memo = ux_memo_new(root(), x, y, w, h, text);
        ux_memo_set_fg_color(memo, 0xFFFFFFFF);
        ux_memo_set_border(memo, border);
        return memo;
    }
    static void show(ux_memo *memo) { memo->obj.show(&memo->obj); }

    void show_sheet() {
        constexpr int w = 150;
        constexpr int h = 76;
        show(make(4, 4, w, h, u"\n   normal", 2));
        ux_memo *focused = make(160, 4, w, h, u"\n   focused", 2);
        ux_memo_set_focus(&focused->obj);
        show(focused);
        show(make(316, 4, w, h, u"\n   no border", 0));
        show(make(4, 86, w, h,
                  u"wraps at the glyph that crosses the edge and ends with the last "
                  u"whole line of the box",
                  1));
        ux_memo *four = make(160, 86, w, h, u"\n   one by one", 5);
        four->obj.top_color = 0xFFFF0000;
        four->obj.bottom_color = 0xFF00FF00;
        four->obj.left_color = 0xFF0080FF;
        four->obj.right_color = UX_COLOR_NONE;
        show(four);
        ux_memo *unset = make(316, 86, w, h, u"\n   focus gone", 2);
        ux_memo_set_focus(&unset->obj);
        show(unset);
        ux_memo_unset_focus(&unset->obj);
        show(unset);
        show(make(4, 168, w, h, u"", 2));
        show(make(160, 168, w, h, std::u16string(128, u'a').c_str(), 2));
        ux_memo *hidden = make(316, 168, w, h, u"\n   hidden", 2);
        ux_memo_hide(&hidden->obj);
        hidden->obj.repaint(&hidden->obj);
    }
};

} // namespace

TEST_F(MemoGolden, text_and_picture_fill_the_border_and_long_or_empty_texts_show_it_alone) {
    make_screen(470, 248);
    show_sheet();
    expect_golden("memo_states");
}

TEST_F(MemoGolden, sixteen_bit_screen_has_black_boxes_behind_the_texts) {
    make_screen(470, 248, UX_COLOR_MODE_RGB565);
    show_sheet();
    expect_golden("memo_states_565");
}
