// SPDX-License-Identifier: MIT
// What a slider bar paints: room for the signs, track, thumb, border, signs, numbers, and the
// screen under it.

#include "tests/support/plain_drawing.h"
#include "tests/widgets/slider_test.h"

namespace {

class SliderPaintingTest : public SliderTest {
  protected:
    void SetUp() override {
        SliderTest::SetUp();
        make_screen(40, 12);
        for (char16_t sign : {u'<', u'>'})
            fake_chip::get().glyphs[sign] = {0, 4, 2, {"X"}};
    }

    std::string letters_of_row(int row) const {
        const letters names = {
            {k_track, 't'}, {k_thumb, 'T'}, {k_ink, '#'}, {k_ground, 'g'}, {9, 'B'}};
        return buf_letters(names).substr(static_cast<size_t>(row * 41), 40);
    }

    // Sizes in which "<" was measured by the last show, largest first.
    static std::vector<uint32_t> s_sizes;
    static void measure_by(fake_chip::cell (*cell_of)(uint32_t size)) {
        fake_chip::get().cell_of = [=](uint32_t code, uint32_t size) {
            EXPECT_EQ(code, uint32_t{'<'});
            s_sizes.push_back(size);
            return cell_of(size);
        };
        s_sizes.clear();
    }

    // First and last column of the thumb in a row, or -1 and -1.
    std::pair<int, int> thumb_in_row(int row) const {
        const std::string text = letters_of_row(row);
        const auto column = [](size_t at) {
            return at == std::string::npos ? -1 : static_cast<int>(at);
        };
        return {column(text.find('T')), column(text.rfind('T'))};
    }

    static std::string times(int count, char letter) {
        return std::string(static_cast<size_t>(count), letter);
    }
};

std::vector<uint32_t> SliderPaintingTest::s_sizes;

using columns = std::pair<int, int>;

} // namespace

TEST_F(SliderPaintingTest, slider_is_ground_signs_track_and_a_thumb_of_one_pixel_more_than_8) {
    ux_slider_bar *slider = make(2, 1, 36, 8); // the cell is 3 x 6
    ux_slider_bar_set_pos(slider, 50);         // (30 - 8) * 50 / 100 = 11
    EXPECT_EQ(ux_slider_bar_show(&slider->obj), 0);
    EXPECT_EQ(letters_of_row(0), times(40, '.'));
    EXPECT_EQ(letters_of_row(1),
              "..#gg" + times(11, 't') + times(9, 'T') + times(10, 't') + "#gg..");
    for (int row = 2; row <= 8; row++)
        EXPECT_EQ(letters_of_row(row),
                  "..ggg" + times(11, 't') + times(9, 'T') + times(10, 't') + "ggg..");
    EXPECT_EQ(letters_of_row(9), times(40, '.'));
}

TEST_F(SliderPaintingTest, track_of_200_in_a_width_of_208_puts_position_50_at_96) {
    make_screen(220, 4);
    set_cell(4, 1);
    ux_slider_bar *slider = make(0, 0, 208, 2);
    ux_slider_bar_set_pos(slider, 50);
    ux_slider_bar_show(&slider->obj);
    for (int x = 0; x < 220; x++)
        EXPECT_EQ(buf_pixel(x, 1) == k_thumb, x >= 4 + 96 && x <= 4 + 96 + 8) << x;
}

TEST_F(SliderPaintingTest, thumb_is_as_wide_as_a_step_of_one_and_one_pixel_more) {
    ux_slider_bar *slider = make(0, 0, 36, 6);                         // L = 30
    ux_slider_bar_set_minmax(slider, 0, 3);                            // T = 10
    const columns expected[] = {{3, 13}, {9, 19}, {16, 26}, {23, 33}}; // 20 * k / 3
    for (int k = 0; k <= 3; k++) {
        ux_slider_bar_set_pos(slider, k);
        ux_slider_bar_show(&slider->obj);
        EXPECT_EQ(thumb_in_row(1), expected[k]) << k;
    }
}

