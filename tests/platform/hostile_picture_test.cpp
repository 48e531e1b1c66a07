/* SPDX-License-Identifier: MIT */
/*
 * Damaged and lying pictures, and servers of all manners, drawn through the whole of library,
 * decoders and platform: the failure is told, nothing outside the target changes, nothing stays
 * open, and the next picture comes.
 */
#include <filesystem>

#include "tests/graphics/picture_bytes.h"
#include "tests/platform/http_fixture.h"
#include "ux_bitmap.h"

namespace {

constexpr int k_width = 48;
constexpr int k_height = 32;
constexpr int k_x = 8;
constexpr int k_y = 6;
constexpr int k_side = 16; /* of the target */
constexpr uint32_t k_before = 0xFF123456;

struct drawn {
    bool is_changed = false; /* the target shows something new */
    std::string printed;     /* on standard output */

    bool operator==(const drawn &) const = default;
};

std::ostream &operator<<(std::ostream &out, const drawn &result) {
    return out << (result.is_changed ? "changed, " : "unchanged, ")
               << testing::PrintToString(result.printed);
}

std::string played(const std::string &path) {
    return "ADV Play PHOTO " + path + "\n";
}

/* Nothing is drawn, and it is told. */
drawn refused(const std::string &path) {
    return {false, played(path) + "RMOpenBitmapFile " + path + " FAIL on ux_load_image\n"};
}

/* Something is drawn, and there is nothing to tell. */
drawn shown(const std::string &path) {
    return {true, played(path)};
}

class hostile_picture_test : public http_fixture {
  protected:
    hostile_picture_test() {
        char name[] = "/tmp/ux-hostile-XXXXXX";
        folder_ = mkdtemp(name);
        main_screen = {};
        main_screen.width = main_screen.xres = k_width;
        main_screen.height = main_screen.yres = k_height;
        main_screen.color_mode = UX_COLOR_MODE_ARGB8888;
        main_screen.bytes_per_pixel = 4;
    }
    ~hostile_picture_test() override {
        std::filesystem::remove_all(folder_);
        main_screen = {};
    }

    /* Draws into the target in the middle of a screen; the rest of it, the memory around and the
     * number of open files must stay as they are. */
    drawn draw(const std::string &path) {
        std::vector<uint32_t> memory((k_height + 2) * k_width, k_before);
        main_screen.buf = main_screen.fb = reinterpret_cast<uint8_t *>(&memory[k_width]);
        const long open_before = open_files();
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr(); /* the decoders' complaints */
        EXPECT_EQ(ux_draw_image(path.c_str(), k_x, k_y, k_side, k_side, 0), 0);
        fflush(stdout);
        testing::internal::GetCapturedStderr();
        drawn result{false, testing::internal::GetCapturedStdout()};
        EXPECT_TRUE(comes_back_to(open_before)) << "something stayed open";
        int outside = 0;
        for (int i = 0; i < static_cast<int>(memory.size()); i++) {
            const int x = i % k_width;
            const int y = i / k_width - 1;
            const bool in_target = x >= k_x && x < k_x + k_side && y >= k_y && y < k_y + k_side;
            const bool is_changed = memory[static_cast<size_t>(i)] != k_before;
            result.is_changed |= in_target && is_changed;
            outside += !in_target && is_changed;
        }
        EXPECT_EQ(outside, 0) << "pixels outside the target were written";
        return result;
    }

    std::string write(const std::string &name, const std::string &bytes) const {
        const std::string path = folder_ + "/" + name;
        FILE *file = fopen(path.c_str(), "wb");
        fwrite(bytes.data(), 1, bytes.size(), file);
        fclose(file);
        return path;
    }

    /* Draws the picture at `name` of a server that answers so. */
    drawn draw_from(const http_server::answer &answer, const std::string &name,
                    std::string *url = nullptr) {
        const http_server server(answer);
        if (url)
            *url = server.url(name);
        return draw(server.url(name));
    }

