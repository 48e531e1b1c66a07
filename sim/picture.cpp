// SPDX-License-Identifier: MIT
// PNG files with libpng's simplified interface, and the pixel-by-pixel comparison.
#include "sim/picture.h"

#include "sim/failure.h"
#include "sim/screen.h"

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace ux::sim {

namespace {

constexpr size_t k_channels = 3;

png_image new_image() {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    return image;
}

std::vector<uint8_t> encode(const picture &shown) {
    png_image image = new_image();
    image.width = static_cast<png_uint_32>(shown.width);
    image.height = static_cast<png_uint_32>(shown.height);
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t bytes = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<uint8_t> file(bytes);
    if (png_image_write_to_memory(&image, file.data(), &bytes, 0, shown.rgb.data(), 0, nullptr) ==
        0) {
        throw failure(std::string("cannot make a PNG file: ") + image.message);
    }
    file.resize(bytes);
    return file;
}

// False with errno.
bool write_whole(const std::string &path, const std::vector<uint8_t> &bytes) {
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd == -1) {
        return false;
    }
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = write(fd, bytes.data() + done, bytes.size() - done);
        if (count <= 0) {
            const int error = count == 0 ? ENOSPC : errno;
            close(fd);
            errno = error;
            return false;
        }
        done += static_cast<size_t>(count);
    }
    return close(fd) == 0;
}

} // namespace

void write_png(const picture &shown, const std::string &path) {
    const std::vector<uint8_t> file = encode(shown);
    const std::string unfinished = path + ".part";
    if (!write_whole(unfinished, file) || std::rename(unfinished.c_str(), path.c_str()) != 0) {
        std::string reason = system_reason("cannot write " + path);
        std::remove(unfinished.c_str());
        throw failure(reason);
    }
}

picture read_png(const std::string &path) {
    png_image image = new_image();
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) {
        throw failure("cannot read " + path + ": " + image.message);
    }
    if (image.width > k_largest_side || image.height > k_largest_side ||
        (image.format & PNG_FORMAT_FLAG_ALPHA) != 0) {
        png_image_free(&image);
        throw failure("cannot use " + path + ": it is too large or transparent");
    }
    image.format = PNG_FORMAT_RGB;
    picture result = {static_cast<int>(image.width), static_cast<int>(image.height),
                      std::vector<uint8_t>(PNG_IMAGE_SIZE(image))};
    if (png_image_finish_read(&image, nullptr, result.rgb.data(), 0, nullptr) == 0) {
        throw failure("cannot read " + path + ": " + image.message);
    }
    return result;
}

difference compare(const picture &wanted, const picture &seen) {
    difference found;
    found.same_size = wanted.width == seen.width && wanted.height == seen.height;
    if (!found.same_size || wanted.rgb == seen.rgb) {
        return found;
    }
    found.left = seen.width;
    found.top = seen.height;
    found.diff = seen;
    for (size_t at = 0; at < seen.rgb.size(); at += k_channels) {
        uint8_t *out = found.diff.rgb.data() + at;
        if (std::equal(out, out + k_channels, wanted.rgb.data() + at)) {
            std::transform(out, out + k_channels, out, [](uint8_t value) { return value / 4; });
            continue;
        }
        const int pixel = static_cast<int>(at / k_channels);
        ++found.pixels;
        found.left = std::min(found.left, pixel % seen.width);
        found.right = std::max(found.right, pixel % seen.width);
        found.top = std::min(found.top, pixel / seen.width);
        found.bottom = std::max(found.bottom, pixel / seen.width);
        out[0] = UINT8_MAX;
        out[1] = out[2] = 0;
    }
    return found;
}

} // namespace ux::sim
