// SPDX-License-Identifier: MIT
// The run's loop: signals, host, picture, input, script, window, in this order every few
// milliseconds.
#include "sim/runner.h"

#include "sim/album.h"
#include "sim/browser_view.h"
#include "sim/delivery.h"
#include "sim/failure.h"
#include "sim/host_process.h"
#include "sim/player.h"
#include "sim/recorder.h"
#include "sim/run_folder.h"
#include "sim/screen.h"
#include "sim/screen_note.h"
#include "sim/virtual_clock.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace ux::sim {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds k_patience{2000};  // between SIGTERM and SIGKILL
constexpr milliseconds k_script_tick{5};  // finer than a main loop's pass
constexpr milliseconds k_window_tick{16}; // about 60 pictures a second
constexpr milliseconds k_free_tick{5};    // a host that rests in virtual time without a script
constexpr milliseconds k_idle_tick{250};  // nothing to watch but the host's end

// Signals arrive here and nowhere else, so that every end is a clean one.
class signal_watch {
  public:
    signal_watch() {
        sigset_t watched;
        sigemptyset(&watched);
        for (int number : {SIGINT, SIGTERM, SIGHUP, SIGCHLD}) {
            sigaddset(&watched, number);
        }
        sigprocmask(SIG_BLOCK, &watched, nullptr);
        signal(SIGPIPE, SIG_IGN);
        signal(SIGXFSZ, SIG_IGN); // a file that may not grow is an error to tell
        m_fd = signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK);
        if (m_fd == -1) {
            throw failure(system_reason("cannot watch signals"));
        }
    }
    signal_watch(const signal_watch &) = delete;
    signal_watch &operator=(const signal_watch &) = delete;
    ~signal_watch() { close(m_fd); }

    int fd() const { return m_fd; }

    // The signal that asks this program to end, 0 = none.
    int end_signal() {
        signalfd_siginfo info{};
        while (read(m_fd, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
            if (info.ssi_signo != SIGCHLD) {
                m_end_signal = static_cast<int>(info.ssi_signo);
            }
        }
        return m_end_signal;
    }

  private:
    int m_fd = -1;
    int m_end_signal = 0;
};

void tell(const options &run, const std::string &text) {
    if (run.verbose) {
        std::fprintf(stderr, "ux-sim: %s\n", text.c_str());
    }
}

std::string absolute_folder(const std::string &path) {
    std::error_code error;
    std::filesystem::path result = std::filesystem::canonical(path, error);
    if (error || !std::filesystem::is_directory(result)) {
        throw usage_failure("--root " + path + " is no folder");
    }
    return result.string();
}

// Dates in shots must not depend on where the machine stands.
constexpr const char *k_virtual_zone = "UTC0";

host_setup setup_for(const options &run, const run_folder &folder, const shared_screen &screen,
                     const std::optional<virtual_clock> &clock) {
    host_setup setup = {
        .arguments = run.host,
        .variables = {{"UX_SIM_MEMORY", screen.path()},
                      {"UX_SIM_SCREEN", shape_text(run.shape)},
                      {"UX_SIM_PIPE", folder.pipe()},
                      {"UX_SIM_QUEUE", folder.queue_path()},
                      {"UX_SIM_ROOT", run.root.empty() ? "" : absolute_folder(run.root)}},
        .preload = folder.preload_name(find_shim()),
    };
    setup.variables.emplace_back("UX_SIM_CLOCK", clock ? clock->path() : "");
    if (clock) {
        setup.variables.emplace_back("TZ", k_virtual_zone);
    }
    return setup;
}

bool died_badly(const host_end &end) {
    return end.by_signal() && end.signal() != SIGTERM && end.signal() != SIGKILL;
}

class runner {
  public:
    runner(const options &run, const script *steps, const viewer_maker &make_viewer)
        : m_run(run), m_folder(run.queue_path), m_screen(run.shape), m_clock(clock_for(run)),
          m_watch(m_screen, now()), m_input(m_folder) {
        prepare_shots(steps);
        if (make_viewer) {
            m_viewer = make_viewer(m_screen);
        }
        if (!run.record.empty()) {
            m_recorder.emplace(run.record, m_folder.queue());
        }
        write_screen_note(m_folder.path(), {.shape = run.shape,
                                            .memory = m_screen.path(),
                                            .process = getpid(),
                                            .queue_path = m_folder.queue_path()});
        tell(run, "queue path " + m_folder.queue_path());
        tell(run, "for ux-view " + m_folder.path());
        if (run.web) {
            m_browsers.emplace(m_folder.path(), run.web_port);
        }
        host_setup setup = setup_for(run, m_folder, m_screen, m_clock);
        setup.variables.emplace_back("UX_SIM_RECORD", m_recorder ? m_recorder->path() : "");
        m_begun = now();
        m_started = steady::now();
        m_host.emplace(setup);
        if (steps != nullptr) {
            m_player.emplace(*steps,
                             stage{m_screen, m_watch, m_input,
                                   [this](const std::string &file) { take_shot(file); }},
                             m_begun);
        }
    }

    int carry_out() {
        const int status = run_to_the_end();
        if (m_recorder) {
            const auto end = m_host->poll();
            m_recorder->finish(m_begun, m_ended_at.value_or(now()),
                               m_ended_at || !end ? nullptr : &*end);
        }
        return status;
    }

