// SPDX-License-Identifier: MIT
// Draws the pictures of this example into a folder: photographs as JPEG and PNG, the pictures of
// the buttons as PNG with alpha. Every run gives the same bytes.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <jpeglib.h>
#include <png.h>

#include "scene.h"

namespace {

constexpr int k_quality = 80;
constexpr int k_samples = 2; // of each pixel, in either direction

struct picture {
    int width = 0, height = 0;
    int channels = 3; // 4 with alpha
    std::vector<uint8_t> bytes;

    uint8_t *row(int y) { return bytes.data() + static_cast<ptrdiff_t>(y) * width * channels; }
};

using scene = std::function<color(point)>;

uint8_t to_byte(double value) {
    return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

// The mean of some places in a pixel; colours weigh as much as they are opaque.
color pixel_color(const scene &drawn, int x, int y, int height) {
    color sum = {0, 0, 0, 0};
    for (int i = 0; i < k_samples * k_samples; i++) {
        const int column = i % k_samples;
        const int row = i / k_samples;
        const color c = drawn(
            {(x + (column + 0.5) / k_samples) / height, (y + (row + 0.5) / k_samples) / height});
        sum.red += c.red * c.alpha;
        sum.green += c.green * c.alpha;
        sum.blue += c.blue * c.alpha;
        sum.alpha += c.alpha;
    }
    if (sum.alpha > 0)
        return {sum.red / sum.alpha, sum.green / sum.alpha, sum.blue / sum.alpha,
                sum.alpha / (k_samples * k_samples)};
    return {0, 0, 0, 0};
}

picture paint(const scene &drawn, int width, int height, int channels) {
    picture result = {width, height, channels, {}};
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) {
            const color c = pixel_color(drawn, x, y, height);
            for (double value : {c.red, c.green, c.blue})
                result.bytes.push_back(to_byte(value));
            if (channels == 4)
                result.bytes.push_back(to_byte(c.alpha));
        }
    return result;
}

FILE *create(const std::filesystem::path &path) {
    std::filesystem::create_directories(path.parent_path());
    FILE *file = fopen(path.c_str(), "wb");
    if (!file) {
        perror(path.c_str());
        exit(EXIT_FAILURE);
    }
    return file;
}

void write_png(const std::filesystem::path &path, picture drawn) {
    FILE *file = create(path);
    png_structp writer = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(writer);
    png_init_io(writer, file);
    png_set_compression_level(writer, 9);
    png_set_IHDR(writer, info, static_cast<png_uint_32>(drawn.width),
                 static_cast<png_uint_32>(drawn.height), 8,
                 drawn.channels == 4 ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(writer, info);
    for (int y = 0; y < drawn.height; y++)
        png_write_row(writer, drawn.row(y));
    png_write_end(writer, nullptr);
    png_destroy_write_struct(&writer, &info);
    fclose(file);
}

void write_jpeg(const std::filesystem::path &path, picture drawn) {
    FILE *file = create(path);
    jpeg_compress_struct cinfo;
    jpeg_error_mgr errors;
    cinfo.err = jpeg_std_error(&errors);
    jpeg_create_compress(&cinfo);
    jpeg_stdio_dest(&cinfo, file);
    cinfo.image_width = static_cast<JDIMENSION>(drawn.width);
    cinfo.image_height = static_cast<JDIMENSION>(drawn.height);
    cinfo.input_components = 3;
    cinfo.in_color_space = JCS_RGB;
    jpeg_set_defaults(&cinfo);
    jpeg_set_quality(&cinfo, k_quality, TRUE);
    cinfo.dct_method = JDCT_ISLOW;
    cinfo.optimize_coding = TRUE;
    jpeg_start_compress(&cinfo, TRUE);
    for (int y = 0; y < drawn.height; y++) {
        JSAMPROW row = drawn.row(y);
        jpeg_write_scanlines(&cinfo, &row, 1);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    fclose(file);
}

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
    write_jpeg(folder / "photos/lake.jpg", paint(lake, 1280, 720, 3));
    write_jpeg(folder / "photos/dunes.jpg", paint(dunes, 1280, 720, 3));
    write_png(folder / "photos/night.png", paint(night, 640, 360, 3));
    write_jpeg(folder / "server/coast.jpg", paint(coast, 1280, 720, 3));
    write_jpeg(folder / "device/orbo/images/backdrop.jpg", paint(backdrop, 1280, 720, 3));
    draw_icons(folder / "device/orbo/images");
    return EXIT_SUCCESS;
}
