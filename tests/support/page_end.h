// SPDX-License-Identifier: MIT
// A copy of some bytes whose last one is the last of its page: reading behind it ends the test.
#ifndef UX_TESTS_SUPPORT_PAGE_END_H
#define UX_TESTS_SUPPORT_PAGE_END_H

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

class page_end {
  public:
    page_end(const void *bytes, size_t count)
        : m_page(static_cast<size_t>(sysconf(_SC_PAGESIZE))),
          m_readable((count + m_page - 1) / m_page * m_page) {
        void *base = mmap(nullptr, m_readable + m_page, PROT_READ | PROT_WRITE,
                          MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (base == MAP_FAILED)
            abort();
        m_base = static_cast<uint8_t *>(base);
        if (mprotect(m_base + m_readable, m_page, PROT_NONE) != 0)
            abort();
        m_copy = m_base + m_readable - count;
        memcpy(m_copy, bytes, count);
    }
    ~page_end() { munmap(m_base, m_readable + m_page); }
    page_end(const page_end &) = delete;
    page_end &operator=(const page_end &) = delete;

    const void *data() const { return m_copy; }
    const char *bytes() const { return reinterpret_cast<const char *>(m_copy); }
    const char16_t *units() const { return reinterpret_cast<const char16_t *>(m_copy); }

  private:
    size_t m_page;
    size_t m_readable;
    uint8_t *m_base = nullptr;
    uint8_t *m_copy = nullptr;
};

#endif
