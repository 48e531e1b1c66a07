// SPDX-License-Identifier: MIT
// Pictures from files into blocks and onto the screen: sizes, alpha, messages, files closed again,
// memory that runs out; and the host's alpha plane.

#include "tests/graphics/picture_files.h"
#include "tests/support/plain_drawing.h"

#include <climits>
#include <memory>

namespace {

struct heap_free {
    void operator()(void *block) const { free(block); }
};

class ImageLoadTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        const std::vector<uint8_t> rgb = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
        two = write("two.png", 2, PNG_COLOR_TYPE_RGB, rgb);
        white = write("white.png", 1, PNG_COLOR_TYPE_RGB, {255, 255, 255});
    }

    void TearDown() override {
        EXPECT_EQ(fake_chip::get().open_files, 0) << "a file was not closed";
        ScreenTest::TearDown();
    }

    std::string write(const std::string &name, uint32_t side, int color_type,
                      const std::vector<uint8_t> &bytes) const {
        png_content content;
        content.width = content.height = side;
        content.color_type = color_type;
        content.bytes = bytes;
        return folder.write_png(name, content);
    }

    // The pixels of a block, which is released.
    static std::vector<uint32_t> taken(void *block, size_t count) {
        EXPECT_NE(block, nullptr);
        const std::unique_ptr<void, heap_free> owner(block);
        std::vector<uint32_t> pixels(block ? count : 0);
        if (block)
            memcpy(pixels.data(), block, count * sizeof(uint32_t));
        return pixels;
    }

    // What `call` prints on standard output.
    template <class Call>
    static std::string printed(Call call) {
        testing::internal::CaptureStdout();
        call();
        fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }

    static std::string fail(const std::string &path) {
        return "RMOpenBitmapFile " + path + " FAIL on ux_load_image\n";
    }
    static std::string no_memory(const std::string &path) {
        return "RMOpenBitmapFile " + path + " BUF NULL on ux_load_image\n";
    }
    static std::string plays(const std::string &path) { return "ADV Play PHOTO " + path + "\n"; }

    static bool opened() { return !fake_chip::get().calls.empty(); }

    picture_folder folder;
    std::string two;   // 2 x 2: 010203 040506 / 070809 0A0B0C
    std::string white; // one pixel
};

using pixels = std::vector<uint32_t>;

} // namespace

TEST_F(ImageLoadTest, picture_without_alpha_is_opaque) {
    EXPECT_EQ(taken(ux_load_image(two.c_str(), 2, 2), 4),
              (pixels{0xFF010203, 0xFF040506, 0xFF070809, 0xFF0A0B0C}));
}

TEST_F(ImageLoadTest, given_alpha_goes_to_pixels_without_their_own) {
    EXPECT_EQ(taken(ux_load_image_transparent(two.c_str(), 2, 2, 0x40), 4),
              (pixels{0x40010203, 0x40040506, 0x40070809, 0x400A0B0C}));
    EXPECT_EQ(taken(ux_load_image_transparent(two.c_str(), 2, 1, 0), 2),
              (pixels{0x00010203, 0x00040506}));
}

TEST_F(ImageLoadTest, own_alpha_stays) {
    const std::string path = write("own.png", 1, PNG_COLOR_TYPE_RGB_ALPHA, {1, 2, 3, 77});
    EXPECT_EQ(taken(ux_load_image(path.c_str(), 1, 1), 1), pixels{0x4D010203});
    EXPECT_EQ(taken(ux_load_image_transparent(path.c_str(), 1, 1, 9), 1), pixels{0x4D010203});
}

TEST_F(ImageLoadTest, picture_is_scaled_to_the_block) {
    EXPECT_EQ(taken(ux_load_image(two.c_str(), 4, 1), 4),
              (pixels{0xFF010203, 0xFF010203, 0xFF040506, 0xFF040506}));
    EXPECT_EQ(taken(ux_load_image(two.c_str(), 1, 2), 2), (pixels{0xFF010203, 0xFF070809}));
}

