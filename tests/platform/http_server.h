/* SPDX-License-Identifier: MIT */
/*
 * A small HTTP server on the loopback address whose answers are written by the test, byte by byte:
 * it can stall, break off, lie and never end. One connection is served after the other.
 */
#ifndef UX_TESTS_PLATFORM_HTTP_SERVER_H
#define UX_TESTS_PLATFORM_HTTP_SERVER_H

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/* One connection whose request has been received; it is closed when its answer function returns. */
class http_connection {
  public:
    http_connection(int socket, int stop, std::string head)
        : socket_(socket), stop_(stop), head_(std::move(head)) {}

    /* The request line and the headers. */
    const std::string &head() const { return head_; }
    /* What the request line asks for. */
    std::string path() const;

    /* Sends all the bytes; false when the client went away or the server stops. */
    bool send(std::string_view bytes);
    /* Sends the bytes again and again until the client goes away or the server stops. */
    void send_for_ever(std::string_view bytes);
    /* Sends nothing until the client goes away or the server stops. */
    void stall();
    /* Sends nothing for that long; false when the server stops. */
    bool pause(std::chrono::milliseconds time);
    /* Lets the connection end with a reset instead of an orderly close. */
    void end_with_reset();

  private:
    int socket_;
    int stop_; /* readable when the server stops */
    std::string head_;
};

class http_server {
  public:
    using answer = std::function<void(http_connection &)>;

    /* Serves on a free port from now on; `reply` runs in the server's thread. */
    explicit http_server(answer reply);
    http_server(const http_server &) = delete;
    http_server &operator=(const http_server &) = delete;
    ~http_server();

    /* The address of `path`, which begins with a slash. */
    std::string url(const std::string &path = "/") const;
    /* The requests so far. */
    std::vector<std::string> heads() const;

  private:
    void serve();
    void serve_connection(int socket);

    answer reply_;
    int port_ = 0; /* before listener_, which sets it */
    int listener_;
    int stop_;
    mutable std::mutex lock_;        /* of heads_ */
    std::vector<std::string> heads_; /* of all requests */
    std::thread thread_;
};

/* A status line, header lines ("Name: value\r\n" each) and the line that ends them. */
std::string http_head(std::string_view status, std::string_view headers = "");

/* A complete good answer. */
std::string http_answer(std::string_view body, std::string_view headers = "");

/* A complete answer that sends the client elsewhere. */
std::string http_redirect(std::string_view location);

/* The body in chunks of `size` bytes, without the last chunk, which is k_last_chunk. */
std::string http_chunks(std::string_view body, std::size_t size);
inline constexpr std::string_view k_last_chunk = "0\r\n\r\n";

#endif
