/* SPDX-License-Identifier: MIT */
/*
 * Stands in for libcurl where only loading it matters. The host says by an environment variable
 * whether it starts.
 */
#include <stdlib.h>

int curl_global_init(long flags) {
    const int failed_init = 2; /* CURLE_FAILED_INIT */
    (void)flags;
    return getenv("FAKE_CURL_FAILS") ? failed_init : 0;
}

void curl_easy_init(void) {}
void curl_easy_cleanup(void) {}
void curl_easy_setopt(void) {}
void curl_easy_getinfo(void) {}
void curl_easy_pause(void) {}
void curl_multi_init(void) {}
void curl_multi_cleanup(void) {}
void curl_multi_add_handle(void) {}
void curl_multi_remove_handle(void) {}
void curl_multi_perform(void) {}
void curl_multi_info_read(void) {}
#ifndef FAKE_CURL_IS_OLD
void curl_multi_poll(void) {}
#endif
