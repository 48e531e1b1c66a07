/* SPDX-License-Identifier: MIT */
/*
 * Makes FreeType libraries on top of the bounded allocator.
 */
#include "platform/host/freetype_library.h"

#include <cstdlib>

namespace em862x {

namespace {

void *allocate(FT_Memory, long size) {
    return size > k_freetype_block_max ? nullptr : std::malloc(static_cast<std::size_t>(size));
}

void release(FT_Memory, void *block) {
    std::free(block);
}

void *reallocate(FT_Memory, long, long new_size, void *block) {
    return new_size > k_freetype_block_max
               ? nullptr
               : std::realloc(block, static_cast<std::size_t>(new_size));
}

/* Stateless, so one record serves every library. */
FT_MemoryRec_ s_memory = {nullptr, allocate, release, reallocate};

} // namespace

library_handle make_freetype_library() noexcept {
    FT_Library library = nullptr;
    if (FT_New_Library(&s_memory, &library) != 0)
        return nullptr;
    FT_Add_Default_Modules(library);
    FT_Set_Default_Properties(library);
    return library_handle(library);
}

} // namespace em862x
