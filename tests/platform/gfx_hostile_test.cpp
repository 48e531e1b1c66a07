/* SPDX-License-Identifier: MIT */
/*
 * What no honest client sends and no honest font holds: clear failures, nothing written outside.
 */
#include "tests/platform/engine_fixture.h"

#include <random>

namespace {

struct gfx_hostile_test : engine_fixture {
    /* Measures and renders all characters of the font at some sizes; any result will do. */
    void use_all() {
        for (const std::uint32_t size : {1u, 16u, 200u})
            for (std::uint32_t code = 1; code < 256; code += size == 16 ? 1 : 16) {
                cell answer;
                if (measure(query(code, size), answer) != EM862X_SUCCESS)
                    continue;
                ASSERT_LE(answer.width, 8192u);
                ASSERT_LE(answer.height, 8192u);
                for (std::uint32_t part = 0; part < RMTTGetCompoundCount(font, code); part++) {
                    if (const std::int16_t *matrix = RMTTGetScaleMatrix(font, code, part))
                        send(k_matrix, matrix, 12);
                    render(render_request(code, part, size));
                }
            }
    }

    /* Opens exactly these bytes as the font. */
    int open_bytes(const std::string &bytes) {
        probes::opens().redirect = {{"/font.ttf", write_file("font.ttf", bytes)}};
        probes::opens().hide_others = true;
        return open("/font.ttf");
    }
};

TEST_F(gfx_hostile_test, wild_scales_are_refused) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    for (const std::uint32_t scale : {8000u, 1u << 20, 1u << 31, 0xFFFFFFFFu}) {
        request asked = render_request('A', 0, 16);
        asked.scale = scale;
        cell answer;
        EXPECT_EQ(measure(asked, answer), EM862X_FAILURE) << scale;
        EXPECT_EQ(render(asked), EM862X_FAILURE) << scale;
        EXPECT_EQ(answer.width, 0u);
    }
}

TEST_F(gfx_hostile_test, wild_header_values_are_refused_or_bounded) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    for (const int above : {0, 1901, 0x7FFF, 0x8000, 0xFFFF})
        for (const int below : {0, 483, 0x7FFF, 0x8000, 0xFFFF})
            for (const std::uint32_t scale : {1u, 16u, 2048u, 0x7FFFFFFFu}) {
                request asked = render_request('A', 0, 16);
                asked.header_0 = static_cast<std::uint16_t>(above);
                asked.header_1 = static_cast<std::uint16_t>(below);
                asked.extent = 0xFFFF;
                asked.scale = scale;
                cell answer;
                const int measured = measure(asked, answer);
                EXPECT_LE(answer.width, 8192u);
                EXPECT_LE(answer.height, 8192u);
                const int rendered = render(asked);
                if (measured != EM862X_SUCCESS) {
                    EXPECT_EQ(rendered, EM862X_FAILURE);
                }
            }
}

TEST_F(gfx_hostile_test, scratch_outside_a_live_block_is_refused_and_nothing_is_written) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const cell measured = cell_of('A', 16);
    const std::uint32_t bytes = 8 * measured.height;
    const std::uint32_t small = RUAMalloc(rua, 0, 57, bytes);
    const std::uint32_t behind = RUAMalloc(rua, 0, 57, 64);
    std::memset(rua->memory.resolve(behind, 64), 0xAA, 64);
    request made = render_request('A', 0, 16);
    const std::uint32_t bad[] = {0, 1, small + 1, behind, behind + 63, 0xFFFFFFFF, 0x0FFFFFFF};
    for (const std::uint32_t address : bad) {
        made.scratch = address;
        EXPECT_EQ(render(made), EM862X_FAILURE) << address;
    }
    made.scratch = small;
    EXPECT_EQ(render(made), EM862X_SUCCESS);
    const std::byte *bytes_behind = rua->memory.resolve(behind, 64);
    for (int i = 0; i < 64; i++)
        ASSERT_EQ(bytes_behind[i], std::byte{0xAA});
    RUAFree(rua, small);
    EXPECT_EQ(render(made), EM862X_FAILURE);
}