TEST_F(SliderPaintingTest, range_wider_than_the_track_has_the_least_thumb) {
    ux_slider_bar *slider = make(0, 0, 36, 6);
    ux_slider_bar_set_minmax(slider, k_smallest, k_largest); // 2^32 - 1
    for (const auto &[position, expected] :
         {std::pair{k_smallest, columns{3, 11}}, std::pair{0, columns{14, 22}},
          std::pair{k_largest, columns{25, 33}}}) {
        ux_slider_bar_set_pos(slider, position);
        ux_slider_bar_show(&slider->obj);
        EXPECT_EQ(thumb_in_row(1), expected) << position; // 22 * 2^31 / (2^32 - 1) is above 11
    }
}

TEST_F(SliderPaintingTest, track_shorter_than_8_moves_the_thumb_of_the_minimum_only) {
    // L = 4, T = 8: L - T is 2^32 - 4, so any other position is beyond every screen.
    ux_slider_bar *slider = make(0, 0, 10, 6);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(thumb_in_row(0), (columns{3, 11}));
    for (int position : {50, 99, 100}) { // 50: offset 2147483646, its end beyond the largest number
        ux_slider_bar_set_pos(slider, position);
        ux_slider_bar_show(&slider->obj);
        fill_buf(0);
        ux_slider_bar_show(&slider->obj);
        EXPECT_EQ(thumb_in_row(0), (columns{-1, -1})) << position;
    }
}

TEST_F(SliderPaintingTest, track_of_less_than_nothing_is_empty_and_its_thumb_huge) {
    // L = 4 - 6 = 2^32 - 2, T = L / 100 = 42949672: rows run on to the end of the memory.
    ux_slider_bar *slider = make(5, 2, 4, 6);
    slider->bg_color = UX_COLOR_NONE;
    ux_obj_unset_flag(&slider->obj, UX_FLAG_SAVE_BG);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(letters_of_row(1), times(40, '.'));
    EXPECT_EQ(letters_of_row(2), ".....##." + times(32, 'T'));
    EXPECT_EQ(letters_of_row(11), times(40, 'T'));
}

TEST_F(SliderPaintingTest, thumb_whose_end_no_coordinate_reaches_stays_in_its_rows) {
    // L = 2^32 - 2, T = L / 1: from column 8 to the screen's edge.
    ux_slider_bar *slider = make(5, 2, 4, 6);
    slider->bg_color = UX_COLOR_NONE;
    ux_obj_unset_flag(&slider->obj, UX_FLAG_SAVE_BG);
    ux_slider_bar_set_minmax(slider, 0, 1);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(letters_of_row(7), "........" + times(32, 'T'));
    EXPECT_EQ(letters_of_row(8), times(40, '.'));
}

TEST_F(SliderPaintingTest, range_of_nothing_written_by_the_host_fills_the_track) {
    ux_slider_bar *slider = make(0, 0, 30, 6);
    for (const auto &[min, max] : {std::pair{7, 7}, std::pair{7, -3}}) {
        slider->minimum = slider->position = min;
        slider->maximum = max;
        ux_slider_bar_show(&slider->obj);
        EXPECT_EQ(thumb_in_row(1), (columns{3, 27})); // L = 24
    }
}

TEST_F(SliderPaintingTest, position_written_far_outside_the_range_paints_a_thumb_nowhere_else) {
    ux_slider_bar *slider = make(0, 0, 36, 6);
    ux_slider_bar_set_minmax(slider, 0, 1);
    for (int position : {k_largest, k_smallest}) {
        slider->position = position;
        fill_buf(0);
        ux_slider_bar_show(&slider->obj);
        EXPECT_EQ(letters_of_row(6), times(40, '.')) << position;
    }
}

