// SPDX-License-Identifier: MIT
// The two ends of the event pipe: lines that come in pieces, writers that stay, readers that leave.

#include "event/event_pipe.h"

#include "tests/event/event_test.h"

#include <csignal>
#include <sys/ioctl.h>

namespace {

using event_tests::eventually;
using event_tests::milliseconds_of;
using ux::pipe_lines;

std::atomic<bool> s_is_over;

bool never(int) {
    return false;
}

bool at_once(int) {
    return true;
}

bool when_over(int) {
    return s_is_over;
}

bool after_three(int asked) {
    return asked >= 3;
}

// Characters that were written and not read.
int bytes_in(int pipe) {
    int bytes = -1;
    return ioctl(pipe, FIONREAD, &bytes) == 0 ? bytes : -1;
}

// Past the test's own stand-in for open().
int real_open(const char *path, int flags) {
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, 0));
}

class EventPipe : public EventTest {
  protected:
    void SetUp() override {
        EventTest::SetUp();
        s_is_over = false;
        ASSERT_EQ(mkfifo(pipe_path().c_str(), 0600), 0);
    }

    std::string next_line(pipe_lines &lines, size_t size = 80, ux::give_up_test give_up = never) {
        std::string line(size, '~');
        return lines.read(line.data(), size, give_up) ? line.c_str() : "(end)";
    }
};

TEST_F(EventPipe, an_opening_without_a_writer_does_not_block) {
    const pipe_lines lines(pipe_path().c_str());
    EXPECT_TRUE(lines.is_open());
}

TEST_F(EventPipe, a_read_waits_for_the_first_writer) {
    pipe_lines lines(pipe_path().c_str());
    std::thread writer([this] {
        const int pipe = open_writer();
        EXPECT_EQ(write(pipe, "a\n", 2), 2);
        close(pipe);
    });
    EXPECT_EQ(next_line(lines), "a\n");
    EXPECT_EQ(next_line(lines), "(end)");
    writer.join();
}

TEST_F(EventPipe, a_writer_that_comes_and_goes_ends_the_stream) {
    pipe_lines lines(pipe_path().c_str());
    close(open_writer());
    EXPECT_EQ(next_line(lines), "(end)");
    EXPECT_FALSE(lines.gave_up());
}

TEST_F(EventPipe, a_line_is_put_together_from_pieces) {
    pipe_lines lines(pipe_path().c_str());
    std::thread writer([this] {
        const int pipe = open_writer();
        for (const char *piece : {"1", "2", "\n4", "4 1", "0\n"}) {
            EXPECT_GT(write(pipe, piece, strlen(piece)), 0);
            // The next piece goes in when this one has been taken out.
            EXPECT_TRUE(eventually([pipe] { return bytes_in(pipe) == 0; }));
        }
        close(pipe);
    });
    EXPECT_EQ(next_line(lines), "12\n");
    EXPECT_EQ(next_line(lines), "44 10\n");
    EXPECT_EQ(next_line(lines), "(end)");
    writer.join();
}

TEST_F(EventPipe, an_end_is_for_good_even_when_another_writer_comes) {
    pipe_lines lines(pipe_path().c_str());
    close(open_writer());
    EXPECT_EQ(next_line(lines), "(end)");
    const int late = open_writer();
    EXPECT_EQ(write(late, "late\n", 5), 5);
    EXPECT_EQ(next_line(lines), "(end)");
    close(late);
}

TEST_F(EventPipe, a_line_is_cut_at_the_size) {
    pipe_lines lines(pipe_path().c_str());
    write_message("abcdef\nxy");
    EXPECT_EQ(next_line(lines, 4), "abc");
    EXPECT_EQ(next_line(lines, 4), "def");
    EXPECT_EQ(next_line(lines, 4), "\n");
    EXPECT_EQ(next_line(lines, 4), "xy");
    EXPECT_EQ(next_line(lines, 4), "(end)");
}

TEST_F(EventPipe, the_line_buffer_is_left_alone_at_the_end) {
    pipe_lines lines(pipe_path().c_str());
    close(open_writer());
    char line[8] = "before";
    EXPECT_FALSE(lines.read(line, sizeof line, never));
    EXPECT_STREQ(line, "before");
}

TEST_F(EventPipe, nothing_is_written_behind_the_line) {
    pipe_lines lines(pipe_path().c_str());
    write_message("abcdefgh");
    char line[8] = {'~', '~', '~', '~', '~', '~', '~', '~'};
    EXPECT_TRUE(lines.read(line, 4, never));
    EXPECT_EQ(std::string(line, 8), std::string("abc\0~~~~", 8));
}

TEST_F(EventPipe, a_wait_for_a_silent_writer_can_be_given_up) {
    pipe_lines lines(pipe_path().c_str());
    const int silent = open_writer();
    std::thread ender([] { s_is_over = true; });
    EXPECT_EQ(next_line(lines, 80, when_over), "(end)");
    EXPECT_TRUE(lines.gave_up());
    ender.join();
    close(silent);
}

