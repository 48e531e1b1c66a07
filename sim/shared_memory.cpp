// SPDX-License-Identifier: MIT
// Shared memory by memfd.
#include "sim/shared_memory.h"

#include "sim/failure.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace ux::sim {

shared_memory::shared_memory(const std::string &what, size_t bytes) : m_bytes(bytes) {
    m_fd = memfd_create("ux-sim", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (m_fd == -1) {
        throw failure(system_reason("cannot make " + what));
    }
    void *memory = MAP_FAILED;
    if (ftruncate(m_fd, static_cast<off_t>(bytes)) == 0 &&
        fcntl(m_fd, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) == 0) {
        memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, m_fd, 0);
    }
    if (memory == MAP_FAILED) {
        std::string reason = system_reason("cannot map " + what);
        close(m_fd);
        throw failure(reason);
    }
    m_data = memory;
}

shared_memory::~shared_memory() {
    munmap(m_data, m_bytes);
    close(m_fd);
}

std::string shared_memory::path() const {
    return "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(m_fd);
}

} // namespace ux::sim
