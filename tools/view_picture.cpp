// SPDX-License-Identifier: MIT
// Counters and pixels in one shared mapping.
#include "tools/view_picture.h"

#include "sim/failure.h"

#include <cstring>

#include <sys/mman.h>

namespace ux::view {

namespace {

static_assert(std::atomic<uint32_t>::is_always_lock_free); // it works between processes

// Pixels begin at a multiple of this.
constexpr size_t k_alignment = 64; // bytes

size_t counter_bytes(const frame_layout &layout) {
    const size_t bytes = sizeof(std::atomic<uint32_t>) * layout.height;
    return (bytes + k_alignment - 1) / k_alignment * k_alignment;
}

} // namespace

view_picture::view_picture(const frame_layout &layout)
    : m_layout(layout), m_bytes(counter_bytes(layout) + layout.row_bytes() * layout.height),
      m_mapping(mmap(nullptr, m_bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
    if (m_mapping == MAP_FAILED) {
        throw sim::failure(sim::system_reason("cannot get memory for the picture"));
    }
    m_changes = static_cast<std::atomic<uint32_t> *>(m_mapping); // zero bytes are counters of 0
    m_pixels = static_cast<std::byte *>(m_mapping) + counter_bytes(layout);
}

view_picture::~view_picture() {
    munmap(m_mapping, m_bytes);
}

void view_picture::put_row(int number, const std::byte *pixels) {
    const size_t bytes = m_layout.row_bytes();
    std::memcpy(m_pixels + number * bytes, pixels, bytes);
    m_changes[number].fetch_add(1, std::memory_order_release);
}

picture_reader::picture_reader(const view_picture &picture)
    : m_picture(picture), m_seen(picture.layout().height) {
    news();
}

std::vector<sim::row_range> picture_reader::news() {
    std::vector<sim::row_range> result;
    for (int row = 0; row < m_picture.layout().height; ++row) {
        const uint32_t changes = m_picture.changes_of(row);
        if (changes == m_seen[row]) {
            continue;
        }
        m_seen[row] = changes;
        if (result.empty() || result.back().first + result.back().count != row) {
            result.push_back({.first = row, .count = 0});
        }
        ++result.back().count;
    }
    return result;
}

} // namespace ux::view
