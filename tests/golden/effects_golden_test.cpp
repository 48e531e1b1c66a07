// SPDX-License-Identifier: MIT
// The picture of docs/effects.md: each reveal effect half way, and the order of the last one's
// tiles.

#include "tests/golden/golden_test.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <unistd.h>

namespace {

constexpr int k_photo_width = 288;
constexpr int k_photo_height = 162;
constexpr int k_columns = 3;
constexpr int k_gap = 24;
constexpr int k_text_size = 18;
constexpr int k_cell_width = k_photo_width + k_gap;
constexpr int k_cell_height = k_photo_height + k_text_size + 16 + k_gap;
constexpr uint32_t k_page_color = 0xFF0E1726;
constexpr uint32_t k_empty_color = 0xFF22344F; // where the photo is still to come
constexpr uint32_t k_text_color = 0xFFE6EDF7;
constexpr int k_effects = 8;

// Steps of the present effect, and the one after which it is told to stop; 0 = none.
struct {
    int taken;
    int last;
} s_steps;

struct heap_free {
    void operator()(void *block) const { free(block); }
};

} // namespace

extern "C" {

char *__real_getenv(const char *name);

// STATUS is read once after every step.
char *__wrap_getenv(const char *name) {
    static char stop[] = "gotoMenu";
    if (strcmp(name, "STATUS") != 0)
        return __real_getenv(name);
    return ++s_steps.taken == s_steps.last ? stop : nullptr;
}

int __wrap_usleep(useconds_t) {
    return 0;
}

} // extern "C"

namespace {

class EffectsGolden : public GoldenTest {
  protected:
    void SetUp() override {
        GoldenTest::SetUp();
        unsetenv("ShowMSG");
        make_screen(k_columns * k_cell_width + k_gap, k_columns * k_cell_height + k_gap);
        uxDrawBox(0, 0, main_screen.width - 1, main_screen.height - 1, k_page_color);
        m_photo.reset(ux_load_image(UX_GOLDEN_PHOTOS "/lake.jpg", k_photo_width, k_photo_height));
    }

    static int left(int cell) { return k_gap + cell % k_columns * k_cell_width; }
    static int top(int cell) { return k_gap + cell / k_columns * k_cell_height; }

    static void paint_empty(int cell) {
        uxDrawBox(left(cell), top(cell), left(cell) + k_photo_width - 1,
                  top(cell) + k_photo_height - 1, k_empty_color);
    }

    // Draws the photo up to a step, 0 for all of them; returns the steps taken.
    int draw(int cell, int effect, int last_step) {
        s_steps = {0, last_step};
        EXPECT_EQ(ux_draw_image_buff(m_photo.get(), left(cell), top(cell), k_photo_width,
                                     k_photo_height, effect),
                  0);
        return s_steps.taken;
    }

    static void write(int cell, const char16_t *text) {
        uxFontDrawing(text, k_text_color, k_page_color, left(cell), top(cell) + k_photo_height + 8,
                      k_photo_width, k_text_size + 4, k_text_size, k_text_size, 0, 1);
    }

    // The first pixel of a cell, row by row, that shows the photo now and did not in `before`.
    int newly_painted(int cell, const std::vector<uint8_t> &before) const {
        for (int i = 0; i < k_photo_width * k_photo_height; i++) {
            const auto at = static_cast<size_t>(offset(cell, i));
            if (memcmp(main_screen.fb + at, before.data() + at, sizeof(uint32_t)) != 0)
                return i;
        }
        return -1;
    }

    static std::vector<uint8_t> screen() {
        return {main_screen.fb, main_screen.fb + main_screen.width * main_screen.height * 4};
    }

    std::unique_ptr<void, heap_free> m_photo;

  private:
    static int offset(int cell, int i) {
        return 4 * ((top(cell) + i / k_photo_width) * main_screen.width + left(cell) +
                    i % k_photo_width);
    }
};

// Where the tiles of effect 8 begin, in its order: what each step adds.
class TileOrder : public EffectsGolden {
  protected:
    std::vector<int> places(int cell) {
        paint_empty(cell);
        const int steps = draw(cell, k_effects, 0);
        std::vector<int> result;
        for (int step = 1; step <= steps; step++) {
            paint_empty(cell);
            if (step > 1)
                draw(cell, k_effects, step - 1);
            const std::vector<uint8_t> before = screen();
            paint_empty(cell);
            draw(cell, k_effects, step);
            result.push_back(newly_painted(cell, before));
        }
        paint_empty(cell);
        return result;
    }

    // Frames the tile that begins at a pixel and writes its number into it.
    static void number(int cell, int place, size_t n) {
        constexpr int side = k_photo_width / 8;
        constexpr int size = 13;
        const int x = left(cell) + place % k_photo_width;
        const int y = top(cell) + place / k_photo_width;
        const int bottom = std::min(y + side, top(cell) + k_photo_height) - 1;
        uxDrawRect(x, y, x + side - 1, bottom, k_page_color);
        const std::string digits = std::to_string(n);
        const std::u16string text(digits.begin(), digits.end());
        uxFontDrawing(text.c_str(), k_text_color, k_page_color, x + (n < 10 ? 14 : 10), y + 2,
                      side - 10, size + 2, size, size, 0, 1);
    }
};

} // namespace

TEST_F(TileOrder, effects_look_right_half_way) {
    ASSERT_NE(m_photo, nullptr);
    constexpr const char16_t *names[k_effects] = {u"1  from the top",    u"2  from the bottom",
                                                  u"3  from the left",   u"4  from the right",
                                                  u"5  from the corner", u"6  towards the middle",
                                                  u"7  blinds",          u"8  spiral of tiles"};
    for (int i = 0; i < k_effects; i++) {
        paint_empty(i);
        const int steps = draw(i, i + 1, 0);
        paint_empty(i);
        EXPECT_EQ(draw(i, i + 1, steps / 2), steps / 2);
        write(i, names[i]);
    }
    size_t n = 0;
    for (const int place : places(k_effects)) {
        ASSERT_GE(place, 0);
        number(k_effects, place, ++n);
    }
    write(k_effects, u"8  the order of its tiles");
    expect_golden("effects", UX_GOLDEN_DOCUMENTS);
}
