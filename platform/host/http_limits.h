/* SPDX-License-Identifier: MIT */
/*
 * How long a fetch may take and how much it may bring.
 */
#ifndef UX_PLATFORM_HOST_HTTP_LIMITS_H
#define UX_PLATFORM_HOST_HTTP_LIMITS_H

namespace em862x {

/* Times in milliseconds, sizes in bytes. */
struct http_limits {
    long total_ms = 30000;     /* from fetchOpen to the last byte, the caller's own time included */
    long connect_ms = 5000;    /* looking the name up and connecting */
    long stall_ms = 10000;     /* waiting for the next byte */
    long body_max = 64L << 20; /* of the file */
    long head_max = 256L << 10; /* of all answers' headers together, redirections included */
    long redirects_max = 5;
};

/*
 * The limits for the next fetch. Two environment variables change them; a value that is not a whole
 * number from 1 to the bound below is ignored.
 *   EM862X_HTTP_TIMEOUT_MS  total_ms; connect_ms is cut to it, stall_ms to a third of it
 *   EM862X_HTTP_MAX_BYTES   body_max
 */
http_limits read_http_limits() noexcept;

constexpr long k_total_ms_bound = 600000;
constexpr long k_body_max_bound = 1L << 30;

} // namespace em862x

#endif
