// SPDX-License-Identifier: MIT
// Painting body, wheel and buttons.
#include "sim/remote_paint.h"

#include "sim/keys.h"
#include "sim/remote_layout.h"
#include "sim/stroke_font.h"

namespace ux::sim {

namespace {

constexpr shade k_edge = {{0x5a, 0x60, 0x6b}, {0x2c, 0x2f, 0x36}};
constexpr shade k_body = {{0x33, 0x37, 0x3f}, {0x20, 0x23, 0x28}};
constexpr shade k_well = {{0x1a, 0x1c, 0x21}, {0x23, 0x26, 0x2c}};
constexpr shade k_button = {{0x52, 0x58, 0x63}, {0x40, 0x45, 0x4e}};
constexpr shade k_accent = {{0x4c, 0x92, 0xfa}, {0x2a, 0x68, 0xd2}};
constexpr shade k_pressed = {{0x21, 0x57, 0xb5}, {0x3a, 0x80, 0xe8}};
constexpr shade k_accent_pressed = {{0x8f, 0xbd, 0xff}, {0x6a, 0xa3, 0xf8}};
constexpr shade k_led = {{0xb8, 0x3a, 0x3a}, {0x7a, 0x1f, 0x22}};

constexpr colour k_ink = {0xf2, 0xf4, 0xf8};
constexpr colour k_hint_ink = {0xaa, 0xb2, 0xbf};
constexpr colour k_delete_ink = {0xff, 0xa3, 0x98};

constexpr double k_pill_radius = 15;
constexpr double k_body_radius = 38;

void paint_body(canvas &on) {
    constexpr rect k_all = {0, 0, k_remote_width, k_remote_height};
    constexpr rect k_inside = {1.2, 1.2, k_remote_width - 2.4, k_remote_height - 2.4};
    on.fill_rounded(k_all, k_body_radius, k_edge);
    on.fill_rounded(k_inside, k_body_radius - 1.2, k_body);
    on.fill_disc({k_wheel_centre.x, 22}, 4, k_led);
}

void paint_chevron(canvas &on, int dx, int dy) {
    constexpr double k_out = 70; // the tip's distance from the centre
    constexpr double k_size = 8;
    point tip = {k_wheel_centre.x + dx * k_out, k_wheel_centre.y + dy * k_out};
    point base = {tip.x - dx * k_size, tip.y - dy * k_size};
    point one = {base.x + dy * k_size, base.y + dx * k_size};
    point other = {base.x - dy * k_size, base.y - dx * k_size};
    const line_segment lines[] = {{one, tip}, {tip, other}};
    on.draw_lines(lines, 3, k_ink);
}

void paint_wheel(canvas &on, int pressed) {
    struct arrow {
        int key, dx, dy;
    };
    on.fill_disc(k_wheel_centre, k_wheel_radius + 4, k_well);
    on.fill_disc(k_wheel_centre, k_wheel_radius, k_button);
    for (const arrow &side : {arrow{k_key_up, 0, -1}, arrow{k_key_down, 0, 1},
                              arrow{k_key_left, -1, 0}, arrow{k_key_right, 1, 0}}) {
        if (pressed == side.key) {
            on.fill_ring_quarter(k_wheel_centre, 0, k_wheel_radius, side.dx, side.dy, k_pressed);
        }
        paint_chevron(on, side.dx, side.dy);
    }
    on.fill_disc(k_wheel_centre, k_wheel_inner_radius, k_well);
    on.fill_disc(k_wheel_centre, k_ok_radius, pressed == k_key_ok ? k_accent_pressed : k_accent);
    write_centred(on, k_wheel_centre, "OK", {17, 2.6, k_ink});
}

void paint_pill(canvas &on, const remote_button &button, bool pressed) {
    rect below = button.area;
    below.y += 2;
    on.fill_shadow(below, k_pill_radius, 7, 0.55);
    on.fill_rounded(button.area, k_pill_radius, pressed ? k_pressed : k_button);

    point centre = button.area.centre();
    bool digit = button.key >= k_key_digit0 && button.key <= k_key_digit0 + 9;
    colour ink = button.key == k_key_delete ? k_delete_ink : k_ink;
    double height = digit ? 17 : button.key == k_key_delete ? 12 : 13;
    point label = button.hint.empty() ? centre : point{centre.x, centre.y - 7};
    write_centred(on, label, button.label, {height, digit ? 2.4 : 2, ink});
    if (!button.hint.empty()) {
        write_centred(on, {centre.x, centre.y + 13.5}, button.hint, {8, 1.3, k_hint_ink});
    }
}

} // namespace

void paint_remote(canvas &on, int pressed) {
    paint_body(on);
    paint_wheel(on, pressed);
    for (const remote_button &button : remote_buttons()) {
        if (button.shape == button_shape::pill) {
            paint_pill(on, button, pressed == button.key);
        }
    }
}

} // namespace ux::sim
