// SPDX-License-Identifier: MIT
// From events of input devices to messages, and ux-inputd's command line.
#include "sim/failure.h"
#include "tools/inputd_events.h"
#include "tools/inputd_options.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace {

using namespace ux::inputd;

input_event event(unsigned type, unsigned code, int value) {
    input_event result{};
    result.type = static_cast<uint16_t>(type);
    result.code = static_cast<uint16_t>(code);
    result.value = value;
    return result;
}

const input_event k_report = event(EV_SYN, SYN_REPORT, 0);

inputd_command parsed(std::vector<std::string> words) {
    words.insert(words.begin(), "ux-inputd");
    std::vector<char *> pointers;
    for (std::string &word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return parse_inputd_command(static_cast<int>(words.size()), pointers.data());
}

TEST(InputdKeys, KnowTheRemoteControl) {
    const key_table keys;
    const std::vector<std::pair<unsigned, int>> expected = {
        {KEY_UP, 19},        {KEY_DOWN, 20},     {KEY_LEFT, 21},      {KEY_RIGHT, 22},
        {KEY_OK, 23},        {KEY_ENTER, 23},    {KEY_KPENTER, 23},   {KEY_SELECT, 23},
        {KEY_BACKSPACE, 32}, {KEY_DELETE, 32},   {KEY_LEFTSHIFT, 34}, {KEY_RIGHTSHIFT, 34},
        {KEY_DOT, 35},       {KEY_KPDOT, 35},    {KEY_0, 1},          {KEY_1, 2},
        {KEY_2, 3},          {KEY_3, 4},         {KEY_4, 5},          {KEY_5, 6},
        {KEY_6, 7},          {KEY_7, 8},         {KEY_8, 9},          {KEY_9, 10},
        {KEY_NUMERIC_0, 1},  {KEY_NUMERIC_1, 2}, {KEY_NUMERIC_9, 10}, {KEY_KP0, 1},
        {KEY_KP1, 2},        {KEY_KP2, 3},       {KEY_KP3, 4},        {KEY_KP4, 5},
        {KEY_KP5, 6},        {KEY_KP6, 7},       {KEY_KP7, 8},        {KEY_KP8, 9},
        {KEY_KP9, 10},
    };
    for (const auto &[code, key] : expected) {
        EXPECT_EQ(keys.key_of(code), key) << "event code " << code;
    }
    EXPECT_EQ(keys.key_of(KEY_MENU), std::nullopt);
    EXPECT_EQ(keys.key_of(BTN_LEFT), std::nullopt);
}

TEST(InputdKeys, AreAssignedByNameAndByCode) {
    key_table keys;
    keys.assign("KEY_MENU=ok");
    keys.assign("KEY_BACK=200");
    keys.assign("KEY_UP=down");
    EXPECT_EQ(keys.key_of(KEY_MENU), 23);
    EXPECT_EQ(keys.key_of(KEY_BACK), 200);
    EXPECT_EQ(keys.key_of(KEY_UP), 20);
}

TEST(InputdKeys, RefuseWhatIsNoAssignment) {
    key_table keys;
    for (const char *wrong : {"", "KEY_MENU", "KEY_MENU=", "=ok", "MENU=ok", "KEY_NO_SUCH=ok",
                              "KEY_MENU=256", "KEY_MENU=-1", "KEY_MENU=nothing", "ABS_X=ok"}) {
        EXPECT_THROW(keys.assign(wrong), ux::sim::usage_failure) << wrong;
    }
}

TEST(InputdEvents, KeySendsWhenItGoesDownAndWhileItIsHeld) {
    const key_table keys;
    event_translator translator(keys, std::nullopt);
    const auto down = translator.take(event(EV_KEY, KEY_DOWN, 1));
    ASSERT_TRUE(down);
    EXPECT_EQ(down->message.type, 1);
    EXPECT_EQ(down->message.kind, 1);
    EXPECT_EQ(down->message.key, 20);
    EXPECT_FALSE(down->is_repeat);
    const auto held = translator.take(event(EV_KEY, KEY_DOWN, 2));
    ASSERT_TRUE(held);
    EXPECT_EQ(held->message.key, 20);
    EXPECT_TRUE(held->is_repeat);
    EXPECT_FALSE(translator.take(event(EV_KEY, KEY_DOWN, 0))) << "going up";
    EXPECT_FALSE(translator.take(k_report));
}

TEST(InputdEvents, UnknownKeysAndOtherEventsSendNothing) {
    const key_table keys;
    event_translator translator(keys, touch_area{{0, 99}, {0, 99}, {100, 100}});
    EXPECT_FALSE(translator.take(event(EV_KEY, KEY_MENU, 1)));
    EXPECT_FALSE(translator.take(event(EV_REL, REL_X, 5)));
    EXPECT_FALSE(translator.take(event(EV_MSC, MSC_SCAN, 19)));
    EXPECT_FALSE(translator.take(event(EV_LED, LED_CAPSL, 1)));
    EXPECT_FALSE(translator.take(k_report));
}

// Touches at both ends of axes that begin below zero, on a screen with other proportions.
TEST(InputdEvents, TouchIsScaledToTheScreen) {
    const key_table keys;
    event_translator translator(keys, touch_area{{-100, 99}, {0, 4095}, {1280, 720}});
    const auto touch = [&translator](int x, int y) {
        translator.take(event(EV_ABS, ABS_X, x));
        translator.take(event(EV_ABS, ABS_Y, y));
        translator.take(event(EV_KEY, BTN_TOUCH, 1));
        const auto result = translator.take(k_report);
        translator.take(event(EV_KEY, BTN_TOUCH, 0));
        EXPECT_FALSE(translator.take(k_report)) << "going up";
        return result ? result->message : ux::sim::input_message{};
    };
    const auto check = [&touch](int x, int y, int expected_x, int expected_y) {
        const auto message = touch(x, y);
        EXPECT_EQ(message.kind, 2);
        EXPECT_EQ(message.x, expected_x) << x;
        EXPECT_EQ(message.y, expected_y) << y;
    };
    check(-100, 0, 0, 0);
    check(99, 4095, 1273, 719); // 199 * 1280 / 200 = 1273.6; 4095 * 720 / 4096 = 719.8
    check(0, 2048, 640, 360);
    check(-500, -1, 0, 0);       // beyond the axes
    check(500, 9999, 1273, 719); // beyond the axes
}

TEST(InputdEvents, TouchTakesThePositionOfTheWholeReport) {
    const key_table keys;
    event_translator translator(keys, touch_area{{0, 99}, {0, 99}, {100, 100}});
    translator.take(event(EV_ABS, ABS_X, 1));
    translator.take(event(EV_ABS, ABS_Y, 2));
    EXPECT_FALSE(translator.take(k_report)) << "hovering";
    EXPECT_FALSE(translator.take(event(EV_KEY, BTN_LEFT, 1)));
    EXPECT_FALSE(translator.take(event(EV_ABS, ABS_X, 30)));
    const auto touch = translator.take(k_report);
    ASSERT_TRUE(touch);
    EXPECT_EQ(touch->message.x, 30);
    EXPECT_EQ(touch->message.y, 2);
    EXPECT_FALSE(touch->is_repeat);
    translator.take(event(EV_ABS, ABS_X, 40));
    EXPECT_FALSE(translator.take(k_report)) << "dragging";
}

// A device tells an axis only when it has changed.
TEST(InputdEvents, FirstTouchIsWhereTheAxesStoodAlready) {
    const key_table keys;
    event_translator translator(keys, touch_area{{0, 99, 30}, {0, 99, 40}, {100, 100}});
    translator.take(event(EV_ABS, ABS_Y, 41));
    translator.take(event(EV_KEY, BTN_TOUCH, 1));
    const auto touch = translator.take(k_report);
    ASSERT_TRUE(touch);
    EXPECT_EQ(touch->message.x, 30);
    EXPECT_EQ(touch->message.y, 41);
}

TEST(InputdEvents, ButtonInTheTableIsAKey) {
    key_table keys;
    keys.assign("BTN_LEFT=ok");
    event_translator translator(keys, touch_area{{0, 99}, {0, 99}, {100, 100}});
    const auto key = translator.take(event(EV_KEY, BTN_LEFT, 1));
    ASSERT_TRUE(key);
    EXPECT_EQ(key->message.kind, 1);
    EXPECT_EQ(key->message.key, 23);
    EXPECT_FALSE(translator.take(k_report)) << "no touch as well";
}

TEST(InputdEvents, TouchIsLeftOutWithoutAnArea) {
    const key_table keys;
    event_translator translator(keys, std::nullopt);
    translator.take(event(EV_ABS, ABS_X, 5));
    translator.take(event(EV_KEY, BTN_TOUCH, 1));
    EXPECT_FALSE(translator.take(k_report));
}

// Whole numbers at the ends of the types: nothing may overflow, an axis may be a point.
TEST(InputdEvents, ExtremeAxesStayOnTheScreen) {
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    const key_table keys;
    event_translator translator(keys, touch_area{{lowest, highest}, {7, 7}, {16384, 16384}});
    for (const auto &[value, pixel] : {std::pair(lowest, 0), std::pair(highest, 16383)}) {
        translator.take(event(EV_ABS, ABS_X, value));
        translator.take(event(EV_ABS, ABS_Y, value));
        translator.take(event(EV_KEY, BTN_TOUCH, 1));
        const auto touch = translator.take(k_report);
        ASSERT_TRUE(touch);
        EXPECT_EQ(touch->message.x, pixel);
        EXPECT_EQ(touch->message.y, 0);
    }
}

// The second axis has no step at all by its numbers.
TEST(InputdEvents, AxesWithTheirEndsInTheWrongOrderAreOnePlace) {
    const key_table keys;
    event_translator translator(keys, touch_area{{99, 0}, {1, 0}, {100, 100}});
    translator.take(event(EV_ABS, ABS_X, 50));
    translator.take(event(EV_ABS, ABS_Y, 1));
    translator.take(event(EV_KEY, BTN_TOUCH, 1));
    const auto touch = translator.take(k_report);
    ASSERT_TRUE(touch);
    EXPECT_EQ(touch->message.x, 0);
    EXPECT_EQ(touch->message.y, 0);
}

TEST(InputdOptions, DefaultsAreADevices) {
    const auto request = parsed({}).request;
    ASSERT_TRUE(request);
    EXPECT_EQ(request->queue_path, "/tmp");
    EXPECT_FALSE(request->screen);
    EXPECT_FALSE(request->grab);
    EXPECT_FALSE(request->verbose);
    EXPECT_TRUE(request->devices.empty());
}

TEST(InputdOptions, AllAreRead) {
    const auto request =
        parsed({"--queue-path", "/run/x", "--key", "KEY_MENU=ok", "--size", "1920x1080", "--grab",
                "--verbose", "/dev/input/event3", "/dev/input/event4"})
            .request;
    ASSERT_TRUE(request);
    EXPECT_EQ(request->queue_path, "/run/x");
    EXPECT_EQ(request->keys.key_of(KEY_MENU), 23);
    ASSERT_TRUE(request->screen);
    EXPECT_EQ(request->screen->width, 1920);
    EXPECT_EQ(request->screen->height, 1080);
    EXPECT_TRUE(request->grab);
    EXPECT_TRUE(request->verbose);
    EXPECT_EQ(request->devices,
              (std::vector<std::string>{"/dev/input/event3", "/dev/input/event4"}));
}

TEST(InputdOptions, WrongOnesAreRefused) {
    using words = std::vector<std::string>;
    for (const words &wrong :
         {words{"--size", "0x720"}, words{"--size", "1280"}, words{"--size", "1280x"},
          words{"--size", "x720"}, words{"--size", "16385x1"}, words{"--size", "1280x720x1"},
          words{"--size"}, words{"--key", "KEY_MENU"}, words{"--grab=1"}, words{"--nothing"},
          words{"-g"}}) {
        EXPECT_THROW(parsed(wrong), ux::sim::usage_failure) << wrong.front();
    }
}

TEST(InputdOptions, WrongWordIsNamed) {
    const auto complaint = [](const std::vector<std::string> &words) -> std::string {
        try {
            parsed(words);
        } catch (const ux::sim::usage_failure &error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(complaint({"device", "--grab", "other", "-gv", "third"}),
              "unknown option or stray argument in '-gv'; see ux-inputd --help");
    EXPECT_EQ(complaint({"device", "-g", "other"}),
              "unknown option or stray argument in '-g'; see ux-inputd --help");
    EXPECT_EQ(complaint({"-", "--grab=1"}),
              "unknown option or stray argument in '--grab=1'; see ux-inputd --help");
    EXPECT_EQ(complaint({"device", "--size"}), "'--size' wants an argument; see ux-inputd --help");
}

TEST(InputdOptions, HelpAndVersionAreTexts) {
    const auto help = parsed({"--help"});
    EXPECT_FALSE(help.request);
    EXPECT_EQ(help.text.rfind("Usage: ux-inputd ", 0), 0U);
    EXPECT_EQ(parsed({"--version"}).text.rfind("ux-inputd ", 0), 0U);
}

} // namespace
