// SPDX-License-Identifier: MIT
// The button list: a column of text buttons, one of them current; keys move it over the hidden ones
// and report the choice. How a button looks is the text button's own.

#include "core/child_walk.h"
#include "widgets/widget_kit.h"

#include <cstdlib>

namespace ux {
namespace {

constexpr int k_inset = 3; // pixels around each button
constexpr uint32_t k_text_color = 0xFFFFFFFF;
constexpr uint32_t k_current_color = 0xFFFF8800;

constexpr int k_up = -1;
constexpr int k_down = 1;
constexpr int k_above = -1; // what the up handler is told at the upper end

// Where button `i` of a list with buttons stands. The height, rounded toward 0, may be 0 or less.
rect place_of(const ux_button_list *list, int i) {
    const ux_obj &obj = list->container.obj;
    const int64_t count = list->item_count;
    const int64_t gap = list->gap;
    const int64_t height = (obj.height - 2 * k_inset * count - (count - 1) * gap) / count;
    const int64_t top = int64_t{obj.y} + k_inset + i * (gap + 2 * k_inset + height);
    const int64_t width = (int64_t{obj.width} - 2 * k_inset) & ~int64_t{1};
    return {coordinate(int64_t{obj.x} + k_inset), coordinate(top), coordinate(width),
            coordinate(height)};
}

// Null when there is no button of that index.
ux_text_button *item_at(const ux_button_list *list, int index) {
    return index >= 0 && index < list->item_count ? list->items[index] : nullptr;
}

template <class Visit>
void for_each_item(const ux_button_list *list, Visit visit) {
    for (int i = 0; i < list->item_count; i++)
        visit(list->items[i]);
}

void lay_out(const ux_button_list *list) {
    for (int i = 0; i < list->item_count; i++) {
        const rect place = place_of(list, i);
        ux_text_button_set_size(list->items[i], place.x, place.y, place.width, place.height);
    }
}

// The nearest visible button above or below the current one: whether there is one, and its index.
bool find_visible(const ux_button_list *list, int direction, int *index) {
    for (int64_t i = int64_t{list->current} + direction; i >= 0 && i < list->item_count;
         i += direction) {
        if (list->items[i]->obj.status & UX_ST_VISIBLE) {
            *index = static_cast<int>(i);
            return true;
        }
    }
    return false;
}

int call(ux_button_list_handler handler, ux_button_list *list, int index) {
    return handler ? handler(list, index) : 0;
}

ux_button_list *list_of(const ux_event *ev) {
    return target_of<ux_button_list>(ev, UX_TYPE_BUTTON_LIST);
}

// One key towards `direction`; at the end the handler of that direction is told `end` and nothing
// moves. Each handler may delete the list.
int move(ux_button_list *list, int direction, int end,
         ux_button_list_handler ux_button_list::*handler) {
    int target = 0;
    if (!find_visible(list, direction, &target)) {
        call(list->*handler, list, end);
        return 0;
    }
    const child_walk watch(&list->container);
    ux_button_list_move_to_target(list, target);
    if (watch.container_exists())
        call(list->focus_handler, list, target);
    if (watch.container_exists())
        call(list->*handler, list, target);
    return 0;
}

// Frees what is not linked yet: the buttons made so far, the arrays, the record.
void discard(ux_button_list *list) {
    for (int i = 0; i < list->item_count && list->items && list->items[i]; i++)
        ux_obj_free(&list->items[i]->obj);
    free(list->items);
    free(list->values);
    free(list);
}

bool make_arrays(ux_button_list *list) {
    const auto count = static_cast<size_t>(list->item_count);
    list->items = static_cast<ux_text_button **>(calloc(count, sizeof(ux_text_button *)));
    list->values = static_cast<uint32_t *>(calloc(count, sizeof(uint32_t)));
    if (list->items && list->values)
        return true;
    report_error("Not enough memory space for buttonlist!\n");
    return false;
}

// The buttons, not linked yet and without a place.
bool make_buttons(ux_button_list *list) {
    for (int i = 0; i < list->item_count; i++) {
        ux_text_button *button = ux_text_button_new(nullptr, 0, 0, 0, 0, nullptr);
        if (!button)
            return false;
        ux_text_button_set_fg_color(button, k_text_color, k_text_color);
        ux_text_button_set_bg_color(button, UX_COLOR_NONE, k_current_color);
        list->items[i] = button;
    }
    return true;
}

// `unset_focus` stays null: a container that loses the focus leaves its list as it is.
constexpr object_prototype k_button_list = {
    .type = UX_TYPE_BUTTON_LIST,
    .flags = 0,
    .show = ux_button_list_show,
    .hide = ux_button_list_hide,
    .repaint = ux_button_list_repaint,
    .set_focus = ux_button_list_set_focus,
    .unset_focus = nullptr,
    .set_select = nullptr,
    .unset_select = nullptr,
};

void init_list(ux_button_list *list, ux_container *parent, const rect &place) {
    ux_container *container = &list->container;
    init_object(&container->obj, k_button_list, parent, place);
    container->obj.free = ux_button_list_free;
    container->add_obj = ux_container_add_obj;
    for_each_item(list,
                  [&](ux_text_button *button) { container->add_obj(container, &button->obj); });
    lay_out(list);
}

} // namespace
} // namespace ux

