/* SPDX-License-Identifier: MIT */
/*
 * One glyph as the rasteriser keeps it: bookkeeping, the public record, then its bitmap, in one
 * block.
 */
#ifndef UX_PLATFORM_HOST_FSS_RECORD_H
#define UX_PLATFORM_HOST_FSS_RECORD_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

#include "platform/host/export.h"

namespace em862x {

/*
 * A record lives as long as the table holds it or a caller does. It is only ever made by
 * make_record, which leaves room for the bitmap behind `glyph`.
 */
struct glyph_record {
    std::uint64_t key;         /* scale and code; 0 is no key */
    std::uint32_t outstanding; /* times given out and not given back */
    std::uint32_t bytes;       /* size of the whole block */
    bool is_cached;            /* the table holds it */
    bool is_recent;            /* given out since the table's hand last passed */
    fss_glyph glyph;           /* last: the bitmap follows it directly */

    std::uint8_t *bitmap() noexcept { return reinterpret_cast<std::uint8_t *>(&glyph + 1); }

    static glyph_record *of(fss_glyph *glyph) noexcept;
};
static_assert(std::is_standard_layout_v<glyph_record>);

inline glyph_record *glyph_record::of(fss_glyph *glyph) noexcept {
    return reinterpret_cast<glyph_record *>(reinterpret_cast<std::byte *>(glyph) -
                                            offsetof(glyph_record, glyph));
}

struct record_deleter {
    void operator()(glyph_record *record) const noexcept;
};
using record_handle = std::unique_ptr<glyph_record, record_deleter>;

/* The largest bitmap side, pixels: nothing drawn at the largest size is wider. */
constexpr int k_glyph_side_max = 4096;

/* A monochrome bitmap as the font engine gives it. */
struct mono_bitmap {
    int width;                 /* pixels */
    int rows;                  /* pixels */
    int pitch;                 /* bytes from one row to the row below; negative: bottom row first */
    const std::uint8_t *bytes; /* the first row in memory; null when there is no ink */
};

/*
 * A record without key with a zeroed bitmap of width x rows pixels, its pitch the smallest that
 * holds a row. Null when a side is out of [0, k_glyph_side_max] or memory runs out.
 */
record_handle make_record(int width, int rows) noexcept;

/* A record with a copy of the bitmap, of no rows at all when it has no ink; null as above. */
record_handle make_record(const mono_bitmap &bitmap) noexcept;

/* Stores the metrics, in pixels; each is brought into its range, an advance below 0 becomes 0. */
void set_metrics(glyph_record &record, long left, long top, long advance) noexcept;

} // namespace em862x

#endif
