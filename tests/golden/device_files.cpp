// SPDX-License-Identifier: MIT
// A device's folder of pictures for golden tests: paths below /orbo/ are looked up among those that
// an example ships with.

#include "platform/em862x.h"

#include <cstring>
#include <string>

namespace {

std::string on_this_machine(const char *path) {
    constexpr char k_device[] = "/orbo/";
    if (strncmp(path, k_device, sizeof k_device - 1) == 0)
        return std::string(UX_GOLDEN_DEVICE) + path;
    return path;
}

} // namespace

// The linker sends the library's calls here.
extern "C" {

int __real_access(const char *path, int mode);
rm_non_ascii *__real_RMnonAsciiFromAscii(const char *path);

int __wrap_access(const char *path, int mode) {
    return __real_access(on_this_machine(path).c_str(), mode);
}

rm_non_ascii *__wrap_RMnonAsciiFromAscii(const char *path) {
    return __real_RMnonAsciiFromAscii(on_this_machine(path).c_str());
}

} // extern "C"
