// SPDX-License-Identifier: MIT
// The memo: its record, its copy of the text, which picture it takes, what it paints.

#include "tests/support/page_end.h"
#include "tests/widgets/picture_widget_test.h"

#include <climits>
#include <unistd.h>

namespace {

constexpr char k_first[] = "/orbo/images/MSGbgimage.png";
constexpr char k_second[] = "/mnt/firmware/images/MSGbgimage.png";
constexpr char k_complaint[] = "uxMemo:laod MSGbgimage error \n";
constexpr uint32_t k_ink = 0xFF123456;

// Which of the paths are readable, and the questions asked.
std::vector<std::string> s_readable;
std::vector<std::string> s_asked;

int answer_access(const char *path, int mode) {
    s_asked.push_back(std::string(path) + " " + std::to_string(mode));
    for (const std::string &readable : s_readable)
        if (readable == path)
            return 0;
    return -1;
}

class MemoTest : public PictureWidgetTest {
  protected:
    void SetUp() override {
        PictureWidgetTest::SetUp();
        s_asked.clear();
        s_readable.clear();
        hooks::get().access = answer_access;
        fake_chip::get().files = {{k_first, blue}, {k_second, green}};
    }

    ux_memo *make(const char16_t *text = u"a", int x = 2, int y = 1, int w = 8, int h = 6) {
        ux_memo *memo = ux_memo_new(root(), x, y, w, h, text);
        memo->fg_color = k_ink;
        return memo;
    }

    // What a show prints on standard output.
    static std::string shown(ux_memo *memo) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(ux_memo_show(&memo->obj), 0);
        return testing::internal::GetCapturedStdout();
    }

    static std::u16string kept(const ux_memo *memo, size_t units) {
        return std::u16string(memo->text, units);
    }

    const letters names = {{k_ink, 'i'},      {k_blue_seen, 'b'}, {k_green_seen, 'g'},
                           {0xFFFFFFFF, 'w'}, {0xFFFFEE00, 'y'},  {0xFF010101, '1'},
                           {0xFF020202, '2'}, {0xFF030303, '3'},  {0xFF040404, '4'}};
};

} // namespace

TEST_F(MemoTest, constructor_fills_the_memos_own_fields_and_paints_nothing) {
    ux_memo *memo = ux_memo_new(root(), 2, 1, 8, 6, u"ab");
    EXPECT_EQ(memo->fg_color, 0xFFAAAAAAu);
    EXPECT_EQ(memo->bg_color, 0xFF000000u);
    EXPECT_EQ(memo->font_size, 16);
    EXPECT_EQ(kept(memo, 3), std::u16string(u"ab\0", 3));
    EXPECT_EQ(take_calls(), calls{});
    EXPECT_EQ(memory_of(main_screen.buf), std::vector<uint8_t>(16 * 8 * 4));
}

TEST_F(MemoTest, record_of_the_hosts_is_filled_whatever_it_held) {
    ux_memo memo;
    memset(&memo, 0xA5, sizeof memo);
    EXPECT_EQ(ux_memo_init(nullptr, &memo, 1, 2, 3, 4, u"a"), 0);
    EXPECT_EQ(memo.obj.page_id, -1);
    EXPECT_EQ(memo.obj.next, nullptr);
    EXPECT_EQ(memo.obj.parent, nullptr);
    EXPECT_EQ(memo.obj.fg_backup, nullptr);
    EXPECT_EQ(memo.obj.status, 0u);
    EXPECT_EQ(memo.font_size, 16);
    EXPECT_EQ(kept(&memo, 2), std::u16string(u"a\0", 2));
    free(memo.text);
}

TEST_F(MemoTest, memo_without_memory_for_its_text_is_made_and_shows_its_border_only) {
    s_readable = {k_first};
    hooks::fail_allocation(2);
    ux_memo *memo = ux_memo_new(root(), 2, 1, 4, 3, u"a");
    ASSERT_NE(memo, nullptr);
    EXPECT_EQ(memo->text, nullptr);
    memo->obj.border = 1;
    EXPECT_EQ(shown(memo), "") << "no complaint either";
    EXPECT_EQ(s_asked, calls{});
    EXPECT_EQ(buf_pixel(2, 1), 0xFFFFFFFFu);
    EXPECT_EQ(buf_pixel(3, 2), 0u);
}

