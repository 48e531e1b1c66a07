/* SPDX-License-Identifier: MIT */
/*
 * The linker puts each __wrap_ function in front of the real one; FT_Load_Glyph and getaddrinfo are
 * found here first by the dynamic linker, also for calls between libraries.
 */
#include "tests/platform/probes.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <netdb.h>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace {

std::atomic<unsigned long> s_allocations;
unsigned long s_glyph_loads;
thread_local unsigned long s_failing; /* allocations up to and with the failing one; 0: none */
thread_local bool s_failed;
std::atomic<int> s_hanging; /* lookups that wait */
std::atomic<bool> s_released;

bool counted_allocation_fails() {
    s_allocations++;
    if (s_failing == 0 || --s_failing != 0)
        return false;
    s_failed = true;
    return true;
}

} // namespace

namespace probes {

open_rules &opens() {
    static open_rules rules;
    return rules;
}
unsigned long allocations() {
    return s_allocations;
}
void fail_allocation(unsigned long number) {
    s_failing = number;
    s_failed = false;
}
bool allocation_failed() {
    return s_failed;
}
void release_lookups() {
    s_released = true;
    s_released.notify_all();
    for (int hanging = s_hanging; hanging != 0; hanging = s_hanging)
        s_hanging.wait(hanging);
    s_released = false;
}
unsigned long glyph_loads() {
    return s_glyph_loads;
}

} // namespace probes

extern "C" {

int __real_open(const char *path, int flags, ...);
void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
void *__real_realloc(void *block, std::size_t size);
void *__real__Znwm(std::size_t size);
void *__real__Znam(std::size_t size);
void *__real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t &tag);
FILE *__real_fdopen(int file, const char *mode);

int __wrap_open(const char *path, int flags, ...) {
    /* The rules are not the code under test: their own allocations do not fail. */
    const unsigned long failing = std::exchange(s_failing, 0);
    probes::open_rules &rules = probes::opens();
    rules.asked.emplace_back(path);
    const auto found = rules.redirect.find(path);
    s_failing = failing;
    if (found != rules.redirect.end())
        return __real_open(found->second.c_str(), flags);
    if (rules.hide_others) {
        errno = ENOENT;
        return -1;
    }
    return __real_open(path, flags);
}

FILE *__wrap_fdopen(int file, const char *mode) {
    if (counted_allocation_fails()) {
        errno = ENOMEM;
        return nullptr;
    }
    return __real_fdopen(file, mode);
}

void *__wrap_malloc(std::size_t size) {
    return counted_allocation_fails() ? nullptr : __real_malloc(size);
}

void *__wrap_calloc(std::size_t count, std::size_t size) {
    return counted_allocation_fails() ? nullptr : __real_calloc(count, size);
}

void *__wrap_realloc(void *block, std::size_t size) {
    return counted_allocation_fails() ? nullptr : __real_realloc(block, size);
}

void *__wrap__Znwm(std::size_t size) {
    if (counted_allocation_fails())
        throw std::bad_alloc();
    return __real__Znwm(size);
}

void *__wrap__Znam(std::size_t size) {
    if (counted_allocation_fails())
        throw std::bad_alloc();
    return __real__Znam(size);
}

void *__wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t &tag) {
    return counted_allocation_fails() ? nullptr : __real__ZnwmRKSt9nothrow_t(size, tag);
}

[[gnu::visibility("default")]] int getaddrinfo(const char *host, const char *service,
                                               const addrinfo *hints, addrinfo **found) {
    using function = int (*)(const char *, const char *, const addrinfo *, addrinfo **);
    static const auto real = reinterpret_cast<function>(dlsym(RTLD_NEXT, "getaddrinfo"));
    if (!host || std::strcmp(host, probes::k_hanging_host) != 0)
        return real(host, service, hints, found);
    s_hanging++;
    s_released.wait(false);
    s_hanging--;
    s_hanging.notify_all();
    return EAI_NONAME;
}

[[gnu::visibility("default")]] FT_Error FT_Load_Glyph(FT_Face face, FT_UInt index, FT_Int32 flags) {
    using function = FT_Error (*)(FT_Face, FT_UInt, FT_Int32);
    static const auto real = reinterpret_cast<function>(dlsym(RTLD_NEXT, "FT_Load_Glyph"));
    s_glyph_loads++;
    return real(face, index, flags);
}

} // extern "C"
