// SPDX-License-Identifier: MIT
// Effects 0 to 7 on random blocks, places and screens, stopped anywhere: every pause and every
// flag read finds the picture that the plain loops below have painted by then.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <utility>

namespace {

constexpr int k_trials = 2000;
constexpr int k_largest_side = 24; // of the screen
constexpr int k_no_stop = -1;

using picture = std::vector<uint32_t>;

// What happened, in order: 'P' a pause, 'S' and 'M' the flags read, 'W' the host told; and the
// screen at all of these but the last.
struct course {
    std::string events;
    std::vector<picture> pictures;

    void note(char event, const picture &now) {
        events += event;
        pictures.push_back(now);
    }
};

struct job {
    int x, y, width, height, effect;
    picture block;
    int menu_at, message_at; // the step after which a flag is up
};

uint32_t blended(uint32_t screen, uint32_t source) {
    const uint32_t a = source >> 24;
    if (a == 0)
        return screen;
    uint32_t result = std::max(screen >> 24, a) << 24;
    for (int shift : {0, 8, 16})
        result |= ((screen >> shift & 255) * (256 - a) + (source >> shift & 255) * a) >> 8 << shift;
    return result;
}

// The effects as loops over steps; each tells after a step whether that one has a pause.
class plain_effect {
  public:
    plain_effect(const job &asked, picture before) : screen(std::move(before)), m_job(asked) {
        m_drawn_width = std::min(m_job.width, main_screen.width - m_job.x);
        m_drawn_height = std::min(m_job.height, main_screen.height - m_job.y);
        m_pace = std::max(1, main_screen.height / m_job.height);
    }

    void run() {
        const int count = steps();
        for (int s = 0; s < count; s++) {
            for (int row = 0; row < m_job.height; row++)
                for (int column = 0; column < m_job.width; column++)
                    for (int n = times(s, column, row); n > 0; n--)
                        blend(column, row);
            if (m_job.effect != 0 && stops_after(s))
                return;
        }
    }

    course seen;
    picture screen;

  private:
    int steps() const {
        const int w = m_job.width;
        const int h = m_job.height;
        const int all[] = {1, m_drawn_height, m_drawn_height, w, w, w + h - 2, h / 2 + 1, band()};
        return all[m_job.effect];
    }

    int band() const { return m_job.height / 7 + (m_job.height % 7 != 0 ? 1 : 0); }

    // How often step s blends a pixel.
    int times(int s, int column, int row) const {
        const bool shown = column < m_drawn_width && row < m_drawn_height;
        switch (m_job.effect) {
        case 0:
            return shown;
        case 1:
            return shown && row == s;
        case 2:
            return shown && row == m_drawn_height - 1 - s;
        case 3:
            return column == s;
        case 4:
            return column == m_job.width - 1 - s;
        case 5:
            return column + row == s;
        case 6:
            return (row == s ? 1 : 0) + (row == m_job.height - 1 - s ? 1 : 0);
        default:
            return shown && row % band() == s;
        }
    }

    void blend(int column, int row) {
        const int at = (m_job.y + row) * main_screen.width + m_job.x + column;
        uint32_t &pixel = screen.at(static_cast<size_t>(at));
        pixel = blended(pixel, m_job.block[static_cast<size_t>(row * m_job.width + column)]);
    }

    bool stops_after(int s) {
        if (s % (m_job.effect == 7 ? 2 : m_pace) == 0)
            seen.note('P', screen);
        seen.note('S', screen);
        if (s != m_job.menu_at)
            seen.note('M', screen);
        if (s != m_job.menu_at && s != m_job.message_at)
            return false;
        seen.events += 'W';
        return true;
    }

