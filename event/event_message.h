// SPDX-License-Identifier: MIT
// One message of the event pipe: two lines of text, and the event that they tell.
#ifndef UX_EVENT_EVENT_MESSAGE_H
#define UX_EVENT_EVENT_MESSAGE_H

#include "event/event_pipe.h"
#include "ux.h"

namespace ux {

constexpr size_t k_line_bytes = 80; // a line of 79 characters, and the zero behind it

// What the reader keeps from message to message: lines that do not come and fields that a message
// does not tell stay as they were.
struct event_message {
    char line1[k_line_bytes]; // the type
    char line2[k_line_bytes]; // key: its code; touch: value, x and y
    ux_event event;           // obj and data stay null
};

// Reads the two lines of one opening of the pipe and reports a third on standard output. An opening
// that brings no line leaves the old ones. False when the wait was given up before a line came.
bool read_message(event_message &message, pipe_lines &pipe, give_up_test give_up);

// Puts what the lines tell into the event.
void parse_message(event_message &message);

} // namespace ux

#endif
