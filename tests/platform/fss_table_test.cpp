/* SPDX-License-Identifier: MIT */
/*
 * The glyph table by itself: collisions, the bound in bytes, records that callers hold.
 */
#include <memory>

#include <gtest/gtest.h>

#include "platform/host/fss_scales.h"
#include "platform/host/fss_table.h"

namespace {

using em862x::glyph_key;
using em862x::glyph_record;
using em862x::glyph_scale;
using em862x::glyph_table;

/* Clears its table at the end, as its user must. */
struct fss_table_test : testing::Test {
    ~fss_table_test() override { table->clear(); }

    /* Inserts a fresh record of about `bytes` bytes. */
    glyph_record *add(int slot, std::uint32_t code, int bytes = 64, std::uint32_t held = 0) {
        glyph_record *record = em862x::make_record(8, bytes).release();
        record->key = glyph_key(slot, code);
        record->outstanding = held;
        table->insert(*record);
        return record;
    }

    std::unique_ptr<glyph_table> table = std::make_unique<glyph_table>();
};

TEST_F(fss_table_test, finds_exactly_what_was_inserted) {
    glyph_record *record = add(0, 'A');
    EXPECT_EQ(table->find(glyph_key(0, 'A')), record);
    EXPECT_EQ(table->find(glyph_key(1, 'A')), nullptr);
    EXPECT_EQ(table->find(glyph_key(0, 'B')), nullptr);
    EXPECT_EQ(table->find(glyph_key(0, 'A' + em862x::k_table_entries)), nullptr);
}

TEST_F(fss_table_test, an_empty_table_finds_nothing_even_for_no_scale) {
    for (std::uint32_t code = 0; code < 2 * em862x::k_table_entries; code++)
        ASSERT_EQ(table->find(glyph_key(-1, code)), nullptr);
}

TEST_F(fss_table_test, latin_letters_of_all_scales_fit_side_by_side) {
    for (int slot = 0; slot < em862x::k_scale_slots; slot++)
        for (std::uint32_t code = 0; code < 256; code++)
            add(slot, code, 16);
    for (int slot = 0; slot < em862x::k_scale_slots; slot++)
        for (std::uint32_t code = 0; code < 256; code++)
            ASSERT_NE(table->find(glyph_key(slot, code)), nullptr) << slot << " " << code;
}

TEST_F(fss_table_test, a_collision_replaces_a_record_nobody_holds) {
    add(0, 'A');
    glyph_record *second = add(0, 'A' + em862x::k_table_entries);
    EXPECT_EQ(table->find(glyph_key(0, 'A')), nullptr);
    EXPECT_EQ(table->find(second->key), second);
    EXPECT_EQ(table->bytes(), second->bytes);
}

TEST_F(fss_table_test, a_collision_leaves_a_held_record_in_place) {
    glyph_record *held = add(0, 'A', 64, 1);
    em862x::record_handle second(add(0, 'A' + em862x::k_table_entries));
    EXPECT_FALSE(second->is_cached);
    EXPECT_EQ(table->find(held->key), held);
    held->outstanding = 0;
}

TEST_F(fss_table_test, the_bytes_stay_bounded_and_the_newest_is_kept) {
    for (std::uint32_t code = 0; code < 1000; code++) {
        glyph_record *newest = add(0, code, 4000);
        ASSERT_LE(table->bytes(), em862x::k_table_bytes_max);
        ASSERT_EQ(table->find(glyph_key(0, code)), newest);
    }
}

TEST_F(fss_table_test, what_was_used_lately_outlives_what_was_not) {
    for (std::uint32_t code = 0; code < 100; code++)
        add(0, code, 4000)->is_recent = code == 7;
    for (std::uint32_t code = 100; code < 170; code++)
        add(0, code, 4000);
    EXPECT_NE(table->find(glyph_key(0, 7)), nullptr);
    EXPECT_EQ(table->find(glyph_key(0, 6)), nullptr);
}

TEST_F(fss_table_test, a_record_too_large_stays_out) {
    em862x::record_handle large(em862x::make_record(2048, 600).release());
    large->key = glyph_key(0, 'A');
    table->insert(*large);
    EXPECT_FALSE(large->is_cached);
    EXPECT_EQ(table->bytes(), 0u);
}

TEST_F(fss_table_test, when_all_is_held_the_newcomer_stays_out) {
    std::vector<glyph_record *> held;
    while (table->bytes() + 4100 <= em862x::k_table_bytes_max)
        held.push_back(add(0, static_cast<std::uint32_t>(held.size()), 4000, 1));
    em862x::record_handle late(add(0, 3000, 4090));
    EXPECT_FALSE(late->is_cached);
    for (glyph_record *record : held)
        record->outstanding = 0;
}

TEST_F(fss_table_test, dropping_a_scale_leaves_the_others) {
    add(0, 'A');
    glyph_record *other = add(1, 'A');
    table->drop_scale(0);
    EXPECT_EQ(table->find(glyph_key(0, 'A')), nullptr);
    EXPECT_EQ(table->find(glyph_key(1, 'A')), other);
    EXPECT_EQ(table->bytes(), other->bytes);
}

TEST_F(fss_table_test, a_held_record_outlives_its_scale) {
    em862x::record_handle held(add(0, 'A', 64, 1));
    table->drop_scale(0);
    EXPECT_FALSE(held->is_cached);
    EXPECT_EQ(held->glyph.rows, 64);
    EXPECT_EQ(table->bytes(), 0u);
}

TEST(fss_record_test, sides_out_of_range_are_refused) {
    EXPECT_EQ(em862x::make_record(-1, 1), nullptr);
    EXPECT_EQ(em862x::make_record(1, -1), nullptr);
    EXPECT_EQ(em862x::make_record(4097, 1), nullptr);
    EXPECT_EQ(em862x::make_record(1, 4097), nullptr);
}

TEST(fss_record_test, a_bitmap_stored_bottom_row_first_is_turned) {
    const std::uint8_t bytes[] = {0x03, 0x00, 0x02, 0x00, 0x01, 0x00};
    const em862x::record_handle record = em862x::make_record({8, 3, -2, bytes});
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->glyph.pitch, 1);
    EXPECT_EQ(record->bitmap()[0], 0x01);
    EXPECT_EQ(record->bitmap()[1], 0x02);
    EXPECT_EQ(record->bitmap()[2], 0x03);
}

