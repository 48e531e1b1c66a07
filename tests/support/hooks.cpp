// SPDX-License-Identifier: MIT
// The wrapped libc calls; see hooks.h. The linker sends every call of f here as __wrap_f and gives
// the real one as __real_f.

#include "tests/support/hooks.h"

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/ipc.h>
#include <sys/stat.h>

namespace hooks {
namespace {

state s_state;
std::atomic<long> s_allocations;
std::atomic<long> s_fail_in; // allocations until the one that fails; 0 = none
std::atomic<void *> s_last_block;
std::atomic<long> s_blocks; // allocated minus freed

bool allocation_fails() {
    s_allocations++;
    return s_fail_in > 0 && --s_fail_in == 0;
}

// More than any memory has: the C library gives null, a sanitizer ends the program.
bool is_beyond_memory(size_t count, size_t bytes) {
    size_t all = 0;
    return __builtin_mul_overflow(count, bytes, &all) || all > PTRDIFF_MAX;
}

void *counted(void *block) {
    if (block)
        s_blocks++;
    return block;
}

const char *replaced(const char *path) {
    if (!s_state.pipe_path.empty() && path && strcmp(path, "/tmp/event") == 0)
        return s_state.pipe_path.c_str();
    return path;
}

} // namespace

state &get() {
    return s_state;
}

void reset() {
    s_state = {};
    s_allocations = 0;
    s_fail_in = 0;
    s_blocks = 0;
}

void fail_allocation(long n) {
    s_fail_in = n;
}

long take_allocation_count() {
    return s_allocations.exchange(0);
}

void *last_block() {
    return s_last_block;
}

long blocks_in_use() {
    return s_blocks;
}

} // namespace hooks

using hooks::get;

extern "C" {

void *__real_malloc(size_t);
void *__real_calloc(size_t, size_t);
void *__real_realloc(void *, size_t);
void __real_free(void *);
unsigned __real_sleep(unsigned);
int __real_usleep(useconds_t);
int __real_nanosleep(const timespec *, timespec *);
char *__real_getenv(const char *);
int __real_setenv(const char *, const char *, int);
int __real_gettimeofday(timeval *, void *);
time_t __real_time(time_t *);
int __real_open(const char *, int, ...);
int __real_close(int);
int __real_ioctl(int, unsigned long, void *);
void *__real_mmap(void *, size_t, int, int, int, off_t);
int __real_munmap(void *, size_t);
int __real_access(const char *, int);
int __real_unlink(const char *);
int __real_mknod(const char *, mode_t, dev_t);
key_t __real_ftok(const char *, int);
int __real_ux_event_init() noexcept;
int __real_ux_event_close() noexcept;

void *__wrap_malloc(size_t bytes) {
    void *block = hooks::allocation_fails() ? nullptr : hooks::counted(__real_malloc(bytes));
    hooks::s_last_block = block;
    return block;
}

void *__wrap_calloc(size_t count, size_t bytes) {
    if (hooks::allocation_fails() || hooks::is_beyond_memory(count, bytes))
        return nullptr;
    return hooks::counted(__real_calloc(count, bytes));
}

void *__wrap_realloc(void *old, size_t bytes) {
    if (hooks::allocation_fails())
        return nullptr;
    void *block = __real_realloc(old, bytes);
    return old ? block : hooks::counted(block);
}

void __wrap_free(void *block) {
    if (block)
        hooks::s_blocks--;
    __real_free(block);
}

unsigned __wrap_sleep(unsigned seconds) {
    get().sleeps.push_back(seconds);
    return get().fake_clock ? 0 : __real_sleep(seconds);
}

// Threads sleep too: only the fake clock's user records, on its one thread.
int __wrap_usleep(useconds_t us) {
    if (get().on_usleep)
        get().on_usleep();
    if (!get().fake_clock)
        return __real_usleep(us);
    get().usleeps.push_back(us);
    return 0;
}

int __wrap_nanosleep(const timespec *time, timespec *rest) {
    if (!get().nanosleep)
        return __real_nanosleep(time, rest);
    get().nanosleep(*time);
    return 0;
}

char *__wrap_getenv(const char *name) {
    if (get().on_getenv)
        get().on_getenv(name);
    return __real_getenv(name);
}

int __wrap_setenv(const char *name, const char *value, int overwrite) {
    if (get().on_setenv)
        get().on_setenv(name, value, overwrite);
    return __real_setenv(name, value, overwrite);
}

int __wrap_gettimeofday(timeval *out, void *zone) {
    if (!get().fake_clock)
        return __real_gettimeofday(out, zone);
    *out = get().now;
    return 0;
}

time_t __wrap_time(time_t *out) {
    if (!get().fake_clock)
        return __real_time(out);
    if (out)
        *out = get().now.tv_sec;
    return get().now.tv_sec;
}

int __wrap_open(const char *path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (get().open)
        return get().open(path, flags);
    return __real_open(hooks::replaced(path), flags, mode);
}

int __wrap_close(int descriptor) {
    return get().close ? get().close(descriptor) : __real_close(descriptor);
}

int __wrap_ioctl(int descriptor, unsigned long request, void *argument) {
    return get().ioctl ? get().ioctl(descriptor, request, argument)
                       : __real_ioctl(descriptor, request, argument);
}

void *__wrap_mmap(void *address, size_t bytes, int protection, int flags, int descriptor,
                  off_t offset) {
    if (get().mmap)
        return get().mmap(address, bytes, protection, flags, descriptor, offset);
    return __real_mmap(address, bytes, protection, flags, descriptor, offset);
}

int __wrap_munmap(void *base, size_t bytes) {
    return get().munmap ? get().munmap(base, bytes) : __real_munmap(base, bytes);
}

int __wrap_access(const char *path, int mode) {
    return get().access ? get().access(path, mode) : __real_access(path, mode);
}

int __wrap_unlink(const char *path) {
    return __real_unlink(hooks::replaced(path));
}

int __wrap_mknod(const char *path, mode_t mode, dev_t device) {
    return __real_mknod(hooks::replaced(path), mode, device);
}

key_t __wrap_ftok(const char *path, int project) {
    const bool is_queue = !get().queue_path.empty() && strcmp(path, "/tmp") == 0;
    return __real_ftok(is_queue ? get().queue_path.c_str() : path, project);
}

int __wrap_ux_event_init() noexcept {
    return get().event_init ? get().event_init() : __real_ux_event_init();
}

int __wrap_ux_event_close() noexcept {
    return get().event_close ? get().event_close() : __real_ux_event_close();
}

} // extern "C"
