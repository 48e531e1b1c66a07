// SPDX-License-Identifier: MIT
// The meaning of each script verb.
#include "sim/player.h"

#include "sim/failure.h"

namespace ux::sim {

namespace {

constexpr int k_delivery_limit_ms = 10 * 1000;
constexpr std::chrono::milliseconds k_tick{5}; // finer than a main loop's pass

std::string in_ms(int ms) {
    return std::to_string(ms) + " ms";
}

} // namespace

player::player(const script &steps, const stage &where, steady::time_point now)
    : m_script(steps), m_stage(where), m_begun(now), m_since(now) {}

void player::step(const std::optional<host_end> &ended, steady::time_point now) {
    while (!finished()) {
        if (ended && !m_host_left && !expects_end()) {
            throw failure("the host " + ended->description() + " while " + where() +
                          " was waiting");
        }
        if (!try_step(m_script.steps[m_at], ended, now)) {
            return;
        }
        advance(now);
    }
}

steady::time_point player::next_look(steady::time_point now) const {
    const script_step &step = m_script.steps[m_at];
    if (!m_stage.input.idle()) {
        return now + k_tick;
    }
    switch (step.what) {
    case verb::wait_time:
        return m_since + std::chrono::milliseconds(step.ms);
    case verb::wait_until:
        return m_begun + std::chrono::milliseconds(step.ms);
    case verb::wait_exit:
        return m_since + std::chrono::milliseconds(step.limit_ms);
    default:
        return now + k_tick;
    }
}

std::string player::where() const {
    if (finished()) {
        return "the end of the script";
    }
    const script_step &step = m_script.steps[m_at];
    return "line " + std::to_string(step.line) + " (" + step.text + ")";
}

bool player::try_step(const script_step &step, const std::optional<host_end> &ended,
                      steady::time_point now) {
    switch (step.what) {
    case verb::key:
        return try_send(key_message(step.key), ended, now);
    case verb::touch:
        return try_send(touch_message(step.x, step.y), ended, now);
    case verb::wait_time:
        return waited(step.ms, now);
    case verb::wait_until:
        return now - m_begun >= std::chrono::milliseconds(step.ms);
    case verb::wait_still:
        return try_wait_still(step, now);
    case verb::wait_exit:
        return try_wait_exit(step, ended, now);
    case verb::shot:
        m_stage.take_shot(step.file);
        return true;
    case verb::quit:
        return true;
    }
    return true;
}

// A host that has ended cannot finish with its pipe: it is enough that it took the message.
bool player::try_send(const input_message &message, const std::optional<host_end> &ended,
                      steady::time_point now) {
    if (!m_posted) {
        m_posted = m_stage.input.post(message);
        m_stage.input.step(now); // at this very moment if nothing is on its way
        return false;
    }
    if (waited(k_delivery_limit_ms, now)) {
        fail("the host did not take the message within " + in_ms(k_delivery_limit_ms));
    }
    return m_stage.input.idle() || ended.has_value();
}

// A host that has shown nothing yet and does not receive either is still starting: its blank screen
// does not count as still.
bool player::try_wait_still(const script_step &step, steady::time_point now) const {
    bool started = m_stage.watch.ever_changed() || m_stage.input.host_receives();
    auto quiet_since = std::max(m_since, m_stage.watch.last_change());
    if (started && now - quiet_since >= std::chrono::milliseconds(step.ms)) {
        return true;
    }
    if (waited(step.limit_ms, now)) {
        fail(started ? "the picture was not still within " + in_ms(step.limit_ms)
                     : "the host showed nothing and took no input within " + in_ms(step.limit_ms));
    }
    return false;
}

bool player::try_wait_exit(const script_step &step, const std::optional<host_end> &ended,
                           steady::time_point now) {
    if (ended) {
        if (ended->as_exit_status() != 0) {
            fail("the host " + ended->description());
        }
        m_host_left = true;
        return true;
    }
    if (waited(step.limit_ms, now)) {
        fail("the host did not end within " + in_ms(step.limit_ms));
    }
    return false;
}

// True at "wait exit", and at a message that the host took when "wait exit" comes next: a host may
// end at once on its key.
bool player::expects_end() const {
    const script_step &step = m_script.steps[m_at];
    if (step.what == verb::wait_exit) {
        return true;
    }
    bool message = step.what == verb::key || step.what == verb::touch;
    bool exit_next =
        m_at + 1 < m_script.steps.size() && m_script.steps[m_at + 1].what == verb::wait_exit;
    return message && exit_next && m_posted && m_stage.input.taken();
}

bool player::waited(int ms, steady::time_point now) const {
    return now - m_since >= std::chrono::milliseconds(ms);
}

void player::advance(steady::time_point now) {
    ++m_at;
    m_since = now;
    m_posted = false;
}

void player::fail(const std::string &what) const {
    throw failure(m_script.name + ":" + std::to_string(m_script.steps[m_at].line) + ": " + what +
                  " (" + m_script.steps[m_at].text + ")");
}

} // namespace ux::sim