TEST(fss_record_test, a_bitmap_without_ink_has_no_rows) {
    const std::uint8_t bytes[] = {0x00, 0x00};
    const em862x::record_handle record = em862x::make_record({9, 1, 2, bytes});
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->glyph.rows, 0);
    EXPECT_EQ(em862x::make_record({0, 0, 0, nullptr})->glyph.rows, 0);
}

TEST(fss_record_test, metrics_are_brought_into_range) {
    const em862x::record_handle record = em862x::make_record(1, 1);
    em862x::set_metrics(*record, -40000, 40000, -5);
    EXPECT_EQ(record->glyph.left, -32768);
    EXPECT_EQ(record->glyph.top, 32767);
    EXPECT_EQ(record->glyph.advance, 0);
}

TEST(fss_scales_test, the_scale_unused_longest_makes_room) {
    em862x::scale_memory scales;
    bool taken_over = false;
    for (int i = 1; i <= em862x::k_scale_slots; i++) {
        EXPECT_EQ(scales.find({i, 0, 0, i}, taken_over), i - 1);
        EXPECT_TRUE(taken_over);
    }
    EXPECT_EQ(scales.find({1, 0, 0, 1}, taken_over), 0);
    EXPECT_FALSE(taken_over);
    EXPECT_EQ(scales.find({99, 0, 0, 99}, taken_over), 1) << "slot 0 was used again";
    EXPECT_TRUE(taken_over);
}

TEST(fss_scales_test, all_four_values_tell_scales_apart) {
    em862x::scale_memory scales;
    bool taken_over = false;
    scales.find({5, 0, 0, 5}, taken_over);
    for (const glyph_scale &other : {glyph_scale{6, 0, 0, 5}, glyph_scale{5, 1, 0, 5},
                                     glyph_scale{5, 0, 1, 5}, glyph_scale{5, 0, 0, 6}}) {
        scales.find(other, taken_over);
        EXPECT_TRUE(taken_over);
    }
}

} // namespace
