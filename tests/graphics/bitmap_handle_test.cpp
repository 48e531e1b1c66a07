// SPDX-License-Identifier: MIT
// The bitmap reader piece by piece: its handle from open to close, the callbacks that libpng and
// libjpeg get, and every kind of PNG pixel.

#include "tests/graphics/picture_files.h"
#include "tests/support/fake_files.h"
#include "ux_bitmap.h"

#include <array>
#include <csetjmp>
#include <cstring>

namespace {

using bytes = std::vector<uint8_t>;

class BitmapHandleTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        m_png = folder.write_png("a.png", {.width = 2, .height = 2, .bytes = bytes(12, 50)});
        m_jpeg = folder.write_jpeg("a.jpg", 2, 2, 3, bytes(12, 50));
    }

    void TearDown() override {
        EXPECT_EQ(fake_chip::get().open_files, 0) << "a file stayed open";
        ScreenTest::TearDown();
    }

    static void open(RMBitmapFile &file, const std::string &path, uint32_t width = 0,
                     uint32_t height = 0, uint8_t alpha = 255) {
        const RMBitmapOptions options = {alpha, width, height};
        ASSERT_EQ(RMOpenBitmapFile(path.c_str(), &file, &options), UX_BITMAP_SUCCESS);
    }

    // The pixels of a PNG, B, G, R, A each, with filler 7.
    bytes pixels(const png_content &content) const {
        RMBitmapFile file;
        open(file, folder.write_png("pixels.png", content), 0, 0, 7);
        bytes result(size_t{4} * content.width * content.height);
        EXPECT_EQ(RMBitmapToRaw(result.data(), &file), UX_BITMAP_SUCCESS);
        EXPECT_EQ(RMCloseBitmapFile(&file), UX_BITMAP_SUCCESS);
        return result;
    }

    picture_folder folder;
    std::string m_png;  // 2 x 2
    std::string m_jpeg; // 2 x 2
};

} // namespace

TEST_F(BitmapHandleTest, paths_shorter_than_an_ending_fail_without_opening_anything) {
    RMBitmapFile file;
    for (const char *path : {"", "g", "ng", "png", "jpg"})
        EXPECT_EQ(RMOpenBitmapFile(path, &file, nullptr), UX_BITMAP_FAILURE) << path;
    EXPECT_TRUE(fake_chip::get().calls.empty());
}

TEST_F(BitmapHandleTest, ending_without_a_dot_is_a_jpegs_only_when_it_is_jpeg) {
    const std::string path = folder.write_jpeg("photojpeg", 1, 1, 3, {9, 9, 9});
    RMBitmapFile file;
    open(file, path);
    EXPECT_EQ(file.kind, uint32_t{UX_BITMAP_JPEG});
    RMCloseBitmapFile(&file);
    for (const char *name : {"/photojpg", "/photopng"})
        EXPECT_EQ(RMOpenBitmapFile(name, &file, nullptr), UX_BITMAP_FAILURE);
}

TEST_F(BitmapHandleTest, address_of_no_picture_is_not_fetched) {
    RMBitmapFile file;
    EXPECT_EQ(RMOpenBitmapFile("http://host/a.gif", &file, nullptr), UX_BITMAP_FAILURE);
    EXPECT_TRUE(fake_chip::get().calls.empty());
}

TEST_F(BitmapHandleTest, kind_is_stored_before_the_file_is_opened) {
    RMBitmapFile file;
    EXPECT_EQ(RMOpenBitmapFile("/nowhere/a.jpg", &file, nullptr), UX_BITMAP_FAILURE);
    EXPECT_EQ(file.kind, uint32_t{UX_BITMAP_JPEG});
    EXPECT_EQ(RMOpenBitmapFile("/nowhere/a.png", &file, nullptr), UX_BITMAP_FAILURE);
    EXPECT_EQ(file.kind, uint32_t{UX_BITMAP_PNG});
}

