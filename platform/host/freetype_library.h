/* SPDX-License-Identifier: MIT */
/*
 * Owners of a FreeType library and a face. Font files are outside input, so the library is made
 * with its own allocator that refuses single blocks no sensible glyph needs.
 */
#ifndef UX_PLATFORM_HOST_FREETYPE_LIBRARY_H
#define UX_PLATFORM_HOST_FREETYPE_LIBRARY_H

#include <memory>
#include <type_traits>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_MODULE_H

namespace em862x {

/* The largest single block FreeType may allocate: a bitmap of 8192 x 8192 pixels, twice. */
constexpr long k_freetype_block_max = 16L << 20;

struct library_deleter {
    void operator()(FT_Library library) const noexcept { FT_Done_Library(library); }
};
using library_handle = std::unique_ptr<std::remove_pointer_t<FT_Library>, library_deleter>;

struct face_deleter {
    void operator()(FT_Face face) const noexcept { FT_Done_Face(face); }
};
/* Must be released before its library and before the bytes it was opened over. */
using face_handle = std::unique_ptr<std::remove_pointer_t<FT_Face>, face_deleter>;

/* A fresh library with all modules; null when memory runs out. */
library_handle make_freetype_library() noexcept;

} // namespace em862x

#endif
