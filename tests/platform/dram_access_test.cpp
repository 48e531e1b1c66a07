/* SPDX-License-Identifier: MIT */
/*
 * Locking and mapping DRAM as a client does it, and what is refused.
 */
#include <cstring>

#include <gtest/gtest.h>

#include "platform/host/rua_instance.h"

namespace {

struct dram_access_test : testing::Test {
    dram_access_test() {
        em862x::rua_reset();
        EXPECT_EQ(RUACreateInstance(&rua, 0), EM862X_SUCCESS);
        block = RUAMalloc(rua, 0, 57, 1000);
    }
    ~dram_access_test() override { em862x::rua_reset(); }

    int lock(std::uint32_t address, std::uint32_t size) { return RUALock(rua, address, size); }
    int unlock(std::uint32_t address, std::uint32_t size) { return RUAUnLock(rua, address, size); }

    rua_instance *rua = nullptr;
    std::uint32_t block = 0;
};

TEST_F(dram_access_test, what_is_written_through_a_mapping_is_there_in_the_next) {
    EXPECT_EQ(lock(block, 100), EM862X_SUCCESS);
    std::uint8_t *bytes = RUAMap(rua, block, 100);
    ASSERT_NE(bytes, nullptr);
    std::memset(bytes, 0x5A, 100);
    RUAUnMap(rua, bytes, 100);
    EXPECT_EQ(unlock(block, 100), EM862X_SUCCESS);
    EXPECT_EQ(lock(block + 99, 2), EM862X_SUCCESS);
    bytes = RUAMap(rua, block + 99, 2);
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(bytes[0], 0x5A);
    EXPECT_EQ(bytes[1], 0);
}

TEST_F(dram_access_test, a_mapping_ends_by_its_first_byte_or_by_its_end) {
    EXPECT_EQ(lock(block, 100), EM862X_SUCCESS);
    for (const std::uint32_t distance : {0u, 100u}) {
        std::uint8_t *bytes = RUAMap(rua, block, 100);
        ASSERT_NE(bytes, nullptr) << "before " << distance;
        RUAUnMap(rua, bytes + distance, 100);
    }
    EXPECT_EQ(unlock(block, 100), EM862X_SUCCESS);
}

TEST_F(dram_access_test, a_mapping_named_wrongly_stays_and_keeps_its_lock) {
    EXPECT_EQ(lock(block, 100), EM862X_SUCCESS);
    std::uint8_t *bytes = RUAMap(rua, block, 100);
    ASSERT_NE(bytes, nullptr);
    RUAUnMap(rua, nullptr, 100);
    RUAUnMap(rua, bytes + 1, 100);
    RUAUnMap(rua, bytes + 99, 100);
    RUAUnMap(rua, bytes + 101, 100);
    RUAUnMap(rua, bytes, 99);
    RUAUnMap(rua, bytes + 99, 99);
    RUAUnMap(nullptr, bytes, 100);
    EXPECT_EQ(unlock(block, 100), EM862X_FAILURE) << "it is still mapped";
    EXPECT_EQ(RUAMap(rua, block, 100), nullptr) << "it is still mapped";
    RUAUnMap(rua, bytes, 100);
    EXPECT_EQ(unlock(block, 100), EM862X_SUCCESS);
}

TEST_F(dram_access_test, only_ranges_inside_one_live_block_can_be_locked) {
    EXPECT_EQ(lock(block, 1001), EM862X_FAILURE);
    EXPECT_EQ(lock(block - 1, 10), EM862X_FAILURE);
    EXPECT_EQ(lock(block + 1000, 1), EM862X_FAILURE);
    EXPECT_EQ(lock(block + 990, 11), EM862X_FAILURE);
    EXPECT_EQ(lock(block + 1, 0xFFFFFFFF), EM862X_FAILURE);
    EXPECT_EQ(lock(0, 1), EM862X_FAILURE);
    EXPECT_EQ(lock(0xFFFFFFFF, 1), EM862X_FAILURE);
    EXPECT_EQ(lock(block, 1000), EM862X_SUCCESS);
    RUAFree(rua, block);
    EXPECT_EQ(lock(block, 1000), EM862X_FAILURE);
}

TEST_F(dram_access_test, a_locked_byte_cannot_be_locked_again) {
    EXPECT_EQ(lock(block + 100, 100), EM862X_SUCCESS);
    EXPECT_EQ(lock(block + 100, 100), EM862X_FAILURE);
    EXPECT_EQ(lock(block + 199, 1), EM862X_FAILURE);
    EXPECT_EQ(lock(block, 101), EM862X_FAILURE);
    EXPECT_EQ(lock(block, 1000), EM862X_FAILURE);
    EXPECT_EQ(lock(block, 100), EM862X_SUCCESS);
    EXPECT_EQ(lock(block + 200, 800), EM862X_SUCCESS);
}

TEST_F(dram_access_test, unlocking_and_mapping_take_exactly_what_was_locked) {
    EXPECT_EQ(lock(block, 100), EM862X_SUCCESS);
    EXPECT_EQ(unlock(block, 99), EM862X_FAILURE);
    EXPECT_EQ(unlock(block + 1, 99), EM862X_FAILURE);
    EXPECT_EQ(RUAMap(rua, block, 101), nullptr);
    EXPECT_EQ(RUAMap(rua, block + 1, 99), nullptr);
    EXPECT_EQ(unlock(block, 100), EM862X_SUCCESS);
    EXPECT_EQ(unlock(block, 100), EM862X_FAILURE);
    EXPECT_EQ(RUAMap(rua, block, 100), nullptr) << "it is not locked any more";
}

TEST_F(dram_access_test, no_bytes_can_be_locked_and_mapped_too) {
    const std::uint32_t empty = RUAMalloc(rua, 0, 57, 0);
    EXPECT_EQ(lock(empty, 0), EM862X_SUCCESS);
    std::uint8_t *bytes = RUAMap(rua, empty, 0);
    EXPECT_NE(bytes, nullptr);
    RUAUnMap(rua, bytes, 0);
    EXPECT_EQ(unlock(empty, 0), EM862X_SUCCESS);
}

TEST_F(dram_access_test, freeing_a_block_ends_its_locks_and_no_others) {
    const std::uint32_t other = RUAMalloc(rua, 0, 57, 1000);
    EXPECT_EQ(lock(block + 10, 10), EM862X_SUCCESS);
    EXPECT_EQ(lock(other, 10), EM862X_SUCCESS);
    RUAFree(rua, block);
    ASSERT_EQ(RUAMalloc(rua, 0, 57, 1000), block);
    EXPECT_EQ(lock(block + 10, 10), EM862X_SUCCESS);
    EXPECT_EQ(lock(other, 10), EM862X_FAILURE);
}

TEST_F(dram_access_test, a_foreign_instance_is_refused) {
    EXPECT_EQ(RUALock(nullptr, block, 10), EM862X_FAILURE);
    EXPECT_EQ(lock(block, 10), EM862X_SUCCESS);
    EXPECT_EQ(RUAMap(nullptr, block, 10), nullptr);
    EXPECT_EQ(RUAUnLock(nullptr, block, 10), EM862X_FAILURE);
    EXPECT_EQ(unlock(block, 10), EM862X_SUCCESS);
}

} // namespace
