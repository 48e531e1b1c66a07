#!/bin/sh
# SPDX-License-Identifier: MIT
# First process of the test device: loads the drivers, runs the host and ux-view on the real
# framebuffer, ux-inputd on the keyboard, and plays a second input driver. Asks for a picture, for a
# key to be typed on the keyboard or pressed by a viewer outside, by a line on the serial console and
# goes on when one comes back.
PATH=/bin
export LD_LIBRARY_PATH=/lib EM862X_FONT=/fonts/Vera.ttf

mount -t proc proc /proc
mount -t sysfs sysfs /sys
mount -t devtmpfs devtmpfs /dev
mkdir -p /tmp
for module in drm drm_kms_helper ttm drm_ttm_helper drm_vram_helper bochs evdev e1000; do
    insmod "/modules/$module.ko" || echo "device: can not load $module"
done
read -r mode < /sys/class/graphics/fb0/virtual_size
read -r depth < /sys/class/graphics/fb0/bits_per_pixel
echo "device: framebuffer $mode, $depth bits"

ifconfig lo 127.0.0.1
ifconfig eth0 10.0.2.15

ask() {
    echo "device: $1 $2"
    read -r _
}

key() {
    ux-remote key "$1" || echo "device: key $1 failed"
    sleep 0.3
}

02-buttons > /dev/null 2> /tmp/host.err &
host=$!
(umask 077 && echo picture > /tmp/password)
ux-view --no-web --listen 10.0.2.15 --password-file /tmp/password /dev/fb0 > /dev/null \
    2> /tmp/view.err &
view=$!
ux-inputd --grab 2> /tmp/input.err &
input=$!
sleep 3
ask picture 1-home
key right
ask type down
sleep 0.3
ask press ok
sleep 0.3
ask picture 2-network
ask type 0
wait "$host"
echo "device: host ended with $?"
kill "$input"
wait "$input"
echo "device: input driver ended with $?"
kill "$view"
wait "$view"
echo "device: viewer ended with $?"
for report in /tmp/input.err /tmp/view.err; do
    while read -r line; do
        echo "device: $report: $line"
    done < "$report"
done
echo "device: done"
poweroff -f
