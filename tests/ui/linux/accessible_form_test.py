#!/usr/bin/python3
"""The console's forms as assistive technology sees them (AT-SPI): on each tab every control has its role, its name and
its state, and a password is given away neither as a text nor by an event while it is typed.

Usage: tests/with-screen tests/ui/linux/accessible_form_test.py SHOWN_FORM [TEST ...]
It starts a message bus of its own, with the registry of AT-SPI on it.
"""
import os
import subprocess
import sys
import time
import unittest

LIMIT = 60  # seconds, for whatever is waited for
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
NAMED_BY_LABEL = {'text box', 'password', 'combo box', 'list box'}
SECRET = 'Geheim1'
FORM = None


def wait_for(condition, what):
    end = time.monotonic() + LIMIT
    while time.monotonic() < end:
        try:
            found = condition()
            if found:
                return found
        except (GLib.GError, LookupError, AttributeError):
            pass  # a part that has gone meanwhile
        time.sleep(0.05)
    raise AssertionError(f'{what}: not within {LIMIT} seconds')


def plain(caption):
    return caption.replace('&&', '\1').replace('&', '').replace('\1', '&')


def parts(node):
    """The node and all that is below it and on the screen."""
    found = [node]
    for child in node:
        if child is not None and child.getState().contains(pyatspi.STATE_SHOWING):
            found += parts(child)
    return found


class ShownForm:
    """The program that shows a form, and the form's window as AT-SPI has it."""

    def __init__(self, which, title):
        self.process = subprocess.Popen([FORM, which], stdout=subprocess.PIPE, text=True)
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
        for part in parts(self.window):
            if part.getRoleName() in ROLES.get(role, {role}) and part.name == name:
                return part
        return None

    def choose_tab(self, caption):
        tab = self.find('page tab', caption)
        action = tab.queryAction()
        names = [action.getName(number) for number in range(action.nActions)]
        action.doAction(names.index('Press'))
        page = next(control for control in self.controls if control['tab'] == TABS.index(caption))
        wait_for(lambda: self.find('frame', plain(page['caption'])), caption)

    def expected(self, tab, title):
        """Role and name of each control of that tab and of what lies beside the tabs."""
        label = frame = None
        wanted = []
        for control in self.controls:
            kind, caption = control['kind'], plain(control['caption'])
            if kind == 'label':
                label = caption
                if caption and control['tab'] in (tab, -1):
                    wanted.append((kind, caption, control['name']))
            elif control['tab'] in (tab, -1):
                name = caption
                if kind == 'tab control':
                    name = TABS[tab]  # Qt names it by the tab that is shown
                elif kind in NAMED_BY_LABEL and label:
                    name = label
                elif not caption:
                    name = control['tip'] or frame if control['tab'] >= 0 else title
                wanted.append((kind, name, control['name']))
            if kind != 'label':
                label = None
            if kind == 'frame':
                frame = caption
        return wanted


class AccessibleForm(unittest.TestCase):
    def check_names(self, form, tab, title):
        seen = [(part.getRoleName(), part.name) for part in parts(form.window)]
        for kind, name, identifier in form.expected(tab, title):
            self.assertTrue(name, identifier)
            self.assertTrue(any((role, name) in seen for role in ROLES[kind]),
                            f'{identifier} ({kind}) is not there by the name {name!r}: {sorted(set(seen))}')

    def test_every_control_of_every_tab_has_its_role_and_name(self):
        with ShownForm('main', TITLE) as form:
            for number, caption in enumerate(TABS):
                form.choose_tab(caption)
                with self.subTest(tab=caption):
                    self.check_names(form, number, TITLE)

    def test_every_control_of_the_dialog_has_its_role_and_name(self):
        with ShownForm('dialog', DIALOG_TITLE) as form:
            self.check_names(form, -1, DIALOG_TITLE)

    def test_states_are_told(self):
        with ShownForm('main', TITLE) as form:
            def has(role, name, state):
                return form.find(role, name).getState().contains(state)

            self.assertFalse(has('text box', 'Domain name:', pyatspi.STATE_READ_ONLY))
            self.assertTrue(has('text box', 'SQL UNC Replication Data path:', pyatspi.STATE_READ_ONLY))
            form.choose_tab('Script')
            self.assertTrue(has('check box', 'Standard Synchronize', pyatspi.STATE_CHECKED))
            self.assertFalse(has('check box', 'Batch Overview Export', pyatspi.STATE_CHECKED))
            self.assertTrue(has('option button', 'Create script files', pyatspi.STATE_CHECKED))
            form.choose_tab('Upgrade')
            self.assertFalse(has('button', 'Rename', pyatspi.STATE_ENABLED))
            self.assertTrue(has('button', 'Upgrade', pyatspi.STATE_ENABLED))

    def test_a_text_is_given_and_a_password_is_not(self):
        with ShownForm('main', TITLE) as form:
            user = form.find('text box', 'UserID:').queryText()
            self.assertEqual(user.getText(0, user.characterCount), 'a user')
            password = form.find('password', 'Password:')
            self.assertNotIn('Text', pyatspi.listInterfaces(password))
            self.assertNotIn('EditableText', pyatspi.listInterfaces(password))
            self.assertNotIn(SECRET, [part.name + part.description for part in parts(form.window)])

    def test_typing_is_reported_but_for_a_password(self):
        with ShownForm('main', TITLE) as form:
            heard = []

            def hear(event):
                heard.append((event.source.getRoleName(), str(event.any_data)))

            def type_into(role, name, text):
                form.find(role, name).queryComponent().grabFocus()
                wait_for(lambda: form.find(role, name).getState().contains(pyatspi.STATE_FOCUSED), name)
                subprocess.run(['xdotool', 'type', text], check=True)

            pyatspi.Registry.registerEventListener(hear, 'object:text-changed', 'object:property-change')
            type_into('password', 'Password:', 'pq')
            type_into('text box', 'Domain name:', 'xyz')

            def last_is_heard():
                pyatspi.Registry.pumpQueuedEvents()
                GLib.MainContext.default().iteration(False)
                return ('text', 'z') in heard

            wait_for(last_is_heard, 'the report of what is typed')
            pyatspi.Registry.deregisterEventListener(hear, 'object:text-changed', 'object:property-change')
            self.assertEqual([text for role, text in heard if 'p' in text or 'q' in text], [])


if __name__ == '__main__':
    if 'KV_OWN_BUS' not in os.environ:
        os.environ.update(KV_OWN_BUS='1', QT_LINUX_ACCESSIBILITY_ALWAYS_ON='1', NO_AT_BRIDGE='0')
        os.execvp('dbus-run-session', ['dbus-run-session', '--', sys.executable, *sys.argv])
    import gi
    gi.require_version('Atspi', '2.0')
    import pyatspi
    from gi.repository import GLib
    FORM = sys.argv.pop(1)
    unittest.main()
