// SPDX-License-Identifier: MIT
// The event ring: what goes in comes out, in order and whole, and no more than 1023 at a time.

#include "tests/event/event_test.h"

#include <type_traits>

namespace {

using event_tests::eventually;

class EventRing : public EventTest {
  protected:
    static ux_event numbered(int n) {
        ux_event event = {};
        event.type = 1;
        event.value = n;
        return event;
    }
    static int put(int n) {
        const ux_event event = numbered(n);
        return ux_event_put(&event);
    }
    // The number of the oldest event, or the (negative) result.
    static int take() {
        ux_event event = {};
        const int result = ux_event_get(&event);
        return result == 0 ? event.value : result;
    }
};

TEST_F(EventRing, get_on_a_fresh_ring_returns_minus_2) {
    EXPECT_EQ(take(), -2);
}

TEST_F(EventRing, get_on_an_empty_ring_leaves_the_record_alone) {
    ux_event event = {7, 8, 9, 10, nullptr, &event};
    EXPECT_EQ(ux_event_get(&event), -2);
    EXPECT_EQ(event.type, 7);
    EXPECT_EQ(event.value, 8);
    EXPECT_EQ(event.x, 9);
    EXPECT_EQ(event.y, 10);
    EXPECT_EQ(event.data, &event);
}

TEST_F(EventRing, the_record_has_six_fields_in_their_order) {
    static_assert(std::is_standard_layout_v<ux_event>);
    EXPECT_EQ(offsetof(ux_event, type), 0u);
    EXPECT_EQ(offsetof(ux_event, value), 4u);
    EXPECT_EQ(offsetof(ux_event, x), 8u);
    EXPECT_EQ(offsetof(ux_event, y), 12u);
    EXPECT_EQ(offsetof(ux_event, obj), 16u);
    EXPECT_EQ(offsetof(ux_event, data), 16u + sizeof(void *));
    EXPECT_EQ(sizeof(ux_event), 16u + 2 * sizeof(void *));
}

TEST_F(EventRing, all_six_fields_go_through) {
    ux_obj object = {};
    int data = 0;
    const ux_event in = {2, 44, -5, 2147483647, &object, &data};
    ASSERT_EQ(ux_event_put(&in), 0);
    ux_event out = {};
    ASSERT_EQ(ux_event_get(&out), 0);
    EXPECT_EQ(out.type, 2);
    EXPECT_EQ(out.value, 44);
    EXPECT_EQ(out.x, -5);
    EXPECT_EQ(out.y, 2147483647);
    EXPECT_EQ(out.obj, &object);
    EXPECT_EQ(out.data, &data);
}

TEST_F(EventRing, a_put_copies_the_record) {
    ux_event event = numbered(5);
    ASSERT_EQ(ux_event_put(&event), 0);
    event.value = 6;
    EXPECT_EQ(take(), 5);
}

TEST_F(EventRing, it_has_1024_slots) {
    EXPECT_EQ(sizeof ux::events / sizeof ux::events[0], 1024u);
}

TEST_F(EventRing, a_put_moves_rear_and_a_get_moves_front) {
    put(1);
    EXPECT_EQ(ux::front.load(), 0);
    EXPECT_EQ(ux::rear.load(), 1);
    take();
    EXPECT_EQ(ux::front.load(), 1);
    EXPECT_EQ(ux::rear.load(), 1);
}

TEST_F(EventRing, of_1024_puts_the_last_is_told_and_lost) {
    for (int n = 0; n < 1023; n++)
        ASSERT_EQ(put(n), 0) << n;
    EXPECT_EQ(err(), "");
    EXPECT_EQ(put(1023), -1);
    EXPECT_EQ(err(), "Event queue is full!\n");
    EXPECT_EQ(out(), "");
    for (int n = 0; n < 1023; n++)
        ASSERT_EQ(take(), n);
    EXPECT_EQ(take(), -2);
}

TEST_F(EventRing, every_put_on_a_full_ring_is_told) {
    for (int n = 0; n < 1023; n++)
        put(n);
    EXPECT_EQ(put(1), -1);
    EXPECT_EQ(put(2), -1);
    EXPECT_EQ(err(), "Event queue is full!\nEvent queue is full!\n");
}

TEST_F(EventRing, one_get_makes_room_for_one_put) {
    for (int n = 0; n < 1023; n++)
        put(n);
    EXPECT_EQ(take(), 0);
    EXPECT_EQ(put(5000), 0);
    EXPECT_EQ(put(5001), -1);
    for (int n = 1; n < 1023; n++)
        ASSERT_EQ(take(), n);
    EXPECT_EQ(take(), 5000);
    EXPECT_EQ(take(), -2);
}

TEST_F(EventRing, indices_wrap_after_slot_1023) {
    ux::front = ux::rear = 1023;
    EXPECT_EQ(put(1), 0);
    EXPECT_EQ(ux::rear.load(), 0);
    EXPECT_EQ(put(2), 0);
    EXPECT_EQ(ux::rear.load(), 1);
    EXPECT_EQ(take(), 1);
    EXPECT_EQ(ux::front.load(), 0);
    EXPECT_EQ(take(), 2);
    EXPECT_EQ(take(), -2);
}

TEST_F(EventRing, it_is_full_with_rear_at_the_end_and_front_at_the_beginning) {
    ux::front = 0;
    ux::rear = 1023;
    EXPECT_EQ(put(1), -1);
    EXPECT_EQ(ux::rear.load(), 1023);
}

TEST_F(EventRing, it_holds_1023_from_any_start) {
    for (int start : {1, 511, 1022, 1023}) {
        ux::front = ux::rear = start;
        for (int n = 0; n < 1023; n++)
            ASSERT_EQ(put(n), 0) << start << " " << n;
        ASSERT_EQ(put(9), -1) << start;
        for (int n = 0; n < 1023; n++)
            ASSERT_EQ(take(), n) << start;
        ASSERT_EQ(take(), -2) << start;
    }
}

// Under the thread sanitizer this also proves that a slot is handed over in order.
TEST_F(EventRing, one_producer_and_one_consumer_lose_and_mix_nothing) {
    constexpr int k_events = 200000;
    std::thread producer([] {
        for (int n = 0; n < k_events; n++) {
            ux_event event = {n, n + 1, n + 2, n + 3, nullptr, nullptr};
            event.data = reinterpret_cast<void *>(static_cast<uintptr_t>(n));
            while ((ux::rear + 1) % 1024 == ux::front)
                std::this_thread::yield();
            ux_event_put(&event);
        }
    });
    int wrong = 0;
    int taken = 0;
    const bool complete = eventually([&] {
        ux_event event = {};
        while (ux_event_get(&event) == 0) {
            wrong += event.type != taken || event.value != taken + 1 || event.x != taken + 2 ||
                     event.y != taken + 3 ||
                     event.data != reinterpret_cast<void *>(static_cast<uintptr_t>(taken));
            taken++;
        }
        return taken == k_events;
    });
    producer.join();
    EXPECT_TRUE(complete) << taken;
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(err(), "");
}

// A producer that does not wait loses events, but those that come are whole and in order.
TEST_F(EventRing, a_producer_that_overruns_loses_whole_events_only) {
    constexpr int k_events = 20000;
    std::atomic<int> stored{0};
    std::atomic<bool> ended{false};
    std::thread producer([&] {
        for (int n = 0; n < k_events; n++) {
            const ux_event event = {n, -n, n, -n, nullptr, nullptr};
            stored += ux_event_put(&event) == 0;
        }
        ended = true;
    });
    int taken = 0;
    int last = -1;
    int wrong = 0;
    const bool complete = eventually([&] {
        const bool was_ended = ended;
        ux_event event = {};
        while (ux_event_get(&event) == 0) {
            wrong += event.type <= last || event.value != -event.type || event.x != event.type ||
                     event.y != -event.type;
            last = event.type;
            taken++;
        }
        return was_ended;
    });
    producer.join();
    EXPECT_TRUE(complete);
    EXPECT_EQ(taken, stored.load());
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(event_tests::occurrences(err(), "Event queue is full!\n"), k_events - taken);
}

// As a host does that takes events itself while one of its handlers runs.
TEST_F(EventRing, consumers_that_wait_for_each_other_take_turns) {
    constexpr int k_turns = 200;
    for (int n = 0; n < 2 * k_turns; n++)
        ASSERT_EQ(put(n), 0);
    for (int turn = 0; turn < k_turns; turn++) {
        EXPECT_EQ(take(), 2 * turn);
        int taken = -1;
        std::thread([&] { taken = take(); }).join();
        EXPECT_EQ(taken, 2 * turn + 1);
    }
    EXPECT_EQ(take(), -2);
}

} // namespace
