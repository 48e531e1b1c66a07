// SPDX-License-Identifier: MIT
// Writing the note whole or not at all, and reading it strictly.
#include "sim/screen_note.h"

#include "sim/failure.h"

#include <cstdio>
#include <fstream>

namespace ux::sim {

namespace {

bool is_whole(const std::string &text, int used) {
    return used > 0 && static_cast<size_t>(used) == text.size();
}

bool read_shape(const std::string &text, screen_shape &shape) {
    int bits = 0;
    int used = 0;
    if (std::sscanf(text.c_str(), "%5dx%5dx%2d%n", &shape.width, &shape.height, &bits, &used) !=
            3 ||
        !is_whole(text, used)) {
        return false;
    }
    shape.format = bits == 16 ? pixel_format::rgb565 : pixel_format::argb8888;
    return (bits == 16 || bits == 32) && shape.width >= 1 && shape.width <= k_largest_side &&
           shape.height >= 1 && shape.height <= k_largest_side;
}

bool read_memory(screen_note &note) {
    int number = 0;
    int used = 0;
    return std::sscanf(note.memory.c_str(), "/proc/%9d/fd/%9d%n", &note.process, &number, &used) ==
               2 &&
           is_whole(note.memory, used) && note.process > 0;
}

} // namespace

std::string shape_text(const screen_shape &shape) {
    return std::to_string(shape.width) + "x" + std::to_string(shape.height) + "x" +
           std::to_string(shape.bytes_per_pixel() * 8);
}

void write_screen_note(const std::string &folder, const screen_note &note) {
    const std::string name = folder + "/" + k_screen_note;
    const std::string unfinished = folder + "/" + k_new_screen_note;
    std::ofstream file(unfinished, std::ios::binary);
    file << shape_text(note.shape) << '\n' << note.memory << '\n' << note.queue_path << '\n';
    file.close();
    if (!file || std::rename(unfinished.c_str(), name.c_str()) != 0) {
        const std::string reason = system_reason("cannot write " + name);
        std::remove(unfinished.c_str());
        throw failure(reason);
    }
}

screen_note read_screen_note(const std::string &folder) {
    const std::string name = folder + "/" + k_screen_note;
    std::ifstream file(name, std::ios::binary);
    if (!file) {
        throw failure(folder + " is no simulator's folder: it holds no file '" + k_screen_note +
                      "'");
    }
    screen_note note;
    std::string shape;
    std::getline(file, shape);
    std::getline(file, note.memory);
    std::getline(file, note.queue_path);
    if (!file || !read_shape(shape, note.shape) || !read_memory(note) || note.queue_path.empty()) {
        throw failure(name + " does not describe a simulator's screen");
    }
    return note;
}

} // namespace ux::sim
