// SPDX-License-Identifier: MIT
// Devices by libevdev, new ones by inotify.
#include "tools/inputd_devices.h"

#include "sim/failure.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <libevdev/libevdev.h>
#include <linux/fb.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace ux::inputd {

using sim::failure;
using sim::owned_fd;
using sim::system_reason;

namespace {

constexpr std::string_view k_device_prefix = "event";

owned_fd opened(const std::string &path, int flags) {
    owned_fd fd(open(path.c_str(), flags | O_CLOEXEC));
    if (fd.get() == -1) {
        throw failure(system_reason("cannot open " + path));
    }
    return fd;
}

axis_range range_of(const libevdev *device, unsigned axis) {
    return {libevdev_get_abs_minimum(device, axis), libevdev_get_abs_maximum(device, axis),
            libevdev_get_event_value(device, EV_ABS, axis)};
}

std::string_view name_in(const inotify_event &event) {
    return event.len > 0 ? event.name : "";
}

} // namespace

void input_device::deleter::operator()(libevdev *device) const {
    libevdev_free(device);
}

input_device::input_device(const std::string &path)
    : m_path(path), m_fd(opened(path, O_RDONLY | O_NONBLOCK)) {
    libevdev *device = nullptr;
    errno = -libevdev_new_from_fd(m_fd.get(), &device);
    if (errno != 0) {
        throw failure(system_reason(path + " is no input device"));
    }
    m_device.reset(device);
}

void input_device::grab() {
    errno = -libevdev_grab(m_device.get(), LIBEVDEV_GRAB);
    if (errno != 0) {
        throw failure(system_reason("cannot grab " + m_path));
    }
}

std::string input_device::name() const {
    return libevdev_get_name(m_device.get());
}

bool input_device::has_key_of(const key_table &keys) const {
    return std::ranges::any_of(keys.all(), [this](const auto &entry) {
        return libevdev_has_event_code(m_device.get(), EV_KEY, entry.first) == 1;
    });
}

bool input_device::has_touches() const {
    const auto has = [this](unsigned type, unsigned code) {
        return libevdev_has_event_code(m_device.get(), type, code) == 1;
    };
    return has(EV_ABS, ABS_X) && has(EV_ABS, ABS_Y) &&
           (has(EV_KEY, BTN_TOUCH) || has(EV_KEY, BTN_LEFT));
}

touch_area input_device::touch_area_on(const screen_size &screen) const {
    return {range_of(m_device.get(), ABS_X), range_of(m_device.get(), ABS_Y), screen};
}

std::optional<input_event> input_device::next() {
    for (;;) {
        input_event event{};
        const unsigned flag = m_catching_up ? LIBEVDEV_READ_FLAG_SYNC : LIBEVDEV_READ_FLAG_NORMAL;
        const int status = libevdev_next_event(m_device.get(), flag, &event);
        if (status == -EAGAIN && m_catching_up) {
            m_catching_up = false;
        } else if (status == -EAGAIN || status == -EINTR) {
            return std::nullopt;
        } else if (status < 0) {
            errno = -status;
            throw failure(system_reason(m_path + " is gone"));
        } else {
            m_catching_up = status == LIBEVDEV_READ_STATUS_SYNC;
            return event;
        }
    }
}

device_folder::device_folder(const std::string &path)
    : m_path(path), m_fd(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    const std::string above = std::filesystem::path(path).parent_path().string();
    m_above = inotify_add_watch(m_fd.get(), above.c_str(), IN_CREATE | IN_ONLYDIR);
    if (m_above == -1) {
        throw failure(system_reason("cannot watch " + above));
    }
    watch();
}

// Permissions often come after the device. Without a folder there is nothing to watch yet.
void device_folder::watch() {
    const int watched =
        inotify_add_watch(m_fd.get(), m_path.c_str(), IN_CREATE | IN_ATTRIB | IN_ONLYDIR);
    if (watched == -1 && errno != ENOENT) {
        throw failure(system_reason("cannot watch " + m_path));
    }
}

std::vector<std::string> device_folder::devices() const {
    std::vector<std::string> found;
    std::error_code ignored;
    for (const auto &entry : std::filesystem::directory_iterator(m_path, ignored)) {
        if (entry.path().filename().string().starts_with(k_device_prefix)) {
            found.push_back(entry.path().string());
        }
    }
    std::ranges::sort(found);
    return found;
}

bool device_folder::is_new_folder(const inotify_event &event) const {
    return event.wd == m_above && name_in(event) == std::filesystem::path(m_path).filename();
}

std::vector<std::string> device_folder::changes() {
    std::vector<std::string> found;
    bool look_anew = false;
    alignas(inotify_event) std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t size = read(m_fd.get(), buffer.data(), buffer.size());
        if (size <= 0) {
            break;
        }
        for (ssize_t at = 0; at < size;) {
            const auto *event = reinterpret_cast<const inotify_event *>(buffer.data() + at);
            if ((event->mask & IN_Q_OVERFLOW) != 0 || is_new_folder(*event)) {
                look_anew = true;
            } else if (event->wd != m_above && name_in(*event).starts_with(k_device_prefix)) {
                found.push_back(m_path + "/" + std::string(name_in(*event)));
            }
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
    if (!look_anew) {
        return found;
    }
    watch();
    return devices();
}

screen_size size_of_framebuffer(const std::string &path) {
    const owned_fd fd = opened(path, O_RDONLY);
    fb_var_screeninfo shown{};
    if (ioctl(fd.get(), FBIOGET_VSCREENINFO, &shown) == -1) {
        throw failure(system_reason(path + " is no framebuffer"));
    }
    return {static_cast<int>(shown.xres), static_cast<int>(shown.yres)};
}

} // namespace ux::inputd
