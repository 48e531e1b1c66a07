// SPDX-License-Identifier: MIT
// A small media player for a 32-bit landscape screen of 1280 x 720 pixels or more: a menu over a
// picture, a photo show, a calendar with a clock, settings, messages and a line of news. Every page
// has a file of its own; this one starts and ends the program.
//
//     player [--at hours:minutes:seconds year-month] [folder or http-address ...]
//
// The show takes the PNG and JPEG files of the folders in the order of their names. With a time,
// the clock stands there. The pictures of the pages lie where a device has them, under
// /orbo/images.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <span>

#include "look.h"
#include "shell.h"

namespace player {

shell s_shell;

namespace {

bool is_picture(const std::filesystem::path &path) {
    const std::string suffix = path.extension().string();
    return suffix == ".png" || suffix == ".jpg" || suffix == ".jpeg";
}

void add_pictures(const char *source) {
    if (std::strncmp(source, "http://", std::strlen("http://")) == 0) {
        s_shell.pictures.emplace_back(source);
        return;
    }
    std::vector<std::string> found;
    std::error_code no_folder;
    for (const auto &entry : std::filesystem::directory_iterator(source, no_folder))
        if (is_picture(entry.path()))
            found.push_back(entry.path().string());
    std::sort(found.begin(), found.end());
    s_shell.pictures.insert(s_shell.pictures.end(), found.begin(), found.end());
}

bool read_time(const char *clock, const char *month) {
    time_of_day at = {};
    const bool is_right = sscanf(clock, "%d:%d:%d", &at.hours, &at.minutes, &at.seconds) == 3 &&
                          sscanf(month, "%d-%d", &s_shell.year, &s_shell.month) == 2;
    s_shell.fixed_time = at;
    return is_right && at.hours >= 0 && at.hours < 24 && at.minutes >= 0 && at.minutes < 60 &&
           at.seconds >= 0 && at.seconds < 60 && s_shell.year >= 1 && s_shell.year <= 9999 &&
           s_shell.month >= 1 && s_shell.month <= 12;
}

bool read_arguments(std::span<char *> arguments) {
    const time_t now = time(nullptr);
    struct tm local = {};
    localtime_r(&now, &local);
    s_shell.year = local.tm_year + 1900;
    s_shell.month = local.tm_mon + 1;
    if (!arguments.empty() && std::strcmp(arguments[0], "--at") == 0) {
        if (arguments.size() < 3 || !read_time(arguments[1], arguments[2]))
            return false;
        arguments = arguments.subspan(3);
    }
    for (const char *source : arguments)
        add_pictures(source);
    return true;
}

// Before ux_system_init(), which starts threads: from then on no variable is added.
bool set_up_environment() {
    set_up_text_size();
    setenv("PHOTO_PLAYING", "NO", 1);
    s_shell.status.set_up("STATUS", "gotoMenu");
    s_shell.message.set_up("ShowMSG", "YES");
    return set_up_news();
}

void build() {
    build_show();
    build_desk();
    build_form();
    build_note();
    build_home();
}

// Colours and layout are made for such a screen; another one would show them wrong.
bool screen_fits() {
    return main_screen.color_mode == UX_COLOR_MODE_ARGB8888 &&
           main_screen.width >= k_screen_width && main_screen.height >= k_screen_height;
}

int run() {
    if (!set_up_environment())
        return EXIT_FAILURE;
    ux_system_init();
    int status = EXIT_FAILURE;
    if (screen_fits()) {
        build();
        ux_screen_show_all();
        ux_screen_main_loop();
        status = EXIT_SUCCESS;
    } else {
        fprintf(stderr, "the player wants a 32-bit screen of %d x %d pixels\n", k_screen_width,
                k_screen_height);
    }
    remove_news();
    ux_system_close();
    return status;
}

} // namespace

} // namespace player

int main(int argc, char **argv) {
    if (!player::read_arguments(std::span(argv + 1, static_cast<size_t>(std::max(argc, 1) - 1)))) {
        fprintf(stderr,
                "usage: %s [--at hours:minutes:seconds year-month] [folder or address ...]\n",
                argv[0]);
        return EXIT_FAILURE;
    }
    return player::run();
}
