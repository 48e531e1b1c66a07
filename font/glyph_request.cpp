// SPDX-License-Identifier: MIT
// The engine's messages about glyphs; see glyph_request.h.

#include "font/glyph_request.h"
#include "font/engine_font.h"

#include <cstdio>

namespace ux {
namespace {

constexpr int k_scale_bits = 11; // fractional bits of pixels per font unit
constexpr uint32_t k_matrix_bytes = 12;

enum property : uint32_t {
    k_property_render = 4331,
    k_property_matrix = 4332,
    k_property_cell_size = 4334
};

// Sends until the engine takes it.
bool send(property property, const void *record, uint32_t bytes) {
    int result = EM862X_BUSY;
    while (result == EM862X_BUSY)
        result = RUASetProperty(pRUA, gfxID, property, record, bytes);
    return result == EM862X_SUCCESS;
}

bool ask_for_cell(const glyph_request &request, glyph_cell &cell) {
    int result = EM862X_BUSY;
    while (result == EM862X_BUSY)
        result = RUAExchangeProperty(pRUA, gfxID, k_property_cell_size, &request, sizeof request,
                                     &cell, sizeof cell);
    return result == EM862X_SUCCESS;
}

glyph_request make_request(int size, const int16_t *metrics) {
    glyph_request request = {};
    request.scale = (static_cast<uint32_t>(size) << k_scale_bits) / rmfont->header[2];
    request.extent = static_cast<uint16_t>(metrics[4] + metrics[0]);
    request.bearing = metrics[0];
    request.font[0] = rmfont->header[0];
    request.font[1] = rmfont->header[1];
    return request;
}

} // namespace

uint32_t drawable_code(uint32_t character) {
    return character >= k_first_code && character <= k_last_code ? character : '?';
}

bool measure_glyph(uint32_t code, int size, long character, glyph_request &request,
                   glyph_cell &cell) {
    const int16_t *metrics = rmfont ? RMTTGetGlyphMetrics(rmfont, code) : nullptr;
    if (!metrics) {
        printf("Could not retrieve size( char_index %ld)\n", character);
        return false;
    }
    glyph_cell measured = {};
    const bool has_scale = rmfont->header[2] != 0;
    if (has_scale)
        request = make_request(size, metrics);
    if (!has_scale || !ask_for_cell(request, measured)) {
        puts("Cannot get glyph output size");
        return false;
    }
    cell = measured;
    return true;
}

bool place_outline(uint32_t code, uint32_t part) {
    const int16_t *matrix = RMTTGetScaleMatrix(rmfont, code, part);
    if (!matrix || send(k_property_matrix, matrix, k_matrix_bytes))
        return true;
    printf("Error sending command matrix (char code %ld)\n", static_cast<long>(code));
    return false;
}

bool render_outline(uint32_t code, uint32_t part, uint32_t scratch, glyph_request &request) {
    RMTTGetGlyphPointer(rmfont, code, part, &request.word_a, &request.word_b);
    request.scratch = scratch;
    if (send(k_property_render, &request, sizeof request))
        return true;
    printf("Error sending command glyph (char code %ld)\n", static_cast<long>(code));
    return false;
}

} // namespace ux
