/* SPDX-License-Identifier: MIT */
/*
 * Memory that runs out anywhere in a picture's way: in the library, in libpng, zlib and libjpeg, in
 * the C library's files. The program's own malloc stands before the C library's for all of them.
 */
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>
#include <malloc.h>

#include "tests/graphics/picture_bytes.h"
#include "ux_bitmap.h"

namespace {

std::atomic<long> s_live;     /* blocks given out and not freed */
std::atomic<long> s_bytes;    /* in them */
std::atomic<long> s_peak;     /* the most of these since it was last set */
thread_local long s_asked;    /* allocations of this thread since the last arming */
thread_local long s_fails_at; /* the one that fails; 0 = none */

bool fails() {
    if (++s_asked != s_fails_at)
        return false;
    errno = ENOMEM;
    return true;
}

void change_bytes(long change) {
    s_bytes += change;
    s_peak = std::max<long>(s_peak, s_bytes);
}

long bytes_of(void *block) {
    return static_cast<long>(malloc_usable_size(block));
}

void *counted(void *block) {
    s_live += block != nullptr;
    change_bytes(bytes_of(block));
    return block;
}

} // namespace

extern "C" {

void *__libc_malloc(size_t);
void *__libc_calloc(size_t, size_t);
void *__libc_realloc(void *, size_t);
void __libc_free(void *);

void *malloc(size_t bytes) {
    return fails() ? nullptr : counted(__libc_malloc(bytes));
}

void *calloc(size_t count, size_t bytes) {
    return fails() ? nullptr : counted(__libc_calloc(count, bytes));
}

void *realloc(void *old, size_t bytes) {
    if (fails())
        return nullptr;
    const long old_bytes = bytes_of(old);
    void *moved = __libc_realloc(old, bytes);
    if (moved || bytes == 0)
        change_bytes(bytes_of(moved) - old_bytes);
    s_live += (moved != nullptr) - (old != nullptr && (moved != nullptr || bytes == 0));
    return moved;
}

void free(void *block) {
    s_live -= block != nullptr;
    change_bytes(-bytes_of(block));
    __libc_free(block);
}

} // extern "C"

namespace {

constexpr int k_side = 12;

long open_files() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

class picture_memory_test : public testing::Test {
  protected:
    picture_memory_test() {
        char name[] = "/tmp/ux-memory-XXXXXX";
        folder_ = mkdtemp(name);
        main_screen = {};
        main_screen.width = main_screen.height = k_side;
        main_screen.color_mode = UX_COLOR_MODE_ARGB8888;
        main_screen.bytes_per_pixel = 4;
    }
    ~picture_memory_test() override {
        std::filesystem::remove_all(folder_);
        main_screen = {};
    }

    /* The path of a file with these bytes. */
    std::string write(const std::string &name, const std::string &bytes) const {
        const std::string path = folder_ + "/" + name;
        FILE *file = fopen(path.c_str(), "wb");
        fwrite(bytes.data(), 1, bytes.size(), file);
        fclose(file);
        return path;
    }

    /* Lets allocation 1, 2, 3 ... of `action` fail until it needs no more; each time all that it
     * took is given back. Returns how many there are. */
    template <class Action>
    static long walk(Action action) {
        long n = 0;
        bool failed = true;
        while (failed) {
            const long open = open_files();
            testing::internal::CaptureStdout();
            testing::internal::CaptureStderr();
            const long live = s_live;
            s_asked = 0;
            s_fails_at = ++n;
            action();
            failed = s_asked >= n;
            s_fails_at = 0;
            const long live_after = s_live;
            testing::internal::GetCapturedStdout();
            testing::internal::GetCapturedStderr();
            EXPECT_EQ(live_after, live) << "blocks kept after allocation " << n;
            EXPECT_EQ(open_files(), open) << "files kept open after allocation " << n;
        }
        return n - 1;
    }

