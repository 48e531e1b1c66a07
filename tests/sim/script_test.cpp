// SPDX-License-Identifier: MIT
// The script language: every verb, every complaint.
#include "sim/failure.h"
#include "sim/script.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>

#include <unistd.h>

namespace {

using namespace ux::sim;

// What parsing complains about, "" = nothing.
std::string complaint(std::string_view text) {
    try {
        parse_script(text, "demo");
        return "";
    } catch (const usage_failure &error) {
        EXPECT_EQ(error.status(), 2);
        return error.what();
    }
}

TEST(script, reads_every_verb) {
    auto steps = parse_script("key ok\ntouch 10 -20\nwait 300\nwait still 50\n"
                              "wait still 60 within 700\nshot a.png\nwait exit within 80\nquit\n",
                              "demo")
                     .steps;
    ASSERT_EQ(steps.size(), 8u);
    EXPECT_EQ(steps[0].what, verb::key);
    EXPECT_EQ(steps[0].key, 23);
    EXPECT_EQ(steps[1].what, verb::touch);
    EXPECT_EQ(steps[1].x, 10);
    EXPECT_EQ(steps[1].y, -20);
    EXPECT_EQ(steps[2].what, verb::wait_time);
    EXPECT_EQ(steps[2].ms, 300);
    EXPECT_EQ(steps[3].what, verb::wait_still);
    EXPECT_EQ(steps[3].ms, 50);
    EXPECT_EQ(steps[3].limit_ms, 10050);
    EXPECT_EQ(steps[4].ms, 60);
    EXPECT_EQ(steps[4].limit_ms, 700);
    EXPECT_EQ(steps[5].what, verb::shot);
    EXPECT_EQ(steps[5].file, "a.png");
    EXPECT_EQ(steps[6].what, verb::wait_exit);
    EXPECT_EQ(steps[6].limit_ms, 80);
    EXPECT_EQ(steps[7].what, verb::quit);
}

TEST(script, wait_until_tells_the_time_since_the_run_began) {
    auto step = parse_script("wait until 86400000\n", "demo").steps.at(0);
    EXPECT_EQ(step.what, verb::wait_until);
    EXPECT_EQ(step.ms, 86400000);
}

// "k3 w50 k3 w1200": keys and waits of a script that types.
std::string typed(std::string_view text) {
    std::string result;
    for (const script_step &step : parse_script(text, "demo").steps) {
        result += result.empty() ? "" : " ";
        result += step.what == verb::key         ? "k" + std::to_string(step.key)
                  : step.what == verb::wait_time ? "w" + std::to_string(step.ms)
                                                 : "?";
    }
    return result;
}

TEST(script, type_is_keys_with_waits_between_and_behind_them) {
    EXPECT_EQ(typed("type b"), "k3 w50 k3 w50 k3 w1200");
    EXPECT_EQ(typed("type 123"), "k2 w1200 k3 w50 k4 w1200");
    EXPECT_EQ(typed("type 22 # twice"), "k3 w1200 k3 w1200");
    EXPECT_EQ(typed("type 1\ntype 1\r\n"), "k2 w1200 k2 w1200");
}

TEST(script, typed_blanks_count_between_words_and_inside_quotes) {
    const std::string blank = "k35 w50 k35 w50 k35 w50 k35 w50 k35 ";
    EXPECT_EQ(typed("  type   1 2  "), "k2 w1200 " + blank + "w50 k3 w1200");
    EXPECT_EQ(typed("type \" \""), blank + "w1200");
    EXPECT_EQ(typed("type \"1 \""), "k2 w1200 " + blank + "w1200");
}

TEST(script, typed_steps_keep_line_and_words) {
    auto steps = parse_script("\ntype ad", "demo").steps;
    EXPECT_EQ(steps.back().line, 2);
    EXPECT_EQ(steps.front().text, "type ad");
}

TEST(script, complains_about_typing) {
    EXPECT_EQ(complaint("type"), "demo:1: expected 'type TEXT'");
    EXPECT_EQ(complaint("type \"\""), "demo:1: expected 'type TEXT'");
    EXPECT_EQ(complaint("key 1\ntype a-b"), "demo:2: no key types '-' (position 2)");
    EXPECT_EQ(complaint("type \""), "demo:1: no key types '\"' (position 1)");
    EXPECT_EQ(complaint("quit\ntype a"), "demo:2: nothing may follow 'quit'");
    EXPECT_EQ(complaint("type " + std::string(2001, '1')),
              "demo:1: a script types at most 2000 characters");
    EXPECT_EQ(complaint("type " + std::string(2000, '1')), "");
    EXPECT_EQ(complaint("type " + std::string(2000, '1') + "\ntype 1"),
              "demo:2: a script types at most 2000 characters");
}

TEST(script, wait_exit_has_a_limit_of_ten_seconds_unless_told) {
    EXPECT_EQ(parse_script("wait exit", "demo").steps.at(0).limit_ms, 10000);
}

TEST(script, comments_blank_lines_tabs_and_carriage_returns_mean_nothing) {
    auto steps = parse_script("# first\n\n \t\r\n\tkey   7 # why\r\n", "demo").steps;
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].line, 4);
    EXPECT_EQ(steps[0].key, 7);
    EXPECT_EQ(steps[0].text, "key 7");
}