// All memory is there before anything is linked: a list that fails leaves no trace in its parent.
ux_button_list *ux_button_list_new(ux_container *parent, int x, int y, int w, int h, int count,
                                   int gap) noexcept {
    auto *list = ux::allocate<ux_button_list>("Not enough memory space for button list!\n");
    if (!list)
        return nullptr;
    list->gap = gap;
    list->item_count = count;
    if (count > 0 && !(ux::make_arrays(list) && ux::make_buttons(list))) {
        ux::discard(list);
        return nullptr;
    }
    ux::init_list(list, parent, {x, y, w, h});
    return list;
}

int ux_button_list_set_size(ux_button_list *list, int x, int y, int w, int h) noexcept {
    ux_obj_set_size(&list->container.obj, x, y, w, h);
    ux::lay_out(list);
    return 0;
}

int ux_button_list_set_text(ux_button_list *list, int index, const char16_t *text) noexcept {
    ux_text_button *button = ux::item_at(list, index);
    if (!button)
        return 0;
    ux_text_button_set_text(button, text);
    if (text && text[0] != u'\0')
        ux_text_button_show(&button->obj);
    else
        ux_text_button_hide(&button->obj);
    return 0;
}

int ux_button_list_set_value(ux_button_list *list, int index, uint32_t value) noexcept {
    if (ux::item_at(list, index))
        list->values[index] = value;
    return 0;
}

int ux_button_list_set_item_fg_color(ux_button_list *list, uint32_t normal,
                                     uint32_t focus) noexcept {
    ux::for_each_item(
        list, [&](ux_text_button *button) { ux_text_button_set_fg_color(button, normal, focus); });
    return 0;
}

int ux_button_list_set_item_bg_color(ux_button_list *list, uint32_t normal,
                                     uint32_t focus) noexcept {
    ux::for_each_item(
        list, [&](ux_text_button *button) { ux_text_button_set_bg_color(button, normal, focus); });
    return 0;
}

int ux_button_list_set_item_border_color(ux_button_list *list, uint32_t normal,
                                         uint32_t focus) noexcept {
    ux::for_each_item(list, [&](ux_text_button *button) {
        ux_text_button_set_border_color(button, normal, focus);
    });
    return 0;
}

int ux_button_list_set_item_font(ux_button_list *, ...) noexcept {
    return 0;
}

int ux_button_list_set_item_border(ux_button_list *list, int n) noexcept {
    ux::for_each_item(list, [&](ux_text_button *button) { ux_text_button_set_border(button, n); });
    return 0;
}

int ux_button_list_set_focus_handler(ux_button_list *list,
                                     ux_button_list_handler handler) noexcept {
    list->focus_handler = handler;
    return 0;
}

int ux_button_list_set_select_handler(ux_button_list *list,
                                      ux_button_list_handler handler) noexcept {
    list->select_handler = handler;
    return 0;
}

