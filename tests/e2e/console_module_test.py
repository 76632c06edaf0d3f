# The program on Linux and the module with its windows (libkvconsole.so): without a display, with a display that does not
# answer, without the module, and with both.
#
#   console_module_test.py DEVSQLSERVER BIN_FOLDER [TEST …]
import os
import subprocess
import sys
import unittest

from test_machine import TOP, DevServer, Machine, fresh_folder

NO_WINDOW = "The console cannot show its window here."


class ConsoleModule(unittest.TestCase):
    def setUp(self):
        self.machine = Machine(sys.argv[2], fresh_folder())
        self.addCleanup(self.machine.dispose)
        self.module = os.path.join(self.machine.install, "libkvconsole.so")

    def run_program(self, *arguments, **environment):
        """The program's output on the terminal. Fails if it does not end by itself."""
        return subprocess.run([self.machine.program, *arguments], env=self.machine.environment | environment,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60, check=True,
                              cwd=self.machine.install).stderr

    def test_the_program_is_not_linked_with_a_toolkit(self):
        libraries = subprocess.run(["ldd", self.machine.program], capture_output=True, text=True, check=True).stdout
        self.assertIn("libodbc", libraries)
        for name in ("libQt", "libxcb", "libX11", "libwayland"):
            self.assertNotIn(name, libraries)

    def test_without_a_display_the_module_is_not_searched(self):
        os.remove(self.module)
        said = self.run_program()
        self.assertIn(NO_WINDOW, said)
        self.assertNotIn("libkvconsole", said)

    def test_a_display_that_does_not_answer_is_treated_as_missing(self):
        for display in ({"DISPLAY": ":4711"},
                        {"WAYLAND_DISPLAY": "wayland-4711", "XDG_RUNTIME_DIR": self.machine.folder},
                        {"DISPLAY": ":4711", "QT_QPA_PLATFORM": "xcb"}):
            self.assertIn(NO_WINDOW, self.run_program(**display), display)

    def test_a_missing_module_is_reported_once_with_the_package_to_install(self):
        os.remove(self.module)
        said = self.run_program("/help", DISPLAY=":4711")
        self.assertEqual(said.count("install the package kvlsqldbmgr-console"), 1)
        self.assertIn(self.module + " is missing", said)
        self.assertIn("/upgradedb", said)  # the help text on the terminal

    def test_a_module_that_cannot_be_loaded_is_reported_with_the_package_of_its_libraries(self):
        with open(self.module, "w") as file:
            file.write("no library")
        self.assertIn("install the package libqt6widgets6", self.run_program(DISPLAY=":4711"))

    def test_an_unattended_run_without_a_display_does_not_need_the_module(self):
        os.remove(self.module)
        with DevServer(sys.argv[1], os.path.join(self.machine.folder, "devserver")) as server:
            said = self.machine.run(*self.machine.install_arguments(server, "/installdb"))
            self.assertIn("Ended.", said)
            self.assertNotIn("install the package", said)
            self.assertIn("Batch", server.column("SELECT name FROM master.dbo.sysdatabases"))


class OnAScreen(unittest.TestCase):
    """The program with its module on a screen, operated by xdotool."""

    def setUp(self):
        self.machine = Machine(sys.argv[2], fresh_folder())
        self.addCleanup(self.machine.dispose)

    def on_screen(self, script, *arguments):
        """Runs the program and, at the same time, a shell script that operates it. Both must end. The result has the
        output of the script in `stdout`."""
        line = f'"$0" "$@" & program=$!; {script}; wait $program'
        environment = self.machine.environment | {
            "LSAN_OPTIONS": f"suppressions={TOP}/tests/leaks_of_others.txt:print_suppressions=0"}
        command = [os.path.join(TOP, "tests", "with-screen"), "--no-wine", "bash", "-c", line, self.machine.program]
        run = subprocess.run([*command, *arguments], env=environment, cwd=self.machine.install,
                             stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=300)
        self.assertEqual(run.returncode, 0, run.stderr)
        return run

    # Waits until the window with this name is shown, and activates it.
    APPEARS = ('for i in $(seq 600); do w=$(xdotool search --onlyvisible --name "{}" | head -1); [ -n "$w" ] && break; '
               'sleep 0.1; done; xdotool windowactivate --sync $w')

    def test_help_is_shown_in_a_box_and_the_console_opens_afterwards(self):
        seen = self.on_screen(self.APPEARS.format("^KVLSQLDbMgr$") + "; xdotool key Return; " +
                              self.APPEARS.format("Halvane Vindrel") +
                              "; xdotool getwindowname $w; xdotool key alt+c", "/help")
        self.assertEqual(seen.stdout, "Halvane Vindrel SQL Database Manager [Version 6.G4 Build 31]\n")

    def test_an_unattended_run_shows_its_status_in_a_window(self):
        with DevServer(sys.argv[1], os.path.join(self.machine.folder, "devserver")) as server:
            seen = self.on_screen(self.APPEARS.format("Installing / Upgrading") + "; xdotool getwindowname $w",
                                  *self.machine.install_arguments(server, "/installdb"))
            self.assertEqual(seen.stdout, "Installing / Upgrading Lotkeeper database\n")
            self.assertNotIn("[ 1/", seen.stderr)
            self.assertIn("Batch", server.column("SELECT name FROM master.dbo.sysdatabases"))

    def test_a_typed_text_is_saved_when_the_window_is_closed(self):
        self.on_screen(self.APPEARS.format("Halvane Vindrel") +
                       "; xdotool type --delay 30 /srv/scripts; xdotool key alt+c")
        settings = os.path.join(self.machine.folder, "KVLSQLDbMgr", "settings.ini")
        with open(settings) as file:
            self.assertIn("edtScriptFolder=/srv/scripts\n", file.read())


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
