// SPDX-License-Identifier: MIT
// Carrying out a script step by step while the host runs.
#pragma once

#include "sim/delivery.h"
#include "sim/host_process.h"
#include "sim/screen.h"
#include "sim/script.h"

#include <functional>
#include <optional>
#include <string>

namespace ux::sim {

// What the steps act on; all of it outlives the player.
struct stage {
    const shared_screen &screen;
    const screen_watch &watch;
    delivery &input;
    std::function<void(const std::string &file)> take_shot;
};

class player {
  public:
    player(const script &steps, const stage &where, steady::time_point now);

    // Goes on as far as possible without waiting. `ended`: how the host ended, once it has.
    // Throws failure when a step fails.
    void step(const std::optional<host_end> &ended, steady::time_point now);

    // Every step is done; the host is to be stopped.
    bool finished() const { return m_at == m_script.steps.size(); }

    // Before this moment another step() changes nothing, unless the host ends.
    steady::time_point next_look(steady::time_point now) const;

    // The step in progress depends on what the screen watch sees.
    bool watches() const { return !finished() && m_script.steps[m_at].what == verb::wait_still; }

    // "line 3 (wait still 300)", of the step in progress.
    std::string where() const;

  private:
    bool try_step(const script_step &step, const std::optional<host_end> &ended,
                  steady::time_point now);
    bool try_send(const input_message &message, const std::optional<host_end> &ended,
                  steady::time_point now);
    bool try_wait_still(const script_step &step, steady::time_point now) const;
    bool try_wait_exit(const script_step &step, const std::optional<host_end> &ended,
                       steady::time_point now);
    bool expects_end() const;
    bool waited(int ms, steady::time_point now) const;
    void advance(steady::time_point now);
    [[noreturn]] void fail(const std::string &what) const;

    const script &m_script;
    stage m_stage;
    size_t m_at = 0;
    steady::time_point m_begun; // the run
    steady::time_point m_since; // the step in progress began
    bool m_posted = false;      // its message was handed to the delivery
    bool m_host_left = false;   // the host's end was waited for and came
};

} // namespace ux::sim