TEST_F(BitmapHandleTest, open_handle_tells_sizes_and_options) {
    RMBitmapFile file;
    file.png.gray_levels = 5;
    open(file, m_png, 3, 4, 9);
    EXPECT_EQ(file.png.width, 2u);
    EXPECT_EQ(file.png.height, 2u);
    EXPECT_EQ(file.png.alpha, 9u);
    EXPECT_EQ(file.png.gray_levels, 0u);
    EXPECT_EQ(file.png.dst_width, 3u);
    EXPECT_EQ(file.png.dst_height, 4u);
    RMCloseBitmapFile(&file);
    open(file, m_jpeg, 3, 4, 9);
    EXPECT_EQ(file.jpeg.src_width, 2u);
    EXPECT_EQ(file.jpeg.src_height, 2u);
    EXPECT_EQ(file.jpeg.alpha, 9u);
    EXPECT_EQ(file.jpeg.dst_width, 3u);
    EXPECT_EQ(file.jpeg.dst_height, 4u);
    RMCloseBitmapFile(&file);
}

TEST_F(BitmapHandleTest, handle_that_was_not_decoded_closes) {
    for (const std::string &path : {m_png, m_jpeg}) {
        RMBitmapFile file;
        open(file, path);
        EXPECT_EQ(RMCloseBitmapFile(&file), UX_BITMAP_SUCCESS);
    }
}

TEST_F(BitmapHandleTest, size_of_one_side_alone_means_the_native_size) {
    for (const std::string &path : {m_png, m_jpeg})
        for (const auto &wanted : {std::array{5u, 0u}, std::array{0u, 5u}}) {
            RMBitmapFile file;
            open(file, path, wanted[0], wanted[1]);
            std::array<uint8_t, 17> pixels{};
            pixels[16] = 99;
            EXPECT_EQ(RMBitmapToRaw(pixels.data(), &file), UX_BITMAP_SUCCESS);
            EXPECT_EQ(pixels[15], 255);
            EXPECT_EQ(pixels[16], 99);
            RMCloseBitmapFile(&file);
        }
}

// A scaled JPEG needs a row of its own, an unscaled one goes straight into the block.
TEST_F(BitmapHandleTest, native_size_asked_for_is_not_scaled) {
    const auto allocations = [&](uint32_t width, uint32_t height) {
        RMBitmapFile file;
        open(file, m_jpeg, width, height);
        std::array<uint8_t, 64> pixels{};
        hooks::take_allocation_count();
        EXPECT_EQ(RMBitmapToRaw(pixels.data(), &file), UX_BITMAP_SUCCESS);
        const long count = hooks::take_allocation_count();
        RMCloseBitmapFile(&file);
        return count;
    };
    EXPECT_EQ(allocations(2, 2), 0);
    EXPECT_EQ(allocations(2, 0), 0);
    EXPECT_EQ(allocations(2, 3), 1);
    EXPECT_EQ(allocations(3, 2), 1);
}

TEST_F(BitmapHandleTest, no_memory_for_the_row_fails_and_leaves_the_handle_open) {
    for (const std::string &path : {m_png, m_jpeg})
        for (uint32_t side : {1u, 2u}) {
            if (side == 2 && path == m_jpeg)
                continue; // unscaled: needs none
            RMBitmapFile file;
            open(file, path, side, side);
            std::array<uint8_t, 16> pixels{};
            hooks::fail_allocation(1);
            EXPECT_EQ(RMBitmapToRaw(pixels.data(), &file), UX_BITMAP_FAILURE);
            hooks::fail_allocation(0);
            EXPECT_EQ(fake_chip::get().open_files, 1);
            EXPECT_EQ(RMCloseBitmapFile(&file), UX_BITMAP_SUCCESS);
        }
}

TEST_F(BitmapHandleTest, alpha_of_a_jpeg_is_in_every_pixel_of_any_size) {
    for (uint32_t side : {1u, 2u, 5u}) {
        RMBitmapFile file;
        open(file, m_jpeg, side, side, 33);
        bytes pixels(size_t{4} * side * side);
        EXPECT_EQ(RMBitmapToRaw(pixels.data(), &file), UX_BITMAP_SUCCESS);
        RMCloseBitmapFile(&file);
        for (size_t i = 3; i < pixels.size(); i += 4)
            ASSERT_EQ(pixels[i], 33) << side;
    }
}

