// SPDX-License-Identifier: MIT
// What the ticker makes of its file: lines, ends, waiting for it, and files that change.

#include "tests/font/ticker_test.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <time.h>

namespace {

// Every line passes in one frame: a box of 1 x 1, a step beyond every band. Which line it was is
// told by the codes that the chip was asked for, once to lay it out. Without ink nothing is drawn.
class TickerFileTest : public TickerTest {
  protected:
    using lines = std::vector<std::vector<int>>;

    void SetUp() override {
        TickerTest::SetUp();
        make_screen(1, 1);
        keep_pictures = false;
    }

    // The codes of the lines that are shown until `stop` frames were.
    lines show(size_t stop, int mode = k_left) {
        lines shown;
        const auto note = hooks::get().on_getenv;
        hooks::get().on_getenv = [&](const char *name) {
            if (strcmp(name, "STATUS") == 0)
                shown.push_back(take_codes());
            note(name);
        };
        stop_after = stop;
        EXPECT_EQ(uxFontDrawing(path.c_str(), k_ink, k_ink, 0, 0, 1, 1, 1, 1, 1 << 24, mode), 0);
        EXPECT_EQ(frame_count, stop);
        hooks::get().on_getenv = note;
        return shown;
    }

    lines show_file(const std::string &bytes, size_t stop, int mode = k_left) {
        write_file(bytes);
        return show(stop, mode);
    }
};

} // namespace

TEST_F(TickerFileTest, file_that_ends_with_a_line_feed_shows_its_lines_and_starts_again) {
    EXPECT_EQ(show_file("a\nb\n", 5), (lines{{'a'}, {'b'}, {'a'}, {'b'}, {'a'}}));
    EXPECT_EQ(naps.size(), 0u);
}

TEST_F(TickerFileTest, last_line_without_line_feed_is_shown) {
    EXPECT_EQ(show_file("a\nb", 3), (lines{{'a'}, {'b'}, {'a'}}));
}

TEST_F(TickerFileTest, empty_lines_before_the_end_are_shown) {
    EXPECT_EQ(show_file("\na\n\n\nb\n", 6), (lines{{}, {'a'}, {}, {}, {'b'}, {}}));
}

TEST_F(TickerFileTest, empty_line_scrolls_up_as_one_row) {
    make_screen(4, 3);
    write_file("\n");
    run(k_up, 2, 6); // travel 6: 0, 2, 4, 6, 4
    EXPECT_EQ(hooks::get().usleeps,
              (std::vector<unsigned>{k_up_us, k_up_us, k_up_us, k_up_us, k_up_us, k_line_us}));
}

TEST_F(TickerFileTest, empty_line_scrolls_left_through_two_boxes) {
    make_screen(8, 3);
    write_file("\n");
    setenv("ShowMSG", "NO", 1);
    events[4] = [] { setenv("TICKER_STATE", "STOP_TICKER", 1); };
    run(k_left, 1, 0); // 0, 4, 8 and again 0
    EXPECT_EQ(frame_count, 4u);
}

TEST_F(TickerFileTest, line_feeds_are_not_part_of_the_line_and_carriage_returns_are) {
    EXPECT_EQ(show_file("a\r\nb\r\n", 2), (lines{{'a', '\r'}, {'b', '\r'}}));
}

TEST_F(TickerFileTest, lines_are_utf8) {
    EXPECT_EQ(show_file("\xC3\xA9\xE2\x82\xAC\n", 1), (lines{{0xE9, 0x20AC}}));
}

TEST_F(TickerFileTest, bytes_that_start_no_character_keep_the_code_of_the_line_before) {
    EXPECT_EQ(show_file("\xFFz\nabc\n\xFF\xFF\nx\xFF\xFF\xFF\n", 4),
              (lines{{0, 'z'}, {'a', 'b', 'c'}, {'a', 'b'}, {'x', 'b', 'c', 0}}));
}

TEST_F(TickerFileTest, every_pass_starts_without_codes) {
    EXPECT_EQ(show_file("\xFF\nabc\n", 3), (lines{{0}, {'a', 'b', 'c'}, {0}}));
}

TEST_F(TickerFileTest, sequence_cut_short_by_the_line_feed_reads_zeros) {
    EXPECT_EQ(show_file("\xC3\nbb\n", 2), (lines{{0xC0}, {'b', 'b'}}));
}

