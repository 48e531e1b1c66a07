/* SPDX-License-Identifier: MIT */
/*
 * The RUA calls as a client makes them: instance, properties, DRAM.
 */
#include <gtest/gtest.h>

#include "platform/host/rua_instance.h"

namespace {

constexpr std::uint32_t k_engine = 0x20;
constexpr std::uint32_t k_memory_query = 4292;
constexpr std::uint32_t k_open = 4293;
constexpr std::uint32_t k_close = 4294;

struct rua_test : testing::Test {
    rua_test() {
        em862x::rua_reset();
        EXPECT_EQ(RUACreateInstance(&rua, 0), EM862X_SUCCESS);
    }
    ~rua_test() override { em862x::rua_reset(); }

    int exchange(std::uint32_t module, std::uint32_t property, std::uint32_t in, void *out,
                 std::uint32_t out_size) {
        return RUAExchangeProperty(rua, module, property, &in, sizeof in, out, out_size);
    }

    /* Does what a client does before it opens the engine. */
    void fill_profile(std::uint32_t (&profile)[6]) {
        std::uint32_t sizes[2] = {};
        ASSERT_EQ(exchange(k_engine, k_memory_query, 10, sizes, sizeof sizes), EM862X_SUCCESS);
        const std::uint32_t a = RUAMalloc(rua, 0, 57, sizes[0]);
        const std::uint32_t b = RUAMalloc(rua, 0, 57, sizes[1]);
        const std::uint32_t filled[6] = {10, 1, a, sizes[0], b, sizes[1]};
        std::copy(std::begin(filled), std::end(filled), profile);
    }

    int open(const std::uint32_t (&profile)[6]) {
        return RUASetProperty(rua, k_engine, k_open, profile, sizeof profile);
    }

    int close(std::uint32_t argument = 0) {
        return RUASetProperty(rua, k_engine, k_close, &argument, sizeof argument);
    }

