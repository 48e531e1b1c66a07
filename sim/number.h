// SPDX-License-Identifier: MIT
// Decimal numbers as users type them: the whole text or nothing, within stated bounds.
#pragma once

#include <optional>
#include <string_view>

namespace ux::sim {

// The number in `text`, or nothing when anything but one decimal number stands there or the number
// lies outside [lowest, highest].
std::optional<int> number_in(std::string_view text, int lowest, int highest);

} // namespace ux::sim
