// SPDX-License-Identifier: MIT
// Both ends of the event pipe: messages go in whole, lines come out, and neither end can be held
// for ever by whoever else has the pipe open.
#ifndef UX_EVENT_EVENT_PIPE_H
#define UX_EVENT_EVENT_PIPE_H

#include <cstddef>

namespace ux {

// Asked while waiting, with the number of times it was asked before: true = give up.
using give_up_test = bool (*)(int asked);

// Waits until a reader has the pipe `path` open and writes `text`. Returns at once when there is no
// pipe of that name.
void write_pipe(const char *path, const char *text, give_up_test give_up);

// One opening of the pipe for reading, and the lines that come until its writers have closed it.
class pipe_lines {
  public:
    // is_open() tells whether that worked. The first read waits for a writer.
    explicit pipe_lines(const char *path);

    // Takes over an open descriptor, -1 for none.
    explicit pipe_lines(int descriptor) : m_descriptor(descriptor) {}

    ~pipe_lines();
    pipe_lines(const pipe_lines &) = delete;
    pipe_lines &operator=(const pipe_lines &) = delete;

    bool is_open() const { return m_descriptor >= 0; }

    // Reads like fgets(line, size): up to size - 1 characters, the line end kept. At the end of the
    // stream, when nothing was read, `line` is left alone and false returned. The stream ends for
    // good when all writers have closed it or when the wait for more is given up.
    bool read(char *line, size_t size, give_up_test give_up);

    // Whether the wait was given up; characters that had come were read all the same.
    bool gave_up() const { return m_gave_up; }

  private:
    bool await(give_up_test give_up);
    bool fill(give_up_test give_up);

    int m_descriptor;
    bool m_gave_up = false;
    bool m_ended = false;
    size_t m_next = 0;   // next unread character
    size_t m_length = 0; // characters in the buffer
    char m_buffer[256];
};

} // namespace ux

#endif
