/* SPDX-License-Identifier: MIT */
/*
 * Tests of the fetcher: fetching a whole file through the file calls, limits for one test, and
 * files to send.
 */
#ifndef UX_TESTS_PLATFORM_HTTP_FIXTURE_H
#define UX_TESTS_PLATFORM_HTTP_FIXTURE_H

#include <chrono>
#include <cstdlib>
#include <ostream>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "platform/em862x.h"
#include "tests/platform/http_server.h"

/* How a fetch ended. */
enum class fetch_end {
    refused, /* not opened */
    broken,  /* failed after `bytes` */
    whole    /* the end of the file came after `bytes` */
};

struct fetched {
    fetch_end end = fetch_end::refused;
    std::string bytes;

    bool operator==(const fetched &) const = default;
};

inline std::ostream &operator<<(std::ostream &out, const fetched &result) {
    constexpr const char *names[] = {"refused", "broken", "whole"};
    return out << names[static_cast<int>(result.end)] << " after " << result.bytes.size()
               << " bytes: " << testing::PrintToString(result.bytes.substr(0, 60));
}

/* Reads to the end in pieces of up to `piece` bytes through the cookie's own functions. */
inline fetched read_cookie(void *cookie, std::uint32_t piece = 4096) {
    fetched result{fetch_end::broken, ""};
    std::string buffer(piece, '\0');
    std::uint32_t count = 0;
    while (httpFileOps.read(cookie, buffer.data(), piece, &count) == EM862X_SUCCESS) {
        if (count == 0) {
            result.end = fetch_end::whole;
            break;
        }
        result.bytes.append(buffer, 0, count);
    }
    return result;
}

inline fetched fetch(const std::string &url) {
    void *cookie = fetchOpen(url.c_str(), 0);
    if (!cookie)
        return {};
    fetched result = read_cookie(cookie);
    fetchClose(cookie);
    return result;
}

/* What a client gets from a server that answers every request with the same bytes. */
inline fetched fetch_answer(const std::string &answer) {
    const http_server server([&](http_connection &client) { client.send(answer); });
    return fetch(server.url());
}

inline std::string random_bytes(std::size_t count) {
    std::mt19937 random(static_cast<unsigned>(count));
    std::string bytes(count, '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

/* A test that may change the limits, and starts with a total time that ends a hanging test. */
class http_fixture : public testing::Test {
  protected:
    http_fixture() { limit_time(8000); }
    ~http_fixture() override {
        unsetenv("EM862X_HTTP_TIMEOUT_MS");
        unsetenv("EM862X_HTTP_MAX_BYTES");
    }

    static void limit_time(long total_ms) {
        setenv("EM862X_HTTP_TIMEOUT_MS", std::to_string(total_ms).c_str(), 1);
    }
    static void limit_size(long bytes) {
        setenv("EM862X_HTTP_MAX_BYTES", std::to_string(bytes).c_str(), 1);
    }

    /* Milliseconds that `action` takes. */
    template <class Action>
    static long duration_ms(Action &&action) {
        const auto begin = std::chrono::steady_clock::now();
        action();
        const auto time = std::chrono::steady_clock::now() - begin;
        return static_cast<long>(
            std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
    }
};

#endif