    /* What a server brings that answers so is refused, as a PNG and as a JPEG. */
    void expect_refused(const http_server::answer &answer) {
        for (const char *name : {"/picture.png", "/picture.jpg"}) {
            std::string url;
            const drawn result = draw_from(answer, name, &url);
            EXPECT_EQ(result, refused(url));
        }
    }

    /* The server's end of a connection closes a moment after ours. */
    static bool comes_back_to(long count) {
        const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (open_files() != count && std::chrono::steady_clock::now() < give_up)
            std::this_thread::yield();
        return open_files() == count;
    }

    static long open_files() {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        return std::distance(begin(files), end(files));
    }

    const std::string png_ = picture_bytes::png(20, 20);
    /* Of several chunks: libpng wants a chunk whole before it shows a row. */
    const std::string long_png_ = picture_bytes::png(100, 100);
    const std::string jpeg_ = picture_bytes::jpeg(20, 20);

  private:
    std::string folder_;
};

http_server::answer sends(const std::string &bytes) {
    return [bytes](http_connection &client) { client.send(bytes); };
}

} // namespace

TEST_F(hostile_picture_test, good_pictures_are_shown_from_files_and_addresses) {
    for (const auto &[name, bytes] : {std::pair{"a.png", png_}, {"a.jpg", jpeg_}}) {
        const std::string path = write(name, bytes);
        EXPECT_EQ(draw(path), shown(path));
        std::string url;
        const drawn result = draw_from(sends(http_answer(bytes)), std::string("/") + name, &url);
        EXPECT_EQ(result, shown(url));
    }
}

TEST_F(hostile_picture_test, pictures_cut_in_their_header_are_refused) {
    for (size_t length : {0, 1, 7, 8, 20, 32, 40}) {
        const std::string path = write("cut.png", png_.substr(0, length));
        EXPECT_EQ(draw(path), refused(path)) << length;
    }
    for (size_t length : {0, 1, 2, 10, 20, 100}) {
        const std::string path = write("cut.jpg", jpeg_.substr(0, length));
        EXPECT_EQ(draw(path), refused(path)) << length;
    }
}

TEST_F(hostile_picture_test, pictures_cut_in_their_pixels_show_what_there_is) {
    const std::string png = write("cut.png", long_png_.substr(0, long_png_.size() * 2 / 3));
    EXPECT_EQ(draw(png), shown(png));
    const std::string jpeg = write("cut.jpg", jpeg_.substr(0, jpeg_.size() - 30));
    EXPECT_EQ(draw(jpeg), shown(jpeg));
}

TEST_F(hostile_picture_test, cuts_all_over_a_file_end_well) {
    for (const auto &[name, bytes] : {std::pair{"a.png", png_}, {"a.jpg", jpeg_}})
        for (size_t length = 0; length < bytes.size(); length += 7) {
            const std::string path = write(name, bytes.substr(0, length));
            const drawn result = draw(path);
            ASSERT_TRUE(result == refused(path) || result.printed == played(path)) << length;
        }
}

TEST_F(hostile_picture_test, damage_all_over_a_file_ends_well) {
    for (const auto &[name, bytes] : {std::pair{"a.png", png_}, {"a.jpg", jpeg_}})
        for (size_t at = 0; at < bytes.size(); at += 5) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(damaged[at] ^ 1 << at % 8);
            if (picture_bytes::claims_many_pixels(damaged))
                continue; /* has a test of its own */
            const std::string path = write(name, damaged);
            const drawn result = draw(path);
            ASSERT_TRUE(result == refused(path) || result.printed == played(path)) << at;
        }
}

TEST_F(hostile_picture_test, a_png_that_claims_to_be_larger_shows_its_rows_alone) {
    const std::string path = write("large.png", picture_bytes::with_png_size(png_, 20, 30000));
    const drawn result = draw(path);
    EXPECT_EQ(result.printed, played(path));
    const std::string none = write("huge.png", picture_bytes::with_png_size(png_, 900000, 900000));
    EXPECT_EQ(draw(none), (drawn{false, played(none)}));
}

TEST_F(hostile_picture_test, a_png_beyond_the_decoders_size_is_refused) {
    const std::string path =
        write("huge.png", picture_bytes::with_png_size(png_, 0x7FFFFFFF, 0x7FFFFFFF));
    EXPECT_EQ(draw(path), refused(path));
}

