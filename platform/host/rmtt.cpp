/* SPDX-License-Identifier: MIT */
/*
 * The RMTT calls: opening and closing TrueType fonts, and their characters. Header values 0 and 1
 * of an open font are the ascender and the descender (negative, two's complement) in font units,
 * value 2 the em size.
 */
#include "platform/host/guard.h"
#include "platform/host/rm_non_ascii.h"
#include "platform/host/rua_instance.h"

#include <algorithm>

namespace {

/* Null when no font file can be opened. The named path goes first, then the usual lookup. */
std::unique_ptr<em862x::open_font> load_font(FT_Library library, const char *path,
                                             const rmtt_mapping &mapping) {
    std::optional<em862x::font_file> file = em862x::find_font(library, path);
    if (!file)
        return nullptr;
    auto font = std::make_unique<em862x::open_font>();
    font->bytes = std::move(file->bytes);
    font->face = em862x::open_face(library, font->bytes);
    if (!font->face)
        return nullptr;
    font->scaled.face = font->face.get();
    font->mapping = mapping;
    font->header[0] = static_cast<uint16_t>(font->face->ascender);
    font->header[1] = static_cast<uint16_t>(font->face->descender);
    font->header[2] = font->face->units_per_EM;
    return font;
}

/* Null for anything but a font that is open. */
em862x::open_font *find_open(const rmtt_font *font) noexcept {
    rua_instance *instance = em862x::present_instance();
    if (!instance)
        return nullptr;
    for (const auto &open : instance->fonts)
        if (open.get() == font)
            return open.get();
    return nullptr;
}

/* What a character stands for; null when the font was not opened for it. */
const em862x::font_glyph *find_glyph(const rmtt_font *font, std::uint32_t code) noexcept {
    em862x::open_font *open = find_open(font);
    if (!open || code > open->mapping.last || open->mapping.code[code] == 0)
        return nullptr;
    return em862x::guarded(
        static_cast<const em862x::font_glyph *>(nullptr), [&]() -> const em862x::font_glyph * {
            const auto known = open->glyphs.find(code);
            if (known != open->glyphs.end())
                return &known->second;
            std::optional<em862x::font_glyph> read =
                em862x::read_font_glyph(open->face.get(), open->mapping.code[code]);
            return read ? &open->glyphs.emplace(code, std::move(*read)).first->second : nullptr;
        });
}

const em862x::glyph_part *find_part(const rmtt_font *font, std::uint32_t code,
                                    std::uint32_t part) noexcept {
    const em862x::font_glyph *glyph = find_glyph(font, code);
    return glyph && part < glyph->parts.size() ? &glyph->parts[part] : nullptr;
}

bool is_valid(const rmtt_mapping *mapping) noexcept {
    return mapping && mapping->last < std::size(mapping->code);
}

} // namespace

int RMTTOpenFont(rua_instance *instance, rmtt_font **font, const rm_non_ascii *path,
                 const rmtt_mapping *mapping) {
    if (!em862x::is_instance(instance) || !font || !path || !is_valid(mapping))
        return EM862X_FAILURE;
    return em862x::guarded(int{EM862X_FAILURE}, [&]() -> int {
        if (!instance->freetype)
            instance->freetype = em862x::make_freetype_library();
        if (!instance->freetype)
            return EM862X_FAILURE;
        auto opened = load_font(instance->freetype.get(), path->text.c_str(), *mapping);
        if (!opened)
            return EM862X_FAILURE;
        opened->key = ++instance->fonts_opened;
        instance->fonts.push_back(std::move(opened));
        *font = instance->fonts.back().get();
        return EM862X_SUCCESS;
    });
}

int RMTTCloseFont(rua_instance *instance, rmtt_font *font) {
    if (!em862x::is_instance(instance))
        return EM862X_FAILURE;
    auto &fonts = instance->fonts;
    const auto found = std::find_if(fonts.begin(), fonts.end(),
                                    [&](const auto &open) { return open.get() == font; });
    if (found == fonts.end())
        return EM862X_FAILURE;
    fonts.erase(found);
    return EM862X_SUCCESS;
}

const int16_t *RMTTGetGlyphMetrics(rmtt_font *font, uint32_t code) {
    const em862x::font_glyph *glyph = find_glyph(font, code);
    return glyph ? glyph->metrics.data() : nullptr;
}

uint32_t RMTTGetCompoundCount(rmtt_font *font, uint32_t code) {
    const em862x::font_glyph *glyph = find_glyph(font, code);
    return glyph ? static_cast<uint32_t>(glyph->parts.size()) : 0;
}

const int16_t *RMTTGetScaleMatrix(rmtt_font *font, uint32_t code, uint32_t part) {
    const em862x::glyph_part *outline = find_part(font, code, part);
    return outline && outline->matrix ? outline->matrix->data() : nullptr;
}

void RMTTGetGlyphPointer(rmtt_font *font, uint32_t code, uint32_t part, uint32_t *word_a,
                         uint32_t *word_b) {
    if (!word_a || !word_b)
        return;
    const em862x::glyph_part *outline = find_part(font, code, part);
    *word_a = outline ? find_open(font)->key : 0;
    *word_b = outline ? outline->index : 0;
}