TEST_F(MemoTest, set_text_without_memory_leaves_no_text) {
    ux_memo *memo = make(u"old");
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_memo_set_text(memo, u"new"), -2);
    EXPECT_EQ(memo->text, nullptr);
    EXPECT_EQ(ux_memo_set_text(memo, u"new"), 0);
    EXPECT_EQ(kept(memo, 4), std::u16string(u"new\0", 4));
}

TEST_F(MemoTest, text_is_copied_with_its_zero_unit_and_not_a_unit_further) {
    for (size_t units : {0u, 1u, 2u, 127u, 128u}) {
        const std::u16string text(units, u'x');
        const page_end guarded(text.c_str(), (units + 1) * sizeof(char16_t));
        ux_memo *memo = make(guarded.units());
        EXPECT_EQ(kept(memo, units + 1), text + u'\0') << units;
    }
}

TEST_F(MemoTest, text_of_200_units_is_kept_as_its_first_129) {
    std::u16string text;
    for (int k = 0; k < 200; k++)
        text += static_cast<char16_t>(0x4101 + k);
    const page_end guarded(text.c_str(), 129 * sizeof(char16_t));
    ux_memo *memo = make(guarded.units());
    EXPECT_EQ(kept(memo, 129), text.substr(0, 129));
}

TEST_F(MemoTest, callers_text_is_not_kept) {
    char16_t text[] = u"ab";
    ux_memo *memo = make(text);
    text[0] = u'x';
    EXPECT_EQ(kept(memo, 3), std::u16string(u"ab\0", 3));
}

TEST_F(MemoTest, part_of_the_memos_own_text_may_be_given) {
    ux_memo *memo = make(u"hello");
    EXPECT_EQ(ux_memo_set_text(memo, memo->text + 3), 0);
    EXPECT_EQ(kept(memo, 3), std::u16string(u"lo\0", 3));
}

TEST_F(MemoTest, null_text_is_an_empty_one) {
    ux_memo *memo = make(nullptr);
    EXPECT_EQ(kept(memo, 1), std::u16string(1, u'\0'));
    EXPECT_EQ(ux_memo_set_text(memo, u"a"), 0);
    EXPECT_EQ(ux_memo_set_text(memo, nullptr), 0);
    EXPECT_EQ(kept(memo, 1), std::u16string(1, u'\0'));
}

TEST_F(MemoTest, setters_store_and_do_nothing_else) {
    ux_memo *memo = make();
    shown(memo);
    expect_only(
        memo, [&] { return ux_memo_set_fg_color(memo, 0x11223344); },
        [](ux_memo &expected) { expected.fg_color = 0x11223344; });
    expect_only(
        memo, [&] { return ux_memo_set_bg_color(memo, 0x55667788); },
        [](ux_memo &expected) { expected.bg_color = 0x55667788; });
    expect_only(
        memo, [&] { return ux_memo_set_font_size(memo, 33); },
        [](ux_memo &expected) { expected.font_size = 33; });
    expect_only(
        memo, [&] { return ux_memo_set_font(memo, "any", 3); }, [](ux_memo &) {});
    expect_only(
        memo, [&] { return ux_memo_set_border(memo, 4); },
        [](ux_memo &expected) { expected.obj.border = 4; });
    expect_only(
        memo, [&] { return ux_memo_set_border_color(memo, 5, 6); },
        [](ux_memo &expected) {
            ux_obj &obj = expected.obj;
            obj.top_color = obj.bottom_color = obj.left_color = obj.right_color = 5;
            obj.top_focus_color = obj.bottom_focus_color = obj.left_focus_color =
                obj.right_focus_color = 6;
        });
    expect_only(
        memo, [&] { return ux_memo_set_size(memo, 3, 4, 5, 6); },
        [](ux_memo &expected) {
            expected.obj.x = 3;
            expected.obj.y = 4;
            expected.obj.width = 5;
            expected.obj.height = 6;
        });
    expect_only(
        memo, [&] { return ux_memo_hide(&memo->obj); },
        [](ux_memo &expected) { expected.obj.status = 0; });
}

