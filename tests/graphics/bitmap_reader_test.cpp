// SPDX-License-Identifier: MIT
// The bitmap reader: which decoder and file, normalising of PNG, JPEG bit by bit, scaling on the
// way, broken files, closing.

#include "tests/graphics/picture_files.h"
#include "ux_bitmap.h"

#include <random>

namespace {

constexpr int k_success = 6;
constexpr int k_failure = 9;

uint32_t word(const std::vector<uint8_t> &pixels, size_t i) {
    return pixels[4 * i] | uint32_t{pixels[4 * i + 1]} << 8 | uint32_t{pixels[4 * i + 2]} << 16 |
           uint32_t{pixels[4 * i + 3]} << 24;
}

std::vector<uint8_t> noise(size_t bytes, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> made(bytes);
    for (uint8_t &byte : made)
        byte = static_cast<uint8_t>(random());
    return made;
}

} // namespace

class BitmapReaderTest : public ScreenTest {
  protected:
    void TearDown() override {
        EXPECT_EQ(fake_chip::get().open_files, 0) << "a file stayed open";
        ScreenTest::TearDown();
    }

    // Opens, decodes and closes; empty when that failed.
    std::vector<uint8_t> decode(const std::string &path, uint32_t width = 0, uint32_t height = 0,
                                uint8_t alpha = 255) {
        const RMBitmapOptions options = {alpha, width, height};
        RMBitmapFile file;
        if (RMOpenBitmapFile(path.c_str(), &file, &options) != k_success)
            return {};
        const bool png = file.kind == UX_BITMAP_PNG;
        const size_t w = width && height ? width : png ? file.png.width : file.jpeg.src_width;
        const size_t h = width && height ? height : png ? file.png.height : file.jpeg.src_height;
        std::vector<uint8_t> pixels(4 * w * h);
        const int result = RMBitmapToRaw(pixels.data(), &file);
        EXPECT_EQ(RMCloseBitmapFile(&file), k_success);
        return result == k_success ? pixels : std::vector<uint8_t>{};
    }

    // A JPEG of noise scaled down in height has rows of the whole one: k shows floor(k * h / to_h).
    void expect_samples(uint32_t h, int components, const jpeg_coding &coding, uint32_t w = 40) {
        const auto bytes = noise(w * h * static_cast<size_t>(components), 7);
        const std::string path = folder.write_jpeg("a.jpg", w, h, components, bytes, coding);
        const auto whole = decode(path);
        ASSERT_EQ(whole.size(), 4u * w * h);
        for (const uint32_t to_h : {1u, 2u, 3u, 5u, 7u, 11u, 20u, 33u, 64u, 100u, h - 1, h + 1}) {
            const auto scaled = decode(path, w, to_h);
            ASSERT_EQ(scaled.size(), 4u * w * to_h);
            for (uint32_t y = 0; y < to_h; y++)
                ASSERT_EQ(memcmp(&scaled[size_t{4} * w * y], &whole[size_t{4} * w * (y * h / to_h)],
                                 4 * w),
                          0)
                    << components << " of " << coding.columns << "x" << coding.rows
                    << (coding.progressive ? "p" : "") << coding.restart << ", row " << y << " of "
                    << to_h << " from " << h;
        }
    }

    picture_folder folder;
};

TEST_F(BitmapReaderTest, endings_in_any_case_are_accepted) {
    const png_content one = {.bytes = {1, 2, 3}};
    EXPECT_EQ(decode(folder.write_png("a.Png", one)).size(), 4u);
    EXPECT_EQ(decode(folder.write_jpeg("a.JPG", 1, 1, 3, {9, 9, 9})).size(), 4u);
    EXPECT_EQ(decode(folder.write_jpeg("a.jpeg", 1, 1, 3, {9, 9, 9})).size(), 4u);
    EXPECT_EQ(decode(folder.write_jpeg("ajpeg", 1, 1, 3, {9, 9, 9})).size(), 4u);
}

TEST_F(BitmapReaderTest, other_endings_fail_without_opening_anything) {
    for (const char *path : {"a.gif", "a.bmp", "png", "", "a.png "}) {
        RMBitmapFile file;
        EXPECT_EQ(RMOpenBitmapFile(path, &file, nullptr), k_failure);
    }
    EXPECT_TRUE(fake_chip::get().calls.empty());
}

TEST_F(BitmapReaderTest, kind_is_told_by_the_name_and_not_by_the_content) {
    folder.write_jpeg("a.jpg", 1, 1, 3, {9, 9, 9});
    folder.write_bytes("b.png", folder.read_bytes("a.jpg"));
    EXPECT_TRUE(decode(folder.path("b.png")).empty());
}