TEST_F(gfx_hostile_test, words_that_name_no_outline_are_refused) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    for (const std::uint32_t word : {0u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        request made = render_request('A', 0, 16);
        made.word_a = word;
        EXPECT_EQ(render(made), EM862X_FAILURE) << word;
    }
    for (const std::uint32_t word : {0x10000u, 0xFFFFFFFFu}) {
        request made = render_request('A', 0, 16);
        made.word_b = word;
        EXPECT_EQ(render(made), EM862X_FAILURE) << word;
    }
}

TEST_F(gfx_hostile_test, outlines_of_a_closed_font_are_gone_for_good) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const request made = render_request('A', 0, 16);
    rmtt_font *closed = font;
    EXPECT_EQ(RMTTCloseFont(rua, font), EM862X_SUCCESS);
    EXPECT_EQ(render(made), EM862X_FAILURE);
    EXPECT_EQ(RMTTGetGlyphMetrics(closed, 'A'), nullptr);
    ASSERT_EQ(open(k_dejavu), EM862X_SUCCESS);
    EXPECT_EQ(render(made), EM862X_FAILURE) << "the words of one font never mean another";
}

TEST_F(gfx_hostile_test, wild_matrices_stay_inside_the_cell) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const std::int16_t values[] = {-32768, -1, 0, 1, 0x4000, 32767};
    for (const std::int16_t a : values)
        for (const std::int16_t b : values)
            for (const std::int16_t move : values) {
                const std::int16_t matrix[6] = {a, b, b, a, move, move};
                EXPECT_EQ(send(k_matrix, matrix, 12), EM862X_SUCCESS);
                render(render_request('A', 0, 100));
            }
}

TEST_F(gfx_hostile_test, records_of_another_size_are_refused) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    std::uint8_t record[64] = {};
    const request made = render_request('A', 0, 16);
    std::memcpy(record, &made, sizeof made);
    std::uint32_t out[4] = {};
    for (std::uint32_t size = 0; size < 40; size++) {
        if (size != 24) {
            EXPECT_EQ(send(k_render, record, size), EM862X_FAILURE) << size;
            EXPECT_EQ(RUAExchangeProperty(rua, k_engine, k_measure, record, size, out, 8),
                      EM862X_FAILURE);
        }
        if (size != 12) {
            EXPECT_EQ(send(k_matrix, record, size), EM862X_FAILURE) << size;
        }
        if (size != 8) {
            EXPECT_EQ(RUAExchangeProperty(rua, k_engine, k_measure, record, 24, out, size),
                      EM862X_FAILURE);
        }
    }
    EXPECT_EQ(send(k_render, nullptr, 24), EM862X_FAILURE);
    EXPECT_EQ(send(k_matrix, nullptr, 12), EM862X_FAILURE);
    EXPECT_EQ(RUAExchangeProperty(rua, k_engine, k_measure, nullptr, 24, out, 8), EM862X_FAILURE);
    EXPECT_EQ(RUAExchangeProperty(rua, k_engine, k_measure, record, 24, nullptr, 8),
              EM862X_FAILURE);
}

TEST_F(gfx_hostile_test, a_closed_engine_and_other_engines_know_no_glyphs) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const request made = render_request('A', 0, 16);
    cell answer;
    for (const std::uint32_t module : {0x120u, 0u, 1u, 0x21u}) {
        EXPECT_EQ(RUAExchangeProperty(rua, module, k_measure, &made, 24, &answer, 8),
                  EM862X_FAILURE);
        EXPECT_EQ(RUASetProperty(rua, module, k_render, &made, 24), EM862X_FAILURE);
        EXPECT_EQ(RUASetProperty(rua, module, k_matrix, &made, 12), EM862X_FAILURE);
    }
    const std::uint32_t none = 0;
    EXPECT_EQ(send(4294, &none, 4), EM862X_SUCCESS);
    EXPECT_EQ(measure(made, answer), EM862X_FAILURE);
    EXPECT_EQ(render(made), EM862X_FAILURE);
    EXPECT_EQ(send(k_matrix, &made, 12), EM862X_FAILURE);
}