TEST_F(SliderPaintingTest, sign_is_measured_downwards_until_it_is_not_higher_than_the_bar) {
    measure_by([](uint32_t size) { return fake_chip::cell{size, size + 2}; });
    ux_slider_bar *slider = make(0, 0, 36, 6);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(s_sizes, (std::vector<uint32_t>{6, 5, 4}));
    EXPECT_EQ(letters_of_row(1), "gggg" + times(9, 'T') + times(19, 't') + "gggg....");
}

TEST_F(SliderPaintingTest, sign_that_fits_in_no_size_has_the_room_of_size_1) {
    measure_by([](uint32_t size) { return fake_chip::cell{5 + size, 100}; });
    ux_slider_bar *slider = make(0, 0, 36, 3);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(s_sizes, (std::vector<uint32_t>{3, 2, 1}));
    EXPECT_EQ(letters_of_row(2), "gggggg" + times(9, 'T') + times(15, 't') + "gggggg....");
}

TEST_F(SliderPaintingTest, bar_below_1_pixel_measures_nothing) {
    measure_by([](uint32_t) { return fake_chip::cell{5, 1}; });
    for (int height : {0, -1, k_smallest}) {
        ux_slider_bar *slider = make(0, 4, 36, height);
        ux_slider_bar_show(&slider->obj);
    }
    ux_slider_bar *slider = make(0, 4, 36, 1);
    slider->show_numbers = 1; // 1 / 2
    ux_slider_bar_show(&slider->obj);
    EXPECT_TRUE(s_sizes.empty());
    EXPECT_EQ(letters_of_row(4), times(36, 'g') + "....");
}

TEST_F(SliderPaintingTest, bar_higher_than_any_screen_measures_a_bounded_number_of_times) {
    measure_by([](uint32_t size) { return fake_chip::cell{1, size + (1u << 31)}; });
    ux_slider_bar *slider = make(0, 0, 36, k_largest);
    ux_obj_unset_flag(&slider->obj, UX_FLAG_SAVE_BG);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(s_sizes.size(), 8192u);
}

TEST_F(SliderPaintingTest, sign_that_can_not_be_measured_takes_no_room_and_is_asked_for_once) {
    for (bool closed : {false, true}) {
        if (closed)
            ux_close_font();
        else
            fake_chip::get().unknown_codes.insert('<');
        ux_slider_bar *slider = make(0, 0, 36, 6);
        testing::internal::CaptureStdout();
        ux_slider_bar_show(&slider->obj);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "Could not retrieve size( char_index 60)\n");
        EXPECT_EQ(letters_of_row(0), times(9, 'T') + times(27, 't') + "....");
    }
}

TEST_F(SliderPaintingTest, second_sign_uses_the_width_of_the_first) {
    fake_chip::get().cell_of = [](uint32_t code, uint32_t) {
        return code == '<' ? fake_chip::cell{3, 6} : fake_chip::cell{9, 6};
    };
    ux_slider_bar *slider = make(0, 0, 36, 6);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(letters_of_row(0).substr(30), "ttt#gg....");
}

TEST_F(SliderPaintingTest, sign_with_less_room_than_a_line_of_text_is_not_drawn) {
    set_cell(3, 4); // the text is 5 high
    ux_slider_bar *slider = make(0, 0, 36, 6);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(letters_of_row(0).find('#'), std::string::npos);
}

TEST_F(SliderPaintingTest, sign_of_the_backgrounds_colour_leaves_what_it_stands_over) {
    set_cell(14, 6);
    ux_slider_bar *slider = make(20, 0, 10, 6); // ">" at 20 + 10 - 14, outside of the slider
    ux_slider_bar_set_fg_color(slider, k_ground, k_ink);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(buf_pixel(16, 0), 0u);
    ux_slider_bar_set_fg_color(slider, k_ink, k_ink);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(buf_pixel(16, 0), k_ink);
}

