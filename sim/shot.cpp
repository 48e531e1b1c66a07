// SPDX-License-Identifier: MIT
// PNG writing with libpng's simplified interface.
#include "sim/shot.h"

#include "sim/failure.h"

#include <png.h>

#include <cstdio>

namespace ux::sim {

void write_shot(const shared_screen &screen, const std::string &path) {
    const screen_shape &shape = screen.shape();
    std::vector<uint8_t> picture = picture_as_rgb(shape, screen.pixels());

    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(shape.width);
    image.height = static_cast<png_uint_32>(shape.height);
    image.format = PNG_FORMAT_RGB;

    const std::string unfinished = path + ".part";
    if (png_image_write_to_file(&image, unfinished.c_str(), 0, picture.data(), 0, nullptr) == 0) {
        std::remove(unfinished.c_str());
        throw failure("cannot write " + path + ": " + image.message);
    }
    if (std::rename(unfinished.c_str(), path.c_str()) != 0) {
        std::string reason = system_reason("cannot write " + path);
        std::remove(unfinished.c_str());
        throw failure(reason);
    }
}

} // namespace ux::sim
