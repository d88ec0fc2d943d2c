"""Every settings page by touch, and what its choices do to the machine."""

import time

import panel as places
import screen
from machinetest import MachineTest
from states import disk_of, main_page


class Pages(MachineTest):
    def test_each_page_opens_and_closes(self):
        with self.panel() as panel:
            for name in places.BUTTONS:
                panel.tap(*places.BUTTONS[name])
                if name == "calibration":
                    panel.calibrate()
                panel.wait_for_page(name)
                panel.leave_page(places.CANCEL)

    def test_portrait_turns_the_picture_and_stays(self):
        with self.panel() as panel:
            panel.open_page("miscellaneous")
            panel.tap(*places.ORIENTATION["portrait"])
            panel.tap(*places.OK)
            panel.wait_until("upright picture", is_upright)
            self.assertIn("left (", panel.shell.run("xrandr"))
            self.assertEqual(self.settings(panel)["app.orientation"], "vertical")
            panel.shell.run("sync")
            panel.reset()
            panel.wait_until("upright countdown", is_upright, places.START_LIMIT)

    def test_brightness_is_applied_and_stays(self):
        with self.panel() as panel:
            panel.open_page("miscellaneous")
            panel.choose(places.BRIGHTNESS, places.BRIGHTNESS_ROWS, 5)
            panel.leave_page()
            self.assertEqual(self.settings(panel)["bios.brightness"], "0.5")
            self.assertIn("Brightness: 0.5", panel.shell.run("xrandr --verbose"))

    def test_screen_saving_blanks_the_screen_until_a_touch(self):
        with self.panel() as panel:
            panel.open_page("miscellaneous")
            panel.choose(places.SCREEN_SAVING, places.SCREEN_SAVING_ROWS, 2)
            panel.leave_page()
            self.assertEqual(self.settings(panel)["app.screensaving"], "10")
            self.assertRegex(panel.shell.run("xset q"), r"timeout: +600 ")
            panel.shell.run("xset s activate")
            panel.wait_until("black screen", lambda picture: picture.mean((0, 0, 640, 400)) < 2)
            panel.tap(*places.RUN_APPLICATION)
            panel.wait_for_main_page()

    def test_clock_survives_a_restart(self):
        with self.panel(disk_of(main_page()), clock="2026-10-12T12:00:00") as panel:
            panel.open_main_page()
            panel.open_page("miscellaneous")
            panel.tap(*places.TIME_UP)  # the day
            time.sleep(1)
            panel.leave_page()
            panel.wait_for_shell()
            self.assertEqual(panel.shell.run("date +%F").strip(), "2026-10-13")
            panel.reset()
            time.sleep(5)
            panel.wait_for_shell()
            self.assertEqual(panel.shell.run("date +%F").strip(), "2026-10-13")

    def test_calibration_is_kept(self):
        file = "/etc/X11/xorg.conf.d/99-talmero-calibration.conf"
        with self.panel() as panel:
            panel.tap(*places.BUTTONS["calibration"])
            panel.calibrate()
            panel.wait_for_page("calibration")
            panel.leave_page(places.CANCEL)
            self.assertIn("TransformationMatrix", panel.file(file))
            panel.kill("talmero-bios", "TERM")
            panel.open_main_page()  # by touch, so the matrix is right

    def test_held_finger_starts_the_rescue(self):
        with self.panel() as panel:
            panel.open_page("miscellaneous")
            panel.choose(places.BRIGHTNESS, places.BRIGHTNESS_ROWS, 5)
            panel.leave_page()
            panel.put_finger_down(400, 320)
            panel.wait_until("calibrator", screen.shows_calibrator)
            panel.lift_finger()
            panel.calibrate()
            panel.wait_for_main_page()
            self.assertIn("Brightness: 1.0", panel.shell.run("xrandr --verbose"))


def is_upright(picture):
    """Whether the title bar or the edge of the countdown is at the side of the screen."""
    column = picture.mean((0, 100, 12, 400)), picture.mean((788, 100, 12, 400))
    return picture.width == 800 and max(column) > 100 and abs(column[0] - column[1]) > 30
