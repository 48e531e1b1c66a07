// SPDX-License-Identifier: MIT
// Mapping a screen's memory for reading, after its shape has been checked against its size.
#include "tools/view_source.h"

#include "sim/failure.h"
#include "sim/input_queue.h"
#include "sim/screen_note.h"
#include "tools/owned_fd.h"

#include <cerrno>

#include <fcntl.h>
#include <linux/fb.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ux::view {

using sim::failure;
using sim::system_reason;

namespace {

int open_for_reading(const std::string &path) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd == -1) {
        throw failure(system_reason("cannot open " + path));
    }
    return fd;
}

class read_mapping {
  public:
    read_mapping(const std::string &path, int fd, size_t bytes)
        : m_bytes(bytes), m_data(mmap(nullptr, bytes, PROT_READ, MAP_SHARED, fd, 0)) {
        if (m_data == MAP_FAILED) {
            throw failure(system_reason("cannot map " + path));
        }
    }
    read_mapping(const read_mapping &) = delete;
    read_mapping &operator=(const read_mapping &) = delete;
    ~read_mapping() { munmap(m_data, m_bytes); }
    const std::byte *at(size_t offset) const {
        return static_cast<const std::byte *>(m_data) + offset;
    }

  private:
    size_t m_bytes;
    void *m_data;
};

frame_layout layout_of(const sim::screen_shape &shape) {
    frame_layout layout = {.width = shape.width,
                           .height = shape.height,
                           .bits_per_pixel = shape.bytes_per_pixel() * 8,
                           .pitch_bytes = shape.row_bytes(),
                           .red = {16, 8},
                           .green = {8, 8},
                           .blue = {0, 8}};
    if (shape.format == sim::pixel_format::rgb565) {
        layout.red = {11, 5};
        layout.green = {5, 6};
        layout.blue = {0, 5};
    }
    return layout;
}

// The simulator seals its memory against shrinking; other memory could be cut off under a reader.
size_t sealed_bytes(const std::string &path, int fd, size_t wanted) {
    struct stat file {};
    const int seals = fcntl(fd, F_GET_SEALS);
    if (fstat(fd, &file) != 0 || seals == -1 || (seals & F_SEAL_SHRINK) == 0 ||
        static_cast<size_t>(file.st_size) < wanted) {
        throw failure(path + " is not the memory of a screen of this size");
    }
    return wanted;
}

class simulator_source : public frame_source {
  public:
    explicit simulator_source(const std::string &folder)
        : m_note(sim::read_screen_note(folder)), m_layout(layout_of(m_note.shape)),
          m_process(static_cast<int>(syscall(SYS_pidfd_open, m_note.process, 0))) {
        if (m_process.get() == -1) {
            throw failure("the simulator of " + folder + " has ended");
        }
        const sim::owned_fd memory(open_for_reading(m_note.memory));
        const size_t bytes = sealed_bytes(m_note.memory, memory.get(), m_note.shape.bytes());
        m_mapping = std::make_unique<read_mapping>(m_note.memory, memory.get(), bytes);
    }

    const frame_layout &layout() const override { return m_layout; }
    const std::byte *rows() override {
        check();
        return m_mapping->at(0);
    }
    void check() override {
        pollfd process = {.fd = m_process.get(), .events = POLLIN, .revents = 0};
        if (poll(&process, 1, 0) == 1) {
            throw failure("the simulator has ended");
        }
    }
    std::string queue_path() const override { return m_note.queue_path; }

  private:
    sim::screen_note m_note;
    frame_layout m_layout;
    sim::owned_fd m_process; // readable once the simulator has ended
    std::unique_ptr<read_mapping> m_mapping;
};

channel channel_of(const fb_bitfield &field) {
    return {.shift = static_cast<int>(field.offset), .bits = static_cast<int>(field.length)};
}

bool fits(const fb_bitfield &field, uint32_t bits_per_pixel) {
    return field.msb_right == 0 && field.length >= 1 && field.length <= 8 &&
           field.offset <= bits_per_pixel - field.length;
}

