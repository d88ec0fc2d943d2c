"""A panel in QEMU, operated from outside: its power, screen, touch screen, sticks and cables.

The processor is emulated, because nested hardware virtualisation is often slower or absent.
"""

import contextlib
import dataclasses
import json
import os
import pathlib
import re
import select
import shlex
import shutil
import signal
import socket
import subprocess
import time

from screen import Picture

WIDTH, HEIGHT = 800, 600  # of the screen
AXIS_MAX = 32767  # of QEMU's tablet
MEMORY = 512  # MB
START_LIMIT = 30  # s until QEMU answers
COMMAND_LIMIT = 300  # s for a command in the shell
# The addresses of the ports, in the order of their sockets.
HARDWARE_ADDRESSES = ("02:00:00:00:00:0a", "02:00:00:00:00:0b")
# QEMU's own DHCP server answers on each port. The second also reaches the peer of the echo test.
NETWORKS = ("net=192.168.5.0/24,dhcpstart=192.168.5.15",
            "net=192.168.0.0/24,dhcpstart=192.168.0.15,guestfwd=tcp:192.168.0.30:33-cmd:cat")
WEB_SERVER = "192.168.5.30"  # behind the first port


@dataclasses.dataclass(frozen=True)
class Kind:
    """The machine for panels of an architecture. Its parts are QEMU's names of devices."""

    program: str
    machine: str
    processor: str
    screen: str
    disk: str
    serial_port: str
    uefi_code: str
    uefi_variables: str
    has_bios: bool = True


KINDS = {
    "amd64": Kind("qemu-system-x86_64", "q35", "max", "VGA", "ide-hd", "isa-serial",
                  "/usr/share/OVMF/OVMF_CODE_4M.fd", "/usr/share/OVMF/OVMF_VARS_4M.fd"),
    "i386": Kind("qemu-system-i386", "q35", "max", "VGA", "ide-hd", "isa-serial",
                 "/usr/share/OVMF/OVMF32_CODE_4M.secboot.fd", "/usr/share/OVMF/OVMF32_VARS_4M.fd"),
    "arm64": Kind("qemu-system-aarch64", "virt", "cortex-a72", "virtio-gpu-pci", "virtio-blk-pci",
                  "pci-serial", "/usr/share/AAVMF/AAVMF_CODE.fd", "/usr/share/AAVMF/AAVMF_VARS.fd",
                  has_bios=False),
}
KIND = KINDS[os.environ.get("PANEL_ARCHITECTURE", "amd64")]


class MachineError(Exception):
    """The machine does not do what is asked of it."""


def make_overlay(path, backing):
    """Makes a disk that holds the changes to another one, which stays as it is."""
    backing = pathlib.Path(backing).resolve()
    kind = "qcow2" if backing.suffix == ".qcow2" else "raw"
    subprocess.run(["qemu-img", "create", "-q", "-f", "qcow2", "-F", kind, "-b", backing, path],
                   check=True)


class Monitor:
    """QEMU's control connection."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(COMMAND_LIMIT)
        try:
            self.socket.connect(str(path))
        except OSError:
            self.socket.close()
            raise
        self.lines = self.socket.makefile("r", encoding="utf-8")
        self.events = []
        self._read()  # the greeting
        self("qmp_capabilities")

    def __call__(self, command, **arguments):
        """Runs a command; "_" in the name of an argument stands for "-"."""
        request = {"execute": command,
                   "arguments": {name.replace("_", "-"): value for name, value in arguments.items()}}
        self.socket.sendall(json.dumps(request).encode() + b"\n")
        while True:
            answer = self._read()
            if "return" in answer:
                return answer["return"]
            if "error" in answer:
                raise MachineError(f"{command}: {answer['error']['desc']}")

    def _read(self):
        line = self.lines.readline()
        if not line:
            raise MachineError("QEMU has ended")
        message = json.loads(line)
        if "event" in message:
            self.events.append(message)
        return message

    def wait_for_event(self, name, limit):
        """Waits for an event that has not been waited for yet."""
        end = time.monotonic() + limit
        while True:
            for event in self.events:
                if event["event"] == name:
                    self.events.remove(event)
                    return event
            if time.monotonic() > end:
                raise MachineError(f"no event {name} within {limit} s")
            self("query-status")  # reads the events on the way
            time.sleep(0.05)

    def close(self):
        self.lines.close()
        self.socket.close()


class Shell:
    """The root shell on the first serial port of a test image."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(str(path))
        self.socket.setblocking(False)
        self.text = ""
        self.number = 0

    def _receive(self, limit):
        readable, _, _ = select.select([self.socket], [], [], limit)
        if readable:
            data = self.socket.recv(65536)
            if not data:
                raise MachineError("the serial port is closed")
            self.text += data.decode("utf-8", "replace").replace("\r", "")

    def _wait_for(self, pattern, limit):
        end = time.monotonic() + limit
        while not (match := re.search(pattern, self.text, re.DOTALL)):
            left = end - time.monotonic()
            if left <= 0:
                raise MachineError(f"no answer from the shell within {limit} s: {self.text[-300:]!r}")
            self._receive(min(left, 1))
        return match

    def wait_until_ready(self, limit):
        """Waits for the shell's prompt and makes its output easy to read."""
        end = time.monotonic() + limit
        while True:
            # A plain shell, because bash edits its command line. "$((" distinguishes the answer from
            # the echo of the line.
            self._send(" exec sh\n stty -echo; PS1=; PS2=; dmesg -n 1; export TERM=dumb DISPLAY=:0;"
                       " echo ready-$((6*7))\n")
            with contextlib.suppress(MachineError):
                self._wait_for("ready-42", 5)
                self.text = ""
                return
            if time.monotonic() > end:
                raise MachineError(f"no shell on the serial port within {limit} s")

    def _send(self, text):
        self.socket.setblocking(True)
        self.socket.sendall(text.encode())
        self.socket.setblocking(False)

    def try_run(self, command, limit=COMMAND_LIMIT):
        """Runs a command. Result: its exit status and its output, with standard error."""
        self.number += 1
        self.text = ""
        self._send(f" echo '<'{self.number}; sh -c {shlex.quote(command)} </dev/null 2>&1;"
                   f" echo '>'{self.number} $?\n")
        match = self._wait_for(f"<{self.number}\n(.*)>{self.number} ([0-9]+)\n", limit)
        return int(match[2]), match[1]

    def run(self, command, limit=COMMAND_LIMIT):
        """Runs a command that must succeed. Result: its output."""
        status, output = self.try_run(command, limit)
        if status != 0:
            raise MachineError(f"{command!r} ended with status {status}: {output.strip()}")
        return output

    def close(self):
        self.socket.close()


