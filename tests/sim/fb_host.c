/* SPDX-License-Identifier: MIT
 * A host in plain C for the simulator's own tests: an ordinary framebuffer program with the event
 * pipe, the two threads and the 10 ms loop of a player. Paints 0x...203040 all over, then for the
 * n-th key a 4x4 box at (4n mod width, 4 * (4n / width)) whose colour is 0xFF00kkFF (RGB565: kk),
 * and for a touch a white 4x4 box with its top left corner there. */
#include <fcntl.h>
#include <linux/fb.h>
#include <pthread.h>
#include <signal.h>
#include <stdatomic.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/msg.h>
#include <sys/stat.h>
#include <unistd.h>

enum { k_ring = 1024, k_box = 4, k_payload = 276 };

static const char k_pipe[] = "/tmp/event";

static struct {
    int width, height, bytes;
    unsigned char *pixels;
} s_screen;

struct event {
    int type, value, x, y;
};

static struct event s_events[k_ring];
static atomic_int s_front, s_rear;

static struct {
    int exit_key, exit_status; /* end by exit() on this key, -1 = none */
    int crash_key;             /* by a null pointer */
    int blink;                 /* never hold the picture still */
    int deaf;                  /* take no input at all */
    int stubborn;              /* ignore SIGTERM */
    int leave_child;           /* fork a child that would outlive us */
} s_options = {.exit_key = -1, .crash_key = -1};

static void fail(const char *what) {
    perror(what);
    exit(3);
}

static void put_pixel(long at, uint32_t colour) {
    if (at < 0 || at >= (long)s_screen.width * s_screen.height) {
        return;
    }
    if (s_screen.bytes == 2) {
        uint16_t narrow = (uint16_t)colour;
        memcpy(s_screen.pixels + at * 2, &narrow, 2);
    } else {
        memcpy(s_screen.pixels + at * 4, &colour, 4);
    }
}

static void paint_box(int x, int y, uint32_t colour) {
    for (int row = 0; row < k_box; ++row) {
        for (int column = 0; column < k_box; ++column) {
            put_pixel((long)(y + row) * s_screen.width + x + column, colour);
        }
    }
}

