// SPDX-License-Identifier: MIT
// One viewer, served by a process of its own: the VNC library waits for a viewer that stops in the
// middle of a message or does not read, and only that viewer may suffer from it.
#pragma once

#include "sim/input_queue.h"
#include "tools/view_picture.h"

#include <string>

namespace ux::view {

enum class report_kind { came_in, input };

// What a viewer's process tells ux-view, one to a packet.
struct viewer_report {
    report_kind kind = report_kind::came_in; // it has shown its password, if one is asked for
    bool repeated = false;                   // a key that is being held
    sim::input_message message{};
};

struct viewer_task {
    int connection;              // the viewer's socket, not waiting
    int channel;                 // to ux-view: reports go out, a packet comes in for a new picture
    const view_picture &picture; // of this process and ux-view
    std::string name;            // told to the viewer
    std::string password;        // empty = none is asked for
};

// Serves the viewer until it leaves or breaks the rules; to be called in the process of its own.
void serve_viewer(const viewer_task &task);

} // namespace ux::view