TEST_F(BitmapReaderTest, path_is_converted_and_released_also_when_there_is_no_file) {
    RMBitmapFile file;
    EXPECT_EQ(RMOpenBitmapFile("/nowhere/a.png", &file, nullptr), k_failure);
    EXPECT_EQ(fake_chip::get().calls,
              (std::vector<std::string>{"RMnonAsciiFromAscii /nowhere/a.png",
                                        "RMOpenFile /nowhere/a.png 0", "RMFreeNonAscii"}));
}

TEST_F(BitmapReaderTest, addresses_go_through_the_fetcher_in_any_case) {
    const std::string path = folder.write_png("a.png", {.bytes = {1, 2, 3}});
    fake_chip::get().addresses["HTTP://host/a.png"] = path;
    EXPECT_EQ(decode("HTTP://host/a.png").size(), 4u);
    EXPECT_EQ(fake_chip::get().calls[0], "fetchOpen HTTP://host/a.png 0");
    EXPECT_EQ(fake_chip::get().calls[1], "RMOpenFileCookie 0");
}

TEST_F(BitmapReaderTest, unreachable_address_fails_without_a_file) {
    RMBitmapFile file;
    EXPECT_EQ(RMOpenBitmapFile("http://host/a.png", &file, nullptr), k_failure);
    EXPECT_EQ(fake_chip::get().calls, std::vector<std::string>{"fetchOpen http://host/a.png 0"});
}

TEST_F(BitmapReaderTest, cookie_is_closed_when_it_can_not_be_wrapped) {
    fake_chip::get().addresses["http://host/a.png"] =
        folder.write_png("a.png", {.bytes = {1, 2, 3}});
    fake_chip::get().wrap_fails = true;
    RMBitmapFile file;
    EXPECT_EQ(RMOpenBitmapFile("http://host/a.png", &file, nullptr), k_failure);
    EXPECT_EQ(fake_chip::get().calls[2], "fetchClose");
}

TEST_F(BitmapReaderTest, rgb_becomes_bgr_and_the_filler) {
    const auto pixels = decode(folder.write_png("a.png", {.bytes = {1, 2, 3}}), 0, 0, 77);
    EXPECT_EQ(pixels, (std::vector<uint8_t>{3, 2, 1, 77}));
}

TEST_F(BitmapReaderTest, absent_options_mean_opaque_and_native_size) {
    RMBitmapFile file;
    ASSERT_EQ(
        RMOpenBitmapFile(folder.write_png("a.png", {.bytes = {1, 2, 3}}).c_str(), &file, nullptr),
        k_success);
    uint8_t pixel[4];
    EXPECT_EQ(RMBitmapToRaw(pixel, &file), k_success);
    EXPECT_EQ(pixel[3], 255);
    EXPECT_EQ(file.png.dst_width, 0u);
    RMCloseBitmapFile(&file);
}

TEST_F(BitmapReaderTest, own_alpha_wins_over_the_filler) {
    const png_content content = {.color_type = PNG_COLOR_TYPE_RGB_ALPHA, .bytes = {1, 2, 3, 4}};
    EXPECT_EQ(decode(folder.write_png("a.png", content), 0, 0, 77),
              (std::vector<uint8_t>{3, 2, 1, 4}));
}

TEST_F(BitmapReaderTest, palette_with_transparency_gives_its_alpha) {
    const png_content content = {.color_type = PNG_COLOR_TYPE_PALETTE,
                                 .palette = {{10, 20, 30}},
                                 .transparent_indexes = {99},
                                 .bytes = {0}};
    EXPECT_EQ(decode(folder.write_png("a.png", content)), (std::vector<uint8_t>{30, 20, 10, 99}));
}

TEST_F(BitmapReaderTest, grey_of_16_bits_gives_its_high_byte_three_times) {
    const png_content content = {
        .depth = 16, .color_type = PNG_COLOR_TYPE_GRAY, .bytes = {0xAB, 0xCD}};
    EXPECT_EQ(decode(folder.write_png("a.png", content), 0, 0, 7),
              (std::vector<uint8_t>{0xAB, 0xAB, 0xAB, 7}));
}

TEST_F(BitmapReaderTest, grey_of_1_bit_is_spread_over_the_range) {
    const png_content content = {
        .width = 2, .depth = 1, .color_type = PNG_COLOR_TYPE_GRAY, .bytes = {0x40}};
    EXPECT_EQ(decode(folder.write_png("a.png", content)),
              (std::vector<uint8_t>{0, 0, 0, 255, 255, 255, 255, 255}));
}

