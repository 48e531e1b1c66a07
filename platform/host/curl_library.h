/* SPDX-License-Identifier: MIT */
/*
 * libcurl, loaded when the first address is fetched: with what it is built on it is larger than all
 * else in a player's process, and most players never ask for an address.
 */
#ifndef UX_PLATFORM_HOST_CURL_LIBRARY_H
#define UX_PLATFORM_HOST_CURL_LIBRARY_H

#include <curl/curl.h>

namespace em862x {

/* The functions that a fetch calls, named as libcurl's without "curl_". */
struct curl_library {
    decltype(&curl_global_init) global_init;
    decltype(&curl_easy_init) easy_init;
    decltype(&curl_easy_cleanup) easy_cleanup;
    decltype(&curl_easy_setopt) easy_setopt;
    decltype(&curl_easy_getinfo) easy_getinfo;
    decltype(&curl_easy_pause) easy_pause;
    decltype(&curl_multi_init) multi_init;
    decltype(&curl_multi_cleanup) multi_cleanup;
    decltype(&curl_multi_add_handle) multi_add_handle;
    decltype(&curl_multi_remove_handle) multi_remove_handle;
    decltype(&curl_multi_perform) multi_perform;
    decltype(&curl_multi_info_read) multi_info_read;
    decltype(&curl_multi_poll) multi_poll;
};

/*
 * Loads and initialises the library if that has not been done; it stays, since the host may use it
 * too. False, with a line on standard error, when that fails; the next call tries again.
 */
bool load_curl() noexcept;

/* The functions, once load_curl() has been true. */
const curl_library &curl() noexcept;

} // namespace em862x

#endif
