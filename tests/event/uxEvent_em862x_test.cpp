// SPDX-License-Identifier: MIT
// The bridge: messages of the input driver's queue on one side, texts in the event pipe on the
// other.

#include "tests/event/event_test.h"

#include <poll.h>

namespace {

using event_tests::eventually;
using event_tests::occurrences;

class Bridge : public EventTest {
  protected:
    static bool bridge_has_ended() {
        return eventually([] { return ux::s_bridge.has_ended(); });
    }
    // What stands in stderr but the event thread's trace, which comes from another thread.
    std::string bridge_err() const {
        std::string kept;
        const std::string all = err();
        for (size_t at = 0, end = 0; at < all.size(); at = end) {
            end = all.find('\n', at);
            end = end == std::string::npos ? all.size() : end + 1;
            if (all.compare(at, 11, "event_task:") != 0)
                kept += all.substr(at, end - at);
        }
        return kept;
    }
    // The bridge alone, with the test itself as the pipe's reader.
    void start_alone() {
        ASSERT_EQ(mkfifo(pipe_path().c_str(), 0666), 0);
        m_reader = ::open(pipe_path().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        ASSERT_EQ(uxEvent_Init_em862x(), 0);
    }
    // What one writer of the pipe wrote.
    std::string text_in_pipe() const {
        std::string text;
        char piece[256];
        pollfd wait = {m_reader, POLLIN, 0};
        while (poll(&wait, 1, event_tests::k_patience_ms) > 0) {
            const ssize_t got = read(m_reader, piece, sizeof piece);
            if (got <= 0)
                break;
            text.append(piece, static_cast<size_t>(got));
        }
        return text;
    }

    void TearDown() override {
        uxEvent_Close_em862x();
        if (m_reader >= 0)
            close(m_reader);
        EventTest::TearDown();
    }

    int m_reader = -1;
};

TEST_F(Bridge, init_makes_the_queue_for_user_and_group) {
    ASSERT_EQ(queue(), -1);
    ux_event_init();
    msqid_ds status = {};
    ASSERT_EQ(msgctl(queue(), IPC_STAT, &status), 0);
    EXPECT_EQ(status.msg_perm.mode & 0777, 0660);
}

TEST_F(Bridge, init_takes_the_queue_that_is_there_with_its_messages) {
    ASSERT_GE(make_queue(0600), 0);
    send_driver_message(12, 1);
    ux_event_init();
    EXPECT_EQ(next_event(), "1 12 0 0");
}

TEST_F(Bridge, the_payload_is_276_bytes_behind_the_message_type) {
    start_alone();
    send_driver_message(12, 1, 0, 0, 276);
    EXPECT_EQ(text_in_pipe(), "1\n12\n");
}

TEST_F(Bridge, kind_1_writes_the_key_message_and_prints_the_key_twice) {
    ux_event_init();
    send_driver_message(12, 1, 100, 200);
    EXPECT_EQ(next_event(), "1 12 0 0");
    ASSERT_TRUE(err_shows("map key 12\n", 2));
    EXPECT_EQ(bridge_err(), "map key 12\nmap key 12\n");
    EXPECT_EQ(out(), "");
}

TEST_F(Bridge, the_text_of_a_key_is_type_and_code_in_two_lines) {
    start_alone();
    send_driver_message(12, 1);
    EXPECT_EQ(text_in_pipe(), "1\n12\n");
}

TEST_F(Bridge, kind_2_writes_the_touch_message_and_prints_position_and_key) {
    ux_event_init();
    send_driver_message(7, 2, 100, 200);
    EXPECT_EQ(next_event(), "2 44 100 200");
    ASSERT_TRUE(err_shows("map key 7\n"));
    EXPECT_EQ(bridge_err(), "x:100,y:200\nmap key 7\n");
    EXPECT_EQ(out(), "");
}

TEST_F(Bridge, the_text_of_a_touch_has_value_44_and_no_line_end) {
    start_alone();
    send_driver_message(7, 2, 100, 200);
    EXPECT_EQ(text_in_pipe(), "2\n44 100 200");
}

TEST_F(Bridge, the_key_is_printed_after_the_pipe_has_the_message) {
    std::atomic<int> printed_at_opening{-1};
    hooks::get().open = [&](const char *, int flags) {
        if (flags & O_WRONLY)
            printed_at_opening = occurrences(err(), "map key");
        return static_cast<int>(syscall(SYS_openat, AT_FDCWD, pipe_path().c_str(), flags, 0));
    };
    ux_event_init();
    send_driver_message(12, 1);
    ASSERT_TRUE(err_shows("map key 12\n", 2));
    EXPECT_EQ(printed_at_opening.load(), 0);
    ux_event_close();
}

TEST_F(Bridge, other_kinds_print_the_key_once_and_write_nothing) {
    ux_event_init();
    for (int kind : {3, 0, -1, 2147483647})
        send_driver_message(100 + (kind & 7), kind);
    ASSERT_TRUE(err_shows("map key 107\n", 2));
    EXPECT_EQ(err(), "map key 103\nmap key 100\nmap key 107\nmap key 107\n");
    EXPECT_TRUE(ring_is_empty());
}

TEST_F(Bridge, messages_of_every_type_are_received) {
    ux_event_init();
    for (long type : {1L, 40L, 0x7fffffffL, 0x75000000L + getpid()}) {
        send_driver_message(static_cast<int32_t>(type & 127), 1, 0, 0, 276, type);
        EXPECT_EQ(next_event(), "1 " + std::to_string(type & 127) + " 0 0");
    }
}

TEST_F(Bridge, the_largest_and_smallest_numbers_are_passed_on) {
    ux_event_init();
    send_driver_message(-2147483647 - 1, 1);
    EXPECT_EQ(next_event(), "1 -2147483648 0 0");
    send_driver_message(1, 2, -2147483647 - 1, 2147483647);
    EXPECT_EQ(next_event(), "2 44 -2147483648 2147483647");
}

TEST_F(Bridge, a_message_with_the_key_only_keeps_kind_and_position) {
    ux_event_init();
    send_driver_message(7, 2, 100, 200);
    EXPECT_EQ(next_event(), "2 44 100 200");
    send_driver_message(8, 0, 0, 0, 4);
    EXPECT_EQ(next_event(), "2 44 100 200");
    ASSERT_TRUE(err_shows("map key 8\n"));
    EXPECT_EQ(bridge_err(), "x:100,y:200\nmap key 7\nx:100,y:200\nmap key 8\n");
}

TEST_F(Bridge, a_message_of_8_bytes_keeps_the_position) {
    ux_event_init();
    send_driver_message(7, 3, 100, 200);
    send_driver_message(8, 2, 0, 0, 8);
    EXPECT_EQ(next_event(), "2 44 100 200");
}

TEST_F(Bridge, a_message_that_ends_inside_a_field_changes_its_first_bytes) {
    ux_event_init();
    send_driver_message(7, 2, 0x01020304, 200);
    EXPECT_EQ(next_event(), "2 44 16909060 200");
    send_driver_message(7, 2, 0x05060708, 0, 10);
    EXPECT_EQ(next_event(), "2 44 16910088 200"); // 0x01020708
}

TEST_F(Bridge, a_message_without_payload_tells_the_one_before_again) {
    ux_event_init();
    send_driver_message(12, 1);
    EXPECT_EQ(next_event(), "1 12 0 0");
    send_driver_message(0, 0, 0, 0, 0);
    EXPECT_EQ(next_event(), "1 12 0 0");
    EXPECT_TRUE(err_shows("map key 12\n", 4));
}

TEST_F(Bridge, a_close_between_leaves_the_buffer_to_short_messages) {
    ux_event_init();
    send_driver_message(7, 2, 100, 200);
    EXPECT_EQ(next_event(), "2 44 100 200");
    ux_event_close();
    EXPECT_EQ(next_event(), "0 44 100 200");
    ux_event_init();
    send_driver_message(8, 0, 0, 0, 4);
    EXPECT_EQ(next_event(), "2 44 100 200");
    EXPECT_TRUE(err_shows("map key 8\n"));
}

// The queue hands out faster than the pipe takes.
TEST_F(Bridge, messages_sent_at_once_arrive_all_and_in_order) {
    ASSERT_GE(make_queue(0660), 0);
    for (int key = 0; key < 50; key++)
        send_driver_message(key, 1, 0, 0, 16);
    ux_event_init();
    for (int key = 0; key < 50; key++)
        ASSERT_EQ(next_event(), "1 " + std::to_string(key) + " 0 0");
    EXPECT_EQ(out(), "");
    EXPECT_TRUE(err_shows("map key 49\n", 2));
}

TEST_F(Bridge, touches_sent_at_once_are_not_glued) {
    ASSERT_GE(make_queue(0660), 0);
    for (int x = 0; x < 50; x++)
        send_driver_message(0, 2, x, 20, 16);
    ux_event_init();
    for (int x = 0; x < 50; x++)
        ASSERT_EQ(next_event(), "2 44 " + std::to_string(x) + " 20");
    EXPECT_EQ(out(), "");
}

TEST_F(Bridge, a_message_longer_than_276_bytes_ends_the_bridge_and_wakes_the_reader) {
    ux_event_init();
    send_driver_message(12, 1, 0, 0, 277);
    EXPECT_EQ(next_event(), "0 0 0 0");
    ASSERT_TRUE(bridge_has_ended());
    EXPECT_EQ(bridge_err(), "msgrcv error from parser on uxWidget!\n: Argument list too long\n");
    EXPECT_EQ(ux::event_task_running.load(), 0);
    EXPECT_EQ(ux::event_running.load(), 1);
    EXPECT_EQ(messages_waiting(), 1);
    write_message("1\n23\n");
    EXPECT_EQ(next_event(), "1 23 0 0");
    EXPECT_TRUE(closes_promptly());
}

TEST_F(Bridge, a_queue_that_is_removed_ends_the_bridge_and_wakes_the_reader) {
    ux_event_init();
    ASSERT_TRUE(bridge_waits());
    remove_queue();
    EXPECT_EQ(next_event(), "0 0 0 0");
    ASSERT_TRUE(bridge_has_ended());
    EXPECT_EQ(bridge_err(), "msgrcv error from parser on uxWidget!\n: Identifier removed\n");
    EXPECT_EQ(ux::event_task_running.load(), 0);
    write_message("1\n23\n");
    EXPECT_EQ(next_event(), "1 23 0 0");
    EXPECT_TRUE(closes_promptly());
}

TEST_F(Bridge, a_queue_that_was_removed_is_made_again_by_the_next_init) {
    ux_event_init();
    ASSERT_TRUE(bridge_waits());
    remove_queue();
    ASSERT_TRUE(bridge_has_ended());
    ux_event_close();
    ux_event_init();
    ux::front = ux::rear.load();
    send_driver_message(12, 1);
    EXPECT_EQ(next_event(), "1 12 0 0");
}

TEST_F(Bridge, the_task_forwards_on_a_thread_of_the_host_s_own_until_the_queue_fails) {
    ux_event_init();
    ASSERT_TRUE(bridge_waits());
    uxEvent_Close_em862x();
    EXPECT_EQ(next_event(), "0 0 0 0");
    std::thread bridge([] { uxEvent_task_em862x(nullptr); });
    for (int key : {11, 12, 13}) {
        send_driver_message(key, 1);
        EXPECT_EQ(next_event(), "1 " + std::to_string(key) + " 0 0");
    }
    remove_queue();
    bridge.join();
    EXPECT_EQ(next_event(), "0 13 0 0"); // a stop changes the type only
    EXPECT_TRUE(closes_promptly());
}

TEST_F(Bridge, the_queue_outlives_the_bridge) {
    ux_event_init();
    ux_event_close();
    EXPECT_GE(queue(), 0);
}

TEST_F(Bridge, without_a_key_init_tells_why_and_returns_minus_1) {
    hooks::get().queue_path = path("missing");
    EXPECT_EQ(uxEvent_Init_em862x(), -1);
    EXPECT_EQ(err(), "ftok ,msg queue key msgkey_ir_send error!\n: No such file or directory\n");
    EXPECT_FALSE(ux::s_bridge.is_started());
}

// Root may open every queue: it becomes somebody else for that.
TEST_F(Bridge, without_a_queue_init_tells_why_and_returns_minus_1) {
    ASSERT_GE(make_queue(0), 0);
    const bool is_root = geteuid() == 0;
    if (is_root) {
        ASSERT_EQ(seteuid(65534), 0);
    }
    const int result = uxEvent_Init_em862x();
    if (is_root) {
        ASSERT_EQ(seteuid(0), 0);
    }
    EXPECT_EQ(result, -1);
    EXPECT_EQ(err(), "msgget qid_ir_send error on fun_SendReport!\n: Permission denied\n");
    EXPECT_FALSE(ux::s_bridge.is_started());
}

TEST_F(Bridge, a_second_init_does_not_start_a_second_bridge) {
    start_alone();
    EXPECT_EQ(uxEvent_Init_em862x(), -1);
    send_driver_message(3, 3);
    EXPECT_TRUE(err_shows("map key 3\n"));
    EXPECT_EQ(uxEvent_Close_em862x(), 0);
    EXPECT_EQ(err(), "map key 3\n");
}

TEST_F(Bridge, a_sent_text_reaches_the_reader) {
    ux_event_init();
    send_pipe_event("1\n31\n");
    EXPECT_EQ(next_event(), "1 31 0 0");
}

TEST_F(Bridge, an_empty_text_is_an_empty_opening) {
    ux_event_init();
    send_pipe_event("1\n31\n");
    EXPECT_EQ(next_event(), "1 31 0 0");
    send_pipe_event("");
    EXPECT_EQ(next_event(), "1 31 0 0");
}

TEST_F(Bridge, a_text_sent_without_a_pipe_is_dropped_and_no_file_made) {
    send_pipe_event("1\n31\n");
    EXPECT_FALSE(std::filesystem::exists(pipe_path()));
    EXPECT_EQ(err(), "");
}

TEST_F(Bridge, a_text_sent_after_the_close_is_dropped) {
    ux_event_init();
    ux_event_close();
    ux::front = ux::rear.load();
    EXPECT_LT(event_tests::milliseconds_of([] { send_pipe_event("1\n31\n"); }),
              event_tests::k_prompt_ms);
    ux_event_init();
    send_pipe_event("1\n32\n");
    EXPECT_EQ(next_event(), "1 32 0 0");
}

TEST_F(Bridge, a_missing_pipe_loses_the_message_and_nothing_else) {
    ux_event_init();
    ASSERT_TRUE(reader_has_pipe_open());
    unlink(pipe_path().c_str());
    send_driver_message(12, 1);
    EXPECT_TRUE(err_shows("map key 12\n", 2));
    EXPECT_EQ(err(), "map key 12\nmap key 12\n");
    EXPECT_FALSE(std::filesystem::exists(pipe_path()));
}

TEST_F(Bridge, a_silent_writer_does_not_hold_the_bridge_for_ever) {
    ux_event_init();
    const int silent = open_writer();
    for (int key = 1; key <= 3; key++)
        send_driver_message(key, 1);
    EXPECT_TRUE(err_shows("map key 3\n", 2));
    close(silent);
    EXPECT_EQ(next_event(), "1 1 0 0");
}

} // namespace
