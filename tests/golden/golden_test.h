// SPDX-License-Identifier: MIT
// A small screen with one page, and the comparison of what was painted on it with a reference
// picture.
#ifndef UX_TESTS_GOLDEN_GOLDEN_TEST_H
#define UX_TESTS_GOLDEN_GOLDEN_TEST_H

#include "tests/golden/png_file.h"
#include "ux.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

class GoldenTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // A screen that shows a picture of stripes, and its one page, which is current.
    void make_screen(int width, int height, int color_mode = UX_COLOR_MODE_ARGB8888);

    ux_container *root() { return &main_screen.pages[0]->container; }

    // The screen is the picture `name`.png of `folder`. If not, what was painted and where it
    // differs is written to the build folder.
    void expect_golden(const std::string &name, const std::string &folder = UX_GOLDEN_REFERENCES);

  private:
    void paint_stripes();
    golden::picture painted() const;

    std::vector<uint8_t> m_memory;
};

#endif