  private:
    int run_to_the_end() {
        if (m_clock) {
            run_virtually(now());
        }
        for (;;) {
            if (int number = m_signals.end_signal()) {
                stop();
                return k_status_signal_base + number;
            }
            if (auto status = pass()) {
                return *status;
            }
            wait();
        }
    }

    static std::optional<virtual_clock> clock_for(const options &run) {
        using clock = std::optional<virtual_clock>;
        return run.virtual_time
                   ? clock(std::in_place, run.first_second, std::chrono::seconds(run.stall_s))
                   : clock();
    }

    // The time by which host and script live.
    steady::time_point now() const { return m_clock ? m_clock->now() : steady::now(); }

    // Without a script nothing holds the host's time up.
    void run_virtually(steady::time_point until) {
        if (m_player) {
            m_clock->run_until(until, [this] { return must_leave(); });
        } else {
            m_clock->run_free();
        }
    }

    bool must_leave() {
        check_timeout();
        return m_signals.end_signal() != 0 || m_host->poll();
    }

    // A host that lives by the clock needs time to end, too.
    host_end stop() {
        if (!m_host->poll()) {
            m_ended_at = now();
        }
        if (m_clock) {
            m_clock->run_free();
        }
        return m_host->stop(k_patience);
    }

    // One look at everything; the exit status once the run is over.
    std::optional<int> pass() {
        const auto ended = m_host->poll();
        const auto time = now();
        const bool watching = m_viewer || (m_player && m_player->watches());
        const row_range changed = watching ? m_watch.look(time) : row_range{};
        if (!ended) {
            m_input.step(time);
        }
        if (m_recorder) {
            m_recorder->take(m_begun);
        }
        if (m_player) {
            m_player->step(ended, time);
            if (m_player->finished()) {
                return finish();
            }
        } else if (ended) {
            return finish_with(*ended);
        }
        check_timeout();
        if (m_browsers) {
            m_browsers->check();
        }
        if (m_viewer && !show(changed)) {
            stop();
            return k_status_ok;
        }
        return std::nullopt;
    }

    bool show(const row_range &changed) {
        bool open =
            m_viewer->handle_input([this](const input_message &message) { m_input.post(message); });
        m_viewer->show(changed);
        return open;
    }

    void wait() {
        if (m_clock && m_player && !m_host->poll()) {
            run_virtually(m_player->next_look(now()));
            return;
        }
        if (m_clock && m_clock->rests()) {
            m_clock->run_free(); // somebody else may have sent something
        }
        std::array<pollfd, 2> files = {
            {{.fd = m_signals.fd(), .events = POLLIN, .revents = 0},
             {.fd = m_input.watch_fd(), .events = POLLIN, .revents = 0}}};
        milliseconds tick = m_player || m_recorder ? k_script_tick
                            : m_clock              ? k_free_tick
                            : m_viewer             ? k_window_tick
                                                   : k_idle_tick;
        ::poll(files.data(), files.size(), static_cast<int>(tick.count()));
    }

    // The script is through.
    int finish() {
        const bool alive = !m_host->poll();
        const host_end end = stop();
        if (alive && died_badly(end)) {
            throw failure("the host " + end.description() + " when it was asked to end");
        }
        if (alive && end.by_signal() && end.signal() == SIGKILL) {
            std::fputs("ux-sim: the host did not end when asked to; killed\n", stderr);
        }
        if (m_album && m_album->wrong() > 0) {
            throw failure(std::to_string(m_album->wrong()) + " of " +
                              std::to_string(m_album->taken()) + " shots are not as expected",
                          k_status_unexpected);
        }
        return k_status_ok;
    }

    // The host ended by itself and no script cared.
    int finish_with(const host_end &end) {
        if (end.by_signal()) {
            throw failure("the host " + end.description(), end.as_exit_status());
        }
        return end.exit_code();
    }

    void check_timeout() {
        if (m_run.timeout_s == 0 ||
            steady::now() - m_started < std::chrono::seconds(m_run.timeout_s)) {
            return;
        }
        std::string when = m_player ? " at " + m_player->where() : "";
        stop();
        throw failure("the run took longer than " + std::to_string(m_run.timeout_s) + " s" + when);
    }

    void prepare_shots(const script *steps) {
        const bool any =
            steps != nullptr && std::ranges::any_of(steps->steps, [](const script_step &step) {
                return step.what == verb::shot;
            });
        if (any) {
            m_album.emplace(m_screen, m_run.shots, m_run.expect);
        } else if (!m_run.expect.empty()) {
            throw usage_failure("--expect wants a script that takes shots");
        }
    }

    void take_shot(const std::string &file) { tell(m_run, "shot " + m_album->take(file)); }

    const options &m_run;
    signal_watch m_signals;
    run_folder m_folder;
    shared_screen m_screen;
    std::optional<virtual_clock> m_clock; // none = real time
    screen_watch m_watch;
    delivery m_input;
    std::unique_ptr<viewer> m_viewer;
    std::optional<recorder> m_recorder;
    std::optional<album> m_album;
    std::optional<host_process> m_host;     // goes before what it uses
    std::optional<browser_view> m_browsers; // before the host's end ends whatever is left
    std::optional<player> m_player;
    steady::time_point m_begun;                   // by the time of host and script
    steady::time_point m_started;                 // in real time
    std::optional<steady::time_point> m_ended_at; // when the host was told to end, as m_begun
};

} // namespace

int carry_out(const options &run, const script *steps, const viewer_maker &make_viewer) {
    return runner(run, steps, make_viewer).carry_out();
}

} // namespace ux::sim
