// SPDX-License-Identifier: MIT
// Writes the seeds of the picture targets: tiny pictures of every kind, each followed by the four
// bytes that a target reads from an input's end.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <jpeglib.h>
#include <png.h>

namespace {

constexpr uint32_t k_width = 9;
constexpr uint32_t k_height = 7;

using bytes = std::vector<uint8_t>;

// Size of pieces, height, width (0 = native) and alpha: read last to first.
struct choice {
    uint8_t piece, height, width, alpha;
};
constexpr choice k_native = {100, 0, 0, 255};
constexpr choice k_smaller = {1, 3, 4, 128};
constexpr choice k_larger = {7, 20, 30, 0};

void write(const std::filesystem::path &path, const bytes &picture, const choice &chosen) {
    FILE *file = fopen(path.c_str(), "wb");
    if (!file) {
        perror(path.c_str());
        exit(EXIT_FAILURE);
    }
    fwrite(picture.data(), 1, picture.size(), file);
    for (uint8_t byte : {chosen.piece, chosen.height, chosen.width, chosen.alpha})
        fputc(byte, file);
    fclose(file);
}

// Numbers without a pattern, the same in every run.
bytes sample(size_t count) {
    bytes result(count);
    uint32_t n = 1;
    for (uint8_t &byte : result) {
        n = n * 1664525 + 1013904223;
        byte = static_cast<uint8_t>(n >> 24);
    }
    return result;
}

struct png_kind {
    const char *name;
    int color_type, depth;
    bool interlaced, has_transparency;
    choice chosen;
};

constexpr png_kind k_pngs[] = {
    {"rgb", PNG_COLOR_TYPE_RGB, 8, false, false, k_native},
    {"rgb_scaled", PNG_COLOR_TYPE_RGB, 8, false, false, k_smaller},
    {"rgb_interlaced", PNG_COLOR_TYPE_RGB, 8, true, false, k_native},
    {"rgb_interlaced_scaled", PNG_COLOR_TYPE_RGB, 8, true, false, k_larger},
    {"rgb_16", PNG_COLOR_TYPE_RGB, 16, false, false, k_larger},
    {"rgb_transparent", PNG_COLOR_TYPE_RGB, 8, false, true, k_native},
    {"rgba", PNG_COLOR_TYPE_RGB_ALPHA, 8, false, false, k_smaller},
    {"rgba_16", PNG_COLOR_TYPE_RGB_ALPHA, 16, true, false, k_native},
    {"grey_1", PNG_COLOR_TYPE_GRAY, 1, false, false, k_native},
    {"grey_2_interlaced", PNG_COLOR_TYPE_GRAY, 2, true, false, k_smaller},
    {"grey_4_transparent", PNG_COLOR_TYPE_GRAY, 4, false, true, k_native},
    {"grey_8", PNG_COLOR_TYPE_GRAY, 8, false, false, k_larger},
    {"grey_16", PNG_COLOR_TYPE_GRAY, 16, false, true, k_native},
    {"grey_alpha", PNG_COLOR_TYPE_GRAY_ALPHA, 8, true, false, k_larger},
    {"grey_alpha_16", PNG_COLOR_TYPE_GRAY_ALPHA, 16, false, false, k_native},
    {"palette_1", PNG_COLOR_TYPE_PALETTE, 1, false, false, k_native},
    {"palette_4_transparent", PNG_COLOR_TYPE_PALETTE, 4, false, true, k_smaller},
    {"palette_8_interlaced", PNG_COLOR_TYPE_PALETTE, 8, true, true, k_native},
};

void append(png_structp writer, png_bytep data, size_t count) {
    auto *result = static_cast<bytes *>(png_get_io_ptr(writer));
    result->insert(result->end(), data, data + count);
}

bytes make_png(const png_kind &kind) {
    bytes result;
    png_structp writer = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(writer);
    png_set_write_fn(writer, &result, append, nullptr);
    png_set_IHDR(writer, info, k_width, k_height, kind.depth, kind.color_type,
                 kind.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    std::vector<png_color> palette(size_t{1} << kind.depth % 16);
    for (size_t i = 0; i < palette.size(); i++)
        palette[i] = {static_cast<png_byte>(i * 13), static_cast<png_byte>(255 - i), 7};
    const bool has_palette = kind.color_type == PNG_COLOR_TYPE_PALETTE;
    if (has_palette)
        png_set_PLTE(writer, info, palette.data(), static_cast<int>(palette.size()));
    const bytes alphas = {0, 128, 255};
    const png_color_16 color = {0, 1, 1, 1, 1};
    if (kind.has_transparency)
        png_set_tRNS(writer, info, has_palette ? alphas.data() : nullptr, has_palette ? 2 : 0,
                     has_palette ? nullptr : &color);
    png_write_info(writer, info);
    const size_t row_bytes = png_get_rowbytes(writer, info);
    bytes picture = sample(row_bytes * k_height);
    std::vector<png_bytep> rows;
    for (uint32_t y = 0; y < k_height; y++)
        rows.push_back(picture.data() + y * row_bytes);
    png_write_image(writer, rows.data());
    png_write_end(writer, nullptr);
    png_destroy_write_struct(&writer, &info);
    return result;
}

struct jpeg_kind {
    const char *name;
    int components; // 1 grey, 3 RGB, 4 CMYK
    bool progressive;
    int sampling; // of the first component, across and down
    unsigned restart;
    choice chosen;
};

constexpr jpeg_kind k_jpegs[] = {
    {"rgb_420", 3, false, 2, 0, k_native},
    {"rgb_444", 3, false, 1, 0, k_smaller},
    {"rgb_scaled_up", 3, false, 2, 0, k_larger},
    {"rgb_restarts", 3, false, 1, 1, k_native},
    {"progressive", 3, true, 2, 0, k_native},
    {"progressive_scaled", 3, true, 1, 0, k_smaller},
    {"grey", 1, false, 1, 0, k_native},
    {"grey_scaled", 1, false, 1, 0, k_larger},
    {"grey_progressive", 1, true, 1, 0, k_native},
    {"cmyk", 4, false, 1, 0, k_native},
};

bytes make_jpeg(const jpeg_kind &kind) {
    jpeg_compress_struct cinfo;
    jpeg_error_mgr errors;
    cinfo.err = jpeg_std_error(&errors);
    jpeg_create_compress(&cinfo);
    unsigned char *memory = nullptr;
    unsigned long count = 0;
    jpeg_mem_dest(&cinfo, &memory, &count);
    cinfo.image_width = k_width;
    cinfo.image_height = k_height;
    cinfo.input_components = kind.components;
    cinfo.in_color_space = kind.components == 1   ? JCS_GRAYSCALE
                           : kind.components == 3 ? JCS_RGB
                                                  : JCS_CMYK;
    jpeg_set_defaults(&cinfo);
    cinfo.comp_info[0].h_samp_factor = cinfo.comp_info[0].v_samp_factor = kind.sampling;
    cinfo.restart_interval = kind.restart;
    cinfo.optimize_coding = TRUE; // small tables
    if (kind.progressive)
        jpeg_simple_progression(&cinfo);
    jpeg_start_compress(&cinfo, TRUE);
    const size_t row_bytes = k_width * static_cast<size_t>(kind.components);
    bytes picture = sample(row_bytes * k_height);
    while (cinfo.next_scanline < k_height) {
        JSAMPROW row = picture.data() + cinfo.next_scanline * row_bytes;
        jpeg_write_scanlines(&cinfo, &row, 1);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    bytes result(memory, memory + count);
    free(memory);
    return result;
}

// A whole picture, its first two thirds, and one with a damaged byte in the middle.
void write_all(const std::filesystem::path &folder, const std::string &name, const bytes &picture,
               const choice &chosen, bool with_damage) {
    write(folder / name, picture, chosen);
    if (!with_damage)
        return;
    write(folder / (name + "_cut"), {picture.begin(), picture.end() - picture.size() / 3}, chosen);
    bytes damaged = picture;
    damaged[damaged.size() * 3 / 4] ^= 0x10;
    write(folder / (name + "_damaged"), damaged, chosen);
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: %s corpus-folder\n", argv[0]);
        return EXIT_FAILURE;
    }
    const std::filesystem::path pngs = std::filesystem::path(argv[1]) / "png_picture_fuzz";
    const std::filesystem::path jpegs = std::filesystem::path(argv[1]) / "jpeg_picture_fuzz";
    std::filesystem::create_directories(pngs);
    std::filesystem::create_directories(jpegs);
    for (const png_kind &kind : k_pngs)
        write_all(pngs, kind.name, make_png(kind), kind.chosen,
                  kind.color_type == PNG_COLOR_TYPE_RGB);
    for (const jpeg_kind &kind : k_jpegs)
        write_all(jpegs, kind.name, make_jpeg(kind), kind.chosen, kind.components == 3);
    write(pngs / "a_jpeg", make_jpeg(k_jpegs[0]), k_native);
    write(jpegs / "a_png", make_png(k_pngs[0]), k_native);
    return EXIT_SUCCESS;
}
