// SPDX-License-Identifier: MIT
// Messages of the pipe, from their bytes to the event, without threads.

#include "event/event_message.h"

#include "tests/event/event_test.h"

namespace {

using ux::event_message;
using ux::parse_message;
using ux::pipe_lines;

bool never(int) {
    return false;
}

class EventMessage : public EventTest {
  protected:
    // Feeds one opening: all bytes are written and the writer is gone.
    void feed(const std::string &bytes) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        ASSERT_EQ(write(ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        close(ends[1]);
        pipe_lines lines(ends[0]);
        EXPECT_TRUE(read_message(m_message, lines, never));
        parse_message(m_message);
    }

    // The event after one opening, "type value x y".
    std::string after(const std::string &bytes) {
        feed(bytes);
        return event();
    }

    std::string event() const {
        const ux_event &event = m_message.event;
        return std::to_string(event.type) + " " + std::to_string(event.value) + " " +
               std::to_string(event.x) + " " + std::to_string(event.y);
    }

    event_message m_message = {};
};

TEST_F(EventMessage, a_key_message_is_type_and_code_in_two_lines) {
    EXPECT_EQ(after("1\n23\n"), "1 23 0 0");
    EXPECT_EQ(out(), "");
}

TEST_F(EventMessage, a_touch_message_is_type_and_value_x_y_without_a_line_end) {
    EXPECT_EQ(after("2\n44 100 200"), "2 44 100 200");
    EXPECT_EQ(out(), "");
}

TEST_F(EventMessage, a_stop_message_keeps_the_other_fields) {
    feed("2\n44 100 200");
    EXPECT_EQ(after("0\n0\n"), "0 44 100 200");
}

TEST_F(EventMessage, type_7_keeps_the_fields_of_the_message_before) {
    feed("2\n44 100 200");
    EXPECT_EQ(after("7\n1 2 3\n"), "7 44 100 200");
}

TEST_F(EventMessage, a_key_keeps_the_position_of_the_touch_before) {
    feed("2\n44 100 200");
    EXPECT_EQ(after("1\n9\n"), "1 9 100 200");
}

TEST_F(EventMessage, types_of_timers_and_negative_types_are_types_like_all_others) {
    feed("1\n5\n");
    EXPECT_EQ(after("3\n6\n"), "3 5 0 0");
    EXPECT_EQ(after("4\n6\n"), "4 5 0 0");
    EXPECT_EQ(after("-1\n6\n"), "-1 5 0 0");
}

TEST_F(EventMessage, object_and_data_stay_null) {
    feed("2\n44 100 200");
    EXPECT_EQ(m_message.event.obj, nullptr);
    EXPECT_EQ(m_message.event.data, nullptr);
}

TEST_F(EventMessage, codes_beyond_the_key_table_are_passed_on) {
    EXPECT_EQ(after("1\n256\n"), "1 256 0 0");
    EXPECT_EQ(after("1\n-1\n"), "1 -1 0 0");
    EXPECT_EQ(after("1\n2147483647\n"), "1 2147483647 0 0");
    EXPECT_EQ(after("1\n-2147483648\n"), "1 -2147483648 0 0");
}

TEST_F(EventMessage, an_empty_opening_tells_the_message_before_again) {
    feed("1\n23\n");
    EXPECT_EQ(after(""), "1 23 0 0");
}

TEST_F(EventMessage, an_empty_opening_at_the_beginning_tells_zeros) {
    EXPECT_EQ(after(""), "0 0 0 0");
}

TEST_F(EventMessage, a_missing_second_line_leaves_the_old_one) {
    feed("1\n23\n");
    EXPECT_EQ(after("2\n"), "2 23 0 0");
    feed("2\n44 10 20");
    EXPECT_EQ(after("1\n"), "1 44 10 20");
}

TEST_F(EventMessage, a_second_line_is_parsed_for_the_old_type_when_the_first_is_unreadable) {
    feed("2\n44 10 20");
    EXPECT_EQ(after("x\n7 8 9\n"), "2 7 8 9");
    feed("1\n23\n");
    EXPECT_EQ(after("\n5 6 7\n"), "1 5 8 9");
}

TEST_F(EventMessage, an_unreadable_second_line_changes_nothing) {
    feed("1\n23\n");
    EXPECT_EQ(after("1\nabc\n"), "1 23 0 0");
    EXPECT_EQ(after("1\n\n"), "1 23 0 0");
    EXPECT_EQ(after("1\n- 5\n"), "1 23 0 0");
}

TEST_F(EventMessage, a_partial_touch_changes_only_what_was_read) {
    feed("2\n44 10 20");
    EXPECT_EQ(after("2\n45"), "2 45 10 20");
    EXPECT_EQ(after("2\n46 11"), "2 46 11 20");
    EXPECT_EQ(after("2\n47 x 12"), "2 47 11 20");
    EXPECT_EQ(after("2\n48,1,2"), "2 48 11 20");
    EXPECT_EQ(after("2\nx 1 2"), "2 48 11 20");
}

TEST_F(EventMessage, numbers_are_read_as_scanf_reads_them) {
    EXPECT_EQ(after(" \t1\n  +23abc\n"), "1 23 0 0");
    EXPECT_EQ(after("1\n0x10\n"), "1 0 0 0");
    EXPECT_EQ(after("1\n010\n"), "1 10 0 0");
    EXPECT_EQ(after("1.9\n7\n"), "1 7 0 0");
    EXPECT_EQ(after("2\n1-2+3\n"), "2 1 -2 3");
    EXPECT_EQ(after("2\n\t4\v5\f6\n"), "2 4 5 6");
}

TEST_F(EventMessage, digits_beyond_int_are_read_whole_and_do_no_harm) {
    feed("1\n99999999999999999999999999\n");
    EXPECT_EQ(m_message.event.type, 1);
    feed("2\n2147483648 7 8");
    EXPECT_EQ(m_message.event.x, 7);
    EXPECT_EQ(m_message.event.y, 8);
    feed("2\n-99999999999999999999 9 10");
    EXPECT_EQ(m_message.event.x, 9);
    EXPECT_EQ(m_message.event.y, 10);
}

TEST_F(EventMessage, a_second_message_in_the_pipe_is_told_by_its_first_line_and_lost) {
    EXPECT_EQ(after("1\n12\n1\n13\n"), "1 12 0 0");
    EXPECT_EQ(out(), "Fifo is not empty, 1\n\n");
}

TEST_F(EventMessage, of_many_more_lines_only_one_is_told) {
    EXPECT_EQ(after("1\n12\nfirst\nsecond\nthird\n"), "1 12 0 0");
    EXPECT_EQ(out(), "Fifo is not empty, first\n\n");
}

TEST_F(EventMessage, a_third_line_without_end_is_told_with_one_line_end) {
    EXPECT_EQ(after("1\n12\nmore"), "1 12 0 0");
    EXPECT_EQ(out(), "Fifo is not empty, more\n");
}

TEST_F(EventMessage, a_message_behind_a_touch_is_glued_to_its_y) {
    EXPECT_EQ(after("2\n44 10 202\n44 30 40"), "2 44 10 202");
    EXPECT_EQ(out(), "Fifo is not empty, 44 30 40\n");
}

TEST_F(EventMessage, a_key_behind_a_touch_is_glued_too) {
    EXPECT_EQ(after("2\n44 10 201\n23\n"), "2 44 10 201");
    EXPECT_EQ(out(), "Fifo is not empty, 23\n\n");
}

TEST_F(EventMessage, a_line_of_78_characters_and_its_end_is_whole) {
    EXPECT_EQ(after("1" + std::string(77, ' ') + "\n23\n"), "1 23 0 0");
    EXPECT_EQ(out(), "");
}

TEST_F(EventMessage, a_line_of_79_characters_leaves_its_end_for_the_next) {
    feed("1\n5\n");
    EXPECT_EQ(after("1" + std::string(78, ' ') + "\n23\n"), "1 5 0 0");
    EXPECT_EQ(out(), "Fifo is not empty, 23\n\n");
}

TEST_F(EventMessage, a_line_of_80_characters_goes_on_in_the_next) {
    EXPECT_EQ(after("1" + std::string(78, ' ') + "7\n23\n"), "1 7 0 0");
    EXPECT_EQ(out(), "Fifo is not empty, 23\n\n");
}

TEST_F(EventMessage, the_third_line_is_cut_after_79_characters) {
    feed("1\n12\n" + std::string(80, 'p'));
    EXPECT_EQ(out(), "Fifo is not empty, " + std::string(79, 'p') + "\n");
}

TEST_F(EventMessage, a_long_line_fills_all_three) {
    feed("1" + std::string(100000 - 1, '0').substr(0, 60000));
    EXPECT_EQ(out(), "Fifo is not empty, " + std::string(79, '0') + "\n");
}

TEST_F(EventMessage, a_zero_byte_ends_what_is_parsed_but_not_the_line) {
    EXPECT_EQ(after(std::string("1\0 8\n23\n", 8)), "1 23 0 0");
    EXPECT_EQ(after(std::string("2\n44 5\0 6\n", 10)), "2 44 5 0");
    EXPECT_EQ(out(), "");
    feed("1\n9\n");
    EXPECT_EQ(after(std::string("\0002\n6\n", 5)), "1 6 5 0");
}

TEST_F(EventMessage, a_third_line_that_begins_with_a_zero_byte_is_told_as_empty) {
    feed(std::string("1\n12\n\0abc\n", 10));
    EXPECT_EQ(out(), "Fifo is not empty, \n");
}

TEST_F(EventMessage, bytes_of_all_values_do_no_harm) {
    std::string all;
    for (int i = 0; i < 256; i++)
        all += static_cast<char>(i);
    feed("1\n23\n");
    EXPECT_EQ(after(all), "1 23 0 0");
}

TEST_F(EventMessage, carriage_returns_are_blanks) {
    EXPECT_EQ(after("1\r\n23\r\n"), "1 23 0 0");
    EXPECT_EQ(out(), "");
}

TEST_F(EventMessage, the_rest_of_a_shorter_line_does_not_show_through) {
    feed("1\n12345\n");
    EXPECT_EQ(after("1\n6"), "1 6 0 0");
}

} // namespace
