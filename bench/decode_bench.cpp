// SPDX-License-Identifier: MIT
// Decoding pictures of 1920x1080, into the caller's memory: JPEG beside TurboJPEG, PNG beside bare
// libpng rows. All contenders read the same files and give the same bytes.

#include "bench/bench_screen.h"

#include <ux_bitmap.h>

#include <turbojpeg.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int k_picture_width = 1920;
constexpr int k_picture_height = 1080;
constexpr int k_quality = 90;
constexpr size_t k_row_bytes = size_t{k_picture_width} * 4;

[[noreturn]] void give_up(const char *what) {
    fprintf(stderr, "ux-bench: %s\n", what);
    exit(1);
}

// Soft hills under grain: neither flat nor noise, as a photograph.
std::vector<uint8_t> photograph() {
    std::vector<uint8_t> pixels(k_row_bytes * k_picture_height);
    uint32_t grain = 1;
    for (int y = 0; y < k_picture_height; y++)
        for (int x = 0; x < k_picture_width; x++) {
            grain = grain * 1664525 + 1013904223;
            const double hills = std::sin(x / 97.0) * std::cos(y / 61.0) * 60;
            const double value = 128 + hills + (grain >> 28);
            uint8_t *pixel =
                &pixels[static_cast<size_t>(y) * k_row_bytes + static_cast<size_t>(x) * 4];
            pixel[0] = static_cast<uint8_t>(value);
            pixel[1] = static_cast<uint8_t>(value * 0.8);
            pixel[2] = static_cast<uint8_t>(y * 255 / k_picture_height);
            pixel[3] = 0xFF;
        }
    return pixels;
}

// A file that is gone when the program ends.
class picture_file {
  public:
    explicit picture_file(const char *suffix) {
        m_path = "/tmp/ux-bench-XXXXXX" + std::string(suffix);
        const int file = mkstemps(m_path.data(), static_cast<int>(strlen(suffix)));
        if (file < 0)
            give_up("no room for a picture");
        close(file);
    }
    ~picture_file() { unlink(m_path.c_str()); }
    picture_file(const picture_file &) = delete;
    picture_file &operator=(const picture_file &) = delete;

    const char *path() const { return m_path.c_str(); }

  private:
    std::string m_path;
};

const char *jpeg_path() {
    static const picture_file file(".jpg");
    static const bool written = [] {
        const std::vector<uint8_t> pixels = photograph();
        unsigned char *data = nullptr;
        unsigned long size = 0;
        const tjhandle encoder = tjInitCompress();
        if (tjCompress2(encoder, pixels.data(), k_picture_width, 0, k_picture_height, TJPF_BGRX,
                        &data, &size, TJSAMP_420, k_quality, 0) != 0)
            give_up(tjGetErrorStr2(encoder));
        FILE *out = fopen(file.path(), "wb");
        const bool complete = out && fwrite(data, 1, size, out) == size;
        if (!complete || fclose(out) != 0)
            give_up("the JPEG can not be written");
        tjFree(data);
        tjDestroy(encoder);
        return true;
    }();
    static_cast<void>(written);
    return file.path();
}

const char *png_path() {
    static const picture_file file(".png");
    static const bool written = [] {
        const std::vector<uint8_t> pixels = photograph();
        png_image image = {};
        image.version = PNG_IMAGE_VERSION;
        image.width = k_picture_width;
        image.height = k_picture_height;
        image.format = PNG_FORMAT_BGRA;
        if (!png_image_write_to_file(&image, file.path(), 0, pixels.data(), 0, nullptr))
            give_up(image.message);
        return true;
    }();
    static_cast<void>(written);
    return file.path();
}

uint8_t *output() {
    static std::vector<uint8_t> memory(k_row_bytes * k_picture_height);
    return memory.data();
}

void decode_ux(const char *path, uint32_t width, uint32_t height) {
    const RMBitmapOptions options = {255, width, height};
    RMBitmapFile bitmap;
    if (RMOpenBitmapFile(path, &bitmap, &options) != UX_BITMAP_SUCCESS ||
        RMBitmapToRaw(output(), &bitmap) != UX_BITMAP_SUCCESS)
        give_up("a picture can not be decoded");
    RMCloseBitmapFile(&bitmap);
}

std::vector<uint8_t> contents(const char *path) {
    FILE *in = fopen(path, "rb");
    if (!in)
        give_up("a picture can not be read");
    std::vector<uint8_t> bytes;
    uint8_t part[65536];
    for (size_t got = 0; (got = fread(part, 1, sizeof part, in)) > 0;)
        bytes.insert(bytes.end(), part, part + got);
    fclose(in);
    return bytes;
}

void decode_turbojpeg() {
    static const tjhandle decoder = tjInitDecompress();
    const std::vector<uint8_t> file = contents(jpeg_path());
    if (tjDecompress2(decoder, file.data(), file.size(), output(), k_picture_width, 0,
                      k_picture_height, TJPF_BGRA, TJFLAG_ACCURATEDCT) != 0)
        give_up(tjGetErrorStr2(decoder));
}

void decode_libpng() {
    FILE *in = fopen(png_path(), "rb");
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (!in || setjmp(png_jmpbuf(png)))
        give_up("libpng can not decode");
    png_init_io(png, in);
    png_read_info(png, info);
    png_set_bgr(png);
    png_set_filler(png, 255, PNG_FILLER_AFTER);
    for (int y = 0; y < k_picture_height; y++)
        png_read_row(png, output() + static_cast<size_t>(y) * k_row_bytes, nullptr);
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    fclose(in);
}

} // namespace

void register_decode() {
    contender("decode jpeg/ux", [] { decode_ux(jpeg_path(), 0, 0); });
    contender("decode jpeg/scaled to 1280x720", [] { decode_ux(jpeg_path(), k_width, k_height); });
    contender("decode jpeg/turbojpeg", [] { decode_turbojpeg(); });
    contender("decode png/ux", [] { decode_ux(png_path(), 0, 0); });
    contender("decode png/scaled to 1280x720", [] { decode_ux(png_path(), k_width, k_height); });
    contender("decode png/libpng", [] { decode_libpng(); });
}
