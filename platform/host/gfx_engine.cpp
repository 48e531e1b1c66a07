/* SPDX-License-Identifier: MIT */
/*
 * Opening and closing the graphics engine.
 */
#include "platform/host/gfx_engine.h"

#include "platform/em862x.h"

namespace em862x {

namespace {

constexpr std::uint32_t k_profile_flag = 1;

/* Both areas have the reported sizes, are really allocated, and share no byte. */
bool areas_are_valid(const gfx_profile &profile, dram &memory) noexcept {
    if (profile.area_a_size != k_gfx_area_a_size || profile.area_b_size != k_gfx_area_b_size)
        return false;
    if (!memory.resolve(profile.area_a, profile.area_a_size) ||
        !memory.resolve(profile.area_b, profile.area_b_size))
        return false;
    return profile.area_a + profile.area_a_size <= profile.area_b ||
           profile.area_b + profile.area_b_size <= profile.area_a;
}

} // namespace

int gfx_engine::open(const gfx_profile &profile, dram &memory) noexcept {
    if (profile.request != k_gfx_request || profile.flag != k_profile_flag ||
        !areas_are_valid(profile, memory))
        return EM862X_FAILURE;
    if (is_open_)
        return EM862X_BUSY;
    is_open_ = true;
    return EM862X_SUCCESS;
}

int gfx_engine::close(std::uint32_t argument) noexcept {
    if (!is_open_ || argument != 0)
        return EM862X_FAILURE;
    is_open_ = false;
    return EM862X_SUCCESS;
}

} // namespace em862x
