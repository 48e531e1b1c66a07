/* SPDX-License-Identifier: MIT */
/*
 * Counters and switches in front of functions that the code under test calls: file opening, heap
 * allocation, glyph loading.
 */
#ifndef UX_TESTS_PLATFORM_PROBES_H
#define UX_TESTS_PLATFORM_PROBES_H

#include <map>
#include <string>
#include <vector>

namespace probes {

/* How open() behaves for the code under test. */
struct open_rules {
    std::map<std::string, std::string> redirect; /* this path opens that file instead */
    bool hide_others = false;                    /* every other path does not exist */
    std::vector<std::string> asked;              /* all paths, in order */
};
open_rules &opens();

/* Heap blocks asked for by the program's own code and by FreeType, so far. */
unsigned long allocations();

/* Glyphs that FreeType loaded from a font, so far. */
unsigned long glyph_loads();

} // namespace probes

#endif
