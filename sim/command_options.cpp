// SPDX-License-Identifier: MIT
// The loop over getopt_long.
#include "sim/command_options.h"

#include "sim/failure.h"

#include <vector>

namespace ux::sim {

namespace {

enum common_option { o_help = 1, o_version };

std::vector<option> with_common(std::span<const option> own) {
    std::vector<option> all(own.begin(), own.end());
    all.push_back({"help", no_argument, nullptr, o_help});
    all.push_back({"version", no_argument, nullptr, o_version});
    all.push_back({nullptr, 0, nullptr, 0});
    return all;
}

// `optind` may still be at a word of several letters or be past it already.
std::string first_option(char **words) {
    while (words[0][0] != '-' || words[0][1] == '\0') {
        words++;
    }
    return words[0];
}

} // namespace

std::optional<std::string>
scan_options(const program_texts &program, std::span<const option> options, option_places places,
             int argc, char **argv,
             const std::function<void(int code, const std::string &argument)> &take) {
    const std::vector<option> all = with_common(options);
    const char *letters = places == option_places::first ? "+:" : ":";
    const std::string see = std::string("; see ") + program.name + " --help";
    optind = 0; // a fresh scan, also for the second call in one process
    opterr = 0;
    for (;;) {
        const int before = optind == 0 ? 1 : optind;
        const int code = getopt_long(argc, argv, letters, all.data(), nullptr);
        const auto word = [&] { return first_option(argv + before); };
        switch (code) {
        case -1:
            return std::nullopt;
        case o_help:
            return program.help;
        case o_version:
            return std::string(program.name) + " " + program.version + "\n";
        case ':':
            throw usage_failure("'" + word() + "' wants an argument" + see);
        case '?':
            throw usage_failure("unknown option or stray argument in '" + word() + "'" + see);
        default:
            take(code, optarg == nullptr ? "" : optarg);
        }
    }
}

} // namespace ux::sim
