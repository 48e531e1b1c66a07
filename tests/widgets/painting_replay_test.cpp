// SPDX-License-Identifier: MIT
// Labels, buttons and check boxes under random calls, beside a model that follows their rules in
// plain loops over a screen of numbers.

#include "tests/support/plain_drawing.h"
#include "tests/widgets/picture_widget_test.h"

#include <algorithm>
#include <optional>

namespace {

constexpr int k_width = 24;
constexpr int k_height = 18;
constexpr int k_line = 5; // "FontSize"

using pixels = std::vector<uint32_t>;

// What the rules know of a widget. The colours and pictures are in the order of the states: normal,
// focused, selected, both.
struct plain_widget {
    ux_obj *real = nullptr;
    uint32_t type = 0;
    int page = 0;
    int x = 0, y = 0, width = 0, height = 0;
    uint32_t flags = 0;
    uint32_t status = 0;
    int border = 0;
    uint32_t sides[4] = {~0u, ~0u, ~0u, ~0u}; // top, bottom, left, right
    uint32_t focused_side = UX_COLOR_BORDER_FOCUS;
    uint32_t fg[4] = {UX_COLOR_TEXT, UX_COLOR_TEXT, UX_COLOR_TEXT_SELECT, UX_COLOR_TEXT_SELECT};
    uint32_t bg[4] = {UX_COLOR_BACKGROUND, UX_COLOR_BACKGROUND, UX_COLOR_BACKGROUND,
                      UX_COLOR_BACKGROUND};
    bool checked = false;
    std::string images[4];
    std::optional<pixels> under; // bg_backup
    std::optional<pixels> face;  // fg_backup

    bool has(uint32_t bits) const { return status & bits; }
    bool is_transparent_in(int states) const {
        return std::find(bg, bg + states, UX_COLOR_NONE) != bg + states;
    }
};

class PaintingReplayTest : public PictureWidgetTest {
  protected:
    void SetUp() override {
        PictureWidgetTest::SetUp();
        fake_chip::get().record_calls = false;
        make_screen(k_width, k_height);
        new_page();
    }

    void TearDown() override {
        for (const plain_widget &w : m_widgets)
            free(w.real->fg_backup);
        PictureWidgetTest::TearDown();
    }

    // --- the rules

    plain::canvas &text_target() { return m_apart ? m_fb : m_buf; }

    pixels save(const plain_widget &w) const {
        pixels copy;
        for (int row = w.y; row < w.y + w.height; row++)
            for (int column = w.x; column < w.x + w.width; column++)
                copy.push_back(m_buf.pixels[static_cast<size_t>(row * k_width + column)]);
        return copy;
    }

    void blend(const plain_widget &w, const pixels &source) {
        for (int i = 0; i < w.width * w.height; i++) {
            const int column = w.x + i % w.width, row = w.y + i / w.width;
            uint32_t &pixel = m_buf.pixels[static_cast<size_t>(row * k_width + column)];
            pixel = plain::blend(pixel, source[static_cast<size_t>(i)]);
        }
    }

    void save_under(plain_widget &w) {
        if (w.has(UX_ST_BG_EXTERNAL))
            return;
        w.under = save(w);
        w.status |= UX_ST_BG_SAVED;
    }
    void save_under_once(plain_widget &w, int states) {
        if ((w.flags & UX_FLAG_SAVE_BG) && w.is_transparent_in(states) && !w.has(UX_ST_BG_SAVED))
            save_under(w);
    }
    void restore(const plain_widget &w) {
        if (w.under && w.has(UX_ST_BG_SAVED))
            blend(w, *w.under);
    }

    void fill(const plain_widget &w, uint32_t color) {
        plain::box(m_buf, w.x, w.y, w.x + w.width - 1, w.y + w.height - 1, color);
    }
    void lay_ground(const plain_widget &w, uint32_t bg, uint32_t color) {
        if (bg != 0)
            fill(w, color);
        else
            restore(w);
    }

    void side(int x0, int y0, int x1, int y1, uint32_t color) {
        if (color != 0)
            plain::line(m_buf, x0, y0, x1, y1, color);
    }
    void paint_border(const plain_widget &w) {
        uint32_t colors[4];
        for (int i = 0; i < 4; i++)
            colors[i] = w.has(UX_ST_FOCUSED) ? w.focused_side : w.sides[i];
        for (int i = 0; i < w.border; i++) {
            const int left = w.x + i, right = w.x + w.width - 1 - i;
            const int top = w.y + i, bottom = w.y + w.height - 1 - i;
            side(left, top, right, top, colors[0]);
            side(left, bottom, right, bottom, colors[1]);
            side(left, top, left, bottom, colors[2]);
            side(right, top, right, bottom, colors[3]);
        }
    }

