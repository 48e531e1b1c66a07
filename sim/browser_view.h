// SPDX-License-Identifier: MIT
// ux-view as a companion of one run: started before the host, ended after it. It lives in a process
// of its own, so that nothing browsers do can hold up the run.
#pragma once

#include <optional>
#include <string>

#include <sys/types.h>

namespace ux::sim {

class browser_view {
  public:
    // Shows the screen of the run in `folder` at `port`, or where ux-view chooses. Prints the
    // addresses on standard output as soon as they are served. Throws failure.
    browser_view(const std::string &folder, std::optional<int> port);
    browser_view(const browser_view &) = delete;
    browser_view &operator=(const browser_view &) = delete;
    ~browser_view();

    // Tells on standard error, once, when it has ended by itself: the run goes on. Never blocks.
    void check();

  private:
    void start(std::optional<int> port, int output);
    void stop();

    std::string m_folder;
    pid_t m_pid = -1; // -1 = it has ended
};

} // namespace ux::sim
