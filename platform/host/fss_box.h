/* SPDX-License-Identifier: MIT */
/*
 * The hollow box shown for what no font can show.
 */
#ifndef UX_PLATFORM_HOST_FSS_BOX_H
#define UX_PLATFORM_HOST_FSS_BOX_H

#include "platform/host/fss_record.h"
#include "platform/host/fss_scales.h"

namespace em862x {

/*
 * A box that stands on the baseline: 1/2 of the horizontal size wide, 3/4 of the vertical size
 * high, with 1/16 of the size as stroke and room on both sides; each at least one pixel. Shear is
 * not applied. The scale must be usable. Null only when memory runs out.
 */
record_handle make_box(const glyph_scale &scale) noexcept;

} // namespace em862x

#endif
