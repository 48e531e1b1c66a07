/* SPDX-License-Identifier: MIT */
/*
 * Local files and files over a cookie, as a client of the file calls sees them.
 */
#include <algorithm>
#include <cstring>
#include <filesystem>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "tests/platform/font_fixture.h"

namespace {

/* A file that the kernel lists as regular and that cannot be read at its begin. */
constexpr const char *k_unreadable = "/proc/self/mem";

rm_file *open_file(const std::string &path, int mode = 0) {
    rm_non_ascii *name = RMnonAsciiFromAscii(path.c_str());
    rm_file *file = RMOpenFile(name, mode);
    RMFreeNonAscii(name);
    return file;
}

std::ptrdiff_t open_descriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/* A source that gives `bytes` in pieces of `piece` bytes and then ends or fails. */
struct source {
    std::string bytes{};
    std::uint32_t piece = 3;
    int end_result = EM862X_SUCCESS;
    int close_result = EM862X_SUCCESS;
    int closed = 0;
};

int read_source(void *cookie, void *data, std::uint32_t bytes, std::uint32_t *read_bytes) {
    source &from = *static_cast<source *>(cookie);
    const auto count = std::min({bytes, from.piece, static_cast<std::uint32_t>(from.bytes.size())});
    std::memcpy(data, from.bytes.data(), count);
    from.bytes.erase(0, count);
    *read_bytes = count;
    return count > 0 ? EM862X_SUCCESS : from.end_result;
}

int close_source(void *cookie) {
    source &from = *static_cast<source *>(cookie);
    from.closed++;
    return from.close_result;
}

constexpr rm_file_ops k_source_ops = {read_source, close_source};

struct rm_file_test : font_fixture {
    ~rm_file_test() override { probes::fail_allocation(0); }

