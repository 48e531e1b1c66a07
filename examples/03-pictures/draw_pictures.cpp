// SPDX-License-Identifier: MIT
// Draws pictures into a folder, laid out as the examples': photographs as JPEG and PNG, the
// pictures of the buttons as PNG with alpha. Every run gives the same bytes.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "picture_file.h"

namespace {

void draw_icons(const std::filesystem::path &folder) {
    constexpr int side = 120;
    constexpr struct {
        const char *name;
        color (*drawn)(point at, bool focused);
    } icons[] = {{"show", show_icon}, {"tv", tv_icon}, {"leave", leave_icon}};
    for (const auto &icon : icons)
        for (bool focused : {false, true})
            write_png(folder / (icon.name + std::string(focused ? "-focus.png" : ".png")),
                      paint([&](point at) { return icon.drawn(at, focused); }, side, side, 4));
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: %s folder\n", argv[0]);
        return EXIT_FAILURE;
    }
    const std::filesystem::path folder = argv[1];
    write_jpeg(folder / "03-pictures/photos/lake.jpg", paint(lake, 1280, 720, 3));
    write_jpeg(folder / "03-pictures/photos/dunes.jpg", paint(dunes, 1280, 720, 3));
    write_png(folder / "03-pictures/photos/night.png", paint(night, 640, 360, 3));
    write_jpeg(folder / "03-pictures/server/coast.jpg", paint(coast, 1280, 720, 3));
    write_jpeg(folder / "device/orbo/images/backdrop.jpg", paint(backdrop, 1280, 720, 3));
    draw_icons(folder / "device/orbo/images");
    return EXIT_SUCCESS;
}
