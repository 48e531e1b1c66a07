// SPDX-License-Identifier: MIT
// Texts for failed system calls.
#include "sim/failure.h"

#include <cerrno>
#include <cstring>

namespace ux::sim {

std::string system_reason(const std::string &what) {
    return what + ": " + std::strerror(errno);
}

} // namespace ux::sim
