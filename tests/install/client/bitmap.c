/* SPDX-License-Identifier: MIT */
/* A host in C that reads a picture itself, as a stranger builds it. It looks into the handle's
 * libpng and libjpeg parts, so that their headers must be found. */
#include <stdio.h>

#include <ux_bitmap.h>

int main(void) {
    RMBitmapFile file;
    if (RMOpenBitmapFile("/nowhere/picture.png", &file, NULL) != UX_BITMAP_FAILURE)
        return 1;
    printf("%zu bytes for libjpeg's part, %zu for libpng's\n", sizeof file.jpeg.cinfo,
           sizeof file.png);
    return file.kind == UX_BITMAP_PNG ? 0 : 1;
}
