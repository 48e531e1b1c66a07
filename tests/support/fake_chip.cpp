// SPDX-License-Identifier: MIT
// The chip of unit tests; see fake_chip.h.

#include "tests/support/fake_chip.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <set>

namespace fake_chip {
namespace {

state s_state;
std::set<fss_glyph *> s_given; // glyphs fetched and not freed

template <class... Values>
void record(const char *name, Values... values) {
    if (!s_state.record_calls)
        return;
    std::string call = name;
    ((call += " " + std::to_string(values)), ...);
    s_state.calls.push_back(call);
}

size_t pitch_of(const glyph &drawn) {
    return drawn.rows.empty() ? 0 : (drawn.rows[0].size() + 7) / 8;
}

fss_glyph *make(const glyph &drawn) {
    const size_t pitch = pitch_of(drawn);
    const size_t bytes = sizeof(fss_glyph) + pitch * drawn.rows.size();
    auto *made = static_cast<fss_glyph *>(operator new(bytes));
    memset(made, 0, bytes);
    made->left = static_cast<int16_t>(drawn.left);
    made->top = static_cast<int16_t>(drawn.top);
    made->advance = static_cast<int16_t>(drawn.advance);
    made->rows = static_cast<int16_t>(drawn.rows.size());
    made->pitch = static_cast<int16_t>(pitch);
    auto *bits = reinterpret_cast<uint8_t *>(made + 1);
    for (size_t r = 0; r < drawn.rows.size(); r++)
        for (size_t c = 0; c < drawn.rows[r].size(); c++)
            if (drawn.rows[r][c] == 'X')
                bits[r * pitch + c / 8] =
                    static_cast<uint8_t>(bits[r * pitch + c / 8] | 0x80 >> c % 8);
    return made;
}

int open_engine(uint32_t module, const void *in, uint32_t in_size) {
    const auto *bytes = static_cast<const uint8_t *>(in);
    s_state.last_profile.assign(bytes, bytes + in_size);
    if (s_state.accepted_attempt >= 0)
        return s_state.accepted_attempt-- == 0 ? EM862X_SUCCESS : EM862X_FAILURE;
    const uint32_t index = module >> 8;
    return index < s_state.open_results.size() ? s_state.open_results[index] : EM862X_SUCCESS;
}

int next_result(const std::string &call) {
    std::deque<int> &results = s_state.results[call];
    if (results.empty())
        return EM862X_SUCCESS;
    const int result = results.front();
    results.pop_front();
    return result;
}

// Bytes in the order they are sent, as hexadecimal digits, a blank after every field of 32 bits.
std::string in_hex(const void *block, uint32_t size) {
    std::string text;
    for (uint32_t i = 0; i < size; i++) {
        char digits[4];
        snprintf(digits, sizeof digits, i > 0 && i % 4 == 0 ? " %02x" : "%02x",
                 static_cast<const uint8_t *>(block)[i]);
        text += digits;
    }
    return text;
}

void record_request(const char *name, uint32_t module, uint32_t property, const void *in,
                    uint32_t in_size) {
    if (!s_state.record_calls)
        return;
    record(name, module, property);
    s_state.calls.back() += " " + in_hex(in, in_size);
}

int measure(const void *in, void *out, uint32_t out_size) {
    const int result = next_result("4334");
    if (result != EM862X_SUCCESS)
        return result;
    uint32_t scale = 0;
    memcpy(&scale, static_cast<const uint8_t *>(in) + 12, sizeof scale);
    const uint32_t size = scale * s_state.font.header[2] >> 11;
    s_state.measured =
        s_state.cell_of ? s_state.cell_of(s_state.measured_code, scale) : cell{size / 2, size};
    memcpy(out, &s_state.measured, out_size);
    return result;
}

// Leaves the outline's bits in the scratch memory. The cell's rows are padded to 64 bits with ink.
int render() {
    const int result = next_result("4331");
    if (result != EM862X_SUCCESS)
        return result;
    const cell size = s_state.measured;
    const size_t pitch = (size_t{size.width} + 63) / 64 * 8;
    s_state.scratch.assign(pitch * size.height, 0xFF);
    for (uint32_t r = 0; r < size.height; r++)
        for (uint32_t c = 0; c < size.width; c++) {
            const std::vector<std::string> &rows = s_state.pointed.rows;
            if (r >= rows.size() || c >= rows[r].size() || rows[r][c] != 'X')
                s_state.scratch[r * pitch + c / 8] &= static_cast<uint8_t>(~(0x80 >> c % 8));
        }
    return result;
}

const outline *find_outline(uint32_t code, uint32_t part) {
    const auto found = s_state.engine_glyphs.find(code);
    const bool is_there =
        found != s_state.engine_glyphs.end() && part < found->second.outlines.size();
    return is_there ? &found->second.outlines[part] : nullptr;
}

} // namespace

state &get() {
    return s_state;
}

void reset() {
    s_state = {};
    for (fss_glyph *glyph : s_given)
        operator delete(glyph);
    s_given.clear();
}

} // namespace fake_chip

using namespace fake_chip;

void FSS_set_scale(int32_t xx, int32_t xy, int32_t yx, int32_t yy) {
    record("FSS_set_scale", xx, xy, yx, yy);
}