bool is_usable(const fb_fix_screeninfo &fixed, const fb_var_screeninfo &mode) {
    return fixed.type == FB_TYPE_PACKED_PIXELS &&
           (fixed.visual == FB_VISUAL_TRUECOLOR || fixed.visual == FB_VISUAL_DIRECTCOLOR) &&
           (mode.bits_per_pixel == 16 || mode.bits_per_pixel == 32) &&
           fits(mode.red, mode.bits_per_pixel) && fits(mode.green, mode.bits_per_pixel) &&
           fits(mode.blue, mode.bits_per_pixel);
}

class device_source : public frame_source {
  public:
    explicit device_source(const std::string &path) : m_path(path), m_fd(open_for_reading(path)) {
        fb_fix_screeninfo fixed{};
        const fb_var_screeninfo mode = read_mode();
        if (ioctl(m_fd.get(), FBIOGET_FSCREENINFO, &fixed) != 0) {
            throw failure(system_reason(m_path + " does not tell its memory's layout"));
        }
        if (!is_usable(fixed, mode)) {
            throw failure(m_path + " shows neither 16 nor 32 bits per pixel in true colour");
        }
        m_layout = {.width = static_cast<int>(mode.xres),
                    .height = static_cast<int>(mode.yres),
                    .bits_per_pixel = static_cast<int>(mode.bits_per_pixel),
                    .pitch_bytes = fixed.line_length,
                    .red = channel_of(mode.red),
                    .green = channel_of(mode.green),
                    .blue = channel_of(mode.blue)};
        // A mapping begins at a page, the memory perhaps behind its beginning.
        m_start = fixed.smem_start % static_cast<size_t>(sysconf(_SC_PAGESIZE));
        m_bytes = fixed.smem_len;
        offset_of(mode);
        m_mapping = std::make_unique<read_mapping>(m_path, m_fd.get(), m_start + m_bytes);
    }

    const frame_layout &layout() const override { return m_layout; }
    const std::byte *rows() override { return m_mapping->at(m_start + offset_of(read_mode())); }
    void check() override { offset_of(read_mode()); }
    std::string queue_path() const override { return sim::k_queue_default_path; }

  private:
    fb_var_screeninfo read_mode() const {
        fb_var_screeninfo mode{};
        if (ioctl(m_fd.get(), FBIOGET_VSCREENINFO, &mode) != 0) {
            throw failure(errno == ENOTTY || errno == EINVAL
                              ? m_path + " is no framebuffer device"
                              : system_reason("cannot ask " + m_path + " for its mode"));
        }
        return mode;
    }

    // Of the first shown pixel; programs may pan within a larger memory.
    size_t offset_of(const fb_var_screeninfo &mode) const {
        if (mode.xres != static_cast<uint32_t>(m_layout.width) ||
            mode.yres != static_cast<uint32_t>(m_layout.height) ||
            mode.bits_per_pixel != static_cast<uint32_t>(m_layout.bits_per_pixel)) {
            throw failure(m_path + " has changed its mode");
        }
        const size_t left = static_cast<size_t>(mode.xoffset) * mode.bits_per_pixel / 8;
        const size_t rows = static_cast<size_t>(mode.yoffset) + mode.yres;
        const bool sane = mode.xres >= 1 && mode.xres <= sim::k_largest_side && mode.yres >= 1 &&
                          mode.yres <= sim::k_largest_side;
        if (!sane || left + m_layout.row_bytes() > m_layout.pitch_bytes ||
            rows * m_layout.pitch_bytes > m_bytes) {
            throw failure(m_path + ": its size does not fit its memory");
        }
        return mode.yoffset * m_layout.pitch_bytes + left;
    }

    std::string m_path;
    sim::owned_fd m_fd;
    frame_layout m_layout;
    size_t m_start = 0; // of the memory in the mapping
    size_t m_bytes = 0; // of the memory
    std::unique_ptr<read_mapping> m_mapping;
};

} // namespace

std::unique_ptr<frame_source> open_source(const std::string &path) {
    struct stat file {};
    if (stat(path.c_str(), &file) == 0 && S_ISDIR(file.st_mode)) {
        return std::make_unique<simulator_source>(path);
    }
    return std::make_unique<device_source>(path);
}

} // namespace ux::view
