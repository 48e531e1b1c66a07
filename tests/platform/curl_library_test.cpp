// SPDX-License-Identifier: MIT
// A device on which libcurl is missing, is too old or does not start, and gets a good one in the
// end: EM862X_CURL is a link here.
#include "platform/host/curl_library.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

using em862x::load_curl;

void install(const char *library) {
    std::filesystem::remove(EM862X_CURL);
    std::filesystem::create_symlink(library, EM862X_CURL);
}

// What is said on standard error when the library is not loaded.
std::string complaint() {
    testing::internal::CaptureStderr();
    EXPECT_FALSE(load_curl());
    return testing::internal::GetCapturedStderr();
}

TEST(curl_library, tells_each_failure_and_tries_again) {
    const std::string path = EM862X_CURL;
    const std::string begin = "no address can be fetched: ";

    std::filesystem::remove(path);
    EXPECT_EQ(complaint().rfind(begin + path + ": cannot open shared object file", 0), 0U);

    install(OLD_CURL);
    EXPECT_NE(complaint().find("undefined symbol: curl_multi_poll\n"), std::string::npos);

    install(WHOLE_CURL);
    setenv("FAKE_CURL_FAILS", "1", 1);
    EXPECT_EQ(complaint(), begin + path + " does not start\n");

    unsetenv("FAKE_CURL_FAILS");
    EXPECT_TRUE(load_curl());
    std::filesystem::remove(path);
    EXPECT_TRUE(load_curl()) << "it stays";
}

} // namespace
