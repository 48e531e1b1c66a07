// SPDX-License-Identifier: MIT
// libvncserver, fed with one connection and a picture of our own.
#include "tools/view_viewer.h"

#include "sim/failure.h"
#include "tools/owned_fd.h"
#include "tools/view_door.h"
#include "tools/view_keys.h"

#include <algorithm>
#include <array>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <rfb/rfb.h>
#include <sys/socket.h>

namespace ux::view {

namespace {

constexpr int k_longest_client_wait_ms = 5000; // for a viewer that stops in a message's middle
constexpr unsigned k_longest_greeting_s = 60;  // somebody may have to type a password
constexpr unsigned k_wrong_password_pause_s = 1;
constexpr int k_keep_alive_s = 20; // from question to question
constexpr int k_longest_absence_ms = 60000;
constexpr int k_first_button = 1;

class viewer {
  public:
    explicit viewer(const viewer_task &task);
    viewer(const viewer &) = delete;
    viewer &operator=(const viewer &) = delete;
    ~viewer();

    void serve();

  private:
    static viewer &of(rfbClientPtr client) {
        return *static_cast<viewer *>(client->screen->screenData);
    }
    static void on_key(rfbBool down, rfbKeySym symbol, rfbClientPtr client);
    static void on_pointer(int buttons, int x, int y, rfbClientPtr client);
    static rfbBool on_password(rfbClientPtr client, const char *response, int bytes);

    void shape_pixels();
    void ask_password();
    void admit();
    void admit_silent_one();
    bool hear();
    void report(const viewer_report &what) const;

