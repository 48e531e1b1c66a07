// SPDX-License-Identifier: MIT
// Linux input devices: opening them, what they can tell, reading them, and noticing new ones.
#pragma once

#include "tools/inputd_events.h"
#include "tools/inputd_keys.h"
#include "tools/owned_fd.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <linux/input.h>

struct inotify_event;
struct libevdev;

namespace ux::inputd {

class input_device {
  public:
    // Throws failure: not there, no permission or no input device.
    explicit input_device(const std::string &path);

    // From here on nobody else gets its events. Throws failure when somebody else has grabbed it.
    void grab();

    int fd() const { return m_fd.get(); }
    const std::string &path() const { return m_path; }
    std::string name() const;

    // Whether a key of the table is on it.
    bool has_key_of(const key_table &keys) const;
    // Whether it has two axes and something to press there.
    bool has_touches() const;
    touch_area touch_area_on(const screen_size &screen) const;

    // Nothing when no event waits. Throws failure when the device is gone.
    std::optional<input_event> next();

  private:
    struct deleter {
        void operator()(libevdev *device) const;
    };

    std::string m_path;
    sim::owned_fd m_fd;
    std::unique_ptr<libevdev, deleter> m_device;
    bool m_catching_up = false; // events were lost: the library tells what has changed meanwhile
};

// The folder in which the kernel's input devices appear. It comes with the first device and may go
// with the last one.
class device_folder {
  public:
    // `path` ends without a slash. Throws failure when the folder above cannot be watched.
    explicit device_folder(const std::string &path);

    int fd() const { return m_fd.get(); }

    // All devices that are there now.
    std::vector<std::string> devices() const;
    // Those that came or changed since the last call; all when it cannot be known which.
    std::vector<std::string> changes();

  private:
    void watch();
    bool is_new_folder(const inotify_event &event) const;

    std::string m_path;
    sim::owned_fd m_fd;
    int m_above = -1; // the watch of the folder above
};

// The visible size of a framebuffer. Throws failure.
screen_size size_of_framebuffer(const std::string &path);

} // namespace ux::inputd