TEST_F(hostile_picture_test, a_picture_without_size_is_refused) {
    const std::string png = write("none.png", picture_bytes::with_png_size(png_, 0, 20));
    EXPECT_EQ(draw(png), refused(png));
    const std::string jpeg = write("none.jpg", picture_bytes::with_jpeg_size(jpeg_, 0, 20));
    EXPECT_EQ(draw(jpeg), refused(jpeg));
}

TEST_F(hostile_picture_test, a_jpeg_that_claims_to_be_larger_is_shown_and_does_not_hang) {
    const std::string path = write("large.jpg", picture_bytes::with_jpeg_size(jpeg_, 4000, 4000));
    EXPECT_EQ(draw(path), shown(path));
}

TEST_F(hostile_picture_test, a_progressive_jpeg_that_claims_more_than_memory_is_refused) {
    const std::string progressive = picture_bytes::jpeg(20, 20, true);
    const std::string path =
        write("huge.jpg", picture_bytes::with_jpeg_size(progressive, 65500, 65500));
    EXPECT_EQ(draw(path), refused(path));
}

/* Each takes a pass over the whole picture. */
TEST_F(hostile_picture_test, a_jpeg_of_a_few_scans_too_many_is_shown_and_of_hundreds_refused) {
    const std::string progressive = picture_bytes::jpeg(20, 20, true);
    const std::string few = write("few.jpg", picture_bytes::with_scan_repeated(progressive, 20));
    EXPECT_EQ(draw(few), shown(few));
    const std::string many = write("many.jpg", picture_bytes::with_scan_repeated(progressive, 300));
    EXPECT_EQ(draw(many), refused(many));
}

TEST_F(hostile_picture_test, pictures_of_the_other_kind_are_refused) {
    for (const auto &[name, bytes] : {std::pair{"a.jpg", png_}, {"a.png", jpeg_}}) {
        const std::string path = write(name, bytes);
        EXPECT_EQ(draw(path), refused(path));
        std::string url;
        const drawn result = draw_from(sends(http_answer(bytes)), std::string("/") + name, &url);
        EXPECT_EQ(result, refused(url));
    }
}

TEST_F(hostile_picture_test, what_is_no_file_is_refused) {
    const std::string folder = write("folder.png", "") + "/x.png";
    EXPECT_EQ(draw(folder), refused(folder));
    EXPECT_EQ(draw("/dev/zero.png"), refused("/dev/zero.png"));
}

TEST_F(hostile_picture_test, a_server_that_never_answers_is_given_up) {
    limit_time(300);
    expect_refused([](http_connection &client) { client.stall(); });
}

TEST_F(hostile_picture_test, a_server_that_stalls_in_the_header_of_a_picture_is_given_up) {
    limit_time(300);
    for (const auto &[name, bytes] : {std::pair{"/a.png", png_}, {"/a.jpg", jpeg_}}) {
        std::string url;
        const drawn result = draw_from(
            [&, &b = bytes](http_connection &client) {
                client.send(http_answer(b).substr(0, http_answer(b).size() - b.size() + 20));
                client.stall();
            },
            name, &url);
        EXPECT_EQ(result, refused(url));
    }
}

TEST_F(hostile_picture_test, a_server_that_stalls_in_the_pixels_shows_what_came) {
    limit_time(300);
    for (const auto &[name, bytes] : {std::pair{"/a.png", long_png_}, {"/a.jpg", jpeg_}}) {
        std::string url;
        const drawn result = draw_from(
            [&, &b = bytes](http_connection &client) {
                const std::string answer = http_answer(b);
                client.send(answer.substr(0, answer.size() - 40));
                client.stall();
            },
            name, &url);
        EXPECT_EQ(result, shown(url));
    }
}

