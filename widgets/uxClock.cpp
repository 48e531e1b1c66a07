// SPDX-License-Identifier: MIT
// The analogue clock: a polling timeout that advances it, the handlers of the host, face and hands.

#include "core/child_walk.h"
#include "core/save_area.h"
#include "widgets/clock_hands.h"
#include "widgets/widget_kit.h"

#include <cstdlib>

namespace ux {
namespace {

constexpr int k_poll_us = 10000;
constexpr time_t k_advance_seconds = 2;
constexpr int k_sync_period = 15;
constexpr int k_no_timeout = -1;

constexpr int k_seconds = 60; // of a minute
constexpr int k_minutes = 60; // of an hour
constexpr int k_hours = 24;   // of a day

constexpr char k_no_memory[] = "Not enough memory space for clock!\n";
constexpr char k_init_error[] = "init error for clock!\n";

enum class host_handler { sync, tick };

// Lasts while a handler of the host's runs, and knows whether the clock still exists after it.
class clock_watch {
  public:
    clock_watch(const ux_clock *clock, host_handler handler);
    ~clock_watch();
    clock_watch(const clock_watch &) = delete;
    clock_watch &operator=(const clock_watch &) = delete;

    bool clock_exists() const { return m_clock != nullptr; }

    // Tells all watches that `clock` is about to be released.
    static void forget(const ux_clock *clock);

    // Whether the clock's sync handler is running.
    static bool is_asking(const ux_clock *clock);

  private:
    const ux_clock *m_clock; // null once it was released
    host_handler m_handler;
    clock_watch *m_outer; // the watch that this one began inside of
};

struct watch_state {
    clock_watch *innermost; // the watch begun last, or null
};

watch_state s_watches;

clock_watch::clock_watch(const ux_clock *clock, host_handler handler)
    : m_clock(clock), m_handler(handler), m_outer(s_watches.innermost) {
    s_watches.innermost = this;
}

clock_watch::~clock_watch() {
    s_watches.innermost = m_outer;
}

void clock_watch::forget(const ux_clock *clock) {
    for (clock_watch *watch = s_watches.innermost; watch; watch = watch->m_outer)
        if (watch->m_clock == clock)
            watch->m_clock = nullptr;
}

bool clock_watch::is_asking(const ux_clock *clock) {
    for (const clock_watch *watch = s_watches.innermost; watch; watch = watch->m_outer)
        if (watch->m_clock == clock && watch->m_handler == host_handler::sync)
            return true;
    return false;
}

// Whether the hands stay inside the clock.
bool hands_fit(int64_t width, int64_t height, int64_t radius, int64_t center_x, int64_t center_y) {
    return width >= center_x + radius && center_x - radius >= 0 && height >= center_y + radius &&
           center_y - radius >= 0 && width >= 2 * radius && height >= 2 * radius;
}

void *load_image(const char *path, int width, int height) {
    return path ? ux_load_image(path, width, height) : nullptr;
}

void free_state(ux_clock_state *state) {
    if (!state)
        return;
    free(state->face);
    free(state->second_image);
    free(state->third_image);
    free(state);
}

// The state block with the face, or null after its reports.
ux_clock_state *make_state(const char *face, int width, int height) {
    auto *state = allocate<ux_clock_state>(k_no_memory);
    if (state) {
        state->face = load_image(face, width, height);
        if (state->face)
            return state;
        report_error(k_no_memory);
        free(state);
    }
    report_error(k_init_error);
    return nullptr;
}

// Starts the next timeout and stops the one that may still run, so that there is never a second.
void start_timeout(ux_clock *clock) {
    if (clock->state->timeout_id >= 0)
        ux_delete_timeout(clock->state->timeout_id);
    clock->state->timeout_id = ux_set_timeout(k_poll_us, ux_clock_update, clock);
}

void stop_timeout(ux_clock *clock) {
    const int id = clock->state->timeout_id;
    if (id < 0)
        return;
    clock->state->timeout_id = k_no_timeout;
    ux_delete_timeout(id);
}

// Asks the host for the time, after which the clock may be gone, and starts the countdown anew. A
// sync handler that shows its own clock is not asked from inside itself, which would have no end.
// Returns whether the clock still exists.
bool synchronise(ux_clock *clock, intptr_t a, intptr_t b, intptr_t c) {
    const bool asks_already = clock_watch::is_asking(clock);
    const clock_watch watch(clock, host_handler::sync);
    if (clock->state->sync_handler && !asks_already)
        clock->state->sync_handler(clock, a, b, c);
    if (watch.clock_exists())
        clock->state->sync_countdown = clock->sync_period;
    return watch.clock_exists();
}

// Takes whole turns of `limit` off a count; returns whether there were any.
bool carry(int32_t *count, int limit) {
    if (*count < limit)
        return false;
    *count %= limit;
    return true;
}

void count_second(ux_clock *clock) {
    clock->seconds = coordinate(int64_t{clock->seconds} + 1);
    if (carry(&clock->seconds, k_seconds))
        clock->minutes = coordinate(int64_t{clock->minutes} + 1);
    if (carry(&clock->minutes, k_minutes))
        clock->hours = coordinate(int64_t{clock->hours} + 1);
    carry(&clock->hours, k_hours);
}

// The time is synchronised before the second is counted, the host told after the painting. Returns
// whether the clock still exists.
bool advance(ux_clock *clock, time_t now) {
    ux_clock_state *state = clock->state;
    state->last_advance = now;
    state->sync_countdown = coordinate(int64_t{state->sync_countdown} - 1);
    if (state->sync_countdown < 1 && !synchronise(clock, 0, 0, 0))
        return false;
    count_second(clock);
    ux_clock_paint(&clock->obj);
    const clock_watch watch(clock, host_handler::tick);
    if (state->tick_handler)
        state->tick_handler(clock, clock->hours, clock->minutes, clock->seconds);
    return watch.clock_exists();
}

// The face has the size that the clock was made with: fewer rows of it may be left.
void paint_face(const ux_clock *clock) {
    const ux_obj &obj = clock->obj;
    const int rows = save_area_rows(clock->state->face, obj.width, obj.height);
    ux_draw_image_buff(clock->state->face, obj.x, obj.y, obj.width, rows, 0);
}

// What the slots call: generic code has no values to hand on.
int show_slot(ux_obj *obj) {
    return ux_clock_show(obj, 0, 0, 0);
}

int repaint_slot(ux_obj *obj) {
    return ux_clock_repaint(obj, 0, 0, 0);
}

constexpr object_prototype k_clock = {
    .type = UX_TYPE_CLOCK,
    .flags = 0,
    .show = show_slot,
    .hide = ux_clock_hide,
    .repaint = repaint_slot,
    .set_focus = nullptr,
    .unset_focus = nullptr,
    .set_select = nullptr,
    .unset_select = nullptr,
};

} // namespace
} // namespace ux

