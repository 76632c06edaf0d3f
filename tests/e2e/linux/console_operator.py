#!/usr/bin/python3
# Operates the console on an X screen: reads orders, one on each line, carries them out by mouse and keyboard, and answers
# each with one line: "= " and what the screen shows, or "! " and an error. windows/console_operator.cpp accepts the same
# orders under Wine. The tests give the orders and check the answers.
#
# It reads the screen from the accessibility tree, as a screen reader does: the program has no interface for tests. Run it
# with a session bus of its own (dbus-run-session).
#
#   console_operator.py PROGRAM FORM_CONTROLS
import os
import subprocess
import sys
import time

import gi
import Xlib.display
import Xlib.error
import Xlib.ext.xtest
import Xlib.X
import Xlib.XK

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

LONGEST = 60  # seconds that a change on the screen may take
MOMENT = 3  # seconds after which a click without effect is repeated
DOUBLE_CLICK = 0.6  # seconds between two clicks that are not one double click
REACTION = 0.3  # seconds between the end of a command and the next click on its button, as a person needs
ESCAPES = {"\n": "\\n", "\r": "\\r", "\t": "\\t", "\\": "\\\\"}
ROLES = {
    "frame": "panel", "picture box": "filler", "label": "label", "text box": "text", "command button": "push button",
    "check box": "check box", "option button": "radio button", "combo box": "combo box", "list box": "list",
    "list view": "table", "progress bar": "progress bar", "tab control": "filler"}
PASSWORD = "password text"  # the role of a text box whose text cannot be read
FORMS = {"main": "frmMain", "dialog": "frmStoredProcedures"}
WINDOW_ROLES = {"main": "frame", "dialog": "dialog"}
DIALOG_CAPTION = "Run "  # how the caption of the program's own dialog begins
HELD_KEYS = {"Alt": "Alt_L", "Control": "Control_L", "Shift": "Shift_L"}
State = Atspi.StateType


class NotSeen(Exception):
    """The screen does not show what the order requires."""


def require(condition, what):
    if not condition:
        raise NotSeen(what)


def wait_for(condition, seconds=LONGEST, pause=0.02):
    """Calls `condition` until it returns a true value or the time is over. Returns its last value."""
    end = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer or time.monotonic() > end:
            return answer
        time.sleep(pause)


def require_after(click, condition, what):
    """Clicks until the condition holds. Only for a click that may be done twice."""
    end = time.monotonic() + LONGEST
    while True:
        require(time.monotonic() < end, what)
        click()
        if wait_for(condition, MOMENT):
            return


def has(part, state):
    return part.get_state_set().contains(state)


def children(part):
    return [child for child in (part.get_child_at_index(i) for i in range(part.get_child_count())) if child is not None]


def text_of(part):
    """The text of a text box; the name of any other part."""
    if part.get_role_name() != "text":
        return part.get_name()
    return Atspi.Text.get_text(part, 0, Atspi.Text.get_character_count(part))


def joined(texts):
    """The texts in one line: separated by tabs, special characters as escapes."""
    return "\t".join("".join(ESCAPES.get(character, character) for character in text) for text in texts)