    /* Of ways to read a picture: at its own size, scaled down, scaled up. */
    void walk_all_sizes(const std::string &path, uint32_t side) {
        for (uint32_t wanted : {side, side / 2, side * 2}) {
            int shown = 0;
            const long allocations = walk([&] {
                const int size = static_cast<int>(wanted);
                void *block = ux_load_image(path.c_str(), size, size);
                shown += block != nullptr;
                free(block);
            });
            EXPECT_GT(allocations, 5) << "the decoder's own are among them";
            EXPECT_GT(shown, 0) << "the last round goes well";
        }
    }

    /* The most memory that loading takes at a time, without the block of `width` x `height`. */
    static long peak_beside_block(const std::string &path, int width, int height) {
        const long before = s_bytes;
        s_peak = before;
        void *block = ux_load_image(path.c_str(), width, height);
        EXPECT_NE(block, nullptr);
        const long peak = s_peak - before - (block ? bytes_of(block) : 0);
        free(block);
        return peak;
    }

  private:
    std::string folder_;
};

constexpr int k_full_width = 1920;
constexpr int k_full_height = 1080;
constexpr int k_screen_width = 1280;
constexpr int k_screen_height = 720;
constexpr long k_row_bytes = 4L * k_full_width;

} // namespace

TEST_F(picture_memory_test, the_decoders_allocations_are_counted) {
    /* libpng's structure and zlib's windows are more than the library's own three. */
    const std::string path = write("a.png", picture_bytes::png(k_side, k_side));
    s_asked = 0;
    RMBitmapFile file;
    ASSERT_EQ(RMOpenBitmapFile(path.c_str(), &file, nullptr), UX_BITMAP_SUCCESS);
    EXPECT_GT(s_asked, 5);
    RMCloseBitmapFile(&file);
}

TEST_F(picture_memory_test, any_allocation_of_a_png_may_fail) {
    walk_all_sizes(write("a.png", picture_bytes::png(k_side, k_side)), k_side);
}

TEST_F(picture_memory_test, any_allocation_of_an_interlaced_png_may_fail) {
    walk_all_sizes(write("a.png", picture_bytes::png(k_side, k_side, true)), k_side);
}

TEST_F(picture_memory_test, any_allocation_of_a_jpeg_may_fail) {
    walk_all_sizes(write("a.jpg", picture_bytes::jpeg(k_side, k_side)), k_side);
}

TEST_F(picture_memory_test, any_allocation_of_a_progressive_jpeg_may_fail) {
    walk_all_sizes(write("a.jpg", picture_bytes::jpeg(k_side, k_side, true)), k_side);
}

TEST_F(picture_memory_test, any_allocation_of_a_drawn_picture_may_fail) {
    std::array<uint32_t, k_side * k_side> screen{};
    main_screen.buf = main_screen.fb = reinterpret_cast<uint8_t *>(screen.data());
    const std::string path = write("a.png", picture_bytes::png(k_side, k_side));
    walk([&] { EXPECT_EQ(ux_draw_image(path.c_str(), 0, 0, k_side, k_side, 0), 0); });
    EXPECT_NE(screen[0], 0u);
}

TEST_F(picture_memory_test, a_handle_is_closed_after_any_failure) {
    std::array<uint8_t, size_t{4} * k_side * k_side> pixels{};
    for (const std::string &path : {write("a.png", picture_bytes::png(k_side, k_side)),
                                    write("a.jpg", picture_bytes::jpeg(k_side, k_side))}) {
        const RMBitmapOptions options = {255, 5, 7};
        walk([&] {
            RMBitmapFile file;
            const int opened = RMOpenBitmapFile(path.c_str(), &file, &options);
            EXPECT_TRUE(opened == UX_BITMAP_SUCCESS || opened == UX_BITMAP_FAILURE);
            if (opened != UX_BITMAP_SUCCESS)
                return;
            const int read = RMBitmapToRaw(pixels.data(), &file);
            EXPECT_TRUE(read == UX_BITMAP_SUCCESS || read == UX_BITMAP_FAILURE);
            EXPECT_EQ(RMCloseBitmapFile(&file), UX_BITMAP_SUCCESS);
        });
    }
}

/* Most of it are the samples of 16 rows with their neighbours, in three components, and tables:
 * 102 kB were measured. */
