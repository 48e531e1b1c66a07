/* SPDX-License-Identifier: MIT */
/*
 * Which font file is taken, and what damaged ones can do.
 */
#include "platform/host/font_file.h"

#include <random>

#include <sys/stat.h>

#include "tests/platform/font_fixture.h"

namespace {

struct font_file_test : font_fixture {
    font_file_test() { use_font(nullptr); }

    /* The path that the lookup settles on, "" for none. */
    static std::string found(const char *first = nullptr) {
        const em862x::library_handle library = em862x::make_freetype_library();
        const auto file = em862x::find_font(library.get(), first);
        return file ? file->path : "";
    }
};

constexpr const char *k_device_font = "/orbo/SDK/Vera.ttf";

TEST_F(font_file_test, the_environment_goes_before_the_device_path_before_the_system) {
    probes::opens().redirect = {{"/mine.ttf", k_dejavu}, {k_device_font, k_vera}};
    setenv("EM862X_FONT", "/mine.ttf", 1);
    EXPECT_EQ(found(), "/mine.ttf");
    unsetenv("EM862X_FONT");
    EXPECT_EQ(found(), k_device_font);
    probes::opens() = {};
    probes::opens().redirect = {{k_device_font, "/nonexistent"}};
    EXPECT_EQ(found(), k_vera);
    probes::opens().redirect[k_vera] = "/nonexistent";
    EXPECT_EQ(found(), k_dejavu);
}

TEST_F(font_file_test, every_path_is_asked_once_in_order_when_none_exists) {
    probes::opens().hide_others = true;
    setenv("EM862X_FONT", "/mine.ttf", 1);
    EXPECT_EQ(found("/named.ttf"), "");
    const std::vector<std::string> &asked = probes::opens().asked;
    ASSERT_GE(asked.size(), 6u);
    const std::vector<std::string> head(asked.begin(), asked.begin() + 5);
    EXPECT_EQ(head, (std::vector<std::string>{"/named.ttf", "/mine.ttf", k_device_font, k_vera,
                                              k_dejavu}));
    EXPECT_EQ(std::set<std::string>(asked.begin(), asked.end()).size(), asked.size());
}

TEST_F(font_file_test, the_rasteriser_looks_for_its_font_once) {
    probes::opens().redirect = {{k_device_font, k_vera}};
    set_size(16, 16);
    fss_picture('A');
    set_size(24, 24);
    fss_picture('B');
    EXPECT_EQ(probes::opens().asked, std::vector<std::string>{k_device_font});
}

TEST_F(font_file_test, what_is_no_font_falls_to_the_next) {
    const std::string vera = read_file(k_vera);
    std::mt19937 random(7);
    std::string noise(70000, '\0');
    for (char &byte : noise)
        byte = static_cast<char>(random());
    const std::string pipe = path_of("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string &path :
         {std::string(), std::string("/"), pipe, std::string("/dev/zero"), write_file("empty", ""),
          write_file("noise", noise), write_file("text", "no font"),
          write_file("head", vera.substr(0, 300)),
          write_file("headed_noise", vera.substr(0, 300) + noise),
          write_file("half", vera.substr(0, vera.size() / 2))})
        EXPECT_NE(found(path.c_str()), path);
}

TEST_F(font_file_test, a_damaged_named_font_leaves_the_text_readable) {
    const std::string vera = read_file(k_vera);
    use_font(write_file("half", vera.substr(0, vera.size() / 2)).c_str());
    probes::opens().redirect = {{k_device_font, k_vera}};
    set_size(16, 16);
    EXPECT_EQ(fss_picture('A'), reference_picture(k_vera, 'A', {16, 16}));
}

TEST_F(font_file_test, a_file_beyond_the_limit_is_not_read) {
    const std::string path = write_file("huge", "x");
    ASSERT_EQ(truncate(path.c_str(), em862x::k_font_file_max + 1), 0);
    EXPECT_NE(found(path.c_str()), path);
}

TEST_F(font_file_test, fonts_cut_short_anywhere_still_give_glyphs) {
    const std::string vera = read_file(k_vera);
    for (std::size_t length = 0; length < vera.size(); length += 997) {
        use_font(write_file("cut", vera.substr(0, length)).c_str());
        set_size(16, 16);
        for (const std::uint32_t code : {0x41u, 0x7Au, 0xE9u, 0x4E00u})
            ASSERT_FALSE(fss_picture(code).rows.empty()) << "length " << length;
    }
}

TEST_F(font_file_test, fonts_with_flipped_bytes_give_bounded_glyphs) {
    const std::string vera = read_file(k_vera);
    std::mt19937 random(20);
    for (int round = 0; round < 150; round++) {
        std::string bytes = vera;
        for (int i = 0; i < 1 + round; i++)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        use_font(write_file("flipped", bytes).c_str());
        for (const int size : {16, 300}) {
            set_size(size, size);
            for (std::uint32_t code = 33; code < 127; code += 3) {
                fss_glyph *glyph = FSS_get_bitmap(code);
                ASSERT_NE(glyph, nullptr) << "round " << round;
                EXPECT_LE(glyph->rows, 4096);
                EXPECT_GE(glyph->advance, 0);
                FSS_free_char(glyph);
            }
        }
    }
}

} // namespace
