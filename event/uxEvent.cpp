// SPDX-License-Identifier: MIT
// The event ring and its reader thread, which turns the texts of the event pipe into events.

#include "event/uxEvent.h"

#include "event/event_message.h"

#include <csignal>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace ux {

ux_event events[k_event_slots];
std::atomic<int> front;
std::atomic<int> rear;
pthread_t event_thread;
std::atomic<int> event_running;
std::atomic<unsigned> openings_ended;
helper_thread s_reader;

bool helper_thread::start(pthread_t *handle, void *(*task)(void *)) {
    if (m_handle)
        return false;
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    m_ended.store(false);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const bool started = pthread_create(handle, nullptr, task, nullptr) == 0;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (started)
        m_handle = handle;
    else
        mark_ended();
    return started;
}

void helper_thread::join() {
    if (m_handle)
        pthread_join(*m_handle, nullptr);
    m_handle = nullptr;
}

namespace {

constexpr mode_t k_pipe_mode = S_IFIFO | 0666;
constexpr unsigned k_failed_open_pause_us = 10000;
constexpr int k_stop_tries = 100; // a millisecond each
constexpr const char *k_stop_message = "0\n0\n";

std::atomic<bool> s_stop_is_out; // while closing: the stop message will not come any more

bool is_stopping() {
    return event_running == 0;
}

// While closing, the reader waits for the stop message, but no longer than for its sender.
bool is_abandoned(int) {
    return is_stopping() && s_stop_is_out;
}

bool is_reader_gone(int asked) {
    return s_reader.has_ended() || asked >= k_stop_tries;
}

// False when the wait for a message was given up.
bool receive(event_message &message) {
    pipe_lines pipe(k_event_pipe);
    if (pipe.is_open())
        return read_message(message, pipe, is_abandoned);
    fprintf(stderr, "Can not open pipe %s!\n", k_event_pipe);
    usleep(k_failed_open_pause_us);
    return true;
}

void deliver(event_message &message) {
    parse_message(message);
    const ux_event &event = message.event;
    fprintf(stderr, "event_task: %d %d %d %d\n", event.type, event.value, event.x, event.y);
    ux_event_put(&event);
}

// What the started thread runs: the flag was raised before.
void *read_events(void *) {
    event_message message = {};
    do {
        const bool came = receive(message);
        openings_ended++;
        if (came)
            deliver(message);
    } while (!is_stopping());
    s_reader.mark_ended();
    return nullptr;
}

} // namespace
} // namespace ux

// On a thread of the host's own nobody has raised the flag.
void *event_task(void *unused) noexcept {
    ux::event_running = 1;
    ux::s_reader.mark_begun();
    return ux::read_events(unused);
}

int ux_event_put(const ux_event *ev) noexcept {
    const int slot = ux::rear.load(std::memory_order_relaxed);
    const int next = (slot + 1) % ux::k_event_slots;
    if (next == ux::front.load(std::memory_order_acquire)) {
        fputs("Event queue is full!\n", stderr);
        return -1;
    }
    ux::events[slot] = *ev;
    ux::rear.store(next, std::memory_order_release);
    return 0;
}

int ux_event_get(ux_event *ev) noexcept {
    const int slot = ux::front.load(std::memory_order_relaxed);
    if (slot == ux::rear.load(std::memory_order_acquire))
        return -2;
    *ev = ux::events[slot];
    ux::front.store((slot + 1) % ux::k_event_slots, std::memory_order_release);
    return 0;
}

// The flag is up before the thread runs, so that a close right behind is not overwritten. There is
// one reader only: threads that are still there end first.
int ux_event_init() noexcept {
    ux_event_close();
    unlink(ux::k_event_pipe);
    umask(0);
    mknod(ux::k_event_pipe, ux::k_pipe_mode, 0);
    ux::event_running = 1;
    ux::s_stop_is_out = false;
    ux::s_reader.start(&ux::event_thread, ux::read_events);
    uxEvent_Init_em862x();
    return 0;
}

// The bridge's stop message ends the reader; without a bridge it is sent from here. Where it does
// not arrive, because the name of the pipe is gone or names another, the reader ends without it.
int ux_event_close() noexcept {
    ux::event_running = 0;
    const bool bridged = ux::s_bridge.is_started() && !ux::s_bridge.has_ended();
    uxEvent_Close_em862x();
    if (!bridged && ux::s_reader.is_started())
        ux::write_pipe(ux::k_event_pipe, ux::k_stop_message, ux::is_reader_gone);
    ux::s_stop_is_out = true;
    ux::s_reader.join();
    return 0;
}
