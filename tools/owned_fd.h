// SPDX-License-Identifier: MIT
// A descriptor that is closed with its owner.
#pragma once

#include <utility>

#include <unistd.h>

namespace ux::sim {

class owned_fd {
  public:
    explicit owned_fd(int fd) : m_fd(fd) {}
    owned_fd(owned_fd &&other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    owned_fd &operator=(owned_fd &&other) noexcept {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    ~owned_fd() {
        if (m_fd != -1) {
            close(m_fd);
        }
    }

    int get() const { return m_fd; }

  private:
    int m_fd; // -1 = none
};

} // namespace ux::sim
