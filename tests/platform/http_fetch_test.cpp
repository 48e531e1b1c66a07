/* SPDX-License-Identifier: MIT */
/*
 * What a fetch brings from good, strange and hostile servers.
 */
#include "tests/platform/http_fixture.h"

#include <algorithm>
#include <future>
#include <optional>

#include <strings.h>

namespace {

constexpr int k_redirects_max = 5;
/* A header this long is above what the fetcher takes. */
constexpr std::size_t k_head_too_long = 300u << 10;

using http_fetch_test = http_fixture;

/* A port on which nobody listens: it has just been given back. */
std::string closed_url() {
    std::optional<http_server> server([](http_connection &) {});
    std::string url = server->url();
    server.reset();
    return url;
}

TEST_F(http_fetch_test, a_file_fills_requests_of_any_size_completely) {
    const std::string body = random_bytes(300001);
    const http_server server([&](http_connection &client) { client.send(http_answer(body)); });
    for (const std::uint32_t request : {1u, 7u, 4096u, 65536u, 65537u, 300000u, 300001u, 300002u}) {
        rm_file *file = RMOpenFileCookie(fetchOpen(server.url().c_str(), 0), 0, &httpFileOps);
        ASSERT_NE(file, nullptr);
        std::string got;
        std::string buffer(request, '\0');
        while (got.size() < body.size()) {
            std::uint32_t count = 0;
            const auto rest = static_cast<std::uint32_t>(body.size() - got.size());
            ASSERT_EQ(RMReadFile(file, buffer.data(), request, &count), EM862X_SUCCESS);
            ASSERT_EQ(count, std::min(request, rest)) << "in requests of " << request;
            got.append(buffer, 0, count);
        }
        EXPECT_TRUE(got == body) << "in requests of " << request;
        std::uint32_t count = 1;
        EXPECT_EQ(RMReadFile(file, buffer.data(), request, &count), EM862X_FAILURE);
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
    }
}

TEST_F(http_fetch_test, chunks_of_any_size_come_joined) {
    const std::string body = random_bytes(70000);
    for (const std::size_t size : {13u, 5000u, 70000u}) {
        std::string answer = http_head("200 OK", "Transfer-Encoding: chunked\r\n");
        answer.append(http_chunks(body, size)).append(k_last_chunk);
        EXPECT_EQ(fetch_answer(answer), (fetched{fetch_end::whole, body}));
    }
}

TEST_F(http_fetch_test, a_file_without_length_ends_with_the_connection) {
    const std::string body = random_bytes(70000);
    EXPECT_EQ(fetch_answer(http_head("200 OK") + body), (fetched{fetch_end::whole, body}));
    EXPECT_EQ(fetch_answer("HTTP/1.0 200 OK\r\n\r\n" + body), (fetched{fetch_end::whole, body}));
}

TEST_F(http_fetch_test, an_empty_file_opens_and_is_at_its_end) {
    for (const std::string &answer :
         {http_answer(""), http_head("200 OK"), http_head("204 No Content")})
        EXPECT_EQ(fetch_answer(answer), (fetched{fetch_end::whole, ""}));
}

TEST_F(http_fetch_test, a_page_instead_of_a_picture_is_just_bytes) {
    const std::string page = "<html>Please log in</html>";
    EXPECT_EQ(fetch_answer(http_answer(page, "Content-Type: text/html\r\n")),
              (fetched{fetch_end::whole, page}));
}

TEST_F(http_fetch_test, bytes_are_handed_out_while_the_rest_is_still_to_come) {
    const std::string body = random_bytes(1000);
    std::promise<void> half_read;
    const http_server server([&](http_connection &client) {
        client.send(http_answer(body).substr(0, http_answer(body).size() - 500));
        half_read.get_future().wait();
        client.send(std::string_view(body).substr(500));
    });
    rm_file *file = RMOpenFileCookie(fetchOpen(server.url().c_str(), 0), 0, &httpFileOps);
    std::string buffer(1000, '\0');
    std::uint32_t count = 0;
    EXPECT_EQ(RMReadFile(file, buffer.data(), 500, &count), EM862X_SUCCESS);
    half_read.set_value();
    EXPECT_EQ(RMReadFile(file, buffer.data() + 500, 500, &count), EM862X_SUCCESS);
    EXPECT_TRUE(buffer == body);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

TEST_F(http_fetch_test, one_redirection_is_followed_absolute_or_relative) {
    std::string target;
    std::string base;
    const http_server server([&](http_connection &client) {
        if (client.path() == "/photo/old.png")
            client.send(http_redirect(target));
        else
            client.send(http_answer("from " + client.path()));
    });
    base = server.url();
    for (const std::string &location : {base + "photo/new.png", std::string("/photo/new.png"),
                                        std::string("new.png"), std::string("../photo/new.png")}) {
        target = location;
        EXPECT_EQ(fetch(server.url("/photo/old.png")),
                  (fetched{fetch_end::whole, "from /photo/new.png"}))
            << location;
    }
}

TEST_F(http_fetch_test, redirections_end_after_the_fifth) {
    int redirections = k_redirects_max;
    const http_server server([&](http_connection &client) {
        const int step = std::stoi(client.path().substr(1));
        client.send(step < redirections ? http_redirect("/" + std::to_string(step + 1))
                                        : http_answer("here"));
    });
    EXPECT_EQ(fetch(server.url("/0")), (fetched{fetch_end::whole, "here"}));
    EXPECT_EQ(server.heads().size(), 6u);
    redirections++;
    EXPECT_EQ(fetch(server.url("/0")), fetched{});
}

TEST_F(http_fetch_test, a_redirection_for_ever_is_refused) {
    const http_server server([](http_connection &client) { client.send(http_redirect("/again")); });
    EXPECT_EQ(fetch(server.url()), fetched{});
    EXPECT_EQ(server.heads().size(), 6u);
}

TEST_F(http_fetch_test, redirections_to_anything_but_http_are_refused) {
    std::string target;
    const http_server server([&](http_connection &client) { client.send(http_redirect(target)); });
    const std::string other = server.url().substr(std::string("http").size());
    for (const std::string &location :
         {std::string("file:///etc/passwd"), std::string("FILE:///etc/passwd"), "https" + other,
          "ftp" + other, "gopher" + other, "dict" + other, std::string("javascript:1"),
          std::string("http://"), std::string("http://[")}) {
        target = location;
        EXPECT_EQ(fetch(server.url()), fetched{}) << location;
    }
    EXPECT_EQ(server.heads().size(), 9u) << "one request for each, none for where it leads";
}

TEST_F(http_fetch_test, answers_that_are_no_success_are_refused) {
    for (const char *status :
         {"300 Multiple Choices", "302 Found", "304 Not Modified", "400 Bad Request",
          "401 Unauthorized", "403 Forbidden", "404 Not Found", "407 Proxy Authentication Required",
          "410 Gone", "500 Internal Server Error", "503 Service Unavailable", "999 What"}) {
        EXPECT_EQ(fetch_answer(http_head(status, "Content-Length: 5\r\n") + "sorry"), fetched{})
            << status;
        EXPECT_EQ(fetch_answer(http_head(status, "Content-Length: 0\r\n")), fetched{}) << status;
    }
}

TEST_F(http_fetch_test, a_refusal_is_known_from_its_header) {
    const http_server server([](http_connection &client) {
        client.send(http_head("404 Not Found", "Content-Length: 1000\r\n"));
        client.stall();
    });
    limit_time(60000);
    EXPECT_LT(duration_ms([&] { EXPECT_EQ(fetch(server.url()), fetched{}); }), 5000);
}

TEST_F(http_fetch_test, a_file_that_ends_early_fails_where_it_ends) {
    const std::string body = random_bytes(400);
    const std::string promised = http_head("200 OK", "Content-Length: 1000\r\n");
    const std::string chunked = http_head("200 OK", "Transfer-Encoding: chunked\r\n");
    for (const std::string &answer :
         {promised + body, chunked + http_chunks(body, 100), chunked + "3e8\r\n" + body})
        EXPECT_EQ(fetch_answer(answer), (fetched{fetch_end::broken, body})) << answer.substr(0, 80);
}

TEST_F(http_fetch_test, a_request_that_meets_the_early_end_fails_and_tells_what_came) {
    const std::string body = random_bytes(400);
    const http_server server([&](http_connection &client) {
        client.send(http_head("200 OK", "Content-Length: 1000\r\n") + body);
    });
    rm_file *file = RMOpenFileCookie(fetchOpen(server.url().c_str(), 0), 0, &httpFileOps);
    std::string buffer(1000, '\0');
    std::uint32_t count = 0;
    EXPECT_EQ(RMReadFile(file, buffer.data(), 300, &count), EM862X_SUCCESS);
    EXPECT_EQ(RMReadFile(file, buffer.data() + 300, 300, &count), EM862X_FAILURE);
    EXPECT_EQ(count, 100u);
    EXPECT_TRUE(buffer.starts_with(body));
    EXPECT_EQ(RMReadFile(file, buffer.data(), 300, &count), EM862X_FAILURE) << "and stays so";
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

TEST_F(http_fetch_test, a_reset_connection_breaks_the_file) {
    std::promise<void> first_read;
    const http_server server([&](http_connection &client) {
        client.send(http_head("200 OK") + "begin");
        first_read.get_future().wait();
        client.end_with_reset();
    });
    void *cookie = fetchOpen(server.url().c_str(), 0);
    char byte = 0;
    std::uint32_t count = 0;
    EXPECT_EQ(httpFileOps.read(cookie, &byte, 1, &count), EM862X_SUCCESS);
    first_read.set_value();
    EXPECT_EQ(read_cookie(cookie), (fetched{fetch_end::broken, "egin"}));
    fetchClose(cookie);
}

TEST_F(http_fetch_test, what_is_no_answer_never_counts_as_a_whole_file) {
    const std::string chunked = http_head("200 OK", "Transfer-Encoding: chunked\r\n");
    for (const std::string &answer :
         {std::string(), std::string("\r\n\r\n"), random_bytes(5000),
          std::string("SSH-2.0-server\r\n"), std::string("HTTP/1.1 200 OK\r\n"),
          std::string("HTTP/1.1 200 OK\r\nContent-Length: 4"), std::string("HTTP/1.1 \r\n\r\nbody"),
          std::string("HTTP/1.1 100 Continue\r\n\r\n"), std::string("<html>old</html>"),
          http_head("200 OK", "Content-Length: -4\r\n") + "body",
          http_head("200 OK", "Content-Length: lots\r\n") + "body",
          http_head("200 OK", "Content-Length: 99999999999999999999\r\n") + "body",
          chunked + "zz\r\nbody", chunked + "-4\r\nbody\r\n0\r\n\r\n",
          chunked + "ffffffffffffffffff\r\nbody", chunked + "2\r\nbody\r\n0\r\n\r\n",
          http_head("200 OK", "Long: " + std::string(k_head_too_long, 'x') + "\r\n") + "body"})
        EXPECT_NE(fetch_answer(answer).end, fetch_end::whole) << answer.substr(0, 120);
}

TEST_F(http_fetch_test, answers_of_random_bytes_do_no_harm) {
    const std::string answer = http_head("200 OK", "Transfer-Encoding: chunked\r\n") +
                               http_chunks(random_bytes(300), 50) + std::string(k_last_chunk);
    std::mt19937 random(3);
    std::string damaged;
    const http_server server([&](http_connection &client) { client.send(damaged); });
    for (int round = 0; round < 200; round++) {
        damaged = answer;
        for (int i = 0; i < 1 + round % 8; i++)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        EXPECT_LE(fetch(server.url()).bytes.size(), damaged.size());
    }
}

TEST_F(http_fetch_test, nobody_at_the_address_is_refused) {
    EXPECT_EQ(fetch(closed_url()), fetched{});
}

TEST_F(http_fetch_test, what_is_no_http_address_is_refused) {
    const http_server server([](http_connection &client) { client.send(http_answer("here")); });
    const std::string other = server.url().substr(std::string("http").size());
    for (const std::string &url : {std::string(),
                                   std::string("http"),
                                   std::string("http:"),
                                   std::string("http:/"),
                                   std::string("http://"),
                                   std::string("http:///"),
                                   std::string("http://:80/"),
                                   std::string("http://127.0.0.1:99999/"),
                                   std::string("http://127.0.0.1:port/"),
                                   std::string("http://[::1"),
                                   std::string("http://a b/"),
                                   server.url("/line\nfeed"),
                                   server.url("/a b"),
                                   "https" + other,
                                   "ftp" + other,
                                   "file" + other,
                                   other,
                                   other.substr(1),
                                   std::string("file:///etc/passwd"),
                                   std::string("/etc/passwd"),
                                   " " + server.url(),
                                   "http://" + std::string(9u << 20, 'x') + "/"})
        EXPECT_EQ(fetch(url), fetched{}) << url.substr(0, 60);
    EXPECT_TRUE(server.heads().empty());
}

TEST_F(http_fetch_test, missing_arguments_and_unknown_flags_are_refused) {
    const http_server server([](http_connection &client) { client.send(http_answer("here")); });
    EXPECT_EQ(fetchOpen(nullptr, 0), nullptr);
    EXPECT_EQ(fetchOpen(server.url().c_str(), 1), nullptr);
    fetchClose(nullptr);
    char byte = 0;
    std::uint32_t count = 1;
    EXPECT_EQ(httpFileOps.read(nullptr, &byte, 1, &count), EM862X_FAILURE);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(httpFileOps.close(nullptr), EM862X_FAILURE);
    void *cookie = fetchOpen(server.url().c_str(), 0);
    EXPECT_EQ(httpFileOps.read(cookie, nullptr, 1, &count), EM862X_FAILURE);
    EXPECT_EQ(httpFileOps.read(cookie, &byte, 1, nullptr), EM862X_FAILURE);
    EXPECT_EQ(httpFileOps.read(cookie, nullptr, 0, &count), EM862X_SUCCESS);
    EXPECT_EQ(read_cookie(cookie), (fetched{fetch_end::whole, "here"})) << "none of it was lost";
    EXPECT_EQ(httpFileOps.close(cookie), EM862X_SUCCESS);
}

TEST_F(http_fetch_test, the_scheme_is_taken_in_any_case) {
    const http_server server([](http_connection &client) { client.send(http_answer("here")); });
    EXPECT_EQ(fetch("HTTP" + server.url().substr(4)), (fetched{fetch_end::whole, "here"}));
    EXPECT_EQ(fetch("hTtP" + server.url().substr(4)), (fetched{fetch_end::whole, "here"}));
}

TEST_F(http_fetch_test, the_request_tells_nothing_but_what_is_wanted) {
    const http_server server([](http_connection &client) {
        if (client.path() == "/first")
            client.send(http_head("302 Found", "Set-Cookie: id=1\r\nContent-Length: 0\r\n"
                                               "Location: /second\r\n"));
        else
            client.send(http_answer("here"));
    });
    EXPECT_EQ(fetch(server.url("/first")), (fetched{fetch_end::whole, "here"}));
    const std::string host = server.url("").substr(std::string("http://").size());
    const std::string rest =
        " HTTP/1.1\r\nHost: " + host + "\r\nUser-Agent: ux\r\nAccept: */*\r\n\r\n";
    EXPECT_EQ(server.heads(),
              (std::vector<std::string>{"GET /first" + rest, "GET /second" + rest}));
}

TEST_F(http_fetch_test, proxies_named_in_the_environment_are_not_used) {
    const http_server server([](http_connection &client) { client.send(http_answer("here")); });
    const std::string nobody = closed_url();
    for (const char *name : {"http_proxy", "all_proxy", "ALL_PROXY"})
        setenv(name, nobody.c_str(), 1);
    EXPECT_EQ(fetch(server.url()), (fetched{fetch_end::whole, "here"}));
    for (const char *name : {"http_proxy", "all_proxy", "ALL_PROXY"})
        unsetenv(name);
}

TEST_F(http_fetch_test, closing_before_the_end_hangs_up) {
    std::promise<void> gone;
    const http_server server([&](http_connection &client) {
        client.send(http_head("200 OK"));
        client.send_for_ever(random_bytes(10000));
        gone.set_value();
    });
    rm_file *file = RMOpenFileCookie(fetchOpen(server.url().c_str(), 0), 0, &httpFileOps);
    char bytes[100];
    std::uint32_t count = 0;
    EXPECT_EQ(RMReadFile(file, bytes, sizeof(bytes), &count), EM862X_SUCCESS);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
    EXPECT_EQ(gone.get_future().wait_for(std::chrono::seconds(5)), std::future_status::ready);
}

TEST_F(http_fetch_test, two_fetches_are_apart) {
    const http_server first([](http_connection &client) { client.send(http_answer("first")); });
    const http_server second([](http_connection &client) { client.send(http_answer("second")); });
    void *one = fetchOpen(first.url().c_str(), 0);
    void *two = fetchOpen(second.url().c_str(), 0);
    char byte = 0;
    std::uint32_t count = 0;
    EXPECT_EQ(httpFileOps.read(one, &byte, 1, &count), EM862X_SUCCESS);
    EXPECT_EQ(read_cookie(two), (fetched{fetch_end::whole, "second"}));
    EXPECT_EQ(read_cookie(one), (fetched{fetch_end::whole, "irst"}));
    fetchClose(one);
    fetchClose(two);
}

} // namespace
