// SPDX-License-Identifier: MIT
// Sheets of text labels: sizes, lines, boxes, places.

#include "tests/golden/golden_test.h"

#include <cstdlib>

namespace {

constexpr uint32_t k_paper = 0xFF103050;
constexpr uint32_t k_ink = 0xFFFFFFFF;

class TextLabelGolden : public GoldenTest {
  protected:
    ux_text_label *show(int x, int y, int w, int h, int size, const char16_t *text,
                        uint32_t bg = k_paper) {
        ux_text_label *label = ux_text_label_new(root(), x, y, w, h, text);
        ux_text_label_set_font_size(label, size);
        ux_text_label_set_fg_color(label, k_ink);
        ux_text_label_set_bg_color(label, bg);
        label->obj.show(&label->obj);
        return label;
    }
};

} // namespace

TEST_F(TextLabelGolden, sizes_stand_on_their_baselines) {
    make_screen(320, 140);
    show(4, 4, 150, 10, 8, u"Size 8: fixing jumpy quips");
    show(4, 18, 150, 12, 10, u"Size 10: jumpy quips");
    show(4, 34, 150, 14, 12, u"Size 12: jumpy quips");
    show(4, 52, 150, 18, 16, u"Size 16: jumpy");
    show(4, 74, 150, 26, 24, u"24: jumpy");
    show(4, 104, 150, 34, 32, u"32: jum");
    show(164, 4, 150, 18, 16, u"\u00C4\u00D6\u00DC \u00E9\u00DF\u20AC \u00B1\u00B5");
    show(164, 26, 150, 18, 16, u"over the picture", UX_COLOR_NONE);
    show(164, 48, 150, 50, 48, u"Big", UX_COLOR_NONE);
    setenv("FontSize", "20", 1);
    show(164, 102, 150, 34, 8, u"FontSize is 20");
    unsetenv("FontSize");
    expect_golden("text_label_sizes");
}

TEST_F(TextLabelGolden, lines_break_and_wrap_inside_their_box) {
    make_screen(320, 128);
    show(4, 4, 100, 56, 14, u"Words are cut at the glyph that crosses the edge");
    show(4, 66, 100, 56, 14, u"one\ntwo\r\nfour\rfive");
    show(110, 4, 100, 40, 14, u"two lines fit into this box of forty rows and no third");
    show(110, 50, 100, 13, 14, u"too low");
    show(110, 70, 8, 56, 14, u"narrow");
    show(124, 70, 4, 56, 14, u"Wm");
    show(134, 70, 76, 56, 14, u"\n\nthird line");
    show(216, 4, 100, 56, 14, u"over the picture, on several lines", UX_COLOR_NONE);
    ux_text_label *changed = show(216, 66, 100, 26, 14, u"first text", UX_COLOR_NONE);
    ux_text_label_set_text(changed, u"painted over it");
    changed->obj.repaint(&changed->obj);
    show(216, 96, 100, 26, 0, u"no size, no text");
    expect_golden("text_label_lines");
}

TEST_F(TextLabelGolden, labels_that_leave_the_screen_go_on_in_the_next_row_or_end) {
    make_screen(200, 80);
    show(150, 10, 80, 18, 16, u"right edge");
    show(-20, 40, 80, 18, 16, u"left edge");
    show(80, 70, 60, 18, 16, u"bottom");
    show(80, -6, 60, 18, 16, u"top");
    expect_golden("text_label_edges");
}

TEST_F(TextLabelGolden, saved_background_comes_back_under_a_new_text) {
    make_screen(200, 60);
    const char16_t *texts[] = {u"before", u"after", u""};
    for (int i = 0; i < 3; i++) {
        ux_text_label *label = ux_text_label_new(root(), 4, 4 + 18 * i, 90, 16, u"before");
        ux_text_label_set_bg_color(label, UX_COLOR_NONE);
        ux_obj_set_flag(&label->obj, UX_FLAG_SAVE_BG);
        label->obj.show(&label->obj);
        ux_text_label_set_text(label, texts[i]);
        label->obj.repaint(&label->obj);
    }
    expect_golden("text_label_saved_background");
}