TEST_F(SliderPaintingTest, border_runs_around_the_track_over_the_thumb) {
    ux_slider_bar *slider = make(0, 0, 36, 6);
    ux_slider_bar_set_border(slider, 2);
    ux_obj_set_border_colors(&slider->obj, 9, 9);
    ux_slider_bar_show(&slider->obj);
    for (int row : {0, 1, 4, 5})
        EXPECT_EQ(letters_of_row(row).substr(3, 33),
                  times(30, 'B') + letters_of_row(row).substr(33, 3));
    for (int row : {2, 3})
        EXPECT_EQ(letters_of_row(row), "gggBB" + times(7, 'T') + times(19, 't') + "BBggg....");
}

TEST_F(SliderPaintingTest, focused_border_has_the_top_focus_colour_and_sides_of_0_are_left_out) {
    ux_slider_bar *slider = make(0, 0, 36, 6);
    ux_slider_bar_set_border(slider, 1);
    ux_obj_set_border_colors(&slider->obj, 0, 1);
    slider->obj.top_focus_color = 9;
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(letters_of_row(3), "ggg" + times(9, 'T') + times(21, 't') + "ggg....");
    ux_slider_bar_set_focus(&slider->obj);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(letters_of_row(0).substr(3, 30), times(30, 'B'));
    EXPECT_EQ(letters_of_row(3), "gggB" + times(8, 'T') + times(20, 't') + "Bggg....");
    ux_slider_bar_unset_focus(&slider->obj);
}

TEST_F(SliderPaintingTest, numbers_stand_below_the_bar_minimum_maximum_position_in_one_box) {
    for (char16_t digit : {u'-', u'1', u'2', u'4', u'8', u'3', u'7', u'6', u'5', u'0'})
        fake_chip::get().glyphs[digit] = {0, 4, 1, {"X"}};
    ux_slider_bar *slider = make(2, 0, 36, 12);
    slider->show_numbers = -1;
    ux_slider_bar_set_minmax(slider, k_smallest, 12);
    ux_slider_bar_set_pos(slider, -5);
    take_calls();
    ux_slider_bar_show(&slider->obj);
    std::string texts;
    for (const std::string &call : take_calls()) {
        if (call.starts_with("FSS_set_scale"))
            texts += ' ';
        else if (call.starts_with("FSS_get_bitmap "))
            texts += static_cast<char>(std::stoi(call.substr(15)));
    }
    EXPECT_EQ(texts, " < > -2147483648 12 -5");
    EXPECT_EQ(letters_of_row(5).substr(5, 9), times(9, 't')) << "the bar is the upper half";
    EXPECT_EQ(letters_of_row(6), "..ggg" + times(11, '#') + times(22, 'g') + "..");
    EXPECT_EQ(letters_of_row(7), ".." + times(36, 'g') + "..");
}

TEST_F(SliderPaintingTest, numbers_have_the_width_of_the_track_and_the_height_of_a_sign) {
    struct {
        uint32_t sign_height;
        int advance;
        uint32_t found;
    } const cases[] = {{6, 30, k_ink}, {6, 31, k_ground}, {5, 30, k_ink}, {4, 30, k_ground}};
    for (const auto &c : cases) {
        set_cell(3, c.sign_height);
        fake_chip::get().glyphs[u'0'] = {0, 4, c.advance, {"X"}};
        ux_slider_bar *slider = make(0, 0, 36, 12);
        slider->show_numbers = 1;
        ux_slider_bar_show(&slider->obj);
        EXPECT_EQ(buf_pixel(3, 6), c.found) << c.sign_height << ", " << c.advance;
    }
}

TEST_F(SliderPaintingTest, texts_of_the_backgrounds_colour_leave_what_they_stand_over) {
    set_cell(3, 100);
    for (char16_t letter : {u'<', u'0'})
        fake_chip::get().glyphs[letter] = {0, 4, 2, {".", ".", "X"}};
    ux_slider_bar *slider = make(0, 0, 36, 2); // dots below it: in row 2, the numbers' in 1 + 2
    slider->show_numbers = 1;
    ux_slider_bar_set_fg_color(slider, k_ground, k_ink);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(buf_pixel(0, 2), 0u);
    EXPECT_EQ(buf_pixel(3, 3), 0u);
    ux_slider_bar_set_fg_color(slider, k_ink, k_ink);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(buf_pixel(0, 2), k_ink);
    EXPECT_EQ(buf_pixel(3, 3), k_ink);
}

