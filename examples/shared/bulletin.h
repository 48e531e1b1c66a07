// SPDX-License-Identifier: MIT
// The file of a ticker.
#ifndef UX_EXAMPLES_BULLETIN_H
#define UX_EXAMPLES_BULLETIN_H

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

// The file that the ticker shows. It has no name, so that nothing is left of it however the program
// ends, and is opened by way of its descriptor. A new edition takes the old one's place at once, so
// that the file always holds lines: a ticker that has none to show does not ask whether to stop.
class bulletin {
  public:
    bool make() {
        m_file = nameless_file();
        std::snprintf(m_path, sizeof m_path, "/proc/self/fd/%d", m_file);
        return m_file >= 0;
    }
    void publish(const std::string &lines) const {
        const int draft = nameless_file();
        if (draft < 0)
            return;
        if (write(draft, lines.data(), lines.size()) == static_cast<ssize_t>(lines.size()))
            dup3(draft, m_file, O_CLOEXEC);
        close(draft);
    }
    void remove() const { close(m_file); }
    const char *path() const { return m_path; }

  private:
    static int nameless_file() {
        char path[] = "/tmp/ux-ticker-XXXXXX";
        const int file = mkostemp(path, O_CLOEXEC);
        if (file >= 0)
            unlink(path);
        return file;
    }

    int m_file = -1;
    char m_path[32] = "";
};

#endif
