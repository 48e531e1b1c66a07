// SPDX-License-Identifier: MIT
// The C++ library's own ways to wait, in virtual time. `cxx-probe NAME` carries out one check;
// every moment is exact, in milliseconds since the check began.
#include "tests/sim/probe.h"

#include <array>
#include <atomic>
#include <barrier>
#include <chrono>
#include <condition_variable>
#include <future>
#include <latch>
#include <mutex>
#include <semaphore>
#include <shared_mutex>
#include <thread>

namespace {

using namespace std::chrono_literals;
using clock_type = std::chrono::steady_clock;

const clock_type::time_point s_begun = clock_type::now();

bool is_at(std::chrono::milliseconds moment) {
    return clock_type::now() - s_begun == moment;
}

void nap(std::chrono::milliseconds time) {
    std::this_thread::sleep_for(time);
}

void conditions() {
    std::mutex mutex;
    std::condition_variable condition;
    std::unique_lock lock(mutex);
    CHECK(condition.wait_for(lock, 3s) == std::cv_status::timeout && is_at(3s));
    condition.wait_until(lock, std::chrono::system_clock::now() + 2s);
    CHECK(is_at(5s));
    std::jthread thread([&](const std::stop_token &stop) {
        std::mutex own;
        std::condition_variable_any any;
        std::unique_lock held(own);
        any.wait_for(held, stop, 10s, [] { return false; });
    });
    nap(1s);
    thread.request_stop();
    thread.join();
    CHECK(is_at(6s));
}

void timed_mutexes() {
    std::shared_timed_mutex shared;
    std::timed_mutex mutex;
    shared.lock();
    mutex.lock();
    bool first = false;
    bool second = false;
    std::jthread thread([&] {
        first = !shared.try_lock_shared_for(2s) && is_at(2s);
        second = !mutex.try_lock_for(2s) && is_at(4s);
    });
    thread.join();
    CHECK(first && second);
}

void futures() {
    std::promise<int> promise;
    std::future<int> promised = promise.get_future();
    std::jthread thread([&] {
        nap(2s);
        promise.set_value(5);
    });
    CHECK(promised.wait_for(1s) == std::future_status::timeout && is_at(1s));
    CHECK(promised.get() == 5 && is_at(2s));
    auto task = std::async(std::launch::async, [] {
        nap(3s);
        return 7;
    });
    CHECK(task.get() == 7 && is_at(5s));
}

void atomics() {
    std::atomic<int> word{0};
    std::atomic<char> small{'a'};
    std::jthread thread([&] {
        nap(2s);
        word = 1;
        word.notify_one();
        nap(2s);
        small = 'b';
        small.notify_all();
    });
    word.wait(0);
    CHECK(is_at(2s));
    small.wait('a');
    CHECK(is_at(4s));
}

void latches_and_barriers() {
    std::latch latch{2};
    std::barrier<> barrier{2};
    bool both_at_once = false;
    std::jthread thread([&] {
        nap(2s);
        latch.count_down();
        nap(1s);
        barrier.arrive_and_wait();
        both_at_once = is_at(3s);
    });
    latch.arrive_and_wait();
    CHECK(is_at(2s));
    barrier.arrive_and_wait();
    CHECK(is_at(3s));
    thread.join();
    CHECK(both_at_once);
}

void semaphores() {
    std::counting_semaphore<> semaphore{0};
    std::jthread thread([&] {
        nap(2s);
        semaphore.release();
    });
    CHECK(!semaphore.try_acquire_for(1s) && is_at(1s));
    semaphore.acquire();
    CHECK(is_at(2s));
}

int slow_value() {
    static const int value = [] {
        nap(1s);
        return 3;
    }();
    return value;
}

void static_variables() {
    bool good = false;
    std::jthread thread([&] { good = slow_value() == 3 && is_at(1s); });
    CHECK(slow_value() == 3 && is_at(1s));
    thread.join();
    CHECK(good);
}

constexpr std::array k_checks = {
    probe_check{"conditions", conditions},
    probe_check{"timed_mutexes", timed_mutexes},
    probe_check{"futures", futures},
    probe_check{"atomics", atomics},
    probe_check{"latches_and_barriers", latches_and_barriers},
    probe_check{"semaphores", semaphores},
    probe_check{"static_variables", static_variables},
};

} // namespace

int main(int argc, char **argv) {
    return run_probe(k_checks.data(), k_checks.size(), argc, argv);
}