    rua_instance *rua = nullptr;
};

TEST_F(rua_test, only_chip_0_exists) {
    rua_instance *other = nullptr;
    EXPECT_EQ(RUACreateInstance(&other, 1), EM862X_FAILURE);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(RUACreateInstance(nullptr, 0), EM862X_FAILURE);
}

TEST_F(rua_test, a_process_has_one_instance) {
    rua_instance *again = nullptr;
    EXPECT_EQ(RUACreateInstance(&again, 0), EM862X_SUCCESS);
    EXPECT_EQ(again, rua);
}

TEST_F(rua_test, the_engine_reports_the_memory_it_needs) {
    std::uint32_t sizes[2] = {};
    EXPECT_EQ(exchange(k_engine, k_memory_query, 10, sizes, sizeof sizes), EM862X_SUCCESS);
    EXPECT_EQ(sizes[0], 65536u);
    EXPECT_EQ(sizes[1], 16384u);
}

TEST_F(rua_test, there_is_one_graphics_engine) {
    std::uint32_t count = 0;
    EXPECT_EQ(exchange(1, 1, 0x20, &count, sizeof count), EM862X_SUCCESS);
    EXPECT_EQ(count, 1u);
}

TEST_F(rua_test, unknown_exchanges_fail_and_leave_the_reply_alone) {
    std::uint32_t out[2] = {77, 78};
    const std::uint32_t bad[][3] = {
        {0x20, 4292, 11}, {0x120, 4292, 10}, {1, 4292, 10},    {0x20, 1, 0x20}, {1, 1, 0x21},
        {1, 1, 0},        {0x20, 4293, 10},  {0x20, 4334, 10}, {0, 0, 0},       {0x20, 4331, 10},
    };
    for (const auto &[module, property, in] : bad)
        for (const std::uint32_t size : {4u, 8u})
            EXPECT_EQ(exchange(module, property, in, out, size), EM862X_FAILURE)
                << module << " " << property << " " << in;
    EXPECT_EQ(out[0], 77u);
    EXPECT_EQ(out[1], 78u);
}

TEST_F(rua_test, exchanges_of_the_wrong_size_fail) {
    std::uint32_t in[2] = {10, 0};
    std::uint32_t out[3] = {};
    for (const std::uint32_t size : {0u, 3u, 5u, 8u, 0xFFFFFFFFu})
        EXPECT_EQ(RUAExchangeProperty(rua, k_engine, k_memory_query, in, size, out, 8),
                  EM862X_FAILURE);
    for (const std::uint32_t size : {0u, 4u, 7u, 12u, 0xFFFFFFFFu})
        EXPECT_EQ(RUAExchangeProperty(rua, k_engine, k_memory_query, in, 4, out, size),
                  EM862X_FAILURE);
}

TEST_F(rua_test, the_engine_opens_closes_and_opens_again) {
    std::uint32_t profile[6];
    fill_profile(profile);
    EXPECT_EQ(open(profile), EM862X_SUCCESS);
    EXPECT_EQ(close(), EM862X_SUCCESS);
    EXPECT_EQ(open(profile), EM862X_SUCCESS);
}

TEST_F(rua_test, an_open_engine_is_busy) {
    std::uint32_t profile[6];
    fill_profile(profile);
    EXPECT_EQ(open(profile), EM862X_SUCCESS);
    EXPECT_EQ(open(profile), EM862X_BUSY);
}

TEST_F(rua_test, a_profile_with_any_wrong_word_is_refused) {
    std::uint32_t good[6];
    fill_profile(good);
    for (std::size_t word = 0; word < 6; word++)
        for (const std::uint32_t wrong : {0u, good[word] + 1, 0xFFFFFFFFu}) {
            std::uint32_t profile[6];
            std::copy(std::begin(good), std::end(good), profile);
            profile[word] = wrong;
            EXPECT_EQ(open(profile), EM862X_FAILURE) << "word " << word << " = " << wrong;
        }
    EXPECT_EQ(open(good), EM862X_SUCCESS);
}

TEST_F(rua_test, a_profile_over_freed_memory_is_refused) {
    std::uint32_t profile[6];
    fill_profile(profile);
    RUAFree(rua, profile[4]);
    EXPECT_EQ(open(profile), EM862X_FAILURE);
}

TEST_F(rua_test, a_profile_with_both_areas_in_one_place_is_refused) {
    std::uint32_t profile[6];
    fill_profile(profile);
    profile[4] = profile[2];
    EXPECT_EQ(open(profile), EM862X_FAILURE);
}

TEST_F(rua_test, a_profile_of_the_wrong_size_is_refused) {
    std::uint32_t profile[6];
    fill_profile(profile);
    for (const std::uint32_t size : {0u, 20u, 23u, 25u, 28u})
        EXPECT_EQ(RUASetProperty(rua, k_engine, k_open, profile, size), EM862X_FAILURE);
    EXPECT_EQ(RUASetProperty(rua, k_engine, k_open, nullptr, 24), EM862X_FAILURE);
}

TEST_F(rua_test, there_is_no_second_engine_to_open) {
    std::uint32_t profile[6];
    fill_profile(profile);
    EXPECT_EQ(RUASetProperty(rua, 0x120, k_open, profile, sizeof profile), EM862X_FAILURE);
}

TEST_F(rua_test, closing_needs_an_open_engine_and_a_zero) {
    EXPECT_EQ(close(), EM862X_FAILURE);
    std::uint32_t profile[6];
    fill_profile(profile);
    EXPECT_EQ(open(profile), EM862X_SUCCESS);
    EXPECT_EQ(close(1), EM862X_FAILURE);
    EXPECT_EQ(RUASetProperty(rua, k_engine, k_close, nullptr, 4), EM862X_FAILURE);
    EXPECT_EQ(close(), EM862X_SUCCESS);
    EXPECT_EQ(close(), EM862X_FAILURE);
}

TEST_F(rua_test, measuring_and_rendering_are_refused) {
    const std::uint8_t request[24] = {};
    std::uint32_t size[2] = {};
    EXPECT_EQ(RUAExchangeProperty(rua, k_engine, 4334, request, 24, size, 8), EM862X_FAILURE);
    EXPECT_EQ(RUASetProperty(rua, k_engine, 4332, request, 12), EM862X_FAILURE);
    EXPECT_EQ(RUASetProperty(rua, k_engine, 4331, request, 24), EM862X_FAILURE);
}

TEST_F(rua_test, memory_runs_out_and_comes_back) {
    std::vector<std::uint32_t> blocks;
    while (const std::uint32_t address = RUAMalloc(rua, 0, 57, 4 << 20))
        blocks.push_back(address);
    ASSERT_FALSE(blocks.empty());
    ASSERT_LE(blocks.size(), 64u);
    RUAFree(rua, blocks.front());
    RUAFree(rua, blocks.front());
    EXPECT_NE(RUAMalloc(rua, 0, 57, 4 << 20), 0u);
    EXPECT_EQ(RUAMalloc(rua, 0, 57, 4 << 20), 0u);
}

TEST_F(rua_test, only_uncached_memory_of_controller_0_exists) {
    EXPECT_EQ(RUAMalloc(rua, 1, 57, 64), 0u);
    EXPECT_EQ(RUAMalloc(rua, 0, 0, 64), 0u);
    EXPECT_NE(RUAMalloc(rua, 0, 57, 64), 0u);
}

TEST_F(rua_test, a_block_of_no_bytes_has_an_address_of_its_own) {
    const std::uint32_t first = RUAMalloc(rua, 0, 57, 0);
    EXPECT_NE(first, 0u);
    EXPECT_NE(RUAMalloc(rua, 0, 57, 0), first);
}

TEST_F(rua_test, a_foreign_instance_is_refused) {
    std::uint32_t in = 0x20;
    std::uint32_t out = 5;
    auto *foreign = reinterpret_cast<rua_instance *>(&in);
    for (rua_instance *wrong : {foreign, static_cast<rua_instance *>(nullptr)}) {
        EXPECT_EQ(RUAExchangeProperty(wrong, 1, 1, &in, 4, &out, 4), EM862X_FAILURE);
        EXPECT_EQ(RUASetProperty(wrong, k_engine, k_close, &in, 4), EM862X_FAILURE);
        EXPECT_EQ(RUAMalloc(wrong, 0, 57, 64), 0u);
        RUAFree(wrong, 0x10000000);
    }
    EXPECT_EQ(out, 5u);
}

} // namespace
