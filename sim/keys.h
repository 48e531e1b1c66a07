// SPDX-License-Identifier: MIT
// The remote control's keys: names and codes, as scripts, ux-remote and the window know them.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ux::sim {

constexpr int k_key_digit0 = 1; // the digits follow each other: code = digit + 1
constexpr int k_key_up = 19;
constexpr int k_key_down = 20;
constexpr int k_key_left = 21;
constexpr int k_key_right = 22;
constexpr int k_key_ok = 23;
constexpr int k_key_delete = 32;
constexpr int k_key_shift = 34;
constexpr int k_key_punctuation = 35;
constexpr int k_key_highest = 255;

struct key_name {
    std::string_view name;
    int code;
};

// Every name, the preferred one of a key first.
std::span<const key_name> key_names();

// The preferred name of a key, or its code in digits.
std::string key_text(int code);

// The code of a key given by name (letters of either case) or by code 0..255. A plain number is
// always a code: the key that types 5 is "digit5".
std::optional<int> key_from_text(std::string_view text);

} // namespace ux::sim
