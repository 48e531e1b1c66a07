// SPDX-License-Identifier: MIT
// Parsing scripts: one verb a line, words separated by blanks.
#include "sim/script.h"

#include "sim/failure.h"
#include "sim/keys.h"
#include "sim/multitap.h"
#include "sim/number.h"

#include <algorithm>
#include <array>
#include <limits>
#include <set>

#include <fcntl.h>
#include <unistd.h>

namespace ux::sim {

namespace {

constexpr size_t k_largest_script_bytes = 16 << 20;
constexpr size_t k_longest_name = 200;
constexpr int k_longest_wait_ms = 3600 * 1000;
constexpr int k_default_limit_ms = 10 * 1000; // beyond the wait itself
constexpr size_t k_most_typed = 2000;         // characters in a script
constexpr std::chrono::milliseconds k_tap_pace{50};

using words = std::vector<std::string_view>;

bool is_blank(char letter) {
    return letter == ' ' || letter == '\t' || letter == '\r';
}

words split(std::string_view line) {
    words result;
    size_t at = 0;
    while (at < line.size()) {
        if (is_blank(line[at])) {
            ++at;
            continue;
        }
        size_t end = at;
        while (end < line.size() && !is_blank(line[end])) {
            ++end;
        }
        result.push_back(line.substr(at, end - at));
        at = end;
    }
    return result;
}

// What stands between the first word and the last one, the blanks inside included. Quotes around it
// are left out: they let a text begin or end with a blank.
std::string_view text_behind(const words &parts) {
    if (parts.size() < 2) {
        return {};
    }
    const char *start = parts[1].data();
    std::string_view text(start,
                          static_cast<size_t>(parts.back().data() - start) + parts.back().size());
    bool in_quotes = text.size() > 1 && text.front() == '"' && text.back() == '"';
    return in_quotes ? text.substr(1, text.size() - 2) : text;
}

std::string join(const words &parts) {
    std::string text;
    for (std::string_view part : parts) {
        text += text.empty() ? "" : " ";
        text += part;
    }
    return text;
}

bool is_control(char letter) {
    return static_cast<unsigned char>(letter) < 0x20 || letter == 0x7f;
}

// Control characters must not reach a terminal through an error message.
std::string quoted(std::string_view word) {
    constexpr size_t k_shown = 60;
    std::string text = "'";
    for (char letter : word.substr(0, k_shown)) {
        text += is_control(letter) ? '?' : letter;
    }
    return text + (word.size() > k_shown ? "...'" : "'");
}

class parser {
  public:
    explicit parser(const std::string &name) { m_script.name = name; }

    void take_line(std::string_view line) {
        ++m_line;
        words parts = split(line.substr(0, line.find('#')));
        if (parts.empty()) {
            return;
        }
        script_step step{.what = verb::quit, .line = m_line, .text = join(parts)};
        if (parts[0] == "type") {
            take_type(text_behind(parts), step);
            return;
        }
        read_step(parts, step);
        check_order(step);
        m_waited_exit = m_waited_exit || step.what == verb::wait_exit;
        m_script.steps.push_back(step);
    }

    script result() { return std::move(m_script); }

  private:
    [[noreturn]] void refuse(const std::string &what) const {
        throw usage_failure(m_script.name + ":" + std::to_string(m_line) + ": " + what);
    }

    void want_words(const words &parts, size_t count, const char *usage) const {
        if (parts.size() != count) {
            refuse(std::string("expected '") + usage + "'");
        }
    }

    int read_number(std::string_view word, const char *what, int lowest, int highest) const {
        auto value = number_in(word, lowest, highest);
        if (!value) {
            refuse(quoted(word) + " is no " + what + " (" + std::to_string(lowest) + " to " +
                   std::to_string(highest) + ")");
        }
        return *value;
    }

    void read_step(const words &parts, script_step &step) {
        if (parts[0] == "key") {
            read_key(parts, step);
        } else if (parts[0] == "touch") {
            read_touch(parts, step);
        } else if (parts[0] == "wait") {
            read_wait(parts, step);
        } else if (parts[0] == "shot") {
            read_shot(parts, step);
        } else if (parts[0] == "quit") {
            want_words(parts, 1, "quit");
        } else {
            refuse("unknown verb " + quoted(parts[0]));
        }
    }

    // Taps with waits between them, and one behind: the next text begins a letter of its own.
    void take_type(std::string_view text, script_step &step) {
        m_typed += text.size();
        if (text.empty()) {
            refuse("expected 'type TEXT'");
        }
        if (m_typed > k_most_typed) {
            refuse("a script types at most " + std::to_string(k_most_typed) + " characters");
        }
        step.what = verb::key;
        check_order(step);
        bool first = true;
        for (const tap &press : taps_of(text)) {
            if (!first) {
                push_wait(step, press.pause);
            }
            first = false;
            step.what = verb::key;
            step.key = press.key;
            m_script.steps.push_back(step);
        }
        push_wait(step, k_letter_pause);
    }

    std::vector<tap> taps_of(std::string_view text) const {
        try {
            return taps_for(text, k_tap_pace);
        } catch (const failure &error) {
            refuse(error.what());
        }
    }

    void push_wait(script_step step, std::chrono::milliseconds time) {
        step.what = verb::wait_time;
        step.ms = static_cast<int>(time.count());
        m_script.steps.push_back(step);
    }

