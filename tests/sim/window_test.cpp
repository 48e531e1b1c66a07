// SPDX-License-Identifier: MIT
// The window on a display of the test's own: clicks and keys reach the host, the host's picture
// reaches the window.
//
// Window of a 1280x720 screen: screen at (24, 24), remote control at (1328, 84) in full size, so
// that its wheel lies around (1448, 220).
#include "tests/sim/process.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <regex>

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace ux::sim::test;

// An X server that chooses a free display and tells it when it is ready.
class x_server {
  public:
    x_server() {
        std::array<int, 2> ready{};
        if (pipe(ready.data()) != 0) {
            return;
        }
        const std::string number = std::to_string(ready[1]);
        m_pid = fork();
        if (m_pid == 0) {
            int nowhere = open("/dev/null", O_RDWR);
            dup2(nowhere, STDERR_FILENO);
            close(ready[0]);
            execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "1680x900x24",
                   "-nolisten", "tcp", "-noreset", nullptr);
            _exit(127);
        }
        close(ready[1]);
        char letter = 0;
        while (read(ready[0], &letter, 1) == 1 && letter != '\n') {
            m_display += letter;
        }
        close(ready[0]);
    }
    x_server(const x_server &) = delete;
    x_server &operator=(const x_server &) = delete;
    ~x_server() {
        kill(m_pid, SIGTERM);
        waitpid(m_pid, nullptr, 0);
    }

    bool runs() const { return !m_display.empty(); }
    variables environment() const { return {{"DISPLAY", ":" + m_display}}; }

  private:
    pid_t m_pid = -1;
    std::string m_display;
};

bool has_program(const std::string &name) {
    return program({"sh", "-c", "command -v " + name}).wait() == 0;
}

class window_test : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        if (has_program("Xvfb") && has_program("xdotool") && has_program("import")) {
            s_server = std::make_unique<x_server>();
        }
    }
    static void TearDownTestSuite() { s_server.reset(); }

    void SetUp() override {
        if (!s_server) {
            GTEST_SKIP() << "needs Xvfb, xdotool and import (ImageMagick)";
        }
        ASSERT_TRUE(s_server->runs());
    }

    // Starts a run with a window and finds the window.
    void start(const std::vector<std::string> &host, const std::string &option = "--window") {
        std::vector<std::string> line = {UX_SIM, option, "--"};
        line.insert(line.end(), host.begin(), host.end());
        m_sim = std::make_unique<program>(line, s_server->environment());
        ASSERT_TRUE(eventually([&] {
            program search({"xdotool", "search", "--onlyvisible", "--name",
                            "^ux-sim: fb-host \\(1280x720\\)$"},
                           s_server->environment());
            search.wait();
            m_window = search.out().substr(0, search.out().find('\n'));
            return !m_window.empty();
        })) << m_sim->err();
    }

    void xdotool(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "xdotool");
        program tool(arguments, s_server->environment());
        EXPECT_EQ(tool.wait(), 0) << tool.err();
    }

    void move(int x, int y) {
        xdotool(
            {"mousemove", "--sync", "--window", m_window, std::to_string(x), std::to_string(y)});
    }

    void click(int x, int y) {
        move(x, y);
        xdotool({"click", "1"});
    }

    std::optional<uint32_t> window_pixel(int x, int y) {
        const std::string file = m_folder / "window.png";
        program import({"import", "-window", m_window, "png24:" + file}, s_server->environment());
        import.wait();
        return read_png(file).at(x, y);
    }

    bool shows(int x, int y, uint32_t colour) {
        return eventually([&] { return window_pixel(x, y) == colour; });
    }

    static inline std::unique_ptr<x_server> s_server;
    temp_folder m_folder;
    std::unique_ptr<program> m_sim;
    std::string m_window;
};

TEST_F(window_test, shows_the_host_s_picture) {
    start({FB_HOST});
    EXPECT_TRUE(shows(24, 24, 0x203040));
    EXPECT_TRUE(shows(24 + 1279, 24 + 719, 0x203040));
    EXPECT_NE(window_pixel(10, 10), 0x203040u);
}

TEST_F(window_test, a_click_on_ok_is_the_key_ok) {
    start({FB_HOST, "--exit-on", "23", "--exit-status", "7"});
    click(1448, 220);
    EXPECT_EQ(m_sim->wait(), 7);
    EXPECT_EQ(m_sim->err().find("ux-sim"), std::string::npos) << m_sim->err();
}

TEST_F(window_test, clicks_on_arrows_and_digits_are_their_keys) {
    start({FB_HOST});
    click(1448, 160); // up
    EXPECT_TRUE(shows(24, 24, 0x0013ff));
    click(1328 + 51, 84 + 289); // 1
    EXPECT_TRUE(shows(28, 24, 0x0002ff));
}

TEST_F(window_test, a_pressed_button_looks_different_until_it_is_let_go) {
    start({FB_HOST});
    const int x = 1328 + 30;
    const int y = 84 + 275; // inside key 1, beside its label
    ASSERT_TRUE(shows(24, 24, 0x203040));
    move(x, y);
    const auto before = window_pixel(x, y);
    xdotool({"mousedown", "1"});
    EXPECT_TRUE(eventually([&] { return window_pixel(x, y) != before; }));
    xdotool({"mouseup", "1"});
    EXPECT_TRUE(shows(x, y, before.value()));
}

