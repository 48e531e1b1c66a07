/* SPDX-License-Identifier: MIT */
/*
 * A test that starts with a fresh rasteriser and a known font, and cleans up what it changed.
 */
#ifndef UX_TESTS_PLATFORM_FONT_FIXTURE_H
#define UX_TESTS_PLATFORM_FONT_FIXTURE_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/host/fss.h"
#include "platform/host/rua_instance.h"
#include "tests/platform/probes.h"
#include "tests/platform/reference_glyph.h"

class font_fixture : public testing::Test {
  protected:
    font_fixture() { use_font(k_vera); }
    ~font_fixture() override {
        unsetenv("EM862X_FONT");
        probes::opens() = {};
        em862x::fss_reset();
        em862x::rua_reset();
        if (!folder_.empty())
            std::filesystem::remove_all(folder_);
    }

    /* Names the font for the next glyph; null: names none. */
    static void use_font(const char *path) {
        if (path)
            setenv("EM862X_FONT", path, 1);
        else
            unsetenv("EM862X_FONT");
        em862x::fss_reset();
    }

    /* An upright scale of whole pixels. */
    static void set_size(int width, int height) { FSS_set_scale(width << 16, 0, 0, height << 16); }

    /* A path below this test's own folder. */
    std::string path_of(const std::string &name) {
        if (folder_.empty()) {
            std::string pattern = std::filesystem::temp_directory_path() / "em862x-XXXXXX";
            folder_ = mkdtemp(pattern.data());
        }
        return folder_ + "/" + name;
    }

    std::string write_file(const std::string &name, const std::string &bytes) {
        const std::string path = path_of(name);
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

    static std::string read_file(const char *path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::string folder_; /* empty until needed */
};

#endif
