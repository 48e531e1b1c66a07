// SPDX-License-Identifier: MIT
// Who stands at the VNC port: viewers of VNC itself, browsers, and those that are not let in.
#pragma once

#include <string_view>

namespace ux::view {

// Whether a browser may connect that asks so. Any site's page can make its reader's browser connect
// to the reader's own machine, and by a name that leads there. So without a password, machine and
// page must both be addressed as the loopback; with one, the page must be of the same machine.
// Programs that are no browsers name no page: they are welcome.
bool is_welcome(std::string_view request_head, bool password_asked);

enum class visitor { viewer, browser, unwelcome };

// Waits for a visitor's first words, not for ever, and leaves them unread: viewers keep silent
// until they are greeted. An unwelcome page is told so.
visitor meet(int connection, bool password_asked);

} // namespace ux::view
