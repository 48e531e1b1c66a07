/* SPDX-License-Identifier: MIT */
/*
 * Making glyph records.
 */
#include "platform/host/fss_record.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace em862x {

namespace {

std::int16_t clamped(long value, long lowest) noexcept {
    return static_cast<std::int16_t>(
        std::clamp(value, lowest, long{std::numeric_limits<std::int16_t>::max()}));
}

bool is_side(int pixels) noexcept {
    return pixels >= 0 && pixels <= k_glyph_side_max;
}

/* Bits beyond the width are clear in what FreeType renders, so whole bytes may be looked at. */
bool has_ink(const mono_bitmap &bitmap) noexcept {
    if (!bitmap.bytes || bitmap.width <= 0 || bitmap.rows <= 0)
        return false;
    const std::size_t size = static_cast<std::size_t>(std::abs(bitmap.pitch)) * bitmap.rows;
    return std::any_of(bitmap.bytes, bitmap.bytes + size, [](std::uint8_t bits) { return bits; });
}

} // namespace

void record_deleter::operator()(glyph_record *record) const noexcept {
    std::free(record);
}

record_handle make_record(int width, int rows) noexcept {
    if (!is_side(width) || !is_side(rows))
        return nullptr;
    const int pitch = (width + 7) / 8;
    const std::size_t header = offsetof(glyph_record, glyph) + sizeof(fss_glyph);
    const std::size_t bytes =
        std::max(header + static_cast<std::size_t>(pitch) * rows, sizeof(glyph_record));
    auto *record = static_cast<glyph_record *>(std::calloc(bytes, 1));
    if (!record)
        return nullptr;
    record->bytes = static_cast<std::uint32_t>(bytes);
    record->glyph.rows = static_cast<std::int16_t>(rows);
    record->glyph.pitch = static_cast<std::int16_t>(pitch);
    return record_handle(record);
}

record_handle make_record(const mono_bitmap &bitmap) noexcept {
    if (!has_ink(bitmap))
        return make_record(0, 0);
    record_handle record = make_record(bitmap.width, bitmap.rows);
    if (!record)
        return nullptr;
    const std::ptrdiff_t pitch = bitmap.pitch;
    const std::uint8_t *row = bitmap.bytes + (pitch < 0 ? -pitch * (bitmap.rows - 1) : 0);
    std::uint8_t *target = record->bitmap();
    for (int i = 0; i < bitmap.rows; i++, row += pitch, target += record->glyph.pitch)
        std::memcpy(target, row, static_cast<std::size_t>(record->glyph.pitch));
    return record;
}

void set_metrics(glyph_record &record, long left, long top, long advance) noexcept {
    constexpr long lowest = std::numeric_limits<std::int16_t>::min();
    record.glyph.left = clamped(left, lowest);
    record.glyph.top = clamped(top, lowest);
    record.glyph.advance = clamped(advance, 0);
}

} // namespace em862x
