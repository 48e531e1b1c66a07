// SPDX-License-Identifier: MIT
// Picture files for tests of the bitmap reader, written by libpng and libjpeg into a folder of the
// test's own.
#ifndef UX_TESTS_GRAPHICS_PICTURE_FILES_H
#define UX_TESTS_GRAPHICS_PICTURE_FILES_H

#include "tests/support/screen_test.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <jpeglib.h>
#include <png.h>

// What a PNG is to hold. Rows are given as libpng takes them.
struct png_content {
    uint32_t width = 1;
    uint32_t height = 1;
    int depth = 8;
    int color_type = PNG_COLOR_TYPE_RGB;
    int interlace = PNG_INTERLACE_NONE;
    std::vector<png_color> palette = {};
    std::vector<uint8_t> transparent_indexes = {};    // tRNS of a palette picture
    std::vector<png_color_16> transparent_color = {}; // tRNS of any other: one
    std::vector<uint8_t> bytes = {};                  // all rows, packed
};

// How a JPEG is coded: luma samples per chroma sample, one pass or several.
struct jpeg_coding {
    int columns = 2;
    int rows = 2;
    bool progressive = false;
    unsigned restart = 0; // groups of blocks between two restart markers; 0 = no markers
};

// A folder that goes away with the test.
class picture_folder {
  public:
    picture_folder() {
        char name[] = "/tmp/ux-pictures-XXXXXX";
        m_path = mkdtemp(name);
    }
    ~picture_folder() { std::filesystem::remove_all(m_path); }

    std::string path(const std::string &name) const { return m_path + "/" + name; }

    std::string write_png(const std::string &name, const png_content &content) const {
        FILE *file = fopen(path(name).c_str(), "wb");
        png_structp writer =
            png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(writer);
        png_init_io(writer, file);
        png_set_IHDR(writer, info, content.width, content.height, content.depth, content.color_type,
                     content.interlace, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (!content.palette.empty())
            png_set_PLTE(writer, info, content.palette.data(),
                         static_cast<int>(content.palette.size()));
        if (!content.transparent_indexes.empty())
            png_set_tRNS(writer, info, content.transparent_indexes.data(),
                         static_cast<int>(content.transparent_indexes.size()), nullptr);
        if (!content.transparent_color.empty())
            png_set_tRNS(writer, info, nullptr, 0, content.transparent_color.data());
        png_write_info(writer, info);
        const size_t row_bytes = content.bytes.size() / content.height;
        std::vector<png_bytep> rows;
        for (uint32_t y = 0; y < content.height; y++)
            rows.push_back(const_cast<png_bytep>(content.bytes.data()) + y * row_bytes);
        png_write_image(writer, rows.data());
        png_write_end(writer, nullptr);
        png_destroy_write_struct(&writer, &info);
        fclose(file);
        return path(name);
    }

    // `components` is 1 (grey), 3 (RGB) or 4 (CMYK). Without a coding it is libjpeg's usual one.
    std::string write_jpeg(const std::string &name, uint32_t width, uint32_t height, int components,
                           const std::vector<uint8_t> &bytes,
                           const std::optional<jpeg_coding> &coding = {}) const {
        FILE *file = fopen(path(name).c_str(), "wb");
        jpeg_compress_struct cinfo;
        jpeg_error_mgr errors;
        cinfo.err = jpeg_std_error(&errors);
        jpeg_create_compress(&cinfo);
        jpeg_stdio_dest(&cinfo, file);
        cinfo.image_width = width;
        cinfo.image_height = height;
        cinfo.input_components = components;
        cinfo.in_color_space = components == 1   ? JCS_GRAYSCALE
                               : components == 3 ? JCS_RGB
                                                 : JCS_CMYK;
        jpeg_set_defaults(&cinfo);
        if (coding) {
            cinfo.comp_info[0].h_samp_factor = coding->columns;
            cinfo.comp_info[0].v_samp_factor = coding->rows;
            cinfo.restart_interval = coding->restart;
        }
        if (coding && coding->progressive)
            jpeg_simple_progression(&cinfo);
        jpeg_start_compress(&cinfo, TRUE);
        while (cinfo.next_scanline < height) {
            auto *row = const_cast<JSAMPLE *>(bytes.data()) +
                        size_t{cinfo.next_scanline} * width * static_cast<size_t>(components);
            jpeg_write_scanlines(&cinfo, &row, 1);
        }
        jpeg_finish_compress(&cinfo);
        jpeg_destroy_compress(&cinfo);
        fclose(file);
        return path(name);
    }

    void write_bytes(const std::string &name, const std::vector<uint8_t> &bytes) const {
        FILE *file = fopen(path(name).c_str(), "wb");
        if (!bytes.empty())
            fwrite(bytes.data(), 1, bytes.size(), file);
        fclose(file);
    }

    std::vector<uint8_t> read_bytes(const std::string &name) const {
        std::vector<uint8_t> bytes(std::filesystem::file_size(path(name)));
        FILE *file = fopen(path(name).c_str(), "rb");
        bytes.resize(fread(bytes.data(), 1, bytes.size(), file));
        fclose(file);
        return bytes;
    }

  private:
    std::string m_path;
};

#endif
