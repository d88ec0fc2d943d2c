"""What a technician does at the panel, and what they see. All places are on its screen of 800x600."""

import contextlib
import os
import pathlib
import tempfile
import time

import screen
from machine import Machine, MachineError

START_LIMIT = 600  # s from power-on to the countdown, on a busy machine
PAGE_LIMIT = 60  # s until a touch shows
SAVE_LIMIT = 300  # s for a save with all its tools
BUTTONS = {"install-fonts": (150, 415), "ethernet": (400, 415), "file-transfer": (650, 415),
           "system-status": (150, 522), "miscellaneous": (400, 522), "calibration": (650, 522)}
RUN_APPLICATION = (400, 170)
COUNTDOWN = (400, 450)
CANCEL, OK = (50, 16), (750, 16)

# Ethernet page. Row of each port's choice; its fields.
LAN = ({"disable": (100, 125), "dhcp": (100, 163), "manual": (100, 201), "address": (500, 240),
        "mask": (500, 283)},
       {"disable": (100, 378), "dhcp": (100, 415), "manual": (100, 454), "address": (500, 492),
        "mask": (500, 535)})
KEYS = "123456789.0#"  # row by row; "#" is backspace

# Miscellaneous page
MOUSE = {"enable": (420, 79), "disable": (670, 79)}
ORIENTATION = {"landscape": (420, 163), "portrait": (670, 163)}
BUZZER = {"enable": (420, 247), "disable": (670, 247)}
SCREEN_SAVING, SCREEN_SAVING_ROWS = (560, 340), 6
BRIGHTNESS, BRIGHTNESS_ROWS = (560, 425), 11
TIME_UP = (761, 515)
LIST_ROW = 46  # px

APPLICATION, FIRMWARE = (120, 92), (490, 92)
UPDATE_BIOS = (699, 518)
PICKER_ROW, PICKER_OK = (150, 95), (253, 503)
CROSSES = ((100, 75), (700, 75), (100, 525), (700, 525))  # of the calibrator

# Factory window
FACTORY_TEST, FACTORY_SAVE, FACTORY_CLOSE = (752, 27), (752, 82), (752, 136)
MODEL, MODEL_ROWS = (530, 140), 5
TYPE, TYPE_ROWS = (530, 300), 2
FACTORY_LIST_ROW = 44  # px
SECOND_PORT, THIRD_PORT, FIRST_ETHER = (442, 374), (616, 374), (355, 414)
PIXEL_TEST = (430, 333)
RESULT = (8, 475, 690, 115)  # area of the text


def transfer_row(row):
    """A place on a row of a list of packages or fonts."""
    return (600, 143 + 50 * row)


