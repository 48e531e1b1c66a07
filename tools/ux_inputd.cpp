// SPDX-License-Identifier: MIT
// ux-inputd: sends keys and touches of Linux input devices to a host.
#include "sim/failure.h"
#include "sim/keys.h"
#include "tools/end_signals.h"
#include "tools/inputd_devices.h"
#include "tools/inputd_options.h"
#include "tools/paced_sender.h"

#include <algorithm>
#include <cstdio>
#include <list>

#include <poll.h>

namespace {

using namespace ux::inputd;
namespace sim = ux::sim;

constexpr const char *k_folder = "/dev/input";
constexpr const char *k_framebuffer = "/dev/fb0";
constexpr timespec k_look_again{.tv_sec = 0, .tv_nsec = 5'000'000};

struct open_device {
    input_device device;
    event_translator translator;
};

class input_driver {
  public:
    explicit input_driver(const inputd_request &request);

    // Returns the exit status.
    int run(const sigset_t &mask);

  private:
    void open_new(const std::string &path);
    void add(const std::string &path);
    std::optional<touch_area> area_of(const input_device &device) const;
    void read_all();
    void read(open_device &from);
    void send(const translated &next);
    void wait(const sigset_t &mask) const;
    void tell(const std::string &text) const;

    const inputd_request &m_request;
    std::optional<device_folder> m_folder; // when no devices were named
    std::list<open_device> m_devices;
    sim::paced_sender m_sender;
};

input_driver::input_driver(const inputd_request &request)
    : m_request(request), m_sender("ux-inputd", request.queue_path) {
    if (!request.devices.empty()) {
        for (const std::string &path : request.devices) {
            add(path);
        }
        return;
    }
    m_folder.emplace(k_folder);
    for (const std::string &path : m_folder->devices()) {
        open_new(path);
    }
}

// A device that nobody named may be left out.
void input_driver::open_new(const std::string &path) {
    const auto is_it = [&path](const open_device &known) { return known.device.path() == path; };
    if (std::ranges::any_of(m_devices, is_it)) {
        return;
    }
    try {
        add(path);
    } catch (const sim::failure &error) {
        tell(error.what());
    }
}

void input_driver::add(const std::string &path) {
    input_device device(path);
    const bool is_named = !m_folder;
    if (!is_named && !device.has_key_of(m_request.keys) && !device.has_touches()) {
        return;
    }
    if (m_request.grab) {
        device.grab();
    }
    const auto area = area_of(device);
    tell(path + ": " + device.name() + (area ? ", touches" : ""));
    m_devices.push_back({std::move(device), {m_request.keys, area}});
}

// The size is asked for each device anew: a screen may come later than the daemon.
std::optional<touch_area> input_driver::area_of(const input_device &device) const {
    if (!device.has_touches()) {
        return std::nullopt;
    }
    try {
        return device.touch_area_on(m_request.screen ? *m_request.screen
                                                     : size_of_framebuffer(k_framebuffer));
    } catch (const sim::failure &error) {
        std::fprintf(stderr, "ux-inputd: no touches of %s: %s; see --size\n", device.path().c_str(),
                     error.what());
        return std::nullopt;
    }
}

int input_driver::run(const sigset_t &mask) {
    while (sim::end_signal() == 0) {
        read_all();
        if (!m_folder && m_devices.empty()) {
            throw sim::failure("no device is left");
        }
        m_sender.step(sim::paced_sender::clock::now());
        wait(mask);
    }
    return sim::k_status_signal_base + sim::end_signal();
}

// The changes are asked for first: a device that has come in place of one of the same name is
// opened when the old one has been found to be gone.
void input_driver::read_all() {
    const auto changed = m_folder ? m_folder->changes() : std::vector<std::string>();
    m_devices.remove_if([this](open_device &from) {
        try {
            read(from);
            return false;
        } catch (const sim::failure &error) {
            std::fprintf(stderr, "ux-inputd: %s\n", error.what());
            return true;
        }
    });
    for (const std::string &path : changed) {
        open_new(path);
    }
}

void input_driver::read(open_device &from) {
    while (const auto event = from.device.next()) {
        if (const auto next = from.translator.take(*event)) {
            send(*next);
        }
    }
}

// A key that is held repeats faster than a host takes it; it must not run on after its release.
void input_driver::send(const translated &next) {
    if (next.is_repeat && !m_sender.idle()) {
        return;
    }
    const sim::input_message &message = next.message;
    tell(message.kind == sim::k_kind_key
             ? "key " + sim::key_text(message.key)
             : "touch " + std::to_string(message.x) + " " + std::to_string(message.y));
    m_sender.post(message);
}

// Until something happens, or for a moment when messages wait.
void input_driver::wait(const sigset_t &mask) const {
    std::vector<pollfd> sources;
    if (m_folder) {
        sources.push_back({.fd = m_folder->fd(), .events = POLLIN, .revents = 0});
    }
    for (const open_device &each : m_devices) {
        sources.push_back({.fd = each.device.fd(), .events = POLLIN, .revents = 0});
    }
    ppoll(sources.data(), sources.size(), m_sender.idle() ? nullptr : &k_look_again, &mask);
}

void input_driver::tell(const std::string &text) const {
    if (m_request.verbose) {
        std::fprintf(stderr, "ux-inputd: %s\n", text.c_str());
    }
}

int run_inputd(int argc, char **argv) {
    const inputd_command asked = parse_inputd_command(argc, argv);
    if (!asked.request) {
        std::fputs(asked.text.c_str(), stdout);
        return std::fflush(stdout) == 0 ? sim::k_status_ok : sim::k_status_failed;
    }
    const sigset_t mask = sim::hold_end_signals();
    return input_driver(*asked.request).run(mask);
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run_inputd(argc, argv);
    } catch (const sim::failure &error) {
        std::fprintf(stderr, "ux-inputd: %s\n", error.what());
        return error.status();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "ux-inputd: %s\n", error.what());
        return sim::k_status_failed;
    }
}