// The decoder writes 4 bytes a pixel.
TEST_F(ImageLoadTest, block_of_a_16_bit_screen_holds_32_bit_pixels) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    EXPECT_EQ(taken(ux_load_image(two.c_str(), 2, 2), 4)[3], 0xFF0A0B0C);
}

TEST_F(ImageLoadTest, jpeg_is_loaded) {
    const std::string path = folder.write_jpeg("grey.jpg", 8, 8, 1, std::vector<uint8_t>(64, 100));
    EXPECT_EQ(taken(ux_load_image(path.c_str(), 3, 2), 6), pixels(6, 0xFF646464));
}

TEST_F(ImageLoadTest, address_is_loaded) {
    fake_chip::get().addresses["http://host/a.png"] = two;
    EXPECT_EQ(taken(ux_load_image("http://host/a.png", 1, 1), 1), pixels{0xFF010203});
}

TEST_F(ImageLoadTest, null_path_is_an_unreadable_picture) {
    EXPECT_EQ(printed([] { EXPECT_EQ(ux_load_image(nullptr, 2, 2), nullptr); }), fail("(null)"));
    EXPECT_EQ(printed([] { EXPECT_EQ(ux_draw_image(nullptr, 0, 0, 2, 2, 0), 0); }),
              "ADV Play PHOTO (null)\n" + fail("(null)"));
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
}

TEST_F(ImageLoadTest, unreadable_picture_gives_null_and_the_fail_message) {
    folder.write_bytes("lie.png", {'n', 'o'});
    folder.write_bytes("short.jpg", {0xFF});
    for (const std::string &path :
         {folder.path("missing.png"), folder.path("lie.png"), folder.path("short.jpg"),
          folder.path("a.gif"), std::string("png"), std::string(),
          std::string("http://no/a.png")}) {
        EXPECT_EQ(printed([&] { EXPECT_EQ(ux_load_image(path.c_str(), 2, 2), nullptr); }),
                  fail(path));
        EXPECT_EQ(
            printed([&] { EXPECT_EQ(ux_load_image_transparent(path.c_str(), 2, 2, 1), nullptr); }),
            fail(path));
    }
}

// The result of decoding is not looked at: what was not decoded draws nothing.
TEST_F(ImageLoadTest, damaged_picture_gives_a_block_with_zeros) {
    std::vector<uint8_t> bytes = folder.read_bytes("two.png");
    bytes.resize(bytes.size() - 30);
    folder.write_bytes("short.png", bytes);
    void *block = nullptr;
    EXPECT_EQ(printed([&] { block = ux_load_image(folder.path("short.png").c_str(), 2, 2); }), "");
    EXPECT_EQ(taken(block, 4)[3], 0u);
}

TEST_F(ImageLoadTest, block_without_pixels_opens_and_closes_the_file) {
    for (const auto &[width, height] : {std::pair{0, 4}, {4, 0}, {-1, 4}, {4, INT_MIN}, {0, 0}}) {
        fake_chip::get().calls.clear();
        void *block = nullptr;
        EXPECT_EQ(printed([&] { block = ux_load_image(two.c_str(), width, height); }), "");
        EXPECT_NE(block, nullptr);
        free(block);
        EXPECT_EQ(fake_chip::get().calls.back(), "RMCloseFile");
    }
    const std::string missing = folder.path("missing.png");
    EXPECT_EQ(printed([&] { EXPECT_EQ(ux_load_image(missing.c_str(), 0, 0), nullptr); }),
              fail(missing));
}

TEST_F(ImageLoadTest, no_memory_for_the_block_gives_null_and_the_buf_message) {
    for (bool transparent : {false, true}) {
        hooks::fail_allocation(1);
        EXPECT_EQ(printed([&] {
                      EXPECT_EQ(transparent ? ux_load_image_transparent(two.c_str(), 2, 2, 7)
                                            : ux_load_image(two.c_str(), 2, 2),
                                nullptr);
                  }),
                  no_memory(two));
    }
}

