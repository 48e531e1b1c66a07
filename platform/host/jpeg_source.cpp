/* SPDX-License-Identifier: MIT */
/*
 * The libjpeg source manager over an open file. It behaves as libjpeg's own over a stdio stream.
 */
#include "platform/host/export.h"

#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

#include <jerror.h>

namespace {

constexpr uint32_t k_buffer_bytes = 4096;

struct file_source {
    jpeg_source_mgr base; /* first: libjpeg holds a pointer to it */
    rm_file *file;        /* not owned */
    bool at_start;        /* nothing has been read yet */
    JOCTET buffer[k_buffer_bytes];
};

file_source *source_of(j_decompress_ptr cinfo) noexcept {
    return reinterpret_cast<file_source *>(cinfo->src);
}

/*
 * False when there is no first byte: libjpeg's error exit, should it come back, may have destroyed
 * the decompressor, so that nothing may be touched afterwards.
 */
boolean fill_input_buffer(j_decompress_ptr cinfo) {
    file_source *source = source_of(cinfo);
    uint32_t count = 0;
    RMReadFile(source->file, source->buffer, k_buffer_bytes, &count);
    if (count == 0) {
        if (source->at_start) {
            ERREXIT(cinfo, JERR_INPUT_EMPTY);
            return FALSE;
        }
        WARNMS(cinfo, JWRN_JPEG_EOF);
        source->buffer[count++] = 0xFF;
        source->buffer[count++] = JPEG_EOI;
    }
    source->base.next_input_byte = source->buffer;
    source->base.bytes_in_buffer = count;
    source->at_start = false;
    return TRUE;
}

void init_source(j_decompress_ptr cinfo) {
    source_of(cinfo)->at_start = true;
}

/* Beyond the end of the file the decoder finds the end marker. */
void skip_input_data(j_decompress_ptr cinfo, long bytes) {
    if (bytes <= 0)
        return;
    jpeg_source_mgr *source = cinfo->src;
    auto rest = static_cast<std::size_t>(bytes);
    while (rest > source->bytes_in_buffer) {
        rest -= source->bytes_in_buffer;
        if (!fill_input_buffer(cinfo))
            return;
    }
    source->next_input_byte += rest;
    source->bytes_in_buffer -= rest;
}

/* The file stays open. */
void term_source(j_decompress_ptr) {}

/* Takes libjpeg's error exit when memory runs out. */
file_source *new_source(j_decompress_ptr cinfo) {
    void *room = (*cinfo->mem->alloc_small)(reinterpret_cast<j_common_ptr>(cinfo), JPOOL_PERMANENT,
                                            sizeof(file_source));
    return static_cast<file_source *>(room);
}

} // namespace

void jpeg_stdio_src_rm_file(struct jpeg_decompress_struct *cinfo, rm_file *file) {
    if (!cinfo || !cinfo->mem)
        return;
    const bool attached = cinfo->src && cinfo->src->init_source == init_source;
    file_source *source = attached ? source_of(cinfo) : new_source(cinfo);
    source->base.init_source = init_source;
    source->base.fill_input_buffer = fill_input_buffer;
    source->base.skip_input_data = skip_input_data;
    source->base.resync_to_restart = jpeg_resync_to_restart;
    source->base.term_source = term_source;
    source->base.bytes_in_buffer = 0;
    source->base.next_input_byte = nullptr;
    source->file = file;
    source->at_start = true;
    cinfo->src = &source->base;
}