class Machine:
    """A machine with a disk of its own. Leaving its "with" block switches it off.

    disk: a qcow2 file, which is changed
    folder: for the sockets; must exist, and its path must be short
    state: folder of a saved state to go on from, instead of a start from the disk
    sticks: disk images plugged in from the beginning; they stay as they are
    uefi: starts by UEFI instead of BIOS
    clock: the time of the hardware clock, as "2026-10-22T12:00:00"
    cables: whether the cables of the two ports are plugged in
    swap_ports: gives the first port the higher hardware address
    has_watchdog: lets the chipset's watchdog reset the machine
    web: folder that WEB_SERVER offers
    forwarded: for each of the two ports, a port of this machine that leads to its ssh
    """

    def __init__(self, disk, folder, *, state=None, sticks=(), uefi=False, clock=None,
                 cables=(True, True), swap_ports=False, has_watchdog=False, web=None, forwarded=()):
        self.folder = pathlib.Path(folder)
        self.plugged = [f"stick{number}" for number in range(len(sticks))]
        self.monitor = None
        self.shell = None
        addresses = reversed(HARDWARE_ADDRESSES) if swap_ports else HARDWARE_ADDRESSES
        # QEMU ends with this process, however that ends.
        command = ["setpriv", "--pdeathsig", "KILL", KIND.program, "-nodefaults",
                   "-no-user-config", "-display", "none",
                   "-machine", KIND.machine, "-accel", "tcg", "-cpu", KIND.processor, "-smp", "1",
                   "-m", str(MEMORY), "-device", f"{KIND.screen},xres={WIDTH},yres={HEIGHT}",
                   "-drive", f"if=none,id=disk,format=qcow2,cache=writeback,file={disk}",
                   "-device", f"{KIND.disk},drive=disk,bootindex=0",
                   "-device", "qemu-xhci,id=usb", "-device", "usb-tablet,bus=usb.0",
                   "-qmp", f"unix:{self.folder}/monitor,server=on,wait=off",
                   "-rtc", f"base={clock or 'utc'}"]
        ways = [f",hostfwd=tcp:127.0.0.1:{port}-:22" for port in forwarded] or ["", ""]
        if web is not None:
            ways[0] += f",guestfwd=tcp:{WEB_SERVER}:80-cmd:busybox httpd -i -h {web}"
        for number, (address, network, way) in enumerate(zip(addresses, NETWORKS, ways)):
            command += ["-netdev", f"user,id=lan{number},restrict=on,{network}{way}",
                        "-device", f"e1000,id=port{number},netdev=lan{number},mac={address},romfile="]
        # The shell, and two ports that are wired to each other.
        command += ["-chardev", f"socket,id=com0,path={self.folder}/shell,server=on,wait=off",
                    "-chardev", f"socket,id=com1,path={self.folder}/wire,server=on,wait=off",
                    "-chardev", f"socket,id=com2,path={self.folder}/wire,reconnect=1"]
        for number in range(3):
            command += ["-device", f"{KIND.serial_port},chardev=com{number}"]
        for name, file in zip(self.plugged, sticks):
            command += ["-drive", f"if=none,id={name}-disk,format=raw,snapshot=on,file={file}",
                        "-device", f"usb-storage,id={name},bus=usb.0,drive={name}-disk,removable=on"]
        if uefi or not KIND.has_bios:
            variables = self.folder / "variables"
            if not variables.exists():
                shutil.copyfile(KIND.uefi_variables, variables)
            command += ["-drive", f"if=pflash,format=raw,readonly=on,file={KIND.uefi_code}",
                        "-drive", f"if=pflash,format=raw,file={variables}"]
        if has_watchdog:
            command += ["-global", "ICH9-LPC.noreboot=off"]
        if state is not None:
            command += ["-incoming", f"exec:cat {shlex.quote(str(state))}/memory"]
        self.cables = cables
        self.command = command
        self.process = None

    def __enter__(self):
        for name in ("monitor", "shell", "wire"):
            (self.folder / name).unlink(missing_ok=True)
        with open(self.folder / "qemu.log", "wb") as log:
            self.process = subprocess.Popen(self.command + ["-S"], stdin=subprocess.DEVNULL,
                                            stdout=log, stderr=log)
        try:
            self._connect()
        except BaseException:
            self.pull_plug()
            raise
        return self

    def __exit__(self, *_):
        self.pull_plug()

    def _connect(self):
        end = time.monotonic() + START_LIMIT
        while True:
            try:
                self.monitor = Monitor(self.folder / "monitor")
                break
            except OSError as error:
                if self.process.poll() is not None or time.monotonic() > end:
                    log = (self.folder / "qemu.log").read_text(errors="replace").strip()
                    raise MachineError(f"QEMU does not start: {log}") from error
                time.sleep(0.02)
        self.shell = Shell(self.folder / "shell")
        for port, is_in in enumerate(self.cables):
            self.plug_cable(port, is_in)
        while self.monitor("query-status")["status"] == "inmigrate":
            time.sleep(0.02)
        self.monitor("cont")

    def pull_plug(self):
        """Cuts the power: whatever the panel has not written to its disk is lost."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
        self.process.wait()
        for connection in (self.monitor, self.shell):
            if connection is not None:
                connection.close()
        self.monitor = self.shell = None

    def reset(self):
        """Presses the reset button. Unlike a new machine, this keeps the hardware clock."""
        self.monitor("system_reset")

    def save_state(self, folder):
        """Saves the memory, for machines that go on from here with overlays of this disk."""
        self.monitor("stop")
        self.monitor("migrate-set-parameters", max_bandwidth=1 << 34)
        self.monitor("migrate", uri=f"exec:cat >{shlex.quote(str(folder))}/memory")
        while (status := self.monitor("query-migrate").get("status")) != "completed":
            if status in ("failed", "cancelled"):
                raise MachineError("the state could not be saved")
            time.sleep(0.1)
        self.monitor("quit")
        self.process.wait(START_LIMIT)

    def picture(self):
        """What the screen shows."""
        file = self.folder / "screen.ppm"
        self.monitor("screendump", filename=str(file))
        return Picture.from_ppm(file.read_bytes())

    def save_picture(self, path):
        self.monitor("screendump", filename=str(path), format="png")

    def _send_events(self, *events):
        self.monitor("input-send-event", events=[
            {"type": kind, "data": data} for kind, data in events])

    def move_finger(self, x, y):
        self._send_events(("abs", {"axis": "x", "value": round(x * AXIS_MAX / (WIDTH - 1))}),
                          ("abs", {"axis": "y", "value": round(y * AXIS_MAX / (HEIGHT - 1))}))

    def put_finger_down(self, x, y):
        self.move_finger(x, y)
        self._send_events(("btn", {"button": "left", "down": True}))

    def lift_finger(self):
        self._send_events(("btn", {"button": "left", "down": False}))

    def tap(self, x, y):
        """Touches for 0.15 s, as a finger does. The pause keeps it apart from the next touch."""
        self.put_finger_down(x, y)
        time.sleep(0.15)
        self.lift_finger()
        time.sleep(0.15)

    def press_keys(self, *keys):
        """Presses keys at once, on a keyboard that nobody has plugged in. They have QEMU's names."""
        self.monitor("send-key", keys=[{"type": "qcode", "data": key} for key in keys])

    def plug_stick(self, name, file, rate=None):
        """Plugs in a stick, whose file stays as it is. rate: bytes per second that it can read, for
        a slow one."""
        overlay = self.folder / f"{name}.qcow2"
        make_overlay(overlay, file)
        disk = {"driver": "qcow2", "node-name": f"{name}-disk",
                "file": {"driver": "file", "filename": str(overlay)}}
        if rate is not None:
            self.monitor("object-add", qom_type="throttle-group", id=f"{name}-rate",
                         limits={"bps-read": rate})
            disk = {"driver": "throttle", "node-name": f"{name}-disk", "throttle-group": f"{name}-rate",
                    "file": {**disk, "node-name": f"{name}-file"}}
        self.monitor("blockdev-add", **disk)
        self.monitor("device_add", driver="usb-storage", id=name, bus="usb.0", drive=f"{name}-disk",
                     removable=True)
        self.plugged.append(name)

    def pull_stick(self, name):
        self.monitor("device_del", id=name)
        self.plugged.remove(name)

    def plug_cable(self, port, is_in):
        """Plugs in or pulls the network cable of a port, 0 or 1."""
        self.monitor("set_link", name=f"port{port}", up=is_in)
