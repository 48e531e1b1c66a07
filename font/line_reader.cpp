// SPDX-License-Identifier: MIT
// Lines of a file; see line_reader.h.

#include "font/line_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ux {
namespace {

constexpr size_t k_block_bytes = 4096;

// A folder has no lines, and a device or a pipe may have a line without end.
bool is_regular(int descriptor) {
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

// Opening a pipe that nobody writes to does not wait.
int open_regular(const char *path) {
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0 || is_regular(descriptor))
        return descriptor;
    close(descriptor);
    return -1;
}

// Bytes read; 0 at the end of the file, which is also where it cannot be read on.
size_t read_at(int descriptor, int64_t offset, char (&block)[k_block_bytes]) {
    ssize_t count;
    do
        count = pread(descriptor, block, sizeof block, offset);
    while (count < 0 && errno == EINTR);
    return count > 0 ? static_cast<size_t>(count) : 0;
}

} // namespace

line_reader::line_reader(const char *path) : m_descriptor(open_regular(path)) {}

line_reader::~line_reader() {
    if (is_open())
        close(m_descriptor);
}

bool line_reader::next(char (&line)[k_line_bytes]) {
    char block[k_block_bytes];
    size_t length = 0;
    const int64_t start = m_offset;
    const char *feed = nullptr;
    while (!feed) {
        const size_t present = read_at(m_descriptor, m_offset, block);
        if (present == 0)
            break;
        feed = static_cast<const char *>(memchr(block, '\n', present));
        const size_t count = feed ? static_cast<size_t>(feed - block) : present;
        const size_t kept = std::min(count, k_line_bytes - 1 - length);
        memcpy(line + length, block, kept);
        length += kept;
        m_offset += static_cast<int64_t>(count) + (feed ? 1 : 0);
    }
    line[length] = '\0';
    return m_offset > start;
}

} // namespace ux
