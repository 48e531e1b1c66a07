// SPDX-License-Identifier: MIT
// The event thread: the pipe it makes, what it reads from it, and what it does when the pipe is not
// what it should be.

#include "tests/event/event_test.h"

#include <csignal>
#include <pthread.h>

namespace {

using event_tests::eventually;
using event_tests::occurrences;
namespace fs = std::filesystem;

class EventThread : public EventTest {
  protected:
    struct stat status_of_pipe() const {
        struct stat status = {};
        EXPECT_EQ(stat(pipe_path().c_str(), &status), 0);
        return status;
    }
    void make_file(const std::string &path, const std::string &text) const {
        const int file = ::open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
        EXPECT_EQ(write(file, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(file);
    }
    // The thread stands in one opening of the pipe and takes it up by name at the next.
    void end_this_opening() { close(open_writer()); }
};

TEST_F(EventThread, init_returns_0) {
    EXPECT_EQ(ux_event_init(), 0);
}

TEST_F(EventThread, init_makes_a_pipe_that_all_may_read_and_write) {
    umask(077);
    ux_event_init();
    EXPECT_EQ(status_of_pipe().st_mode, static_cast<mode_t>(S_IFIFO | 0666));
}

TEST_F(EventThread, init_leaves_the_creation_mask_at_0) {
    umask(027);
    ux_event_init();
    EXPECT_EQ(umask(0), 0u);
}

TEST_F(EventThread, init_removes_what_stood_at_the_pipe_s_name) {
    make_file(pipe_path(), "1\n99\n");
    ux_event_init();
    EXPECT_TRUE(S_ISFIFO(status_of_pipe().st_mode));
    write_message("1\n23\n");
    EXPECT_EQ(next_event(), "1 23 0 0");
}

TEST_F(EventThread, init_makes_a_new_pipe_in_place_of_an_old_one) {
    ASSERT_EQ(mkfifo(pipe_path().c_str(), 0600), 0);
    fs::create_hard_link(pipe_path(), path("old"));
    ux_event_init();
    EXPECT_EQ(status_of_pipe().st_nlink, 1u);
    EXPECT_EQ(status_of_pipe().st_mode & 0777, 0666u);
}

TEST_F(EventThread, init_works_on_when_the_queue_has_no_key) {
    hooks::get().queue_path = path("missing");
    EXPECT_EQ(ux_event_init(), 0);
    write_message("1\n23\n");
    EXPECT_EQ(next_event(), "1 23 0 0");
}

TEST_F(EventThread, init_prints_nothing) {
    ux_event_init();
    EXPECT_EQ(err(), "");
    EXPECT_EQ(out(), "");
}

TEST_F(EventThread, the_running_flags_are_up_as_soon_as_init_returns) {
    ux_event_init();
    EXPECT_EQ(ux::event_running.load(), 1);
    EXPECT_EQ(ux::event_task_running.load(), 1);
}

TEST_F(EventThread, a_second_init_leaves_one_reader_and_one_bridge) {
    ux_event_init();
    ux_event_init();
    EXPECT_EQ(next_event(), "0 0 0 0"); // the end of the first
    write_message("1\n23\n");
    EXPECT_EQ(next_event(), "1 23 0 0");
    write_message("1\n24\n");
    EXPECT_EQ(next_event(), "1 24 0 0");
    forget_texts();
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(err(), "event_task: 0 24 0 0\n");
}

TEST_F(EventThread, the_task_reads_on_a_thread_of_the_host_s_own_until_the_close) {
    ASSERT_EQ(mkfifo(pipe_path().c_str(), 0600), 0);
    std::thread reader([] { event_task(nullptr); });
    for (const char *code : {"11", "12", "13"}) {
        write_message("1\n" + std::string(code) + "\n");
        EXPECT_EQ(next_event(), "1 " + std::string(code) + " 0 0");
    }
    ux_event_close();
    reader.join();
}

TEST_F(EventThread, the_task_runs_again_and_takes_the_texts_sent_to_it) {
    ASSERT_EQ(mkfifo(pipe_path().c_str(), 0600), 0);
    for (int run = 0; run < 2; run++) {
        std::thread reader([] { event_task(nullptr); });
        EXPECT_TRUE(reader_has_pipe_open());
        send_pipe_event("1\n11\n");
        EXPECT_EQ(next_event(), "1 11 0 0");
        send_pipe_event("1\n12\n");
        EXPECT_EQ(next_event(), "1 12 0 0");
        ux_event_close();
        reader.join();
    }
}

TEST_F(EventThread, a_key_is_traced_and_queued) {
    ux_event_init();
    write_message("1\n23\n");
    EXPECT_EQ(next_event(), "1 23 0 0");
    EXPECT_EQ(err(), "event_task: 1 23 0 0\n");
    EXPECT_EQ(out(), "");
}

TEST_F(EventThread, a_touch_is_traced_and_queued) {
    ux_event_init();
    write_message("2\n44 100 200");
    EXPECT_EQ(next_event(), "2 44 100 200");
    EXPECT_EQ(err(), "event_task: 2 44 100 200\n");
    EXPECT_EQ(out(), "");
}

TEST_F(EventThread, object_and_data_are_null) {
    ux_event_init();
    write_message("2\n44 100 200");
    ux_event event = {};
    event.obj = reinterpret_cast<ux_obj *>(&event);
    event.data = &event;
    ASSERT_TRUE(eventually([&] { return ux_event_get(&event) == 0; }));
    EXPECT_EQ(event.obj, nullptr);
    EXPECT_EQ(event.data, nullptr);
}

TEST_F(EventThread, a_stop_message_of_a_stranger_is_queued_and_ends_nothing) {
    ux_event_init();
    write_message("2\n44 5 6");
    EXPECT_EQ(next_event(), "2 44 5 6");
    write_message("0\n0\n");
    EXPECT_EQ(next_event(), "0 44 5 6");
    write_message("1\n23\n");
    EXPECT_EQ(next_event(), "1 23 5 6");
}

TEST_F(EventThread, type_7_keeps_the_fields_of_the_message_before) {
    ux_event_init();
    write_message("2\n44 100 200");
    EXPECT_EQ(next_event(), "2 44 100 200");
    write_message("7\n1\n");
    EXPECT_EQ(next_event(), "7 44 100 200");
    EXPECT_EQ(err(), "event_task: 2 44 100 200\nevent_task: 7 44 100 200\n");
}

TEST_F(EventThread, an_empty_opening_queues_the_event_before_again) {
    ux_event_init();
    write_message("1\n23\n");
    EXPECT_EQ(next_event(), "1 23 0 0");
    write_message("");
    EXPECT_EQ(next_event(), "1 23 0 0");
    EXPECT_EQ(err(), "event_task: 1 23 0 0\nevent_task: 1 23 0 0\n");
}

TEST_F(EventThread, an_empty_first_opening_queues_zeros) {
    ux_event_init();
    write_message("");
    EXPECT_EQ(next_event(), "0 0 0 0");
    EXPECT_EQ(err(), "event_task: 0 0 0 0\n");
}

TEST_F(EventThread, lines_and_record_begin_at_zero_in_every_run) {
    ux_event_init();
    write_message("2\n44 100 200");
    EXPECT_EQ(next_event(), "2 44 100 200");
    ux_event_close();
    EXPECT_EQ(next_event(), "0 44 100 200");
    ux_event_init();
    write_message("");
    EXPECT_EQ(next_event(), "0 0 0 0");
}

// The third line ends the reading, and the writer may close after that: its close is an empty
// opening then, which tells the first message once more.
TEST_F(EventThread, of_two_messages_in_one_opening_the_second_is_told_on_stdout_and_lost) {
    ux_event_init();
    write_message("1\n12\n1\n13\n");
    EXPECT_EQ(next_event(), "1 12 0 0");
    EXPECT_EQ(out(), "Fifo is not empty, 1\n\n");
    write_message("1\n14\n");
    std::string event = next_event();
    if (event == "1 12 0 0")
        event = next_event();
    EXPECT_EQ(event, "1 14 0 0");
    EXPECT_EQ(occurrences(err(), "13"), 0);
    EXPECT_EQ(out(), "Fifo is not empty, 1\n\n");
}

TEST_F(EventThread, a_message_that_comes_in_pieces_is_one) {
    ux_event_init();
    const int pipe = open_writer();
    for (const char *piece : {"1", "\n", "2", "3\n"}) {
        ASSERT_GT(write(pipe, piece, strlen(piece)), 0);
        std::this_thread::yield();
    }
    close(pipe);
    EXPECT_EQ(next_event(), "1 23 0 0");
    EXPECT_TRUE(ring_is_empty());
}

// The writer stays: what it wrote is cut into messages of three lines, each one a stop without
// numbers. The ring may run over meanwhile.
TEST_F(EventThread, a_megabyte_of_junk_does_no_harm) {
    ux_event_init();
    const std::string junk(1 << 20, '\xff');
    signal(SIGPIPE, SIG_IGN);
    const int pipe = open_writer();
    fcntl(pipe, F_SETFL, 0);
    for (size_t sent = 0; sent < junk.size();) {
        const ssize_t got = write(pipe, junk.data() + sent, junk.size() - sent);
        sent += got > 0 ? static_cast<size_t>(got) : 0;
        ASSERT_TRUE(got > 0 || errno == EPIPE);
    }
    close(pipe);
    signal(SIGPIPE, SIG_DFL);
    ux_event event = {};
    EXPECT_TRUE(eventually([&] {
        while (ux_event_get(&event) == 0)
            EXPECT_EQ(event.type, 0);
        return occurrences(err(), "event_task: 0 0 0 0\n") > 100;
    }));
    const std::string told = err();
    EXPECT_EQ(occurrences(told, "event_task:"), occurrences(told, "event_task: 0 0 0 0\n"));
}

TEST_F(EventThread, a_failed_opening_is_told_and_the_event_before_queued_again) {
    ux_event_init();
    const int pipe = open_writer();
    unlink(pipe_path().c_str());
    ASSERT_EQ(write(pipe, "1\n23\n", 5), 5);
    close(pipe);
    EXPECT_EQ(next_event(), "1 23 0 0");
    EXPECT_EQ(next_event(), "1 23 0 0");
    EXPECT_EQ(next_event(), "1 23 0 0");
    const std::string begin = "event_task: 1 23 0 0\n"
                              "Can not open pipe /tmp/event!\n"
                              "event_task: 1 23 0 0\n"
                              "Can not open pipe /tmp/event!\n"
                              "event_task: 1 23 0 0\n";
    EXPECT_EQ(err().substr(0, begin.size()), begin);
    EXPECT_EQ(out(), "");
}

TEST_F(EventThread, failing_openings_do_not_spin) {
    ux_event_init();
    const int pipe = open_writer();
    unlink(pipe_path().c_str());
    close(pipe);
    ASSERT_TRUE(err_shows("Can not open pipe"));
    const int told = occurrences(err(), "Can not open pipe");
    const long passed = event_tests::milliseconds_of(
        [&] { eventually([&] { return occurrences(err(), "Can not open pipe") >= told + 20; }); });
    EXPECT_GE(passed, 19 * 10);
}

TEST_F(EventThread, a_pipe_that_comes_back_is_read_again) {
    ux_event_init();
    const int pipe = open_writer();
    unlink(pipe_path().c_str());
    close(pipe);
    ASSERT_TRUE(err_shows("Can not open pipe /tmp/event!\n"));
    ASSERT_EQ(mkfifo(pipe_path().c_str(), 0666), 0);
    write_message("1\n77\n");
    ASSERT_TRUE(err_shows("event_task: 1 77 0 0\n"));
}

TEST_F(EventThread, a_file_in_place_of_the_pipe_is_not_read) {
    ux_event_init();
    const int pipe = open_writer();
    unlink(pipe_path().c_str());
    make_file(pipe_path(), "1\n99\n");
    close(pipe);
    ASSERT_TRUE(err_shows("Can not open pipe /tmp/event!\n", 3));
    EXPECT_EQ(occurrences(err(), "99"), 0);
}

TEST_F(EventThread, a_folder_in_place_of_the_pipe_is_a_failed_opening) {
    ux_event_init();
    const int pipe = open_writer();
    unlink(pipe_path().c_str());
    fs::create_directory(pipe_path());
    close(pipe);
    EXPECT_TRUE(err_shows("Can not open pipe /tmp/event!\n", 3));
}

TEST_F(EventThread, a_folder_that_init_can_not_remove_is_a_failed_opening) {
    fs::create_directory(pipe_path());
    EXPECT_EQ(ux_event_init(), 0);
    EXPECT_TRUE(err_shows("Can not open pipe /tmp/event!\nevent_task: 0 0 0 0\n", 2));
    EXPECT_TRUE(closes_promptly());
}

TEST_F(EventThread, another_pipe_in_place_of_the_first_is_read_at_the_next_opening) {
    ux_event_init();
    const int pipe = open_writer();
    unlink(pipe_path().c_str());
    ASSERT_EQ(mkfifo(pipe_path().c_str(), 0666), 0);
    ASSERT_EQ(write(pipe, "1\n5\n", 4), 4);
    close(pipe);
    EXPECT_EQ(next_event(), "1 5 0 0");
    write_message("1\n6\n");
    EXPECT_EQ(next_event(), "1 6 0 0");
    EXPECT_EQ(err(), "event_task: 1 5 0 0\nevent_task: 1 6 0 0\n");
}

TEST_F(EventThread, a_full_ring_loses_the_newest_and_tells_it) {
    ux_event_init();
    for (int n = 0; n < 1023; n++) {
        const ux_event event = {1, n, 0, 0, nullptr, nullptr};
        ASSERT_EQ(ux_event_put(&event), 0);
    }
    write_message("1\n23\n");
    ASSERT_TRUE(err_shows("Event queue is full!\n"));
    EXPECT_EQ(err(), "event_task: 1 23 0 0\nEvent queue is full!\n");
    EXPECT_EQ(next_event(), "1 0 0 0");
    write_message("1\n24\n");
    ASSERT_TRUE(err_shows("event_task: 1 24 0 0\n"));
    for (int n = 1; n < 1023; n++)
        ASSERT_EQ(next_event(), "1 " + std::to_string(n) + " 0 0");
    EXPECT_EQ(next_event(), "1 24 0 0");
}

TEST_F(EventThread, events_left_in_the_ring_outlive_close_and_init) {
    ux_event_init();
    write_message("1\n23\n");
    ASSERT_TRUE(err_shows("event_task: 1 23 0 0\n"));
    ux_event_close();
    ux_event_init();
    EXPECT_EQ(next_event(), "1 23 0 0");
    EXPECT_EQ(next_event(), "0 23 0 0");
    EXPECT_TRUE(ring_is_empty());
}

std::atomic<int> s_signalled_thread;

void note_thread(int) {
    s_signalled_thread = static_cast<int>(syscall(SYS_gettid));
}

// Sent to the process while the host's thread holds it back: a helper that took signals would run
// the handler at once.
TEST_F(EventThread, signals_of_the_host_are_not_handled_on_the_helper_threads) {
    s_signalled_thread = 0;
    ux_event_init();
    write_message("1\n23\n");
    EXPECT_EQ(next_event(), "1 23 0 0");
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = note_thread;
    sigaction(SIGUSR1, &action, &before);
    sigset_t held;
    sigset_t mask;
    sigemptyset(&held);
    sigaddset(&held, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &held, &mask);
    kill(getpid(), SIGUSR1);
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGUSR1), 1);
    EXPECT_EQ(s_signalled_thread.load(), 0);
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    EXPECT_TRUE(eventually([] { return s_signalled_thread != 0; }));
    EXPECT_EQ(s_signalled_thread.load(), getpid());
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(EventThread, init_leaves_the_host_s_signal_mask_as_it_was) {
    sigset_t before;
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    ux_event_init();
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (int signal = 1; signal < 32; signal++)
        EXPECT_EQ(sigismember(&before, signal), sigismember(&after, signal)) << signal;
}

} // namespace
