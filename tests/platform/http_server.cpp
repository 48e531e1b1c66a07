/* SPDX-License-Identifier: MIT */
/*
 * Sockets and answers of the test's HTTP server.
 */
#include "tests/platform/http_server.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <stdexcept>

#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t k_head_max = 64u << 10;
constexpr int k_for_ever = -1;

/* Waits for `events` on the socket; false when the server stops or the time is over first. */
bool await(int socket, int stop, short events, int time_ms) {
    pollfd files[2] = {{socket, events, 0}, {stop, POLLIN, 0}};
    int count = 0;
    do
        count = poll(files, 2, time_ms);
    while (count < 0 && errno == EINTR);
    return count > 0 && files[1].revents == 0;
}

/* The request up to its empty line; "" when the client sends none. */
std::string receive_head(int socket, int stop) {
    std::string head;
    while (head.find("\r\n\r\n") == std::string::npos) {
        char bytes[4096];
        if (head.size() > k_head_max || !await(socket, stop, POLLIN, k_for_ever))
            return "";
        const ssize_t count = recv(socket, bytes, sizeof(bytes), 0);
        if (count <= 0)
            return "";
        head.append(bytes, static_cast<std::size_t>(count));
    }
    return head;
}

int listen_on_loopback(int &port) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto *name = reinterpret_cast<sockaddr *>(&address);
    if (listener < 0 || bind(listener, name, size) != 0 || listen(listener, SOMAXCONN) != 0 ||
        getsockname(listener, name, &size) != 0)
        throw std::runtime_error("no listening socket on the loopback address");
    port = ntohs(address.sin_port);
    return listener;
}

} // namespace

std::string http_connection::path() const {
    const std::size_t begin = head_.find(' ') + 1;
    return head_.substr(begin, head_.find(' ', begin) - begin);
}

bool http_connection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        if (!await(socket_, stop_, POLLOUT, k_for_ever))
            return false;
        const ssize_t count =
            ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno != EAGAIN && errno != EINTR)
            return false;
        if (count > 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void http_connection::send_for_ever(std::string_view bytes) {
    while (send(bytes))
        ;
}

void http_connection::stall() {
    char byte = 0;
    while (await(socket_, stop_, POLLIN, k_for_ever))
        if (recv(socket_, &byte, sizeof(byte), 0) <= 0)
            return;
}

bool http_connection::pause(std::chrono::milliseconds time) {
    pollfd stop = {stop_, POLLIN, 0};
    return poll(&stop, 1, static_cast<int>(time.count())) == 0;
}

void http_connection::end_with_reset() {
    const linger now = {1, 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, &now, sizeof(now));
}

http_server::http_server(answer reply)
    : reply_(std::move(reply)), listener_(listen_on_loopback(port_)),
      stop_(eventfd(0, EFD_CLOEXEC)), thread_([this] { serve(); }) {}

http_server::~http_server() {
    const std::uint64_t one = 1;
    if (write(stop_, &one, sizeof(one)) != sizeof(one))
        std::perror("http_server");
    thread_.join();
    close(listener_);
    close(stop_);
}

std::string http_server::url(const std::string &path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::vector<std::string> http_server::heads() const {
    const std::lock_guard guard(lock_);
    return heads_;
}

void http_server::serve() {
    while (await(listener_, stop_, POLLIN, k_for_ever)) {
        const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            continue;
        serve_connection(socket);
        close(socket);
    }
}

void http_server::serve_connection(int socket) {
    std::string head = receive_head(socket, stop_);
    if (head.empty())
        return;
    {
        const std::lock_guard guard(lock_);
        heads_.push_back(head);
    }
    http_connection connection(socket, stop_, std::move(head));
    reply_(connection);
}

std::string http_head(std::string_view status, std::string_view headers) {
    std::string head = "HTTP/1.1 ";
    head.append(status).append("\r\nConnection: close\r\n").append(headers).append("\r\n");
    return head;
}

std::string http_answer(std::string_view body, std::string_view headers) {
    std::string lines = "Content-Length: " + std::to_string(body.size()) + "\r\n";
    return http_head("200 OK", lines.append(headers)).append(body);
}

std::string http_redirect(std::string_view location) {
    std::string lines = "Content-Length: 0\r\nLocation: ";
    return http_head("302 Found", lines.append(location).append("\r\n"));
}

std::string http_chunks(std::string_view body, std::size_t size) {
    std::string chunks;
    for (std::size_t begin = 0; begin < body.size(); begin += size) {
        const std::string_view piece = body.substr(begin, size);
        char length[32];
        std::snprintf(length, sizeof(length), "%zx\r\n", piece.size());
        chunks.append(length).append(piece).append("\r\n");
    }
    return chunks;
}
