// SPDX-License-Identifier: MIT
// Both decoders of UTF-8: the engine's pairs of words and the strict one for widget texts.

#include "tests/support/page_end.h"
#include "ux.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using words = std::vector<uint32_t>;

constexpr uint32_t k_untouched = 0xDEADBEEF;
constexpr size_t k_array_words = 4096;

// The pairs of `text`, decoded into an array that held k_untouched everywhere.
words pairs_of(const std::string &text) {
    words out(k_array_words, k_untouched);
    const int count = UTF8to16(text.c_str(), out.data());
    for (size_t i = static_cast<size_t>(count); i < out.size(); i++)
        EXPECT_EQ(out[i], k_untouched) << "word " << i << " behind the result was written";
    out.resize(static_cast<size_t>(count));
    return out;
}

// What the pairs are by the top four bits of the lead byte, byte by byte.
words plain_pairs_of(const std::string &text) {
    words out;
    const auto byte = [&](size_t at) {
        return at < text.size() ? static_cast<uint8_t>(text[at]) : uint8_t{0};
    };
    const auto put = [&](uint32_t code) {
        out.push_back(code / 256);
        out.push_back(code);
    };
    for (size_t i = 0; i < text.size();) {
        const uint32_t b0 = byte(i);
        switch (b0 >> 4) {
        case 0:
        case 1:
        case 2:
        case 3:
        case 4:
        case 5:
        case 6:
        case 7:
            put(b0);
            i += 1;
            break;
        case 12:
        case 13:
            put((b0 % 32) * 64 + byte(i + 1) % 64);
            i += 2;
            break;
        case 14:
            put((b0 % 16) * 4096 + byte(i + 1) % 64 * 64 + byte(i + 2) % 64);
            i += 3;
            break;
        default:
            out.insert(out.end(), 2, k_untouched);
            i += 1;
        }
    }
    return out;
}

struct conversion {
    std::u16string units;
    size_t needed;
};

conversion converted(const char *text, size_t capacity = 64) {
    std::u16string out(capacity + 4, u'#');
    const size_t needed = ux_text_from_utf8(out.data(), capacity, text);
    EXPECT_EQ(out.substr(capacity), u"####") << "a write behind the capacity";
    const size_t end = out.find(u'\0');
    return {end == std::u16string::npos ? std::u16string() : out.substr(0, end), needed};
}

} // namespace

TEST(Utf8Pairs, letter_gives_its_code_in_the_second_word) {
    EXPECT_EQ(pairs_of("A"), (words{0, 65}));
}

TEST(Utf8Pairs, two_byte_sequence_gives_one_pair) {
    EXPECT_EQ(pairs_of("\xC3\xA9"), (words{0, 233}));
}

TEST(Utf8Pairs, three_byte_sequence_gives_high_byte_and_whole_code) {
    EXPECT_EQ(pairs_of("\xE2\x82\xAC"), (words{0x20, 0x20AC}));
}

TEST(Utf8Pairs, lone_ff_counts_a_pair_and_leaves_it_untouched) {
    EXPECT_EQ(pairs_of("a\xFF"
                       "b"),
              (words{0, 97, k_untouched, k_untouched, 0, 98}));
}

TEST(Utf8Pairs, four_byte_sequence_gives_four_untouched_pairs) {
    EXPECT_EQ(pairs_of("\xF0\x9F\x98\x80"), words(8, k_untouched));
}

TEST(Utf8Pairs, stray_continuation_counts_a_pair_and_leaves_it_untouched) {
    EXPECT_EQ(pairs_of("\x80"
                       "a\xBF"),
              (words{k_untouched, k_untouched, 0, 97, k_untouched, k_untouched}));
}

TEST(Utf8Pairs, continuation_bytes_are_taken_whatever_they_are) {
    // 'A' = 0x41, its low six bits are 1: (3 << 6) | 1 and (2 << 12) | (1 << 6) | 1.
    EXPECT_EQ(pairs_of("\xC3"
                       "A"),
              (words{0, 0xC1}));
    EXPECT_EQ(pairs_of("\xE2"
                       "AA"),
              (words{0x20, 0x2041}));
}

TEST(Utf8Pairs, three_byte_lead_keeps_sixteen_bits) {
    EXPECT_EQ(pairs_of("\xEF\xBF\xBF"), (words{0xFF, 0xFFFF}));
    EXPECT_EQ(pairs_of("\xE0\x80\x80"), (words{0, 0}));
}

TEST(Utf8Pairs, overlong_sequence_is_taken_as_it_is) {
    EXPECT_EQ(pairs_of("\xC0\x80"), (words{0, 0}));
}

TEST(Utf8Pairs, sequence_cut_by_the_end_reads_zeros) {
    EXPECT_EQ(pairs_of("\xC3"), (words{0, 0xC0}));
    EXPECT_EQ(pairs_of("\xE2"), (words{0x20, 0x2000}));
    EXPECT_EQ(pairs_of("\xE2\x82"), (words{0x20, 0x2080}));
    EXPECT_EQ(pairs_of("a\xDF"), (words{0, 97, 7, 0x7C0}));
}

TEST(Utf8Pairs, cut_sequence_at_the_end_of_memory_is_not_read_beyond) {
    const char *cut[] = {"\xC3", "\xE2", "\xE2\x82", "ab\xEF"};
    for (const char *text : cut) {
        const page_end copy(text, strlen(text) + 1);
        words out(k_array_words);
        EXPECT_GT(UTF8to16(copy.bytes(), out.data()), 0);
    }
}

TEST(Utf8Pairs, null_and_empty_give_nothing) {
    words out(k_array_words, k_untouched);
    EXPECT_EQ(UTF8to16(nullptr, out.data()), 0);
    EXPECT_EQ(UTF8to16("", out.data()), 0);
    EXPECT_EQ(out, words(k_array_words, k_untouched));
}

