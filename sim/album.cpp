// SPDX-License-Identifier: MIT
// Folders and names of shots, references and pictures of differences.
#include "sim/album.h"

#include "sim/failure.h"
#include "sim/picture.h"
#include "sim/script.h"

#include <cstdio>
#include <filesystem>

namespace ux::sim {

namespace {

std::string place(const std::string &folder, const std::string &file) {
    return (std::filesystem::path(folder) / file).string();
}

std::string size_text(const picture &one) {
    return std::to_string(one.width) + "x" + std::to_string(one.height);
}

std::string place_text(const difference &found) {
    return std::to_string(found.pixels) +
           (found.pixels == 1 ? " pixel differs" : " pixels differ") + " inside (" +
           std::to_string(found.left) + ", " + std::to_string(found.top) + ")-(" +
           std::to_string(found.right) + ", " + std::to_string(found.bottom) + ")";
}

} // namespace

album::album(const shared_screen &screen, std::string folder, std::string expected)
    : m_screen(screen), m_folder(std::move(folder)), m_expected(std::move(expected)) {
    std::error_code error;
    if (!m_expected.empty() && !std::filesystem::is_directory(m_expected, error)) {
        throw usage_failure("--expect " + m_expected + " is no folder");
    }
    if (!std::filesystem::create_directories(m_folder, error) && error) {
        throw failure("cannot make the folder " + m_folder + ": " + error.message());
    }
    if (!m_expected.empty() && std::filesystem::equivalent(m_folder, m_expected, error)) {
        throw usage_failure("--expect and --shots name the same folder: a shot would replace its "
                            "reference");
    }
}

std::string album::take(const std::string &file) {
    std::string path = place(m_folder, file);
    const screen_shape &shape = m_screen.shape();
    const picture shot = {shape.width, shape.height, picture_as_rgb(shape, m_screen.pixels())};
    write_png(shot, path);
    ++m_taken;
    if (m_expected.empty()) {
        return path;
    }
    const std::string diff = place(m_folder, std::string(k_diff_prefix) + file);
    std::remove(diff.c_str()); // of an earlier run
    const std::string reference = place(m_expected, file);
    std::string wrong;
    try {
        const picture wanted = read_png(reference);
        const difference found = compare(wanted, shot);
        if (!found.same_size) {
            wrong =
                "the shot is " + size_text(shot) + ", " + reference + " is " + size_text(wanted);
        } else if (found.pixels > 0) {
            write_png(found.diff, diff);
            wrong = "not as " + reference + ": " + place_text(found) + ", shown in " + diff;
        }
    } catch (const failure &error) {
        wrong = error.what();
    }
    if (!wrong.empty()) {
        ++m_wrong;
        std::fprintf(stderr, "ux-sim: %s: %s\n", path.c_str(), wrong.c_str());
    }
    return path;
}

} // namespace ux::sim
