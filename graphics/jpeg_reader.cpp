// SPDX-License-Identifier: MIT
// JPEG pictures by libjpeg, over the platform's files. An error must not return into libjpeg once
// the object is destroyed, so while a function here runs, the error exit jumps back to it.

#include "graphics/bitmap_reader.h"
#include "graphics/scale.h"

#include <cstdlib>
#include <cstring>

#include <jerror.h>

namespace ux {
namespace {

constexpr size_t k_uncached_alignment = 32;

// Of libjpeg's memory. A picture in several scans is held as a whole while it is opened, in
// coefficients of 2 bytes: 40 million pixels of three components each take 240 million.
constexpr long k_memory_max = 256L << 20;

// A scan of a few bytes goes over the whole picture again. Encoders make about ten.
constexpr int k_scans_max = 100;

// The decode that is going on in a thread.
struct active_decode {
    j_common_ptr object; // null = none
    jmp_buf landing;
};

// Reached without a call into the dynamic linker, which the library does not ask for.
[[gnu::tls_model("initial-exec")]] thread_local active_decode s_active;

// Arms the landing for `cinfo`; 0 at first, 1 after an error, when the object is already destroyed.
#define UX_LAND_ON_ERROR(cinfo)                                                                    \
    (s_active.object = reinterpret_cast<j_common_ptr>(cinfo), setjmp(s_active.landing))

void disarm() {
    s_active.object = nullptr;
}

void bound_scans(j_common_ptr object) {
    if (reinterpret_cast<j_decompress_ptr>(object)->input_scan_number > k_scans_max)
        object->err->error_exit(object);
}

// Slow integer arithmetic at full size. The extended colour space gives the bytes of RGB, in the
// screen's order and with alpha 255.
void start(RMJpegFile *jpeg) {
    jpeg_decompress_struct *cinfo = &jpeg->cinfo;
    cinfo->out_color_space = JCS_EXT_BGRA;
    cinfo->scale_num = 1;
    cinfo->scale_denom = 1;
    cinfo->dct_method = JDCT_ISLOW;
    cinfo->quantize_colors = FALSE;
    jpeg_progress_mgr progress = {};
    progress.progress_monitor = bound_scans;
    cinfo->progress = &progress;
    jpeg_start_decompress(cinfo);
    cinfo->progress = nullptr;
    jpeg->src_width = cinfo->output_width;
    jpeg->src_height = cinfo->output_height;
}

void read_row(RMJpegFile *jpeg, uint8_t *row) {
    JSAMPROW rows[] = {row};
    jpeg_read_scanlines(&jpeg->cinfo, rows, 1);
}

void set_alpha(uint8_t *row, uint32_t width, uint32_t alpha) {
    if (alpha == 0xFF)
        return;
    for (uint32_t x = 0; x < width; x++)
        row[x * k_pixel_bytes + 3] = static_cast<uint8_t>(alpha);
}

int read_unscaled(uint8_t *dest, RMJpegFile *jpeg) {
    if (UX_LAND_ON_ERROR(&jpeg->cinfo))
        return UX_BITMAP_FAILURE;
    const size_t row_bytes = size_t{jpeg->src_width} * k_pixel_bytes;
    for (uint32_t y = 0; y < jpeg->src_height; y++) {
        read_row(jpeg, dest + y * row_bytes);
        set_alpha(dest + y * row_bytes, jpeg->src_width, jpeg->alpha);
    }
    disarm();
    return UX_BITMAP_SUCCESS;
}

// Whether libjpeg's chroma is smoothed between rows: where luma has two of them to one, and one or
// two columns to one, but not in the narrowest pictures.
bool is_smoothed(const jpeg_component_info &luma, const jpeg_component_info &chroma) {
    constexpr JDIMENSION narrowest = 3;
    return luma.v_samp_factor == 2 && luma.h_samp_factor <= 2 && chroma.h_samp_factor == 1 &&
           chroma.downsampled_width >= narrowest;
}

// Whether libjpeg may leave rows out. Afterwards it goes on at a wrong place where a component has
// more than one row of samples in a group, unless that is for smoothing.
bool can_skip_rows(const jpeg_decompress_struct &cinfo) {
    const jpeg_component_info *parts = cinfo.comp_info;
    if (cinfo.num_components == 1)
        return parts[0].v_samp_factor == 1;
    for (int i = 1; i < cinfo.num_components; i++)
        if (parts[i].v_samp_factor != 1 ||
            (parts[0].v_samp_factor != 1 && !is_smoothed(parts[0], parts[i])))
            return false;
    return true;
}

// Reads on to row `wanted` of the picture, of which `next` is to come; the rows before are not
// converted if that can be.
void read_row_at(RMJpegFile *jpeg, uint32_t wanted, uint32_t next, uint8_t *row) {
    if (next < wanted && can_skip_rows(jpeg->cinfo))
        next += jpeg_skip_scanlines(&jpeg->cinfo, wanted - next);
    for (; next <= wanted; next++)
        read_row(jpeg, row);
}

// Output row k shows source row floor(k * src_height / dst_height). The rows below the last one
// shown are not read.
void scale_rows(uint8_t *dest, RMJpegFile *jpeg, uint8_t *row, const nearest_columns &columns) {
    const size_t out_bytes = size_t{jpeg->dst_width} * k_pixel_bytes;
    uint32_t next = 0; // source row that libjpeg gives next
    for (uint32_t k = 0; k < jpeg->dst_height; k++) {
        uint8_t *out = dest + k * out_bytes;
        const auto wanted =
            static_cast<uint32_t>(uint64_t{k} * jpeg->src_height / jpeg->dst_height);
        if (k > 0 && wanted < next) {
            memcpy(out, out - out_bytes, out_bytes);
            continue;
        }
        read_row_at(jpeg, wanted, next, row);
        next = wanted + 1;
        scale_row(pixels(out), pixels(row), columns);
        set_alpha(out, jpeg->dst_width, jpeg->alpha);
    }
}

// libjpeg's colour conversion stores rows at multiples of 32 bytes past the caches, and this one is
// read again at once.
uint8_t *row_in(uint8_t *memory) {
    return memory + k_uncached_alignment -
           reinterpret_cast<uintptr_t>(memory) % k_uncached_alignment + k_uncached_alignment / 2;
}

int read_scaled(uint8_t *dest, RMJpegFile *jpeg) {
    const size_t row_bytes = size_t{jpeg->src_width} * k_pixel_bytes;
    auto *memory = static_cast<uint8_t *>(calloc(1, row_bytes + 2 * k_uncached_alignment));
    if (!memory)
        return UX_BITMAP_FAILURE;
    const nearest_columns columns(static_cast<int32_t>(jpeg->src_width),
                                  static_cast<int32_t>(jpeg->dst_width));
    const bool failed = UX_LAND_ON_ERROR(&jpeg->cinfo) != 0;
    if (!failed)
        scale_rows(dest, jpeg, row_in(memory), columns);
    disarm();
    free(memory);
    return failed ? UX_BITMAP_FAILURE : UX_BITMAP_SUCCESS;
}

bool is_empty(const jpeg_decompress_struct &cinfo) {
    return cinfo.image_width == 0 || cinfo.image_height == 0;
}

void report_size(const jpeg_decompress_struct &cinfo) {
    fprintf(stderr, "illegal image size: %d x %d pixel\n", static_cast<int>(cinfo.image_width),
            static_cast<int>(cinfo.image_height));
}

} // namespace

int open_jpeg_file(RMJpegFile *jpeg) {
    jpeg_decompress_struct *cinfo = &jpeg->cinfo;
    memset(cinfo, 0, sizeof *cinfo);
    cinfo->err = jpeg_std_error(&jpeg->jerr);
    jpeg->jerr.error_exit = my_jpeg_error_exit;
    if (UX_LAND_ON_ERROR(cinfo)) {
        // libjpeg finds an image without size itself, inside the header, as one without colours.
        if (jpeg->jerr.msg_code == JERR_EMPTY_IMAGE && is_empty(*cinfo))
            report_size(*cinfo);
        return UX_BITMAP_FAILURE;
    }
    jpeg_create_decompress(cinfo);
    cinfo->mem->max_memory_to_use = k_memory_max;
    jpeg_stdio_src_rm_file(cinfo, jpeg->file);
    jpeg_read_header(cinfo, TRUE);
    jpeg_calc_output_dimensions(cinfo);
    const bool empty = is_empty(*cinfo);
    if (empty) {
        report_size(*cinfo);
        jpeg_destroy_decompress(cinfo);
    } else {
        start(jpeg);
    }
    disarm();
    return empty ? UX_BITMAP_FAILURE : UX_BITMAP_SUCCESS;
}

int jpeg_to_raw(uint8_t *dest, RMJpegFile *jpeg) {
    return is_scaled(jpeg->src_width, jpeg->src_height, jpeg->dst_width, jpeg->dst_height)
               ? read_scaled(dest, jpeg)
               : read_unscaled(dest, jpeg);
}

// Finishing with scanlines left over is an error to libjpeg, and scaling down leaves some: then,
// and after an error, the object is only destroyed.
void close_jpeg(RMJpegFile *jpeg) {
    jpeg_decompress_struct *cinfo = &jpeg->cinfo;
    const bool complete = cinfo->mem && cinfo->output_scanline >= cinfo->output_height;
    if (complete && UX_LAND_ON_ERROR(cinfo) == 0)
        jpeg_finish_decompress(cinfo);
    disarm();
    jpeg_destroy_decompress(cinfo);
}

} // namespace ux

void my_jpeg_error_exit(j_common_ptr cinfo) {
    const bool is_active = ux::s_active.object == cinfo;
    jpeg_destroy(cinfo);
    if (!is_active)
        return;
    ux::disarm();
    longjmp(ux::s_active.landing, 1);
}
