/* SPDX-License-Identifier: MIT */
/*
 * The linker puts each __wrap_ function in front of the real one; FT_Load_Glyph is found here first
 * by the dynamic linker, also for FreeType's calls to itself.
 */
#include "tests/platform/probes.h"

#include <cerrno>
#include <cstdlib>

#include <dlfcn.h>
#include <fcntl.h>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace {

unsigned long s_allocations;
unsigned long s_glyph_loads;

} // namespace

namespace probes {

open_rules &opens() {
    static open_rules rules;
    return rules;
}
unsigned long allocations() {
    return s_allocations;
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

int __wrap_open(const char *path, int flags, ...) {
    probes::open_rules &rules = probes::opens();
    rules.asked.emplace_back(path);
    if (const auto found = rules.redirect.find(path); found != rules.redirect.end())
        return __real_open(found->second.c_str(), flags);
    if (rules.hide_others) {
        errno = ENOENT;
        return -1;
    }
    return __real_open(path, flags);
}

void *__wrap_malloc(std::size_t size) {
    s_allocations++;
    return __real_malloc(size);
}

void *__wrap_calloc(std::size_t count, std::size_t size) {
    s_allocations++;
    return __real_calloc(count, size);
}

void *__wrap_realloc(void *block, std::size_t size) {
    s_allocations++;
    return __real_realloc(block, size);
}

void *__wrap__Znwm(std::size_t size) {
    s_allocations++;
    return __real__Znwm(size);
}

void *__wrap__Znam(std::size_t size) {
    s_allocations++;
    return __real__Znam(size);
}

[[gnu::visibility("default")]] FT_Error FT_Load_Glyph(FT_Face face, FT_UInt index, FT_Int32 flags) {
    using function = FT_Error (*)(FT_Face, FT_UInt, FT_Int32);
    static const auto real = reinterpret_cast<function>(dlsym(RTLD_NEXT, "FT_Load_Glyph"));
    s_glyph_loads++;
    return real(face, index, flags);
}

} // extern "C"