// The handle's memory may hold anything before.
TEST_F(BitmapHandleTest, jpeg_object_has_the_readers_error_exit_and_no_client_data) {
    RMBitmapFile file;
    memset(&file, 0xA5, sizeof file);
    open(file, m_jpeg);
    EXPECT_EQ(file.jpeg.cinfo.client_data, nullptr);
    EXPECT_EQ(file.jpeg.cinfo.err, &file.jpeg.jerr);
    EXPECT_EQ(file.jpeg.jerr.error_exit, my_jpeg_error_exit);
    EXPECT_EQ(RMCloseBitmapFile(&file), UX_BITMAP_SUCCESS);
}

// A frame header of 2 x 2 pixels and no components: libjpeg calls that an empty image, too.
TEST_F(BitmapHandleTest, jpeg_without_components_is_not_told_to_have_an_illegal_size) {
    folder.write_bytes("b.jpg", {0xFF, 0xD8, 0xFF, 0xC0, 0, 8, 8, 0, 2, 0, 2, 0, 0xFF, 0xD9});
    RMBitmapFile file;
    testing::internal::CaptureStderr();
    EXPECT_EQ(RMOpenBitmapFile(folder.path("b.jpg").c_str(), &file, nullptr), UX_BITMAP_FAILURE);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// The end marker is replaced by a broken table, which only the finish of libjpeg comes to.
TEST_F(BitmapHandleTest, broken_end_of_a_jpeg_does_not_disturb_its_closing) {
    bytes picture = folder.read_bytes("a.jpg");
    picture.pop_back();
    picture.pop_back();
    picture.insert(picture.end(), {0xFF, 0xC4, 0x00, 0x03, 0xFF, 0xFF, 0xD9});
    folder.write_bytes("b.jpg", picture);
    RMBitmapFile file;
    open(file, folder.path("b.jpg"));
    std::array<uint8_t, 16> pixels{};
    EXPECT_EQ(RMBitmapToRaw(pixels.data(), &file), UX_BITMAP_SUCCESS);
    testing::internal::CaptureStderr();
    EXPECT_EQ(RMCloseBitmapFile(&file), UX_BITMAP_SUCCESS);
    testing::internal::GetCapturedStderr();
}

TEST_F(BitmapHandleTest, jpeg_error_exit_destroys_the_object_and_returns) {
    jpeg_decompress_struct cinfo;
    jpeg_error_mgr errors;
    cinfo.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&cinfo);
    ASSERT_NE(cinfo.mem, nullptr);
    my_jpeg_error_exit(reinterpret_cast<j_common_ptr>(&cinfo));
    EXPECT_EQ(cinfo.mem, nullptr);
    EXPECT_EQ(cinfo.global_state, 0);
}

TEST_F(BitmapHandleTest, png_parts_work_on_their_own) {
    RMPngFile png = {};
    rm_non_ascii *path = RMnonAsciiFromAscii(m_png.c_str());
    png.file = RMOpenFile(path, 0);
    RMFreeNonAscii(path);
    png.alpha = 8;
    ASSERT_EQ(open_png_file(&png), UX_BITMAP_SUCCESS);
    std::array<uint8_t, 16> pixels{};
    EXPECT_EQ(png_to_raw(pixels.data(), &png), UX_BITMAP_SUCCESS);
    EXPECT_EQ(pixels[12], 50);
    EXPECT_EQ(pixels[15], 8);
    png_destroy_read_struct(&png.png_ptr, &png.info_ptr, nullptr);
    RMCloseFile(png.file);
}

