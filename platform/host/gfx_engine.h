/* SPDX-License-Identifier: MIT */
/*
 * The graphics engine: which properties it knows, whether it is open, and how it draws glyphs.
 */
#ifndef UX_PLATFORM_HOST_GFX_ENGINE_H
#define UX_PLATFORM_HOST_GFX_ENGINE_H

#include <cstdint>

#include "platform/host/dram.h"
#include "platform/host/font_glyph.h"
#include "platform/host/glyph_command.h"
#include "platform/host/glyph_render.h"

namespace em862x {

/* Category of the graphics engines; the module of engine i is (i << 8) | category. */
constexpr std::uint32_t k_gfx_category = 0x20;
constexpr std::uint32_t k_gfx_count = 1;

/* The request code of the memory query and of the open profile. */
constexpr std::uint32_t k_gfx_request = 10;

/* Working memory that open asks for: outline segments of one glyph, and the span table. */
constexpr std::uint32_t k_gfx_area_a_size = 64u << 10;
constexpr std::uint32_t k_gfx_area_b_size = 16u << 10;

/* The open profile as it crosses the interface. */
struct gfx_profile {
    std::uint32_t request;
    std::uint32_t flag;
    std::uint32_t area_a;
    std::uint32_t area_a_size;
    std::uint32_t area_b;
    std::uint32_t area_b_size;
};
static_assert(sizeof(gfx_profile) == 24);

/* Results are the EM862X_ codes. */
class gfx_engine {
  public:
    /* Opens with working memory in `memory`: failure when malformed, busy when already open. */
    int open(const gfx_profile &profile, dram &memory) noexcept;

    /* Closes; failure when it is not open or the argument is not 0. */
    int close(std::uint32_t argument) noexcept;

    /* The glyph commands: failure while it is not open, busy as told by keep_busy(). */
    int measure(const glyph_request &request, glyph_cell &cell) noexcept;
    int set_matrix(const outline_matrix &matrix) noexcept;

    /* Renders an outline of a face into memory; failure without one. The matrix sent before, if
     * any, is used up. */
    int render(const glyph_request &request, scaled_face *face, dram &memory) noexcept;

    /* The next `count` glyph commands are answered with busy. */
    void keep_busy(unsigned count) noexcept { busy_answers_ = count; }

  private:
    /* Success when a glyph command may go on. */
    int admit() noexcept;

    bool is_open_ = false;
    unsigned busy_answers_ = 0;
    std::optional<outline_matrix> matrix_; /* for the next outline */
};

} // namespace em862x

#endif