TEST_F(EventPipe, what_was_written_before_giving_up_is_read) {
    pipe_lines lines(pipe_path().c_str());
    const int silent = open_writer();
    EXPECT_EQ(write(silent, "1\n2", 3), 3);
    EXPECT_EQ(next_line(lines, 80, at_once), "1\n");
    EXPECT_EQ(next_line(lines, 80, at_once), "2");
    EXPECT_EQ(next_line(lines, 80, at_once), "(end)");
    EXPECT_TRUE(lines.gave_up());
    close(silent);
}

// The other reader takes the character between the look and the read, sooner or later.
TEST_F(EventPipe, another_reader_that_is_faster_does_not_end_the_stream) {
    pipe_lines lines(pipe_path().c_str());
    const int thief = ::open(pipe_path().c_str(), O_RDONLY | O_NONBLOCK);
    const int pipe = open_writer();
    std::thread stealing([&] {
        for (int i = 0; i < 2000; i++) {
            char stolen[64];
            EXPECT_EQ(write(pipe, "x", 1), 1);
            while (read(thief, stolen, sizeof stolen) > 0)
                ;
        }
        EXPECT_EQ(write(pipe, "\n", 1), 1);
    });
    const std::string line = next_line(lines, 4000);
    stealing.join();
    EXPECT_EQ(line.find_first_not_of('x'), line.size() - 1);
    EXPECT_EQ(line.back(), '\n');
    close(pipe);
    close(thief);
}

TEST_F(EventPipe, only_a_pipe_is_opened) {
    EXPECT_FALSE(pipe_lines(path("missing").c_str()).is_open());
    EXPECT_FALSE(pipe_lines(path("").c_str()).is_open());
    EXPECT_FALSE(pipe_lines(path("err").c_str()).is_open());
    EXPECT_FALSE(pipe_lines("/dev/null").is_open());
}

TEST_F(EventPipe, a_message_waits_for_its_reader) {
    std::thread writer([this] { ux::write_pipe(pipe_path().c_str(), "1\n23\n", never); });
    const int reader = ::open(pipe_path().c_str(), O_RDONLY);
    char got[16] = {};
    EXPECT_EQ(read(reader, got, sizeof got), 5);
    EXPECT_STREQ(got, "1\n23\n");
    writer.join();
    EXPECT_EQ(read(reader, got, sizeof got), 0) << "the writer has not closed";
    close(reader);
}

TEST_F(EventPipe, a_message_is_given_up_when_told) {
    EXPECT_LT(milliseconds_of([this] { ux::write_pipe(pipe_path().c_str(), "x", after_three); }),
              2000);
}

TEST_F(EventPipe, a_missing_pipe_is_not_made) {
    ux::write_pipe(path("missing").c_str(), "x", never);
    EXPECT_FALSE(std::filesystem::exists(path("missing")));
}

TEST_F(EventPipe, a_file_in_place_of_the_pipe_is_not_written) {
    const int file = ::open(path("file").c_str(), O_CREAT | O_WRONLY, 0600);
    EXPECT_EQ(write(file, "mine", 4), 4);
    close(file);
    ux::write_pipe(path("file").c_str(), "other text", never);
    EXPECT_EQ(std::filesystem::file_size(path("file")), 4u);
}

TEST_F(EventPipe, a_folder_in_place_of_the_pipe_is_no_wait) {
    ux::write_pipe(path("").c_str(), "x", never);
}

// The pipe is opened while there is a reader, and written when it has left.
TEST_F(EventPipe, a_reader_that_leaves_does_not_end_the_process_and_the_next_one_gets_the_message) {
    const int first = ::open(pipe_path().c_str(), O_RDONLY | O_NONBLOCK);
    std::atomic<int> opened{0};
    std::atomic<int> closed{0};
    hooks::get().open = [&](const char *path, int flags) {
        const int descriptor = real_open(path, flags);
        if (descriptor >= 0 && opened++ == 0)
            syscall(SYS_close, first);
        return descriptor;
    };
    hooks::get().close = [&](int descriptor) {
        closed++;
        return static_cast<int>(syscall(SYS_close, descriptor));
    };
    ASSERT_EQ(signal(SIGPIPE, SIG_DFL), SIG_DFL);
    std::thread writer([this] { ux::write_pipe(pipe_path().c_str(), "again", never); });
    EXPECT_TRUE(eventually([&] { return closed == 1; }));
    const int second = real_open(pipe_path().c_str(), O_RDONLY | O_NONBLOCK);
    char got[16] = {};
    EXPECT_TRUE(eventually([&] { return read(second, got, sizeof got) == 5; }));
    EXPECT_STREQ(got, "again");
    writer.join();
    EXPECT_EQ(opened.load(), 2);
    hooks::get().open = nullptr;
    hooks::get().close = nullptr;
    close(second);
}

TEST_F(EventPipe, a_broken_pipe_leaves_no_signal_behind_and_the_mask_as_it_was) {
    int reader = ::open(pipe_path().c_str(), O_RDONLY | O_NONBLOCK);
    hooks::get().open = [&](const char *path, int flags) {
        const int descriptor = real_open(path, flags);
        close(reader);
        return descriptor;
    };
    ux::write_pipe(pipe_path().c_str(), "x", at_once);
    sigset_t pending;
    sigset_t mask;
    sigpending(&pending);
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    EXPECT_EQ(sigismember(&mask, SIGPIPE), 0);
}

} // namespace
