/* SPDX-License-Identifier: MIT */
/*
 * A test that opens the graphics engine and a font the way a client does, and asks for glyphs with
 * the records as they cross the interface.
 */
#ifndef UX_TESTS_PLATFORM_ENGINE_FIXTURE_H
#define UX_TESTS_PLATFORM_ENGINE_FIXTURE_H

#include <algorithm>
#include <array>
#include <cstring>

#include "tests/platform/font_fixture.h"

class engine_fixture : public font_fixture {
  protected:
    static constexpr std::uint32_t k_engine = 0x20;
    static constexpr std::uint32_t k_render = 4331;
    static constexpr std::uint32_t k_matrix = 4332;
    static constexpr std::uint32_t k_measure = 4334;
    static constexpr std::uint32_t k_scratch_size = 1 << 20;

    struct request {
        std::uint32_t word_a = 0;
        std::uint32_t word_b = 0;
        std::uint32_t scratch = 0;
        std::uint32_t scale = 0;
        std::uint16_t extent = 0;
        std::int16_t bearing = 0;
        std::uint16_t header_0 = 0;
        std::uint16_t header_1 = 0;
    };
    static_assert(sizeof(request) == 24);

    struct cell {
        std::uint32_t width = 0;
        std::uint32_t height = 0;
    };

    /* Every code of the table is mapped: the protocol knows no printable range. */
    engine_fixture() {
        use_font(nullptr);
        EXPECT_EQ(RUACreateInstance(&rua, 0), EM862X_SUCCESS);
        for (std::uint32_t code = 1; code < 256; code++)
            mapping.code[code] = code;
        mapping.last = 255;
        const std::uint32_t areas[2] = {RUAMalloc(rua, 0, 57, 65536), RUAMalloc(rua, 0, 57, 16384)};
        const std::uint32_t profile[6] = {10, 1, areas[0], 65536, areas[1], 16384};
        EXPECT_EQ(RUASetProperty(rua, k_engine, 4293, profile, sizeof profile), EM862X_SUCCESS);
        scratch = RUAMalloc(rua, 0, 57, k_scratch_size);
    }

    int open(const char *path) {
        rm_non_ascii *name = RMnonAsciiFromAscii(path);
        const int result = RMTTOpenFont(rua, &font, name, &mapping);
        RMFreeNonAscii(name);
        return result;
    }

    /* A size query for a code; `size` in pixels. */
    request query(std::uint32_t code, std::uint32_t size) const {
        const std::int16_t *metrics = RMTTGetGlyphMetrics(font, code);
        if (!metrics)
            return {};
        request made;
        made.scale = (size << 11) / font->header[2];
        made.extent = static_cast<std::uint16_t>(metrics[4] + metrics[0]);
        made.bearing = metrics[0];
        made.header_0 = font->header[0];
        made.header_1 = font->header[1];
        return made;
    }

    int measure(const request &asked, cell &answer) const {
        return RUAExchangeProperty(rua, k_engine, k_measure, &asked, sizeof asked, &answer,
                                   sizeof answer);
    }

    cell cell_of(std::uint32_t code, std::uint32_t size) const {
        cell answer;
        EXPECT_EQ(measure(query(code, size), answer), EM862X_SUCCESS) << code << " " << size;
        return answer;
    }

    int send(std::uint32_t property, const void *record, std::uint32_t bytes) const {
        return RUASetProperty(rua, k_engine, property, record, bytes);
    }

    int render(const request &made) const { return send(k_render, &made, sizeof made); }

    /* A query completed for outline `part` of a code. */
    request render_request(std::uint32_t code, std::uint32_t part, std::uint32_t size) const {
        request made = query(code, size);
        RMTTGetGlyphPointer(font, code, part, &made.word_a, &made.word_b);
        made.scratch = scratch;
        return made;
    }

    /* Renders one outline with its matrix and reads it back: a row of '#' and '.' per cell row. */
    std::vector<std::string> part_picture(std::uint32_t code, std::uint32_t part,
                                          std::uint32_t size) const {
        if (const std::int16_t *matrix = RMTTGetScaleMatrix(font, code, part)) {
            EXPECT_EQ(send(k_matrix, matrix, 12), EM862X_SUCCESS);
        }
        const cell measured = cell_of(code, size);
        EXPECT_EQ(render(render_request(code, part, size)), EM862X_SUCCESS) << code << " " << size;
        return read_back(measured);
    }

    std::vector<std::string> read_back(const cell &measured) const {
        const std::uint32_t pitch = (measured.width + 63) / 64 * 8;
        const std::uint32_t bytes = pitch * measured.height;
        EXPECT_EQ(RUALock(rua, scratch, bytes), EM862X_SUCCESS);
        std::uint8_t *bits = RUAMap(rua, scratch, bytes);
        std::vector<std::string> rows(measured.height);
        for (std::uint32_t y = 0; bits && y < measured.height; y++)
            for (std::uint32_t x = 0; x < measured.width; x++)
                rows[y] += bits[y * pitch + x / 8] >> (7 - x % 8) & 1 ? '#' : '.';
        RUAUnMap(rua, bits + bytes, bytes);
        EXPECT_EQ(RUAUnLock(rua, scratch, bytes), EM862X_SUCCESS);
        return rows;
    }

    /* All outlines of a code laid over each other. */
    std::vector<std::string> whole_picture(std::uint32_t code, std::uint32_t size) const {
        const cell measured = cell_of(code, size);
        std::vector<std::string> all(measured.height, std::string(measured.width, '.'));
        for (std::uint32_t part = 0; part < RMTTGetCompoundCount(font, code); part++) {
            const std::vector<std::string> one = part_picture(code, part, size);
            for (std::size_t y = 0; y < all.size(); y++)
                for (std::size_t x = 0; x < all[y].size(); x++)
                    if (one[y][x] == '#')
                        all[y][x] = '#';
        }
        return all;
    }

    /* The font's number of the glyph of a code. */
    std::uint32_t index_of(std::uint32_t code) const {
        return FT_Get_Char_Index(static_cast<em862x::open_font *>(font)->face.get(), code);
    }

    rua_instance *rua = nullptr;
    rmtt_font *font = nullptr;
    rmtt_mapping mapping = {};
    std::uint32_t scratch = 0;
};

#endif