    viewer_task m_task;
    picture_reader m_reader;
    rfbScreenInfoPtr m_screen;
    std::array<char *, 2> m_passwords{}; // the list of one that the library wants
    rfbKeySym m_held = 0;                // the key that went down last; 0 = none
};

viewer::viewer(const viewer_task &task) : m_task(task), m_reader(task.picture) {
    const frame_layout &layout = task.picture.layout();
    constexpr int k_colours = 3;
    constexpr int k_bits_of_red = 5;
    rfbLogEnable(FALSE);
    rfbMaxClientWait = k_longest_client_wait_ms;
    m_screen = rfbGetScreen(nullptr, nullptr, layout.width, layout.height, k_bits_of_red, k_colours,
                            layout.bits_per_pixel / 8);
    if (m_screen == nullptr) {
        throw sim::failure("cannot set up VNC");
    }
    shape_pixels();
    m_screen->frameBuffer = reinterpret_cast<char *>(task.picture.rows());
    m_screen->desktopName = m_task.name.c_str();
    m_screen->cursor = nullptr;    // the screen shows its own, if any
    m_screen->deferUpdateTime = 0; // looks are rare enough
    m_screen->deferPtrUpdateTime = 0;
    m_screen->screenData = this;
    m_screen->kbdAddEvent = on_key;
    m_screen->ptrAddEvent = on_pointer;
    m_screen->port = 0; // it shall not listen
    m_screen->ipv6port = 0;
    m_screen->autoPort = FALSE;
    m_screen->httpInitDone = TRUE;
    ask_password();
    rfbInitServer(m_screen);
}

viewer::~viewer() {
    rfbShutdownServer(m_screen, TRUE);
    m_screen->frameBuffer = nullptr; // not the library's
    rfbScreenCleanup(m_screen);
}

void viewer::shape_pixels() {
    const frame_layout &layout = m_task.picture.layout();
    const auto highest = [](const channel &part) {
        return static_cast<uint16_t>((1u << part.bits) - 1);
    };
    rfbPixelFormat &format = m_screen->serverFormat;
    format.bitsPerPixel = static_cast<uint8_t>(layout.bits_per_pixel);
    format.depth = static_cast<uint8_t>(layout.red.bits + layout.green.bits + layout.blue.bits);
    format.trueColour = 1;
    format.redMax = highest(layout.red);
    format.greenMax = highest(layout.green);
    format.blueMax = highest(layout.blue);
    format.redShift = static_cast<uint8_t>(layout.red.shift);
    format.greenShift = static_cast<uint8_t>(layout.green.shift);
    format.blueShift = static_cast<uint8_t>(layout.blue.shift);
    m_screen->depth = format.depth;
    m_screen->bitsPerPixel = format.bitsPerPixel;
    m_screen->paddedWidthInBytes = static_cast<int>(layout.row_bytes());
}

void viewer::ask_password() {
    if (!m_task.password.empty()) {
        m_passwords[0] = m_task.password.data();
        m_screen->authPasswdData = m_passwords.data();
        m_screen->passwordCheck = on_password;
    }
}

// The library takes a socket on which 100 ms pass without a word for a viewer of VNC, one that
// speaks later for a browser, unexamined, and may wait for ever when less than four bytes come. So
// it meets a socket of our own first, which begins as viewers do and gets the greeting; then the
// viewer's takes its place.
void viewer::admit_silent_one() {
    constexpr ssize_t k_greeting = 12; // bytes
    std::array<int, 2> pair{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()) != 0) {
        throw sim::failure(sim::system_reason("cannot make a pair of sockets"));
    }
    const sim::owned_fd ours(pair[0]);
    const int theirs = pair[1]; // the library's
    send(ours.get(), "RFB ", 4, MSG_NOSIGNAL);
    rfbNewClient(m_screen, theirs);
    std::array<char, k_greeting> greeting{};
    if (recv(ours.get(), greeting.data(), greeting.size(), MSG_DONTWAIT) != k_greeting) {
        throw sim::failure("the VNC library sent no greeting");
    }
    send(m_task.connection, greeting.data(), greeting.size(), MSG_NOSIGNAL);
    dup2(m_task.connection, theirs);
    close(m_task.connection);
}

void viewer::admit() {
    switch (meet(m_task.connection, !m_task.password.empty())) {
    case visitor::viewer:
        return admit_silent_one();
    case visitor::browser:
        rfbNewClient(m_screen, m_task.connection);
        return;
    case visitor::unwelcome:
        return;
    }
}

// False when ux-view has ended.
bool viewer::hear() {
    char packet = 0;
    ssize_t bytes = 0;
    do {
        bytes = recv(m_task.channel, &packet, sizeof packet, MSG_DONTWAIT);
    } while (bytes > 0);
    for (const sim::row_range &run : m_reader.news()) {
        rfbMarkRectAsModified(m_screen, 0, run.first, m_screen->width, run.first + run.count);
    }
    return bytes == -1;
}

void viewer::serve() {
    bool is_in = false;
    alarm(k_longest_greeting_s);
    admit();
    while (m_screen->clientHead != nullptr) {
        if (!is_in && m_screen->clientHead->state == rfbClientRec::RFB_NORMAL) {
            is_in = true;
            alarm(0);
            report({.kind = report_kind::came_in});
        }
        std::array<pollfd, 2> ready = {pollfd{m_screen->clientHead->sock, POLLIN, 0},
                                       pollfd{m_task.channel, POLLIN, 0}};
        poll(ready.data(), ready.size(), -1);
        if (ready[1].revents != 0 && !hear()) {
            return;
        }
        rfbProcessEvents(m_screen, 0);
    }
}

// Lost when ux-view has not taken the ones before.
void viewer::report(const viewer_report &what) const {
    send(m_task.channel, &what, sizeof what, MSG_DONTWAIT | MSG_NOSIGNAL);
}

void viewer::on_key(rfbBool down, rfbKeySym symbol, rfbClientPtr client) {
    viewer &self = of(client);
    const bool repeated = down && symbol == self.m_held;
    if (down) {
        self.m_held = symbol;
    } else if (symbol == self.m_held) {
        self.m_held = 0;
    }
    const auto key = key_of_symbol(symbol);
    if (down && key) {
        self.report(
            {.kind = report_kind::input, .repeated = repeated, .message = sim::key_message(*key)});
    }
}

void viewer::on_pointer(int buttons, int x, int y, rfbClientPtr client) {
    const bool was_down = (client->lastPtrButtons & k_first_button) != 0;
    if (was_down || (buttons & k_first_button) == 0) {
        return;
    }
    of(client).report(
        {.kind = report_kind::input,
         .message = sim::touch_message(std::clamp(x, 0, client->screen->width - 1),
                                       std::clamp(y, 0, client->screen->height - 1))});
}

// Guessing takes its time.
rfbBool viewer::on_password(rfbClientPtr client, const char *response, int bytes) {
    if (rfbCheckPasswordByList(client, response, bytes)) {
        return TRUE;
    }
    sleep(k_wrong_password_pause_s);
    return FALSE;
}

} // namespace

void serve_viewer(const viewer_task &task) {
    const auto set = [&](int level, int option, int value) {
        setsockopt(task.connection, level, option, &value, sizeof value);
    };
    set(IPPROTO_TCP, TCP_NODELAY, 1);
    set(SOL_SOCKET, SO_KEEPALIVE, 1); // a machine that has gone shall not keep its place
    set(IPPROTO_TCP, TCP_KEEPIDLE, k_keep_alive_s);
    set(IPPROTO_TCP, TCP_KEEPINTVL, k_keep_alive_s);
    set(IPPROTO_TCP, TCP_USER_TIMEOUT, k_longest_absence_ms);
    viewer(task).serve();
}

} // namespace ux::view
