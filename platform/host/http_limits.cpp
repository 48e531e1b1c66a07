/* SPDX-License-Identifier: MIT */
/*
 * Reads the limits of a fetch from the environment.
 */
#include "platform/host/http_limits.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>

namespace em862x {

namespace {

/* A short total time, too, tells a stall from a transfer that is just too slow. */
constexpr long k_stall_share = 3;

/* The number in the variable `name`; `otherwise` when that is no whole number of 1..bound. */
long environment_number(const char *name, long bound, long otherwise) noexcept {
    const char *value = std::getenv(name);
    if (!value)
        return otherwise;
    const std::string_view text = value;
    const char *end = text.data() + text.size();
    long number = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    const bool whole = error == std::errc() && stop == end;
    return whole && number >= 1 && number <= bound ? number : otherwise;
}

} // namespace

http_limits read_http_limits() noexcept {
    http_limits limits;
    limits.total_ms =
        environment_number("EM862X_HTTP_TIMEOUT_MS", k_total_ms_bound, limits.total_ms);
    limits.connect_ms = std::min(limits.connect_ms, limits.total_ms);
    limits.stall_ms = std::clamp(limits.total_ms / k_stall_share, 1L, limits.stall_ms);
    limits.body_max =
        environment_number("EM862X_HTTP_MAX_BYTES", k_body_max_bound, limits.body_max);
    return limits;
}

} // namespace em862x
