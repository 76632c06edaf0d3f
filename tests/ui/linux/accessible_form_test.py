#!/usr/bin/python3
"""Tests the console's forms through AT-SPI, as assistive technology sees them: on each tab every control has its role, its
name and its state, and a password can be read neither as a text nor from events while it is typed.

Usage: tests/with-screen tests/ui/linux/accessible_form_test.py SHOWN_FORM [TEST ...]
"""
import subprocess
import unittest

from accessible_tree import DIALOG_TITLE, ROLES, TABS, TITLE, ShownForm, parts, plain, wait_for
import pyatspi
from gi.repository import GLib

NAMED_BY_LABEL = {'text box', 'password', 'combo box', 'list box'}
BROWSES = {'cmdBrowseForScriptFolder': 'Browse: Script folder path, General Settings',
           'cmdBrowseForSQLDataPath': 'Browse: SQL Data path, ',  # and the frame of its server
           'cmdBrowseForScriptFile': 'Browse: Available Scripts'}
SECRET = 'Geheim1'


def expected(form, tab, title):
    """The expected kind, name and identifier of each control on that tab and outside the tabs."""
    label = frame = None
    wanted = []
    for control in form.controls:
        kind, caption = control['kind'], plain(control['caption'])
        if kind == 'label':
            label = caption
            if caption and control['tab'] in (tab, -1):
                wanted.append((kind, caption, control['name']))
        elif control['tab'] in (tab, -1):
            name = caption
            if control['name'] in BROWSES:
                name = BROWSES[control['name']]
                name += frame if name.endswith(', ') else ''
            elif kind == 'tab control':
                name = TABS[tab]  # it is named after the tab that is shown
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
        for kind, name, identifier in expected(form, tab, title):
            self.assertTrue(name, identifier)
            self.assertTrue(any((role, name) in seen for role in ROLES[kind]),
                            f'{identifier} ({kind}) is not there by the name {name!r}: {sorted(set(seen))}')

    def test_every_control_of_every_tab_has_its_role_and_name(self):
        with ShownForm('main', TITLE) as form:
            for number, caption in enumerate(TABS):
                form.choose_tab(caption)
                with self.subTest(tab=caption):
                    self.check_names(form, number, TITLE)

    def test_no_two_buttons_of_a_tab_have_the_same_name(self):
        with ShownForm('main', TITLE) as form:
            for caption in TABS:
                form.choose_tab(caption)
                names = [part.name for part in parts(form.window) if part.getRoleName() in ROLES['button']]
                self.assertTrue(names)
                self.assertEqual(sorted(set(names)), sorted(names), caption)

    def test_a_window_has_the_role_of_a_window(self):
        with ShownForm('dialog', DIALOG_TITLE) as form:
            self.assertEqual(form.window.getRoleName(), 'dialog')
            self.assertEqual(form.find_window(TITLE).getRoleName(), 'frame')

    def test_the_states_of_the_selected_and_of_the_disabled_tab_are_reported(self):
        with ShownForm('grey', TITLE) as form:
            def having(state):
                return [caption for caption in TABS if form.find('page tab', caption).getState().contains(state)]

            usable = [caption for caption in TABS if caption != 'Upgrade']
            for state in (pyatspi.STATE_ENABLED, pyatspi.STATE_SENSITIVE, pyatspi.STATE_SELECTABLE):
                self.assertEqual(having(state), usable)
            self.assertEqual(having(pyatspi.STATE_SELECTED), ['General'])
            form.press(form.find('page tab', 'Upgrade'), 'Press')
            self.assertEqual(having(pyatspi.STATE_SELECTED), ['General'])
            form.choose_tab('Script')
            self.assertEqual(having(pyatspi.STATE_SELECTED), ['Script'])

    def test_a_tab_that_becomes_usable_is_reported(self):
        with ShownForm('grey', TITLE) as form:
            heard = []

            def hear(event):
                heard.append((event.source.getRoleName(), event.source.name, event.detail1))

            def is_heard():
                pyatspi.Registry.pumpQueuedEvents()
                GLib.MainContext.default().iteration(False)
                return ('page tab', 'Upgrade', 1) in heard

            form.choose_tab('Script')
            pyatspi.Registry.registerEventListener(hear, 'object:state-changed:enabled')
            form.press(form.find('check box', 'Standard Synchronize'), 'Toggle')
            wait_for(is_heard, 'the report of the tab')
            pyatspi.Registry.deregisterEventListener(hear, 'object:state-changed:enabled')
            self.assertTrue(form.find('page tab', 'Upgrade').getState().contains(pyatspi.STATE_ENABLED))

    def test_every_control_of_the_dialog_has_its_role_and_name(self):
        with ShownForm('dialog', DIALOG_TITLE) as form:
            self.check_names(form, -1, DIALOG_TITLE)

    def test_the_states_of_controls_are_reported(self):
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

    def test_a_text_can_be_read_and_a_password_cannot(self):
        with ShownForm('main', TITLE) as form:
            user = form.find('text box', 'UserID:').queryText()
            self.assertEqual(user.getText(0, user.characterCount), 'a user')
            password = form.find('password', 'Password:')
            self.assertNotIn('Text', pyatspi.listInterfaces(password))
            self.assertNotIn('EditableText', pyatspi.listInterfaces(password))
            self.assertNotIn(SECRET, [part.name + part.description for part in parts(form.window)])

    def test_input_from_assistive_technology_reaches_the_program(self):
        with ShownForm('main', TITLE) as form:
            form.enter('Domain name:', 'PLANT')
            self.assertEqual(form.next_report(), 'edtDomainName PLANT')
            form.choose_tab('Script')
            form.press(form.find('option button', 'Create and Install script files'), 'Toggle')
            self.assertEqual(form.next_report(), 'optCreateInstallScriptFiles clicked')
            self.assertFalse(form.find('option button', 'Create script files').getState().contains(pyatspi.STATE_CHECKED))

    def test_a_text_entered_into_a_combo_box_reaches_the_program(self):
        with ShownForm('main', TITLE) as form:
            form.choose_tab('Replication')
            box = form.find('combo box', 'Database:')
            line = next(part for part in box if part.getRoleName() in ROLES['text box'])
            for text in ('Batch', 'Batch2'):
                line.queryEditableText().setTextContents(text)
                self.assertEqual(form.next_report(), f'cboSQLReplicationDatabase {text}')
            self.assertEqual(line.queryText().getText(0, -1), 'Batch2')

    def test_typing_is_reported_except_in_a_password(self):
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
    unittest.main()
