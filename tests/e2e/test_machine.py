# The fixture of the end-to-end tests: a development server, and a machine on which the program is installed, with its
# registry, its query tool and its packages. The same tests run on Linux and on Windows under Wine.
import fcntl
import os
import re
import shlex
import shutil
import signal
import socket
import subprocess
import tempfile
import time
import weakref

import pymssql

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
RUNNER = os.path.join(TOP, "tests", "run-under-wine")
TEMPLATES = ("Create_Batch_Database", "Insert_Default_Data", "Create_Batch_Stored_Procedures")
PACKAGES = ("StdSynchronize", "UpgradeDatabase_V1_to_V2", "BatchOverviewExport", "BatchOverviewRecalcExport",
            "BatchSummaryExport", "BatchSummaryRecalcExport")
USER, PASSWORD = "lk_admin", "Pass_1!"


class DevServer:
    """A development server that one test uses alone. Use it in a with statement."""

    def __init__(self, program, folder, drives=()):
        self.program, self.folder, self.drives = program, folder, drives
        self.root = os.path.join(folder, "server")
        self.logins = os.path.join(folder, "logins")
        # This socket is bound and never listens. It reserves the port while the server is down, so that no other process
        # gets it before the server starts again.
        keeper = socket.socket()
        keeper.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        keeper.bind(("127.0.0.1", 0))
        weakref.finalize(self, keeper.close)
        self.port = keeper.getsockname()[1]
        self.process = None
        os.makedirs(folder, exist_ok=True)
        with open(os.open(self.logins, os.O_CREAT | os.O_WRONLY, 0o600), "w", encoding="utf-8") as file:
            file.write(f"{USER}:{PASSWORD}\nempty:\nmüller:pä€\nslash:/p-w\nmojibake:Ã¤\n")

    def start(self):
        """Starts the server, again on the same port after the first time; returns when it accepts connections."""
        arguments = [self.program, "--root", self.root, "--port", str(self.port), "--logins", self.logins]
        for drive in self.drives:
            arguments += ["--drive", drive]
        # The server connects to linked servers with the ODBC driver that this folder registers.
        environment = dict(os.environ, ODBCSYSINI=os.path.join(TOP, "src", "odbc", "odbc_config"))
        self.process = subprocess.Popen(arguments, stdout=subprocess.PIPE, text=True, env=environment)
        ready = self.process.stdout.readline()
        match = re.fullmatch(r"devsqlserver: ready on 127\.0\.0\.1:(\d+)\n", ready)
        if match is None:
            self.kill()
            raise RuntimeError(f"the server did not start: {ready!r}")
        self.port = int(match.group(1))
        return self

    def stop(self, signal_number=signal.SIGTERM):
        if self.process is not None and self.process.poll() is None:
            self.process.send_signal(signal_number)
            try:
                self.process.wait(60)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        if self.process is not None:
            self.process.stdout.close()
            self.process = None

    def kill(self):
        self.stop(signal.SIGKILL)

    __enter__ = start

    def __exit__(self, *_):
        self.stop()

    @property
    def name(self):
        """The server's name as in a connection string."""
        return f"127.0.0.1,{self.port}"

    def connect(self, database="master"):
        return pymssql.connect(server="127.0.0.1", port=str(self.port), user=USER, password=PASSWORD,
                               database=database, autocommit=True, login_timeout=60, timeout=60)

    def ask(self, statement, database="master"):
        """The rows of the first result, read by pymssql."""
        with self.connect(database) as connection, connection.cursor() as cursor:
            cursor.execute(statement)
            return [tuple(row) for row in cursor.fetchall()] if cursor.description else []

    def column(self, statement, database="master"):
        return sorted(row[0] for row in self.ask(statement, database))

    def ask_bsqldb(self, statement, database="master"):
        """The lines that the client bsqldb reads, columns separated by a bar."""
        configuration = os.path.join(self.folder, "freetds.conf")
        with open(configuration, "w") as file:
            file.write(f"[dev]\nhost = 127.0.0.1\nport = {self.port}\ntds version = 7.1\nclient charset = UTF-8\n")
        run = subprocess.run(["bsqldb", "-S", "dev", "-U", USER, "-P", PASSWORD, "-D", database, "-t", "|", "-q"],
                             input=statement, env=dict(os.environ, FREETDSCONF=configuration, FREETDS=configuration),
                             capture_output=True, text=True, timeout=60)
        if run.returncode != 0:
            raise RuntimeError(f"bsqldb: {run.stderr}")
        return [line.strip() for line in run.stdout.splitlines() if line.strip()]


def set_up(*steps):
    """A shell command that runs these programs under Wine, one after the other. A program that fails is run once more:
    a start under Wine can fail (tests/run-under-wine explains why), and the programs only prepare a test."""
    lines = (shlex.join([RUNNER, *step]) for step in steps)
    return " && ".join(f"{{ {line} || {{ echo 'once more:' {line} >&2; {line}; }}; }}" for line in lines)


