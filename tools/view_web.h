// SPDX-License-Identifier: MIT
// The browser page of ux-view: a small HTTP server for the page and the files of noVNC, nothing
// else. It never waits: a browser loads many files over several connections, slow or silent ones
// hold up nobody.
#pragma once

#include "sim/screen.h"
#include "tools/view_listener.h"

#include <list>
#include <string>
#include <string_view>
#include <vector>

#include <sys/select.h>

namespace ux::view {

// The file that a request line's target names below the page's folder, or nothing: letters, digits,
// '-', '_', '.' and '/', no part beginning with a dot. A query is left out.
std::string web_file(std::string_view target);

class web_server {
  public:
    // Serves the page that connects to `vnc_port`, and noVNC's files below `root`.
    web_server(std::vector<listener> sockets, const std::string &root, int vnc_port);

    // Adds the sockets to wait for; the highest one, -1 = none.
    int add_to(fd_set &reading, fd_set &writing) const;

    // Nobody is being served.
    bool idle() const { return m_connections.empty(); }

    void serve(sim::steady::time_point now);

  private:
    // One request and its answer.
    struct connection {
        connection(int number, sim::steady::time_point now) : fd(number), begun(now) {}
        connection(const connection &) = delete;
        connection &operator=(const connection &) = delete;
        ~connection();

        int fd;
        sim::steady::time_point begun;
        std::string request;
        std::string answer; // empty = the request is not complete
        size_t sent = 0;    // bytes of the answer
    };

    void accept_all(sim::steady::time_point now);
    bool step(connection &one) const;
    std::string answer_to(std::string_view request) const;

    std::vector<listener> m_sockets;
    std::string m_root;
    std::string m_page;
    std::list<connection> m_connections;
};

} // namespace ux::view
