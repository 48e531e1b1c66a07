/* SPDX-License-Identifier: MIT */
/*
 * Loading libcurl by the name that it had when this was built.
 */
#include "platform/host/curl_library.h"

#include <cstdio>

#include <dlfcn.h>

namespace em862x {

namespace {

struct curl_state {
    curl_library functions = {};
    bool ready = false;
};
constinit curl_state s_curl;

template <class Function>
bool find(void *library, const char *name, Function &function) noexcept {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

bool find_all(void *library, curl_library &in) noexcept {
    return find(library, "curl_global_init", in.global_init) &&
           find(library, "curl_easy_init", in.easy_init) &&
           find(library, "curl_easy_cleanup", in.easy_cleanup) &&
           find(library, "curl_easy_setopt", in.easy_setopt) &&
           find(library, "curl_easy_getinfo", in.easy_getinfo) &&
           find(library, "curl_easy_pause", in.easy_pause) &&
           find(library, "curl_multi_init", in.multi_init) &&
           find(library, "curl_multi_cleanup", in.multi_cleanup) &&
           find(library, "curl_multi_add_handle", in.multi_add_handle) &&
           find(library, "curl_multi_remove_handle", in.multi_remove_handle) &&
           find(library, "curl_multi_perform", in.multi_perform) &&
           find(library, "curl_multi_info_read", in.multi_info_read) &&
           find(library, "curl_multi_poll", in.multi_poll);
}

} // namespace

bool load_curl() noexcept {
    if (s_curl.ready)
        return true;
    void *library = dlopen(EM862X_CURL, RTLD_NOW | RTLD_LOCAL);
    if (!library || !find_all(library, s_curl.functions)) {
        std::fprintf(stderr, "no address can be fetched: %s\n", dlerror());
        if (library)
            dlclose(library);
        return false;
    }
    s_curl.ready = s_curl.functions.global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    if (!s_curl.ready)
        std::fprintf(stderr, "no address can be fetched: %s does not start\n", EM862X_CURL);
    return s_curl.ready;
}

const curl_library &curl() noexcept {
    return s_curl.functions;
}

} // namespace em862x
