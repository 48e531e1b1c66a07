// SPDX-License-Identifier: MIT
// The private place of one run: a folder for its event pipe, its input queue, and the removal of
// both, also when the run is killed.
#pragma once

#include "sim/input_queue.h"

#include <optional>
#include <string>

namespace ux::sim {

// Sets up the folder and the queue; removes them when it goes.
class run_folder {
  public:
    // `queue_path` names the queue; empty = the folder does. Throws failure.
    explicit run_folder(const std::string &queue_path);
    run_folder(const run_folder &) = delete;
    run_folder &operator=(const run_folder &) = delete;
    ~run_folder();

    const std::string &path() const { return m_path; }
    const std::string &queue_path() const { return m_queue_path; }
    int queue() const { return m_queue->id(); }
    std::string pipe() const { return m_path + "/event"; }

    // A name without blanks or colons for `file`, as LD_PRELOAD needs it. Throws failure.
    std::string preload_name(const std::string &file) const;

  private:
    void make_own_queue(const std::string &base);
    void make_named_queue(const std::string &base);
    void lock();

    std::string m_path;
    std::string m_queue_path;
    std::optional<owned_queue> m_queue;
    int m_lock = -1; // held for the run's life; an unlocked folder is a dead run's
};

} // namespace ux::sim
