"""Reads a form of the console through AT-SPI, as assistive technology does. Importing this module restarts the script on a
message bus of its own, so that the registry of AT-SPI is there. The script's first argument is the program shown_form."""
import os
import select
import subprocess
import sys
import time

if 'KV_OWN_BUS' not in os.environ:
    os.environ.update(KV_OWN_BUS='1', QT_LINUX_ACCESSIBILITY_ALWAYS_ON='1', NO_AT_BRIDGE='0')
    os.execvp('dbus-run-session', ['dbus-run-session', '--', sys.executable, *sys.argv])
import gi  # noqa: E402

gi.require_version('Atspi', '2.0')
import pyatspi  # noqa: E402
from gi.repository import Atspi, GLib  # noqa: E402

SHOWN_FORM = sys.argv.pop(1)
LIMIT = 60  # seconds that each wait may take
Atspi.set_timeout(LIMIT * 1000, LIMIT * 1000)  # otherwise a question is given up after 800 ms
TITLE = 'Halvane Vindrel SQL Database Manager'
DIALOG_TITLE = 'Stored Procedures'
ROLES = {
    'frame': {'panel', 'grouping'},
    'picture box': {'filler', 'panel'},
    'label': {'label'},
    'text box': {'text'},
    'password': {'password text'},
    'button': {'push button', 'button'},
    'check box': {'check box'},
    'option button': {'radio button'},
    'combo box': {'combo box'},
    'list box': {'list'},
    'list view': {'table'},
    'progress bar': {'progress bar'},
    'tab control': {'page tab list'},
}
TABS = ['General', 'Script', 'Synchronize', 'Upgrade', 'Replication', 'View Data', 'Stored Proc.']


def wait_for(condition, what):
    end = time.monotonic() + LIMIT
    while time.monotonic() < end:
        try:
            found = condition()
            if found:
                return found
        except (GLib.GError, LookupError, AttributeError):
            pass  # a part that does not exist any more
        time.sleep(0.05)
    raise AssertionError(f'{what}: not within {LIMIT} seconds')


def plain(caption):
    """The caption as it is shown: without the "&" of a mnemonic."""
    return caption.replace('&&', '\1').replace('&', '').replace('\1', '&')


def parts(node):
    """The node and all nodes below it that are on the screen."""
    found = [node]
    for child in node:
        if child is not None and child.getState().contains(pyatspi.STATE_SHOWING):
            found += parts(child)
    return found


class ShownForm:
    """Runs the program that shows a form, and has the form's window in the tree of AT-SPI."""

    def __init__(self, which, title):
        self.process = subprocess.Popen([SHOWN_FORM, which], stdout=subprocess.PIPE, text=True)
        self.controls = []
        for line in self.process.stdout:
            tab, kind, name, caption, tip = line.rstrip('\n').split('\t')
            self.controls.append({'tab': int(tab), 'kind': kind, 'name': name, 'caption': caption, 'tip': tip})
            if name == 'cmdClose':
                break
        self.window = wait_for(lambda: self.find_window(title), 'the window')

    def find_window(self, title):
        for application in pyatspi.Registry.getDesktop(0):
            for window in application or []:
                if window is not None and window.name == title:
                    return window
        return None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()

    def find(self, role, name):
        """The part with this role and name, or None."""
        for part in parts(self.window):
            if part.getRoleName() in ROLES.get(role, {role}) and part.name == name:
                return part
        return None

    @staticmethod
    def press(part, name):
        """Carries out the part's action of this name."""
        action = part.queryAction()
        names = [action.getName(number) for number in range(action.nActions)]
        action.doAction(names.index(name))

    def choose_tab(self, caption):
        self.press(self.find('page tab', caption), 'Press')
        page = next(control for control in self.controls if control['tab'] == TABS.index(caption))
        wait_for(lambda: self.find('frame', plain(page['caption'])), caption)

    def enter(self, label, text):
        """Sets the text of a box, as assistive technology does that writes for its user."""
        self.find('text box', label).queryEditableText().setTextContents(text)

    def next_report(self):
        """Waits for the next line of the program, which reports what is entered into some boxes."""
        ready, _, _ = select.select([self.process.stdout], [], [], LIMIT)
        if not ready:
            raise AssertionError(f'the program reports nothing within {LIMIT} seconds')
        return self.process.stdout.readline().rstrip('\n')

    def exit_code(self):
        return self.process.wait(LIMIT)
