/* SPDX-License-Identifier: MIT */
/*
 * Finds, reads and checks the font file.
 */
#include "platform/host/font_file.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace em862x {

namespace {

/* The device's path comes first: the simulator finds it below the root it was given. */
constexpr const char *k_font_paths[] = {
    "/orbo/SDK/Vera.ttf",
    "/usr/share/fonts/truetype/ttf-bitstream-vera/Vera.ttf", /* Debian, Ubuntu */
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/bitstream-vera/Vera.ttf", /* Fedora, older */
    "/usr/share/fonts/bitstream-vera-sans-fonts/Vera.ttf",
    "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf",
    "/usr/share/fonts/truetype/DejaVuSans.ttf", /* openSUSE */
    "/usr/share/fonts/TTF/Vera.ttf",            /* Arch */
    "/usr/share/fonts/TTF/DejaVuSans.ttf",
    "/usr/share/fonts/dejavu/DejaVuSans.ttf", /* Alpine, Gentoo */
    "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf",
    "/usr/share/fonts/liberation-sans/LiberationSans-Regular.ttf",
};

/* The size and the character a font must be able to load to count as undamaged. */
constexpr FT_UInt k_probe_pixels = 16;
constexpr FT_ULong k_probe_code = 'A';

class descriptor {
  public:
    explicit descriptor(int value) : value_(value) {}
    descriptor(const descriptor &) = delete;
    descriptor &operator=(const descriptor &) = delete;
    ~descriptor() {
        if (value_ >= 0)
            close(value_);
    }
    int get() const { return value_; }

  private:
    int value_;
};

/* Fills `bytes` from the descriptor; false when the file ends early or a read fails. */
bool read_all(int file, std::vector<FT_Byte> &bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = read(file, bytes.data() + done, bytes.size() - done);
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (count == 0 || errno != EINTR)
            return false;
    }
    return true;
}

/* The bytes of a regular file; nothing for anything else. O_NONBLOCK: a pipe must not hang us. */
std::optional<std::vector<FT_Byte>> read_file(const char *path) {
    const descriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (file.get() < 0 || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    if (status.st_size <= 0 || status.st_size > k_font_file_max)
        return std::nullopt;
    std::vector<FT_Byte> bytes(static_cast<std::size_t>(status.st_size));
    if (!read_all(file.get(), bytes))
        return std::nullopt;
    return bytes;
}

/* False when the face cannot load a letter it claims to have. A font without it passes. */
bool loads_probe(FT_Face face) {
    const FT_UInt index = FT_Get_Char_Index(face, k_probe_code);
    return index == 0 || (FT_Set_Pixel_Sizes(face, 0, k_probe_pixels) == 0 &&
                          FT_Load_Glyph(face, index, FT_LOAD_NO_BITMAP) == 0);
}

} // namespace

std::vector<std::string> font_candidates(const char *first) {
    std::vector<std::string> paths;
    if (first)
        paths.emplace_back(first);
    if (const char *chosen = std::getenv("EM862X_FONT"))
        paths.emplace_back(chosen);
    paths.insert(paths.end(), std::begin(k_font_paths), std::end(k_font_paths));
    return paths;
}

face_handle open_face(FT_Library library, const std::vector<FT_Byte> &bytes) noexcept {
    FT_Face raw = nullptr;
    if (FT_New_Memory_Face(library, bytes.data(), static_cast<FT_Long>(bytes.size()), 0, &raw) != 0)
        return nullptr;
    face_handle face(raw);
    if (!FT_IS_SCALABLE(raw) || raw->units_per_EM == 0 || !loads_probe(raw))
        return nullptr;
    return face;
}

std::optional<font_file> find_font(FT_Library library, const char *first) {
    for (std::string &path : font_candidates(first)) {
        std::optional<std::vector<FT_Byte>> bytes = read_file(path.c_str());
        if (bytes && open_face(library, *bytes))
            return font_file{std::move(path), std::move(*bytes)};
    }
    return std::nullopt;
}

} // namespace em862x
