// SPDX-License-Identifier: MIT
// Copies of the whole screen to the device, rotated and not.

#include "bench/bench_screen.h"
#include "bench/peers.h"

#include <cstring>

namespace {

void turn(int rotation) {
    if (main_screen.rotation == rotation)
        return;
    use_screen(true);
    main_screen.rotation = rotation;
    main_screen.width = k_height;
    main_screen.height = k_width;
}

void rotate(int rotation) {
    turn(rotation);
    ux_screen_blit_rect(0, 0, k_height, k_width);
}

[[gnu::noinline]] void plain_rotate_90() {
    turn(UX_ROTATION_90);
    const int width = main_screen.width;
    const int height = main_screen.height;
    const auto *from = reinterpret_cast<const uint32_t *>(main_screen.buf);
    auto *to = reinterpret_cast<uint32_t *>(main_screen.fb);
    for (int r = 0; r < height; r++)
        for (int c = 0; c < width; c++)
            to[(width - 1 - c) * height + r] = from[r * width + c];
}

void pixman_rotate() {
    static pixman_image_t *const from = [] {
        pixman_image_t *image = pixman_turned_screen(screen_pixels());
        pixman_transform_t matrix = {{{0, -pixman_fixed_1, pixman_int_to_fixed(k_height)},
                                      {pixman_fixed_1, 0, 0},
                                      {0, 0, pixman_fixed_1}}};
        pixman_image_set_transform(image, &matrix);
        return image;
    }();
    static pixman_image_t *const to = pixman_screen(other_pixels());
    pixman_image_composite32(PIXMAN_OP_SRC, from, nullptr, to, 0, 0, 0, 0, 0, 0, k_width, k_height);
}

} // namespace

void register_blit() {
    contender("blit plain same memory/ux", [] { ux_screen_blit_rect(0, 0, k_width, k_height); });
    contender("blit plain same memory/memcpy",
              [] { memcpy(other_pixels(), main_screen.buf, k_screen_bytes); });
    contender("blit rotated 90/ux", [] { rotate(UX_ROTATION_90); });
    contender("blit rotated 90/memcpy",
              [] { memcpy(other_pixels(), main_screen.buf, k_screen_bytes); });
    contender("blit rotated 90/pixman", [] { pixman_rotate(); });
    contender("blit rotated 90/plain", [] { plain_rotate_90(); });
    contender("blit rotated 270/ux", [] { rotate(UX_ROTATION_270); });
    contender("blit rotated 270/memcpy",
              [] { memcpy(other_pixels(), main_screen.buf, k_screen_bytes); });
}
