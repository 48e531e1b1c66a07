// SPDX-License-Identifier: MIT
// Containers: the child list, the depth-first scan, and what is passed on to the children.

#include "core/child_walk.h"
#include "core/object_kit.h"

#include <cstring>

namespace ux {
namespace {

constexpr object_prototype k_container = {
    .type = UX_TYPE_BOX,
    .flags = 0,
    .show = ux_container_show,
    .hide = ux_container_hide,
    .repaint = ux_container_repaint,
    .set_focus = ux_container_set_focus,
    .unset_focus = ux_container_unset_focus,
    .set_select = nullptr,
    .unset_select = nullptr,
};

ux_container *as_container(ux_obj *obj) {
    return as<ux_container>(obj);
}

// A picture fills the inside of the border.
void paint_picture(const ux_container *container) {
    const ux_obj &obj = container->obj;
    const int64_t border = obj.border;
    ux_draw_image(container->bg_image, coordinate(obj.x + border), coordinate(obj.y + border),
                  coordinate(obj.width - 2 * border), coordinate(obj.height - 2 * border), 0);
}

void paint_background(const ux_container *container) {
    const ux_obj *obj = &container->obj;
    if (container->bg_color != UX_COLOR_NONE)
        paint_fill(obj, container->bg_color);
    else if (obj->bg_backup && (obj->status & UX_ST_BG_SAVED))
        paint_saved_background(obj);
    else if (container->bg_image[0] != '\0')
        paint_picture(container);
}

int visit(ux_obj *obj, ux_handler callback, void *arg) {
    ux_event event = {};
    event.obj = obj;
    event.data = arg;
    return callback(&event);
}

// Takes `obj` out of the container's list; false when it is not a direct child.
bool unlink_child(ux_container *container, const ux_obj *obj) {
    for (ux_obj **link = &container->children; *link; link = &(*link)->next) {
        if (*link == obj) {
            *link = obj->next;
            return true;
        }
    }
    return false;
}

void drop_focus(const ux_obj *obj) {
    ux_page *page = page_of(obj);
    if (page && page->focus == obj)
        page->focus = nullptr;
}

// Releases an object; neither its page nor a walk keeps a pointer to it.
void release(ux_obj *obj) {
    drop_focus(obj);
    child_walk::forget(obj);
    if (obj->free)
        obj->free(obj);
    else
        ux_obj_free(obj);
}

} // namespace
} // namespace ux

ux_container *ux_container_new(ux_container *parent, int x, int y, int w, int h) noexcept {
    auto *container = ux::allocate<ux_container>("Not enough memory space for container!\n");
    if (!container)
        return nullptr;
    ux::init_object(&container->obj, ux::k_container, parent, {x, y, w, h});
    container->bg_color = UX_COLOR_BACKGROUND;
    container->add_obj = ux_container_add_obj;
    return container;
}

int ux_container_add_obj(ux_container *container, ux_obj *obj) noexcept {
    if (!obj)
        return -1;
    obj->page_id = container->obj.page_id;
    obj->next = container->children;
    container->children = obj;
    obj->parent = &container->obj;
    container->count++;
    return 0;
}

int ux_container_del_obj(ux_container *container, ux_obj *obj, intptr_t, intptr_t) noexcept {
    if (!obj || !ux::unlink_child(container, obj))
        return -1;
    ux::release(obj);
    container->count--;
    return 0;
}

// All children are visited, also after a hit; the container is asked when their sum is 0.
int ux_container_scan(ux_container *container, ux_handler callback, void *arg) noexcept {
    if (!callback)
        return 0;
    ux::child_walk walk(container);
    unsigned sum = 0;
    while (ux_obj *child = walk.next()) {
        const int result = child->type & UX_TYPE_CONTAINER
                               ? ux_container_scan(ux::as_container(child), callback, arg)
                               : ux::visit(child, callback, arg);
        sum += static_cast<unsigned>(result);
    }
    if (sum != 0 || !walk.container_exists())
        return static_cast<int>(sum);
    return ux::visit(&container->obj, callback, arg);
}

int ux_container_free(ux_obj *container) noexcept {
    {
        ux::child_walk walk(ux::as_container(container));
        while (ux_obj *child = walk.next())
            ux::release(child);
    }
    ux::drop_focus(container);
    return ux_obj_free(container);
}

// The copy is taken after the background and before the border, so that it holds a picture too, and
// also when there was nothing to paint.
int ux_container_show_self(ux_container *container) noexcept {
    ux_obj *obj = &container->obj;
    if (!ux::begin_show(obj))
        return 0;
    ux::paint_background(container);
    if ((obj->flags & UX_FLAG_SAVE_BG) && container->bg_color == UX_COLOR_NONE &&
        !(obj->status & UX_ST_BG_SAVED))
        ux_obj_backup_bg(obj);
    ux::paint_border(obj);
    ux_object_update(obj);
    return 0;
}

int ux_container_show(ux_obj *container) noexcept {
    ux_container_show_self(ux::as_container(container));
    ux::child_walk walk(ux::as_container(container));
    while (ux_obj *child = walk.next())
        if (child->show)
            child->show(child);
    return 0;
}

int ux_container_hide_self(ux_container *container) noexcept {
    return ux_obj_hide(&container->obj);
}

int ux_container_hide(ux_obj *container) noexcept {
    return ux_obj_hide(container);
}

int ux_container_repaint(ux_obj *container) noexcept {
    if (!(container->status & UX_ST_VISIBLE))
        return ux_container_hide_self(ux::as_container(container));
    ux_container_show_self(ux::as_container(container));
    ux::child_walk walk(ux::as_container(container));
    while (ux_obj *child = walk.next())
        child->repaint(child);
    return 0;
}

int ux_container_set_focus(ux_obj *container) noexcept {
    ux::child_walk walk(ux::as_container(container));
    while (ux_obj *child = walk.next())
        if (child->set_focus)
            child->set_focus(child);
    if (walk.container_exists())
        ux::take_focus(container);
    return 0;
}

int ux_container_unset_focus(ux_obj *container) noexcept {
    ux::child_walk walk(ux::as_container(container));
    while (ux_obj *child = walk.next())
        if (child->unset_focus)
            child->unset_focus(child);
    if (walk.container_exists())
        ux::clear_state(container, UX_ST_FOCUSED);
    return 0;
}

int ux_container_set_border(ux_container *container, int n) noexcept {
    container->obj.border = n;
    return 0;
}

int ux_container_set_bg_color(ux_container *container, uint32_t color) noexcept {
    container->bg_color = color;
    container->bg_image[0] = '\0';
    ux::drop_saved_background(&container->obj);
    return 0;
}

int ux_container_set_bg_image(ux_container *container, const char *path) noexcept {
    if (!path) {
        container->bg_image[0] = '\0';
        return 0;
    }
    ux::drop_saved_background(&container->obj);
    const size_t length = strnlen(path, UX_PATH_BYTES - 1);
    memmove(container->bg_image, path, length);
    container->bg_image[length] = '\0';
    container->bg_color = UX_COLOR_NONE;
    return 0;
}
