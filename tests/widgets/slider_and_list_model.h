// SPDX-License-Identifier: MIT
// Check boxes, slider bars and button lists as their rules tell them, without any painting and
// without a call of the library: what the replay test compares with.
#ifndef UX_TESTS_WIDGETS_SLIDER_AND_LIST_MODEL_H
#define UX_TESTS_WIDGETS_SLIDER_AND_LIST_MODEL_H

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace model {

// What a widget's handler was told.
struct told {
    enum kind { changed, focused, selected, up, down } what;
    int widget;
    int64_t value;
    bool operator==(const told &) const = default;
};

// Who answers a key of the page.
enum class answer { nobody, host, slider_left, slider_right, list_up, list_down, list_ok };

constexpr int k_no_focus = -1;

// Widgets are numbered through all kinds. Those without a page only have states.
struct widget {
    int number = 0;
    bool has_page = true;
    bool visible = false;
    bool focused = false;
};

struct check_box : widget {
    bool checked = false;
};

struct slider : widget {
    int64_t position = 0, minimum = 0, maximum = 100, step = 10;
};

struct button {
    std::u16string text = {};
    uint32_t value = 0;
    bool visible = false;
    bool focused = false;
};

struct list : widget {
    std::vector<button> buttons;
    int current = 0;
};

// The page with its keys, and the one memory that all sliders have of handlers they replaced.
class page {
  public:
    std::vector<check_box> boxes;
    std::vector<slider> sliders;
    std::vector<list> lists;
    int focus = k_no_focus;
    answer up = answer::nobody, down = answer::nobody, ok = answer::nobody;
    answer left = answer::host, right = answer::host;
    std::vector<told> log;

    static void take_focus(page &p, widget &w) {
        w.focused = true;
        if (w.has_page)
            p.focus = w.number;
    }

    void focus_slider(slider &s) {
        if (s.has_page) {
            m_saved_left = left;
            m_saved_right = right;
            left = answer::slider_left;
            right = answer::slider_right;
        }
        take_focus(*this, s);
    }

    void unfocus_slider(slider &s) {
        s.focused = false;
        if (!s.has_page)
            return;
        if (m_saved_left != answer::nobody)
            left = m_saved_left;
        if (m_saved_right != answer::nobody)
            right = m_saved_right;
        m_saved_left = m_saved_right = answer::nobody;
    }

    static int set_range(slider &s, int64_t low, int64_t high) {
        if (high <= low)
            return -1;
        s.minimum = low;
        s.maximum = high;
        if (s.position < low)
            s.position = low;
        if (s.position > high)
            s.position = high;
        return 0;
    }

    static int set_position(slider &s, int64_t position) {
        if (position < s.minimum || position > s.maximum)
            return -1;
        s.position = position;
        return 0;
    }

    void press_left(slider &s) {
        if (s.position > s.minimum)
            put(s, std::max(s.position - s.step, s.minimum));
    }

    void press_right(slider &s) {
        if (s.position < s.maximum)
            put(s, std::min(s.position + s.step, s.maximum));
    }

    static void set_text(list &l, int index, const std::u16string &text) {
        if (!exists(l, index))
            return;
        button &b = l.buttons[static_cast<size_t>(index)];
        b.text = text;
        b.visible = !text.empty();
    }

    // Focus and its loss show a button, so that it is visible afterwards.
    void move(list &l, int target) {
        if (!exists(l, target))
            return;
        mark_current(l, false);
        l.current = target;
        mark_current(l, true);
        if (l.has_page)
            focus = l.number;
    }

    void focus_list(list &l) {
        if (l.has_page) {
            up = answer::list_up;
            down = answer::list_down;
            ok = answer::list_ok;
        }
        mark_current(l, true);
        take_focus(*this, l);
    }

    void unfocus_list(list &l) {
        l.focused = false;
        mark_current(l, false);
        if (l.has_page)
            focus = k_no_focus;
    }

    void press_up(list &l) {
        int target = l.current - 1;
        while (target >= 0 && !l.buttons[static_cast<size_t>(target)].visible)
            target--;
        if (target >= 0) {
            move(l, target);
            log.push_back({told::focused, l.number, target});
        }
        log.push_back({told::up, l.number, target});
    }

    void press_down(list &l) {
        const int count = static_cast<int>(l.buttons.size());
        int target = l.current + 1;
        while (target < count && !l.buttons[static_cast<size_t>(target)].visible)
            target++;
        if (target < count) {
            move(l, target);
            log.push_back({told::focused, l.number, target});
        }
        log.push_back({told::down, l.number, std::min(target, count)});
    }

    void press_ok(const list &l) { log.push_back({told::selected, l.number, l.current}); }

    // A key of the page goes to the widget that has its focus.
    void press(answer who) {
        for (slider &s : sliders) {
            if (s.number == focus && who == answer::slider_left)
                press_left(s);
            if (s.number == focus && who == answer::slider_right)
                press_right(s);
        }
        for (list &l : lists) {
            if (l.number == focus && who == answer::list_up)
                press_up(l);
            if (l.number == focus && who == answer::list_down)
                press_down(l);
            if (l.number == focus && who == answer::list_ok)
                press_ok(l);
        }
    }

  private:
    static bool exists(const list &l, int index) {
        return index >= 0 && index < static_cast<int>(l.buttons.size());
    }

    static void mark_current(list &l, bool focused) {
        if (!exists(l, l.current))
            return;
        button &b = l.buttons[static_cast<size_t>(l.current)];
        b.focused = focused;
        b.visible = true;
    }

    void put(slider &s, int64_t position) {
        s.position = std::clamp<int64_t>(position, std::numeric_limits<int32_t>::min(),
                                         std::numeric_limits<int32_t>::max());
        log.push_back({told::changed, s.number, s.position});
    }

    answer m_saved_left = answer::nobody;
    answer m_saved_right = answer::nobody;
};

} // namespace model

#endif
