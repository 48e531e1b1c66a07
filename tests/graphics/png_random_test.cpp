// SPDX-License-Identifier: MIT
// PNG pictures of every colour type and depth, interlaced or not, with and without transparency, at
// random sizes: each pixel that is read is the one that the rules below make of the file's samples.

#include "tests/graphics/picture_files.h"
#include "ux_bitmap.h"

#include <cstring>
#include <iterator>
#include <random>

namespace {

constexpr int k_trials = 900;
constexpr int k_largest_side = 20;

struct kind {
    int color_type, depth;
};

constexpr kind k_kinds[] = {
    {PNG_COLOR_TYPE_GRAY, 1},        {PNG_COLOR_TYPE_GRAY, 2},      {PNG_COLOR_TYPE_GRAY, 4},
    {PNG_COLOR_TYPE_GRAY, 8},        {PNG_COLOR_TYPE_GRAY, 16},     {PNG_COLOR_TYPE_RGB, 8},
    {PNG_COLOR_TYPE_RGB, 16},        {PNG_COLOR_TYPE_PALETTE, 1},   {PNG_COLOR_TYPE_PALETTE, 2},
    {PNG_COLOR_TYPE_PALETTE, 4},     {PNG_COLOR_TYPE_PALETTE, 8},   {PNG_COLOR_TYPE_GRAY_ALPHA, 8},
    {PNG_COLOR_TYPE_GRAY_ALPHA, 16}, {PNG_COLOR_TYPE_RGB_ALPHA, 8}, {PNG_COLOR_TYPE_RGB_ALPHA, 16},
};

// A picture as its file holds it.
class samples {
  public:
    explicit samples(const png_content &content) : m_content(content) {}

    static uint32_t channels(int color_type) {
        const uint32_t colors = color_type & PNG_COLOR_MASK_COLOR ? 3 : 1;
        if (color_type == PNG_COLOR_TYPE_PALETTE)
            return 1;
        return colors + (color_type & PNG_COLOR_MASK_ALPHA ? 1 : 0);
    }

    static size_t row_bytes(const png_content &content) {
        const auto depth = static_cast<size_t>(content.depth);
        return (content.width * channels(content.color_type) * depth + 7) / 8;
    }

    uint32_t at(uint32_t x, uint32_t y, uint32_t channel) const {
        const auto depth = static_cast<size_t>(m_content.depth);
        const size_t bit = (x * channels(m_content.color_type) + channel) * depth;
        const uint8_t *byte = &m_content.bytes[row_bytes(m_content) * y + bit / 8];
        if (depth == 16)
            return uint32_t{byte[0]} << 8 | byte[1];
        return byte[0] >> (8 - depth - bit % 8) & ((1u << depth) - 1);
    }

    // The pixel as an ARGB word; `filler` is the alpha of pixels without one.
    uint32_t argb(uint32_t x, uint32_t y, uint32_t filler) const {
        const int type = m_content.color_type;
        if (type == PNG_COLOR_TYPE_PALETTE)
            return of_palette(at(x, y, 0), filler);
        const bool is_grey = !(type & PNG_COLOR_MASK_COLOR);
        const uint32_t red = at(x, y, 0);
        const uint32_t green = is_grey ? red : at(x, y, 1);
        const uint32_t blue = is_grey ? red : at(x, y, 2);
        uint32_t alpha = filler;
        if (type & PNG_COLOR_MASK_ALPHA)
            alpha = to_byte(at(x, y, is_grey ? 1 : 3));
        else if (!m_content.transparent_color.empty())
            alpha = is_transparent(red, green, blue) ? 0 : 255;
        return alpha << 24 | to_byte(red) << 16 | to_byte(green) << 8 | to_byte(blue);
    }

  private:
    // 16 bits are cut, less than 8 spread over the range.
    uint32_t to_byte(uint32_t sample) const {
        return m_content.depth == 16 ? sample >> 8 : sample * 255 / ((1u << m_content.depth) - 1);
    }

    // As the file has it, all of its bits.
    bool is_transparent(uint32_t red, uint32_t green, uint32_t blue) const {
        const png_color_16 &color = m_content.transparent_color[0];
        if (!(m_content.color_type & PNG_COLOR_MASK_COLOR))
            return red == color.gray;
        return red == color.red && green == color.green && blue == color.blue;
    }

    uint32_t of_palette(uint32_t index, uint32_t filler) const {
        const auto &alphas = m_content.transparent_indexes;
        const png_color &color = m_content.palette[index];
        const uint32_t alpha = alphas.empty()          ? filler
                               : index < alphas.size() ? alphas[index]
                                                       : 255;
        return alpha << 24 | uint32_t{color.red} << 16 | uint32_t{color.green} << 8 | color.blue;
    }

