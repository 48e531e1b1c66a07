/* SPDX-License-Identifier: MIT */
/*
 * The one run-time instance of this process: its memory, engine and open fonts.
 */
#ifndef UX_PLATFORM_HOST_RUA_INSTANCE_H
#define UX_PLATFORM_HOST_RUA_INSTANCE_H

#include <map>
#include <memory>
#include <vector>

#include "platform/host/dram.h"
#include "platform/host/dram_access.h"
#include "platform/host/export.h"
#include "platform/host/font_file.h"
#include "platform/host/font_glyph.h"
#include "platform/host/gfx_engine.h"

namespace em862x {

/* An open font: the public header values first, then what they were read from. */
struct open_font : rmtt_font {
    rmtt_mapping mapping{};     /* the codes it was opened for */
    std::vector<FT_Byte> bytes; /* the file; outlives the face */
    face_handle face;
    scaled_face scaled;    /* of that face */
    std::uint32_t key = 0; /* by which glyph commands name it; never used twice */
    std::map<std::uint32_t, font_glyph>
        glyphs; /* those asked for, by code; stay while it is open */
};

} // namespace em862x

/* Members are released bottom-up: fonts before the library that opened them. */
struct rua_instance {
    em862x::dram memory;
    em862x::dram_access access{memory};
    em862x::gfx_engine engine;
    em862x::library_handle freetype; /* made with the first font */
    std::vector<std::unique_ptr<em862x::open_font>> fonts;
    std::uint32_t fonts_opened = 0; /* the last font's key */
};

namespace em862x {

/* True for the instance that RUACreateInstance gave, false for null and anything else. */
bool is_instance(const rua_instance *instance) noexcept;

/* The instance that is there; null before the first RUACreateInstance. */
rua_instance *present_instance() noexcept;

/* Drops the instance with everything in it, as if the process had just started. For tests. */
void rua_reset() noexcept;

} // namespace em862x

#endif
