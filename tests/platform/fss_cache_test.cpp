/* SPDX-License-Identifier: MIT */
/*
 * What the glyph cache saves, what it may take, and how long glyphs stay valid.
 */
#include "tests/platform/font_fixture.h"

#include <cstring>
#include <random>
#include <set>

#include <unistd.h>

#include "platform/host/fss_table.h"

namespace {

using fss_cache_test = font_fixture;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool k_resident_is_ours = false;
#elif defined(__has_feature)
constexpr bool k_resident_is_ours = !__has_feature(address_sanitizer);
#else
constexpr bool k_resident_is_ours = true;
#endif

long resident_bytes() {
    std::ifstream statistics("/proc/self/statm");
    long total = 0;
    long resident = 0;
    statistics >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

void draw(std::uint32_t code) {
    FSS_free_char(FSS_get_bitmap(code));
}

void draw_text(const char *text) {
    for (; *text; text++)
        draw(static_cast<unsigned char>(*text));
}

constexpr const char *k_text = "The quick brown fox jumps over the lazy dog, 0123456789 times.";

TEST_F(fss_cache_test, a_page_repainted_loads_each_glyph_of_each_size_once) {
    set_size(9, 9);
    draw('x');
    const unsigned long before = probes::glyph_loads();
    unsigned long calls = 0;
    std::set<std::pair<int, char>> distinct;
    for (int repaint = 0; repaint < 20; repaint++)
        for (const int size : {16, 24, 32, 16, 48}) {
            set_size(size, size);
            draw_text(k_text);
            calls += std::strlen(k_text);
            for (const char *c = k_text; *c; c++)
                distinct.emplace(size, *c);
        }
    const unsigned long loads = probes::glyph_loads() - before;
    EXPECT_EQ(loads, distinct.size());
    const double hit_rate = 1.0 - static_cast<double>(loads) / static_cast<double>(calls);
    RecordProperty("hit_rate_percent", static_cast<int>(hit_rate * 100));
    EXPECT_GT(hit_rate, 0.97);
}

TEST_F(fss_cache_test, sixteen_sizes_in_turn_stay_cached) {
    for (int size = 10; size < 26; size++) {
        set_size(size, size);
        draw_text(k_text);
    }
    const unsigned long before = probes::glyph_loads();
    for (int size = 10; size < 26; size++) {
        set_size(size, size);
        draw_text(k_text);
    }
    EXPECT_EQ(probes::glyph_loads(), before);
}

TEST_F(fss_cache_test, a_cached_text_allocates_nothing) {
    for (const int size : {16, 24}) {
        set_size(size, size);
        draw_text(k_text);
        draw('\n');
        draw(0x4E00);
    }
    const unsigned long before = probes::allocations();
    for (int repaint = 0; repaint < 100; repaint++)
        for (const int size : {16, 24}) {
            set_size(size, size);
            draw_text(k_text);
            draw('\n');
            draw(0x4E00);
        }
    EXPECT_EQ(probes::allocations(), before);
}

TEST_F(fss_cache_test, large_and_sheared_glyphs_are_cached_too) {
    const std::int32_t scales[][2] = {{300 << 16, 0}, {24 << 16, 6 << 16}};
    for (const auto &[size, shear] : scales) {
        FSS_set_scale(size, shear, 0, size);
        draw_text("0123456789");
        const unsigned long before = probes::glyph_loads();
        draw_text("0123456789");
        EXPECT_EQ(probes::glyph_loads(), before);
    }
}

TEST_F(fss_cache_test, the_probes_see_a_miss) {
    set_size(16, 16);
    draw('a');
    const unsigned long loads = probes::glyph_loads();
    const unsigned long allocations = probes::allocations();
    draw('b');
    EXPECT_EQ(probes::glyph_loads(), loads + 1);
    EXPECT_GT(probes::allocations(), allocations);
}

TEST_F(fss_cache_test, two_thousand_codes_at_twenty_sizes_stay_within_the_bytes) {
    use_font(k_dejavu);
    set_size(12, 12);
    draw_text(k_text);
    const long before = resident_bytes();
    for (int size = 10; size < 70; size += 3) {
        set_size(size, size);
        for (std::uint32_t code = 32; code < 2032; code++) {
            draw(code);
            ASSERT_LE(em862x::fss_table_bytes(), em862x::k_table_bytes_max);
        }
    }
    EXPECT_GT(em862x::fss_table_bytes(), em862x::k_table_bytes_max / 2) << "room is used";
    if (k_resident_is_ours) {
        EXPECT_LT(resident_bytes() - before, 8 << 20);
    }
}

TEST_F(fss_cache_test, endless_new_scales_stay_within_the_bytes) {
    for (int step = 0; step < 400; step++) {
        FSS_set_scale((12 << 16) + step * 700, 0, 0, 14 << 16);
        draw_text("abcdefgh");
    }
    EXPECT_LE(em862x::fss_table_bytes(), 16u * 8u * 128u) << "sixteen scales of eight small glyphs";
}

TEST_F(fss_cache_test, a_glyph_held_across_scale_changes_keeps_its_bits) {
    set_size(16, 16);
    fss_glyph *held = FSS_get_bitmap('A');
    ASSERT_NE(held, nullptr);
    const fss_glyph metrics = *held;
    const std::string bits(reinterpret_cast<char *>(held + 1),
                           static_cast<std::size_t>(held->rows * held->pitch));
    for (int size = 20; size < 60; size++) {
        set_size(size, size);
        draw_text(k_text);
    }
    em862x::fss_reset();
    EXPECT_EQ(std::memcmp(held, &metrics, sizeof metrics), 0);
    EXPECT_EQ(std::memcmp(held + 1, bits.data(), bits.size()), 0);
    FSS_free_char(held);
}

TEST_F(fss_cache_test, any_number_of_glyphs_may_be_out) {
    use_font(k_dejavu);
    std::vector<fss_glyph *> held;
    std::vector<fss_glyph> metrics;
    for (int size = 12; size < 72; size += 12) {
        set_size(size, size);
        for (std::uint32_t code = 0x100; code < 0x500; code++) {
            held.push_back(FSS_get_bitmap(code));
            ASSERT_NE(held.back(), nullptr);
            metrics.push_back(*held.back());
        }
    }
    std::vector<std::size_t> order(held.size());
    for (std::size_t i = 0; i < order.size(); i++)
        order[i] = i;
    std::shuffle(order.begin(), order.end(), std::mt19937(1));
    for (const std::size_t i : order) {
        EXPECT_EQ(std::memcmp(held[i], &metrics[i], sizeof(fss_glyph)), 0);
        FSS_free_char(held[i]);
    }
    EXPECT_LE(em862x::fss_table_bytes(), em862x::k_table_bytes_max);
}

TEST_F(fss_cache_test, the_same_glyph_out_many_times_is_one_glyph) {
    set_size(16, 16);
    fss_glyph *first = FSS_get_bitmap('A');
    fss_glyph *second = FSS_get_bitmap('A');
    EXPECT_EQ(first, second);
    FSS_free_char(first);
    em862x::fss_reset();
    EXPECT_EQ(second->rows, 12);
    FSS_free_char(second);
}

TEST_F(fss_cache_test, giving_a_cached_glyph_back_twice_is_harmless) {
    set_size(16, 16);
    fss_glyph *glyph = FSS_get_bitmap('A');
    FSS_free_char(glyph);
    FSS_free_char(glyph);
    EXPECT_EQ(fss_picture('A'), reference_picture(k_vera, 'A', {16, 16}));
}

TEST_F(fss_cache_test, line_ends_never_given_back_take_no_memory) {
    set_size(16, 16);
    EXPECT_NE(FSS_get_bitmap('\n'), nullptr);
    const unsigned long before = probes::allocations();
    for (int size = 10; size < 100; size++) {
        set_size(size, size);
        EXPECT_NE(FSS_get_bitmap('\n'), nullptr);
    }
    EXPECT_EQ(probes::allocations(), before);
}

TEST_F(fss_cache_test, setting_the_scale_loads_nothing) {
    set_size(16, 16);
    draw('A');
    const unsigned long before = probes::allocations();
    for (int i = 0; i < 1000; i++) {
        set_size(16, 16);
        set_size(17 + i % 20, 16);
    }
    EXPECT_EQ(probes::allocations(), before);
}

} // namespace