TEST_F(MemoTest, font_size_of_a_null_memo_is_ignored) {
    EXPECT_EQ(ux_memo_set_font_size(nullptr, 12), 0);
}

TEST_F(MemoTest, focus_is_taken_and_left_without_painting) {
    ux_memo *memo = make();
    expect_only(
        memo, [&] { return ux_memo_set_focus(&memo->obj); },
        [](ux_memo &expected) { expected.obj.status = UX_ST_FOCUSED; });
    EXPECT_EQ(page->focus, &memo->obj);
    expect_only(
        memo, [&] { return ux_memo_unset_focus(&memo->obj); },
        [](ux_memo &expected) { expected.obj.status = 0; });
    EXPECT_EQ(page->focus, &memo->obj);
}

TEST_F(MemoTest, focus_of_a_memo_without_a_page_is_its_own_matter) {
    ux_memo *memo = ux_memo_new(nullptr, 2, 1, 8, 6, u"a");
    EXPECT_EQ(ux_memo_set_focus(&memo->obj), 0);
    EXPECT_EQ(memo->obj.status, static_cast<uint32_t>(UX_ST_FOCUSED));
    EXPECT_EQ(page->focus, nullptr);
    ux_memo_free(&memo->obj);
}

TEST_F(MemoTest, show_lays_text_and_picture_inside_the_border) {
    s_readable = {k_first};
    ux_memo *memo = make();
    ux_memo_set_border(memo, 1);
    memo->obj.height = 7;
    memo->obj.top_color = 0xFF010101;
    memo->obj.bottom_color = 0xFF020202;
    memo->obj.left_color = 0xFF030303;
    memo->obj.right_color = 0xFF040404;
    EXPECT_EQ(shown(memo), "");
    EXPECT_EQ(fb_letters(names), "................\n"
                                 "..31111114......\n"
                                 "..3ibbbbb4......\n"
                                 "..3bbbbbb4......\n"
                                 "..3bbbbbb4......\n"
                                 "..3bbbbbb4......\n"
                                 "..3bbbbbb4......\n"
                                 "..32222224......\n");
    EXPECT_EQ(memo->obj.status, static_cast<uint32_t>(UX_ST_VISIBLE));
}

TEST_F(MemoTest, focused_border_has_the_one_focus_colour_and_sides_of_none_are_left_out) {
    ux_memo *memo = make(u"a", 2, 1, 5, 4);
    ux_memo_set_border(memo, 1);
    ux_memo_set_focus(&memo->obj);
    shown(memo);
    EXPECT_EQ(fb_letters(names), "................\n"
                                 "..yyyyy.........\n"
                                 "..y...y.........\n"
                                 "..y...y.........\n"
                                 "..yyyyy.........\n"
                                 "................\n................\n................\n");
    ux_page_clean();
    ux_memo_unset_focus(&memo->obj);
    memo->obj.left_color = UX_COLOR_NONE;
    shown(memo);
    EXPECT_EQ(fb_letters(names), "................\n"
                                 "..wwwww.........\n"
                                 "......w.........\n"
                                 "......w.........\n"
                                 "..wwwww.........\n"
                                 "................\n................\n................\n");
}

TEST_F(MemoTest, first_picture_is_taken_when_both_can_be_read) {
    s_readable = {k_first, k_second};
    shown(make());
    EXPECT_EQ(s_asked, calls{std::string(k_first) + " " + std::to_string(R_OK)});
    EXPECT_EQ(files_read(), files{k_first});
    EXPECT_EQ(fb_pixel(9, 6), k_blue_seen);
}

TEST_F(MemoTest, second_picture_is_taken_when_the_first_can_not_be_read) {
    s_readable = {k_second};
    shown(make());
    EXPECT_EQ(s_asked, (calls{std::string(k_first) + " " + std::to_string(R_OK),
                              std::string(k_second) + " " + std::to_string(R_OK)}));
    EXPECT_EQ(files_read(), files{k_second});
    EXPECT_EQ(fb_pixel(9, 6), k_green_seen);
}

