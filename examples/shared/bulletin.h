// SPDX-License-Identifier: MIT
// The file of a ticker.
#ifndef UX_EXAMPLES_BULLETIN_H
#define UX_EXAMPLES_BULLETIN_H

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

// The file that the ticker shows. It lies in memory, so that no disk can be full or read-only and
// nothing is left of it however the program ends, and is opened by way of its descriptor. A new
// edition takes the old one's place at once, so that the file always holds lines: a ticker that has
// none to show does not ask whether to stop.
class bulletin {
  public:
    // False, told on standard error, when there is no memory.
    bool make(const std::string &lines) {
        m_file = file_of(lines);
        std::snprintf(m_path, sizeof m_path, "/proc/self/fd/%d", m_file);
        return m_file >= 0;
    }
    void publish(const std::string &lines) const {
        const int draft = file_of(lines);
        if (draft < 0)
            return; // the old edition stays
        dup3(draft, m_file, O_CLOEXEC);
        close(draft);
    }
    void remove() const { close(m_file); }
    const char *path() const { return m_path; }

  private:
    static int file_of(const std::string &lines) {
        const int file = memfd_create("ux-ticker", MFD_CLOEXEC);
        if (file >= 0 &&
            write(file, lines.data(), lines.size()) == static_cast<ssize_t>(lines.size()))
            return file;
        std::perror("no file for the ticker");
        if (file >= 0)
            close(file);
        return -1;
    }

    int m_file = -1;
    char m_path[32] = "";
};

#endif