# Only tests create these keys: a new Wine prefix does not have them.
REGISTRY_KEYS = ("HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVIK", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Microsoft SQL Server",
                 "HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\KVLSQLDbMgr")


class Machine:
    """A computer with the program installed. `binaries` is the bin folder of a build tree."""

    registry_lock = None

    def __init__(self, binaries, folder, wine=False, screen=False):
        """`screen`: all its programs run on a screen, with the Wine prefix for screens (tests/run-under-wine)."""
        self.binaries, self.folder, self.wine, self.screen = binaries, folder, wine, screen
        if wine and not screen and not Machine.registry_lock:
            # All tests without a screen share the prefix's registry. The first machine of a process takes this lock, and
            # the process holds it until it ends.
            Machine.registry_lock = open(os.path.join(TOP, "build", "wine.registry.lock"), "w")
            fcntl.flock(Machine.registry_lock, fcntl.LOCK_EX)
        self.install = os.path.join(folder, "Server")
        self.tools = os.path.join(folder, "Client Tools")
        self.log_folder = os.path.join(folder, "Log")
        self.scripts = os.path.join(folder, "sql scripts")
        self.data = os.path.join(folder, "SQL Data")
        for path in (self.install, os.path.join(self.tools, "Binn"), self.log_folder, self.data):
            os.makedirs(path)
        extension = ".exe" if wine else ""
        self.program = os.path.join(self.install, "KVLSQLDbMgr" + extension)
        shutil.copy(os.path.join(binaries, "KVLSQLDbMgr" + extension), self.program)
        if not wine:
            shutil.copy(os.path.join(binaries, "libkvconsole.so"), self.install)
        self.tool = os.path.join(self.tools, "Binn", "OSQL.EXE")
        shutil.copy(os.path.join(binaries, "OSQL.EXE"), self.tool)
        self.set_scripts("v1")
        self.odbc = os.path.join(folder, "odbc")
        os.mkdir(self.odbc)
        with open(os.path.join(self.odbc, "odbcinst.ini"), "w") as file:
            file.write("[SQL Server]\nDescription = FreeTDS under the name of the system's driver\n"
                       f"Driver = {freetds_driver()}\n")
        self.environment = dict(os.environ, ODBCSYSINI=self.odbc, HOME=folder, XDG_CONFIG_HOME=folder,
                                KVLSQLDBMGR_REGISTRY=os.path.join(folder, "registry.reg"))
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"):
            self.environment.pop(name, None)
        self.dts_record = os.path.join(folder, "dts.txt")
        if wine:
            self.environment.update(KV_DTS_STORE="1", KV_DTS_RECORD=self.native(self.dts_record))
        self.set_registry()

    def native(self, path):
        """The path in the form of the program's own system."""
        return "Z:" + path.replace("/", "\\") if self.wine else path

    def drives(self):
        """The drive letters that a server must map to use this machine's paths."""
        return ("Z=/",) if self.wine else ()

    def set_registry(self, version="14.0.1000.169", tools=None, log=None, login=None):
        """Writes every setting that the program reads. `login` is server, user and password; without it there is no
        login key."""
        def key(name, *values):
            return f"[HKEY_LOCAL_MACHINE\\SOFTWARE\\{name}]\n" + "".join(value + "\n" for value in values) + "\n"

        def text(value):
            return '"' + self.native(value).replace("\\", "\\\\") + '"'

        client = "Microsoft\\Microsoft SQL Server\\{}\\Tools\\ClientSetup"
        content = "REGEDIT4\n\n" + key("ORVIK\\QUORLEN\\Log", "@=" + text(log or self.log_folder))
        content += key("Microsoft\\Microsoft SQL Server\\KV_BATCH\\MSSQLServer\\CurrentVersion",
                       f'"CurrentVersion"="{version}"')
        for number in ("80", "90", "120", "140"):
            content += key(client.format(number), '"SQLPath"=' + text(tools or self.tools))
        if login:
            values = [f'"{name}"="{value}"' for name, value in zip(("ServerName", "UserID", "PWD"), login)]
            content += key("Orvik\\Quorlen\\Lotkeeper\\Login", *values)
        path = os.path.join(self.folder, "registry.reg")
        if self.wine:
            # All tests share the prefix's registry, so the keys of an earlier test are deleted first.
            wipe = "REGEDIT4\n\n" + "".join(f"[-{key}]\n\n" for key in REGISTRY_KEYS)
            content = content.replace("REGEDIT4\n\n", wipe)
            self.forget_file = os.path.join(self.folder, "forget.reg")
            with open(self.forget_file, "w") as file:
                file.write(wipe)
        elif not content.isascii():
            # REGEDIT4 files have no encoding for all characters.
            content = content.replace("REGEDIT4", "Windows Registry Editor Version 5.00")
        with open(path, "w", encoding="utf-8") as file:
            file.write(content)
        self.registry_files = (path,)
        if self.wine and not self.screen:
            for file in self.registry_files:
                self.prepare("regedit.exe", "/S", self.native(file))

    def with_registry(self, command, *more_files):
        """A shell command that runs `command` with this machine's registry and then deletes it from the prefix. Otherwise
        a console that is started there later would look for the folders of a machine that no longer exists."""
        begin = set_up(*(("regedit.exe", "/S", self.native(file)) for file in (*self.registry_files, *more_files)))
        end = set_up(("regedit.exe", "/S", self.native(self.forget_file)))
        return f"{begin} && {{ {command}; }}; ended=$?; {{ {end}; }} < /dev/null; exit $ended"

    def add_to_registry(self, text):
        """Adds keys, given as a REGEDIT4 file without its first line. Under Wine only for runs on a screen."""
        if self.wine:
            path = os.path.join(self.folder, f"more{len(self.registry_files)}.reg")
            self.registry_files += (path,)
            text = "REGEDIT4\n\n" + text
        else:
            path = self.registry_files[0]
        with open(path, "a", encoding="utf-8") as file:
            file.write(text)

    def forget_registry(self):
        """Deletes the tests' keys from the prefix for runs without a screen."""
        if self.wine and not self.screen:
            self.prepare("regedit.exe", "/S", self.native(self.forget_file))

    def prepare(self, *step):
        """Runs a program under Wine, a second time if it fails."""
        run = subprocess.run(["sh", "-c", set_up(step)], env=self.wine_environment(), stdin=subprocess.DEVNULL,
                             capture_output=True, text=True, errors="replace", timeout=240, cwd=self.install)
        if run.returncode != 0:
            raise RuntimeError(f"{' '.join(step)}: exit code {run.returncode}: {run.stdout}{run.stderr}")

    def under_wine(self, *arguments, timeout=120):
        """Runs a program under Wine without a screen to its end."""
        return subprocess.run([RUNNER, *arguments], env=self.wine_environment(),
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace",
                              timeout=timeout, cwd=self.install)

    def wine_environment(self):
        # The Wine prefix belongs to the project and not to the test, and Wine finds its settings below the real HOME.
        environment = dict(self.environment, HOME=os.environ.get("HOME", "/root"))
        return environment

    def environment_on_screen(self):
        """The environment of tests/with-screen and of the programs on its screen."""
        environment = self.wine_environment() if self.wine else dict(self.environment)
        suppressions = os.path.join(TOP, "tests", "leaks_of_others.txt")
        environment["LSAN_OPTIONS"] = f"suppressions={suppressions}:print_suppressions=0"
        if "KV_SCREEN" in os.environ:
            environment["DISPLAY"] = os.environ["DISPLAY"]
        return environment

    def run(self, *arguments, timeout=300, **how):
        """Runs the program unattended to its end and returns the text that it wrote to the terminal. `how` is passed to
        subprocess.run, on Linux only."""
        if self.wine:
            done = self.under_wine(self.program, *arguments, timeout=timeout)
        else:
            done = subprocess.run([self.program, *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                                  capture_output=True, text=True, errors="replace", timeout=timeout,
                                  cwd=self.install, **how)
        # The program's exit code is 0 whether its work failed or succeeded.
        assert done.returncode == 0, f"exit code {done.returncode}: {done.stderr}"
        return done.stderr

    def on_a_screen(self, *arguments):
        """Like run(), on a screen. Only under Wine, where programs on a screen have a registry of their own."""
        command = self.with_registry(shlex.join([RUNNER, self.program, *arguments]))
        return subprocess.run([os.path.join(TOP, "tests", "with-screen"), "sh", "-c", command],
                              env=self.environment_on_screen(), stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, errors="replace", timeout=600, cwd=self.install).stderr

    def start(self, *arguments):
        """Starts the program without a screen and does not wait for its end; returns the process."""
        command = [self.program, *arguments]
        if self.wine:
            command.insert(0, RUNNER)
        return subprocess.Popen(command, env=self.wine_environment() if self.wine else self.environment,
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                cwd=self.install)

    def login(self, server, user=USER, password=PASSWORD):
        """The arguments of the program for the script folder and the login."""
        return ["/scriptfolder", self.native(self.scripts), "/server", server.name, "/user", user, "/password",
                password]

    def install_arguments(self, server, *what, **login):
        """The arguments of an installation; `what` are /installdb, /installsp, /installdts. The data folder is this
        machine's."""
        return [*self.login(server, **login), "/sqldatapath", self.native(self.data), *what]

    def log_lines(self):
        """The log's lines without their dates. Fails if a line does not begin with a date."""
        path = os.path.join(self.log_folder, "KVLSQLDbMgr.log")
        if not os.path.exists(path):
            return []
        with open(path, encoding="cp1252", newline="") as file:
            lines = file.read().split("\r\n")
        assert lines.pop() == "", "the last line has no line end"
        date = r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d"
        assert all(re.match(date + " : Error in ", line) for line in lines), lines
        return [line[len("2006-05-12 14:03:22"):] for line in lines]

    def data_files(self):
        """The files that the program has written into the folder Data beside it."""
        folder = os.path.join(self.install, "Data")
        return sorted(os.listdir(folder)) if os.path.isdir(folder) else []

    def output(self, name):
        """The query tool's output for a script."""
        with open(os.path.join(self.install, "Data", name + ".txt"), encoding="cp1252", newline="") as file:
            return file.read()

    def set_scripts(self, version):
        """Replaces the script folder by the sample scripts of a version."""
        shutil.rmtree(self.scripts, ignore_errors=True)
        shutil.copytree(os.path.join(TOP, "samples", "sqlscripts", version), self.scripts)

    def write_template(self, name, content):
        """Writes a script template; `content` is bytes."""
        with open(os.path.join(self.scripts, name + ".sql"), "wb") as file:
            file.write(content)

    def read_modified(self, name):
        """The bytes of the script that the program made from a template."""
        with open(os.path.join(self.install, "Data", name + ".sql"), "rb") as file:
            return file.read()

    def dispose(self):
        shutil.rmtree(self.folder, ignore_errors=True)


def freetds_driver():
    """The path of FreeTDS's ODBC driver."""
    for folder in ("/usr/lib/x86_64-linux-gnu/odbc", "/usr/lib/odbc", "/usr/lib64"):
        path = os.path.join(folder, "libtdsodbc.so")
        if os.path.exists(path):
            return path
    raise RuntimeError("libtdsodbc.so was not found; install the package tdsodbc")


def wait_for(condition, seconds=60):
    """Waits until the condition holds; fails if that takes too long. For the effects of another process."""
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            raise RuntimeError(f"the condition does not hold after {seconds} seconds")
        time.sleep(0.02)


def fresh_folder():
    return tempfile.mkdtemp(prefix="kv-e2e-")


# The next two functions install the templates with another client than the program: they replace the tokens and split the
# batches themselves, so that a test can compare the results.

def modified_template(folder, name, values):
    def value(match):
        token = match.group(1)
        text = values.get(token.lower(), "")
        if token in ("server", "servera", "serverb"):
            return text.lower()
        return text.upper() if token in ("SERVER", "SERVERA", "SERVERB", "DOMAIN") else text

    with open(os.path.join(folder, name + ".sql"), encoding="cp1252", newline="") as file:
        return re.sub(r"###([A-Za-z]+)###", value, file.read())


def install_by_pymssql(server, folder, names, values):
    """Runs the templates of these names. `values` maps each token in lower case, without "###", to its text."""
    with server.connect() as connection, connection.cursor() as cursor:
        for name in names:
            for batch in re.split(r"(?mi)^GO\r?$\n?", modified_template(folder, name, values)):
                if batch.strip():
                    cursor.execute(batch)
                    while cursor.nextset():
                        pass


def contents(server, database="Batch"):
    """The whole content of a database, for comparison: objects, columns, rows, procedure texts."""
    tables = server.column("SELECT name FROM sysobjects WHERE xtype = 'U'", database)
    rows = {}
    for table in tables:
        columns = server.ask("SELECT COLUMN_NAME, DATA_TYPE FROM INFORMATION_SCHEMA.COLUMNS "
                             f"WHERE TABLE_NAME = '{table}' ORDER BY ORDINAL_POSITION", database)
        # Times and identifiers of rows differ from run to run.
        steady = [f"[{name}]" for name, kind in columns if kind not in
                  ("timestamp", "uniqueidentifier", "datetime", "smalldatetime", "text", "ntext", "image")]
        rows[table] = sorted(server.ask(f"SELECT {', '.join(steady)} FROM [{table}]", database), key=repr)
    return {
        "objects": server.ask("SELECT name, xtype FROM sysobjects WHERE xtype IN ('U', 'V', 'P') ORDER BY name",
                              database),
        "columns": server.ask("SELECT TABLE_NAME, COLUMN_NAME, ORDINAL_POSITION, DATA_TYPE, IS_NULLABLE "
                              "FROM INFORMATION_SCHEMA.COLUMNS ORDER BY TABLE_NAME, ORDINAL_POSITION", database),
        "rows": rows,
        "texts": {name: server.ask(f"exec sp_helptext '{name}'", database) for name in
                  server.column("SELECT name FROM sysobjects WHERE xtype IN ('P', 'V')", database)},
    }
