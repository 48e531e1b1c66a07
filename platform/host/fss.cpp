/* SPDX-License-Identifier: MIT */
/*
 * The FSS calls: a glyph that is in the table costs a look-up and a count up, everything else is
 * made by the source. They are called by one thread at a time, which libux sees to; nothing is
 * locked.
 */
#include "platform/host/fss.h"

#include <new>

#include "platform/host/export.h"
#include "platform/host/fss_source.h"
#include "platform/host/fss_table.h"
#include "platform/host/guard.h"

namespace em862x {

namespace {

constexpr int k_no_slot = -1;

/*
 * Kept until the process ends rather than destroyed at exit: a host may paint from its exit
 * handlers.
 */
struct fss_state {
    glyph_scale scale{};              /* as last set */
    int slot = k_no_slot;             /* of that scale; k_no_slot: unusable, no glyphs */
    glyph_table table;                /* finished records */
    scale_memory scales;              /* which scale has which slot of the table */
    glyph_source *source = nullptr;   /* null until the first glyph is needed */
    glyph_record *line_end = nullptr; /* shown for 10 and 13; null until needed */
};
constinit fss_state s_fss;

bool is_line_end(std::uint32_t code) noexcept {
    return code == '\n' || code == '\r';
}

glyph_record *give_out(glyph_record &record) noexcept {
    record.outstanding++;
    record.is_recent = true;
    return &record;
}

/*
 * Line ends have no ink and no width: fonts rarely map them, and a missing-glyph sign at every line
 * end helps nobody. One record serves them all and is never dropped, so callers may forget to give
 * it back.
 */
glyph_record *line_end() noexcept {
    if (!s_fss.line_end) {
        s_fss.line_end = make_record(0, 0).release();
        if (s_fss.line_end)
            s_fss.line_end->is_cached = true;
    }
    return s_fss.line_end;
}

glyph_source &source() {
    if (!s_fss.source)
        s_fss.source = new glyph_source;
    return *s_fss.source;
}

/* Makes a glyph the table lacks; null only when memory runs out. */
glyph_record *load(std::uint32_t code) {
    if (is_line_end(code))
        return line_end();
    record_handle record = source().load(s_fss.scale, code);
    if (!record)
        return nullptr;
    record->key = glyph_key(s_fss.slot, code);
    s_fss.table.insert(*record);
    return record.release();
}

[[gnu::noinline]] fss_glyph *get_uncached(std::uint32_t code) noexcept {
    if (s_fss.slot == k_no_slot)
        return nullptr;
    return guarded(static_cast<fss_glyph *>(nullptr), [&]() -> fss_glyph * {
        glyph_record *record = load(code);
        return record ? &give_out(*record)->glyph : nullptr;
    });
}

[[gnu::noinline]] void change_scale(const glyph_scale &scale) noexcept {
    s_fss.scale = scale;
    s_fss.slot = k_no_slot;
    if (!is_usable(scale))
        return;
    bool taken_over = false;
    s_fss.slot = s_fss.scales.find(scale, taken_over);
    if (taken_over)
        s_fss.table.drop_scale(s_fss.slot);
}

} // namespace

void fss_reset() noexcept {
    s_fss.table.clear();
    delete s_fss.source;
    s_fss.source = nullptr;
    s_fss.scales = {};
    s_fss.scale = {};
    s_fss.slot = k_no_slot;
}

std::size_t fss_table_bytes() noexcept {
    return s_fss.table.bytes();
}

} // namespace em862x

using namespace em862x;

void FSS_set_scale(int32_t xx, int32_t xy, int32_t yx, int32_t yy) {
    const glyph_scale scale = {xx, xy, yx, yy};
    if (scale != s_fss.scale)
        change_scale(scale);
}

fss_glyph *FSS_get_bitmap(uint32_t code) {
    glyph_record *record = s_fss.table.find(glyph_key(s_fss.slot, code));
    return record ? &give_out(*record)->glyph : get_uncached(code);
}

void FSS_free_char(fss_glyph *glyph) {
    if (!glyph)
        return;
    glyph_record *record = glyph_record::of(glyph);
    if (record->outstanding == 0)
        return;
    if (--record->outstanding == 0 && !record->is_cached)
        record_deleter{}(record);
}
