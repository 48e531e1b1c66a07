/* SPDX-License-Identifier: MIT
 * `close-window ID` asks an X window to close, as a window manager's close button does. */
#include <X11/Xlib.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(int argc, char **argv) {
    Display *display = XOpenDisplay(NULL);
    if (argc != 2 || display == NULL) {
        fprintf(stderr, "close-window: no window given or no display\n");
        return 1;
    }
    XEvent event;
    memset(&event, 0, sizeof event);
    event.xclient.type = ClientMessage;
    event.xclient.window = strtoul(argv[1], NULL, 0);
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = (long)XInternAtom(display, "WM_DELETE_WINDOW", False);
    Status sent = XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    XCloseDisplay(display);
    return sent == 0;
}
