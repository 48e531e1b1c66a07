// SPDX-License-Identifier: MIT
// Strict reading of decimal numbers.
#include "sim/number.h"

#include <charconv>

namespace ux::sim {

std::optional<int> number_in(std::string_view text, int lowest, int highest) {
    int value = 0;
    const char *end = text.data() + text.size();
    auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || value < lowest || value > highest) {
        return std::nullopt;
    }
    return value;
}

} // namespace ux::sim
