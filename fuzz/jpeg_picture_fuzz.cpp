// SPDX-License-Identifier: MIT
// JPEG pictures of all kinds, whole and damaged, through the bitmap reader.

#include "fuzz/picture_job.h"

namespace {

// Whether a frame header could claim more pixels than are worth decoding. A progressive picture is
// decoded as a whole when it is opened, so that it must be found before.
bool claims_many_pixels(const uint8_t *data, size_t bytes) {
    constexpr size_t frame_header = 9; // marker, length, precision, height, width
    for (size_t i = 0; i + frame_header <= bytes; i++) {
        if (data[i] != 0xFF || data[i + 1] < 0xC0 || data[i + 1] > 0xCF)
            continue;
        const uint64_t height = data[i + 5] << 8 | data[i + 6];
        const uint64_t width = data[i + 7] << 8 | data[i + 8];
        if (width * height > picture_job::k_largest_source)
            return true;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t bytes) {
    if (!claims_many_pixels(data, bytes))
        picture_job::run("http://fuzz/picture.jpg", data, bytes);
    return 0;
}