fss_glyph *FSS_get_bitmap(uint32_t code) {
    record("FSS_get_bitmap", code);
    const auto found = get().glyphs.find(code);
    if (found == get().glyphs.end())
        return nullptr;
    get().outstanding++;
    return *s_given.insert(make(found->second)).first;
}

void FSS_free_char(fss_glyph *given) {
    record("FSS_free_char");
    get().outstanding--;
    s_given.erase(given);
    operator delete(given);
}

int RUACreateInstance(rua_instance **instance, uint32_t chip) {
    record("RUACreateInstance", chip);
    *instance = reinterpret_cast<rua_instance *>(&s_state);
    return get().create_result;
}

int RUAExchangeProperty(rua_instance *, uint32_t module, uint32_t property, const void *in,
                        uint32_t in_size, void *out, uint32_t out_size) {
    if (property == 4334) {
        record_request("RUAExchangeProperty", module, property, in, in_size);
        return measure(in, out, out_size);
    }
    uint32_t input = 0;
    memcpy(&input, in, in_size < sizeof input ? in_size : sizeof input);
    record("RUAExchangeProperty", module, property, input, in_size, out_size);
    if (property == 4292) {
        memcpy(out, get().area_bytes, out_size);
        return get().needs_result;
    }
    memcpy(out, &get().engines, out_size);
    return get().count_result;
}

int RUASetProperty(rua_instance *, uint32_t module, uint32_t property, const void *in,
                   uint32_t in_size) {
    if (property == 4331 || property == 4332) {
        record_request("RUASetProperty", module, property, in, in_size);
        return property == 4331 ? render() : next_result("4332");
    }
    record("RUASetProperty", module, property, in_size);
    if (property == 4293)
        return open_engine(module, in, in_size);
    const auto *bytes = static_cast<const uint8_t *>(in);
    s_state.last_close_input.assign(bytes, bytes + in_size);
    return get().close_result;
}

uint32_t RUAMalloc(rua_instance *, uint32_t controller, uint32_t kind, uint32_t size) {
    record("RUAMalloc", controller, kind, size);
    const bool succeeds = next_result("RUAMalloc") == EM862X_SUCCESS;
    const uint32_t address = succeeds ? get().next_address : 0;
    if (address != 0)
        get().next_address += 0x10000;
    return address;
}

void RUAFree(rua_instance *, uint32_t address) {
    record("RUAFree", address);
}

int RUALock(rua_instance *, uint32_t address, uint32_t size) {
    record("RUALock", address, size);
    return next_result("RUALock");
}

int RUAUnLock(rua_instance *, uint32_t address, uint32_t size) {
    record("RUAUnLock", address, size);
    return next_result("RUAUnLock");
}

// A mapping of no bytes is at an address too.
uint8_t *RUAMap(rua_instance *, uint32_t address, uint32_t size) {
    record("RUAMap", address, size);
    get().scratch.reserve(1);
    return next_result("RUAMap") == EM862X_SUCCESS ? get().scratch.data() : nullptr;
}

// The pointer is recorded as its distance from what RUAMap gave.
void RUAUnMap(rua_instance *, uint8_t *pointer, uint32_t size) {
    record("RUAUnMap", pointer - get().scratch.data(), size);
}

// Paths are kept as they are.
rm_non_ascii *RMnonAsciiFromAscii(const char *text) {
    get().calls.push_back(std::string("RMnonAsciiFromAscii ") + text);
    return reinterpret_cast<rm_non_ascii *>(new std::string(text));
}

void RMFreeNonAscii(rm_non_ascii *text) {
    record("RMFreeNonAscii");
    delete reinterpret_cast<std::string *>(text);
}

int RMTTOpenFont(rua_instance *, rmtt_font **font, const rm_non_ascii *,
                 const rmtt_mapping *mapping) {
    record("RMTTOpenFont");
    get().last_mapping = *mapping;
    if (get().font_result == EM862X_SUCCESS)
        *font = &get().font;
    return get().font_result;
}

int RMTTCloseFont(rua_instance *, rmtt_font *font) {
    record("RMTTCloseFont", font != nullptr ? 1 : 0);
    return font ? EM862X_SUCCESS : EM862X_FAILURE;
}

const int16_t *RMTTGetGlyphMetrics(rmtt_font *, uint32_t code) {
    record("RMTTGetGlyphMetrics", code);
    get().measured_code = code;
    if (get().unknown_codes.contains(code))
        return nullptr;
    return get().engine_glyphs[code].metrics.data();
}

uint32_t RMTTGetCompoundCount(rmtt_font *, uint32_t code) {
    record("RMTTGetCompoundCount", code);
    return static_cast<uint32_t>(get().engine_glyphs[code].outlines.size());
}

const int16_t *RMTTGetScaleMatrix(rmtt_font *, uint32_t code, uint32_t part) {
    record("RMTTGetScaleMatrix", code, part);
    const outline *found = find_outline(code, part);
    return found && !found->matrix.empty() ? found->matrix.data() : nullptr;
}

void RMTTGetGlyphPointer(rmtt_font *, uint32_t code, uint32_t part, uint32_t *word_a,
                         uint32_t *word_b) {
    record("RMTTGetGlyphPointer", code, part);
    const outline *found = find_outline(code, part);
    get().pointed = found ? *found : outline{};
    *word_a = get().pointed.word_a;
    *word_b = get().pointed.word_b;
}