TEST_F(TickerFileTest, line_is_shown_up_to_a_zero_byte) {
    using namespace std::string_literals;
    EXPECT_EQ(show_file("ab\0cd\nx\n"s, 2), (lines{{'a', 'b'}, {'x'}}));
    EXPECT_EQ(frame_count, 2u);
}

TEST_F(TickerFileTest, line_of_zero_bytes_is_not_an_empty_file) {
    EXPECT_EQ(show_file(std::string(3, '\0'), 2), (lines{{}, {}}));
    EXPECT_EQ(naps.size(), 0u);
}

TEST_F(TickerFileTest, line_of_2048_characters_is_shown_whole) {
    EXPECT_EQ(show_file(std::string(2047, 'a') + "b\nc\n", 2)[0].back(), 'b');
}

TEST_F(TickerFileTest, characters_behind_the_2048th_are_cut) {
    const lines shown = show_file(std::string(2048, 'a') + "b\nc\n", 2);
    EXPECT_EQ(shown[0], std::vector<int>(2048, 'a'));
    EXPECT_EQ(shown[1], std::vector<int>{'c'});
}

// Three bytes a character: the 1,365th ends at byte 4,095.
TEST_F(TickerFileTest, bytes_behind_the_4095th_are_cut) {
    std::string line;
    for (int i = 0; i < 1366; i++)
        line += "\xE2\x82\xAC";
    const lines shown = show_file(line + "\nc\n", 2);
    EXPECT_EQ(shown[0], std::vector<int>(1365, 0x20AC));
    EXPECT_EQ(shown[1], std::vector<int>{'c'});
}

TEST_F(TickerFileTest, line_feed_at_any_place_near_a_blocks_end_ends_the_line) {
    for (size_t length : {4094u, 4095u, 4096u, 4097u, 8191u, 8192u, 8193u}) {
        frame_count = 0;
        setenv("STATUS", "", 1);
        const lines shown = show_file(std::string(length, '\xC3') + "\nc\n", 2);
        // C3 C3 is one character of code 0xC3; a last lone one is 0xC0.
        std::vector<int> expected((std::min<size_t>(length, 4095) + 1) / 2, 0xC3);
        if (length != 4094)
            expected.back() = 0xC0;
        EXPECT_EQ(shown[0], expected) << length;
        EXPECT_EQ(shown[1], std::vector<int>{'c'}) << length;
    }
}

TEST_F(TickerFileTest, line_of_100_million_bytes_is_cut_and_the_next_one_shown) {
    constexpr off_t k_length = 100'000'000;
    write_file("ab");
    const int file = ::open(path.c_str(), O_WRONLY);
    ASSERT_EQ(pwrite(file, "\nc\n", 3, k_length), 3);
    ::close(file);
    struct stat status;
    stat(path.c_str(), &status);
    ASSERT_EQ(status.st_size, k_length + 3);
    timespec before;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &before);
    EXPECT_EQ(show(2), (lines{{'a', 'b'}, {'c'}}));
    timespec after;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &after);
    EXPECT_LT(after.tv_sec - before.tv_sec, 20);
}

TEST_F(TickerFileTest, binary_file_is_shown_and_left) {
    std::string bytes;
    for (int i = 0; i < 65536; i++)
        bytes += static_cast<char>((i * 2654435761u) >> 24);
    write_file(bytes);
    give('a', {0, 1, 3, {"X"}});
    stop_after = 500;
    EXPECT_EQ(uxFontDrawing(path.c_str(), k_ink, k_key, 0, 0, 1, 1, 1, 1, 1, k_up), 0);
    EXPECT_EQ(frame_count, 500u);
}

TEST_F(TickerFileTest, missing_file_is_tried_again_every_10_ms) {
    on_nap = [this] {
        if (naps.size() == 7)
            write_file("a\n");
    };
    EXPECT_EQ(show(1), (lines{{'a'}}));
    ASSERT_EQ(naps.size(), 7u);
    for (const timespec &nap : naps) {
        EXPECT_EQ(nap.tv_sec, 0);
        EXPECT_EQ(nap.tv_nsec, 10'000'000);
    }
    EXPECT_EQ(hooks::get().usleeps.size(), 0u);
}

