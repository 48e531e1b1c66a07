// SPDX-License-Identifier: MIT
// Rendering strings into blocks: what each failure says, frees and keeps.

#include "tests/font/string_buffer_test.h"

TEST_F(StringBufferTest, every_call_that_fails_gives_null_and_frees_unless_memory_is_in_use) {
    const char *names[] = {"4334", "4332", "4331", "RUAMalloc", "RUALock", "RUAMap", "RUAUnLock"};
    const size_t counts[] = {4, 4, 4, 1, 4, 4, 4}; // calls for two glyphs of two outlines each
    fake_chip::outline turned = {{"X"}, {1, 0, 0, 1, 0, 0}};
    fake_chip::get().engine_glyphs['a'].outlines = {turned, turned};
    fake_chip::get().engine_glyphs['b'].outlines = {turned, turned};
    for (size_t i = 0; i < std::size(names); i++) {
        const std::string name = names[i];
        for (size_t nth = 0; nth <= counts[i]; nth++) {
            std::deque<int> results(nth, EM862X_SUCCESS);
            results.push_back(EM862X_FAILURE);
            fake_chip::get().results[name] = results;
            const std::string printed = render("ab");
            EXPECT_EQ(block != nullptr, nth == counts[i]) << name << " " << nth;
            EXPECT_EQ(printed.empty(), nth == counts[i]) << name << " " << nth;
            const calls made = take_calls();
            const bool keeps =
                (name == "RUALock" || name == "RUAMap" || name == "RUAUnLock") && nth < counts[i];
            const bool has_scratch =
                (name != "RUAMalloc" || nth == 1) && !(name == "4334" && nth < 2);
            EXPECT_EQ(only(made, "RUAFree").size(), has_scratch && !keeps ? 1u : 0u)
                << name << " " << nth;
            if (keeps)
                free(hooks::last_block());
        }
        fake_chip::get().results.clear();
    }
}

// --- failures that give everything back ----------------------------------------------------------

TEST_F(StringBufferTest, failed_measuring_is_told_with_a_blank_line_and_asks_for_no_memory) {
    fake_chip::get().results["4334"] = {6, 9};
    expect_failure("Cannot get glyph output size\nux_get_string_size_em862x FAIL\n\n");
    EXPECT_EQ(only(take_calls(), "RUAMalloc"), calls{});
    fake_chip::get().unknown_codes = {'a'};
    expect_failure("Could not retrieve size( char_index 97)\nux_get_string_size_em862x FAIL\n\n");
}

TEST_F(StringBufferTest, failed_block_is_told_with_its_bytes) {
    set_cell(10, 19);
    hooks::fail_allocation(1);
    expect_failure("Could not allocate 1520 bytes for font_base \n\n"); // 20 x 19 x 4
    EXPECT_EQ(only(take_calls(), "RUA").back().substr(0, 19), "RUAExchangeProperty");
}

TEST_F(StringBufferTest, block_of_an_empty_string_is_told_as_0_bytes) {
    hooks::fail_allocation(1);
    EXPECT_EQ(render(""), "Could not allocate 0 bytes for font_base \n\n");
    EXPECT_EQ(block, nullptr);
}

TEST_F(StringBufferTest, failed_scratch_is_told_without_a_line_end) {
    set_cell(40, 5);
    fake_chip::get().results["RUAMalloc"] = {9};
    expect_failure("scratch could not allocate 0x00000280 bytes for uncached DRAM"); // 128 x 5
    EXPECT_EQ(take_calls().back(), "RUAMalloc 0 57 640");
}

TEST_F(StringBufferTest, failed_second_measuring_frees_the_scratch) {
    fake_chip::get().results["4334"] = {6, 6, 6, 9};
    expect_failure("Cannot get glyph output size\n");
    EXPECT_EQ(take_calls().back(), "RUAFree 196608");
}

TEST_F(StringBufferTest, lost_character_is_told_by_its_substitute) {
    set_cell(2, 2);
    const auto cells = fake_chip::get().cell_of;
    fake_chip::get().cell_of = [cells](uint32_t code, uint32_t scale) {
        fake_chip::get().unknown_codes = {'?'}; // from the second look on
        return cells(code, scale);
    };
    EXPECT_EQ(render("\xC3"), "Could not retrieve size( char_index 63)\n");
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(take_calls().back(), "RUAFree 196608");
}

