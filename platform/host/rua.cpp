/* SPDX-License-Identifier: MIT */
/*
 * The RUA calls: the instance, DRAM, and handing properties to the module they are for. Properties
 * cross as byte blocks of a fixed size; any other size, module or property is refused.
 */
#include "platform/host/rua_instance.h"

#include <algorithm>
#include <cstring>

#include "platform/host/guard.h"

namespace {

constexpr std::uint32_t k_system_module = 1;
constexpr std::uint32_t k_dram_controller = 0;
constexpr std::uint32_t k_uncached_dram = 57;

enum property : std::uint32_t {
    property_module_count = 1,
    property_gfx_memory = 4292,
    property_gfx_open = 4293,
    property_gfx_close = 4294,
    property_gfx_render = 4331,
    property_gfx_matrix = 4332,
    property_gfx_cell = 4334,
};

/*
 * Never destroyed at exit, since nothing destroys an instance: exit handlers of the host may still
 * close the font.
 */
struct rua_state {
    rua_instance *instance = nullptr; /* null before the first RUACreateInstance */
};
constinit rua_state s_rua;

/* Copies a property block of exactly the size of `value`; false for null or any other size. */
template <class Value>
bool receive(Value &value, const void *block, std::uint32_t size) noexcept {
    if (!block || size != sizeof(Value))
        return false;
    std::memcpy(&value, block, sizeof(Value));
    return true;
}

/* Copies `value` out as the reply; the reply block must have exactly its size. */
template <class Value>
int reply(const Value &value, void *block, std::uint32_t size) noexcept {
    if (!block || size != sizeof(Value))
        return EM862X_FAILURE;
    std::memcpy(block, &value, sizeof(Value));
    return EM862X_SUCCESS;
}

int count_modules(const void *in, std::uint32_t in_size, void *out, std::uint32_t out_size) {
    std::uint32_t category = 0;
    if (!receive(category, in, in_size) || category != em862x::k_gfx_category)
        return EM862X_FAILURE;
    return reply(em862x::k_gfx_count, out, out_size);
}

int query_gfx_memory(const void *in, std::uint32_t in_size, void *out, std::uint32_t out_size) {
    std::uint32_t request = 0;
    if (!receive(request, in, in_size) || request != em862x::k_gfx_request)
        return EM862X_FAILURE;
    const std::uint32_t sizes[2] = {em862x::k_gfx_area_a_size, em862x::k_gfx_area_b_size};
    return reply(sizes, out, out_size);
}

int open_gfx(rua_instance &instance, const void *in, std::uint32_t in_size) {
    em862x::gfx_profile profile{};
    if (!receive(profile, in, in_size))
        return EM862X_FAILURE;
    return instance.engine.open(profile, instance.memory);
}

int close_gfx(rua_instance &instance, const void *in, std::uint32_t in_size) {
    std::uint32_t argument = 0;
    if (!receive(argument, in, in_size))
        return EM862X_FAILURE;
    return instance.engine.close(argument);
}

int measure_glyph(rua_instance &instance, const void *in, std::uint32_t in_size, void *out,
                  std::uint32_t out_size) {
    em862x::glyph_request request{};
    em862x::glyph_cell cell{};
    if (!receive(request, in, in_size) || !out || out_size != sizeof cell)
        return EM862X_FAILURE;
    const int result = instance.engine.measure(request, cell);
    return result == EM862X_SUCCESS ? reply(cell, out, out_size) : result;
}

int set_matrix(rua_instance &instance, const void *in, std::uint32_t in_size) {
    em862x::outline_matrix matrix{};
    if (!receive(matrix, in, in_size))
        return EM862X_FAILURE;
    return instance.engine.set_matrix(matrix);
}

/* A request for a font that is not open goes to the engine without a face. */
int render_glyph(rua_instance &instance, const void *in, std::uint32_t in_size) {
    em862x::glyph_request request{};
    if (!receive(request, in, in_size))
        return EM862X_FAILURE;
    em862x::scaled_face *face = nullptr;
    for (const auto &font : instance.fonts)
        if (font->key == request.font)
            face = &font->scaled;
    return instance.engine.render(request, face, instance.memory);
}

} // namespace

