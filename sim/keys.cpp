// SPDX-License-Identifier: MIT
// The table of key names.
#include "sim/keys.h"

#include "sim/number.h"

#include <algorithm>
#include <array>

namespace ux::sim {

namespace {

constexpr std::array k_names = {
    key_name{"up", k_key_up},
    key_name{"down", k_key_down},
    key_name{"left", k_key_left},
    key_name{"right", k_key_right},
    key_name{"ok", k_key_ok},
    key_name{"delete", k_key_delete},
    key_name{"shift", k_key_shift},
    key_name{"punctuation", k_key_punctuation},
    key_name{"digit0", k_key_digit0},
    key_name{"digit1", k_key_digit0 + 1},
    key_name{"digit2", k_key_digit0 + 2},
    key_name{"digit3", k_key_digit0 + 3},
    key_name{"digit4", k_key_digit0 + 4},
    key_name{"digit5", k_key_digit0 + 5},
    key_name{"digit6", k_key_digit0 + 6},
    key_name{"digit7", k_key_digit0 + 7},
    key_name{"digit8", k_key_digit0 + 8},
    key_name{"digit9", k_key_digit0 + 9},
    key_name{"enter", k_key_ok},
    key_name{"del", k_key_delete},
    key_name{"punct", k_key_punctuation},
};

char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool same_name(std::string_view name, std::string_view text) {
    return std::ranges::equal(name, text, {}, {}, lower);
}

} // namespace

std::span<const key_name> key_names() {
    return k_names;
}

std::string key_text(int code) {
    const auto *found = std::ranges::find(k_names, code, &key_name::code);
    return found == k_names.end() ? std::to_string(code) : std::string(found->name);
}

std::optional<int> key_from_text(std::string_view text) {
    for (const key_name &key : k_names) {
        if (same_name(key.name, text)) {
            return key.code;
        }
    }
    return number_in(text, 0, k_key_highest);
}

} // namespace ux::sim
