/* SPDX-License-Identifier: MIT */
/*
 * Where glyphs come from when the table does not have them: the font, through FreeType's own cache.
 */
#ifndef UX_PLATFORM_HOST_FSS_SOURCE_H
#define UX_PLATFORM_HOST_FSS_SOURCE_H

#include <memory>
#include <optional>

#include "platform/host/font_file.h"
#include "platform/host/freetype_library.h"
#include "platform/host/fss_record.h"
#include "platform/host/fss_scales.h"

#include FT_CACHE_H

namespace em862x {

/* What FreeType's cache may take; it holds each glyph a second time, for when the table lost it. */
constexpr unsigned long k_freetype_cache_max = 512ul << 10;
/* Scales for which FreeType keeps its prepared font program at hand. */
constexpr unsigned k_freetype_sizes_max = 4;

struct manager_deleter {
    void operator()(FTC_Manager manager) const noexcept { FTC_Manager_Done(manager); }
};
using manager_handle = std::unique_ptr<std::remove_pointer_t<FTC_Manager>, manager_deleter>;

/* Opens the first usable font of the lookup when made; without one every glyph is the box. */
class glyph_source {
  public:
    glyph_source();
    glyph_source(const glyph_source &) = delete;
    glyph_source &operator=(const glyph_source &) = delete;

    /*
     * A new record for the code at a usable scale. What the font lacks or cannot load becomes its
     * own missing-glyph sign, or the drawn box. Null only when memory runs out.
     */
    record_handle load(const glyph_scale &scale, std::uint32_t code) noexcept;

  private:
    static FT_Error open_for_manager(FTC_FaceID id, FT_Library library, FT_Pointer, FT_Face *face);
    void start_cache() noexcept;
    record_handle load_index(const glyph_scale &scale, FT_UInt index) noexcept;
    record_handle load_cached(const glyph_scale &scale, FT_UInt index) noexcept;
    record_handle load_directly(const glyph_scale &scale, FT_UInt index) noexcept;
    FTC_ScalerRec scaler_of(const glyph_scale &scale) noexcept;

    library_handle library_;
    std::optional<font_file> file_;
    manager_handle manager_;        /* null without a font; owns the face and both caches */
    FTC_CMapCache codes_ = nullptr; /* code to glyph index */
    FTC_SBitCache bitmaps_ = nullptr;
};

} // namespace em862x

#endif
