// SPDX-License-Identifier: MIT
// The reveal effects: in which order the pixels of a block come onto the screen.
#ifndef UX_GRAPHICS_EFFECT_H
#define UX_GRAPHICS_EFFECT_H

#include "graphics/placed_block.h"

namespace ux {

constexpr int k_first_effect = 1;
constexpr int k_last_effect = 8;

// Draws the block step by step, with pauses, until it is whole or the host stops it.
void draw_effect(const placed_block &block, int effect);

} // namespace ux

#endif
