/* SPDX-License-Identifier: MIT */
/*
 * Which font file is used: the lookup order, and reading a file that may be missing or damaged.
 */
#ifndef UX_PLATFORM_HOST_FONT_FILE_H
#define UX_PLATFORM_HOST_FONT_FILE_H

#include <optional>
#include <string>
#include <vector>

#include "platform/host/freetype_library.h"

namespace em862x {

/* The largest font file read, bytes. */
constexpr long k_font_file_max = 64L << 20;

/* A font file held in memory whole, so that a file cut short later cannot harm the program. */
struct font_file {
    std::string path;
    std::vector<FT_Byte> bytes;
};

/*
 * The paths to try, in order: `first` when not null, $EM862X_FONT when set, the device's own path,
 * then the places where distributions keep a sans-serif font.
 */
std::vector<std::string> font_candidates(const char *first);

/* Opens a face over bytes, which must outlive it; null unless it is a usable outline font. */
face_handle open_face(FT_Library library, const std::vector<FT_Byte> &bytes) noexcept;

/* The first candidate that holds a usable outline font, or nothing. */
std::optional<font_file> find_font(FT_Library library, const char *first);

} // namespace em862x

#endif
