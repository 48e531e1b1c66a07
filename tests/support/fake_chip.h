// SPDX-License-Identifier: MIT
// A chip for unit tests: glyphs that a test draws by hand, an engine that answers as told, and a
// record of every call in order.
#ifndef UX_TESTS_SUPPORT_FAKE_CHIP_H
#define UX_TESTS_SUPPORT_FAKE_CHIP_H

#include "platform/em862x.h"

#include <map>
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
    int open_files = 0;                           // files and addresses not closed yet
    bool wrap_fails = false;                      // RMOpenFileCookie refuses
    int close_file_result = EM862X_SUCCESS;       // RMCloseFile
    long fail_read_after = -1;      // RMReadFile calls that still work; -1 = all of them
    rmtt_mapping last_mapping = {}; // of the last RMTTOpenFont
};

state &get();

// Forgets all glyphs, calls and answers, and releases the glyphs that were not given back.
void reset();

} // namespace fake_chip

#endif