    const job &m_job;
    int m_drawn_width, m_drawn_height, m_pace;
};

class RandomEffectTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        hooks::get().on_usleep = [this] { m_seen.note('P', now()); };
        hooks::get().on_getenv = [this](const char *name) { note_read(name); };
        hooks::get().on_setenv = [this](const char *name, const char *value, int overwrite) {
            if (strcmp(name, "PHOTO_PLAYING") == 0)
                m_seen.events += strcmp(value, "NO") == 0 && overwrite ? 'W' : '?';
        };
    }

    void TearDown() override {
        for (const char *name : {"STATUS", "ShowMSG", "PHOTO_PLAYING"})
            unsetenv(name);
        ScreenTest::TearDown();
    }

    int between(int low, int high) {
        return low + static_cast<int>(m_random() % static_cast<unsigned>(high - low + 1));
    }

    picture noise(int width, int height) {
        picture made(static_cast<size_t>(width * height));
        for (uint32_t &pixel : made)
            pixel = static_cast<uint32_t>(m_random()) & (between(0, 3) ? 0xFFFFFFFF : 0xFFFFFF);
        return made;
    }

    // Effects 3 to 6 only take blocks that fit.
    job random_job() {
        job made = {};
        made.effect = between(0, 7);
        const bool may_be_cut = made.effect < 3 || made.effect == 7;
        made.x = between(0, main_screen.width - 1);
        made.y = between(0, main_screen.height - 1);
        made.width = between(1, may_be_cut ? k_largest_side + 9 : main_screen.width - made.x);
        made.height = between(1, may_be_cut ? k_largest_side + 9 : main_screen.height - made.y);
        made.block = noise(made.width, made.height);
        made.menu_at = between(0, 2) == 0 ? between(0, 9) : k_no_stop;
        made.message_at = between(0, 2) == 0 ? between(0, 9) : k_no_stop;
        return made;
    }

    course draw(const job &asked) {
        m_seen = {};
        m_job = &asked;
        m_step = -1;
        setenv("STATUS", "gotoMenu ", 1);
        setenv("ShowMSG", "YE", 1);
        EXPECT_EQ(ux_draw_image_buff(asked.block.data(), asked.x, asked.y, asked.width,
                                     asked.height, asked.effect),
                  0);
        m_job = nullptr;
        return m_seen;
    }

    static picture now() { return plain::numbers(main_screen.buf); }

  private:
    // Raises the flags at their steps.
    void note_read(const char *name) {
        const bool status = strcmp(name, "STATUS") == 0;
        if (!m_job || (!status && strcmp(name, "ShowMSG") != 0))
            return;
        m_seen.note(status ? 'S' : 'M', now());
        m_step += status ? 1 : 0;
        if (status && m_step == m_job->menu_at)
            setenv(name, "gotoMenu", 1);
        if (!status && m_step == m_job->message_at)
            setenv(name, "YES", 1);
    }

    std::mt19937 m_random{5};
    course m_seen;
    const job *m_job = nullptr;
    int m_step = -1;
};

} // namespace

TEST_F(RandomEffectTest, every_pause_and_flag_finds_the_picture_of_the_plain_loops) {
    size_t stopped = 0;
    for (int trial = 0; trial < k_trials; trial++) {
        make_screen(between(1, k_largest_side), between(1, k_largest_side));
        const picture before = noise(main_screen.width, main_screen.height);
        memcpy(main_screen.buf, before.data(), before.size() * sizeof(uint32_t));
        const job asked = random_job();
        plain_effect plain(asked, before);
        plain.run();
        const course seen = draw(asked);
        ASSERT_EQ(seen.events, plain.seen.events) << "effect " << asked.effect << ", " << trial;
        ASSERT_EQ(seen.pictures, plain.seen.pictures) << "effect " << asked.effect << ", " << trial;
        ASSERT_EQ(now(), plain.screen);
        stopped += !seen.events.empty() && seen.events.back() == 'W';
    }
    EXPECT_GT(stopped, size_t{k_trials / 10}); // the trials are worth something
    for (unsigned pause : hooks::get().usleeps)
        ASSERT_EQ(pause, 3000u);
}
