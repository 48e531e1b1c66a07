/* SPDX-License-Identifier: MIT */
/*
 * The HTTP fetcher: one libcurl transfer per fetch, driven only while its reader waits. What has
 * arrived but was not read yet waits in the kernel and in a buffer of fixed size.
 *
 * Only plain `http://` is spoken, redirected or not. Proxies named in the environment are not used:
 * an address means the server that it names. No cookies, passwords or compression.
 */
#include "platform/host/curl_library.h"
#include "platform/host/export.h"
#include "platform/host/http_limits.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include <strings.h>

namespace {

using em862x::curl;

constexpr std::size_t k_buffer_bytes = 64u << 10;
/* libcurl hands the body over in pieces up to this size; one must fit into an empty buffer. */
static_assert(k_buffer_bytes >= CURL_MAX_WRITE_SIZE);

constexpr char k_scheme[] = "http://";
constexpr char k_user_agent[] = "ux";

struct easy_deleter {
    void operator()(CURL *easy) const noexcept { curl().easy_cleanup(easy); }
};
struct multi_deleter {
    void operator()(CURLM *multi) const noexcept { curl().multi_cleanup(multi); }
};

/* Sets options one after the other and remembers whether all were taken. */
class option_setter {
  public:
    explicit option_setter(CURL *easy) noexcept : easy_(easy) {}

    template <class Value>
    option_setter &set(CURLoption option, Value value) noexcept {
        taken_ = taken_ && curl().easy_setopt(easy_, option, value) == CURLE_OK;
        return *this;
    }
    bool all_taken() const noexcept { return taken_; }

  private:
    CURL *easy_;
    bool taken_ = true;
};

void set_protocol(option_setter &options) noexcept {
#if LIBCURL_VERSION_NUM >= 0x075500
    options.set(CURLOPT_PROTOCOLS_STR, "http").set(CURLOPT_REDIR_PROTOCOLS_STR, "http");
#else
    options.set(CURLOPT_PROTOCOLS, long{CURLPROTO_HTTP})
        .set(CURLOPT_REDIR_PROTOCOLS, long{CURLPROTO_HTTP});
#endif
    options.set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1})
        .set(CURLOPT_FOLLOWLOCATION, 1L)
        .set(CURLOPT_FAILONERROR, 1L)
        .set(CURLOPT_PROXY, "")
        .set(CURLOPT_USERAGENT, k_user_agent);
}

void set_limits(option_setter &options, const em862x::http_limits &limits) noexcept {
    options.set(CURLOPT_NOSIGNAL, 1L)
        .set(CURLOPT_TIMEOUT_MS, limits.total_ms)
        .set(CURLOPT_CONNECTTIMEOUT_MS, limits.connect_ms)
        .set(CURLOPT_MAXREDIRS, limits.redirects_max)
        .set(CURLOPT_MAXFILESIZE_LARGE, curl_off_t{limits.body_max});
#if LIBCURL_VERSION_NUM >= 0x075700
    /* A name lookup that hangs ends by itself later instead of being waited for. */
    options.set(CURLOPT_QUICK_EXIT, 1L);
#endif
}

class http_fetch {
  public:
    explicit http_fetch(const em862x::http_limits &limits) noexcept : limits_(limits) {}
    http_fetch(const http_fetch &) = delete;
    http_fetch &operator=(const http_fetch &) = delete;
    ~http_fetch();

    /* Sends the request and waits for the answer to begin; false when there is nothing to read. */
    bool open(const char *url) noexcept;

    /* Takes up to `bytes` bytes, waiting for the first; 0 of them at the end. False on failure. */
    bool read(void *data, std::size_t bytes, std::size_t &count) noexcept;

    /* What libcurl calls with a line of a header and with bytes of the body; how many it took. */
    std::size_t take_head(std::string_view line) noexcept;
    std::size_t take_body(const char *data, std::size_t bytes) noexcept;

  private:
    using clock = std::chrono::steady_clock;

    clock::time_point stall_time() const noexcept;
    bool is_answered() const noexcept;
    void finish(bool complete) noexcept;
    void resume() noexcept;
    void drive() noexcept;
    void wait(clock::time_point until) noexcept;
    void fill() noexcept;

    em862x::http_limits limits_;
    std::unique_ptr<CURLM, multi_deleter> multi_; /* before easy_: outlives it */
    std::unique_ptr<CURL, easy_deleter> easy_;
    long head_ = 0;           /* header bytes arrived */
    long body_ = 0;           /* body bytes arrived */
    bool head_ended_ = false; /* the last answer's header is there with the line that ends it */
    bool running_ = true;     /* more may arrive */
    bool complete_ = false;   /* not running, and everything has arrived */
    bool paused_ = false;     /* libcurl holds a piece that did not fit into the buffer */
    std::size_t begin_ = 0;   /* of the unread bytes in the buffer */
    std::size_t end_ = 0;
    char buffer_[k_buffer_bytes];
};

std::size_t on_head(char *data, std::size_t size, std::size_t count, void *fetch) noexcept {
    return static_cast<http_fetch *>(fetch)->take_head({data, size * count});
}

std::size_t on_body(char *data, std::size_t size, std::size_t count, void *fetch) noexcept {
    return static_cast<http_fetch *>(fetch)->take_body(data, size * count);
}

http_fetch::~http_fetch() {
    if (multi_ && easy_)
        curl().multi_remove_handle(multi_.get(), easy_.get());
}

