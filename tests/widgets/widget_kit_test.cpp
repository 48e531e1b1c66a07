// SPDX-License-Identifier: MIT
// What labels and buttons do alike: their copy of the text, and the size it is painted in.

#include "tests/support/page_end.h"
#include "tests/widgets/widget_test.h"

namespace {

// Letters with the codes 0x100 * k + 'A' and so on: no two units of 150 are the same.
std::u16string long_text(int units) {
    std::u16string text;
    for (int k = 0; k < units; k++)
        text += static_cast<char16_t>(0x4101 + k);
    return text;
}

class WidgetTextTest : public WidgetTest {
  protected:
    void SetUp() override {
        WidgetTest::SetUp();
        label = ux_text_label_new(root(), 0, 0, 16, 8, u"");
        button = ux_text_button_new(root(), 0, 0, 16, 8, u"");
    }

    // Gives both widgets the text and returns the copy, which must be one and the same.
    std::u16string copies_of(const char16_t *text) {
        EXPECT_EQ(ux_text_label_set_text(label, text), 0);
        EXPECT_EQ(ux_text_button_set_text(button, text), 0);
        EXPECT_EQ(memcmp(label->text, button->text, sizeof label->text), 0);
        return std::u16string(label->text, UX_TEXT_UNITS);
    }

    // How many glyphs each widget asks for when it is shown.
    size_t glyphs_of(ux_obj *obj) {
        take_calls();
        obj->show(obj);
        return take_calls().size() - 1; // the scale
    }

    ux_text_label *label = nullptr;
    ux_text_button *button = nullptr;
};

class FontSizeTest : public WidgetTest {
  protected:
    // The scale that a label of font size 16 is painted in.
    std::string scale_of(const char *value) {
        if (value)
            setenv("FontSize", value, 1);
        else
            unsetenv("FontSize");
        ux_text_label *label = ux_text_label_new(root(), 0, 0, 16, 8, u"a");
        take_calls();
        EXPECT_EQ(label->obj.show(&label->obj), 0);
        return take_calls().at(0);
    }

    static std::string scale(int64_t fixed) {
        return "FSS_set_scale " + std::to_string(fixed) + " 0 0 " + std::to_string(fixed);
    }
};

} // namespace

TEST_F(WidgetTextTest, text_is_copied_up_to_its_zero_unit) {
    copies_of(u"zzzzzz");
    EXPECT_EQ(copies_of(u"abc").substr(0, 7), (std::u16string(u"abc\0zz\0", 7)));
}

TEST_F(WidgetTextTest, null_text_clears_the_first_unit_only) {
    copies_of(u"abc");
    EXPECT_EQ(copies_of(nullptr).substr(0, 4), (std::u16string(u"\0bc\0", 4)));
}

TEST_F(WidgetTextTest, constructors_take_a_null_text_for_an_empty_one) {
    EXPECT_EQ(ux_text_label_new(root(), 0, 0, 4, 4, nullptr)->text[0], u'\0');
    EXPECT_EQ(ux_text_button_new(root(), 0, 0, 4, 4, nullptr)->text[0], u'\0');
}

TEST_F(WidgetTextTest, text_of_127_units_is_kept_and_drawn_whole) {
    const std::u16string text = long_text(127);
    EXPECT_EQ(copies_of(text.c_str()), text + u'\0');
    EXPECT_EQ(glyphs_of(&label->obj), 127u);
    EXPECT_EQ(glyphs_of(&button->obj), 127u);
}

TEST_F(WidgetTextTest, unit_128_loses_its_high_byte_and_the_text_is_not_drawn) {
    const std::u16string text = long_text(128); // the last one is 0x4180
    const std::u16string copy = copies_of(text.c_str());
    EXPECT_EQ(copy.substr(0, 127), text.substr(0, 127));
    EXPECT_EQ(copy[127], 0x80);
    EXPECT_EQ(glyphs_of(&label->obj), 0u);
    EXPECT_EQ(glyphs_of(&button->obj), 0u);
}

TEST_F(WidgetTextTest, unit_128_without_a_low_byte_ends_the_text) {
    std::u16string text = long_text(127);
    text += u'\u4100';
    EXPECT_EQ(copies_of(text.c_str())[127], 0);
    EXPECT_EQ(glyphs_of(&label->obj), 127u);
}