    void read_key(const words &parts, script_step &step) const {
        want_words(parts, 2, "key NAME|CODE");
        auto code = key_from_text(parts[1]);
        if (!code) {
            refuse("no key is called " + quoted(parts[1]));
        }
        step.what = verb::key;
        step.key = *code;
    }

    // The screen's size is no bound: hosts must bear positions beside it, and a rotated host's
    // coordinates are not the device's.
    void read_touch(const words &parts, script_step &step) const {
        constexpr int k_lowest = std::numeric_limits<int>::min();
        constexpr int k_highest = std::numeric_limits<int>::max();
        want_words(parts, 3, "touch X Y");
        step.what = verb::touch;
        step.x = read_number(parts[1], "coordinate", k_lowest, k_highest);
        step.y = read_number(parts[2], "coordinate", k_lowest, k_highest);
    }

    void read_wait(const words &parts, script_step &step) const {
        constexpr const char *k_usage =
            "wait MS', 'wait until MS', 'wait still MS [within MS]' or 'wait exit [within MS]";
        std::string_view what = parts.size() > 1 ? parts[1] : "";
        if (what == "still") {
            step.what = verb::wait_still;
            if (parts.size() < 3) {
                refuse("expected 'wait still MS [within MS]'");
            }
            step.ms = read_number(parts[2], "time in ms", 1, k_longest_wait_ms);
            read_limit(parts, 3, step);
            if (step.limit_ms <= step.ms) {
                refuse("the limit must be longer than the wait");
            }
        } else if (what == "until") {
            want_words(parts, 3, "wait until MS");
            step.what = verb::wait_until;
            step.ms = read_number(parts[2], "time in ms", 0, std::numeric_limits<int>::max());
        } else if (what == "exit") {
            step.what = verb::wait_exit;
            read_limit(parts, 2, step);
        } else {
            want_words(parts, 2, k_usage);
            step.what = verb::wait_time;
            step.ms = read_number(parts[1], "time in ms", 0, k_longest_wait_ms);
        }
    }

    void read_limit(const words &parts, size_t at, script_step &step) const {
        step.limit_ms = step.ms + k_default_limit_ms;
        if (parts.size() == at) {
            return;
        }
        if (parts.size() != at + 2 || parts[at] != "within") {
            refuse("expected 'within MS' after " + quoted(parts[at - 1]));
        }
        step.limit_ms = read_number(parts[at + 1], "time in ms", 1, k_longest_wait_ms);
    }

    void read_shot(const words &parts, script_step &step) {
        want_words(parts, 2, "shot FILE.png");
        std::string_view file = parts[1];
        bool plain = file.find('/') == std::string_view::npos && file[0] != '.' &&
                     file.find("..") == std::string_view::npos && file.size() <= k_longest_name &&
                     std::ranges::none_of(file, is_control);
        if (!plain || !file.ends_with(".png")) {
            refuse("a shot wants a plain file name that ends in .png, not " + quoted(file));
        }
        if (file.starts_with(k_diff_prefix)) {
            refuse("a shot's name may not begin with " + std::string(k_diff_prefix));
        }
        step.what = verb::shot;
        step.file = file;
        if (!m_files.insert(step.file).second) {
            refuse("the shot " + quoted(file) + " was taken already");
        }
    }

    void check_order(const script_step &step) const {
        if (m_script.steps.empty()) {
            return;
        }
        if (m_script.steps.back().what == verb::quit) {
            refuse("nothing may follow 'quit'");
        }
        if (m_waited_exit && step.what != verb::shot && step.what != verb::quit) {
            refuse("only 'shot' and 'quit' may follow 'wait exit'");
        }
    }

    script m_script;
    std::set<std::string> m_files;
    int m_line = 0;
    size_t m_typed = 0;         // characters so far
    bool m_waited_exit = false; // by an earlier step
};

class open_file {
  public:
    explicit open_file(const std::string &path)
        : m_fd(path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    open_file(const open_file &) = delete;
    open_file &operator=(const open_file &) = delete;
    ~open_file() {
        if (m_fd != -1) {
            close(m_fd);
        }
    }

    int fd() const { return m_fd; }

  private:
    int m_fd;
};

} // namespace

script parse_script(std::string_view text, const std::string &name) {
    parser lines(name);
    for (size_t at = 0; at < text.size();) {
        size_t end = std::min(text.find('\n', at), text.size());
        lines.take_line(text.substr(at, end - at));
        at = end + 1;
    }
    return lines.result();
}

script read_script(const std::string &path) {
    const std::string name = path == "-" ? "(standard input)" : path;
    open_file file(path);
    if (file.fd() == -1) {
        throw usage_failure(system_reason("cannot read the script " + name));
    }
    std::string text;
    std::array<char, 4096> part{};
    ssize_t count = 0;
    while (text.size() <= k_largest_script_bytes &&
           (count = read(file.fd(), part.data(), part.size())) > 0) {
        text.append(part.data(), static_cast<size_t>(count));
    }
    if (count < 0) {
        throw usage_failure(system_reason("cannot read the script " + name));
    }
    if (text.size() > k_largest_script_bytes) {
        throw usage_failure("the script " + name + " is longer than 16 MiB");
    }
    return parse_script(text, name);
}

} // namespace ux::sim
