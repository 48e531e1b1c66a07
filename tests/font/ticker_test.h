// SPDX-License-Identifier: MIT
// What tests of the ticker share: a file, the host's variables, and a stop after some frames. The
// ticker asks for "STATUS" right after every frame: there the frame is kept and the plan goes on.
#ifndef UX_TESTS_FONT_TICKER_TEST_H
#define UX_TESTS_FONT_TICKER_TEST_H

#include "tests/font/text_test.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <unistd.h>

// Boxes are 3 high if not told otherwise: the baseline is 2 rows below a row's top, so a glyph with
// top 2 begins in the first row.
class TickerTest : public TextTest {
  protected:
    using pictures = std::vector<std::string>;

    static constexpr int k_up = 2;
    static constexpr int k_left = 4;
    static constexpr unsigned k_up_us = 5000;
    static constexpr unsigned k_left_us = 50000;
    static constexpr unsigned k_line_us = 500000;

    void SetUp() override {
        TextTest::SetUp();
        char folder[] = "/tmp/ux-ticker-XXXXXX";
        ASSERT_NE(mkdtemp(folder), nullptr);
        m_folder = folder;
        path = m_folder + "/lines";
        setenv("STATUS", "playing", 1);
        setenv("ShowMSG", "NO", 1);
        setenv("TICKER_STATE", "RUN_TICKER", 1);
        setenv("TICKER_PLAYING", "YES", 1);
        hooks::get().nanosleep = [this](const timespec &time) {
            naps.push_back(time);
            ASSERT_LT(naps.size(), 1000u) << "the ticker waits for ever";
            if (on_nap)
                on_nap();
        };
        hooks::get().on_getenv = [this](const char *name) {
            if (strcmp(name, "STATUS") == 0)
                note_frame();
        };
    }

    void TearDown() override {
        for (const char *name : {"STATUS", "ShowMSG", "TICKER_STATE", "TICKER_PLAYING"})
            unsetenv(name);
        unlink(path.c_str());
        rmdir(m_folder.c_str());
        TextTest::TearDown();
    }

    void write_file(const std::string &bytes) const { write_file_at(path, bytes); }

    static void write_file_at(const std::string &at, const std::string &bytes) {
        FILE *file = fopen(at.c_str(), "w");
        ASSERT_NE(file, nullptr);
        fwrite(bytes.data(), 1, bytes.size(), file);
        fclose(file);
    }

    // A screen that is the box; 'a' is an arrow head, 3 wide with a column between, 'b' a dot.
    void make_box_screen(int width, int height = 3) {
        make_screen(width, height);
        give('a', {0, 2, 3, {"X", "XX", "X"}});
        give('b', {0, 2, 2, {"X"}});
    }

    // Runs the ticker over the whole screen and stops it after `stop` frames.
    int run(int mode, int step, size_t stop) {
        return run_at(0, 0, main_screen.width, main_screen.height, mode, step, stop);
    }

    int run_at(int x, int y, int w, int h, int mode, int step, size_t stop) {
        stop_after = stop;
        return uxFontDrawing(path.c_str(), k_ink, k_key, x, y, w, h, 7, 9, step, mode);
    }

    // Scrolls a text once; stop = 0 lets it pass.
    int run_once(const char *text, int step, size_t stop = 0) {
        stop_after = stop;
        return DrawFontToBitmapMoveLeftFileTEST(text, k_ink, k_key, 0, 0, main_screen.width,
                                                main_screen.height, step);
    }

    static std::string rows(std::initializer_list<const char *> list) {
        std::string picture;
        for (const char *row : list)
            picture = picture + row + "\n";
        return picture;
    }

    static std::string variable(const char *name) {
        const char *value = getenv(name);
        return value ? value : "(unset)";
    }

    std::string path;
    size_t stop_after = 0;                          // frames; 0 = no stop
    pictures frames;                                // the screen after each frame
    std::vector<timespec> naps;                     // between tries to open the file
    std::function<void()> on_nap;                   // runs at each
    std::map<size_t, std::function<void()>> events; // by number of the frame, from 1
    bool keep_pictures = true;
    size_t frame_count = 0;

  private:
    void note_frame() {
        frame_count++;
        if (keep_pictures)
            frames.push_back(ink());
        if (const auto event = events.find(frame_count); event != events.end())
            event->second();
        if (frame_count == stop_after)
            setenv("STATUS", "gotoMenu", 1);
    }

    std::string m_folder;
};

#endif
