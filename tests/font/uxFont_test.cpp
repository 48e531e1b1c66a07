// SPDX-License-Identifier: MIT
// Opening and closing of the font: the calls the chip gets, in order, and what each failure says.

#include "tests/support/screen_test.h"

#include <cstring>

namespace {

using calls = std::vector<std::string>;

class FontTest : public ScreenTest {
  protected:
    void open() {
        testing::internal::CaptureStdout();
        EXPECT_EQ(ux_open_font(), 0);
        opened_with = testing::internal::GetCapturedStdout();
    }

    void close() {
        testing::internal::CaptureStdout();
        EXPECT_EQ(ux_close_font(), 0);
        closed_with = testing::internal::GetCapturedStdout();
    }

    // The calls since the last question.
    calls take_calls() { return std::exchange(fake_chip::get().calls, {}); }

    std::vector<uint32_t> profile() const {
        const std::vector<uint8_t> &bytes = fake_chip::get().last_profile;
        std::vector<uint32_t> words;
        for (size_t i = 0; i + 3 < bytes.size(); i += 4)
            words.push_back(bytes[i] | bytes[i + 1] << 8 | bytes[i + 2] << 16 |
                            static_cast<uint32_t>(bytes[i + 3]) << 24);
        return words;
    }

    std::string opened_with; // standard output of open()
    std::string closed_with; // and of close()
};

} // namespace

TEST_F(FontTest, open_and_close_make_exactly_these_calls) {
    open();
    EXPECT_EQ(take_calls(), (calls{
                                "RUACreateInstance 0",
                                "RUAExchangeProperty 32 4292 10 4 8",
                                "RUAMalloc 0 57 4096",
                                "RUAMalloc 0 57 512",
                                "RUAExchangeProperty 1 1 32 4 4",
                                "RUASetProperty 32 4293 24",
                                "RMnonAsciiFromAscii /orbo/SDK/Vera.ttf",
                                "RMTTOpenFont",
                                "RMFreeNonAscii",
                            }));
    close();
    EXPECT_EQ(take_calls(), (calls{
                                "RMTTCloseFont 1",
                                "RUASetProperty 32 4294 4",
                                "RUAFree 65536",
                                "RUAFree 131072",
                            }));
    EXPECT_EQ(fake_chip::get().last_close_input, (std::vector<uint8_t>{0, 0, 0, 0}));
    EXPECT_EQ(closed_with, "");
}

TEST_F(FontTest, open_announces_itself) {
    open();
    EXPECT_EQ(opened_with, "open font *****************\n");
    close();
}

TEST_F(FontTest, profile_is_six_words_in_the_engines_order) {
    open();
    EXPECT_EQ(fake_chip::get().last_profile.size(), 24u);
    EXPECT_EQ(profile(), (std::vector<uint32_t>{10, 1, 0x10000, 4096, 0x20000, 512}));
    close();
}

TEST_F(FontTest, mapping_holds_the_printable_codes) {
    open();
    const rmtt_mapping &mapping = fake_chip::get().last_mapping;
    for (uint32_t code = 0; code < 256; code++)
        EXPECT_EQ(mapping.code[code], code >= 32 && code <= 126 ? code : 0) << code;
    EXPECT_EQ(mapping.last, 126u);
    close();
}

TEST_F(FontTest, given_path_is_not_used) {
    EXPECT_EQ(ux_open_font_em862x(nullptr), 0);
    EXPECT_EQ(ux_close_font_em862x(), 0);
    EXPECT_EQ(ux_open_font_em862x("/nowhere"), 0);
    EXPECT_EQ(take_calls().at(4 + 9 + 6), "RMnonAsciiFromAscii /orbo/SDK/Vera.ttf");
    EXPECT_EQ(ux_close_font_em862x(), 0);
}

TEST_F(FontTest, area_of_no_bytes_is_neither_allocated_nor_freed) {
    fake_chip::get().area_bytes[0] = 0;
    open();
    EXPECT_EQ(profile(), (std::vector<uint32_t>{10, 1, 0, 0, 0x10000, 512}));
    take_calls();
    close();
    EXPECT_EQ(take_calls(),
              (calls{"RMTTCloseFont 1", "RUASetProperty 32 4294 4", "RUAFree 65536"}));

    fake_chip::get().area_bytes[0] = 4096;
    fake_chip::get().area_bytes[1] = 0;
    open();
    EXPECT_EQ(profile(), (std::vector<uint32_t>{10, 1, 0x20000, 4096, 0, 0}));
    take_calls();
    close();
    EXPECT_EQ(take_calls(),
              (calls{"RMTTCloseFont 1", "RUASetProperty 32 4294 4", "RUAFree 131072"}));
}

TEST_F(FontTest, failed_area_is_handed_to_the_engine_as_address_0) {
    fake_chip::get().next_address = 0;
    open();
    EXPECT_EQ(profile(), (std::vector<uint32_t>{10, 1, 0, 4096, 0, 512}));
    take_calls();
    close();
    EXPECT_EQ(take_calls(), (calls{"RMTTCloseFont 1", "RUASetProperty 32 4294 4"}));
}

