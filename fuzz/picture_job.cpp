// SPDX-License-Identifier: MIT
// The reader over a picture in memory: the program stands in for the fetcher, everything else is
// the platform's own. See picture_job.h.

#include "fuzz/picture_job.h"

#include "platform/em862x.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <unistd.h>
#include <vector>

namespace picture_job {
namespace {

constexpr size_t k_guard = 64;
constexpr uint8_t k_guard_byte = 0xA5;
constexpr size_t k_pixel_bytes = 4;
constexpr int k_largest_side = 48; // of a scaled picture

// What "the network" brings, and how.
struct source {
    const uint8_t *bytes = nullptr;
    size_t count = 0;
    size_t position = 0;
    size_t piece = 1; // bytes at once
    int open = 0;     // sources that are not closed
};

source s_source;

// Pixels between two guards.
class block {
  public:
    explicit block(size_t pixels) : m_bytes(pixels * k_pixel_bytes + 2 * k_guard) {
        std::fill(m_bytes.begin(), m_bytes.end(), k_guard_byte);
        std::fill(m_bytes.begin() + k_guard, m_bytes.end() - k_guard, uint8_t{0});
    }

    uint8_t *data() { return m_bytes.data() + k_guard; }

    uint32_t operator[](size_t pixel) const {
        uint32_t value = 0;
        memcpy(&value, m_bytes.data() + k_guard + pixel * k_pixel_bytes, sizeof value);
        return value;
    }

    void check() const {
        const auto is_guard = [](uint8_t byte) { return byte == k_guard_byte; };
        demand(std::all_of(m_bytes.begin(), m_bytes.begin() + k_guard, is_guard) &&
                   std::all_of(m_bytes.end() - k_guard, m_bytes.end(), is_guard),
               "bytes were written outside the block");
    }

  private:
    std::vector<uint8_t> m_bytes;
};

struct size {
    uint32_t width = 0, height = 0;
};

size native_size(const RMBitmapFile &file) {
    if (file.kind == UX_BITMAP_PNG)
        return {file.png.width, file.png.height};
    return {file.jpeg.src_width, file.jpeg.src_height};
}

// Of 256 words, the ones behind which must stay.
void read_palette(RMBitmapFile &file) {
    constexpr size_t entries = 256;
    block palette(entries);
    const int result = RMBitmapGetPalette(reinterpret_cast<uint32_t *>(palette.data()), &file);
    demand(result == UX_BITMAP_SUCCESS || result == UX_BITMAP_FAILURE, "palette: unknown result");
    demand(file.kind == UX_BITMAP_PNG || result == UX_BITMAP_FAILURE, "a JPEG has no palette");
    palette.check();
}

struct decoded {
    bool is_whole = false; // the reader told success
    size native;
    std::vector<block> pixels; // one, or none when the picture was not opened or is too large
};

// Opens, decodes and closes.
decoded decode(const char *address, const RMBitmapOptions &options) {
    decoded result;
    s_source.position = 0;
    RMBitmapFile file;
    const int opened = RMOpenBitmapFile(address, &file, &options);
    demand(opened == UX_BITMAP_SUCCESS || opened == UX_BITMAP_FAILURE, "open: unknown result");
    if (opened == UX_BITMAP_SUCCESS) {
        result.native = native_size(file);
        demand(result.native.width > 0 && result.native.height > 0, "opened without a size");
        read_palette(file);
        if (uint64_t{result.native.width} * result.native.height <= k_largest_source) {
            const bool is_native = options.width == 0 || options.height == 0;
            const size out = is_native ? result.native : size{options.width, options.height};
            result.pixels.emplace_back(size_t{out.width} * out.height);
            const int read = RMBitmapToRaw(result.pixels[0].data(), &file);
            demand(read == UX_BITMAP_SUCCESS || read == UX_BITMAP_FAILURE, "read: unknown result");
            result.is_whole = read == UX_BITMAP_SUCCESS;
            result.pixels[0].check();
        }
        demand(RMCloseBitmapFile(&file) == UX_BITMAP_SUCCESS, "close failed");
    }
    demand(s_source.open == 0, "the file stayed open");
    return result;
}

// Output row k shows source row floor(k * source / output), columns alike.
void compare(const decoded &scaled, const decoded &native, const RMBitmapOptions &options) {
    for (uint64_t y = 0; y < options.height; y++)
        for (uint64_t x = 0; x < options.width; x++) {
            const uint64_t row = y * native.native.height / options.height;
            const uint64_t column = x * native.native.width / options.width;
            demand(scaled.pixels[0][y * options.width + x] ==
                       native.pixels[0][row * native.native.width + column],
                   "the scaled picture is another one");
        }
}

} // namespace

// libpng and libjpeg complain on standard error, which is closed to them.
void demand(bool holds, const char *what) {
    if (holds)
        return;
    dprintf(STDERR_FILENO, "picture: %s\n", what);
    abort();
}

void run(const char *address, const uint8_t *data, size_t bytes) {
    static FILE *const s_nowhere = stderr = fopen("/dev/null", "w");
    demand(s_nowhere != nullptr, "no /dev/null");
    FuzzedDataProvider provider(data, bytes);
    RMBitmapOptions options = {};
    options.alpha = provider.ConsumeIntegral<uint8_t>();
    options.width = provider.ConsumeIntegralInRange<uint32_t>(0, k_largest_side);
    options.height = provider.ConsumeIntegralInRange<uint32_t>(0, k_largest_side);
    const size_t piece = provider.ConsumeIntegralInRange<size_t>(1, 256);
    const auto picture = provider.ConsumeRemainingBytes<uint8_t>();
    s_source = {picture.data(), picture.size(), 0, piece, 0};

    const decoded asked = decode(address, options);
    const decoded native = decode(address, {options.alpha, 0, 0});
    demand(asked.pixels.size() == native.pixels.size(), "opened once and not again");
    if (asked.is_whole && native.is_whole && options.width > 0 && options.height > 0)
        compare(asked, native, options);
}

} // namespace picture_job

using picture_job::s_source;

void *fetchOpen(const char *, int) {
    s_source.open++;
    return &s_source;
}

void fetchClose(void *) {
    s_source.open--;
}

static int read_source(void *, void *data, uint32_t bytes, uint32_t *read_bytes) {
    const size_t count =
        std::min({size_t{bytes}, s_source.piece, s_source.count - s_source.position});
    if (count > 0)
        memcpy(data, s_source.bytes + s_source.position, count);
    s_source.position += count;
    *read_bytes = static_cast<uint32_t>(count);
    return EM862X_SUCCESS;
}

static int close_source(void *cookie) {
    fetchClose(cookie);
    return EM862X_SUCCESS;
}

const rm_file_ops httpFileOps = {read_source, close_source};
