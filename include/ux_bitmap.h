/* SPDX-License-Identifier: MIT */
/*
 * The bitmap reader: decodes a PNG or JPEG picture, from a file or an http:// address, row by row
 * into 32-bit pixels, scaled to a requested size on the way. ux_load_image() of ux.h is the easy
 * way to it. This header needs those of libpng and libjpeg: build with the CMake component
 * ux::bitmap or with ux-bitmap of pkg-config.
 *
 * Order of calls: RMOpenBitmapFile(), RMBitmapToRaw() once, RMCloseBitmapFile();
 * RMBitmapGetPalette() in between if wanted. A handle lives in the caller's memory and must not
 * move while it is open.
 *
 * Results are the platform's: 6 success, 9 failure.
 */
#ifndef UX_BITMAP_H
#define UX_BITMAP_H

#include "ux.h"

#include <stdio.h>

#include <jpeglib.h>
#include <png.h>
#include <setjmp.h>

#ifdef __cplusplus
extern "C" {
#endif

struct rm_file;

/* Results of the reader. */
enum { UX_BITMAP_SUCCESS = 6, UX_BITMAP_FAILURE = 9, UX_BITMAP_UNKNOWN = 2 };

/* Kinds of pictures (RMBitmapFile.kind). */
enum { UX_BITMAP_JPEG = 1, UX_BITMAP_PNG = 2 };

/* What the caller wants. Null instead of options means 255, 0, 0. */
typedef struct RMBitmapOptions {
    uint8_t alpha;   /* for pixels that have no alpha of their own */
    uint32_t width;  /* output width in pixels; 0 = native */
    uint32_t height; /* output height in pixels; 0 = native */
} RMBitmapOptions;

/* An open PNG. */
typedef struct RMPngFile {
    struct rm_file *file; /* the open platform file */
    png_structp png_ptr;  /* libpng's read structure */
    png_infop info_ptr;   /* libpng's info structure */
    uint32_t width;       /* from the picture's header, pixels */
    uint32_t height;      /* from the picture's header, pixels */
    uint32_t alpha;       /* filler for pixels without alpha, 0..255 */
    uint32_t gray_levels; /* grey levels of a made-up palette; 0 = use the file's */
    uint32_t dst_width;   /* requested size; 0 = native */
    uint32_t dst_height;
} RMPngFile;

/* An open JPEG. */
typedef struct RMJpegFile {
    struct rm_file *file;                /* the open platform file */
    struct jpeg_decompress_struct cinfo; /* libjpeg's object */
    struct jpeg_error_mgr jerr;          /* its standard error manager */
    uint32_t alpha;                      /* alpha of every pixel, 0..255 */
    uint32_t src_width;                  /* libjpeg's output size, pixels */
    uint32_t src_height;
    uint32_t dst_width; /* requested size; 0 = native */
    uint32_t dst_height;
} RMJpegFile;

/* An open picture. */
typedef struct RMBitmapFile {
    uint32_t kind; /* UX_BITMAP_JPEG or UX_BITMAP_PNG: which of the union's members is used */
    union {
        struct rm_file *file; /* the open platform file, first in both */
        RMPngFile png;
        RMJpegFile jpeg;
    };
} RMBitmapFile;

/* Opens the picture `path` and reads its header. The kind is told by the name's last four
 * characters alone, in any case: ".jpg", "jpeg", ".png". Names that begin with "http://" are
 * fetched. Returns 6, or 9 with nothing left open. */
UX_API int RMOpenBitmapFile(const char *path, RMBitmapFile *handle,
                            const RMBitmapOptions *options) UX_NOEXCEPT;

/* Decodes into `dest`: rows of 4 * width bytes, pixels as bytes B, G, R, A, of the requested size,
 * or of the native one when either requested side is 0. Returns 6, or 9 with the rows so far. */
UX_API int RMBitmapToRaw(uint8_t *dest, RMBitmapFile *handle) UX_NOEXCEPT;

/* Releases the handle. Returns the result of closing the file; 2 for an unknown kind. */
UX_API int RMCloseBitmapFile(RMBitmapFile *handle) UX_NOEXCEPT;

/* Writes a PNG's palette as ARGB words, at most 256. Returns 6, or 9: not a PNG, or no palette. */
UX_API int RMBitmapGetPalette(uint32_t *palette, RMBitmapFile *handle) UX_NOEXCEPT;

/* RMBitmapToRaw() of a PNG. */
UX_API int png_to_raw(uint8_t *dest, RMPngFile *png) UX_NOEXCEPT;

/* Reads a PNG's header and sets up its conversion to 8-bit BGRA; `file` is set. Returns 6, or 9
 * with libpng's structures released. */
UX_API int open_png_file(RMPngFile *png) UX_NOEXCEPT;

/* libpng's read callback over the platform file. */
UX_API void png_read_data_rm_file(png_structp png_ptr, png_bytep data, size_t length);

/* libjpeg's error_exit: destroys the object and returns. */
UX_API void my_jpeg_error_exit(j_common_ptr cinfo);

#ifdef __cplusplus
}
#endif

#endif
