// SPDX-License-Identifier: MIT
// Scenes as pixels, and pixels as files that are the same wherever they are written.
#ifndef UX_EXAMPLES_PICTURE_FILE_H
#define UX_EXAMPLES_PICTURE_FILE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "scene.h"

struct picture {
    int width = 0, height = 0;
    int channels = 3; // 4 with alpha
    std::vector<uint8_t> bytes;

    uint8_t *row(int y) { return bytes.data() + static_cast<ptrdiff_t>(y) * width * channels; }
};

using scene = std::function<color(point)>;

// A scene at width x height pixels; 3 channels, or 4 with alpha.
picture paint(const scene &drawn, int width, int height, int channels);

// Folders are made as needed. A file that can not be written ends the program.
void write_png(const std::filesystem::path &path, picture drawn);
void write_jpeg(const std::filesystem::path &path, picture drawn);

#endif