TEST_F(FontTest, first_engine_that_accepts_is_kept) {
    fake_chip::get().engines = 3;
    fake_chip::get().open_results = {EM862X_FAILURE, EM862X_SUCCESS, EM862X_SUCCESS};
    open();
    calls made = take_calls();
    EXPECT_EQ(made.at(5), "RUASetProperty 32 4293 24");
    EXPECT_EQ(made.at(6), "RUASetProperty 288 4293 24");
    EXPECT_EQ(made.at(7), "RMnonAsciiFromAscii /orbo/SDK/Vera.ttf");
    close();
    EXPECT_EQ(take_calls().at(1), "RUASetProperty 288 4294 4");
}

TEST_F(FontTest, busy_engine_is_asked_once) {
    fake_chip::get().engines = 2;
    fake_chip::get().open_results = {EM862X_BUSY, EM862X_SUCCESS};
    open();
    const calls made = take_calls();
    EXPECT_EQ(made.at(5), "RUASetProperty 32 4293 24");
    EXPECT_EQ(made.at(6), "RUASetProperty 288 4293 24");
    close();
}

TEST_F(FontTest, engine_number_is_cut_to_eight_bits) {
    fake_chip::get().engines = 258;
    fake_chip::get().accepted_attempt = 257;
    open();
    const calls made = take_calls();
    EXPECT_EQ(made.at(5 + 255), "RUASetProperty 65312 4293 24"); // 0xFF20
    EXPECT_EQ(made.at(5 + 256), "RUASetProperty 32 4293 24");
    EXPECT_EQ(made.at(5 + 257), "RUASetProperty 288 4293 24");
    close();
    EXPECT_EQ(take_calls().at(1), "RUASetProperty 288 4294 4");
}

TEST_F(FontTest, missing_font_file_is_told_and_ends_nothing) {
    fake_chip::get().font_result = EM862X_FAILURE;
    open();
    EXPECT_EQ(opened_with, "open font *****************\nError open /orbo/SDK/Vera.ttf\n");
    EXPECT_EQ(take_calls().back(), "RMFreeNonAscii");
    close();
    EXPECT_EQ(take_calls().front(), "RMTTCloseFont 0");
}

TEST_F(FontTest, engine_that_does_not_close_is_told_and_its_areas_are_freed) {
    open();
    take_calls();
    fake_chip::get().close_result = EM862X_BUSY;
    close();
    EXPECT_EQ(closed_with, "Cannot close de gfx accelerator\n");
    EXPECT_EQ(take_calls(), (calls{"RMTTCloseFont 1", "RUASetProperty 32 4294 4", "RUAFree 65536",
                                   "RUAFree 131072"}));
}

TEST_F(FontTest, second_close_frees_no_area_again) {
    open();
    close();
    take_calls();
    close();
    EXPECT_EQ(take_calls(), (calls{"RMTTCloseFont 0", "RUASetProperty 32 4294 4"}));
}

using FontDeathTest = FontTest;

TEST_F(FontDeathTest, missing_instance_ends_the_process) {
    fake_chip::get().create_result = EM862X_FAILURE;
    EXPECT_EXIT(ux_open_font(), testing::ExitedWithCode(1),
                testing::Eq("Error creating RUA instance! 9\n"));
}

TEST_F(FontDeathTest, unknown_memory_needs_end_the_process) {
    fake_chip::get().needs_result = EM862X_BUSY;
    EXPECT_EXIT(ux_open_font(), testing::ExitedWithCode(1),
                testing::Eq("Error getting dram size for gfx engine\n"));
}

TEST_F(FontDeathTest, unknown_engine_count_ends_the_process) {
    fake_chip::get().count_result = EM862X_FAILURE;
    EXPECT_EXIT(ux_open_font(), testing::ExitedWithCode(1),
                testing::Eq("Error getting gfx engine count\n"));
}

TEST_F(FontDeathTest, two_refusing_engines_end_the_process) {
    fake_chip::get().engines = 2;
    fake_chip::get().open_results = {EM862X_FAILURE, EM862X_BUSY};
    EXPECT_EXIT(ux_open_font(), testing::ExitedWithCode(1),
                testing::Eq("Cannot open a gfx engine [0..2[\n"));
}

TEST_F(FontDeathTest, three_hundred_refusing_engines_end_the_process) {
    fake_chip::get().engines = 300;
    fake_chip::get().accepted_attempt = 300;
    EXPECT_EXIT(ux_open_font(), testing::ExitedWithCode(1),
                testing::Eq("Cannot open a gfx engine [0..300[\n"));
}

TEST_F(FontDeathTest, no_engine_ends_the_process) {
    fake_chip::get().engines = 0;
    EXPECT_EXIT(ux_open_font(), testing::ExitedWithCode(1),
                testing::Eq("Cannot open a gfx engine [0..0[\n"));
}