TEST_F(BitmapHandleTest, png_that_does_not_open_leaves_its_file_to_the_caller) {
    RMPngFile png = {};
    rm_non_ascii *path = RMnonAsciiFromAscii(m_jpeg.c_str());
    png.file = RMOpenFile(path, 0);
    RMFreeNonAscii(path);
    testing::internal::CaptureStderr();
    EXPECT_EQ(open_png_file(&png), UX_BITMAP_FAILURE);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(png.png_ptr, nullptr);
    EXPECT_EQ(png.info_ptr, nullptr);
    EXPECT_EQ(fake_chip::get().open_files, 1);
    RMCloseFile(png.file);
}

// Of 2 rows one is shown, or each of them twice. The file's last byte is the end marker's.
TEST_F(BitmapHandleTest, png_is_read_to_its_end_at_any_size) {
    bytes picture = folder.read_bytes("a.png");
    picture.pop_back();
    folder.write_bytes("b.png", picture);
    for (uint32_t side : {0u, 1u, 2u, 4u})
        for (const char *name : {"a.png", "b.png"}) {
            const bool is_whole = name[0] == 'a';
            RMBitmapFile file;
            open(file, folder.path(name), side, side);
            bytes pixels(64);
            testing::internal::CaptureStderr();
            EXPECT_EQ(RMBitmapToRaw(pixels.data(), &file),
                      is_whole ? UX_BITMAP_SUCCESS : UX_BITMAP_FAILURE);
            EXPECT_EQ(testing::internal::GetCapturedStderr(),
                      is_whole ? "" : "libpng error: Read Error!\n");
            EXPECT_EQ(pixels[0], 50) << name << side;
            RMCloseBitmapFile(&file);
        }
}

namespace {

// A libpng reader over a file of six letters; its error lands in `told`.
class png_callback {
  public:
    explicit png_callback(const picture_folder &folder) {
        folder.write_bytes("letters", {'a', 'b', 'c', 'd', 'e', 'f'});
        rm_non_ascii *path = RMnonAsciiFromAscii(folder.path("letters").c_str());
        m_file = RMOpenFile(path, 0);
        RMFreeNonAscii(path);
        m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, fail, nullptr);
        png_set_read_fn(m_png, m_file, png_read_data_rm_file);
    }
    ~png_callback() {
        png_destroy_read_struct(&m_png, nullptr, nullptr);
        RMCloseFile(m_file);
    }
    png_callback(const png_callback &) = delete;
    png_callback &operator=(const png_callback &) = delete;

    // Whether the callback returned.
    bool read(char *data, size_t length) {
        if (setjmp(png_jmpbuf(m_png)))
            return false;
        png_read_data_rm_file(m_png, reinterpret_cast<png_bytep>(data), length);
        return true;
    }

    std::string told;

  private:
    static void fail(png_structp png, png_const_charp message) {
        static_cast<png_callback *>(png_get_error_ptr(png))->told = message;
        png_longjmp(png, 1);
    }

    rm_file *m_file;
    png_structp m_png;
};

} // namespace

TEST_F(BitmapHandleTest, read_callback_fills_the_request) {
    png_callback reader(folder);
    char data[] = "------";
    EXPECT_TRUE(reader.read(data, 4));
    EXPECT_STREQ(data, "abcd--");
    EXPECT_TRUE(reader.read(data, 0));
    EXPECT_STREQ(data, "abcd--");
}

TEST_F(BitmapHandleTest, read_callback_goes_on_at_the_begin_after_a_short_read) {
    png_callback reader(folder);
    const fake_files::short_reads limit(4);
    char data[] = "------";
    EXPECT_TRUE(reader.read(data, 6));
    EXPECT_STREQ(data, "efcd--");
}

TEST_F(BitmapHandleTest, read_callback_raises_an_error_when_the_file_does) {
    png_callback reader(folder);
    char data[] = "--------";
    EXPECT_FALSE(reader.read(data, 7)); // one byte too many
    EXPECT_EQ(reader.told, "Read Error!");
}

TEST_F(BitmapHandleTest, grey_with_alpha_gives_its_grey_three_times_and_its_alpha) {
    EXPECT_EQ(pixels({.color_type = PNG_COLOR_TYPE_GRAY_ALPHA, .bytes = {10, 20}}),
              (bytes{10, 10, 10, 20}));
}