TEST_F(hostile_picture_test, a_server_that_closes_early_is_as_a_cut_file) {
    for (const auto &[name, bytes] : {std::pair{"/a.png", long_png_}, {"/a.jpg", jpeg_}}) {
        const std::string answer = http_answer(bytes);
        const size_t head = answer.size() - bytes.size();
        std::string url;
        drawn result = draw_from(sends(answer.substr(0, head + 20)), name, &url);
        EXPECT_EQ(result, refused(url));
        result = draw_from(sends(answer.substr(0, answer.size() - 40)), name, &url);
        EXPECT_EQ(result, shown(url));
    }
}

TEST_F(hostile_picture_test, a_claim_of_4_gigabytes_is_refused) {
    expect_refused([&](http_connection &client) {
        client.send(http_head("200 OK", "Content-Length: 4294967296\r\n"));
        client.send_for_ever(png_);
    });
}

TEST_F(hostile_picture_test, bytes_for_ever_behind_a_picture_are_left_there) {
    for (const auto &[name, bytes] : {std::pair{"/a.png", png_}, {"/a.jpg", jpeg_}}) {
        std::string url;
        const drawn result = draw_from(
            [&b = bytes](http_connection &client) {
                client.send(http_head("200 OK") + b);
                client.send_for_ever(std::string(4096, '\0'));
            },
            name, &url);
        EXPECT_EQ(result, shown(url));
    }
}

TEST_F(hostile_picture_test, a_header_for_ever_ends_at_the_largest_size) {
    limit_size(1 << 20);
    std::string url;
    drawn result = draw_from(
        [&](http_connection &client) { /* a text of 2 GiB */
                                       client.send(http_head("200 OK") + png_.substr(0, 33) +
                                                   "\x7F\xFF\xFF\xFFtEXt");
                                       client.send_for_ever(std::string(4096, 'x'));
        },
        "/a.png", &url);
    EXPECT_EQ(result, refused(url));
    result = draw_from(
        [&](http_connection &client) { /* comments without text */
                                       client.send(http_head("200 OK") + jpeg_.substr(0, 2));
                                       std::string comments;
                                       for (int i = 0; i < 1024; i++)
                                           comments += std::string("\xFF\xFE\0\x02", 4);
                                       client.send_for_ever(comments);
        },
        "/a.jpg", &url);
    EXPECT_EQ(result, refused(url));
}

TEST_F(hostile_picture_test, redirections_for_ever_are_refused) {
    expect_refused(sends(http_redirect("/picture.png")));
}

TEST_F(hostile_picture_test, pages_instead_of_pictures_are_refused) {
    expect_refused(sends(http_head("404 Not Found", "Content-Length: 0\r\n")));
    expect_refused(sends(http_head("404 Not Found", "Content-Length: 9\r\n") + "not found"));
    expect_refused(
        sends(http_answer("<!DOCTYPE html><title>Sign in</title>", "Content-Type: text/html\r\n")));
}

/* Comments come first, more than connections buffer: when they are sent, the reader is in the midst
 * of the header. */
TEST_F(hostile_picture_test, a_failing_picture_does_not_disturb_another_threads) {
    const std::string bad = write("bad.jpg", jpeg_.substr(0, 100));
    int opened_there = 0;
    std::string url;
    const drawn result = draw_from(
        [&](http_connection &client) {
            std::string start = http_head("200 OK") + jpeg_.substr(0, 2);
            for (int i = 0; i < 256; i++)
                start += "\xFF\xFE\xFF\xFF" + std::string(65533, ' ');
            client.send(start);
            RMBitmapFile file;
            opened_there = RMOpenBitmapFile(bad.c_str(), &file, nullptr);
            client.send(picture_bytes::with_jpeg_size(jpeg_, 20, 0).substr(2));
        },
        "/a.jpg", &url);
    EXPECT_EQ(opened_there, UX_BITMAP_FAILURE);
    EXPECT_EQ(result, refused(url));
}

TEST_F(hostile_picture_test, a_failing_picture_leaves_no_trace_on_the_next_one) {
    const std::string good = write("good.jpg", jpeg_);
    const std::string bad = write("bad.jpg", jpeg_.substr(0, 100));
    for (int i = 0; i < 50; i++) {
        EXPECT_EQ(draw(bad), refused(bad));
        EXPECT_EQ(draw(good), shown(good));
    }
}
