#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs 02-buttons on a real kernel framebuffer in QEMU and compares the screen with the simulator.

The kernel is Debian's own, unpacked from its package; nothing is installed. The guest holds the
drivers of display, keyboard and network, a shell, the example, the tools and the libraries they
need. Keys go in at the real message queue: from ux-remote, from the emulated keyboard by way of
ux-inputd, and from a viewer outside that knows ux-view's password. Pictures come out of the
emulated display and, the same, to the viewer.

Exit status: 0 all pictures equal, 1 a difference or a failure, 2 wrong use or something missing.
"""

import argparse
import pathlib
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "sim"))
from view_support import Client  # noqa: E402

MODULES = {
    "drm": "gpu/drm/drm.ko",
    "drm_kms_helper": "gpu/drm/drm_kms_helper.ko",
    "ttm": "gpu/drm/ttm/ttm.ko",
    "drm_ttm_helper": "gpu/drm/drm_ttm_helper.ko",
    "drm_vram_helper": "gpu/drm/drm_vram_helper.ko",
    "bochs": "gpu/drm/tiny/bochs.ko",
    "evdev": "input/evdev.ko",
    "e1000": "net/ethernet/intel/e1000/e1000.ko",
}
COMMANDS = ["sh", "mount", "mkdir", "insmod", "sleep", "poweroff", "echo", "cat", "ifconfig"]
PROGRAMS = ["02-buttons", "ux-remote", "ux-inputd", "ux-view"]
GUEST_ADDRESS, GUEST_VNC_PORT = "10.0.2.15", 5900  # as init.sh has them
PASSWORD = b"picture"  # as init.sh has it
KEY_SYMBOLS = {"right": 0xFF53, "down": 0xFF54, "ok": 0xFF0D}
VIEW_LIMIT_S = 20
VERA = "/usr/share/fonts/truetype/ttf-bitstream-vera/Vera.ttf"
BOOT_LIMIT_S = 300


def fail(message, status=1):
    print(f"device: {message}", file=sys.stderr)
    sys.exit(status)


def libraries_of(program):
    """Files that the dynamic linker loads for a program, by ldd."""
    text = subprocess.run(["ldd", program], check=True, capture_output=True, text=True).stdout
    return [pathlib.Path(path) for path in re.findall(r"(/\S+\.so\S*) \(0x", text)]


def unpack_kernel(work):
    """Downloads the kernel package and unpacks it; returns the image and the modules' folder."""
    depends = subprocess.run(["apt-cache", "depends", "linux-image-amd64"], check=True,
                             capture_output=True, text=True).stdout
    found = re.search(r"Depends: (linux-image-\S+)", depends)
    if not found:
        fail("no kernel package known: run apt-get update", 2)
    subprocess.run(["apt-get", "download", "-q", found.group(1)], check=True, cwd=work,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    package = next(work.glob("linux-image-*.deb"))
    subprocess.run(["dpkg-deb", "-x", package, work / "kernel"], check=True)
    image = next((work / "kernel" / "boot").glob("vmlinuz-*"))
    modules = next((work / "kernel" / "lib" / "modules").iterdir()) / "kernel/drivers"
    return image, modules


def make_guest(work, build, modules):
    """Builds the guest's file system as a compressed cpio archive."""
    root = work / "root"
    for folder in ["bin", "lib", "lib64", "modules", "fonts", "proc", "sys", "dev", "tmp"]:
        (root / folder).mkdir(parents=True)
    shutil.copy("/bin/busybox", root / "bin/busybox")
    for command in COMMANDS:
        (root / "bin" / command).symlink_to("busybox")
    for program in PROGRAMS:
        shutil.copy(build / "bin" / program, root / "bin" / program)
        for library in libraries_of(build / "bin" / program):
            place = "lib64" if library.name.startswith("ld-linux") else "lib"
            shutil.copy(library, root / place / library.name)
    for name, place in MODULES.items():
        shutil.copy(modules / place, root / "modules" / f"{name}.ko")
    shutil.copy(VERA, root / "fonts/Vera.ttf")
    init = root / "init"
    shutil.copy(pathlib.Path(__file__).with_name("init.sh"), init)
    init.chmod(0o755)
    archive = work / "guest.cpio.gz"
    subprocess.run("find . | cpio -o -H newc --quiet | gzip -1 > " + str(archive), shell=True,
                   check=True, cwd=root)
    return archive


class Monitor:
    """QEMU's human monitor on a local socket."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(str(path))
        self.answer()

    def answer(self):
        text = b""
        while b"(qemu) " not in text:
            got = self.socket.recv(4096)
            if not got:
                fail("the emulator's monitor has gone")
            text += got

    def do(self, command):
        self.socket.sendall(f"{command}\n".encode())
        self.answer()


class Viewer:
    """A viewer of the guest's screen, which it sees from outside by ux-view."""

    def __init__(self, port):
        self.client = Client("127.0.0.1", port).start(PASSWORD)

    def picture(self):
        words = self.client.picture()
        picture = bytearray(len(words) // 4 * 3)
        for colour in range(3):
            picture[colour::3] = words[2 - colour::4]
        return bytes(picture)

    def shoot(self, path, display):
        """Keeps what it sees, which must soon be what the display shows."""
        width, height, pixels = pixels_of_ppm(display)
        deadline = time.monotonic() + VIEW_LIMIT_S
        while (seen := self.picture()) != pixels and time.monotonic() < deadline:
            time.sleep(0.1)
        path.write_bytes(b"P6\n%d %d\n255\n" % (width, height) + seen)

    def press(self, key):
        """Waits for the change that the key makes on the screen."""
        self.picture()
        self.client.key(KEY_SYMBOLS[key])
        try:
            self.client.update(1)
        except TimeoutError:
            fail(f"a viewer's key '{key}' changed nothing on the screen")


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as other:
        return other.getsockname()[1]


def obey(line, outside, pictures):
    """Does what the guest asks for."""
    word, name = line.split()
    if "viewer" not in outside:
        outside["monitor"] = Monitor(outside["monitor path"])
        outside["viewer"] = Viewer(outside["port"])
    if word == "picture":
        outside["monitor"].do(f"screendump {pictures / name}.ppm")
        outside["viewer"].shoot(pictures / f"{name}-viewer.ppm", pictures / f"{name}.ppm")
    elif word == "type":
        outside["monitor"].do(f"sendkey {name}")
    else:
        outside["viewer"].press(name)


def run_guest(work, image, archive, pictures):
    """Boots the guest and collects its pictures; returns the lines it said."""
    outside = {"monitor path": work / "monitor", "port": free_port()}
    network = (f"user,model=e1000,restrict=on,hostfwd=tcp:127.0.0.1:{outside['port']}-"
               f"{GUEST_ADDRESS}:{GUEST_VNC_PORT}")
    command = ["qemu-system-x86_64", "-m", "512", "-vga", "std", "-display", "none", "-no-reboot",
               "-nic", network, "-kernel", image, "-initrd", archive, "-append",
               "console=ttyS0 quiet rdinit=/init video=1280x720 vt.global_cursor_default=0",
               "-serial", "stdio", "-monitor", f"unix:{work}/monitor,server=on,wait=off"]
    guest = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT, text=True, bufsize=1, errors="replace")
    limit = threading.Timer(BOOT_LIMIT_S, guest.kill)
    limit.start()
    said = []
    try:
        for line in guest.stdout:
            found = re.search(r"device: (.*)", line)
            if not found:
                continue
            said.append(found.group(1).strip())
            print("guest:", said[-1], flush=True)
            if re.fullmatch(r"(picture|press|type) \S+", said[-1]):
                obey(said[-1], outside, pictures)
                guest.stdin.write("go\n")
                guest.stdin.flush()
    finally:
        limit.cancel()
        guest.kill()
        guest.wait()
    return said


def pixels_of_ppm(path):
    data = path.read_bytes()
    head = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", data)
    if not head:
        fail(f"{path} is no picture")
    return int(head.group(1)), int(head.group(2)), data[head.end():]


def shoot_in_simulator(build, work):
    """The same walk in the simulator; returns the folder of its shots."""
    shots = work / "shots"
    shots.mkdir()
    script = ("wait still 500\nshot 1-home.png\nkey right\nkey down\nkey ok\nwait still 500\n"
              "shot 2-network.png\nkey 1\nwait exit\n")
    subprocess.run([build / "bin/ux-sim", "--headless", "--script", "-", "--shots", shots, "--",
                    build / "bin/02-buttons"], input=script, text=True, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return shots


def compare(pictures, shots):
    """Prints a line per picture; returns whether all are equal."""
    equal = True
    for name in ["1-home", "2-network"]:
        shot = subprocess.run(["pngtopnm", shots / f"{name}.png"], check=True, capture_output=True)
        expected = pictures / f"{name}-simulator.ppm"
        expected.write_bytes(shot.stdout)
        for taker in ["", "-viewer"]:
            picture = pictures / f"{name}{taker}.ppm"
            same = picture.exists() and pixels_of_ppm(picture) == pixels_of_ppm(expected)
            print(f"{name}{taker}: {'equal' if same else 'DIFFERENT'} ({picture})")
            equal = equal and same
    return equal


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path, help="build folder with bin/ and lib/")
    parser.add_argument("pictures", type=pathlib.Path, help="folder for the pictures")
    options = parser.parse_args()
    for tool in ["qemu-system-x86_64", "busybox", "cpio", "ldd", "dpkg-deb", "pngtopnm",
                 "openssl"]:
        if not shutil.which(tool):
            fail(f"{tool} is missing", 2)
    build = options.build.resolve()
    options.pictures.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="ux-device-") as folder:
        work = pathlib.Path(folder)
        image, modules = unpack_kernel(work)
        archive = make_guest(work, build, modules)
        said = run_guest(work, image, archive, options.pictures.resolve())
        for line in ["host ended with 0", "input driver ended with 143", "viewer ended with 143",
                     "done"]:  # 143: by SIGTERM
            if line not in said:
                fail(f"the guest did not say '{line}'")
        if not compare(options.pictures.resolve(), shoot_in_simulator(build, work)):
            sys.exit(1)


if __name__ == "__main__":
    main()
