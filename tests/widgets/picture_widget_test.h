// SPDX-License-Identifier: MIT
// What tests of widgets with pictures share: one-pixel pictures of named colours, and which picture
// files were read.
#ifndef UX_TESTS_WIDGETS_PICTURE_WIDGET_TEST_H
#define UX_TESTS_WIDGETS_PICTURE_WIDGET_TEST_H

#include "tests/graphics/picture_files.h"
#include "tests/widgets/widget_test.h"

// Opaque over black: 255 gives 254.
constexpr uint32_t k_red_seen = 0xFFFE0000;
constexpr uint32_t k_green_seen = 0xFF00FE00;
constexpr uint32_t k_blue_seen = 0xFF0000FE;
constexpr uint32_t k_white_seen = 0xFFFEFEFE;

class PictureWidgetTest : public WidgetTest {
  protected:
    void SetUp() override {
        WidgetTest::SetUp();
        red = write("red.png", {255, 0, 0, 255});
        green = write("green.png", {0, 255, 0, 255});
        blue = write("blue.png", {0, 0, 255, 255});
        white = write("white.png", {255, 255, 255, 255});
        half = write("half.png", {255, 255, 255, 128});
        clear = write("clear.png", {255, 255, 255, 0});
    }

    void TearDown() override {
        EXPECT_EQ(fake_chip::get().open_files, 0) << "a file was not closed";
        WidgetTest::TearDown();
    }

    std::string write(const std::string &name, const std::vector<uint8_t> &rgba) const {
        png_content content;
        content.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
        content.bytes = rgba;
        return folder.write_png(name, content);
    }

    // Files opened since the last call.
    static std::vector<std::string> files_read() {
        constexpr char prefix[] = "RMOpenFile ";
        std::vector<std::string> files;
        for (const std::string &call : take_calls())
            if (call.rfind(prefix, 0) == 0) {
                const size_t start = sizeof prefix - 1;
                files.push_back(call.substr(start, call.rfind(' ') - start));
            }
        return files;
    }
    using files = std::vector<std::string>;

    picture_folder folder;
    std::string red, green, blue, white;
    std::string half;  // white, alpha 128
    std::string clear; // alpha 0
};

#endif
