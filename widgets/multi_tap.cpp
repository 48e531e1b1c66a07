// SPDX-License-Identifier: MIT
// The letters on the keys and the order they come in; see multi_tap.h.

#include "widgets/multi_tap.h"

namespace ux {
namespace {

constexpr key_letters k_alphanumeric[] = {
    {UX_KEY_0, "0", "0"},
    {UX_KEY_1, "1", "1"},
    {UX_KEY_2, "2abcABC", "2ABC"},
    {UX_KEY_3, "3defDEF", "3DEF"},
    {UX_KEY_4, "4ghiGHI", "4GHI"},
    {UX_KEY_5, "5jklJKL", "5JKL"},
    {UX_KEY_6, "6mnoMNO", "6MNO"},
    {UX_KEY_7, "7pqrsPQRS", "7PQRS"},
    {UX_KEY_8, "8tuvTUV", "8TUV"},
    {UX_KEY_9, "9wxyzWXYZ", "9WXYZ"},
    {UX_KEY_PUNCTUATION, ".:/_ ", ".:/_ "},
};

constexpr key_letters k_numeric[] = {
    {UX_KEY_0, "0", "0"}, {UX_KEY_1, "1", "1"},           {UX_KEY_2, "2", "2"},
    {UX_KEY_3, "3", "3"}, {UX_KEY_4, "4", "4"},           {UX_KEY_5, "5", "5"},
    {UX_KEY_6, "6", "6"}, {UX_KEY_7, "7", "7"},           {UX_KEY_8, "8", "8"},
    {UX_KEY_9, "9", "9"}, {UX_KEY_PUNCTUATION, ".", "."},
};

} // namespace

// Both tables have the same keys, so that nothing of the other one stays.
void multi_tap::begin(bool numeric) {
    for (const key_letters &letters : numeric ? k_numeric : k_alphanumeric)
        key2ascii_map[letters.key] = &letters;
    current_key_shift = false;
    end_key();
}

bool multi_tap::types(int key) const {
    return key >= 0 && key < UX_MAX_KEYS && key2ascii_map[key];
}

// The cycle decides how many presses lead back to the first character, with capitals on as well:
// the presses that have no capital give the character 0.
tap multi_tap::press(int key) {
    const key_letters &letters = *key2ascii_map[key];
    const bool again = key == current_key;
    current_pos = again ? current_pos + 1 : 0;
    if (letters.cycle[current_pos] == '\0')
        current_pos = 0;
    current_key = key;
    const char *row = current_key_shift ? letters.capitals : letters.cycle;
    return {static_cast<char16_t>(row[current_pos]), again};
}

void multi_tap::end_key() {
    current_key = 0;
    current_pos = 0;
}

} // namespace ux
