// SPDX-License-Identifier: MIT
// What tests of events stand on: a pipe and a message queue of the test's own, both text streams in
// the test's hands, and waiting for conditions instead of for time.
#ifndef UX_TESTS_EVENT_EVENT_TEST_H
#define UX_TESTS_EVENT_EVENT_TEST_H

#include "event/uxEvent.h"
#include "tests/support/hooks.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace event_tests {

constexpr int k_patience_ms = 20000; // for what must happen sooner or later, on a busy machine too
constexpr int k_prompt_ms = 2000;    // for what must happen at once

// Looks at a condition again and again; false when the time is over.
template <class Condition>
bool eventually(Condition condition, int limit_ms = k_patience_ms) {
    using clock = std::chrono::steady_clock;
    const auto end = clock::now() + std::chrono::milliseconds(limit_ms);
    while (!condition()) {
        if (clock::now() > end)
            return false;
        const timespec moment = {0, 500000};
        nanosleep(&moment, nullptr);
    }
    return true;
}

template <class Action>
long milliseconds_of(Action action) {
    using clock = std::chrono::steady_clock;
    const auto begin = clock::now();
    action();
    return std::chrono::duration_cast<std::chrono::milliseconds>(clock::now() - begin).count();
}

// How often `part` stands in `text`.
inline int occurrences(const std::string &text, const std::string &part) {
    int count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        count++;
    return count;
}

// A standard stream led into a file while this lives. Its text is copied to the terminal when the
// test has failed.
class captured_stream {
  public:
    captured_stream(FILE *stream, const std::string &path) : m_stream(stream) {
        fflush(stream);
        m_saved = dup(fileno(stream));
        m_file = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
        dup2(m_file, fileno(stream));
    }
    ~captured_stream() {
        std::string all = text();
        if (all.size() > 2 * k_told_bytes)
            all.replace(k_told_bytes, all.size() - 2 * k_told_bytes, "\n[...]\n");
        dup2(m_saved, fileno(m_stream));
        close(m_saved);
        close(m_file);
        if (::testing::Test::HasFailure())
            fprintf(stderr, "[captured from %d]\n%s", fileno(m_stream), all.c_str());
    }
    captured_stream(const captured_stream &) = delete;
    captured_stream &operator=(const captured_stream &) = delete;

    // Everything since the beginning or the last forget().
    std::string text() const {
        fflush(m_stream);
        std::string all;
        char piece[4096];
        off_t at = m_begin;
        for (ssize_t got = 0; (got = pread(m_file, piece, sizeof piece, at)) > 0; at += got)
            all.append(piece, static_cast<size_t>(got));
        return all;
    }
    void forget() { m_begin += static_cast<off_t>(text().size()); }

  private:
    static constexpr size_t k_told_bytes = 2000;

    FILE *m_stream;
    int m_saved;
    int m_file;
    off_t m_begin = 0;
};

inline int open_descriptors() {
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd"))
        count += entry.exists() || true;
    return count;
}

} // namespace event_tests

// Each test has its own folder with the pipe, which is also the folder that the queue's key comes
// from. Afterwards both threads are ended, no descriptor stays open, and nothing is left behind.
class EventTest : public ::testing::Test {
  protected:
    void SetUp() override {
        m_umask = umask(022);
        hooks::reset();
        make_folder();
        hooks::get().pipe_path = pipe_path();
        hooks::get().queue_path = m_folder;
        ux::front = 0;
        ux::rear = 0;
        m_descriptors = event_tests::open_descriptors();
        capture();
    }

    void TearDown() override {
        ux_event_close();
        m_out.reset();
        m_err.reset();
        EXPECT_EQ(event_tests::open_descriptors(), m_descriptors) << "descriptors left open";
        remove_queue();
        hooks::reset();
        std::filesystem::remove_all(m_folder);
        umask(m_umask);
    }

    // A queue's key holds 16 bits of its folder's inode: another program's queue may have the same.
    void make_folder() {
        std::vector<std::string> taken;
        for (int attempt = 0; attempt < 100; attempt++) {
            char name[] = "/tmp/ux-event-test-XXXXXX";
            ASSERT_NE(mkdtemp(name), nullptr);
            m_folder = name;
            if (queue() < 0)
                break;
            taken.push_back(m_folder);
        }
        for (const std::string &folder : taken)
            std::filesystem::remove_all(folder);
    }

