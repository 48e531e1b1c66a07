// SPDX-License-Identifier: MIT
// A chip for unit tests: glyphs that a test draws by hand, an engine that answers as told, and a
// record of every call in order.
#ifndef UX_TESTS_SUPPORT_FAKE_CHIP_H
#define UX_TESTS_SUPPORT_FAKE_CHIP_H

#include "platform/em862x.h"

#include <array>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace fake_chip {

// A glyph drawn as text: each string is a bitmap row, 'X' is ink, anything else is not. All rows
// have the length of the first, rounded up to whole bytes.
struct glyph {
    int left = 0;
    int top = 0;
    int advance = 0;
    std::vector<std::string> rows;
};

// The size of a glyph's cell, as the engine measures it.
struct cell {
    uint32_t width, height;
};

// One outline of a character: how it is placed, how it is found, and the bits it leaves in the
// scratch memory, drawn as text.
struct outline {
    std::vector<std::string> rows;
    std::vector<int16_t> matrix = {}; // six values; empty = none
    uint32_t word_a = 0;
    uint32_t word_b = 0;
};

// What the font knows about one character.
struct engine_glyph {
    std::vector<outline> outlines = {};
    std::array<int16_t, 5> metrics = {};
};

struct state {
    std::map<uint32_t, glyph> glyphs; // by character code; other codes give null
    std::vector<std::string> calls; // "FSS_set_scale 1048576 0 0 1048576", "FSS_get_bitmap 65" …
    bool record_calls = true;       // false: `calls` stays as it is (no allocation)
    int outstanding = 0;            // glyphs fetched and not freed

    int create_result = EM862X_SUCCESS;   // RUACreateInstance
    int needs_result = EM862X_SUCCESS;    // property 4292
    uint32_t area_bytes[2] = {4096, 512}; // its answer
    int count_result = EM862X_SUCCESS;    // property 1
    uint32_t engines = 1;                 // its answer
    std::vector<int> open_results;        // property 4293, engine by engine; missing = success
    int accepted_attempt = -1; // instead: the attempt, from 0, that succeeds; earlier ones fail
    int close_result = EM862X_SUCCESS;            // property 4294
    int font_result = EM862X_SUCCESS;             // RMTTOpenFont
    uint32_t next_address = 0x10000;              // of RUAMalloc; 0 = allocation fails
    std::vector<uint8_t> last_profile;            // bytes of the last property 4293
    std::vector<uint8_t> last_close_input;        // bytes of the last property 4294
    std::map<std::string, std::string> addresses; // files that stand for http:// addresses
    std::map<std::string, std::string> files;     // files that stand for others' paths
    int open_files = 0;                           // files and addresses not closed yet
    bool wrap_fails = false;                      // RMOpenFileCookie refuses
    int close_file_result = EM862X_SUCCESS;       // RMCloseFile
    long fail_read_after = -1;      // RMReadFile calls that still work; -1 = all of them
    rmtt_mapping last_mapping = {}; // of the last RMTTOpenFont

    // The engine's glyphs. A code that is not here has no outline and metrics of 0.
    rmtt_font font = {{11, 22, 2048}};              // what RMTTOpenFont gives
    std::map<uint32_t, engine_glyph> engine_glyphs; // by character code
    std::set<uint32_t> unknown_codes;               // codes without metrics
    // The cell of a code at the scale of the request; null: half as wide as high, and as high as
    // the pixel size. The code is that of the last RMTTGetGlyphMetrics.
    std::function<cell(uint32_t code, uint32_t scale)> cell_of;
    // Results of calls to come, in order, by "4331", "4332", "4334", "RUALock", "RUAMap",
    // "RUAMalloc" or "RUAUnLock"; without any left a call succeeds. What gives an address gives
    // none instead of any result but success.
    std::map<std::string, std::deque<int>> results;
    std::vector<uint8_t> scratch; // what RUAMap gives: the bits of the last outline rendered
    uint32_t measured_code = 0;   // of the last RMTTGetGlyphMetrics
    outline pointed;              // of the last RMTTGetGlyphPointer
    cell measured = {};           // the last answer of property 4334
};

state &get();

// Forgets all glyphs, calls and answers, and releases the glyphs that were not given back.
void reset();

} // namespace fake_chip

#endif
