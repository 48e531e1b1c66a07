// SPDX-License-Identifier: MIT
// Small pictures as bytes in memory, and the same with a size that is a lie.
#ifndef UX_TESTS_GRAPHICS_PICTURE_BYTES_H
#define UX_TESTS_GRAPHICS_PICTURE_BYTES_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <jpeglib.h>
#include <png.h>
#include <zlib.h>

namespace picture_bytes {

inline void put_big_endian(std::string &bytes, size_t at, uint32_t value, int count) {
    for (int i = 0; i < count; i++)
        bytes[at + static_cast<size_t>(i)] = static_cast<char>(value >> 8 * (count - 1 - i));
}

// Rows of three bytes a pixel without a pattern, the same at every call.
inline std::vector<uint8_t> sample_rgb(uint32_t width, uint32_t height) {
    std::vector<uint8_t> result(size_t{width} * height * 3);
    uint32_t n = 7;
    for (uint8_t &byte : result) {
        n = n * 1664525 + 1013904223;
        byte = static_cast<uint8_t>(n >> 24);
    }
    return result;
}

inline std::string png(uint32_t width, uint32_t height, bool interlaced = false) {
    std::string result;
    png_structp writer = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(writer);
    png_set_write_fn(
        writer, &result,
        [](png_structp w, png_bytep data, size_t count) {
            static_cast<std::string *>(png_get_io_ptr(w))
                ->append(reinterpret_cast<const char *>(data), count);
        },
        nullptr);
    png_set_IHDR(writer, info, width, height, 8, PNG_COLOR_TYPE_RGB,
                 interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(writer, info);
    std::vector<uint8_t> pixels = sample_rgb(width, height);
    std::vector<png_bytep> rows;
    for (uint32_t y = 0; y < height; y++)
        rows.push_back(pixels.data() + size_t{y} * width * 3);
    png_write_image(writer, rows.data());
    png_write_end(writer, nullptr);
    png_destroy_write_struct(&writer, &info);
    return result;
}

// A PNG with `count` compressed texts of `length` letters each.
inline std::string png_with_texts(uint32_t width, uint32_t height, int count, size_t length) {
    const std::string picture = png(width, height);
    const std::string letters(length, 'x');
    uLongf packed_bytes = compressBound(letters.size());
    std::string packed(packed_bytes, '\0');
    compress(reinterpret_cast<Bytef *>(packed.data()), &packed_bytes,
             reinterpret_cast<const Bytef *>(letters.data()), letters.size());
    std::string chunk = std::string("zTXtk\0\0", 7) + packed.substr(0, packed_bytes);
    const auto sum = static_cast<uint32_t>(
        crc32(0, reinterpret_cast<const Bytef *>(chunk.data()), static_cast<uInt>(chunk.size())));
    const std::string ends(4, '\0');
    chunk = ends + chunk + ends;
    put_big_endian(chunk, 0, static_cast<uint32_t>(chunk.size() - 12), 4);
    put_big_endian(chunk, chunk.size() - 4, sum, 4);
    constexpr size_t after_header = 33;
    std::string texts;
    for (int i = 0; i < count; i++)
        texts += chunk;
    return picture.substr(0, after_header) + texts + picture.substr(after_header);
}

// The JPEG with its last scan once more, `times` times.
inline std::string with_scan_repeated(const std::string &bytes, int times) {
    const size_t scan = bytes.rfind("\xFF\xDA");
    const size_t end = bytes.rfind("\xFF\xD9");
    std::string result = bytes.substr(0, end);
    for (int i = 0; i < times; i++)
        result += bytes.substr(scan, end - scan);
    return result + bytes.substr(end);
}

inline std::string jpeg(uint32_t width, uint32_t height, bool progressive = false) {
    jpeg_compress_struct cinfo;
    jpeg_error_mgr errors;
    cinfo.err = jpeg_std_error(&errors);
    jpeg_create_compress(&cinfo);
    unsigned char *memory = nullptr;
    unsigned long count = 0;
    jpeg_mem_dest(&cinfo, &memory, &count);
    cinfo.image_width = width;
    cinfo.image_height = height;
    cinfo.input_components = 3;
    cinfo.in_color_space = JCS_RGB;
    jpeg_set_defaults(&cinfo);
    if (progressive)
        jpeg_simple_progression(&cinfo);
    jpeg_start_compress(&cinfo, TRUE);
    std::vector<uint8_t> pixels = sample_rgb(width, height);
    while (cinfo.next_scanline < height) {
        JSAMPROW row = pixels.data() + size_t{cinfo.next_scanline} * width * 3;
        jpeg_write_scanlines(&cinfo, &row, 1);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    const std::string result(reinterpret_cast<const char *>(memory), count);
    free(memory);
    return result;
}

// The PNG with another size in its header, whose checksum is right.
inline std::string with_png_size(std::string bytes, uint32_t width, uint32_t height) {
    constexpr size_t k_header = 12; // "IHDR"
    constexpr size_t k_header_bytes = 17;
    put_big_endian(bytes, k_header + 4, width, 4);
    put_big_endian(bytes, k_header + 8, height, 4);
    const auto *header = reinterpret_cast<const Bytef *>(bytes.data() + k_header);
    put_big_endian(bytes, k_header + k_header_bytes,
                   static_cast<uint32_t>(crc32(0, header, k_header_bytes)), 4);
    return bytes;
}

// Where the JPEG's frame header tells the height, then the width; npos when there is none.
inline size_t jpeg_size_at(const std::string &bytes) {
    for (size_t i = 0; i + 9 <= bytes.size(); i++)
        if (bytes[i] == '\xFF' && (bytes[i + 1] == '\xC0' || bytes[i + 1] == '\xC2'))
            return i + 5;
    return std::string::npos;
}

// The JPEG with another size in its frame header.
inline std::string with_jpeg_size(std::string bytes, uint32_t width, uint32_t height) {
    const size_t at = jpeg_size_at(bytes);
    put_big_endian(bytes, at, height, 2);
    put_big_endian(bytes, at + 2, width, 2);
    return bytes;
}

// Whether a JPEG's frame header claims more than 16 million pixels.
inline bool claims_many_pixels(const std::string &bytes) {
    const size_t at = jpeg_size_at(bytes);
    if (at == std::string::npos)
        return false;
    const auto side = [&](size_t i) {
        return static_cast<uint8_t>(bytes[i]) << 8 | static_cast<uint8_t>(bytes[i + 1]);
    };
    return int64_t{side(at)} * side(at + 2) > 1 << 24;
}

} // namespace picture_bytes

#endif
