/* SPDX-License-Identifier: MIT */
/*
 * The glyph scales in use lately, so that a page which mixes sizes keeps the glyphs of each.
 */
#ifndef UX_PLATFORM_HOST_FSS_SCALES_H
#define UX_PLATFORM_HOST_FSS_SCALES_H

#include <cstdint>

namespace em862x {

/* A 2x2 matrix in 16.16 fixed point from the em square to pixels. */
struct glyph_scale {
    std::int32_t xx; /* horizontal size */
    std::int32_t xy; /* shear: x per y */
    std::int32_t yx; /* shear: y per x */
    std::int32_t yy; /* vertical size */

    bool operator==(const glyph_scale &) const = default;
};

/* The largest size in pixels, and the largest shear. */
constexpr std::int32_t k_size_max = 1024;

/* True when both sizes are above 0 and nothing is larger than k_size_max pixels. */
bool is_usable(const glyph_scale &scale) noexcept;

/* How many scales are remembered; the one unused longest makes room. */
constexpr int k_scale_slots = 16;

class scale_memory {
  public:
    /* The slot of a scale: its own, or one taken over, which `taken_over` then reports. */
    int find(const glyph_scale &scale, bool &taken_over) noexcept;

  private:
    struct slot {
        glyph_scale scale{}; /* xx 0: never used */
        std::uint64_t used = 0;
    };

    slot slots_[k_scale_slots];
    std::uint64_t clock_ = 0; /* counts calls; orders the uses */
};

} // namespace em862x

#endif