TEST_F(BitmapReaderTest, two_rows_scaled_to_four_are_0_0_1_1) {
    const png_content content = {.height = 2, .bytes = {1, 1, 1, 2, 2, 2}};
    const auto pixels = decode(folder.write_png("a.png", content), 1, 4);
    ASSERT_EQ(pixels.size(), 16u);
    EXPECT_EQ(pixels[0], 1);
    EXPECT_EQ(pixels[4], 1);
    EXPECT_EQ(pixels[8], 2);
    EXPECT_EQ(pixels[12], 2);
}

// Plain sampling of the unscaled picture: output (x, y) is source (x * w / W, y * h / H).
TEST_F(BitmapReaderTest, scaled_pictures_are_samples_of_the_unscaled_one) {
    std::mt19937 engine(5);
    const auto random = [&engine] { return static_cast<uint32_t>(engine()); };
    for (int trial = 0; trial < 60; trial++) {
        const uint32_t w = 1 + random() % 40;
        const uint32_t h = 1 + random() % 40;
        const uint32_t to_w = 1 + random() % 80;
        const uint32_t to_h = 1 + random() % 80;
        const int kind = trial % 3;
        const auto bytes = noise(w * h * 3, random());
        const std::string path =
            kind == 0 ? folder.write_jpeg("a.jpg", w, h, 3, bytes)
                      : folder.write_png("a.png", {.width = w,
                                                   .height = h,
                                                   .interlace = kind == 1 ? PNG_INTERLACE_NONE
                                                                          : PNG_INTERLACE_ADAM7,
                                                   .bytes = bytes});
        const auto whole = decode(path);
        const auto scaled = decode(path, to_w, to_h);
        ASSERT_EQ(whole.size(), 4u * w * h);
        ASSERT_EQ(scaled.size(), 4u * to_w * to_h);
        for (uint32_t y = 0; y < to_h; y++)
            for (uint32_t x = 0; x < to_w; x++)
                ASSERT_EQ(word(scaled, y * to_w + x), word(whole, y * h / to_h * w + x * w / to_w))
                    << kind << ": " << w << "x" << h << " to " << to_w << "x" << to_h;
    }
}

// Rows that are not shown are left out inside libjpeg, whole groups of blocks at once.
TEST_F(BitmapReaderTest, jpegs_of_all_codings_scaled_far_down_are_samples_of_the_unscaled_one) {
    for (const jpeg_coding &coding :
         {jpeg_coding{1, 1}, jpeg_coding{2, 1}, jpeg_coding{2, 2}, jpeg_coding{1, 2},
          jpeg_coding{4, 1}, jpeg_coding{1, 1, true}, jpeg_coding{2, 2, true}}) {
        expect_samples(331, 3, coding);
        expect_samples(16, 3, coding);
    }
}

TEST_F(BitmapReaderTest, jpegs_with_restart_markers_scaled_down_are_samples_of_the_unscaled_one) {
    for (const unsigned restart : {1u, 2u, 7u})
        for (const int rows : {1, 2}) {
            expect_samples(101, 3, {2, rows, false, restart});
            expect_samples(101, 3, {2, rows, true, restart});
        }
}

// libjpeg can not leave out rows of these.
TEST_F(BitmapReaderTest, jpegs_of_rare_codings_scaled_down_are_samples_of_the_unscaled_one) {
    for (const jpeg_coding &coding : {jpeg_coding{4, 2}, jpeg_coding{1, 4}, jpeg_coding{2, 4},
                                      jpeg_coding{4, 2, true}, jpeg_coding{1, 4, true}})
        expect_samples(90, 3, coding);
}

// Chroma of so few columns is not smoothed, which changes libjpeg's way through the rows.
TEST_F(BitmapReaderTest, narrow_jpegs_scaled_down_are_samples_of_the_unscaled_one) {
    for (const uint32_t w : {1u, 2u, 3u, 4u, 5u, 6u})
        for (const int columns : {1, 2})
            for (const bool progressive : {false, true})
                expect_samples(60, 3, {columns, 2, progressive}, w);
}

// The one component's samples have no others to be compared with: any number is the same picture.
TEST_F(BitmapReaderTest, grey_jpegs_of_all_codings_scaled_down_are_samples_of_the_unscaled_one) {
    for (const int rows : {1, 2, 4})
        for (const int columns : {1, 2, 4}) {
            expect_samples(90, 1, {columns, rows});
            expect_samples(35, 1, {columns, rows, true});
        }
}

