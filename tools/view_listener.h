// SPDX-License-Identifier: MIT
// Sockets that wait for viewers: at which addresses, and with which of them a password is a must.
#pragma once

#include "tools/owned_fd.h"

#include <optional>
#include <string>
#include <vector>

namespace ux::view {

enum class address_kind { loopback, open };

// What an address in numbers is; nothing when it is none. Only 127.x.x.x and ::1 are loopback.
std::optional<address_kind> address_kind_of(const std::string &address);

// "127.0.0.1:5900" or "[::1]:5900".
std::string address_with_port(const std::string &address, int port);

// One listening socket.
class listener {
  public:
    listener(const std::string &address, int fd, int port)
        : m_address(address), m_fd(fd), m_port(port) {}

    const std::string &address() const { return m_address; }
    int fd() const { return m_fd.get(); }
    int port() const { return m_port; }

  private:
    std::string m_address;
    sim::owned_fd m_fd;
    int m_port;
};

// Where to listen: at one port, 0 = any free one, or at the first free one of a row.
struct port_choice {
    int first;
    int count = 1;
};

// Listens at each address, all at the same port, which must be free at all of them. Without
// addresses: at both loopbacks, one of which may not exist. Throws failure.
std::vector<listener> listen_at(const std::vector<std::string> &addresses,
                                const port_choice &ports);

} // namespace ux::view