TEST_F(ImageLoadTest, picture_is_closed_before_missing_memory_is_told) {
    FILE *teller = fopencookie(nullptr, "w",
                               {.read = nullptr,
                                .write = [](void *, const char *, size_t count) -> ssize_t {
                                    fake_chip::get().calls.emplace_back("told");
                                    return static_cast<ssize_t>(count);
                                },
                                .seek = nullptr,
                                .close = nullptr});
    char line[256];
    setvbuf(teller, line, _IOLBF, sizeof line);
    std::swap(stdout, teller);
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_load_image(two.c_str(), 2, 2), nullptr);
    std::swap(stdout, teller);
    fclose(teller);
    const std::vector<std::string> &calls = fake_chip::get().calls;
    ASSERT_GE(calls.size(), 2u);
    EXPECT_EQ(calls[calls.size() - 2], "RMCloseFile");
    EXPECT_EQ(calls.back(), "told");
}

TEST_F(ImageLoadTest, size_beyond_all_numbers_gives_null_and_the_buf_message) {
    EXPECT_EQ(printed([&] { EXPECT_EQ(ux_load_image(two.c_str(), INT_MAX, INT_MAX), nullptr); }),
              no_memory(two));
}

// Each allocation fails in turn: null with a message, or a block that was not decoded.
TEST_F(ImageLoadTest, any_allocation_may_fail) {
    const std::string jpeg = folder.write_jpeg("a.jpg", 8, 8, 3, std::vector<uint8_t>(192, 9));
    for (const std::string &path : {two, jpeg})
        for (int size : {1, 2, 8}) {
            hooks::take_allocation_count();
            free(ux_load_image(path.c_str(), size, size));
            const long count = hooks::take_allocation_count();
            ASSERT_GE(count, 1);
            for (long n = 1; n <= count; n++) {
                void *block = nullptr;
                const std::string text = printed([&] {
                    hooks::fail_allocation(n);
                    block = ux_load_image(path.c_str(), size, size);
                    hooks::fail_allocation(0);
                });
                EXPECT_EQ(text, block ? "" : no_memory(path)) << n;
                free(block);
                EXPECT_EQ(fake_chip::get().open_files, 0) << n;
            }
        }
}

TEST_F(ImageLoadTest, any_read_may_fail) {
    for (long reads = 0; reads < 30; reads++) {
        fake_chip::get().fail_read_after = reads;
        void *block = nullptr;
        const std::string text = printed([&] { block = ux_load_image(two.c_str(), 2, 2); });
        EXPECT_EQ(text, block ? "" : fail(two)) << reads;
        free(block);
        EXPECT_EQ(fake_chip::get().open_files, 0) << reads;
    }
}

TEST_F(ImageLoadTest, failing_close_does_not_lose_the_block) {
    fake_chip::get().close_file_result = EM862X_FAILURE;
    EXPECT_EQ(taken(ux_load_image(two.c_str(), 1, 1), 1), pixels{0xFF010203});
}

TEST_F(ImageLoadTest, draw_announces_draws_and_gives_0) {
    set_apart();
    EXPECT_EQ(printed([&] { EXPECT_EQ(ux_draw_image(white.c_str(), 3, 2, 2, 1, 0), 0); }),
              plays(white));
    EXPECT_EQ(buf_picture(0xFFFEFEFE).substr(2 * 17, 17), "...XX...........\n");
    EXPECT_EQ(fb_pixel(3, 2), 0u) << "the screen itself is not updated";
}

TEST_F(ImageLoadTest, draw_outside_the_screen_is_silent_and_opens_nothing) {
    for (const auto &[x, y] : {std::pair{-1, 0}, {0, -1}, {16, 0}, {0, 8}, {INT_MAX, INT_MIN}}) {
        EXPECT_EQ(printed([&, x = x, y = y] {
                      EXPECT_EQ(ux_draw_image(white.c_str(), x, y, 1, 1, 0), 0);
                      EXPECT_EQ(ux_draw_image_transparent(white.c_str(), x, y, 1, 1, 0, 9), 0);
                  }),
                  "");
    }
    EXPECT_FALSE(opened());
}