    std::uint32_t count = 77;
    char buffer[32] = {};
};

TEST_F(rm_file_test, requests_of_any_size_are_filled_up_to_the_end) {
    std::string bytes(10007, '\0');
    for (std::size_t i = 0; i < bytes.size(); i++)
        bytes[i] = static_cast<char>(i * i / 7);
    const std::string path = write_file("file", bytes);
    for (const std::uint32_t request : {1u, 7u, 4096u, 10006u, 10007u, 10008u, 1000000u}) {
        rm_file *file = open_file(path);
        ASSERT_NE(file, nullptr);
        std::string got;
        std::string room(request, '\0');
        while (got.size() < bytes.size()) {
            const auto rest = static_cast<std::uint32_t>(bytes.size() - got.size());
            ASSERT_EQ(RMReadFile(file, room.data(), request, &count), EM862X_SUCCESS);
            ASSERT_EQ(count, std::min(request, rest)) << "in requests of " << request;
            got.append(room, 0, count);
        }
        EXPECT_TRUE(got == bytes);
        EXPECT_EQ(RMReadFile(file, room.data(), request, &count), EM862X_FAILURE);
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
    }
}

TEST_F(rm_file_test, an_empty_file_opens_and_is_at_its_end) {
    rm_file *file = open_file(write_file("empty", ""));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(RMReadFile(file, buffer, 1, &count), EM862X_FAILURE);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

TEST_F(rm_file_test, a_request_for_nothing_succeeds_anywhere) {
    rm_file *file = open_file(write_file("empty", ""));
    EXPECT_EQ(RMReadFile(file, nullptr, 0, &count), EM862X_SUCCESS);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

TEST_F(rm_file_test, only_regular_files_open_and_nothing_hangs) {
    const std::string pipe = path_of("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string loop = path_of("loop");
    std::filesystem::create_symlink(loop, loop);
    const std::string door = path_of("socket");
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(door.size(), sizeof(address.sun_path));
    door.copy(address.sun_path, door.size());
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
    const std::ptrdiff_t before = open_descriptors();
    for (const std::string &path :
         {std::string(), std::string("/"), std::string("."), pipe, loop, door,
          std::string("/dev/null"), std::string("/dev/zero"), path_of("missing"),
          path_of("missing/file"), std::string(5000, 'x'), std::string("http://127.0.0.1/")})
        EXPECT_EQ(open_file(path), nullptr) << path;
    EXPECT_EQ(open_descriptors(), before);
    close(listener);
}

TEST_F(rm_file_test, a_link_to_a_file_opens) {
    std::filesystem::create_symlink(write_file("file", "x"), path_of("link"));
    rm_file *file = open_file(path_of("link"));
    EXPECT_EQ(RMReadFile(file, buffer, 1, &count), EM862X_SUCCESS);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

TEST_F(rm_file_test, only_the_read_mode_is_known) {
    const std::string path = write_file("file", "x");
    source from;
    for (const int mode : {1, 2, -1, 1 << 30}) {
        EXPECT_EQ(open_file(path, mode), nullptr);
        EXPECT_EQ(RMOpenFileCookie(&from, mode, &k_source_ops), nullptr);
    }
    EXPECT_EQ(from.closed, 0);
}

TEST_F(rm_file_test, a_file_cut_short_while_open_just_ends) {
    const std::string path = write_file("file", std::string(100000, 'x'));
    rm_file *file = open_file(path);
    EXPECT_EQ(RMReadFile(file, buffer, 1, &count), EM862X_SUCCESS);
    ASSERT_EQ(truncate(path.c_str(), 0), 0);
    std::string room(100000, '\0');
    EXPECT_EQ(RMReadFile(file, room.data(), 100000, &count), EM862X_SUCCESS);
    EXPECT_LT(count, 99999u) << "what had been buffered";
    EXPECT_EQ(RMReadFile(file, room.data(), 1, &count), EM862X_FAILURE);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

TEST_F(rm_file_test, a_read_error_is_a_failure) {
    rm_file *file = open_file(k_unreadable);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(RMReadFile(file, buffer, sizeof(buffer), &count), EM862X_FAILURE);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

TEST_F(rm_file_test, missing_arguments_are_refused) {
    source from;
    const rm_file_ops no_read = {nullptr, close_source};
    const rm_file_ops no_close = {read_source, nullptr};
    EXPECT_EQ(RMOpenFile(nullptr, 0), nullptr);
    EXPECT_EQ(RMOpenFileCookie(nullptr, 0, &k_source_ops), nullptr);
    EXPECT_EQ(RMOpenFileCookie(&from, 0, nullptr), nullptr);
    EXPECT_EQ(RMOpenFileCookie(&from, 0, &no_read), nullptr);
    EXPECT_EQ(RMOpenFileCookie(&from, 0, &no_close), nullptr);
    EXPECT_EQ(from.closed, 0) << "the cookie stays the caller's";
    EXPECT_EQ(RMCloseFile(nullptr), EM862X_FAILURE);
    EXPECT_EQ(RMReadFile(nullptr, buffer, 1, &count), EM862X_FAILURE);
    EXPECT_EQ(count, 0u);
    rm_file *file = open_file(write_file("file", "ab"));
    EXPECT_EQ(RMReadFile(file, nullptr, 1, &count), EM862X_FAILURE);
    EXPECT_EQ(RMReadFile(file, buffer, 1, nullptr), EM862X_FAILURE);
    EXPECT_EQ(RMReadFile(file, buffer, 2, &count), EM862X_SUCCESS) << "none of it was lost";
    EXPECT_STREQ(buffer, "ab");
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

TEST_F(rm_file_test, a_source_in_small_pieces_still_fills_the_request) {
    source from{.bytes = "0123456789"};
    rm_file *file = RMOpenFileCookie(&from, 0, &k_source_ops);
    EXPECT_EQ(RMReadFile(file, buffer, 8, &count), EM862X_SUCCESS);
    EXPECT_EQ(count, 8u);
    EXPECT_EQ(RMReadFile(file, buffer + 8, 8, &count), EM862X_SUCCESS);
    EXPECT_EQ(count, 2u);
    EXPECT_STREQ(buffer, "0123456789");
    EXPECT_EQ(RMReadFile(file, buffer, 8, &count), EM862X_FAILURE);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
    EXPECT_EQ(from.closed, 1);
}

TEST_F(rm_file_test, a_source_that_fails_fails_the_request_and_tells_what_came) {
    for (const int other : {int{EM862X_FAILURE}, int{EM862X_BUSY}, 0, -1}) {
        source from{.bytes = "01234", .end_result = other};
        rm_file *file = RMOpenFileCookie(&from, 0, &k_source_ops);
        EXPECT_EQ(RMReadFile(file, buffer, 8, &count), EM862X_FAILURE);
        EXPECT_EQ(count, 5u);
        EXPECT_EQ(RMReadFile(file, buffer, 8, &count), EM862X_FAILURE);
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
    }
}

TEST_F(rm_file_test, a_source_that_claims_more_than_asked_for_is_not_believed) {
    constexpr rm_file_ops liar = {
        [](void *, void *, std::uint32_t bytes, std::uint32_t *read_bytes) {
            *read_bytes = bytes + 1;
            return int{EM862X_SUCCESS};
        },
        close_source};
    source from;
    rm_file *file = RMOpenFileCookie(&from, 0, &liar);
    EXPECT_EQ(RMReadFile(file, buffer, 8, &count), EM862X_FAILURE);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

TEST_F(rm_file_test, a_failure_to_close_is_told_as_one) {
    for (const int other : {int{EM862X_FAILURE}, 0, 2}) {
        source from;
        from.close_result = other;
        EXPECT_EQ(RMCloseFile(RMOpenFileCookie(&from, 0, &k_source_ops)), EM862X_FAILURE);
        EXPECT_EQ(from.closed, 1);
    }
}

TEST_F(rm_file_test, the_functions_of_a_cookie_are_copied) {
    source from{.bytes = "x"};
    rm_file_ops ops = k_source_ops;
    rm_file *file = RMOpenFileCookie(&from, 0, &ops);
    ops = {};
    EXPECT_EQ(RMReadFile(file, buffer, 1, &count), EM862X_SUCCESS);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

TEST_F(rm_file_test, no_failing_allocation_leaves_anything_open) {
    rm_non_ascii *name = RMnonAsciiFromAscii(write_file("file", "x").c_str());
    const std::ptrdiff_t before = open_descriptors();
    rm_file *file = nullptr;
    unsigned long number = 0;
    while (!file) {
        probes::fail_allocation(++number);
        file = RMOpenFile(name, 0);
        const bool failed = probes::allocation_failed();
        probes::fail_allocation(0);
        ASSERT_EQ(file == nullptr, failed);
        EXPECT_EQ(open_descriptors(), file ? before + 1 : before);
    }
    EXPECT_GE(number, 3u) << "the stream and the file may fail";
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
    EXPECT_EQ(open_descriptors(), before);
    RMFreeNonAscii(name);
}

TEST_F(rm_file_test, a_cookie_stays_the_callers_when_memory_runs_out) {
    source from;
    probes::fail_allocation(1);
    EXPECT_EQ(RMOpenFileCookie(&from, 0, &k_source_ops), nullptr);
    EXPECT_TRUE(probes::allocation_failed());
    EXPECT_EQ(from.closed, 0);
}

} // namespace
