// SPDX-License-Identifier: MIT
// A font open on an engine that a test scripts: em size 2048, so that the scale of a request is the
// pixel size. Cells are half as wide as high unless a test says otherwise.
#ifndef UX_TESTS_FONT_ENGINE_TEXT_TEST_H
#define UX_TESTS_FONT_ENGINE_TEXT_TEST_H

#include "tests/support/screen_test.h"

#include <utility>

class EngineTextTest : public ScreenTest {
  protected:
    using calls = std::vector<std::string>;

    void SetUp() override {
        ScreenTest::SetUp();
        output_of([] { EXPECT_EQ(ux_open_font(), 0); });
        take_calls();
    }

    void TearDown() override {
        output_of([] { EXPECT_EQ(ux_close_font(), 0); });
        ScreenTest::TearDown();
    }

    // What `work` prints on standard output.
    template <class Work>
    static std::string output_of(Work work) {
        testing::internal::CaptureStdout();
        work();
        fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }

    // The calls of the chip since the last question.
    static calls take_calls() { return std::exchange(fake_chip::get().calls, {}); }

    // Those calls of `made` that begin with `name`.
    static calls only(const calls &made, const std::string &name) {
        calls found;
        for (const std::string &call : made)
            if (call.starts_with(name))
                found.push_back(call);
        return found;
    }

    // All cells have this size.
    static void set_cell(uint32_t width, uint32_t height) {
        fake_chip::get().cell_of = [=](uint32_t, uint32_t) {
            return fake_chip::cell{width, height};
        };
    }

    // The cell of one character; others keep theirs.
    static void set_cell(char character, uint32_t width, uint32_t height) {
        const auto others = fake_chip::get().cell_of;
        fake_chip::get().cell_of = [=](uint32_t code, uint32_t scale) {
            if (code == static_cast<uint8_t>(character))
                return fake_chip::cell{width, height};
            return others ? others(code, scale) : fake_chip::cell{scale / 2, scale};
        };
    }

    // A glyph of one outline.
    static void set_ink(char character, std::vector<std::string> rows) {
        fake_chip::get().engine_glyphs[static_cast<uint8_t>(character)].outlines = {
            {std::move(rows)}};
    }
};

#endif
