// SPDX-License-Identifier: MIT
// The VNC side of ux-view: viewers, the picture they see, and their keys and touches.
#pragma once

#include "tools/view_input.h"
#include "tools/view_listener.h"
#include "tools/view_source.h"
#include "tools/view_watch.h"

#include <array>
#include <string>
#include <vector>

#include <rfb/rfb.h>

#include <sys/select.h>

namespace ux::view {

class view_server {
  public:
    // Takes at most two sockets; an empty password asks for none. Throws failure.
    view_server(frame_source &source, view_input &input, std::vector<listener> sockets,
                const std::string &name, const std::string &password);
    view_server(const view_server &) = delete;
    view_server &operator=(const view_server &) = delete;
    ~view_server();

    // Somebody looks.
    bool watched() const { return m_screen->clientHead != nullptr; }

    // Adds the sockets to wait for; the highest one.
    int add_to(fd_set &wanted) const;

    // Looks at the source and tells the viewers what has changed.
    void look();

    // Serves whoever is ready; waits for none that behaves.
    void serve();

  private:
    static void on_key(rfbBool down, rfbKeySym symbol, rfbClientPtr client);
    static void on_pointer(int buttons, int x, int y, rfbClientPtr client);
    static rfbNewClientAction on_client(rfbClientPtr client);
    void shape_pixels(const frame_layout &layout);
    void take_sockets();

    frame_source &m_source;
    view_input &m_input;
    std::vector<listener> m_sockets;
    view_watch m_watch;
    std::string m_name;
    std::string m_password;
    std::array<char *, 2> m_passwords{}; // the list of one that the library wants
    rfbScreenInfoPtr m_screen = nullptr;
    bool m_newcomer = false; // since the last look
};

} // namespace ux::view
