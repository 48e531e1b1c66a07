// SPDX-License-Identifier: MIT
// 100,000 random keys, touches, timer ticks and calls on check boxes, slider bars and button lists;
// after each, their state is compared with a plain model of the rules.

#include "tests/widgets/slider_and_list_model.h"
#include "tests/widgets/slider_test.h"

#include <random>

namespace {

constexpr int k_steps = 100000;
constexpr unsigned k_seed = 1964;
constexpr int k_smallest = -2147483647 - 1;
constexpr int k_largest = 2147483647;

int answer_of_host(ux_event *) {
    return 0;
}

// Real widgets and the model side by side. Handlers of the real ones write down what they are told.
class SliderAndListReplayTest : public SliderTest {
  protected:
    void SetUp() override {
        SliderTest::SetUp();
        make_screen(48, 32);
        fake_chip::get().record_calls = false;
        fake_chip::get().glyphs[u'b'] = {0, 3, 2, {"XX"}};
        ux_page_set_key_handler(page, UX_KEY_LEFT, answer_of_host);
        ux_page_set_key_handler(page, UX_KEY_RIGHT, answer_of_host);
        s_test = this;
        for (const bool has_page : {true, true, false})
            add_slider(has_page);
        for (const int count : {5, 1, 0})
            add_list(count, true);
        add_list(3, false);
        for (int i = 0; i < 2; i++)
            add_box();
    }

    void TearDown() override {
        // Gives the sliders' memory of keys back: the first restore takes all.
        ux_slider_bar_unset_focus(&m_sliders[0]->obj);
        ux_obj_free(&m_sliders[2]->obj);
        ux_button_list_free(obj_of(m_lists[3]));
        SliderTest::TearDown();
    }

    void step() {
        switch (pick(0, 5)) {
        case 0:
        case 1:
            press_key();
            break;
        case 2:
            touch(pick(-4, 52), pick(-4, 36));
            break;
        case 3:
            tick();
            break;
        default:
            call_something();
        }
    }

    void compare() {
        for (size_t i = 0; i < m_sliders.size(); i++)
            compare_slider(*m_sliders[i], m_model.sliders[i]);
        for (size_t i = 0; i < m_lists.size(); i++)
            compare_list(*m_lists[i], m_model.lists[i]);
        for (size_t i = 0; i < m_boxes.size(); i++) {
            compare_status(m_boxes[i]->obj, m_model.boxes[i]);
            EXPECT_EQ(m_boxes[i]->checked != 0, m_model.boxes[i].checked);
        }
        EXPECT_EQ(page->focus, object(m_model.focus));
        EXPECT_EQ(page->key_handlers[UX_KEY_UP], handler(m_model.up));
        EXPECT_EQ(page->key_handlers[UX_KEY_DOWN], handler(m_model.down));
        EXPECT_EQ(page->key_handlers[UX_KEY_OK], handler(m_model.ok));
        EXPECT_EQ(page->key_handlers[UX_KEY_LEFT], handler(m_model.left));
        EXPECT_EQ(page->key_handlers[UX_KEY_RIGHT], handler(m_model.right));
        EXPECT_EQ(m_told, m_model.log);
        m_told.clear();
        m_model.log.clear();
    }

  private:
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    bool toss() { return pick(0, 1) == 1; }

    // Mostly small, sometimes the ends of all numbers.
    int any_number() {
        switch (pick(0, 9)) {
        case 0:
            return k_smallest;
        case 1:
            return k_largest;
        case 2:
            return static_cast<int>(m_random());
        default:
            return pick(-20, 120);
        }
    }

    template <class Widget>
    Widget &any(std::vector<Widget> &widgets, size_t &index) {
        index = static_cast<size_t>(pick(0, static_cast<int>(widgets.size()) - 1));
        return widgets[index];
    }

    static ux_obj *obj_of(ux_button_list *list) { return &list->container.obj; }

