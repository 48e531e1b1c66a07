// SPDX-License-Identifier: MIT
// The font on the chip's graphics engine: opening and closing of the engine and of the one font,
// and what callers ask of it.

#include "font/engine_font.h"
#include "font/string_buffer.h"
#include "ux.h"

#include <cstdio>
#include <cstdlib>

namespace ux {

rua_instance *pRUA;
rmtt_font *rmfont;
uint32_t gfxID;
engine_profile profile;

namespace {

constexpr const char *k_font_path = "/orbo/SDK/Vera.ttf";
constexpr uint32_t k_engine_category = 0x20;
constexpr uint32_t k_enumerator_module = 1;
constexpr uint32_t k_request_open = 10;

enum property : uint32_t {
    k_property_engine_count = 1,
    k_property_memory_needs = 4292,
    k_property_open = 4293,
    k_property_close = 4294
};

[[noreturn]] void fail(const char *message) {
    fprintf(stderr, "%s\n", message);
    exit(EXIT_FAILURE);
}

void create_instance() {
    const int result = RUACreateInstance(&pRUA, 0);
    if (result == EM862X_SUCCESS)
        return;
    fprintf(stderr, "Error creating RUA instance! %d\n", result);
    exit(EXIT_FAILURE);
}

// An area that could not be allocated shows when the engine refuses the profile.
uint32_t allocate_area(uint32_t bytes) {
    return bytes != 0 ? RUAMalloc(pRUA, 0, k_uncached_dram, bytes) : 0;
}

void fill_profile() {
    gfxID = k_engine_category;
    uint32_t sizes[2] = {};
    if (RUAExchangeProperty(pRUA, gfxID, k_property_memory_needs, &k_request_open,
                            sizeof k_request_open, sizes, sizeof sizes) != EM862X_SUCCESS)
        fail("Error getting dram size for gfx engine");
    profile.request = k_request_open;
    profile.flag = 1;
    profile.area_bytes = sizes[0];
    profile.area_address = allocate_area(sizes[0]);
    profile.second_bytes = sizes[1];
    profile.second_address = allocate_area(sizes[1]);
}

// Takes the first engine that accepts; each is asked once.
void open_engine() {
    uint32_t count = 0;
    if (RUAExchangeProperty(pRUA, k_enumerator_module, k_property_engine_count, &k_engine_category,
                            sizeof k_engine_category, &count, sizeof count) != EM862X_SUCCESS)
        fail("Error getting gfx engine count");
    for (uint32_t index = 0; index < count; index++) {
        gfxID = (index & 0xFF) << 8 | k_engine_category;
        if (RUASetProperty(pRUA, gfxID, k_property_open, &profile, sizeof profile) ==
            EM862X_SUCCESS)
            return;
    }
    fprintf(stderr, "Cannot open a gfx engine [0..%lu[\n", static_cast<unsigned long>(count));
    exit(EXIT_FAILURE);
}

void free_area(uint32_t address) {
    if (address != 0)
        RUAFree(pRUA, address);
}

// A font that is not there ends nothing and is not told to the caller.
void open_file() {
    rmtt_mapping mapping = {};
    for (uint32_t code = k_first_code; code <= k_last_code; code++)
        mapping.code[code] = code;
    mapping.last = k_last_code;
    rm_non_ascii *path = RMnonAsciiFromAscii(k_font_path);
    if (RMTTOpenFont(pRUA, &rmfont, path, &mapping) != EM862X_SUCCESS)
        printf("Error open %s\n", k_font_path);
    RMFreeNonAscii(path);
}

// A missing text is an empty one.
const char *text_or_empty(const char *text) {
    return text ? text : "";
}

bool is_pixel_width(uint32_t bytes) {
    return bytes == sizeof(uint32_t) || bytes == sizeof(uint16_t) || bytes == sizeof(uint8_t);
}

void tell(const glyph_cell &extent, uint32_t *w, uint32_t *h) {
    *w = extent.width;
    *h = extent.height;
}

} // namespace
} // namespace ux

int ux_open_font_em862x(const char *) noexcept {
    ux::create_instance();
    ux::fill_profile();
    ux::open_engine();
    ux::open_file();
    return 0;
}

// The instance stays.
int ux_close_font_em862x() noexcept {
    RMTTCloseFont(ux::pRUA, ux::rmfont);
    ux::rmfont = nullptr;
    const uint32_t none = 0;
    if (RUASetProperty(ux::pRUA, ux::gfxID, ux::k_property_close, &none, sizeof none) !=
        EM862X_SUCCESS)
        puts("Cannot close de gfx accelerator");
    ux::free_area(ux::profile.area_address);
    ux::free_area(ux::profile.second_address);
    ux::profile = {};
    return 0;
}

int ux_get_char_size_em862x(uint32_t ch, int size, uint32_t *w, uint32_t *h) noexcept {
    ux::glyph_cell cell = {};
    if (!ux::measure_character(ch, size, cell))
        return -1;
    ux::tell(cell, w, h);
    return 0;
}

int ux_get_string_size_em862x(const char *str, int size, uint32_t *w, uint32_t *h) noexcept {
    ux::glyph_cell extent = {};
    if (!ux::measure_text(ux::text_or_empty(str), size, extent))
        return -1;
    ux::tell(extent, w, h);
    return 0;
}

void *ux_get_string_buffer_em862x(const char *str, int size, uint32_t fg, uint32_t bg, uint32_t bpp,
                                  uint32_t *w, uint32_t *h) noexcept {
    if (!ux::is_pixel_width(bpp))
        return nullptr;
    ux::glyph_cell extent = {};
    void *block = ux::render_text(ux::text_or_empty(str), {size, fg, bg, bpp}, extent);
    if (block)
        ux::tell(extent, w, h);
    return block;
}
