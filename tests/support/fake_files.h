// SPDX-License-Identifier: MIT
// How the chip's files of unit tests read.
#ifndef UX_TESTS_SUPPORT_FAKE_FILES_H
#define UX_TESTS_SUPPORT_FAKE_FILES_H

#include <cstdint>

namespace fake_files {

// RMReadFile gives at most `bytes` bytes at once while this lives.
class short_reads {
  public:
    explicit short_reads(uint32_t bytes);
    ~short_reads();
    short_reads(const short_reads &) = delete;
    short_reads &operator=(const short_reads &) = delete;
};

} // namespace fake_files

#endif
