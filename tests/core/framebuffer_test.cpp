// SPDX-License-Identifier: MIT
// Opening and closing the framebuffer: every step that can fail, the messages and their streams,
// the alignment fix, what is mapped, unmapped and freed.

#include "tests/support/screen_test.h"

#include "core/uxWidget.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <linux/fb.h>
#include <sys/mman.h>
#include <unistd.h>

extern "C" {
int __real_open(const char *, int, ...);
int __real_close(int);
int __real_ioctl(int, unsigned long, void *);
}

namespace {

constexpr int k_descriptor = 7654;
constexpr size_t k_page = 4096;
constexpr const char *k_font_trace = "open font *****************\n"; // all that goes to stdout

// A framebuffer device made of ordinary memory.
struct fake_device {
    bool opens = true;
    bool tells_fixed = true;
    bool tells_variable = true;
    bool maps = true;
    unsigned long smem_start = 0;
    fb_var_screeninfo info = {};
    std::vector<uint8_t> memory = std::vector<uint8_t>(5 * k_page, 0xCC);

    int open_flags = 0;
    int opens_seen = 0;
    int closes_seen = 0;
    size_t mapped_bytes = 0;
    int protection = 0;
    int map_flags = 0;
    long map_offset = -1;
    void *unmapped_base = nullptr;
    size_t unmapped_bytes = 0;
    int unmaps_seen = 0;

    int answer(unsigned long request, void *argument) {
        errno = EIO;
        if (request == FBIOGET_FSCREENINFO && tells_fixed) {
            static_cast<fb_fix_screeninfo *>(argument)->smem_start = smem_start;
            return 0;
        }
        if (request == FBIOGET_VSCREENINFO && tells_variable) {
            *static_cast<fb_var_screeninfo *>(argument) = info;
            return 0;
        }
        return -1;
    }
};

class FramebufferTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        main_screen = {};
        set_format(32, 16, 8);
        device.info.xres = 20;
        device.info.yres = 10;
        plug_in();
    }

    void TearDown() override {
        ux_system_close();
        ScreenTest::TearDown();
    }

    void set_format(uint32_t bits, uint32_t red_offset, uint32_t red_length) {
        device.info.bits_per_pixel = bits;
        device.info.red.offset = red_offset;
        device.info.red.length = red_length;
    }

    // Other files and descriptors stay with the real calls: capturing the output needs them.
    void plug_in() {
        hooks::get().open = [this](const char *path, int flags) {
            if (strcmp(path, "/dev/fb0") != 0)
                return __real_open(path, flags, 0600);
            device.open_flags = flags;
            device.opens_seen++;
            return device.opens ? k_descriptor : -1;
        };
        hooks::get().close = [this](int descriptor) {
            if (descriptor != k_descriptor)
                return __real_close(descriptor);
            device.closes_seen++;
            return 0;
        };
        hooks::get().ioctl = [this](int descriptor, unsigned long request, void *argument) {
            return descriptor == k_descriptor ? device.answer(request, argument)
                                              : __real_ioctl(descriptor, request, argument);
        };
        hooks::get().mmap = [this](void *, size_t bytes, int protection, int flags, int descriptor,
                                   off_t offset) -> void * {
            EXPECT_EQ(descriptor, k_descriptor);
            device.mapped_bytes = bytes;
            device.protection = protection;
            device.map_flags = flags;
            device.map_offset = offset;
            return device.maps ? device.memory.data() : MAP_FAILED;
        };
        hooks::get().munmap = [this](void *base, size_t bytes) {
            device.unmapped_base = base;
            device.unmapped_bytes = bytes;
            device.unmaps_seen++;
            return 0;
        };
    }

    // Initialises and returns what went to stdout and stderr.
    void init() {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        EXPECT_EQ(ux_system_init(), 0);
        err = testing::internal::GetCapturedStderr();
        out = testing::internal::GetCapturedStdout();
    }

    void init_failing_allocation(long n) {
        fake_chip::get().record_calls = false; // which allocates too
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        hooks::fail_allocation(n);
        EXPECT_EQ(ux_system_init(), 0);
        err = testing::internal::GetCapturedStderr();
        out = testing::internal::GetCapturedStdout();
    }

    // A screen of no size, with the font open and page 0 made all the same.
    void expect_failed_screen() {
        EXPECT_EQ(main_screen.width, 0);
        EXPECT_EQ(main_screen.height, 0);
        EXPECT_EQ(main_screen.color_mode, 0);
        EXPECT_EQ(main_screen.buf, nullptr);
        EXPECT_EQ(main_screen.fb, nullptr);
        EXPECT_EQ(out, k_font_trace);
        EXPECT_EQ(device.mapped_bytes, 0u);
        expect_font_and_page();
        EXPECT_EQ(main_screen.pages[0]->container.obj.width, 0);
        EXPECT_EQ(main_screen.pages[0]->container.obj.height, 0);
        EXPECT_EQ(ux::fb_handle, -1);
    }

    void expect_font_and_page() {
        const auto &calls = fake_chip::get().calls;
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "RMTTOpenFont"), 1);
        EXPECT_EQ(main_screen.page_count, 1);
        EXPECT_EQ(main_screen.current_page, 0);
        ASSERT_NE(main_screen.pages[0], nullptr);
    }

    fake_device device;
    std::string out;
    std::string err;
};

} // namespace

