// SPDX-License-Identifier: MIT
// Reads a text file line by line, each into the same place, however long it is.
#ifndef UX_FONT_LINE_READER_H
#define UX_FONT_LINE_READER_H

#include <cstddef>
#include <cstdint>

namespace ux {

constexpr size_t k_line_bytes = 4096; // of a line, its zero byte included

// A file open for reading; closed with this object.
class line_reader {
  public:
    // Opens the file at `path` if it is a regular one; see is_open().
    explicit line_reader(const char *path);
    ~line_reader();
    line_reader(const line_reader &) = delete;
    line_reader &operator=(const line_reader &) = delete;

    bool is_open() const { return m_descriptor >= 0; }

    // Reads up to the next line feed, which is not kept, or to the end of the file, and ends the
    // line with a zero byte; what does not fit is dropped. False when there was nothing left. What
    // lies behind the line is read when it is asked for: the file may change in between.
    bool next(char (&line)[k_line_bytes]);

  private:
    int m_descriptor;
    int64_t m_offset = 0; // in the file, of the next line
};

} // namespace ux

#endif
