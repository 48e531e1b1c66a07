// SPDX-License-Identifier: MIT
// ux-remote: what it puts into the queue, and what it says when that cannot be.
#include "sim/input_queue.h"
#include "tests/sim/process.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include <sys/ipc.h>
#include <sys/msg.h>

namespace {

using namespace ux::sim::test;

// Reads the queue as a host does: by offsets behind the message's type.
struct received {
    ssize_t bytes = -1;
    std::array<int32_t, 69> words{}; // 276 bytes
};

class remote_test : public ::testing::Test {
  protected:
    void make_queue() { m_queue = ux::sim::owned_queue::create(key()); }

    key_t key() const { return ux::sim::queue_key(m_folder.path()); }

    std::vector<std::string> command(std::vector<std::string> rest) const {
        rest.insert(rest.begin(), {UX_REMOTE, "--queue-path", m_folder.path()});
        return rest;
    }

    received receive() const {
        std::array<char, sizeof(long) + 276> buffer{};
        received result;
        EXPECT_TRUE(eventually([&] {
            result.bytes = msgrcv(m_queue->id(), buffer.data(), 276, 0, IPC_NOWAIT);
            return result.bytes != -1;
        }));
        std::memcpy(result.words.data(), buffer.data() + sizeof(long), 276);
        return result;
    }

    temp_folder m_folder;
    std::optional<ux::sim::owned_queue> m_queue;
};

TEST_F(remote_test, a_key_is_a_message_with_code_and_kind_1) {
    make_queue();
    program remote(command({"key", "ok"}));
    EXPECT_EQ(remote.wait(), 0);
    EXPECT_EQ(remote.err(), "");
    received message = receive();
    EXPECT_EQ(message.bytes, 16);
    EXPECT_EQ(message.words[0], 23);
    EXPECT_EQ(message.words[1], 1);
}

TEST_F(remote_test, a_touch_is_a_message_with_kind_2_and_position) {
    make_queue();
    program remote(command({"touch", "100", "200"}));
    EXPECT_EQ(remote.wait(), 0);
    received message = receive();
    EXPECT_EQ(message.words[0], 0);
    EXPECT_EQ(message.words[1], 2);
    EXPECT_EQ(message.words[2], 100);
    EXPECT_EQ(message.words[3], 200);
}

TEST_F(remote_test, typing_sends_the_taps_in_order) {
    make_queue();
    program remote(command({"--pace", "1", "type", "c1"}));
    for (int key : {3, 3, 3, 3, 2}) {
        EXPECT_EQ(receive().words[0], key);
    }
    EXPECT_EQ(remote.wait(), 0);
}

TEST_F(remote_test, a_letter_of_the_same_key_comes_more_than_a_second_later) {
    make_queue();
    program remote(command({"--pace", "1", "type", "22"}));
    receive();
    const auto first = std::chrono::steady_clock::now();
    receive();
    EXPECT_GT(std::chrono::steady_clock::now() - first, std::chrono::milliseconds(1000));
    EXPECT_EQ(remote.wait(), 0);
}

TEST_F(remote_test, the_next_message_waits_until_the_one_before_is_taken) {
    make_queue();
    program remote(command({"--pace", "1", "key", "1", "2", "3"}));
    for (int key : {1, 2, 3}) {
        ASSERT_TRUE(eventually([&] { return ux::sim::waiting_messages(m_queue->id()) == 1; }));
        EXPECT_EQ(receive().words[0], key);
    }
    EXPECT_EQ(remote.wait(), 0);
}

TEST_F(remote_test, a_missing_queue_is_an_error_and_none_is_made) {
    program remote(command({"key", "ok"}));
    EXPECT_EQ(remote.wait(), 1);
    EXPECT_EQ(remote.err(), "ux-remote: there is no input queue for " + m_folder.path() +
                                "; is the host running?\n");
    EXPECT_EQ(msgget(key(), 0), -1);
}

TEST_F(remote_test, a_full_queue_is_an_error) {
    make_queue();
    while (ux::sim::send_message(m_queue->id(), ux::sim::key_message(1)) ==
           ux::sim::send_result::sent) {
    }
    program remote(command({"key", "ok"}));
    EXPECT_EQ(remote.wait(), 1);
    EXPECT_EQ(remote.err(), "ux-remote: the input queue is full: nobody takes the messages\n");
}

TEST_F(remote_test, what_cannot_be_typed_sends_nothing) {
    make_queue();
    program remote(command({"type", "ab?"}));
    EXPECT_EQ(remote.wait(), 1);
    EXPECT_EQ(remote.err(), "ux-remote: no key types '?' (position 3)\n");
    EXPECT_EQ(ux::sim::waiting_messages(m_queue->id()), 0u);
}

TEST_F(remote_test, a_bad_command_line_ends_with_status_2) {
    program remote({UX_REMOTE, "key", "menu"});
    EXPECT_EQ(remote.wait(), 2);
    EXPECT_EQ(remote.err(), "ux-remote: no key is called 'menu'; see ux-remote --help\n");
}

TEST_F(remote_test, a_missing_path_is_named) {
    program remote({UX_REMOTE, "--queue-path", "/nowhere", "key", "1"});
    EXPECT_EQ(remote.wait(), 1);
    EXPECT_EQ(remote.err(),
              "ux-remote: cannot name a queue by /nowhere: No such file or directory\n");
}

TEST_F(remote_test, keys_reach_a_host_in_the_simulator) {
    program sim({UX_SIM, "--headless", "--queue-path", m_folder.path(), "--", FB_HOST, "--exit-on",
                 "23", "--exit-status", "4"});
    ASSERT_TRUE(eventually([&] { return msgget(key(), 0) != -1; }));
    program remote(command({"key", "up", "ok"}));
    EXPECT_EQ(remote.wait(), 0);
    EXPECT_EQ(sim.wait(), 4);
    EXPECT_EQ(msgget(key(), 0), -1);
}

} // namespace