class Panel(Machine):
    """A machine whose screen is watched. After a failure, a picture of the screen remains.

    name: of that picture
    """

    def __init__(self, *arguments, name, **options):
        super().__init__(*arguments, **options)
        self.name = name

    def __exit__(self, kind, error, trace):
        if error is not None and self.process.poll() is None:
            folder = pathlib.Path(tempfile.gettempdir(), f"panel-failures-{os.getuid()}")
            folder.mkdir(exist_ok=True)
            path = folder / f"{self.name}.png"
            with contextlib.suppress(MachineError, OSError):
                self.save_picture(path)
                error.add_note(f"The screen is in {path}")
        super().__exit__(kind, error, trace)

    def wait_until(self, what, is_so, limit=PAGE_LIMIT):
        """Waits until is_so(picture) is true. Result: the picture."""
        end = time.monotonic() + limit
        while True:
            picture = self.picture()
            if is_so(picture):
                return picture
            if time.monotonic() > end:
                raise MachineError(f"no {what} within {limit} s")
            time.sleep(0.1)

    def wait_for_shell(self, limit=START_LIMIT):
        self.shell.wait_until_ready(limit)

    def wait_for_countdown(self, limit=START_LIMIT):
        """Result: the count that is shown first."""
        return screen.shown_count(self.wait_until(
            "countdown", lambda picture: screen.shown_count(picture) is not None, limit))

    def wait_for_main_page(self, limit=PAGE_LIMIT):
        self.wait_until("main page", screen.shows_main_page, limit)

    def wait_for_page(self, name):
        self.wait_until(f"page {name}", lambda picture: screen.shows_page(picture, name))

    def open_main_page(self):
        """Stops the countdown."""
        self.wait_for_countdown()
        self.tap(*COUNTDOWN)
        self.wait_for_main_page()

    def open_factory_window(self):
        """Waits for the calibrator that comes before this window, and touches its crosses."""
        self.calibrate(START_LIMIT)
        self.wait_until("factory window", screen.shows_factory_window)

    def calibrate(self, limit=PAGE_LIMIT):
        """Waits for the calibrator and touches its crosses."""
        self.wait_until("calibrator", screen.shows_calibrator, limit)
        time.sleep(2)  # it does not show when it begins to accept touches
        for cross in CROSSES:
            self.tap(*cross)
            time.sleep(1)  # nor when it shows the next cross

    def close_warning(self):
        """Closes a warning, whose only button is at its lower right."""
        left, top, width, height = screen.dialog(self.picture())
        self.tap(left + width - 60, top + height - 35)
        self.wait_until("page without warning", lambda picture: screen.dialog(picture) is None)

    def wait_for(self, condition):
        """Waits until a command in the shell succeeds. Asks rarely, because each process that the
        emulated processor starts delays what is waited for."""
        self.shell.run(f"until {condition}; do sleep 1; done", SAVE_LIMIT)

    def wait_for_stick(self, is_in=True):
        self.wait_for(f"{'' if is_in else '! '}mountpoint -q /media/usb0")

    def wait_for_end_of_start(self):
        """Waits until the start has ended, which is well after the countdown. Never idle: the
        program looks for a held finger five times a second."""
        self.shell.try_run("systemctl is-system-running --wait", START_LIMIT)

    def open_page(self, name):
        self.tap(*BUTTONS[name])
        self.wait_for_page(name)

    def leave_page(self, button=OK, limit=SAVE_LIMIT):
        self.tap(*button)
        self.wait_for_main_page(limit)

    def choose(self, box, rows, row, current=0, height=LIST_ROW):
        """Chooses a row of the list of a combo box."""
        self.tap(*box)
        time.sleep(2)  # the list does not show when it begins to accept touches
        top = min(box[1] - height // 2 - current * height, 598 - rows * height)
        self.tap(box[0], max(top, 1) + row * height + height // 2)
        time.sleep(1)

    def type_into(self, field, text):
        """Types into a field of the first port, in place of what is there."""
        self.tap(*field)
        left, top = screen.keypad_below(self.wait_until(
            "keypad", lambda picture: screen.keypad_below(picture, field)), field)
        for key in "#" * 20 + text:
            number = KEYS.index(key)
            self.tap(left + 34 + number % 3 * 57, top + 34 + number // 3 * 57)
        self.tap(left + 90, top + 262)
        self.wait_until("page without keypad", lambda picture: not screen.keypad_below(picture, field))

    def choose_package(self, row):
        """Chooses a row of the list of packages or fonts, whose bar then is blue."""
        place = transfer_row(row)
        self.tap(*place)
        bar = (place[0] + 50, place[1] + 10)
        self.wait_until("chosen row", lambda picture: screen.is_blue(picture.color(*bar)))

    def kill(self, name, signal="KILL"):
        """Kills the process with that name. The panel has no pkill."""
        self.shell.run(f"for p in /proc/[0-9]*; do [ $(cat $p/comm) != {name} ] ||"
                       f" kill -{signal} ${{p#/proc/}}; done 2>/dev/null; true")

    def failed_units(self):
        return self.shell.run("systemctl --failed --plain --no-legend").split("\n")[:-1]

    def file(self, path):
        """The text of a file of the panel; None if there is none."""
        status, text = self.shell.try_run(f"cat {path}")
        return text if status == 0 else None
