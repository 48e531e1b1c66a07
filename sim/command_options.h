// SPDX-License-Identifier: MIT
// The options of a command line, as all programs here read them: by getopt_long, with --help and
// --version.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>

#include <getopt.h>

namespace ux::sim {

constexpr int k_first_option = 256; // codes of options without a letter, from here on

struct program_texts {
    const char *name;
    std::string help;
    const char *version; // "1.2.3"
};

// Whether options may stand behind the first word that is none.
enum class option_places { anywhere, first };

// Calls `take` with code and argument of each option; the argument is "" when there is none.
// Nothing follows --help or --version: their text is the result. Else nothing is, and `optind`
// tells the first word that is no option. `options` has neither these two nor an end mark. Throws
// usage_failure for an unknown option, and for an argument that is missing or too much.
std::optional<std::string>
scan_options(const program_texts &program, std::span<const option> options, option_places places,
             int argc, char **argv,
             const std::function<void(int code, const std::string &argument)> &take);

} // namespace ux::sim
