/* SPDX-License-Identifier: MIT */
/*
 * Servers that take too long or send too much.
 */
#include "platform/host/http_limits.h"

#include <future>

#include <curl/curl.h>

#include "tests/platform/http_fixture.h"
#include "tests/platform/probes.h"

namespace {

using std::chrono::milliseconds;

/* Names the limits that a test's failing fetch must keep apart, with room for a busy machine. */
constexpr long k_total_ms = 1200;
constexpr long k_stall_ms = 400; /* a third */

using http_limits_test = http_fixture;

/* The fetch ends by the limit on waiting, not by the limit on the whole. */
void expect_stall(const std::string &url, const fetched &expected) {
    setenv("EM862X_HTTP_TIMEOUT_MS", std::to_string(k_total_ms).c_str(), 1);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(fetch(url), expected);
    const auto time = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(time, milliseconds(k_stall_ms));
    EXPECT_LT(time, milliseconds(k_total_ms - 100));
}

TEST_F(http_limits_test, a_stall_before_the_answer_is_refused) {
    const http_server server([](http_connection &client) { client.stall(); });
    expect_stall(server.url(), {});
}

TEST_F(http_limits_test, a_stall_within_the_header_is_refused) {
    const http_server server([](http_connection &client) {
        client.send("HTTP/1.1 200 OK\r\nContent-");
        client.stall();
    });
    expect_stall(server.url(), {});
}

TEST_F(http_limits_test, a_stall_after_the_header_is_refused) {
    const http_server server([](http_connection &client) {
        client.send(http_head("200 OK", "Content-Length: 10\r\n"));
        client.stall();
    });
    expect_stall(server.url(), {});
}

TEST_F(http_limits_test, a_stall_in_the_middle_breaks_the_file_there) {
    const std::string begin = random_bytes(5000);
    const http_server server([&](http_connection &client) {
        client.send(http_head("200 OK", "Content-Length: 10000\r\n") + begin);
        client.stall();
    });
    expect_stall(server.url(), {fetch_end::broken, begin});
}

TEST_F(http_limits_test, a_slow_file_comes_whole) {
    const std::string body = random_bytes(9);
    const http_server server([&](http_connection &client) {
        client.send(http_head("200 OK", "Content-Length: 9\r\n"));
        for (const char &byte : body)
            if (client.pause(milliseconds(50)))
                client.send({&byte, 1});
    });
    limit_time(k_total_ms);
    const long time = duration_ms([&] {
        EXPECT_EQ(fetch(server.url()), (fetched{fetch_end::whole, body}));
    });
    EXPECT_GT(time, k_stall_ms);
}

TEST_F(http_limits_test, redirections_that_take_long_together_are_no_stall) {
    const http_server server([](http_connection &client) {
        const std::size_t step = client.path().size();
        client.pause(milliseconds(k_stall_ms / 2));
        client.send(step < 4 ? http_redirect(client.path() + "x") : http_answer("here"));
    });
    limit_time(k_total_ms);
    EXPECT_EQ(fetch(server.url()), (fetched{fetch_end::whole, "here"}));
}

TEST_F(http_limits_test, a_file_that_trickles_for_ever_ends_with_the_total_time) {
    const http_server server([](http_connection &client) {
        client.send(http_head("200 OK"));
        while (client.pause(milliseconds(20)) && client.send("x"))
            ;
    });
    limit_time(410);
    fetched result;
    const long time = duration_ms([&] { result = fetch(server.url()); });
    EXPECT_EQ(result.end, fetch_end::broken);
    EXPECT_FALSE(result.bytes.empty());
    EXPECT_GE(time, 400) << "whole milliseconds are counted at either end";
    EXPECT_LT(time, 2000);
}

TEST_F(http_limits_test, a_reader_that_takes_its_time_is_no_stall) {
    std::promise<void> rested;
    const http_server server([&](http_connection &client) {
        client.send(http_head("200 OK", "Content-Length: 4\r\n") + "be");
        rested.get_future().wait();
        client.send("en");
    });
    limit_time(k_total_ms);
    void *cookie = fetchOpen(server.url().c_str(), 0);
    std::promise<void> never;
    never.get_future().wait_for(milliseconds(k_stall_ms + 100));
    rested.set_value();
    EXPECT_EQ(read_cookie(cookie), (fetched{fetch_end::whole, "been"}));
    fetchClose(cookie);
}

TEST_F(http_limits_test, a_name_lookup_that_hangs_is_refused_without_waiting_for_it) {
    if (curl_version_info(CURLVERSION_NOW)->version_num < 0x075700)
        GTEST_SKIP() << "this libcurl waits for its lookups";
    limit_time(300);
    const std::string url = std::string("http://") + probes::k_hanging_host + "/";
    EXPECT_LT(duration_ms([&] { EXPECT_EQ(fetch(url), fetched{}); }), 2000);
    probes::release_lookups();
}

TEST_F(http_limits_test, a_file_of_just_the_largest_size_comes_whole) {
    limit_size(70000);
    const std::string body = random_bytes(70000);
    EXPECT_EQ(fetch_answer(http_answer(body)), (fetched{fetch_end::whole, body}));
    EXPECT_EQ(fetch_answer(http_head("200 OK") + body), (fetched{fetch_end::whole, body}));
}

TEST_F(http_limits_test, a_declared_size_above_the_limit_is_refused) {
    limit_size(70000);
    EXPECT_EQ(fetch_answer(http_answer(random_bytes(70001))), fetched{});
    unsetenv("EM862X_HTTP_MAX_BYTES");
    for (const char *length : {"67108865", "4294967296", "9223372036854775807"})
        EXPECT_EQ(
            fetch_answer(http_head("200 OK", std::string("Content-Length: ") + length + "\r\n") +
                         "begin"),
            fetched{})
            << length;
}

TEST_F(http_limits_test, an_undeclared_size_above_the_limit_breaks_the_file) {
    limit_size(70000);
    const std::string body = random_bytes(70001);
    const std::string chunked = http_head("200 OK", "Transfer-Encoding: chunked\r\n") +
                                http_chunks(body, 9999) + std::string(k_last_chunk);
    for (const std::string &answer : {http_head("200 OK") + body, chunked}) {
        const fetched result = fetch_answer(answer);
        EXPECT_EQ(result.end, fetch_end::broken);
        EXPECT_TRUE(body.starts_with(result.bytes) && result.bytes.size() <= 70000);
    }
}

TEST_F(http_limits_test, a_file_without_end_breaks_at_the_limit) {
    limit_size(1000000);
    const std::string block = random_bytes(5000);
    const http_server server([&](http_connection &client) {
        if (client.path() == "/plain" && client.send(http_head("200 OK")))
            client.send_for_ever(block);
        else if (client.send(http_head("200 OK", "Transfer-Encoding: chunked\r\n")))
            client.send_for_ever(http_chunks(block, 1000));
    });
    for (const char *path : {"/plain", "/chunked"}) {
        const fetched result = fetch(server.url(path));
        EXPECT_EQ(result.end, fetch_end::broken);
        EXPECT_LE(result.bytes.size(), 1000000u);
        EXPECT_GE(result.bytes.size(), 900000u);
    }
}

TEST_F(http_limits_test, a_header_without_end_is_refused) {
    const http_server server([](http_connection &client) {
        client.send("HTTP/1.1 200 OK\r\n");
        client.send_for_ever(client.path() == "/lines" ? "Again: and again\r\n" : "on and on ");
    });
    EXPECT_EQ(fetch(server.url("/lines")), fetched{});
    EXPECT_EQ(fetch(server.url("/line")), fetched{});
}

TEST_F(http_limits_test, headers_are_taken_up_to_their_limit) {
    const auto answer = [](std::size_t bytes) {
        std::string lines;
        while (lines.size() < bytes)
            lines.append("Name: ").append(1000, 'x').append("\r\n");
        return http_answer("here", lines);
    };
    EXPECT_EQ(fetch_answer(answer(250000)), (fetched{fetch_end::whole, "here"}));
    EXPECT_EQ(fetch_answer(answer(263000)), fetched{});
}

TEST_F(http_limits_test, interim_answers_without_end_are_refused) {
    const http_server server(
        [](http_connection &client) { client.send_for_ever("HTTP/1.1 100 Continue\r\n\r\n"); });
    EXPECT_EQ(fetch(server.url()), fetched{});
}

TEST_F(http_limits_test, a_redirection_with_a_body_without_end_is_refused) {
    const http_server server([](http_connection &client) {
        client.send("HTTP/1.1 302 Found\r\nLocation: " + client.path() + "\r\n");
        if (client.path() == "/chunked" && client.send("Transfer-Encoding: chunked\r\n\r\n"))
            client.send_for_ever(http_chunks("Moved.", 6));
        else if (client.send("\r\n"))
            client.send_for_ever("Moved. ");
    });
    limit_time(900);
    for (const char *path : {"/plain", "/chunked"})
        EXPECT_LT(duration_ms([&] { EXPECT_EQ(fetch(server.url(path)), fetched{}); }), 3000);
}

TEST_F(http_limits_test, without_the_environment_the_limits_are_the_documented_ones) {
    unsetenv("EM862X_HTTP_TIMEOUT_MS");
    const em862x::http_limits limits = em862x::read_http_limits();
    EXPECT_EQ(limits.total_ms, 30000);
    EXPECT_EQ(limits.connect_ms, 5000);
    EXPECT_EQ(limits.stall_ms, 10000);
    EXPECT_EQ(limits.body_max, 67108864);
    EXPECT_EQ(limits.head_max, 262144);
    EXPECT_EQ(limits.redirects_max, 5);
}

TEST_F(http_limits_test, the_environment_shortens_and_stretches_within_bounds) {
    const auto times = [](const char *value) {
        setenv("EM862X_HTTP_TIMEOUT_MS", value, 1);
        const em862x::http_limits limits = em862x::read_http_limits();
        return std::vector<long>{limits.total_ms, limits.connect_ms, limits.stall_ms};
    };
    EXPECT_EQ(times("1"), (std::vector<long>{1, 1, 1}));
    EXPECT_EQ(times("900"), (std::vector<long>{900, 900, 300}));
    EXPECT_EQ(times("600000"), (std::vector<long>{600000, 5000, 10000}));
    limit_size(1);
    EXPECT_EQ(em862x::read_http_limits().body_max, 1);
    limit_size(1073741824);
    EXPECT_EQ(em862x::read_http_limits().body_max, 1073741824);
}

TEST_F(http_limits_test, values_that_are_no_number_within_bounds_are_ignored) {
    for (const char *value : {"", "0", "-1", "+5", " 5", "5 ", "5x", "0x5", "1e3", "ten",
                              "1073741825", "99999999999999999999999"}) {
        setenv("EM862X_HTTP_TIMEOUT_MS", value, 1);
        setenv("EM862X_HTTP_MAX_BYTES", value, 1);
        EXPECT_EQ(em862x::read_http_limits().total_ms, 30000) << value;
        EXPECT_EQ(em862x::read_http_limits().body_max, 67108864) << value;
    }
    setenv("EM862X_HTTP_TIMEOUT_MS", "600001", 1);
    EXPECT_EQ(em862x::read_http_limits().total_ms, 30000);
}

} // namespace
