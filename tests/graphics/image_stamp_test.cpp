// SPDX-License-Identifier: MIT
// A picture drawn at many places: what it leaves on the screen and on standard output is what as
// many single drawings leave, whole pictures and broken ones.

#include "graphics/image_stamp.h"

#include "tests/graphics/picture_files.h"
#include "tests/support/plain_drawing.h"

#include <functional>

namespace {

class ImageStampTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        make_screen(40, 30);
        png_content content;
        content.width = 9;
        content.height = 7;
        content.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
        for (int i = 0; i < 9 * 7 * 4; i++)
            content.bytes.push_back(static_cast<uint8_t>(m_dice.word()));
        whole = folder.write_png("whole.png", content);
        const std::vector<uint8_t> bytes = folder.read_bytes("whole.png");
        folder.write_bytes("cut.png", {bytes.begin(), bytes.begin() + long(bytes.size() / 2)});
        folder.write_bytes("text.png", {'n', 'o'});
    }

    // The screen and the output after `draw` at some places, on the screen and beside it.
    struct traces {
        std::vector<uint32_t> pixels;
        std::string output;
        bool operator==(const traces &other) const = default;
    };
    traces traces_of(const std::function<void(int x, int y)> &draw) {
        plain::dice places(7);
        fill_buf(0x30405060);
        testing::internal::CaptureStdout();
        for (int i = 0; i < 40; i++) {
            const int x = places.between(-3, 43);
            draw(x, places.between(-3, 33));
        }
        return {plain::numbers(main_screen.buf), testing::internal::GetCapturedStdout()};
    }

    void expect_same(const std::string &path, int width, int height) {
        const traces single =
            traces_of([&](int x, int y) { ux_draw_image(path.c_str(), x, y, width, height, 0); });
        ux::image_stamp stamp(path.c_str(), width, height);
        const traces stamped = traces_of([&](int x, int y) { stamp.draw_at(x, y); });
        EXPECT_EQ(stamped.pixels, single.pixels);
        EXPECT_EQ(stamped.output, single.output);
        EXPECT_NE(single.output, "");
    }

    picture_folder folder;
    std::string whole;

  private:
    plain::dice m_dice{1};
};

} // namespace

TEST_F(ImageStampTest, whole_picture_is_drawn_as_by_single_drawings_from_one_reading) {
    for (int size : {9, 1, 20})
        expect_same(whole, size, size);
    ux::image_stamp stamp(whole.c_str(), 9, 7);
    fake_chip::get().calls.clear();
    traces_of([&](int x, int y) { stamp.draw_at(x, y); });
    int readings = 0;
    for (const std::string &call : fake_chip::get().calls)
        readings += call.rfind("RMOpenFile ", 0) == 0;
    EXPECT_EQ(readings, 1);
}

TEST_F(ImageStampTest, missing_and_broken_pictures_are_drawn_as_by_single_drawings) {
    for (const char *name : {"missing.png", "text.png", "cut.png"})
        expect_same(folder.path(name), 9, 7);
    EXPECT_EQ(fake_chip::get().open_files, 0);
}

TEST_F(ImageStampTest, sizes_without_pixels_are_drawn_as_by_single_drawings) {
    expect_same(whole, 0, 7);
    expect_same(whole, 9, -1);
}

TEST_F(ImageStampTest, place_beside_the_screen_reads_and_prints_nothing) {
    ux::image_stamp stamp(whole.c_str(), 9, 7);
    testing::internal::CaptureStdout();
    stamp.draw_at(-1, 0);
    stamp.draw_at(40, 0);
    stamp.draw_at(0, 30);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(fake_chip::get().calls, std::vector<std::string>{});
}
