// SPDX-License-Identifier: MIT
// Decimal numbers and sizes as users type them: the whole text or nothing, within stated bounds.
#pragma once

#include <optional>
#include <string_view>

namespace ux::sim {

// The number in `text`, or nothing when anything but one decimal number stands there or the number
// lies outside [lowest, highest].
std::optional<int> number_in(std::string_view text, int lowest, int highest);

struct size_text {
    int width;
    int height;
};

// The size in "WIDTHxHEIGHT", each 1 to `largest`, or nothing.
std::optional<size_text> size_in(std::string_view text, int largest);

} // namespace ux::sim
