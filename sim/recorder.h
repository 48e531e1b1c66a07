// SPDX-License-Identifier: MIT
// Writing down what the host receives, as a script that plays the session again.
#pragma once

#include "sim/host_process.h"
#include "sim/screen.h"
#include "sim/shared_memory.h"

#include <cstdint>
#include <string>

namespace ux::sim {

// The step that sends a message, without line end; a comment when no step can.
std::string step_for(int kind, int key, int x, int y);

class recorder {
  public:
    // Replaces the file `path`, once the recording has begun. Throws failure.
    recorder(const std::string &path, int queue);
    recorder(const recorder &) = delete;
    recorder &operator=(const recorder &) = delete;
    ~recorder();

    // Under which the host finds the memory to tell what it received.
    std::string path() const { return m_memory.path(); }

    // Writes what came since the last call. `begun`: the run's, on the clock the host lives by.
    // Throws failure.
    void take(steady::time_point begun);

    // Writes the end, at `now`: a host that left by itself is waited for. Throws failure.
    void finish(steady::time_point begun, steady::time_point now, const host_end *left);

  private:
    void write_step(int64_t ms, const std::string &step);
    void write_line(const std::string &line);

    std::string m_file_name;
    shared_memory m_memory;
    uint32_t m_seen = 0; // messages written
    int m_file = -1;
};

} // namespace ux::sim
