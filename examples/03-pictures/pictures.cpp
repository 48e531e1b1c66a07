// SPDX-License-Identifier: MIT
// Pictures on a 1280 x 720 screen: image buttons, an image label, a photo show that walks the eight
// reveal effects and can be stopped, and a page whose background picture leaves a hole for video.
//
//     03-pictures [--seconds N] [folder [http-address]]
//
// The show takes the PNG and JPEG files of the folder in the order of their names, then the
// address. A picture stays for N seconds (2 if not given); with 0 until a key is pressed. The
// pictures of the buttons lie where a device has them, under /orbo/images.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "flag.h"
#include "parts.h"
#include "show_stopper.h"

#include <ux.h>

namespace {

constexpr int k_margin = 80;
constexpr int k_content_top = 196;
constexpr int k_hint_top = 648;
constexpr int k_screen_width = 1280;
constexpr int k_screen_height = 720;

constexpr int k_text_size = 28;
constexpr int k_title_size = 44;
constexpr int k_line_height = 44;

constexpr int k_photo_width = 640;
constexpr int k_photo_height = 360;
constexpr int k_frame = 4; // around a photo

constexpr uint32_t k_veil_color = 0xC0000000; // translucent

constexpr char k_backdrop[] = "/orbo/images/backdrop.jpg";

constexpr std::array k_effects = {
    u"1  from the top",    u"2  from the bottom",    u"3  from the left", u"4  from the right",
    u"5  from the corner", u"6  towards the middle", u"7  blinds",        u"8  spiral of tiles"};
constexpr std::array k_choices = {u"Photo show", u"Television", u"Leave"};

// One line of the list of effects.
struct line {
    ux_container *bar;
    ux_text_label *text;
};

struct player {
    std::vector<std::string> pictures; // of the show
    int seconds = 2;                   // rest after each; 0 = wait for a key
    size_t step = 0;                   // pictures shown so far
    flag status;                       // raised: the menu is wanted
    flag message;                      // raised: a message came in
    int rest_timer = -1;               // -1 = none
    int home_page = 0;
    int show_page = -1;
    int tv_page = -1;
    size_t focused = 0; // button of the home page
    std::array<ux_image_button *, k_choices.size()> buttons{};
    std::array<line, k_effects.size()> effects{};
    ux_text_label *state = nullptr;   // on the home page
    ux_text_label *caption = nullptr; // of the photo
    bool is_veiled = false;           // the television page shows its panel
};

player s_player;

// Painting.

std::u16string variable(const char *name) {
    const char *value = getenv(name);
    return value ? widened(value) : u"";
}

// The show.

void drop_rest_timer() {
    if (s_player.rest_timer >= 0)
        ux_delete_timeout(s_player.rest_timer);
    s_player.rest_timer = -1;
}

int enter_home(ux_page *) {
    return ux_text_label_set_text(s_player.state,
                                  (u"PHOTO_PLAYING: " + variable("PHOTO_PLAYING")).c_str());
}

// Covers the photo, which may be half there.
void show_message() {
    s_player.message.lower(); // it is being shown
    uxDrawBox(k_margin, k_content_top, k_margin + k_photo_width - 1,
              k_content_top + k_photo_height - 1, k_panel_color);
    ux_screen_blit_rect(k_margin, k_content_top, k_photo_width, k_photo_height);
    const std::u16string text = u"Dinner is ready.\n\nThe show waits, right goes on.\n"
                                u"PHOTO_PLAYING: " +
                                variable("PHOTO_PLAYING");
    uxFontDrawing(text.c_str(), k_title_color, k_panel_color, k_margin + k_line_height,
                  k_content_top + k_line_height, k_photo_width - 2 * k_line_height,
                  k_photo_height - 2 * k_line_height, k_text_size, k_text_size, 0, 1);
    show_text(s_player.caption, u"A message came in");
}

void mark_effect(size_t effect) {
    for (size_t i = 0; i < s_player.effects.size(); i++) {
        const line &l = s_player.effects[i];
        const uint32_t background = i == effect ? k_highlight_color : k_panel_color;
        if (l.bar->bg_color == background)
            continue;
        ux_container_set_bg_color(l.bar, background);
        ux_text_label_set_bg_color(l.text, background);
        ux_text_label_set_fg_color(l.text, i == effect ? k_dark_text_color : k_text_color);
        show(l.bar->obj);
    }
}

// Keys that arrive while the effect goes on.
void stop_effect(const ux_event &event) {
    if (event.type != UX_EVENT_KEY)
        return;
    if (event.value == UX_KEY_0)
        s_player.status.raise();
    else if (event.value == UX_KEY_OK)
        s_player.message.raise();
}

int show_next(ux_event *) {
    drop_rest_timer();
    const size_t index = s_player.step % s_player.pictures.size();
    const size_t effect = s_player.step % k_effects.size();
    const std::string &path = s_player.pictures[index];
    s_player.step++;
    mark_effect(effect);
    show_text(s_player.caption, widened(std::to_string(index + 1) + " of " +
                                        std::to_string(s_player.pictures.size()) + "    " +
                                        std::filesystem::path(path).filename().string()));
    {
        show_stopper stopper(stop_effect);
        ux_draw_image(path.c_str(), k_margin, k_content_top, k_photo_width, k_photo_height,
                      static_cast<int>(effect) + 1);
    }
    ux_screen_blit_rect(k_margin, k_content_top, k_photo_width, k_photo_height);
    if (s_player.status.is_raised())
        return ux_switch_page(s_player.home_page, 0, 0, 0);
    if (s_player.message.is_raised())
        show_message();
    else if (s_player.seconds > 0)
        s_player.rest_timer = ux_set_timeout(s_player.seconds * 1000000, show_next, nullptr);
    return 0;
}

// Between two pictures the keys come from the main loop.
int message_key(ux_event *) {
    drop_rest_timer();
    show_message();
    return 0;
}

int menu_key(ux_event *) {
    drop_rest_timer();
    return ux_switch_page(s_player.home_page, 0, 0, 0);
}

void start_show() {
    s_player.status.lower();
    s_player.message.lower();
    setenv("PHOTO_PLAYING", "YES", 1);
    s_player.step = 0;
    ux_switch_page(s_player.show_page, 0, 0, 0);
    if (s_player.pictures.empty())
        show_text(s_player.caption, u"There are no pictures: name a folder.");
    else
        show_next(nullptr);
}

// Television: the video lies in another layer, here a still picture.

constexpr int k_video_x = 320;
constexpr int k_video_y = 120;
constexpr int k_panel_top = 500;
constexpr int k_panel_height = 180;

void paint_backdrop() {
    ux_page_clean();
    const size_t middle = s_player.pictures.size() / 2;
    if (middle < s_player.pictures.size())
        ux_draw_image(s_player.pictures[middle].c_str(), k_video_x, k_video_y, k_photo_width,
                      k_photo_height, 0);
    ux_draw_BGimage(k_backdrop, 0, 0, k_screen_width, k_screen_height, k_video_x, k_video_y,
                    k_photo_width, k_photo_height);
    ux_screen_blit_rect(0, 0, k_screen_width, k_screen_height);
}

// The page is painted by hand: its background is no colour, and no picture that covers all of it.
int show_tv(ux_obj *page) {
    page->status |= UX_ST_VISIBLE;
    if (page->page_id != main_screen.current_page)
        return 0;
    paint_backdrop();
    s_player.is_veiled = false;
    for (ux_obj *child = ux_current_page()->container.children; child; child = child->next)
        show(*child);
    return 0;
}

int toggle_panel(ux_event *) {
    s_player.is_veiled = !s_player.is_veiled;
    if (!s_player.is_veiled) {
        // The part of the backdrop that lies under the panel is repaired, the video is not touched.
        ux_update_BGimage(k_backdrop, 0, 0, k_screen_width, k_screen_height, 0, k_panel_top,
                          k_screen_width, k_panel_height);
        return ux_screen_blit_rect(0, k_panel_top, k_screen_width, k_panel_height);
    }
    ux_update_BGcolor(0, k_panel_top, k_screen_width, k_panel_height, k_veil_color);
    ux_screen_blit_rect(0, k_panel_top, k_screen_width, k_panel_height);
    constexpr std::u16string_view lines[] = {u"20:15    Evening at the lake", u"21:00    News",
                                             u"21:30    The lighthouse"};
    int y = k_panel_top + 24;
    for (const auto &line : lines) {
        uxFontDrawing(line.data(), k_title_color, k_veil_color, k_video_x, y, k_photo_width,
                      k_text_size, k_text_size, k_text_size, 0, 1);
        y += k_line_height;
    }
    return 0;
}

// Home.

void show_button(size_t index) {
    show(s_player.buttons[index]->obj);
}

// Image buttons only remember their state: the host paints them.
void move_focus(size_t index) {
    if (index >= s_player.buttons.size())
        return;
    ux_obj_unset_focus(&s_player.buttons[s_player.focused]->obj);
    ux_obj_set_focus(&s_player.buttons[index]->obj);
    show_button(s_player.focused);
    show_button(index);
    s_player.focused = index;
}

int focus_up(ux_event *) {
    move_focus(s_player.focused - 1); // wraps to a number that is no button
    return 0;
}

int focus_down(ux_event *) {
    move_focus(s_player.focused + 1);
    return 0;
}

int leave(ux_event *) {
    return ux_screen_quit_main_loop();
}

int choose(ux_event *) {
    switch (s_player.focused) {
    case 0:
        start_show();
        break;
    case 1:
        ux_switch_page(s_player.tv_page, 0, 0, 0);
        break;
    default:
        return leave(nullptr);
    }
    return 0;
}

int touched(ux_event *ev) {
    for (size_t i = 0; i < s_player.buttons.size(); i++)
        if (ev->obj == &s_player.buttons[i]->obj)
            move_focus(i);
    return choose(ev);
}

// Building.

void add_frame(ux_page &page, const char16_t *title, const char16_t *hint) {
    constexpr int width = 1120;
    add_title<k_title_size>(page.container, k_margin, 96, width, title);
    add_label(page.container, {k_margin, k_hint_top, width, k_text_size}, hint, k_quiet_color,
              k_page_color);
}

void add_photo_frame(ux_page &page) {
    add_panel(page.container,
              {k_margin - k_frame, k_content_top - k_frame, k_photo_width + 2 * k_frame,
               k_photo_height + 2 * k_frame},
              k_panel_color, k_frame);
}

void build_home() {
    ux_page *home = ux_current_page();
    ux_container_set_bg_color(&home->container, k_page_color);
    constexpr int left = 800;
    constexpr int side = 104; // of a button
    constexpr int step = 128;
    constexpr const char *names[] = {"show", "tv", "leave"};
    for (size_t i = 0; i < k_choices.size(); i++) {
        const int y = k_content_top + static_cast<int>(i) * step;
        add_label(home->container,
                  {left + side + 32, y + (side - k_text_size) / 2, 280, k_text_size}, k_choices[i],
                  k_text_color, k_page_color);
        const std::string image = std::string("/orbo/images/") + names[i];
        s_player.buttons[i] =
            made(ux_image_button_new(&home->container, left, y, side, side,
                                     (image + ".png").c_str(), (image + "-focus.png").c_str()));
        ux_obj_set_handler(&s_player.buttons[i]->obj, touched, nullptr);
    }
    if (!s_player.pictures.empty()) {
        ux_image_label *photo =
            made(ux_image_label_new(&home->container, k_margin, k_content_top, k_photo_width,
                                    k_photo_height, s_player.pictures.back().c_str()));
        ux_obj_set_flag(&photo->obj, UX_FLAG_SAVE_FG); // read once
    }
    add_photo_frame(*home);
    s_player.state = add_label(home->container, {k_margin, 584, k_photo_width, k_text_size}, u"",
                               k_quiet_color, k_page_color);
    add_frame(*home, u"Pictures", u"Up, down: move        OK: choose        0: leave");
    home->on_enter = enter_home;
    ux_page_set_key_handler(home, UX_KEY_UP, focus_up);
    ux_page_set_key_handler(home, UX_KEY_DOWN, focus_down);
    ux_page_set_key_handler(home, UX_KEY_OK, choose);
    ux_page_set_key_handler(home, UX_KEY_0, leave);
    ux_obj_set_focus(&s_player.buttons.front()->obj);
}

line add_line(ux_page &page, int y, const char16_t *text) {
    constexpr int left = 800;
    constexpr int width = 400;
    constexpr int inset = 16;
    ux_container *bar = made(ux_container_new(&page.container, left, y, width, k_line_height - 8));
    ux_container_set_bg_color(bar, k_panel_color);
    return {bar, add_label(*bar, {left + inset, y + 4, width - 2 * inset, k_text_size}, text,
                           k_text_color, k_panel_color)};
}

void build_show() {
    ux_page *page = new_page();
    s_player.show_page = page->container.obj.page_id;
    for (size_t i = 0; i < k_effects.size(); i++)
        s_player.effects[i] = add_line(
            *page, k_content_top + static_cast<int>(i) * (k_line_height + 1) + 2, k_effects[i]);
    s_player.caption = add_label(page->container, {k_margin, 584, 1120, k_text_size}, u"",
                                 k_text_color, k_page_color);
    add_photo_frame(*page);
    add_frame(*page, u"Photo show", u"Right: next        OK: a message        0: menu");
    ux_page_set_key_handler(page, UX_KEY_RIGHT, show_next);
    ux_page_set_key_handler(page, UX_KEY_OK, message_key);
    ux_page_set_key_handler(page, UX_KEY_0, menu_key);
}

void build_tv() {
    ux_page *page = new_page();
    s_player.tv_page = page->container.obj.page_id;
    add_label(page->container, {k_video_x, 56, k_photo_width, k_text_size},
              u"OK: programme        0: menu", k_text_color, UX_COLOR_NONE);
    page->container.obj.show = page->container.obj.repaint = show_tv;
    ux_page_set_key_handler(page, UX_KEY_OK, toggle_panel);
    ux_page_set_key_handler(page, UX_KEY_0, menu_key);
}

// Arguments.

bool is_picture(const std::filesystem::path &path) {
    const std::string suffix = path.extension().string();
    return suffix == ".png" || suffix == ".jpg" || suffix == ".jpeg";
}

void find_pictures(const char *folder) {
    std::error_code no_folder;
    for (const auto &entry : std::filesystem::directory_iterator(folder, no_folder))
        if (is_picture(entry.path()))
            s_player.pictures.push_back(entry.path().string());
    std::sort(s_player.pictures.begin(), s_player.pictures.end());
}

void read_arguments(int argc, char **argv) {
    int at = 1;
    if (argc > 2 && std::string_view(argv[1]) == "--seconds") {
        s_player.seconds = static_cast<int>(std::min(strtoul(argv[2], nullptr, 10), 600ul));
        at = 3;
    }
    if (at < argc)
        find_pictures(argv[at++]);
    if (at < argc)
        s_player.pictures.emplace_back(argv[at]);
}

} // namespace

int main(int argc, char **argv) {
    read_arguments(argc, argv);
    set_up_text_size(k_text_size);
    s_player.status.set_up("STATUS", "gotoMenu");
    s_player.message.set_up("ShowMSG", "YES");
    setenv("PHOTO_PLAYING", "NO YET", 1);
    ux_system_init();
    build_home();
    build_show();
    build_tv();
    mark_visible(*main_screen.pages[s_player.show_page]);
    mark_visible(*main_screen.pages[s_player.tv_page]);
    enter_home(nullptr);
    ux_screen_show_all();
    ux_screen_main_loop();
    return ux_system_close();
}
