// SPDX-License-Identifier: MIT
// Measuring and rendering of strings; see string_buffer.h.

#include "font/string_buffer.h"
#include "font/bit_expansion.h"
#include "font/engine_font.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace ux {
namespace {

constexpr uint32_t k_row_bits = 64; // rows of scratch bits are whole multiples of it

// How a glyph ended. An abandoned one leaves memory that the engine may still hold: neither the
// block nor the scratch area is given back.
enum class outcome { done, failed, abandoned };

constexpr uint64_t rounded_up(uint32_t columns) {
    return (uint64_t{columns} + k_row_bits - 1) / k_row_bits * k_row_bits;
}

// A string being rendered.
struct rendering {
    const string_style &style;
    glyph_cell extent; // of the block, pixels
    uint8_t *block;
    uint32_t scratch;
    uint32_t pen; // column of the next cell

    template <class Word>
    Word *row(uint32_t y) const {
        return reinterpret_cast<Word *>(block) + uint64_t{y} * extent.width + pen;
    }
};

outcome report_memory(const char *what, uint32_t scratch, uint32_t bytes) {
    printf("Error %s OSD buffer at 0x%08lX (0x%08lX bytes) on ux_get_string_buffer_em862x\n", what,
           static_cast<unsigned long>(scratch), static_cast<unsigned long>(bytes));
    return outcome::abandoned;
}

// Calls paint(Word{}) with the pixel's type.
template <class Paint>
void with_word(uint32_t pixel_bytes, Paint paint) {
    if (pixel_bytes == sizeof(uint32_t))
        paint(uint32_t{});
    else if (pixel_bytes == sizeof(uint16_t))
        paint(uint16_t{});
    else
        paint(uint8_t{});
}

void fill_cell(const rendering &made, const glyph_cell &cell) {
    with_word(made.style.pixel_bytes, [&]<class Word>(Word) {
        for (uint32_t y = 0; y < cell.height; y++)
            std::fill_n(made.row<Word>(y), cell.width, static_cast<Word>(made.style.bg));
    });
}

void expand_cell(const rendering &made, const glyph_cell &cell, const uint8_t *bits,
                 uint32_t row_bytes) {
    with_word(made.style.pixel_bytes, [&]<class Word>(Word) {
        for (uint32_t y = 0; y < cell.height; y++)
            expand_row(made.row<Word>(y), bits + uint64_t{y} * row_bytes, cell.width,
                       static_cast<Word>(made.style.fg), static_cast<Word>(made.style.bg));
    });
}

// Reads the scratch area back. Its mapping is given back by its end.
outcome read_back(const rendering &made, const glyph_cell &cell) {
    const auto row_bytes = static_cast<uint32_t>(rounded_up(cell.width) / k_bits_per_byte);
    const uint32_t bytes = row_bytes * cell.height;
    if (RUALock(pRUA, made.scratch, bytes) != EM862X_SUCCESS)
        return report_memory("locking", made.scratch, bytes);
    uint8_t *bits = RUAMap(pRUA, made.scratch, bytes);
    if (!bits)
        return report_memory("mapping", made.scratch, bytes);
    expand_cell(made, cell, bits, row_bytes);
    RUAUnMap(pRUA, bits + bytes, bytes);
    if (RUAUnLock(pRUA, made.scratch, bytes) != EM862X_SUCCESS)
        return report_memory("unlocking", made.scratch, bytes);
    return outcome::done;
}

// Every outline of a glyph writes the whole cell.
outcome render_outlines(const rendering &made, uint32_t code, uint32_t count,
                        const glyph_cell &cell, glyph_request &request) {
    for (uint32_t part = 0; part < count; part++) {
        if (!place_outline(code, part) || !render_outline(code, part, made.scratch, request))
            return outcome::failed;
        const outcome read = read_back(made, cell);
        if (read != outcome::done)
            return read;
    }
    return outcome::done;
}

// An engine that measures a glyph larger than before cannot be given this block.
bool fits(const rendering &made, const glyph_cell &cell) {
    if (cell.width <= made.extent.width - made.pen && cell.height <= made.extent.height)
        return true;
    puts("Cannot get glyph output size");
    return false;
}

outcome render_glyph(rendering &made, uint8_t character) {
    const uint32_t code = drawable_code(character);
    glyph_request request = {};
    glyph_cell cell = {};
    if (!measure_glyph(code, made.style.size, static_cast<long>(code), request, cell) ||
        !fits(made, cell))
        return outcome::failed;
    const uint32_t count = RMTTGetCompoundCount(rmfont, code);
    if (count == 0)
        fill_cell(made, cell);
    const outcome rendered = render_outlines(made, code, count, cell, request);
    made.pen += cell.width;
    return rendered;
}

outcome render_glyphs(rendering &made, const char *text) {
    for (; *text != '\0'; text++) {
        const outcome rendered = render_glyph(made, static_cast<uint8_t>(*text));
        if (rendered != outcome::done)
            return rendered;
    }
    return outcome::done;
}

// A zeroed block for a string; never of 0 bytes, which would be no block to every second malloc().
uint8_t *allocate_block(const glyph_cell &extent, uint32_t pixel_bytes) {
    const uint64_t pixels = uint64_t{extent.width} * extent.height;
    const uint64_t bytes = pixels * pixel_bytes;
    void *block = nullptr;
    if (pixels <= PTRDIFF_MAX / sizeof(uint32_t))
        block = malloc(static_cast<size_t>(std::max<uint64_t>(bytes, 1)));
    if (!block)
        printf("Could not allocate %d bytes for font_base \n\n", static_cast<int>(bytes));
    else
        memset(block, 0, static_cast<size_t>(bytes));
    return static_cast<uint8_t *>(block);
}

// Room for every cell of a string; 0 on failure.
uint32_t allocate_scratch(const glyph_cell &extent) {
    const uint64_t row = rounded_up(extent.width);
    const bool addressable = extent.height == 0 || row <= UINT32_MAX / extent.height;
    const auto bytes = static_cast<uint32_t>(row * extent.height);
    const uint32_t scratch = addressable ? RUAMalloc(pRUA, 0, k_uncached_dram, bytes) : 0;
    if (scratch == 0)
        printf("scratch could not allocate 0x%08lX bytes for uncached DRAM",
               static_cast<unsigned long>(row * extent.height));
    return scratch;
}

} // namespace

