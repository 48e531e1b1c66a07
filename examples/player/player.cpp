// SPDX-License-Identifier: MIT
// A small media player for a 32-bit landscape screen of 1280 x 720 pixels or more: a menu over a
// picture, a photo show, a calendar with a clock, settings, messages and a line of news. Every page
// has a file of its own; this one starts and ends the program.
//
//     player [--at hours:minutes:seconds year-month] [--locked] [--rotate 90|270]
//            [folder or http-address ...]
//
// The show takes the PNG and JPEG files of the folders in the order of their names. With a time,
// the clock stands there. Locked, the button that ends the program only says that it does not.
// SIGTERM ends it properly at any time. A rotated screen is refused: the library turns boxes and
// pictures, but no texts. The pictures of the pages lie where a device has them, under
// /orbo/images.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <span>

#include <malloc.h>

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

bool read_moment(const char *clock, const char *month) {
    time_of_day at = {};
    month_of_year shown = {};
    if (!read_time(clock, at) || !read_month(month, shown))
        return false;
    s_shell.fixed_time = at;
    s_shell.first_month = shown;
    return true;
}

// Takes one option off the front; false when there is none or it is wrong.
bool read_option(std::span<char *> &arguments) {
    const std::string name = arguments[0];
    size_t used = 0;
    if (name == "--locked") {
        s_shell.locked = true;
        used = 1;
    } else if (name == "--rotate" && arguments.size() > 1) {
        s_shell.rotation = std::strcmp(arguments[1], "90") == 0    ? "RORATE_90"
                           : std::strcmp(arguments[1], "270") == 0 ? "RORATE_270"
                                                                   : nullptr;
        used = s_shell.rotation != nullptr ? 2 : 0;
    } else if (name == "--at" && arguments.size() > 2) {
        used = read_moment(arguments[1], arguments[2]) ? 3 : 0;
    }
    arguments = arguments.subspan(used);
    return used > 0;
}

bool read_arguments(std::span<char *> arguments) {
    const time_t now = time(nullptr);
    struct tm local = {};
    localtime_r(&now, &local);
    s_shell.first_month = {local.tm_year + 1900, local.tm_mon + 1};
    while (!arguments.empty() && arguments[0][0] == '-')
        if (!read_option(arguments))
            return false;
    for (const char *source : arguments)
        add_pictures(source);
    return true;
}

// A picture's pixels go back to the system when they are released. By itself the C library would
// soon keep blocks of their size.
void give_memory_back() {
    constexpr int large_bytes = 128 * 1024;
    mallopt(M_MMAP_THRESHOLD, large_bytes);
}

// Before ux_system_init(), which starts threads: from then on no variable is added.
bool set_up_environment() {
    set_up_text_size(k_text_size);
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

// Colours and layout are made for such a screen; another one would show them wrong, and a rotated
// one would have its texts in other places than what they stand on.
bool screen_fits() {
    if (main_screen.rotation != UX_ROTATION_NONE) {
        fprintf(stderr, "the player has no rotated screen: texts are not turned with it\n");
        return false;
    }
    if (main_screen.color_mode == UX_COLOR_MODE_ARGB8888 && main_screen.width >= k_screen_width &&
        main_screen.height >= k_screen_height)
        return true;
    fprintf(stderr, "the player wants a 32-bit screen of %d x %d pixels\n", k_screen_width,
            k_screen_height);
    return false;
}

// Ending by SIGTERM. The main loop forgets what was asked for before it started, so the signal is
// held back until its first pass.

void quit_on_signal(int) {
    ux_screen_quit_main_loop();
}

void hold_back(bool held) {
    sigset_t asked;
    sigemptyset(&asked);
    sigaddset(&asked, SIGTERM);
    sigprocmask(held ? SIG_BLOCK : SIG_UNBLOCK, &asked, nullptr);
}

int let_signal_in(ux_event *) {
    hold_back(false);
    return 0;
}

void end_by_signal() {
    struct sigaction action = {};
    action.sa_handler = quit_on_signal;
    sigaction(SIGTERM, &action, nullptr);
    hold_back(true);
    ux_set_timeout(0, let_signal_in, nullptr);
}

int run() {
    give_memory_back();
    if (!set_up_environment())
        return EXIT_FAILURE;
    ux_system_init();
    if (s_shell.rotation != nullptr)
        ux_screen_rorate_init(s_shell.rotation);
    int status = EXIT_FAILURE;
    if (screen_fits()) {
        end_by_signal();
        build();
        ux_screen_show_all();
        ux_screen_main_loop();
        stop_news(s_shell.status);
        status = EXIT_SUCCESS;
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
                "usage: %s [--at hours:minutes:seconds year-month] [--locked] [--rotate 90|270] "
                "[folder or address ...]\n",
                argv[0]);
        return EXIT_FAILURE;
    }
    return player::run();
}
