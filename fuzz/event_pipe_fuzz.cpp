// SPDX-License-Identifier: MIT
// Bytes of the event pipe into the line reader and the parser, compared with fgets() and sscanf()
// over the same bytes. In the input, FF 00 ends an opening of the pipe, FF 01 ends a piece that the
// writer sends at once; all other bytes go in as they are.

#include "event/event_message.h"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr size_t k_pieces = 16;       // a pipe in packet mode holds that many at least
constexpr size_t k_piece_bytes = 256; // what the reader takes at once
constexpr int k_safe_digits = 9;      // more may leave the range of int: then any value is right

using pieces = std::vector<std::string>;

bool never(int) {
    return false;
}

[[noreturn]] void fail(const char *what) {
    fprintf(stderr, "event pipe: %s differ\n", what);
    abort();
}

// Keeps what does not fit in one piece for the next ones.
void add_piece(pieces &opening, const std::string &bytes) {
    for (size_t at = 0; at < bytes.size() && opening.size() < k_pieces; at += k_piece_bytes)
        opening.push_back(bytes.substr(at, k_piece_bytes));
}

std::vector<pieces> split(const uint8_t *data, size_t size) {
    std::vector<pieces> openings(1);
    std::string bytes;
    for (size_t i = 0; i < size; i++) {
        const bool is_mark = data[i] == 0xFF && i + 1 < size && data[i + 1] <= 1;
        if (!is_mark) {
            bytes += static_cast<char>(data[i]);
            continue;
        }
        add_piece(openings.back(), bytes);
        bytes.clear();
        if (data[++i] == 0)
            openings.emplace_back();
    }
    add_piece(openings.back(), bytes);
    return openings;
}

// What the library makes of one opening; standard output goes to `told`.
void feed(ux::event_message &message, const pieces &opening, std::string &told) {
    int ends[2];
    if (pipe2(ends, O_DIRECT | O_CLOEXEC) != 0)
        abort();
    for (const std::string &piece : opening)
        if (write(ends[1], piece.data(), piece.size()) != static_cast<ssize_t>(piece.size()))
            abort();
    close(ends[1]);
    char *text = nullptr;
    size_t length = 0;
    FILE *before = stdout;
    stdout = open_memstream(&text, &length);
    {
        ux::pipe_lines lines(ends[0]);
        if (!ux::read_message(message, lines, never))
            fail("results of the read");
    }
    ux::parse_message(message);
    fclose(stdout);
    stdout = before;
    told.assign(text, length);
    free(text);
}

// The same with the C library.
struct plain_message {
    char line1[80] = {};
    char line2[80] = {};
    int type = 0, value = 0, x = 0, y = 0;

    void feed(const pieces &opening, std::string &told) {
        std::string bytes;
        for (const std::string &piece : opening)
            bytes += piece;
        char probe[80] = {};
        told.clear();
        if (!bytes.empty()) {
            FILE *file = fmemopen(bytes.data(), bytes.size(), "r");
            (void)!fgets(line1, sizeof line1, file);
            (void)!fgets(line2, sizeof line2, file);
            if (fgets(probe, sizeof probe, file))
                told = std::string("Fifo is not empty, ") + probe + "\n";
            fclose(file);
        }
        if (has_safe_numbers(line1))
            sscanf(line1, "%d", &type);
        if (!has_safe_numbers(line2))
            return;
        if (type == 1)
            sscanf(line2, "%d", &value);
        else if (type == 2)
            sscanf(line2, "%d %d %d", &value, &x, &y);
    }

    bool is_safe() const { return has_safe_numbers(line1) && has_safe_numbers(line2); }

    static bool has_safe_numbers(const char *line) {
        int digits = 0;
        for (; *line; line++) {
            digits = isdigit(static_cast<unsigned char>(*line)) ? digits + 1 : 0;
            if (digits > k_safe_digits)
                return false;
        }
        return true;
    }
};

void compare(const ux::event_message &message, plain_message &plain) {
    if (memcmp(message.line1, plain.line1, sizeof plain.line1) != 0 ||
        memcmp(message.line2, plain.line2, sizeof plain.line2) != 0)
        fail("lines");
    const ux_event &event = message.event;
    if (event.obj || event.data)
        fail("pointers");
    if (plain.is_safe() && (event.type != plain.type || event.value != plain.value ||
                            event.x != plain.x || event.y != plain.y))
        fail("events");
    plain.type = event.type;
    plain.value = event.value;
    plain.x = event.x;
    plain.y = event.y;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    ux::event_message message = {};
    plain_message plain;
    std::string told;
    std::string plainly_told;
    for (const pieces &opening : split(data, size)) {
        feed(message, opening, told);
        plain.feed(opening, plainly_told);
        if (told != plainly_told)
            fail("texts on standard output");
        compare(message, plain);
    }
    return 0;
}
