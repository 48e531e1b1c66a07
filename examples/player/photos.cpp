// SPDX-License-Identifier: MIT
// The photo show: each picture is revealed over the last one by an effect. While that goes on, the
// menu key stops it through "STATUS" and a message through "ShowMSG".
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "look.h"
#include "shell.h"
#include "show_stopper.h"

namespace player {

namespace {

constexpr int k_effects = 8;
constexpr int k_bar_height = 80; // of the caption
constexpr int k_bar_top = k_screen_height - k_bar_height;
constexpr int k_keys_width = 350;             // of its text, which ends at the margin
constexpr uint32_t k_veil_color = 0xD00A111D; // translucent

constexpr const char16_t *k_message =
    u"\n      Dinner is ready\n\n      The show waits for you.\n\n\n\n\n      OK goes on";
constexpr const char16_t *k_nothing = u"\n      No pictures\n\n      Start the player with a "
                                      u"folder\n      or an address.\n\n\n\n      OK leads back";

struct photo_show {
    size_t step = 0; // pictures shown so far
    int timer = -1;  // the rest after a picture; -1 = none
};

photo_show s_show;

void drop_timer() {
    if (s_show.timer >= 0)
        ux_delete_timeout(s_show.timer);
    s_show.timer = -1;
}

int effect_of(size_t step) {
    return s_shell.set.effect > 0 ? s_shell.set.effect : static_cast<int>(step % k_effects) + 1;
}

// Events that arrive while an effect goes on. A touch of the lower edge is the menu key.
void stop_effect(const ux_event &event) {
    const bool is_key = event.type == UX_EVENT_KEY;
    if ((is_key && event.value == UX_KEY_0) ||
        (event.type == UX_EVENT_TOUCH && event.y >= k_bar_top))
        s_shell.status.raise();
    else if (is_key && event.value == UX_KEY_1)
        s_shell.message.raise();
}

// The pixels of a picture at the size of the screen; null when it cannot be read.
using loaded = std::unique_ptr<void, decltype(&std::free)>;

loaded load(size_t index) {
    const char *path = s_shell.pictures[index].c_str();
    return {ux_load_image(path, k_screen_width, k_screen_height), &std::free};
}

void write_line(const char16_t *text, uint32_t color, uint32_t background, const box &place) {
    uxFontDrawing(text, color, background, place.x, place.y, place.w, place.h, k_text_size,
                  k_text_size, 0, 1);
}

// What stands on the screen instead of a picture that cannot be read.
void draw_missing() {
    constexpr int text_width = 476;
    constexpr box panel = {240, 220, k_screen_width - 480, 200};
    uxDrawBox(0, 0, k_screen_width - 1, k_screen_height - 1, k_page_color);
    uxDrawBox(panel.x, panel.y, panel.x + panel.w - 1, panel.y + panel.h - 1, k_line_color);
    uxDrawBox(panel.x + k_border, panel.y + k_border, panel.x + panel.w - 1 - k_border,
              panel.y + panel.h - 1 - k_border, k_panel_color);
    ux_screen_blit_rect(0, 0, k_screen_width, k_screen_height);
    write_line(u"This picture cannot be shown", k_text_color, k_panel_color,
               {(k_screen_width - text_width) / 2, panel.y + (panel.h - k_text_size) / 2,
                text_width, k_text_size});
}

void draw(const loaded &photo, int effect) {
    if (!photo) {
        draw_missing();
        return;
    }
    ux_draw_image_buff(photo.get(), 0, 0, k_screen_width, k_screen_height, effect);
    ux_screen_blit_rect(0, 0, k_screen_width, k_screen_height);
}

void draw_caption(size_t index) {
    if (!s_shell.set.shows_captions)
        return;
    constexpr int y = k_bar_top + (k_bar_height - k_text_size) / 2;
    constexpr int keys_left = k_screen_width - k_margin - k_keys_width;
    ux_update_BGcolor(0, k_bar_top, k_screen_width, k_bar_height, k_veil_color);
    ux_screen_blit_rect(0, k_bar_top, k_screen_width, k_bar_height);
    const std::string name = std::filesystem::path(s_shell.pictures[index]).stem().string();
    const std::u16string text = widened(std::to_string(index + 1) + " of " +
                                        std::to_string(s_shell.pictures.size()) + "    " + name);
    write_line(text.c_str(), k_title_color, k_veil_color,
               {k_margin, y, keys_left - k_margin - k_gap, k_text_size});
    write_line(u"Right: next    0: menu", k_quiet_color, k_veil_color,
               {keys_left, y, k_keys_width, k_text_size});
}

// A message comes over the whole picture, not over half of it.
int interrupt(const loaded &photo) {
    s_shell.message.lower(); // it is being shown
    draw(photo, 0);
    open_note(k_message);
    return 0;
}

int show_next(ux_event *) {
    drop_timer();
    if (s_shell.pictures.empty()) {
        go_home(nullptr);
        open_note(k_nothing);
        return 0;
    }
    const size_t index = s_show.step % s_shell.pictures.size();
    const int effect = effect_of(s_show.step);
    s_show.step++;
    loaded photo(nullptr, &std::free);
    {
        show_stopper stopper(stop_effect);
        photo = load(index);
        draw(photo, effect);
    }
    if (s_shell.status.is_raised())
        return go_home(nullptr);
    if (s_shell.message.is_raised())
        return interrupt(photo);
    draw_caption(index);
    s_show.timer = ux_set_timeout(s_shell.set.seconds * 1000000, show_next, nullptr);
    return 0;
}

int message_key(ux_event *) {
    open_note(k_message);
    return 0;
}

int touch(ux_event *ev) {
    return ev->y >= k_bar_top ? go_home(ev) : show_next(ev);
}

// The first picture comes over the page before, in the main loop's next pass.
int enter(ux_page *) {
    s_shell.status.lower();
    s_shell.message.lower();
    s_show.timer = ux_set_timeout(0, show_next, nullptr);
    return 0;
}

int leave(ux_page *, intptr_t, intptr_t, intptr_t) {
    drop_timer();
    return 0;
}

} // namespace

void build_show() {
    ux_page *page = new_page();
    s_shell.show = page->container.obj.page_id;
    ux_container_set_bg_color(&page->container, UX_COLOR_NONE);
    page->on_enter = enter;
    page->on_leave = leave;
    ux_page_set_key_handler(page, UX_KEY_RIGHT, show_next);
    ux_page_set_key_handler(page, UX_KEY_OK, show_next);
    ux_page_set_key_handler(page, UX_KEY_1, message_key);
    ux_page_set_key_handler(page, UX_KEY_0, go_home);
    ux_obj_set_handler(&page->container.obj, touch, nullptr);
}

} // namespace player