TEST_F(TickerFileTest, empty_file_is_tried_again_every_10_ms) {
    write_file("");
    on_nap = [this] {
        if (naps.size() == 7)
            write_file("a\n");
    };
    EXPECT_EQ(show(1), (lines{{'a'}}));
    EXPECT_EQ(naps.size(), 7u);
}

TEST_F(TickerFileTest, file_that_vanishes_between_passes_is_waited_for) {
    write_file("a\n");
    events[1] = [this] { unlink(path.c_str()); };
    on_nap = [this] { write_file("b\n"); };
    EXPECT_EQ(show(2), (lines{{'a'}, {'b'}}));
    EXPECT_EQ(naps.size(), 1u);
}

TEST_F(TickerFileTest, folder_is_waited_at_until_it_is_a_file) {
    mkdir(path.c_str(), 0700);
    on_nap = [this] {
        rmdir(path.c_str());
        write_file("a\n");
    };
    EXPECT_EQ(show(1), (lines{{'a'}}));
    EXPECT_EQ(naps.size(), 1u);
}

TEST_F(TickerFileTest, pipe_is_not_waited_for_in_open) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    on_nap = [this] {
        unlink(path.c_str());
        write_file("a\n");
    };
    EXPECT_EQ(show(1), (lines{{'a'}}));
    EXPECT_EQ(naps.size(), 1u);
}

TEST_F(TickerFileTest, endless_device_is_no_file) {
    ASSERT_EQ(symlink("/dev/zero", path.c_str()), 0);
    on_nap = [this] {
        unlink(path.c_str());
        write_file("a\n");
    };
    EXPECT_EQ(show(1), (lines{{'a'}}));
}

TEST_F(TickerFileTest, deleted_file_is_shown_to_its_end) {
    write_file("a\nb\nc\n");
    events[1] = [this] { unlink(path.c_str()); };
    on_nap = [this] { write_file("d\n"); };
    EXPECT_EQ(show(4), (lines{{'a'}, {'b'}, {'c'}, {'d'}}));
}

TEST_F(TickerFileTest, file_truncated_while_it_is_shown_ends_the_pass) {
    write_file("a\nb\nc\n");
    events[2] = [this] { EXPECT_EQ(truncate(path.c_str(), 2), 0); };
    EXPECT_EQ(show(4), (lines{{'a'}, {'b'}, {'a'}, {'a'}}));
    EXPECT_EQ(naps.size(), 0u);
}

TEST_F(TickerFileTest, lines_written_behind_the_present_one_are_shown_in_the_same_pass) {
    write_file("a\nb\n");
    events[1] = [this] { write_file("a\nx\ny\n"); };
    EXPECT_EQ(show(4), (lines{{'a'}, {'x'}, {'y'}, {'a'}}));
}

TEST_F(TickerFileTest, file_put_in_its_place_is_shown_from_the_next_pass_on) {
    write_file("a\nb\n");
    events[1] = [this] {
        write_file_at(path + ".new", "x\n");
        rename((path + ".new").c_str(), path.c_str());
    };
    EXPECT_EQ(show(4), (lines{{'a'}, {'b'}, {'x'}, {'x'}}));
}

TEST_F(TickerFileTest, file_is_closed_after_every_pass_and_at_the_stop) {
    write_file("a\n");
    std::vector<int> open_files;
    hooks::get().open = [&](const char *name, int flags) {
        const int made = openat(AT_FDCWD, name, flags);
        if (name == path)
            open_files.push_back(made);
        return made;
    };
    const int next = dup(0); // the lowest free number
    ::close(next);
    EXPECT_EQ(show(5), lines(5, {'a'}));
    EXPECT_EQ(open_files, std::vector<int>(5, next));
    const int after = dup(0);
    ::close(after);
    EXPECT_EQ(after, next);
}

TEST_F(TickerFileTest, null_path_is_refused) {
    for (int mode : {k_up, k_left})
        EXPECT_EQ(uxFontDrawing(nullptr, k_ink, k_key, 0, 0, 1, 1, 1, 1, 1, mode), -1);
    EXPECT_EQ(take_calls(), calls{});
    EXPECT_EQ(naps.size(), 0u);
    EXPECT_EQ(variable("TICKER_PLAYING"), "YES");
}
