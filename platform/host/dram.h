/* SPDX-License-Identifier: MIT */
/*
 * The chip's DRAM as a PC has it: a bounded range of 32-bit addresses over one host mapping.
 */
#ifndef UX_PLATFORM_HOST_DRAM_H
#define UX_PLATFORM_HOST_DRAM_H

#include <cstddef>
#include <cstdint>
#include <map>

namespace em862x {

/* Address 0 means failure, so the range starts well above it. */
constexpr std::uint32_t k_dram_base = 0x10000000;
constexpr std::uint32_t k_dram_size = 64u << 20;
/* Blocks start and end on this many bytes, as the chip's burst transfers want them. */
constexpr std::uint32_t k_dram_alignment = 64;

/*
 * First-fit allocation. The host memory behind the range is reserved with the first block and only
 * takes room where it is touched.
 */
class dram {
  public:
    dram() = default;
    dram(const dram &) = delete;
    dram &operator=(const dram &) = delete;
    ~dram();

    /* The address of `size` fresh bytes; 0 for size 0 or when nothing that large is left. */
    std::uint32_t allocate(std::uint32_t size);

    /* Releases the block that starts at `address`; false (and nothing else) when there is none. */
    bool release(std::uint32_t address) noexcept;

    /* Host memory of [address, address + size); null unless all of it lies in one live block. */
    std::byte *resolve(std::uint32_t address, std::uint32_t size) noexcept;

    /* Size of the block that starts at `address`; 0 when there is none. */
    std::uint32_t size_of(std::uint32_t address) const noexcept;

    std::size_t live_blocks() const noexcept { return blocks_.size(); }

  private:
    bool reserve() noexcept;

    std::byte *memory_ = nullptr;                     /* the mapping, null before the first block */
    std::map<std::uint32_t, std::uint32_t> blocks_{}; /* start address to size, both live */
};

} // namespace em862x

#endif
