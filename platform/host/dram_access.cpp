/* SPDX-License-Identifier: MIT */
/*
 * Locks and mappings, each checked against those that are there.
 */
#include "platform/host/dram_access.h"

#include <algorithm>

namespace em862x {

dram_access::range *dram_access::find(std::uint32_t address, std::uint32_t size) noexcept {
    const auto found = std::find_if(locked_.begin(), locked_.end(), [&](const range &locked) {
        return locked.address == address && locked.size == size;
    });
    return found != locked_.end() ? &*found : nullptr;
}

/* Ends of ranges stay below the end of the DRAM, so the sums do not wrap. */
bool dram_access::lock(std::uint32_t address, std::uint32_t size) {
    if (!memory_.resolve(address, size))
        return false;
    const bool is_free = std::none_of(locked_.begin(), locked_.end(), [&](const range &locked) {
        return locked.address == address ||
               (locked.address < address + size && address < locked.address + locked.size);
    });
    if (is_free)
        locked_.push_back({address, size, nullptr});
    return is_free;
}

bool dram_access::unlock(std::uint32_t address, std::uint32_t size) noexcept {
    const range *locked = find(address, size);
    if (!locked || locked->mapped)
        return false;
    locked_.erase(locked_.begin() + (locked - locked_.data()));
    return true;
}

std::byte *dram_access::map(std::uint32_t address, std::uint32_t size) noexcept {
    range *locked = find(address, size);
    if (!locked || locked->mapped)
        return nullptr;
    std::byte *bytes = memory_.resolve(address, size);
    locked->mapped = bytes;
    return bytes;
}

bool dram_access::unmap(const std::byte *pointer, std::uint32_t size) noexcept {
    for (const std::uint32_t distance : {std::uint32_t{0}, size})
        for (range &locked : locked_)
            if (locked.mapped && locked.size == size && locked.mapped + distance == pointer) {
                locked.mapped = nullptr;
                return true;
            }
    return false;
}

void dram_access::forget(std::uint32_t block) noexcept {
    const std::uint32_t size = memory_.size_of(block);
    const auto gone = std::remove_if(locked_.begin(), locked_.end(), [&](const range &locked) {
        return locked.address - block < size;
    });
    locked_.erase(gone, locked_.end());
}

} // namespace em862x