// All that can fail comes before the link: a clock that fails leaves no trace in its parent.
ux_clock *ux_clock_new(ux_container *parent, int x, int y, int w, int h, int radius, int center_x,
                       int center_y, const char *face, const char *second,
                       const char *third) noexcept {
    if (!ux::hands_fit(w, h, radius, center_x, center_y))
        return nullptr;
    auto *clock = ux::allocate<ux_clock>(ux::k_no_memory);
    if (!clock)
        return nullptr;
    clock->state = ux::make_state(face, w, h);
    if (!clock->state) {
        free(clock);
        return nullptr;
    }
    const int side = ux::coordinate(int64_t{radius} * 2);
    clock->state->second_image = ux::load_image(second, side, side);
    clock->state->third_image = ux::load_image(third, side, side);
    clock->state->timeout_id = ux::k_no_timeout;
    clock->radius = radius;
    clock->center_x = center_x;
    clock->center_y = center_y;
    clock->sync_period = ux::k_sync_period;
    ux::init_object(&clock->obj, ux::k_clock, parent, {x, y, w, h});
    clock->obj.free = ux_clock_free;
    return clock;
}

int ux_clock_settime(ux_clock *clock, int hours, int minutes, int seconds) noexcept {
    clock->hours = hours;
    clock->minutes = minutes;
    clock->seconds = seconds;
    return 0;
}

int ux_clock_set_sync_cb(ux_clock *clock, ux_clock_sync_handler handler) noexcept {
    clock->state->sync_handler = handler;
    return 0;
}

int ux_clock_set_tick_cb(ux_clock *clock, ux_clock_tick_handler handler) noexcept {
    clock->state->tick_handler = handler;
    return 0;
}

int ux_clock_show(ux_obj *obj, intptr_t a, intptr_t b, intptr_t c) noexcept {
    auto *clock = ux::as<ux_clock>(obj);
    if (!(obj->status & UX_ST_VISIBLE) && !ux::synchronise(clock, a, b, c))
        return 0;
    ux::set_state(obj, UX_ST_VISIBLE);
    clock->state->last_advance = time(nullptr);
    if (clock->state->timeout_id < 0)
        ux::start_timeout(clock);
    return ux_clock_paint(obj);
}

int ux_clock_hide(ux_obj *obj) noexcept {
    ux::stop_timeout(ux::as<ux_clock>(obj));
    return ux_obj_hide(obj);
}

int ux_clock_repaint(ux_obj *obj, intptr_t a, intptr_t b, intptr_t c) noexcept {
    if (obj->status & UX_ST_VISIBLE)
        ux_clock_show(obj, a, b, c);
    else
        ux_clock_hide(obj);
    return 0;
}

// What was painted last reaches the screen first. What is painted now does at the next advance:
// hosts with a buffer of their own see it one advance late.
int ux_clock_paint(ux_obj *obj) noexcept {
    if (!(obj->status & UX_ST_VISIBLE) || !ux::on_current_page(obj))
        return 0;
    const auto *clock = ux::as<ux_clock>(obj);
    ux_object_update(obj);
    ux::paint_face(clock);
    for (const ux::clock_hand &hand : ux::clock_hands(clock))
        uxDrawLine(hand.x0, hand.y0, hand.x1, hand.y1, hand.color);
    return 0;
}

// The timeout that calls this is over; its id stays until here, so that hiding can be told.
int ux_clock_update(ux_event *ev) noexcept {
    auto *clock = static_cast<ux_clock *>(ev->data);
    const time_t now = time(nullptr);
    const bool is_due = now - clock->state->last_advance >= ux::k_advance_seconds;
    if (is_due && !ux::advance(clock, now))
        return 0;
    if (clock->state->timeout_id >= 0)
        ux::start_timeout(clock);
    return 0;
}

int ux_clock_free(ux_obj *obj) noexcept {
    auto *clock = ux::as<ux_clock>(obj);
    ux::clock_watch::forget(clock);
    ux::stop_timeout(clock);
    ux::child_walk::forget(obj);
    ux::free_state(clock->state);
    free(obj);
    return 0;
}