TEST_F(FramebufferTest, screen_is_filled_from_the_device) {
    main_screen.rotation = 3;
    main_screen.page_count = 9;
    main_screen.alpha_plane = main_screen.fb;
    init();
    EXPECT_EQ(main_screen.width, 20);
    EXPECT_EQ(main_screen.height, 10);
    EXPECT_EQ(main_screen.xres, 20);
    EXPECT_EQ(main_screen.yres, 10);
    EXPECT_EQ(main_screen.bytes_per_pixel, 4);
    EXPECT_EQ(main_screen.rotation, 0);
    EXPECT_EQ(main_screen.color_mode, 1);
    EXPECT_EQ(main_screen.fb, device.memory.data());
    EXPECT_EQ(main_screen.buf, main_screen.fb);
    EXPECT_EQ(main_screen.alpha_plane, nullptr);
    EXPECT_EQ(ux::display_size, 800u);
    EXPECT_EQ(ux::fb_handle, k_descriptor);
    expect_font_and_page();
    EXPECT_EQ(main_screen.pages[0]->container.obj.width, 20);
    EXPECT_EQ(out, k_font_trace);
    EXPECT_EQ(err, "");
}

TEST_F(FramebufferTest, one_page_more_than_the_screen_is_mapped_shared) {
    init();
    EXPECT_EQ(device.open_flags & O_ACCMODE, O_RDWR);
    EXPECT_EQ(device.mapped_bytes, k_page + 800);
    EXPECT_EQ(device.protection, PROT_READ | PROT_WRITE);
    EXPECT_EQ(device.map_flags, MAP_SHARED);
    EXPECT_EQ(device.map_offset, 0);
}

TEST_F(FramebufferTest, screens_bytes_are_cleared_and_no_more) {
    init();
    EXPECT_EQ(device.memory[0], 0);
    EXPECT_EQ(device.memory[799], 0);
    EXPECT_EQ(device.memory[800], 0xCC);
}

TEST_F(FramebufferTest, device_that_does_not_open_is_reported) {
    device.opens = false;
    init();
    EXPECT_EQ(err, "Can not open /dev/fb0\n");
    expect_failed_screen();
}

TEST_F(FramebufferTest, failed_fixed_query_is_reported) {
    device.tells_fixed = false;
    init();
    EXPECT_EQ(err, "Error reading fb fixed information.\n");
    expect_failed_screen();
    EXPECT_EQ(device.closes_seen, 1);
}

TEST_F(FramebufferTest, failed_variable_query_is_reported) {
    device.tells_variable = false;
    init();
    EXPECT_EQ(err, "Error reading fb variable information.\n");
    expect_failed_screen();
    EXPECT_EQ(device.closes_seen, 1);
}

// The message goes to standard output and has no line end.
TEST_F(FramebufferTest, failed_mapping_ends_the_process_with_status_1) {
    device.maps = false;
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            ux_system_init();
        },
        ::testing::ExitedWithCode(1), "^error mapping fb$");
    EXPECT_EXIT(
        {
            dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
            ux_system_init();
        },
        ::testing::ExitedWithCode(1), "^$");
}

TEST_F(FramebufferTest, mapping_at_address_0_is_reported) {
    hooks::get().mmap = [](void *, size_t, int, int, int, off_t) -> void * { return nullptr; };
    init();
    EXPECT_EQ(err, "Can not allocate main_screen.fb\n");
    EXPECT_EQ(out, k_font_trace);
    EXPECT_EQ(main_screen.width, 20);
}

TEST_F(FramebufferTest, unaligned_device_moves_the_screen_into_the_first_page) {
    device.smem_start = 0xE0000000 + 0x124;
    init();
    EXPECT_EQ(main_screen.fb, device.memory.data() + 0x124);
    EXPECT_EQ(main_screen.buf, main_screen.fb);
    char expected[100];
    snprintf(expected, sizeof expected, "Fix alignment 0xe0000124 -> %p.\n",
             static_cast<void *>(device.memory.data() + 0x124));
    EXPECT_EQ(err, expected);
    EXPECT_EQ(out, k_font_trace);
    EXPECT_EQ(device.memory[0x123], 0xCC);
    EXPECT_EQ(device.memory[0x124], 0);
    EXPECT_EQ(device.memory[0x124 + 799], 0);
    EXPECT_EQ(device.memory[0x124 + 800], 0xCC);
}

TEST_F(FramebufferTest, close_unmaps_the_unadjusted_base) {
    device.smem_start = 0x124;
    init();
    EXPECT_EQ(ux_system_close(), 0);
    EXPECT_EQ(device.unmaps_seen, 1);
    EXPECT_EQ(device.unmapped_base, device.memory.data());
    EXPECT_EQ(device.unmapped_bytes, k_page + 800);
    EXPECT_EQ(device.closes_seen, 1);
    EXPECT_EQ(ux::fb_handle, -1);
    EXPECT_EQ(main_screen.buf, nullptr);
    EXPECT_EQ(main_screen.fb, nullptr);
}