int ux_button_list_set_up_handler(ux_button_list *list, ux_button_list_handler handler) noexcept {
    list->up_handler = handler;
    return 0;
}

int ux_button_list_set_down_handler(ux_button_list *list, ux_button_list_handler handler) noexcept {
    list->down_handler = handler;
    return 0;
}

// The slots paint by themselves; a visible list paints both buttons once more. A slot of the host's
// own may delete the list.
int ux_button_list_move_to_target(ux_button_list *list, int index) noexcept {
    ux_text_button *target = ux::item_at(list, index);
    ux_text_button *current = ux::item_at(list, list->current);
    if (!target || !current)
        return 0;
    const ux::child_walk watch(&list->container);
    if (current->obj.unset_focus)
        current->obj.unset_focus(&current->obj);
    if (watch.container_exists() && target->obj.set_focus)
        target->obj.set_focus(&target->obj);
    if (!watch.container_exists())
        return 0;
    if (list->container.obj.status & UX_ST_VISIBLE) {
        ux_text_button_show(&current->obj);
        ux_text_button_show(&target->obj);
    }
    list->current = index;
    if (ux_page *page = ux::page_of(&list->container.obj))
        page->focus = &list->container.obj;
    return 0;
}

int ux_button_list_set_item_focus(ux_button_list *list, int index) noexcept {
    return ux_button_list_move_to_target(list, index);
}

int ux_button_list_event_move_up(ux_event *ev) noexcept {
    ux_button_list *list = ux::list_of(ev);
    return list ? ux::move(list, ux::k_up, ux::k_above, &ux_button_list::up_handler) : -1;
}

int ux_button_list_event_move_down(ux_event *ev) noexcept {
    ux_button_list *list = ux::list_of(ev);
    return list ? ux::move(list, ux::k_down, list->item_count, &ux_button_list::down_handler) : -1;
}

int ux_button_list_event_press_ok(ux_event *ev) noexcept {
    ux_button_list *list = ux::list_of(ev);
    if (!list)
        return -1;
    ux::call(list->select_handler, list, list->current);
    return 0;
}

// The page's own handlers of the three keys are not kept: no one puts them back.
int ux_button_list_set_focus(ux_obj *obj) noexcept {
    const auto *list = ux::as<ux_button_list>(obj);
    if (obj->page_id == -1)
        ux::report_error("warning, ux_calendar doesn't have a parent object\n");
    if (ux_page *page = ux::page_of(obj)) {
        ux_page_set_key_handler(page, UX_KEY_UP, ux_button_list_event_move_up);
        ux_page_set_key_handler(page, UX_KEY_DOWN, ux_button_list_event_move_down);
        ux_page_set_key_handler(page, UX_KEY_OK, ux_button_list_event_press_ok);
    }
    if (ux_text_button *button = ux::item_at(list, list->current))
        ux_text_button_set_focus(&button->obj);
    return ux::take_focus(obj);
}

int ux_button_list_unset_focus(ux_obj *obj) noexcept {
    const auto *list = ux::as<ux_button_list>(obj);
    ux::clear_state(obj, UX_ST_FOCUSED);
    if (ux_text_button *button = ux::item_at(list, list->current))
        ux_text_button_unset_focus(&button->obj);
    if (ux_page *page = ux::page_of(obj))
        page->focus = nullptr;
    return 0;
}

int ux_button_list_show(ux_obj *obj) noexcept {
    ux::set_state(obj, UX_ST_VISIBLE);
    return ux_container_repaint(obj);
}

int ux_button_list_hide(ux_obj *obj) noexcept {
    return ux_obj_hide(obj);
}

int ux_button_list_repaint(ux_obj *obj) noexcept {
    return ux::show_or_hide(obj, ux_button_list_show, ux_button_list_hide);
}

int ux_button_list_free(ux_obj *obj) noexcept {
    const auto *list = ux::as<ux_button_list>(obj);
    free(list->items);
    free(list->values);
    return ux_container_free(obj);
}