    // The letter is a dot in the corner of a cell 2 wide: in a box of 1 it goes to the second line.
    void letter(int x, int y, int width, int height, uint32_t fg, uint32_t bg) {
        const int line = width < 2;
        if (width > 0 && line < height / k_line && fg != bg)
            text_target().put(x, y + line * k_line, fg);
    }

    void draw_image(const plain_widget &w, const std::string &path) {
        if (path == blue || path == red)
            blend(w, pixels(static_cast<size_t>(w.width * w.height),
                            path == blue ? 0xFF0000FF : 0xFFFF0000));
    }

    void update(const plain_widget &w) {
        for (int row = w.y; m_apart && row < w.y + w.height; row++)
            for (int column = w.x; column < w.x + w.width; column++)
                m_fb.put(column, row, m_buf.pixels[static_cast<size_t>(row * k_width + column)]);
    }

    void show_text_label(plain_widget &w) {
        save_under_once(w, 1);
        lay_ground(w, w.bg[0], w.bg[0]);
        letter(w.x, w.y, w.width, w.height, w.fg[0], w.bg[0]);
        update(w);
    }

    void show_text_button(plain_widget &w) {
        const uint32_t state = w.status & 3;
        save_under_once(w, 4);
        lay_ground(w, w.bg[state], w.bg[state]);
        paint_border(w);
        letter(w.x + w.border, w.y + w.border, w.width - 2 * w.border, w.height - 2 * w.border,
               w.fg[state], w.bg[state]);
        update(w);
    }

    void show_image_label(plain_widget &w) {
        if (w.images[0].empty())
            return;
        const bool saved = w.has(UX_ST_FG_SAVED);
        if (saved && w.face)
            blend(w, *w.face);
        else
            draw_image(w, w.images[0]);
        if (!saved && (w.flags & UX_FLAG_SAVE_FG)) {
            w.face = save(w);
            w.status |= UX_ST_FG_SAVED;
        }
        update(w);
    }

    void show_image_button(plain_widget &w) {
        if ((w.flags & UX_FLAG_SAVE_BG) && !w.has(UX_ST_BG_SAVED))
            save_under(w);
        else
            restore(w);
        const std::string &image = w.images[w.status & 3];
        if (image.empty())
            return;
        draw_image(w, image);
        update(w);
    }

    void show_check_box(plain_widget &w) {
        const uint32_t state = w.status & UX_ST_FOCUSED;
        const uint32_t fg = w.fg[state];
        const int h = w.height;
        save_under_once(w, 2);
        lay_ground(w, w.bg[0], fg);
        const int near = 2, far = h - 5;
        plain::line(m_buf, w.x + near, w.y + near, w.x + far, w.y + near, fg);
        plain::line(m_buf, w.x + near, w.y + far, w.x + far, w.y + far, fg);
        plain::line(m_buf, w.x + near, w.y + near, w.x + near, w.y + far, fg);
        plain::line(m_buf, w.x + far, w.y + near, w.x + far, w.y + far, fg);
        if (w.checked)
            plain::box(m_buf, w.x + 4, w.y + 4, w.x + h - 7, w.y + h - 7, fg);
        letter(w.x + h + 4, w.y, w.width - 4 - h, h, fg, w.bg[state]);
        update(w);
    }

    void show(plain_widget &w) {
        w.status |= UX_ST_VISIBLE;
        if (w.page != main_screen.current_page)
            return;
        switch (w.type) {
        case UX_TYPE_TEXT_LABEL:
            return show_text_label(w);
        case UX_TYPE_TEXT_BUTTON:
            return show_text_button(w);
        case UX_TYPE_IMAGE_LABEL:
            return show_image_label(w);
        case UX_TYPE_IMAGE_BUTTON:
            return show_image_button(w);
        default:
            return show_check_box(w);
        }
    }

    void hide(plain_widget &w) {
        w.status &= ~uint32_t{UX_ST_VISIBLE};
        if (w.type != UX_TYPE_TEXT_BUTTON || w.page != main_screen.current_page)
            return;
        restore(w);
        update(w);
    }

    void change_state(plain_widget &w, uint32_t bit, bool on) {
        w.status = on ? w.status | bit : w.status & ~bit;
        if (on && bit == UX_ST_FOCUSED)
            m_focus[w.page] = w.real;
        if (w.type == UX_TYPE_TEXT_BUTTON)
            show(w);
    }

    // --- both sides

