# Checks that no password is in anything that the programs write or show, except in files that only their owner may read,
# and that no socket can be reached from another machine. Also for runs that fail, because failures are reported. Linux.
import os
import resource
import stat
import subprocess
import threading
import time

import processes
from console import prepare, start, watch
from test_machine import DevServer, Machine

# No other file or process contains these texts.
USER, PASSWORD = "soak_user", "Zq8-Secret-Vy4"
WRONG = "Zq8-Wrong-Vy4"
LONGEST_RUN = 300  # seconds
OTHERS = stat.S_IRWXG | stat.S_IRWXO


class SecretServer(DevServer):
    def __init__(self, program, folder):
        super().__init__(program, folder)
        with open(self.logins, "a", encoding="utf-8") as file:
            file.write(f"{USER}:{PASSWORD}\n")


def anybody_may_read():
    """Removes the usual limits, so that only the program itself can protect a file or prevent a core."""
    os.umask(0)
    resource.setrlimit(resource.RLIMIT_CORE, (resource.RLIM_INFINITY, resource.RLIM_INFINITY))


class Listeners(threading.Thread):
    """Looks again and again at the sockets of all programs of this part, until `ended` is set."""

    def __init__(self, folder):
        super().__init__(daemon=True)
        self.folder, self.ended = folder.encode(), threading.Event()
        self.most, self.elsewhere, self.looks = 0, set(), 0

    def run(self):
        while not self.ended.wait(0.02):
            ours = [process for process, words in processes.running() if any(self.folder in word for word in words)]
            loopback, elsewhere = processes.listening(ours)
            self.most, self.looks = max(self.most, loopback), self.looks + 1
            self.elsewhere.update(elsewhere)


def holds_secret(data):
    return any(secret.encode(code) in data for secret in (PASSWORD, WRONG) for code in ("ascii", "utf-16-le"))


def look(part, what, data):
    part.count("texts without a password")
    part.check(not holds_secret(data), f"{what} holds a password")


def look_at_file(part, path):
    with open(path, "rb") as file:
        look(part, os.path.basename(path), file.read())


def closed_to_others(part, path):
    part.count("files that their owner alone may read")
    mode = stat.S_IMODE(os.stat(path).st_mode)
    part.check(not mode & OTHERS, f"{os.path.basename(path)} has the rights {mode:o}")


def unattended_runs(machine, server):
    """(name, arguments): runs that work, and runs that fail in one way each."""
    login = {"user": USER, "password": PASSWORD}
    everything = machine.install_arguments(server, "/installdb", "/installdts", **login)
    yield "an installation", everything
    yield "an upgrade", ["/upgradedb", "/scriptfolder", machine.scripts]
    yield "an installation over it", everything
    yield "a wrong password", machine.install_arguments(server, "/installdb", "/installdts", user=USER, password=WRONG)
    yield "no such server", [("127.0.0.1,9" if word == server.name else word) for word in everything]
    yield "an incomplete line", [word for word in everything if word != "/user"]


def run_program(part, machine, name, arguments):
    done = subprocess.run([machine.program, *arguments], env=machine.environment, stdin=subprocess.DEVNULL,
                          capture_output=True, timeout=LONGEST_RUN, cwd=machine.install, preexec_fn=anybody_may_read)
    part.count("runs of the program")
    look(part, f"the terminal of {name}", done.stdout + done.stderr)


def runs_of_the_program(part, machine, server):
    for name, arguments in unattended_runs(machine, server):
        if name == "an upgrade":
            machine.set_scripts("v2")
        run_program(part, machine, name, arguments)


def broken_scripts(part, machine, server):
    """A script with the password in a statement that fails. The server's message goes to the output file, which must be
    closed to others."""
    machine.write_template("Create_Batch_Database", b"SELECT * FROM NoSuchTable -- ###PASSWORD###\r\nGO\r\n")
    arguments = machine.install_arguments(server, "/installdb", user=USER, password=PASSWORD)
    run_program(part, machine, "a broken script", arguments)


def core_of_a_crash(part, machine, server):
    """A program that crashes while the password is in its memory leaves no core."""
    machine.write_template("Create_Batch_Database", b"WAITFOR DELAY '00:00:20'\r\nGO\r\n")
    arguments = machine.install_arguments(server, "/installdb", user=USER, password=PASSWORD)
    data = os.path.join(machine.install, "Data")
    for name in os.listdir(data):
        os.remove(os.path.join(data, name))
    program = subprocess.Popen([machine.program, *arguments], env=dict(machine.environment, ASAN_OPTIONS="handle_abort=0:disable_coredump=0"),
                               stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               cwd=machine.install, preexec_fn=anybody_may_read)
    tool = wait_for_child(program.pid)
    for name, process in (("the query tool", tool), ("the program", program.pid)):
        with open(f"/proc/{process}/limits", encoding="ascii") as file:
            limit = next(line.split()[4] for line in file if line.startswith("Max core file size"))
        part.count("programs that leave no core")
        part.check(limit == "0", f"{name} may leave a core of {limit} bytes")
    os.kill(tool, 6)
    program.send_signal(6)
    program.wait(LONGEST_RUN)
    for folder, _, names in os.walk(machine.folder):
        part.check(not any(name.startswith("core") for name in names), f"a core lies in {folder}")


def wait_for_child(process):
    end = time.monotonic() + 60
    while time.monotonic() < end:
        with open(f"/proc/{process}/task/{process}/children", encoding="ascii") as file:
            children = file.read().split()
        if children:
            return int(children[0])
        time.sleep(0.02)
    raise RuntimeError("the query tool does not start")


def console(part, settings, machine, server):
    """Runs the console and checks the settings file that it leaves."""
    settings_file = os.path.join(machine.folder, "settings.txt")
    with open(settings_file, "w", encoding="ascii") as file:
        file.write("\n".join([server.name, server.name, USER, PASSWORD, machine.data, "1"]) + "\n")
    process = start(machine, os.path.join(settings.binaries, "console_soak"), settings_file)
    try:
        watch(part, "Qt", process, machine)
    finally:
        process.kill()
        process.wait()
        process.stdout.close()
    closed_to_others(part, os.path.join(machine.folder, "KVLSQLDbMgr", "settings.ini"))


def run(part, settings):
    with settings.folder() as folder:
        machine = Machine(settings.binaries, os.path.join(folder, "machine"))
        watcher = Listeners(folder)
        watcher.start()
        try:
            with SecretServer(settings.dev_server, os.path.join(folder, "server")) as server:
                machine.set_registry(login=(server.name, USER, PASSWORD))
                runs_of_the_program(part, machine, server)
                look_at_what_is_left(part, machine, server)
                broken_scripts(part, machine, server)
                look_at_what_is_left(part, machine, server)
                core_of_a_crash(part, machine, server)
                os.remove(os.path.join(machine.log_folder, "KVLSQLDbMgr.log"))
                prepare(server, machine)
                console(part, settings, machine, server)
        finally:
            watcher.ended.set()
            watcher.join()
    part.count("looks at listening sockets", watcher.looks)
    part.check(watcher.most > 0, "not even the server was seen to listen")
    part.check(not watcher.elsewhere, f"sockets beyond loopback: {sorted(watcher.elsewhere)}")


def look_at_what_is_left(part, machine, server):
    for name in os.listdir(machine.log_folder):
        look_at_file(part, os.path.join(machine.log_folder, name))
    data = os.path.join(machine.install, "Data")
    names = os.listdir(data)
    part.check(len(names) > 0, "no script was modified")
    for name in names:
        closed_to_others(part, os.path.join(data, name))
    closed_to_others(part, server.logins)
