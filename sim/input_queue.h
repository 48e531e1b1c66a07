// SPDX-License-Identifier: MIT
// The System V message queue between an input driver and a host: its key, the message's layout,
// sending, and a queue of one's own that disappears with its owner.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <sys/types.h>

namespace ux::sim {

constexpr int k_queue_project = 40;                  // second argument of ftok
constexpr const char *k_queue_default_path = "/tmp"; // first argument of ftok on a device

constexpr int32_t k_kind_key = 1;
constexpr int32_t k_kind_touch = 2;

// One message as it lies in memory; the kernel does not count `type` as payload.
struct input_message {
    long type = 1;    // the receiver takes any type; the kernel insists on > 0
    int32_t key = 0;  // key code
    int32_t kind = 0; // k_kind_key or k_kind_touch
    int32_t x = 0;    // touch position in screen pixels
    int32_t y = 0;
};

input_message key_message(int code);
input_message touch_message(int x, int y);

// The key that names the queue of `path`. Throws failure when the path cannot be looked at.
key_t queue_key(const std::string &path);

// An existing queue, or nothing. Throws failure for any other trouble than "there is none".
std::optional<int> find_queue(key_t key);

enum class send_result { sent, full };

// Never blocks. Throws failure when the queue is gone or refuses the message.
send_result send_message(int queue, const input_message &message);

// Messages that wait in the queue. Throws failure when it is gone.
unsigned long waiting_messages(int queue);

// A queue made new and removed at the end.
class owned_queue {
  public:
    // Nothing when a queue with this key exists already.
    static std::optional<owned_queue> create(key_t key);

    owned_queue(owned_queue &&other) noexcept;
    owned_queue &operator=(owned_queue &&other) noexcept;
    ~owned_queue();

    int id() const { return m_id; }

  private:
    explicit owned_queue(int id) : m_id(id) {}

    int m_id; // -1 after a move
};

} // namespace ux::sim