namespace em862x {

rua_instance *present_instance() noexcept {
    return s_rua.instance;
}

bool is_instance(const rua_instance *instance) noexcept {
    return instance && instance == s_rua.instance;
}

void rua_reset() noexcept {
    delete s_rua.instance;
    s_rua.instance = nullptr;
}

} // namespace em862x

int RUACreateInstance(rua_instance **instance, uint32_t chip) {
    if (!instance || chip != 0)
        return EM862X_FAILURE;
    return em862x::guarded(int{EM862X_FAILURE}, [&] {
        if (!s_rua.instance)
            s_rua.instance = new rua_instance;
        *instance = s_rua.instance;
        return int{EM862X_SUCCESS};
    });
}

int RUAExchangeProperty(rua_instance *instance, uint32_t module, uint32_t property, const void *in,
                        uint32_t in_size, void *out, uint32_t out_size) {
    if (!em862x::is_instance(instance))
        return EM862X_FAILURE;
    if (module == k_system_module && property == property_module_count)
        return count_modules(in, in_size, out, out_size);
    if (module == em862x::k_gfx_category && property == property_gfx_memory)
        return query_gfx_memory(in, in_size, out, out_size);
    if (module == em862x::k_gfx_category && property == property_gfx_cell)
        return measure_glyph(*instance, in, in_size, out, out_size);
    return EM862X_FAILURE;
}

int RUASetProperty(rua_instance *instance, uint32_t module, uint32_t property, const void *in,
                   uint32_t in_size) {
    if (!em862x::is_instance(instance) || module != em862x::k_gfx_category)
        return EM862X_FAILURE;
    if (property == property_gfx_open)
        return open_gfx(*instance, in, in_size);
    if (property == property_gfx_close)
        return close_gfx(*instance, in, in_size);
    if (property == property_gfx_matrix)
        return set_matrix(*instance, in, in_size);
    if (property == property_gfx_render)
        return render_glyph(*instance, in, in_size);
    return EM862X_FAILURE;
}

uint32_t RUAMalloc(rua_instance *instance, uint32_t controller, uint32_t kind, uint32_t size) {
    if (!em862x::is_instance(instance) || controller != k_dram_controller ||
        kind != k_uncached_dram)
        return 0;
    return em862x::guarded(uint32_t{0},
                           [&] { return instance->memory.allocate(std::max(size, uint32_t{1})); });
}

void RUAFree(rua_instance *instance, uint32_t address) {
    if (!em862x::is_instance(instance))
        return;
    instance->access.forget(address);
    instance->memory.release(address);
}

int RUALock(rua_instance *instance, uint32_t address, uint32_t size) {
    if (!em862x::is_instance(instance))
        return EM862X_FAILURE;
    return em862x::guarded(int{EM862X_FAILURE}, [&] {
        return int{instance->access.lock(address, size) ? EM862X_SUCCESS : EM862X_FAILURE};
    });
}

int RUAUnLock(rua_instance *instance, uint32_t address, uint32_t size) {
    return em862x::is_instance(instance) && instance->access.unlock(address, size) ? EM862X_SUCCESS
                                                                                   : EM862X_FAILURE;
}

uint8_t *RUAMap(rua_instance *instance, uint32_t address, uint32_t size) {
    if (!em862x::is_instance(instance))
        return nullptr;
    return reinterpret_cast<uint8_t *>(instance->access.map(address, size));
}

void RUAUnMap(rua_instance *instance, uint8_t *pointer, uint32_t size) {
    if (em862x::is_instance(instance))
        instance->access.unmap(reinterpret_cast<std::byte *>(pointer), size);
}
