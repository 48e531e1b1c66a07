// SPDX-License-Identifier: MIT
// A ticker on a thread of its own beside the one that paints and raises flags, as hosts run it.
// What counts most here is what the thread sanitizer says.

#include "tests/font/text_test.h"

#include <atomic>
#include <cstdlib>
#include <fcntl.h>
#include <sched.h>
#include <thread>
#include <unistd.h>

namespace {

class TickerThreadTest : public TextTest {
  protected:
    static constexpr int k_frames = 50;
    static constexpr int k_left = 4;

    // The ticker's box is the upper half.
    void SetUp() override {
        TextTest::SetUp();
        make_screen(8, 6);
        give('a', {0, 2, 3, {"XXX"}});
        const int file = mkstemp(m_path);
        ASSERT_GE(file, 0);
        ASSERT_EQ(write(file, "a\n", 2), 2);
        close(file);
        setenv("STATUS", "-otoMenu", 1);
        setenv("ShowMSG", "-ES", 1);
        setenv("TICKER_STATE", "-TOP_TICKER", 1);
        setenv("TICKER_PLAYING", "ON", 1);
        hooks::get().on_usleep = [this] {
            m_frames++;
            sched_yield();
        };
    }

    void TearDown() override {
        for (const char *name : {"STATUS", "ShowMSG", "TICKER_STATE", "TICKER_PLAYING"})
            unsetenv(name);
        unlink(m_path);
        TextTest::TearDown();
    }

    // Changes a flag in place, as ux.h tells hosts to.
    static void put(char *flag, char first) { std::atomic_ref<char>(*flag).store(first); }

    // Runs `work` again and again while `ticker` shows some frames, then sends it to the menu.
    template <class Ticker, class Work>
    void run_beside(Ticker ticker, Work work) {
        char *status = getenv("STATUS");
        std::thread thread(ticker);
        while (m_frames < k_frames) {
            work();
            sched_yield();
        }
        put(status, 'g');
        thread.join();
    }

    char m_path[32] = "/tmp/ux-ticker-XXXXXX";

  private:
    std::atomic<int> m_frames = 0;
};

} // namespace

// Each frame is a line here, so that glyphs are fetched at every frame.
TEST_F(TickerThreadTest, texts_are_painted_while_a_ticker_fetches_glyphs) {
    run_beside(
        [this] {
            EXPECT_EQ(uxFontDrawing(m_path, k_ink, k_key, 0, 0, 8, 3, 3, 3, 100, k_left), 0);
        },
        [] { draw(u"a", 0, 3, 8, 3, 3); });
    EXPECT_EQ(ink(), "........\n........\n........\nXXX.....\n........\n........\n");
    EXPECT_STREQ(getenv("TICKER_PLAYING"), "NO");
}

TEST_F(TickerThreadTest, one_pass_tells_flags_while_they_change_in_place) {
    char *message = getenv("ShowMSG");
    bool raised = false;
    testing::internal::CaptureStdout();
    run_beside([] { DrawFontToBitmapMoveLeftFileTEST("a", k_ink, k_key, 0, 0, 8, 3, 0); },
               [&] {
                   raised = !raised;
                   put(message, raised ? 'Y' : '-');
               });
    const std::string told = testing::internal::GetCapturedStdout();
    EXPECT_EQ(told.find("str_len = 2\nuxWidget STATUS = -otoMenu\nuxWidget ShowMSG = "), 0u);
    EXPECT_NE(told.find("uxWidget STATUS = gotoMenu\nuxWidget ShowMSG = "), std::string::npos);
}
