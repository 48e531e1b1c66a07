// SPDX-License-Identifier: MIT
// The VNC side of ux-view: lets viewers in, a process for each, shows them the picture, and passes
// on their keys and touches.
#pragma once

#include "tools/owned_fd.h"
#include "tools/paced_sender.h"
#include "tools/view_listener.h"
#include "tools/view_picture.h"
#include "tools/view_source.h"
#include "tools/view_watch.h"

#include <list>
#include <string>
#include <utility>
#include <vector>

#include <sys/select.h>
#include <sys/types.h>

namespace ux::view {

class view_server {
  public:
    // An empty password asks for none. Throws failure.
    view_server(frame_source &source, sim::paced_sender &input, std::vector<listener> sockets,
                const std::string &name, const std::string &password);
    view_server(const view_server &) = delete;
    view_server &operator=(const view_server &) = delete;
    ~view_server() = default;

    // Somebody looks.
    bool watched() const { return !m_viewers.empty(); }

    // Adds the sockets to wait for; the highest one.
    int add_to(fd_set &wanted) const;

    // Looks at the source and tells the viewers when something has changed.
    void look();

    // Takes what viewers have sent, and newcomers; never waits.
    void serve();

  private:
    // Ends with its owner.
    struct viewer_process {
        viewer_process(pid_t number, sim::owned_fd &&socket)
            : process(number), channel(std::move(socket)) {}
        viewer_process(const viewer_process &) = delete;
        viewer_process &operator=(const viewer_process &) = delete;
        ~viewer_process();

        pid_t process;
        sim::owned_fd channel;
        bool is_in = false; // else at the door
    };

    size_t count(bool is_in) const;
    bool hear(viewer_process &viewer);
    void take_newcomers();
    void make_room_at_the_door();
    void start_process(int connection);

    frame_source &m_source;
    sim::paced_sender &m_input;
    std::vector<listener> m_sockets;
    view_picture m_picture;
    view_watch m_watch;
    std::string m_name;
    std::string m_password;
    std::list<viewer_process> m_viewers; // in the order of their coming
    bool m_newcomer = false;             // since the last look
};

} // namespace ux::view
