// SPDX-License-Identifier: MIT
// Grants by futex, and what to say about a host that does not come to rest.
#include "sim/virtual_clock.h"

#include "sim/clock_share.h"
#include "sim/failure.h"

#include <climits>
#include <cstdio>
#include <memory>

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ux::sim {

namespace {

constexpr long k_slice_ns = 10'000'000; // between two looks at what else may have happened

template <class T>
T load(const T &field) {
    return __atomic_load_n(&field, __ATOMIC_ACQUIRE);
}

template <class T>
void store(T &field, T value) {
    __atomic_store_n(&field, value, __ATOMIC_RELEASE);
}

// The letter by which the kernel tells what a thread does: R = it runs.
char state_of_thread(int process, int thread) {
    const std::string path =
        "/proc/" + std::to_string(process) + "/task/" + std::to_string(thread) + "/stat";
    std::unique_ptr<FILE, int (*)(FILE *)> file(std::fopen(path.c_str(), "re"), std::fclose);
    char state = '?';
    if (file && std::fscanf(file.get(), "%*d (%*[^)]) %c", &state) != 1) {
        state = '?';
    }
    return state;
}

} // namespace

virtual_clock::virtual_clock(int64_t epoch_s, std::chrono::seconds limit)
    : m_limit(limit), m_memory("the clock's memory", sizeof(sim_clock_share)),
      m_share(static_cast<sim_clock_share *>(m_memory.data())) {
    m_share->epoch_s = epoch_s;
}

steady::time_point virtual_clock::now() const {
    return steady::time_point(std::chrono::nanoseconds(load(m_share->now_ns)));
}

bool virtual_clock::rests() const {
    return load(m_share->rested) == load(m_share->granted);
}

void virtual_clock::grant(int64_t horizon_ns) {
    store(m_share->horizon_ns, horizon_ns);
    store(m_share->granted, load(m_share->granted) + 1);
    syscall(SYS_futex, &m_share->granted, FUTEX_WAKE, INT_MAX, nullptr, nullptr, 0);
}

void virtual_clock::run_free() {
    grant(SIM_CLOCK_NEVER);
    begin_to_watch();
}

void virtual_clock::look_again() {
    if (rests()) {
        run_free();
    }
}

void virtual_clock::keep_free() {
    look_again();
    watch();
}

void virtual_clock::begin_to_watch() {
    m_seen_ns = load(m_share->now_ns);
    m_seen_at = steady::now();
}

void virtual_clock::watch() {
    if (load(m_share->now_ns) != m_seen_ns) {
        begin_to_watch();
    } else if (steady::now() - m_seen_at >= m_limit) {
        complain();
    }
}

void virtual_clock::run_until(steady::time_point until, const std::function<bool()> &leave) {
    grant(std::chrono::nanoseconds(until.time_since_epoch()).count());
    begin_to_watch();
    while (!rests() && !leave()) {
        const timespec slice = {.tv_sec = 0, .tv_nsec = k_slice_ns};
        const uint32_t rested = load(m_share->rested);
        if (rested != load(m_share->granted)) {
            syscall(SYS_futex, &m_share->rested, FUTEX_WAIT, rested, &slice, nullptr, 0);
        }
        watch();
    }
}

void virtual_clock::complain() const {
    const int owner = load(m_share->owner);
    const std::string limit = std::to_string(m_limit.count()) + " s";
    if (owner == 0) {
        throw failure("the host did not take up virtual time within " + limit +
                      " (is it statically linked or set-user-ID?)");
    }
    const int thread = load(m_share->thread);
    const bool spins = state_of_thread(owner, thread) == 'R';
    throw failure("virtual time stood still for " + limit + ": thread " + std::to_string(thread) +
                  " of the host " +
                  (spins ? "runs without ever sleeping or waiting"
                         : "hangs in a call that virtual time does not know"));
}

} // namespace ux::sim
