// SPDX-License-Identifier: MIT
// The file of a ticker.
#ifndef UX_EXAMPLES_BULLETIN_H
#define UX_EXAMPLES_BULLETIN_H

#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

// The file that the ticker shows. A new edition takes the old one's place at once, so that the file
// always holds lines: a ticker that has none to show does not ask whether to stop.
class bulletin {
  public:
    bool make() {
        const int file = mkstemp(m_path);
        if (file < 0)
            return false;
        close(file);
        return true;
    }
    void publish(const std::string &lines) const {
        const std::string draft = std::string(m_path) + ".new";
        std::FILE *file = std::fopen(draft.c_str(), "w");
        if (file == nullptr)
            return;
        const bool written = std::fputs(lines.c_str(), file) >= 0;
        if (std::fclose(file) == 0 && written)
            std::rename(draft.c_str(), m_path);
    }
    void remove() const { unlink(m_path); }
    const char *path() const { return m_path; }

  private:
    char m_path[32] = "/tmp/ux-ticker-XXXXXX";
};

#endif
