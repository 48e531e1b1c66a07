// SPDX-License-Identifier: MIT
// The chip of unit tests; see fake_chip.h.

#include "tests/support/fake_chip.h"

#include <cstring>
#include <new>
#include <set>

namespace fake_chip {
namespace {

state s_state;
rmtt_font s_font = {{11, 22, 2048}};
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
    record("RUASetProperty", module, property, in_size);
    if (property == 4293)
        return open_engine(module, in, in_size);
    const auto *bytes = static_cast<const uint8_t *>(in);
    s_state.last_close_input.assign(bytes, bytes + in_size);
    return get().close_result;
}

uint32_t RUAMalloc(rua_instance *, uint32_t controller, uint32_t kind, uint32_t size) {
    record("RUAMalloc", controller, kind, size);
    const uint32_t address = get().next_address;
    if (address != 0)
        get().next_address += 0x10000;
    return address;
}

void RUAFree(rua_instance *, uint32_t address) {
    record("RUAFree", address);
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
        *font = &s_font;
    return get().font_result;
}

int RMTTCloseFont(rua_instance *, rmtt_font *font) {
    record("RMTTCloseFont", font != nullptr ? 1 : 0);
    return font ? EM862X_SUCCESS : EM862X_FAILURE;
}