    // gtest tells failures on the standard output: they come out when the capture ends.
    void capture() {
        m_out = std::make_unique<event_tests::captured_stream>(stdout, m_folder + "/out");
        m_err = std::make_unique<event_tests::captured_stream>(stderr, m_folder + "/err");
    }

    std::string out() const { return m_out->text(); }
    std::string err() const { return m_err->text(); }
    void forget_texts() {
        m_out->forget();
        m_err->forget();
    }
    bool err_shows(const std::string &text, int times = 1) {
        return event_tests::eventually(
            [&] { return event_tests::occurrences(err(), text) >= times; });
    }

    std::string pipe_path() const { return m_folder + "/pipe"; }
    std::string path(const std::string &name) const { return m_folder + "/" + name; }

    // Opens the pipe for writing once somebody reads it; -1 when nobody does.
    int open_writer() const { return open_writer(pipe_path()); }
    static int open_writer(const std::string &path) {
        int descriptor = -1;
        event_tests::eventually([&] {
            descriptor = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            return descriptor >= 0;
        });
        return descriptor;
    }

    // One open-write-close.
    void write_message(const std::string &text) {
        const int pipe = open_writer();
        ASSERT_GE(pipe, 0) << "nobody reads the pipe";
        EXPECT_EQ(write(pipe, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(pipe);
    }

    // Told by the kernel's list of descriptors: to open the pipe would be an event.
    bool reader_has_pipe_open() const {
        return event_tests::eventually([this] {
            for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
                std::error_code gone;
                if (std::filesystem::read_symlink(entry, gone) == pipe_path())
                    return true;
            }
            return false;
        });
    }

    // Whether a thread comes to stand in a receive from a message queue, told by the kernel too.
    static bool bridge_waits() {
        const std::string number = std::to_string(SYS_msgrcv) + " ";
        return event_tests::eventually([&] {
            for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
                std::string call;
                std::ifstream file(task.path() / "syscall");
                if (std::getline(file, call) && call.compare(0, number.size(), number) == 0)
                    return true;
            }
            return false;
        });
    }

    // The next event of the ring, as "type value x y"; "none" when none comes.
    static std::string next_event() {
        ux_event event = {};
        if (!event_tests::eventually([&] { return ux_event_get(&event) == 0; }))
            return "none";
        return std::to_string(event.type) + " " + std::to_string(event.value) + " " +
               std::to_string(event.x) + " " + std::to_string(event.y);
    }
    static bool ring_is_empty() {
        ux_event event = {};
        return ux_event_get(&event) == -2;
    }

    key_t queue_key() const { return ftok(m_folder.c_str(), 40); }
    int queue() const { return msgget(queue_key(), 0); }
    int make_queue(int mode) const { return msgget(queue_key(), IPC_CREAT | IPC_EXCL | mode); }
    void remove_queue() const {
        const int found = queue();
        if (found >= 0)
            msgctl(found, IPC_RMID, nullptr);
    }
    long messages_waiting() const {
        msqid_ds status = {};
        return msgctl(queue(), IPC_STAT, &status) == 0 ? static_cast<long>(status.msg_qnum) : -1;
    }

    // What the input driver sends: the key's code, the kind, x and y, cut after `bytes`.
    void send_driver_message(int32_t key, int32_t kind, int32_t x = 0, int32_t y = 0,
                             size_t bytes = 276, long type = 1) const {
        struct {
            long type;
            int32_t fields[4];
            char rest[4096];
        } message = {type, {key, kind, x, y}, {}};
        EXPECT_EQ(msgsnd(queue(), &message, bytes, IPC_NOWAIT), 0) << strerror(errno);
    }

    // Runs the close and tells whether it was prompt.
    static bool closes_promptly() {
        return event_tests::milliseconds_of([] { ux_event_close(); }) < event_tests::k_prompt_ms;
    }

  private:
    std::string m_folder;
    mode_t m_umask = 0;
    int m_descriptors = 0;
    std::unique_ptr<event_tests::captured_stream> m_out;
    std::unique_ptr<event_tests::captured_stream> m_err;
};

#endif