    const png_content &m_content;
};

class RandomPngTest : public ScreenTest {
  protected:
    uint32_t between(uint32_t low, uint32_t high) {
        return low + static_cast<uint32_t>(m_random() % (high - low + 1));
    }
    uint8_t byte() { return static_cast<uint8_t>(m_random()); }

    png_content random_content(const kind &of) {
        png_content made;
        made.width = between(1, k_largest_side);
        made.height = between(1, k_largest_side);
        made.depth = of.depth;
        made.color_type = of.color_type;
        made.interlace = between(0, 1) ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE;
        made.bytes.resize(samples::row_bytes(made) * made.height);
        for (uint8_t &value : made.bytes)
            value = byte();
        if (of.color_type == PNG_COLOR_TYPE_PALETTE)
            add_palette(made);
        else if (!(of.color_type & PNG_COLOR_MASK_ALPHA) && between(0, 1))
            add_transparent_color(made);
        return made;
    }

    // Opens, decodes, closes; `width` x `height` is asked for.
    std::vector<uint8_t> decode(const png_content &content, uint32_t width, uint32_t height,
                                uint8_t filler) {
        const RMBitmapOptions options = {filler, width, height};
        RMBitmapFile file;
        const std::string path = folder.write_png("a.png", content);
        EXPECT_EQ(RMOpenBitmapFile(path.c_str(), &file, &options), UX_BITMAP_SUCCESS);
        const bool is_native = width == 0 || height == 0;
        std::vector<uint8_t> pixels(size_t{4} * (is_native ? content.width : width) *
                                    (is_native ? content.height : height));
        EXPECT_EQ(RMBitmapToRaw(pixels.data(), &file), UX_BITMAP_SUCCESS);
        EXPECT_EQ(RMCloseBitmapFile(&file), UX_BITMAP_SUCCESS);
        return pixels;
    }

    picture_folder folder;

  private:
    void add_palette(png_content &made) {
        const size_t colors = size_t{1} << made.depth;
        for (size_t i = 0; i < colors; i++)
            made.palette.push_back({byte(), byte(), byte()});
        if (between(0, 1))
            made.transparent_indexes.resize(between(1, static_cast<uint32_t>(colors)));
        for (uint8_t &alpha : made.transparent_indexes)
            alpha = byte();
    }

    // One that is in the picture.
    void add_transparent_color(png_content &made) {
        const samples from(made);
        const uint32_t x = between(0, made.width - 1);
        const uint32_t y = between(0, made.height - 1);
        const auto sample = [&](uint32_t channel) {
            return static_cast<png_uint_16>(from.at(x, y, channel));
        };
        if (made.color_type == PNG_COLOR_TYPE_GRAY)
            made.transparent_color.push_back({0, 0, 0, 0, sample(0)});
        else
            made.transparent_color.push_back({0, sample(0), sample(1), sample(2), 0});
    }

    std::mt19937 m_random{7};
};

} // namespace

// Half of the pictures are scaled, the others asked for at no size or with one side only.
TEST_F(RandomPngTest, pictures_of_all_kinds_and_sizes_are_made_of_their_samples) {
    for (int trial = 0; trial < k_trials; trial++) {
        const png_content content =
            random_content(k_kinds[static_cast<size_t>(trial) % std::size(k_kinds)]);
        const bool is_scaled = between(0, 1) != 0;
        const uint32_t width = is_scaled ? between(1, 30) : between(0, 1) * 5;
        const uint32_t height = is_scaled ? between(1, 30) : 0;
        const uint8_t filler = byte();
        const auto pixels = decode(content, width, height, filler);
        const uint32_t out_width = is_scaled ? width : content.width;
        const uint32_t out_height = is_scaled ? height : content.height;
        ASSERT_EQ(pixels.size(), size_t{4} * out_width * out_height);
        const samples from(content);
        for (uint32_t y = 0; y < out_height; y++)
            for (uint32_t x = 0; x < out_width; x++) {
                uint32_t pixel;
                memcpy(&pixel, &pixels[size_t{4} * (y * out_width + x)], sizeof pixel);
                ASSERT_EQ(pixel, from.argb(x * content.width / out_width,
                                           y * content.height / out_height, filler))
                    << "type " << content.color_type << ", depth " << content.depth << ", pixel "
                    << x << "," << y << " of trial " << trial;
            }
        ASSERT_EQ(fake_chip::get().open_files, 0);
    }
}