TEST_F(SliderPaintingTest, odd_height_is_halved_downwards) {
    set_cell(3, 5);
    ux_slider_bar *slider = make(0, 0, 36, 11);
    slider->show_numbers = 1;
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(thumb_in_row(4), (columns{3, 11}));
    EXPECT_EQ(thumb_in_row(5), (columns{-1, -1}));
}

TEST_F(SliderPaintingTest, focus_chooses_the_colours) {
    ux_slider_bar *slider = make(0, 0, 36, 6);
    ux_slider_bar_set_fg_color(slider, 1, 2);
    ux_slider_bar_set_bg_color(slider, 3, 4);
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(buf_pixel(0, 0), 1u);
    EXPECT_EQ(buf_pixel(1, 1), 3u);
    slider->obj.status |= UX_ST_FOCUSED;
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(buf_pixel(0, 0), 2u);
    EXPECT_EQ(buf_pixel(1, 1), 4u);
}

TEST_F(SliderPaintingTest, background_of_0_shows_the_screen_saved_before_the_first_paint) {
    const uint32_t screen = 0xFF204060;
    struct {
        uint32_t bg, focus_bg;
        bool saves;
    } const cases[] = {{0, 0, true}, {0, 5, true}, {5, 0, true}, {5, 5, false}};
    for (const auto &c : cases) {
        fill_buf(screen);
        ux_slider_bar *slider = make(0, 0, 36, 6);
        ux_slider_bar_set_bg_color(slider, c.bg, c.focus_bg);
        ux_slider_bar_show(&slider->obj);
        fill_buf(screen + 1);
        ux_slider_bar_show(&slider->obj);
        EXPECT_EQ(saved_under(&slider->obj),
                  c.saves ? std::vector<uint32_t>(36 * 6, screen) : std::vector<uint32_t>());
        EXPECT_EQ(buf_pixel(1, 1), c.bg ? c.bg : screen);
    }
}

TEST_F(SliderPaintingTest, slider_of_another_page_only_changes_its_bits) {
    ux_page *second = new_page();
    ux_slider_bar *slider = ux_slider_bar_new(&second->container, 0, 0, 36, 6);
    expect_only(
        slider, [&] { return ux_slider_bar_show(&slider->obj); },
        [](ux_slider_bar &r) { r.obj.status |= UX_ST_VISIBLE; });
}

TEST_F(SliderPaintingTest, hide_clears_the_bit_and_leaves_the_pixels) {
    ux_slider_bar *slider = make(0, 0, 36, 6);
    ux_slider_bar_show(&slider->obj);
    expect_only(
        slider, [&] { return ux_slider_bar_hide(&slider->obj); },
        [](ux_slider_bar &r) { r.obj.status &= ~4u; });
    expect_only(
        slider, [&] { return ux_slider_bar_repaint(&slider->obj); }, [](ux_slider_bar &) {});
}

TEST_F(SliderPaintingTest, show_makes_the_rectangle_visible_on_the_device) {
    ux_slider_bar *slider = make(2, 1, 36, 6);
    set_apart();
    ux_slider_bar_show(&slider->obj);
    EXPECT_EQ(fb_pixel(2, 6), k_ground);
    EXPECT_EQ(fb_pixel(20, 6), k_track);
}

