// SPDX-License-Identifier: MIT
// Folder, lock file and queue of a run.
#include "sim/run_folder.h"

#include "sim/failure.h"
#include "sim/screen_note.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ux::sim {

namespace {

constexpr const char *k_prefix = "ux-sim.";
constexpr const char *k_pipe = "event";
constexpr const char *k_lock = "lock";
constexpr const char *k_new_lock = "lock.new";
constexpr const char *k_preload = "shim.so";
constexpr int k_tries = 64; // for a folder whose queue key is free
constexpr size_t k_longest_base = 1024;

std::string base_folder() {
    const char *given = std::getenv("XDG_RUNTIME_DIR");
    std::string base = given == nullptr ? "" : given;
    bool usable = !base.empty() && base.front() == '/' && base.size() < k_longest_base &&
                  base.find_first_of(" :\t\n") == std::string::npos &&
                  access(base.c_str(), W_OK | X_OK) == 0;
    return usable ? base : "/tmp";
}

std::string make_folder(const std::string &base) {
    std::string path = base + "/" + k_prefix + "XXXXXX";
    if (mkdtemp(path.data()) == nullptr) { // mode 0700
        throw failure(system_reason("cannot make a folder in " + base));
    }
    return path;
}

void remove_files(int folder) {
    for (const char *name :
         {k_pipe, k_preload, k_screen_note, k_new_screen_note, k_new_lock, k_lock}) {
        unlinkat(folder, name, 0);
    }
}

// The lock file tells the queue's identifier and key; both must fit, so that a queue which someone
// else made since is left alone.
void remove_stale_queue(int lock) {
    std::array<char, 64> text{};
    int id = -1;
    int key = -1;
    if (pread(lock, text.data(), text.size() - 1, 0) <= 0 ||
        std::sscanf(text.data(), "%d %d", &id, &key) != 2) {
        return;
    }
    msqid_ds state{};
    if (msgctl(id, IPC_STAT, &state) == 0 && state.msg_perm.__key == key &&
        state.msg_perm.uid == geteuid()) {
        msgctl(id, IPC_RMID, nullptr);
    }
}

void sweep_one(int base, const char *name) {
    int folder = openat(base, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder == -1) {
        return;
    }
    struct stat owner {};
    int lock = openat(folder, k_lock, O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fstat(folder, &owner) == 0 && owner.st_uid == geteuid() && lock != -1 &&
        flock(lock, LOCK_EX | LOCK_NB) == 0) {
        remove_stale_queue(lock);
        remove_files(folder);
        unlinkat(base, name, AT_REMOVEDIR);
    }
    if (lock != -1) {
        close(lock);
    }
    close(folder);
}

// Removes what runs left behind that were killed, and whose guards were too.
void sweep(const std::string &base) {
    DIR *folder = opendir(base.c_str());
    if (folder == nullptr) {
        return;
    }
    while (const dirent *entry = readdir(folder)) {
        if (std::string_view(entry->d_name).starts_with(k_prefix)) {
            sweep_one(dirfd(folder), entry->d_name);
        }
    }
    closedir(folder);
}

// Waits for the end of the run in `path`, whatever it is. It holds nothing of the run: neither its
// lock nor its outputs nor its working folder.
[[noreturn]] void guard(const std::string &path) {
    setsid();
    prctl(PR_SET_NAME, "ux-sim-guard");
    if (chdir("/") == 0 && syscall(SYS_close_range, 0U, ~0U, 0U) == 0) {
        const size_t slash = path.rfind('/');
        const int base = open(path.substr(0, slash + 1).c_str(), O_RDONLY | O_DIRECTORY);
        const int lock = openat(base, (path.substr(slash + 1) + "/" + k_lock).c_str(), O_RDONLY);
        while (flock(lock, LOCK_EX) == -1 && errno == EINTR) {
        }
        close(lock);
        sweep_one(base, path.c_str() + slash + 1);
    }
    _exit(0);
}

// Leaves a process that cleans up when this one is killed. It is nobody's child, so that nobody
// waits for it. Without it, the next run cleans up.
void post_guard(const std::string &path) {
    const pid_t between = fork();
    if (between == 0) {
        if (fork() == 0) {
            guard(path);
        }
        _exit(0);
    }
    if (between != -1) {
        waitpid(between, nullptr, 0);
    }
}

std::string absolute(const std::string &path) {
    char *resolved = realpath(path.c_str(), nullptr);
    if (resolved == nullptr) {
        throw failure(system_reason("cannot name a queue by " + path));
    }
    std::string result = resolved;
    std::free(resolved);
    return result;
}

} // namespace

run_folder::run_folder(const std::string &queue_path) {
    const std::string base = base_folder();
    sweep(base);
    if (queue_path.empty()) {
        make_own_queue(base);
    } else {
        m_queue_path = absolute(queue_path);
        make_named_queue(base);
    }
    lock();
    post_guard(m_path);
}

// The key is made of the folder's inode number: rarely, it meets another run's. Refused folders
// stay until the end of the search, so that their numbers do not come again.
void run_folder::make_own_queue(const std::string &base) {
    std::vector<std::string> refused;
    for (int tries = 0; tries < k_tries && !m_queue; ++tries) {
        m_path = make_folder(base);
        m_queue = owned_queue::create(queue_key(m_path));
        if (!m_queue) {
            refused.push_back(m_path);
        }
    }
    for (const std::string &path : refused) {
        rmdir(path.c_str());
    }
    if (!m_queue) {
        throw failure("no folder in " + base + " has a free queue key");
    }
    m_queue_path = m_path;
}

void run_folder::make_named_queue(const std::string &base) {
    const key_t key = queue_key(m_queue_path);
    m_queue = owned_queue::create(key);
    if (!m_queue) {
        std::array<char, 64> command{};
        std::snprintf(command.data(), command.size(), "ipcrm -Q 0x%08x",
                      static_cast<unsigned>(key));
        throw failure("the input queue of " + m_queue_path +
                      " is in use (if it is nobody's: " + command.data() + ")");
    }
    m_path = make_folder(base);
}

run_folder::~run_folder() {
    int folder = open(m_path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder != -1) {
        remove_files(folder);
        close(folder);
    }
    rmdir(m_path.c_str());
    if (m_lock != -1) {
        close(m_lock);
    }
}

// The file appears under its name only when it is locked: a sweep never sees it otherwise.
void run_folder::lock() {
    std::string unfinished = m_path + "/" + k_new_lock;
    std::string text =
        std::to_string(queue()) + " " + std::to_string(queue_key(m_queue_path)) + "\n";
    m_lock = open(unfinished.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    bool written = m_lock != -1 && flock(m_lock, LOCK_EX | LOCK_NB) == 0 &&
                   write(m_lock, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
                   std::rename(unfinished.c_str(), (m_path + "/" + k_lock).c_str()) == 0;
    if (!written) {
        std::string reason = system_reason("cannot lock " + m_path);
        remove(unfinished.c_str());
        rmdir(m_path.c_str());
        throw failure(reason);
    }
}

std::string run_folder::preload_name(const std::string &file) const {
    if (file.find_first_of(" :\t\n") == std::string::npos) {
        return file;
    }
    std::string name = m_path + "/" + k_preload;
    if (symlink(file.c_str(), name.c_str()) != 0) {
        throw failure(system_reason("cannot link " + name));
    }
    return name;
}

} // namespace ux::sim