TEST_F(BitmapHandleTest, pixels_of_16_bits_give_their_high_bytes) {
    EXPECT_EQ(pixels({.depth = 16, .bytes = {1, 9, 2, 9, 3, 9}}), (bytes{3, 2, 1, 7}));
    EXPECT_EQ(pixels({.depth = 16,
                      .color_type = PNG_COLOR_TYPE_RGB_ALPHA,
                      .bytes = {1, 9, 2, 9, 3, 9, 4, 9}}),
              (bytes{3, 2, 1, 4}));
    EXPECT_EQ(pixels({.depth = 16, .color_type = PNG_COLOR_TYPE_GRAY_ALPHA, .bytes = {5, 9, 6, 9}}),
              (bytes{5, 5, 5, 6}));
}

TEST_F(BitmapHandleTest, transparent_color_becomes_alpha_0_and_others_255) {
    EXPECT_EQ(
        pixels({.width = 2, .transparent_color = {{0, 1, 2, 3, 0}}, .bytes = {1, 2, 3, 1, 2, 4}}),
        (bytes{3, 2, 1, 0, 4, 2, 1, 255}));
    EXPECT_EQ(pixels({.width = 2,
                      .color_type = PNG_COLOR_TYPE_GRAY,
                      .transparent_color = {{0, 0, 0, 0, 9}},
                      .bytes = {9, 8}}),
              (bytes{9, 9, 9, 0, 8, 8, 8, 255}));
}

TEST_F(BitmapHandleTest, grey_of_2_and_4_bits_is_spread_over_the_range) {
    EXPECT_EQ(pixels({.width = 2, .depth = 2, .color_type = PNG_COLOR_TYPE_GRAY, .bytes = {0x60}}),
              (bytes{85, 85, 85, 7, 170, 170, 170, 7}));
    EXPECT_EQ(pixels({.width = 2, .depth = 4, .color_type = PNG_COLOR_TYPE_GRAY, .bytes = {0x1E}}),
              (bytes{17, 17, 17, 7, 238, 238, 238, 7}));
}

TEST_F(BitmapHandleTest, palettes_of_few_bits_give_their_colors_and_the_filler) {
    const std::vector<png_color> two = {{1, 2, 3}, {4, 5, 6}};
    for (int depth : {1, 2, 4, 8}) {
        const auto last_first = static_cast<uint8_t>(1 << (8 - depth)); // index 1, then 0
        EXPECT_EQ(pixels({.depth = depth,
                          .color_type = PNG_COLOR_TYPE_PALETTE,
                          .palette = two,
                          .bytes = {last_first}}),
                  (bytes{6, 5, 4, 7}))
            << depth;
    }
}

TEST_F(BitmapHandleTest, interlaced_picture_is_the_plain_one) {
    bytes rgb;
    for (int i = 0; i < 9 * 11 * 3; i++)
        rgb.push_back(static_cast<uint8_t>(i * 37));
    const bytes interlaced =
        pixels({.width = 9, .height = 11, .interlace = PNG_INTERLACE_ADAM7, .bytes = rgb});
    for (size_t i = 0; i < 9 * 11; i++)
        for (size_t channel = 0; channel < 3; channel++)
            ASSERT_EQ(interlaced[4 * i + channel], rgb[3 * i + 2 - channel]) << i;
}

// 255 / 99 is 2 and a rest: the last of 100 is 198.
TEST_F(BitmapHandleTest, made_up_palette_may_end_below_white) {
    RMBitmapFile file;
    file.kind = UX_BITMAP_PNG;
    file.png.alpha = 0x40;
    file.png.gray_levels = 100;
    std::array<uint32_t, 256> palette{};
    EXPECT_EQ(RMBitmapGetPalette(palette.data(), &file), UX_BITMAP_SUCCESS);
    EXPECT_EQ(palette[1], 0x40020202u);
    EXPECT_EQ(palette[99], 0x40C6C6C6u);
    EXPECT_EQ(palette[100], 0u);
}
