/* SPDX-License-Identifier: MIT */
/*
 * Opening and closing the graphics engine, and its glyph commands.
 */
#include "platform/host/gfx_engine.h"

#include <utility>

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
    matrix_.reset();
    return EM862X_SUCCESS;
}

int gfx_engine::admit() noexcept {
    if (!is_open_)
        return EM862X_FAILURE;
    if (busy_answers_ == 0)
        return EM862X_SUCCESS;
    busy_answers_--;
    return EM862X_BUSY;
}

int gfx_engine::measure(const glyph_request &request, glyph_cell &cell) noexcept {
    if (const int refusal = admit(); refusal != EM862X_SUCCESS)
        return refusal;
    const std::optional<glyph_cell> measured = cell_of(request);
    if (!measured)
        return EM862X_FAILURE;
    cell = *measured;
    return EM862X_SUCCESS;
}

int gfx_engine::set_matrix(const outline_matrix &matrix) noexcept {
    const int answer = admit();
    if (answer == EM862X_SUCCESS)
        matrix_ = matrix;
    return answer;
}

int gfx_engine::render(const glyph_request &request, scaled_face *face, dram &memory) noexcept {
    if (const int refusal = admit(); refusal != EM862X_SUCCESS)
        return refusal;
    const std::optional<outline_matrix> matrix = std::exchange(matrix_, std::nullopt);
    const std::optional<glyph_cell> cell = cell_of(request);
    if (!face || !cell)
        return EM862X_FAILURE;
    std::byte *bits = memory.resolve(request.scratch, pitch_of(*cell) * cell->height);
    return bits && render_glyph(*face, request, matrix, bits) ? EM862X_SUCCESS : EM862X_FAILURE;
}

} // namespace em862x