TEST(Utf8Pairs, every_lead_byte_follows_its_top_four_bits) {
    for (int b0 = 1; b0 < 256; b0++) {
        const std::string text = std::string(1, static_cast<char>(b0)) + "\x91\xA2z";
        EXPECT_EQ(pairs_of(text), plain_pairs_of(text)) << "lead " << b0;
    }
}

TEST(Utf8Pairs, decoding_stops_at_4096_words) {
    const std::string fits(2048, 'x');
    EXPECT_EQ(pairs_of(fits).size(), 4096u);
    // Behind the array lies a page that can not be written: one pair more would end the test.
    const words zeros(k_array_words);
    for (const std::string &text :
         {std::string(5000, 'x'), fits + "\xC3\xA9", fits + "\xFF", std::string(9000, '\xE2')}) {
        const page_end array(zeros.data(), zeros.size() * sizeof(uint32_t));
        auto *out = static_cast<uint32_t *>(const_cast<void *>(array.data()));
        EXPECT_EQ(UTF8to16(text.c_str(), out), 4096);
    }
}

TEST(Utf8Pairs, random_bytes_decode_as_the_plain_loop_does) {
    std::mt19937 random(1);
    for (int trial = 0; trial < 5000; trial++) {
        std::string text(random() % 40, '\0');
        for (char &byte : text)
            byte = static_cast<char>(random() % 255 + 1);
        ASSERT_EQ(pairs_of(text), plain_pairs_of(text));
    }
}

TEST(TextFromUtf8, ascii_and_two_and_three_byte_characters_are_one_unit_each) {
    const conversion result = converted("A\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(result.units, u"A\u00E9\u20AC");
    EXPECT_EQ(result.needed, 3u);
}

TEST(TextFromUtf8, characters_beyond_ffff_become_surrogate_pairs) {
    const conversion first = converted("\xF0\x90\x80\x80");
    EXPECT_EQ(first.units, (std::u16string{0xD800, 0xDC00}));
    EXPECT_EQ(first.needed, 2u);
    EXPECT_EQ(converted("\xF0\x9F\x98\x80").units, (std::u16string{0xD83D, 0xDE00}));
    EXPECT_EQ(converted("\xF4\x8F\xBF\xBF").units, (std::u16string{0xDBFF, 0xDFFF}));
}

TEST(TextFromUtf8, invalid_bytes_become_the_replacement_character) {
    EXPECT_EQ(converted("a\xFF"
                        "b")
                  .units,
              u"a\uFFFDb");
    EXPECT_EQ(converted("\x80").units, u"\uFFFD");
    EXPECT_EQ(converted("\xC3(").units, u"\uFFFD(");
    EXPECT_EQ(converted("\xE2\x82").units, u"\uFFFD");
    EXPECT_EQ(converted("\xE2\x82x").units, u"\uFFFDx");
}

TEST(TextFromUtf8, overlong_forms_surrogates_and_codes_beyond_the_last_are_invalid) {
    EXPECT_EQ(converted("\xC0\x80").units, u"\uFFFD");
    EXPECT_EQ(converted("\xE0\x80\x80").units, u"\uFFFD");
    EXPECT_EQ(converted("\xF0\x80\x80\x80").units, u"\uFFFD");
    EXPECT_EQ(converted("\xED\xA0\x80").units, u"\uFFFD");
    EXPECT_EQ(converted("\xF4\x90\x80\x80").units, u"\uFFFD");
}

TEST(TextFromUtf8, boundaries_of_each_length_are_valid) {
    EXPECT_EQ(converted("\x7F\xC2\x80\xDF\xBF").units, u"\x7F\u0080\u07FF");
    EXPECT_EQ(converted("\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF").units,
              (std::u16string{0x0800, 0xD7FF, 0xE000, 0xFFFF}));
}

TEST(TextFromUtf8, capacity_0_writes_nothing_and_still_counts) {
    EXPECT_EQ(converted("abc", 0).needed, 3u);
    EXPECT_EQ(ux_text_from_utf8(nullptr, 0, "abc"), 3u);
}

TEST(TextFromUtf8, capacity_1_writes_the_zero_unit_only) {
    const conversion result = converted("abc", 1);
    EXPECT_EQ(result.units, u"");
    EXPECT_EQ(result.needed, 3u);
}

TEST(TextFromUtf8, exact_capacity_holds_the_whole_text) {
    EXPECT_EQ(converted("abc", 4).units, u"abc");
    EXPECT_EQ(converted("abc", 3).units, u"ab");
}

TEST(TextFromUtf8, surrogate_pair_that_does_not_fit_is_left_out_whole) {
    const conversion result = converted("a\xF0\x9F\x98\x80"
                                        "b",
                                        3);
    EXPECT_EQ(result.units, u"a");
    EXPECT_EQ(result.needed, 4u);
    EXPECT_EQ(converted("a\xF0\x9F\x98\x80", 4).units, (std::u16string{u'a', 0xD83D, 0xDE00}));
}

TEST(TextFromUtf8, null_and_empty_give_an_empty_text) {
    EXPECT_EQ(converted("").needed, 0u);
    EXPECT_EQ(converted("").units, u"");
    EXPECT_EQ(converted(nullptr).needed, 0u);
    EXPECT_EQ(converted(nullptr).units, u"");
}

TEST(TextFromUtf8, sequence_cut_at_the_end_of_memory_is_not_read_beyond) {
    for (const char *text : {"\xC3", "\xE2\x82", "\xF0\x9F\x98"}) {
        const page_end copy(text, strlen(text) + 1);
        EXPECT_EQ(converted(copy.bytes()).units, u"\uFFFD");
    }
}
