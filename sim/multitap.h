// SPDX-License-Identifier: MIT
// Typing on a telephone keypad: which keys, in which rhythm, make a text in a text field.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace ux::sim {

// A text field takes the same key again within one second as "the next letter of this key". Its
// timer is looked at every 10 ms, so a little more than a second parts two letters safely.
constexpr std::chrono::milliseconds k_letter_timeout{1000};
constexpr std::chrono::milliseconds k_letter_pause{1200};

struct tap {
    int key;                         // code
    std::chrono::milliseconds pause; // to wait before it, after the tap before
};

// A host's very first timeout may be the one of the text's first tap. A field cannot delete that
// one and it ends whatever letter is in progress a second later, so a pause follows the first
// letter.

// The taps for `text`, `pace` apart where nothing longer is needed. Throws failure naming the first
// character that no key carries.
std::vector<tap> taps_for(std::string_view text, std::chrono::milliseconds pace);

} // namespace ux::sim
