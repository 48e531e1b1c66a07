// SPDX-License-Identifier: MIT
// The letters on the keys.
#include "sim/multitap.h"

#include "sim/failure.h"
#include "sim/keys.h"

#include <array>

namespace ux::sim {

namespace {

struct keypad_key {
    int code;
    std::string_view letters; // in the order of the taps
};

constexpr std::array k_keypad = {
    keypad_key{k_key_digit0, "0"},           keypad_key{k_key_digit0 + 1, "1"},
    keypad_key{k_key_digit0 + 2, "2abcABC"}, keypad_key{k_key_digit0 + 3, "3defDEF"},
    keypad_key{k_key_digit0 + 4, "4ghiGHI"}, keypad_key{k_key_digit0 + 5, "5jklJKL"},
    keypad_key{k_key_digit0 + 6, "6mnoMNO"}, keypad_key{k_key_digit0 + 7, "7pqrsPQRS"},
    keypad_key{k_key_digit0 + 8, "8tuvTUV"}, keypad_key{k_key_digit0 + 9, "9wxyzWXYZ"},
    keypad_key{k_key_punctuation, ".:/_ "},
};

struct place {
    int key;
    size_t taps;
};

place place_of(char letter, size_t position) {
    for (const keypad_key &key : k_keypad) {
        size_t at = key.letters.find(letter);
        if (at != std::string_view::npos) {
            return {key.code, at + 1};
        }
    }
    bool plain = letter > ' ' && letter < 0x7f;
    std::string shown = plain ? std::string("'") + letter + "'" : "the character";
    throw failure("no key types " + shown + " (position " + std::to_string(position + 1) + ")");
}

} // namespace

std::vector<tap> taps_for(std::string_view text, std::chrono::milliseconds pace) {
    std::vector<tap> result;
    for (size_t position = 0; position < text.size(); ++position) {
        place wanted = place_of(text[position], position);
        bool same_key_again = !result.empty() && result.back().key == wanted.key;
        bool rests = same_key_again || position == 1;
        result.push_back({wanted.key, rests ? std::max(k_letter_pause, pace) : pace});
        result.insert(result.end(), wanted.taps - 1, {wanted.key, pace});
    }
    return result;
}

} // namespace ux::sim
