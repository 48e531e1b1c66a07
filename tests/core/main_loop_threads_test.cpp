// SPDX-License-Identifier: MIT
// The main loop with its real threads: a message of the input driver comes out at a key handler.

#include "tests/support/screen_test.h"

#include <cstdlib>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

namespace {

constexpr int k_queue_project = 40;
constexpr size_t k_payload_bytes = 276;

struct driver_message {
    long type;
    int32_t key;
    int32_t kind;
    int32_t x;
    int32_t y;
    char unused[k_payload_bytes - 4 * sizeof(int32_t)];
};

struct loop_log {
    std::vector<ux_event> events;
};

loop_log s_loop;

int take_and_quit(ux_event *event) {
    s_loop.events.push_back(*event);
    return ux_screen_quit_main_loop();
}

// A pipe and a queue of this test's own, so that parallel tests do not meet.
class MainLoopThreadsTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        s_loop = {};
        empty_ring();
        hooks::get().fake_clock = false;
        ASSERT_NE(mkdtemp(folder), nullptr);
        hooks::get().pipe_path = std::string(folder) + "/event";
        hooks::get().queue_path = folder;
        queue = msgget(ftok(folder, k_queue_project), IPC_CREAT | 0600);
        ASSERT_GE(queue, 0);
    }

    void TearDown() override {
        msgctl(queue, IPC_RMID, nullptr);
        ::unlink((std::string(folder) + "/event").c_str());
        rmdir(folder);
        empty_ring();
        ScreenTest::TearDown();
    }

    static void empty_ring() {
        ux_event event;
        while (ux_event_get(&event) == 0)
            ;
    }

    void send(int32_t key, int32_t kind, int32_t x, int32_t y) {
        driver_message message = {};
        message.type = 1;
        message.key = key;
        message.kind = kind;
        message.x = x;
        message.y = y;
        ASSERT_EQ(msgsnd(queue, &message, k_payload_bytes, 0), 0);
    }

    // Runs the loop until a handler quits it; its trace lines go nowhere.
    int run() {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int result = ux_screen_main_loop();
        testing::internal::GetCapturedStderr();
        testing::internal::GetCapturedStdout();
        return result;
    }

    char folder[32] = "/tmp/ux-main-loop-XXXXXX";
    int queue = -1;
};

} // namespace

TEST_F(MainLoopThreadsTest, key_message_of_the_driver_reaches_the_key_handler) {
    ux_page *page = new_page();
    ux_page_set_key_handler(page, UX_KEY_OK, take_and_quit);
    send(UX_KEY_OK, 1, 0, 0);
    EXPECT_EQ(run(), 0);
    ASSERT_EQ(s_loop.events.size(), 1u);
    EXPECT_EQ(s_loop.events[0].type, UX_EVENT_KEY);
    EXPECT_EQ(s_loop.events[0].value, UX_KEY_OK);
}

TEST_F(MainLoopThreadsTest, touch_message_of_the_driver_reaches_the_touched_object) {
    ux_page *page = new_page();
    ux_container *box = ux_container_new(&page->container, 2, 2, 5, 5);
    ux_obj_set_handler(&box->obj, take_and_quit, nullptr);
    send(0, 2, 4, 6);
    EXPECT_EQ(run(), 0);
    ASSERT_EQ(s_loop.events.size(), 1u);
    EXPECT_EQ(s_loop.events[0].obj, &box->obj);
    EXPECT_EQ(s_loop.events[0].value, 44);
    EXPECT_EQ(s_loop.events[0].x, 4);
    EXPECT_EQ(s_loop.events[0].y, 6);
}

TEST_F(MainLoopThreadsTest, loop_may_run_again) {
    ux_page *page = new_page();
    ux_page_set_key_handler(page, UX_KEY_OK, take_and_quit);
    for (size_t times = 1; times <= 3; times++) {
        send(UX_KEY_OK, 1, 0, 0);
        EXPECT_EQ(run(), 0);
        EXPECT_EQ(s_loop.events.size(), times);
    }
}