static void open_screen(void) {
    struct fb_fix_screeninfo fixed;
    struct fb_var_screeninfo variable;
    int fd = open("/dev/fb0", O_RDWR);
    if (fd == -1 || ioctl(fd, FBIOGET_FSCREENINFO, &fixed) != 0 ||
        ioctl(fd, FBIOGET_VSCREENINFO, &variable) != 0) {
        fail("fb_host: /dev/fb0");
    }
    s_screen.width = (int)variable.xres;
    s_screen.height = (int)variable.yres;
    s_screen.bytes = (int)variable.bits_per_pixel / 8;
    size_t bytes = (size_t)s_screen.width * (size_t)s_screen.height * (size_t)s_screen.bytes;
    size_t page = (size_t)sysconf(_SC_PAGESIZE);
    void *memory = mmap(NULL, page + bytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (memory == MAP_FAILED) {
        fail("fb_host: mmap");
    }
    s_screen.pixels = memory;
    /* The last byte of the extra page must be there too. */
    s_screen.pixels[page + bytes - 1] = 0;
    for (long at = 0; at < (long)s_screen.width * s_screen.height; ++at) {
        put_pixel(at, 0xff203040);
    }
}

static void *read_pipe(void *unused) {
    char lines[3][80];
    struct event now = {0};
    memset(lines, 0, sizeof lines);
    for (;;) {
        FILE *pipe = fopen(k_pipe, "r");
        if (pipe == NULL) {
            fail("fb_host: pipe");
        }
        for (int line = 0; line < 3 && fgets(lines[line], 80, pipe) != NULL; ++line) {
            if (line == 2) {
                printf("Fifo is not empty, %s\n", lines[2]);
            }
        }
        fclose(pipe);
        sscanf(lines[0], "%d", &now.type);
        if (now.type == 1) {
            sscanf(lines[1], "%d", &now.value);
        } else if (now.type == 2) {
            sscanf(lines[1], "%d %d %d", &now.value, &now.x, &now.y);
        }
        int next = (s_rear + 1) % k_ring;
        if (next != s_front) {
            s_events[s_rear] = now;
            s_rear = next;
        }
    }
    return unused;
}

static void *bridge(void *unused) {
    struct {
        long type;
        int32_t key, kind, x, y;
        char rest[k_payload - 16];
    } message;
    memset(&message, 0, sizeof message);
    int queue = msgget(ftok("/tmp", 40), IPC_CREAT | 0660);
    while (msgrcv(queue, &message, k_payload, 0, 0) != -1) {
        FILE *pipe = fopen(k_pipe, "w");
        if (pipe == NULL) {
            continue;
        }
        if (message.kind == 1) {
            fprintf(pipe, "%d\n%d\n", 1, message.key);
        } else if (message.kind == 2) {
            fprintf(pipe, "%d\n%d %d %d", 2, 44, message.x, message.y);
        }
        fclose(pipe);
    }
    perror("fb_host: msgrcv");
    return unused;
}

static void start_input(void) {
    pthread_t thread;
    unlink(k_pipe);
    umask(0);
    if (mknod(k_pipe, S_IFIFO | 0666, 0) != 0) {
        fail("fb_host: mknod");
    }
    pthread_create(&thread, NULL, read_pipe, NULL);
    pthread_create(&thread, NULL, bridge, NULL);
}

static void handle(const struct event *event) {
    static int count = 0;
    if (event->type == 2) {
        paint_box(event->x, event->y, 0xffffffff);
        return;
    }
    int key = event->value;
    if (key == s_options.exit_key) {
        exit(s_options.exit_status);
    }
    if (key == s_options.crash_key) {
        raise(SIGSEGV);
    }
    int at = count++ * k_box;
    uint32_t colour = s_screen.bytes == 2 ? (uint32_t)key : 0xff0000ffu | (uint32_t)key << 8;
    paint_box(at % s_screen.width, at / s_screen.width * k_box, colour);
}

static void main_loop(void) {
    uint32_t blinking = 0xff000000;
    for (;;) {
        usleep(10000);
        if (s_options.blink) {
            paint_box(0, s_screen.height - k_box, ++blinking);
        }
        if (s_front != s_rear) {
            struct event event = s_events[s_front];
            s_front = (s_front + 1) % k_ring;
            handle(&event);
        }
    }
}

static void read_options(int argc, char **argv) {
    for (int at = 1; at < argc; ++at) {
        const char *next = at + 1 < argc ? argv[at + 1] : "0";
        if (strcmp(argv[at], "--exit-on") == 0) {
            s_options.exit_key = atoi(next);
        } else if (strcmp(argv[at], "--exit-status") == 0) {
            s_options.exit_status = atoi(next);
        } else if (strcmp(argv[at], "--crash-on") == 0) {
            s_options.crash_key = atoi(next);
        } else if (strcmp(argv[at], "--start-late") == 0) {
            usleep(400000); /* as a slow device does; the tests do not depend on how long */
        }
        s_options.blink |= strcmp(argv[at], "--blink") == 0;
        s_options.deaf |= strcmp(argv[at], "--deaf") == 0;
        s_options.stubborn |= strcmp(argv[at], "--stubborn") == 0;
        s_options.leave_child |= strcmp(argv[at], "--leave-child") == 0;
    }
}

int main(int argc, char **argv) {
    read_options(argc, argv);
    if (s_options.stubborn) {
        signal(SIGTERM, SIG_IGN);
    }
    if (s_options.leave_child && fork() == 0) {
        pause();
    }
    open_screen();
    if (!s_options.deaf) {
        start_input();
    }
    main_loop();
}
