// SPDX-License-Identifier: MIT
// From the events of one input device to messages.
#pragma once

#include "sim/input_queue.h"
#include "tools/inputd_keys.h"

#include <optional>

#include <linux/input.h>

namespace ux::inputd {

struct screen_size {
    int width = 0; // pixels
    int height = 0;
};

// The values of an axis, both ends included. One whose ends are not in order is a single place.
struct axis_range {
    int lowest = 0;
    int highest = 0;
    int now = 0; // a device tells only changes: a first touch at this value has no event for it
};

struct touch_area {
    axis_range x, y;
    screen_size screen;
};

// A message, and whether it is a key that is held down: such a one may be left out.
struct translated {
    sim::input_message message;
    bool is_repeat = false;
};

class event_translator {
  public:
    // `keys` must outlive the translator. Without an area touches are left out.
    event_translator(const key_table &keys, const std::optional<touch_area> &area)
        : m_keys(keys), m_area(area), m_x(area ? area->x.now : 0), m_y(area ? area->y.now : 0) {}

    // The message that the event completes. A key sends one when it goes down and while it is held;
    // a finger, a pen or a mouse button when it comes down, where it is then. A button that the
    // table holds is a key.
    std::optional<translated> take(const input_event &event);

  private:
    std::optional<translated> take_key(const input_event &event);
    void move(const input_event &event);
    std::optional<translated> end_report();

    const key_table &m_keys;
    std::optional<touch_area> m_area;
    int m_x; // on the device's axes
    int m_y;
    bool m_came_down = false; // in this report
};

} // namespace ux::inputd
