// SPDX-License-Identifier: MIT
// Keys by the table, touches by the axes.
#include "tools/inputd_events.h"

#include <algorithm>

namespace ux::inputd {

namespace {

constexpr int k_down = 1;
constexpr int k_held = 2;

bool is_touch(unsigned code) {
    return code == BTN_TOUCH || code == BTN_LEFT;
}

// The range's steps are spread evenly over the pixels.
int pixel_of(int value, const axis_range &range, int pixels) {
    if (range.highest <= range.lowest) {
        return 0;
    }
    const int64_t steps = int64_t{range.highest} - range.lowest + 1;
    const int64_t step = std::clamp<int64_t>(value, range.lowest, range.highest) - range.lowest;
    return static_cast<int>(step * pixels / steps);
}

} // namespace

std::optional<translated> event_translator::take(const input_event &event) {
    switch (event.type) {
    case EV_KEY:
        return take_key(event);
    case EV_ABS:
        move(event);
        return std::nullopt;
    case EV_SYN:
        return event.code == SYN_REPORT ? end_report() : std::nullopt;
    default:
        return std::nullopt;
    }
}

std::optional<translated> event_translator::take_key(const input_event &event) {
    const auto key = m_keys.key_of(event.code);
    if (!key && is_touch(event.code)) {
        m_came_down = event.value == k_down;
        return std::nullopt;
    }
    if (!key || (event.value != k_down && event.value != k_held)) {
        return std::nullopt;
    }
    return translated{sim::key_message(*key), event.value == k_held};
}

void event_translator::move(const input_event &event) {
    if (event.code == ABS_X) {
        m_x = event.value;
    } else if (event.code == ABS_Y) {
        m_y = event.value;
    }
}

// The position may come behind the button: only the end of the report makes them one.
std::optional<translated> event_translator::end_report() {
    const bool touched = m_came_down && m_area;
    m_came_down = false;
    if (!touched) {
        return std::nullopt;
    }
    return translated{sim::touch_message(pixel_of(m_x, m_area->x, m_area->screen.width),
                                         pixel_of(m_y, m_area->y, m_area->screen.height))};
}

} // namespace ux::inputd