TEST(script, an_empty_script_is_one) {
    EXPECT_TRUE(parse_script("", "demo").steps.empty());
    EXPECT_TRUE(parse_script("# nothing", "demo").steps.empty());
}

TEST(script, complains_with_file_and_line) {
    EXPECT_EQ(complaint("wait 1\n\njump\n"), "demo:3: unknown verb 'jump'");
}

TEST(script, complains_about_keys) {
    EXPECT_EQ(complaint("key"), "demo:1: expected 'key NAME|CODE'");
    EXPECT_EQ(complaint("key ok ok"), "demo:1: expected 'key NAME|CODE'");
    EXPECT_EQ(complaint("key menu"), "demo:1: no key is called 'menu'");
    EXPECT_EQ(complaint("key 256"), "demo:1: no key is called '256'");
}

TEST(script, complains_about_touches) {
    EXPECT_EQ(complaint("touch 1"), "demo:1: expected 'touch X Y'");
    EXPECT_EQ(complaint("touch 1 2 3"), "demo:1: expected 'touch X Y'");
    EXPECT_EQ(complaint("touch 1 2.5"),
              "demo:1: '2.5' is no coordinate (-2147483648 to 2147483647)");
    EXPECT_EQ(complaint("touch 99999999999 1"),
              "demo:1: '99999999999' is no coordinate (-2147483648 to 2147483647)");
}

TEST(script, complains_about_waits) {
    EXPECT_EQ(complaint("wait"), "demo:1: expected 'wait MS', 'wait until MS', 'wait still MS "
                                 "[within MS]' or 'wait exit [within MS]'");
    EXPECT_EQ(complaint("wait until"), "demo:1: expected 'wait until MS'");
    EXPECT_EQ(complaint("wait until 2147483648"),
              "demo:1: '2147483648' is no time in ms (0 to 2147483647)");
    EXPECT_EQ(complaint("wait -1"), "demo:1: '-1' is no time in ms (0 to 3600000)");
    EXPECT_EQ(complaint("wait soon"), "demo:1: 'soon' is no time in ms (0 to 3600000)");
    EXPECT_EQ(complaint("wait still"), "demo:1: expected 'wait still MS [within MS]'");
    EXPECT_EQ(complaint("wait still 0"), "demo:1: '0' is no time in ms (1 to 3600000)");
    EXPECT_EQ(complaint("wait still 5 in"), "demo:1: expected 'within MS' after '5'");
    EXPECT_EQ(complaint("wait still 5 within"), "demo:1: expected 'within MS' after '5'");
    EXPECT_EQ(complaint("wait still 5 within x"), "demo:1: 'x' is no time in ms (1 to 3600000)");
    EXPECT_EQ(complaint("wait still 5 within 5"), "demo:1: the limit must be longer than the wait");
    EXPECT_EQ(complaint("wait exit 5"), "demo:1: expected 'within MS' after 'exit'");
}