TEST_F(window_test, a_click_on_the_screen_is_a_touch_at_its_pixel) {
    start({FB_HOST});
    click(24 + 600, 24 + 300);
    EXPECT_TRUE(shows(24 + 600, 24 + 300, 0xffffff));
    EXPECT_TRUE(shows(24 + 599, 24 + 300, 0x203040));
    EXPECT_TRUE(shows(24 + 603, 24 + 303, 0xffffff));
    EXPECT_TRUE(shows(24 + 604, 24 + 303, 0x203040));
}

TEST_F(window_test, the_keyboard_stands_in_for_the_remote) {
    start({FB_HOST});
    move(700, 400); // without a window manager the pointer gives the focus
    const std::pair<const char *, uint32_t> keys[] = {
        {"Left", 21}, {"Return", 23}, {"5", 6}, {"BackSpace", 32}, {"period", 35}, {"Shift_L", 34}};
    int n = 0;
    for (const auto &[name, code] : keys) {
        xdotool({"key", name});
        EXPECT_TRUE(shows(24 + 4 * n++, 24, 0x0000ff | code << 8)) << name;
    }
}

// The map lies in the middle of the window, (700, 300) in it.
TEST_F(window_test, f1_shows_and_hides_the_keyboard_map) {
    start({FB_HOST});
    move(700, 600);
    ASSERT_TRUE(shows(24, 24, 0x203040));
    xdotool({"key", "F1"});
    EXPECT_TRUE(eventually([&] { return window_pixel(700, 300) != 0x203040u; }));
    xdotool({"key", "Return"}); // keys go on to the host
    EXPECT_TRUE(shows(24, 24, 0x0017ff));
    EXPECT_NE(window_pixel(700, 300), 0x203040u);
    xdotool({"key", "F1"});
    EXPECT_TRUE(shows(700, 300, 0x203040));
    EXPECT_TRUE(shows(28, 24, 0x203040)); // F1 itself was no key for the host
}

TEST_F(window_test, a_session_in_the_window_plays_again_headless) {
    const std::string file = m_folder / "session.uxs";
    start({FB_HOST, "--exit-on", "32"}, "--record=" + file);
    move(700, 400);
    xdotool({"key", "Left"});
    EXPECT_TRUE(shows(24, 24, 0x0015ff));
    click(24 + 600, 24 + 300);
    EXPECT_TRUE(shows(24 + 600, 24 + 300, 0xffffff));
    click(1448, 160); // up
    EXPECT_TRUE(shows(28, 24, 0x0013ff));
    xdotool({"key", "BackSpace"});
    EXPECT_EQ(m_sim->wait(), 0);
    EXPECT_TRUE(std::regex_match(
        read_file(file),
        std::regex("# [^\n]*\nwait until \\d+\nkey left\nwait until \\d+\ntouch 600 300\n"
                   "wait until \\d+\nkey up\nwait until \\d+\nkey delete\nwait exit\n")))
        << read_file(file);

    write_file(file, read_file(file) + "shot end.png\n");
    program again({UX_SIM, "--headless", "--virtual-time", "--shots", m_folder.path(), "--script",
                   file, "--", FB_HOST, "--exit-on", "32"});
    EXPECT_EQ(again.wait(), 0) << again.err();
    const rgb_picture end = read_png(m_folder / "end.png");
    EXPECT_EQ(end.at(0, 0), 0x0015ffu);
    EXPECT_EQ(end.at(4, 0), 0x0013ffu);
    EXPECT_EQ(end.at(600, 300), 0xffffffu);
}

TEST_F(window_test, a_display_alone_is_reason_enough_for_a_window) {
    start({FB_HOST}, "--verbose");
    EXPECT_TRUE(shows(24, 24, 0x203040));
}

TEST_F(window_test, a_script_plays_in_a_window_too) {
    program sim({UX_SIM, "--window", "--shots", m_folder.path(), "--script", "-", "--", FB_HOST},
                s_server->environment(), "wait still 40\nkey ok\nwait still 60\nshot a.png\n");
    EXPECT_EQ(sim.wait(), 0) << sim.err();
    EXPECT_EQ(read_png(m_folder / "a.png").at(0, 0), 0x0017ffu);
}

#ifdef CLOSE_WINDOW
TEST_F(window_test, closing_the_window_ends_host_and_run) {
    start({FB_HOST});
    program close({CLOSE_WINDOW, m_window}, s_server->environment());
    EXPECT_EQ(close.wait(), 0) << close.err();
    EXPECT_EQ(m_sim->wait(), 0);
}
#endif

TEST_F(window_test, without_a_display_a_window_is_refused_with_advice) {
    program sim({UX_SIM, "--window", "--", FB_HOST},
                {{"DISPLAY", ":nowhere"}, {"SDL_VIDEODRIVER", "x11"}});
    EXPECT_EQ(sim.wait(), 1);
    EXPECT_NE(sim.err().find("--headless runs without"), std::string::npos) << sim.err();
}

} // namespace
