// SPDX-License-Identifier: MIT
// The shots of a run: where they are written, and whether they are what is expected.
#pragma once

#include "sim/screen.h"

#include <string>

namespace ux::sim {

class album {
  public:
    // Makes `folder` if need be. `expected`: the folder of the reference pictures, empty = none.
    // Throws failure.
    album(const shared_screen &screen, std::string folder, std::string expected);

    // Writes the screen to `file` in the folder and compares it with the reference of that name.
    // What is wrong is told on standard error. Returns the path. Throws failure when it cannot be
    // written.
    std::string take(const std::string &file);

    int taken() const { return m_taken; }
    int wrong() const { return m_wrong; }

  private:
    const shared_screen &m_screen;
    std::string m_folder;
    std::string m_expected;
    int m_taken = 0;
    int m_wrong = 0; // of them, different or without a reference
};

} // namespace ux::sim