TEST_F(picture_memory_test, a_jpeg_takes_a_few_rows_beside_its_block) {
    const std::string path = write("a.jpg", picture_bytes::jpeg(k_full_width, k_full_height));
    EXPECT_LE(peak_beside_block(path, k_full_width, k_full_height), 16 * k_row_bytes);
    EXPECT_LE(peak_beside_block(path, k_screen_width, k_screen_height), 16 * k_row_bytes);
    EXPECT_LE(peak_beside_block(path, 2 * k_full_width, 16), 16 * k_row_bytes);
}

/* A few rows, zlib's window and buffers: 78 kB were measured. */
TEST_F(picture_memory_test, a_png_takes_a_few_rows_beside_its_block) {
    for (const bool interlaced : {false, true}) {
        const std::string path =
            write("a.png", picture_bytes::png(k_full_width, k_full_height, interlaced));
        EXPECT_LE(peak_beside_block(path, k_full_width, k_full_height), 16 * k_row_bytes);
        EXPECT_LE(peak_beside_block(path, k_screen_width, k_screen_height), 16 * k_row_bytes);
        EXPECT_LE(peak_beside_block(path, 16, 2 * k_full_height), 16 * k_row_bytes);
    }
}

/* A row has 4 MB, as libpng gives it: a few of them are held, whatever the block's height. */
TEST_F(picture_memory_test, an_interlaced_png_that_claims_to_be_huge_takes_a_few_rows) {
    constexpr uint32_t side = 1000000;
    const std::string path =
        write("a.png", picture_bytes::with_png_size(picture_bytes::png(20, 20, true), side, side));
    EXPECT_LE(peak_beside_block(path, 64, 720), 8L * 4 * side);
}

/* Each of the texts is a few kilobytes in the file. */
TEST_F(picture_memory_test, texts_in_a_png_are_left_out) {
    const std::string path =
        write("a.png", picture_bytes::png_with_texts(k_side, k_side, 16, 4 << 20));
    EXPECT_LE(peak_beside_block(path, k_side, k_side), 1 << 20);
}

/* Its coefficients would be 25 GB. */
TEST_F(picture_memory_test, a_progressive_jpeg_that_claims_to_be_huge_is_refused_without_memory) {
    const std::string path =
        write("a.jpg", picture_bytes::with_jpeg_size(picture_bytes::jpeg(k_side, k_side, true),
                                                     65500, 65500));
    const long before = s_bytes;
    s_peak = before;
    RMBitmapFile file;
    EXPECT_EQ(RMOpenBitmapFile(path.c_str(), &file, nullptr), UX_BITMAP_FAILURE);
    EXPECT_LE(s_peak - before, 256L << 20);
}

/* 2 bytes for each of the coefficients of three components without subsampling: 240 MB, and 288 MB
 * for 48 megapixels. */
TEST_F(picture_memory_test, a_progressive_jpeg_of_40_megapixels_opens_and_one_of_48_does_not) {
    std::string bytes = picture_bytes::jpeg(k_side, k_side, true);
    constexpr size_t k_luma_samples = 6; /* behind the size: three components, the first one's */
    bytes[picture_bytes::jpeg_size_at(bytes) + k_luma_samples] = 0x11;
    const std::string path = write("a.jpg", picture_bytes::with_jpeg_size(bytes, 8000, 5000));
    RMBitmapFile file;
    const long before = s_bytes;
    ASSERT_EQ(RMOpenBitmapFile(path.c_str(), &file, nullptr), UX_BITMAP_SUCCESS);
    EXPECT_GE(s_bytes - before, 240000000);
    EXPECT_EQ(file.jpeg.src_width, 8000u);
    EXPECT_EQ(RMCloseBitmapFile(&file), UX_BITMAP_SUCCESS);
    const std::string larger = write("b.jpg", picture_bytes::with_jpeg_size(bytes, 8000, 6000));
    EXPECT_EQ(RMOpenBitmapFile(larger.c_str(), &file, nullptr), UX_BITMAP_FAILURE);
}