bool measure_character(uint32_t character, int size, glyph_cell &cell) {
    glyph_request request = {};
    return measure_glyph(drawable_code(character), size, static_cast<int32_t>(character), request,
                         cell);
}

bool measure_text(const char *text, int size, glyph_cell &extent) {
    glyph_cell whole = {};
    for (; *text != '\0'; text++) {
        glyph_cell cell = {};
        if (!measure_character(static_cast<uint8_t>(*text), size, cell))
            return false;
        whole.width += cell.width;
        whole.height = std::max(whole.height, cell.height);
    }
    extent = whole;
    return true;
}

void *render_text(const char *text, const string_style &style, glyph_cell &extent) {
    rendering made = {style, {}, nullptr, 0, 0};
    if (!measure_text(text, style.size, made.extent)) {
        puts("ux_get_string_size_em862x FAIL\n");
        return nullptr;
    }
    made.block = allocate_block(made.extent, style.pixel_bytes);
    if (!made.block)
        return nullptr;
    made.scratch = allocate_scratch(made.extent);
    const outcome rendered = made.scratch != 0 ? render_glyphs(made, text) : outcome::failed;
    if (rendered == outcome::abandoned)
        return nullptr; // NOLINT(clang-analyzer-unix.Malloc): left behind on purpose
    if (made.scratch != 0)
        RUAFree(pRUA, made.scratch);
    if (rendered == outcome::failed) {
        free(made.block);
        return nullptr;
    }
    extent = made.extent;
    return made.block;
}

} // namespace ux
