// SPDX-License-Identifier: MIT
// Pixels to colours, and noticing change.
#include "sim/screen.h"

#include <gtest/gtest.h>

#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace ux::sim;

template <class Word>
std::vector<uint8_t> rgb_of(pixel_format format, std::vector<Word> words) {
    screen_shape shape{static_cast<int>(words.size()), 1, format};
    return picture_as_rgb(shape, std::as_bytes(std::span(words)));
}

TEST(screen, argb8888_gives_its_bytes_and_drops_alpha) {
    EXPECT_EQ(rgb_of<uint32_t>(pixel_format::argb8888, {0x00123456, 0xff00ff01}),
              (std::vector<uint8_t>{0x12, 0x34, 0x56, 0x00, 0xff, 0x01}));
}

TEST(screen, rgb565_is_widened_by_repeating_the_top_bits) {
    EXPECT_EQ(rgb_of<uint16_t>(pixel_format::rgb565, {0xffff, 0x0000, 0xf800, 0x07e0, 0x001f}),
              (std::vector<uint8_t>{255, 255, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255}));
    // 10000 100001 00011: 16 -> 132, 33 -> 134, 3 -> 24
    EXPECT_EQ(rgb_of<uint16_t>(pixel_format::rgb565, {0x8423}),
              (std::vector<uint8_t>{132, 134, 24}));
}

// What a host sees of the memory.
class host_view {
  public:
    explicit host_view(const shared_screen &screen)
        : m_fd(open(screen.path().c_str(), O_RDWR)), m_bytes(screen.shape().bytes()) {
        m_memory = static_cast<uint8_t *>(
            mmap(nullptr, m_bytes, PROT_READ | PROT_WRITE, MAP_SHARED, m_fd, 0));
    }
    ~host_view() {
        munmap(m_memory, m_bytes);
        close(m_fd);
    }
    int fd() const { return m_fd; }
    uint8_t &operator[](size_t at) { return m_memory[at]; }

  private:
    int m_fd;
    size_t m_bytes;
    uint8_t *m_memory;
};

TEST(screen, the_watch_tells_the_first_and_last_changed_row) {
    shared_screen screen({8, 100, pixel_format::argb8888});
    const steady::time_point start{};
    screen_watch watch(screen, start);
    EXPECT_EQ(watch.look(start).count, 0);
    EXPECT_FALSE(watch.ever_changed());

    host_view host(screen);
    host[20 * 32 + 31] = 1;
    host[29 * 32] = 1;
    const auto later = start + std::chrono::seconds(1);
    row_range changed = watch.look(later);
    EXPECT_EQ(changed.first, 20);
    EXPECT_EQ(changed.count, 10);
    EXPECT_TRUE(watch.ever_changed());
    EXPECT_EQ(watch.last_change(), later);

    EXPECT_EQ(watch.look(later + std::chrono::seconds(1)).count, 0);
    EXPECT_EQ(watch.last_change(), later);
}

TEST(screen, the_host_cannot_change_the_memory_s_size) {
    shared_screen screen({8, 8, pixel_format::argb8888});
    host_view host(screen);
    EXPECT_EQ(ftruncate(host.fd(), 0), -1);
    EXPECT_EQ(errno, EPERM);
}

TEST(screen, the_memory_holds_one_page_more_than_the_picture) {
    shared_screen screen({1280, 720, pixel_format::rgb565});
    host_view host(screen);
    EXPECT_GE(lseek(host.fd(), 0, SEEK_END), 1280 * 720 * 2 + sysconf(_SC_PAGESIZE));
}

} // namespace