    void add(ux_obj *real, uint32_t flags) {
        plain_widget w;
        w.real = real;
        w.type = real->type;
        w.page = real->page_id;
        w.x = real->x;
        w.y = real->y;
        w.width = real->width;
        w.height = real->height;
        w.flags = flags;
        m_widgets.push_back(w);
    }

    // Somewhere on the screen. A check box is high enough for its mark.
    ux_obj place(const plain_widget *w = nullptr) {
        ux_obj at = {};
        const int least = w && w->type == UX_TYPE_CHECK_BOX ? 9 : 1;
        at.width = m_dice.between(1, k_width);
        at.height = m_dice.between(least, k_height);
        at.x = m_dice.between(0, k_width - at.width);
        at.y = m_dice.between(0, k_height - at.height);
        return at;
    }

    void make_widgets() {
        for (int page_id : {0, 0, 1}) {
            ux_container *parent = &main_screen.pages[page_id]->container;
            const ux_obj at = place();
            add(&ux_text_label_new(parent, at.x, at.y, at.width, at.height, u"a")->obj, 0);
            add(&ux_text_button_new(parent, at.x, at.y, at.width, at.height, u"a")->obj, 0x10);
            add(&ux_image_label_new(parent, at.x, at.y, at.width, at.height, nullptr)->obj, 0);
            add(&ux_image_button_new(parent, at.x, at.y, at.width, at.height, nullptr, "")->obj,
                0x10);
            add(&ux_check_box_new(parent, 0, 0, k_width, 9, u"a")->obj, 0x10);
        }
    }

    // A background of the host's that the library lets go is the host's to free.
    static void *given_to(const plain_widget &w) {
        return w.has(UX_ST_BG_EXTERNAL) ? w.real->bg_backup : nullptr;
    }

    void resize(plain_widget &w) {
        const ux_obj at = place(&w);
        void *given = given_to(w);
        ux_obj_set_size(w.real, at.x, at.y, at.width, at.height);
        free(given);
        w.x = at.x;
        w.y = at.y;
        w.width = at.width;
        w.height = at.height;
        if (w.under)
            w.status &= ~uint32_t{UX_ST_BG_SAVED | UX_ST_BG_EXTERNAL};
        w.under.reset();
        if (w.type == UX_TYPE_IMAGE_LABEL) // a face of another size has no rule
            set_images(w, "", "");
    }

    void give_background(plain_widget &w) {
        pixels copy(static_cast<size_t>(w.width * w.height));
        for (uint32_t &pixel : copy)
            pixel = m_dice.word();
        void *memory = malloc(copy.size() * sizeof copy[0]);
        memcpy(memory, copy.data(), copy.size() * sizeof copy[0]);
        void *given = given_to(w);
        ux_obj_set_bg_buffer(w.real, memory);
        free(given);
        w.under = copy;
        w.status |= UX_ST_BG_SAVED | UX_ST_BG_EXTERNAL;
    }

    uint32_t color() {
        constexpr uint32_t colors[] = {0, 0, 0xFF000000, 0xFF123456, 0x80445566, 0x00010203};
        return colors[m_dice.between(0, 5)];
    }

    void set_colors(plain_widget &w) {
        for (uint32_t *row : {w.fg, w.bg})
            for (int state = 0; state < 4; state++)
                row[state] = color();
        if (w.type == UX_TYPE_TEXT_LABEL) {
            auto *label = reinterpret_cast<ux_text_label *>(w.real);
            label->fg_color = w.fg[0];
            label->bg_color = w.bg[0];
        } else if (w.type == UX_TYPE_TEXT_BUTTON) {
            auto *button = reinterpret_cast<ux_text_button *>(w.real);
            ux_text_button_set_fg_color(button, w.fg[0], w.fg[1]);
            ux_text_button_set_bg_color(button, w.bg[0], w.bg[1]);
            ux_text_button_set_bg_scolor(button, w.bg[2], w.bg[3]);
            button->select_fg_color = w.fg[2];
            button->select_focus_fg_color = w.fg[3];
        } else if (w.type == UX_TYPE_CHECK_BOX) {
            auto *box = reinterpret_cast<ux_check_box *>(w.real);
            box->checked = w.checked = m_dice.between(0, 1);
            box->fg_color = w.fg[0];
            box->focus_fg_color = w.fg[1];
            box->bg_color = w.bg[0];
            box->focus_bg_color = w.bg[1];
        }
    }

