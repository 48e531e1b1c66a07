// SPDX-License-Identifier: MIT
// The main loop: timers, then at most one event, given to the current page's key handlers or to the
// touched objects. Showing and switching of pages.

#include "core/uxWidget.h"

#include "core/object_kit.h"

#include <cstdio>
#include <unistd.h>

namespace ux {

std::atomic<int> running;

namespace {

constexpr unsigned k_pass_us = 10000;
constexpr unsigned k_repaint_pause_s = 1;

// The handler of a key, or null. Codes come from outside: those without an entry have no handler of
// their own.
ux_handler key_handler_of(const ux_page *page, int key) {
    if (key >= 0 && key < UX_MAX_KEYS && page->key_handlers[key])
        return page->key_handlers[key];
    return page->default_key_handler;
}

// Whatever is no touch goes to the key handlers, a stop message too.
void dispatch(ux_event &event) {
    ux_page *page = ux_current_page();
    if (!page)
        return;
    event.obj = page->focus;
    event.data = page->focus ? page->focus->handler_data : nullptr;
    if (event.type == UX_EVENT_TOUCH) {
        ux_container_scan(&page->container, touch_position_handler, &event);
        return;
    }
    if (ux_handler handler = key_handler_of(page, event.value))
        handler(&event);
}

// Both edges count: the area is one pixel wider and taller than the object.
bool holds(const ux_obj *obj, int x, int y) {
    return x >= obj->x && x <= int64_t{obj->x} + obj->width && y >= obj->y &&
           y <= int64_t{obj->y} + obj->height;
}

} // namespace
} // namespace ux

ux_page *ux_current_page() noexcept {
    return ux::page_at(main_screen.current_page);
}

int ux_screen_show_all() noexcept {
    if (ux_page *page = ux_current_page())
        page->container.obj.show(&page->container.obj);
    return 0;
}

int ux_screen_repaint() noexcept {
    if (ux_page *page = ux_current_page())
        page->container.obj.repaint(&page->container.obj);
    sleep(ux::k_repaint_pause_s);
    return 0;
}

// The page that is entered is looked up once more: leaving the old one may have replaced it.
int ux_switch_page(int index, intptr_t a, intptr_t b, intptr_t c) noexcept {
    ux_page *left = ux_current_page();
    if (ux::page_at(index) && left && left->on_leave)
        left->on_leave(left, a, b, c);
    main_screen.current_page = index;
    ux_page *entered = ux_current_page();
    if (entered && entered->on_enter)
        entered->on_enter(entered);
    return ux_screen_repaint();
}

// The three lines are a trace that every touch leaves.
int touch_position_handler(ux_event *rec) noexcept {
    puts("111111111111111111111111111111111111111111111111");
    ux_obj *obj = rec->obj;
    const auto *touch = static_cast<const ux_event *>(rec->data);
    if (!ux::holds(obj, touch->x, touch->y))
        return 0;
    puts("222222222222222222222222222222222222222222222222");
    if (!obj->handler)
        return 0;
    ux_event event = {};
    event.type = UX_EVENT_TOUCH;
    event.value = touch->value;
    event.x = touch->x;
    event.y = touch->y;
    event.obj = obj;
    event.data = obj->handler_data;
    obj->handler(&event);
    puts("3333333333333333333333333333333333333333333333333");
    return 1;
}

int ux_screen_main_loop() noexcept {
    if (ux_event_init() < 0)
        return ux::report_error("Queue Creation failed\n");
    ux::running = 1;
    do {
        ux_check_timeout();
        ux_check_atimer();
        usleep(ux::k_pass_us);
        ux_event event;
        if (ux_event_get(&event) == 0)
            ux::dispatch(event);
    } while (ux::running);
    return ux_event_close();
}

int ux_screen_quit_main_loop() noexcept {
    ux::running = 0;
    return 0;
}
