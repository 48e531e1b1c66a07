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

std::optional<size_text> size_in(std::string_view text, int largest) {
    const size_t cross = text.find('x');
    if (cross == std::string_view::npos) {
        return std::nullopt;
    }
    const auto width = number_in(text.substr(0, cross), 1, largest);
    const auto height = number_in(text.substr(cross + 1), 1, largest);
    return width && height ? std::optional<size_text>({*width, *height}) : std::nullopt;
}

} // namespace ux::sim
