// SPDX-License-Identifier: MIT
// The calls that the library makes into libc, in a test's hands: allocations that fail, a clock
// that stands, sleeps that only count, files and devices under other names. What a test does not
// set goes to the real function.
#ifndef UX_TESTS_SUPPORT_HOOKS_H
#define UX_TESTS_SUPPORT_HOOKS_H

#include <functional>
#include <string>
#include <sys/time.h>
#include <sys/types.h>
#include <vector>

namespace hooks {

struct state {
    // Memory. Allocations of all code in the program but the C++ run-time library's are counted.
    long allocations = 0;     // malloc, calloc and realloc calls since the last reset
    long fail_allocation = 0; // the n-th from now on fails, once; 0 = none

    // Time.
    bool fake_clock = false;         // gettimeofday() and time() tell `now`, sleeps only count
    timeval now = {1000, 0};         // what they tell
    std::vector<unsigned> sleeps;    // arguments of sleep(), seconds
    std::vector<unsigned> usleeps;   // arguments of usleep(), microseconds
    std::function<void()> on_usleep; // runs at every usleep(), fake clock or not
    std::function<void(const timespec &)> nanosleep; // in its place; null = the real one

    // The environment. The real calls are made all the same.
    std::function<void(const char *name)> on_getenv;
    std::function<void(const char *name, const char *value, int overwrite)> on_setenv;

    // Files. A path that is a key here is opened, unlinked, made under its value.
    std::string pipe_path;  // stands in for "/tmp/event"; empty = the real one
    std::string queue_path; // stands in for the "/tmp" of ftok(); empty = the real one

    // Whether files can be read: null = the real call.
    std::function<int(const char *path, int mode)> access;

    // Devices: null = the real call.
    std::function<int(const char *path, int flags)> open;
    std::function<int(int descriptor, unsigned long request, void *argument)> ioctl;
    std::function<void *(void *, size_t bytes, int protection, int flags, int descriptor, off_t)>
        mmap;
    std::function<int(void *base, size_t bytes)> munmap;
    std::function<int(int descriptor)> close;

    // The event machinery around the main loop: null = the real threads, pipe and queue.
    std::function<int()> event_init;
    std::function<int()> event_close;
};

// The one state. Set it before threads are started.
state &get();

// Back to the real functions, counters to 0.
void reset();

// The n-th allocation from now on fails (n from 1). 0 = none.
void fail_allocation(long n);

// Allocations since the last call of this function or reset().
long take_allocation_count();

// What the latest malloc() gave: for blocks that the code under test keeps to itself.
void *last_block();

// Blocks that were allocated and not freed since the last reset(). Meaningful as long as none of
// the blocks from before are freed.
long blocks_in_use();

} // namespace hooks

#endif
