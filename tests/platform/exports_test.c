/* SPDX-License-Identifier: MIT */
/*
 * The shared library seen from C: every function is there, survives empty arguments, and nothing of
 * the inside shows.
 */
#include "platform/em862x.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void check(int holds, const char *claim) {
    if (!holds) {
        fprintf(stderr, "failed: %s\n", claim);
        exit(1);
    }
}

static void check_nulls(void) {
    FSS_free_char(NULL);
    RMFreeNonAscii(NULL);
    RUAFree(NULL, 0);
    check(RUACreateInstance(NULL, 0) == EM862X_FAILURE, "RUACreateInstance");
    check(RUAExchangeProperty(NULL, 1, 1, NULL, 0, NULL, 0) == EM862X_FAILURE, "exchange");
    check(RUASetProperty(NULL, 1, 1, NULL, 0) == EM862X_FAILURE, "RUASetProperty");
    check(RUAMalloc(NULL, 0, 57, 64) == 0, "RUAMalloc");
    check(RMnonAsciiFromAscii(NULL) == NULL, "RMnonAsciiFromAscii");
    check(RMTTOpenFont(NULL, NULL, NULL, NULL) == EM862X_FAILURE, "RMTTOpenFont");
    check(RMTTCloseFont(NULL, NULL) == EM862X_FAILURE, "RMTTCloseFont");
    check(RUALock(NULL, 0, 0) == EM862X_FAILURE, "RUALock");
    check(RUAUnLock(NULL, 0, 0) == EM862X_FAILURE, "RUAUnLock");
    check(RUAMap(NULL, 0, 0) == NULL, "RUAMap");
    RUAUnMap(NULL, NULL, 0);
    check(RMTTGetGlyphMetrics(NULL, 'A') == NULL, "RMTTGetGlyphMetrics");
    check(RMTTGetCompoundCount(NULL, 'A') == 0, "RMTTGetCompoundCount");
    check(RMTTGetScaleMatrix(NULL, 'A', 0) == NULL, "RMTTGetScaleMatrix");
    RMTTGetGlyphPointer(NULL, 'A', 0, NULL, NULL);
}

static void check_files(void) {
    uint32_t count = 1;
    check(RMOpenFile(NULL, 0) == NULL, "RMOpenFile");
    check(RMOpenFileCookie(NULL, 0, &httpFileOps) == NULL, "RMOpenFileCookie");
    check(RMReadFile(NULL, NULL, 1, &count) == EM862X_FAILURE && count == 0, "RMReadFile");
    check(RMReadFile(NULL, NULL, 0, NULL) == EM862X_FAILURE, "RMReadFile without a count");
    check(RMCloseFile(NULL) == EM862X_FAILURE, "RMCloseFile");
    check(fetchOpen(NULL, 0) == NULL, "fetchOpen");
    fetchClose(NULL);
    check(httpFileOps.read(NULL, NULL, 0, NULL) == EM862X_FAILURE, "reading no fetch");
    check(httpFileOps.close(NULL) == EM862X_FAILURE, "closing no fetch");
    jpeg_stdio_src_rm_file(NULL, NULL);
}

static void check_glyph(void) {
    FSS_set_scale(16 << 16, 0, 0, 16 << 16);
    fss_glyph *glyph = FSS_get_bitmap('A');
    check(glyph != NULL && glyph->rows > 0 && glyph->pitch > 0, "a glyph");
    FSS_free_char(glyph);
}

static int is_mapped(const char *name) {
    char line[4096];
    int found = 0;
    FILE *maps = fopen("/proc/self/maps", "r");
    while (maps && fgets(line, sizeof line, maps))
        found = found || strstr(line, name) != NULL;
    if (maps)
        fclose(maps);
    return found;
}

static void check_address(void) {
    check(!is_mapped("/libcurl"), "libcurl waits for the first address");
    check(fetchOpen("ftp://127.0.0.1/a.jpg", 0) == NULL, "an address of another kind");
    check(!is_mapped("/libcurl"), "libcurl waits for an address that is fetched");
    check(fetchOpen("http://127.0.0.1:1/a.jpg", 0) == NULL, "nobody answers");
    check(is_mapped("/libcurl"), "libcurl is loaded by the first address");
}

static void check_hidden(void) {
    void *library = dlopen("libem862x-host.so.1", RTLD_NOW | RTLD_NOLOAD);
    check(library != NULL, "the library has its name");
    check(dlsym(library, "FSS_get_bitmap") != NULL, "public functions are visible");
    check(dlsym(library, "_ZN6em862x9fss_resetEv") == NULL, "private functions are hidden");
    dlclose(library);
}

int main(void) {
    check_nulls();
    check_files();
    check_glyph();
    check_address();
    check_hidden();
    return 0;
}
