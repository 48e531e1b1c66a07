// SPDX-License-Identifier: MIT
// The command lines of ux-sim and ux-remote.
#include "sim/failure.h"
#include "sim/options.h"
#include "tools/remote_options.h"

#include <gtest/gtest.h>

namespace {

using namespace ux::sim;

class arguments {
  public:
    arguments(std::string program, std::initializer_list<const char *> rest)
        : m_texts{std::move(program)} {
        m_texts.insert(m_texts.end(), rest.begin(), rest.end());
        for (std::string &text : m_texts) {
            m_pointers.push_back(text.data());
        }
        m_pointers.push_back(nullptr);
    }
    int count() const { return static_cast<int>(m_texts.size()); }
    char **values() { return m_pointers.data(); }

  private:
    std::vector<std::string> m_texts;
    std::vector<char *> m_pointers;
};

command_line parse(std::initializer_list<const char *> rest) {
    arguments line("ux-sim", rest);
    return parse_command_line(line.count(), line.values());
}

remote_command parse_remote(std::initializer_list<const char *> rest) {
    arguments line("ux-remote", rest);
    return parse_remote_command(line.count(), line.values());
}

template <class Parse>
std::string complaint(Parse parse_line, std::initializer_list<const char *> rest) {
    try {
        parse_line(rest);
        return "";
    } catch (const usage_failure &error) {
        return error.what();
    }
}

TEST(sim_options, defaults_are_1280x720_argb8888_and_no_script) {
    options run = parse({"./host", "--size"}).run.value();
    EXPECT_EQ(run.shape.width, 1280);
    EXPECT_EQ(run.shape.height, 720);
    EXPECT_EQ(run.shape.format, pixel_format::argb8888);
    EXPECT_EQ(run.display, display_choice::automatic);
    EXPECT_EQ(run.script, "");
    EXPECT_EQ(run.timeout_s, 0);
    EXPECT_EQ(run.host, (std::vector<std::string>{"./host", "--size"}));
}

TEST(sim_options, reads_every_option) {
    options run =
        parse({"--size",    "640x480", "--format=rgb565", "--headless", "--script",  "-",
               "--shots",   "out",     "--record",        "rec",        "--expect",  "ref",
               "--root",    "tree",    "--queue-path",    "q",          "--timeout", "5",
               "--verbose", "--",      "--odd-host"})
            .run.value();
    EXPECT_EQ(run.shape.width, 640);
    EXPECT_EQ(run.shape.height, 480);
    EXPECT_EQ(run.shape.format, pixel_format::rgb565);
    EXPECT_EQ(run.display, display_choice::headless);
    EXPECT_EQ(run.script, "-");
    EXPECT_EQ(run.shots, "out");
    EXPECT_EQ(run.record, "rec");
    EXPECT_EQ(run.expect, "ref");
    EXPECT_EQ(run.root, "tree");
    EXPECT_EQ(run.queue_path, "q");
    EXPECT_EQ(run.timeout_s, 5);
    EXPECT_TRUE(run.verbose);
    EXPECT_EQ(run.host, std::vector<std::string>{"--odd-host"});
    EXPECT_EQ(parse({"--window", "h"}).run.value().display, display_choice::window);
}

TEST(sim_options, virtual_time_begins_in_2025_unless_told) {
    options run = parse({"--virtual-time", "h"}).run.value();
    EXPECT_TRUE(run.virtual_time);
    EXPECT_EQ(run.first_second, 1735689600); // 20089 days
    EXPECT_EQ(run.stall_s, 10);
    EXPECT_FALSE(parse({"h"}).run.value().virtual_time);
    EXPECT_EQ(parse({"--date", "2025-01-02", "h"}).run->first_second, 1735689600 + 86400);
    EXPECT_EQ(parse({"--date", "2025-01-01T01:02", "h"}).run->first_second, 1735689600 + 3720);
    EXPECT_EQ(parse({"--date", "1980-01-01T00:00:59", "h"}).run->first_second, 315532859);
    EXPECT_EQ(parse({"--stall", "60", "h"}).run->stall_s, 60);
}

TEST(sim_options, web_takes_a_port_behind_an_equals_sign_only) {
    EXPECT_FALSE(parse({"h"}).run->web);
    const options any = parse({"--web", "5801"}).run.value();
    EXPECT_TRUE(any.web);
    EXPECT_EQ(any.web_port, std::nullopt);
    EXPECT_EQ(any.host, std::vector<std::string>{"5801"});
    EXPECT_EQ(parse({"--web=8080", "h"}).run->web_port, 8080);
    EXPECT_EQ(parse({"--web=0", "h"}).run->web_port, 0);
    for (const char *port : {"65536", "-1", "x", "80 ", "localhost:80"}) {
        const std::string option = std::string("--web=") + port;
        EXPECT_EQ(complaint(parse, {option.c_str(), "h"}),
                  std::string("--web wants a port from 0 to 65535, not '") + port +
                      "'; see ux-sim --help");
    }
}

TEST(sim_options, a_browser_in_virtual_time_wants_a_script) {
    EXPECT_EQ(complaint(parse, {"--virtual-time", "--web", "h"}),
              "--virtual-time with --web wants a script; see ux-sim --help");
    EXPECT_EQ(complaint(parse, {"--virtual-time", "--web", "--script", "s", "h"}), "");
}

TEST(sim_options, refuses_dates_that_do_not_exist) {
    for (const char *date : {"", "2025", "2025-02-29", "2025-13-01", "2025-01-01T24:01", "tomorrow",
                             "2025-01-01 10:00", "1979-12-31", "2100-01-01", "2025-01-01T1:2:3Z"}) {
        EXPECT_EQ(complaint(parse, {"--date", date, "h"}),
                  std::string("--date wants YYYY-MM-DD[THH:MM[:SS]], 1980 to 2099, not '") + date +
                      "'; see ux-sim --help");
    }
}

TEST(sim_options, a_window_in_virtual_time_wants_a_script) {
    EXPECT_EQ(complaint(parse, {"--virtual-time", "--window", "h"}),
              "--virtual-time with a window wants a script; see ux-sim --help");
    EXPECT_EQ(complaint(parse, {"--virtual-time", "--window", "--script", "s", "h"}), "");
}

TEST(sim_options, help_and_version_are_texts_and_no_run) {
    EXPECT_FALSE(parse({"--help"}).run);
    EXPECT_TRUE(parse({"--help"}).text.starts_with("Usage: ux-sim "));
    EXPECT_TRUE(parse({"--version"}).text.starts_with("ux-sim "));
}

TEST(sim_options, refuses_sizes_out_of_bounds_and_junk) {
    for (const char *size : {"0x1", "1x0", "8193x1", "1x8193", "640", "640x", "x480", "640x480x1",
                             "-1x5", "640 x480", "99999999999x1", ""}) {
        EXPECT_EQ(complaint(parse, {"--size", size, "h"}),
                  std::string("--size wants WIDTHxHEIGHT, each 1 to 8192, not '") + size +
                      "'; see ux-sim --help");
    }
}

TEST(sim_options, refuses_bad_formats_and_times) {
    EXPECT_EQ(complaint(parse, {"--format", "rgb", "h"}),
              "--format is argb8888 or rgb565, not 'rgb'; see ux-sim --help");
    for (const char *time : {"0", "-1", "1.5", "86401", "x", ""}) {
        EXPECT_NE(complaint(parse, {"--timeout", time, "h"}), "") << time;
    }
}

TEST(sim_options, refuses_what_it_does_not_know) {
    EXPECT_EQ(complaint(parse, {"--sise", "h"}),
              "unknown option or stray argument in '--sise'; see ux-sim --help");
    EXPECT_EQ(complaint(parse, {"--verbose=1", "h"}),
              "unknown option or stray argument in '--verbose=1'; see ux-sim --help");
    EXPECT_EQ(complaint(parse, {"-x", "h"}),
              "unknown option or stray argument in '-x'; see ux-sim --help");
    EXPECT_EQ(complaint(parse, {"--script"}), "'--script' wants an argument; see ux-sim --help");
}

TEST(sim_options, refuses_a_missing_host) {
    EXPECT_EQ(complaint(parse, {}), "no host program given; see ux-sim --help");
    EXPECT_EQ(complaint(parse, {"--"}), "no host program given; see ux-sim --help");
    EXPECT_EQ(complaint(parse, {""}), "no host program given; see ux-sim --help");
}

TEST(remote_options, keys_become_messages_of_kind_1) {
    remote_request request = parse_remote({"key", "ok", "200"}).request.value();
    EXPECT_EQ(request.queue_path, "/tmp");
    ASSERT_EQ(request.messages.size(), 2u);
    EXPECT_EQ(request.messages[0].message.kind, 1);
    EXPECT_EQ(request.messages[0].message.key, 23);
    EXPECT_EQ(request.messages[1].message.key, 200);
    EXPECT_EQ(request.messages[1].pause.count(), 50);
}

TEST(remote_options, a_touch_becomes_a_message_of_kind_2) {
    remote_request request =
        parse_remote({"--queue-path", "/q", "touch", "-5", "200"}).request.value();
    EXPECT_EQ(request.queue_path, "/q");
    ASSERT_EQ(request.messages.size(), 1u);
    EXPECT_EQ(request.messages[0].message.kind, 2);
    EXPECT_EQ(request.messages[0].message.key, 0);
    EXPECT_EQ(request.messages[0].message.x, -5);
    EXPECT_EQ(request.messages[0].message.y, 200);
}

TEST(remote_options, help_names_the_keys) {
    EXPECT_NE(parse_remote({"--help"}).text.find("punctuation"), std::string::npos);
    EXPECT_TRUE(parse_remote({"--version"}).text.starts_with("ux-remote "));
}

TEST(remote_options, refuses_what_it_cannot_send) {
    const std::string see = "; see ux-remote --help";
    EXPECT_EQ(complaint(parse_remote, {}), "nothing to send" + see);
    EXPECT_EQ(complaint(parse_remote, {"press"}), "unknown command 'press'" + see);
    EXPECT_EQ(complaint(parse_remote, {"key"}), "'key' wants at least one key" + see);
    EXPECT_EQ(complaint(parse_remote, {"key", "up", "256"}), "no key is called '256'" + see);
    EXPECT_EQ(complaint(parse_remote, {"touch", "1"}), "'touch' wants X and Y" + see);
    EXPECT_EQ(complaint(parse_remote, {"touch", "1", "y"}), "'y' is no coordinate" + see);
    EXPECT_EQ(complaint(parse_remote, {"type"}), "'type' wants one text; put it in quotes" + see);
    EXPECT_EQ(complaint(parse_remote, {"type", "a", "b"}),
              "'type' wants one text; put it in quotes" + see);
    EXPECT_EQ(complaint(parse_remote, {"--pace", "x", "key", "1"}),
              "--pace wants 0 to 60000 ms, not 'x'" + see);
    EXPECT_EQ(complaint(parse_remote, {"--pace"}), "'--pace' wants an argument" + see);
    EXPECT_NE(complaint(parse_remote, {"--pase", "5", "key", "1"}), "");
}

TEST(remote_options, typing_needs_taps_within_the_letter_timeout) {
    EXPECT_EQ(complaint(parse_remote, {"--pace", "1000", "type", "a"}),
              "'type' wants a pace below 1000 ms: slower taps are letters of their own; see "
              "ux-remote --help");
    EXPECT_EQ(complaint(parse_remote, {"--pace", "999", "type", "a"}), "");
}

} // namespace
