#!/usr/bin/python3
"""Tests the console's forms on a Wayland screen: both open, a box is filled in, and they close. The screen has neither
keyboard nor mouse, so the test uses AT-SPI, as assistive technology does.

Usage: tests/with-wayland tests/ui/linux/wayland_form_test.py SHOWN_FORM [TEST ...]
"""
import os
import re
import subprocess
import tempfile
import unittest

from accessible_tree import DIALOG_TITLE, TABS, TITLE, ShownForm, wait_for

FORM_PIXELS = 642 * 512  # the smallest size of the main form


class Screen:
    """Takes pictures of the whole screen and compares them."""

    def __init__(self, folder):
        self.folder = folder
        wait_for(self.background_is_complete, 'the background')
        self.empty = self.picture('empty')

    def picture(self, name):
        run = subprocess.run(['weston-screenshooter'], cwd=self.folder, capture_output=True, text=True, timeout=60)
        taken = [file for file in os.listdir(self.folder) if file.startswith('wayland-screenshot')]
        if not taken:
            raise AssertionError('no picture: ' + run.stdout + run.stderr)
        path = os.path.join(self.folder, name + '.png')
        os.rename(os.path.join(self.folder, taken[0]), path)
        return path

    def background_is_complete(self):
        """True if the shell has painted its background: the screen is black at first, and then it is faded in."""
        before, now = self.picture('before'), self.picture('background')
        run = subprocess.run(['identify', '-format', '%[fx:mean]', now], capture_output=True, text=True, timeout=60)
        return float(run.stdout) > 0.1 and self.different_pixels(before, now) == 0

    def changed_pixels(self):
        """The number of pixels that differ from the empty screen."""
        return self.different_pixels(self.empty, self.picture('now'))

    @staticmethod
    def different_pixels(one, other):
        run = subprocess.run(['compare', '-metric', 'AE', one, other, 'null:'], capture_output=True, text=True, timeout=60)
        return float(re.match(r'[\d.e+]+', run.stderr).group())


class FormOnWayland(unittest.TestCase):
    def test_the_form_is_on_the_screen_until_it_is_closed(self):
        with tempfile.TemporaryDirectory() as folder:
            screen = Screen(folder)
            with ShownForm('main', TITLE) as form:
                wait_for(lambda: screen.changed_pixels() > FORM_PIXELS * 0.9, 'the form on the screen')
                form.press(form.find('button', 'Close'), 'Press')
                self.assertEqual(form.exit_code(), 0)
            wait_for(lambda: screen.changed_pixels() < FORM_PIXELS * 0.1, 'the empty screen')

    def test_each_tab_opens(self):
        with ShownForm('main', TITLE) as form:
            for caption in TABS:
                form.choose_tab(caption)

    def test_a_box_is_filled_in(self):
        with ShownForm('main', TITLE) as form:
            form.enter('Domain name:', 'PLANT')
            self.assertEqual(form.next_report(), 'edtDomainName PLANT')

    def test_the_dialog_opens_above_the_form_and_closes(self):
        with ShownForm('dialog', DIALOG_TITLE) as form:
            form.enter('Value:', '42')
            self.assertEqual(form.next_report(), 'edtValue 42')
            form.press(form.find('button', 'Close'), 'Press')
            wait_for(lambda: form.find_window(DIALOG_TITLE) is None, 'the end of the dialog')
            self.assertIsNotNone(form.find_window(TITLE))


if __name__ == '__main__':
    unittest.main()
