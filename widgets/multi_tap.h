// SPDX-License-Identifier: MIT
// Typing on a telephone keypad: which character a press of a key gives, and whether it takes the
// place of the one before. Knows neither widgets nor timeouts.
#ifndef UX_WIDGETS_MULTI_TAP_H
#define UX_WIDGETS_MULTI_TAP_H

#include "ux.h"

namespace ux {

// What is printed on one key.
struct key_letters {
    int key;           // code
    char cycle[10];    // characters in the order of the presses
    char capitals[10]; // the same while capitals are on; shorter ones end in zeros
};

// What one press gives.
struct tap {
    char16_t character; // may be 0
    bool replaces;      // the last character, instead of following it
};

struct multi_tap {
    const key_letters *key2ascii_map[UX_MAX_KEYS]; // by key code; null = types nothing
    int current_key;                               // the key in progress; 0 = none
    int current_pos;                               // its place in the cycle
    bool current_key_shift;                        // capitals

    // Chooses what the keys type and forgets everything else.
    void begin(bool numeric);

    // Whether a key, any number, types something.
    bool types(int key) const;

    // A press of a key that types something.
    tap press(int key);

    // The next press of any key starts a new character.
    void end_key();
};

} // namespace ux

#endif
