/* SPDX-License-Identifier: MIT */
/*
 * Taking records into the table and choosing which ones leave it.
 */
#include "platform/host/fss_table.h"

namespace em862x {

void glyph_table::drop(std::uint32_t entry) noexcept {
    glyph_record *record = entries_[entry];
    entries_[entry] = nullptr;
    bytes_ -= record->bytes;
    record->is_cached = false;
    if (record->outstanding == 0)
        record_deleter{}(record);
}

/*
 * Second chance: the hand passes over a record used since its last round and takes the next one.
 * Two rounds visit every record at its worst; what callers hold is never taken.
 */
void glyph_table::make_room(std::uint32_t bytes) noexcept {
    for (std::uint32_t steps = 0; steps < 2 * k_table_entries; steps++) {
        if (bytes_ + bytes <= k_table_bytes_max)
            return;
        const std::uint32_t entry = hand_;
        hand_ = (hand_ + 1) % k_table_entries;
        glyph_record *record = entries_[entry];
        if (!record || record->outstanding != 0)
            continue;
        if (record->is_recent)
            record->is_recent = false;
        else
            drop(entry);
    }
}

void glyph_table::insert(glyph_record &record) noexcept {
    if (record.bytes > k_table_record_max)
        return;
    const std::uint32_t entry = entry_of(record.key);
    if (entries_[entry] && entries_[entry]->outstanding != 0)
        return;
    if (entries_[entry])
        drop(entry);
    make_room(record.bytes);
    if (bytes_ + record.bytes > k_table_bytes_max)
        return;
    entries_[entry] = &record;
    bytes_ += record.bytes;
    record.is_cached = true;
}

void glyph_table::drop_scale(int scale_slot) noexcept {
    for (std::uint32_t entry = 0; entry < k_table_entries; entry++)
        if (entries_[entry] && entries_[entry]->key >> 32 == glyph_key(scale_slot, 0) >> 32)
            drop(entry);
}

void glyph_table::clear() noexcept {
    for (std::uint32_t entry = 0; entry < k_table_entries; entry++)
        if (entries_[entry])
            drop(entry);
    hand_ = 0;
}

} // namespace em862x