TEST_F(StringBufferTest, refused_matrix_frees_block_and_scratch) {
    fake_chip::get().engine_glyphs['b'].outlines = {{{"X"}, {1, 0, 0, 1, 0, 0}}};
    for (const int answer : {9, 0, 8}) {
        fake_chip::get().results["4332"] = {7, answer};
        expect_failure("Error sending command matrix (char code 98)\n");
        EXPECT_EQ(take_calls().back().substr(0, 7), "RUAFree");
    }
}

TEST_F(StringBufferTest, refused_outline_frees_block_and_scratch) {
    set_ink('a', {"X"});
    for (const int answer : {9, 0, 8}) {
        fake_chip::get().results["4331"] = {7, answer};
        expect_failure("Error sending command glyph (char code 97)\n");
        const calls made = take_calls();
        EXPECT_EQ(made.back().substr(0, 7), "RUAFree");
        EXPECT_EQ(only(made, "RUALock"), calls{});
    }
}

TEST_F(StringBufferTest, refused_outline_of_a_substitute_is_told_by_its_code) {
    set_ink('?', {"X"});
    fake_chip::get().results["4331"] = {9};
    EXPECT_EQ(render("\xFF"), "Error sending command glyph (char code 63)\n");
}

TEST_F(StringBufferTest, cell_that_grew_since_the_string_was_measured_is_refused) {
    const std::pair<fake_chip::cell, fake_chip::cell> measured[] = {
        {{2, 2}, {3, 2}}, {{2, 2}, {2, 3}}, {{2, 2}, {0xFFFFFFFF, 2}}, {{2, 2}, {2, 0xFFFFFFFF}}};
    for (const auto &[first, second] : measured) {
        int queries = 0;
        fake_chip::get().cell_of = [&, first = first, second = second](uint32_t, uint32_t) {
            return queries++ < 2 ? first : queries == 3 ? first : second;
        };
        expect_failure("Cannot get glyph output size\n");
        EXPECT_EQ(take_calls().back().substr(0, 7), "RUAFree");
    }
}

TEST_F(StringBufferTest, strings_beyond_all_memory_are_refused) {
    set_cell(0x7FFFFFF0, 0xFFFFFFFF);
    EXPECT_EQ(render("a").substr(0, 18), "Could not allocate");
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(only(take_calls(), "RUAMalloc"), calls{});
}

TEST_F(StringBufferTest, scratch_beyond_32_bits_is_refused_without_asking) {
    set_cell(1, 0x04000001); // 64 times as much is 2^32 + 64
    EXPECT_EQ(render("a", 16, 1), "scratch could not allocate 0x100000040 bytes for uncached DRAM");
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(only(take_calls(), "RUAMalloc"), calls{});
}

// --- failures that keep what there is ------------------------------------------------------------

TEST_F(StringBufferTest, refused_lock_keeps_block_and_scratch) {
    set_ink('a', {"X"});
    set_cell(10, 19);
    for (const int answer : {9, 7}) {
        fake_chip::get().next_address = k_scratch;
        fake_chip::get().results["RUALock"] = {answer};
        expect_abandoned("Error locking OSD buffer at 0x00030000 (0x00000098 bytes) on "
                         "ux_get_string_buffer_em862x\n");
    }
}

TEST_F(StringBufferTest, failed_mapping_keeps_block_scratch_and_lock) {
    set_ink('a', {"X"});
    set_cell(10, 19);
    fake_chip::get().results["RUAMap"] = {9};
    expect_failure("Error mapping OSD buffer at 0x00030000 (0x00000098 bytes) on "
                   "ux_get_string_buffer_em862x\n");
    EXPECT_EQ(take_calls().back(), "RUAMap 196608 152");
    free(hooks::last_block());
}

TEST_F(StringBufferTest, refused_unlock_keeps_block_and_scratch) {
    set_ink('a', {"X"});
    set_cell(10, 19);
    for (const int answer : {9, 7}) {
        fake_chip::get().next_address = k_scratch;
        fake_chip::get().results["RUAUnLock"] = {answer};
        expect_abandoned("Error unlocking OSD buffer at 0x00030000 (0x00000098 bytes) on "
                         "ux_get_string_buffer_em862x\n");
    }
}

TEST_F(StringBufferTest, failures_at_the_second_glyph_are_the_same) {
    set_ink('a', {"X"});
    set_ink('b', {"X"});
    set_cell(2, 2);
    fake_chip::get().results["RUALock"] = {6, 9};
    expect_abandoned("Error locking OSD buffer at 0x00030000 (0x00000010 bytes) on "
                     "ux_get_string_buffer_em862x\n");
    fake_chip::get().results["4331"] = {6, 9};
    expect_failure("Error sending command glyph (char code 98)\n");
    EXPECT_EQ(take_calls().back().substr(0, 7), "RUAFree");
}
