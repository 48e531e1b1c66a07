/* SPDX-License-Identifier: MIT */
/*
 * How much memory a fetch holds, and what happens when there is none: libcurl gets its memory here.
 */
#include <atomic>
#include <cstdlib>
#include <cstring>

#include <curl/curl.h>
#include <malloc.h>

#include "tests/platform/http_fixture.h"
#include "tests/platform/probes.h"

namespace {

/* What libcurl's own blocks take, in bytes. */
std::atomic<std::size_t> s_live;
std::atomic<std::size_t> s_peak;

/* Blocks of this program's own allocator, so that a test can let them fail. */
void *counted(void *block) {
    if (block) {
        const std::size_t live = s_live += malloc_usable_size(block);
        if (live > s_peak)
            s_peak = live;
    }
    return block;
}

void *curl_malloc(std::size_t size) {
    return counted(std::malloc(size));
}

void *curl_calloc(std::size_t count, std::size_t size) {
    return counted(std::calloc(count, size));
}

void curl_free(void *block) {
    if (block)
        s_live -= malloc_usable_size(block);
    std::free(block);
}

void *curl_realloc(void *block, std::size_t size) {
    const std::size_t before = block ? malloc_usable_size(block) : 0;
    void *moved = std::realloc(block, size);
    if (moved)
        s_live -= before;
    return counted(moved);
}

char *curl_strdup(const char *text) {
    const std::size_t size = std::strlen(text) + 1;
    void *copy = curl_malloc(size);
    return copy ? static_cast<char *>(std::memcpy(copy, text, size)) : nullptr;
}

/* Comes before the first fetch of the program; the first initialisation counts. */
class curl_memory : public testing::Environment {
    void SetUp() override {
        ASSERT_EQ(curl_global_init_mem(CURL_GLOBAL_DEFAULT, curl_malloc, curl_free, curl_realloc,
                                       curl_strdup, curl_calloc),
                  CURLE_OK);
    }
};
testing::Environment *const s_environment = testing::AddGlobalTestEnvironment(new curl_memory);

using http_memory_test = http_fixture;

TEST_F(http_memory_test, a_large_file_passes_through_little_memory) {
    ASSERT_NE(s_environment, nullptr);
    constexpr std::size_t block_count = 3200;
    const std::string block = random_bytes(10000);
    const http_server server([&](http_connection &client) {
        client.send(http_head("200 OK", "Content-Length: 32000000\r\n"));
        for (std::size_t i = 0; i < block_count && client.send(block); i++)
            ;
    });
    const std::size_t live = s_live;
    s_peak = live;
    rm_file *file = RMOpenFileCookie(fetchOpen(server.url().c_str(), 0), 0, &httpFileOps);
    std::string buffer(block.size(), '\0');
    std::uint32_t count = 0;
    for (std::size_t i = 0; i < block_count; i++) {
        ASSERT_EQ(RMReadFile(file, buffer.data(), 10000, &count), EM862X_SUCCESS);
        ASSERT_TRUE(buffer == block) << "block " << i;
    }
    EXPECT_EQ(RMReadFile(file, buffer.data(), 1, &count), EM862X_FAILURE);
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
    EXPECT_GT(s_peak - live, 0u);
    EXPECT_LT(s_peak - live, 100u << 10) << "beside the fetch's own buffer of 64 KiB";
    EXPECT_EQ(s_live, live) << "all of it is given back";
}

TEST_F(http_memory_test, no_failing_allocation_harms) {
    const std::string body = random_bytes(150000);
    const http_server server([&](http_connection &client) {
        client.send(client.path() == "/" ? http_redirect("/photo.png") : http_answer(body));
    });
    limit_time(600);
    const std::string url = server.url();
    std::string buffer(body.size(), '\0');
    const std::size_t live = s_live;
    unsigned long number = 0;
    unsigned long refused = 0;
    do {
        probes::fail_allocation(++number);
        void *cookie = fetchOpen(url.c_str(), 0);
        rm_file *file = RMOpenFileCookie(cookie, 0, &httpFileOps);
        std::uint32_t count = 0;
        const int result = RMReadFile(file, buffer.data(), 150000, &count);
        if (!file)
            fetchClose(cookie);
        RMCloseFile(file);
        if (result == EM862X_SUCCESS)
            ASSERT_TRUE(count == body.size() && buffer == body) << "allocation " << number;
        else
            refused++;
        ASSERT_EQ(s_live, live) << "allocation " << number;
    } while (probes::allocation_failed());
    probes::fail_allocation(0);
    EXPECT_GT(refused, 10u);
    EXPECT_GT(number, refused) << "the last round went undisturbed";
}

} // namespace
