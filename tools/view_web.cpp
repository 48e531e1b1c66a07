// SPDX-License-Identifier: MIT
// HTTP, as little as browsers need: GET and HEAD, one request for each connection.
#include "tools/view_web.h"

#include "tools/view_page.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <sys/socket.h>
#include <unistd.h>

namespace ux::view {

namespace {

constexpr size_t k_most_connections = 32;
constexpr size_t k_longest_request = 16384; // bytes; browsers send cookies of other programs, too
constexpr size_t k_largest_file = 8u << 20; // bytes
constexpr std::chrono::seconds k_patience{10}; // for a whole request and its answer

struct content_type {
    std::string_view ending;
    std::string_view type;
};

constexpr std::array k_types = {
    content_type{".html", "text/html; charset=utf-8"},
    content_type{".js", "text/javascript; charset=utf-8"},
    content_type{".css", "text/css; charset=utf-8"},
    content_type{".json", "application/json"},
    content_type{".svg", "image/svg+xml"},
    content_type{".png", "image/png"},
    content_type{".woff", "font/woff"},
    content_type{".ttf", "font/ttf"},
    content_type{".mp3", "audio/mpeg"},
    content_type{".oga", "audio/ogg"},
};

std::string_view type_of(std::string_view file) {
    const auto *found = std::ranges::find_if(
        k_types, [&](const content_type &one) { return file.ends_with(one.ending); });
    return found == k_types.end() ? "application/octet-stream" : found->type;
}

std::string head(std::string_view status, std::string_view type, size_t bytes,
                 std::string_view more = "") {
    std::ostringstream text;
    text << "HTTP/1.1 " << status << "\r\nContent-Type: " << type << "\r\nContent-Length: " << bytes
         << "\r\nConnection: close\r\nCache-Control: no-cache\r\n"
         << "X-Content-Type-Options: nosniff\r\nX-Frame-Options: DENY\r\n"
         << more << "\r\n";
    return text.str();
}

std::string short_answer(std::string_view status, std::string_view more = "") {
    const std::string body = std::string(status) + "\n";
    return head(status, "text/plain", body.size(), more) + body;
}

bool is_plain(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9') || letter == '-' || letter == '_' || letter == '.' ||
           letter == '/';
}

// The text up to `end`, which is taken off `rest` with it.
std::string_view word(std::string_view &rest, char end) {
    const size_t at = std::min(rest.find(end), rest.size());
    const std::string_view result = rest.substr(0, at);
    rest.remove_prefix(std::min(at + 1, rest.size()));
    return result;
}

bool would_wait(ssize_t result) {
    return result == -1 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
}

std::string page_for(int vnc_port) {
    std::string page(k_view_page);
    page.replace(page.find(k_port_mark), k_port_mark.size(), std::to_string(vnc_port));
    return page;
}

std::string whole_answer(std::string_view method, std::string_view name, const std::string &body) {
    return head("200 OK", type_of(name), body.size()) + (method == "HEAD" ? "" : body);
}

} // namespace

std::string web_file(std::string_view target) {
    const std::string_view path = target.substr(0, target.find('?'));
    const bool plain = path.starts_with('/') && std::ranges::all_of(path, is_plain);
    const bool hidden = path.find("/.") != std::string_view::npos;
    return plain && !hidden ? std::string(path) : "";
}

web_server::connection::~connection() {
    close(fd);
}

web_server::web_server(std::vector<listener> sockets, const std::string &root, int vnc_port)
    : m_sockets(std::move(sockets)), m_root(root), m_page(page_for(vnc_port)) {}

int web_server::add_to(fd_set &reading, fd_set &writing) const {
    int highest = -1;
    for (const listener &socket : m_sockets) {
        FD_SET(socket.fd(), &reading);
        highest = std::max(highest, socket.fd());
    }
    for (const connection &one : m_connections) {
        FD_SET(one.fd, one.answer.empty() ? &reading : &writing);
        highest = std::max(highest, one.fd);
    }
    return highest;
}

void web_server::serve(sim::steady::time_point now) {
    accept_all(now);
    m_connections.remove_if(
        [&](connection &one) { return now - one.begun > k_patience || !step(one); });
}

void web_server::accept_all(sim::steady::time_point now) {
    for (const listener &socket : m_sockets) {
        for (;;) {
            const int fd = accept4(socket.fd(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
            if (fd == -1) {
                break;
            }
            if (m_connections.size() == k_most_connections || fd >= FD_SETSIZE) {
                close(fd);
                continue;
            }
            m_connections.emplace_back(fd, now);
        }
    }
}

// Reads, answers and sends as much as goes without waiting; false when the connection is over.
bool web_server::step(connection &one) const {
    std::array<char, 4096> part{};
    while (one.answer.empty()) {
        const ssize_t bytes = recv(one.fd, part.data(), part.size(), 0);
        if (bytes <= 0) {
            return would_wait(bytes);
        }
        one.request.append(part.data(), static_cast<size_t>(bytes));
        if (one.request.find("\r\n\r\n") != std::string::npos) {
            one.answer = answer_to(one.request);
        } else if (one.request.size() > k_longest_request) {
            one.answer = short_answer("431 Request Header Fields Too Large");
        }
    }
    while (one.sent < one.answer.size()) {
        const ssize_t bytes =
            send(one.fd, one.answer.data() + one.sent, one.answer.size() - one.sent, MSG_NOSIGNAL);
        if (bytes <= 0) {
            return would_wait(bytes);
        }
        one.sent += static_cast<size_t>(bytes);
    }
    shutdown(one.fd, SHUT_WR);
    return false;
}

std::string web_server::answer_to(std::string_view request) const {
    std::string_view rest = request.substr(0, request.find("\r\n"));
    const std::string_view method = word(rest, ' ');
    const std::string_view target = word(rest, ' ');
    if (!rest.starts_with("HTTP/1.")) {
        return short_answer("400 Bad Request");
    }
    if (method != "GET" && method != "HEAD") {
        return short_answer("405 Method Not Allowed", "Allow: GET, HEAD\r\n");
    }
    if (target == "/" || target.starts_with("/?")) {
        return whole_answer(method, ".html", m_page);
    }
    const std::string name = web_file(target);
    const std::string path = m_root + name;
    std::error_code error;
    std::ifstream file;
    if (!name.empty() && std::filesystem::is_regular_file(path, error) &&
        std::filesystem::file_size(path, error) <= k_largest_file) {
        file.open(path, std::ios::binary);
    }
    if (!file.is_open()) {
        return short_answer("404 Not Found");
    }
    std::ostringstream body;
    body << file.rdbuf();
    return whole_answer(method, name, body.str());
}

} // namespace ux::view
