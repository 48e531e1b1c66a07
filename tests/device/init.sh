#!/bin/sh
# SPDX-License-Identifier: MIT
# First process of the test device: loads the display driver, runs the host on the real framebuffer
# and plays the input driver. Asks for a picture by a line on the serial console and goes on when one
# comes back.
PATH=/bin
export LD_LIBRARY_PATH=/lib EM862X_FONT=/fonts/Vera.ttf

mount -t proc proc /proc
mount -t sysfs sysfs /sys
mount -t devtmpfs devtmpfs /dev
mkdir -p /tmp
for module in drm drm_kms_helper ttm drm_ttm_helper drm_vram_helper bochs; do
    insmod "/modules/$module.ko" || echo "device: can not load $module"
done
read -r mode < /sys/class/graphics/fb0/virtual_size
read -r depth < /sys/class/graphics/fb0/bits_per_pixel
echo "device: framebuffer $mode, $depth bits"

picture() {
    echo "device: picture $1"
    read -r _
}

key() {
    ux-remote key "$1" || echo "device: key $1 failed"
    sleep 0.3
}

02-buttons > /dev/null 2> /tmp/host.err &
host=$!
sleep 3
picture 1-home
key right
key down
key ok
picture 2-network
key 1
wait "$host"
echo "device: host ended with $?"
echo "device: done"
poweroff -f