    void add_slider(bool has_page) {
        ux_slider_bar *slider = ux_slider_bar_new(has_page ? root() : nullptr, 2, 2, 30, 6);
        slider->change_handler = [](ux_slider_bar *s, int position) {
            return s_test->tell(model::told::changed, &s->obj, position);
        };
        m_sliders.push_back(slider);
        m_model.sliders.push_back({{add_object(&slider->obj), has_page}});
    }

    void add_list(int count, bool has_page) {
        ux_button_list *list =
            ux_button_list_new(has_page ? root() : nullptr, 20, 4, 20, 26, count, 0);
        ux_button_list_set_focus_handler(list, [](ux_button_list *l, int index) {
            return s_test->tell(model::told::focused, obj_of(l), index);
        });
        ux_button_list_set_select_handler(list, [](ux_button_list *l, int index) {
            return s_test->tell(model::told::selected, obj_of(l), index);
        });
        ux_button_list_set_up_handler(list, [](ux_button_list *l, int index) {
            return s_test->tell(model::told::up, obj_of(l), index);
        });
        ux_button_list_set_down_handler(list, [](ux_button_list *l, int index) {
            return s_test->tell(model::told::down, obj_of(l), index);
        });
        m_lists.push_back(list);
        model::list shadow{{add_object(obj_of(list)), has_page}, {}};
        shadow.buttons.resize(static_cast<size_t>(count));
        m_model.lists.push_back(shadow);
    }

    void add_box() {
        ux_check_box *box = ux_check_box_new(root(), 4, 20, 20, 9, u"ab");
        ux_obj_set_handler(
            &box->obj,
            [](ux_event *ev) {
                auto *touched = reinterpret_cast<ux_check_box *>(ev->obj);
                touched->checked = !touched->checked;
                return touched->obj.repaint(ev->obj), 1;
            },
            nullptr);
        m_boxes.push_back(box);
        m_model.boxes.push_back({{add_object(&box->obj), true}});
    }

    int add_object(ux_obj *obj) {
        m_objects.push_back(obj);
        return static_cast<int>(m_objects.size()) - 1;
    }

    int tell(model::told::kind what, const ux_obj *obj, int value) {
        const auto found = std::find(m_objects.begin(), m_objects.end(), obj);
        m_told.push_back({what, static_cast<int>(found - m_objects.begin()), value});
        return 0;
    }

    // As the main loop does it.
    void press_key() {
        constexpr int codes[] = {UX_KEY_UP, UX_KEY_DOWN, UX_KEY_LEFT, UX_KEY_RIGHT, UX_KEY_OK, 77};
        const int code = codes[pick(0, 5)];
        const model::answer answers[] = {m_model.up,    m_model.down, m_model.left,
                                         m_model.right, m_model.ok,   model::answer::nobody};
        const auto at = std::find(std::begin(codes), std::end(codes), code) - std::begin(codes);
        ux_event event = {};
        event.type = UX_EVENT_KEY;
        event.value = code;
        event.obj = page->focus;
        if (page->key_handlers[code])
            page->key_handlers[code](&event);
        m_model.press(answers[at]);
    }

    // Both edges of a box count.
    void touch(int x, int y) {
        ux_event event = {};
        event.type = UX_EVENT_TOUCH;
        event.x = x;
        event.y = y;
        ux_container_scan(root(), touch_position_handler, &event);
        for (size_t i = 0; i < m_boxes.size(); i++) {
            const ux_obj &o = m_boxes[i]->obj;
            if (x >= o.x && x <= o.x + o.width && y >= o.y && y <= o.y + o.height)
                m_model.boxes[i].checked = !m_model.boxes[i].checked;
        }
    }

    // A timer that does what a call may do: on both sides, so its own order does not matter.
    void tick() {
        if (ux_timeout_list == nullptr)
            ux_set_timeout(
                pick(0, 3000), [](ux_event *) { return s_test->call_something(), 0; }, nullptr);
        hooks::get().now.tv_sec++;
        if (toss())
            ux_check_timeout();
    }

    void call_something() {
        switch (pick(0, 2)) {
        case 0:
            call_slider();
            break;
        case 1:
            call_list();
            break;
        default:
            call_box();
        }
    }

