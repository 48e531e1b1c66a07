// SPDX-License-Identifier: MIT
// The queue calls, with their errors turned into texts.
#include "sim/input_queue.h"

#include "sim/failure.h"

#include <cerrno>
#include <utility>

#include <sys/ipc.h>
#include <sys/msg.h>

namespace ux::sim {

input_message key_message(int code) {
    return {.key = code, .kind = k_kind_key};
}

input_message touch_message(int x, int y) {
    return {.kind = k_kind_touch, .x = x, .y = y};
}

key_t queue_key(const std::string &path) {
    key_t key = ftok(path.c_str(), k_queue_project);
    if (key == -1) {
        throw failure(system_reason("cannot name a queue by " + path));
    }
    return key;
}

std::optional<int> find_queue(key_t key) {
    int id = msgget(key, 0);
    if (id == -1 && errno != ENOENT) {
        throw failure(system_reason("cannot open the input queue"));
    }
    return id == -1 ? std::nullopt : std::optional(id);
}

send_result send_message(int queue, const input_message &message) {
    constexpr size_t k_payload = sizeof(input_message) - sizeof(long);
    int sent = 0;
    do {
        sent = msgsnd(queue, &message, k_payload, IPC_NOWAIT);
    } while (sent == -1 && errno == EINTR);
    if (sent == -1 && errno != EAGAIN) {
        throw failure(system_reason("cannot send to the input queue"));
    }
    return sent == -1 ? send_result::full : send_result::sent;
}

unsigned long waiting_messages(int queue) {
    msqid_ds state{};
    if (msgctl(queue, IPC_STAT, &state) == -1) {
        throw failure(system_reason("cannot look at the input queue"));
    }
    return state.msg_qnum;
}

std::optional<owned_queue> owned_queue::create(key_t key) {
    int id = msgget(key, IPC_CREAT | IPC_EXCL | 0600);
    if (id == -1 && errno != EEXIST) {
        throw failure(system_reason("cannot make the input queue"));
    }
    return id == -1 ? std::nullopt : std::optional(owned_queue(id));
}

owned_queue::owned_queue(owned_queue &&other) noexcept : m_id(std::exchange(other.m_id, -1)) {}

owned_queue &owned_queue::operator=(owned_queue &&other) noexcept {
    std::swap(m_id, other.m_id);
    return *this;
}

owned_queue::~owned_queue() {
    if (m_id != -1) {
        msgctl(m_id, IPC_RMID, nullptr);
    }
}

} // namespace ux::sim