http_fetch::clock::time_point http_fetch::stall_time() const noexcept {
    return clock::now() + std::chrono::milliseconds(limits_.stall_ms);
}

/* The last answer says that the body is what was asked for. */
bool http_fetch::is_answered() const noexcept {
    constexpr long status_class = 100;
    long status = 0;
    return head_ended_ &&
           curl().easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status) == CURLE_OK &&
           status / status_class == 2;
}

void http_fetch::finish(bool complete) noexcept {
    running_ = false;
    complete_ = complete;
}

std::size_t http_fetch::take_head(std::string_view line) noexcept {
    if (line.size() > static_cast<std::size_t>(limits_.head_max - head_))
        return 0;
    head_ += static_cast<long>(line.size());
    if (line.starts_with("HTTP/"))
        head_ended_ = false;
    else if (line == "\r\n" || line == "\n")
        head_ended_ = true;
    return line.size();
}

std::size_t http_fetch::take_body(const char *data, std::size_t bytes) noexcept {
    if (bytes > static_cast<std::size_t>(limits_.body_max - body_) || !is_answered())
        return 0;
    if (bytes > k_buffer_bytes - end_) {
        paused_ = true;
        return CURL_WRITEFUNC_PAUSE;
    }
    std::memcpy(buffer_ + end_, data, bytes);
    end_ += bytes;
    body_ += static_cast<long>(bytes);
    return bytes;
}

/* Lets libcurl hand over the piece it holds, and go on. */
void http_fetch::resume() noexcept {
    if (!paused_ || !running_)
        return;
    paused_ = false;
    if (curl().easy_pause(easy_.get(), CURLPAUSE_CONT) != CURLE_OK)
        finish(false);
}

/* Does what can be done without waiting. */
void http_fetch::drive() noexcept {
    int count = 0;
    if (curl().multi_perform(multi_.get(), &count) != CURLM_OK)
        finish(false);
    while (const CURLMsg *message = curl().multi_info_read(multi_.get(), &count))
        if (message->msg == CURLMSG_DONE)
            finish(message->data.result == CURLE_OK && is_answered());
}

void http_fetch::wait(clock::time_point until) noexcept {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - clock::now()).count();
    if (left <= 0 ||
        curl().multi_poll(multi_.get(), nullptr, 0, static_cast<int>(left), nullptr) != CURLM_OK)
        finish(false);
}

/*
 * Fills the empty buffer with what has arrived; waits for the first byte. Afterwards the buffer is
 * empty only when nothing is to come.
 */
void http_fetch::fill() noexcept {
    begin_ = 0;
    end_ = 0;
    resume();
    clock::time_point until = stall_time();
    while (running_ && !paused_) {
        const long arrived = head_ + body_;
        drive();
        if (head_ + body_ != arrived)
            until = stall_time();
        else if (end_ > 0)
            return;
        else if (running_)
            wait(until);
    }
}

bool http_fetch::open(const char *url) noexcept {
    multi_.reset(curl().multi_init());
    easy_.reset(curl().easy_init());
    if (!multi_ || !easy_)
        return false;
    option_setter options(easy_.get());
    set_protocol(options);
    set_limits(options, limits_);
    options.set(CURLOPT_URL, url)
        .set(CURLOPT_HEADERFUNCTION, on_head)
        .set(CURLOPT_HEADERDATA, this)
        .set(CURLOPT_WRITEFUNCTION, on_body)
        .set(CURLOPT_WRITEDATA, this);
    if (!options.all_taken() || curl().multi_add_handle(multi_.get(), easy_.get()) != CURLM_OK)
        return false;
    fill();
    return end_ > 0 || complete_;
}

bool http_fetch::read(void *data, std::size_t bytes, std::size_t &count) noexcept {
    if (begin_ == end_)
        fill();
    count = std::min(bytes, end_ - begin_);
    if (count == 0)
        return bytes == 0 || complete_;
    std::memcpy(data, buffer_ + begin_, count);
    begin_ += count;
    return true;
}

int read_fetch(void *cookie, void *data, uint32_t bytes, uint32_t *read_bytes) noexcept {
    if (!read_bytes)
        return EM862X_FAILURE;
    *read_bytes = 0;
    if (!cookie || (!data && bytes != 0))
        return EM862X_FAILURE;
    std::size_t count = 0;
    if (!static_cast<http_fetch *>(cookie)->read(data, bytes, count))
        return EM862X_FAILURE;
    *read_bytes = static_cast<uint32_t>(count);
    return EM862X_SUCCESS;
}

int close_fetch(void *cookie) noexcept {
    fetchClose(cookie);
    return cookie ? EM862X_SUCCESS : EM862X_FAILURE;
}

} // namespace

void *fetchOpen(const char *url, int flags) {
    if (!url || flags != 0 || strncasecmp(url, k_scheme, std::strlen(k_scheme)) != 0)
        return nullptr;
    if (!em862x::load_curl())
        return nullptr;
    auto *fetch = new (std::nothrow) http_fetch(em862x::read_http_limits());
    if (fetch && !fetch->open(url)) {
        delete fetch;
        fetch = nullptr;
    }
    return fetch;
}

void fetchClose(void *cookie) {
    delete static_cast<http_fetch *>(cookie);
}

const rm_file_ops httpFileOps = {read_fetch, close_fetch};
