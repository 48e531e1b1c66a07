// SPDX-License-Identifier: MIT
// libvncserver, fed with sockets and pictures of our own.
#include "tools/view_server.h"

#include "sim/failure.h"

#include <algorithm>
#include <limits>

namespace ux::view {

namespace {

constexpr int k_most_viewers = 16;
constexpr int k_longest_client_wait_ms = 2000; // for a viewer that stops in a message's middle
constexpr int k_first_button = 1;

view_server &server_of(rfbClientPtr client) {
    return *static_cast<view_server *>(client->screen->screenData);
}

uint16_t highest(const channel &part) {
    return static_cast<uint16_t>((1u << part.bits) - 1);
}

int viewers(rfbScreenInfoPtr screen) {
    int count = 0;
    for (rfbClientPtr client = screen->clientHead; client != nullptr; client = client->next) {
        ++count;
    }
    return count;
}

} // namespace

view_server::view_server(frame_source &source, view_input &input, std::vector<listener> sockets,
                         const std::string &name, const std::string &password)
    : m_source(source), m_input(input), m_sockets(std::move(sockets)), m_watch(source.layout()),
      m_name(name), m_password(password) {
    const frame_layout &layout = source.layout();
    constexpr int k_colours = 3;
    constexpr int k_bits_of_red = 5;
    rfbLogEnable(FALSE);
    rfbMaxClientWait = k_longest_client_wait_ms;
    m_screen = rfbGetScreen(nullptr, nullptr, layout.width, layout.height, k_bits_of_red, k_colours,
                            layout.bits_per_pixel / 8);
    if (m_screen == nullptr) {
        throw sim::failure("cannot set up VNC");
    }
    shape_pixels(layout);
    m_screen->frameBuffer = reinterpret_cast<char *>(m_watch.copy());
    m_screen->desktopName = m_name.c_str();
    m_screen->alwaysShared = TRUE;
    m_screen->cursor = nullptr;    // the screen shows its own, if any
    m_screen->deferUpdateTime = 0; // looks are rare enough
    m_screen->deferPtrUpdateTime = 0;
    m_screen->screenData = this;
    m_screen->kbdAddEvent = on_key;
    m_screen->ptrAddEvent = on_pointer;
    m_screen->newClientHook = on_client;
    if (!m_password.empty()) {
        m_passwords[0] = m_password.data();
        m_screen->authPasswdData = m_passwords.data();
        m_screen->passwordCheck = rfbCheckPasswordByList;
    }
    take_sockets();
}

view_server::~view_server() {
    m_screen->listenSock = RFB_INVALID_SOCKET; // both are closed by their owners
    m_screen->listen6Sock = RFB_INVALID_SOCKET;
    rfbShutdownServer(m_screen, TRUE);
    m_screen->frameBuffer = nullptr; // not the library's
    rfbScreenCleanup(m_screen);
}

void view_server::shape_pixels(const frame_layout &layout) {
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

// Of its own sockets the library tells no errors, and opens IPv6 to everybody. It takes a socket of
// either family in either place.
void view_server::take_sockets() {
    m_screen->port = 0;
    m_screen->ipv6port = 0;
    m_screen->autoPort = FALSE;
    m_screen->httpInitDone = TRUE;
    rfbInitServer(m_screen);
    const std::array<rfbSocket *, 2> places = {&m_screen->listenSock, &m_screen->listen6Sock};
    for (size_t at = 0; at < std::min(places.size(), m_sockets.size()); ++at) {
        *places.at(at) = m_sockets[at].fd();
        FD_SET(m_sockets[at].fd(), &m_screen->allFds);
        m_screen->maxFd = std::max(m_screen->maxFd, m_sockets[at].fd());
    }
}

int view_server::add_to(fd_set &wanted) const {
    for (int fd = 0; fd <= m_screen->maxFd; ++fd) {
        if (FD_ISSET(fd, &m_screen->allFds)) {
            FD_SET(fd, &wanted);
        }
    }
    return m_screen->maxFd;
}

void view_server::look() {
    const std::byte *rows = m_source.rows();
    const auto changed = m_newcomer ? m_watch.look_whole(rows) : m_watch.look(rows);
    m_newcomer = false;
    for (const sim::row_range &run : changed) {
        rfbMarkRectAsModified(m_screen, 0, run.first, m_screen->width, run.first + run.count);
    }
}

void view_server::serve() {
    rfbProcessEvents(m_screen, 0);
}

void view_server::on_key(rfbBool down, rfbKeySym symbol, rfbClientPtr client) {
    const auto key = key_of_symbol(symbol);
    if (down && key) {
        server_of(client).m_input.post(sim::key_message(*key));
    }
}

void view_server::on_pointer(int buttons, int x, int y, rfbClientPtr client) {
    const bool was_down = (client->lastPtrButtons & k_first_button) != 0;
    if (was_down || (buttons & k_first_button) == 0) {
        return;
    }
    server_of(client).m_input.post(sim::touch_message(
        std::clamp(x, 0, client->screen->width - 1), std::clamp(y, 0, client->screen->height - 1)));
}

// While nobody looked, nothing was compared.
rfbNewClientAction view_server::on_client(rfbClientPtr client) {
    if (viewers(client->screen) > k_most_viewers) {
        return RFB_CLIENT_REFUSE;
    }
    server_of(client).m_newcomer = true;
    return RFB_CLIENT_ACCEPT;
}

} // namespace ux::view
