/* SPDX-License-Identifier: MIT */
/*
 * The RMTT calls: opening and closing TrueType fonts. Header values 0 and 1 of an open font are the
 * ascender and the descender (negative, two's complement) in font units, value 2 the em size.
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
    font->mapping = mapping;
    font->header[0] = static_cast<uint16_t>(font->face->ascender);
    font->header[1] = static_cast<uint16_t>(font->face->descender);
    font->header[2] = font->face->units_per_EM;
    return font;
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

const int16_t *RMTTGetGlyphMetrics(rmtt_font *, uint32_t) {
    return nullptr;
}

uint32_t RMTTGetCompoundCount(rmtt_font *, uint32_t) {
    return 0;
}

const int16_t *RMTTGetScaleMatrix(rmtt_font *, uint32_t, uint32_t) {
    return nullptr;
}

void RMTTGetGlyphPointer(rmtt_font *, uint32_t, uint32_t, uint32_t *, uint32_t *) {}
