/* SPDX-License-Identifier: MIT */
/*
 * Which ranges of the DRAM the CPU has locked and mapped.
 */
#ifndef UX_PLATFORM_HOST_DRAM_ACCESS_H
#define UX_PLATFORM_HOST_DRAM_ACCESS_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/host/dram.h"

namespace em862x {

class dram_access {
  public:
    explicit dram_access(dram &memory) : memory_(memory) {}

    /* Locks a range of one live block; false when it is not one or touches a locked range. */
    bool lock(std::uint32_t address, std::uint32_t size);

    /* Ends a lock of exactly this range; false when there is none or it is still mapped. */
    bool unlock(std::uint32_t address, std::uint32_t size) noexcept;

    /* Host memory of a locked range, which is mapped at most once; null otherwise. */
    std::byte *map(std::uint32_t address, std::uint32_t size) noexcept;

    /*
     * Ends a mapping of `size` bytes, named by its first byte or by the one behind its last; false
     * when there is none.
     */
    bool unmap(const std::byte *pointer, std::uint32_t size) noexcept;

    /* Forgets the locks of a block that is given back; call it before the block goes. */
    void forget(std::uint32_t block) noexcept;

  private:
    struct range {
        std::uint32_t address;
        std::uint32_t size;
        const std::byte *mapped; /* null: locked only */
    };

    range *find(std::uint32_t address, std::uint32_t size) noexcept;

    dram &memory_;
    std::vector<range> locked_;
};

} // namespace em862x

#endif