    void call_slider() {
        size_t index = 0;
        model::slider &shadow = any(m_model.sliders, index);
        ux_slider_bar *slider = m_sliders[index];
        const int a = any_number();
        const int b = any_number();
        switch (pick(0, 7)) {
        case 0:
            EXPECT_EQ(ux_slider_bar_set_minmax(slider, a, b), model::page::set_range(shadow, a, b));
            break;
        case 1:
            EXPECT_EQ(ux_slider_bar_set_pos(slider, a), model::page::set_position(shadow, a));
            break;
        case 2:
            shadow.step = a;
            EXPECT_EQ(ux_slider_bar_set_step(slider, a), 0);
            break;
        case 3:
            EXPECT_EQ(ux_slider_bar_set_focus(&slider->obj), 0);
            m_model.focus_slider(shadow);
            break;
        case 4:
            EXPECT_EQ(ux_slider_bar_unset_focus(&slider->obj), 0);
            m_model.unfocus_slider(shadow);
            break;
        case 5:
            change_look(slider);
            break;
        default:
            show_or_hide(slider->obj, shadow);
        }
    }

    void change_look(ux_slider_bar *slider) {
        slider->show_numbers = pick(0, 1);
        EXPECT_EQ(ux_slider_bar_set_border(slider, any_number()), 0);
        EXPECT_EQ(ux_slider_bar_set_bg_color(slider, pick(0, 1) * k_ground, k_ground), 0);
        EXPECT_EQ(
            ux_slider_bar_set_size(slider, any_number(), any_number(), pick(-5, 60), pick(-5, 40)),
            0);
        set_cell(static_cast<uint32_t>(pick(0, 8)), static_cast<uint32_t>(pick(0, 20)));
    }

    void call_list() {
        size_t index = 0;
        model::list &shadow = any(m_model.lists, index);
        ux_button_list *list = m_lists[index];
        const int button = toss() ? pick(0, 4) : any_number();
        switch (pick(0, 8)) {
        case 0:
        case 1:
            set_text(list, shadow, button);
            break;
        case 2:
            EXPECT_EQ(ux_button_list_set_value(list, button, static_cast<uint32_t>(index)), 0);
            if (button >= 0 && static_cast<size_t>(button) < shadow.buttons.size())
                shadow.buttons[static_cast<size_t>(button)].value = static_cast<uint32_t>(index);
            break;
        case 3:
            EXPECT_EQ(ux_button_list_move_to_target(list, button), 0);
            m_model.move(shadow, button);
            break;
        case 4:
            focus_list(list, shadow);
            break;
        case 5:
            EXPECT_EQ(ux_button_list_unset_focus(obj_of(list)), 0);
            m_model.unfocus_list(shadow);
            break;
        case 6:
            list->gap = pick(-9, 9);
            EXPECT_EQ(ux_button_list_set_item_border(list, pick(-1, 3)), 0);
            EXPECT_EQ(ux_button_list_set_size(list, any_number(), any_number(), pick(-5, 40),
                                              pick(-5, 40)),
                      0);
            break;
        default:
            show_or_hide(list->container.obj, shadow);
        }
    }

    void set_text(ux_button_list *list, model::list &shadow, int button) {
        const char16_t *const texts[] = {u"a", u"", nullptr, u"bab", u"ab\nb"};
        const char16_t *text = texts[pick(0, 4)];
        EXPECT_EQ(ux_button_list_set_text(list, button, text), 0);
        model::page::set_text(shadow, button, text ? text : u"");
    }

