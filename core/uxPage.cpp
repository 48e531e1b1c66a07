// SPDX-License-Identifier: MIT
// Pages: the table of 32, their records, their key handlers.

#include "core/object_kit.h"
#include "graphics/surface.h"

#include <cstdlib>
#include <cstring>

namespace ux {
namespace {

void clear(uint8_t *memory) {
    if (memory)
        memset(memory, 0,
               static_cast<size_t>(element_count(main_screen)) *
                   static_cast<size_t>(main_screen.bytes_per_pixel));
}

// A page is no child: it has no parent to be linked into, and it is visible from the start.
void init_page(ux_page *page, int index) {
    ux_obj *obj = &page->container.obj;
    const uint32_t flags = obj->flags;
    *page = {};
    obj->width = main_screen.width;
    obj->height = main_screen.height;
    obj->flags = flags;
    obj->status = UX_ST_VISIBLE;
    obj->type = UX_TYPE_PAGE;
    obj->page_id = index;
    init_defaults(obj);
    obj->show = ux_container_show;
    obj->repaint = ux_container_repaint;
    obj->set_focus = ux_container_set_focus;
    obj->hide = ux_obj_noop;
    obj->unset_focus = ux_obj_noop;
    page->container.bg_color = UX_COLOR_BACKGROUND;
    page->container.add_obj = ux_container_add_obj;
}

} // namespace
} // namespace ux

int ux_page_new() noexcept {
    auto *page = ux::allocate<ux_page>("Not enough memory space for page!\n");
    if (!page)
        return -1;
    const int index = ux_page_init(page);
    if (index < 0)
        free(page);
    return index;
}

int ux_page_init(ux_page *page) noexcept {
    const int index = main_screen.page_count;
    if (index < 0 || index >= UX_MAX_PAGES)
        return -1;
    main_screen.pages[index] = page;
    main_screen.page_count = index + 1;
    ux::init_page(page, index);
    return index;
}

int ux_page_set_key_handler(ux_page *page, int key, ux_handler handler) noexcept {
    if (key >= 0 && key < UX_MAX_KEYS)
        page->key_handlers[key] = handler;
    return 0;
}

int ux_page_set_default_key_handler(ux_page *page, ux_handler handler) noexcept {
    page->default_key_handler = handler;
    return 0;
}

int ux_page_clean() noexcept {
    ux::clear(main_screen.buf);
    ux::clear(main_screen.fb);
    return 0;
}