TEST_F(MemoTest, every_show_without_a_picture_complains_and_paints_the_border_alone) {
    ux_memo *memo = make(u"a", 2, 1, 4, 3);
    ux_memo_set_border(memo, 1);
    for (int i = 0; i < 2; i++) {
        ux_page_clean();
        EXPECT_EQ(shown(memo), k_complaint);
        EXPECT_EQ(fb_letters(names), "................\n"
                                     "..wwww..........\n"
                                     "..w..w..........\n"
                                     "..wwww..........\n"
                                     "................\n................\n................\n"
                                     "................\n");
    }
    EXPECT_EQ(s_asked.size(), 4u) << "both paths at each show";
    EXPECT_EQ(take_calls(), calls{}) << "no file, no glyph";
}

TEST_F(MemoTest, picture_is_chosen_and_read_anew_at_every_show) {
    s_readable = {k_first};
    ux_memo *memo = make();
    shown(memo);
    s_readable = {k_second};
    shown(memo);
    s_readable = {};
    EXPECT_EQ(shown(memo), k_complaint);
    EXPECT_EQ(files_read(), (files{k_first, k_second}));
}

TEST_F(MemoTest, broken_picture_becomes_0_under_the_text) {
    s_readable = {k_first};
    folder.write_bytes("broken.png", {1, 2, 3});
    fake_chip::get().files[k_first] = folder.path("broken.png");
    fill_buf(7);
    ux_memo *memo = make();
    shown(memo);
    EXPECT_EQ(fb_pixel(2, 1), k_ink);
    EXPECT_EQ(fb_pixel(3, 1), 0u);
    EXPECT_EQ(fb_pixel(9, 6), 0u);
    EXPECT_EQ(fb_pixel(10, 6), 7u);
}

TEST_F(MemoTest, text_of_127_units_is_drawn) {
    s_readable = {k_first};
    fake_chip::get().glyphs[u'a'].advance = 0;
    shown(make(std::u16string(127, u'a').c_str()));
    EXPECT_EQ(fb_pixel(2, 1), k_ink);
    EXPECT_EQ(fb_pixel(9, 6), k_blue_seen);
}

TEST_F(MemoTest, text_of_128_units_or_more_shows_neither_text_nor_picture) {
    s_readable = {k_first};
    for (size_t units : {128u, 129u, 200u}) {
        fill_buf(7);
        EXPECT_EQ(shown(make(std::u16string(units, u'a').c_str())), "");
        EXPECT_EQ(files_read(), files{}) << units;
        EXPECT_EQ(fb_pixel(2, 1), 7u) << units;
    }
}

TEST_F(MemoTest, empty_text_shows_neither_text_nor_picture) {
    s_readable = {k_first};
    fill_buf(7);
    EXPECT_EQ(shown(make(u"")), "");
    EXPECT_EQ(files_read(), files{});
    EXPECT_EQ(fb_pixel(2, 1), 7u);
}

TEST_F(MemoTest, empty_text_without_a_picture_complains_like_any_other) {
    EXPECT_EQ(shown(make(u"")), k_complaint);
}

TEST_F(MemoTest, size_of_the_text_is_the_variables_whatever_the_memo_stores) {
    s_readable = {k_first};
    ux_memo *memo = make();
    ux_memo_set_font_size(memo, 3);
    shown(memo);
    EXPECT_EQ(take_calls().front(), "FSS_set_scale 327680 0 0 327680"); // 5 << 16
    setenv("FontSize", "7", 1);
    shown(memo);
    EXPECT_EQ(take_calls().front(), "FSS_set_scale 458752 0 0 458752");
}

TEST_F(MemoTest, size_of_the_text_is_16_when_the_variable_is_unset) {
    s_readable = {k_first};
    unsetenv("FontSize");
    ux_memo *memo = make();
    ux_memo_set_font_size(memo, 3);
    shown(memo);
    EXPECT_EQ(take_calls().front(), "FSS_set_scale 1048576 0 0 1048576");
}

