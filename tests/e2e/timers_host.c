/* SPDX-License-Identifier: MIT
 * A host that tells on standard output when its timers fire, in milliseconds since 2025-01-01: a
 * timeout of 25 ms that sets itself again, a timeout of a minute, and an alarm half a minute on,
 * which ends the loop at its second firing. */
#include <stdio.h>
#include <stdlib.h>
#include <sys/time.h>
#include <time.h>

#include <ux.h>

static void tell(const char *who) {
    struct timeval now;
    gettimeofday(&now, NULL);
    printf("%s %lld\n", who, (now.tv_sec - 1735689600LL) * 1000 + now.tv_usec / 1000);
}

static int short_due(ux_event *event) {
    static int count = 0;
    tell("short");
    return ++count < 4 ? ux_set_timeout(25000, short_due, event->data) : 0;
}

static int long_due(ux_event *event) {
    (void)event;
    tell("long");
    return 0;
}

static int alarm_due(ux_event *event);

static void set_alarm(int seconds) {
    time_t due = time(NULL) + seconds;
    ux_set_atimer(localtime(&due), alarm_due, NULL);
}

static int alarm_due(ux_event *event) {
    static int count = 0;
    (void)event;
    tell("alarm");
    if (++count == 2) {
        return ux_screen_quit_main_loop();
    }
    set_alarm(3600);
    return 0;
}

int main(void) {
    ux_system_init();
    ux_set_timeout(25000, short_due, NULL);
    ux_set_timeout(60000000, long_due, NULL);
    set_alarm(30);
    ux_screen_main_loop();
    return ux_system_close() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
