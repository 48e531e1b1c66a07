// SPDX-License-Identifier: MIT
// One picture through the bitmap reader, as the fuzz targets for its two kinds share it.
#ifndef UX_FUZZ_PICTURE_JOB_H
#define UX_FUZZ_PICTURE_JOB_H

#include "ux_bitmap.h"

#include <cstddef>
#include <cstdint>

namespace picture_job {

// Sources of more pixels are left out: they take long and show nothing new.
constexpr uint64_t k_largest_source = 1 << 18;

// Decodes an input, a picture followed by the bytes that choose options and reading, from `address`
// once as asked for and once unscaled. Ends the program when a result is none of the documented
// ones, a byte is written outside the block, something stays open, or the scaled picture does not
// consist of the unscaled one's pixels.
void run(const char *address, const uint8_t *data, size_t bytes);

// Ends the program with a message unless `holds`.
void demand(bool holds, const char *what);

} // namespace picture_job

#endif
