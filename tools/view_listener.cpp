// SPDX-License-Identifier: MIT
// Opening listening sockets, IPv4 and IPv6 strictly apart.
#include "tools/view_listener.h"

#include "sim/failure.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace ux::view {

namespace {

constexpr int k_backlog = 16;
constexpr int k_tries = 16; // for a port that is free at every address

struct endpoint {
    sockaddr_storage name{};
    socklen_t bytes = 0; // 0 = none
};

endpoint endpoint_of(const std::string &address, int port) {
    endpoint result;
    sockaddr_in four{};
    sockaddr_in6 six{};
    if (inet_pton(AF_INET, address.c_str(), &four.sin_addr) == 1) {
        four.sin_family = AF_INET;
        four.sin_port = htons(static_cast<uint16_t>(port));
        result.bytes = sizeof four;
        std::memcpy(&result.name, &four, sizeof four);
    } else if (inet_pton(AF_INET6, address.c_str(), &six.sin6_addr) == 1) {
        six.sin6_family = AF_INET6;
        six.sin6_port = htons(static_cast<uint16_t>(port));
        result.bytes = sizeof six;
        std::memcpy(&result.name, &six, sizeof six);
    }
    return result;
}

int port_of(int fd) {
    sockaddr_storage name{};
    socklen_t bytes = sizeof name;
    getsockname(fd, reinterpret_cast<sockaddr *>(&name), &bytes);
    sockaddr_in four{};
    sockaddr_in6 six{};
    std::memcpy(&four, &name, sizeof four);
    std::memcpy(&six, &name, sizeof six);
    return ntohs(name.ss_family == AF_INET6 ? six.sin6_port : four.sin_port);
}

// The socket, or -1 with errno.
int open_socket(const std::string &address, int port) {
    const endpoint at = endpoint_of(address, port);
    const int family = at.name.ss_family;
    const int fd = socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const int on = 1;
    if (fd == -1) {
        return -1;
    }
    const bool listens =
        setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0 &&
        (family != AF_INET6 || setsockopt(fd, IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on) == 0) &&
        bind(fd, reinterpret_cast<const sockaddr *>(&at.name), at.bytes) == 0 &&
        listen(fd, k_backlog) == 0;
    if (!listens) {
        const int error = errno;
        close(fd);
        errno = error;
        return -1;
    }
    return fd;
}

bool is_no_such_address(int error) {
    return error == EAFNOSUPPORT || error == EADDRNOTAVAIL;
}

// Empty when the port is taken at one of the addresses and `others` may be tried.
std::vector<listener> try_port(const std::vector<std::string> &addresses, int asked, bool others,
                               bool all_must_exist) {
    std::vector<listener> result;
    int port = asked;
    for (const std::string &address : addresses) {
        const int fd = open_socket(address, port);
        if (fd == -1 && errno == EADDRINUSE && others) {
            return {};
        }
        if (fd == -1 && is_no_such_address(errno) && !all_must_exist) {
            continue;
        }
        if (fd == -1) {
            throw sim::failure(
                sim::system_reason("cannot listen at " + address_with_port(address, port)));
        }
        port = port_of(fd);
        result.emplace_back(address, fd, port);
    }
    if (result.empty()) {
        throw sim::failure("there is no loopback address to listen at");
    }
    return result;
}

} // namespace

std::optional<address_kind> address_kind_of(const std::string &address) {
    constexpr uint32_t k_loopback_net = 127;
    in_addr four{};
    in6_addr six{};
    if (inet_pton(AF_INET, address.c_str(), &four) == 1) {
        return ntohl(four.s_addr) >> 24 == k_loopback_net ? address_kind::loopback
                                                          : address_kind::open;
    }
    if (inet_pton(AF_INET6, address.c_str(), &six) == 1) {
        return IN6_IS_ADDR_LOOPBACK(&six) ? address_kind::loopback : address_kind::open;
    }
    return std::nullopt;
}

std::string address_with_port(const std::string &address, int port) {
    const bool six = address.find(':') != std::string::npos;
    return (six ? "[" + address + "]" : address) + ":" + std::to_string(port);
}

listener::listener(listener &&other) noexcept
    : m_address(std::move(other.m_address)), m_fd(std::exchange(other.m_fd, -1)),
      m_port(other.m_port) {}

listener &listener::operator=(listener &&other) noexcept {
    std::swap(m_address, other.m_address);
    std::swap(m_fd, other.m_fd);
    std::swap(m_port, other.m_port);
    return *this;
}

listener::~listener() {
    if (m_fd != -1) {
        close(m_fd);
    }
}

std::vector<listener> listen_at(const std::vector<std::string> &addresses,
                                const port_choice &ports) {
    const std::vector<std::string> both = {"127.0.0.1", "::1"};
    const bool any = ports.first == 0;
    const int tries = any ? k_tries : ports.count;
    for (int at = 0; at < tries; ++at) {
        auto result = try_port(addresses.empty() ? both : addresses, any ? 0 : ports.first + at,
                               tries > 1, !addresses.empty());
        if (!result.empty()) {
            return result;
        }
    }
    if (any) {
        throw sim::failure("no port is free at every address");
    }
    throw sim::failure("no port from " + std::to_string(ports.first) + " to " +
                       std::to_string(ports.first + ports.count - 1) + " is free at every address");
}

} // namespace ux::view