TEST_F(gfx_hostile_test, pointers_that_are_no_font_have_no_characters) {
    rmtt_font foreign = {};
    std::uint32_t words[2] = {7, 7};
    for (rmtt_font *wrong : {&foreign, static_cast<rmtt_font *>(nullptr)}) {
        EXPECT_EQ(RMTTGetGlyphMetrics(wrong, 'A'), nullptr);
        EXPECT_EQ(RMTTGetCompoundCount(wrong, 'A'), 0u);
        EXPECT_EQ(RMTTGetScaleMatrix(wrong, 'A', 0), nullptr);
        RMTTGetGlyphPointer(wrong, 'A', 0, &words[0], &words[1]);
        EXPECT_EQ(words[0], 0u);
        RMTTGetGlyphPointer(wrong, 'A', 0, nullptr, nullptr);
    }
    em862x::rua_reset();
    EXPECT_EQ(RMTTGetGlyphMetrics(font, 'A'), nullptr) << "without an instance";
}

TEST_F(gfx_hostile_test, parts_beyond_the_last_have_nothing) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    for (const std::uint32_t part : {2u, 3u, 0xFFFFFFFFu}) {
        std::uint32_t words[2] = {7, 7};
        RMTTGetGlyphPointer(font, 0xE9, part, &words[0], &words[1]);
        EXPECT_EQ(words[0], 0u);
        EXPECT_EQ(RMTTGetScaleMatrix(font, 0xE9, part), nullptr);
    }
}

TEST_F(gfx_hostile_test, an_em_size_of_0_is_no_font) {
    std::string bytes = read_file(k_vera);
    const std::size_t entry = bytes.find("head");
    ASSERT_NE(entry, std::string::npos);
    std::size_t head = 0;
    for (std::size_t i = 0; i < 4; i++)
        head = head << 8 | static_cast<unsigned char>(bytes[entry + 8 + i]);
    ASSERT_EQ(bytes.substr(head + 18, 2), std::string("\x08\x00", 2)) << "2048";
    bytes[head + 18] = bytes[head + 19] = 0;
    EXPECT_EQ(open_bytes(bytes), EM862X_FAILURE);
    EXPECT_EQ(font, nullptr);
}

TEST_F(gfx_hostile_test, fonts_cut_short_open_or_not_and_harm_nothing) {
    const std::string whole = read_file(k_vera);
    for (std::size_t length = 0; length < whole.size(); length += 1 + whole.size() / 40)
        if (open_bytes(whole.substr(0, length)) == EM862X_SUCCESS)
            use_all();
}

TEST_F(gfx_hostile_test, fonts_with_flipped_bits_harm_nothing) {
    const std::string whole = read_file(k_vera);
    std::mt19937 random(815);
    int opened = 0;
    for (int round = 0; round < 60; round++) {
        std::string damaged = whole;
        for (int flip = 0; flip < 1 << round % 10; flip++)
            damaged[random() % damaged.size()] ^= static_cast<char>(1 << random() % 8);
        if (open_bytes(damaged) != EM862X_SUCCESS)
            continue;
        opened++;
        use_all();
        EXPECT_EQ(RMTTCloseFont(rua, font), EM862X_SUCCESS);
    }
    EXPECT_GT(opened, 20);
}

TEST_F(gfx_hostile_test, every_allocation_that_fails_is_survived) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    unsigned long number = 1;
    for (bool failed = true; failed && number < 500; number++) {
        EXPECT_EQ(RMTTCloseFont(rua, font), EM862X_SUCCESS);
        ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
        probes::fail_allocation(number);
        for (const std::uint32_t code : {std::uint32_t{'W'}, 0xE9u})
            if (RMTTGetGlyphMetrics(font, code))
                for (std::uint32_t part = 0; part < RMTTGetCompoundCount(font, code); part++)
                    render(render_request(code, part, 100));
        if (RUALock(rua, scratch, 100) == EM862X_SUCCESS) {
            EXPECT_EQ(RUAUnLock(rua, scratch, 100), EM862X_SUCCESS);
        }
        failed = probes::allocation_failed();
        probes::fail_allocation(0);
    }
    EXPECT_LT(number, 500u);
    EXPECT_GT(number, 3u);
    EXPECT_EQ(part_picture('A', 0, 16).size(), 19u);
}

} // namespace
