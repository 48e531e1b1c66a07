/* SPDX-License-Identifier: MIT */
/*
 * Remembering scales.
 */
#include "platform/host/fss_scales.h"

#include <cstdlib>

namespace em862x {

namespace {

constexpr std::int32_t k_limit = k_size_max << 16;

bool is_size(std::int32_t size) noexcept {
    return size > 0 && size <= k_limit;
}
bool is_shear(std::int32_t shear) noexcept {
    return shear >= -k_limit && shear <= k_limit;
}

} // namespace

bool is_usable(const glyph_scale &scale) noexcept {
    return is_size(scale.xx) && is_size(scale.yy) && is_shear(scale.xy) && is_shear(scale.yx);
}

int scale_memory::find(const glyph_scale &scale, bool &taken_over) noexcept {
    clock_++;
    int oldest = 0;
    for (int i = 0; i < k_scale_slots; i++) {
        if (slots_[i].scale == scale) {
            slots_[i].used = clock_;
            taken_over = false;
            return i;
        }
        if (slots_[i].used < slots_[oldest].used)
            oldest = i;
    }
    slots_[oldest] = {scale, clock_};
    taken_over = true;
    return oldest;
}

} // namespace em862x