class Input:
    """Mouse and keyboard, by the X server's XTEST extension."""

    def __init__(self):
        self.display = Xlib.display.Display()

    def _send(self, kind, detail=0, **place):
        Xlib.ext.xtest.fake_input(self.display, kind, detail, **place)
        self.display.sync()

    def move_to(self, x, y):
        self._send(Xlib.X.MotionNotify, x=x, y=y)

    def click_here(self):
        self._send(Xlib.X.ButtonPress, 1)
        self._send(Xlib.X.ButtonRelease, 1)

    def click(self, part):
        place = part.get_extents(Atspi.CoordType.SCREEN)
        require(place.width > 0 and place.height > 0, "is not visible: " + part.get_name())
        self.click_at(place.x + place.width // 2, place.y + place.height // 2)

    def open(self, combo):
        """Opens the list of a combo box by a click on its arrow."""
        place = combo.get_extents(Atspi.CoordType.SCREEN)
        self.click_at(place.x + place.width - 8, place.y + place.height // 2)

    def click_at(self, x, y):
        """Clicks when no other window covers the place: the frame of a closed dialog stays, and gets the clicks, until the
        window manager removes it."""
        self.move_to(x, y)
        require(wait_for(self.is_on_window_in_front), f"another window covers {x}, {y}")
        self.click_here()

    def is_on_window_in_front(self):
        """True if the pointer is on the window in front, or on the open list of a combo box, which is a window without a
        frame."""
        try:
            below = self.display.screen().root.query_pointer().child
            if below != Xlib.X.NONE and below.get_wm_class():
                return True
            window = self.display.create_resource_object("window", self.window_in_front())
            while window.query_tree().parent != self.display.screen().root:
                window = window.query_tree().parent
            return window == below
        except Xlib.error.XError:
            return False  # the window in front has just been closed

    def press(self, *names):
        """Presses keys together, in this order."""
        self._press_code(*(self._code(Xlib.XK.string_to_keysym(name)) for name in names))

    def type(self, text):
        for character in text:
            symbol = ord(character)  # in Latin 1 the key symbol is the character's number
            code = self._code(symbol)
            if self.display.keycode_to_keysym(code, 0) == symbol:
                self._press_code(code)
            else:
                self._press_code(self._code(Xlib.XK.XK_Shift_L), code)

    def _press_code(self, *codes):
        for code in codes:
            self._send(Xlib.X.KeyPress, code)
        for code in reversed(codes):
            self._send(Xlib.X.KeyRelease, code)

    def _code(self, symbol):
        code = self.display.keysym_to_keycode(symbol)
        require(code, f"the keyboard has no key for {symbol:#x}")
        return code

    def window_in_front(self):
        root = self.display.screen().root
        return root.get_full_property(self.display.intern_atom("_NET_ACTIVE_WINDOW"), Xlib.X.AnyPropertyType).value[0]


class Program:
    """The program, and its windows in the accessibility tree."""

    def __init__(self, path):
        # Makes Qt build its accessibility tree at the start, and not only when it is first read.
        environment = os.environ | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
        self.process = subprocess.Popen([path], env=environment, stdin=subprocess.DEVNULL, stdout=sys.stderr)
        self.root = wait_for(self._find)
        require(self.root, "the program does not show a window")
        self.root.set_cache_mask(Atspi.Cache.NONE)

    def _find(self):
        require(self.process.poll() is None, "the program has ended")
        for part in children(Atspi.get_desktop(0)):
            try:
                if part.get_process_id() == self.process.pid and part.get_child_count():
                    return part
            except GLib.Error:
                pass  # this program has just ended
        return None

    def windows(self):
        """The visible windows."""
        return [part for part in children(self.root) if has(part, State.SHOWING)]

    def box(self):
        """The visible message box, or None."""
        return next((window for window in self.windows() if window.get_role_name() == "alert"), None)

    def picker(self):
        """The visible dialog for a folder or a file, or None."""
        return next((window for window in self.windows() if window.get_role_name() == "dialog"
                     and not window.get_name().startswith(DIALOG_CAPTION)), None)

    def ends(self):
        try:
            return self.process.wait(LONGEST) == 0
        except subprocess.TimeoutExpired:
            return False

    def stop(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()


class Design:
    """Where each control is in the accessibility tree: below its parent, in the order of the form's design."""

    def __init__(self, form_controls):
        self.kinds, self.parents, self.places, self.captions = {}, {}, {}, {}
        rows = subprocess.run([form_controls], capture_output=True, text=True, check=True).stdout.splitlines()
        counts = {}
        for form, name, kind, parent, caption in (row.split("\t") for row in rows):
            key = form, name
            self.kinds[key], self.parents[key], self.captions[key] = kind, parent, caption.replace("&&", "&")
            self.places[key] = counts.get((form, parent), 0)
            counts[form, parent] = self.places[key] + 1


class Operator:
    def __init__(self, program, form_controls):
        self.input, self.design = Input(), Design(form_controls)
        self.program = Program(program)
        self.form = self.window = None
        self.found = {}  # the part of the tree, by the control's name
        self.clicked = {}  # the time of the last click, by the control's name
        self.take_form("main")

    def do(self, line):
        order, *words = line.split("\t")
        require(order in self.ORDERS, "no such order: " + line)
        return self.ORDERS[order](self, *words) or ""

    # --- finding

    def look(self, name):
        """The part of a control, or None if it does not exist yet: a page's controls are created when its tab is first
        shown."""
        if name not in self.found:
            part = self.search(name)
            if part is None:
                return None
            self.found[name] = part
        return self.found[name]

    def search(self, name):
        key = self.form, name
        require(key in self.design.kinds, "no such control: " + name)
        parent = self.design.parents[key]
        if parent == "tabMain":
            part = self.page(self.design.captions[key])
        else:
            around = self.look(parent) if parent else self.window
            part = around and around.get_child_at_index(self.design.places[key])
        if part is not None:
            role, wanted = part.get_role_name(), ROLES[self.design.kinds[key]]
            require(role == wanted or (wanted, role) == ("text", PASSWORD), f"{name} is a {role} and not a {wanted}")
        return part

    def page(self, caption):
        """The page of a tab. Pages are children of the form, in the order in which their tabs were first opened."""
        return next((part for part in children(self.window)
                     if part.get_role_name() == "panel" and part.get_name() == caption), None)

    def native(self, name):
        part = self.look(name)
        require(part is not None, "has not been shown yet: " + name)
        return part

    def is_combo(self, part):
        return part.get_role_name() == "combo box"

    def items_of(self, part):
        """The items of a list box, or of the list of a combo box."""
        return children(part.get_child_at_index(0) if self.is_combo(part) else part)

    def edit_of(self, part):
        """The part of a text box or combo box that accepts text; None for other controls."""
        parts = [part, *children(part)] if self.is_combo(part) else [part]
        return next((one for one in parts if one.get_role_name() in ("text", PASSWORD)), None)

    def has_focus(self, part):
        return any(has(one, State.FOCUSED) for one in (part, self.edit_of(part)) if one is not None)

    # --- orders

    def take_form(self, name):
        """Waits until the form, "main" or "dialog", is in front; the next orders apply to it."""
        def in_front():
            self.window = next((window for window in self.program.windows() if has(window, State.ACTIVE)
                                and window.get_name().startswith(DIALOG_CAPTION) == (name == "dialog")), None)
            return self.window
        require(wait_for(in_front), "the form does not come to the front: " + name)
        role = self.window.get_role_name()
        require(role == WINDOW_ROLES[name], f"the form is a {role} and not a {WINDOW_ROLES[name]}: {name}")
        self.form, self.found = FORMS[name], {}
        return self.window.get_name()

    def caption(self):
        return self.window.get_name()

    def tab(self, number):
        tab = self.native("tabMain").get_child_at_index(0).get_child_at_index(int(number))
        page = "fraMainTab." + number
        require_after(lambda: self.input.click(tab), lambda: self.page_is_shown(page) == "yes",
                      "the tab does not open: " + number)
        self.settle()

    def settle(self):
        """Waits until the program has filled the lists of a new tab: until then it answers no question."""
        for _ in range(4):
            time.sleep(0.03)
            self.window.get_name()

    def click(self, name):
        part = self.native(name)
        require(wait_for(lambda: has(part, State.ENABLED)), "cannot be used: " + name)
        self.wait_since_last_click(name)
        self.input.click(part)
        self.clicked[name] = time.monotonic()

    def wait_since_last_click(self, name):
        """A button ignores a click that follows the last click, or the end of its command, faster than a person could."""
        if name in self.clicked:
            time.sleep(max(REACTION, self.clicked[name] + DOUBLE_CLICK - time.monotonic()))

    def click_twice(self, name, milliseconds):
        self.wait_since_last_click(name)
        self.input.click(self.native(name))
        begun = time.monotonic()
        time.sleep(int(milliseconds) / 1000)
        self.input.click_here()
        self.clicked[name] = time.monotonic()
        return str(round((self.clicked[name] - begun) * 1000))

    def fill(self, name, text):
        box = self.native(name)
        edit = self.edit_of(box)
        require_after(lambda: self.input.click(edit), lambda: self.has_focus(box), "does not take the focus: " + name)
        self.input.press("Home")
        self.input.press("Shift_L", "End")
        self.input.press("Delete")
        self.input.type(text)
        if edit.get_role_name() == PASSWORD:
            return
        require(wait_for(lambda: text_of(edit) == text), f'the text is "{text_of(edit)}" and not "{text}"')

    def choose(self, name, text):
        """Repeats the choice until it succeeds: the list closes if the program fills it again meanwhile."""
        part = self.native(name)

        def is_chosen():
            try:
                return self.try_to_choose(part, text)
            except (NotSeen, GLib.Error):
                return False  # the list closed just before the click
        require(wait_for(is_chosen), f"{text} cannot be chosen in {name}")

    def try_to_choose(self, part, text):
        def item():
            items = self.items_of(part) if has(part, State.ENABLED) else []
            return next((one for one in items if one.get_name() == text), None)

        def click_item():
            one = item()  # it is gone while the program fills the list again
            if one is not None:
                self.input.click(one)
            return one is not None

        def is_selected():
            one = item()
            return one is not None and has(one, State.SELECTED)
        if not wait_for(item, MOMENT):
            return False
        if not self.is_combo(part):
            return click_item() and wait_for(is_selected, MOMENT)
        if not has(part, State.EXPANDED):
            self.input.open(part)
            if not wait_for(lambda: has(part, State.EXPANDED), MOMENT):
                return False
        return click_item() and wait_for(lambda: not has(part, State.EXPANDED) and self.shown(part) == text, MOMENT)

    def shown(self, part):
        return text_of(self.edit_of(part) or part)

    def await_caption(self, name, caption):
        """Waits for the caption of a label that a running command changes. The program only answers between the steps of
        the command, so the label is read without a pause."""
        label = self.native(name)
        require(wait_for(lambda: label.get_name() == caption, pause=0), f"does not become {caption}: {name}")

    def text(self, name):
        return joined([self.shown(self.native(name))])

    def page_is_shown(self, name):
        page = self.look(name)
        return "yes" if page is not None and has(page, State.SHOWING) else "no"

    def enabled(self, name):
        return "yes" if has(self.native(name), State.ENABLED) else "no"

    def checked(self, name):
        return "yes" if has(self.native(name), State.CHECKED) else "no"

    def focus(self, name):
        return "yes" if self.has_focus(self.native(name)) else "no"

    def items(self, name):
        return joined(item.get_name() for item in self.items_of(self.native(name)))

    def headers(self, name):
        table = self.native(name)
        return joined(Atspi.Table.get_column_description(table, i) for i in range(Atspi.Table.get_n_columns(table)))

    def rows(self, name):
        return str(Atspi.Table.get_n_rows(self.native(name)))

    def row(self, name, number):
        table = self.native(name)
        cells = (Atspi.Table.get_accessible_at(table, int(number), i) for i in range(Atspi.Table.get_n_columns(table)))
        # A row that goes while the table is filled anew has no cells, and reads as empty as it does on Windows.
        return joined(cell.get_name() if cell is not None else "" for cell in cells)

    def await_box(self):
        box = wait_for(self.program.box)
        require(box is not None, "no message box appears")
        return box

    def box(self):
        """Waits for a message box; returns its title and its text."""
        box = self.await_box()
        text = next(part for part in children(box) if part.get_role_name() == "label" and part.get_name())
        return joined([box.get_name(), text.get_name()])

    def answer(self):
        box = self.await_box()
        require(wait_for(lambda: has(box, State.ACTIVE)), "the message box does not come to the front")
        self.input.press("Return")
        require(wait_for(lambda: box not in self.program.windows()), "the message box does not close")

    def picture(self, path):
        """Takes a picture of the window in front with its frame."""
        self.input.move_to(0, 0)  # there the pointer shows no tool tip
        subprocess.run(["import", "-frame", "-window", hex(self.input.window_in_front()), path], check=True)

    def press(self, keys):
        """Presses keys together, for example "Control+Shift+Tab"."""
        self.input.press(*(HELD_KEYS.get(key, key) for key in keys.split("+")))

    def type(self, text):
        """Types into the control that has the focus."""
        self.input.type(text)

    def await_picker(self):
        dialog = wait_for(self.program.picker)
        require(dialog is not None, "no dialog for a folder or a file appears")
        return dialog

    def picker(self):
        """Waits until a dialog for a folder or a file is in front."""
        dialog = self.await_picker()
        require(wait_for(lambda: has(dialog, State.ACTIVE)), "the dialog does not come to the front")

    def folder(self):
        """The folder that the folder dialog shows."""
        look_in = next(part for part in children(self.await_picker()) if self.is_combo(part))
        return os.path.basename(look_in.get_name())

    def pick(self):
        """Accepts the choice in the dialog for a folder or a file."""
        dialog = self.await_picker()
        # Qt may show a list of names below a typed name. While it is shown, it is the active window instead of the dialog,
        # and the next Return closes only the list.
        require_after(lambda: self.input.press("Return"), lambda: dialog not in self.program.windows(),
                      "the dialog does not close")

    def close(self):
        self.click("cmdClose")
        self.end()

    def end(self):
        require(self.program.ends(), f"the program does not end with exit code 0: {self.program.process.returncode}")

    ORDERS = {
        "form": take_form, "caption": caption, "tab": tab, "click": click, "twice": click_twice, "fill": fill,
        "choose": choose, "shown": page_is_shown, "await": await_caption, "text": text, "enabled": enabled,
        "checked": checked, "focus": focus, "items": items, "headers": headers, "rows": rows, "row": row, "box": box,
        "answer": answer, "picture": picture, "press": press, "type": type, "picker": picker, "folder": folder,
        "pick": pick, "close": close, "end": end}


def answer(order):
    try:
        print("=", order(), flush=True)
    except (NotSeen, GLib.Error, subprocess.CalledProcessError) as error:
        print("!", joined([str(error)]), flush=True)


def main():
    Atspi.set_timeout(LONGEST * 1000, LONGEST * 1000)  # the program does not answer while it waits for a server
    operators = []

    def begin():
        operators.append(Operator(*sys.argv[1:3]))
        return ""
    answer(begin)
    try:
        for line in sys.stdin:
            if not operators:
                break
            answer(lambda: operators[0].do(line.rstrip("\n")))
    finally:
        for operator in operators:
            operator.program.stop()


main()