TEST_F(ImageLoadTest, mode_255_is_half_transparent_at_once) {
    ux_draw_image(white.c_str(), 0, 0, 16, 8, 255);
    EXPECT_EQ(plain::numbers(main_screen.buf), pixels(16 * 8, 0x807F7F7F));
    EXPECT_TRUE(hooks::get().usleeps.empty());
}

TEST_F(ImageLoadTest, mode_above_255_is_an_opaque_effect) {
    setenv("ShowMSG", "YES", 1);
    ux_draw_image(white.c_str(), 0, 0, 16, 8, 257);
    unsetenv("ShowMSG");
    EXPECT_EQ(buf_pixel(0, 7), 0xFFFEFEFEu) << "effect 2 begins below";
    EXPECT_EQ(buf_pixel(0, 6), 0u);
    EXPECT_EQ(hooks::get().usleeps, std::vector<unsigned>{3000});
}

TEST_F(ImageLoadTest, modes_without_effect_load_and_draw_nothing) {
    for (int mode : {INT_MIN, -1, 9, 254, 264, INT_MAX}) {
        fake_chip::get().calls.clear();
        EXPECT_EQ(printed([&] { ux_draw_image(white.c_str(), 0, 0, 4, 4, mode); }), plays(white));
        EXPECT_TRUE(opened()) << mode;
        EXPECT_EQ(fake_chip::get().open_files, 0) << mode;
    }
    EXPECT_EQ(plain::numbers(main_screen.buf), pixels(16 * 8));
}

TEST_F(ImageLoadTest, transparent_draw_takes_0_for_128_and_announces_nothing) {
    EXPECT_EQ(printed([&] {
                  ux_draw_image_transparent(white.c_str(), 0, 0, 1, 1, 0, 0);
                  ux_draw_image_transparent(white.c_str(), 1, 0, 1, 1, 0, 64);
                  ux_draw_image_transparent(white.c_str(), 2, 0, 1, 1, 0, 255);
                  ux_draw_image_transparent(white.c_str(), 3, 0, 1, 1, 255, 255);
              }),
              "");
    EXPECT_EQ(buf_pixel(0, 0), 0x807F7F7Fu);
    EXPECT_EQ(buf_pixel(1, 0), 0x403F3F3Fu);
    EXPECT_EQ(buf_pixel(2, 0), 0xFFFEFEFEu);
    EXPECT_EQ(buf_pixel(3, 0), 0u) << "an effect of 255 has no meaning here";
}

TEST_F(ImageLoadTest, draw_of_an_unreadable_picture_gives_0_and_draws_nothing) {
    const std::string path = folder.path("missing.png");
    EXPECT_EQ(printed([&] { EXPECT_EQ(ux_draw_image(path.c_str(), 0, 0, 4, 4, 0), 0); }),
              plays(path) + fail(path));
    EXPECT_EQ(
        printed([&] { EXPECT_EQ(ux_draw_image_transparent(path.c_str(), 0, 0, 4, 4, 0, 1), 0); }),
        fail(path));
    hooks::fail_allocation(1);
    EXPECT_EQ(printed([&] { EXPECT_EQ(ux_draw_image(two.c_str(), 0, 0, 4, 4, 0), 0); }),
              plays(two) + no_memory(two));
    EXPECT_EQ(plain::numbers(main_screen.buf), pixels(16 * 8));
}

TEST_F(ImageLoadTest, draw_of_no_size_gives_0) {
    EXPECT_EQ(ux_draw_image(white.c_str(), 0, 0, 0, 0, 0), 0);
    EXPECT_EQ(ux_draw_image(white.c_str(), 0, 0, -4, 4, 256), 0);
    EXPECT_EQ(plain::numbers(main_screen.buf), pixels(16 * 8));
}
