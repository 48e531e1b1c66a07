// SPDX-License-Identifier: MIT
// The reading end of the recording's ring, and the lines of the script.
#include "sim/recorder.h"

#include "sim/failure.h"
#include "sim/input_queue.h"
#include "sim/keys.h"
#include "sim/record_share.h"

#include <chrono>

#include <fcntl.h>
#include <unistd.h>

namespace ux::sim {

namespace {

int64_t ms_between(steady::time_point from, steady::time_point to) {
    return std::max<int64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(to - from).count(), 0);
}

} // namespace

std::string step_for(int kind, int key, int x, int y) {
    if (kind == k_kind_key && key >= 0 && key <= k_key_highest) {
        return "key " + key_text(key);
    }
    if (kind == k_kind_touch) {
        return "touch " + std::to_string(x) + " " + std::to_string(y);
    }
    return "# a message of kind " + std::to_string(kind) + " with key " + std::to_string(key);
}

recorder::recorder(const std::string &path, int queue)
    : m_file_name(path), m_memory("the recording's memory", sizeof(sim_record_share)) {
    static_cast<sim_record_share *>(m_memory.data())->queue = queue;
    m_file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (m_file == -1) {
        throw failure(system_reason("cannot write the recording " + path));
    }
    write_line("# Recorded by ux-sim --record; ux-sim --script plays it.");
}

recorder::~recorder() {
    close(m_file);
}

void recorder::take(steady::time_point begun) {
    auto *share = static_cast<sim_record_share *>(m_memory.data());
    for (;;) {
        sim_record_entry &entry = share->entries[m_seen % SIM_RECORD_SLOTS];
        const uint32_t number = __atomic_load_n(&entry.number, __ATOMIC_ACQUIRE);
        if (number == m_seen + 1) {
            const steady::time_point at{std::chrono::nanoseconds(entry.time_ns)};
            write_step(ms_between(begun, at), step_for(entry.kind, entry.key, entry.x, entry.y));
            ++m_seen;
        } else if (number > m_seen + 1) {
            throw failure("the host received more than the recording could follow");
        } else {
            return;
        }
    }
}

void recorder::finish(steady::time_point begun, steady::time_point now, const host_end *left) {
    take(begun);
    if (left != nullptr && left->as_exit_status() == 0) {
        write_line("wait exit");
    } else {
        write_step(ms_between(begun, now), "quit");
    }
}

void recorder::write_step(int64_t ms, const std::string &step) {
    write_line("wait until " + std::to_string(ms) + "\n" + step);
}

// Line by line, without a buffer: a session that is killed keeps what was recorded.
void recorder::write_line(const std::string &line) {
    const std::string text = line + "\n";
    if (write(m_file, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        throw failure(system_reason("cannot write the recording " + m_file_name));
    }
}

} // namespace ux::sim