// libjpeg alone, slow integer arithmetic, RGB.
TEST_F(BitmapReaderTest, jpeg_is_bit_equal_to_slow_integer_rgb) {
    for (int components : {1, 3}) {
        constexpr uint32_t w = 37;
        constexpr uint32_t h = 29;
        const std::string path = folder.write_jpeg(
            "a.jpg", w, h, components, noise(w * h * static_cast<size_t>(components), 3));
        jpeg_decompress_struct cinfo;
        jpeg_error_mgr errors;
        cinfo.err = jpeg_std_error(&errors);
        jpeg_create_decompress(&cinfo);
        FILE *file = fopen(path.c_str(), "rb");
        jpeg_stdio_src(&cinfo, file);
        jpeg_read_header(&cinfo, TRUE);
        cinfo.out_color_space = JCS_RGB;
        cinfo.dct_method = JDCT_ISLOW;
        jpeg_start_decompress(&cinfo);
        std::vector<uint8_t> expected;
        while (cinfo.output_scanline < h) {
            uint8_t row[w * 3];
            JSAMPROW rows[] = {row};
            jpeg_read_scanlines(&cinfo, rows, 1);
            for (uint32_t x = 0; x < w; x++)
                expected.insert(expected.end(),
                                {row[3 * x + 2], row[3 * x + 1], row[3 * x], uint8_t{200}});
        }
        jpeg_finish_decompress(&cinfo);
        jpeg_destroy_decompress(&cinfo);
        fclose(file);
        EXPECT_EQ(decode(path, 0, 0, 200), expected);
    }
}

TEST_F(BitmapReaderTest, cmyk_jpeg_fails_and_leaves_nothing_open) {
    EXPECT_TRUE(decode(folder.write_jpeg("a.jpg", 2, 2, 4, noise(16, 1))).empty());
}

TEST_F(BitmapReaderTest, jpeg_without_size_is_reported) {
    folder.write_jpeg("a.jpg", 2, 2, 3, noise(12, 1));
    auto bytes = folder.read_bytes("a.jpg");
    for (size_t i = 0; i + 8 < bytes.size(); i++)
        if (bytes[i] == 0xFF && bytes[i + 1] == 0xC0)
            bytes[i + 5] = bytes[i + 6] = 0; // the height in the frame header
    folder.write_bytes("b.jpg", bytes);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(decode(folder.path("b.jpg")).empty());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "illegal image size: 2 x 0 pixel\n");
}

TEST_F(BitmapReaderTest, every_cut_and_many_flipped_bits_end_well) {
    folder.write_png("a.png", {.width = 9, .height = 7, .bytes = noise(9 * 7 * 3, 2)});
    folder.write_jpeg("a.jpg", 9, 7, 3, noise(9 * 7 * 3, 2));
    std::mt19937 random(9);
    testing::internal::CaptureStderr();
    for (const char *name : {"a.png", "a.jpg"}) {
        const auto whole = folder.read_bytes(name);
        const std::string broken = std::string("broken") + (name + 1);
        for (size_t length = 0; length < whole.size(); length += 3) {
            folder.write_bytes(broken, {whole.begin(), whole.begin() + static_cast<long>(length)});
            decode(folder.path(broken), 5, 11);
        }
        for (int i = 0; i < 300; i++) {
            auto bytes = whole;
            bytes[random() % bytes.size()] ^= static_cast<uint8_t>(1 << random() % 8);
            folder.write_bytes(broken, bytes);
            decode(folder.path(broken), 5, 11);
        }
    }
    testing::internal::GetCapturedStderr();
}

TEST_F(BitmapReaderTest, truncated_png_fails_with_the_rows_so_far) {
    folder.write_png("a.png", {.width = 128, .height = 128, .bytes = noise(128 * 128 * 3, 2)});
    auto bytes = folder.read_bytes("a.png");
    bytes.resize(bytes.size() / 2);
    folder.write_bytes("b.png", bytes);
    testing::internal::CaptureStderr();
    RMBitmapFile file;
    ASSERT_EQ(RMOpenBitmapFile(folder.path("b.png").c_str(), &file, nullptr), k_success);
    std::vector<uint8_t> pixels(128 * 128 * 4);
    EXPECT_EQ(RMBitmapToRaw(pixels.data(), &file), k_failure);
    RMCloseBitmapFile(&file);
    EXPECT_NE(word(pixels, 0), 0u);
    EXPECT_EQ(word(pixels, 128 * 128 - 1), 0u);
    testing::internal::GetCapturedStderr();
}