TEST_F(WidgetTextTest, text_of_300_bytes_is_cut_to_255) {
    const std::u16string text = long_text(150);
    const page_end behind(text.data(), 256); // nothing behind the 128th unit is read
    const std::u16string copy = copies_of(behind.units());
    EXPECT_EQ(copy.substr(0, 127), text.substr(0, 127));
    EXPECT_EQ(copy[127], 0x80);
}

TEST_F(WidgetTextTest, short_text_at_the_end_of_memory_is_not_read_beyond) {
    for (const std::u16string &text : {std::u16string(), std::u16string(u"a"), long_text(127)}) {
        const page_end copy(text.c_str(), 2 * text.size() + 2);
        EXPECT_EQ(copies_of(copy.units()).substr(0, text.size() + 1), text + u'\0');
        ux_text_label_new(root(), 0, 0, 4, 4, copy.units());
        ux_text_button_new(root(), 0, 0, 4, 4, copy.units());
    }
}

TEST_F(WidgetTextTest, widgets_own_text_may_be_set_again) {
    copies_of(u"abc");
    ux_text_label_set_text(label, label->text);
    EXPECT_EQ(std::u16string(label->text), u"abc");
    ux_text_label_set_text(label, label->text + 1);
    EXPECT_EQ(std::u16string(label->text), u"bc");
}

TEST_F(FontSizeTest, unset_variable_gives_the_objects_own_size) {
    EXPECT_EQ(scale_of(nullptr), scale(16 * 65536));
}

TEST_F(FontSizeTest, variable_overrides_the_objects_own_size) {
    EXPECT_EQ(scale_of("24"), scale(24 * 65536));
}

TEST_F(FontSizeTest, number_in_front_counts_and_the_rest_does_not) {
    EXPECT_EQ(scale_of("12px"), scale(12 * 65536));
    EXPECT_EQ(scale_of(" \t7"), scale(7 * 65536));
    EXPECT_EQ(scale_of("+9"), scale(9 * 65536));
    EXPECT_EQ(scale_of("007"), scale(7 * 65536));
    EXPECT_EQ(scale_of("0x10"), scale(0));
}

TEST_F(FontSizeTest, empty_zero_negative_and_junk_show_no_text_and_still_update) {
    set_apart();
    const std::pair<const char *, int> sizes[] = {{"", 0},     {"0", 0},    {"-0", 0}, {"-5", -5},
                                                  {"junk", 0}, {"px12", 0}, {"-", 0}};
    for (const auto &[value, size] : sizes) {
        ux_page_clean();
        EXPECT_EQ(scale_of(value), scale(int64_t{size} * 65536)) << value;
        EXPECT_EQ(buf_letters({{0xFF000000, 'b'}}), fb_letters({{0xFF000000, 'b'}})) << value;
        EXPECT_EQ(fb_pixel(0, 0), 0xFF000000) << value;
    }
}

TEST_F(FontSizeTest, numbers_that_no_int_holds_show_no_text) {
    // 2^32 + 5 and 5 - 2^32 are 5 in their low 32 bits.
    for (const char *value :
         {"2147483647", "2147483648", "4294967301", "-4294967291", "9223372036854775807",
          "99999999999999999999", "-99999999999999999999"}) {
        scale_of(value);
        EXPECT_EQ(fb_pixel(0, 0), 0xFF000000) << value;
    }
}

TEST_F(FontSizeTest, variable_is_read_anew_at_every_paint) {
    ux_text_label *label = ux_text_label_new(root(), 0, 0, 16, 8, u"");
    ux_text_button *button = ux_text_button_new(root(), 0, 0, 16, 8, u"");
    take_calls();
    for (ux_obj *obj : {&label->obj, &button->obj}) {
        setenv("FontSize", "3", 1);
        obj->show(obj);
        setenv("FontSize", "4", 1);
        obj->repaint(obj);
    }
    EXPECT_EQ(take_calls(),
              (calls{scale(3 * 65536), scale(4 * 65536), scale(3 * 65536), scale(4 * 65536)}));
}

TEST_F(FontSizeTest, stored_size_is_not_used_while_the_variable_is_set) {
    ux_text_button *button = ux_text_button_new(root(), 0, 0, 16, 8, u"");
    ux_text_button_set_font_size(button, 30);
    take_calls();
    button->obj.show(&button->obj);
    EXPECT_EQ(take_calls(), calls{scale(5 * 65536)});
    unsetenv("FontSize");
    button->obj.show(&button->obj);
    EXPECT_EQ(take_calls(), calls{scale(30 * 65536)});
}
