/* SPDX-License-Identifier: MIT */
/*
 * Loading glyphs: small upright ones from FreeType's bitmap cache, large or sheared ones straight
 * from their outline. Both are hinted for and rendered in one bit per pixel.
 */
#include "platform/host/fss_source.h"

#include "platform/host/fss_box.h"

#include FT_OUTLINE_H

namespace em862x {

namespace {

/* Outlines only: a strike inside the font may have any pixel format. */
constexpr FT_Int32 k_load_flags = FT_LOAD_TARGET_MONO | FT_LOAD_NO_BITMAP;

/* Selects whichever character map the face chose on opening, the Unicode one if it has it. */
constexpr FT_Int k_default_character_map = -1;

/* 16.16 pixels to FreeType's 26.6, to the nearest; fits, as usable sizes are small. */
FT_UInt to_26_6(std::int32_t size) noexcept {
    return static_cast<FT_UInt>((size + 512) >> 10);
}

long to_pixels(FT_Pos length) noexcept {
    return (length + 32) >> 6;
}

/* The mark that a cached bitmap leaves when the glyph failed to load or exceeds its 8-bit fields.
 */
bool is_unavailable(FTC_SBit bitmap) noexcept {
    return !bitmap->buffer && bitmap->width == 255;
}

bool has_shear(const glyph_scale &scale) noexcept {
    return scale.xy != 0 || scale.yx != 0;
}

/*
 * The outline comes scaled by diag(xx, yy); the matrix that is left to apply is
 *     | 1      xy/yy |
 *     | yx/xx  1     |
 */
void apply_shear(FT_Outline &outline, const glyph_scale &scale) noexcept {
    FT_Matrix shear = {0x10000, FT_DivFix(scale.xy, scale.yy), FT_DivFix(scale.yx, scale.xx),
                       0x10000};
    FT_Outline_Transform(&outline, &shear);
}

/* False when the bitmap would be larger, or further from the origin, than a record can say. */
bool fits_record(FT_Outline &outline) noexcept {
    constexpr FT_Pos reach = FT_Pos{2 * k_glyph_side_max} << 6;
    constexpr FT_Pos side = FT_Pos{k_glyph_side_max - 2}
                            << 6; /* two pixels for rounding outwards */
    FT_BBox box;
    FT_Outline_Get_CBox(&outline, &box);
    return box.xMin >= -reach && box.yMin >= -reach && box.xMax <= reach && box.yMax <= reach &&
           box.xMax - box.xMin <= side && box.yMax - box.yMin <= side;
}

} // namespace

FT_Error glyph_source::open_for_manager(FTC_FaceID id, FT_Library library, FT_Pointer,
                                        FT_Face *face) {
    const auto *source = static_cast<const glyph_source *>(id);
    *face = open_face(library, source->file_->bytes).release();
    return *face ? FT_Err_Ok : FT_Err_Cannot_Open_Resource;
}

glyph_source::glyph_source() : library_(make_freetype_library()) {
    if (library_)
        file_ = find_font(library_.get(), nullptr);
    if (file_)
        start_cache();
}

void glyph_source::start_cache() noexcept {
    FTC_Manager manager = nullptr;
    if (FTC_Manager_New(library_.get(), 1, k_freetype_sizes_max, k_freetype_cache_max,
                        open_for_manager, nullptr, &manager) != 0)
        return;
    manager_.reset(manager);
    if (FTC_CMapCache_New(manager, &codes_) != 0 || FTC_SBitCache_New(manager, &bitmaps_) != 0)
        manager_.reset();
}

/* At 72 dots per inch a point is a pixel, which lets sizes keep their fraction. */
FTC_ScalerRec glyph_source::scaler_of(const glyph_scale &scale) noexcept {
    return {this, to_26_6(scale.xx), to_26_6(scale.yy), 0, 72, 72};
}

record_handle glyph_source::load_cached(const glyph_scale &scale, FT_UInt index) noexcept {
    FTC_ScalerRec scaler = scaler_of(scale);
    FTC_SBit bitmap = nullptr;
    if (FTC_SBitCache_LookupScaler(bitmaps_, &scaler, k_load_flags, index, &bitmap, nullptr) != 0 ||
        is_unavailable(bitmap))
        return nullptr;
    record_handle record =
        make_record({bitmap->width, bitmap->height, bitmap->pitch, bitmap->buffer});
    if (record)
        set_metrics(*record, bitmap->left, bitmap->top, bitmap->xadvance);
    return record;
}

record_handle glyph_source::load_directly(const glyph_scale &scale, FT_UInt index) noexcept {
    FTC_ScalerRec scaler = scaler_of(scale);
    FT_Size size = nullptr;
    if (FTC_Manager_LookupSize(manager_.get(), &scaler, &size) != 0 ||
        FT_Load_Glyph(size->face, index, k_load_flags) != 0)
        return nullptr;
    FT_GlyphSlot slot = size->face->glyph;
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE)
        return nullptr;
    if (has_shear(scale))
        apply_shear(slot->outline, scale);
    if (!fits_record(slot->outline) || FT_Render_Glyph(slot, FT_RENDER_MODE_MONO) != 0)
        return nullptr;
    const FT_Bitmap &bitmap = slot->bitmap;
    record_handle record =
        make_record({static_cast<int>(bitmap.width), static_cast<int>(bitmap.rows), bitmap.pitch,
                     bitmap.buffer});
    if (record)
        set_metrics(*record, slot->bitmap_left, slot->bitmap_top, to_pixels(slot->advance.x));
    return record;
}

record_handle glyph_source::load_index(const glyph_scale &scale, FT_UInt index) noexcept {
    record_handle record;
    if (!has_shear(scale))
        record = load_cached(scale, index);
    return record ? std::move(record) : load_directly(scale, index);
}

record_handle glyph_source::load(const glyph_scale &scale, std::uint32_t code) noexcept {
    record_handle record;
    if (manager_) {
        const FT_UInt index = FTC_CMapCache_Lookup(codes_, this, k_default_character_map, code);
        if (index != 0)
            record = load_index(scale, index);
        if (!record)
            record = load_index(scale, 0);
        if (record && index == 0 && record->glyph.rows == 0)
            record = nullptr;
    }
    return record ? std::move(record) : make_box(scale);
}

} // namespace em862x