// Of 49 kB the first 8 are decoded: all of the passes that have 1 of 8 pixels, and of the next one,
// which has every second of every fourth row, the upper rows.
TEST_F(BitmapReaderTest, truncated_interlaced_png_scaled_fails_with_the_passes_so_far) {
    folder.write_png("a.png", {.width = 128,
                               .height = 128,
                               .interlace = PNG_INTERLACE_ADAM7,
                               .bytes = noise(128 * 128 * 3, 2)});
    auto bytes = folder.read_bytes("a.png");
    bytes.resize(10000);
    folder.write_bytes("b.png", bytes);
    testing::internal::CaptureStderr();
    const RMBitmapOptions options = {255, 64, 64};
    RMBitmapFile file;
    ASSERT_EQ(RMOpenBitmapFile(folder.path("b.png").c_str(), &file, &options), k_success);
    std::vector<uint8_t> pixels(64 * 64 * 4);
    EXPECT_EQ(RMBitmapToRaw(pixels.data(), &file), k_failure);
    RMCloseBitmapFile(&file);
    testing::internal::GetCapturedStderr();
    const auto whole = decode(folder.path("a.png"), 64, 64);
    EXPECT_EQ(word(pixels, 0), word(whole, 0));
    EXPECT_EQ(word(pixels, 62 * 64 + 62), word(whole, 62 * 64 + 62))
        << "row 124 has the first ones";
    EXPECT_EQ(word(pixels, 63 * 64 + 1), 0u);
}

TEST_F(BitmapReaderTest, close_returns_the_files_result_and_2_for_an_unknown_kind) {
    RMBitmapFile file;
    ASSERT_EQ(
        RMOpenBitmapFile(folder.write_png("a.png", {.bytes = {1, 2, 3}}).c_str(), &file, nullptr),
        k_success);
    fake_chip::get().close_file_result = 5;
    EXPECT_EQ(RMCloseBitmapFile(&file), 5);
    file.kind = 3;
    EXPECT_EQ(RMCloseBitmapFile(&file), 2);
    uint8_t pixel[4];
    EXPECT_EQ(RMBitmapToRaw(pixel, &file), k_failure);
}

TEST_F(BitmapReaderTest, palette_is_told_with_the_options_alpha) {
    const png_content content = {
        .color_type = PNG_COLOR_TYPE_PALETTE, .palette = {{1, 2, 3}, {4, 5, 6}}, .bytes = {1}};
    const RMBitmapOptions options = {0x80, 0, 0};
    RMBitmapFile file;
    ASSERT_EQ(RMOpenBitmapFile(folder.write_png("a.png", content).c_str(), &file, &options),
              k_success);
    uint32_t palette[256] = {};
    EXPECT_EQ(RMBitmapGetPalette(palette, &file), k_success);
    EXPECT_EQ(palette[0], 0x80010203u);
    EXPECT_EQ(palette[1], 0x80040506u);
    RMCloseBitmapFile(&file);
}

TEST_F(BitmapReaderTest, made_up_grey_palette_has_even_steps_and_at_most_256_entries) {
    RMBitmapFile file;
    file.kind = UX_BITMAP_PNG;
    file.png.alpha = 0xFF;
    uint32_t palette[257] = {};
    file.png.gray_levels = 4;
    EXPECT_EQ(RMBitmapGetPalette(palette, &file), k_success);
    EXPECT_EQ(palette[1], 0xFF555555u);
    EXPECT_EQ(palette[3], 0xFFFFFFFFu);
    file.png.gray_levels = 1;
    RMBitmapGetPalette(palette, &file);
    EXPECT_EQ(palette[0], 0xFF000000u);
    file.png.gray_levels = 1000;
    RMBitmapGetPalette(palette, &file);
    EXPECT_EQ(palette[256], 0u);
}

TEST_F(BitmapReaderTest, picture_without_palette_and_a_jpeg_have_none) {
    uint32_t palette[256];
    RMBitmapFile file;
    ASSERT_EQ(
        RMOpenBitmapFile(folder.write_png("a.png", {.bytes = {1, 2, 3}}).c_str(), &file, nullptr),
        k_success);
    EXPECT_EQ(RMBitmapGetPalette(palette, &file), k_failure);
    RMCloseBitmapFile(&file);
    file.kind = UX_BITMAP_JPEG;
    EXPECT_EQ(RMBitmapGetPalette(palette, &file), k_failure);
}

TEST_F(BitmapReaderTest, each_allocation_may_fail) {
    const std::string png =
        folder.write_png("a.png", {.width = 3, .height = 3, .bytes = noise(27, 1)});
    for (long n = 1; n <= 4; n++)
        for (uint32_t size : {0u, 2u}) {
            hooks::fail_allocation(n);
            decode(png, size, size);
            hooks::fail_allocation(0);
        }
    EXPECT_EQ(decode(png).size(), 36u);
}