TEST_F(SliderPaintingTest, random_sliders_equal_the_rules_as_plain_loops) {
    fake_chip::get().record_calls = false;
    fake_chip::get().glyphs.clear(); // texts are another test's
    std::mt19937 random(20);
    const auto pick = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    ux_slider_bar *slider = make(0, 0, 1, 1);
    for (int run = 0; run < 3000; run++) {
        const int w = pick(12, 60), h = pick(0, 14), sign = pick(0, 6);
        const int x = pick(-20, 45), y = pick(-5, 14), border = pick(-1, 4);
        ux_slider_bar_set_size(slider, x, y, w, h);
        ux_slider_bar_set_border(slider, border);
        ux_obj_set_border_colors(&slider->obj, 9, 9);
        slider->show_numbers = pick(0, 1);
        set_cell(static_cast<uint32_t>(sign), 1);
        const int min = pick(-50, 50), max = min + pick(1, run % 2 ? 10 : 1000);
        ux_slider_bar_set_minmax(slider, min, max);
        const int position = pick(min, max);
        ux_slider_bar_set_pos(slider, position);
        fill_buf(0);
        ux_slider_bar_show(&slider->obj);

        const int bar = slider->show_numbers ? h / 2 : h;
        const int room = bar >= 1 ? sign : 0;
        plain::canvas canvas{40, 12};
        plain::box(canvas, x, y, x + w - 1, y + h - 1, k_ground);
        plain::box(canvas, x + room, y, x + w - 1 - room, y + bar - 1, k_track);
        const uint32_t length = static_cast<uint32_t>(w - 2 * room);
        uint32_t thumb = length / static_cast<uint32_t>(max - min);
        if (thumb < 8)
            thumb = 8;
        const double exact = static_cast<double>(length - thumb) * (position - min) / (max - min);
        const int64_t left = x + room + static_cast<int64_t>(exact);
        // Shorter tracks than the thumb leave the range of coordinates: told above.
        if (length >= thumb || position == min)
            plain::box(canvas, left, y, left + thumb, y + bar - 1, k_thumb);
        else if (left + thumb <= k_largest)
            continue;
        for (int i = 0; i < border; i++) {
            const int x0 = x + room + i, x1 = x + w - 1 - room - i;
            plain::line(canvas, x0, y + i, x1, y + i, 9);
            plain::line(canvas, x0, y + bar - 1 - i, x1, y + bar - 1 - i, 9);
            plain::line(canvas, x0, y + i, x0, y + bar - 1 - i, 9);
            plain::line(canvas, x1, y + i, x1, y + bar - 1 - i, 9);
        }
        for (int at = 0; at < 40 * 12; at++)
            ASSERT_EQ(buf_pixel(at % 40, at / 40), canvas.pixels[static_cast<size_t>(at)])
                << "run " << run << " at " << at % 40 << ", " << at / 40;
    }
}

TEST_F(SliderPaintingTest, sliders_of_any_place_and_size_stay_inside_the_screen) {
    fake_chip::get().record_calls = false;
    const int places[] = {k_smallest, -100, -3, 0, 15, 100, k_largest};
    const int sizes[] = {k_smallest, -3, 0, 1, 5, 40, k_largest};
    const fake_chip::cell cells[] = {{0, 1}, {3, 1}, {0xFFFFFFFF, 1}, {0x80000000, 0}};
    ux_slider_bar *slider = make(0, 0, 4, 4);
    slider->show_numbers = 1;
    ux_obj_unset_flag(&slider->obj, UX_FLAG_SAVE_BG);
    ux_slider_bar_set_border(slider, 3);
    for (const fake_chip::cell &cell : cells) {
        set_cell(cell.width, cell.height);
        for (int range : {1, 100, k_largest}) {
            ux_slider_bar_set_minmax(slider, 0, range);
            for (int position : {0, range / 2, range})
                for (int x : places)
                    for (int y : places)
                        for (int w : sizes)
                            for (int h : sizes) {
                                ux_slider_bar_set_size(slider, x, y, w, h);
                                ux_slider_bar_set_pos(slider, position);
                                ASSERT_EQ(ux_slider_bar_show(&slider->obj), 0);
                            }
        }
    }
}
