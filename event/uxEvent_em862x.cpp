// SPDX-License-Identifier: MIT
// The bridge from the input driver's message queue to the event pipe.

#include "event/event_pipe.h"
#include "event/uxEvent.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

namespace ux {

std::atomic<int> event_task_running;
helper_thread s_bridge;

key_t msgkey_ir_recv;
int qid_ir_recv = -1;

namespace {

constexpr const char *k_queue_path = "/tmp";
constexpr int k_queue_project = 40;
constexpr int k_queue_flags = IPC_CREAT | 0660;
constexpr size_t k_payload_bytes = 276; // without the message type
constexpr int k_touch_value = 44;
constexpr unsigned k_close_poll_us = 1000;
constexpr int k_close_polls_per_wake = 10;
constexpr int k_close_tries = 100; // a millisecond each
constexpr unsigned k_hand_over_poll_us = 1000;
constexpr int k_hand_over_tries = 100;

enum message_kind { k_kind_key = 1, k_kind_touch = 2 };

// What the input driver sends; shorter messages leave the rest as the last one left it.
struct driver_message {
    long type;
    int32_t key;
    int32_t kind;
    int32_t x;
    int32_t y;
    char unused[k_payload_bytes - 4 * sizeof(int32_t)];
};

driver_message RecvMsgBuffer;
pthread_t s_bridge_handle;
std::atomic<bool> s_closing; // a close is waiting for the bridge
unsigned s_last_opening;     // count of openings ended when the last message was handed over

// What close sends to itself to end a receive that waits: a message without payload, so that the
// buffer keeps what the last one left. It prints nothing, and is known while closing only: at any
// other time it is a message like all others.
constexpr long k_wake_type = 0x75000000;

long wake_type() {
    return k_wake_type + getpid();
}

bool is_wake(ssize_t size) {
    return event_task_running == 0 && size == 0 && RecvMsgBuffer.type == wake_type();
}

// Sends what ends the waiting receive; a full queue ends it by itself.
void send_wake() {
    const long wake = wake_type();
    msgsnd(qid_ir_recv, &wake, 0, IPC_NOWAIT);
}

// Takes back what the receive did not need.
void take_back_wakes() {
    long wake = 0;
    while (msgrcv(qid_ir_recv, &wake, 0, wake_type(), IPC_NOWAIT | MSG_NOERROR) >= 0)
        ;
}

// There is nobody to write to any more; or, while closing, nobody came.
bool is_pointless(int asked) {
    return s_reader.has_ended() || (s_closing && asked >= k_close_tries);
}

// Hands one message over. Two in one opening of the pipe would lose the second: a message waits
// until the reader is done with the one before, but not for ever, since others may hold the pipe.
void hand_over(const char *text) {
    for (int asked = 0; openings_ended == s_last_opening && asked < k_hand_over_tries; asked++) {
        if (is_pointless(asked))
            break;
        usleep(k_hand_over_poll_us);
    }
    s_last_opening = openings_ended;
    send_pipe_event(text);
}

void forward(const driver_message &message) {
    char text[64];
    if (message.kind == k_kind_key) {
        snprintf(text, sizeof text, "%d\n%d\n", UX_EVENT_KEY, message.key);
        hand_over(text);
        fprintf(stderr, "map key %d\n", message.key);
    } else if (message.kind == k_kind_touch) {
        snprintf(text, sizeof text, "%d\n%d %d %d", UX_EVENT_TOUCH, k_touch_value, message.x,
                 message.y);
        hand_over(text);
        fprintf(stderr, "x:%d,y:%d\n", message.x, message.y);
    }
    fprintf(stderr, "map key %d\n", message.key);
}

void send_stop() {
    char text[16];
    snprintf(text, sizeof text, "%d\n0\n", UX_EVENT_STOP);
    hand_over(text);
}

// Receives until told to stop or until the queue fails.
void receive_all() {
    for (;;) {
        const ssize_t size = msgrcv(qid_ir_recv, &RecvMsgBuffer, k_payload_bytes, 0, 0);
        if (size >= 0) {
            if (!is_wake(size))
                forward(RecvMsgBuffer);
        } else if (errno != ENOMSG) {
            perror("msgrcv error from parser on uxWidget!\n");
            event_task_running = 0;
            return;
        }
        if (event_task_running == 0)
            return;
    }
}

// What the started thread runs: the flag was raised before.
void *forward_messages(void *) {
    s_last_opening = openings_ended - 1;
    receive_all();
    send_stop();
    s_bridge.mark_ended();
    return nullptr;
}

} // namespace
} // namespace ux

int uxEvent_Init_em862x() noexcept {
    if (ux::s_bridge.is_started())
        return -1;
    ux::msgkey_ir_recv = ftok(ux::k_queue_path, ux::k_queue_project);
    if (ux::msgkey_ir_recv == -1) {
        perror("ftok ,msg queue key msgkey_ir_send error!\n");
        return -1;
    }
    ux::qid_ir_recv = msgget(ux::msgkey_ir_recv, ux::k_queue_flags);
    if (ux::qid_ir_recv == -1) {
        perror("msgget qid_ir_send error on fun_SendReport!\n");
        return -1;
    }
    ux::event_task_running = 1;
    return ux::s_bridge.start(&ux::s_bridge_handle, ux::forward_messages) ? 0 : -1;
}

int uxEvent_Close_em862x() noexcept {
    ux::event_task_running = 0;
    if (!ux::s_bridge.is_started())
        return 0;
    ux::s_closing = true;
    for (int poll = 0; !ux::s_bridge.has_ended(); poll++) {
        if (poll % ux::k_close_polls_per_wake == 0)
            ux::send_wake();
        usleep(ux::k_close_poll_us);
    }
    ux::s_bridge.join();
    ux::s_closing = false;
    ux::take_back_wakes();
    return 0;
}

// On a thread of the host's own nobody has raised the flag.
void *uxEvent_task_em862x(void *unused) noexcept {
    ux::event_task_running = 1;
    return ux::forward_messages(unused);
}

int send_pipe_event(const char *text) noexcept {
    ux::write_pipe(ux::k_event_pipe, text, ux::is_pointless);
    return 0;
}
