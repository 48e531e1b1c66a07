// SPDX-License-Identifier: MIT
// The page that ux-view serves: tools/view_page.html, compiled in.
#pragma once

#include <string_view>

namespace ux::view {

extern const std::string_view k_view_page;

// Stands in the page for the port of VNC.
constexpr std::string_view k_port_mark = "VNC_PORT";

} // namespace ux::view
