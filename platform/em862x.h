/* SPDX-License-Identifier: MIT */
/*
 * What the library asks of the chip's SDK, and nothing more. The chip's own library, the PC
 * stand-in in platform/host/ and a test's fake all implement this one interface; libux leaves these
 * symbols undefined and takes whichever library is present at link or load time.
 *
 * Every function is called from the thread that paints.
 */
#ifndef UX_PLATFORM_EM862X_H
#define UX_PLATFORM_EM862X_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Results of the RUA and RMTT calls. Any other value is a failure too. */
enum {
    EM862X_SUCCESS = 6, /* done */
    EM862X_BUSY = 7,    /* the engine is occupied: try again */
    EM862X_FAILURE = 9  /* refused */
};

/* --- Software glyph rasteriser ------------------------------------------------------------- */

/*
 * One rasterised glyph, owned by the rasteriser. The bitmap follows the record directly: `rows`
 * rows of `pitch` bytes, one bit per pixel, most significant bit leftmost, set bit = ink.
 */
typedef struct fss_glyph {
    int16_t left; /* x of the first bitmap column within the advance cell, pixels */
    int16_t top; /* rows from the glyph's top up to the baseline: bitmap starts at baseline - top */
    int16_t advance; /* horizontal advance, pixels */
    int16_t rows;    /* bitmap height, pixels */
    int16_t pitch;   /* bytes per bitmap row */
} fss_glyph;

/* Sets the glyph scale as a 2x2 matrix in 16.16 fixed point: xx and yy are pixel sizes << 16. */
void FSS_set_scale(int32_t xx, int32_t xy, int32_t yx, int32_t yy);

/*
 * Rasterises the glyph of one character code at the present scale. Returns null when there is
 * nothing to return; the caller gives every other result back with FSS_free_char.
 */
fss_glyph *FSS_get_bitmap(uint32_t code);

/* Gives a glyph back; null is ignored. */
void FSS_free_char(fss_glyph *glyph);

/* --- RUA: instance, properties, uncached DRAM ------------------------------------------------ */

typedef struct rua_instance rua_instance;

/* Makes the run-time instance of chip number `chip` (0 = the first). */
int RUACreateInstance(rua_instance **instance, uint32_t chip);

/* Sends `in_size` bytes to a module's property and receives `out_size` bytes of reply. */
int RUAExchangeProperty(rua_instance *instance, uint32_t module, uint32_t property, const void *in,
                        uint32_t in_size, void *out, uint32_t out_size);

/* Sends `in_size` bytes to a module's property; there is no reply. */
int RUASetProperty(rua_instance *instance, uint32_t module, uint32_t property, const void *in,
                   uint32_t in_size);

/* Allocates `size` bytes of DRAM of memory kind `kind`; a DRAM address, 0 on failure. */
uint32_t RUAMalloc(rua_instance *instance, uint32_t controller, uint32_t kind, uint32_t size);

/* Releases what RUAMalloc gave. */
void RUAFree(rua_instance *instance, uint32_t address);

/* --- RMTT: TrueType fonts --------------------------------------------------------------------- */

/* The SDK's own form of a path string. */
typedef struct rm_non_ascii rm_non_ascii;

/* Makes the SDK's form of a zero-terminated byte string; null when out of memory. */
rm_non_ascii *RMnonAsciiFromAscii(const char *text);

/* Releases what RMnonAsciiFromAscii gave; null is ignored. */
void RMFreeNonAscii(rm_non_ascii *text);

/* An open font. Only these header values are read; the rest of the record belongs to the SDK. */
typedef struct rmtt_font {
    uint16_t header[3]; /* 0 and 1: passed to the engine unchanged; 2: em size in font units */
} rmtt_font;

/* Which character codes a font is opened for. */
typedef struct rmtt_mapping {
    uint32_t code[256]; /* entry c: the code that c stands for, 0 = not mapped */
    uint32_t last;      /* highest mapped code */
} rmtt_mapping;

/* Opens a font; EM862X_SUCCESS and *font set, or another value and *font untouched. */
int RMTTOpenFont(rua_instance *instance, rmtt_font **font, const rm_non_ascii *path,
                 const rmtt_mapping *mapping);

/* Closes an open font; null is refused. */
int RMTTCloseFont(rua_instance *instance, rmtt_font *font);

#ifdef __cplusplus
}
#endif

#endif
