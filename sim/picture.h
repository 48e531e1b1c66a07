// SPDX-License-Identifier: MIT
// Pictures in memory, as PNG files, and the difference of two.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ux::sim {

struct picture {
    int width = 0;                 // pixels
    int height = 0;                // pixels
    std::vector<uint8_t> rgb = {}; // three bytes a pixel, rows packed
};

// Writes to `path`; an existing file is replaced at once or, on failure, stays. Throws failure.
void write_png(const picture &image, const std::string &path);

// Reads a file without transparency, each side at most k_largest_side. Throws failure.
picture read_png(const std::string &path);

struct difference {
    bool same_size = true;                        // otherwise the rest means nothing
    size_t pixels = 0;                            // how many differ, all of them inside the box:
    int left = 0, top = 0, right = 0, bottom = 0; // inclusive
    picture diff; // the second picture darkened, what differs in red; empty when nothing does
};

difference compare(const picture &wanted, const picture &seen);

} // namespace ux::sim
