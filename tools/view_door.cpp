// SPDX-License-Identifier: MIT
// The first words of a connection, and the origin of pages.
#include "tools/view_door.h"

#include "sim/screen.h"
#include "tools/view_listener.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <poll.h>
#include <strings.h>
#include <sys/socket.h>

namespace ux::view {

using sim::steady;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds k_silence{200}; // of one that waits for the greeting
constexpr milliseconds k_patience{10000};
constexpr milliseconds k_pause{10};     // while a head is incomplete
constexpr size_t k_longest_head = 4096; // bytes; the VNC library's limit
constexpr std::string_view k_web_words = "GET ";
constexpr std::string_view k_vnc_words = "RFB ";
constexpr std::string_view k_end_of_head = "\r\n\r\n";

bool same_text(std::string_view one, std::string_view other) {
    return one.size() == other.size() && strncasecmp(one.data(), other.data(), one.size()) == 0;
}

std::string_view trimmed(std::string_view text) {
    const size_t first = std::min(text.find_first_not_of(" \t"), text.size());
    const size_t last = text.find_last_not_of(" \t\r");
    return last == std::string_view::npos ? "" : text.substr(first, last + 1 - first);
}

// What the head says in all fields of this name.
std::vector<std::string_view> values_of(std::string_view head, std::string_view name) {
    std::vector<std::string_view> result;
    while (!head.empty()) {
        const size_t end = std::min(head.find('\n'), head.size());
        const std::string_view line = head.substr(0, end);
        const size_t colon = line.find(':');
        if (colon != std::string_view::npos && same_text(trimmed(line.substr(0, colon)), name)) {
            result.push_back(trimmed(line.substr(colon + 1)));
        }
        head.remove_prefix(std::min(end + 1, head.size()));
    }
    return result;
}

// "name" of "name:5900", "::1" of "[::1]:5900".
std::string_view without_port(std::string_view text) {
    if (text.starts_with('[')) {
        return text.substr(1, text.find(']') - 1);
    }
    return text.substr(0, text.find(':'));
}

// "name" of "http://name:5800"; nothing of "null", which stands for pages of no machine.
std::string_view machine_of(std::string_view origin) {
    constexpr std::string_view k_mark = "://";
    const size_t mark = origin.find(k_mark);
    return mark == std::string_view::npos ? "" : without_port(origin.substr(mark + k_mark.size()));
}

bool is_loopback(std::string_view machine) {
    return same_text(machine, "localhost") ||
           address_kind_of(std::string(machine)) == address_kind::loopback;
}

// What has arrived so far, left unread. False when the visitor has gone.
bool peek(int connection, std::string &text) {
    std::array<char, k_longest_head> part{};
    const ssize_t bytes = recv(connection, part.data(), part.size(), MSG_PEEK | MSG_DONTWAIT);
    if (bytes > 0) {
        text.assign(part.data(), static_cast<size_t>(bytes));
    }
    return bytes > 0 || (bytes == -1 && (errno == EAGAIN || errno == EINTR));
}

void wait_for_more(int connection, bool silent) {
    pollfd readable = {.fd = connection, .events = POLLIN, .revents = 0};
    // What is left unread would be told again at once.
    poll(&readable, silent ? 1 : 0, k_pause.count());
}

bool begins_like(std::string_view text, std::string_view words) {
    const size_t common = std::min(text.size(), words.size());
    return text.substr(0, common) == words.substr(0, common);
}

visitor judge(int connection, std::string_view head, bool password_asked) {
    if (is_welcome(head, password_asked)) {
        return visitor::browser;
    }
    constexpr std::string_view k_refusal = "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n"
                                           "Connection: close\r\n\r\n";
    std::array<char, k_longest_head> read{}; // a close with unread bytes would undo the answer
    recv(connection, read.data(), read.size(), MSG_DONTWAIT);
    send(connection, k_refusal.data(), k_refusal.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    return visitor::unwelcome;
}

} // namespace

bool is_welcome(std::string_view request_head, bool password_asked) {
    auto origins = values_of(request_head, "Origin");
    for (const std::string_view older : values_of(request_head, "Sec-WebSocket-Origin")) {
        origins.push_back(older);
    }
    if (origins.empty()) {
        return true;
    }
    const auto hosts = values_of(request_head, "Host");
    if (hosts.size() != 1) {
        return false;
    }
    const std::string_view machine = without_port(hosts.front());
    return std::ranges::all_of(origins, [&](std::string_view origin) {
        const std::string_view page = machine_of(origin);
        return password_asked ? !page.empty() && same_text(page, machine)
                              : is_loopback(page) && is_loopback(machine);
    });
}

visitor meet(int connection, bool password_asked) {
    const auto begun = steady::now();
    std::string text;
    for (;;) {
        const bool here = peek(connection, text);
        const auto waited = steady::now() - begun;
        if (!here || waited > k_patience) {
            return visitor::unwelcome;
        }
        if (text.empty()) {
            if (waited > k_silence) {
                return visitor::viewer;
            }
        } else if (text.starts_with(k_vnc_words)) {
            return visitor::viewer;
        } else if (const size_t end = text.find(k_end_of_head);
                   text.starts_with(k_web_words) && end != std::string::npos) {
            return judge(connection, text.substr(0, end), password_asked);
        } else if (text.size() == k_longest_head ||
                   !(begins_like(text, k_web_words) || begins_like(text, k_vnc_words))) {
            return visitor::unwelcome;
        }
        wait_for_more(connection, text.empty());
    }
}

} // namespace ux::view
