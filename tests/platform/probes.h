/* SPDX-License-Identifier: MIT */
/*
 * Counters and switches in front of functions that the code under test calls: file opening, heap
 * allocation, glyph loading, name lookup.
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

/*
 * Lets the allocation number `number` that this thread makes from now on fail, and no other; 0 lets
 * none fail. fdopen, which allocates inside the C library, counts as one.
 */
void fail_allocation(unsigned long number);

/* Whether the failure asked for has happened. */
bool allocation_failed();

/* Glyphs that FreeType loaded from a font, so far. */
unsigned long glyph_loads();

/* A host name whose lookup does not come back before release_lookups(). */
inline constexpr char k_hanging_host[] = "hanging.invalid";

/* Lets hanging lookups fail now and waits until none hangs. */
void release_lookups();

} // namespace probes

#endif
