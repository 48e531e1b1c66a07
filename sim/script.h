// SPDX-License-Identifier: MIT
// The script language of ux-sim: text in, checked steps out. Says nothing about carrying them out.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ux::sim {

// Pictures of differences are called so; no shot is.
constexpr std::string_view k_diff_prefix = "diff-";

enum class verb { key, touch, wait_time, wait_until, wait_still, wait_exit, shot, quit };

struct script_step {
    verb what;
    int line;         // in the script, from 1
    std::string text; // as written, without comment and outer blanks
    int key = 0;      // key: code
    int x = 0;        // touch: screen pixels; may lie outside the screen
    int y = 0;
    int ms = 0;       // wait_time: how long; wait_until: since the run began; wait_still: how long
                      // without a change
    int limit_ms = 0; // wait_still, wait_exit: failed after this long
    std::string file = {}; // shot: file name without folder
};

struct script {
    std::string name; // for messages
    std::vector<script_step> steps;
};

// Throws usage_failure with "name:line: what is wrong" at the first error.
script parse_script(std::string_view text, const std::string &name);

// Reads and parses a file, "-" = standard input. Throws usage_failure.
script read_script(const std::string &path);

} // namespace ux::sim
