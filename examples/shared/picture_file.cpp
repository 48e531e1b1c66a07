// SPDX-License-Identifier: MIT
// Painting and writing of pictures; see picture_file.h.
#include "picture_file.h"

#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>
#include <png.h>

namespace {

constexpr int k_quality = 80;
constexpr int k_samples = 2; // of each pixel, in either direction

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

FILE *create(const std::filesystem::path &path) {
    std::filesystem::create_directories(path.parent_path());
    FILE *file = fopen(path.c_str(), "wb");
    if (!file) {
        perror(path.c_str());
        exit(EXIT_FAILURE);
    }
    return file;
}

} // namespace

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
