// SPDX-License-Identifier: MIT
// Sheets of strings that the graphics engine renders: sizes, alignments, colours, edges.

#include "tests/golden/golden_test.h"

namespace {

constexpr uint32_t k_paper = 0xFF103050;
constexpr uint32_t k_ink = 0xFFFFFFFF;
constexpr uint32_t k_frame = 0xFF808080;

class DrawStringGolden : public GoldenTest {
  protected:
    void SetUp() override {
        GoldenTest::SetUp();
        testing::internal::CaptureStdout();
        ASSERT_EQ(ux_open_font(), 0);
    }

    void TearDown() override {
        EXPECT_EQ(ux_close_font(), 0);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "open font *****************\n");
        GoldenTest::TearDown();
    }

    void draw(int x, int y, int w, int h, int size, const char *text, int align = 0,
              uint32_t bg = k_paper) {
        uxDrawRect(x - 1, y - 1, x + w, y + h, k_frame);
        EXPECT_EQ(ux_draw_string(text, size, k_ink, bg, x, y, w, h, align), 0);
    }
};

} // namespace

TEST_F(DrawStringGolden, sizes_are_as_high_as_their_cells) {
    make_screen(360, 212);
    const int sizes[] = {8, 10, 12, 14, 16, 20, 24, 32};
    int y = 4;
    for (const int size : sizes) {
        draw(4, y, 352, size * 5 / 4, size, "Sphinx of quartz, judge my vow! 0123 @{}|_");
        y += size * 5 / 4 + 5;
    }
    expect_golden("draw_string_sizes");
}

TEST_F(DrawStringGolden, nine_alignments_place_and_crop) {
    make_screen(320, 180);
    for (int align = 0; align < 9; align++) {
        const int x = 4 + align % 3 * 105;
        const int y = 4 + align / 3 * 59;
        draw(x, y, 100, 26, 12, "Aligned", align);
        draw(x, y + 30, 46, 12, 16, "Cropped", align);
        draw(x + 50, y + 30, 50, 24, 0, "Fit", align, 0);
    }
    expect_golden("draw_string_alignments");
}
