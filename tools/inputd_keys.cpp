// SPDX-License-Identifier: MIT
// The table of event codes.
#include "tools/inputd_keys.h"

#include "sim/failure.h"
#include "sim/keys.h"

#include <libevdev/libevdev.h>

namespace ux::inputd {

namespace {

using sim::k_key_digit0;

const std::map<unsigned, int> k_usual = {
    {KEY_UP, sim::k_key_up},
    {KEY_DOWN, sim::k_key_down},
    {KEY_LEFT, sim::k_key_left},
    {KEY_RIGHT, sim::k_key_right},
    {KEY_ENTER, sim::k_key_ok},
    {KEY_KPENTER, sim::k_key_ok},
    {KEY_OK, sim::k_key_ok},
    {KEY_SELECT, sim::k_key_ok},
    {KEY_BACKSPACE, sim::k_key_delete},
    {KEY_DELETE, sim::k_key_delete},
    {KEY_LEFTSHIFT, sim::k_key_shift},
    {KEY_RIGHTSHIFT, sim::k_key_shift},
    {KEY_DOT, sim::k_key_punctuation},
    {KEY_KPDOT, sim::k_key_punctuation},
    {KEY_KP0, k_key_digit0},
    {KEY_KP1, k_key_digit0 + 1},
    {KEY_KP2, k_key_digit0 + 2},
    {KEY_KP3, k_key_digit0 + 3},
    {KEY_KP4, k_key_digit0 + 4},
    {KEY_KP5, k_key_digit0 + 5},
    {KEY_KP6, k_key_digit0 + 6},
    {KEY_KP7, k_key_digit0 + 7},
    {KEY_KP8, k_key_digit0 + 8},
    {KEY_KP9, k_key_digit0 + 9},
};

} // namespace

key_table::key_table() : m_keys(k_usual) {
    for (unsigned digit = 0; digit <= 9; digit++) {
        m_keys[KEY_NUMERIC_0 + digit] = k_key_digit0 + static_cast<int>(digit);
    }
    m_keys[KEY_0] = k_key_digit0; // behind the 9 on a keyboard
    for (unsigned digit = 1; digit <= 9; digit++) {
        m_keys[KEY_1 + digit - 1] = k_key_digit0 + static_cast<int>(digit);
    }
}

void key_table::assign(const std::string &assignment) {
    const size_t sign = assignment.find('=');
    if (sign == std::string::npos) {
        throw sim::usage_failure("--key wants NAME=KEY, not '" + assignment + "'");
    }
    const std::string name = assignment.substr(0, sign);
    const std::string key = assignment.substr(sign + 1);
    const int event_code = libevdev_event_code_from_name(EV_KEY, name.c_str());
    if (event_code < 0) {
        throw sim::usage_failure("no key of an input device is called '" + name + "'");
    }
    const auto code = sim::key_from_text(key);
    if (!code) {
        throw sim::usage_failure("no key is called '" + key + "'");
    }
    m_keys[static_cast<unsigned>(event_code)] = *code;
}

std::optional<int> key_table::key_of(unsigned event_code) const {
    const auto found = m_keys.find(event_code);
    return found == m_keys.end() ? std::nullopt : std::optional(found->second);
}

} // namespace ux::inputd
