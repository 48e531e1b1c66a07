/* SPDX-License-Identifier: MIT */
/*
 * What the library asks of the chip's SDK, and nothing more. The chip's own library, the PC
 * stand-in in platform/host/ and a test's fake all implement this one interface; libux leaves these
 * symbols undefined and takes whichever library is present at link or load time.
 *
 * Every function is called from the thread that paints; the software rasteriser's also from the
 * ticker's, but never by two threads at the same time.
 */
#ifndef UX_PLATFORM_EM862X_H
#define UX_PLATFORM_EM862X_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Results of the RUA, RMTT and file calls. Any other value is a failure too. */
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

/* Gains CPU access to `size` bytes of DRAM. EM862X_SUCCESS or another value. */
int RUALock(rua_instance *instance, uint32_t address, uint32_t size);

/* Gives up what RUALock gained, with the same arguments. EM862X_SUCCESS or another value. */
int RUAUnLock(rua_instance *instance, uint32_t address, uint32_t size);

/* Maps a locked range of DRAM into the process; null on failure. */
uint8_t *RUAMap(rua_instance *instance, uint32_t address, uint32_t size);

/* Ends a mapping. `pointer` is where RUAMap put it, or the end of it: that plus `size`. */
void RUAUnMap(rua_instance *instance, uint8_t *pointer, uint32_t size);

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

/*
 * Metrics of one character: 16-bit values in font units, of which 0 and 4 are passed on to the
 * engine. They stay valid while the font is open. Null when the font does not know the character.
 */
const int16_t *RMTTGetGlyphMetrics(rmtt_font *font, uint32_t code);

/* Number of outlines that make up a character; 0 for one without ink, such as the space. */
uint32_t RMTTGetCompoundCount(rmtt_font *font, uint32_t code);

/*
 * Six 16-bit values that place outline `part` of a character: xx, xy, yx, yy as 2.14 fixed point,
 * then x and y in font units. Null when the outline is drawn as it is.
 */
const int16_t *RMTTGetScaleMatrix(rmtt_font *font, uint32_t code, uint32_t part);

/* The two words by which the engine finds outline `part` of a character. */
void RMTTGetGlyphPointer(rmtt_font *font, uint32_t code, uint32_t part, uint32_t *word_a,
                         uint32_t *word_b);

/* --- Files ------------------------------------------------------------------------------------ */

/*
 * A file open for reading: one on a disk, or any source of bytes that a cookie stands for. It is
 * read once from front to back.
 */
typedef struct rm_file rm_file;

/* What reads and closes the source of bytes that a cookie stands for. */
typedef struct rm_file_ops {
    /*
     * Puts 1 to `bytes` bytes at `data` and their number into *read_bytes, waiting for the first if
     * it must; 0 of them at the end. EM862X_SUCCESS, or another value when the source fails.
     */
    int (*read)(void *cookie, void *data, uint32_t bytes, uint32_t *read_bytes);
    /* Releases the cookie, whatever the result: EM862X_SUCCESS or another value. */
    int (*close)(void *cookie);
} rm_file_ops;

/*
 * Opens the regular file at `path`; nothing else is a file here, neither a folder nor a pipe nor a
 * device. `mode` is 0, for reading. Null on failure; the caller closes every other result.
 */
rm_file *RMOpenFile(const rm_non_ascii *path, int mode);

/*
 * Makes a file of a cookie, which it takes over, and a copy of `ops`. `mode` is 0, for reading.
 * Null on failure, a missing argument included: then the cookie stays the caller's.
 */
rm_file *RMOpenFileCookie(void *cookie, int mode, const rm_file_ops *ops);

/*
 * Reads the next `bytes` bytes to `data`. EM862X_SUCCESS when all of them came, or when the file
 * ended after at least one did; *read_bytes tells how many. EM862X_FAILURE at the end of the file
 * and when the source fails; *read_bytes then counts the bytes that came before the failure.
 * A request for 0 bytes succeeds without touching the file.
 */
int RMReadFile(rm_file *file, void *data, uint32_t bytes, uint32_t *read_bytes);

/*
 * Closes the file, its cookie included. EM862X_SUCCESS, or EM862X_FAILURE when closing it failed or
 * `file` is null. It is gone in any case.
 */
int RMCloseFile(rm_file *file);

/*
 * Starts to fetch the `http://` address `url` and waits for the answer to begin; `flags` is 0.
 * Redirections are followed to other `http://` addresses. Null when the address is not well formed,
 * the server cannot be reached or refuses, or a limit is passed. Every other result is a cookie for
 * httpFileOps; whoever does not make a file of it closes it with fetchClose.
 */
void *fetchOpen(const char *url, int flags);

/* Ends a fetch, complete or not; null is ignored. */
void fetchClose(void *cookie);

/*
 * Reads and closes what fetchOpen gave. Bytes are handed out while they arrive; the read fails
 * where the transfer breaks off, also when fewer bytes came than the server had promised.
 */
extern const rm_file_ops httpFileOps;

struct jpeg_decompress_struct;

/*
 * Makes `file` the source of a libjpeg decompressor, which must have been created; its memory comes
 * from the decompressor's pool. The file stays the caller's and must stay open while the
 * decompressor reads. No first byte is libjpeg's error JERR_INPUT_EMPTY; data that ends early is
 * its warning JWRN_JPEG_EOF and reads as an end marker.
 */
void jpeg_stdio_src_rm_file(struct jpeg_decompress_struct *cinfo, rm_file *file);

#ifdef __cplusplus
}
#endif

#endif
