// SPDX-License-Identifier: MIT
// PNG pictures of all kinds, whole and damaged, through the bitmap reader.

#include "fuzz/picture_job.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t bytes) {
    picture_job::run("http://fuzz/picture.png", data, bytes);
    return 0;
}
