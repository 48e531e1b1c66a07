/* SPDX-License-Identifier: MIT */
/*
 * The tables of a TrueType file read by hand, big-endian as they are: what tests expect of a font.
 */
#ifndef UX_TESTS_PLATFORM_SFNT_H
#define UX_TESTS_PLATFORM_SFNT_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

/* A component as it stands in the glyf table. */
struct component {
    std::uint16_t glyph;
    std::int16_t x, y;
    std::array<std::int16_t, 4> linear; /* xx, xy, yx, yy in 2.14 */

    bool operator==(const component &) const = default;
};

class sfnt {
  public:
    explicit sfnt(std::string bytes) : bytes_(std::move(bytes)) {}

    std::uint16_t u16(std::size_t at) const {
        return static_cast<std::uint16_t>(byte(at) << 8 | byte(at + 1));
    }
    std::int16_t i16(std::size_t at) const { return static_cast<std::int16_t>(u16(at)); }
    std::uint32_t u32(std::size_t at) const {
        return static_cast<std::uint32_t>(u16(at)) << 16 | u16(at + 2);
    }

    std::size_t table(const char *tag) const {
        for (std::size_t i = 0; i < u16(4); i++)
            if (bytes_.compare(12 + 16 * i, 4, tag) == 0)
                return u32(12 + 16 * i + 8);
        ADD_FAILURE() << "no table " << tag;
        return 0;
    }

    std::size_t glyph(std::uint32_t index) const {
        const bool is_long = u16(table("head") + 50) != 0;
        const std::size_t loca = table("loca");
        return table("glyf") + (is_long ? u32(loca + 4 * index) : 2u * u16(loca + 2 * index));
    }

    std::uint16_t advance(std::uint32_t index) const {
        const std::uint32_t last = u16(table("hhea") + 34) - 1u;
        return u16(table("hmtx") + 4 * std::min(index, last));
    }

    /* Empty for a simple glyph. */
    std::vector<component> components(std::uint32_t index) const {
        std::vector<component> found;
        std::size_t at = glyph(index);
        if (i16(at) >= 0)
            return found;
        at += 10;
        std::uint16_t flags = 0x20;
        while (flags & 0x20) {
            flags = u16(at);
            component one = {u16(at + 2), 0, 0, {0x4000, 0, 0, 0x4000}};
            at += 4;
            EXPECT_TRUE(flags & 2) << "the fonts of this test place by offsets";
            if (flags & 1) {
                one.x = i16(at);
                one.y = i16(at + 2);
                at += 4;
            } else {
                one.x = static_cast<std::int8_t>(byte(at));
                one.y = static_cast<std::int8_t>(byte(at + 1));
                at += 2;
            }
            if (flags & 8) {
                one.linear = {i16(at), 0, 0, i16(at)};
                at += 2;
            } else if (flags & 0x40) {
                one.linear = {i16(at), 0, 0, i16(at + 2)};
                at += 4;
            } else if (flags & 0x80) { /* in the file: xscale, scale01, scale10, yscale */
                one.linear = {i16(at), i16(at + 4), i16(at + 2), i16(at + 6)};
                at += 8;
            }
            found.push_back(one);
        }
        return found;
    }

  private:
    unsigned byte(std::size_t at) const { return static_cast<unsigned char>(bytes_.at(at)); }

    std::string bytes_;
};

#endif
