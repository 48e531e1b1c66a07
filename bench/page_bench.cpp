// SPDX-License-Identifier: MIT
// A page of 60 widgets: background, and per widget a fill, a border of one pixel and a label of 14
// characters.

#include "bench/bench_screen.h"
#include "bench/peers.h"

#include <cstring>

namespace {

constexpr int k_columns = 6;
constexpr int k_rows = 10;
constexpr char k_label[] = "Channel number";
constexpr uint32_t k_background = 0xFF101820;
constexpr uint32_t k_fill = 0xFF304050;

struct place {
    int x, y, w, h;
};

place place_of(int column, int row) {
    return {20 + column * 208, 20 + row * 69, 190, 50};
}

template <class Visit>
void for_each_place(Visit visit) {
    for (int row = 0; row < k_rows; row++)
        for (int column = 0; column < k_columns; column++)
            visit(place_of(column, row));
}

ux_page *page() {
    static ux_page *made = nullptr;
    if (made)
        return made;
    main_screen.current_page = ux_page_new();
    made = ux_current_page();
    ux_container_set_bg_color(&made->container, k_background);
    for_each_place([](const place &p) {
        ux_text_button *button =
            ux_text_button_new(&made->container, p.x, p.y, p.w, p.h, u"Channel number");
        ux_text_button_set_border(button, 1);
        ux_text_button_set_bg_color(button, k_fill, k_fill);
    });
    return made;
}

void ux_paint() {
    ux_obj *obj = &page()->container.obj;
    obj->show(obj);
}

void cairo_color(cairo_t *context, uint32_t color) {
    cairo_set_source_rgb(context, (color >> 16 & 255) / 255.0, (color >> 8 & 255) / 255.0,
                         (color & 255) / 255.0);
}

void cairo_paint_page() {
    static cairo_t *const context = [] {
        cairo_t *made = cairo_screen(other_pixels());
        set_cairo_font(made, 16);
        cairo_set_antialias(made, CAIRO_ANTIALIAS_NONE);
        cairo_set_line_width(made, 1);
        return made;
    }();
    cairo_color(context, k_background);
    cairo_paint(context);
    for_each_place([](const place &p) {
        cairo_color(context, k_fill);
        cairo_rectangle(context, p.x, p.y, p.w, p.h);
        cairo_fill(context);
        cairo_color(context, 0xFFFFFF);
        cairo_rectangle(context, p.x + 0.5, p.y + 0.5, p.w - 1, p.h - 1);
        cairo_stroke(context);
        cairo_move_to(context, p.x + 1, p.y + 14);
        cairo_show_text(context, k_label);
    });
}

void sdl_paint_page() {
    static SDL_Surface *const screen = sdl_screen(other_pixels());
    static TTF_Font *const font = sdl_font(16);
    SDL_FillRect(screen, nullptr, k_background);
    for_each_place([](const place &p) {
        SDL_Rect border = {p.x, p.y, p.w, p.h};
        SDL_FillRect(screen, &border, 0xFFFFFFFF);
        SDL_Rect inside = {p.x + 1, p.y + 1, p.w - 2, p.h - 2};
        SDL_FillRect(screen, &inside, k_fill);
        SDL_Surface *drawn = TTF_RenderText_Solid(font, k_label, {170, 170, 170, 255});
        SDL_BlitSurface(drawn, nullptr, screen, &inside);
        SDL_FreeSurface(drawn);
    });
}

} // namespace

void register_page() {
    contender("page of 60 widgets/ux", [] { ux_paint(); });
    contender("page of 60 widgets/memset", [] { memset(main_screen.buf, 0x10, k_screen_bytes); });
    contender("page of 60 widgets/cairo", [] { cairo_paint_page(); });
    contender("page of 60 widgets/sdl2", [] { sdl_paint_page(); });
}
