// SPDX-License-Identifier: MIT
// One user of the rasteriser at a time; see glyph_session.h.

#include "font/glyph_session.h"

#include "platform/em862x.h"

#include <pthread.h>

namespace ux {
namespace {

constexpr int k_fixed_point_bits = 16;

pthread_mutex_t s_rasteriser = PTHREAD_MUTEX_INITIALIZER;

int32_t fixed_point(int size) {
    return static_cast<int32_t>(static_cast<uint32_t>(size) << k_fixed_point_bits);
}

} // namespace

glyph_session::glyph_session(int size_x, int size_y) {
    pthread_mutex_lock(&s_rasteriser);
    FSS_set_scale(fixed_point(size_x), 0, 0, fixed_point(size_y));
}

glyph_session::~glyph_session() {
    pthread_mutex_unlock(&s_rasteriser);
}

} // namespace ux