TEST_F(MemoTest, memo_of_another_page_is_painted) {
    s_readable = {k_first};
    ux_page *other = new_page();
    ux_memo *memo = ux_memo_new(&other->container, 2, 1, 8, 6, u"a");
    shown(memo);
    EXPECT_EQ(fb_pixel(9, 6), k_blue_seen);
}

TEST_F(MemoTest, background_is_neither_painted_nor_saved) {
    ux_memo *memo = make();
    ux_memo_set_bg_color(memo, 0xFF00FF00);
    fill_buf(7);
    shown(memo);
    for (int y = 0; y < 8; y++)
        for (int x = 0; x < 16; x++)
            EXPECT_EQ(buf_pixel(x, y), 7u);
    ux_memo_set_bg_color(memo, UX_COLOR_NONE);
    shown(memo);
    EXPECT_EQ(memo->obj.bg_backup, nullptr);
    EXPECT_FALSE(memo->obj.status & UX_ST_BG_SAVED);
}

// The picture and the text go to `fb`, the border to `buf`; the update brings all of `buf`'s
// rectangle over.
TEST_F(MemoTest, update_is_the_last_step) {
    s_readable = {k_first};
    set_apart();
    fill_buf(7);
    ux_memo *memo = make();
    ux_memo_set_border(memo, 1);
    shown(memo);
    EXPECT_EQ(fb_pixel(2, 1), 0xFFFFFFFFu);
    EXPECT_EQ(fb_pixel(4, 3), 7u);
    EXPECT_EQ(fb_pixel(1, 1), 0u);
}

TEST_F(MemoTest, repaint_shows_a_visible_memo_only) {
    ux_memo *memo = make();
    EXPECT_EQ(ux_memo_repaint(&memo->obj), 0);
    EXPECT_EQ(s_asked, calls{});
    EXPECT_EQ(memo->obj.status, 0u);
    memo->obj.status = UX_ST_VISIBLE;
    EXPECT_EQ(ux_memo_repaint(&memo->obj), 0);
    EXPECT_EQ(s_asked.size(), 2u);
}

TEST_F(MemoTest, memory_that_fails_while_painting_leaks_nothing_and_stops_nothing) {
    s_readable = {k_first};
    fake_chip::get().record_calls = false;
    ux_memo *memo = make();
    hooks::take_allocation_count();
    shown(memo);
    const long allocations = hooks::take_allocation_count();
    ASSERT_GT(allocations, 0);
    for (long n = 1; n <= allocations; n++) {
        hooks::fail_allocation(n);
        EXPECT_EQ(ux_memo_show(&memo->obj), 0) << n;
    }
}

TEST_F(MemoTest, border_wider_than_the_memo_and_absurd_sizes_are_survived) {
    s_readable = {k_first};
    const int sizes[] = {-1000, -1, 0, 1, 7, 100};
    for (int border : {0, 5, 1000, INT_MAX, INT_MIN})
        for (int size : sizes) {
            ux_memo *memo = make(u"a", size, size, size, size);
            ux_memo_set_border(memo, border);
            shown(memo);
        }
}

// A background copy would be the host's own doing; the sanitizer sees the rest go.
TEST_F(MemoTest, free_releases_text_and_record_and_not_a_background) {
    ux_memo *memo = ux_memo_new(nullptr, 2, 1, 2, 2, u"a");
    void *pixels = malloc(16);
    ux_obj_set_bg_buffer(&memo->obj, pixels);
    EXPECT_EQ(memo->obj.free(&memo->obj), 0);
    memset(pixels, 1, 16);
    free(pixels);
}

// Unlinked and freed by its slot, from the visit of the child in front of it.
TEST_F(MemoTest, memo_freed_while_its_container_is_walked_is_passed_over) {
    ux_memo *victim = make();
    ux_text_label_new(root(), 0, 0, 1, 1, u"");
    const auto free_victim = [](ux_event *event) {
        auto *obj = static_cast<ux_obj *>(event->data);
        auto *parent = reinterpret_cast<ux_container *>(obj->parent);
        parent->children->next = nullptr;
        parent->count--;
        obj->free(obj);
        return 1;
    };
    EXPECT_EQ(ux_container_scan(root(), free_victim, &victim->obj), 1) << "the label alone";
}
