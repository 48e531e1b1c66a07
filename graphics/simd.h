// SPDX-License-Identifier: MIT
// Functions that are compiled for more than one CPU. UX_MULTIVERSION compiles one text several
// times and chooses at load time; the sanitizers' run-time is not up yet when that choice is made,
// so their builds take the baseline. UX_AVX2 marks a function that leans on shuffles which the
// baseline would have to take apart lane by lane: it stands beside a portable one and is called if
// has_avx2().
#ifndef UX_GRAPHICS_SIMD_H
#define UX_GRAPHICS_SIMD_H

#include <cstdint> // tells which C library this is

#if defined(__x86_64__) && defined(__GLIBC__) && defined(__GNUC__) && !defined(__clang__) &&       \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define UX_MULTIVERSION __attribute__((target_clones("avx2", "default")))
#else
#define UX_MULTIVERSION
#endif

namespace ux {

// GCC only: it alone can be asked to shuffle by numbers that a loop finds out.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define UX_AVX2 __attribute__((target("avx2")))
inline bool has_avx2() {
    return __builtin_cpu_supports("avx2");
}
#else
#define UX_AVX2
constexpr bool has_avx2() {
    return false;
}
#endif

// Picks lanes of `a`, or of `a` followed by `b`, by number.
#if defined(__clang__)
template <class Vector>
inline void pick_lanes(Vector &picked, const Vector &a, const Vector &numbers) {
    constexpr int lanes = static_cast<int>(sizeof(Vector) / sizeof a[0]);
    for (int i = 0; i < lanes; i++)
        picked[i] = a[numbers[i] % lanes];
}
template <class Vector>
inline void pick_lanes(Vector &picked, const Vector &a, const Vector &b, const Vector &numbers) {
    constexpr int lanes = static_cast<int>(sizeof(Vector) / sizeof a[0]);
    for (int i = 0; i < lanes; i++)
        picked[i] =
            numbers[i] % (2 * lanes) < lanes ? a[numbers[i] % lanes] : b[numbers[i] % lanes];
}
#else
template <class Vector>
inline __attribute__((always_inline)) void pick_lanes(Vector &picked, const Vector &a,
                                                      const Vector &numbers) {
    picked = __builtin_shuffle(a, numbers);
}
template <class Vector>
inline __attribute__((always_inline)) void pick_lanes(Vector &picked, const Vector &a,
                                                      const Vector &b, const Vector &numbers) {
    picked = __builtin_shuffle(a, b, numbers);
}
#endif

} // namespace ux

#endif
