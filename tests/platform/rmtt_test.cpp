/* SPDX-License-Identifier: MIT */
/*
 * The RMTT calls as a client makes them: path strings, opening and closing fonts.
 */
#include "tests/platform/font_fixture.h"

namespace {

struct rmtt_test : font_fixture {
    rmtt_test() {
        use_font(nullptr);
        EXPECT_EQ(RUACreateInstance(&rua, 0), EM862X_SUCCESS);
        for (std::uint32_t code = 32; code <= 126; code++)
            mapping.code[code] = code;
        mapping.last = 126;
    }

    int open(const char *path) {
        rm_non_ascii *name = RMnonAsciiFromAscii(path);
        const int result = RMTTOpenFont(rua, &font, name, &mapping);
        RMFreeNonAscii(name);
        return result;
    }

    rua_instance *rua = nullptr;
    rmtt_font *font = nullptr;
    rmtt_mapping mapping = {};
};

TEST_F(rmtt_test, the_header_holds_ascender_descender_and_em_size) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(font->header[0], 1901) << "of Vera's hhea table";
    EXPECT_EQ(static_cast<std::int16_t>(font->header[1]), -483);
    EXPECT_EQ(font->header[2], 2048);
    EXPECT_EQ(RMTTCloseFont(rua, font), EM862X_SUCCESS);
}

TEST_F(rmtt_test, the_named_path_goes_before_the_environment) {
    setenv("EM862X_FONT", k_dejavu, 1);
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    EXPECT_EQ(probes::opens().asked, std::vector<std::string>{k_vera});
}

TEST_F(rmtt_test, a_missing_named_font_falls_back_to_the_lookup) {
    probes::opens().redirect = {{"/mine.ttf", k_vera}};
    probes::opens().hide_others = true;
    setenv("EM862X_FONT", "/mine.ttf", 1);
    ASSERT_EQ(open("/missing.ttf"), EM862X_SUCCESS);
    EXPECT_EQ(font->header[2], 2048);
}

TEST_F(rmtt_test, no_font_anywhere_fails_and_leaves_the_handle_alone) {
    probes::opens().hide_others = true;
    rmtt_font untouched = {};
    font = &untouched;
    EXPECT_EQ(open("/orbo/SDK/Vera.ttf"), EM862X_FAILURE);
    EXPECT_EQ(font, &untouched);
}

TEST_F(rmtt_test, closing_twice_null_or_a_foreign_font_is_refused) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    rmtt_font foreign = {};
    EXPECT_EQ(RMTTCloseFont(rua, &foreign), EM862X_FAILURE);
    EXPECT_EQ(RMTTCloseFont(rua, nullptr), EM862X_FAILURE);
    EXPECT_EQ(RMTTCloseFont(nullptr, font), EM862X_FAILURE);
    EXPECT_EQ(RMTTCloseFont(rua, font), EM862X_SUCCESS);
    EXPECT_EQ(RMTTCloseFont(rua, font), EM862X_FAILURE);
}

TEST_F(rmtt_test, two_fonts_are_open_apart) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    rmtt_font *first = font;
    ASSERT_EQ(open(k_dejavu), EM862X_SUCCESS);
    EXPECT_NE(font, first);
    EXPECT_EQ(RMTTCloseFont(rua, first), EM862X_SUCCESS);
    EXPECT_EQ(font->header[2], 2048);
    EXPECT_EQ(RMTTCloseFont(rua, font), EM862X_SUCCESS);
}

TEST_F(rmtt_test, missing_arguments_and_a_mapping_beyond_its_table_are_refused) {
    rm_non_ascii *name = RMnonAsciiFromAscii(k_vera);
    EXPECT_EQ(RMTTOpenFont(nullptr, &font, name, &mapping), EM862X_FAILURE);
    EXPECT_EQ(RMTTOpenFont(rua, nullptr, name, &mapping), EM862X_FAILURE);
    EXPECT_EQ(RMTTOpenFont(rua, &font, nullptr, &mapping), EM862X_FAILURE);
    EXPECT_EQ(RMTTOpenFont(rua, &font, name, nullptr), EM862X_FAILURE);
    mapping.last = 256;
    EXPECT_EQ(RMTTOpenFont(rua, &font, name, &mapping), EM862X_FAILURE);
    EXPECT_EQ(font, nullptr);
    RMFreeNonAscii(name);
}

TEST_F(rmtt_test, an_open_font_does_not_follow_its_file) {
    const std::string path = write_file("font", read_file(k_vera));
    ASSERT_EQ(open(path.c_str()), EM862X_SUCCESS);
    ASSERT_EQ(truncate(path.c_str(), 0), 0);
    EXPECT_EQ(RMTTCloseFont(rua, font), EM862X_SUCCESS);
}

TEST_F(rmtt_test, path_strings_survive_null_and_any_bytes) {
    EXPECT_EQ(RMnonAsciiFromAscii(nullptr), nullptr);
    RMFreeNonAscii(nullptr);
    const std::string odd(100000, '\xFF');
    for (const char *text : {"", odd.c_str()}) {
        rm_non_ascii *name = RMnonAsciiFromAscii(text);
        EXPECT_NE(name, nullptr);
        RMFreeNonAscii(name);
    }
}

} // namespace
