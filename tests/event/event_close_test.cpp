// SPDX-License-Identifier: MIT
// The end of both helper threads: prompt, without further input, whatever others do to the pipe and
// the queue, and with no text but the reader's trace of the stop message.

#include "tests/event/event_test.h"

namespace {

using event_tests::eventually;

constexpr const char *k_stop_trace = "event_task: 0 0 0 0\n";

class EventClose : public EventTest {
  protected:
    // One more reader pass by the name, on a pipe made there now; the test's end of the first.
    void replace_pipe() {
        const int pipe = open_writer();
        unlink(pipe_path().c_str());
        ASSERT_EQ(mkfifo(pipe_path().c_str(), 0666), 0);
        ASSERT_EQ(write(pipe, "1\n5\n", 4), 4);
        close(pipe);
        EXPECT_EQ(next_event(), "1 5 0 0");
    }
    void init_without_bridge() {
        hooks::get().queue_path = path("missing");
        ux_event_init();
        forget_texts();
    }
    static bool both_threads_run() {
        return ux::s_reader.is_started() && ux::s_bridge.is_started();
    }
};

TEST_F(EventClose, right_after_init_it_is_prompt) {
    ux_event_init();
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(err(), k_stop_trace);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(messages_waiting(), 0);
}

TEST_F(EventClose, it_returns_0_and_ends_both_threads) {
    ux_event_init();
    ASSERT_TRUE(both_threads_run());
    EXPECT_EQ(ux_event_close(), 0);
    EXPECT_FALSE(ux::s_reader.is_started());
    EXPECT_FALSE(ux::s_bridge.is_started());
    EXPECT_EQ(ux::event_running.load(), 0);
    EXPECT_EQ(ux::event_task_running.load(), 0);
}

TEST_F(EventClose, the_pipe_stays) {
    ux_event_init();
    ux_event_close();
    EXPECT_TRUE(std::filesystem::is_fifo(pipe_path()));
}

TEST_F(EventClose, it_leaves_one_stop_event_in_the_ring) {
    ux_event_init();
    ux_event_close();
    EXPECT_EQ(next_event(), "0 0 0 0");
    EXPECT_TRUE(ring_is_empty());
}

TEST_F(EventClose, the_stop_event_has_the_fields_of_the_message_before) {
    ux_event_init();
    write_message("2\n44 100 200");
    EXPECT_EQ(next_event(), "2 44 100 200");
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(next_event(), "0 44 100 200");
}

TEST_F(EventClose, twice_is_once) {
    ux_event_init();
    ux_event_close();
    forget_texts();
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(ux_event_close(), 0);
    EXPECT_EQ(err(), "");
}

TEST_F(EventClose, without_init_it_does_nothing) {
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(uxEvent_Close_em862x(), 0);
    EXPECT_EQ(err(), "");
}

// What came last is handed over or not, as the threads meet: never is anything lost or left.
TEST_F(EventClose, behind_a_key_message_it_is_prompt) {
    ux_event_init();
    send_driver_message(12, 1);
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(messages_waiting(), 0);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(next_event(), "1 12 0 0");
    EXPECT_EQ(event_tests::occurrences(err(), "map key 12\n"), 2);
}

TEST_F(EventClose, behind_a_touch_message_it_is_prompt) {
    ux_event_init();
    send_driver_message(0, 2, 100, 200);
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(messages_waiting(), 0);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(next_event(), "2 44 100 200");
}

TEST_F(EventClose, with_the_driver_s_last_message_ending_the_receive_the_stop_is_not_waited_for) {
    for (int round = 0; round < 20; round++) {
        ux_event_init();
        std::thread closing([] { EXPECT_TRUE(closes_promptly()); });
        ASSERT_TRUE(eventually([] { return ux::event_task_running == 0; }));
        send_driver_message(round, 1);
        closing.join();
        msqid_ds status = {};
        ASSERT_EQ(msgctl(queue(), IPC_STAT, &status), 0);
        // The driver's message may have come too late: it is the next run's.
        ASSERT_LE(status.msg_qnum, 1u);
    }
    EXPECT_EQ(out(), "");
}

TEST_F(EventClose, messages_of_the_driver_stay_in_the_queue) {
    ASSERT_GE(make_queue(0660), 0);
    ux_event_init();
    for (int key = 1; key <= 20; key++)
        send_driver_message(key, 3, 0, 0, 16);
    ux_event_close();
    const long left = messages_waiting();
    const int told = event_tests::occurrences(err(), "map key ");
    EXPECT_EQ(left + told, 20);
    ux_event_init();
    EXPECT_TRUE(err_shows("map key 20\n"));
}

TEST_F(EventClose, with_the_queue_full_it_is_prompt) {
    ASSERT_GE(make_queue(0660), 0);
    const struct {
        long type;
        char payload[276];
    } message = {1, {}};
    while (msgsnd(queue(), &message, 276, IPC_NOWAIT) == 0)
        ;
    ux_event_init();
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(out(), "");
}

TEST_F(EventClose, while_a_silent_writer_holds_the_pipe_it_is_prompt) {
    ux_event_init();
    const int silent = open_writer();
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(err(), k_stop_trace);
    EXPECT_EQ(out(), "");
    close(silent);
}

TEST_F(EventClose, while_a_silent_writer_holds_the_pipe_of_a_reader_without_bridge_it_is_prompt) {
    init_without_bridge();
    const int silent = open_writer();
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(err(), k_stop_trace);
    close(silent);
}

TEST_F(EventClose, behind_half_a_line_of_a_silent_writer_it_is_prompt) {
    ux_event_init();
    const int silent = open_writer();
    ASSERT_EQ(write(silent, "1", 1), 1);
    EXPECT_TRUE(closes_promptly());
    close(silent);
}

// A byte at a time, always before the patience of one look is over.
TEST_F(EventClose, while_a_writer_dribbles_it_is_prompt) {
    ux_event_init();
    const int pipe = open_writer();
    std::atomic<bool> over{false};
    std::thread dribbling([&] {
        while (!over) {
            EXPECT_EQ(write(pipe, "1", 1), 1);
            const timespec moment = {0, 5000000};
            nanosleep(&moment, nullptr);
        }
    });
    EXPECT_TRUE(closes_promptly());
    over = true;
    // The test's own end keeps the pipe alive for the last bytes.
    const int reader = ::open(pipe_path().c_str(), O_RDONLY | O_NONBLOCK);
    dribbling.join();
    close(reader);
    close(pipe);
}

TEST_F(EventClose, while_the_pipe_is_stuffed_it_is_prompt) {
    ux_event_init();
    const int hostile = ::open(pipe_path().c_str(), O_RDWR | O_NONBLOCK);
    char junk[4096] = {};
    while (write(hostile, junk, sizeof junk) > 0)
        ;
    EXPECT_TRUE(closes_promptly());
    close(hostile);
}

TEST_F(EventClose, while_another_reader_takes_the_messages_it_is_prompt) {
    ux_event_init();
    const int thief = ::open(pipe_path().c_str(), O_RDONLY | O_NONBLOCK);
    std::atomic<bool> over{false};
    std::thread stealing([&] {
        char stolen[64];
        while (!over) {
            const ssize_t got = read(thief, stolen, sizeof stolen);
            if (got <= 0)
                std::this_thread::yield();
        }
    });
    EXPECT_TRUE(closes_promptly());
    over = true;
    stealing.join();
    close(thief);
}

TEST_F(EventClose, with_the_name_unlinked_it_is_prompt_and_tells_nothing) {
    ux_event_init();
    ASSERT_TRUE(reader_has_pipe_open());
    unlink(pipe_path().c_str());
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(err(), "");
    EXPECT_TRUE(ring_is_empty());
}

TEST_F(EventClose, with_the_name_unlinked_the_last_key_is_not_told_again) {
    ux_event_init();
    write_message("1\n23\n");
    EXPECT_EQ(next_event(), "1 23 0 0");
    ASSERT_TRUE(reader_has_pipe_open());
    unlink(pipe_path().c_str());
    EXPECT_TRUE(closes_promptly());
    EXPECT_TRUE(ring_is_empty());
}

TEST_F(EventClose, with_another_pipe_at_the_name_it_is_prompt) {
    ux_event_init();
    unlink(pipe_path().c_str());
    ASSERT_EQ(mkfifo(pipe_path().c_str(), 0666), 0);
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(out(), "");
}

TEST_F(EventClose, with_a_file_or_a_folder_at_the_name_it_is_prompt) {
    ux_event_init();
    unlink(pipe_path().c_str());
    close(::open(pipe_path().c_str(), O_CREAT | O_WRONLY, 0600));
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(std::filesystem::file_size(pipe_path()), 0u);
    ux_event_init();
    unlink(pipe_path().c_str());
    std::filesystem::create_directory(pipe_path());
    EXPECT_TRUE(closes_promptly());
}

TEST_F(EventClose, with_the_reader_on_a_second_pipe_it_is_prompt) {
    ux_event_init();
    replace_pipe();
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(next_event(), "0 5 0 0");
}

TEST_F(EventClose, with_the_reader_on_a_second_pipe_whose_name_is_gone_it_is_prompt) {
    ux_event_init();
    replace_pipe();
    const int second = open_writer();
    unlink(pipe_path().c_str());
    EXPECT_TRUE(closes_promptly());
    close(second);
}

TEST_F(EventClose, with_no_pipe_at_all_it_is_prompt) {
    ux_event_init();
    const int pipe = open_writer();
    unlink(pipe_path().c_str());
    close(pipe);
    ASSERT_TRUE(err_shows("Can not open pipe /tmp/event!\n"));
    EXPECT_TRUE(closes_promptly());
}

TEST_F(EventClose, without_a_bridge_it_sends_the_stop_itself) {
    init_without_bridge();
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(err(), k_stop_trace);
    EXPECT_EQ(next_event(), "0 0 0 0");
    EXPECT_TRUE(ring_is_empty());
}

TEST_F(EventClose, without_a_bridge_and_with_the_reader_on_a_second_pipe_it_is_prompt) {
    init_without_bridge();
    replace_pipe();
    forget_texts();
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(err(), "event_task: 0 5 0 0\n");
}

TEST_F(EventClose, without_a_bridge_and_with_the_name_unlinked_it_is_prompt) {
    init_without_bridge();
    ASSERT_TRUE(reader_has_pipe_open());
    unlink(pipe_path().c_str());
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(err(), "");
}

TEST_F(EventClose, behind_a_bridge_that_has_ended_itself_it_sends_the_stop) {
    ux_event_init();
    remove_queue();
    EXPECT_EQ(next_event(), "0 0 0 0");
    forget_texts();
    EXPECT_TRUE(closes_promptly());
    EXPECT_EQ(err(), k_stop_trace);
    EXPECT_EQ(next_event(), "0 0 0 0");
}

TEST_F(EventClose, with_the_queue_removed_at_the_same_moment_it_is_prompt) {
    for (int round = 0; round < 20; round++) {
        ux_event_init();
        std::thread removing([this] { remove_queue(); });
        EXPECT_TRUE(closes_promptly());
        removing.join();
        remove_queue();
    }
}

TEST_F(EventClose, init_and_close_200_times_in_a_row_are_prompt_and_leave_nothing) {
    for (int round = 0; round < 200; round++) {
        ux_event_init();
        ASSERT_TRUE(closes_promptly()) << round;
        ASSERT_EQ(messages_waiting(), 0) << round;
    }
    EXPECT_EQ(event_tests::occurrences(err(), k_stop_trace), 200);
    EXPECT_EQ(err().size(), 200 * strlen(k_stop_trace));
    EXPECT_EQ(out(), "");
}

TEST_F(EventClose, a_sender_that_goes_on_meanwhile_is_let_go) {
    ux_event_init();
    std::atomic<bool> over{false};
    std::thread sending([&] {
        while (!over)
            send_pipe_event("1\n31\n");
    });
    EXPECT_EQ(next_event(), "1 31 0 0");
    EXPECT_TRUE(closes_promptly());
    over = true;
    sending.join();
}

} // namespace
