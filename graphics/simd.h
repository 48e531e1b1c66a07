// SPDX-License-Identifier: MIT
// One switch for functions that are compiled more than once and chosen at load time by the CPU. The
// sanitizers' run-time is not up yet when that choice is made, so their builds take the baseline.
#ifndef UX_GRAPHICS_SIMD_H
#define UX_GRAPHICS_SIMD_H

#include <cstdint> // tells which C library this is

#if defined(__x86_64__) && defined(__GLIBC__) && defined(__GNUC__) && !defined(__clang__) &&       \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define UX_MULTIVERSION __attribute__((target_clones("avx2", "default")))
#else
#define UX_MULTIVERSION
#endif

#endif
