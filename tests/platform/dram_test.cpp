/* SPDX-License-Identifier: MIT */
/*
 * The DRAM range: addresses, exhaustion, reuse, and what they resolve to.
 */
#include "platform/host/dram.h"

#include <cstring>
#include <map>
#include <random>

#include <gtest/gtest.h>

namespace {

using em862x::dram;
using em862x::k_dram_size;

TEST(dram_test, blocks_are_distinct_aligned_and_not_zero) {
    dram memory;
    const std::uint32_t first = memory.allocate(100);
    const std::uint32_t second = memory.allocate(1);
    EXPECT_NE(first, 0u);
    EXPECT_GE(second, first + 100);
    EXPECT_EQ(first % 64, 0u);
    EXPECT_EQ(second % 64, 0u);
}

TEST(dram_test, nothing_and_too_much_are_refused) {
    dram memory;
    EXPECT_EQ(memory.allocate(0), 0u);
    EXPECT_EQ(memory.allocate(k_dram_size + 1), 0u);
    EXPECT_EQ(memory.allocate(0xFFFFFFFF), 0u);
}

TEST(dram_test, the_whole_range_can_be_one_block) {
    dram memory;
    const std::uint32_t all = memory.allocate(k_dram_size);
    EXPECT_NE(all, 0u);
    EXPECT_EQ(memory.allocate(1), 0u);
    EXPECT_TRUE(memory.release(all));
    EXPECT_NE(memory.allocate(1), 0u);
}

TEST(dram_test, an_exhausted_range_recovers_after_a_release) {
    dram memory;
    std::vector<std::uint32_t> blocks;
    while (const std::uint32_t address = memory.allocate(1 << 20))
        blocks.push_back(address);
    EXPECT_EQ(blocks.size(), k_dram_size >> 20);
    EXPECT_TRUE(memory.release(blocks[20]));
    EXPECT_EQ(memory.allocate(1 << 20), blocks[20]);
    EXPECT_EQ(memory.allocate(1), 0u);
}

TEST(dram_test, a_second_release_changes_nothing) {
    dram memory;
    const std::uint32_t address = memory.allocate(64);
    EXPECT_TRUE(memory.release(address));
    EXPECT_FALSE(memory.release(address));
    EXPECT_FALSE(memory.release(0));
    EXPECT_FALSE(memory.release(0xFFFFFFFF));
}

TEST(dram_test, the_inside_of_a_block_cannot_be_released) {
    dram memory;
    const std::uint32_t address = memory.allocate(1000);
    EXPECT_FALSE(memory.release(address + 64));
    EXPECT_EQ(memory.live_blocks(), 1u);
}

TEST(dram_test, only_live_bytes_resolve) {
    dram memory;
    const std::uint32_t address = memory.allocate(100);
    EXPECT_NE(memory.resolve(address, 100), nullptr);
    EXPECT_EQ(memory.resolve(address + 40, 60), memory.resolve(address, 1) + 40);
    EXPECT_EQ(memory.resolve(address, 101), nullptr);
    EXPECT_EQ(memory.resolve(address + 100, 1), nullptr);
    EXPECT_EQ(memory.resolve(address + 40, 0xFFFFFFF0), nullptr);
    EXPECT_EQ(memory.resolve(address - 1, 1), nullptr);
    EXPECT_EQ(memory.resolve(0, 0), nullptr);
    memory.release(address);
    EXPECT_EQ(memory.resolve(address, 1), nullptr);
}

TEST(dram_test, blocks_never_overlap_however_they_come_and_go) {
    dram memory;
    std::mt19937 random(3);
    std::map<std::uint32_t, std::uint32_t> live;
    for (int step = 0; step < 3000; step++) {
        if (!live.empty() && random() % 3 == 0) {
            const auto victim = std::next(live.begin(), random() % live.size());
            const std::byte *bytes = memory.resolve(victim->first, victim->second);
            for (std::uint32_t i = 0; i < victim->second; i += 61)
                ASSERT_EQ(bytes[i], static_cast<std::byte>(victim->first >> 6));
            ASSERT_TRUE(memory.release(victim->first));
            live.erase(victim);
        }
        const std::uint32_t size = static_cast<std::uint32_t>(1 + random() % 200000);
        const std::uint32_t address = memory.allocate(size);
        if (address == 0)
            continue;
        std::memset(memory.resolve(address, size), static_cast<int>(address >> 6 & 0xFF), size);
        live[address] = size;
    }
    EXPECT_EQ(memory.live_blocks(), live.size());
}

} // namespace
