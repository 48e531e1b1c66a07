/* SPDX-License-Identifier: MIT */
/*
 * The front of the glyph cache: a direct-mapped table of finished records, bounded in bytes.
 * FreeType's cache behind it takes about 20 ns to find a glyph, which alone would be most of the
 * time a glyph may take.
 */
#ifndef UX_PLATFORM_HOST_FSS_TABLE_H
#define UX_PLATFORM_HOST_FSS_TABLE_H

#include "platform/host/fss_record.h"
#include "platform/host/fss_scales.h"

namespace em862x {

constexpr std::uint32_t k_table_entries = 4096;
/* Neighbouring scales start this far apart, so their Latin letters do not meet. */
constexpr std::uint32_t k_table_scale_step = k_table_entries / k_scale_slots;
/* What all records in the table may take together, and the largest of them. */
constexpr std::uint32_t k_table_bytes_max = 512u << 10;
constexpr std::uint32_t k_table_record_max = k_table_bytes_max / 4;

/* Names a glyph: never 0, as scale slots count from 1 here. */
inline std::uint64_t glyph_key(int scale_slot, std::uint32_t code) noexcept {
    return static_cast<std::uint64_t>(scale_slot + 1) << 32 | code;
}

/* Needs no construction at run time; clear() before dropping one. */
class glyph_table {
  public:
    /* The record of the key, null when it is not here. */
    glyph_record *find(std::uint64_t key) const noexcept {
        glyph_record *record = entries_[entry_of(key)];
        return record && record->key == key ? record : nullptr;
    }

    /*
     * Takes the record in under its key, when it is not too large and its place is not held by a
     * glyph that a caller has. What it displaces is released. Otherwise the record stays uncached.
     */
    void insert(glyph_record &record) noexcept;

    /* Drops every record of one scale; those that callers hold live on until given back. */
    void drop_scale(int scale_slot) noexcept;

    /* Drops everything, likewise. */
    void clear() noexcept;

    std::uint32_t bytes() const noexcept { return bytes_; }

  private:
    static std::uint32_t entry_of(std::uint64_t key) noexcept {
        const auto slot = static_cast<std::uint32_t>(key >> 32);
        return (static_cast<std::uint32_t>(key) + slot * k_table_scale_step) % k_table_entries;
    }
    void drop(std::uint32_t entry) noexcept;
    void make_room(std::uint32_t bytes) noexcept;

    glyph_record *entries_[k_table_entries] = {};
    std::uint32_t bytes_ = 0; /* of all records held */
    std::uint32_t hand_ = 0;  /* next entry that make_room looks at */
};

} // namespace em862x

#endif
