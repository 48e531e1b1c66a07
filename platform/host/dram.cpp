/* SPDX-License-Identifier: MIT */
/*
 * First-fit blocks inside the DRAM range.
 */
#include "platform/host/dram.h"

#include <iterator>

#include <sys/mman.h>

namespace em862x {

namespace {

/* Caller passes at most k_dram_size, so the sum stays in range. */
std::uint32_t rounded_up(std::uint32_t size) {
    return (size + k_dram_alignment - 1) / k_dram_alignment * k_dram_alignment;
}

} // namespace

dram::~dram() {
    if (memory_)
        munmap(memory_, k_dram_size);
}

bool dram::reserve() noexcept {
    if (memory_)
        return true;
    void *mapping = mmap(nullptr, k_dram_size, PROT_READ | PROT_WRITE,
                         MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapping == MAP_FAILED)
        return false;
    memory_ = static_cast<std::byte *>(mapping);
    return true;
}

std::uint32_t dram::allocate(std::uint32_t size) {
    if (size == 0 || size > k_dram_size || !reserve())
        return 0;
    const std::uint32_t room = rounded_up(size);
    std::uint32_t start = k_dram_base;
    for (const auto &[block, length] : blocks_) {
        if (block - start >= room)
            break;
        start = block + rounded_up(length);
    }
    if (k_dram_base + k_dram_size - start < room)
        return 0;
    blocks_.emplace(start, size);
    return start;
}

bool dram::release(std::uint32_t address) noexcept {
    return blocks_.erase(address) != 0;
}

std::uint32_t dram::size_of(std::uint32_t address) const noexcept {
    const auto block = blocks_.find(address);
    return block != blocks_.end() ? block->second : 0;
}

std::byte *dram::resolve(std::uint32_t address, std::uint32_t size) noexcept {
    auto above = blocks_.upper_bound(address);
    if (above == blocks_.begin())
        return nullptr;
    const auto &[start, length] = *std::prev(above);
    const std::uint32_t offset = address - start;
    if (offset >= length || size > length - offset)
        return nullptr;
    return memory_ + (address - k_dram_base);
}

} // namespace em862x
