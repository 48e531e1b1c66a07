// SPDX-License-Identifier: MIT
// Memory that the simulator shares with the host's preload library.
#pragma once

#include <cstddef>
#include <string>

namespace ux::sim {

// It has no name in any file system: it goes when its last user goes. Zeroed, and sealed in size: a
// host that truncates it must not take the simulator with it.
class shared_memory {
  public:
    // `what` names it in complaints: "the screen's memory". Throws failure.
    shared_memory(const std::string &what, size_t bytes);
    shared_memory(const shared_memory &) = delete;
    shared_memory &operator=(const shared_memory &) = delete;
    ~shared_memory();

    void *data() const { return m_data; }

    // Under which the host can open it as long as this process lives.
    std::string path() const;

  private:
    int m_fd = -1;
    size_t m_bytes;
    void *m_data = nullptr;
};

} // namespace ux::sim