    void focus_list(ux_button_list *list, model::list &shadow) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(ux_button_list_set_focus(obj_of(list)), 0);
        EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), shadow.has_page);
        m_model.focus_list(shadow);
    }

    void call_box() {
        size_t index = 0;
        model::check_box &shadow = any(m_model.boxes, index);
        ux_check_box *box = m_boxes[index];
        switch (pick(0, 4)) {
        case 0:
            box->checked = any_number();
            shadow.checked = box->checked != 0;
            break;
        case 1:
            EXPECT_EQ(ux_check_box_set_focus(&box->obj), 0);
            model::page::take_focus(m_model, shadow);
            break;
        case 2:
            EXPECT_EQ(ux_check_box_unset_focus(&box->obj), 0);
            shadow.focused = false;
            break;
        case 3:
            box->bg_color = toss() ? UX_COLOR_NONE : k_ground;
            ux_obj_set_size(&box->obj, pick(-60, 60), pick(-40, 40), pick(-5, 60), pick(-5, 40));
            break;
        default:
            show_or_hide(box->obj, shadow);
        }
    }

    void show_or_hide(ux_obj &obj, model::widget &shadow) {
        switch (pick(0, 3)) {
        case 0:
            EXPECT_EQ(obj.hide(&obj), 0);
            shadow.visible = false;
            break;
        case 1:
            EXPECT_EQ(obj.repaint(&obj), 0);
            break;
        default:
            EXPECT_EQ(obj.show(&obj), 0);
            shadow.visible = true;
        }
    }

    static void compare_status(const ux_obj &obj, const model::widget &shadow) {
        EXPECT_EQ((obj.status & UX_ST_VISIBLE) != 0, shadow.visible);
        EXPECT_EQ((obj.status & UX_ST_FOCUSED) != 0, shadow.focused);
        EXPECT_EQ(obj.status & UX_ST_SELECTED, 0u);
    }

    static void compare_slider(const ux_slider_bar &slider, const model::slider &shadow) {
        compare_status(slider.obj, shadow);
        EXPECT_EQ(slider.position, shadow.position);
        EXPECT_EQ(slider.minimum, shadow.minimum);
        EXPECT_EQ(slider.maximum, shadow.maximum);
        EXPECT_EQ(slider.step, shadow.step);
    }

    static void compare_list(const ux_button_list &list, const model::list &shadow) {
        compare_status(list.container.obj, shadow);
        EXPECT_EQ(list.current, shadow.current);
        for (size_t i = 0; i < shadow.buttons.size(); i++) {
            const ux_text_button &button = *list.items[i];
            EXPECT_EQ((button.obj.status & UX_ST_VISIBLE) != 0, shadow.buttons[i].visible) << i;
            EXPECT_EQ((button.obj.status & UX_ST_FOCUSED) != 0, shadow.buttons[i].focused) << i;
            EXPECT_EQ(std::u16string(button.text), shadow.buttons[i].text) << i;
            EXPECT_EQ(list.values[i], shadow.buttons[i].value) << i;
        }
    }

    ux_obj *object(int number) const {
        return number == model::k_no_focus ? nullptr : m_objects[static_cast<size_t>(number)];
    }

    static ux_handler handler(model::answer who) {
        switch (who) {
        case model::answer::host:
            return answer_of_host;
        case model::answer::slider_left:
            return ux_slider_bar_key_left;
        case model::answer::slider_right:
            return ux_slider_bar_key_right;
        case model::answer::list_up:
            return ux_button_list_event_move_up;
        case model::answer::list_down:
            return ux_button_list_event_move_down;
        case model::answer::list_ok:
            return ux_button_list_event_press_ok;
        default:
            return nullptr;
        }
    }

    static inline SliderAndListReplayTest *s_test = nullptr;

    std::mt19937 m_random{k_seed};
    model::page m_model;
    std::vector<ux_slider_bar *> m_sliders;
    std::vector<ux_button_list *> m_lists;
    std::vector<ux_check_box *> m_boxes;
    std::vector<ux_obj *> m_objects; // by number
    std::vector<model::told> m_told;
};

} // namespace

TEST_F(SliderAndListReplayTest, hundred_thousand_random_steps_leave_the_state_that_the_rules_tell) {
    testing::internal::CaptureStdout(); // every touch leaves a trace
    int n = 0;
    for (; n < k_steps && !HasFailure(); n++) {
        step();
        compare();
    }
    const std::string output = testing::internal::GetCapturedStdout();
    constexpr size_t k_tail = 2000; // holds what failed
    EXPECT_EQ(n, k_steps) << output.substr(output.size() - std::min(output.size(), k_tail));
}
