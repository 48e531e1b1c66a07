// SPDX-License-Identifier: MIT
// The texts of the event pipe; see event_message.h.

#include "event/event_message.h"

#include <cstdio>
#include <cstdlib>

namespace ux {
namespace {

// Reads like sscanf("%d"): moves `text` behind the number, or leaves it and `value` alone. A number
// beyond the range of int loses its upper bits.
bool scan_int(const char *&text, int32_t &value) {
    char *end = nullptr;
    const long number = strtol(text, &end, 10);
    if (end == text)
        return false;
    value = static_cast<int32_t>(number);
    text = end;
    return true;
}

} // namespace

bool read_message(event_message &message, pipe_lines &pipe, give_up_test give_up) {
    const bool came = pipe.read(message.line1, sizeof message.line1, give_up);
    pipe.read(message.line2, sizeof message.line2, give_up);
    char probe[k_line_bytes];
    if (pipe.read(probe, sizeof probe, give_up))
        printf("Fifo is not empty, %s\n", probe);
    return came || !pipe.gave_up();
}

void parse_message(event_message &message) {
    const char *line1 = message.line1;
    const char *line2 = message.line2;
    ux_event &event = message.event;
    scan_int(line1, event.type);
    if (event.type == UX_EVENT_KEY)
        scan_int(line2, event.value);
    else if (event.type == UX_EVENT_TOUCH && scan_int(line2, event.value) &&
             scan_int(line2, event.x))
        scan_int(line2, event.y);
}

} // namespace ux
