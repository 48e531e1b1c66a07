// SPDX-License-Identifier: MIT
// The renderer's state: one engine and one font per process, opened and closed by
// uxFont_em862x.cpp.
#ifndef UX_FONT_ENGINE_FONT_H
#define UX_FONT_ENGINE_FONT_H

#include "platform/em862x.h"

namespace ux {

// How the engine is opened, as it is sent.
struct engine_profile {
    uint32_t request;      // always 10
    uint32_t flag;         // always 1
    uint32_t area_address; // DRAM area A, 0 = none
    uint32_t area_bytes;
    uint32_t second_address; // DRAM area B, 0 = none
    uint32_t second_bytes;
};

extern rua_instance *pRUA;
extern rmtt_font *rmfont; // null: no font is open
extern uint32_t gfxID;    // module of the opened engine: index << 8 | 0x20
extern engine_profile profile;

// The memory kind of everything that the engine shares with the CPU.
constexpr uint32_t k_uncached_dram = 57;

// The characters that the font is opened for.
constexpr uint32_t k_first_code = 32;
constexpr uint32_t k_last_code = 126;

} // namespace ux

#endif