    void set_border(plain_widget &w) {
        w.real->border = w.border = m_dice.between(0, 3);
        const auto sides = static_cast<uint32_t>(m_dice.between(0, 15));
        const uint32_t normal = color(), focus = color();
        ux_obj_set_border_color(w.real, sides, normal, focus);
        for (int i = 0; i < 4; i++)
            if (sides & 1u << i)
                w.sides[i] = normal;
        if (sides & 1)
            w.focused_side = focus;
    }

    void set_images(plain_widget &w, const std::string &first, const std::string &second) {
        if (w.type == UX_TYPE_IMAGE_LABEL) {
            ux_image_label_set_image(reinterpret_cast<ux_image_label *>(w.real), first.c_str());
            if (first != w.images[0])
                w.status &= ~uint32_t{UX_ST_FG_SAVED};
        } else if (w.type == UX_TYPE_IMAGE_BUTTON) {
            auto *button = reinterpret_cast<ux_image_button *>(w.real);
            ux_image_button_set_image(button, first.c_str(), second.c_str());
            memcpy(button->select_image, second.c_str(), second.size() + 1);
            w.images[2] = second;
        }
        w.images[0] = first;
        w.images[1] = second;
    }

    void call_slot(plain_widget &w) {
        ux_obj *obj = w.real;
        switch (m_dice.between(0, 7)) {
        case 0:
            obj->hide(obj);
            return hide(w);
        case 1:
            obj->repaint(obj);
            return w.has(UX_ST_VISIBLE) ? show(w) : hide(w);
        case 2:
        case 3:
            for (ux_slot slot : {obj->set_focus, obj->unset_focus})
                if (slot && m_dice.between(0, 1)) {
                    slot(obj);
                    change_state(w, UX_ST_FOCUSED, slot == obj->set_focus);
                }
            return;
        case 4:
            for (ux_slot slot : {obj->set_select, obj->unset_select})
                if (slot && m_dice.between(0, 1)) {
                    slot(obj);
                    change_state(w, UX_ST_SELECTED, slot == obj->set_select);
                }
            return;
        default:
            obj->show(obj);
            return show(w);
        }
    }

    void change_something(plain_widget &w) {
        const std::string paths[] = {red, blue, clear, ""};
        constexpr uint32_t flags[] = {0, UX_FLAG_SAVE_BG, UX_FLAG_SAVE_FG,
                                      UX_FLAG_SAVE_BG | UX_FLAG_SAVE_FG};
        switch (m_dice.between(0, 6)) {
        case 0:
            return resize(w);
        case 1:
            return give_background(w);
        case 2:
            return set_border(w);
        case 3:
            w.real->flags = w.flags = flags[m_dice.between(0, 3)];
            return;
        case 4:
            main_screen.current_page = m_dice.between(0, 4) == 0;
            return;
        case 5:
            return set_images(w, paths[m_dice.between(0, 3)], paths[m_dice.between(0, 3)]);
        default:
            return set_colors(w);
        }
    }

    void expect_equal(const plain_widget &w) const {
        ASSERT_EQ(plain::numbers(main_screen.buf), m_buf.pixels);
        ASSERT_EQ(plain::numbers(main_screen.fb), m_apart ? m_fb.pixels : m_buf.pixels);
        ASSERT_EQ(w.real->status, w.status);
        ASSERT_EQ(w.real->bg_backup != nullptr, w.under.has_value());
        ASSERT_EQ(w.real->fg_backup != nullptr, w.face.has_value());
        for (int i = 0; i < 2; i++)
            ASSERT_EQ(main_screen.pages[i]->focus, m_focus[i]);
    }

    void replay(int steps) {
        make_widgets();
        for (int i = 0; i < steps; i++) {
            plain_widget &w =
                m_widgets[static_cast<size_t>(m_dice.between(0, int(m_widgets.size()) - 1))];
            testing::internal::CaptureStdout(); // pictures are announced
            if (m_dice.between(0, 2) == 0)
                change_something(w);
            else
                call_slot(w);
            testing::internal::GetCapturedStdout();
            expect_equal(w);
            if (HasFatalFailure())
                FAIL() << "step " << i << ", kind " << w.type;
        }
    }

    bool m_apart = false;
    plain::canvas m_buf = {k_width, k_height};
    plain::canvas m_fb = {k_width, k_height};
    plain::dice m_dice{20261122};
    std::vector<plain_widget> m_widgets;
    ux_obj *m_focus[2] = {};
};

} // namespace

TEST_F(PaintingReplayTest, random_calls_paint_what_the_rules_tell) {
    replay(5000);
}

TEST_F(PaintingReplayTest, random_calls_on_a_buffer_apart_from_the_device_do_too) {
    m_apart = true;
    set_apart();
    replay(5000);
}
