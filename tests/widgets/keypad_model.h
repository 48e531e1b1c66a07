// SPDX-License-Identifier: MIT
// The text fields' rules a second time, plainly: texts as bytes, keys as strings, timeouts as a
// list. Shares nothing with the library but key codes and state bits.
#ifndef UX_TESTS_WIDGETS_KEYPAD_MODEL_H
#define UX_TESTS_WIDGETS_KEYPAD_MODEL_H

#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace keypad_model {

enum class handler { none, host_a, host_b, add, del, shift };

struct page {
    handler keys[256] = {};
    int focus = -1; // field, or -1
};

struct field {
    uint8_t text[256] = {};
    int limit = 256;
    int type = 0;
    int page = 0;
    bool focused = false, visible = false, selected = false;
    bool password = false;
    uint8_t mask = '*';
};

struct timeout {
    int id;
    long due_us;
    bool of_fields;
};

using glyphs = std::vector<int>;

struct world {
    page pages[2];
    std::vector<field> fields;
    std::vector<timeout> timeouts; // newest first
    int next_timeout = 0;
    long now_us = 0;
    int current_page = 0;
    bool out_of_memory = false;
    std::vector<glyphs> painted; // since the last look

    std::map<int, std::pair<std::string, std::string>> letters; // cycle and capitals
    handler saved[256] = {};
    int current_key = 0, current_pos = 0, current_timeout = -1;
    bool shift = false;

    static const char *digit_row(int key) {
        static const char *const rows[] = {"0",       "1",        "2abcABC", "3defDEF",
                                           "4ghiGHI", "5jklJKL",  "6mnoMNO", "7pqrsPQRS",
                                           "8tuvTUV", "9wxyzWXYZ"};
        return rows[key - 1];
    }

    void fill_letters(bool numeric) {
        letters.clear();
        for (int key = 1; key <= 10; key++) {
            const std::string row = digit_row(key);
            std::string capitals(1, row[0]);
            for (char letter : row.substr(1))
                if (letter >= 'A' && letter <= 'Z')
                    capitals += letter;
            letters[key] = {row, capitals};
        }
        letters[35] = {".:/_ ", ".:/_ "};
        if (numeric)
            for (auto &[key, rows] : letters)
                rows = {rows.first.substr(0, 1), rows.first.substr(0, 1)};
    }

    // Byte index of the first unit of two zero bytes; 256 = none.
    static int length(const field &f) {
        int k = 0;
        while (k < 256 && (f.text[k] || f.text[k + 1]))
            k += 2;
        return k;
    }

    void show(int index) {
        field &f = fields[static_cast<size_t>(index)];
        f.visible = true;
        if (f.page != current_page)
            return;
        uint8_t shown[256] = {};
        for (int k = 0; k < 256 && f.text[k] && f.password; k++)
            shown[k] = f.mask;
        if (!f.password)
            memcpy(shown, f.text, sizeof shown);
        glyphs all;
        for (int k = 0; k < 256 && (shown[k] || shown[k + 1]); k += 2)
            all.push_back(shown[k] + 256 * shown[k + 1]);
        if (all.size() == 128) // no end
            all.clear();
        painted.push_back(all);
    }

    void delete_timeout(int id) {
        for (size_t i = 0; i < timeouts.size(); i++)
            if (timeouts[i].id == id) {
                timeouts.erase(timeouts.begin() + static_cast<long>(i));
                return;
            }
    }

    int set_timeout(long delay_us, bool of_fields) {
        if (out_of_memory)
            return -2;
        timeouts.insert(timeouts.begin(), {next_timeout, now_us + delay_us, of_fields});
        return next_timeout++;
    }

    void end_key() { current_key = current_pos = 0; }

    void check_timeouts() {
        for (size_t i = 0; i < timeouts.size(); i++)
            if (timeouts[i].due_us <= now_us) {
                const bool of_fields = timeouts[i].of_fields;
                timeouts.erase(timeouts.begin() + static_cast<long>(i));
                if (of_fields) {
                    end_key();
                    current_timeout = -1;
                }
                i = static_cast<size_t>(-1);
            }
    }

    void focus(int index) {
        field &f = fields[static_cast<size_t>(index)];
        f.focused = true;
        fill_letters(f.type == 1);
        handler(&keys)[256] = pages[f.page].keys;
        for (int key = 0; key < 256; key++) {
            saved[key] = handler::none;
            if (letters.count(key)) {
                saved[key] = keys[key];
                keys[key] = handler::add;
            }
        }
        saved[32] = keys[32];
        saved[34] = keys[34];
        keys[32] = handler::del;
        keys[34] = handler::shift;
        pages[f.page].focus = index;
        end_key();
        shift = false;
    }

    void unfocus(int index) {
        field &f = fields[static_cast<size_t>(index)];
        f.focused = false;
        for (int key = 0; key < 256; key++)
            if (saved[key] != handler::none) {
                pages[f.page].keys[key] = saved[key];
                saved[key] = handler::none;
            }
    }

    // `index` -1: the event is for no field.
    void add_char(int key, int index) {
        if (index < 0)
            return;
        field &f = fields[static_cast<size_t>(index)];
        const int before = length(f);
        const long byte_limit = f.limit < 256 ? 2L * f.limit : 512;
        if (before == 256 || byte_limit < before || !letters.count(key))
            return;
        const auto &[cycle, capitals] = letters[key];
        int place = before;
        if (key != current_key) {
            current_key = key;
            current_pos = 0;
        } else {
            place = before < 2 ? 0 : before - 2;
            current_pos++;
            if (current_pos == static_cast<int>(cycle.size()))
                current_pos = 0;
        }
        const std::string &row = shift ? capitals : cycle;
        const auto at = static_cast<size_t>(current_pos);
        f.text[place] = at < row.size() ? static_cast<uint8_t>(row[at]) : 0;
        f.text[place + 1] = 0;
        if (current_timeout != 0)
            delete_timeout(current_timeout);
        if (f.type == 1) {
            current_timeout = -1;
            end_key();
        } else {
            current_timeout = set_timeout(1000000, true);
        }
        const int after = length(f) == 256 ? place : length(f);
        if (after < byte_limit)
            show(index);
        else
            f.text[f.limit + 1] = 0;
    }

    void del_char(int index) {
        if (index < 0)
            return;
        field &f = fields[static_cast<size_t>(index)];
        const int end = length(f);
        if (end == 0 || end == 256)
            return;
        f.text[end - 2] = f.text[end - 1] = 0;
        show(index);
        end_key();
        if (current_timeout != 0)
            delete_timeout(current_timeout);
    }

    // The main loop's way from a key to a handler.
    void press(int key) {
        const page &p = pages[current_page];
        switch (p.keys[key]) {
        case handler::add:
            return add_char(key, p.focus);
        case handler::del:
            return del_char(p.focus);
        case handler::shift:
            shift = !shift;
            return;
        default:
            return;
        }
    }
};

} // namespace keypad_model

#endif
