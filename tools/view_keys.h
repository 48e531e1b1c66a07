// SPDX-License-Identifier: MIT
// The keys of viewers.
#pragma once

#include <cstdint>
#include <optional>

namespace ux::view {

// The remote control's key for a key symbol of the X window system, as VNC sends them.
std::optional<int> key_of_symbol(uint32_t symbol);

} // namespace ux::view