TEST(script, complains_about_shots) {
    const std::string plain = "demo:1: a shot wants a plain file name that ends in .png, not ";
    EXPECT_EQ(complaint("shot"), "demo:1: expected 'shot FILE.png'");
    EXPECT_EQ(complaint("shot a/b.png"), plain + "'a/b.png'");
    EXPECT_EQ(complaint("shot ..png"), plain + "'..png'");
    EXPECT_EQ(complaint("shot a..png"), plain + "'a..png'");
    EXPECT_EQ(complaint("shot .png"), plain + "'.png'");
    EXPECT_EQ(complaint("shot a.jpg"), plain + "'a.jpg'");
    EXPECT_EQ(complaint(std::string("shot a\0b.png", 12)), plain + "'a?b.png'");
    EXPECT_EQ(complaint("shot a\033.png"), plain + "'a?.png'");
    EXPECT_EQ(complaint("shot diff-a.png"), "demo:1: a shot's name may not begin with diff-");
    EXPECT_EQ(complaint("shot a.png\nshot a.png"), "demo:2: the shot 'a.png' was taken already");
    EXPECT_NE(complaint("shot " + std::string(300, 'a') + ".png"), "");
}

TEST(script, complains_about_steps_that_could_never_be_reached) {
    EXPECT_EQ(complaint("quit now"), "demo:1: expected 'quit'");
    EXPECT_EQ(complaint("quit\nkey ok"), "demo:2: nothing may follow 'quit'");
    EXPECT_EQ(complaint("wait exit\nkey ok"),
              "demo:2: only 'shot' and 'quit' may follow 'wait exit'");
    EXPECT_EQ(complaint("wait exit\nshot a.png\nwait 5"),
              "demo:3: only 'shot' and 'quit' may follow 'wait exit'");
}

// As a long random session has them; each line is checked against all before it.
TEST(script, has_room_for_200000_steps) {
    std::string text;
    for (int step = 0; step < 200000; ++step) {
        text += step % 2 == 0 ? "touch 1279 719\n" : "key right\n";
    }
    const std::string path = testing::TempDir() + "ux-script-" + std::to_string(getpid());
    std::ofstream(path) << text << "wait exit\nshot a.png\n";
    EXPECT_EQ(read_script(path).steps.size(), 200002u);
    std::ofstream(path) << text << "wait exit\nkey ok\n";
    EXPECT_THROW(read_script(path), usage_failure);
    std::remove(path.c_str());
}

TEST(script, keeps_control_characters_out_of_its_complaints) {
    EXPECT_EQ(complaint(std::string_view("\x1b[2J\0x", 6)), "demo:1: unknown verb '?[2J?x'");
}

TEST(script, shortens_long_words_in_its_complaints) {
    EXPECT_EQ(complaint(std::string(5000, 'z')),
              "demo:1: unknown verb '" + std::string(60, 'z') + "...'");
}

// Random words and bytes: either steps or a complaint with a line number, nothing else.
TEST(script, bears_any_text) {
    const char *const words[] = {"key",  "touch", "wait", "still",  "exit", "within", "shot",
                                 "quit", "ok",    "7",    "-1",     "#",    "a.png",  "\n",
                                 "\r\n", "\t",    "..",   "999999", "\xff", "0x1"};
    std::mt19937 random(20);
    size_t complaints = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto count = random() % 12; count > 0; --count) {
            text += random() % 8 == 0 ? std::string(1, static_cast<char>(random()))
                                      : words[random() % std::size(words)];
            text += random() % 4 == 0 ? '\n' : ' ';
        }
        const std::string what = complaint(text);
        EXPECT_TRUE(what.empty() || what.starts_with("demo:")) << text;
        complaints += what.empty() ? 0 : 1;
    }
    EXPECT_GT(complaints, 1000u);
    EXPECT_LT(complaints, 20000u);
}

TEST(script, a_missing_file_is_named) {
    try {
        read_script("/nowhere/at.all");
        FAIL();
    } catch (const usage_failure &error) {
        EXPECT_STREQ(error.what(),
                     "cannot read the script /nowhere/at.all: No such file or directory");
    }
}

} // namespace
