// SPDX-License-Identifier: MIT
// Pictures in memory and as PNG files.
#ifndef UX_TESTS_GOLDEN_PNG_FILE_H
#define UX_TESTS_GOLDEN_PNG_FILE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace golden {

struct picture {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels; // 0xAARRGGBB, rows packed

    bool operator==(const picture &) const = default;
};

// Nothing when the file is missing or no PNG file.
std::optional<picture> read_png(const std::string &path);

// Whether all of it was written.
bool write_png(const std::string &path, const picture &picture);

} // namespace golden

#endif