TEST_F(FramebufferTest, second_close_does_nothing) {
    init();
    ux_system_close();
    fake_chip::get().calls.clear();
    EXPECT_EQ(ux_system_close(), 0);
    EXPECT_EQ(device.unmaps_seen, 1);
    EXPECT_EQ(device.closes_seen, 1);
    EXPECT_TRUE(fake_chip::get().calls.empty());
}

TEST_F(FramebufferTest, close_closes_the_font) {
    init();
    ux_system_close();
    const auto &calls = fake_chip::get().calls;
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "RMTTCloseFont 1"), 1);
}

TEST_F(FramebufferTest, close_after_a_failed_init_unmaps_nothing) {
    device.opens = false;
    init();
    EXPECT_EQ(ux_system_close(), 0);
    EXPECT_EQ(device.unmaps_seen, 0);
    EXPECT_EQ(device.closes_seen, 0);
}

// The sanitized build sees a buffer that is not freed.
TEST_F(FramebufferTest, drawing_buffer_of_the_host_is_freed_and_the_device_unmapped) {
    init();
    main_screen.buf = static_cast<uint8_t *>(malloc(800));
    ux_system_close();
    EXPECT_EQ(device.unmapped_base, device.memory.data());
    EXPECT_EQ(main_screen.buf, nullptr);
}

TEST_F(FramebufferTest, drawing_buffer_inside_the_device_is_not_freed) {
    device.smem_start = 0x124;
    init();
    main_screen.buf = device.memory.data();
    ux_system_close();
    EXPECT_EQ(device.unmaps_seen, 1);
}

TEST_F(FramebufferTest, second_init_gives_the_first_screen_back) {
    init();
    free(main_screen.pages[0]);
    init();
    EXPECT_EQ(device.opens_seen, 2);
    EXPECT_EQ(device.unmaps_seen, 1);
    EXPECT_EQ(device.closes_seen, 1);
    EXPECT_EQ(main_screen.page_count, 1);
    EXPECT_EQ(main_screen.buf, device.memory.data());
}

TEST_F(FramebufferTest, second_init_closes_the_font_before_it_opens_it_again) {
    init();
    free(main_screen.pages[0]);
    auto &calls = fake_chip::get().calls;
    calls.clear();
    init();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "RMTTCloseFont 1"), 1);
    const auto closed = std::find(calls.begin(), calls.end(), "RMTTCloseFont 1");
    EXPECT_LT(closed, std::find_if(calls.begin(), calls.end(), [](const std::string &call) {
                  return call.rfind("RUACreateInstance", 0) == 0;
              }));
}

TEST_F(FramebufferTest, red_at_11_of_length_5_is_rgb565_without_a_warning) {
    set_format(16, 11, 5);
    init();
    EXPECT_EQ(main_screen.color_mode, 3);
    EXPECT_EQ(main_screen.bytes_per_pixel, 2);
    EXPECT_EQ(err, "");
}

TEST_F(FramebufferTest, other_formats_are_warned_of_and_taken_for_argb8888) {
    const uint32_t fields[][2] = {{11, 6}, {10, 5}, {16, 5}, {11, 8}, {0, 8}, {24, 8}, {16, 6}};
    for (const auto &[offset, length] : fields) {
        set_format(16, offset, length);
        init();
        EXPECT_EQ(main_screen.color_mode, 1);
        EXPECT_EQ(err, "Warning: Color mode is using the default value: ARGB8888\n")
            << offset << ", " << length;
        EXPECT_EQ(out, k_font_trace);
        ux_system_close();
        free(main_screen.pages[0]);
    }
    main_screen.page_count = 0;
}

TEST_F(FramebufferTest, depth_does_not_choose_the_color_mode) {
    set_format(32, 11, 5);
    init();
    EXPECT_EQ(main_screen.color_mode, 3);
    EXPECT_EQ(main_screen.bytes_per_pixel, 4);
    EXPECT_EQ(err, "");
    free(main_screen.pages[0]);
    set_format(24, 16, 8);
    init();
    EXPECT_EQ(main_screen.color_mode, 1);
    EXPECT_EQ(main_screen.bytes_per_pixel, 3);
    EXPECT_EQ(err, "");
    EXPECT_EQ(ux::display_size, 600u);
}

TEST_F(FramebufferTest, bits_that_fill_no_byte_are_cut) {
    set_format(15, 10, 5);
    init();
    EXPECT_EQ(main_screen.bytes_per_pixel, 1);
}

TEST_F(FramebufferTest, failed_page_allocation_leaves_no_current_page) {
    init_failing_allocation(1);
    EXPECT_EQ(err, "Error: [0] Not enough memory space for page!\n\n");
    EXPECT_EQ(ux_current_page(), nullptr);
    EXPECT_EQ(ux_screen_show_all(), 0);
}
